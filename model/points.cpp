// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/points.h>

#include <cstddef>

namespace strandview {

namespace {

constexpr double SMALLEST_EDGE_OF_MEAN = 1e-5;

} // namespace

double smallestEdge(const std::vector<algebra3d::Vector3<double>>& points)
{
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        if (!areCoincident(points[i - 1], points[i])) {
            sum += (points[i] - points[i - 1]).getNorm();
            ++count;
        }
    return count == 0 ? 0 : SMALLEST_EDGE_OF_MEAN * (sum / double(count));
}

bool isClosed(const std::vector<algebra3d::Vector3<double>>& points)
{
    return areCoincident(points.front(), points.back()) || isClosed(points, smallestEdge(points));
}

bool isClosed(const std::vector<algebra3d::Vector3<double>>& points, double smallestEdge)
{
    return areCoincident(points.front(), points.back()) ||
           (points.back() - points.front()).getNorm() < smallestEdge;
}

} // namespace strandview
