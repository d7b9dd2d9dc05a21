// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_SHAPE_H
#define STRANDVIEW_ANALYSIS_SHAPE_H

#include <cstddef>
#include <optional>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

// Numbers of the whole of a curve: a polygon, whose last point is the first one again if it is
// closed. Lengths are in the unit of its points. Plain functions for any thread.

/// Of all edges together.
STRANDVIEW_ANALYSIS_EXPORT double lengthOf(const std::vector<algebra3d::Vector3<double>>& curve);

/// From the first point to the last one.
STRANDVIEW_ANALYSIS_EXPORT double endToEndOf(const std::vector<algebra3d::Vector3<double>>& curve);

/// The root of the mean square of the points' distances from their mean (P. J. Flory, Principles of
/// Polymer Chemistry, 1953, chapter X). The last point of a closed curve, which is its first,
/// counts once.
STRANDVIEW_ANALYSIS_EXPORT double
radiusOfGyrationOf(const std::vector<algebra3d::Vector3<double>>& curve);

/// Where a curve comes nearest to itself.
struct Contact
{
    double distance = 0;
    std::size_t edge1 = 0; ///< from the point of that index on
    std::size_t edge2 = 0; ///< behind it
};

/// The smallest distance between two edges that do not follow each other and are farther apart
/// along the curve, from the end of one to the start of the other, than half a turn of its tightest
/// bend: pi over its largest curvature, less what rounding may make of that (curveNumbers.h).
/// Around a closed curve both ways are as far at least. Nothing if no two edges are.
///
/// Boxes around halves of halves of the curve leave out what is farther than the nearest so far:
/// time grows little faster than the number of points.
STRANDVIEW_ANALYSIS_EXPORT std::optional<Contact>
contactOf(const std::vector<algebra3d::Vector3<double>>& curve);

/// Between two straight edges, a to b and c to d, points included.
STRANDVIEW_ANALYSIS_EXPORT double distanceOfEdges(const algebra3d::Vector3<double>& a,
                                                  const algebra3d::Vector3<double>& b,
                                                  const algebra3d::Vector3<double>& c,
                                                  const algebra3d::Vector3<double>& d);

} // namespace strandview

#endif
