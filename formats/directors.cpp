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

std::string checkLength(const Vector& director, std::size_t index, const ReadOptions& options)
{
    if (options.normalise)
        return isZero(director) ? "found " + nameOf(index) + " of norm 0, expected any other" : "";
    const double norm = director.getNorm();
    return std::abs(norm - 1) <= TOLERANCE
               ? ""
               : "found " + nameOf(index) + " of norm " + formatted(norm) + ", expected 1 within " +
                     formatted(TOLERANCE) + NORMALISE_HINT;
}

std::string checkAngle(const Directors& directors, std::size_t i, std::size_t j)
{
    if (!directors[i] || !directors[j])
        return {};
    const double product = directors[i]->dot(*directors[j]);
    return std::abs(product) <= TOLERANCE
               ? ""
               : "found " + nameOf(i) + " times " + nameOf(j) + " = " + formatted(product) +
                     ", expected 0 within " + formatted(TOLERANCE) + NORMALISE_HINT;
}

std::string checkAngles(const Directors& directors, const ReadOptions& options)
{
    if (options.normalise)
        return {};
    for (const auto& [i, j] : {std::pair(0, 1), std::pair(0, 2), std::pair(1, 2)}) {
        const std::string fault = checkAngle(directors, std::size_t(i), std::size_t(j));
        if (!fault.empty())
            return fault;
    }
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
        const std::string fault = checkLength(*directors[i], i, options);
        if (!fault.empty())
            return fault;
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
