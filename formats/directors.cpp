// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/directors.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>

#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

constexpr double TOLERANCE = algebra3d::ROTATION_TOLERANCE;
constexpr double SMALLEST_SINE = 1e-6; ///< of an angle that still tells a plane
constexpr char NORMALISE_HINT[] = " (--normalise accepts others)";

std::string nameOf(std::size_t director) { return "d" + std::to_string(director + 1); }

/// Divides by the largest component first: no square over- or underflows.
Vector scaledToUnit(const Vector& v)
{
    const double largest = std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
    return Vector(v.x / largest, v.y / largest, v.z / largest).getUnit();
}

bool isZero(const Vector& v) { return v.x == 0 && v.y == 0 && v.z == 0; }

bool isUnit(const Vector& v) { return std::abs(v.getNorm() - 1) <= TOLERANCE; }

std::string faultOfLength(const Vector& director, std::size_t index, const ReadOptions& options)
{
    if (options.normalise)
        return "found " + nameOf(index) + " of norm 0, expected any other";
    return "found " + nameOf(index) + " of norm " + formatted(director.getNorm()) +
           ", expected 1 within " + formatted(TOLERANCE) + NORMALISE_HINT;
}

std::string faultOfAngle(const Directors& directors, std::size_t i, std::size_t j)
{
    return "found " + nameOf(i) + " times " + nameOf(j) + " = " +
           formatted(directors[i]->dot(*directors[j])) + ", expected 0 within " +
           formatted(TOLERANCE) + NORMALISE_HINT;
}

std::string checkAngles(const Directors& directors, const ReadOptions& options)
{
    if (options.normalise)
        return {};
    for (std::size_t i = 0; i < directors.size(); ++i)
        for (std::size_t j = i + 1; j < directors.size(); ++j)
            if (directors[i] && directors[j] &&
                !(std::abs(directors[i]->dot(*directors[j])) <= TOLERANCE))
                return faultOfAngle(directors, i, j);
    return {};
}

/// v less its part along the unit vector t, scaled to unit length; zero if hardly
/// anything is left of the unit vector v.
Vector madePerpendicular(const Vector& v, const Vector& t)
{
    const Vector rest = v - t * v.dot(t);
    return rest.getNorm() < SMALLEST_SINE ? Vector() : rest.getUnit();
}

/// d2 and d3, perpendicular unit vectors; d2 is zero where the directors tell none.
std::pair<Vector, Vector> secondAndThird(const Directors& units)
{
    if (!units[2]) {
        const Vector d2 = *units[1];
        const Vector d1 = madePerpendicular(*units[0], d2);
        return {isZero(d1) ? d1 : d2, d1.cross(d2)};
    }
    const Vector d3 = *units[2];
    return {units[1] ? madePerpendicular(*units[1], d3)
                     : d3.cross(madePerpendicular(*units[0], d3)),
            d3};
}

} // namespace

std::string findRotation(const Directors& directors, const ReadOptions& options,
                         algebra3d::Quaternion<double>& rotation)
{
    Directors units;
    for (std::size_t i = 0; i < directors.size(); ++i) {
        if (!directors[i])
            continue;
        if (options.normalise ? isZero(*directors[i]) : !isUnit(*directors[i]))
            return faultOfLength(*directors[i], i, options);
        units[i] = scaledToUnit(*directors[i]);
    }
    const std::string fault = checkAngles(directors, options);
    if (!fault.empty())
        return fault;
    const auto [d2, d3] = secondAndThird(units);
    const Vector d1 = d2.cross(d3);
    const double along = units[0] ? units[0]->dot(d1) : 1;
    if (isZero(d2) || std::abs(along) < SMALLEST_SINE)
        return "found directors in one plane or line, expected d3 = d1 x d2";
    if (along < 0)
        return "found left-handed directors, expected d3 = d1 x d2";
    rotation = algebra3d::Matrix3<double>(d1, d2, d3).getQuaternion();
    return {};
}

} // namespace strandview
