// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/placeNumbers.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include <algebra3d/rotations.h>
#include <nlohmann/json.hpp>

#include <strandview/analysis/scalarAt.h>
#include <strandview/analysis/scalars.h>
#include <strandview/analysis/tracks.h>

#include "scene/backbones.h"

namespace strandview {

using algebra3d::Quaternion;
using algebra3d::Vector3;

namespace {

const double DEGREES = 180 / std::acos(-1.0);

using Rows = std::vector<NumberRow>;

// The line of a rod, of the average or a strand of a birod, of the pairs or a strand of a DNA.
std::optional<Track> findLine(ThingKind kind, std::size_t datum, int strand,
                              const Configuration& data, double angstrom)
{
    if (kind == ThingKind::ROD && datum < data.rods.size())
        return trackOf(data.rods[datum], datum);
    const bool isBirod = kind == ThingKind::BIROD && datum < data.birods.size();
    const bool isDna = kind == ThingKind::DNA && datum < data.dnas.size();
    if (!isBirod && !isDna)
        return std::nullopt;
    const std::size_t before = data.rods.size() + (isDna ? 3 * data.birods.size() : 0);
    return tracksOf(data, angstrom)[before + 3 * datum + std::size_t(strand)];
}

std::optional<Track> findLine(const PickedPlace& place, const Configuration& data, double angstrom)
{
    std::optional<Track> line = findLine(place.kind, place.datum, place.strand, data, angstrom);
    const bool hasRow = line && place.row && *place.row < line->points.size() &&
                        (place.share == 0 || *place.row + 1 < line->points.size());
    return hasRow ? line : std::nullopt;
}

// Of a line, but not known where along it.
bool isOfUnknownRow(const PickedPlace& place)
{
    const bool isOfLine = place.kind == ThingKind::ROD || place.kind == ThingKind::BIROD ||
                          place.kind == ThingKind::DNA;
    return isOfLine && !place.row;
}

double between(double from, double to, double share) { return from + share * (to - from); }

double scalarOf(const Track& line, const PickedPlace& place, const std::string& name)
{
    const double value = scalarAt(line, name, *place.row).value_or(NAN);
    return place.share == 0
               ? value
               : between(value, scalarAt(line, name, *place.row + 1).value_or(NAN), place.share);
}

// Of a base of a strand.
Vector3<double> phosphorusOf(const Dna& dna, const PickedPlace& place, double angstrom)
{
    const Strand strand = place.strand == 1 ? Strand::FIRST : Strand::SECOND;
    return idealPhosphorus(dna, strand, std::size_t(*place.row), angstrom);
}

PointOfPlace pointOf(const Track& line, const PickedPlace& place)
{
    const std::size_t row = *place.row;
    if (place.share == 0)
        return {line.points[row], line.rotations[row]};
    return {line.points[row] + place.share * (line.points[row + 1] - line.points[row]),
            algebra3d::slerp(line.rotations[row], line.rotations[row + 1], place.share)};
}

PointOfPlace pointOf(const Arrow& arrow, const PickedPlace& place)
{
    const Vector3<double> shaft = arrow.to - arrow.from;
    const double along = (place.point - arrow.from).dot(shaft) / std::max(shaft.dot(shaft), 1e-300);
    return {arrow.from + std::clamp(along, 0.0, 1.0) * shaft, std::nullopt};
}

// What is told

std::string numberOrDash(double value) { return std::isfinite(value) ? readable(value) : "-"; }

NumberRow rowOf(const std::string& name, double number, const std::string& unit)
{
    return {name, numberOrDash(number), unit, {number}};
}

// "0.1	2	3", so that each is in a column.
NumberRow rowOf(const std::string& name, const Vector3<double>& vector)
{
    return {name,
            readable(vector.x) + "\t" + readable(vector.y) + "\t" + readable(vector.z),
            "",
            {vector.x, vector.y, vector.z}};
}

void addFrame(Rows& rows, const Quaternion<double>& rotation)
{
    const std::array<Vector3<double>, 3> axes{Vector3<double>(1, 0, 0), Vector3<double>(0, 1, 0),
                                              Vector3<double>(0, 0, 1)};
    const auto withoutRounding = [](double component) {
        return std::round(component * 1e6) / 1e6 + 0.0; // no -0
    };
    for (std::size_t i = 0; i < 3; ++i) {
        const Vector3<double> d = algebra3d::rotated(axes[i], rotation);
        rows.push_back(rowOf("d" + std::to_string(i + 1),
                             {withoutRounding(d.x), withoutRounding(d.y), withoutRounding(d.z)}));
    }
}

void addPoint(Rows& rows, const PointOfPlace& at)
{
    rows.push_back(rowOf("point", at.point));
    if (at.rotation)
        addFrame(rows, *at.rotation);
}

// "37", "2.25", of any size.
std::string countOf(double places)
{
    std::array<char, 32> text{};
    const int decimals = 3;
    const auto end = std::to_chars(text.data(), text.data() + text.size(), places,
                                   std::chars_format::fixed, decimals)
                         .ptr;
    std::string number(text.data(), end);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.')
        number.pop_back();
    return number;
}

// "37 of 100", as pairs are counted wherever they are told.
NumberRow pairRow(const PickedPlace& place, std::size_t count)
{
    return {"pair from 1",
            std::to_string(*place.row + 1) + " of " + std::to_string(count),
            "",
            {double(*place.row + 1)}};
}

NumberRow countRow(const std::string& name, std::size_t count)
{
    return {name, std::to_string(count), "", {double(count)}};
}

// As tables have it.
NumberRow indexRow(const PickedPlace& place)
{
    const double index = double(*place.row) + place.share;
    return {"index from 0", countOf(index), "", {index}};
}

void addIndex(Rows& rows, const PickedPlace& place, std::size_t count)
{
    rows.push_back(indexRow(place));
    rows.push_back(countRow("points of the line", count));
}

void addScalars(Rows& rows, const Track& line, const PickedPlace& place)
{
    for (const std::string& name : scalarNames(line))
        rows.push_back(rowOf(name, scalarOf(line, place, name), unitOf(line, name)));
}

NumberTable tableOfRod(const Track& line, const PickedPlace& place)
{
    const Rod& rod = *line.rod;
    NumberTable table{titleOf(line), {{"from", place.name, ""}}};
    addIndex(table.rows, place, rod.points.size());
    if (place.share == 0 && *place.row < rod.lines.size())
        table.rows.push_back(countRow("line of the file", rod.lines[*place.row]));
    else if (place.share == 0 && *place.row < rod.indices.size())
        table.rows.push_back({"index in the file",
                              std::to_string(rod.indices[*place.row]),
                              "",
                              {double(rod.indices[*place.row])}});
    addPoint(table.rows, pointOf(line, place));
    if (!rod.hasFrames)
        table.rows.push_back({"frames", "made by parallel transport", ""});
    addScalars(table.rows, line, place);
    return table;
}

NumberTable tableOfBirod(const Track& line, const PickedPlace& place)
{
    NumberTable table{titleOf(line), {{"from", place.name, ""}}};
    addIndex(table.rows, place, line.points.size());
    addPoint(table.rows, pointOf(line, place));
    addScalars(table.rows, line, place);
    return table;
}

NumberTable tableOfStrand(const Track& line, const PickedPlace& place, double angstrom)
{
    NumberTable table{titleOf(line), {{"base", std::string(1, basesOf(line)[*place.row]), ""}}};
    if (place.isOnBackbone)
        table.rows.push_back(rowOf("phosphorus", phosphorusOf(*line.dna, place, angstrom)));
    addPoint(table.rows, pointOf(line, place));
    addScalars(table.rows, line, place);
    return table;
}

// A line's quantities, then those of pairs and steps.
NumberTable tableOfPair(const Track& line, const PickedPlace& place, const std::string& letters)
{
    NumberTable table{titleOf(line), {}};
    table.rows.push_back(pairRow(place, line.points.size()));
    table.rows.push_back(indexRow(place));
    table.rows.push_back({"bases", letters, ""});
    addPoint(table.rows, pointOf(line, place));
    addScalars(table.rows, line, place);
    return table;
}

std::vector<NumberTable> tablesOfDna(const PickedPlace& place, const Configuration& data,
                                     double angstrom)
{
    const Track pairs = *findLine(ThingKind::DNA, place.datum, 0, data, angstrom);
    const Track second = *findLine(ThingKind::DNA, place.datum, 2, data, angstrom);
    const std::string letters{basesOf(pairs)[*place.row], basesOf(second)[*place.row]};
    std::vector<NumberTable> tables;
    if (place.strand > 0)
        tables.push_back(tableOfStrand(
            *findLine(ThingKind::DNA, place.datum, place.strand, data, angstrom), place, angstrom));
    tables.push_back(tableOfPair(pairs, place, letters));
    tables.front().rows.insert(tables.front().rows.begin(), {"from", place.name, ""});
    return tables;
}

std::optional<NumberTable> tableOfGlyph(const PickedPlace& place, const Configuration& data)
{
    const std::optional<PointOfPlace> at = findPoint(place, data, 1); // no DNA
    if (!at)
        return std::nullopt;
    NumberTable table{"", {{"from", place.name, ""}}};
    const std::string number = std::to_string(place.datum + 1);
    if (place.kind == ThingKind::MARKER) {
        table.title = "marker " + number;
        const auto id = data.markers[place.datum].id;
        table.rows.push_back({"id", std::to_string(id), "", {double(id)}});
    } else if (place.kind == ThingKind::ARROW) {
        const Arrow& arrow = data.arrows[place.datum];
        table.title = "arrow " + number;
        table.rows.push_back(rowOf("start", arrow.from));
        table.rows.push_back(rowOf("end", arrow.to));
        table.rows.push_back(rowOf("vector", arrow.to - arrow.from));
        table.rows.push_back(rowOf("length", (arrow.to - arrow.from).getNorm(), "length"));
    } else if (place.kind == ThingKind::FRAME) {
        table.title = "frame " + number;
    } else {
        table.title = "base without a partner";
        table.rows.push_back({"base", std::string(1, data.loneBases[place.datum].base), ""});
        table.rows.push_back(countRow("index from 0", place.datum));
    }
    addPoint(table.rows, *at);
    return table;
}

// What is between places

double angleBetween(const Vector3<double>& a, const Vector3<double>& b)
{
    return DEGREES * std::atan2(a.cross(b).getNorm(), a.dot(b));
}

void addAngles(Rows& rows, const Quaternion<double>& from, const Quaternion<double>& to)
{
    rows.push_back(rowOf("rotation", angleOfRotation(from, to), "°"));
    const std::array<Vector3<double>, 3> axes{Vector3<double>(1, 0, 0), Vector3<double>(0, 1, 0),
                                              Vector3<double>(0, 0, 1)};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::string axis = "d" + std::to_string(i + 1);
        rows.push_back(rowOf(
            axis + " to " + axis,
            angleBetween(algebra3d::rotated(axes[i], from), algebra3d::rotated(axes[i], to)), "°"));
    }
}

// That of both, of two strands what is between them.
std::optional<Track> lineOfBoth(const PickedPlace& from, const PickedPlace& to,
                                const Configuration& data, double angstrom)
{
    if (from.kind != to.kind || from.datum != to.datum || !from.row || !to.row)
        return std::nullopt;
    const int strand = from.strand == to.strand ? from.strand : 0;
    std::optional<Track> line = findLine(from.kind, from.datum, strand, data, angstrom);
    const std::size_t last = std::max(*from.row, *to.row);
    return line && last < line->points.size() ? std::move(line) : std::nullopt;
}

// In the direction of the points.
double wayAlong(const std::vector<double>& lengths, const PickedPlace& from, const PickedPlace& to)
{
    const auto lengthAt = [&lengths](const auto& place) {
        const std::size_t row = *place.row, next = std::min(row + 1, lengths.size() - 1);
        return lengths[row] + place.share * (lengths[next] - lengths[row]);
    };
    return std::abs(lengthAt(to) - lengthAt(from));
}

// Of a closed line.
double lengthAround(const Track& line, const std::vector<double>& lengths)
{
    const double all = lengths.back();
    const bool isOpenAtEnd = line.dna != nullptr; // its last pair is none twice
    return isOpenAtEnd ? all + (line.points.front() - line.points.back()).getNorm() : all;
}

void addWay(Rows& rows, const PickedPlace& from, const PickedPlace& to, const Configuration& data,
            double angstrom)
{
    const auto line = lineOfBoth(from, to, data, angstrom);
    if (!line)
        return;
    const double steps = std::abs(double(*to.row) + to.share - double(*from.row) - from.share);
    rows.push_back({"steps between", countOf(steps), "", {steps}});
    const std::vector<double> lengths = arcLengthsOf(*line);
    const double way = wayAlong(lengths, from, to);
    rows.push_back(rowOf("arc length between", way, "length"));
    if (!line->isClosed)
        return;
    rows.push_back(rowOf("the other way round", lengthAround(*line, lengths) - way, "length"));
}

} // namespace

bool hasDna(const Configuration& data) { return !data.dnas.empty() || !data.loneBases.empty(); }

double angleOfRotation(const Quaternion<double>& from, const Quaternion<double>& to)
{
    const auto turn = algebra3d::conjugate(from) * to;
    const Vector3<double> part(turn[0], turn[1], turn[2]);
    return 2 * DEGREES * std::atan2(part.getNorm(), std::abs(turn[3]));
}

std::optional<double> arcLengthBetween(const PickedPlace& from, const PickedPlace& to,
                                       const Configuration& data, double angstrom)
{
    const auto line = lineOfBoth(from, to, data, angstrom);
    if (!line)
        return std::nullopt;
    const std::vector<double> lengths = arcLengthsOf(*line);
    const double way = wayAlong(lengths, from, to);
    return line->isClosed ? std::min(way, lengthAround(*line, lengths) - way) : way;
}

std::optional<PointOfPlace> findPoint(const PickedPlace& place, const Configuration& data,
                                      double angstrom)
{
    const std::size_t i = place.datum;
    if (isOfUnknownRow(place)) {
        const bool isThere = findLine(place.kind, i, place.strand, data, angstrom).has_value();
        return isThere ? std::optional(PointOfPlace{place.point, {}}) : std::nullopt;
    }
    switch (place.kind) {
    case ThingKind::ROD:
    case ThingKind::BIROD:
    case ThingKind::DNA: {
        const std::optional<Track> line = findLine(place, data, angstrom);
        if (!line)
            return std::nullopt;
        PointOfPlace at = pointOf(*line, place);
        if (place.isOnBackbone && line->dna && place.strand > 0)
            at.point = phosphorusOf(*line->dna, place, angstrom);
        return at;
    }
    case ThingKind::MARKER:
        return i < data.markers.size() ? std::optional(PointOfPlace{data.markers[i].point, {}})
                                       : std::nullopt;
    case ThingKind::ARROW:
        return i < data.arrows.size() ? std::optional(pointOf(data.arrows[i], place))
                                      : std::nullopt;
    case ThingKind::FRAME:
        if (i >= data.frames.size())
            return std::nullopt;
        return PointOfPlace{data.frames[i].point, data.frames[i].rotation};
    case ThingKind::LONE_BASES:
        if (i >= data.loneBases.size())
            return std::nullopt;
        return PointOfPlace{data.loneBases[i].point, data.loneBases[i].rotation};
    default:
        return PointOfPlace{place.point, {}};
    }
}

std::vector<NumberTable> numbersAt(const PickedPlace& place, const Configuration& data,
                                   double angstrom)
{
    if (!findPoint(place, data, angstrom))
        return {{place.name, {{"not in these data", "", ""}}}};
    if (place.kind == ThingKind::OTHER || isOfUnknownRow(place))
        return {{place.name.empty() ? "a point" : place.name, {rowOf("point", place.point)}}};
    const std::optional<Track> line = findLine(place, data, angstrom);
    if (place.kind == ThingKind::ROD)
        return {tableOfRod(*line, place)};
    if (place.kind == ThingKind::BIROD)
        return {tableOfBirod(*line, place)};
    if (place.kind == ThingKind::DNA)
        return tablesOfDna(place, data, angstrom);
    return {*tableOfGlyph(place, data)};
}

std::optional<NumberTable> numbersBetween(const PickedPlace& from, const PickedPlace& to,
                                          const Configuration& data, double angstrom)
{
    const std::optional<PointOfPlace> start = findPoint(from, data, angstrom),
                                      end = findPoint(to, data, angstrom);
    if (!start || !end)
        return std::nullopt;
    const Vector3<double> way = end->point - start->point;
    NumberTable table{"from 1 to 2", {rowOf("distance", way.getNorm(), "length")}};
    if (hasDna(data))
        table.rows.push_back(rowOf("distance", way.getNorm() / angstrom, "Å"));
    table.rows.push_back(rowOf("vector", way));
    if (start->rotation && end->rotation)
        addAngles(table.rows, *start->rotation, *end->rotation);
    addWay(table.rows, from, to, data, angstrom);
    return table;
}

std::string textOf(const std::vector<NumberTable>& tables)
{
    std::string text;
    for (const NumberTable& table : tables) {
        if (!text.empty())
            text += "\n";
        text += table.title + "\n";
        for (const NumberRow& row : table.rows) {
            text += row.name;
            for (const std::string& part : {row.value, row.unit})
                text += part.empty() ? "" : "\t" + part;
            text += "\n";
        }
    }
    return text;
}

std::string jsonOf(const std::vector<NumberTable>& tables)
{
    using Json = nlohmann::ordered_json; // which writes null for what is not finite
    Json all = Json::array();
    for (const NumberTable& table : tables) {
        Json one{{"title", table.title}};
        for (const NumberRow& row : table.rows) {
            if (row.value.empty())
                continue;
            Json value = row.value;
            if (row.numbers.size() == 1)
                value = row.numbers.front();
            else if (!row.numbers.empty())
                value = row.numbers;
            if (!row.unit.empty())
                value = Json{{"value", value}, {"unit", row.unit}};
            // A number in two units has two members.
            const bool isThere = one.contains(row.name);
            one[isThere ? row.name + " in " + row.unit : row.name] = value;
        }
        all.push_back(one);
    }
    // What is no UTF-8 in the name of a file is replaced.
    return all.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace strandview
