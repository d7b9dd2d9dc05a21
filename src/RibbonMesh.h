// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_RIBBONMESH_H
#define STRANDVIEW_RIBBONMESH_H

#include <vector>

#include <Mesh.h>

/// A flat band along a centreline: a Mesh of exactly two columns.
///
/// Row i is one sample of the centreline. Column 0 is the base edge, column 1 the
/// far edge, one ribbon width away along the i-th direction. Lengths are in the
/// caller's unit. Lit on one side: the normals are those of Mesh::computeNormals.
///
/// Bad input is not an error. The mesh stays empty, isValid() is false, and an
/// invalid mesh draws nothing.
class STRANDVIEW_EXPORT RibbonMesh : public Mesh
{
public:
    /// An empty ribbon, for subclasses that fill both columns themselves.
    /// A negative width is stored as 0.
    explicit RibbonMesh(double width);

    /// One row per pair points[i], directions[i]; the shorter sequence decides.
    /// Directions are normalised here; a zero one gives a row of no width.
    /// Empty if width <= 0 or either sequence has fewer than 2 entries.
    RibbonMesh(std::vector<algebra3d::Vector3<double>> points,
               std::vector<algebra3d::Vector3<double>> directions, double width);

    /// The row: one material per row, the same on both edges.
    int getMaterialIndex(int row, int column) const override;

    /// At least 2 rows and exactly 2 columns. Drawing asks the const one of Mesh.
    virtual bool isValid();
    using Mesh::isValid;

    double getRibbonWidth() const { return ribbonWidth; }

private:
    double ribbonWidth; ///< distance between the columns, never negative
};

#endif
