// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_RIBBONTWIST_H
#define STRANDVIEW_ANALYSIS_RIBBONTWIST_H

#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

/// By how much a ribbon turns about its centreline along each edge, in radians above -pi up to pi,
/// positive for a right-handed turn: one value for each edge. Their sum over 2 pi is the twist Tw
/// of the ribbon; of a closed one, whose last point and direction are the first ones again, it is
/// its linking number less the writhe of the centreline, to rounding (gaussIntegral.h).
///
/// A direction for each point says where the ribbon goes from there; what it has along the tangent
/// is left out. The tangent at a point is half-way between those of the edges that meet there. From
/// there the direction is carried to both edges by parallel transport, the smallest rotations that
/// take the tangent to that of the edge, and what is left between the two directions on an edge is
/// its twist (as the holonomy of a polygon is counted by F. B. Fuller, Proc. Natl. Acad. Sci. USA
/// 75, 1978, 3557, and by M. Bergou et al., Discrete elastic rods, ACM Trans. Graph. 27, 2008, 63).
/// Read backwards, twists are the same.
///
/// As many directions as points; no two consecutive points are coincident. Of a direction along the
/// tangent the twist is 0 or some number. May be called from any thread.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double>
twistOfEdges(const std::vector<algebra3d::Vector3<double>>& points,
             const std::vector<algebra3d::Vector3<double>>& directions);

} // namespace strandview

#endif
