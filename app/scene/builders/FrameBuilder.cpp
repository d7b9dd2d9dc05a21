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

std::size_t FrameBuilder::count() const { return frame.data.frames.size(); }

std::string FrameBuilder::getName(std::size_t index) const
{
    return frame.data.frames[index].origin;
}

SbBox3f FrameBuilder::getReach(std::size_t index) const
{
    const Frame& datum = frame.data.frames[index];
    const double heads = 1.1; // beside the ends
    return boxAround(frame.placement.toScene(datum.point),
                     heads * frame.scaled(sizeOf(datum, frame.style)));
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
    const Frame& datum = frame.data.frames[index];
    const float size = float(frame.scaled(sizeOf(datum, frame.style)));
    auto* transform = static_cast<SoTransform*>(shown.group->getChild(0));
    transform->translation = toSbVec3f(frame.placement.toScene(datum.point));
    transform->rotation = toSbRotation(datum.rotation);
    transform->scaleFactor = SbVec3f(size, size, size);
}

} // namespace strandview
