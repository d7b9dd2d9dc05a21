// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/ScalarList.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/scalars.h>
#include <strandview/analysis/tracks.h>
#include <strandview/formats/text/wording.h>

#include "info/words.h"

namespace strandview {

namespace {

using Json = nlohmann::ordered_json;

struct KindName
{
    Track::Kind kind;
    const char* ofOne;   // for scripts
    const char* heading; // for people
};

const KindName KINDS[] = {{Track::Kind::ROD, "rod", "rods"},
                          {Track::Kind::BIROD_AVERAGE, "birod average", "averages of birods"},
                          {Track::Kind::BIROD_STRAND, "birod strand", "strands of birods"},
                          {Track::Kind::DNA_PAIRS, "DNA pairs", "pairs of DNA"},
                          {Track::Kind::DNA_STRAND, "DNA strand", "strands of DNA"}};

struct Listed
{
    std::string name;
    std::string unit;
    std::string of; // "point"
    std::string meaning;
    bool isGiven;                                   // else computed
    std::size_t lines = 0;                          // that have it
    std::optional<std::pair<double, double>> range; // none where no value is a number
};

struct OfKind
{
    const KindName& kind;
    std::size_t lines = 0;
    std::vector<Listed> scalars;
};

const char* nameOf(ScalarPlace place)
{
    return place == ScalarPlace::POINT ? "point" : place == ScalarPlace::PAIR ? "pair" : "step";
}

// What is computed, or was by a comparison; null of what a file brings, which may be anything.
const Quantity* meaningOf(const Findings& findings, const Track& track, const std::string& name)
{
    if (findings.compared.count(name) > 0)
        return findComparisonQuantity(name);
    return isGiven(track, name) ? nullptr : findQuantity(track.kind, name);
}

Listed emptyRow(const Findings& findings, const Track& track, const std::string& name)
{
    const Quantity* const quantity = meaningOf(findings, track, name);
    if (!quantity)
        return {name, "", nameOf(ScalarPlace::POINT), "of the file", isGiven(track, name), 0, {}};
    return {
        name, quantity->unit, nameOf(quantity->place), quantity->meaning, isGiven(track, name), 0,
        {}};
}

// What lies within its rounding is 0; what is not determined at all does not count.
void widen(Listed& scalar, const Track& track)
{
    const std::vector<double> values = *findScalar(track, scalar.name);
    const std::vector<double> rounding = roundingOf(track, scalar.name);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!std::isfinite(values[i]) || !std::isfinite(rounding[i]))
            continue;
        const double value = std::abs(values[i]) <= rounding[i] ? 0 : values[i];
        scalar.range = scalar.range ? std::pair(std::min(scalar.range->first, value),
                                                std::max(scalar.range->second, value))
                                    : std::pair(value, value);
    }
}

// A scalar of the file and a computed one of the same name, of other lines, are two.
void add(OfKind& found, const Findings& findings, const Track& track, bool withSlow)
{
    ++found.lines;
    for (const std::string& name : scalarNames(track)) {
        const auto isIt = [&](const Listed& scalar) {
            return scalar.name == name && scalar.isGiven == isGiven(track, name);
        };
        auto row = std::find_if(found.scalars.begin(), found.scalars.end(), isIt);
        if (row == found.scalars.end())
            row = found.scalars.insert(row, emptyRow(findings, track, name));
        ++row->lines;
        if (withSlow || !isSlow(track, name))
            widen(*row, track);
    }
}

std::vector<OfKind> listScalars(const Findings& findings, double angstrom, bool withSlow)
{
    const std::vector<Track> tracks = tracksOf(findings.data, angstrom);
    std::vector<OfKind> all;
    for (const KindName& kind : KINDS) {
        OfKind found{kind, 0, {}};
        for (const Track& track : tracks)
            if (track.kind == kind.kind)
                add(found, findings, track, withSlow);
        if (found.lines > 0)
            all.push_back(std::move(found));
    }
    return all;
}

// Whether writhe_density is computed.
bool isSlowTold(const Configuration& data, double mostEdgePairs)
{
    return edgePairsOfScalars(tracksOf(data)) <= mostEdgePairs;
}

std::string slowLeftOut(bool withSlow)
{
    return withSlow ? ""
                    : "the range of writhe_density is left out: of so many points it takes long; "
                      "--all-numbers tells it all the same";
}

// Of a text in UTF-8.
std::size_t charactersOf(const std::string& text)
{
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    return std::size_t(std::count_if(text.begin(), text.end(), isFirstByte));
}

// Blanks behind, for a column of so many characters.
std::string padded(const std::string& text, std::size_t width)
{
    const std::size_t length = charactersOf(text);
    return text + std::string(width > length ? width - length : 0, ' ') + "  ";
}

// For all names but those that few files have.
std::size_t widthOfNames(const std::vector<Listed>& scalars)
{
    const std::size_t least = 14, most = 40;
    std::size_t width = least;
    for (const Listed& scalar : scalars)
        width = std::max(width, charactersOf(onOneLine(scalar.name)));
    return std::min(width, most);
}

std::string inWords(const std::pair<double, double>& range)
{
    const int digits = 4;
    return shortNumber(range.first, digits) + " to " + shortNumber(range.second, digits);
}

std::string rowOf(const Listed& scalar, std::size_t lines, std::size_t width)
{
    const std::string range = scalar.range ? inWords(*scalar.range) : "none";
    std::string text = "  " + padded(onOneLine(scalar.name), width) + padded(scalar.unit, 8) +
                       padded(scalar.of, 5) + padded(range, 24) + scalar.meaning;
    if (scalar.lines < lines)
        text += ", " + std::to_string(scalar.lines) + " of " + std::to_string(lines);
    return text + "\n";
}

} // namespace

std::string describeScalars(const Findings& findings, double angstrom, double mostEdgePairs)
{
    const bool withSlow = isSlowTold(findings.data, mostEdgePairs);
    std::string text;
    for (const OfKind& kind : listScalars(findings, angstrom, withSlow)) {
        const std::size_t width = widthOfNames(kind.scalars);
        text += std::string(kind.kind.heading) + ":\n  " + padded("name", width) +
                padded("unit", 8) + padded("of", 5) + padded("range", 24) + "meaning\n";
        for (const Listed& scalar : kind.scalars)
            text += rowOf(scalar, kind.lines, width);
    }
    if (text.empty())
        text = "found no rod, birod or DNA, which alone have scalars\n";
    for (const std::string& notice : noticesOf(findings, slowLeftOut(withSlow)))
        text += "note: " + notice + "\n";
    return text;
}

std::string scalarsToJson(const Findings& findings, double angstrom, double mostEdgePairs)
{
    const bool withSlow = isSlowTold(findings.data, mostEdgePairs);
    Json scalars = Json::array();
    for (const OfKind& kind : listScalars(findings, angstrom, withSlow))
        for (const Listed& scalar : kind.scalars)
            scalars.push_back({{"line", kind.kind.ofOne},
                               {"name", scalar.name},
                               {"unit", scalar.unit},
                               {"of", scalar.of},
                               {"min", scalar.range ? Json(scalar.range->first) : Json()},
                               {"max", scalar.range ? Json(scalar.range->second) : Json()},
                               {"lines", scalar.lines},
                               {"meaning", scalar.meaning}});
    const Json json = {{"frame", findings.frame},
                       {"scalars", scalars},
                       {"notices", noticesOf(findings, slowLeftOut(withSlow))}};
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace strandview
