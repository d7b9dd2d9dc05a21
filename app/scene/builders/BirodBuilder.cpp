// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/BirodBuilder.h"

#include <initializer_list>
#include <limits>
#include <utility>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/PickedPlace.h"
#include "scene/builders/BirodStrands.h"
#include "scene/builders/DataColours.h"
#include "scene/curveFaults.h"

namespace strandview {

namespace {

const int OWN_COLOURS = 1; // the child of the group, behind their binding

// "pair.json: birods[0].strand1.points[5]" for the member "strand1".
std::string nameOfPoint(const Birod& birod, const std::string& member, std::size_t point)
{
    const std::size_t index = birod.indices.empty() ? point : birod.indices[point];
    return birod.origin + "." + member + ".points[" + std::to_string(index) + "]";
}

// What is wrong with one of a birod's three curves.
std::string findFault(const Birod& birod, const SoBirod::Meshes& meshes, const ThingStyle& style)
{
    struct Strand
    {
        const char* member;
        BiarcTubeMesh& tube;
        const BiarcRibbonMesh* ribbon;
        const std::vector<algebra3d::Vector3<double>>& points;
        const std::vector<algebra3d::Quaternion<double>>* rotations;
    };
    for (const Strand& strand :
         {Strand{"average", *meshes.avgTube, meshes.avgRibbon.get(), birod.points,
                 &birod.rotations},
          Strand{"strand1", *meshes.tube1, meshes.ribbon1.get(), birod.points1, nullptr},
          Strand{"strand2", *meshes.tube2, meshes.ribbon2.get(), birod.points2, nullptr}}) {
        const NamedCurve curve{strand.points, strand.rotations, [&](std::size_t point) {
                                   return nameOfPoint(birod, strand.member, point);
                               }};
        std::string fault = findFault(strand.tube, style.showRibbon ? strand.ribbon : nullptr,
                                      style.subsegments, style.ribbonWidth, curve);
        if (!fault.empty())
            return fault;
    }
    return "";
}

BiarcTubeMesh* centralTube(const SoNode& node)
{
    return static_cast<const SoBirod&>(node).getAvgTubeMesh();
}

BiarcTubeMesh* strandTube(const SoNode& node, int strand)
{
    const auto& birod = static_cast<const SoBirod&>(node);
    return strand == 1 ? birod.getTube1Mesh() : birod.getTube2Mesh();
}

SoMFColor& ownColours(const ShownDatum& shown) { return ownMaterial(shown).diffuseColor; }

// Of the rows of the three tubes; those of the ribbons are between them.
void setColour(const ShownDatum& shown, const SbColor& colour)
{
    const auto& birod = static_cast<const SoBirod&>(*shown.node);
    SoMFColor& colours = ownColours(shown);
    int row = 0;
    for (const auto& [tube, ribbon] :
         {std::pair<const Mesh*, const Mesh*>(birod.getAvgTubeMesh(), birod.getAvgRibbonMesh()),
          {birod.getTube1Mesh(), birod.getRibbon1Mesh()},
          {birod.getTube2Mesh(), birod.getRibbon2Mesh()}}) {
        const std::vector<SbColor> all(std::size_t(tube->getHeight()), colour);
        colours.setValues(row, tube->getHeight(), all.data());
        row += tube->getHeight() + ribbon->getHeight();
    }
}

SbColor getColour(const ShownDatum& shown) { return ownColours(shown)[0]; }

// The strand, or 0 for the average, whose surface is nearest, of those that are not hidden.
void placeIn(const ShownDatum& shown, const SoPickedPoint& picked, int /*index*/,
             PickedPlace& place)
{
    const SbVec3f point = picked.getPoint();
    const auto distance = [&](BiarcTubeMesh& tube, int strand) {
        if (!shown.partLooks.isShown(partOf(ThingKind::BIROD, strand)))
            return std::numeric_limits<double>::infinity();
        return nearestOnTube(tube, {point[0], point[1], point[2]}).distance - tube.getRadius();
    };
    double nearest = distance(*centralTube(*shown.node), 0);
    for (const int strand : {1, 2}) {
        const double next = distance(*strandTube(*shown.node, strand), strand);
        if (next < nearest) {
            nearest = next;
            place.strand = strand;
        }
    }
}

} // namespace

SceneGeometry::Birod BirodBuilder::compute(const Birod& birod, std::size_t index,
                                           const Style& style, const Placement& placement,
                                           std::string& error)
{
    const ThingStyle own = strandview::styleOf(style, {ThingKind::BIROD, index});
    const auto ofPart = [&](ThingPart part) {
        return strandview::styleOf(style, {ThingKind::BIROD, index, part});
    };
    const ThingStyle average = ofPart(ThingPart::AVERAGE), first = ofPart(ThingPart::STRAND_1),
                     second = ofPart(ThingPart::STRAND_2);
    SceneGeometry::Birod computed;
    computed.data = {placement.toScene(birod.points),  birod.rotations,
                     placement.toScene(birod.points1), birod.rotations1,
                     placement.toScene(birod.points2), birod.rotations2};
    computed.meshes = SoBirod::makeMeshes(
        computed.data, placement.scale * average.radius, placement.scale * first.radius,
        placement.scale * average.ribbonWidth, placement.scale * own.ribbonWidth, 0, 0, own.slices,
        own.subsegments, own.twoSidedRibbon);
    if (second.radius != first.radius && computed.meshes.tube2) {
        computed.meshes.tube2 =
            std::make_unique<BiarcTubeMesh>(computed.data.points2, placement.scale * second.radius,
                                            own.slices, own.subsegments, false, false);
        computed.meshes.tube2->forgetCurve();
    }
    error = findFault(birod, computed.meshes, own);
    return computed;
}

std::array<CurveRows, 3> BirodBuilder::rowsOf(const ShownDatum& shown)
{
    const auto& birod = static_cast<const SoBirod&>(*shown.node);
    return {strandview::rowsOf(*birod.getAvgTubeMesh(), *birod.getAvgRibbonMesh()),
            strandview::rowsOf(*birod.getTube1Mesh(), *birod.getRibbon1Mesh()),
            strandview::rowsOf(*birod.getTube2Mesh(), *birod.getRibbon2Mesh())};
}

const char* BirodBuilder::getWork() const { return "Showing birod"; }

SbBox3f BirodBuilder::getReach(std::size_t index) const
{
    const SoBirod::Meshes& meshes = frame.geometry.birods[index].meshes;
    SbBox3f box;
    for (const Mesh* mesh : std::initializer_list<const Mesh*>{
             meshes.avgTube.get(), meshes.avgRibbon.get(), meshes.tube1.get(), meshes.ribbon1.get(),
             meshes.tube2.get(), meshes.ribbon2.get()})
        box.extendBy(mesh->getBBox());
    return box;
}

ShownDatum BirodBuilder::makeNodes(std::size_t index)
{
    const ThingStyle style = styleOf(index),
                     average =
                         strandview::styleOf(frame.style, {getKind(), index, ThingPart::AVERAGE});
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_PART;
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(binding);
    shown.group->addChild(new SoMaterial);
    shown.node = new SoBirod(frame.scaled(average.radius), frame.scaled(style.radius),
                             frame.scaled(average.ribbonWidth), frame.scaled(style.ribbonWidth), 0,
                             0, style.slices, style.subsegments, style.showTube, style.showTube,
                             style.showRibbon, false, style.twoSidedRibbon);
    shown.group->addChild(shown.node);
    shown.group->addChild(makeStrandRods());
    shown.ofParts = strandsOfBirod();
    shown.centralTube = &centralTube;
    shown.strandTube = &strandTube;
    shown.setColour = &setColour;
    shown.getColour = &getColour;
    shown.placeIn = &placeIn;
    updateNodes(index, shown);
    return shown;
}

void BirodBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    auto* node = static_cast<SoBirod*>(shown.node);
    SceneGeometry::Birod& computed = frame.geometry.birods[index];
    node->setData(std::move(computed.data), std::move(computed.meshes));
    dropStrandRods(shown);
    recolour(index, shown);
}

void BirodBuilder::recolour(std::size_t index, ShownDatum& shown)
{
    SoNode* const own = shown.group->getChild(OWN_COLOURS);
    setColours(index, static_cast<const SoBirod&>(*shown.node),
               static_cast<SoMaterial*>(shown.colours ? shown.colours->getChild(0) : own));
    if (frame.colouring && !frame.colouring->ofBirod(index, 0).empty()) {
        setDataColours(index, shown);
    } else if (shown.colours) {
        dropColourChoice(*shown.group, OWN_COLOURS);
        shown.colours = nullptr;
    }
}

void BirodBuilder::setDataColours(std::size_t index, ShownDatum& shown) const
{
    if (!shown.colours) {
        shown.colours = putColourChoice(*shown.group, OWN_COLOURS);
        shown.colours->whichChild = frame.areDataColoursShown ? 1 : 0;
    }
    const std::array<CurveRows, 3> rows = rowsOf(shown);
    const Colouring& colouring = *frame.colouring;
    std::vector<SceneGeometry::Birod>& computed = frame.geometry.birods;
    setRowColours(
        colouring,
        {&colouring.ofBirod(index, 0), &colouring.ofBirod(index, 1), &colouring.ofBirod(index, 2)},
        {rows.begin(), rows.end()}, index < computed.size() ? &computed[index].colours : nullptr,
        dataMaterial(*shown.colours));
}

// A colour for each of the three tubes, and one for all ribbons; the tubes' follow those of the
// rods. A birod finds the material of a mesh behind those of the rows of all meshes before.
void BirodBuilder::setColours(std::size_t index, const SoBirod& birod, SoMaterial* material) const
{
    std::vector<SbColor> colours;
    const SbColor ribbonColour = toSbColor(styleOf(index).ribbonColour);
    const auto append = [&](const Mesh& tube, const Mesh& ribbon, int strand) {
        colours.insert(colours.end(), std::size_t(tube.getHeight()),
                       toSbColor(birodColour(index, strand, frame.data.rods.size(), frame.style)));
        colours.insert(colours.end(), std::size_t(ribbon.getHeight()), ribbonColour);
    };
    append(*birod.getAvgTubeMesh(), *birod.getAvgRibbonMesh(), 0);
    append(*birod.getTube1Mesh(), *birod.getRibbon1Mesh(), 1);
    append(*birod.getTube2Mesh(), *birod.getRibbon2Mesh(), 2);
    material->diffuseColor.setNum(int(colours.size()));
    material->diffuseColor.setValues(0, int(colours.size()), colours.data());
}

} // namespace strandview
