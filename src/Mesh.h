// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MESH_H
#define STRANDVIEW_MESH_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbVec3f.h>

#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

class MeshCaps;
class MeshVisitor;
class RowBoxes;
class SoAction;
class SoGLRenderAction;
class SoMaterialBundle;
class SoMeshShape;

/// A grid of points with one unit normal each, drawn as one triangle strip between
/// every two consecutive rows. Rows run along a rod, columns across it.
///
/// A mesh is not a scene-graph node; the node that owns it calls render() and
/// generate(). A subclass fills it in this order: setWidth(), setHeight(),
/// allocateMemory(), resetBB(), then every point through getPoints() with an
/// updateBB() each, and the normals, or computeNormals().
///
/// Nothing here reports errors or checks indices. An invalid mesh draws nothing.
///
/// A mesh owns its memory and is never copied. Any thread may build one, several at once too, and
/// visit() and read it, as long as no other uses it; what it is given is read in the constructor
/// alone. With the node that shows it, it goes over to Coin's thread: render(), generate() and
/// whatever else takes a node or an action belong there.
class STRANDVIEW_EXPORT Mesh
{
public:
    /// Without rows. rowsWrap: the last row is the first one again (closed along the
    /// rod); columnsWrap: the last column is the first one again (closed around it).
    Mesh(bool rowsWrap, bool columnsWrap);
    virtual ~Mesh();
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;

    // The grid

    /// At least one row and one column, and allocated.
    virtual bool isValid() const;
    /// The number of rows.
    virtual int getHeight() const;
    /// The number of columns.
    virtual int getWidth() const;
    /// The material of a point with per-vertex binding: row * height + column. The
    /// factor is the height, not the width, on purpose; subclasses have rules of
    /// their own.
    virtual int getMaterialIndex(int row, int column) const;
    /// The axis-aligned box of the points, rounded to float.
    virtual SbBox3f getBBox() const;
    /// The middle of that box.
    virtual SbVec3f getCentre();

    // Drawing

    /// Draws the strips: per strip and column first the point of the next row, then
    /// that of this one. materialOffset is added to every material index; with an
    /// overall binding it is the only one. Where there are not so many materials the
    /// last one is taken. Texture coordinates run from 0 to 1 across (s) and along (t).
    virtual void render(SoGLRenderAction* action, int materialOffset);
    /// Emits the same triangles through the shape that owns the mesh, with plain
    /// material indices and no texture coordinates. For a ray pick it leaves out strips
    /// that the ray misses; the boxes that tell are kept while the shape is not touched.
    virtual void generate(SoMeshShape* shape, SoAction* action);
    /// Tells all triangles: the strips, then a tube's caps, the lower and the upper, in the
    /// order of render(). An invalid mesh tells nothing. What every consumer of the triangles
    /// uses, those of this class included.
    void visit(MeshVisitor& visitor);
    /// The same without the strips, whose vertices are the grid's.
    void visitCaps(MeshVisitor& visitor);
    /// (width - 1) * (2 * height - 2) triangles.
    virtual int getPrimitiveCount();

    /// Sets each normal to the unit sum of the unit normals of the adjacent cells,
    /// a cell's normal being (across) x (along). The normals must be zero, as they
    /// are after allocateMemory(). Then the normals of a wrapped edge are joined:
    /// columns if they wrap, otherwise rows if they do, never both.
    virtual void computeNormals();

    /// Row pointers, null without rows; getPoints()[row][column] is writable. Whoever
    /// writes after the mesh was shown touches the node that shows it.
    algebra3d::Vector3<double>** getPoints();
    algebra3d::Vector3<double>** getNormals();

    // Building

    /// At least 2 columns.
    void setWidth(int columns);
    /// All rows, as one block, of zero vectors; replaces what there was. Without
    /// rows, nothing.
    void allocateMemory();
    /// Back to no rows, 2 columns and the box of a new mesh, which is not that of
    /// resetBB(): its minimum is FLT_MAX and its maximum FLT_MIN, the smallest
    /// positive float.
    void clear();

    /// An empty box that any point extends.
    void resetBB();
    void updateBB(const algebra3d::Vector3<double>& point)
    {
        for (int axis = 0; axis < 3; ++axis) {
            const double value = point[axis];
            if (minimum[axis] > value)
                minimum[axis] = value;
            if (value > maximum[axis])
                maximum[axis] = value;
        }
    }

    /// Sends one vertex to OpenGL: texture coordinates if `texture`, its material, or
    /// the last one there is, unless `materialOverall`, its normal if `sendNormal`, then
    /// the point.
    void addGLVertex(bool texture, double s, double t, bool materialOverall,
                     SoMaterialBundle& bundle, int materialIndex, bool sendNormal,
                     const algebra3d::Vector3<double>& point,
                     const algebra3d::Vector3<double>& normal);

protected:
    /// How a subclass tells the fans at its ends: null for none; not owned.
    void setCaps(MeshCaps* caps);

    /// Stores the number of rows as it is.
    void setHeight(int rows);

    /// allocateMemory() for a subclass that constructs every vector itself: until then
    /// the rows hold none.
    void allocateUnconstructed();
    /// Takes the memory of a mesh that this one replaces, for the next allocation, and
    /// clears that mesh. Fresh memory costs more than all else about a mesh.
    void takeMemory(Mesh& replaced);

    /// generate() of this class. Returns whether strips beside the first and the last row
    /// were left out because a ray misses them and what lies flat in these rows.
    struct LeftOut
    {
        bool atFirstRow, atLastRow;
    };
    LeftOut generateStrips(SoMeshShape* shape, SoAction* action);

    // The box as updateBB() keeps it, three doubles each.
    double* getMinimum() { return minimum; }
    double* getMaximum() { return maximum; }

private:
    /// The strips from row `first` to row `end`, of a valid mesh.
    template <typename Visitor>
    void visitStrips(Visitor& visitor, int first, int end);

    struct Free
    {
        void operator()(algebra3d::Vector3<double>* block) const;
    };

    /// The number of points and of normals.
    std::size_t size() const { return std::size_t(height) * std::size_t(width); }
    const RowBoxes& boxesFor(const SoMeshShape& shape);

    const bool rowsWrap;
    const bool columnsWrap;
    MeshCaps* caps = nullptr;
    int width;
    int height;
    // All points, then all normals, row by row. The block may be larger than they are.
    std::unique_ptr<algebra3d::Vector3<double>[], Free> block;
    std::size_t capacity;
    // Those of the points, then those of the normals; none without an allocation.
    std::vector<algebra3d::Vector3<double>*> rows;
    // Those of a mesh that this one replaces, until there are some: pointers that are all set again
    // are not cleared before.
    std::vector<algebra3d::Vector3<double>*> replacedRows;
    // Kept in double and rounded when asked for: rounding is monotonic, so this is
    // the box of the rounded points.
    double minimum[3];
    double maximum[3];
    // Made by the first ray pick of a shape in that state; null before.
    std::unique_ptr<RowBoxes> pickBoxes;
    std::uint64_t pickedNodeId;
};

#endif
