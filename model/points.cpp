// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/points.h>

#include <algorithm>
#include <cstddef>
#include <limits>

namespace strandview {

namespace {

constexpr double SMALLEST_EDGE_OF_MEAN = 1e-5;

} // namespace

Edges measureEdges(const std::vector<algebra3d::Vector3<double>>& points)
{
    double sum = 0, shortest = std::numeric_limits<double>::infinity();
    std::size_t count = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        if (areCoincident(points[i - 1], points[i]))
            continue;
        const double length = (points[i] - points[i - 1]).getNorm();
        sum += length;
        shortest = std::min(shortest, length);
        ++count;
    }
    const double smallest = count == 0 ? 0 : SMALLEST_EDGE_OF_MEAN * (sum / double(count));
    return {smallest, shortest >= smallest && count + 1 >= points.size()};
}

double smallestEdge(const std::vector<algebra3d::Vector3<double>>& points)
{
    return measureEdges(points).smallest;
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
