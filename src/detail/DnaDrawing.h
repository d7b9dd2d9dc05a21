// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_DNADRAWING_H
#define STRANDVIEW_DETAIL_DNADRAWING_H

#include <cstdint>
#include <vector>

#include <Inventor/SbMatrix.h>
#include <Inventor/SbVec3f.h>

#include "GLBuffer.h"

class SoGLRenderAction;
class SoGroup;
class SoMaterial;
class SoNode;
class SoState;
class SoSwitch;

/// Draws the pairs of a DNA from vertex buffers, one small draw per placed base or box,
/// instead of traversing their graph.
///
/// The graph stays the only description of what is shown. It is read again where its nodes'
/// ids tell that it changed, and compiled into glyphs, the triangles of what the pairs share,
/// and placements, one matrix and glyph per pair and frame. What is not understood, in the
/// graph or in the traversal state, is not drawn here: draw() then says so, and the graph is
/// to be traversed.
///
/// The spheres of a glyph are merged, each at its place: their vertices may be rounded
/// differently from those of a sphere that OpenGL moves. Boxes are moved by OpenGL.
class DnaDrawing
{
public:
    DnaDrawing();
    ~DnaDrawing();
    DnaDrawing(const DnaDrawing&) = delete;
    DnaDrawing& operator=(const DnaDrawing&) = delete;

    /// Draws what stands below root, whose children are to be the two groups: separators of
    /// a transform and what it places. Whether it was drawn.
    bool draw(SoGLRenderAction* action, SoGroup* root, SoSwitch* boxes, SoGroup* bases);

private:
    struct Vertex
    {
        SbVec3f point;
        SbVec3f normal;
        std::uint8_t colour[4];
    };

    // One draw: indexed triangles of merged spheres, or the quadrilaterals of a box, which
    // OpenGL is to move and to divide as it does in immediate mode: without indices.
    struct Batch
    {
        SbVec3f translation;
        bool quads;
        std::int32_t first; // index, or vertex of a box
        std::int32_t count;
    };

    // What is placed, a node shared by many placements.
    struct Glyph
    {
        SoNode* node;
        std::vector<Batch> batches;
    };

    struct Placement
    {
        const SoNode* transform = nullptr;
        std::uint32_t glyph = 0;
        SbMatrix matrix;
    };

    struct Buffers
    {
        GLBuffer vertices, indices;
        std::uint64_t version = 0; // of the geometry in them
    };

    struct Compiler;

    bool update(SoGroup* root, SoSwitch* boxes, SoGroup* bases);
    bool updatePlacements(SoGroup* group, std::vector<Placement>& placements);
    bool compileGlyphs();
    int findGlyph(SoNode* node);
    void setMaterial(SoMaterial* newMaterial);
    void drawPlacements(const std::vector<Placement>& placements) const;
    bool bindBuffers(std::uint32_t context);

    std::vector<Glyph> glyphs;
    std::vector<Glyph> formerGlyphs; // while the graph is read: what it had before
    std::vector<Placement> boxPlacements;
    std::vector<Placement> basePlacements;
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
    SoMaterial* material = nullptr; // one of those that were compiled, referenced
    std::uint64_t seenId = 0;       // the root's node id when the graph was read last
    std::uint64_t geometryVersion = 0;
    bool drawable = false;
    bool boxesShown = false;
    PerContext<Buffers> buffers;
};

#endif
