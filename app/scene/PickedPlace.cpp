// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/PickedPlace.h"

#include <charconv>

namespace strandview {

namespace {

// "pair 12 AT, strand 2, ", of a pair's box without the strand, of a strand alone without the pair.
std::string placeInDna(const PickedPlace& place)
{
    std::string text;
    if (place.row)
        text = "pair " + std::to_string(*place.row + 1) + " " + place.base + place.partner + ", ";
    if (place.strand > 0)
        text += "strand " + std::to_string(place.strand) + ", ";
    return text;
}

} // namespace

std::string readable(double value)
{
    char text[32];
    const auto result =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
    return std::string(text, result.ptr);
}

std::string readable(const algebra3d::Vector3<double>& vector)
{
    return readable(vector.x) + " " + readable(vector.y) + " " + readable(vector.z);
}

Told tell(const PickedPlace& place)
{
    std::string text;
    if (place.kind == ThingKind::DNA)
        text = placeInDna(place);
    else if (place.kind == ThingKind::LONE_BASES && place.base)
        text = std::string("base ") + place.base + ", ";
    text += "point " + readable(place.point);
    if (place.arcLength)
        text += ", arc length " + readable(*place.arcLength) + " of " + readable(*place.length);
    return {text, place.name};
}

} // namespace strandview
