// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_RODBUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_RODBUILDER_H

#include "scene/SceneGeometry.h"
#include "scene/backbones.h"
#include "scene/builders/ArrowHead.h"
#include "scene/builders/DatumBuilder.h"

class SoSwitch;

namespace strandview {

/// Rods: tube and ribbon, in a colour of their own or in those of a scalar. A backbone is a tube
/// with a head at its 3' end, in the colour of its molecule.
class RodBuilder : public BuilderOf<&Configuration::rods>
{
public:
    using BuilderOf::BuilderOf;

    /// The points and meshes of one rod, in any thread. One line in `error` if a tube, or a
    /// ribbon that is shown, cannot be interpolated.
    static SceneGeometry::Rod compute(const Rod& rod, const ThingStyle& style,
                                      const Placement& placement, std::string& error);

    /// That of its tube, in the data's unit.
    static double radiusOf(const Rod& rod, const ThingStyle& style);

    /// The rows that are shown of one.
    static CurveRows rowsOf(const ShownDatum& shown);

    std::string check(std::size_t index) const override;
    ThingKind getKind() const override { return ThingKind::ROD; }
    const char* getWork() const override;
    SbBox3f getReach(std::size_t index) const override;
    void recolour(std::size_t index, ShownDatum& shown) override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;

private:
    void setOwnColours(std::size_t index, SoNode* material) const;
    ArrowHead headOf(std::size_t index) const;
    void showHead(std::size_t index, ShownDatum& shown) const;
    bool hasDataColours(std::size_t index) const;
    void setDataColours(std::size_t index, ShownDatum& shown) const;

    const Molecules molecules{frame.data};
};

} // namespace strandview

#endif
