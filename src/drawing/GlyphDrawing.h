// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_GLYPHDRAWING_H
#define STRANDVIEW_DRAWING_GLYPHDRAWING_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbVec3f.h>

#include "drawing/DepthGrid.h"
#include "drawing/GLBuffer.h"
#include "drawing/PlacedProgram.h"

class SoGLRenderAction;
class SoMaterial;
class SoNode;
class SoState;
class SoSwitch;

/// Whether a switch shows all or nothing: the two that are drawn from buffers.
bool isAllOrNothing(const SoSwitch* node);

/// Draws nodes that hold spheres, boxes and quadrilaterals (of SoIndexedFaceSet, with a normal and
/// a colour for each corner) from vertex buffers, instead of traversing them:
/// the bases and boxes of a DNA, which are placed many times.
///
/// The nodes stay the only description of what is shown. They are read again where their ids
/// tell that they changed, and compiled into glyphs, the triangles of a node. What is not
/// understood, in a node or in the traversal state, is not drawn here; it is to be traversed.
///
/// The spheres of a glyph are merged, each at its place: their vertices may be rounded
/// differently from those of a sphere that OpenGL moves. Boxes are moved by OpenGL.
class GlyphDrawing
{
public:
    struct Ball
    {
        SbVec3f centre;
        float radius;
    };

    /// A glyph, by the index of its node, and where it is drawn.
    struct Placed
    {
        std::uint32_t glyph = 0;
        SbMatrix matrix;
    };

    GlyphDrawing();
    ~GlyphDrawing();
    GlyphDrawing(const GlyphDrawing&) = delete;
    GlyphDrawing& operator=(const GlyphDrawing&) = delete;

    /// Whether the traversal state has shapes drawn as they are: filled, opaque, without
    /// textures and overrides, and recorded nowhere.
    static bool canDraw(SoState* state);

    /// Reads the nodes, one glyph each, unless they are as they were. Whether all of them are
    /// understood. Spheres have that many corners around and half as many rows; with 0 as many
    /// as Coin gives them. With 4 they are octahedra that cover as much as with 6.
    bool update(const std::vector<SoNode*>& nodes, int corners = 0);

    /// The largest radius of all spheres.
    float getLargestSphere() const { return largestSphere; }

    /// Sets up OpenGL for drawGlyph(), which drawAll is to call for each place, and leaves
    /// OpenGL and Coin's state as before. Needs update() and canDraw(). False, and nothing is
    /// drawn, in a context without buffers or without matrices left.
    bool draw(SoGLRenderAction* action, const std::function<void()>& drawAll);
    /// Draws the glyph of the node with that index at a place.
    void drawGlyph(std::size_t index, const SbMatrix& place) const;
    /// The same for many, of each node those together where the program in use can be made to:
    /// then a batch of a node is one draw for thousands of places.
    void drawGlyphs(const std::vector<const Placed*>& all) const;

    /// About all of the glyph of the node with that index, in its own coordinates.
    const Ball& getBound(std::size_t index) const { return glyphs[index].bound; }
    /// The area of a glyph's parts seen one beside the other.
    double getArea(std::size_t index) const { return glyphs[index].area; }
    /// As drawGlyph(), without the parts, and what is about the rest of them, that the grid says
    /// are hidden. About how many pixels were drawn, with those that could be for each draw.
    double drawSeen(std::size_t index, const SbMatrix& place, DepthGrid& grid) const;

private:
    struct Vertex
    {
        SbVec3f point;
        SbVec3f normal;
        std::uint8_t colour[4];
    };

    // One draw: indexed triangles of merged spheres, or quadrilaterals, those of a box, too, which
    // OpenGL is to move and to divide as it does in immediate mode: without indices.
    struct Batch
    {
        SbVec3f translation;
        bool quads;
        std::int32_t first; // index, or vertex of a box
        std::int32_t count;
    };

    // A sphere, or quadrilaterals.
    struct Part
    {
        Batch batch;
        Ball bound;
        double area; // of the sphere's disc, or of the quadrilaterals' box seen from aside
    };

    struct Glyph
    {
        const SoNode* node;
        std::uint64_t id; // of the node when it was compiled
        std::vector<Batch> batches;
        std::vector<Part> parts; // the same in smaller draws
        Ball bound;              // about all parts
        double area;
    };

    struct Buffers
    {
        GLBuffer vertices, indices, places;
        std::uint64_t version = 0; // of the geometry in them
    };

    struct Compiler;

    bool compile(const std::vector<SoNode*>& nodes);
    static void measure(Glyph& glyph);
    static void drawBatch(const Batch& batch);
    void drawTogether(const PlacedProgram& program, const Batch& batch,
                      const std::vector<const Placed*>& all) const;
    void addSeen(const Batch& quads, const SbMatrix& toEye, const DepthGrid& grid,
                 DepthGrid::Areas& areas) const;
    void setMaterial(SoMaterial* newMaterial);
    void bindBuffers(std::uint32_t context);

    std::vector<Glyph> glyphs;
    bool understood = true;
    int sphereCorners = 0;
    float largestSphere = 0;
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
    SoMaterial* material = nullptr; // one of those that were compiled, referenced
    std::uint64_t version = 0;
    PerContext<Buffers> buffers;
    Buffers* bound = nullptr; // while it draws
    std::uint32_t boundContext = 0;
};

#endif
