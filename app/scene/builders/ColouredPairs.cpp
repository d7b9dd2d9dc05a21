// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/ColouredPairs.h"

#include <algorithm>
#include <cstdint>
#include <map>

#include <Inventor/SbMatrix.h>
#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoVertexProperty.h>

#include <SoDNA.h>
#include <SoNucleobase.h>

#include <strandview/analysis/doubleStrands.h>

#include "request/conversions.h"
#include "scene/BaseNodes.h"

namespace strandview {

namespace {

enum Shape { BOXES, BASES };

struct Corner
{
    SbVec3f point, normal;
    float brightness; // of the own colour

    bool operator==(const Corner& other) const
    {
        return point == other.point && normal == other.normal && brightness == other.brightness;
    }
};

// What stands at each pair or base: its triangles are three corners each, by their indices.
struct Solid
{
    std::vector<Corner> corners;
    std::vector<std::size_t> triangles;

    // Neighbours share corners, which are a third of them.
    void add(const Corner& corner)
    {
        const auto same = std::find(corners.begin(), corners.end(), corner);
        triangles.push_back(std::size_t(same - corners.begin()));
        if (same == corners.end())
            corners.push_back(corner);
    }
};

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
        Corner corner;
        matrix.multVecMatrix(vertex->getPoint(), corner.point);
        ofNormals.multDirMatrix(vertex->getNormal(), corner.normal);
        corner.normal.normalize();
        SbColor ambient, diffuse, specular, emission;
        float shininess = 0, transparency = 0;
        action->getMaterial(ambient, diffuse, specular, emission, shininess, transparency,
                            vertex->getMaterialIndex());
        corner.brightness = std::min(brightest(diffuse) / brightest(collected.own), 1.0f);
        collected.solid.add(corner);
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

struct Place
{
    algebra3d::Vector3<double> point;
    algebra3d::Quaternion<double> rotation;
};

// Fills a shape with the triangles of one solid after the other.
class Filler
{
public:
    // Room for so many like this one.
    void reserve(const Solid& solid, std::size_t count)
    {
        points.reserve(count * solid.corners.size());
        normals.reserve(count * solid.corners.size());
        colours.reserve(count * solid.corners.size());
        indices.reserve(count * (solid.triangles.size() / 3 * 4));
    }

    void add(const Solid& solid, const Place& place, const Colour& colour)
    {
        const std::size_t first = points.size();
        for (std::size_t i = 0; i < solid.triangles.size(); ++i) {
            indices.push_back(std::int32_t(first + solid.triangles[i]));
            if (i % 3 == 2)
                indices.push_back(SO_END_FACE_INDEX);
        }
        SbMatrix matrix;
        matrix.setTransform(toSbVec3f(place.point), toSbRotation(place.rotation), SbVec3f(1, 1, 1));
        for (const Corner& corner : solid.corners) {
            SbVec3f point, normal;
            matrix.multVecMatrix(corner.point, point);
            matrix.multDirMatrix(corner.normal, normal);
            points.push_back(point);
            normals.push_back(normal);
            colours.push_back(SbColor(toSbColor(colour) * corner.brightness).getPackedValue());
        }
    }

    void show(SoIndexedFaceSet& shape) const
    {
        auto* vertices = static_cast<SoVertexProperty*>(shape.vertexProperty.getValue());
        const int count = int(points.size());
        vertices->vertex.setNum(count);
        vertices->normal.setNum(count);
        vertices->orderedRGBA.setNum(count);
        vertices->vertex.setValues(0, count, points.data());
        vertices->normal.setValues(0, count, normals.data());
        vertices->orderedRGBA.setValues(0, count, colours.data());
        shape.coordIndex.setNum(int(indices.size()));
        shape.coordIndex.setValues(0, int(indices.size()), indices.data());
    }

private:
    std::vector<SbVec3f> points, normals;
    std::vector<std::uint32_t> colours;
    std::vector<std::int32_t> indices;
};

SoIndexedFaceSet& shapeOf(const SoSeparator& coloured, Shape shape)
{
    return *static_cast<SoIndexedFaceSet*>(coloured.getChild(shape));
}

std::size_t facesOf(const SoIndexedFaceSet& shape)
{
    return std::size_t(shape.coordIndex.getNum()) / 4;
}

} // namespace

SoSeparator* makeColouredPairs()
{
    auto* coloured = new SoSeparator;
    for (int shape = BOXES; shape <= BASES; ++shape) {
        auto* vertices = new SoVertexProperty;
        vertices->normalBinding = SoVertexProperty::PER_VERTEX_INDEXED;
        vertices->materialBinding = SoVertexProperty::PER_VERTEX_INDEXED;
        auto* faces = new SoIndexedFaceSet;
        faces->vertexProperty = vertices;
        faces->coordIndex.setNum(0);
        coloured->addChild(faces);
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
    const Solid box = look.pairBoxes ? solidOfPairBox(pairs) : Solid();
    std::map<std::pair<char, bool>, Solid> known;
    const auto baseOf = [&](char letter, bool isUpright) -> const Solid& {
        const auto [found, isNew] = known.try_emplace({letter, isUpright});
        if (isNew)
            found->second = solidOfBase(letter, look, isUpright);
        return found->second;
    };
    Filler boxes, bases;
    boxes.reserve(box, dna.bases.size());
    bases.reserve(baseOf(BASE_LETTERS[0], true), 2 * dna.bases.size());
    for (std::size_t i = 0; i < dna.bases.size(); ++i) {
        const auto placed = [&](const auto& points, const auto& rotations) {
            return Place{inAngstrom.toScene(points[i]), rotations[i]};
        };
        const char letter = dna.bases[i];
        boxes.add(box, placed(dna.pairPoints, dna.pairRotations), colours[i]);
        bases.add(baseOf(letter, true), placed(dna.points1, dna.rotations1), colours[i]);
        bases.add(baseOf(complementOf(letter), false), placed(dna.points2, dna.rotations2),
                  colours[i]);
    }
    boxes.show(shapeOf(coloured, BOXES));
    bases.show(shapeOf(coloured, BASES));
}

std::optional<PickedPair> pickedPair(const SoPickedPoint& picked, int index, std::size_t pairs)
{
    const SoPath& path = *picked.getPath();
    const SoDetail* const detail = picked.getDetail();
    if (path.getLength() < index + 2 || pairs == 0 || !detail ||
        !detail->isOfType(SoFaceDetail::getClassTypeId()))
        return {};
    const auto shape = Shape(path.getIndex(index + 1));
    const std::size_t things = shape == BOXES ? pairs : 2 * pairs;
    const auto& coloured = static_cast<const SoSeparator&>(*path.getNode(index));
    // What is shown of one base has as many faces as that of any other.
    const std::size_t facesOfEach = facesOf(shapeOf(coloured, shape)) / things;
    const auto face = std::size_t(static_cast<const SoFaceDetail*>(detail)->getFaceIndex());
    const std::size_t thing = facesOfEach > 0 ? face / facesOfEach : things;
    if (thing >= things)
        return {};
    return shape == BOXES ? PickedPair{thing, 0} : PickedPair{thing / 2, int(thing % 2) + 1};
}

} // namespace strandview
