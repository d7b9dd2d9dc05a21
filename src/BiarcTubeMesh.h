// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_BIARCTUBEMESH_H
#define STRANDVIEW_BIARCTUBEMESH_H

#include <memory>
#include <vector>

#include <ArcLengths.h>
#include <TubeMesh.h>
#include <biarc/Curve.h>
#include <biarc/Tube.h>

/// A tube whose centreline is the biarc curve through the given points, with a fixed
/// number of rings per biarc: a smooth tube from few points.
///
/// With n points there are interpolationCount * (n - 1) + 1 rings, at equal steps of
/// arc length from each point, the points included. The section frame starts at
/// fixed axes and is carried along the curve with the least turning; it does not
/// follow the rod's twist. Built completely in the constructor.
///
/// In every constructor radius, slices and the two flags go to TubeMesh, and the
/// interpolation count is at least 1. A mesh that the new one replaces, if one is given,
/// hands over its memory and is empty then: far faster than fresh memory. Fewer than 2
/// points leave the mesh empty and invalid, and its tables empty. Coincident consecutive
/// points give points that are not finite.
class STRANDVIEW_EXPORT BiarcTubeMesh : public TubeMesh
{
public:
    /// Tangents estimated from the points (Curve::computeTangents).
    BiarcTubeMesh(const std::vector<algebra3d::Vector3<double>>& points, double radius, int slices,
                  int interpolationCount, bool lowerCapTakesLast, bool upperCapTakesFirst,
                  BiarcTubeMesh* replaced = nullptr);

    /// Tangents are d3 of the rotations; the shorter sequence decides.
    BiarcTubeMesh(const std::vector<algebra3d::Vector3<double>>& points,
                  const std::vector<algebra3d::Quaternion<double>>& rotations, double radius,
                  int slices, int interpolationCount, bool lowerCapTakesLast,
                  bool upperCapTakesFirst, BiarcTubeMesh* replaced = nullptr);

    /// Tangents estimated, but those at the ends lie along the given ones, which fix
    /// the line only: their sense follows the order of the points.
    BiarcTubeMesh(const std::vector<algebra3d::Vector3<double>>& points,
                  const algebra3d::Vector3<double>& startTangent,
                  const algebra3d::Vector3<double>& endTangent, double radius, int slices,
                  int interpolationCount, bool lowerCapTakesLast, bool upperCapTakesFirst,
                  BiarcTubeMesh* replaced = nullptr);

    /// The tube of a closed curve, whose last point is the first one again: smooth there, too.
    /// The rings turn by equal shares of arc length about the curve, so that the last one is the
    /// first one, and there are no caps. An open tube if the last point is another one, or if
    /// there are fewer than 4.
    static std::unique_ptr<BiarcTubeMesh>
    makeClosed(const std::vector<algebra3d::Vector3<double>>& points, double radius, int slices,
               int interpolationCount, BiarcTubeMesh* replaced = nullptr);

    ~BiarcTubeMesh() override;

    // The steps of the constructors

    /// Builds the curve and returns the number of its nodes; fewer than 2 leave the
    /// curve as it was.
    int computeCurve(const std::vector<algebra3d::Vector3<double>>& points);
    int computeCurve(const std::vector<algebra3d::Vector3<double>>& points,
                     const std::vector<algebra3d::Quaternion<double>>& rotations);
    int computeCurve(const std::vector<algebra3d::Vector3<double>>& points,
                     const algebra3d::Vector3<double>& startTangent,
                     const algebra3d::Vector3<double>& endTangent);

    /// Fills rings and tables from the curve's first n nodes.
    void generateMesh(int n);

    /// Fills the ring around `centre` across the unit tangent, and turns the carried
    /// frame d1, d2 with the tangent: (tangent, d1, d2) is right-handed.
    void computeMeshAt(int row, algebra3d::Vector3<double> centre,
                       algebra3d::Vector3<double> tangent, algebra3d::Vector3<double>& d1,
                       algebra3d::Vector3<double>& d2);

    /// Frees the curve, which nothing needs once the rings are made: 208 bytes a point.
    /// generateMesh() then needs another computeCurve().
    void forgetCurve();

    // Arc lengths from the first point

    /// One per point.
    const std::vector<double>& getParamValues() const;
    /// One per ring.
    const std::vector<double>& getInterpParamValues() const;
    /// Both, for whoever colours rows in another thread: they stay as they are when the mesh goes,
    /// or is built anew, and share its memory. Null before there are any.
    std::shared_ptr<const ArcLengths> shareArcLengths() const;

private:
    BiarcTubeMesh(double radius, int slices, int interpolationCount, bool lowerCapTakesLast,
                  bool upperCapTakesFirst, BiarcTubeMesh* replaced);

    void appendWithEstimatedTangents(const std::vector<algebra3d::Vector3<double>>& points);
    void forgetTables();

    int interpolationCount;
    Tube<::Vector3> tube;
    Curve<::Vector3> curve;
    std::shared_ptr<ArcLengths> lengths; // null without; not changed while others have them
};

#endif
