// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "MeshDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include <GL/glext.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLTextureEnabledElement.h>
#include <Inventor/elements/SoMaterialBindingElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoNode.h>

#include <TubeMesh.h>

#include "GLVertexState.h"
#include "sendMaterial.h"

using algebra3d::Vector3;

namespace {

// Of one node under different materials; with more of them it is drawn as if it changed.
const std::size_t LARGEST_COUNT = 8;

struct Vertex
{
    float point[3];
    float normal[3];
    float texture[2];
};

// What meshes send to OpenGL, as arrays.
class VertexArrays
{
public:
    VertexArrays(const std::vector<MeshDrawing::Part>& parts, bool overall)
        : materialOverall(overall)
    {
        std::size_t count = 0;
        for (const auto& [mesh, materialOffset] : parts)
            count += std::size_t(mesh.getHeight() + 2) * std::size_t(mesh.getWidth());
        vertices.reserve(count);
        materials.reserve(count);
        triangles.reserve(6 * count);
        for (const auto& [mesh, materialOffset] : parts) {
            addBody(mesh, materialOffset);
            if (auto* tube = dynamic_cast<TubeMesh*>(&mesh)) {
                addCap(*tube, 0, materialOffset);
                addCap(*tube, tube->getHeight() - 1, materialOffset);
            }
        }
    }

    std::vector<Vertex> vertices;
    std::vector<int> materials;           // an index for each vertex
    std::vector<std::uint32_t> triangles; // three vertices each

private:
    // See Mesh::render(): the triangles of its strips, each with the corners in the strip's
    // order, which tells their lines and a flat colour.
    void addBody(Mesh& mesh, int materialOffset)
    {
        if (!std::as_const(mesh).isValid())
            return;
        const int height = mesh.getHeight(), width = mesh.getWidth();
        const auto first = std::uint32_t(vertices.size());
        for (int i = 0; i < height; ++i) {
            for (int j = 0; j < width; ++j) {
                addVertex(mesh.getPoints()[i][j], mesh.getNormals()[i][j], double(j) / (width - 1),
                          double(i) / (height - 1), materialOffset, mesh.getMaterialIndex(i, j));
            }
        }
        for (int i = 0; i + 1 < height; ++i) {
            const std::uint32_t row = first + std::uint32_t(i) * std::uint32_t(width);
            const std::uint32_t next = row + std::uint32_t(width);
            for (std::uint32_t j = 0; j + 1 < std::uint32_t(width); ++j) {
                addTriangle(next + j, row + j, next + j + 1);
                addTriangle(next + j + 1, row + j, row + j + 1);
            }
        }
    }

    // See TubeMesh::render(): the triangles of its fan.
    void addCap(TubeMesh& tube, int row, int materialOffset)
    {
        if (!tube.isValid())
            return;
        const int height = tube.getHeight(), width = tube.getWidth();
        const auto first = std::uint32_t(vertices.size());
        for (int k = width - 2; k >= 0; --k) {
            addVertex(tube.getPoints()[row][k],
                      row == 0 ? tube.getLowerCapNormal() : tube.getUpperCapNormal(),
                      double(k) / width, double(row) / height, materialOffset,
                      tube.getCapMaterialIndex(row));
        }
        for (std::uint32_t last = first + 2; last < vertices.size(); ++last)
            addTriangle(first, last - 1, last);
    }

    void addVertex(const Vector3<double>& point, const Vector3<double>& normal, double s, double t,
                   int materialOffset, int materialIndex)
    {
        vertices.push_back({{float(point.x), float(point.y), float(point.z)},
                            {float(normal.x), float(normal.y), float(normal.z)},
                            {float(s), float(t)}});
        materials.push_back(materialOffset + (materialOverall ? 0 : materialIndex));
    }

    void addTriangle(std::uint32_t a, std::uint32_t b, std::uint32_t c)
    {
        triangles.push_back(a);
        triangles.push_back(b);
        triangles.push_back(c);
    }

    const bool materialOverall;
};

using Colour = std::uint32_t; // four bytes: red, green, blue, alpha

// The colour in which OpenGL draws what has this material.
Colour colourOf(SoMaterialBundle& bundle, int material)
{
    sendMaterial(bundle, material);
    GLfloat current[4];
    glGetFloatv(GL_CURRENT_COLOR, current);
    Colour colour = 0;
    auto* const bytes = reinterpret_cast<GLubyte*>(&colour);
    for (int i = 0; i < 4; ++i)
        bytes[i] = GLubyte(std::lround(255 * current[i]));
    return colour;
}

// Neighbours have the same material most of the time.
std::vector<Colour> coloursOf(const std::vector<int>& materials, SoMaterialBundle& bundle)
{
    std::vector<Colour> colours;
    colours.reserve(materials.size());
    for (std::size_t i = 0; i < materials.size(); ++i) {
        const bool same = i > 0 && materials[i] == materials[i - 1];
        colours.push_back(same ? colours.back() : colourOf(bundle, materials[i]));
    }
    return colours;
}

} // namespace

MeshDrawing::Materials::Materials(SoState* state)
{
    // Coin's own caches look at this too, but it shows it to elements only.
    struct Opened : SoLazyElement
    {
        static const CoinState& of(SoState* s) { return getInstance(s)->*(&Opened::coinstate); }
    };
    const auto& current = Opened::of(state);
    diffuse = current.diffusenodeid;
    transparency = current.transpnodeid;
    transparencyType = current.transptype;
    binding = SoMaterialBindingElement::get(state);
}

bool MeshDrawing::Materials::operator==(const Materials& other) const
{
    return diffuse == other.diffuse && transparency == other.transparency &&
           transparencyType == other.transparencyType && binding == other.binding;
}

void MeshDrawing::draw(const SoNode& node, SoGLRenderAction* action, const std::vector<Part>& parts)
{
    if (drawnId != node.getNodeId()) {
        drawnId = node.getNodeId();
        contexts.clear();
    }
    SoState* const state = action->getState();
    SoMaterialBundle bundle(action);
    bundle.sendFirst();
    const std::uint32_t context = action->getCacheContext();
    if (!state->isCacheOpen() && GLBuffer::areSupported(context)) {
        Kept& kept = contexts[context];
        if (const Colours* colours = find(action, kept, parts)) {
            drawKept(kept, *colours, !bundle.isColorOnly(), state);
            return;
        }
    }
    for (const auto& [mesh, materialOffset] : parts)
        mesh.render(action, materialOffset);
}

// Those that the parts are drawn with, filled, or null if they were not seen before.
const MeshDrawing::Colours* MeshDrawing::find(SoGLRenderAction* action, Kept& kept,
                                              const std::vector<Part>& parts)
{
    auto& colours = kept.colours;
    const Materials materials(action->getState());
    const auto found = std::find_if(colours.begin(), colours.end(), [&](const Colours& seen) {
        return seen.materials == materials;
    });
    if (found == colours.end()) {
        if (colours.size() == LARGEST_COUNT)
            colours.erase(colours.begin());
        colours.push_back({materials, {}});
        return nullptr;
    }
    std::rotate(found, found + 1, colours.end());
    if (GLBuffer& buffer = colours.back().buffer; !buffer) {
        const std::uint32_t context = action->getCacheContext();
        SoMaterialBundle bundle(action);
        const VertexArrays arrays(parts, isMaterialOverall(action->getState()));
        if (!kept.vertices) {
            kept.vertices = GLBuffer(context, GL_ARRAY_BUFFER, arrays.vertices);
            kept.triangles = GLBuffer(context, GL_ELEMENT_ARRAY_BUFFER, arrays.triangles);
            kept.indexCount = int(arrays.triangles.size());
        }
        buffer = GLBuffer(context, GL_ARRAY_BUFFER, coloursOf(arrays.materials, bundle));
    }
    return &colours.back();
}

void MeshDrawing::drawKept(const Kept& kept, const Colours& colours, bool normals, SoState* state)
{
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    kept.vertices.bind(GL_ARRAY_BUFFER);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), GLBuffer::offset(offsetof(Vertex, point)));
    if (normals) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_FLOAT, sizeof(Vertex), GLBuffer::offset(offsetof(Vertex, normal)));
    }
    if (SoGLTextureEnabledElement::get(state)) {
        glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glTexCoordPointer(2, GL_FLOAT, sizeof(Vertex), GLBuffer::offset(offsetof(Vertex, texture)));
    }
    colours.buffer.bind(GL_ARRAY_BUFFER);
    glEnableClientState(GL_COLOR_ARRAY);
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, nullptr);
    kept.triangles.bind(GL_ELEMENT_ARRAY_BUFFER);
    glDrawElements(GL_TRIANGLES, kept.indexCount, GL_UNSIGNED_INT, nullptr);
    glPopClientAttrib();
    // Which colour is current now OpenGL leaves open.
    SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
}
