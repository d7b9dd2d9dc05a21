// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/parallelTransport.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include <algebra3d/Matrix3.h>
#include <algebra3d/largePages.h>
#include <algebra3d/rotations.h>

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
Quaternion carriedBack(const Quaternion& rotation, const Vector& edge)
{
    const Vector n1 = edge.getUnit();
    const Vector n2 = reflected(algebra3d::rotated(Vector(1, 0, 0), rotation), n1);
    const Vector axis = n1.cross(n2);
    return Quaternion(axis.x, axis.y, axis.z, n1.dot(n2)) * rotation;
}

/// Some points of a centreline, which are carried along at a time: component by component, so that
/// the compiler does several points at once. Only the product of what each point turns by depends
/// on the point before.
class Stretch
{
public:
    static constexpr std::size_t MOST = 64;

    /// Behind the points lies nothing but what the last tangent leads to.
    Stretch(const std::vector<Vector>& allPoints, const Vector& pointBehind)
        : points(allPoints), behind(pointBehind)
    {}

    /// Carries a frame from the point before `first` on, and appends that of each point.
    void carry(std::size_t first, const Vector& tangent, std::vector<Quaternion>& rotations)
    {
        count = std::min(MOST, points.size() - first);
        for (std::size_t k = 0; k < count + 2; ++k) {
            const std::size_t i = first - 1 + k;
            const Vector& point = i < points.size() ? points[i] : behind;
            x[k] = point.x;
            y[k] = point.y;
            z[k] = point.z;
        }
        setTangent(0, tangent);
        findTangents();
        findTurns();
        rotations.resize(first + count);
        multiply(&rotations[first - 1]);
    }

    std::size_t size() const { return count; }
    Vector lastTangent() const { return tangentAt(count); }

private:
    void findTangents()
    {
        for (std::size_t k = 1; k <= count; ++k) {
            const double dx = x[k + 1] - x[k - 1], dy = y[k + 1] - y[k - 1];
            const double dz = z[k + 1] - z[k - 1];
            square[k] = dx * dx + dy * dy + dz * dz;
            const double scale = 1 / std::sqrt(square[k]);
            tx[k] = dx * scale;
            ty[k] = dy * scale;
            tz[k] = dz * scale;
        }
        for (std::size_t k = 1; k <= count; ++k)
            if (square[k] < std::numeric_limits<double>::min()) // as of areCoincident()
                setTangent(k, edgeFrom(k).getUnit());
    }

    void setTangent(std::size_t k, const Vector& tangent)
    {
        tx[k] = tangent.x;
        ty[k] = tangent.y;
        tz[k] = tangent.z;
    }

    Vector tangentAt(std::size_t k) const { return Vector(tx[k], ty[k], tz[k]); }

    Vector edgeFrom(std::size_t k) const
    {
        return Vector(x[k + 1] - x[k], y[k + 1] - y[k], z[k + 1] - z[k]);
    }

    /// What turns the frame of point k into that of the next: the product of two reflections
    /// (W. Wang, B. Juettler, D. Zheng, Y. Liu, Computation of rotation minimizing frames, ACM
    /// Trans. Graph. 27, 2008, 2:1-2:18), which as a quaternion is that of both normals.
    void findTurns()
    {
        for (std::size_t k = 0; k < count; ++k) {
            const double dx = x[k + 1] - x[k], dy = y[k + 1] - y[k], dz = z[k + 1] - z[k];
            const double scale = 1 / std::sqrt(dx * dx + dy * dy + dz * dz);
            const double ex = dx * scale, ey = dy * scale, ez = dz * scale;
            const double twice = 2 * (ex * tx[k] + ey * ty[k] + ez * tz[k]);
            const double nx = tx[k + 1] - (tx[k] - ex * twice);
            const double ny = ty[k + 1] - (ty[k] - ey * twice);
            const double nz = tz[k + 1] - (tz[k] - ez * twice);
            square[k] = nx * nx + ny * ny + nz * nz;
            const double inverse = 1 / std::sqrt(square[k]);
            qx[k] = (ey * nz - ez * ny) * inverse;
            qy[k] = (ez * nx - ex * nz) * inverse;
            qz[k] = (ex * ny - ey * nx) * inverse;
            qw[k] = (ex * nx + ey * ny + ez * nz) * inverse;
        }
    }

    /// From a rotation to those that the turns lead to, which follow it. What rounding adds up to
    /// in them stays below 1e-12.
    void multiply(Quaternion* rotations)
    {
        double a, b, c, d; // in registers, where a Quaternion would wait for its copy in memory
        const auto take = [&](const Quaternion& q) { a = q[0], b = q[1], c = q[2], d = q[3]; };
        take(*rotations);
        for (std::size_t k = 0; k < count; ++k) {
            const Quaternion rotation(a, b, c, d);
            if (square[k] > 1e-20)
                take(Quaternion(qx[k], qy[k], qz[k], qw[k]) * rotation);
            else // the second normal is rounding only
                take(carriedBack(rotation, edgeFrom(k)));
            // The turn has lost as many digits as that has.
            if (k + 1 == count || square[k] < 1e-6)
                take(turnedTo(tangentAt(k + 1), Quaternion(a, b, c, d)));
            Quaternion& made = *++rotations;
            made[0] = a;
            made[1] = b;
            made[2] = c;
            made[3] = d;
        }
    }

    const std::vector<Vector>& points;
    const Vector behind;
    std::size_t count = 0;
    double x[MOST + 2], y[MOST + 2], z[MOST + 2];    ///< from the point before on
    double tx[MOST + 1], ty[MOST + 1], tz[MOST + 1]; ///< tangents, likewise
    double square[MOST + 1];                         ///< of the length of what is made a unit
    double qx[MOST], qy[MOST], qz[MOST], qw[MOST];   ///< turns
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
    Vector d3 = (points[1] - points[isAround ? last - 1 : 0]).getUnit();
    const Vector d2 = firstD2(d3);
    std::vector<Quaternion> rotations;
    algebra3d::reserveMany(rotations, points.size());
    rotations.push_back(algebra3d::Matrix3<double>(d2.cross(d3), d2, d3).getQuaternion());
    Stretch stretch(points, points[isAround ? 1 : last]);
    for (std::size_t i = 1; i < points.size(); i += stretch.size()) {
        stretch.carry(i, d3, rotations);
        d3 = stretch.lastTangent();
    }
    // A rod there and back has opposite tangents at its ends.
    if (isClosed && d3Of(rotations.front()).dot(d3) > 0)
        close(rotations, points);
    return rotations;
}

} // namespace strandview
