// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_MESHDRAWING_H
#define STRANDVIEW_DRAWING_MESHDRAWING_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include <Inventor/SbBasic.h>
#include <Inventor/SbVec3f.h>

#include "drawing/GLBuffer.h"

class DepthGrid;
class Mesh;
class SoGLRenderAction;
class SoNode;
class SoState;

/// Draws the meshes of a node so that a frame in which nothing of it changed costs the same
/// whatever their size.
///
/// What is drawn for the first time, or after a change, is drawn by the meshes themselves:
/// what changes in every frame costs nothing more. When the same is drawn again it is put
/// into vertex buffers, and drawn from them from then on; the picture is the same. The same
/// means: by the same node id, in the same OpenGL context, with materials from the same
/// place; the materials are kept as one colour per vertex. A display list that somebody
/// records gets what the meshes send.
///
/// From two million vertices on it is put into buffers at once, which takes less than half of
/// the time, and drawn in several draws.
///
/// Where much of it would lie one behind the other, as in a coil seen along its axis, it is put
/// into buffers at once, the nearest comes first, and triangles that are hidden are not drawn.
///
/// Coin caches no extension shape unless it is told to, and gives up every cache in which a
/// shader program was traversed: what hangs beside a program keeps its own.
class MeshDrawing
{
public:
    struct Part
    {
        Mesh& mesh;
        int materialOffset;
    };

    /// Draws the parts in their order, as their render() does. They are the same until the
    /// node's id changes; their material offsets may depend on the material binding.
    void draw(const SoNode& node, SoGLRenderAction* action, const std::vector<Part>& parts);

private:
    /// What the colours of a drawing depend on.
    struct Materials
    {
        explicit Materials(SoState* state);
        bool operator==(const Materials& other) const;

        SbUniqueId diffuse, transparency; // the ids of the nodes that set them
        std::int32_t transparencyType, binding;
    };
    struct Colours
    {
        Materials materials;
        GLBuffer buffer; // none yet if they were seen once
    };
    /// The vertex that the indices count from, and the indices.
    struct Draw
    {
        std::size_t firstVertex, firstIndex;
        int indexCount;
    };
    /// A few consecutive strips of a part.
    struct Run
    {
        std::size_t part;
        Draw draw;
        SbVec3f centre; ///< of a ball about them
        float radius;
        double area;        ///< seen from aside, front and back
        int firstRow, rows; ///< of the body; no rows in a cap
        std::size_t vertex; ///< of all the first of the first row
    };
    /// In one context.
    struct Kept
    {
        GLBuffer vertices, textures, triangles; // textures only if some were seen
        std::vector<Draw> draws;                // of all
        std::vector<Run> runs;                  // only once they are sorted
        std::vector<Colours> colours;           // those used last at the end
    };

    class Drawer;
    class Layout;

    void measure(const std::vector<Part>& parts);
    const Colours* find(SoGLRenderAction* action, Kept& kept, const std::vector<Part>& parts,
                        bool atOnce);
    static void fillVertices(Kept& kept, std::uint32_t context, const Layout& layout);
    static void drawInOrder(const Kept& kept, const Colours& colours, bool normals, SoState* state);
    static double drawSeen(const Run& run, Mesh& mesh, const DepthGrid& grid, Drawer& drawer);
    static void drawNearestFirst(Kept& kept, const Colours& colours, bool normals, SoState* state,
                                 const std::vector<Part>& parts, DepthGrid& grid);

    SbUniqueId drawnId = 0;  // the node's
    SbVec3f centre{0, 0, 0}; // of a ball about the parts
    double radius = 0;
    int rowCount = 0;
    double area = 0; // of the parts seen from aside, front and back
    PerContext<Kept> contexts;
};

#endif
