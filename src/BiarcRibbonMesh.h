// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_BIARCRIBBONMESH_H
#define STRANDVIEW_BIARCRIBBONMESH_H

#include <memory>
#include <vector>

#include <ArcLengths.h>
#include <RibbonMesh.h>
#include <biarc/Curve.h>

/// A ribbon whose two edges are biarc curves through two sequences of points, each
/// interpolated and sampled by itself.
///
/// With m points on the first edge there are interpolationCount * (m - 1) + 1 rows;
/// column 0 lies on curve A, column 1 on curve B. Normals are across the row and the
/// edge's own tangent. The bounding box omits the last row, on purpose. Built
/// completely in the constructor.
///
/// Fewer than 2 points leave the mesh empty and invalid. Coincident consecutive
/// points give points that are not finite.
class STRANDVIEW_EXPORT BiarcRibbonMesh : public RibbonMesh
{
public:
    /// edgeB holds at least as many points as edgeA; neither is changed. The width is
    /// only stored, as by RibbonMesh(double): the edges decide what is drawn. The
    /// interpolation count is max(|interpolationCount|, 1), on purpose unlike that of
    /// BiarcTubeMesh. A mesh that this one replaces, if one is given, hands over its
    /// memory and is empty then: far faster than fresh memory.
    BiarcRibbonMesh(std::vector<algebra3d::Vector3<double>>& edgeA,
                    std::vector<algebra3d::Vector3<double>>& edgeB, double width,
                    int interpolationCount, BiarcRibbonMesh* replaced = nullptr);

    /// The ribbon between two closed curves, whose last points are the first ones again: smooth
    /// there, too, with the first row as the last. An open one if a last point is another one, or
    /// if there are fewer than 4.
    static std::unique_ptr<BiarcRibbonMesh>
    makeClosed(std::vector<algebra3d::Vector3<double>>& edgeA,
               std::vector<algebra3d::Vector3<double>>& edgeB, double width, int interpolationCount,
               BiarcRibbonMesh* replaced = nullptr);

    /// Fills one column from the first m nodes of a curve, writes the tangents of the
    /// rows into `tangents`, which must have one entry per row, and both tables.
    void computePointsOnSide(int column, int m, Curve<::Vector3>& curve,
                             std::vector<algebra3d::Vector3<double>>& tangents);

    /// Frees both curves, which nothing needs once the rows are made: 416 bytes a point.
    void forgetCurves();

    // Arc lengths along curve B from its first point

    /// One per point.
    const std::vector<double>& getParamValues() const;
    /// One per row.
    const std::vector<double>& getInterpParamValues() const;
    /// Both, for whoever colours rows in another thread: they stay as they are when the mesh goes,
    /// or is built anew, and share its memory. Null before there are any.
    std::shared_ptr<const ArcLengths> shareArcLengths() const;

private:
    BiarcRibbonMesh(const std::vector<algebra3d::Vector3<double>>& edgeA,
                    const std::vector<algebra3d::Vector3<double>>& edgeB, double width,
                    int interpolationCount, bool closed, BiarcRibbonMesh* replaced);

    void fillRows(int m);

    double interpolationCount; // a whole number
    Curve<::Vector3> curveA;
    Curve<::Vector3> curveB;
    std::shared_ptr<ArcLengths> lengths; // null without; not changed while others have them
};

#endif
