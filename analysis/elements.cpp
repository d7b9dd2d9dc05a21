// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/elements.h>

#include <cstddef>

#include <algebra3d/largePages.h>
#include <algebra3d/rotations.h>

#include <strandview/model/points.h>

namespace strandview {

namespace {

using Quaternion = algebra3d::Quaternion<double>;

Quaternion halfWay(const Quaternion& a, const Quaternion& b)
{
    return algebra3d::scaledToUnit(algebra3d::slerp(a, b, 0.5));
}

/// As far beyond `end` as `end` is from the point between it and its neighbour.
Quaternion turnedOn(const Quaternion& end, const Quaternion& neighbour)
{
    return end * algebra3d::conjugate(halfWay(end, neighbour)) * end;
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
    algebra3d::reserveMany(units, elements.size());
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

} // namespace strandview
