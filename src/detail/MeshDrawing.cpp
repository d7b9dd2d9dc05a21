// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "MeshDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include <GL/glext.h>
#include <Inventor/SbBox3f.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoDrawStyleElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoGLTextureEnabledElement.h>
#include <Inventor/elements/SoMaterialBindingElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoNode.h>

#include <TubeMesh.h>

#include "DepthGrid.h"
#include "GLVertexState.h"
#include "drawNearestFirst.h"
#include "sendMaterial.h"
#include "toSbVec3f.h"

using algebra3d::Vector3;

namespace {

// Of one node under different materials; with more of them it is drawn as if it changed.
const std::size_t LARGEST_COUNT = 8;

// Of fewer rows there is little to leave out.
const int MANY_ROWS = 1000;

struct Vertex
{
    float point[3];
    float normal[3];
    float texture[2];
};

float diagonalOf(const SbBox3f& box) { return (box.getMax() - box.getMin()).length(); }

// Seen from aside, front and back: two layers of a tube, one of a ribbon, of two columns.
double areaOfStrip(Mesh& mesh, int row)
{
    const Vector3<double>* const points = mesh.getPoints()[row];
    const int width = mesh.getWidth();
    const int opposite = width == 2 ? 1 : width / 2;
    const double across = (points[opposite] - points[0]).getNorm();
    const double along =
        std::max((mesh.getPoints()[row + 1][0] - points[0]).getNorm(),
                 (mesh.getPoints()[row + 1][opposite] - points[opposite]).getNorm());
    return along * across * (width == 2 ? 1 : 2);
}

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
            ++part;
        }
    }

    std::vector<Vertex> vertices;
    std::vector<int> materials;           // an index for each vertex
    std::vector<std::uint32_t> triangles; // three vertices each
    std::vector<MeshDrawing::Run> runs;   // of all triangles

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
        auto begin = std::uint32_t(triangles.size());
        SbBox3f box = boxOf(first, width);
        const float largest = 1.3F * diagonalOf(box);
        double areaOfRun = 0;
        for (int i = 0; i + 1 < height; ++i) {
            const std::uint32_t row = first + std::uint32_t(i) * std::uint32_t(width);
            const std::uint32_t next = row + std::uint32_t(width);
            for (std::uint32_t j = 0; j + 1 < std::uint32_t(width); ++j) {
                addTriangle(next + j, row + j, next + j + 1);
                addTriangle(next + j + 1, row + j, row + j + 1);
            }
            box.extendBy(boxOf(next, width));
            areaOfRun += areaOfStrip(mesh, i);
            if (diagonalOf(box) >= largest || i + 2 == height) {
                addRun(begin, box, areaOfRun);
                begin = std::uint32_t(triangles.size());
                box = boxOf(next, width);
                areaOfRun = 0;
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
        const auto begin = std::uint32_t(triangles.size());
        for (std::uint32_t last = first + 2; last < vertices.size(); ++last)
            addTriangle(first, last - 1, last);
        const SbBox3f box = boxOf(first, int(vertices.size() - first));
        addRun(begin, box, double(diagonalOf(box)) * double(diagonalOf(box)) / 2);
    }

    SbBox3f boxOf(std::uint32_t first, int count) const
    {
        SbBox3f box;
        for (int i = 0; i < count; ++i)
            box.extendBy(SbVec3f(vertices[first + std::uint32_t(i)].point));
        return box;
    }

    // From the first triangle index to the last there is.
    void addRun(std::uint32_t begin, const SbBox3f& box, double area)
    {
        runs.push_back({part, begin, std::uint32_t(triangles.size()) - begin, box.getCenter(),
                        diagonalOf(box) / 2, area});
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
    std::size_t part = 0;
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

// Whether all that is drawn hides all that is behind it.
bool isOpaque(SoState* state)
{
    return !glIsEnabled(GL_BLEND) && SoDrawStyleElement::get(state) == SoDrawStyleElement::FILLED;
}

void drawRun(const MeshDrawing::Run* run)
{
    glDrawElements(GL_TRIANGLES, GLsizei(run->count), GL_UNSIGNED_INT,
                   GLBuffer::offset(run->first * sizeof(std::uint32_t)));
}

// One part after the other, since they meet: where both are equally near, the last is seen.
void drawRunsNearestFirst(const std::vector<MeshDrawing::Run>& runs, DepthGrid& grid)
{
    const double stretch = DepthGrid::stretchOf(grid.getToEye());
    std::vector<InView<const MeshDrawing::Run*>> seen;
    double unread = 0;
    for (auto run = runs.begin(); run != runs.end();) {
        seen.clear();
        const std::size_t part = run->part;
        for (; run != runs.end() && run->part == part; ++run) {
            const DepthGrid::Disc disc =
                grid.project(run->centre, run->radius, grid.getToEye(), stretch);
            if (!grid.seen(disc).isEmpty())
                seen.push_back(
                    {&*run, disc, disc.depth, grid.pixelsOf(run->area, run->radius, disc)});
        }
        drawNearestFirst(seen, grid, unread, drawRun,
                         [&grid](const MeshDrawing::Run* one, const DepthGrid::Disc& disc) {
                             double drawn = 0;
                             for (const DepthGrid::Area& area : grid.seenInParts(disc)) {
                                 grid.enter(area);
                                 drawRun(one);
                                 drawn += area.getSize();
                             }
                             return drawn;
                         });
    }
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
        measure(parts);
    }
    SoState* const state = action->getState();
    SoMaterialBundle bundle(action);
    bundle.sendFirst();
    const std::uint32_t context = action->getCacheContext();
    if (!state->isCacheOpen() && GLBuffer::areSupported(context)) {
        Kept& kept = contexts[context];
        DepthGrid grid(state);
        const bool overdrawn = grid.mayCover(centre, radius, area, SORTED_LAYERS) &&
                               rowCount >= MANY_ROWS && isOpaque(state) &&
                               DepthGrid::isUsable(state);
        if (const Colours* colours = find(action, kept, parts, overdrawn)) {
            drawKept(kept, *colours, !bundle.isColorOnly(), state, overdrawn ? &grid : nullptr);
            return;
        }
    }
    for (const auto& [mesh, materialOffset] : parts)
        mesh.render(action, materialOffset);
}

// From few points per row, so that what changes in every frame costs hardly more.
void MeshDrawing::measure(const std::vector<Part>& parts)
{
    SbBox3f box;
    area = 0;
    rowCount = 0;
    for (const auto& [mesh, materialOffset] : parts) {
        if (!std::as_const(mesh).isValid())
            continue;
        rowCount += mesh.getHeight();
        const int opposite = mesh.getWidth() == 2 ? 1 : mesh.getWidth() / 2;
        for (int i = 0; i < mesh.getHeight(); ++i) {
            box.extendBy(toSbVec3f(mesh.getPoints()[i][0]));
            box.extendBy(toSbVec3f(mesh.getPoints()[i][opposite]));
            if (i + 1 < mesh.getHeight())
                area += areaOfStrip(mesh, i);
        }
    }
    centre = box.isEmpty() ? SbVec3f(0, 0, 0) : box.getCenter();
    radius = box.isEmpty() ? 0 : diagonalOf(box) / 2;
}

// Those that the parts are drawn with, filled, or null if they were not seen before and need
// not be there at once.
const MeshDrawing::Colours* MeshDrawing::find(SoGLRenderAction* action, Kept& kept,
                                              const std::vector<Part>& parts, bool atOnce)
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
        if (!atOnce)
            return nullptr;
    } else {
        std::rotate(found, found + 1, colours.end());
    }
    if (GLBuffer& buffer = colours.back().buffer; !buffer) {
        const std::uint32_t context = action->getCacheContext();
        SoMaterialBundle bundle(action);
        const VertexArrays arrays(parts, isMaterialOverall(action->getState()));
        if (!kept.vertices) {
            kept.vertices = GLBuffer(context, GL_ARRAY_BUFFER, arrays.vertices);
            kept.triangles = GLBuffer(context, GL_ELEMENT_ARRAY_BUFFER, arrays.triangles);
            kept.indexCount = int(arrays.triangles.size());
            kept.runs = arrays.runs;
        }
        buffer = GLBuffer(context, GL_ARRAY_BUFFER, coloursOf(arrays.materials, bundle));
    }
    return &colours.back();
}

void MeshDrawing::drawKept(const Kept& kept, const Colours& colours, bool normals, SoState* state,
                           DepthGrid* grid)
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
    if (grid)
        drawRunsNearestFirst(kept.runs, *grid);
    else
        glDrawElements(GL_TRIANGLES, kept.indexCount, GL_UNSIGNED_INT, nullptr);
    glPopClientAttrib();
    // Which colour is current now OpenGL leaves open.
    SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
}
