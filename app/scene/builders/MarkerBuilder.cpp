// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/MarkerBuilder.h"

#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <Inventor/nodes/SoTranslation.h>

#include <SoMarker.h>

namespace strandview {

namespace {

double sizeOf(const Marker& marker, const Style& style)
{
    return marker.size.value_or(style.glyphSize);
}

// Shapes that are closed: of a transparent one the far side does not show.
SoShapeHints* makeHints()
{
    auto* hints = new SoShapeHints;
    hints->vertexOrdering = SoShapeHints::COUNTERCLOCKWISE;
    hints->shapeType = SoShapeHints::SOLID;
    return hints;
}

void setSolid(const ShownDatum& shown, bool solid)
{
    auto* hints = static_cast<SoShapeHints*>(shown.group->getChild(0));
    hints->shapeType = solid ? SoShapeHints::SOLID : SoShapeHints::UNKNOWN_SHAPE_TYPE;
}

void setColour(const ShownDatum& shown, const SbColor& colour)
{
    static_cast<SoMarker*>(shown.node)
        ->setColour(double(colour[0]), double(colour[1]), double(colour[2]));
}

SbColor getColour(const ShownDatum& shown)
{
    double red = 0, green = 0, blue = 0;
    static_cast<const SoMarker*>(shown.node)->getColour(red, green, blue);
    return SbColor(float(red), float(green), float(blue));
}

} // namespace

MarkerBuilder::~MarkerBuilder()
{
    if (scale)
        scale->unref();
}

const char* MarkerBuilder::getWork() const { return "Building marker"; }

std::string MarkerBuilder::getName(std::size_t index) const
{
    const Marker& marker = datum(index);
    return marker.origin + ": id " + std::to_string(marker.id);
}

std::string MarkerBuilder::check(std::size_t index) const
{
    const Marker& marker = datum(index);
    return checkColour(marker.colour, marker.origin);
}

SbBox3f MarkerBuilder::getReach(std::size_t index) const
{
    const Marker& marker = datum(index);
    return boxAround(frame.placement.toScene(marker.point),
                     frame.scaled(sizeOf(marker, frame.style))); // a cross is 1.6 sizes long
}

ShownDatum MarkerBuilder::makeNodes(std::size_t index)
{
    const Marker& marker = datum(index);
    if (!scale) {
        scale = new SoScale;
        scale->ref();
    }
    auto* node = new SoMarker(marker.id, toVector(glyphColour(marker.colour)),
                              frame.scaled(sizeOf(marker, frame.style)), marker.transparency,
                              SoMarker::Shape(marker.shape));
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(makeHints());
    shown.group->addChild(SoMarker::wrap(node, scale, frame.placement.toScene(marker.point)));
    shown.node = node;
    shown.setColour = &setColour;
    shown.getColour = &getColour;
    shown.setSolid = &setSolid;
    return shown;
}

void MarkerBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    const Marker& marker = datum(index);
    const Colour colour = glyphColour(marker.colour);
    auto* node = static_cast<SoMarker*>(shown.node);
    node->setId(marker.id);
    node->setColour(double(colour.red), double(colour.green), double(colour.blue));
    node->setSize(frame.scaled(sizeOf(marker, frame.style)));
    node->setTransparency(marker.transparency);
    node->setShape(SoMarker::Shape(marker.shape));
    auto* placed = static_cast<SoSeparator*>(shown.group->getChild(1));
    static_cast<SoTranslation*>(placed->getChild(0))->translation =
        toSbVec3f(frame.placement.toScene(marker.point));
}

} // namespace strandview
