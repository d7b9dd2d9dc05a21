// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/curveNumbers.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <algebra3d/rotations.h>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/strains.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

using Values = std::vector<double>;

double edgeLength(const Line& line, std::size_t edge)
{
    return (line.points[edge + 1] - line.points[edge]).getNorm();
}

// The mean of the values of two edges, by their lengths.
double meanOfEdges(const Line& line, const Values& edges, std::size_t before, std::size_t behind)
{
    const double a = edgeLength(line, before), b = edgeLength(line, behind);
    return (a * edges[before] + b * edges[behind]) / (a + b);
}

// By value(i), of points or of edges; of an open line's ends the value beside them. Zeros of an
// open line with fewer than three.
template <typename Value>
Values fromInner(const Line& line, std::size_t count, Value value)
{
    Values values(count);
    const std::size_t end = line.isClosed ? 0 : 1;
    for (std::size_t i = end; i + end < count; ++i)
        values[i] = value(i);
    if (!line.isClosed && count >= 3) {
        values.front() = values[1];
        values.back() = values[count - 2];
    }
    return values;
}

// A point and those before and behind it, around the seam of a closed line.
struct Neighbours
{
    std::size_t edgeBefore, edgeBehind;
    const Vector3<double>&before, &point, &behind;
};

Neighbours neighboursOf(const Line& line, std::size_t i)
{
    const auto& p = line.points;
    const std::size_t edges = p.size() - 1;
    const std::size_t before = i == 0 ? edges - 1 : i - 1, behind = i == edges ? 0 : i;
    return {before, behind, p[before], p[i], p[behind + 1]};
}

// The unit of the last decimal that numbers are written with: what they stand for was rounded to
// it. Zero if it is larger than `coarsest`, or if they have more than twelve decimals, or so many
// digits that a double does not tell.
double lastDecimal(const Values& numbers, double coarsest)
{
    double scale = 1;
    for (int decimals = 0; decimals <= 12; ++decimals, scale *= 10) {
        const auto isWhole = [scale](double number) {
            const double units = number * scale;
            return std::abs(units) < 1e13 && std::abs(units - std::round(units)) < 1e-2;
        };
        if (std::all_of(numbers.begin(), numbers.end(), isWhole))
            return scale * coarsest < 1 ? 0 : 1 / scale;
    }
    return 0;
}

// Of the points; that of a lattice, whose edges are a few units long, is no rounding.
double lastDecimalOfPoints(const Line& line)
{
    if (line.points.size() < 2)
        return 0;
    Values numbers;
    numbers.reserve(3 * line.points.size());
    for (const Vector3<double>& point : line.points)
        numbers.insert(numbers.end(), {point.x, point.y, point.z});
    return lastDecimal(numbers, 1e-3 * arcLengths(line).back() / double(line.points.size() - 1));
}

double lastDecimalOfFrames(const Line& line)
{
    Values numbers;
    numbers.reserve(4 * line.rotations.size());
    for (const algebra3d::Quaternion<double>& q : line.rotations)
        numbers.insert(numbers.end(), {q[0], q[1], q[2], q[3]});
    return lastDecimal(numbers, 1e-4);
}

// The shorter of the edges that meet at a point.
double shorterEdge(const Line& line, std::size_t i)
{
    const Neighbours at = neighboursOf(line, i);
    return std::min(edgeLength(line, at.edgeBefore), edgeLength(line, at.edgeBehind));
}

// Twice the vector area of the triangle at a point; zero where the line is straight.
Vector3<double> doubleArea(const Line& line, std::size_t i)
{
    const Neighbours at = neighboursOf(line, i);
    return (at.point - at.before).cross(at.behind - at.point);
}

// By how much the plane of the circle at a point may be turned by rounding, in
// radians: the less the line is bent there, the more; infinite if it is straight.
double roundingOfPlane(const Line& line, std::size_t i, double ofEdges)
{
    const Neighbours at = neighboursOf(line, i);
    const double sides = edgeLength(line, at.edgeBefore) * edgeLength(line, at.edgeBehind);
    const double turn = sides == 0 ? 0 : doubleArea(line, i).getNorm() / sides;
    const double rounding = ofEdges / shorterEdge(line, i);
    return turn > 4 * rounding ? rounding / turn : std::numeric_limits<double>::infinity();
}

Values twistsOfElements(const Line& line)
{
    Values values(line.points.size() - 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        // The rotation between the two in the first one's frame: the angle of its part about d3.
        const auto q = algebra3d::conjugate(line.rotations[i]) * line.rotations[i + 1];
        values[i] =
            std::remainder(2 * std::atan2(q[2], q[3]), 2 * std::acos(-1.0)) / edgeLength(line, i);
    }
    return values;
}

Values componentOfStrains(const Line& line, int component)
{
    Values values;
    values.reserve(line.points.size() - 1);
    for (const Vector3<double>& strain : strainsOfElements(line.points, line.rotations))
        values.push_back(strain[component]);
    return values;
}

// Of the angle between two frames, and by the length of the edge of the whole.
Values roundingOfAngles(const Line& line, const Values& ofElements)
{
    const double angle = roundingOfFrames(line);
    const double ofEdges = roundingOfEdges(line);
    Values values(ofElements.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = (angle + std::abs(ofElements[i]) * ofEdges) / edgeLength(line, i);
    return atPoints(line, values);
}

} // namespace

// Some units in the last place of the largest coordinate, or of the last decimal: half a unit in
// each of four coordinates, along the diagonal.
double roundingOfEdges(const Line& line)
{
    double largest = 0;
    for (const Vector3<double>& point : line.points)
        largest = std::max({largest, std::abs(point.x), std::abs(point.y), std::abs(point.z)});
    return std::max(8 * std::numeric_limits<double>::epsilon() * largest,
                    4 * lastDecimalOfPoints(line));
}

double roundingOfFrames(const Line& line)
{
    return std::max(16 * std::numeric_limits<double>::epsilon(), 8 * lastDecimalOfFrames(line));
}

Values atPoints(const Line& line, const Values& edges)
{
    Values points(edges.size() + 1);
    points.front() = edges.front();
    points.back() = edges.back();
    if (line.isClosed)
        points.front() = points.back() = meanOfEdges(line, edges, edges.size() - 1, 0);
    for (std::size_t i = 1; i < edges.size(); ++i)
        points[i] = meanOfEdges(line, edges, i - 1, i);
    return points;
}

Values arcLengths(const Line& line)
{
    Values values(line.points.size());
    for (std::size_t i = 1; i < values.size(); ++i)
        values[i] = values[i - 1] + (line.points[i] - line.points[i - 1]).getNorm();
    return values;
}

Values curvatures(const Line& line)
{
    return fromInner(line, line.points.size(), [&](std::size_t i) {
        // The circle's radius is the product of the sides over four times the area.
        const Neighbours at = neighboursOf(line, i);
        const double sides = edgeLength(line, at.edgeBefore) * edgeLength(line, at.edgeBehind) *
                             (at.behind - at.before).getNorm();
        return sides == 0 ? 0 : 2 * doubleArea(line, i).getNorm() / sides;
    });
}

Values roundingOfCurvatures(const Line& line)
{
    const double ofEdges = roundingOfEdges(line);
    return fromInner(line, line.points.size(), [&](std::size_t i) {
        return ofEdges / (shorterEdge(line, i) * shorterEdge(line, i));
    });
}

Values torsions(const Line& line)
{
    const double ofEdges = roundingOfEdges(line);
    return atPoints(line, fromInner(line, line.points.size() - 1, [&](std::size_t i) {
                        if (std::isinf(roundingOfPlane(line, i, ofEdges) +
                                       roundingOfPlane(line, i + 1, ofEdges)))
                            return 0.0;
                        const Vector3<double> edge = line.points[i + 1] - line.points[i];
                        const Vector3<double> before = doubleArea(line, i).getUnit();
                        const Vector3<double> after = doubleArea(line, i + 1).getUnit();
                        return std::atan2(before.cross(after).dot(edge.getUnit()),
                                          before.dot(after)) /
                               edge.getNorm();
                    }));
}

Values roundingOfTorsions(const Line& line)
{
    const double ofEdges = roundingOfEdges(line);
    return atPoints(line, fromInner(line, line.points.size() - 1, [&](std::size_t i) {
                        return (roundingOfPlane(line, i, ofEdges) +
                                roundingOfPlane(line, i + 1, ofEdges)) /
                               edgeLength(line, i);
                    }));
}

Values twistDensities(const Line& line) { return atPoints(line, twistsOfElements(line)); }

Values roundingOfTwistDensities(const Line& line)
{
    return roundingOfAngles(line, twistsOfElements(line));
}

Values strains(const Line& line, int component)
{
    return atPoints(line, componentOfStrains(line, component));
}

Values roundingOfStrains(const Line& line, int component)
{
    return roundingOfAngles(line, componentOfStrains(line, component));
}

Values writheDensities(const Line& line) { return writheDensities(line, {}); }

Values writheDensities(const Line& line, const GoOn& goOn)
{
    Values values = gaussIntegralOfEdges(line.points, goOn);
    if (values.empty())
        return values;
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] /= edgeLength(line, i);
    return atPoints(line, values);
}

Values roundingOfWritheDensities(const Line& line)
{
    const double ofEdges = roundingOfEdges(line);
    Values values(line.points.size() - 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double shorter = std::min(shorterEdge(line, i), shorterEdge(line, i + 1));
        values[i] = ofEdges / (shorter * edgeLength(line, i));
    }
    return atPoints(line, values);
}

} // namespace strandview
