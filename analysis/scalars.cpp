// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/scalars.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <algebra3d/rotations.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

using Values = std::vector<double>;

// Per point from one value per edge: the mean of the two edges.
Values fromEdges(const Values& edges)
{
    Values points(edges.size() + 1);
    points.front() = edges.front();
    points.back() = edges.back();
    for (std::size_t i = 1; i < edges.size(); ++i)
        points[i] = (edges[i - 1] + edges[i]) / 2;
    return points;
}

// Inner ones by value(i); the ends take the value beside them. Zeros of fewer than three.
template <typename Value>
Values fromInner(std::size_t count, Value value)
{
    Values values(count);
    if (count < 3)
        return values;
    for (std::size_t i = 1; i + 1 < count; ++i)
        values[i] = value(i);
    values.front() = values[1];
    values.back() = values[count - 2];
    return values;
}

Values arcLength(const Rod& rod)
{
    Values values(rod.points.size());
    for (std::size_t i = 1; i < values.size(); ++i)
        values[i] = values[i - 1] + (rod.points[i] - rod.points[i - 1]).getNorm();
    return values;
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
double lastDecimalOfPoints(const Rod& rod)
{
    Values numbers;
    numbers.reserve(3 * rod.points.size());
    for (const Vector3<double>& point : rod.points)
        numbers.insert(numbers.end(), {point.x, point.y, point.z});
    return lastDecimal(numbers, 1e-3 * arcLength(rod).back() / double(rod.points.size() - 1));
}

double lastDecimalOfFrames(const Rod& rod)
{
    Values numbers;
    numbers.reserve(4 * rod.rotations.size());
    for (const algebra3d::Quaternion<double>& q : rod.rotations)
        numbers.insert(numbers.end(), {q[0], q[1], q[2], q[3]});
    return lastDecimal(numbers, 1e-4);
}

// By how much the difference of two points may be off: some units in the last place of the
// largest coordinate, or of the last decimal: half a unit in each of four coordinates, along the
// diagonal.
double roundingOfEdges(const Rod& rod)
{
    double largest = 0;
    for (const Vector3<double>& point : rod.points)
        largest = std::max({largest, std::abs(point.x), std::abs(point.y), std::abs(point.z)});
    return std::max(8 * std::numeric_limits<double>::epsilon() * largest,
                    4 * lastDecimalOfPoints(rod));
}

double edgeLength(const Rod& rod, std::size_t edge)
{
    return (rod.points[edge + 1] - rod.points[edge]).getNorm();
}

// The shorter of the edges that meet at an inner point.
double shorterEdge(const Rod& rod, std::size_t i)
{
    return std::min(edgeLength(rod, i - 1), edgeLength(rod, i));
}

// Twice the vector area of the triangle at a point; zero where the rod is straight.
Vector3<double> doubleArea(const Rod& rod, std::size_t i)
{
    return (rod.points[i] - rod.points[i - 1]).cross(rod.points[i + 1] - rod.points[i]);
}

Values curvature(const Rod& rod)
{
    const auto& p = rod.points;
    return fromInner(p.size(), [&](std::size_t i) {
        // The circle's radius is the product of the sides over four times the area.
        const double sides =
            edgeLength(rod, i - 1) * edgeLength(rod, i) * (p[i + 1] - p[i - 1]).getNorm();
        return sides == 0 ? 0 : 2 * doubleArea(rod, i).getNorm() / sides;
    });
}

// By how much the plane of the circle at an inner point may be turned by rounding, in
// radians: the less the rod is bent there, the more; infinite if it is straight.
double roundingOfPlane(const Rod& rod, std::size_t i, double ofEdges)
{
    const double sides = edgeLength(rod, i - 1) * edgeLength(rod, i);
    const double turn = sides == 0 ? 0 : doubleArea(rod, i).getNorm() / sides;
    const double rounding = ofEdges / shorterEdge(rod, i);
    return turn > 4 * rounding ? rounding / turn : std::numeric_limits<double>::infinity();
}

Values torsion(const Rod& rod)
{
    const double ofEdges = roundingOfEdges(rod);
    return fromEdges(fromInner(rod.points.size() - 1, [&](std::size_t i) {
        if (std::isinf(roundingOfPlane(rod, i, ofEdges) + roundingOfPlane(rod, i + 1, ofEdges)))
            return 0.0;
        const Vector3<double> edge = rod.points[i + 1] - rod.points[i];
        const Vector3<double> before = doubleArea(rod, i).getUnit();
        const Vector3<double> after = doubleArea(rod, i + 1).getUnit();
        return std::atan2(before.cross(after).dot(edge.getUnit()), before.dot(after)) /
               edge.getNorm();
    }));
}

Values twistOfEdges(const Rod& rod)
{
    Values values(rod.points.size() - 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        // The rotation between the two in the first one's frame: the angle of its part about d3.
        const auto q = algebra3d::conjugate(rod.rotations[i]) * rod.rotations[i + 1];
        values[i] =
            std::remainder(2 * std::atan2(q[2], q[3]), 2 * std::acos(-1.0)) / edgeLength(rod, i);
    }
    return values;
}

Values twist(const Rod& rod) { return fromEdges(twistOfEdges(rod)); }

Values roundingOfCurvature(const Rod& rod)
{
    const double ofEdges = roundingOfEdges(rod);
    return fromInner(rod.points.size(), [&](std::size_t i) {
        return ofEdges / (shorterEdge(rod, i) * shorterEdge(rod, i));
    });
}

Values roundingOfTorsion(const Rod& rod)
{
    const double ofEdges = roundingOfEdges(rod);
    return fromEdges(fromInner(rod.points.size() - 1, [&](std::size_t i) {
        return (roundingOfPlane(rod, i, ofEdges) + roundingOfPlane(rod, i + 1, ofEdges)) /
               edgeLength(rod, i);
    }));
}

Values roundingOfTwist(const Rod& rod)
{
    // Of the angle between two frames, and by the length of the edge of the whole.
    const double angle =
        std::max(16 * std::numeric_limits<double>::epsilon(), 8 * lastDecimalOfFrames(rod));
    const double ofEdges = roundingOfEdges(rod);
    const Values twists = twistOfEdges(rod);
    Values values(rod.points.size() - 1);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double length = edgeLength(rod, i);
        values[i] = (angle + std::abs(twists[i]) * ofEdges) / length;
    }
    return fromEdges(values);
}

bool isOfFile(const Rod& rod, const std::string& name)
{
    return std::any_of(rod.scalars.begin(), rod.scalars.end(),
                       [&name](const Scalar& scalar) { return scalar.name == name; });
}

} // namespace

const std::vector<std::string>& builtInScalars()
{
    static const std::vector<std::string> names = {"arclength", "curvature", "torsion", "twist"};
    return names;
}

std::optional<std::vector<double>> findScalar(const Rod& rod, const std::string& name)
{
    for (const Scalar& scalar : rod.scalars) {
        if (scalar.name == name)
            return scalar.values;
    }
    if (name == "arclength")
        return arcLength(rod);
    if (name == "curvature")
        return curvature(rod);
    if (name == "torsion")
        return torsion(rod);
    if (name == "twist")
        return twist(rod);
    return std::nullopt;
}

std::vector<double> roundingOf(const Rod& rod, const std::string& name)
{
    Values values(rod.points.size());
    if (isOfFile(rod, name) || name == "arclength")
        return values;
    if (name == "curvature")
        values = roundingOfCurvature(rod);
    else if (name == "torsion")
        values = roundingOfTorsion(rod);
    else if (name == "twist")
        values = roundingOfTwist(rod);
    const double least = 1e-9 / arcLength(rod).back();
    for (double& value : values)
        value = std::max(value, least);
    return values;
}

} // namespace strandview
