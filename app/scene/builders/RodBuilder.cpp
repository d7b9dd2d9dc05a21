// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/RodBuilder.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <SoArrow.h>

#include "scene/Colouring.h"
#include "scene/builders/DataColours.h"
#include "scene/curveFaults.h"

namespace strandview {

namespace {

// Made frames are shown only if somebody asks for a ribbon.
bool showsRibbon(const ThingStyle& style, const Rod& rod)
{
    return style.showRibbon && !rod.isBackbone && (rod.hasFrames || style.showMadeFrames);
}

bool showsTube(const ThingStyle& style, const Rod& rod)
{
    return rod.isBackbone ? style.showBackbones : style.showTube;
}

double ribbonWidthOf(const Rod& rod, const ThingStyle& style)
{
    return style.isRibbonWidthAsked
               ? style.ribbonWidth
               : style.ribbonWidth * (RodBuilder::radiusOf(rod, style) / style.radius);
}

// "rod.txt:2: rod 1, line 7", "rod.json: rods[0].points[5]".
std::string nameOfPoint(const Rod& rod, std::size_t point)
{
    if (!rod.lines.empty())
        return rod.origin + ", line " + std::to_string(rod.lines[point]);
    const std::size_t index = rod.indices.empty() ? point : rod.indices[point];
    return rod.origin + ".points[" + std::to_string(index) + "]";
}

BiarcTubeMesh* centralTube(const SoNode& node)
{
    return static_cast<const SoRod&>(node).getTubeMesh();
}

// Material 0 is the tube's.
SoMFColor& ownColours(const ShownDatum& shown)
{
    SoNode* const own = shown.colours ? shown.colours->getChild(0) : shown.group->getChild(0);
    return static_cast<SoMaterial*>(own)->diffuseColor;
}

void setColour(const ShownDatum& shown, const SbColor& colour)
{
    ownColours(shown).set1Value(0, colour);
}

SbColor getColour(const ShownDatum& shown) { return ownColours(shown)[0]; }

} // namespace

SceneGeometry::Rod RodBuilder::compute(const Rod& rod, const ThingStyle& style,
                                       const Placement& placement, std::string& error)
{
    SceneGeometry::Rod computed;
    computed.points = placement.toScene(rod.points);
    computed.rotations = rod.rotations;
    computed.meshes =
        SoRod::makeMeshes(computed.points, rod.rotations, placement.scale * radiusOf(rod, style),
                          placement.scale * ribbonWidthOf(rod, style), style.slices,
                          style.subsegments, style.twoSidedRibbon, rod.isClosed);
    const NamedCurve curve{rod.points, &rod.rotations,
                           [&rod](std::size_t point) { return nameOfPoint(rod, point); }};
    error = findFault(*computed.meshes.tube,
                      showsRibbon(style, rod) ? computed.meshes.ribbon.get() : nullptr,
                      style.subsegments, ribbonWidthOf(rod, style), curve);
    return computed;
}

double RodBuilder::radiusOf(const Rod& rod, const ThingStyle& style)
{
    if (style.isRadiusAsked)
        return style.radius;
    return rod.radius.value_or(rod.isBackbone ? style.backboneRadius : style.radius);
}

CurveRows RodBuilder::rowsOf(const ShownDatum& shown)
{
    const auto& rod = static_cast<const SoRod&>(*shown.node);
    return strandview::rowsOf(*rod.getTubeMesh(), *rod.getRibbonMesh());
}

std::string RodBuilder::check(std::size_t index) const
{
    return checkColour(datum(index).colour, datum(index).origin);
}

const char* RodBuilder::getWork() const { return "Showing rod"; }

SbBox3f RodBuilder::getReach(std::size_t index) const
{
    const Rod& rod = datum(index);
    const SoRod::Meshes& meshes = frame.geometry.rods[index].meshes;
    SbBox3f box = meshes.tube->getBBox();
    if (showsRibbon(styleOf(index), rod))
        box.extendBy(meshes.ribbon->getBBox());
    if (rod.isBackbone)
        box.extendBy(headOf(index).getBox());
    return box;
}

ShownDatum RodBuilder::makeNodes(std::size_t index)
{
    const ThingStyle style = styleOf(index);
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(new SoMaterial);
    shown.node =
        new SoRod(0, 0, style.slices, style.subsegments, false, false, style.twoSidedRibbon);
    shown.group->addChild(shown.node);
    shown.centralTube = &centralTube;
    shown.setColour = &setColour;
    shown.getColour = &getColour;
    updateNodes(index, shown);
    return shown;
}

void RodBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    auto* node = static_cast<SoRod*>(shown.node);
    const Rod& rod = datum(index);
    const ThingStyle style = styleOf(index);
    SceneGeometry::Rod& computed = frame.geometry.rods[index];
    node->setTubeRadius(frame.scaled(radiusOf(rod, style)));
    node->setRibbonWidth(frame.scaled(ribbonWidthOf(rod, style)));
    node->showTube(showsTube(style, rod));
    node->showRibbon(showsRibbon(style, rod));
    node->setClosed(rod.isClosed);
    node->setData(std::move(computed.points), std::move(computed.rotations),
                  std::move(computed.meshes));
    recolour(index, shown);
}

void RodBuilder::recolour(std::size_t index, ShownDatum& shown)
{
    setOwnColours(index, shown.colours ? shown.colours->getChild(0) : shown.group->getChild(0));
    if (hasDataColours(index)) {
        setDataColours(index, shown);
    } else if (shown.colours) {
        dropColourChoice(*shown.group, 0);
        shown.colours = nullptr;
    }
    showHead(index, shown);
}

// Material 0 is the tube's, material 1 the ribbon's.
void RodBuilder::setOwnColours(std::size_t index, SoNode* material) const
{
    const SbColor colours[] = {toSbColor(rodColour(datum(index), index, frame.style, molecules)),
                               toSbColor(styleOf(index).ribbonColour)};
    static_cast<SoMaterial*>(material)->diffuseColor.setValues(0, 2, colours);
}

ArrowHead RodBuilder::headOf(std::size_t index) const
{
    const Rod& rod = datum(index);
    return ArrowHead(frame.placement.toScene(rod.points.back()), rod.rotations.back(),
                     frame.scaled(radiusOf(rod, styleOf(index))));
}

// The third of the nodes, where there is one.
void RodBuilder::showHead(std::size_t index, ShownDatum& shown) const
{
    const bool isThere = shown.group->getNumChildren() > 2;
    if (!datum(index).isBackbone || !styleOf(index).showBackbones) {
        if (isThere)
            shown.group->removeChild(2);
        return;
    }
    if (!isThere)
        shown.group->addChild(makeHead());
    const auto* head = static_cast<SoSeparator*>(shown.group->getChild(2));
    setHeadColours(*head, static_cast<const SoRod&>(*shown.node), shown.colours);
    headOf(index).show(*arrowOf(*head));
}

bool RodBuilder::hasDataColours(std::size_t index) const
{
    return frame.colouring && !frame.colouring->ofRod(index).empty();
}

void RodBuilder::setDataColours(std::size_t index, ShownDatum& shown) const
{
    if (!shown.colours) {
        shown.colours = putColourChoice(*shown.group, 0);
        shown.colours->whichChild = frame.areDataColoursShown ? 1 : 0;
    }
    std::vector<SceneGeometry::Rod>& computed = frame.geometry.rods;
    setRowColours(*frame.colouring, {&frame.colouring->ofRod(index)}, {rowsOf(shown)},
                  index < computed.size() ? &computed[index].colours : nullptr,
                  dataMaterial(*shown.colours));
}

} // namespace strandview
