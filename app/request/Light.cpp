// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/Light.h"

#include <algorithm>
#include <cmath>

#include <strandview/formats/text/wording.h>

#include "request/CameraRequest.h"
#include "request/limits.h"
#include "request/parseNumber.h"

namespace strandview {

using Vector = algebra3d::Vector3<double>;

namespace {

std::string textOf(const Vector& v)
{
    return formatted(v.x) + "," + formatted(v.y) + "," + formatted(v.z);
}

bool isShort(const Vector& v)
{
    return std::max({std::abs(v.x), std::abs(v.y), std::abs(v.z)}) <= LARGEST_OF_LIGHT;
}

bool areShininess(const Shininess& all)
{
    return std::all_of(all.begin(), all.end(),
                       [](double one) { return one >= 0 && one <= LARGEST_OF_LIGHT; });
}

} // namespace

bool operator==(const Light& a, const Light& b)
{
    const auto& one = a.direction;
    const auto& other = b.direction;
    const bool areAlike = one && other
                              ? one->x == other->x && one->y == other->y && one->z == other->z
                              : one.has_value() == other.has_value();
    return areAlike && a.intensity == b.intensity;
}

std::string formatLight(const Light& light)
{
    const std::string intensity = formatted(light.intensity);
    if (!light.direction)
        return intensity;
    return textOf(*light.direction) + (light.intensity == 1 ? "" : ":" + intensity);
}

std::optional<Light> parseLight(const std::string& text)
{
    if (text == "off")
        return Light{{}, 0};
    const std::size_t colon = text.find(':');
    const std::string first = text.substr(0, colon);
    Light light{parsePoint(first), 1};
    if (light.direction ? !isShort(*light.direction) : colon != std::string::npos)
        return {};
    if (light.direction && colon == std::string::npos)
        return light;
    const auto intensity =
        parseNumber<double>(colon == std::string::npos ? first : text.substr(colon + 1));
    if (!intensity || *intensity < 0 || *intensity > 1)
        return {};
    light.intensity = *intensity;
    return light;
}

std::string formatShininess(const Shininess& shininess)
{
    const bool areSame = shininess[0] == shininess[1] && shininess[1] == shininess[2];
    return areSame ? formatted(shininess[0])
                   : textOf(Vector(shininess[0], shininess[1], shininess[2]));
}

std::optional<Shininess> parseShininess(const std::string& text)
{
    Shininess all{};
    if (const std::optional<Vector> each = parsePoint(text))
        all = {each->x, each->y, each->z};
    else if (const std::optional<double> one = parseNumber<double>(text))
        all.fill(*one);
    else
        return {};
    return areShininess(all) ? std::optional(all) : std::nullopt;
}

} // namespace strandview
