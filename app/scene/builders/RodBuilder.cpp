// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/RodBuilder.h"

#include <algorithm>
#include <optional>
#include <utility>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <SoArrow.h>

#include "scene/Colouring.h"
#include "scene/curveFaults.h"

namespace strandview {

namespace {

// Made frames are shown only if somebody asks for a ribbon.
bool showsRibbon(const Style& style, const Rod& rod)
{
    return style.showRibbon && !rod.isBackbone && (rod.hasFrames || style.showMadeFrames);
}

bool showsTube(const Style& style, const Rod& rod)
{
    return rod.isBackbone ? showsBackbones(style) : style.showTube;
}

double radiusOf(const Rod& rod, const Style& style)
{
    if (style.isRadiusAsked)
        return style.radius;
    return rod.radius.value_or(rod.isBackbone ? style.backboneRadius : style.radius);
}

double ribbonWidthOf(const Rod& rod, const Style& style)
{
    return style.isRibbonWidthAsked ? style.ribbonWidth
                                    : style.ribbonWidth * (radiusOf(rod, style) / style.radius);
}

// "rod.txt:2: rod 1, line 7", "rod.json: rods[0].points[5]".
std::string nameOfPoint(const Rod& rod, std::size_t point)
{
    if (!rod.lines.empty())
        return rod.origin + ", line " + std::to_string(rod.lines[point]);
    const std::size_t index = rod.indices.empty() ? point : rod.indices[point];
    return rod.origin + ".points[" + std::to_string(index) + "]";
}

// One material per row: those of the tube, then those of the ribbon.
void setRowColours(const SoRod& rod, const Colouring& colouring, std::size_t index,
                   SoMaterial* material)
{
    const std::vector<double>& places = colouring.places[index];
    const BiarcTubeMesh& tube = *rod.getTubeMesh();
    const BiarcRibbonMesh& ribbon = *rod.getRibbonMesh();
    material->ambientColor.setNum(1); // of fewer rows than before none is left
    material->diffuseColor.setNum(1);
    colourRows(colouring.ramp, tube.getParamValues(), places, tube.getInterpParamValues(), 0,
               material);
    if (isFinite(ribbon)) // a hidden one need not be
        colourRows(colouring.ramp, ribbon.getParamValues(), places, ribbon.getInterpParamValues(),
                   tube.getHeight(), material);
}

// Child 0 gives the rod its own colours, child 1 those of data.
SoSwitch* makeChoice(SoNode* own)
{
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX;
    auto* ofData = new SoGroup;
    ofData->addChild(new SoMaterial);
    ofData->addChild(binding);
    auto* choice = new SoSwitch;
    choice->addChild(own);
    choice->addChild(ofData);
    return choice;
}

SoMaterial* dataMaterial(const SoSwitch& choice)
{
    return static_cast<SoMaterial*>(static_cast<SoGroup*>(choice.getChild(1))->getChild(0));
}

// A head that has the colour of the tube's end where colours of data are shown.
SoSeparator* makeHead()
{
    auto* ofData = new SoGroup;
    ofData->addChild(new SoMaterial);
    ofData->addChild(new SoMaterialBinding);
    auto* choice = new SoSwitch;
    choice->addChild(new SoGroup);
    choice->addChild(ofData);
    choice->whichChild = 0;
    auto* head = new SoSeparator;
    head->addChild(choice);
    head->addChild(new SoArrow({}, {}, 0, 0, 0));
    return head;
}

// Lets the head follow the choice of the rod's colours, or without one its own.
void setHeadColours(const SoSeparator& head, const SoRod& rod, SoSwitch* choice)
{
    auto* colours = static_cast<SoSwitch*>(head.getChild(0));
    if (!choice) {
        colours->whichChild.disconnect();
        colours->whichChild = 0;
        dataMaterial(*colours)->setToDefaults();
        return;
    }
    const SoMFColor& rows = dataMaterial(*choice)->diffuseColor;
    const int last = std::min(rod.getTubeMesh()->getHeight(), rows.getNum()) - 1;
    dataMaterial(*colours)->diffuseColor = rows[last];
    colours->whichChild.connectFrom(&choice->whichChild);
}

BiarcTubeMesh* centralTube(const SoNode& node)
{
    return static_cast<const SoRod&>(node).getTubeMesh();
}

} // namespace

SceneGeometry::Rod RodBuilder::compute(const Rod& rod, const Style& style,
                                       const Placement& placement, std::string& error)
{
    SceneGeometry::Rod computed;
    computed.points = placement.toScene(rod.points);
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
    if (showsRibbon(frame.style, rod))
        box.extendBy(meshes.ribbon->getBBox());
    if (rod.isBackbone)
        box.extendBy(headOf(index).getBox());
    return box;
}

ShownDatum RodBuilder::makeNodes(std::size_t index)
{
    const Style& style = frame.style;
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(new SoMaterial);
    shown.node =
        new SoRod(0, 0, style.slices, style.subsegments, false, false, style.twoSidedRibbon);
    shown.group->addChild(shown.node);
    shown.centralTube = &centralTube;
    updateNodes(index, shown);
    return shown;
}

void RodBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    auto* node = static_cast<SoRod*>(shown.node);
    const Rod& rod = datum(index);
    SceneGeometry::Rod& computed = frame.geometry.rods[index];
    node->setTubeRadius(frame.scaled(radiusOf(rod, frame.style)));
    node->setRibbonWidth(frame.scaled(ribbonWidthOf(rod, frame.style)));
    node->showTube(showsTube(frame.style, rod));
    node->showRibbon(showsRibbon(frame.style, rod));
    node->setClosed(rod.isClosed);
    node->setData(std::move(computed.points), rod.rotations, std::move(computed.meshes));
    setOwnColours(index, shown.colours ? shown.colours->getChild(0) : shown.group->getChild(0));
    if (hasDataColours(index)) {
        setDataColours(index, shown);
    } else if (shown.colours) {
        SoNode* own = shown.colours->getChild(0);
        own->ref(); // while the choice that holds it goes
        shown.group->replaceChild(0, own);
        own->unrefNoDelete();
        shown.colours = nullptr;
    }
    showHead(index, shown);
}

Colour RodBuilder::ownColour(std::size_t index) const
{
    const Rod& rod = datum(index);
    const std::optional<Colour> ofFile = rod.colour ? parseColour(*rod.colour) : std::nullopt;
    if (ofFile && !frame.style.tubeColour)
        return *ofFile;
    return rod.isBackbone ? strandColour(frame.style, molecules.colourOf(rod.molecule, index))
                          : tubeColour(frame.style, index);
}

// Material 0 is the tube's, material 1 the ribbon's.
void RodBuilder::setOwnColours(std::size_t index, SoNode* material) const
{
    const SbColor colours[] = {toSbColor(ownColour(index)), toSbColor(frame.style.ribbonColour)};
    static_cast<SoMaterial*>(material)->diffuseColor.setValues(0, 2, colours);
}

ArrowHead RodBuilder::headOf(std::size_t index) const
{
    const Rod& rod = datum(index);
    return ArrowHead(frame.placement.toScene(rod.points.back()), rod.rotations.back(),
                     frame.scaled(radiusOf(rod, frame.style)));
}

// The third of the nodes, where there is one.
void RodBuilder::showHead(std::size_t index, ShownDatum& shown) const
{
    const bool isThere = shown.group->getNumChildren() > 2;
    if (!datum(index).isBackbone || !showsBackbones(frame.style)) {
        if (isThere)
            shown.group->removeChild(2);
        return;
    }
    if (!isThere)
        shown.group->addChild(makeHead());
    const auto* head = static_cast<SoSeparator*>(shown.group->getChild(2));
    setHeadColours(*head, static_cast<const SoRod&>(*shown.node), shown.colours);
    headOf(index).show(*static_cast<SoArrow*>(head->getChild(1)));
}

bool RodBuilder::hasDataColours(std::size_t index) const
{
    return frame.colouring && !frame.colouring->places[index].empty();
}

void RodBuilder::setDataColours(std::size_t index, ShownDatum& shown) const
{
    if (!shown.colours) {
        shown.colours = makeChoice(shown.group->getChild(0));
        shown.colours->whichChild = frame.areDataColoursShown ? 1 : 0;
        shown.group->replaceChild(0, shown.colours);
    }
    setRowColours(static_cast<const SoRod&>(*shown.node), *frame.colouring, index,
                  dataMaterial(*shown.colours));
}

} // namespace strandview
