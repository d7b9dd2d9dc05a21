// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/CameraRequest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

#include "request/parseNumber.h"

namespace strandview {

using Vector = CameraRequest::Vector;

Vector towardsViewer(Side side)
{
    switch (side) {
    case Side::X:
        return {1, 0, 0};
    case Side::MINUS_X:
        return {-1, 0, 0};
    case Side::Y:
        return {0, 1, 0};
    case Side::MINUS_Y:
        return {0, -1, 0};
    case Side::MINUS_Z:
        return {0, 0, -1};
    default:
        return {0, 0, 1};
    }
}

Vector usualUp(Side side)
{
    const bool isAlongZ = side == Side::Z || side == Side::MINUS_Z;
    return isAlongZ ? Vector(0, 1, 0) : Vector(0, 0, 1);
}

Vector upOf(const CameraRequest& request)
{
    if (request.up)
        return request.up->getUnit();
    return request.side ? usualUp(*request.side) : Vector(0, 0, 1);
}

bool isAlong(const Vector& up, Side side)
{
    const double smallest = 1e-6; // sine that single precision tells from 0
    return up.getUnit().cross(towardsViewer(side)).getNorm() < smallest;
}

CameraRequest withUsualSide(CameraRequest request, Side usual)
{
    const bool isFromFront = request.hasAngles() || (request.up && isAlong(*request.up, usual));
    if (!request.side && !isFromFront)
        request.side = usual;
    return request;
}

std::optional<Vector> parsePoint(const std::string& text)
{
    std::istringstream parts(text + ","); // so that an empty last part counts
    std::array<double, 3> numbers = {};
    std::size_t count = 0;
    for (std::string part; std::getline(parts, part, ','); ++count) {
        const std::optional<double> number = parseNumber<double>(part);
        if (!number || !std::isfinite(*number) || count == numbers.size())
            return {};
        numbers[count] = *number;
    }
    if (count != numbers.size())
        return {};
    return Vector(numbers[0], numbers[1], numbers[2]);
}

std::optional<Vector> parseDirection(const std::string& text)
{
    const auto* const named = std::find_if(SIDES.begin(), SIDES.end(),
                                           [&text](const NamedSide& s) { return text == s.name; });
    if (named != SIDES.end())
        return towardsViewer(named->side);
    const std::optional<Vector> direction = parsePoint(text);
    if (!direction)
        return {};
    const double largest =
        std::max({std::abs(direction->x), std::abs(direction->y), std::abs(direction->z)});
    if (largest == 0)
        return {};
    return Vector(direction->x / largest, direction->y / largest, direction->z / largest);
}

} // namespace strandview
