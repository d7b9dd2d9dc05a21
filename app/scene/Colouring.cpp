// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Colouring.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include <SoGeneralScene.h>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/nearestPoints.h>
#include <strandview/analysis/scalars.h>
#include <strandview/formats/text/wording.h>

#include "request/conversions.h"
#include "request/limits.h"
#include "scene/Progress.h"
#include "scene/Ticks.h"

namespace strandview {

namespace {

using Values = std::vector<double>;

const double NONE = std::numeric_limits<double>::quiet_NaN();

// What differs by less, in parts of the greatest, is one number.
const double SAME_NUMBER = 1e-9;

// Those whose places have colours: rods, the curves of birods, pairs of DNA.
std::vector<Track> colouredTracks(const Configuration& configuration, double angstrom)
{
    std::vector<Track> coloured;
    for (const Track& track : tracksOf(configuration, angstrom))
        if (track.kind != Track::Kind::DNA_STRAND)
            coloured.push_back(track);
    return coloured;
}

// The names of all scalars, those of files first.
std::vector<std::string> availableScalars(const std::vector<Track>& tracks)
{
    std::vector<std::string> ofFiles, computed;
    std::set<std::pair<bool, std::string>> known; // of thousands of lines
    for (const Track& track : tracks) {
        for (const std::string& name : scalarNames(track)) {
            const bool isComputed = findQuantity(track.kind, name);
            if (known.insert({isComputed, name}).second)
                (isComputed ? computed : ofFiles).push_back(name);
        }
    }
    ofFiles.insert(ofFiles.end(), computed.begin(), computed.end());
    return ofFiles;
}

std::string inALine(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

std::string optionText(const Options& options)
{
    return "--colour-by " + onOneLine(*options.colourBy);
}

// One line if the limits, of which one at most is given, are none; or nothing.
std::string checkLimits(const Options& options, const Limits& limits, const Limits& values)
{
    if (isRange(limits.min, limits.max))
        return "";
    if (values.magnitude() > LARGEST_LIMIT)
        return optionText(options) + ": found values from " + formatted(values.min) + " to " +
               formatted(values.max) + ", expected magnitudes up to " + formatted(LARGEST_LIMIT) +
               ", or --range";
    const std::string found =
        "--range: found '" + (options.rangeMin ? formatted(limits.min) + ":" : "") +
        (options.rangeMax ? ":" + formatted(limits.max) : "") + "', expected ";
    if (limits.magnitude() > LARGEST_LIMIT)
        return found + "a magnitude up to " + formatted(LARGEST_LIMIT);
    const std::string ofValues = " value of " + inQuotes(*options.colourBy);
    if (options.rangeMin)
        return found + "MIN below " + formatted(values.max) + ", the largest" + ofValues;
    return found + "MAX above " + formatted(values.min) + ", the smallest" + ofValues;
}

// Those that colours of data replace. Of hidden tubes and ribbons it is told elsewhere.
void noteIgnoredColours(const Options& options, const Colouring& colouring, ReadReport& report)
{
    const bool allColoured = std::none_of(colouring.places.begin(), colouring.places.end(),
                                          [](const Values& places) { return places.empty(); });
    if (!allColoured)
        return;
    std::string ignored;
    if (options.tubeColour && options.showTube)
        ignored = "--tube-colour";
    if (options.ribbonColour && options.showRibbon.value_or(true))
        ignored += (ignored.empty() ? "" : " and ") + std::string("--ribbon-colour");
    if (!ignored.empty())
        report.notices.push_back(optionText(options) + ": leaves " + ignored + " without effect");
}

void note(const Options& options, const Colouring& colouring, const ValueSummary& summary,
          ReadReport& report)
{
    const auto tell = [&](const std::string& text) {
        report.notices.push_back(optionText(options) + ": " + text);
    };
    if (!colouring.constant.empty())
        tell("found " + colouring.constant + " everywhere, shown as one colour");
    if (summary.missing > 0)
        tell("found " + counted(summary.missing, "value") + " that " +
             (summary.missing == 1 ? "is" : "are") + " no number, shown in " +
             (options.nanColour ? "--nan-colour" : "grey"));
    const auto tellWithout = [&](const char* noun, std::size_t first, std::size_t count,
                                 std::size_t each) {
        std::size_t without = 0;
        for (std::size_t i = 0; i < count; ++i)
            without += colouring.places[first + each * i].empty() ? 1 : 0;
        if (without > 0)
            tell("found " + counted(without, noun) + " of " + std::to_string(count) +
                 " without it, shown in " +
                 (without == 1 ? "its own colours" : "their own colours"));
    };
    tellWithout("rod", 0, colouring.rods, 1);
    tellWithout("birod", colouring.rods, colouring.birods, 3);
    const std::size_t beforeDna = colouring.rods + 3 * colouring.birods;
    tellWithout("double strand", beforeDna, colouring.places.size() - beforeDna, 1);
}

// Nothing if it goes by the unit of the points, which no file tells.
std::string absoluteUnitOf(const Quantity* quantity)
{
    const bool isAbsolute = quantity && (quantity->unit == "°" || quantity->unit == "Å");
    return isAbsolute ? quantity->unit : "";
}

ColourMapper toMapper(const ColourMap& map)
{
    std::vector<ColourMapper::Colour> colours;
    for (const Colour& colour : map.colours)
        colours.push_back(toVector(colour));
    return ColourMapper(0, 1, colours);
}

// The values at the ends of the colours. Where none is given, the neutral middle of a diverging
// map is zero if there may be something on either side of it.
Limits chooseLimits(const Options& options, const ColourMap& colours, const ValueSummary& summary,
                    bool isSigned)
{
    const bool isGiven = options.rangeMin || options.rangeMax;
    const bool isAroundNone = colours.isDiverging && (isSigned || summary.hasBothSigns());
    if (!isGiven && (options.symmetricRange || isAroundNone))
        return {-summary.values.magnitude(), summary.values.magnitude()};
    return {options.rangeMin.value_or(summary.values.min),
            options.rangeMax.value_or(summary.values.max)};
}

// A value's place on the ramp, and not so far beyond its ends that a spline through it
// would overflow.
double placeOf(double value, const Limits& limits)
{
    if (!std::isfinite(value))
        return NONE;
    const double farAway = 1e6;
    return std::clamp((value - limits.min) / (limits.max - limits.min), -farAway, farAway);
}

void noteWhatThereIs(Colouring& colouring)
{
    for (const Values& rod : colouring.places) {
        for (const double place : rod) {
            colouring.isBelow = colouring.isBelow || place < 0;
            colouring.isAbove = colouring.isAbove || place > 1;
            colouring.isMissing = colouring.isMissing || std::isnan(place);
        }
    }
}

// Values become places.
void place(Colouring& colouring)
{
    const Limits limits{colouring.min, colouring.max};
    for (Values& rod : colouring.places) {
        for (double& value : rod)
            value = placeOf(value, limits);
    }
    noteWhatThereIs(colouring);
}

// A value that may be off by `rounding`: in the middle of the ramp if it may be the constant.
double placeBesideConstant(const Colouring& colouring, double value, double rounding)
{
    if (!std::isfinite(value))
        return NONE;
    const double slack =
        SAME_NUMBER * std::max(std::abs(colouring.constantMin), std::abs(colouring.constantMax));
    if (value + rounding < colouring.constantMin - slack)
        return -1;
    return value - rounding > colouring.constantMax + slack ? 2 : 0.5;
}

bool isOfPairs(const Track& track, const std::string& name)
{
    const Quantity* const quantity = findQuantity(track.kind, name);
    return quantity && quantity->place != ScalarPlace::POINT;
}

// Of values of findValues(). Those that are of pairs have that of pairs, in backbones, too.
Values roundingOfValues(const std::vector<Track>& tracks, std::size_t index,
                        const std::string& name)
{
    const Track& track = tracks[index];
    if (!track.rod || isGiven(track, name))
        return roundingOf(track, name);
    for (const Track& other : tracks)
        if (isOfPairs(other, name))
            return Values(track.points.size(), roundingOf(other, name).front());
    return roundingOf(track, name);
}

void placeBesideConstant(Colouring& colouring, const std::vector<Track>& tracks)
{
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        Values& places = colouring.places[i];
        if (places.empty())
            continue;
        const Values rounding = roundingOfValues(tracks, i, colouring.name);
        for (std::size_t point = 0; point < places.size(); ++point)
            places[point] = placeBesideConstant(colouring, places[point], rounding[point]);
    }
    noteWhatThereIs(colouring);
}

// All are in the middle of the ramp.
void placeConstant(Colouring& colouring, const ValueSummary& summary)
{
    colouring.constant = summary.constantText();
    colouring.constantMin = std::min(summary.agreedMin, summary.agreedMax);
    colouring.constantMax = std::max(summary.agreedMin, summary.agreedMax);
    for (Values& rod : colouring.places) {
        for (double& value : rod)
            value = std::isfinite(value) ? 0.5 : NONE;
    }
    noteWhatThereIs(colouring);
}

// What is shown by a name, or null: what a file calls by one may be anything, unless a comparison
// gave it. A number of pairs or steps is meant where there is one, as in findValues().
const Quantity* meaningOf(const std::vector<Track>& tracks, const std::string& name,
                          bool isCompared)
{
    const Quantity* meant = nullptr;
    for (const Track& track : tracks) {
        if (isGiven(track, name))
            return isCompared ? findComparisonQuantity(name) : nullptr;
        if (!meant || isOfPairs(track, name))
            meant = findQuantity(track.kind, name);
    }
    return meant;
}

// The last pair of an open DNA, from which no step goes on, is shown as the one before it.
Values withLastPair(const Track& track, const std::string& name, Values values)
{
    const Quantity* const quantity = findQuantity(track.kind, name);
    if (quantity && quantity->place == ScalarPlace::STEP && values.size() > 1 && !track.isClosed)
        values.back() = values[values.size() - 2];
    return values;
}

// Farther from the axis no phosphate of a double strand is.
const double REACH_OF_PAIRS = 20; // ångström

// Of the backbone of a DNA that is a rod of its own: at each point that of the nearest pair of its
// molecule, or no number where none is near; nothing without such a DNA.
Values ofNearestPairs(const Rod& backbone, const std::vector<Track>& tracks,
                      const std::vector<Values>& values)
{
    std::vector<algebra3d::Vector3<double>> pairs;
    Values ofPairs;
    double reach = 0;
    for (std::size_t i = 0; i < tracks.size(); ++i) {
        const Track& track = tracks[i];
        if (!track.dna || track.dna->molecule != backbone.molecule)
            continue;
        pairs.insert(pairs.end(), track.points.begin(), track.points.end());
        ofPairs.insert(ofPairs.end(), values[i].begin(), values[i].end());
        reach = REACH_OF_PAIRS * track.angstrom;
    }
    Values nearest;
    if (!pairs.empty())
        for (const auto& pair : nearestPoints(backbone.points, pairs, reach))
            nearest.push_back(pair ? ofPairs[*pair] : NONE);
    return nearest;
}

bool anyIsOfPairs(const std::vector<Track>& tracks, const std::string& name)
{
    return std::any_of(tracks.begin(), tracks.end(),
                       [&](const Track& track) { return isOfPairs(track, name); });
}

// The values of each, not yet their places. A number of pairs or steps is another one than that of
// the same name of rods; backbones have that of their pairs. The strands of a birod have what its
// average alone has. Once it is stopped, none of the others.
std::vector<Values> findValues(const std::vector<Track>& tracks, const std::string& name,
                               const Progress& progress)
{
    const bool areOfPairs = anyIsOfPairs(tracks, name);
    const auto goOn = [&progress] { return !progress.isStopped(); };
    std::vector<Values> all;
    for (const Track& track : tracks) {
        if (progress.isStopped())
            break;
        const bool isMeant = !areOfPairs || isOfPairs(track, name) || isGiven(track, name);
        all.push_back(
            isMeant ? withLastPair(track, name, findScalar(track, name, goOn).value_or(Values()))
                    : Values());
        if (track.kind == Track::Kind::BIROD_STRAND && all.back().empty())
            all.back() = all[all.size() - 1 - std::size_t(track.strand)];
    }
    all.resize(tracks.size());
    for (std::size_t i = 0; areOfPairs && i < tracks.size() && !progress.isStopped(); ++i) {
        const Rod* const rod = tracks[i].rod;
        if (rod && rod->isBackbone && rod->molecule > 0 && all[i].empty())
            all[i] = ofNearestPairs(*rod, tracks, all);
    }
    return all;
}

ValueSummary summarise(const std::vector<Values>& values, const std::vector<Track>& tracks,
                       const std::string& name, const Progress& progress)
{
    ValueSummary summary;
    for (std::size_t i = 0; i < tracks.size() && !progress.isStopped(); ++i) {
        if (values[i].empty())
            continue;
        const Values rounding = roundingOfValues(tracks, i, name);
        for (std::size_t point = 0; point < values[i].size(); ++point)
            summary.include(values[i][point], rounding[point]);
    }
    return summary;
}

const std::string& originOf(const Track& track)
{
    return track.rod ? track.rod->origin : track.dna ? track.dna->origin : track.birod->origin;
}

// One line if there is nothing to colour by, or nothing.
std::string checkValues(const Options& options, const std::vector<Track>& tracks,
                        const std::vector<Values>& values, const ValueSummary& summary)
{
    const bool found = std::any_of(values.begin(), values.end(),
                                   [](const Values& ofTrack) { return !ofTrack.empty(); });
    if (!found)
        return originOf(tracks.front()) + ": found no scalar " + inQuotes(*options.colourBy) +
               ", expected one of " + inALine(availableScalars(tracks));
    if (summary.values.isEmpty())
        return optionText(options) + ": found no value that is a number, expected one";
    return "";
}

} // namespace

void ValueSummary::include(double value, double rounding)
{
    if (!std::isfinite(value)) {
        ++missing;
        return;
    }
    values.include(value);
    agreedMin = std::max(agreedMin, value - rounding);
    agreedMax = std::min(agreedMax, value + rounding);
    isRounding = isRounding && std::abs(value) <= rounding;
    isNegative = isNegative || value < -rounding;
    isPositive = isPositive || value > rounding;
}

void ValueSummary::include(const ValueSummary& others)
{
    values.min = std::min(values.min, others.values.min);
    values.max = std::max(values.max, others.values.max);
    agreedMin = std::max(agreedMin, others.agreedMin);
    agreedMax = std::min(agreedMax, others.agreedMax);
    isRounding = isRounding && others.isRounding;
    isNegative = isNegative || others.isNegative;
    isPositive = isPositive || others.isPositive;
    missing += others.missing;
}

bool ValueSummary::isConstant() const
{
    return agreedMin - agreedMax <= std::max(SAME_NUMBER * values.magnitude(), 1e-300);
}

bool ValueSummary::hasBothSigns() const
{
    const double nothing = SAME_NUMBER * values.magnitude();
    return isNegative && isPositive && values.min < -nothing && values.max > nothing;
}

std::string ValueSummary::constantText() const
{
    if (isRounding)
        return "0";
    const int mostDigits = 9;
    const double number = agreedMin / 2 + agreedMax / 2;
    const double doubt = std::abs(agreedMax - agreedMin) / 2;
    const double digits = std::floor(std::log10(std::abs(number) / doubt));
    return numberText(number, digits > 1 ? int(std::min<double>(digits, mostDigits)) : 1);
}

ValueSummary summarise(const Configuration& configuration, const std::string& name, double angstrom,
                       const Progress& progress)
{
    const std::vector<Track> tracks = colouredTracks(configuration, angstrom);
    return summarise(findValues(tracks, name, progress), tracks, name, progress);
}

std::vector<std::string> namesOfScalars(const Configuration& configuration, double angstrom)
{
    return availableScalars(colouredTracks(configuration, angstrom));
}

std::optional<Colouring> makeColouring(const Options& options, const Configuration& configuration,
                                       ReadReport& report, const ValueSummary* ofOthers,
                                       const Progress& progress)
{
    const std::vector<Track> tracks = colouredTracks(configuration, options.dna.angstrom);
    if (tracks.empty()) {
        report.error = "--colour-by: found no rod to colour, and no DNA, expected one";
        return std::nullopt;
    }
    Colouring colouring;
    colouring.name = *options.colourBy;
    colouring.rods = configuration.rods.size();
    colouring.birods = configuration.birods.size();
    colouring.angstrom = options.dna.angstrom;
    const Quantity* const quantity = meaningOf(tracks, colouring.name, options.compare.has_value());
    colouring.unit = absoluteUnitOf(quantity);
    const bool isSigned = quantity && quantity->isSigned;
    const ColourMap colours = options.colours.value_or(defaultColourMap(isSigned));
    colouring.map = colours;
    colouring.ramp = toMapper(colours);
    colouring.below = options.belowColour;
    colouring.above = options.aboveColour;
    colouring.none = options.nanColour.value_or(NO_VALUE_COLOUR);
    colouring.places = findValues(tracks, colouring.name, progress);
    ValueSummary summary = summarise(colouring.places, tracks, colouring.name, progress);
    if (progress.isStopped()) {
        report.error = "colouring was stopped";
        return std::nullopt;
    }
    if (ofOthers)
        summary.include(*ofOthers);
    report.error = checkValues(options, tracks, colouring.places, summary);
    if (!report.error.empty())
        return std::nullopt;
    if (!options.rangeMin && !options.rangeMax && summary.isConstant()) {
        placeConstant(colouring, summary);
    } else {
        const Limits limits = chooseLimits(options, colours, summary, isSigned);
        report.error = checkLimits(options, limits, summary.values);
        if (!report.error.empty())
            return std::nullopt;
        colouring.min = limits.min;
        colouring.max = limits.max;
        place(colouring);
    }
    note(options, colouring, summary, report);
    noteIgnoredColours(options, colouring, report);
    return colouring;
}

Colouring followColouring(const Colouring& first, const Configuration& next,
                          const Progress& progress)
{
    Colouring colouring = first;
    colouring.isBelow = colouring.isAbove = colouring.isMissing = false;
    const std::vector<Track> tracks = colouredTracks(next, first.angstrom);
    colouring.rods = next.rods.size();
    colouring.birods = next.birods.size();
    colouring.places = findValues(tracks, first.name, progress);
    if (first.constant.empty())
        place(colouring);
    else
        placeBesideConstant(colouring, tracks);
    return colouring;
}

Colour PlaceColours::at(double place) const
{
    if (std::isnan(place))
        return none;
    if (place < 0 && below)
        return *below;
    if (place > 1 && above)
        return *above;
    ColourMapper::Colour colour;
    ramp.getColour(place, colour);
    return {float(colour.x), float(colour.y), float(colour.z)};
}

std::vector<Colour> coloursOf(const PlaceColours& colours, const std::vector<double>& places)
{
    std::vector<Colour> all;
    for (const double place : places)
        all.push_back(colours.at(place));
    return all;
}

// Rows

namespace {

// The point nearest to each of some ascending arc lengths; of two, the one before.
std::vector<std::size_t> nearestPoints(const Values& arcLengths, const Values& at)
{
    std::vector<std::size_t> nearest;
    std::size_t point = 0;
    for (const double s : at) {
        while (point + 1 < arcLengths.size() &&
               std::abs(arcLengths[point + 1] - s) < std::abs(arcLengths[point] - s))
            ++point;
        nearest.push_back(point);
    }
    return nearest;
}

// Between two places, and at their own beyond them.
Values straight(double from, double fromPlace, double to, double toPlace, const Values& at)
{
    Values places;
    for (const double s : at) {
        const double t = std::clamp((s - from) / (to - from), 0.0, 1.0);
        places.push_back(fromPlace + (toPlace - fromPlace) * t);
    }
    return places;
}

// Points `first` to `last`, all with a place; `at` lies between them.
std::vector<SbColor> colourRun(const ColourMapper& ramp, const Values& arcLengths,
                               const Values& places, std::size_t first, std::size_t last,
                               const Values& at)
{
    if (last - first < 2 || at.size() < 3) {
        // Of three points or more, the two around the rows.
        while (last - first > 1 && arcLengths[first + 1] <= at.front())
            ++first;
        while (last - first > 1 && arcLengths[last - 1] >= at.back())
            --last;
        return SoGeneralScene::generateColours(
            &ramp, straight(arcLengths[first], places[first], arcLengths[last], places[last], at));
    }
    const auto part = [=](const Values& all) {
        return Values(all.begin() + std::ptrdiff_t(first), all.begin() + std::ptrdiff_t(last) + 1);
    };
    return SoGeneralScene::interpolateColours(&ramp, part(arcLengths), part(places), at);
}

// The place at an arc length, straight between the points around it. Where one of them has none it
// is that of the nearest.
double straightAt(const Values& arcLengths, const Values& places, std::size_t nearest, double at)
{
    const bool isBehind = at > arcLengths[nearest];
    const std::size_t other = isBehind ? nearest + 1 : nearest - 1;
    const bool hasOther = isBehind ? other < places.size() : nearest > 0;
    if (!hasOther || at == arcLengths[nearest] || std::isnan(places[other]))
        return places[nearest];
    const double share = (at - arcLengths[nearest]) / (arcLengths[other] - arcLengths[nearest]);
    return places[nearest] + share * (places[other] - places[nearest]);
}

} // namespace

void colourRows(const PlaceColours& colours, const Values& arcLengths, const Values& places,
                const Values& at, SbColor* to)
{
    const ColourMapper& ramp = colours.ramp;
    const std::vector<std::size_t> nearest = nearestPoints(arcLengths, at);
    std::size_t coloured = 0; // so many rows
    const auto colourByNearest = [&](std::size_t end) {
        ColourMapper::Colour colour;
        for (; coloured < end; ++coloured) {
            ramp.getColour(places[nearest[coloured]], colour);
            to[coloured] = toSbColor(colour);
        }
    };

    // Smooth between neighbours that all have places.
    for (std::size_t first = 0; first < places.size(); ++first) {
        if (std::isnan(places[first]))
            continue;
        std::size_t last = first;
        while (last + 1 < places.size() && !std::isnan(places[last + 1]))
            ++last;
        const auto from = std::lower_bound(at.begin(), at.end(), arcLengths[first]);
        const auto end = std::upper_bound(from, at.end(), arcLengths[last]);
        if (last > first && from != end) {
            colourByNearest(std::size_t(from - at.begin()));
            const std::vector<SbColor> run =
                colourRun(ramp, arcLengths, places, first, last, Values(from, end));
            std::copy(run.begin(), run.end(), to + (from - at.begin()));
            coloured = std::size_t(end - at.begin());
        }
        first = last;
    }
    colourByNearest(at.size());

    const bool hasOutside = colours.below || colours.above;
    for (std::size_t row = 0; row < at.size(); ++row) {
        const double ofNearest = places[nearest[row]];
        const double place = hasOutside && !std::isnan(ofNearest)
                                 ? straightAt(arcLengths, places, nearest[row], at[row])
                                 : ofNearest;
        if (std::isnan(place) || (place < 0 && colours.below) || (place > 1 && colours.above))
            to[row] = toSbColor(colours.at(place));
    }
}

} // namespace strandview
