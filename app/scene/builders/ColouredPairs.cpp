// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/ColouredPairs.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>

#include <Inventor/SbMatrix.h>
#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>

#include <SoDNA.h>
#include <SoNucleobase.h>

#include <strandview/analysis/doubleStrands.h>

#include "request/conversions.h"
#include "scene/BaseNodes.h"
#include "scene/SoPlacedSolids.h"

namespace strandview {

namespace {

enum Shape { BOXES, BASES_1, BASES_2 };

// Neighbours share corners, which are a third of them.
void add(const Solid::Corner& corner, Solid& solid)
{
    const auto same = std::find(solid.corners.begin(), solid.corners.end(), corner);
    solid.triangles.push_back(std::uint32_t(same - solid.corners.begin()));
    if (same == solid.corners.end())
        solid.corners.push_back(corner);
}

struct Collected
{
    Solid solid;
    SbColor own;
};

float brightest(const SbColor& colour) { return std::max({colour[0], colour[1], colour[2]}); }

void collect(void* to, SoCallbackAction* action, const SoPrimitiveVertex* a,
             const SoPrimitiveVertex* b, const SoPrimitiveVertex* c)
{
    auto& collected = *static_cast<Collected*>(to);
    const SbMatrix& matrix = action->getModelMatrix();
    const SbMatrix ofNormals = matrix.inverse().transpose();
    for (const SoPrimitiveVertex* vertex : {a, b, c}) {
        Solid::Corner corner;
        matrix.multVecMatrix(vertex->getPoint(), corner.point);
        ofNormals.multDirMatrix(vertex->getNormal(), corner.normal);
        corner.normal.normalize();
        SbColor ambient, diffuse, specular, emission;
        float shininess = 0, transparency = 0;
        action->getMaterial(ambient, diffuse, specular, emission, shininess, transparency,
                            vertex->getMaterialIndex());
        corner.brightness = std::min(brightest(diffuse) / brightest(collected.own), 1.0f);
        add(corner, collected.solid);
    }
}

// What a node shows, beside the colour that it has itself.
Solid solidOf(SoNode* node, const SbColor& own)
{
    Collected collected{{}, own};
    SoCallbackAction action;
    action.addTriangleCallback(SoShape::getClassTypeId(), &collect, &collected);
    node->ref();
    action.apply(node);
    node->unref();
    return collected.solid;
}

Solid solidOfBase(char letter, const DnaLook& look, bool isUpright)
{
    DnaLook plain = look;
    plain.atoms = false;
    return solidOf(makeNucleobase(letter, plain, isUpright), toSbColor(baseColour(letter)));
}

// The box of a pair at the origin, with the measures of another.
Solid solidOfPairBox(const SoDNA& pairs)
{
    auto* one = new SoDNA;
    one->showAtoms(false);
    one->showBaseBoxes(false);
    one->showBasePairBoxes(true);
    const SoCube& like = *pairs.getPairBox();
    one->getPairBox()->width = like.width;
    one->getPairBox()->height = like.height;
    one->getPairBox()->depth = like.depth;
    const SoDNA::Vectors origin(1);
    const SoDNA::Quaternions turn(1);
    one->setData("A", origin, turn, origin, turn, origin, turn);
    one->generate();
    one->setBasepairColour({1, 1, 1});
    return solidOf(one, SbColor(1, 1, 1));
}

SoSwitch& choiceOf(const SoSeparator& coloured, Shape shape)
{
    return *static_cast<SoSwitch*>(coloured.getChild(shape));
}

SoPlacedSolids& shapeOf(const SoSeparator& coloured, Shape shape)
{
    return *static_cast<SoPlacedSolids*>(choiceOf(coloured, shape).getChild(0));
}

// Those of a strand: one solid of each letter, and where they are.
struct Bases
{
    std::uint32_t solidOf(char letter)
    {
        const auto [found, isNew] = known.try_emplace(letter, std::uint32_t(solids.size()));
        if (isNew)
            solids.push_back(solidOfBase(letter, look, isUpright));
        return found->second;
    }

    const DnaLook& look;
    const bool isUpright;
    std::map<char, std::uint32_t> known;
    std::vector<Solid> solids;
    std::vector<SoPlacedSolids::Place> places;
};

} // namespace

SoSeparator* makeColouredPairs()
{
    auto* coloured = new SoSeparator;
    for (int shape = BOXES; shape <= BASES_2; ++shape) {
        auto* choice = new SoSwitch;
        choice->whichChild = SO_SWITCH_ALL;
        choice->addChild(new SoPlacedSolids);
        coloured->addChild(choice);
    }
    return coloured;
}

bool hasColouredPairs(const DnaLook& look)
{
    return look.bases || look.baseBoxes || look.pairBoxes;
}

void setColouredPairs(SoSeparator& coloured, const Dna& dna, const DnaLook& look,
                      const Placement& inAngstrom, const SoDNA& pairs,
                      const std::vector<Colour>& colours)
{
    Bases first{look, true, {}, {}, {}}, second{look, false, {}, {}, {}};
    std::vector<SoPlacedSolids::Place> boxes;
    boxes.reserve(look.pairBoxes ? dna.bases.size() : 0);
    for (Bases* bases : {&first, &second})
        bases->places.reserve(dna.bases.size());
    for (std::size_t i = 0; i < dna.bases.size(); ++i) {
        const auto placed = [&](const auto& points, const auto& rotations, std::uint32_t solid) {
            return SoPlacedSolids::Place{toSbVec3f(inAngstrom.toScene(points[i])),
                                         toSbRotation(rotations[i]), colours[i], solid};
        };
        const char letter = dna.bases[i];
        if (look.pairBoxes)
            boxes.push_back(placed(dna.pairPoints, dna.pairRotations, 0));
        first.places.push_back(placed(dna.points1, dna.rotations1, first.solidOf(letter)));
        second.places.push_back(
            placed(dna.points2, dna.rotations2, second.solidOf(complementOf(letter))));
    }
    std::vector<Solid> box;
    if (look.pairBoxes)
        box.push_back(solidOfPairBox(pairs));
    shapeOf(coloured, BOXES).setPlaces(std::move(box), std::move(boxes));
    shapeOf(coloured, BASES_1).setPlaces(std::move(first.solids), std::move(first.places));
    shapeOf(coloured, BASES_2).setPlaces(std::move(second.solids), std::move(second.places));
}

void showColouredBases(SoSeparator& coloured, int strand, bool shown)
{
    const int which = shown ? SO_SWITCH_ALL : SO_SWITCH_NONE;
    SoSFInt32& now = choiceOf(coloured, strand == 1 ? BASES_1 : BASES_2).whichChild;
    if (now.getValue() != which)
        now = which;
}

std::optional<PickedPair> pickedPair(const SoPickedPoint& picked, int index, std::size_t pairs)
{
    const SoPath& path = *picked.getPath();
    const SoDetail* const detail = picked.getDetail();
    if (path.getLength() < index + 2 || pairs == 0 || !detail ||
        !detail->isOfType(SoFaceDetail::getClassTypeId()))
        return {};
    const auto shape = Shape(path.getIndex(index + 1));
    const auto& coloured = static_cast<const SoSeparator&>(*path.getNode(index));
    const std::vector<Solid>& solids = shapeOf(coloured, shape).getSolids();
    // What is shown of one base has as many faces as that of any other.
    const std::size_t facesOfEach = solids.empty() ? 0 : solids[0].triangles.size() / 3;
    const auto face = std::size_t(static_cast<const SoFaceDetail*>(detail)->getFaceIndex());
    const std::size_t thing = facesOfEach > 0 ? face / facesOfEach : pairs;
    if (thing >= pairs)
        return {};
    return PickedPair{thing, shape == BOXES ? 0 : shape == BASES_1 ? 1 : 2};
}

} // namespace strandview
