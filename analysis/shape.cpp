// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/shape.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <strandview/analysis/boxes.h>
#include <strandview/analysis/curveNumbers.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;

bool isClosedExactly(const Points& curve)
{
    const Vector gap = curve.back() - curve.front();
    return curve.size() > 2 && gap.dot(gap) == 0;
}

Box joined(Box box, const Box& other)
{
    box.include(other.low);
    box.include(other.high);
    return box;
}

// The search for the nearest two edges: halves of halves of the curve, with a box each.
class ContactSearch
{
public:
    ContactSearch(const Points& points, double smallestGap)
        : curve(points),
          gap(smallestGap),
          isClosed(isClosedExactly(points)),
          edges(points.size() - 1),
          lengths(points.size())
    {
        for (std::size_t i = 1; i < curve.size(); ++i)
            lengths[i] = lengths[i - 1] + (curve[i] - curve[i - 1]).getNorm();
        std::size_t leaves = 1;
        while (leaves * LEAF < edges)
            leaves *= 2;
        boxes.resize(2 * leaves);
        build(1, 0, leaves * LEAF);
    }

    std::optional<Contact> find()
    {
        const std::size_t room = boxes.size() / 2 * LEAF;
        search({1, 0, room}, {1, 0, room});
        return std::isinf(nearest.distance) ? std::nullopt : std::optional(nearest);
    }

private:
    static constexpr std::size_t LEAF = 4; // edges

    // Edges of a part of the curve; its box has that number, and those of its halves twice that and
    // the next one.
    struct Part
    {
        std::size_t box, first, end;

        std::pair<Part, Part> halves() const
        {
            const std::size_t middle = (first + end) / 2;
            return {{2 * box, first, middle}, {2 * box + 1, middle, end}};
        }
    };

    void build(std::size_t box, std::size_t first, std::size_t end)
    {
        if (first >= edges)
            return;
        boxes[box] = {curve[first], curve[first]};
        if (end - first == LEAF) {
            for (std::size_t i = first; i <= std::min(end, edges); ++i)
                boxes[box].include(curve[i]);
            return;
        }
        const std::size_t middle = (first + end) / 2;
        build(2 * box, first, middle);
        build(2 * box + 1, middle, end);
        boxes[box] = middle < edges ? joined(boxes[2 * box], boxes[2 * box + 1]) : boxes[2 * box];
    }

    // Along the curve from one edge to one behind it; around a closed one the shorter way.
    double gapBetween(std::size_t edge, std::size_t behind) const
    {
        const double forward = lengths[behind] - lengths[edge + 1];
        return isClosed ? std::min(forward, lengths.back() - lengths[behind + 1] + lengths[edge])
                        : forward;
    }

    bool areNeighbours(std::size_t edge, std::size_t behind) const
    {
        return behind - edge < 2 || (isClosed && edge + edges - behind < 2);
    }

    // No two edges of the parts are farther from each other along the curve; either way around a
    // closed one, or all pairs of a circle would be looked at.
    double largestGap(const Part& part, const Part& behind) const
    {
        const std::size_t last = std::min(behind.end, edges) - 1;
        const double forward = last > part.first ? lengths[last] - lengths[part.first + 1] : 0;
        const double backward =
            lengths.back() - lengths[behind.first + 1] + lengths[std::min(part.end, edges) - 1];
        return isClosed ? std::min(forward, backward) : forward;
    }

    // All pairs of an edge of one part and one of another, which is the same or lies behind it.
    void search(const Part& part, const Part& behind)
    {
        if (behind.first >= edges ||
            distanceOf(boxes[part.box], boxes[behind.box]) >= nearest.distance)
            return;
        if (largestGap(part, behind) <= gap)
            return;
        if (part.end - part.first == LEAF) {
            compare(part, behind);
            return;
        }
        const auto [first, second] = part.halves();
        const auto [firstBehind, secondBehind] = behind.halves();
        if (part.box == behind.box) {
            search(first, second);
            search(first, first);
            search(second, second);
            return;
        }
        search(second, firstBehind);
        search(first, firstBehind);
        search(second, secondBehind);
        search(first, secondBehind);
    }

    void compare(const Part& part, const Part& behind)
    {
        for (std::size_t i = part.first; i < std::min(part.end, edges); ++i)
            for (std::size_t j = std::max(i + 1, behind.first); j < std::min(behind.end, edges);
                 ++j) {
                if (areNeighbours(i, j) || gapBetween(i, j) <= gap)
                    continue;
                const double distance =
                    distanceOfEdges(curve[i], curve[i + 1], curve[j], curve[j + 1]);
                if (distance < nearest.distance)
                    nearest = {distance, i, j};
            }
    }

    const Points& curve;
    const double gap;
    const bool isClosed;
    const std::size_t edges;
    std::vector<double> lengths; // along the curve, to each point
    std::vector<Box> boxes;      // of all is 1
    Contact nearest{std::numeric_limits<double>::infinity(), 0, 0};
};

} // namespace

double lengthOf(const Points& curve)
{
    double length = 0;
    for (std::size_t i = 1; i < curve.size(); ++i)
        length += (curve[i] - curve[i - 1]).getNorm();
    return length;
}

double endToEndOf(const Points& curve)
{
    return curve.empty() ? 0 : (curve.back() - curve.front()).getNorm();
}

double radiusOfGyrationOf(const Points& curve)
{
    if (curve.empty())
        return 0;
    const std::size_t count = curve.size() - (isClosedExactly(curve) ? 1 : 0);
    Vector centre;
    for (std::size_t i = 0; i < count; ++i)
        centre += (curve[i] - centre) * (1 / double(i + 1));
    double squares = 0;
    for (std::size_t i = 0; i < count; ++i)
        squares += (curve[i] - centre).dot(curve[i] - centre);
    return std::sqrt(squares / double(count));
}

std::optional<Contact> contactOf(const Points& curve)
{
    if (curve.size() < 4)
        return {};
    const std::vector<algebra3d::Quaternion<double>> noFrames;
    const Line line{curve, noFrames, isClosedExactly(curve)};
    const std::vector<double> all = curvatures(line), rounding = roundingOfCurvatures(line);
    // Rounded points that are near each other seem to be bent far more than they are.
    double tightest = 0;
    for (std::size_t i = 0; i < all.size(); ++i)
        tightest = std::max(tightest, all[i] - rounding[i]);
    if (!(tightest > 0))
        return {};
    return ContactSearch(curve, std::acos(-1.0) / tightest).find();
}

// By the nearest points of the two lines, brought into the edges (C. Ericson, Real-Time Collision
// Detection, 2005, 5.1.9).
double distanceOfEdges(const Vector& a, const Vector& b, const Vector& c, const Vector& d)
{
    const Vector u = b - a, v = d - c, w = a - c;
    const double uu = u.dot(u), vv = v.dot(v), uv = u.dot(v), uw = u.dot(w), vw = v.dot(w);
    const auto within = [](double t) { return std::clamp(t, 0.0, 1.0); };
    const auto share = [&within](double part, double whole) {
        return whole > 0 ? within(part / whole) : 0.0;
    };
    double s = share(uv * vw - vv * uw, uu * vv - uv * uv);
    double t = vv > 0 ? (uv * s + vw) / vv : 0;
    if (t < 0 || t > 1 || !(vv > 0)) {
        t = within(t);
        s = share(uv * t - uw, uu);
    }
    return (w + u * s - v * t).getNorm();
}

} // namespace strandview
