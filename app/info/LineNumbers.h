// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_INFO_LINENUMBERS_H
#define STRANDVIEW_APP_INFO_LINENUMBERS_H

#include <cstddef>
#include <optional>
#include <vector>

#include <strandview/analysis/topology.h>
#include <strandview/analysis/tracks.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// Numbers of the whole of a line, in the unit of its points.
struct LineNumbers
{
    Topology topology; ///< without what is slow, the twist alone
    double radiusOfGyration = 0;
    std::optional<double> contact; ///< the distance
};

/// How often one closed rod winds around another.
struct Link
{
    std::size_t first, second;       ///< indices of rods, from 0
    std::optional<long long> number; ///< nothing where they meet
};

/// Those of a configuration that are told: rods, averages of birods, pairs of DNA, in this order.
struct AllNumbers
{
    std::vector<LineNumbers> rods, birods, dnas;
    std::vector<Link> links;     ///< of every two closed rods
    bool areSlowLeftOut = false; ///< writhe, Gauss integral, linking numbers and links
};

/// Those whose time grows with the square of the points are left out, all of them, if there are
/// more pairs of edges to go through than these.
AllNumbers numbersOf(const Configuration& data, double mostEdgePairs);

} // namespace strandview

#endif
