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

// In the scene: a head of the usual form, but of at most half the arrow.
struct Form
{
    Form(const FrameToShow& frame, const Arrow& arrow)
        : from(frame.placement.toScene(arrow.from)),
          to(frame.placement.toScene(arrow.to)),
          radius(frame.scaled(arrow.radius.value_or(frame.style.glyphSize / 8))),
          headRadius(2.2 * radius),
          headLength(std::min(5 * radius, 0.5 * (to - from).getNorm()))
    {}

    Vector3<double> from, to;
    double radius, headRadius, headLength;
};

SoMaterial& materialOf(const ShownDatum& shown)
{
    return *static_cast<SoMaterial*>(shown.group->getChild(0));
}

void setColour(const ShownDatum& shown, const SbColor& colour)
{
    materialOf(shown).ambientColor = colour;
    materialOf(shown).diffuseColor = colour;
}

SbColor getColour(const ShownDatum& shown) { return materialOf(shown).diffuseColor[0]; }

} // namespace

const char* ArrowBuilder::getWork() const { return "Building arrow"; }

std::string ArrowBuilder::check(std::size_t index) const
{
    const Arrow& arrow = datum(index);
    return checkColour(arrow.colour, arrow.origin);
}

SbBox3f ArrowBuilder::getReach(std::size_t index) const
{
    const Form form(frame, datum(index));
    SbBox3f box = boxAround(form.from, form.headRadius);
    box.extendBy(boxAround(form.to, form.headRadius));
    return box;
}

ShownDatum ArrowBuilder::makeNodes(std::size_t index)
{
    const Arrow& arrow = datum(index);
    const Vector3<double> colour = toVector(glyphColour(arrow.colour));
    const Form form(frame, arrow);
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(createMaterial(colour, colour, {1, 1, 1}));
    shown.node = new SoArrow(form.from, form.to, form.radius, form.headRadius, form.headLength);
    shown.group->addChild(shown.node);
    shown.setColour = &setColour;
    shown.getColour = &getColour;
    return shown;
}

void ArrowBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    const Arrow& arrow = datum(index);
    const SbColor colour = toSbColor(glyphColour(arrow.colour));
    auto* material = static_cast<SoMaterial*>(shown.group->getChild(0));
    material->ambientColor = colour;
    material->diffuseColor = colour;
    const Form form(frame, arrow);
    static_cast<SoArrow*>(shown.node)
        ->setArrow(form.from, form.to, form.radius, form.headRadius, form.headLength);
}

} // namespace strandview
