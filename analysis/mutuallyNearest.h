// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_MUTUALLYNEAREST_H
#define STRANDVIEW_ANALYSIS_MUTUALLYNEAREST_H

#include <cstddef>
#include <functional>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

/// Of each of the points the index of its partner: the two are the nearest to one another, by a
/// distance that is infinite for those that never are partners. NO_NUCLEOTIDE (helices.h) for one
/// that has none.
///
/// Only points within `reach`, above 0, of one another are asked for their distance, which does
/// not depend on the order of the two; of equal ones the lower index is the nearer. Points are at
/// most 1e18 times the reach, or 1e18, from the origin. The time goes with the number of points
/// and of those within reach of each. In a crowd that no bases are, of more than 1000 within a cube
/// of thrice the reach, nobody has a partner: it would go with the square of their number.
STRANDVIEW_ANALYSIS_EXPORT std::vector<std::size_t>
mutuallyNearest(const std::vector<algebra3d::Vector3<double>>& points, double reach,
                const std::function<double(std::size_t, std::size_t)>& distance);

} // namespace strandview

#endif
