// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/nearestPoints.h>

#include <algorithm>
#include <numeric>

#include <strandview/analysis/boxes.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;

// Halves of halves of the points, each half apart from the other along the longest side of a box.
class Halves
{
public:
    explicit Halves(const Points& pointsToHalve) : points(pointsToHalve), order(points.size())
    {
        std::iota(order.begin(), order.end(), std::size_t(0));
        std::size_t leaves = 1;
        while (leaves * LEAF < points.size())
            leaves *= 2;
        boxes.resize(2 * leaves);
        if (!points.empty())
            halve(1, 0, points.size());
    }

    std::optional<std::size_t> nearest(const Vector& place, double reach) const
    {
        Found found{{}, reach};
        if (!points.empty())
            search(1, 0, points.size(), place, found);
        return found.point;
    }

private:
    static constexpr std::size_t LEAF = 8; // points

    struct Found
    {
        std::optional<std::size_t> point;
        double distance;
    };

    static int longestSide(const Box& box)
    {
        const Vector sides = box.high - box.low;
        const int ofXy = sides.x >= sides.y ? 0 : 1;
        return sides[ofXy] >= sides.z ? ofXy : 2;
    }

    void halve(std::size_t box, std::size_t first, std::size_t end)
    {
        boxes[box] = {points[order[first]], points[order[first]]};
        for (std::size_t i = first; i < end; ++i)
            boxes[box].include(points[order[i]]);
        if (end - first <= LEAF)
            return;
        const std::size_t middle = (first + end) / 2;
        const auto at = [this](std::size_t i) { return order.begin() + std::ptrdiff_t(i); };
        std::nth_element(at(first), at(middle), at(end),
                         [this, side = longestSide(boxes[box])](std::size_t a, std::size_t b) {
                             return points[a][side] < points[b][side];
                         });
        halve(2 * box, first, middle);
        halve(2 * box + 1, middle, end);
    }

    // The nearer half first.
    void search(std::size_t box, std::size_t first, std::size_t end, const Vector& place,
                Found& found) const
    {
        if (end - first <= LEAF) {
            for (std::size_t i = first; i < end; ++i) {
                const double distance = (points[order[i]] - place).getNorm();
                if (distance < found.distance)
                    found = {order[i], distance};
            }
            return;
        }
        const std::size_t middle = (first + end) / 2;
        const double before = distanceOf(boxes[2 * box], {place, place});
        const double behind = distanceOf(boxes[2 * box + 1], {place, place});
        const bool isBehindNearer = behind < before;
        for (const bool isBehind : {isBehindNearer, !isBehindNearer}) {
            if ((isBehind ? behind : before) >= found.distance)
                continue;
            if (isBehind)
                search(2 * box + 1, middle, end, place, found);
            else
                search(2 * box, first, middle, place, found);
        }
    }

    const Points& points;
    std::vector<std::size_t> order; // those of a half beside each other
    std::vector<Box> boxes;         // of all is 1, of the halves of i 2 i and 2 i + 1
};

} // namespace

std::vector<std::optional<std::size_t>> nearestPoints(const Points& places, const Points& points,
                                                      double reach)
{
    const Halves halves(points);
    std::vector<std::optional<std::size_t>> nearest;
    nearest.reserve(places.size());
    for (const Vector& place : places)
        nearest.push_back(halves.nearest(place, reach));
    return nearest;
}

} // namespace strandview
