// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Placement.h"

#include <algorithm>
#include <cmath>

#include <strandview/model/Extent.h>

namespace strandview {

using algebra3d::Vector3;

std::vector<Vector3<double>> Placement::toScene(const std::vector<Vector3<double>>& points) const
{
    std::vector<Vector3<double>> placed;
    placed.reserve(points.size());
    for (const Vector3<double>& point : points)
        placed.push_back(toScene(point));
    return placed;
}

Placement choosePlacement(const Extent& extent, double radius)
{
    const double farAway = 100;       // diagonals
    const double thin = 1e-3;         // a radius
    const double shortSegment = 1e-2; // on average
    Placement placement;
    if (extent.centre.getNorm() > farAway * extent.sides.getNorm())
        placement.origin = extent.centre;
    if (extent.segments == 0)
        return placement;
    const double needed = std::max(thin / radius, shortSegment * extent.segments / extent.length);
    if (needed > 1)
        placement.scale = std::pow(10, std::ceil(std::log10(needed)));
    return placement;
}

} // namespace strandview
