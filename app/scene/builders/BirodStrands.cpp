// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/BirodStrands.h"

#include <algorithm>
#include <array>
#include <memory>
#include <utility>
#include <vector>

#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <SoBirod.h>
#include <SoRod.h>

#include "scene/SoSeeThrough.h"
#include "scene/Style.h"
#include "scene/builders/DataColours.h"

namespace strandview {

namespace {

enum Child { BINDING, OWN_COLOURS, BIROD, RODS }; // of the group
enum RodChild { COLOURS, ROD };
const std::array<ThingPart, 2> STRANDS{ThingPart::STRAND_1, ThingPart::STRAND_2};

const SoBirod& birodOf(const ShownDatum& shown) { return static_cast<const SoBirod&>(*shown.node); }

SoGroup& rodsOf(const ShownDatum& shown)
{
    return *static_cast<SoGroup*>(shown.group->getChild(RODS));
}

// Its place among them.
int rodOf(ThingPart strand) { return strand == ThingPart::STRAND_1 ? 0 : 1; }

struct Meshes
{
    BiarcTubeMesh& tube;
    BiarcRibbonMesh& ribbon;

    int getHeight() const { return tube.getHeight() + ribbon.getHeight(); }
};

Meshes meshesOf(const SoBirod& birod, ThingPart part)
{
    if (part == ThingPart::STRAND_1)
        return {*birod.getTube1Mesh(), *birod.getRibbon1Mesh()};
    if (part == ThingPart::STRAND_2)
        return {*birod.getTube2Mesh(), *birod.getRibbon2Mesh()};
    return {*birod.getAvgTubeMesh(), *birod.getAvgRibbonMesh()};
}

// Of its materials: those of the meshes follow each other from the average's on.
int firstRowOf(const SoBirod& birod, ThingPart part)
{
    int row = 0;
    for (const ThingPart before : {ThingPart::AVERAGE, ThingPart::STRAND_1, ThingPart::STRAND_2}) {
        if (before == part)
            break;
        row += meshesOf(birod, before).getHeight();
    }
    return row;
}

// The same shapes as the birod has.
SoRod* makeRod(const SoBirod& birod, ThingPart part, bool showTube, bool showRibbon)
{
    const bool isAverage = part == ThingPart::AVERAGE;
    const double radius = meshesOf(birod, part).tube.getRadius();
    const double width = isAverage ? birod.getAvgRibbonWidth() : birod.getRibbonsWidth();
    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    for (int i = 0; i < birod.getPointsNum(); ++i) {
        algebra3d::Vector3<double> average, first, second;
        algebra3d::Quaternion<double> ofAverage, ofFirst, ofSecond;
        birod.getAvgFrame(average, ofAverage, i);
        birod.getFrames(first, ofFirst, second, ofSecond, i);
        points.push_back(isAverage ? average : part == ThingPart::STRAND_1 ? first : second);
        rotations.push_back(isAverage                     ? ofAverage
                            : part == ThingPart::STRAND_1 ? ofFirst
                                                          : ofSecond);
    }
    SoRod::Meshes meshes = SoRod::makeMeshes(points, rotations, radius, width, birod.getSlices(),
                                             birod.getSubsegments(), birod.isTwoSidedRibbon());
    if (!isAverage) { // whose ends follow no frame
        meshes.tube = std::make_unique<BiarcTubeMesh>(points, radius, birod.getSlices(),
                                                      birod.getSubsegments(), false, false);
        meshes.tube->forgetCurve();
    }
    auto* rod = new SoRod(radius, width, birod.getSlices(), birod.getSubsegments(), showTube,
                          showRibbon, birod.isTwoSidedRibbon());
    rod->setData(std::move(points), std::move(rotations), std::move(meshes));
    return rod;
}

// Those of some rows; of what has fewer the last.
void copyRows(const SoMFColor& from, int first, int rows, SoMFColor& to)
{
    std::vector<SbColor> colours;
    for (int row = first; row < first + rows; ++row)
        colours.push_back(from[std::min(row, from.getNum() - 1)]);
    to.setNum(rows);
    to.setValues(0, rows, colours.data());
}

// As the birod's rows are, in colours of its own and of data.
void colourRod(const ShownDatum& shown, ThingPart part, SoSwitch& colours)
{
    const SoBirod& birod = birodOf(shown);
    const int first = firstRowOf(birod, part), rows = meshesOf(birod, part).getHeight();
    const auto copyTo = [&](int child, const SoMaterial& from) {
        auto& to = *static_cast<SoMaterial*>(colours.getChild(child));
        copyRows(from.ambientColor, first, rows, to.ambientColor);
        copyRows(from.diffuseColor, first, rows, to.diffuseColor);
    };
    copyTo(0, ownMaterial(shown));
    if (shown.colours) {
        copyTo(1, *dataMaterial(*shown.colours));
        colours.whichChild.connectFrom(&shown.colours->whichChild);
    } else {
        colours.whichChild.disconnect();
        colours.whichChild = 0;
    }
}

SoSeparator* makeStrandRod(const SoBirod& birod, ThingPart part)
{
    auto* colours = new SoSwitch;
    for (int i = 0; i < 2; ++i)
        colours->addChild(new SoMaterial);
    auto* separator = new SoSeparator;
    separator->addChild(colours);
    separator->addChild(makeRod(birod, part, true, false));
    return separator;
}

void dropRod(SoGroup& rods, int which)
{
    if (static_cast<SoSeparator*>(childOf(rods, which))->getNumChildren() > 0)
        rods.replaceChild(which, new SoSeparator);
}

void showRod(const ShownDatum& shown, ThingPart part, double transparency)
{
    SoGroup& rods = rodsOf(shown);
    const int which = rodOf(part);
    auto* separator = static_cast<SoSeparator*>(childOf(rods, which));
    if (separator->getNumChildren() == 0) {
        separator = makeStrandRod(birodOf(shown), part);
        rods.replaceChild(which, separator);
    }
    colourRod(shown, part, *static_cast<SoSwitch*>(separator->getChild(COLOURS)));
    seeThrough(transparency, rods, which);
}

// Strands as rods beside the average, where that is not as both of them are.
void show(const ShownDatum& shown, const PartLooks& looks, const ThingStyle& style,
          const DnaLook& /*dna*/)
{
    auto& birod = static_cast<SoBirod&>(*shown.node);
    const double transparency = looks.transparencyOf(ThingPart::AVERAGE);
    const bool areTogether = std::all_of(STRANDS.begin(), STRANDS.end(), [&](ThingPart strand) {
        return looks.isShown(strand) && looks.transparencyOf(strand) == transparency;
    });
    const bool showsAverage = looks.isShown(ThingPart::AVERAGE);
    const bool tube = style.showTube && showsAverage, ribbon = style.showRibbon && showsAverage,
               tubes = style.showTube && areTogether;
    if (birod.isShowingAvgTube() != tube) // drawing follows who touches it
        birod.showAvgTube(tube);
    if (birod.isShowingAvgRibbon() != ribbon)
        birod.showAvgRibbon(ribbon);
    if (birod.isShowingTubes() != tubes)
        birod.showTubes(tubes);
    seeThrough(transparency, *shown.group, BIROD);
    for (const ThingPart strand : STRANDS) {
        if (style.showTube && !areTogether && looks.isShown(strand))
            showRod(shown, strand, looks.transparencyOf(strand));
        else
            dropRod(rodsOf(shown), rodOf(strand));
    }
}

void setColour(const ShownDatum& shown, ThingPart part, const SbColor& colour)
{
    const SoBirod& birod = birodOf(shown);
    const int rows = meshesOf(birod, part).tube.getHeight();
    const std::vector<SbColor> all(std::size_t(rows), colour);
    ownMaterial(shown).diffuseColor.setValues(firstRowOf(birod, part), rows, all.data());
}

SbColor getColour(const ShownDatum& shown, ThingPart part)
{
    return ownMaterial(shown).diffuseColor[firstRowOf(birodOf(shown), part)];
}

SbBox3f findBox(const ShownDatum& shown, ThingPart part)
{
    const Meshes meshes = meshesOf(birodOf(shown), part);
    SbBox3f box = meshes.tube.getBBox();
    if (part == ThingPart::AVERAGE && birodOf(shown).isShowingAvgRibbon())
        box.extendBy(meshes.ribbon.getBBox());
    return box;
}

SoNode* makeAlone(const ShownDatum& shown, ThingPart part, const ThingStyle& style,
                  const DnaLook& /*dna*/)
{
    return makeRod(birodOf(shown), part, style.showTube,
                   style.showRibbon && part == ThingPart::AVERAGE);
}

} // namespace

SoNode* makeStrandRods()
{
    auto* rods = new SoGroup;
    for (std::size_t i = 0; i < STRANDS.size(); ++i)
        rods->addChild(new SoSeparator);
    return rods;
}

void dropStrandRods(const ShownDatum& shown)
{
    for (const ThingPart strand : STRANDS)
        dropRod(rodsOf(shown), rodOf(strand));
}

SoMaterial& ownMaterial(const ShownDatum& shown)
{
    SoNode* const own =
        shown.colours ? shown.colours->getChild(0) : shown.group->getChild(OWN_COLOURS);
    return static_cast<SoMaterial&>(*own);
}

const PartsOfDatum* strandsOfBirod()
{
    static const PartsOfDatum deeds{&show, &setColour, &getColour, &findBox, &makeAlone};
    return &deeds;
}

} // namespace strandview
