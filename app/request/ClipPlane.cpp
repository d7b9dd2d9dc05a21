// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ClipPlane.h"

#include <algorithm>
#include <cmath>

#include <strandview/formats/text/wording.h>

#include "request/CameraRequest.h"
#include "request/parseNumber.h"

namespace strandview {

using Vector = algebra3d::Vector3<double>;

namespace {

bool areEqual(const Vector& a, const Vector& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

double largestOf(const Vector& v)
{
    return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)});
}

std::optional<Vector> parseNormal(const std::string& text)
{
    for (const NamedSide& named : SIDES) {
        if (text == named.name)
            return towardsViewer(named.side);
    }
    const std::optional<Vector> normal = parsePoint(text);
    return normal && largestOf(*normal) > 0 ? normal : std::nullopt;
}

std::string formatNormal(const Vector& normal)
{
    for (const NamedSide& named : SIDES) {
        if (areEqual(normal, towardsViewer(named.side)))
            return named.name;
    }
    return formatted(normal.x) + "," + formatted(normal.y) + "," + formatted(normal.z);
}

} // namespace

// First so scaled that no square is too large or too small.
Vector ClipPlane::unitNormal() const
{
    const double largest = largestOf(normal);
    const Vector scaled(normal.x / largest, normal.y / largest, normal.z / largest);
    return scaled * (1 / scaled.getNorm());
}

ClipPlane planeFacing(const Vector& direction)
{
    const auto nearest = std::max_element(
        SIDES.begin(), SIDES.end(), [&direction](const NamedSide& a, const NamedSide& b) {
            return towardsViewer(a.side).dot(direction) < towardsViewer(b.side).dot(direction);
        });
    return {towardsViewer(nearest->side), {}};
}

bool operator==(const ClipPlane& a, const ClipPlane& b)
{
    return areEqual(a.normal, b.normal) && a.distance == b.distance;
}

std::string formatClipPlane(const ClipPlane& plane)
{
    return formatNormal(plane.normal) + (plane.distance ? ":" + formatted(*plane.distance) : "");
}

std::optional<ClipPlane> parseClipPlane(const std::string& text)
{
    const std::size_t colon = text.find(':');
    const std::optional<Vector> normal = parseNormal(text.substr(0, colon));
    if (!normal)
        return {};
    ClipPlane plane{*normal, {}};
    if (colon != std::string::npos) {
        plane.distance = parseNumber<double>(text.substr(colon + 1));
        if (!plane.distance)
            return {};
    }
    return plane;
}

} // namespace strandview
