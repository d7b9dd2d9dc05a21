// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_LONEBASEBUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_LONEBASEBUILDER_H

#include "scene/builders/DatumBuilder.h"

namespace strandview {

/// Bases in no pair: slabs, boxes and atoms as those of a DNA, all bases in the nodes of one datum.
class LoneBaseBuilder : public BuilderOf<&Configuration::loneBases>
{
public:
    using BuilderOf::BuilderOf;

    ThingKind getKind() const override { return ThingKind::LONE_BASES; }
    const char* getWork() const override;
    std::size_t count() const override;
    SbBox3f getReach(std::size_t index) const override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;
    SbBox3f findBox(std::size_t index, const ShownDatum& shown) override;
};

} // namespace strandview

#endif
