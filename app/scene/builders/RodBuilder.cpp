// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/RodBuilder.h"

#include <utility>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include "scene/Colouring.h"
#include "scene/curveFaults.h"

namespace strandview {

namespace {

// Made frames are shown only if somebody asks for a ribbon.
bool showsRibbon(const Style& style, const Rod& rod)
{
    return style.showRibbon && (rod.hasFrames || style.showMadeFrames);
}

// "rod.txt:2: rod 1, line 7", "rod.json: rods[0].points[5]".
std::string nameOfPoint(const Rod& rod, std::size_t point)
{
    if (!rod.lines.empty())
        return rod.origin + ", line " + std::to_string(rod.lines[point]);
    const std::size_t index = rod.indices.empty() ? point : rod.indices[point];
    return rod.origin + ".points[" + std::to_string(index) + "]";
}

// Material 0 is the tube's, material 1 the ribbon's.
SoMaterial* makeMaterial(const Style& style, std::size_t index)
{
    auto* material = new SoMaterial;
    material->diffuseColor.set1Value(0, toSbColor(tubeColour(style, index)));
    material->diffuseColor.set1Value(1, toSbColor(style.ribbonColour));
    return material;
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
        SoRod::makeMeshes(computed.points, rod.rotations, placement.scale * style.radius,
                          placement.scale * style.ribbonWidth, style.slices, style.subsegments,
                          style.twoSidedRibbon, rod.isClosed);
    const NamedCurve curve{rod.points, &rod.rotations,
                           [&rod](std::size_t point) { return nameOfPoint(rod, point); }};
    error = findFault(*computed.meshes.tube,
                      showsRibbon(style, rod) ? computed.meshes.ribbon.get() : nullptr,
                      style.subsegments, style.ribbonWidth, curve);
    return computed;
}

const char* RodBuilder::getWork() const { return "Showing rod"; }

SbBox3f RodBuilder::getReach(std::size_t index) const
{
    const SoRod::Meshes& meshes = frame.geometry.rods[index].meshes;
    SbBox3f box = meshes.tube->getBBox();
    box.extendBy(meshes.ribbon->getBBox());
    return box;
}

ShownDatum RodBuilder::makeNodes(std::size_t index)
{
    const Style& style = frame.style;
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(makeMaterial(style, index));
    shown.node =
        new SoRod(frame.scaled(style.radius), frame.scaled(style.ribbonWidth), style.slices,
                  style.subsegments, style.showTube, false, style.twoSidedRibbon);
    shown.group->addChild(shown.node);
    shown.centralTube = &centralTube;
    updateNodes(index, shown);
    return shown;
}

void RodBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    auto* node = static_cast<SoRod*>(shown.node);
    SceneGeometry::Rod& computed = frame.geometry.rods[index];
    node->showRibbon(showsRibbon(frame.style, datum(index)));
    node->setClosed(datum(index).isClosed);
    node->setData(std::move(computed.points), datum(index).rotations, std::move(computed.meshes));
    if (hasDataColours(index)) {
        setDataColours(index, shown);
    } else if (shown.colours) {
        SoNode* own = shown.colours->getChild(0);
        own->ref(); // while the choice that holds it goes
        shown.group->replaceChild(0, own);
        own->unrefNoDelete();
        shown.colours = nullptr;
    }
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
