// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_MESHDRAWING_H
#define STRANDVIEW_DRAWING_MESHDRAWING_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include <Inventor/SbBasic.h>
#include <Inventor/SbVec3f.h>

#include "drawing/BackFaces.h"
#include "drawing/GLBuffer.h"

class DepthGrid;
class Mesh;
class SoGLRenderAction;
class SoState;

/// Draws the meshes of a node from vertex buffers, so that a frame in which nothing of it changed
/// costs the same whatever their size, and one after a change what its vertices cost.
///
/// What depends on the grids alone (triangles, texture coordinates) is made once for as long as
/// they have as many rows and columns; the vertices, rounded to float, when the id is another
/// one; the colours, one for each vertex, when the materials come from another place. Each
/// OpenGL context has its own. The picture is that of the meshes' render(), which draws where
/// there are no buffers, and what goes into a display list that somebody records.
///
/// From two million vertices on they are drawn in several draws.
///
/// With a software driver, faces of closed tubes that are turned away from the eye, and hidden by
/// others of the same tube, are not drawn: see BackFaces.
///
/// Where much of it would lie one behind the other, as in a coil seen along its axis, the nearest
/// comes first, and triangles that are hidden are not drawn.
///
/// Where a host asks for it, rows that are nearer to each other than half a pixel are left out:
/// what is left is drawn from memory of its own, so that the buffers of all rows are filled for the
/// first frame that draws them.
///
/// Coin caches no extension shape unless it is told to, and gives up every cache in which a
/// shader program was traversed: what hangs beside a program keeps its own.
class MeshDrawing
{
public:
    /// A tube or a ribbon: a row has one material.
    struct Part
    {
        Mesh& mesh;
        int materialOffset;
    };

    /// Draws the parts in their order, as their render() does. They are the same as long as the id
    /// is. Their material offsets may depend on the material binding; parts of as
    /// many rows and columns have the same ones.
    /// If `coarse` is told, rows that are nearer to each other than half a pixel may be left out.
    void draw(SbUniqueId id, SoGLRenderAction* action, const std::vector<Part>& parts, bool coarse);

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
        SbUniqueId usedId; // that of the parts when they were used last
        GLBuffer buffer;
    };
    /// What the triangles between the vertices of a part depend on.
    struct Grid
    {
        bool operator==(const Grid& other) const
        {
            return rows == other.rows && columns == other.columns && caps == other.caps;
        }

        int rows, columns; // of the body; 0 if it is not drawn
        std::size_t caps;
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
    struct Buffers
    {
        GLBuffer vertices, triangles;
        GLBuffer textures; // only if some were seen
    };
    /// In one context.
    struct Kept
    {
        const SoGLRenderAction* drawnBy = nullptr; // last: a context has its own
        unsigned turn = 0;                         // of those
        std::vector<Grid> grids;
        SbUniqueId filledId = 0; // that of the parts when their vertices were taken
        Buffers all;
        Buffers few; // of rows that are drawn coarsely, without triangles
        GLBuffer coloursOfFew;
        std::vector<Draw> draws;      // of all
        std::vector<Run> runs;        // only once they are sorted
        std::vector<Colours> colours; // those used last at the end
    };

    class Drawer;
    class Layout;

    /// Of each part the rows that are farther than a length from each other; none where those are
    /// more than half of all.
    struct RowsApart
    {
        double length;
        std::vector<MeshRows> rows;
    };

    void measure(const std::vector<Part>& parts);
    const Colours& prepare(SoGLRenderAction* action, Kept& kept,
                           const std::vector<Part>& parts) const;
    void fillVertices(Kept& kept, std::uint32_t context, const Layout& layout) const;
    Colours& takeColours(Kept& kept, const Materials& materials) const;
    static std::vector<std::optional<ClosedTube>> measureTubes(const std::vector<Part>& parts,
                                                               const std::vector<MeshRows>& rows);
    const std::vector<MeshRows>& rowsApart(const std::vector<Part>& parts, double length);
    bool drawFewRows(Kept& kept, std::uint32_t context, bool normals, SoState* state,
                     const std::vector<Part>& parts, const DepthGrid& grid);
    static void drawInOrder(const Kept& kept, const Colours& colours, bool normals, SoState* state);
    bool drawWithoutBackFaces(const Kept& kept, const Colours& colours, bool normals,
                              SoState* state, const std::vector<Part>& parts);
    static double drawSeen(const Run& run, Mesh& mesh, const DepthGrid& grid, Drawer& drawer);
    static void drawNearestFirst(Kept& kept, const Colours& colours, bool normals, SoState* state,
                                 const std::vector<Part>& parts, DepthGrid& grid);

    SbUniqueId drawnId = 0;  // of the parts
    SbVec3f centre{0, 0, 0}; // of a ball about the parts
    double radius = 0;
    double area = 0;        // of the parts seen from aside, front and back; 0 if they have few rows
    SbUniqueId tubesId = 0; // that of the parts when they were measured
    std::vector<std::optional<ClosedTube>> tubes; // those of the parts that are
    SbUniqueId apartId = 0;                       // that of the parts of these rows
    std::vector<RowsApart> apart; // of some cameras by turns, those used last at the end
    PerContext<Kept> contexts;
};

#endif
