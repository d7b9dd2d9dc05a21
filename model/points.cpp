// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/points.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include <algebra3d/Four.h>

namespace strandview {

namespace {

constexpr double SMALLEST_EDGE_OF_MEAN = 1e-5;
constexpr double SMALLEST_SQUARE = std::numeric_limits<double>::min(); ///< as of areCoincident()

using algebra3d::Four;
using algebra3d::FourMasks;
using algebra3d::FourVectors;
using Vector = algebra3d::Vector3<double>;

/// Of the edges that are not coincident points.
struct EdgeSums
{
    double length = 0, shortest = std::numeric_limits<double>::infinity();
    std::size_t count = 0;

    void add(const Vector& edge)
    {
        const double square = edge.dot(edge);
        if (square < SMALLEST_SQUARE)
            return;
        length += std::sqrt(square);
        shortest = std::min(shortest, std::sqrt(square));
        ++count;
    }
};

/// Of four stretches of so many edges, one behind the other.
FOUR_AT_ONCE EdgeSums sumOfFour(const Vector* points, std::size_t length)
{
    const Four none = algebra3d::all(0);
    Four sum = none, shortest = algebra3d::all(std::numeric_limits<double>::infinity());
    FourMasks coincident = {}; // minus how many
    FourVectors point = length > 0 ? algebra3d::gather(points, length) : FourVectors();
    for (std::size_t i = 1; i <= length; ++i) {
        const FourVectors before = point;
        point = algebra3d::gather(points + i, length);
        const FourVectors edge = point - before;
        const Four square = dot(edge, edge), norm = algebra3d::squareRoot(square);
        const FourMasks areOne = square < SMALLEST_SQUARE;
        sum += areOne ? none : norm;
        shortest = (~areOne & (norm < shortest)) ? norm : shortest;
        coincident += areOne;
    }
    EdgeSums sums;
    sums.count = 4 * length;
    for (int lane = 0; lane < 4; ++lane) {
        sums.length += sum[lane];
        sums.shortest = std::min(sums.shortest, shortest[lane]);
        sums.count -= std::size_t(-coincident[lane]);
    }
    return sums;
}

} // namespace

Edges measureEdges(const std::vector<algebra3d::Vector3<double>>& points)
{
    const std::size_t count = std::max<std::size_t>(points.size(), 1) - 1;
    const std::size_t length = count / 4, rest = count % 4;
    EdgeSums sums = sumOfFour(points.data(), length);
    for (std::size_t i = points.size() - rest; i < points.size(); ++i)
        sums.add(points[i] - points[i - 1]);
    const double smallest =
        sums.count == 0 ? 0 : SMALLEST_EDGE_OF_MEAN * (sums.length / double(sums.count));
    return {smallest, sums.shortest >= smallest && sums.count == count};
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
