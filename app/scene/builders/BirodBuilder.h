// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_BIRODBUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_BIRODBUILDER_H

#include "scene/SceneGeometry.h"
#include "scene/builders/DatumBuilder.h"

class SoMaterial;

namespace strandview {

/// Birods: the strands are drawn through their own points, the average thinner between them.
class BirodBuilder : public BuilderOf<&Configuration::birods>
{
public:
    using BuilderOf::BuilderOf;

    /// The points and meshes of the birod of that index, in any thread. One line in `error` if one
    /// of its tubes, or of its ribbons where they are shown, cannot be interpolated.
    static SceneGeometry::Birod compute(const Birod& birod, std::size_t index, const Style& style,
                                        const Placement& placement, std::string& error);

    ThingKind getKind() const override { return ThingKind::BIROD; }
    /// The rows that are shown of one: of the average and the strands.
    static std::array<CurveRows, 3> rowsOf(const ShownDatum& shown);

    const char* getWork() const override;
    SbBox3f getReach(std::size_t index) const override;
    void recolour(std::size_t index, ShownDatum& shown) override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;

private:
    void setColours(std::size_t index, const SoBirod& birod, SoMaterial* material) const;
    void setDataColours(std::size_t index, ShownDatum& shown) const;
};

} // namespace strandview

#endif
