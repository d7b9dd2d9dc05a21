// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/parallelTransport.h>

#include <cmath>
#include <cstddef>

#include <algebra3d/Matrix3.h>

#include <strandview/model/points.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

Vector tangentAt(const std::vector<Vector>& points, std::size_t i, bool closed)
{
    const std::size_t last = points.size() - 1;
    const bool isEnd = i == 0 || i == last;
    if (closed && isEnd && !areCoincident(points[last - 1], points[1]))
        return (points[1] - points[last - 1]).getUnit();
    const Vector& before = points[i == 0 ? 0 : i - 1];
    const Vector& after = points[i == last ? last : i + 1];
    if (areCoincident(before, after))
        return (after - points[i]).getUnit();
    return (after - before).getUnit();
}

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

/// Carries d2 from point a with tangent ta to point b with tangent tb by two
/// reflections (W. Wang, B. Juettler, D. Zheng, Y. Liu, Computation of rotation
/// minimizing frames, ACM Trans. Graph. 27, 2008, 2:1-2:18).
Vector carried(const Vector& d2, const Vector& a, const Vector& ta, const Vector& b,
               const Vector& tb)
{
    const Vector edge = (b - a).getUnit();
    Vector result = reflected(d2, edge);
    const Vector second = tb - reflected(ta, edge);
    // Below this the second plane is rounding only, and the reflection moves nothing.
    if (second.getNorm() > 1e-10)
        result = reflected(result, second.getUnit());
    return madePerpendicular(result, tb);
}

/// The angle about the unit vector t, across both, that turns one d2 into another.
double angleBetween(const Vector& from, const Vector& to, const Vector& t)
{
    return std::atan2(from.cross(to).dot(t), from.dot(to));
}

/// d2 and d3 of each point.
struct Directions
{
    std::vector<Vector> d2, d3;
};

/// Turns every d2 about its d3 by the share of the way that is behind it of what is missing at the
/// end, where both ends have one tangent: so all edges turn by as little as can be.
void close(Directions& frames, const std::vector<Vector>& points)
{
    const double missing = angleBetween(frames.d2.back(), frames.d2.front(), frames.d3.front());
    std::vector<double> way = {0};
    for (std::size_t i = 1; i < points.size(); ++i)
        way.push_back(way.back() + (points[i] - points[i - 1]).getNorm());
    for (std::size_t i = 1; i < points.size(); ++i) {
        const double angle = missing * (way[i] / way.back());
        const Vector &d2 = frames.d2[i], d1 = d2.cross(frames.d3[i]);
        frames.d2[i] = d2 * std::cos(angle) - d1 * std::sin(angle);
    }
    frames.d2.back() = frames.d2.front();
    frames.d3.back() = frames.d3.front();
}

algebra3d::Quaternion<double> rotationOf(const Vector& d2, const Vector& d3)
{
    return algebra3d::Matrix3<double>(d2.cross(d3), d2, d3).getQuaternion();
}

} // namespace

std::vector<algebra3d::Quaternion<double>> parallelTransport(const std::vector<Vector>& points)
{
    return parallelTransport(points, isClosed(points));
}

std::vector<algebra3d::Quaternion<double>> parallelTransport(const std::vector<Vector>& points,
                                                             bool isClosed)
{
    std::vector<algebra3d::Quaternion<double>> rotations;
    rotations.reserve(points.size());
    Directions frames; // of a closed one, of which the end has to be known first
    frames.d2.reserve(isClosed ? points.size() : 0);
    frames.d3.reserve(isClosed ? points.size() : 0);
    Vector d2, d3;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Vector tangent = tangentAt(points, i, isClosed);
        d2 = i == 0 ? firstD2(tangent) : carried(d2, points[i - 1], d3, points[i], tangent);
        d3 = tangent;
        if (!isClosed) {
            rotations.push_back(rotationOf(d2, d3));
            continue;
        }
        frames.d2.push_back(d2);
        frames.d3.push_back(d3);
    }
    // A rod there and back has opposite tangents at its ends.
    if (isClosed && frames.d3.front().dot(frames.d3.back()) > 0)
        close(frames, points);
    for (std::size_t i = 0; i < frames.d2.size(); ++i)
        rotations.push_back(rotationOf(frames.d2[i], frames.d3[i]));
    return rotations;
}

} // namespace strandview
