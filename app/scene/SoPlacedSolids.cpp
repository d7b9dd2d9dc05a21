// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "scene/SoPlacedSolids.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/SbColor.h>
#include <Inventor/SbMatrix.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/details/SoPointDetail.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/misc/SoContextHandler.h>

#include "request/conversions.h"

namespace strandview {

namespace {

struct Vertex
{
    SbVec3f point, normal;
    std::array<std::uint8_t, 4> colour; // red, green, blue, alpha
};

// So many corners fit into the processor's cache.
const std::size_t CORNERS_AT_ONCE = 8192;
// A software driver collects what it is given until it is waited for.
const std::size_t CORNERS_COLLECTED = 2'000'000;

// More than a picture has tiles, unless it is large itself.
const std::size_t DRAWS_BEFORE_BUFFERS = 8;

SbMatrix matrixOf(const SoPlacedSolids::Place& place)
{
    SbMatrix matrix;
    matrix.setTransform(place.point, place.rotation, SbVec3f(1, 1, 1));
    return matrix;
}

std::array<std::uint8_t, 4> bytesOf(const Colour& colour, float brightness, std::uint8_t alpha)
{
    const std::uint32_t packed = SbColor(toSbColor(colour) * brightness).getPackedValue();
    return {std::uint8_t(packed >> 24), std::uint8_t(packed >> 16), std::uint8_t(packed >> 8),
            alpha};
}

// The bound vertex array, or else memory.
void setPointers(const Vertex* vertices)
{
    const auto at = [vertices](std::size_t offset) {
        return reinterpret_cast<const char*>(vertices) + offset;
    };
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), at(offsetof(Vertex, point)));
    glNormalPointer(GL_FLOAT, sizeof(Vertex), at(offsetof(Vertex, normal)));
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(Vertex), at(offsetof(Vertex, colour)));
}

void deleteBuffer(void* name, std::uint32_t /*context*/)
{
    const auto buffer = GLuint(reinterpret_cast<std::uintptr_t>(name));
    glDeleteBuffers(1, &buffer);
}

} // namespace

// What OpenGL is given of some places.
struct SoPlacedSolids::Piece
{
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
};

SO_NODE_SOURCE(SoPlacedSolids);

void SoPlacedSolids::initClass() { SO_NODE_INIT_CLASS(SoPlacedSolids, SoShape, "Shape"); }

SoPlacedSolids::SoPlacedSolids()
{
    SO_NODE_CONSTRUCTOR(SoPlacedSolids);
    SoContextHandler::addContextDestructionCallback(contextGoes, this);
}

SoPlacedSolids::~SoPlacedSolids()
{
    forget();
    SoContextHandler::removeContextDestructionCallback(contextGoes, this);
}

void SoPlacedSolids::setPlaces(std::vector<Solid> newSolids, std::vector<Place> newPlaces)
{
    solids = std::move(newSolids);
    places = std::move(newPlaces);
    box.makeEmpty();
    for (const Place& place : places) {
        const SbMatrix matrix = matrixOf(place);
        for (const Solid::Corner& corner : solids[place.solid].corners) {
            SbVec3f point;
            matrix.multVecMatrix(corner.point, point);
            box.extendBy(point);
        }
    }
    forget();
    touch();
}

void SoPlacedSolids::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoShape::copyContents(from, copyConnections);
    const auto& other = static_cast<const SoPlacedSolids&>(*from);
    setPlaces(other.solids, other.places);
}

void SoPlacedSolids::computeBBox(SoAction* /*action*/, SbBox3f& ofAll, SbVec3f& centre)
{
    ofAll = box;
    centre = box.isEmpty() ? SbVec3f(0, 0, 0) : box.getCenter();
}

void SoPlacedSolids::generatePrimitives(SoAction* action)
{
    SoPrimitiveVertex vertex;
    SoPointDetail ofPoint;
    SoFaceDetail ofFace;
    vertex.setDetail(&ofPoint);
    int face = 0;
    beginShape(action, TRIANGLES, &ofFace);
    for (const Place& place : places) {
        const SbMatrix matrix = matrixOf(place);
        const Solid& solid = solids[place.solid];
        for (std::size_t i = 0; i < solid.triangles.size(); ++i) {
            const Solid::Corner& corner = solid.corners[solid.triangles[i]];
            SbVec3f point, normal;
            matrix.multVecMatrix(corner.point, point);
            matrix.multDirMatrix(corner.normal, normal);
            vertex.setPoint(point);
            vertex.setNormal(normal);
            shapeVertex(&vertex);
            if (i % 3 == 2)
                ofFace.setFaceIndex(++face);
        }
    }
    endShape();
}

// Drawing

// As many whole places at a time as fill a piece, in their order or another one; indices count from
// its beginning, or from that of all.
template <typename Take>
void SoPlacedSolids::forEachPiece(bool countsFromAll, const Order& order, Take take) const
{
    Piece piece;
    std::size_t before = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Place& place = places[order.empty() ? i : order[i]];
        const Solid& solid = solids[place.solid];
        const SbMatrix matrix = matrixOf(place);
        const auto first = std::uint32_t(before + piece.vertices.size());
        for (const std::uint32_t corner : solid.triangles)
            piece.indices.push_back(first + corner);
        float brightness = -1;
        std::array<std::uint8_t, 4> colour = {};
        for (const Solid::Corner& corner : solid.corners) {
            if (corner.brightness != brightness)
                colour = bytesOf(place.colour, brightness = corner.brightness, alpha);
            Vertex vertex;
            matrix.multVecMatrix(corner.point, vertex.point);
            matrix.multDirMatrix(corner.normal, vertex.normal);
            vertex.colour = colour;
            piece.vertices.push_back(vertex);
        }
        if (piece.vertices.size() < CORNERS_AT_ONCE && i + 1 < places.size())
            continue;
        take(piece);
        before += countsFromAll ? piece.vertices.size() : 0;
        piece.vertices.clear();
        piece.indices.clear();
    }
}

void SoPlacedSolids::GLRender(SoGLRenderAction* action)
{
    if (box.isEmpty() || !shouldGLRender(action))
        return;
    SoState* const state = action->getState();
    SoMaterialBundle materials(action);
    materials.sendFirst();
    const float opacity = 1 - SoLazyElement::getTransparency(state, 0);
    if (const auto now = std::uint8_t(std::lround(255 * opacity)); now != alpha) {
        alpha = now;
        forget();
    }
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY})
        glEnableClientState(array);
    Kept& kept = keptByContext[std::uint32_t(SoGLCacheContextElement::get(state))];
    if (alpha < 255) {
        drawFromMemory(farthestFirst(state));
    } else {
        if (kept.draws == DRAWS_BEFORE_BUFFERS)
            fillBuffers(kept);
        if (kept.vertices != 0)
            drawFromBuffers(kept);
        else
            drawFromMemory({});
        ++kept.draws;
    }
    glPopClientAttrib();
    SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
    // A display list would keep what buffers keep, or nothing has to.
    SoGLCacheContextElement::shouldAutoCache(state, SoGLCacheContextElement::DONT_AUTO_CACHE);
}

// As they are to be blended.
SoPlacedSolids::Order SoPlacedSolids::farthestFirst(SoState* state) const
{
    SbMatrix toEye = SoModelMatrixElement::get(state);
    toEye.multRight(SoViewingMatrixElement::get(state));
    const SbVec3f towardsEye(toEye[0][2], toEye[1][2], toEye[2][2]);
    std::vector<float> nearness;
    nearness.reserve(places.size());
    for (const Place& place : places)
        nearness.push_back(towardsEye.dot(place.point));
    Order order(places.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&nearness](std::uint32_t a, std::uint32_t b) {
        return nearness[a] < nearness[b];
    });
    return order;
}

void SoPlacedSolids::drawFromMemory(const Order& order) const
{
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    std::size_t collected = 0;
    forEachPiece(false, order, [&collected](const Piece& piece) {
        setPointers(piece.vertices.data());
        glDrawRangeElements(GL_TRIANGLES, 0, GLuint(piece.vertices.size() - 1),
                            GLsizei(piece.indices.size()), GL_UNSIGNED_INT, piece.indices.data());
        collected += piece.vertices.size();
        if (collected >= CORNERS_COLLECTED) {
            glFinish();
            collected = 0;
        }
    });
}

void SoPlacedSolids::drawFromBuffers(const Kept& kept) const
{
    glBindBuffer(GL_ARRAY_BUFFER, kept.vertices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, kept.indices);
    setPointers(nullptr);
    const std::size_t all = numberOf(&Solid::triangles), most = 3 * CORNERS_COLLECTED;
    for (std::size_t first = 0; first < all; first += most) {
        glDrawElements(GL_TRIANGLES, GLsizei(std::min(most, all - first)), GL_UNSIGNED_INT,
                       reinterpret_cast<const void*>(first * sizeof(std::uint32_t)));
        if (all > most)
            glFinish();
    }
}

void SoPlacedSolids::fillBuffers(Kept& kept) const
{
    const auto make = [](GLenum target, std::uint32_t& name, std::size_t bytes) {
        glGenBuffers(1, &name);
        glBindBuffer(target, name);
        glBufferData(target, GLsizeiptr(bytes), nullptr, GL_STATIC_DRAW);
    };
    make(GL_ARRAY_BUFFER, kept.vertices, numberOf(&Solid::corners) * sizeof(Vertex));
    make(GL_ELEMENT_ARRAY_BUFFER, kept.indices,
         numberOf(&Solid::triangles) * sizeof(std::uint32_t));
    GLintptr vertices = 0, indices = 0;
    const auto append = [](GLenum target, GLintptr& place, const auto& elements) {
        const auto bytes = GLsizeiptr(elements.size() * sizeof elements[0]);
        glBufferSubData(target, place, bytes, elements.data());
        place += bytes;
    };
    forEachPiece(true, {}, [&](const Piece& piece) {
        append(GL_ARRAY_BUFFER, vertices, piece.vertices);
        append(GL_ELEMENT_ARRAY_BUFFER, indices, piece.indices);
    });
}

// In all places.
template <typename Element>
std::size_t SoPlacedSolids::numberOf(std::vector<Element> Solid::*elements) const
{
    std::size_t number = 0;
    for (const Place& place : places)
        number += (solids[place.solid].*elements).size();
    return number;
}

void SoPlacedSolids::forget()
{
    for (const auto& [context, kept] : keptByContext)
        for (const std::uint32_t name : {kept.vertices, kept.indices})
            if (name != 0)
                SoGLCacheContextElement::scheduleDeleteCallback(
                    context, deleteBuffer, reinterpret_cast<void*>(std::uintptr_t(name)));
    keptByContext.clear();
}

// Its buffers go with it.
void SoPlacedSolids::contextGoes(std::uint32_t context, void* closure)
{
    static_cast<SoPlacedSolids*>(closure)->keptByContext.erase(context);
}

} // namespace strandview
