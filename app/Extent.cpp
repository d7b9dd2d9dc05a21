// SPDX-License-Identifier: GPL-3.0-or-later
#include "Extent.h"

#include <algorithm>
#include <limits>

using algebra3d::Vector3;

Extent measure(const Configuration& configuration)
{
    const double infinity = std::numeric_limits<double>::infinity();
    Vector3<double> lowest(infinity, infinity, infinity);
    Vector3<double> highest(-infinity, -infinity, -infinity);
    Extent extent;
    for (const Rod& rod : configuration.rods) {
        for (const Vector3<double>& point : rod.points) {
            for (int axis = 0; axis < 3; ++axis) {
                lowest[axis] = std::min(lowest[axis], point[axis]);
                highest[axis] = std::max(highest[axis], point[axis]);
            }
        }
        for (std::size_t i = 1; i < rod.points.size(); ++i)
            extent.length += (rod.points[i] - rod.points[i - 1]).getNorm();
        extent.segments += (long long)(rod.points.size()) - 1;
    }
    extent.centre = 0.5 * (lowest + highest);
    extent.sides = highest - lowest;
    return extent;
}
