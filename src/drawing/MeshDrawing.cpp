// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "drawing/MeshDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

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

#include "drawing/BackFaces.h"
#include "drawing/DepthGrid.h"
#include "drawing/GLVertexState.h"
#include "drawing/drawNearestFirst.h"
#include "sampling/fourAtOnce.h"

using algebra3d::Vector3;

namespace {

// Of one node under different materials; with more of them each is filled when it is drawn.
const std::size_t LARGEST_COUNT = 8;

// From here on it is drawn in several draws.
const std::size_t LARGE_COUNT = 2'000'000;
const std::size_t VERTICES_PER_DRAW = 1 << 18;

// Of fewer rows there is little to leave out; of more, as many tell the area of all.
const int MANY_ROWS = 1000;

// Of rows that are drawn coarsely, in pixels.
const double NEAR_ROWS = 0.5;

// Of cameras that draw the same by turns; each has a half of a pixel of its own.
const std::size_t MOST_LENGTHS = 4;

struct BufferVertex
{
    float point[3];
    float normal[3];
};
static_assert(sizeof(BufferVertex) == 6 * sizeof(float), "as roundVertices() writes them");

struct TexturePlace
{
    float s, t;
};

float diagonalOf(const SbBox3f& box) { return (box.getMax() - box.getMin()).length(); }

// Of a strip: from edge to edge, or of a tube through it.
int oppositeColumn(const Mesh& mesh) { return mesh.getWidth() == 2 ? 1 : mesh.getWidth() / 2; }

// Seen from aside, front and back: two layers of a tube, one of a ribbon, of two columns.
double areaOf(Mesh& mesh, int row, double length)
{
    const Vector3<double>* const points = mesh.getPoints()[row];
    const double across = (points[oppositeColumn(mesh)] - points[0]).getNorm();
    return length * across * (mesh.getWidth() == 2 ? 1 : 2);
}

// Along the longer side.
double areaOfStrip(Mesh& mesh, int row)
{
    const Vector3<double>* const here = mesh.getPoints()[row];
    const Vector3<double>* const next = mesh.getPoints()[row + 1];
    const int opposite = oppositeColumn(mesh);
    return areaOf(
        mesh, row,
        std::max((next[0] - here[0]).getNorm(), (next[opposite] - here[opposite]).getNorm()));
}

// Along the middle, which does not tell of a row that is turned against the one before.
double areaAboutMiddle(Mesh& mesh, int row)
{
    const Vector3<double>* const here = mesh.getPoints()[row];
    const Vector3<double>* const next = mesh.getPoints()[row + 1];
    const int opposite = oppositeColumn(mesh);
    return areaOf(mesh, row,
                  0.5 * ((next[opposite] + next[0]) - (here[opposite] + here[0])).getNorm());
}

// Those that are farther than a length from the one before among them, on one side at least; the
// first and the last.
MeshRows rowsApart(Mesh& mesh, double length)
{
    const int height = std::as_const(mesh).isValid() ? mesh.getHeight() : 0;
    if (height < 3)
        return MeshRows(height);
    Vector3<double>** const points = mesh.getPoints();
    const int opposite = oppositeColumn(mesh);
    std::vector<int> rows{0};
    const auto isFar = [&](int row, int column) {
        const Vector3<double> way = points[row][column] - points[rows.back()][column];
        return way.dot(way) > length * length;
    };
    for (int i = 1; i + 1 < height; ++i) {
        if (isFar(i, 0) || isFar(i, opposite))
            rows.push_back(i);
    }
    rows.push_back(height - 1);
    return MeshRows(std::move(rows));
}

// The two triangles between two columns of two rows, in the order of their strip.
std::uint32_t* writeFace(std::uint32_t here, std::uint32_t next, std::uint32_t* to)
{
    for (const std::uint32_t vertex : {next, here, next + 1, next + 1, here, here + 1})
        *to++ = vertex;
    return to;
}

using Colour = std::uint32_t; // four bytes: red, green, blue, alpha

// The colours in which OpenGL draws what has a material, as SoGLLazyElement sends them.
class ShownColours
{
public:
    explicit ShownColours(SoState* state)
        : element(*SoLazyElement::getInstance(state)),
          count(std::size_t(std::max(element.getNumDiffuse(), 1)))
    {
        static_assert(sizeof(SbColor) == 3 * sizeof(float));
    }

    // That of the last one where there are not so many.
    Colour operator[](std::size_t material) const
    {
        Colour colour = 0;
        round(std::min(material, count - 1), 1, &colour);
        return colour;
    }
    // Of rows: those of all materials are rounded for them.
    void spread(std::size_t first, std::size_t step, std::size_t rows, std::size_t width,
                Colour* to)
    {
        if (!all) {
            all.reset(new Colour[count]); // not zeros first
            round(0, count, all.get());
        }
        spreadColours(all.get(), count, first, step, rows, width, to);
    }

private:
    void round(std::size_t first, std::size_t number, Colour* to) const
    {
        if (element.isPacked()) {
            const std::uint32_t* const packed = element.getPackedPointer() + first;
            std::transform(packed, packed + number, to, colourOf);
            return;
        }
        const auto given = std::size_t(std::max(element.getNumTransparencies(), 1));
        const std::size_t beforeThem = std::min(first, given - 1);
        roundColours(element.getDiffusePointer()[first].getValue(), number,
                     element.getTransparencyPointer() + beforeThem, given - beforeThem, to);
    }

    static Colour colourOf(std::uint32_t packed)
    {
        Colour colour = 0;
        auto* const bytes = reinterpret_cast<GLubyte*>(&colour);
        for (int i = 0; i < 4; ++i)
            bytes[i] = GLubyte(packed >> (24 - 8 * i));
        return colour;
    }

    const SoLazyElement& element;
    const std::size_t count;
    std::unique_ptr<Colour[]> all;
};

// Whether all that is drawn hides all that is behind it.
bool isOpaque(SoState* state)
{
    return !glIsEnabled(GL_BLEND) && SoDrawStyleElement::get(state) == SoDrawStyleElement::FILLED;
}

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

// What meshes send to OpenGL, one after the other: the vertices of all bodies, or of some of their
// rows, and of caps, each once, and the triangles between them.
class MeshDrawing::Layout
{
public:
    explicit Layout(const std::vector<Part>& drawnParts) : Layout(drawnParts, allRows(drawnParts))
    {}
    Layout(const std::vector<Part>& drawnParts, const std::vector<MeshRows>& drawnRows)
        : parts(drawnParts), rows(drawnRows)
    {
        for (const auto& [mesh, materialOffset] : parts) {
            caps.push_back(CapCollector(mesh).caps);
            vertexCount += bodySize(caps.size() - 1);
            for (const Cap& cap : caps.back())
                vertexCount += cap.corners.size();
        }
        std::size_t vertex = 0;
        for (std::size_t part = 0; part < parts.size(); ++part) {
            Mesh& mesh = parts[part].mesh;
            if (bodySize(part) > 0)
                placeBody(mesh, part, vertex);
            for (const Cap& cap : caps[part])
                placeCap(mesh, cap, part, vertex);
        }
    }

    std::size_t getVertexCount() const { return vertexCount; }
    std::size_t getIndexCount() const { return indexCount; }

    std::vector<Grid> grids() const
    {
        std::vector<Grid> grids;
        for (std::size_t part = 0; part < parts.size(); ++part) {
            const Mesh& mesh = parts[part].mesh;
            const bool isThere = bodySize(part) > 0;
            grids.push_back(
                {isThere ? mesh.getHeight() : 0, isThere ? mesh.getWidth() : 0, caps[part].size()});
        }
        return grids;
    }

    void writeVertices(BufferVertex* to) const
    {
        for (const Piece& piece : pieces) {
            if (!piece.cap) {
                writeBodyVertices(piece, to);
                to += bodySize(piece.part);
                continue;
            }
            for (const Cap::Corner& corner : piece.cap->corners)
                roundVertices(&corner.point, &corner.normal, 1, (to++)->point);
        }
    }

    void writeTextures(TexturePlace* to) const
    {
        for (const Piece& piece : pieces) {
            if (piece.cap) {
                for (const Cap::Corner& corner : piece.cap->corners)
                    *to++ = corner.place;
                continue;
            }
            const MeshRows& ofPart = rows[piece.part];
            const int height = piece.mesh.getHeight(), width = piece.mesh.getWidth();
            for (int i = 0; i < ofPart.getSize(); ++i) {
                for (int j = 0; j < width; ++j)
                    *to++ = {float(double(j) / (width - 1)),
                             float(double(ofPart[i]) / (height - 1))};
            }
        }
    }

    // A row has one material, and the materials of rows follow each other by the same step.
    void writeColours(ShownColours&& colours, bool overall, Colour* to) const
    {
        for (const Piece& piece : pieces) {
            const auto offset = std::size_t(parts[piece.part].materialOffset);
            if (piece.cap) {
                const int material = overall ? 0 : piece.cap->material;
                to = std::fill_n(to, piece.cap->corners.size(),
                                 colours[offset + std::size_t(material)]);
                continue;
            }
            const Mesh& mesh = piece.mesh;
            const MeshRows& ofPart = rows[piece.part];
            const auto width = std::size_t(mesh.getWidth());
            const auto indexOf = [&](int row) {
                return overall ? 0 : std::size_t(mesh.getMaterialIndex(row, 0));
            };
            if (ofPart.areAll()) {
                colours.spread(offset + indexOf(0), indexOf(1) - indexOf(0),
                               std::size_t(ofPart.getSize()), width, to);
                to += bodySize(piece.part);
                continue;
            }
            for (int i = 0; i < ofPart.getSize(); ++i)
                to = std::fill_n(to, width, colours[offset + indexOf(ofPart[i])]);
        }
    }

    // See MeshVisitor: the triangles of the strips and fans, each with
    // the corners in the strip's order, which tells their lines and a flat colour. Of a body
    // drawn in several draws the indices of the first rows serve for all that follow.
    void writeIndices(std::uint32_t* to) const
    {
        for (const Piece& piece : pieces)
            to = piece.cap ? writeCap(piece, to) : writeBody(piece, to);
    }

    // Gathers all of it, in the meshes' order, but for the back faces of closed tubes, of which
    // there are none without `backFaces`.
    void gatherSeen(const BackFaces* backFaces, const std::vector<std::optional<ClosedTube>>& tubes,
                    Drawer& drawer) const;

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
                const SbBox3f box = boxOf(piece.mesh, piece.cap->row);
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
        const Cap* cap; // null for a body
        std::size_t firstVertex, firstIndex;
        std::size_t strips, indicesPerStrip, stripsPerDraw;
    };

    static std::vector<MeshRows> allRows(const std::vector<Part>& parts)
    {
        std::vector<MeshRows> all;
        for (const Part& part : parts)
            all.emplace_back(part.mesh.getHeight());
        return all;
    }

    std::size_t bodySize(std::size_t part) const
    {
        const Mesh& mesh = parts[part].mesh;
        return mesh.isValid() ? std::size_t(rows[part].getSize()) * std::size_t(mesh.getWidth())
                              : 0;
    }

    void writeBodyVertices(const Piece& piece, BufferVertex* to) const
    {
        const MeshRows& ofPart = rows[piece.part];
        Vector3<double>**const points = piece.mesh.getPoints(),
                               **const normals = piece.mesh.getNormals();
        if (ofPart.areAll()) { // which are one block
            roundVertices(points[0], normals[0], bodySize(piece.part), to->point);
            return;
        }
        const auto width = std::size_t(piece.mesh.getWidth());
        for (int i = 0; i < ofPart.getSize(); ++i, to += width)
            roundVertices(points[ofPart[i]], normals[ofPart[i]], width, to->point);
    }

    void placeBody(Mesh& mesh, std::size_t part, std::size_t& vertex)
    {
        const auto width = std::size_t(mesh.getWidth());
        const auto strips = std::size_t(rows[part].getSize() - 1);
        const std::size_t most = std::max(VERTICES_PER_DRAW / width, std::size_t(1));
        const std::size_t perDraw =
            std::max(vertexCount >= LARGE_COUNT ? std::min(strips, most) : strips, std::size_t(1));
        pieces.push_back(
            {mesh, part, nullptr, vertex, indexCount, strips, 6 * (width - 1), perDraw});
        vertex += bodySize(part);
        indexCount += std::min(strips, perDraw) * pieces.back().indicesPerStrip;
    }

    void placeCap(Mesh& mesh, const Cap& cap, std::size_t part, std::size_t& vertex)
    {
        const std::size_t size = cap.corners.size();
        pieces.push_back({mesh, part, &cap, vertex, indexCount, 1, 3 * (size - 2), 1});
        vertex += size;
        indexCount += pieces.back().indicesPerStrip;
    }

    static std::uint32_t* writeBody(const Piece& piece, std::uint32_t* to)
    {
        const auto width = std::uint32_t(piece.mesh.getWidth());
        for (std::size_t i = 0; i < std::min(piece.strips, piece.stripsPerDraw); ++i) {
            const auto row = std::uint32_t(piece.firstVertex + i * width);
            for (std::uint32_t j = 0; j + 1 < width; ++j)
                to = writeFace(row + j, row + width + j, to);
        }
        return to;
    }

    static std::uint32_t* writeCap(const Piece& piece, std::uint32_t* to)
    {
        const auto first = std::uint32_t(piece.firstVertex);
        for (std::uint32_t k = 0; k < piece.indicesPerStrip / 3; ++k, to += 3) {
            to[0] = first;
            to[1] = first + k + 1;
            to[2] = first + k + 2;
        }
        return to;
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
    const std::vector<MeshRows> rows;   // of each part
    std::vector<std::vector<Cap>> caps; // likewise
    std::size_t vertexCount = 0, indexCount = 0;
    std::vector<Piece> pieces; // in the order of the vertices
};

// Draws from the buffers.
class MeshDrawing::Drawer
{
public:
    Drawer(const Buffers& keptBuffers, const GLBuffer& shownColours, bool isLarge, bool sendNormals,
           SoState* state)
        : buffers(keptBuffers),
          colours(shownColours),
          normals(sendNormals),
          textured(SoGLTextureEnabledElement::get(state) != 0),
          collects(isLarge && DepthGrid::isSoftware())
    {
        glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
        glEnableClientState(GL_VERTEX_ARRAY);
        if (normals)
            glEnableClientState(GL_NORMAL_ARRAY);
        if (textured)
            glEnableClientState(GL_TEXTURE_COORD_ARRAY);
        glEnableClientState(GL_COLOR_ARRAY);
        buffers.triangles.bind(GL_ELEMENT_ARRAY_BUFFER);
    }
    Drawer(const Kept& kept, const Colours& shownColours, bool sendNormals, SoState* state)
        : Drawer(kept.all, shownColours.buffer, kept.draws.size() > 1, sendNormals, state)
    {}
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

    // Triangles of all the vertices, at the latest by drawGathered(): write(to) writes at most so
    // many indices, and returns their end.
    template <typename Write>
    void gather(std::size_t most, Write write)
    {
        const std::size_t before = gathered.size();
        gathered.resize(before + most);
        gathered.resize(std::size_t(write(gathered.data() + before) - gathered.data()));
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
        buffers.triangles.bind(GL_ELEMENT_ARRAY_BUFFER);
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
        buffers.vertices.bind(GL_ARRAY_BUFFER);
        glVertexPointer(3, GL_FLOAT, sizeof(BufferVertex),
                        GLBuffer::offset(start + offsetof(BufferVertex, point)));
        if (normals)
            glNormalPointer(GL_FLOAT, sizeof(BufferVertex),
                            GLBuffer::offset(start + offsetof(BufferVertex, normal)));
        if (textured) {
            buffers.textures.bind(GL_ARRAY_BUFFER);
            glTexCoordPointer(2, GL_FLOAT, 0, GLBuffer::offset(vertex * sizeof(TexturePlace)));
        }
        colours.bind(GL_ARRAY_BUFFER);
        glColorPointer(4, GL_UNSIGNED_BYTE, 0, GLBuffer::offset(vertex * sizeof(Colour)));
    }

    const Buffers& buffers;
    const GLBuffer& colours;
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

void MeshDrawing::draw(SbUniqueId id, SoGLRenderAction* action, const std::vector<Part>& parts,
                       bool coarse)
{
    SoState* const state = action->getState();
    const std::uint32_t context = action->getCacheContext();
    SoMaterialBundle bundle(action);
    bundle.sendFirst();
    if (state->isCacheOpen() || !GLBuffer::areSupported(context)) {
        for (const auto& [mesh, materialOffset] : parts)
            mesh.render(action, materialOffset);
        return;
    }
    if (drawnId != id) {
        drawnId = id;
        measure(parts);
    }
    Kept& kept = contexts[context];
    // Views whose contexts share the buffers draw by turns.
    if (std::exchange(kept.drawnBy, action) != action)
        ++kept.turn;
    const bool normals = !bundle.isColorOnly();
    DepthGrid grid(state);
    const bool isSorted = grid.mayCover(centre, radius, area, SORTED_LAYERS) && isOpaque(state) &&
                          DepthGrid::isUsable(state);
    if (isSorted || !coarse || !drawFewRows(kept, context, normals, state, parts, grid)) {
        const Colours& colours = prepare(action, kept, parts);
        if (isSorted)
            drawNearestFirst(kept, colours, normals, state, parts, grid);
        else if (!drawWithoutBackFaces(kept, colours, normals, state, parts))
            drawInOrder(kept, colours, normals, state);
    }
    // Which colour is current now OpenGL leaves open.
    SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
}

// From few points, so that what changes in every frame costs hardly more. Without many rows there
// is neither ball nor area.
void MeshDrawing::measure(const std::vector<Part>& parts)
{
    SbBox3f box;
    area = radius = 0;
    int rowCount = 0;
    for (const auto& [mesh, materialOffset] : parts)
        rowCount += std::as_const(mesh).isValid() ? mesh.getHeight() : 0;
    if (rowCount < MANY_ROWS)
        return;
    const int step = rowCount / MANY_ROWS;
    for (const auto& [mesh, materialOffset] : parts) {
        if (!std::as_const(mesh).isValid())
            continue;
        for (int i = 0; i < mesh.getHeight(); i += step) {
            box.extendBy(toSbVec3f(mesh.getPoints()[i][0]));
            box.extendBy(toSbVec3f(mesh.getPoints()[i][oppositeColumn(mesh)]));
            if (i + 1 < mesh.getHeight())
                area += step * areaAboutMiddle(mesh, i);
        }
    }
    centre = box.getCenter();
    radius = diagonalOf(box) / 2;
}

// Fills what is not there yet. Returns the colours that the parts are drawn with.
const MeshDrawing::Colours& MeshDrawing::prepare(SoGLRenderAction* action, Kept& kept,
                                                 const std::vector<Part>& parts) const
{
    SoState* const state = action->getState();
    const std::uint32_t context = action->getCacheContext();
    std::optional<Layout> made;
    const auto layout = [&]() -> const Layout& { return made ? *made : made.emplace(parts); };

    if (kept.filledId != drawnId)
        fillVertices(kept, context, layout());
    if (!kept.all.textures && SoGLTextureEnabledElement::get(state))
        kept.all.textures.fill(
            context, GL_ARRAY_BUFFER, layout().getVertexCount() * sizeof(TexturePlace),
            [&](void* memory) { layout().writeTextures(static_cast<TexturePlace*>(memory)); },
            kept.turn);
    const Materials materials(state);
    Colours& colours = takeColours(kept, materials);
    if (!colours.buffer || !(colours.materials == materials)) {
        colours.materials = materials;
        colours.buffer.fill(
            context, GL_ARRAY_BUFFER, layout().getVertexCount() * sizeof(Colour),
            [&](void* memory) {
                layout().writeColours(ShownColours(state), isMaterialOverall(state),
                                      static_cast<Colour*>(memory));
            },
            kept.turn);
    }
    colours.usedId = drawnId;
    return colours;
}

void MeshDrawing::fillVertices(Kept& kept, std::uint32_t context, const Layout& layout) const
{
    if (!kept.all.triangles || kept.grids != layout.grids()) {
        const SoGLRenderAction* const drawnBy = kept.drawnBy;
        const unsigned turn = kept.turn;
        kept = Kept();
        kept.drawnBy = drawnBy;
        kept.turn = turn;
        kept.grids = layout.grids();
        kept.draws = layout.makeDraws();
        kept.all.triangles.fill(
            context, GL_ELEMENT_ARRAY_BUFFER, layout.getIndexCount() * sizeof(std::uint32_t),
            [&](void* memory) { layout.writeIndices(static_cast<std::uint32_t*>(memory)); });
    }
    kept.all.vertices.fill(
        context, GL_ARRAY_BUFFER, layout.getVertexCount() * sizeof(BufferVertex),
        [&](void* memory) { layout.writeVertices(static_cast<BufferVertex*>(memory)); }, kept.turn);
    kept.runs.clear();
    kept.filledId = drawnId;
}

// Those of these materials, or some to be filled: where data and colours change together, those
// that were not used since then.
MeshDrawing::Colours& MeshDrawing::takeColours(Kept& kept, const Materials& materials) const
{
    auto& colours = kept.colours;
    auto taken = std::find_if(colours.begin(), colours.end(),
                              [&](const Colours& seen) { return seen.materials == materials; });
    if (taken == colours.end() && !colours.empty() &&
        (colours.size() == LARGEST_COUNT || colours.front().usedId != drawnId))
        taken = colours.begin();
    if (taken == colours.end())
        colours.push_back({materials, drawnId, {}});
    else
        std::rotate(taken, taken + 1, colours.end());
    return colours.back();
}

void MeshDrawing::drawInOrder(const Kept& kept, const Colours& colours, bool normals,
                              SoState* state)
{
    Drawer drawer(kept, colours, normals, state);
    for (const Draw& draw : kept.draws)
        drawer(draw);
}

void MeshDrawing::Layout::gatherSeen(const BackFaces* backFaces,
                                     const std::vector<std::optional<ClosedTube>>& tubes,
                                     Drawer& drawer) const
{
    for (const Piece& piece : pieces) {
        if (piece.cap) {
            drawer.gather(piece.indicesPerStrip,
                          [&](std::uint32_t* to) { return writeCap(piece, to); });
            continue;
        }
        std::optional<BackFaces::Walk> walk;
        if (backFaces && tubes[piece.part] && backFaces->mayLeaveOut(*tubes[piece.part]))
            walk.emplace(*backFaces, piece.mesh, *tubes[piece.part]);
        const int width = piece.mesh.getWidth();
        const MeshRows& ofPart = rows[piece.part];
        for (int i = 0; i + 1 < ofPart.getSize(); ++i) {
            const std::uint8_t* const leftOut =
                walk ? walk->between(ofPart[i], ofPart[i + 1]).data() : nullptr;
            const auto here = std::uint32_t(piece.firstVertex + std::size_t(i) * width);
            const std::uint32_t there = here + std::uint32_t(width);
            drawer.gather(piece.indicesPerStrip, [&](std::uint32_t* to) {
                for (std::uint32_t j = 0; j + 1 < std::uint32_t(width); ++j) {
                    if (!leftOut || !leftOut[j])
                        to = writeFace(here + j, there + j, to);
                }
                return to;
            });
        }
    }
    drawer.drawGathered();
}

std::vector<std::optional<ClosedTube>> MeshDrawing::measureTubes(const std::vector<Part>& parts,
                                                                 const std::vector<MeshRows>& rows)
{
    std::vector<std::optional<ClosedTube>> tubes;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        Mesh& mesh = parts[i].mesh;
        tubes.push_back(measureClosedTube(mesh, rows[i], CapCollector(mesh).caps.size() == 2));
    }
    return tubes;
}

// None where they are more than half of all.
const std::vector<MeshRows>& MeshDrawing::rowsApart(const std::vector<Part>& parts, double length)
{
    if (std::exchange(apartId, drawnId) != drawnId)
        apart.clear();
    const auto known = std::find_if(apart.begin(), apart.end(), [length](const RowsApart& rows) {
        return rows.length == length;
    });
    if (known != apart.end()) {
        std::rotate(known, known + 1, apart.end());
        return apart.back().rows;
    }
    if (apart.size() == MOST_LENGTHS)
        apart.erase(apart.begin());
    apart.push_back({length, {}});
    std::vector<MeshRows>& rows = apart.back().rows;
    int all = 0, drawn = 0;
    for (const Part& part : parts) {
        rows.push_back(::rowsApart(part.mesh, length));
        all += part.mesh.getHeight();
        drawn += rows.back().getSize();
    }
    if (drawn > all / 2)
        rows.clear();
    return rows;
}

// Returns whether it did: if at least half of the rows are near to those before them.
bool MeshDrawing::drawFewRows(Kept& kept, std::uint32_t context, bool normals, SoState* state,
                              const std::vector<Part>& parts, const DepthGrid& grid)
{
    const double pixels = radius > 0 ? grid.pixelsAtNearest(centre, radius, 1) : 0;
    if (!(pixels > 0) || !std::isfinite(pixels))
        return false;
    const std::vector<MeshRows>& rows = rowsApart(parts, NEAR_ROWS / pixels);
    if (rows.empty())
        return false;
    const Layout layout(parts, rows);
    const std::size_t vertices = layout.getVertexCount();
    kept.few.vertices.fill(
        context, GL_ARRAY_BUFFER, vertices * sizeof(BufferVertex),
        [&](void* memory) { layout.writeVertices(static_cast<BufferVertex*>(memory)); }, kept.turn);
    if (SoGLTextureEnabledElement::get(state))
        kept.few.textures.fill(
            context, GL_ARRAY_BUFFER, vertices * sizeof(TexturePlace),
            [&](void* memory) { layout.writeTextures(static_cast<TexturePlace*>(memory)); },
            kept.turn);
    kept.coloursOfFew.fill(
        context, GL_ARRAY_BUFFER, vertices * sizeof(Colour),
        [&](void* memory) {
            layout.writeColours(ShownColours(state), isMaterialOverall(state),
                                static_cast<Colour*>(memory));
        },
        kept.turn);
    const auto backFaces = BackFaces::find(state);
    const auto tubesOfRows = backFaces ? measureTubes(parts, rows)
                                       : std::vector<std::optional<ClosedTube>>(parts.size());
    Drawer drawer(kept.few, kept.coloursOfFew, vertices >= LARGE_COUNT, normals, state);
    layout.gatherSeen(backFaces ? &*backFaces : nullptr, tubesOfRows, drawer);
    return true;
}

// Returns whether it did: if there are some that may be left out.
bool MeshDrawing::drawWithoutBackFaces(const Kept& kept, const Colours& colours, bool normals,
                                       SoState* state, const std::vector<Part>& parts)
{
    const auto backFaces = BackFaces::find(state);
    if (!backFaces)
        return false;
    std::vector<MeshRows> rows;
    for (const Part& part : parts)
        rows.emplace_back(part.mesh.getHeight());
    if (tubesId != drawnId) {
        tubesId = drawnId;
        tubes = measureTubes(parts, rows);
    }
    if (std::none_of(tubes.begin(), tubes.end(), [&](const std::optional<ClosedTube>& tube) {
            return tube && backFaces->mayLeaveOut(*tube);
        }))
        return false;
    Drawer drawer(kept, colours, normals, state);
    Layout(parts).gatherSeen(&*backFaces, tubes, drawer);
    return true;
}

// The triangles of a run that the grid shows, in the order of writeBody(). About how many pixels.
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
            drawer.gather(6, [&](std::uint32_t* to) {
                return writeFace(std::uint32_t(run.vertex + here), std::uint32_t(run.vertex + next),
                                 to);
            });
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
        kept.runs = Layout(parts).makeRuns();
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
