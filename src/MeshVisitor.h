// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MESHVISITOR_H
#define STRANDVIEW_MESHVISITOR_H

#include <StrandviewExport.h>
#include <algebra3d/Vector3.h>

/// Is told the triangles of a mesh by Mesh::visit(), as the strips and fans that they are
/// drawn as: begin(), the vertices of one strip or fan in OpenGL's order, end(), and so on.
///
/// In a strip every vertex after the second makes a triangle with the two before it, each
/// second triangle turned round; in a fan with the first one and the one before it.
/// It is called in the thread that calls visit().
class STRANDVIEW_EXPORT MeshVisitor
{
public:
    /// A strip between two rows of the grid, or the fan that closes a tube's end.
    enum Kind { STRIP, FAN };

    struct Vertex
    {
        int row, column; ///< its place in the grid
        const algebra3d::Vector3<double>& point;
        const algebra3d::Vector3<double>& normal;
        /// Index of the material with per-vertex binding, without an offset. All vertices of a
        /// fan have the same.
        int material;
        double s, t; ///< texture coordinates, across and along
    };

    /// material: that of a fan's vertices; of a strip 0.
    virtual void begin(Kind kind, int material) = 0;
    virtual void vertex(const Vertex& vertex) = 0;
    virtual void end() = 0;

protected:
    MeshVisitor() = default;
    MeshVisitor(const MeshVisitor&) = default;
    MeshVisitor& operator=(const MeshVisitor&) = default;
    virtual ~MeshVisitor();
};

/// The fans at a mesh's two ends, told by the class that has them.
class STRANDVIEW_EXPORT MeshCaps
{
public:
    virtual bool areThere() = 0;
    /// Of the first or the last row.
    virtual void visitCap(int row, MeshVisitor& visitor) = 0;

protected:
    MeshCaps() = default;
    MeshCaps(const MeshCaps&) = default;
    MeshCaps& operator=(const MeshCaps&) = default;
    virtual ~MeshCaps();
};

#endif
