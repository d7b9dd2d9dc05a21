// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/elements.h"

#include <cstddef>

#include "readers/DataChecks.h"

namespace {

using Quaternion = algebra3d::Quaternion<double>;

/// Along the shorter way, so nearly opposite quaternions are nearly one rotation.
Quaternion halfWay(const Quaternion& a, const Quaternion& b)
{
    const double product = a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
    const double sign = product < 0 ? -1 : 1;
    return scaledToUnit(
        Quaternion(a[0] + sign * b[0], a[1] + sign * b[1], a[2] + sign * b[2], a[3] + sign * b[3]));
}

/// First b, then a.
Quaternion product(const Quaternion& a, const Quaternion& b)
{
    return Quaternion(a[3] * b[0] + a[0] * b[3] + a[1] * b[2] - a[2] * b[1],
                      a[3] * b[1] - a[0] * b[2] + a[1] * b[3] + a[2] * b[0],
                      a[3] * b[2] + a[0] * b[1] - a[1] * b[0] + a[2] * b[3],
                      a[3] * b[3] - a[0] * b[0] - a[1] * b[1] - a[2] * b[2]);
}

Quaternion inverse(const Quaternion& unit)
{
    return Quaternion(-unit[0], -unit[1], -unit[2], unit[3]);
}

/// As far beyond `end` as `end` is from the point between it and its neighbour.
Quaternion turnedOn(const Quaternion& end, const Quaternion& neighbour)
{
    return product(product(end, inverse(halfWay(end, neighbour))), end);
}

} // namespace

std::vector<double> valuesAtPoints(const std::vector<double>& elements, bool isClosed)
{
    const std::size_t count = elements.size();
    std::vector<double> points(count + 1);
    for (std::size_t i = 1; i < count; ++i)
        points[i] = elements[i - 1] / 2 + elements[i] / 2;
    points.front() = elements.front();
    points.back() = elements.back();
    if (isClosed)
        points.front() = points.back() = elements.front() / 2 + elements.back() / 2;
    return points;
}

std::vector<Quaternion> rotationsAtPoints(const std::vector<Quaternion>& elements, bool isClosed)
{
    std::vector<Quaternion> units;
    units.reserve(elements.size());
    for (const Quaternion& element : elements)
        units.push_back(scaledToUnit(element));
    const std::size_t count = units.size();
    std::vector<Quaternion> points(count + 1, units.front());
    for (std::size_t i = 1; i < count; ++i)
        points[i] = halfWay(units[i - 1], units[i]);
    if (count == 1)
        return points;
    if (isClosed) {
        points.front() = points.back() = halfWay(units.back(), units.front());
    } else {
        points.front() = turnedOn(units[0], units[1]);
        points.back() = turnedOn(units[count - 1], units[count - 2]);
    }
    return points;
}
