// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_RODDATA_H
#define STRANDVIEW_DETAIL_RODDATA_H

#include <algorithm>
#include <memory>
#include <vector>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <algebra3d/Matrix3.h>
#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include "detail/closedCurves.h"

// What the nodes of rods and birods do alike with one sequence of points and frames.

/// Axis d1, d2 or d3 of a material frame, for column 0, 1 or 2.
inline algebra3d::Vector3<double> director(const algebra3d::Quaternion<double>& rotation,
                                           int column)
{
    return algebra3d::Matrix3<double>(rotation).getColumn(column);
}

/// The tube that leaves its first point along d3 and arrives at its last along d3, or one that
/// meets itself if the curve is said to be closed, and is; in the memory of the tube that it
/// replaces, if any.
inline std::unique_ptr<BiarcTubeMesh>
makeFramedTube(const std::vector<algebra3d::Vector3<double>>& points,
               const std::vector<algebra3d::Quaternion<double>>& rotations, double radius,
               int slices, int subsegments, bool closed, BiarcTubeMesh* replaced)
{
    if (closed && isClosedCurve(points))
        return BiarcTubeMesh::makeClosed(points, radius, slices, subsegments, replaced);
    return std::make_unique<BiarcTubeMesh>(points, director(rotations.front(), 2),
                                           director(rotations.back(), 2), radius, slices,
                                           subsegments, false, false, replaced);
}

/// The edges of a ribbon along d2, for as many points as edgeA has entries: centred on
/// the points if twoSided, otherwise beginning at them.
inline void fillRibbonEdges(const std::vector<algebra3d::Vector3<double>>& points,
                            const std::vector<algebra3d::Quaternion<double>>& rotations,
                            double width, bool twoSided,
                            std::vector<algebra3d::Vector3<double>>& edgeA,
                            std::vector<algebra3d::Vector3<double>>& edgeB)
{
    for (std::size_t i = 0; i < edgeA.size(); ++i) {
        const algebra3d::Vector3<double> d2 = director(rotations[i], 1);
        if (twoSided) {
            const double half = width * 0.5;
            edgeA[i] = points[i] - half * d2;
            edgeB[i] = points[i] + half * d2;
        } else {
            edgeA[i] = points[i];
            edgeB[i] = points[i] + width * d2;
        }
    }
}

/// The ribbon between those edges, which meets itself if it is said to be closed and frames and
/// points end as they begin; in the memory of the ribbon that it replaces, if any.
inline std::unique_ptr<BiarcRibbonMesh>
makeRibbon(const std::vector<algebra3d::Vector3<double>>& points,
           const std::vector<algebra3d::Quaternion<double>>& rotations, double width,
           int subsegments, bool twoSided, bool closed, BiarcRibbonMesh* replaced)
{
    std::vector<algebra3d::Vector3<double>> edgeA(points.size());
    std::vector<algebra3d::Vector3<double>> edgeB(points.size());
    fillRibbonEdges(points, rotations, width, twoSided, edgeA, edgeB);
    if (closed)
        return BiarcRibbonMesh::makeClosed(edgeA, edgeB, width, subsegments, replaced);
    return std::make_unique<BiarcRibbonMesh>(edgeA, edgeB, width, subsegments, replaced);
}

/// The entry of `count` ones, at least 1, that an index means: the first or the last if
/// it lies outside.
inline std::size_t clampIndex(int index, std::size_t count)
{
    return std::size_t(std::clamp(index, 0, int(count) - 1));
}

#endif
