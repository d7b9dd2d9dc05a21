// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotting/plotFrames.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

#include <strandview/analysis/lineNumbers.h>
#include <strandview/analysis/scalars.h>
#include <strandview/formats/text/wording.h>

#include "scene/backbones.h"
#include "scene/ownColours.h"

namespace strandview {

namespace {

using Names = std::vector<std::string>;
using Values = std::vector<double>;

const double NONE = std::numeric_limits<double>::quiet_NaN();

bool isMain(const Track& track)
{
    return track.kind == Track::Kind::DNA_PAIRS || track.kind == Track::Kind::BIROD_AVERAGE ||
           (track.rod && !track.rod->isBackbone);
}

bool isCurve(const Track& track) { return !track.dna; }

std::string joined(const Names& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + onOneLine(name);
    return text;
}

void addNew(Names& names, const std::string& name)
{
    if (std::find(names.begin(), names.end(), name) == names.end())
        names.push_back(name);
}

std::string unknownScalar(const std::string& name, const Names& known)
{
    return "--scalars: found " + inQuotes(name) + ", expected some of " + joined(known);
}

bool has(const Track& track, const std::string& name)
{
    const Names names = scalarNames(track);
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool hasAny(const Track& track, const Names& names)
{
    return std::any_of(names.begin(), names.end(),
                       [&track](const std::string& name) { return has(track, name); });
}

// "twist" of a rod and of a DNA: both units.
void addUnit(std::string& units, const std::string& unit)
{
    if (units.empty())
        units = unit;
    else if (!unit.empty() && (", " + units + ",").find(", " + unit + ",") == std::string::npos)
        units += ", " + unit;
}

double largestOf(const Values& rounding)
{
    double largest = 0;
    for (const double value : rounding)
        if (std::isfinite(value))
            largest = std::max(largest, value);
    return largest;
}

Values placesOf(const Track& track, PlotAxis axis)
{
    if (axis == PlotAxis::ARC_LENGTH)
        return arcLengthsOf(track);
    Values numbers(track.points.size());
    std::iota(numbers.begin(), numbers.end(), isCurve(track) ? 0 : 1);
    return numbers;
}

void addPanel(Plot& plot, const std::vector<Track>& tracks, const std::string& name)
{
    PlotPanel panel{name, "", {}, 0};
    for (const Track& track : tracks) {
        const auto values = has(track, name) ? findScalar(track, name) : std::nullopt;
        panel.values.push_back(values.value_or(Values()));
        if (!values)
            continue;
        addUnit(panel.unit, unitOf(track, name));
        panel.rounding = std::max(panel.rounding, largestOf(roundingOf(track, name)));
    }
    plot.panels.push_back(std::move(panel));
}

std::string numberName(const std::vector<Track>& tracks)
{
    const auto curves = std::count_if(tracks.begin(), tracks.end(), isCurve);
    if (curves == 0)
        return "pair (from 1)";
    return std::size_t(curves) == tracks.size() ? "point (from 0)"
                                                : "point (from 0) or pair (from 1)";
}

// Writhe and twist of what is closed, else what an open chain is told by.
Names standardNumbers(const std::vector<Track>& tracks)
{
    const bool isClosed = std::any_of(tracks.begin(), tracks.end(),
                                      [](const Track& track) { return track.isClosed; });
    return isClosed ? Names{"writhe", "twist"} : Names{"endToEnd", "radiusOfGyration"};
}

} // namespace

std::vector<Track> plottedTracks(const Configuration& configuration, double angstrom)
{
    std::vector<Track> chosen, backbones;
    for (const Track& track : tracksOf(configuration, angstrom)) {
        if (isMain(track))
            chosen.push_back(track);
        else if (track.rod)
            backbones.push_back(track);
    }
    return chosen.empty() ? backbones : chosen;
}

const Track* findTrack(const std::vector<Track>& tracks, const LineId& id)
{
    const auto found = std::find_if(tracks.begin(), tracks.end(),
                                    [&id](const Track& track) { return idOf(track) == id; });
    return found == tracks.end() ? nullptr : &*found;
}

Names plottableScalars(const Configuration& configuration)
{
    Names names;
    for (const Track& track : plottedTracks(configuration, 1)) {
        for (const std::string& name : scalarNames(track))
            addNew(names, name);
    }
    return names;
}

Names standardScalars(const Configuration& configuration)
{
    const std::vector<Track> tracks = plottedTracks(configuration, 1);
    if (std::none_of(tracks.begin(), tracks.end(), isCurve))
        return {"roll", "twist"};
    const bool haveFrames = std::any_of(tracks.begin(), tracks.end(), [](const Track& track) {
        return isCurve(track) && (!track.rod || track.rod->hasFrames);
    });
    return {"curvature", haveFrames ? "kappa3" : "torsion"};
}

std::optional<Plot> plotOf(const Configuration& configuration, const Style& style,
                           const PlotRequest& request, std::string& error)
{
    const Names names = request.scalars.empty() ? standardScalars(configuration) : request.scalars;
    std::vector<Track> tracks;
    for (const Track& track : plottedTracks(configuration, style.dna.angstrom)) {
        if (hasAny(track, names))
            tracks.push_back(track);
    }
    const Names known = plottableScalars(configuration);
    if (known.empty()) {
        error = "--plot: found no rod, birod or DNA, expected one";
        return std::nullopt;
    }
    for (const std::string& name : names) {
        if (std::find(known.begin(), known.end(), name) == known.end()) {
            error = unknownScalar(name, known);
            return std::nullopt;
        }
    }
    const bool areCurves = std::any_of(tracks.begin(), tracks.end(), isCurve);
    const PlotAxis axis =
        request.against.value_or(areCurves ? PlotAxis::ARC_LENGTH : PlotAxis::NUMBER);
    Plot plot;
    plot.xName = axis == PlotAxis::ARC_LENGTH ? "arc length" : numberName(tracks);
    const Molecules molecules(configuration);
    for (const Track& track : tracks)
        plot.lines.push_back({idOf(track), titleOf(track),
                              colourOf(track, configuration, style, molecules),
                              placesOf(track, axis)});
    for (const std::string& name : names)
        addPanel(plot, tracks, name);
    return plot;
}

std::optional<Plot> outlineOf(const LineId& id, const Configuration& configuration,
                              const Style& style, const Names& scalars)
{
    const std::vector<Track> tracks = plottedTracks(configuration, style.dna.angstrom);
    const Track* const track = findTrack(tracks, id);
    if (!track)
        return std::nullopt;
    Plot plot;
    plot.lines.push_back({id,
                          titleOf(*track),
                          colourOf(*track, configuration, style, Molecules(configuration)),
                          {}});
    for (const std::string& name : scalars) {
        const double rounding = has(*track, name) ? largestOf(roundingOf(*track, name)) : 0;
        plot.panels.push_back({name, unitOf(*track, name), {{}}, rounding});
    }
    return plot;
}

// Time

TimePlot::TimePlot(PlotRequest plotRequest) : request(std::move(plotRequest)) {}

void TimePlot::begin(const Configuration& configuration, const Style& style)
{
    hasBegun = true;
    known = plottableScalars(configuration);
    if (request.scalars.empty())
        request.scalars = request.at
                              ? standardScalars(configuration)
                              : standardNumbers(plottedTracks(configuration, style.dna.angstrom));
    for (const std::string& name : request.scalars) {
        const LineQuantity* const number = request.at ? nullptr : findLineQuantity(name);
        plot.panels.push_back({name, number ? number->unit : "", {}, 0});
    }
}

void TimePlot::add(const Configuration& configuration, const Style& style, std::size_t frame,
                   std::optional<double> time)
{
    if (!hasBegun)
        begin(configuration, style);
    addMissing(frame, time);
    for (const Track& track : plottedTracks(configuration, style.dna.angstrom)) {
        const std::vector<std::optional<double>> numbers = numbersOf(track);
        const bool isAny = std::any_of(numbers.begin(), numbers.end(),
                                       [](const auto& number) { return number.has_value(); });
        if (request.at && hasAny(track, request.scalars)) {
            places = std::max(places, track.points.size());
            areNumbered = areNumbered || !isCurve(track);
        }
        if (!isAny)
            continue;
        const std::size_t line = lineOf(track, configuration, style);
        for (std::size_t i = 0; i < numbers.size(); ++i) {
            if (!numbers[i])
                continue;
            PlotPanel& panel = plot.panels[i];
            panel.values[line].resize(frames.size(), NONE);
            panel.values[line].back() = *numbers[i];
            if (request.at)
                addUnit(panel.unit, unitOf(track, panel.name));
        }
    }
}

void TimePlot::addMissing(std::size_t frame, std::optional<double> time)
{
    frames.push_back(double(frame));
    times.push_back(time.value_or(NONE));
    areTimed = areTimed && time && std::isfinite(*time);
}

std::size_t TimePlot::lineOf(const Track& track, const Configuration& configuration,
                             const Style& style)
{
    const LineId id = idOf(track);
    const auto found = std::find_if(plot.lines.begin(), plot.lines.end(),
                                    [&id](const PlotLine& line) { return line.id == id; });
    if (found != plot.lines.end())
        return std::size_t(found - plot.lines.begin());
    plot.lines.push_back(
        {id, titleOf(track), colourOf(track, configuration, style, Molecules(configuration)), {}});
    for (PlotPanel& panel : plot.panels)
        panel.values.emplace_back();
    return plot.lines.size() - 1;
}

std::vector<std::optional<double>> TimePlot::numbersOf(const Track& track) const
{
    if (!request.at)
        return lineNumbersOf(track, request.scalars);
    std::vector<std::optional<double>> numbers;
    const long long place = *request.at - (isCurve(track) ? 0 : 1);
    const bool isThere = place >= 0 && place < (long long)track.points.size();
    for (const std::string& name : request.scalars) {
        const auto values = isThere && has(track, name) ? findScalar(track, name) : std::nullopt;
        numbers.push_back(values ? std::optional((*values)[std::size_t(place)]) : std::nullopt);
    }
    return numbers;
}

std::string TimePlot::faultOf(std::size_t panel) const
{
    const std::string& name = plot.panels[panel].name;
    if (!request.at)
        return "--scalars: found " + inQuotes(name) + ", which no line of these frames has";
    if (places == 0 || std::find(known.begin(), known.end(), name) == known.end())
        return unknownScalar(name, known);
    const std::size_t first = areNumbered ? 1 : 0;
    return "--at: found " + std::to_string(*request.at) + ", expected " + std::to_string(first) +
           " to " + std::to_string(places - 1 + first);
}

std::optional<Plot> TimePlot::finish(std::string& error) const
{
    for (std::size_t i = 0; i < plot.panels.size(); ++i) {
        const auto& values = plot.panels[i].values;
        const bool isEmpty =
            std::all_of(values.begin(), values.end(), [](const Values& v) { return v.empty(); });
        if (isEmpty) {
            error = faultOf(i);
            return std::nullopt;
        }
    }
    if (plot.lines.empty()) {
        error = "--plot: found no rod, birod or DNA, expected one";
        return std::nullopt;
    }
    Plot whole = plot;
    // Times of a run that was begun again go back: those are no axis.
    const bool isAxis = areTimed && std::is_sorted(times.begin(), times.end());
    whole.xName = isAxis ? "time" : "frame";
    for (PlotLine& line : whole.lines)
        line.x = isAxis ? times : frames;
    for (PlotPanel& panel : whole.panels) {
        for (Values& values : panel.values)
            if (!values.empty())
                values.resize(frames.size(), NONE);
    }
    return whole;
}

std::string checkLineNumbers(const PlotRequest& request)
{
    Names known;
    for (const LineQuantity& quantity : lineQuantities())
        known.push_back(quantity.name);
    for (const std::string& name : request.scalars) {
        if (!findLineQuantity(name))
            return unknownScalar(name, known) +
                   ": numbers of whole lines against time; --at N takes scalars";
    }
    return "";
}

} // namespace strandview
