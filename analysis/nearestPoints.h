// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_NEARESTPOINTS_H
#define STRANDVIEW_ANALYSIS_NEARESTPOINTS_H

#include <cstddef>
#include <optional>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

/// Of each of the places the index of the nearest point that is nearer than the reach; nothing
/// where none is. Of points that are as near, some one. Time goes with the numbers of places and of
/// points, and little more. Finite coordinates. May be called from any thread.
STRANDVIEW_ANALYSIS_EXPORT std::vector<std::optional<std::size_t>>
nearestPoints(const std::vector<algebra3d::Vector3<double>>& places,
              const std::vector<algebra3d::Vector3<double>>& points, double reach);

} // namespace strandview

#endif
