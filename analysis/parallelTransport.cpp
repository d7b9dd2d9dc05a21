// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/parallelTransport.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <algebra3d/Matrix3.h>
#include <algebra3d/largePages.h>
#include <algebra3d/rotations.h>

#include <strandview/analysis/fourStretches.h>
#include <strandview/model/points.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;

/// The unit vector along the part of v that is perpendicular to the unit vector t.
Vector madePerpendicular(const Vector& v, const Vector& t) { return (v - t * v.dot(t)).getUnit(); }

Vector firstD2(const Vector& tangent)
{
    const bool nearlyZ = std::abs(tangent.z) > 0.9;
    return nearlyZ ? madePerpendicular(Vector(0, 1, 0), tangent)
                   : Vector(0, 0, 1).cross(tangent).getUnit();
}

/// v reflected in the plane perpendicular to the unit vector n.
Vector reflected(const Vector& v, const Vector& n) { return v - n * (2 * n.dot(v)); }

Vector d2Of(const Quaternion& rotation) { return algebra3d::rotated(Vector(0, 1, 0), rotation); }
Vector d3Of(const Quaternion& rotation) { return algebra3d::rotated(Vector(0, 0, 1), rotation); }

/// The rotation with its d3 turned on to the tangent by the shortest way, of unit length.
Quaternion turnedTo(const Vector& tangent, const Quaternion& rotation)
{
    return algebra3d::scaledToUnit(algebra3d::between(d3Of(rotation), tangent) * rotation);
}

/// The two reflections along an edge at the end of which the tangent is the first one's picture:
/// then any second plane through it will do, and that across d1 leaves d2 where it is.
Quaternion turnBack(const Quaternion& rotation, const Vector& edge)
{
    const Vector n = reflected(algebra3d::rotated(Vector(1, 0, 0), rotation), edge);
    const Vector axis = edge.cross(n);
    return Quaternion(axis.x, axis.y, axis.z, edge.dot(n));
}

/// Frames along a centreline from its first one on: of four stretches at once, or of one point
/// where those do not fit or it nearly turns back.
class Transport
{
public:
    /// Behind the points lies nothing but what the last tangent leads to.
    Transport(const std::vector<Vector>& allPoints, const Vector& pointBehind,
              const Vector& firstTangent, std::vector<Quaternion>& allRotations)
        : points(allPoints), behind(pointBehind), tangent(firstTangent), rotations(allRotations)
    {}

    void carryToEnd()
    {
        carry(1); // its edge comes from the first point, whose tangent is one of its own
        while (rotations.size() < points.size()) {
            const std::size_t left = points.size() - 1 - rotations.size(); // but the last one
            const std::size_t length = std::min(left / 4, FourStretches::LONGEST);
            if (length < SHORTEST)
                carry(left + 1);
            else if (stretches.findTurns(&points[rotations.size()], length))
                carryFourStretches(length);
            else
                carry(4 * length);
        }
    }
    Vector lastTangent() const { return tangent; }

private:
    static constexpr std::size_t SHORTEST = 4;

    /// What rounding adds up to along one of them stays below 1e-13.
    void carryFourStretches(std::size_t length)
    {
        const std::size_t first = rotations.size();
        rotations.resize(first + 4 * length);
        for (std::size_t stretch = 0; stretch < 4; ++stretch) {
            Quaternion* const frames = &rotations[first + stretch * length];
            stretches.turn(stretch, frames[-1], frames);
            tangent = tangentAt(first + (stretch + 1) * length - 1);
            frames[length - 1] = turnedTo(tangent, frames[length - 1]);
        }
    }

    /// One after the other, by the formulas of FourStretches.
    void carry(std::size_t count)
    {
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t i = rotations.size();
            const Vector edge = (points[i] - points[i - 1]).getUnit();
            const Vector before = tangent;
            tangent = tangentAt(i);
            const Vector axis = edge.cross(tangent - before);
            const double w = edge.dot(tangent + before);
            const double square = axis.dot(axis) + w * w, scale = 1 / std::sqrt(square);
            const Quaternion turn =
                square > 1e-20
                    ? Quaternion(axis.x * scale, axis.y * scale, axis.z * scale, w * scale)
                    : turnBack(rotations.back(), edge); // they are rounding only
            const Quaternion rotation = turn * rotations.back();
            // A small one has lost as many digits as it has; else they are lost by and by.
            const bool isInexact = square < 1e-6 || k % FourStretches::LONGEST == 0;
            rotations.push_back(isInexact ? turnedTo(tangent, rotation) : rotation);
        }
    }

    Vector tangentAt(std::size_t i) const
    {
        const Vector& next = i + 1 < points.size() ? points[i + 1] : behind;
        const bool turnsBack = areCoincident(points[i - 1], next);
        return (next - (turnsBack ? points[i] : points[i - 1])).getUnit();
    }

    const std::vector<Vector>& points;
    const Vector behind;
    Vector tangent; ///< at the last of the rotations
    std::vector<Quaternion>& rotations;
    FourStretches stretches;
};

/// The angle about the unit vector t, across both, that turns one d2 into another.
double angleBetween(const Vector& from, const Vector& to, const Vector& t)
{
    return std::atan2(from.cross(to).dot(t), from.dot(to));
}

/// A rotation about z by an angle that grows, mostly by little: without a sine and a cosine each
/// time, an eighth of the time to read a long closed rod is saved.
class GrowingTurn
{
public:
    void growTo(double angle)
    {
        const double step = angle / 2 - half;
        half = angle / 2;
        // From time to time anew, so that rounding does not add up.
        if (std::abs(step) > 0.01 || ++steps % 64 == 0) {
            sine = std::sin(half);
            cosine = std::cos(half);
            return;
        }
        // Taylor's series: what is left out is less than rounding.
        const double x = step * step;
        const double c = 1 - x * (1 / 2.0 - x * (1 / 24.0 - x * (1 / 720.0)));
        const double s = step * (1 - x * (1 / 6.0 - x * (1 / 120.0)));
        const double cosineBefore = cosine;
        cosine = cosineBefore * c - sine * s;
        sine = sine * c + cosineBefore * s;
    }
    Quaternion get() const { return Quaternion(0, 0, sine, cosine); }

private:
    double half = 0, cosine = 1, sine = 0;
    std::size_t steps = 0;
};

/// Turns every d2 about its d3 by the share of the way that is behind it of what is missing at the
/// end, where both ends have one tangent: so all edges turn by as little as can be.
void close(std::vector<Quaternion>& rotations, const std::vector<Vector>& points)
{
    const Quaternion &first = rotations.front(), &last = rotations.back();
    const double missing = angleBetween(d2Of(last), d2Of(first), d3Of(first));
    double length = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        length += (points[i] - points[i - 1]).getNorm();
    double way = 0;
    GrowingTurn turn;
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        way += (points[i] - points[i - 1]).getNorm();
        turn.growTo(missing * (way / length));
        rotations[i] = rotations[i] * turn.get();
    }
    rotations.back() = rotations.front();
}

} // namespace

std::vector<algebra3d::Quaternion<double>> parallelTransport(const std::vector<Vector>& points)
{
    return parallelTransport(points, isClosed(points));
}

std::vector<algebra3d::Quaternion<double>> parallelTransport(const std::vector<Vector>& points,
                                                             bool isClosed)
{
    const std::size_t last = points.size() - 1;
    const bool isAround = isClosed && !areCoincident(points[last - 1], points[1]);
    const Vector d3 = (points[1] - points[isAround ? last - 1 : 0]).getUnit();
    const Vector d2 = firstD2(d3);
    std::vector<Quaternion> rotations;
    algebra3d::reserveMany(rotations, points.size());
    rotations.push_back(algebra3d::Matrix3<double>(d2.cross(d3), d2, d3).getQuaternion());
    Transport transport(points, points[isAround ? 1 : last], d3, rotations);
    transport.carryToEnd();
    // A rod there and back has opposite tangents at its ends.
    if (isClosed && d3.dot(transport.lastTangent()) > 0)
        close(rotations, points);
    return rotations;
}

} // namespace strandview
