// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/BaseNodes.h"

#include <array>

#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoVertexProperty.h>

#include <SoNucleobase.h>
#include <global.h>

#include "request/conversions.h"

namespace strandview {

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

// Half a turn about x makes a base of strand 1 one of strand 2.
SbVec3f placed(const Vector3<double>& v, bool isUpright)
{
    return isUpright ? toSbVec3f(v) : toSbVec3f({v.x, -v.y, -v.z});
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

SoSeparator* makeSlab(char letter, bool isUpright)
{
    const Colour colour = baseColour(letter);
    auto* vertices = new SoVertexProperty;
    vertices->normalBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    vertices->materialBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    auto* shape = new SoIndexedFaceSet;
    shape->vertexProperty = vertices;
    int vertex = 0, index = 0;
    for (const Face& face : FACES) {
        const SbVec3f normal = placed(normalOf(face), isUpright);
        const float brightness = face.isEdge ? EDGE_BRIGHTNESS : 1;
        for (const Corner& corner : face.corners) {
            vertices->vertex.set1Value(vertex, placed(toVector(corner), isUpright));
            vertices->normal.set1Value(vertex, normal);
            vertices->orderedRGBA.set1Value(vertex, scaled(colour, brightness).getPackedValue());
            shape->coordIndex.set1Value(index++, vertex++);
        }
        shape->coordIndex.set1Value(index++, SO_END_FACE_INDEX);
    }
    auto* slab = new SoSeparator;
    slab->addChild(createMaterial(toVector(colour), toVector(colour), {}));
    slab->addChild(shape);
    return slab;
}

DnaLook atomsAlone(const DnaLook& look)
{
    DnaLook atoms;
    atoms.atoms = look.atoms;
    atoms.bases = atoms.baseBoxes = atoms.pairBoxes = false;
    return atoms;
}

// Its switches are left alone where nothing changes: drawing follows who touches them.
void showBase(SoNucleobase& base, char letter, bool isUpright, const DnaLook& look)
{
    const bool hasAtoms = look.atoms && SoNucleobase::isBaseCorrect(letter);
    if (base.areAtomsShown() != hasAtoms)
        base.showAtoms(hasAtoms);
    if (base.isBoxShown() != look.baseBoxes)
        base.showBox(look.baseBoxes);
    if (look.bases && base.getNumChildren() == SLAB_OF_BASE)
        base.addChild(makeSlab(letter, isUpright));
    else if (!look.bases && base.getNumChildren() > SLAB_OF_BASE)
        base.removeChild(SLAB_OF_BASE);
}

SoNucleobase* makeNucleobase(char letter, const DnaLook& look, bool isUpright)
{
    const bool isKnown = SoNucleobase::isBaseCorrect(letter);
    auto* base = new SoNucleobase(isKnown ? letter : SoNucleobase::BASES[0], isUpright);
    base->showAtoms(look.atoms && isKnown);
    base->showBox(look.baseBoxes);
    base->setBoxColour(toVector(baseColour(letter)));
    if (look.bases)
        base->addChild(makeSlab(letter, isUpright));
    return base;
}

} // namespace strandview
