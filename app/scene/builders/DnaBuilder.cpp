// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/DnaBuilder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <SoArrow.h>
#include <SoDNA.h>
#include <SoNucleobase.h>

#include <strandview/analysis/doubleStrands.h>
#include <strandview/analysis/parallelTransport.h>

#include "scene/BaseNodes.h"
#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "scene/PickedPlace.h"
#include "scene/SoSeeThrough.h"
#include "scene/builders/ArrowHead.h"
#include "scene/builders/ColouredPairs.h"
#include "scene/builders/DataColours.h"
#include "scene/curveFaults.h"

namespace strandview {

using algebra3d::Quaternion;
using algebra3d::Vector3;

namespace {

// Dark enough to be seen on white where a highlight is added, and on black in the shade.
const Colour PAIR_COLOUR{0.30f, 0.42f, 0.58f};

// No atom or corner of a base is farther from its frame.
const double REACH = 9.2; // ångström

// The children of a DNA's group: its pairs, for each strand the choice whether it is shown, and the
// boxes of pairs where they are seen through.
enum Child { PAIRS, BACKBONES, BOXES_APART = BACKBONES + 2 };
// Of the pairs.
const int BEHIND_SCALE = 1;
// Of that choice: its backbone, and its bases where they are seen through.
enum OfStrand { BACKBONE, BASES_APART };

const std::array<Strand, 2> STRANDS{Strand::FIRST, Strand::SECOND};

// Makes of the box that all pairs share a plate: thinner than the boxes of the bases, with
// which it would share faces otherwise, and as much wider that its rim is seen around them.
void makePlate(SoDNA& dna)
{
    const float rim = 0.8f, thickness = 0.5f; // in ångström
    SoCube* const box = dna.getPairBox();
    box->width = box->width.getValue() + 2 * rim;
    box->height = box->height.getValue() + 2 * rim;
    box->depth = thickness;
}

bool hasBases(const DnaLook& look) { return look.bases || look.baseBoxes || look.atoms; }

bool needsPairs(const DnaLook& look) { return look.pairBoxes || hasBases(look); }

// What is picked

void setPair(std::size_t pair, int strand, PickedPlace& place)
{
    place.row = pair;
    place.strand = strand;
}

// Below a SoDNA, which is the path's node `index`: child 0 holds the boxes of the pairs, child 1
// the bases, two for each pair.
void placeInPairs(const SoPath& path, int index, PickedPlace& place)
{
    if (path.getLength() < index + 3)
        return;
    const auto child = std::size_t(path.getIndex(index + 2));
    if (path.getIndex(index + 1) == 1)
        setPair(child / 2, int(child % 2) + 1, place);
    else
        setPair(child, 0, place);
}

SoSeparator& pairGroupOf(const SoSeparator& group)
{
    return *static_cast<SoSeparator*>(group.getChild(PAIRS));
}

// Behind their scale: a SoDNA, or the choice between one, with colours of its own, and what has
// those of data, its atoms and pairs.
SoNode* behindScale(const SoSeparator& group) { return pairGroupOf(group).getChild(BEHIND_SCALE); }

SoSeparator& ofDataIn(const SoSwitch& choice)
{
    return *static_cast<SoSeparator*>(choice.getChild(1));
}

SoSeparator& colouredPairsIn(const SoSwitch& choice)
{
    return *static_cast<SoSeparator*>(ofDataIn(choice).getChild(1));
}

// Only where something of them is shown.
SoDNA& pairsOf(const ShownDatum& shown)
{
    return *static_cast<SoDNA*>(shown.colours ? shown.colours->getChild(0)
                                              : behindScale(*shown.group));
}

// Whether it is shown.
SoSwitch& strandChoiceOf(const SoSeparator& group, Strand strand)
{
    return *static_cast<SoSwitch*>(group.getChild(BACKBONES + int(strand)));
}

SoSeparator& backboneOf(const SoSeparator& group, Strand strand)
{
    return *static_cast<SoSeparator*>(childOf(strandChoiceOf(group, strand), BACKBONE));
}

SoRod& rodOf(const SoSeparator& backbone) { return *static_cast<SoRod*>(backbone.getChild(1)); }

// By the nearest point of the centreline, which has the phosphorus of each base and one more unless
// points were left out: that one is the last base's, too.
void placeInBackbone(const ShownDatum& shown, const SoPickedPoint& picked, Strand strand,
                     PickedPlace& place)
{
    place.strand = int(strand) + 1;
    const SbVec3f point = picked.getPoint();
    BiarcTubeMesh& tube = *rodOf(backboneOf(*shown.group, strand)).getTubeMesh();
    const std::vector<double>& lengths = tube.getParamValues();
    if (lengths.size() != shown.bases.size() + 1)
        return;
    const double length = nearestOnTube(tube, {point[0], point[1], point[2]}).arcLength;
    const auto after = std::upper_bound(lengths.begin() + 1, lengths.end() - 1, length);
    const bool isNearerToNext = *after - length < length - *(after - 1);
    const auto base = std::min(std::size_t(after - lengths.begin()) - (isNearerToNext ? 0 : 1),
                               shown.bases.size() - 1);
    place.isOnBackbone = true;
    setPair(strand == Strand::FIRST ? base : shown.bases.size() - 1 - base, place.strand, place);
}

// Of the boxes and bases in shapes of their own.
int strandOfShape(const ShownDatum& shown, const SoNode* shape, int child)
{
    if (child >= BACKBONES)
        return child == BOXES_APART ? 0 : child - BACKBONES + 1;
    int strand = 0;
    while (strand < 2 && colouredShape(colouredPairsIn(*shown.colours), strand) != shape)
        ++strand;
    return strand;
}

void placeIn(const ShownDatum& shown, const SoPickedPoint& picked, int index, PickedPlace& place)
{
    const SoPath& path = *picked.getPath();
    if (path.getLength() < index + 3)
        return;
    const int child = path.getIndex(index + 1);
    if (const auto pair = pickedPair(picked)) {
        setPair(*pair, strandOfShape(shown, path.getTail(), child), place);
        return;
    }
    const bool isOfStrand = child >= BACKBONES && child < BOXES_APART;
    if (isOfStrand && path.getIndex(index + 2) == BACKBONE) {
        placeInBackbone(shown, picked, Strand(child - BACKBONES), place);
        return;
    }
    for (int i = index + 2; i < path.getLength(); ++i) {
        if (path.getNode(i)->isOfType(SoDNA::getClassTypeId())) {
            placeInPairs(path, i, place);
            return;
        }
    }
}

// Of a backbone.
SoMFColor& ownColours(const ShownDatum& shown, Strand strand)
{
    SoNode* const first = backboneOf(*shown.group, strand).getChild(0);
    const auto* choice = dynamic_cast<SoSwitch*>(first);
    return static_cast<SoMaterial*>(choice ? choice->getChild(0) : first)->diffuseColor;
}

void setColour(const ShownDatum& shown, const SbColor& colour)
{
    for (const Strand strand : STRANDS)
        ownColours(shown, strand).setValue(colour);
}

SbColor getColour(const ShownDatum& shown) { return ownColours(shown, Strand::FIRST)[0]; }

// Nodes

SoDNA* makeDna(const DnaLook& look)
{
    auto* node = new SoDNA;
    node->drawAtomsRound(true);
    node->showAtoms(look.atoms);
    node->showBaseBoxes(look.baseBoxes);
    node->showBasePairBoxes(look.pairBoxes);
    node->setBasepairColour(toVector(PAIR_COLOUR));
    for (char base : BASE_LETTERS)
        node->setBaseColour(base, toVector(baseColour(base)));
    return node;
}

// In ångström.
SoSeparator* makePairs(SoNode* node, double angstrom)
{
    auto* scale = new SoScale;
    const auto factor = float(angstrom);
    scale->scaleFactor = SbVec3f(factor, factor, factor);
    auto* group = new SoSeparator;
    group->addChild(scale);
    group->addChild(node);
    return group;
}

// Without what is not shown at all.
SoNode* makeDnaOf(const DnaLook& look)
{
    return needsPairs(look) ? static_cast<SoNode*>(makeDna(look)) : new SoSeparator;
}

// Between a DNA that is there, and its atoms and coloured pairs.
SoSwitch* makePairChoice(SoNode* own, const DnaLook& look)
{
    auto* ofData = new SoSeparator;
    ofData->addChild(makeDnaOf(atomsAlone(look)));
    ofData->addChild(makeColouredPairs());
    auto* choice = new SoSwitch;
    choice->addChild(own);
    choice->addChild(ofData);
    return choice;
}

SoSwitch* makeBackbone(const ThingStyle& style)
{
    auto* group = new SoSeparator;
    group->addChild(new SoMaterial);
    group->addChild(new SoRod(0, 0, style.slices, style.subsegments, true, false, false));
    group->addChild(makeHead());
    auto* choice = new SoSwitch;
    choice->addChild(group);
    choice->whichChild = SO_SWITCH_ALL;
    return choice;
}

// The centreline of a backbone has a point between any two bases, and one at each end: there stands
// the mean of what the bases beside it have.
std::vector<double> alongBackbone(std::vector<double> ofPairs, Strand strand)
{
    if (strand == Strand::SECOND)
        std::reverse(ofPairs.begin(), ofPairs.end());
    std::vector<double> places(ofPairs.size() + 1);
    places.front() = ofPairs.front();
    places.back() = ofPairs.back();
    for (std::size_t i = 1; i < ofPairs.size(); ++i) {
        const double before = ofPairs[i - 1], behind = ofPairs[i];
        places[i] = std::isnan(before)   ? behind
                    : std::isnan(behind) ? before
                                         : (before + behind) / 2;
    }
    return places;
}

// Gives the nucleobases that have none yet, after their atoms and their box, a slab.
void addSlabs(SoDNA& dna)
{
    for (char letter : BASE_LETTERS) {
        for (int strand : {1, 2}) {
            SoNucleobase* const base = dna.getNucleobase(letter, strand);
            if (base->getNumChildren() == SLAB_OF_BASE)
                base->addChild(makeSlab(letter, strand == 1));
        }
    }
}

// Places a base of its own where the letter is not known.
void replaceUnknown(const std::string& bases, const DnaLook& look, SoDNA& dna)
{
    if (bases.find(UNKNOWN_BASE) == std::string::npos)
        return;
    const auto* placed = static_cast<SoGroup*>(dna.getChild(1));
    SoNucleobase* const unknown[] = {makeNucleobase(UNKNOWN_BASE, look, true),
                                     makeNucleobase(UNKNOWN_BASE, look, false)};
    for (std::size_t pair = 0; pair < bases.size(); ++pair) {
        if (bases[pair] != UNKNOWN_BASE)
            continue;
        for (std::size_t strand = 0; strand < 2; ++strand) {
            auto* group = static_cast<SoGroup*>(placed->getChild(int(2 * pair + strand)));
            group->replaceChild(1, unknown[strand]);
        }
    }
}

// Strands

Strand strandOf(ThingPart part)
{
    return part == ThingPart::STRAND_2 ? Strand::SECOND : Strand::FIRST;
}

ThingPart partOf(Strand strand)
{
    return strand == Strand::SECOND ? ThingPart::STRAND_2 : ThingPart::STRAND_1;
}

// All of a strand: bases of a letter are one node.
void showBases(SoDNA& dna, const std::string& bases, Strand strand, const DnaLook& look)
{
    const bool isUpright = strand == Strand::FIRST;
    for (char letter : BASE_LETTERS)
        showBase(*dna.getNucleobase(letter, int(strand) + 1), letter, isUpright, look);
    const std::size_t unknown = bases.find(UNKNOWN_BASE);
    if (unknown == std::string::npos)
        return;
    const auto* placed = static_cast<SoGroup*>(dna.getChild(1));
    const auto* group = static_cast<SoGroup*>(placed->getChild(int(2 * unknown) + int(strand)));
    showBase(*static_cast<SoNucleobase*>(group->getChild(1)), UNKNOWN_BASE, isUpright, look);
}

DnaLook nothingOfBases(DnaLook look)
{
    look.bases = look.baseBoxes = look.atoms = false;
    return look;
}

void setStrandColour(const ShownDatum& shown, ThingPart part, const SbColor& colour)
{
    ownColours(shown, strandOf(part)).setValue(colour);
}

SbColor getStrandColour(const ShownDatum& shown, ThingPart part)
{
    return ownColours(shown, strandOf(part))[0];
}

// Null where nothing of pairs is shown.
SoDNA* findPairs(const ShownDatum& shown)
{
    SoNode* const node = shown.colours ? shown.colours->getChild(0) : behindScale(*shown.group);
    return node->isOfType(SoDNA::getClassTypeId()) ? static_cast<SoDNA*>(node) : nullptr;
}

float scaleOfPairs(const ShownDatum& shown)
{
    const auto* scale = static_cast<SoScale*>(pairGroupOf(*shown.group).getChild(0));
    return scale->scaleFactor.getValue()[0];
}

// With the boxes of its pairs.
SbBox3f findStrandBox(const ShownDatum& shown, ThingPart part)
{
    SbBox3f box;
    SoSeparator& backbone = backboneOf(*shown.group, strandOf(part));
    if (rodOf(backbone).isValid()) { // or its head is a point
        SoGetBoundingBoxAction withHead(SbViewportRegion(1, 1));
        withHead.apply(&backbone);
        box.extendBy(withHead.getBoundingBox());
    }
    const SoDNA* const pairs = findPairs(shown);
    if (!pairs)
        return box;
    const auto scale = double(scaleOfPairs(shown));
    for (const auto* points :
         {&pairs->getRAvg(), part == ThingPart::STRAND_1 ? &pairs->getR1() : &pairs->getR2()}) {
        for (const Vector3<double>& point : *points)
            box.extendBy(boxAround(point * scale, REACH * scale));
    }
    return box;
}

// Those of a strand alone, as they are in these pairs: bases of all letters are placed once more.
SoDNA* makeBases(const SoDNA& pairs, const std::string& bases, Strand strand, DnaLook look)
{
    look.pairBoxes = false;
    auto* copy = makeDna(look);
    copy->setData(pairs.getSequence(), pairs.getRAvg(), pairs.getQAvg(), pairs.getR1(),
                  pairs.getQ1(), pairs.getR2(), pairs.getQ2());
    copy->generate();
    replaceUnknown(bases, look, *copy);
    showBases(*copy, bases, strand, look);
    showBases(*copy, bases, STRANDS[1 - std::size_t(strand)], nothingOfBases(look));
    return copy;
}

SoNode* makeStrandAlone(const ShownDatum& shown, ThingPart part, const ThingStyle& /*style*/,
                        const DnaLook& look)
{
    const Strand strand = strandOf(part);
    auto* alone = new SoSeparator;
    alone->addChild(&strandChoiceOf(*shown.group, strand));
    if (const SoDNA* const pairs = findPairs(shown))
        alone->addChild(
            makePairs(makeBases(*pairs, shown.bases, strand, look), double(scaleOfPairs(shown))));
    return alone;
}

// What is seen through

// Of boxes, 0, or the bases of a strand, in one shape; and of those the atoms, too.
SoSeparator* makeAllOf(SoNode* shape, SoNode* atoms)
{
    auto* all = new SoSeparator;
    all->addChild(shape);
    if (atoms)
        all->addChild(atoms);
    return all;
}

// In their own colours and, by the choice of the pairs, in those of data.
SoNode* makeApart(const ShownDatum& shown, int strand, const DnaLook& look)
{
    const SoDNA& pairs = pairsOf(shown);
    const std::string& bases = shown.bases;
    const auto ownColour = [&bases](std::size_t pair, int ofStrand) {
        return ofStrand == 0 ? PAIR_COLOUR
                             : baseColour(ofStrand == 1 ? bases[pair] : complementOf(bases[pair]));
    };
    SoNode* const atoms =
        strand > 0 && look.atoms
            ? makeBases(pairs, bases, STRANDS[std::size_t(strand) - 1], atomsAlone(look))
            : nullptr;
    SoNode* all = makeAllOf(makePlacedPairs(strand, bases, look, pairs, ownColour), atoms);
    if (shown.colours) {
        auto* choice = new SoSwitch;
        choice->addChild(all);
        choice->addChild(makeAllOf(colouredShape(colouredPairsIn(*shown.colours), strand), atoms));
        choice->whichChild.connectFrom(&shown.colours->whichChild);
        all = choice;
    }
    return makePairs(all, double(scaleOfPairs(shown)));
}

// The last child, if there are more than those before it.
void dropChild(SoGroup& parent, int child)
{
    if (parent.getNumChildren() > child)
        parent.removeChild(child);
}

// As the last child of that parent, or not at all.
void showApart(const ShownDatum& shown, int strand, double transparency, const DnaLook& look,
               SoGroup& parent, int child)
{
    if (transparency <= 0) {
        dropChild(parent, child);
        return;
    }
    if (parent.getNumChildren() == child)
        parent.addChild(makeApart(shown, strand, look));
    seeThrough(transparency, parent, child);
}

void dropApart(const ShownDatum& shown)
{
    for (const Strand strand : STRANDS)
        dropChild(strandChoiceOf(*shown.group, strand), BASES_APART);
    dropChild(*shown.group, BOXES_APART);
}

void showStrand(const ShownDatum& shown, ThingPart part, const PartLooks& looks,
                const DnaLook& look)
{
    const Strand strand = strandOf(part);
    const bool isShown = looks.isShown(part);
    const double transparency = looks.transparencyOf(part);
    SoSwitch& choice = strandChoiceOf(*shown.group, strand);
    const int which = isShown ? SO_SWITCH_ALL : SO_SWITCH_NONE;
    if (choice.whichChild.getValue() != which)
        choice.whichChild = which;
    seeThrough(transparency, choice, BACKBONE);
    if (!needsPairs(look))
        return;

    const bool areInPairs = isShown && transparency <= 0;
    showBases(pairsOf(shown), shown.bases, strand, areInPairs ? look : nothingOfBases(look));
    if (shown.colours) {
        showColouredPairs(colouredPairsIn(*shown.colours), int(strand) + 1, areInPairs);
        if (look.atoms)
            showBases(*static_cast<SoDNA*>(ofDataIn(*shown.colours).getChild(0)), shown.bases,
                      strand, areInPairs ? atomsAlone(look) : nothingOfBases(look));
    }
    showApart(shown, int(strand) + 1, isShown && hasBases(look) ? transparency : 0, look, choice,
              BASES_APART);
}

void showBoxes(const ShownDatum& shown, double transparency, const DnaLook& look)
{
    const bool areInPairs = transparency <= 0;
    SoDNA& pairs = pairsOf(shown);
    if (pairs.areBasePairBoxesShown() != areInPairs)
        pairs.showBasePairBoxes(areInPairs);
    if (shown.colours)
        showColouredPairs(colouredPairsIn(*shown.colours), 0, areInPairs);
    showApart(shown, 0, transparency, look, *shown.group, BOXES_APART);
}

void showStrands(const ShownDatum& shown, const PartLooks& looks, const ThingStyle& /*style*/,
                 const DnaLook& look)
{
    for (const ThingPart part : partsOf(ThingKind::DNA))
        showStrand(shown, part, looks, look);
    if (look.pairBoxes)
        showBoxes(shown, looks.transparencyOf(ThingPart::WHOLE), look);
}

const PartsOfDatum STRANDS_OF_DNA{&showStrands, &setStrandColour, &getStrandColour, &findStrandBox,
                                  &makeStrandAlone};

SceneGeometry::Backbone computeBackbone(const std::vector<Vector3<double>>& points,
                                        const ThingStyle& style, const Placement& placement)
{
    SceneGeometry::Backbone backbone;
    backbone.points = placement.toScene(withoutCoincident(points));
    if (backbone.points.size() < 2)
        return {};
    backbone.rotations = parallelTransport(backbone.points);
    const double radius = placement.scale * style.backboneRadius;
    const double hiddenWidth = radius / 2; // of a ribbon within the tube
    backbone.meshes = SoRod::makeMeshes(backbone.points, backbone.rotations, radius, hiddenWidth,
                                        style.slices, style.subsegments, false);
    const NamedCurve curve{backbone.points, &backbone.rotations,
                           [](std::size_t point) { return std::to_string(point); }};
    if (!backbone.meshes.tube ||
        !findFault(*backbone.meshes.tube, style.subsegments, curve).empty())
        return {};
    return backbone;
}

} // namespace

SceneGeometry::Dna DnaBuilder::compute(const Dna& dna, std::size_t index,
                                       const Molecules& molecules, const Style& style,
                                       const Placement& placement)
{
    SceneGeometry::Dna computed;
    const bool isShown = strandview::styleOf(style, {ThingKind::DNA, index}).showBackbones;
    if (!isShown || molecules.hasBackbone(dna.molecule))
        return computed;
    for (Strand strand : STRANDS)
        computed.backbones[std::size_t(strand)] = computeBackbone(
            idealBackbone(dna, strand, style.dna.angstrom),
            strandview::styleOf(style, {ThingKind::DNA, index, partOf(strand)}), placement);
    return computed;
}

const char* DnaBuilder::getWork() const { return "Building DNA"; }

// Around all that its frames can place, which is less than what Coin makes of turned boxes.
SbBox3f DnaBuilder::getReach(std::size_t index) const
{
    SbBox3f box = boxOfBases(datum(index));
    for (const Strand strand : STRANDS) {
        const SceneGeometry::Backbone& backbone =
            frame.geometry.dnas[index].backbones[std::size_t(strand)];
        if (backbone.points.empty())
            continue;
        box.extendBy(backbone.meshes.tube->getBBox());
        box.extendBy(
            headOf(index, strand, backbone.points.back(), backbone.rotations.back()).getBox());
    }
    return box;
}

SbBox3f DnaBuilder::findBox(std::size_t index, const ShownDatum& shown)
{
    SbBox3f box = boxOfBases(datum(index));
    for (Strand strand : STRANDS) {
        const SoRod& rod = rodOf(backboneOf(*shown.group, strand));
        if (!rod.isValid())
            continue;
        Vector3<double> end;
        Quaternion<double> rotation;
        rod.getFrame(end, rotation, rod.getPointsNum() - 1);
        box.extendBy(rod.getTubeMesh()->getBBox());
        box.extendBy(headOf(index, strand, end, rotation).getBox());
    }
    return box;
}

SbBox3f DnaBuilder::boxOfBases(const Dna& dna) const
{
    const double reach = frame.scaled(REACH * frame.style.dna.angstrom);
    SbBox3f box;
    for (const auto* points : {&dna.pairPoints, &dna.points1, &dna.points2}) {
        for (const Vector3<double>& point : *points)
            box.extendBy(boxAround(frame.placement.toScene(point), reach));
    }
    return box;
}

double DnaBuilder::radiusOf(std::size_t index, Strand strand) const
{
    const ThingId part{getKind(), index, partOf(strand)};
    return frame.scaled(strandview::styleOf(frame.style, part).backboneRadius);
}

ArrowHead DnaBuilder::headOf(std::size_t index, Strand strand, const Vector3<double>& end,
                             const Quaternion<double>& rotation) const
{
    return ArrowHead(end, rotation, radiusOf(index, strand));
}

ShownDatum DnaBuilder::makeNodes(std::size_t index)
{
    const DnaLook& look = frame.style.dna;
    ShownDatum shown;
    shown.group = new SoSeparator;
    shown.group->addChild(makePairs(makeDnaOf(look), frame.scaled(look.angstrom)));
    for (std::size_t i = 0; i < STRANDS.size(); ++i)
        shown.group->addChild(makeBackbone(styleOf(index)));
    shown.node = shown.group;
    shown.placeIn = &placeIn;
    shown.setColour = &setColour;
    shown.getColour = &getColour;
    shown.ofParts = &STRANDS_OF_DNA;
    if (look.baseBoxes && look.pairBoxes)
        makePlate(pairsOf(shown));
    updateNodes(index, shown);
    return shown;
}

void DnaBuilder::updateNodes(std::size_t index, ShownDatum& shown)
{
    const Dna& dna = datum(index);
    const DnaLook& look = frame.style.dna;
    shown.bases = dna.bases;
    setColourChoice(index, shown);
    if (needsPairs(look))
        setPairs(dna, look, pairsOf(shown));
    for (Strand strand : STRANDS)
        setBackbone(index, strand, backboneOf(*shown.group, strand));
    recolour(index, shown);
}

void DnaBuilder::recolour(std::size_t index, ShownDatum& shown)
{
    dropApart(shown);
    setColourChoice(index, shown);
    if (shown.colours)
        setDataColours(index, shown);
    for (Strand strand : STRANDS) {
        SoSeparator& backbone = backboneOf(*shown.group, strand);
        setOwnBackboneColours(index, backbone);
        setBackboneColours(index, strand, shown.colours, backbone);
    }
}

bool DnaBuilder::hasDataColours(std::size_t index) const
{
    return frame.colouring && !frame.colouring->ofDna(index).empty();
}

// One that is compared with a reference has colours in the frames that have as many pairs.
void DnaBuilder::setColourChoice(std::size_t index, ShownDatum& shown) const
{
    if (hasDataColours(index) == (shown.colours != nullptr))
        return;
    SoSeparator& pairs = pairGroupOf(*shown.group);
    if (shown.colours) {
        dropColourChoice(pairs, BEHIND_SCALE);
        shown.colours = nullptr;
        return;
    }
    shown.colours = makePairChoice(pairs.getChild(BEHIND_SCALE), frame.style.dna);
    shown.colours->whichChild = frame.areDataColoursShown ? 1 : 0;
    pairs.replaceChild(BEHIND_SCALE, shown.colours);
}

void DnaBuilder::setDataColours(std::size_t index, ShownDatum& shown) const
{
    const DnaLook &look = frame.style.dna, atoms = atomsAlone(look);
    if (atoms.atoms)
        setPairs(datum(index), atoms, *static_cast<SoDNA*>(ofDataIn(*shown.colours).getChild(0)));
    if (!hasColouredPairs(look))
        return;
    const std::vector<Colour> colours = coloursOf(*frame.colouring, frame.colouring->ofDna(index));
    setColouredPairs(colouredPairsIn(*shown.colours), shown.bases, look, pairsOf(shown),
                     [&colours](std::size_t pair, int /*strand*/) { return colours[pair]; });
}

void DnaBuilder::setOwnBackboneColours(std::size_t index, SoSeparator& group) const
{
    auto* choice = dynamic_cast<SoSwitch*>(group.getChild(0));
    auto* material = static_cast<SoMaterial*>(choice ? choice->getChild(0) : group.getChild(0));
    material->diffuseColor =
        toSbColor(strandColour(frame.style, molecules.colourOf(datum(index).molecule, index)));
}

// Those of data, by the choice of the pairs, if there is one, and no point was left out.
void DnaBuilder::setBackboneColours(std::size_t index, Strand strand, SoSwitch* colours,
                                    SoSeparator& group) const
{
    const SoRod& rod = rodOf(group);
    std::vector<double> places;
    if (colours)
        places = alongBackbone(frame.colouring->ofDna(index), strand);
    const bool isWhole =
        colours && rod.isValid() && std::size_t(rod.getPointsNum()) == places.size();
    auto* choice = dynamic_cast<SoSwitch*>(group.getChild(0));
    if (!choice && isWhole) {
        choice = putColourChoice(group, 0);
        choice->whichChild.connectFrom(&colours->whichChild);
    } else if (choice && !isWhole) {
        dropColourChoice(group, 0);
        choice = nullptr;
    }
    if (choice)
        setRowColours(*frame.colouring, {&places},
                      {rowsOf(*rod.getTubeMesh(), *rod.getRibbonMesh())}, nullptr,
                      dataMaterial(*choice));
    setHeadColours(*static_cast<SoSeparator*>(group.getChild(2)), rod, choice);
}

void DnaBuilder::setPairs(const Dna& dna, const DnaLook& look, SoDNA& node) const
{
    const Placement inAngstrom{frame.placement.origin, 1 / look.angstrom};
    std::string known = dna.bases;
    std::replace(known.begin(), known.end(), UNKNOWN_BASE, BASE_LETTERS[0]);
    node.setData(known, inAngstrom.toScene(dna.pairPoints), dna.pairRotations,
                 inAngstrom.toScene(dna.points1), dna.rotations1, inAngstrom.toScene(dna.points2),
                 dna.rotations2);
    node.generate();
    if (look.bases)
        addSlabs(node);
    replaceUnknown(dna.bases, look, node);
}

// Without points a rod draws nothing, and so does an arrow of no length.
void DnaBuilder::setBackbone(std::size_t index, Strand strand, SoSeparator& group)
{
    SceneGeometry::Backbone& backbone = frame.geometry.dnas[index].backbones[std::size_t(strand)];
    SoArrow* const arrow = arrowOf(*static_cast<SoSeparator*>(group.getChild(2)));
    if (backbone.points.empty())
        arrow->setArrow({}, {}, 0, 0, 0);
    else
        headOf(index, strand, backbone.points.back(), backbone.rotations.back()).show(*arrow);
    SoRod& rod = rodOf(group);
    rod.setTubeRadius(radiusOf(index, strand));
    rod.setData(std::move(backbone.points), std::move(backbone.rotations),
                std::move(backbone.meshes));
}

} // namespace strandview
