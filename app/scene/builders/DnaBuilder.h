// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_DNABUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_DNABUILDER_H

#include "scene/SceneGeometry.h"
#include "scene/backbones.h"
#include "scene/builders/ArrowHead.h"
#include "scene/builders/DatumBuilder.h"

class SoDNA;

namespace strandview {

/// DNA: its bases and pairs, which are built in ångström and scaled to the scene, and ideal
/// backbones where the file has none.
class DnaBuilder : public BuilderOf<&Configuration::dnas>
{
public:
    using BuilderOf::BuilderOf;

    /// The ideal backbones of the DNA of that index, in any thread. A strand through which no curve
    /// can be drawn has none.
    static SceneGeometry::Dna compute(const Dna& dna, std::size_t index, const Molecules& molecules,
                                      const Style& style, const Placement& placement);

    ThingKind getKind() const override { return ThingKind::DNA; }
    const char* getWork() const override;
    SbBox3f getReach(std::size_t index) const override;
    void recolour(std::size_t index, ShownDatum& shown) override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;
    SbBox3f findBox(std::size_t index, const ShownDatum& shown) override;

private:
    SbBox3f boxOfBases(const Dna& dna) const;
    double radiusOf(std::size_t index, Strand strand) const; ///< of its backbone, in the scene
    ArrowHead headOf(std::size_t index, Strand strand, const algebra3d::Vector3<double>& end,
                     const algebra3d::Quaternion<double>& rotation) const;
    void setPairs(const Dna& dna, const DnaLook& look, SoDNA& node) const;
    void setBackbone(std::size_t index, Strand strand, SoSeparator& group);
    bool hasDataColours(std::size_t index) const;
    void setColourChoice(std::size_t index, ShownDatum& shown) const;
    void setDataColours(std::size_t index, ShownDatum& shown) const;
    void setOwnBackboneColours(std::size_t index, SoSeparator& group) const;
    void setBackboneColours(std::size_t index, Strand strand, SoSwitch* colours,
                            SoSeparator& group) const;

    const Molecules molecules{frame.data};
};

} // namespace strandview

#endif
