// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_POINTS_H
#define STRANDVIEW_MODEL_POINTS_H

#include <limits>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/modelExport.h>

namespace strandview {

// Which points of a centreline are one.

/// Whether two points are one to the formulas, which divide by the square of their
/// distance: they are equal, or so near (below 1.5e-154) that it is no normal number.
inline bool areCoincident(const algebra3d::Vector3<double>& a, const algebra3d::Vector3<double>& b)
{
    const algebra3d::Vector3<double> distance = b - a;
    return distance.dot(distance) < std::numeric_limits<double>::min();
}

/// Points of one rod that are nearer than this are one: 1e-5 of the mean distance of
/// consecutive points, not counting coincident ones; 0 without any. Beside unit edges
/// the rings of the tubes were seen to fail from 1e-7 down, and to hold at 1e-6.
STRANDVIEW_MODEL_EXPORT double smallestEdge(const std::vector<algebra3d::Vector3<double>>& points);

/// That, and whether no edge is shorter: then all points are kept.
struct Edges
{
    double smallest;
    bool areLong;
};
STRANDVIEW_MODEL_EXPORT Edges measureEdges(const std::vector<algebra3d::Vector3<double>>& points);

/// Whether the last of at least two points is the first one again, within smallestEdge().
STRANDVIEW_MODEL_EXPORT bool isClosed(const std::vector<algebra3d::Vector3<double>>& points);
/// The same where it is known.
STRANDVIEW_MODEL_EXPORT bool isClosed(const std::vector<algebra3d::Vector3<double>>& points,
                                      double smallestEdge);

} // namespace strandview

#endif
