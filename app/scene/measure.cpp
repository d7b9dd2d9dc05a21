// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/measure.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include <strandview/analysis/angles.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

const double DEGREES = 180 / std::acos(-1.0);
const char* const LENGTH = "length";

const std::array<std::pair<ThingKind, const char*>, 8> KINDS{{{ThingKind::ROD, "rod"},
                                                              {ThingKind::BIROD, "birod"},
                                                              {ThingKind::DNA, "DNA"},
                                                              {ThingKind::MARKER, "marker"},
                                                              {ThingKind::ARROW, "arrow"},
                                                              {ThingKind::FRAME, "frame"},
                                                              {ThingKind::LONE_BASES, "base"},
                                                              {ThingKind::OTHER, "point"}}};

std::vector<PickedPlace> pickedPlacesOf(const std::vector<MeasuredPlace>& places)
{
    std::vector<PickedPlace> picked;
    for (const MeasuredPlace& place : places)
        picked.push_back(pickedPlaceOf(place));
    return picked;
}

// Of all, or of none.
std::vector<PointOfPlace> findPoints(const std::vector<PickedPlace>& places,
                                     const Configuration& data, double angstrom)
{
    std::vector<PointOfPlace> points;
    for (const PickedPlace& place : places) {
        const auto point = findPoint(place, data, angstrom);
        if (!point)
            return {};
        points.push_back(*point);
    }
    return points;
}

double distanceOf(const PointOfPlace& a, const PointOfPlace& b)
{
    return (b.point - a.point).getNorm();
}

// In the data's unit, or degrees.
std::optional<double> valueOf(MeasureKind kind, const std::vector<PickedPlace>& places,
                              const std::vector<PointOfPlace>& at, const Configuration& data,
                              double angstrom)
{
    switch (kind) {
    case MeasureKind::DISTANCE:
        return distanceOf(at[0], at[1]);
    case MeasureKind::ARC_LENGTH:
        return arcLengthBetween(places[0], places[1], data, angstrom);
    case MeasureKind::ROTATION:
        if (!at[0].rotation || !at[1].rotation)
            return std::nullopt;
        return angleOfRotation(*at[0].rotation, *at[1].rotation);
    case MeasureKind::ANGLE:
        return DEGREES * angleAt(at[0].point, at[1].point, at[2].point);
    default:
        return DEGREES * dihedralAngleOf(at[0].point, at[1].point, at[2].point, at[3].point);
    }
}

bool isLength(MeasureKind kind)
{
    return kind == MeasureKind::DISTANCE || kind == MeasureKind::ARC_LENGTH;
}

NumberRow rowOf(const std::string& name, const MeasuredValue& value)
{
    return {
        name, std::isfinite(value.value) ? readable(value.value) : "-", value.unit, {value.value}};
}

MeasuredValue lengthOf(double length, const Configuration& data, double angstrom)
{
    return hasDna(data) ? MeasuredValue{length / angstrom, "Å", {}}
                        : MeasuredValue{length, LENGTH, {}};
}

} // namespace

std::string unitOf(MeasureKind kind, const Configuration& data)
{
    if (!isLength(kind))
        return "°";
    return hasDna(data) ? "Å" : LENGTH;
}

MeasuredPlace measuredPlaceOf(const PickedPlace& place)
{
    MeasuredPlace kept;
    kept.kind = std::find_if(KINDS.begin(), KINDS.end(), [&](const auto& row) {
                    return row.first == place.kind;
                })->second;
    kept.number = place.kind == ThingKind::OTHER ? 0 : place.datum;
    kept.strand = place.strand;
    kept.isOnBackbone = place.isOnBackbone;
    const bool isLine = place.kind == ThingKind::ROD || place.kind == ThingKind::BIROD ||
                        place.kind == ThingKind::DNA;
    if (isLine && place.row)
        kept.index = double(*place.row) + place.share;
    const bool isSomewhere = place.kind == ThingKind::OTHER || place.kind == ThingKind::ARROW;
    if (isSomewhere || (isLine && !place.row))
        kept.point = place.point;
    return kept;
}

PickedPlace pickedPlaceOf(const MeasuredPlace& kept)
{
    PickedPlace place;
    for (const auto& [kind, name] : KINDS) {
        if (kept.kind == name)
            place.kind = kind;
    }
    place.datum = kept.number;
    place.strand = kept.strand;
    place.isOnBackbone = kept.isOnBackbone;
    if (kept.index) {
        // No line has more points; beyond it a double has no whole number of its own.
        const double most = double(std::numeric_limits<int>::max());
        const double row = std::clamp(std::floor(*kept.index), 0.0, most);
        place.row = std::size_t(row);
        place.share = std::clamp(*kept.index - row, 0.0, 1.0);
    }
    place.point = kept.point;
    return place;
}

std::optional<MeasuredValue> measure(const Measurement& measurement, const Configuration& data,
                                     double angstrom)
{
    const std::vector<PickedPlace> places = pickedPlacesOf(measurement.places);
    const std::vector<PointOfPlace> at = findPoints(places, data, angstrom);
    if (at.empty() || at.size() != placesOf(measurement.kind))
        return std::nullopt;
    const auto value = valueOf(measurement.kind, places, at, data, angstrom);
    if (!value)
        return std::nullopt;
    MeasuredValue measured = isLength(measurement.kind) ? lengthOf(*value, data, angstrom)
                                                        : MeasuredValue{*value, "°", {}};
    for (const PointOfPlace& point : at)
        measured.points.push_back(point.point);
    return measured;
}

std::optional<NumberTable> numbersOf(const std::vector<PickedPlace>& places,
                                     const Configuration& data, double angstrom)
{
    if (places.size() == 2)
        return numbersBetween(places[0], places[1], data, angstrom);
    const auto kind = usualKind(places.size());
    const std::vector<PointOfPlace> at = findPoints(places, data, angstrom);
    if (!kind || at.empty())
        return std::nullopt;
    const auto value = *valueOf(*kind, places, at, data, angstrom);
    NumberTable table{*kind == MeasureKind::ANGLE ? "angle at 2" : "dihedral angle about 2 to 3",
                      {rowOf(nameOf(*kind), {value, "°", {}})}};
    for (std::size_t i = 0; i + 1 < at.size(); ++i) {
        const std::string ends = std::to_string(i + 1) + " to " + std::to_string(i + 2);
        table.rows.push_back(
            rowOf("distance " + ends, lengthOf(distanceOf(at[i], at[i + 1]), data, angstrom)));
    }
    for (std::size_t i = 1; i + 1 < at.size() && *kind == MeasureKind::DIHEDRAL; ++i) {
        const double angle = DEGREES * angleAt(at[i - 1].point, at[i].point, at[i + 1].point);
        table.rows.push_back(rowOf("angle at " + std::to_string(i + 1), {angle, "°", {}}));
    }
    return table;
}

std::string readable(const MeasuredValue& value)
{
    if (!std::isfinite(value.value))
        return "-";
    const std::string number = readable(value.value);
    return value.unit == LENGTH ? number : number + (value.unit == "°" ? "" : " ") + value.unit;
}

} // namespace strandview
