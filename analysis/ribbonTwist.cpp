// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/ribbonTwist.h>

#include <cmath>
#include <cstddef>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

// Half-way between the directions of two edges; where the centreline turns back on itself, that of
// the one behind.
Vector tangentBetween(const Vector& before, const Vector& behind)
{
    const Vector sum = before + behind;
    return sum.dot(sum) < 1e-24 ? behind : sum.getUnit();
}

std::vector<Vector> edgeTangents(const std::vector<Vector>& points)
{
    std::vector<Vector> tangents;
    tangents.reserve(points.size() - 1);
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        tangents.push_back((points[i + 1] - points[i]).getUnit());
    return tangents;
}

// The part of a direction across a tangent, carried to that of an edge.
Vector carried(const Vector& direction, const Vector& tangent, const Vector& edge)
{
    const Vector across = direction - direction.dot(tangent) * tangent;
    return algebra3d::rotated(across, algebra3d::between(tangent, edge));
}

} // namespace

std::vector<double> twistOfEdges(const std::vector<Vector>& points,
                                 const std::vector<Vector>& directions)
{
    if (points.size() < 2)
        return {};
    const std::vector<Vector> edges = edgeTangents(points);
    const Vector gap = points.back() - points.front();
    const bool isClosed = gap.dot(gap) == 0;
    const auto tangentAt = [&](std::size_t point) {
        const bool isEnd = point == 0 || point == edges.size();
        if (isEnd && !isClosed)
            return edges[point == 0 ? 0 : point - 1];
        return tangentBetween(isEnd ? edges.back() : edges[point - 1],
                              isEnd ? edges.front() : edges[point]);
    };
    std::vector<double> twists;
    twists.reserve(edges.size());
    Vector tangent = tangentAt(0);
    for (std::size_t i = 0; i < edges.size(); ++i) {
        const Vector next = tangentAt(i + 1);
        const Vector from = carried(directions[i], tangent, edges[i]);
        const Vector to = carried(directions[i + 1], next, edges[i]);
        twists.push_back(std::atan2(from.cross(to).dot(edges[i]), from.dot(to)));
        tangent = next;
    }
    return twists;
}

} // namespace strandview
