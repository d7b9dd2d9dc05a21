// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_PARALLELTRANSPORT_H
#define STRANDVIEW_ANALYSIS_PARALLELTRANSPORT_H

#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

/// Material frames for a centreline that came without: one unit quaternion per point.
///
/// d3 is the tangent, estimated as the tubes do: the direction from the point before
/// to the point after, at the ends that of the end's edge. (Where the centreline turns
/// back on itself and the two are one point, it is the direction of the edge that
/// follows.) If the last point is the first one again, within smallestEdge(), both ends
/// have the direction from the last but one to the second.
///
/// d1 and d2 do not turn about d3 on their way along the centreline: they are carried from
/// point to point by two reflections (W. Wang, B. Jüttler, D. Zheng, Y. Liu, Computation of
/// rotation minimizing frames, ACM Trans. Graph. 27, 2008, 2:1-2:18). The first d2 is the unit
/// vector of z x d3, or y made perpendicular to d3 where d3 is nearly z or -z: in a plane of
/// constant z, every d2 lies in that plane. Neighbouring quaternions are of one sign along a smooth
/// centreline, but for the last one of a closed one.
///
/// Carried so around a closed centreline d2 comes back turned about d3 by some angle of at most
/// half a turn. It is turned back by that, evenly along the length: the last frame is the first
/// one, to the last bit. (Not where both ends lie on one edge: their tangents are opposite.)
///
/// At least 2 points, and no two consecutive ones coincident (model/points.h).
STRANDVIEW_ANALYSIS_EXPORT std::vector<algebra3d::Quaternion<double>>
parallelTransport(const std::vector<algebra3d::Vector3<double>>& points);
/// The same where it is known whether the last point is the first one again.
STRANDVIEW_ANALYSIS_EXPORT std::vector<algebra3d::Quaternion<double>>
parallelTransport(const std::vector<algebra3d::Vector3<double>>& points, bool isClosed);

} // namespace strandview

#endif
