// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_FRAMEBUILDER_H
#define STRANDVIEW_APP_SCENE_BUILDERS_FRAMEBUILDER_H

#include "scene/builders/DatumBuilder.h"

namespace strandview {

/// Frames: three arrows each.
class FrameBuilder : public BuilderOf<&Configuration::frames>
{
public:
    using BuilderOf::BuilderOf;

    ThingKind getKind() const override { return ThingKind::FRAME; }
    const char* getWork() const override;
    SbBox3f getReach(std::size_t index) const override;

protected:
    ShownDatum makeNodes(std::size_t index) override;
    void updateNodes(std::size_t index, ShownDatum& shown) override;
};

} // namespace strandview

#endif
