// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/FrameBuilder.h"

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTransform.h>

#include <SoFrame.h>

namespace strandview {

namespace {

double sizeOf(const Frame& frame, const Style& style)
{
    return frame.size.value_or(2 * style.glyphSize);
}

} // namespace

const char* FrameBuilder::getWork() const { return "Building frame"; }

SbBox3f FrameBuilder::getReach(std::size_t index) const
{
    const Frame& shownFrame = datum(index);
    const double heads = 1.1; // beside the ends
    return boxAround(frame.placement.toScene(shownFrame.point),
                     heads * frame.scaled(sizeOf(shownFrame, frame.style)));
}

ShownDatum FrameBuilder::makeNodes(std::size_t index)
{
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(new SoTransform);
    shown.node = new SoFrame({1, 0, 0}, {0, 0.8, 0}, {0, 0, 1});
    shown.group->addChild(shown.node);
    updateNodes(index, shown);
    return shown;
}

void FrameBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    const Frame& shownFrame = datum(index);
    const float size = float(frame.scaled(sizeOf(shownFrame, frame.style)));
    auto* transform = static_cast<SoTransform*>(shown.group->getChild(0));
    transform->translation = toSbVec3f(frame.placement.toScene(shownFrame.point));
    transform->rotation = toSbRotation(shownFrame.rotation);
    transform->scaleFactor = SbVec3f(size, size, size);
}

} // namespace strandview
