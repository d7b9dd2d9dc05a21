// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_BOXES_H
#define STRANDVIEW_ANALYSIS_BOXES_H

#include <algorithm>

#include <algebra3d/Vector3.h>

namespace strandview {

/// A box along the axes, for searches that leave out what lies too far away.
struct Box
{
    algebra3d::Vector3<double> low, high;

    void include(const algebra3d::Vector3<double>& point)
    {
        low = {std::min(low.x, point.x), std::min(low.y, point.y), std::min(low.z, point.z)};
        high = {std::max(high.x, point.x), std::max(high.y, point.y), std::max(high.z, point.z)};
    }
};

/// No two points of the boxes are nearer.
inline double distanceOf(const Box& a, const Box& b)
{
    const auto between = [](double lowA, double highA, double lowB, double highB) {
        return std::max({0.0, lowB - highA, lowA - highB});
    };
    return algebra3d::Vector3<double>(between(a.low.x, a.high.x, b.low.x, b.high.x),
                                      between(a.low.y, a.high.y, b.low.y, b.high.y),
                                      between(a.low.z, a.high.z, b.low.z, b.high.z))
        .getNorm();
}

} // namespace strandview

#endif
