// SPDX-License-Identifier: GPL-3.0-or-later
#define GL_GLEXT_PROTOTYPES
#include "drawing/GlyphDrawing.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <GL/gl.h>
#include <GL/glext.h>
#include <Inventor/SbBox3f.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoDrawStyleElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/elements/SoMaterialBindingElement.h>
#include <Inventor/elements/SoMultiTextureEnabledElement.h>
#include <Inventor/elements/SoOverrideElement.h>
#include <Inventor/elements/SoShapeStyleElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoComplexity.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>
#include <Inventor/nodes/SoVertexProperty.h>

#include "detail/exactly.h"
#include <SoNucleobase.h>

namespace {

// Of an octahedron that covers, in the mean of all sides, as much as a sphere of 6 corners and 4
// rows. A convex body covers a quarter of its surface (A. Cauchy): of a radius' square this one
// the square root of 3, the other one 2.46998.
const float OCTAHEDRON_STRETCH = 1.19417f;

SoGroup* asSeparator(SoNode* node)
{
    SoGroup* const base = exactly<SoNucleobase>(node);
    return base ? base : exactly<SoSeparator>(node);
}

template <typename Field>
bool isSingle(const Field& field)
{
    return field.getNum() == 1 && !field.isIgnored();
}

bool isPlain(const SoMaterial* material)
{
    return !material->isOverride() && isSingle(material->ambientColor) &&
           isSingle(material->diffuseColor) && isSingle(material->specularColor) &&
           isSingle(material->emissiveColor) && isSingle(material->shininess) &&
           isSingle(material->transparency) && material->transparency[0] == 0 &&
           material->ambientColor[0] == material->diffuseColor[0];
}

// Whether two plain materials differ in their colour only.
bool areAlike(const SoMaterial* a, const SoMaterial* b)
{
    return a->specularColor[0] == b->specularColor[0] &&
           a->emissiveColor[0] == b->emissiveColor[0] && a->shininess[0] == b->shininess[0];
}

// Whether shapes are drawn as they are: filled, opaque, without textures and overrides.
bool isPlain(SoState* state)
{
    const unsigned int special =
        SoShapeStyleElement::TEXENABLED | SoShapeStyleElement::TEX3ENABLED |
        SoShapeStyleElement::BBOXCMPLX | SoShapeStyleElement::INVISIBLE |
        SoShapeStyleElement::BIGIMAGE | SoShapeStyleElement::BUMPMAP |
        SoShapeStyleElement::TRANSP_TEXTURE | SoShapeStyleElement::TRANSP_MATERIAL |
        SoShapeStyleElement::TRANSP_SORTED_TRIANGLES | SoShapeStyleElement::SHADOWMAP;
    int lastUnit = -1;
    return (SoShapeStyleElement::get(state)->getFlags() & special) == 0 &&
           SoOverrideElement::getFlags(state) == 0 &&
           SoDrawStyleElement::get(state) == SoDrawStyleElement::FILLED &&
           SoMaterialBindingElement::get(state) == SoMaterialBindingElement::OVERALL &&
           !SoMultiTextureEnabledElement::getEnabledUnits(state, lastUnit);
}

// One matrix for what is placed, one for a box within it.
bool hasRoomForMatrices()
{
    GLint depth = 0, room = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    glGetIntegerv(GL_MAX_MODELVIEW_STACK_DEPTH, &room);
    return depth + 2 <= room;
}

// Seen from aside, in the mean a quarter of its surface; by half of each of its sides.
double areaOfBox(const SbVec3f& half)
{
    const double a = 2 * std::abs(half[0]), b = 2 * std::abs(half[1]), c = 2 * std::abs(half[2]);
    return (a * b + b * c + c * a) / 2;
}

} // namespace

bool isAllOrNothing(const SoSwitch* node)
{
    const int which = node->whichChild.getValue();
    return !node->whichChild.isIgnored() && (which == SO_SWITCH_ALL || which == SO_SWITCH_NONE);
}

// Walks over what is placed, as a traversal would, and collects its triangles.
struct GlyphDrawing::Compiler
{
    std::vector<Vertex>& vertices;
    std::vector<std::uint32_t>& indices;
    SoMaterial*& common;
    const int corners; // of a sphere, around; 0: Coin's number
    float& largestSphere;
    std::vector<Batch> batches;
    std::vector<Part> parts;

    // The part of a traversal's state that counts here; copied by separators.
    struct State
    {
        SbVec3f place = SbVec3f(0, 0, 0);
        const SoMaterial* material = nullptr;
        const SoComplexity* complexity = nullptr;
    };

    // Whether everything was understood.
    bool compile(SoNode* node, State& state)
    {
        if (const SoGroup* separator = asSeparator(node)) {
            State inner = state;
            return compileChildren(separator, inner);
        }
        if (const auto* group = exactly<SoSwitch>(node)) {
            if (!isAllOrNothing(group))
                return false;
            return group->whichChild.getValue() == SO_SWITCH_NONE || compileChildren(group, state);
        }
        if (const auto* translation = exactly<SoTranslation>(node)) {
            state.place += translation->translation.getValue();
            return !translation->translation.isIgnored();
        }
        if (auto* material = exactly<SoMaterial>(node)) {
            state.material = material;
            if (!common)
                common = material;
            return isPlain(material) && isPlain(common) && areAlike(material, common);
        }
        if (const auto* complexity = exactly<SoComplexity>(node)) {
            state.complexity = complexity;
            return !complexity->isOverride() && !complexity->type.isIgnored() &&
                   !complexity->value.isIgnored() &&
                   complexity->type.getValue() == SoComplexity::OBJECT_SPACE &&
                   !std::isnan(complexity->value.getValue());
        }
        if (!state.material)
            return false;
        if (const auto* sphere = exactly<SoSphere>(node)) {
            if (!state.complexity)
                return false;
            addSphere(state, sphere->radius.getValue());
            return true;
        }
        if (const auto* cube = exactly<SoCube>(node)) {
            addBox(state, cube);
            return true;
        }
        if (const auto* faces = exactly<SoIndexedFaceSet>(node))
            return addQuads(state, faces);
        return false;
    }

    bool compileChildren(const SoGroup* group, State& state)
    {
        for (int i = 0; i < group->getNumChildren(); ++i) {
            if (!compile(group->getChild(i), state))
                return false;
        }
        return true;
    }

    void addVertex(const State& state, const SbVec3f& point, const SbVec3f& normal)
    {
        addVertex(point, normal, state.material->diffuseColor[0].getPackedValue());
    }

    // Of a colour in red, green, blue and opacity from the highest byte down.
    void addVertex(const SbVec3f& point, const SbVec3f& normal, std::uint32_t colour)
    {
        vertices.push_back({point,
                            normal,
                            {std::uint8_t(colour >> 24), std::uint8_t(colour >> 16),
                             std::uint8_t(colour >> 8), std::uint8_t(colour)}});
    }

    // The rows of points between two poles that Coin draws for a sphere, with the same
    // diagonals: the light is interpolated along them.
    void addSphere(const State& state, float radius)
    {
        const float complexity = std::clamp(state.complexity->value.getValue(), 0.0f, 1.0f);
        const int rows = corners > 0 ? corners / 2 + 1 : std::max(int(30.0f * complexity), 3);
        const int slices = corners > 0 ? corners : std::clamp(int(30.0f * complexity), 4, 128);
        largestSphere = std::max(largestSphere, std::abs(radius));
        const float area = float(M_PI) * radius * radius;
        if (corners == 4)
            radius *= OCTAHEDRON_STRETCH;
        const float rowAngle = float(M_PI) / float(rows - 1);
        const float sliceAngle = 2.0f * float(M_PI) / float(slices);
        const auto first = std::uint32_t(vertices.size());
        const auto width = std::uint32_t(slices) + 1;
        const auto add = [&](const SbVec3f& normal) {
            addVertex(state, normal * radius + state.place, normal);
        };

        add(SbVec3f(0, 1, 0));
        add(SbVec3f(0, -1, 0));
        float rowPlace = rowAngle;
        for (int row = 1; row < rows - 1; ++row, rowPlace += rowAngle) {
            const float y = std::cos(rowPlace), distance = -std::sin(rowPlace);
            float slicePlace = 0;
            for (int slice = 0; slice <= slices; ++slice, slicePlace += sliceAngle)
                add(slice == 0 && row == 1 ? SbVec3f(0, y, distance)
                                           : SbVec3f(std::sin(slicePlace) * distance, y,
                                                     std::cos(slicePlace) * distance));
        }

        const auto firstIndex = std::int32_t(indices.size());
        addSphereFaces(first, width, std::uint32_t(rows));
        const auto count = std::int32_t(indices.size()) - firstIndex;
        parts.push_back({{SbVec3f(0, 0, 0), false, firstIndex, count},
                         {state.place, std::abs(radius)},
                         double(area)});
    }

    // Of the poles, which come first, and of the rows after them.
    void addSphereFaces(std::uint32_t first, std::uint32_t width, std::uint32_t rows)
    {
        if (batches.empty() || batches.back().quads)
            batches.push_back({SbVec3f(0, 0, 0), false, std::int32_t(indices.size()), 0});
        const std::uint32_t rowStart = first + 2;
        const std::uint32_t lastRow = rowStart + width * (rows - 3);
        for (std::uint32_t i = 0; i + 1 < width; ++i)
            indices.insert(indices.end(), {first, rowStart + i, rowStart + i + 1});
        for (std::uint32_t row = rowStart; row < lastRow; row += width) {
            for (std::uint32_t i = row; i + 1 < row + width; ++i) {
                const std::uint32_t below = i + width;
                indices.insert(indices.end(), {i + 1, i, below + 1, i, below, below + 1});
            }
        }
        for (std::uint32_t i = lastRow; i + 1 < lastRow + width; ++i)
            indices.insert(indices.end(), {i, first + 1, i + 1});
        batches.back().count = std::int32_t(indices.size()) - batches.back().first;
    }

    struct Quads;
    bool addQuads(const State& state, const SoIndexedFaceSet* faces);

    // The corners in Coin's order; bits 0, 1 and 2 of a corner are negative x, y and z.
    void addBox(const State& state, const SoCube* cube)
    {
        static const int faces[6][4] = {{0, 1, 3, 2}, {5, 4, 6, 7}, {1, 5, 7, 3},
                                        {4, 0, 2, 6}, {4, 5, 1, 0}, {2, 3, 7, 6}};
        static const SbVec3f normals[6] = {{0, 0, 1}, {0, 0, -1}, {-1, 0, 0},
                                           {1, 0, 0}, {0, 1, 0},  {0, -1, 0}};
        const SbVec3f half(cube->width.getValue() * 0.5f, cube->height.getValue() * 0.5f,
                           cube->depth.getValue() * 0.5f);
        batches.push_back({state.place, true, std::int32_t(vertices.size()), 24});
        parts.push_back({batches.back(), {state.place, half.length()}, areaOfBox(half)});
        for (int face = 0; face < 6; ++face) {
            for (int corner : faces[face])
                addVertex(state,
                          SbVec3f(corner & 1 ? -half[0] : half[0], corner & 2 ? -half[1] : half[1],
                                  corner & 4 ? -half[2] : half[2]),
                          normals[face]);
        }
    }
};

// Quadrilaterals, with a normal and an opaque colour of its own for each corner.
struct GlyphDrawing::Compiler::Quads
{
    explicit Quads(const SoIndexedFaceSet* faces) : indices(faces->coordIndex)
    {
        SoNode* const property = faces->vertexProperty.getValue();
        if (property && isUnindexed(faces->normalIndex) && isUnindexed(faces->materialIndex) &&
            isUnindexed(faces->textureCoordIndex))
            vertices = exactly<SoVertexProperty>(property);
    }

    static bool isUnindexed(const SoMFInt32& index)
    {
        return index.getNum() == 0 || (index.getNum() == 1 && index[0] == -1);
    }

    bool areUnderstood() const
    {
        if (!vertices || vertices->texCoord.getNum() > 0 ||
            vertices->normalBinding.getValue() != SoVertexProperty::PER_VERTEX_INDEXED ||
            vertices->materialBinding.getValue() != SoVertexProperty::PER_VERTEX_INDEXED)
            return false;
        const int n = vertices->vertex.getNum();
        if (vertices->normal.getNum() != n || vertices->orderedRGBA.getNum() != n)
            return false;
        for (int i = 0; i < n; ++i) {
            if ((vertices->orderedRGBA[i] & 255) != 255)
                return false;
        }
        bool right = indices.getNum() > 0 && indices.getNum() % 5 == 0;
        for (int i = 0; i < indices.getNum() && right; ++i)
            right = i % 5 == 4 ? indices[i] < 0 : indices[i] >= 0 && indices[i] < n;
        return right;
    }

    const SoMFInt32& indices;
    const SoVertexProperty* vertices = nullptr;
};

bool GlyphDrawing::Compiler::addQuads(const State& state, const SoIndexedFaceSet* faces)
{
    const Quads quads(faces);
    if (!quads.areUnderstood())
        return false;
    const int first = int(vertices.size());
    SbBox3f box;
    for (int i = 0; i < quads.indices.getNum(); ++i) {
        const int corner = quads.indices[i];
        if (corner < 0)
            continue;
        const SbVec3f& point = quads.vertices->vertex[corner];
        addVertex(point, quads.vertices->normal[corner], quads.vertices->orderedRGBA[corner]);
        box.extendBy(point);
    }
    batches.push_back({state.place, true, first, std::int32_t(vertices.size()) - first});
    const SbVec3f half = box.getSize() * 0.5f;
    const SbVec3f middle = state.place + box.getCenter();
    parts.push_back({batches.back(), {middle, half.length()}, areaOfBox(half)});
    return true;
}

GlyphDrawing::GlyphDrawing() = default;

GlyphDrawing::~GlyphDrawing() { setMaterial(nullptr); }

// Kept beyond its removal, which is not noticed while notification is off.
void GlyphDrawing::setMaterial(SoMaterial* newMaterial)
{
    if (newMaterial)
        newMaterial->ref();
    if (material)
        material->unref();
    material = newMaterial;
}

bool GlyphDrawing::update(const std::vector<SoNode*>& nodes, int corners)
{
    const bool unchanged =
        corners == sphereCorners &&
        std::equal(glyphs.begin(), glyphs.end(), nodes.begin(), nodes.end(),
                   [](const Glyph& glyph, const SoNode* node) {
                       return glyph.node == node && glyph.id == node->getNodeId();
                   });
    sphereCorners = corners;
    if (!unchanged)
        understood = compile(nodes);
    return understood;
}

bool GlyphDrawing::compile(const std::vector<SoNode*>& nodes)
{
    ++version;
    glyphs.clear();
    vertices.clear();
    indices.clear();
    largestSphere = 0;
    SoMaterial* common = nullptr;
    bool all = true;
    for (SoNode* node : nodes) {
        Compiler compiler{vertices, indices, common, sphereCorners, largestSphere, {}, {}};
        Compiler::State state;
        all = all && compiler.compile(node, state);
        glyphs.push_back({node,
                          node->getNodeId(),
                          std::move(compiler.batches),
                          std::move(compiler.parts),
                          {},
                          0});
        measure(glyphs.back());
    }
    setMaterial(all ? common : nullptr);
    return all;
}

void GlyphDrawing::measure(Glyph& glyph)
{
    SbBox3f box;
    for (const Part& part : glyph.parts) {
        box.extendBy(part.bound.centre);
        glyph.area += part.area;
    }
    glyph.bound = {glyph.parts.empty() ? SbVec3f(0, 0, 0) : box.getCenter(), 0};
    for (const Part& part : glyph.parts) {
        const float distance = (part.bound.centre - glyph.bound.centre).length();
        glyph.bound.radius = std::max(glyph.bound.radius, distance + part.bound.radius);
    }
}

// Drawing

bool GlyphDrawing::canDraw(SoState* state)
{
    // A list being recorded would hold the triangles of all of them; those of the graph's own
    // nodes it can refer to.
    return !state->isCacheOpen() && isPlain(state);
}

bool GlyphDrawing::draw(SoGLRenderAction* action, const std::function<void()>& drawAll)
{
    SoState* const state = action->getState();
    if (!material)
        return true; // without one there are no shapes
    const std::uint32_t context = action->getCacheContext();
    if (!hasRoomForMatrices() || !GLBuffer::areSupported(context))
        return false;
    SoGLCacheContextElement::shouldAutoCache(state, SoGLCacheContextElement::DONT_AUTO_CACHE);

    state->push();
    material->GLRender(action);
    action->handleTransparency(FALSE); // not blended, whatever was before
    SoMaterialBundle bundle(action);
    bundle.sendFirst();
    const bool lit = !bundle.isColorOnly();
    // All but the colour is the same for all of them; Coin lets it be the diffuse one only.
    if (lit)
        glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);

    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    bindBuffers(context);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), GLBuffer::offset(offsetof(Vertex, point)));
    glColorPointer(4, GL_UNSIGNED_BYTE, sizeof(Vertex), GLBuffer::offset(offsetof(Vertex, colour)));
    if (lit) {
        glEnableClientState(GL_NORMAL_ARRAY);
        glNormalPointer(GL_FLOAT, sizeof(Vertex), GLBuffer::offset(offsetof(Vertex, normal)));
    }
    drawAll();
    bound = nullptr;
    glPopClientAttrib();
    if (lit)
        glColorMaterial(GL_FRONT_AND_BACK, GL_DIFFUSE);
    // The current colour is undefined after an array of them.
    SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK |
                                                          SoLazyElement::AMBIENT_MASK);
    state->pop();
    return true;
}

void GlyphDrawing::drawBatch(const Batch& batch)
{
    const bool moved = batch.translation != SbVec3f(0, 0, 0);
    if (moved) {
        glPushMatrix();
        glTranslatef(batch.translation[0], batch.translation[1], batch.translation[2]);
    }
    if (batch.quads)
        glDrawArrays(GL_QUADS, batch.first, batch.count);
    else
        glDrawElements(GL_TRIANGLES, batch.count, GL_UNSIGNED_INT,
                       GLBuffer::offset(std::size_t(batch.first) * sizeof(std::uint32_t)));
    if (moved)
        glPopMatrix();
}

void GlyphDrawing::drawGlyph(std::size_t index, const SbMatrix& place) const
{
    const std::vector<Batch>& batches = glyphs[index].batches;
    if (batches.empty())
        return;
    glPushMatrix();
    glMultMatrixf(place[0]);
    for (const Batch& batch : batches)
        drawBatch(batch);
    glPopMatrix();
}

void GlyphDrawing::drawGlyphs(const std::vector<const Placed*>& all) const
{
    const std::size_t few = 8; // another program costs about as much as some draws
    const PlacedProgram* const program =
        all.size() < few ? nullptr : PlacedProgram::find(boundContext);
    if (!program) {
        for (const Placed* placed : all)
            drawGlyph(placed->glyph, placed->matrix);
        return;
    }
    const PlacedProgram::Use use(*program);
    std::vector<std::vector<const Placed*>> ofGlyphs(glyphs.size());
    for (const Placed* placed : all)
        ofGlyphs[placed->glyph].push_back(placed);
    for (std::size_t i = 0; i < glyphs.size(); ++i) {
        for (const Batch& batch : glyphs[i].batches) {
            if (!ofGlyphs[i].empty())
                drawTogether(*program, batch, ofGlyphs[i]);
        }
    }
}

void GlyphDrawing::drawTogether(const PlacedProgram& program, const Batch& batch,
                                const std::vector<const Placed*>& all) const
{
    const std::size_t atOnce = 4096; // what is sent at a time stays in a processor's cache
    const PlaceReader reader;
    std::vector<PlacedProgram::Place> places;
    places.reserve(std::min(atOnce, all.size()));
    for (std::size_t first = 0; first < all.size(); first += atOnce) {
        places.clear();
        for (std::size_t i = first; i < std::min(first + atOnce, all.size()); ++i)
            places.push_back(reader.read(all[i]->matrix, batch.translation));
        bound->places.refill(GL_ARRAY_BUFFER, places);
        program.enablePlaces();
        const auto count = GLsizei(places.size());
        if (batch.quads)
            glDrawArraysInstanced(GL_QUADS, batch.first, batch.count, count);
        else
            glDrawElementsInstanced(
                GL_TRIANGLES, batch.count, GL_UNSIGNED_INT,
                GLBuffer::offset(std::size_t(batch.first) * sizeof(std::uint32_t)), count);
    }
    program.disablePlaces();
}

void GlyphDrawing::addSeen(const Batch& quads, const SbMatrix& toEye, const DepthGrid& grid,
                           DepthGrid::Areas& areas) const
{
    for (int i = quads.first; i < quads.first + quads.count; i += 4) {
        DepthGrid::Quad quad;
        for (std::size_t k = 0; k < 4; ++k)
            quad[k] = grid.project(quads.translation + vertices[std::size_t(i) + k].point, toEye);
        grid.addSeen(quad, areas);
    }
}

double GlyphDrawing::drawSeen(std::size_t index, const SbMatrix& place, DepthGrid& grid) const
{
    SbMatrix toEye = place;
    toEye.multRight(grid.getToEye());
    const double stretch = DepthGrid::stretchOf(toEye);
    double drawn = 0;
    DepthGrid::Areas areas;
    glPushMatrix();
    glMultMatrixf(place[0]);
    for (const Part& part : glyphs[index].parts) {
        areas.clear();
        if (part.batch.quads)
            addSeen(part.batch, toEye, grid, areas);
        else
            areas.add(
                grid.seen(grid.project(part.bound.centre, part.bound.radius, toEye, stretch)));
        areas.visit([&](const DepthGrid::Area& area) {
            grid.enter(area);
            drawBatch(part.batch);
            drawn += area.getSize() + DepthGrid::PIXELS_PER_DRAW;
        });
    }
    glPopMatrix();
    return drawn;
}

// Brings the geometry to the context, unless it is there already.
void GlyphDrawing::bindBuffers(std::uint32_t context)
{
    Buffers& held = buffers[context];
    if (held.version != version) {
        held.vertices = GLBuffer(context, GL_ARRAY_BUFFER, vertices);
        held.indices = GLBuffer(context, GL_ELEMENT_ARRAY_BUFFER, indices);
        held.version = version;
    }
    if (!held.places)
        held.places = GLBuffer(context, GL_ARRAY_BUFFER, std::vector<PlacedProgram::Place>());
    bound = &held;
    boundContext = context;
    held.vertices.bind(GL_ARRAY_BUFFER);
    held.indices.bind(GL_ELEMENT_ARRAY_BUFFER);
}
