// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/Measurement.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

#include <strandview/formats/text/wording.h>

#include "request/parseNumber.h"

namespace strandview {

using algebra3d::Vector3;

namespace {

struct KindName
{
    MeasureKind kind;
    const char* name;
    std::size_t places;
};

const std::array<KindName, 5> KINDS{{{MeasureKind::DISTANCE, "distance", 2},
                                     {MeasureKind::ARC_LENGTH, "arc length", 2},
                                     {MeasureKind::ROTATION, "rotation", 2},
                                     {MeasureKind::ANGLE, "angle", 3},
                                     {MeasureKind::DIHEDRAL, "dihedral angle", 4}}};

const std::string BEFORE_NAME = " as ";

const KindName& rowOf(MeasureKind kind)
{
    return *std::find_if(KINDS.begin(), KINDS.end(),
                         [kind](const KindName& row) { return row.kind == kind; });
}

// What a place can be of: whether it has strands, and what its index is counted from.
struct ThingName
{
    const char* name;
    bool isLine, hasStrands;
    int firstIndex;
};

const char* const POINT = "point";
const char* const DNA = "DNA";
const std::array<ThingName, 7> THINGS{{{"rod", true, false, 0},
                                       {"birod", true, true, 0},
                                       {DNA, true, true, 1},
                                       {"marker", false, false, 0},
                                       {"arrow", false, false, 0},
                                       {"frame", false, false, 0},
                                       {"base", false, false, 0}}};

const ThingName* findThing(const std::string& name)
{
    const auto lower = [](std::string text) {
        std::transform(text.begin(), text.end(), text.begin(),
                       [](unsigned char c) { return char(std::tolower(c)); });
        return text;
    };
    const auto* const found =
        std::find_if(THINGS.begin(), THINGS.end(),
                     [&](const ThingName& thing) { return lower(thing.name) == lower(name); });
    return found == THINGS.end() ? nullptr : found;
}

bool areSame(const Vector3<double>& a, const Vector3<double>& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

std::string textOf(const Vector3<double>& point)
{
    return " at " + formatted(point.x) + " " + formatted(point.y) + " " + formatted(point.z);
}

// "a", "b" and "c" of "a b  c".
std::vector<std::string> wordsOf(const std::string& text)
{
    std::vector<std::string> words;
    std::string word;
    for (const char c : text + " ") {
        if (c != ' ') {
            word += c;
        } else if (!word.empty()) {
            words.push_back(word);
            word.clear();
        }
    }
    return words;
}

// Takes the words of a place one after the other.
class PlaceParser
{
public:
    explicit PlaceParser(const std::string& text)
    {
        const std::size_t colon = text.find(':');
        words = wordsOf(text.substr(0, colon));
        if (colon != std::string::npos)
            indexText = text.substr(colon + 1);
    }

    std::optional<MeasuredPlace> parse()
    {
        if (words.empty() || !takeThing() || !takeStrand() || !takeIndex() || !takePoint() ||
            next < words.size())
            return std::nullopt;
        return place;
    }

private:
    bool isNext(const char* word) const { return next < words.size() && words[next] == word; }
    std::optional<int> numberFrom1()
    {
        const auto number =
            next < words.size() ? parseNumber<int>(words[next++]) : std::optional<int>();
        return number && *number > 0 ? number : std::nullopt;
    }

    bool takeThing()
    {
        next = 1;
        if (words[0] == POINT)
            return !indexText;
        thing = findThing(words[0]);
        const auto number = thing ? numberFrom1() : std::nullopt;
        if (!number)
            return false;
        place.kind = thing->name;
        place.number = std::size_t(*number) - 1;
        return true;
    }

    bool takeStrand()
    {
        place.isOnBackbone = isNext("backbone");
        if (!place.isOnBackbone && !isNext("strand"))
            return true;
        ++next;
        const auto strand = numberFrom1();
        place.strand = strand.value_or(0);
        return strand && *strand <= 2 && thing && thing->hasStrands &&
               (!place.isOnBackbone || place.kind == DNA);
    }

    bool takeIndex()
    {
        if (!indexText)
            return true;
        const auto given = parseNumber<double>(*indexText);
        if (!thing || !thing->isLine || !given || !(*given >= thing->firstIndex))
            return false;
        if (place.isOnBackbone && *given != std::floor(*given))
            return false; // there is nothing between two phosphorus atoms
        place.index = *given - thing->firstIndex;
        return true;
    }

    bool takePoint()
    {
        // What has no index may be anywhere; an arrow is long, and a point is nothing else.
        const bool isNeeded = !thing || (thing->isLine && !place.index);
        if (!isNext("at"))
            return !isNeeded;
        ++next;
        for (const int component : {0, 1, 2}) {
            const auto number =
                next < words.size() ? parseNumber<double>(words[next++]) : std::optional<double>();
            if (!number)
                return false;
            place.point[component] = *number;
        }
        return true;
    }

    std::vector<std::string> words;
    std::optional<std::string> indexText;
    std::size_t next = 0;
    const ThingName* thing = nullptr;
    MeasuredPlace place;
};

} // namespace

bool operator==(const MeasuredPlace& a, const MeasuredPlace& b)
{
    return a.kind == b.kind && a.number == b.number && a.strand == b.strand &&
           a.isOnBackbone == b.isOnBackbone && a.index == b.index && areSame(a.point, b.point);
}

std::string textOf(const MeasuredPlace& place)
{
    const ThingName* const thing = findThing(place.kind);
    if (!thing)
        return POINT + textOf(place.point);
    std::string text = place.kind + " " + std::to_string(place.number + 1);
    if (place.strand > 0)
        text += (place.isOnBackbone ? " backbone " : " strand ") + std::to_string(place.strand);
    if (place.index)
        return text + ":" + formatted(*place.index + thing->firstIndex);
    const bool isAllOfIt = !thing->isLine && areSame(place.point, {});
    return isAllOfIt ? text : text + textOf(place.point);
}

std::optional<MeasuredPlace> parsePlace(const std::string& text)
{
    return PlaceParser(text).parse();
}

const char* nameOf(MeasureKind kind) { return rowOf(kind).name; }

std::optional<MeasureKind> parseMeasureKind(const std::string& name)
{
    for (const KindName& row : KINDS) {
        if (name == row.name)
            return row.kind;
    }
    return std::nullopt;
}

std::size_t placesOf(MeasureKind kind) { return rowOf(kind).places; }

std::optional<MeasureKind> usualKind(std::size_t places)
{
    for (const KindName& row : KINDS) {
        if (row.places == places)
            return row.kind;
    }
    return std::nullopt;
}

bool operator==(const Measurement& a, const Measurement& b)
{
    return a.kind == b.kind && a.places == b.places && a.name == b.name && a.isShown == b.isShown;
}

std::string textOf(const Measurement& measurement)
{
    std::string text = nameOf(measurement.kind);
    for (std::size_t i = 0; i < measurement.places.size(); ++i)
        text += (i == 0 ? " " : ",") + textOf(measurement.places[i]);
    return text;
}

std::optional<Measurement> parseMeasurement(const std::string& text)
{
    Measurement measurement;
    std::optional<MeasureKind> kind;
    std::string rest = text;
    for (const KindName& row : KINDS) {
        const std::string start = std::string(row.name) + " ";
        if (text.compare(0, start.size(), start) == 0) {
            kind = row.kind;
            rest = text.substr(start.size());
        }
    }
    for (std::size_t begin = 0; begin <= rest.size();) {
        const std::size_t comma = std::min(rest.find(',', begin), rest.size());
        const auto place = parsePlace(rest.substr(begin, comma - begin));
        if (!place)
            return std::nullopt;
        measurement.places.push_back(*place);
        begin = comma + 1;
    }
    if (!kind)
        kind = usualKind(measurement.places.size());
    if (!kind || placesOf(*kind) != measurement.places.size())
        return std::nullopt;
    measurement.kind = *kind;
    return measurement;
}

std::vector<Measurement> shownOf(std::vector<Measurement> measurements)
{
    const auto isHidden = [](const Measurement& measurement) { return !measurement.isShown; };
    measurements.erase(std::remove_if(measurements.begin(), measurements.end(), isHidden),
                       measurements.end());
    return measurements;
}

std::string namedTextOf(const Measurement& measurement)
{
    return textOf(measurement) + (measurement.name.empty() ? "" : BEFORE_NAME + measurement.name);
}

std::optional<Measurement> parseNamedMeasurement(const std::string& text)
{
    const std::size_t end = text.find(BEFORE_NAME);
    std::optional<Measurement> measurement = parseMeasurement(text.substr(0, end));
    if (!measurement || end == std::string::npos)
        return measurement;
    measurement->name = text.substr(end + BEFORE_NAME.size());
    return measurement->name.empty() ? std::nullopt : measurement;
}

} // namespace strandview
