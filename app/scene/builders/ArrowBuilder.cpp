// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/ArrowBuilder.h"

#include <algorithm>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>

#include <SoArrow.h>
#include <global.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

double radiusOf(const Arrow& arrow, const Style& style)
{
    return arrow.radius.value_or(style.glyphSize / 8);
}

const double HEAD_RADIUS = 2.2; // of the shaft's

} // namespace

const char* ArrowBuilder::getWork() const { return "Building arrow"; }

std::size_t ArrowBuilder::count() const { return frame.data.arrows.size(); }

std::string ArrowBuilder::getName(std::size_t index) const
{
    return frame.data.arrows[index].origin;
}

std::string ArrowBuilder::check(std::size_t index) const
{
    const Arrow& arrow = frame.data.arrows[index];
    return checkColour(arrow.colour, arrow.origin);
}

SbBox3f ArrowBuilder::getReach(std::size_t index) const
{
    const Arrow& arrow = frame.data.arrows[index];
    const double reach = HEAD_RADIUS * frame.scaled(radiusOf(arrow, frame.style));
    SbBox3f box = boxAround(frame.placement.toScene(arrow.from), reach);
    box.extendBy(boxAround(frame.placement.toScene(arrow.to), reach));
    return box;
}

ShownDatum ArrowBuilder::makeNodes(std::size_t index)
{
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(createMaterial({}, {}, {1, 1, 1}));
    shown.node = new SoArrow({0, 0, 0}, {0, 0, 0}, 0, 0, 0);
    shown.group->addChild(shown.node);
    updateNodes(index, shown);
    return shown;
}

void ArrowBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    const Arrow& arrow = frame.data.arrows[index];
    const SbColor colour = toSbColor(glyphColour(arrow.colour));
    auto* material = static_cast<SoMaterial*>(shown.group->getChild(0));
    material->ambientColor = colour;
    material->diffuseColor = colour;

    const Vector3<double> from = frame.placement.toScene(arrow.from);
    const Vector3<double> to = frame.placement.toScene(arrow.to);
    // A head of the usual form, but of at most half the arrow.
    const double radius = frame.scaled(radiusOf(arrow, frame.style));
    const double headLength = std::min(5 * radius, 0.5 * (to - from).getNorm());
    static_cast<SoArrow*>(shown.node)->setArrow(from, to, radius, HEAD_RADIUS * radius, headLength);
}

} // namespace strandview
