// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_PLOTREQUEST_H
#define STRANDVIEW_APP_REQUEST_PLOTREQUEST_H

#include <optional>
#include <string>
#include <vector>

namespace strandview {

/// What the values of a plot are drawn over.
enum class PlotAxis {
    ARC_LENGTH, ///< along a line
    NUMBER,     ///< of the point, from 0, or of the pair, from 1, as picks tell them
    TIME        ///< of a series
};

/// A plot that is asked for. What is not given is chosen from the data.
struct PlotRequest
{
    std::optional<std::string> file;
    std::vector<std::string> scalars; ///< a panel each
    std::optional<PlotAxis> against;  ///< arc length of rods and birods, number of pairs of DNA
    /// Of one place over time: its number. Without one it is numbers of whole lines.
    std::optional<int> at;
};

} // namespace strandview

#endif
