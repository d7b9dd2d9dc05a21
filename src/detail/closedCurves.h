// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_CLOSEDCURVES_H
#define STRANDVIEW_DETAIL_CLOSEDCURVES_H

#include <vector>

#include <algebra3d/Vector3.h>

/// Whether the last point is the first one again, with two others at least between them.
inline bool isClosedCurve(const std::vector<algebra3d::Vector3<double>>& points)
{
    return points.size() >= 4 && points.front().x == points.back().x &&
           points.front().y == points.back().y && points.front().z == points.back().z;
}

/// Where the ends of a closed curve meet, by the rule of Curve::computeTangents() for the nodes
/// inside.
inline algebra3d::Vector3<double>
tangentAtSeam(const std::vector<algebra3d::Vector3<double>>& points)
{
    return (points[1] - points[points.size() - 2]).getUnit();
}

#endif
