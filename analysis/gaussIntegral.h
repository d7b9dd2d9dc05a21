// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_GAUSSINTEGRAL_H
#define STRANDVIEW_ANALYSIS_GAUSSINTEGRAL_H

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

// How curves wind around each other and themselves. A curve is a polygon: an edge from each point
// to the next one; of a closed curve the last point is the first one again.
//
// Gauss's integral of two edges is the solid angle of the directions from the points of one to
// those of the other, over 4 pi: that of the parallelogram of the four vectors between their ends,
// which is two triangles (A. van Oosterom, J. Strackee, The solid angle of a plane triangle, IEEE
// Trans. Biomed. Eng. BME-30, 1983, 125). Both have the same triple product, so that one arc
// tangent gives their sum. Exact for straight edges; edges in one plane, and those that meet, give
// 0. Where the one in front, as one looks at both, is crossed from left to right by the one behind,
// it is negative: a right-handed coil has a positive writhe.
//
// From POINTS_FOR_THREADS points on, up to sixteen processors compute; the sums are those of one.
// Time grows with the square of the number of points. Curves of any size: they are scaled to one
// first. Plain functions for any thread.

constexpr std::size_t POINTS_FOR_THREADS = 2000;

/// Whether to go on with what takes long.
using GoOn = std::function<bool()>;

/// The integral of each edge with all others of its curve: one value for each edge, which sum to
/// gaussIntegral(curve). Fewer than two points have no edges. goOn, if it is given, is asked by the
/// calling thread, edge after edge; where it says no there are no values at all.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double>
gaussIntegralOfEdges(const std::vector<algebra3d::Vector3<double>>& curve, const GoOn& goOn = {});

/// Of a curve with itself, each pair of edges twice: of a closed one this is its writhe
/// (F. B. Fuller, Proc. Natl. Acad. Sci. USA 68, 1971, 815).
STRANDVIEW_ANALYSIS_EXPORT double
gaussIntegral(const std::vector<algebra3d::Vector3<double>>& curve);

/// Of two curves, each pair of edges once.
STRANDVIEW_ANALYSIS_EXPORT double
gaussIntegral(const std::vector<algebra3d::Vector3<double>>& first,
              const std::vector<algebra3d::Vector3<double>>& second);

/// That of two closed curves, which is a whole number: how often one winds around the other,
/// positive where it does so as a right-handed screw. Nothing if one of them is not closed (its
/// last point is not exactly its first), or if they meet: then the integral is no whole number
/// within 1e-6.
STRANDVIEW_ANALYSIS_EXPORT std::optional<long long>
linkingNumber(const std::vector<algebra3d::Vector3<double>>& first,
              const std::vector<algebra3d::Vector3<double>>& second);

} // namespace strandview

#endif
