// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/BaseNodes.h"

#include <array>
#include <cstdint>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShapeHints.h>
#include <Inventor/nodes/SoVertexProperty.h>

#include <SoNucleobase.h>
#include <algebra3d/Matrix3.h>

#include "request/conversions.h"

namespace strandview {

using algebra3d::Matrix3;
using algebra3d::Vector3;

namespace {

// P. Tol, Colour schemes, SRON technical note EPS/TN/09-002, 2021: four and the grey of the
// scheme "bright".
const Colour ADENINE{0.133f, 0.533f, 0.200f}, CYTOSINE{0.400f, 0.800f, 0.933f},
    GUANINE{0.800f, 0.733f, 0.267f}, THYMINE{0.667f, 0.200f, 0.467f}, OTHER{0.733f, 0.733f, 0.733f};

// Of the edge along the minor groove, beside the rest.
const float EDGE_BRIGHTNESS = 0.55f;

// A slab in the plane of its base, in ångström: x into the major groove, y from the pair's middle
// to the backbone, where it is as narrow as the tube is thick.
const double HALF_THICKNESS = 0.65;
const double MIDDLE = 0.35, SHOULDER = 5.0, BACKBONE = 8.4;                       // y
const double MINOR = -2.9, MAJOR = 2.4, MINOR_AT_TIP = -3.5, MAJOR_AT_TIP = -2.3; // x
const double EDGE = 0.9;                                                          // wide

struct Corner
{
    double x, y, z;
};

struct Face
{
    std::array<Corner, 4> corners; // counter-clockwise from outside
    bool isEdge;
};

using Outline = std::array<Corner, 4>;

// Counter-clockwise from above, as the two corners of each side.
const Outline EDGE_OUTLINE{{{MINOR, MIDDLE, 0},
                            {MINOR + EDGE, MIDDLE, 0},
                            {MINOR_AT_TIP + EDGE, BACKBONE, 0},
                            {MINOR_AT_TIP, BACKBONE, 0}}};
const Outline REST_OUTLINE{{{MINOR + EDGE, MIDDLE, 0},
                            {MAJOR, MIDDLE, 0},
                            {MAJOR, SHOULDER, 0},
                            {MINOR_AT_TIP + EDGE, BACKBONE, 0}}};

Corner raised(const Corner& corner, double z) { return {corner.x, corner.y, z}; }

Face above(const Outline& outline, bool isEdge)
{
    Face face{{}, isEdge};
    for (std::size_t i = 0; i < 4; ++i)
        face.corners[i] = raised(outline[i], HALF_THICKNESS);
    return face;
}

Face below(const Outline& outline, bool isEdge)
{
    Face face{{}, isEdge};
    for (std::size_t i = 0; i < 4; ++i)
        face.corners[i] = raised(outline[3 - i], -HALF_THICKNESS);
    return face;
}

Face side(const Corner& from, const Corner& to, bool isEdge)
{
    return {{raised(from, -HALF_THICKNESS), raised(to, -HALF_THICKNESS), raised(to, HALF_THICKNESS),
             raised(from, HALF_THICKNESS)},
            isEdge};
}

const std::array<Face, 10> FACES{above(EDGE_OUTLINE, true),
                                 below(EDGE_OUTLINE, true),
                                 above(REST_OUTLINE, false),
                                 below(REST_OUTLINE, false),
                                 side(EDGE_OUTLINE[0], EDGE_OUTLINE[1], true),
                                 side(EDGE_OUTLINE[2], EDGE_OUTLINE[3], true),
                                 side(EDGE_OUTLINE[3], EDGE_OUTLINE[0], true),
                                 side(REST_OUTLINE[0], REST_OUTLINE[1], false),
                                 side(REST_OUTLINE[1], REST_OUTLINE[2], false),
                                 side(REST_OUTLINE[2], REST_OUTLINE[3], false)};
const int CORNERS = 4 * int(FACES.size()); // of a slab

Vector3<double> toVector(const Corner& corner) { return {corner.x, corner.y, corner.z}; }

Vector3<double> normalOf(const Face& face)
{
    const Vector3<double> first = toVector(face.corners[0]);
    return (toVector(face.corners[1]) - first).cross(toVector(face.corners[2]) - first).getUnit();
}

SbColor scaled(const Colour& colour, float brightness)
{
    return SbColor(brightness * colour.red, brightness * colour.green, brightness * colour.blue);
}

// The vertices of a shape's slabs as they are written into the fields.
class SlabWriter
{
public:
    SlabWriter(SoVertexProperty& property, int corners) : fields(property)
    {
        fields.vertex.setNum(corners);
        fields.normal.setNum(corners);
        fields.orderedRGBA.setNum(corners);
        point = fields.vertex.startEditing();
        normal = fields.normal.startEditing();
        colour = fields.orderedRGBA.startEditing();
    }
    ~SlabWriter()
    {
        fields.vertex.finishEditing();
        fields.normal.finishEditing();
        fields.orderedRGBA.finishEditing();
    }
    SlabWriter(const SlabWriter&) = delete;
    SlabWriter& operator=(const SlabWriter&) = delete;

    void add(const PlacedBase& base, const Placement& placement, double angstrom)
    {
        // Half a turn about d1 makes a base of strand 1 one of strand 2.
        const Matrix3<double> given(base.rotation);
        const double turned = base.isInStrand2 ? -1 : 1;
        const Matrix3<double> frame(given.getColumn(0), given.getColumn(1) * turned,
                                    given.getColumn(2) * turned);
        const auto inData = [&frame](const Vector3<double>& v) {
            return frame.getColumn(0) * v.x + frame.getColumn(1) * v.y + frame.getColumn(2) * v.z;
        };
        const Colour ofBase = baseColour(base.letter);
        for (const Face& face : FACES) {
            const SbVec3f faceNormal = toSbVec3f(inData(normalOf(face)));
            const std::uint32_t packed =
                scaled(ofBase, face.isEdge ? EDGE_BRIGHTNESS : 1).getPackedValue();
            for (const Corner& corner : face.corners) {
                *point++ =
                    toSbVec3f(placement.toScene(base.point + inData(toVector(corner)) * angstrom));
                *normal++ = faceNormal;
                *colour++ = packed;
            }
        }
    }

private:
    SoVertexProperty& fields;
    SbVec3f *point, *normal;
    std::uint32_t* colour;
};

// 0 1 2 3 -1 4 5 6 7 -1 ...: as they are, those that are there stay.
void setFaces(SoMFInt32& indices, int corners)
{
    const int wanted = corners / 4 * 5;
    if (indices.getNum() == wanted && wanted > 0)
        return;
    indices.setNum(wanted);
    std::int32_t* index = indices.startEditing();
    for (int i = 0; i < corners; ++i) {
        *index++ = i;
        if (i % 4 == 3)
            *index++ = SO_END_FACE_INDEX;
    }
    indices.finishEditing();
}

SoIndexedFaceSet& shapeOf(const SoSeparator& slabs)
{
    return *static_cast<SoIndexedFaceSet*>(slabs.getChild(1));
}

} // namespace

Colour baseColour(char letter)
{
    switch (letter) {
    case 'A':
        return ADENINE;
    case 'C':
        return CYTOSINE;
    case 'G':
        return GUANINE;
    case 'T':
        return THYMINE;
    default:
        return OTHER;
    }
}

SoNucleobase* makeNucleobase(char letter, const DnaLook& look, bool isUpright)
{
    const bool isKnown = SoNucleobase::isBaseCorrect(letter);
    auto* base = new SoNucleobase(isKnown ? letter : SoNucleobase::BASES[0], isUpright);
    base->showAtoms(look.atoms && isKnown);
    base->showBox(look.baseBoxes);
    base->setBoxColour(toVector(baseColour(letter)));
    return base;
}

SoSeparator* makeSlabs()
{
    auto* solid = new SoShapeHints;
    solid->vertexOrdering = SoShapeHints::COUNTERCLOCKWISE;
    solid->shapeType = SoShapeHints::SOLID;
    auto* vertices = new SoVertexProperty;
    vertices->normalBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    vertices->materialBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    auto* shape = new SoIndexedFaceSet;
    shape->vertexProperty = vertices;
    shape->coordIndex.setNum(0);
    auto* slabs = new SoSeparator;
    slabs->addChild(solid);
    slabs->addChild(shape);
    return slabs;
}

void setSlabs(SoSeparator& slabs, const std::vector<PlacedBase>& bases, const Placement& placement,
              double angstrom)
{
    SoIndexedFaceSet& shape = shapeOf(slabs);
    const int corners = CORNERS * int(bases.size());
    {
        SlabWriter writer(static_cast<SoVertexProperty&>(*shape.vertexProperty.getValue()),
                          corners);
        for (const PlacedBase& base : bases)
            writer.add(base, placement, angstrom);
    }
    setFaces(shape.coordIndex, corners);
}

std::optional<std::size_t> pickedSlab(const SoPickedPoint& picked)
{
    const SoDetail* detail = picked.getDetail();
    if (!detail || !detail->isOfType(SoFaceDetail::getClassTypeId()))
        return {};
    const int face = static_cast<const SoFaceDetail*>(detail)->getFaceIndex();
    return std::size_t(face) / FACES.size();
}

} // namespace strandview
