// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "drawing/MeshDrawing.h"

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

#include <Mesh.h>
#include <MeshVisitor.h>
#include <toCoin.h>

#include "drawing/DepthGrid.h"
#include "drawing/GLVertexState.h"
#include "drawing/drawNearestFirst.h"
#include "drawing/sendMaterial.h"

using algebra3d::Vector3;

namespace {

// Of one node under different materials; with more of them it is drawn as if it changed.
const std::size_t LARGEST_COUNT = 8;

// From here on buffers are filled at once, and drawn in several draws.
const std::size_t LARGE_COUNT = 2'000'000;
const std::size_t VERTICES_PER_DRAW = 1 << 18;

// Of fewer rows there is little to leave out.
const int MANY_ROWS = 1000;

struct BufferVertex
{
    float point[3];
    float normal[3];
};

struct TexturePlace
{
    float s, t;
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
class ColourLookup
{
public:
    explicit ColourLookup(SoMaterialBundle& materials) : bundle(materials) {}

    Colour operator()(int material)
    {
        if (material != lastMaterial) {
            lastMaterial = material;
            lastColour = colourOf(bundle, material);
        }
        return lastColour;
    }

private:
    SoMaterialBundle& bundle;
    int lastMaterial = -1;
    Colour lastColour = 0;
};

// Whether all that is drawn hides all that is behind it.
bool isOpaque(SoState* state)
{
    return !glIsEnabled(GL_BLEND) && SoDrawStyleElement::get(state) == SoDrawStyleElement::FILLED;
}

} // namespace

namespace {

// The fan that closes a mesh at one of its ends.
struct Cap
{
    struct Corner
    {
        Vector3<double> point, normal;
        TexturePlace place;
    };

    int row = 0;
    int material = 0;
    std::vector<Corner> corners;
};

class CapCollector final : public MeshVisitor
{
public:
    explicit CapCollector(Mesh& mesh) { mesh.visitCaps(*this); }

    std::vector<Cap> caps;

private:
    void begin(Kind /*kind*/, int material) override
    {
        caps.emplace_back();
        caps.back().material = material;
    }
    void vertex(const Vertex& v) override
    {
        caps.back().row = v.row;
        caps.back().corners.push_back({v.point, v.normal, {float(v.s), float(v.t)}});
    }
    void end() override {}
};

} // namespace

// What meshes send to OpenGL, one after the other: the vertices of all bodies and caps, each
// once, and the triangles between them.
class MeshDrawing::Layout
{
public:
    Layout(const std::vector<Part>& drawnParts, bool overall)
        : parts(drawnParts), materialOverall(overall)
    {
        for (const auto& [mesh, materialOffset] : parts) {
            caps.push_back(CapCollector(mesh).caps);
            vertexCount += bodySize(mesh);
            for (const Cap& cap : caps.back())
                vertexCount += cap.corners.size();
        }
        std::size_t vertex = 0, index = 0;
        for (std::size_t part = 0; part < parts.size(); ++part) {
            Mesh& mesh = parts[part].mesh;
            if (bodySize(mesh) > 0)
                placeBody(mesh, part, vertex, index);
            for (const Cap& cap : caps[part])
                placeCap(mesh, cap, part, vertex, index);
        }
    }

    std::size_t getVertexCount() const { return vertexCount; }

    // Calls visit(point, normal, texture place, material) for each vertex.
    template <typename Visit>
    void visitVertices(Visit visit) const
    {
        for (std::size_t part = 0; part < parts.size(); ++part) {
            visitBody(parts[part].mesh, parts[part].materialOffset, visit);
            for (const Cap& cap : caps[part]) {
                for (const Cap::Corner& corner : cap.corners)
                    visit(corner.point, corner.normal, corner.place,
                          material(parts[part].materialOffset, cap.material));
            }
        }
    }

    // See MeshVisitor: the triangles of the strips and fans, each with
    // the corners in the strip's order, which tells their lines and a flat colour. Of a body
    // drawn in several draws the indices of the first rows serve for all that follow.
    std::vector<std::uint32_t> makeIndices() const
    {
        std::vector<std::uint32_t> indices;
        for (const Piece& piece : pieces) {
            if (piece.cap)
                addCap(piece, indices);
            else
                addBody(piece, indices);
        }
        return indices;
    }

    // How all of it is drawn in the meshes' order, in few draws.
    std::vector<Draw> makeDraws() const
    {
        std::vector<Draw> draws;
        for (const Piece& piece : pieces) {
            for (std::size_t strip = 0; strip < piece.strips; strip += piece.stripsPerDraw)
                addDraw(drawOf(piece, strip, std::min(strip + piece.stripsPerDraw, piece.strips)),
                        draws);
        }
        return draws;
    }

    // The same in runs that are about as long as they are wide.
    std::vector<Run> makeRuns() const
    {
        std::vector<Run> runs;
        for (const Piece& piece : pieces) {
            if (piece.cap) {
                const SbBox3f box = boxOf(piece.mesh, piece.row);
                const double side = double(diagonalOf(box));
                runs.push_back({piece.part, drawOf(piece, 0, 1), box.getCenter(),
                                diagonalOf(box) / 2, side * side / 2, 0, 0, 0});
            } else {
                addRunsOfBody(piece, runs);
            }
        }
        return runs;
    }

private:
    // A body, whose strips are alike, or a cap, which counts as one strip.
    struct Piece
    {
        Mesh& mesh;
        std::size_t part;
        bool cap;
        int row; // of a cap
        std::size_t firstVertex, firstIndex;
        std::size_t strips, indicesPerStrip, stripsPerDraw;
    };

    static std::size_t bodySize(const Mesh& mesh)
    {
        return mesh.isValid() ? std::size_t(mesh.getHeight()) * std::size_t(mesh.getWidth()) : 0;
    }

    void placeBody(Mesh& mesh, std::size_t part, std::size_t& vertex, std::size_t& index)
    {
        const auto width = std::size_t(mesh.getWidth());
        const auto strips = std::size_t(mesh.getHeight() - 1);
        const std::size_t most = std::max(VERTICES_PER_DRAW / width, std::size_t(1));
        const std::size_t perDraw =
            std::max(vertexCount >= LARGE_COUNT ? std::min(strips, most) : strips, std::size_t(1));
        pieces.push_back({mesh, part, false, 0, vertex, index, strips, 6 * (width - 1), perDraw});
        vertex += bodySize(mesh);
        index += std::min(strips, perDraw) * pieces.back().indicesPerStrip;
    }

    void placeCap(Mesh& mesh, const Cap& cap, std::size_t part, std::size_t& vertex,
                  std::size_t& index)
    {
        const std::size_t size = cap.corners.size();
        pieces.push_back({mesh, part, true, cap.row, vertex, index, 1, 3 * (size - 2), 1});
        vertex += size;
        index += pieces.back().indicesPerStrip;
    }

    template <typename Visit>
    void visitBody(Mesh& mesh, int materialOffset, Visit& visit) const
    {
        if (!std::as_const(mesh).isValid())
            return;
        const int height = mesh.getHeight(), width = mesh.getWidth();
        for (int i = 0; i < height; ++i) {
            for (int j = 0; j < width; ++j) {
                const TexturePlace place{float(double(j) / (width - 1)),
                                         float(double(i) / (height - 1))};
                visit(mesh.getPoints()[i][j], mesh.getNormals()[i][j], place,
                      material(materialOffset, mesh.getMaterialIndex(i, j)));
            }
        }
    }

    int material(int offset, int index) const { return offset + (materialOverall ? 0 : index); }

    static void addBody(const Piece& piece, std::vector<std::uint32_t>& indices)
    {
        const auto width = std::uint32_t(piece.mesh.getWidth());
        for (std::size_t i = 0; i < std::min(piece.strips, piece.stripsPerDraw); ++i) {
            const auto row = std::uint32_t(piece.firstVertex + i * width);
            const std::uint32_t next = row + width;
            for (std::uint32_t j = 0; j + 1 < width; ++j)
                indices.insert(indices.end(), {next + j, row + j, next + j + 1, next + j + 1,
                                               row + j, row + j + 1});
        }
    }

    static void addCap(const Piece& piece, std::vector<std::uint32_t>& indices)
    {
        const auto first = std::uint32_t(piece.firstVertex);
        for (std::uint32_t k = 0; k < piece.indicesPerStrip / 3; ++k)
            indices.insert(indices.end(), {first, first + k + 1, first + k + 2});
    }

    // Consecutive strips of one draw.
    static Draw drawOf(const Piece& piece, std::size_t strip, std::size_t end)
    {
        const std::size_t inDraw = strip % piece.stripsPerDraw;
        return {(strip - inDraw) * std::size_t(piece.mesh.getWidth()),
                piece.firstIndex + inDraw * piece.indicesPerStrip,
                int((end - strip) * piece.indicesPerStrip)};
    }

    // One with the draw before if it goes on where that ends.
    static void addDraw(const Draw& draw, std::vector<Draw>& draws)
    {
        if (draw.indexCount == 0)
            return;
        if (!draws.empty() && draws.back().firstVertex == draw.firstVertex &&
            draws.back().firstIndex + std::size_t(draws.back().indexCount) == draw.firstIndex)
            draws.back().indexCount += draw.indexCount;
        else
            draws.push_back(draw);
    }

    static SbBox3f boxOf(Mesh& mesh, int row)
    {
        SbBox3f box;
        for (int j = 0; j < mesh.getWidth(); ++j)
            box.extendBy(toSbVec3f(mesh.getPoints()[row][j]));
        return box;
    }

    static void addRunsOfBody(const Piece& piece, std::vector<Run>& runs)
    {
        SbBox3f box = boxOf(piece.mesh, 0);
        const float largest = 1.3F * diagonalOf(box);
        double area = 0;
        std::size_t begin = 0;
        for (std::size_t i = 0; i < piece.strips; ++i) {
            const SbBox3f next = boxOf(piece.mesh, int(i) + 1);
            box.extendBy(next);
            area += areaOfStrip(piece.mesh, int(i));
            const bool endsDraw = (i + 1) % piece.stripsPerDraw == 0;
            if (diagonalOf(box) >= largest || endsDraw || i + 1 == piece.strips) {
                runs.push_back({piece.part, drawOf(piece, begin, i + 1), box.getCenter(),
                                diagonalOf(box) / 2, area, int(begin), int(i + 2 - begin),
                                piece.firstVertex + begin * std::size_t(piece.mesh.getWidth())});
                begin = i + 1;
                box = next;
                area = 0;
            }
        }
    }

    const std::vector<Part>& parts;
    const bool materialOverall;
    std::vector<std::vector<Cap>> caps; // of each part
    std::size_t vertexCount = 0;
    std::vector<Piece> pieces; // in the order of the vertices
};

// Draws from the buffers.
class MeshDrawing::Drawer
{
public:
    Drawer(const Kept& keptBuffers, const Colours& shownColours, bool sendNormals, SoState* state)
        : kept(keptBuffers),
          colours(shownColours),
          normals(sendNormals),
          textured(SoGLTextureEnabledElement::get(state) != 0),
          collects(keptBuffers.draws.size() > 1 && DepthGrid::isSoftware())
    {
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        glEnableClientState(GL_VERTEX_ARRAY);
        if (normals)
            glEnableClientState(GL_NORMAL_ARRAY);
        if (textured)
            glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        kept.triangles.bind(GL_ELEMENT_ARRAY_BUFFER);
    }
    ~Drawer() { glPopClientAttrib(); }
    Drawer(const Drawer&) = delete;
    Drawer& operator=(const Drawer&) = delete;

    void operator()(const Draw& draw)
    {
        if (!bound || boundVertex != draw.firstVertex)
            bindFrom(draw.firstVertex);
        glDrawElements(GL_TRIANGLES, draw.indexCount, GL_UNSIGNED_INT,
                       GLBuffer::offset(draw.firstIndex * sizeof(std::uint32_t)));
        collect(std::size_t(draw.indexCount));
    }

    // A triangle of all the vertices, at the latest by drawGathered().
    void gather(std::size_t a, std::size_t b, std::size_t c)
    {
        for (const std::size_t vertex : {a, b, c})
            gathered.push_back(std::uint32_t(vertex));
        if (gathered.size() >= MOST_COLLECTED)
            drawGathered();
    }

    void drawGathered()
    {
        if (gathered.empty())
            return;
        if (!bound || boundVertex != 0)
            bindFrom(0);
        GLBuffer::unbind(GL_ELEMENT_ARRAY_BUFFER);
        glDrawElements(GL_TRIANGLES, GLsizei(gathered.size()), GL_UNSIGNED_INT, gathered.data());
        kept.triangles.bind(GL_ELEMENT_ARRAY_BUFFER);
        collect(gathered.size());
        gathered.clear();
    }

private:
    static constexpr std::size_t MOST_COLLECTED = 6 * VERTICES_PER_DRAW; // indices

    void collect(std::size_t indices)
    {
        collected += indices;
        if (collects && collected >= MOST_COLLECTED) {
            glFinish();
            collected = 0;
        }
    }

    // The arrays begin at the vertex that the indices count from: OpenGL has a parameter for
    // that only since its version 3.2.
    void bindFrom(std::size_t vertex)
    {
        bound = true;
        boundVertex = vertex;
        const std::size_t start = vertex * sizeof(BufferVertex);
        kept.vertices.bind(GL_ARRAY_BUFFER);
        glVertexPointer(3, GL_FLOAT, sizeof(BufferVertex),
                        GLBuffer::offset(start + offsetof(BufferVertex, point)));
        if (normals)
            glNormalPointer(GL_FLOAT, sizeof(BufferVertex),
                            GLBuffer::offset(start + offsetof(BufferVertex, normal)));
        if (textured) {
            kept.textures.bind(GL_ARRAY_BUFFER);
            glTexCoordPointer(2, GL_FLOAT, 0, GLBuffer::offset(vertex * sizeof(TexturePlace)));
        }
        colours.buffer.bind(GL_ARRAY_BUFFER);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, GLBuffer::offset(vertex * sizeof(Colour)));
    }

    const Kept& kept;
    const Colours& colours;
    const bool normals, textured;
    bool bound = false;
    std::size_t boundVertex = 0;
    // A software driver collects triangles, hundreds of bytes each, faster than it draws them:
    // Mesa's up to 64 times 36 MB. What is one draw is not that large.
    const bool collects;
    std::size_t collected = 0; // indices since the driver last had to draw
    std::vector<std::uint32_t> gathered;
};

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
            const bool normals = !bundle.isColorOnly();
            if (overdrawn)
                drawNearestFirst(kept, *colours, normals, state, parts, grid);
            else
                drawInOrder(kept, *colours, normals, state);
            // Which colour is current now OpenGL leaves open.
            SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
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
    const bool textured = SoGLTextureEnabledElement::get(action->getState());
    if (found != colours.end()) {
        std::rotate(found, found + 1, colours.end());
        if (colours.back().buffer && (kept.textures || !textured))
            return &colours.back();
    }
    const Layout layout(parts, isMaterialOverall(action->getState()));
    if (found == colours.end()) {
        if (colours.size() == LARGEST_COUNT)
            colours.erase(colours.begin());
        colours.push_back({materials, {}});
        if (!atOnce && layout.getVertexCount() < LARGE_COUNT)
            return nullptr;
    }
    const std::uint32_t context = action->getCacheContext();
    if (!kept.vertices)
        fillVertices(kept, context, layout);
    if (!kept.textures && textured) {
        const std::size_t bytes = layout.getVertexCount() * sizeof(TexturePlace);
        kept.textures = GLBuffer(context, GL_ARRAY_BUFFER, bytes);
        BufferWriter<TexturePlace> writer(kept.textures, GL_ARRAY_BUFFER);
        layout.visitVertices([&](const auto&, const auto&, const TexturePlace& place, int) {
            writer.append(place);
        });
    }
    if (GLBuffer& buffer = colours.back().buffer; !buffer) {
        buffer = GLBuffer(context, GL_ARRAY_BUFFER, layout.getVertexCount() * sizeof(Colour));
        BufferWriter<Colour> writer(buffer, GL_ARRAY_BUFFER);
        SoMaterialBundle bundle(action);
        ColourLookup lookup(bundle);
        layout.visitVertices([&](const auto&, const auto&, const auto&, int material) {
            writer.append(lookup(material));
        });
    }
    return &colours.back();
}

void MeshDrawing::fillVertices(Kept& kept, std::uint32_t context, const Layout& layout)
{
    kept.vertices =
        GLBuffer(context, GL_ARRAY_BUFFER, layout.getVertexCount() * sizeof(BufferVertex));
    BufferWriter<BufferVertex> writer(kept.vertices, GL_ARRAY_BUFFER);
    layout.visitVertices(
        [&](const Vector3<double>& point, const Vector3<double>& normal, const TexturePlace&, int) {
            writer.append({{float(point.x), float(point.y), float(point.z)},
                           {float(normal.x), float(normal.y), float(normal.z)}});
        });
    kept.triangles = GLBuffer(context, GL_ELEMENT_ARRAY_BUFFER, layout.makeIndices());
    kept.draws = layout.makeDraws();
}

void MeshDrawing::drawInOrder(const Kept& kept, const Colours& colours, bool normals,
                              SoState* state)
{
    Drawer drawer(kept, colours, normals, state);
    for (const Draw& draw : kept.draws)
        drawer(draw);
}

// The triangles of a run that the grid shows, in the order of addBody(). About how many pixels.
double MeshDrawing::drawSeen(const Run& run, Mesh& mesh, const DepthGrid& grid, Drawer& drawer)
{
    if (run.rows == 0) {
        drawer.drawGathered(); // in their order
        drawer(run.draw);
        return 0;
    }
    const int width = mesh.getWidth();
    std::vector<DepthGrid::Corner> corners;
    for (int i = 0; i < run.rows; ++i) {
        for (int j = 0; j < width; ++j)
            corners.push_back(
                grid.project(toSbVec3f(mesh.getPoints()[run.firstRow + i][j]), grid.getToEye()));
    }
    double pixels = 0;
    DepthGrid::Areas seen;
    for (int row = 0; row + 1 < run.rows; ++row) {
        for (int j = 0; j + 1 < width; ++j) {
            const auto here = std::size_t(row * width + j), next = here + std::size_t(width);
            seen.clear();
            grid.addSeen({corners[next], corners[here], corners[here + 1], corners[next + 1]},
                         seen);
            if (seen.isEmpty())
                continue;
            drawer.gather(run.vertex + next, run.vertex + here, run.vertex + next + 1);
            drawer.gather(run.vertex + next + 1, run.vertex + here, run.vertex + here + 1);
            pixels += seen.getSize();
        }
    }
    return pixels;
}

// One part after the other, since they meet: where both are equally near, the last is seen.
void MeshDrawing::drawNearestFirst(Kept& kept, const Colours& colours, bool normals, SoState* state,
                                   const std::vector<Part>& parts, DepthGrid& grid)
{
    if (kept.runs.empty())
        kept.runs = Layout(parts, isMaterialOverall(state)).makeRuns();
    Drawer drawer(kept, colours, normals, state);
    const double stretch = DepthGrid::stretchOf(grid.getToEye());
    std::vector<InView<const Run*>> seen;
    double unread = 0;
    for (auto run = kept.runs.begin(); run != kept.runs.end();) {
        seen.clear();
        const std::size_t part = run->part;
        for (; run != kept.runs.end() && run->part == part; ++run) {
            const DepthGrid::Disc disc =
                grid.project(run->centre, run->radius, grid.getToEye(), stretch);
            if (grid.shows(disc))
                seen.push_back(
                    {&*run, disc, disc.depth, grid.pixelsOf(run->area, run->radius, disc)});
        }
        const auto drawAll = [&drawer](const Run* one) { drawer(one->draw); };
        const auto drawSeen = [&](const Run* one) {
            return MeshDrawing::drawSeen(*one, parts[part].mesh, grid, drawer);
        };
        const auto finish = [&drawer] { drawer.drawGathered(); };
        ::drawNearestFirst(seen, grid, unread, drawAll, drawSeen, finish);
    }
}
