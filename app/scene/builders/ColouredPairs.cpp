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

// Of its boxes, or of the bases of a strand.
SoSwitch& choiceOf(const SoSeparator& coloured, int strand)
{
    return *static_cast<SoSwitch*>(coloured.getChild(strand));
}

SoPlacedSolids& shapeOf(const SoSeparator& coloured, int strand)
{
    return *static_cast<SoPlacedSolids*>(choiceOf(coloured, strand).getChild(0));
}

// One solid of each letter.
struct Letters
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
};

using Places = std::vector<SoPlacedSolids::Place>;

Places placesOf(const SoDNA::Vectors& points, const SoDNA::Quaternions& rotations, int strand,
                const ColourOfPair& colourOf)
{
    Places places;
    places.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        places.push_back(
            {toSbVec3f(points[i]), toSbRotation(rotations[i]), colourOf(i, strand), 0});
    return places;
}

void setBases(SoPlacedSolids& shape, Places places, const std::string& letters, const DnaLook& look,
              bool areUpright)
{
    Letters known{look, areUpright, {}, {}};
    for (std::size_t i = 0; i < places.size(); ++i)
        places[i].solid = known.solidOf(letters[i]);
    shape.setPlaces(std::move(known.solids), std::move(places));
}

void setPlaces(SoPlacedSolids& shape, int strand, const std::string& bases, const DnaLook& look,
               const SoDNA& pairs, const ColourOfPair& colourOf)
{
    if (strand == 0) {
        if (look.pairBoxes)
            shape.setPlaces({solidOfPairBox(pairs)},
                            placesOf(pairs.getRAvg(), pairs.getQAvg(), strand, colourOf));
        else
            shape.setPlaces({}, {});
        return;
    }
    if (strand == 1) {
        setBases(shape, placesOf(pairs.getR1(), pairs.getQ1(), strand, colourOf), bases, look,
                 true);
        return;
    }
    std::string complements = bases;
    std::transform(bases.begin(), bases.end(), complements.begin(), complementOf);
    setBases(shape, placesOf(pairs.getR2(), pairs.getQ2(), strand, colourOf), complements, look,
             false);
}

} // namespace

SoSeparator* makeColouredPairs()
{
    auto* coloured = new SoSeparator;
    for (int strand = 0; strand <= 2; ++strand) {
        auto* choice = new SoSwitch;
        choice->whichChild = SO_SWITCH_ALL;
        choice->addChild(new SoPlacedSolids);
        coloured->addChild(choice);
    }
    return coloured;
}

SoNode* makePlacedPairs(int strand, const std::string& bases, const DnaLook& look,
                        const SoDNA& pairs, const ColourOfPair& colourOf)
{
    auto* shape = new SoPlacedSolids;
    setPlaces(*shape, strand, bases, look, pairs, colourOf);
    return shape;
}

SoNode* makePlacedBases(std::vector<SoPlacedSolids::Place> places, const std::string& letters,
                        const DnaLook& look)
{
    auto* shape = new SoPlacedSolids;
    setBases(*shape, std::move(places), letters, look, true);
    return shape;
}

bool hasColouredPairs(const DnaLook& look)
{
    return look.bases || look.baseBoxes || look.pairBoxes;
}

void setColouredPairs(SoSeparator& coloured, const std::string& bases, const DnaLook& look,
                      const SoDNA& pairs, const ColourOfPair& colourOf)
{
    for (int strand = 0; strand <= 2; ++strand)
        setPlaces(shapeOf(coloured, strand), strand, bases, look, pairs, colourOf);
}

void showColouredPairs(SoSeparator& coloured, int strand, bool shown)
{
    const int which = shown ? SO_SWITCH_ALL : SO_SWITCH_NONE;
    SoSFInt32& now = choiceOf(coloured, strand).whichChild;
    if (now.getValue() != which)
        now = which;
}

SoNode* colouredShape(const SoSeparator& coloured, int strand)
{
    return &shapeOf(coloured, strand);
}

std::optional<std::size_t> pickedPair(const SoPickedPoint& picked)
{
    const auto* const shape = dynamic_cast<const SoPlacedSolids*>(picked.getPath()->getTail());
    const SoDetail* const detail = picked.getDetail();
    if (!shape || !detail || !detail->isOfType(SoFaceDetail::getClassTypeId()))
        return {};
    const std::vector<Solid>& solids = shape->getSolids();
    // What is shown of one base has as many faces as that of any other.
    const std::size_t facesOfEach = solids.empty() ? 0 : solids[0].triangles.size() / 3;
    const auto face = std::size_t(static_cast<const SoFaceDetail*>(detail)->getFaceIndex());
    const std::size_t pairs = shape->getPlaces().size();
    const std::size_t pair = facesOfEach > 0 ? face / facesOfEach : pairs;
    return pair < pairs ? std::optional(pair) : std::nullopt;
}

} // namespace strandview
