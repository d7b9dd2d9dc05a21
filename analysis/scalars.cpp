// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/scalars.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/curveNumbers.h>
#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/helicalParameters.h>
#include <strandview/analysis/parameterRounding.h>
#include <strandview/analysis/topology.h>

namespace strandview {

namespace {

using Values = std::vector<double>;

const double NONE = std::numeric_limits<double>::quiet_NaN();
// What sums of doubles may lose, of a length, a degree or an ångström.
const double LEAST_ROUNDING = 1e-9;

// A quantity and its formula, of lines or of frames, each with its rounding.
struct Row
{
    Quantity quantity;
    Values (*ofLine)(const Line& line, const GoOn& goOn) = nullptr; // empty if it is stopped
    Values (*rounding)(const Line& line) = nullptr;
    // Of a pair to the next one, or of strand 1's base and strand 2's.
    double (*ofFrames)(const PlacedFrame& one, const PlacedFrame& other) = nullptr;
    double (*roundingOfFrames)(const PlacedFrame& one, const PlacedFrame& other,
                               const FrameRounding& rounding) = nullptr;
};

Values exact(const Line& line) { return Values(line.points.size(), 0); }

template <int component>
Values strain(const Line& line)
{
    return strains(line, component);
}

template <int component>
Values roundingOfStrain(const Line& line)
{
    return roundingOfStrains(line, component);
}

// One of the parameters that a scheme has of two frames, and its rounding.
template <auto scheme, auto member>
double partOf(const PlacedFrame& one, const PlacedFrame& other)
{
    return scheme(one, other).*member;
}

template <auto scheme, auto member>
double roundingOfPart(const PlacedFrame& one, const PlacedFrame& other,
                      const FrameRounding& rounding)
{
    return scheme(one, other, rounding).*member;
}

double bendOf(const PlacedFrame& pair, const PlacedFrame& next)
{
    const StepParameters step = stepParameters(pair, next);
    return std::hypot(step.tilt, step.roll);
}

template <Values (*formula)(const Line&)>
Values quick(const Line& line, const GoOn&)
{
    return formula(line);
}

Row line(const char* name, const char* unit, bool isSigned,
         Values (*formula)(const Line&, const GoOn&), Values (*rounding)(const Line&),
         const char* meaning)
{
    return {{name, ScalarPlace::POINT, unit, isSigned, meaning}, formula, rounding};
}

Row slow(Row row)
{
    row.quantity.isCheap = false;
    return row;
}

template <auto scheme, auto rounding, auto member>
Row ofFrames(const Quantity& quantity)
{
    Row row{quantity};
    row.ofFrames = partOf<scheme, member>;
    row.roundingOfFrames = roundingOfPart<rounding, member>;
    return row;
}

template <double PairParameters::*member>
Row pair(const char* name, const char* unit, const char* meaning)
{
    return ofFrames<pairParameters, roundingOfPair, member>(
        {name, ScalarPlace::PAIR, unit, true, meaning});
}

template <double StepParameters::*member>
Row step(const char* name, const char* unit, bool isSigned, const char* meaning)
{
    return ofFrames<stepParameters, roundingOfStep, member>(
        {name, ScalarPlace::STEP, unit, isSigned, meaning});
}

template <double HelicalParameters::*member>
Row screw(const char* name, const char* unit, bool isSigned, const char* meaning)
{
    return ofFrames<helicalParameters, roundingOfScrew, member>(
        {name, ScalarPlace::STEP, unit, isSigned, meaning});
}

Row bend(const char* name, const char* meaning)
{
    Row row = step<&StepParameters::tilt>(name, "°", false, meaning);
    row.ofFrames = bendOf;
    return row;
}

const std::vector<Row>& rows()
{
    using P = PairParameters;
    using S = StepParameters;
    using H = HelicalParameters;
    static const std::vector<Row> all = {
        line("arclength", "length", false, quick<arcLengths>, exact, "along the polygon, from 0"),
        line("curvature", "1/length", false, quick<curvatures>, roundingOfCurvatures,
             "of the circle through a point and its neighbours"),
        line("torsion", "1/length", true, quick<torsions>, roundingOfTorsions,
             "turn of that circle's plane per length"),
        line("twist", "1/length", true, quick<twistDensities>, roundingOfTwistDensities,
             "turn of d1 and d2 about d3 per length"),
        line("kappa1", "1/length", true, quick<strain<0>>, roundingOfStrain<0>,
             "bending of the material frame about d1"),
        line("kappa2", "1/length", true, quick<strain<1>>, roundingOfStrain<1>,
             "bending of the material frame about d2"),
        line("kappa3", "1/length", true, quick<strain<2>>, roundingOfStrain<2>,
             "twist of the material frame about d3"),
        slow(line("writhe_density", "1/length", true, writheDensities, roundingOfWritheDensities,
                  "Gauss's integral with the rest of the curve per length")),
        pair<&P::shear>("shear", "Å", "of the bases, along x of the pair"),
        pair<&P::stretch>("stretch", "Å", "of the bases, along y of the pair"),
        pair<&P::stagger>("stagger", "Å", "of the bases, along z of the pair"),
        pair<&P::buckle>("buckle", "°", "of the bases, about x of the pair"),
        pair<&P::propeller>("propeller", "°", "of the bases, about y of the pair"),
        pair<&P::opening>("opening", "°", "of the bases, about z of the pair"),
        step<&S::shift>("shift", "Å", true, "to the next pair, along x half-way"),
        step<&S::slide>("slide", "Å", true, "to the next pair, along y half-way"),
        step<&S::rise>("rise", "Å", false, "to the next pair, along z half-way"),
        step<&S::tilt>("tilt", "°", true, "to the next pair, about x half-way"),
        step<&S::roll>("roll", "°", true, "to the next pair, about y half-way"),
        step<&S::twist>("twist", "°", false, "to the next pair, about z half-way"),
        bend("bend", "between z of a pair and of the next one"),
        screw<&H::xDisplacement>("x_displacement", "Å", true,
                                 "from the step's screw axis, along x"),
        screw<&H::yDisplacement>("y_displacement", "Å", true,
                                 "from the step's screw axis, along y"),
        screw<&H::rise>("helical_rise", "Å", false, "along the step's screw axis"),
        screw<&H::inclination>("inclination", "°", true,
                               "of the pair to the step's screw axis, about x"),
        screw<&H::tip>("tip", "°", true, "of the pair to the step's screw axis, about y"),
        screw<&H::twist>("helical_twist", "°", false, "about the step's screw axis"),
    };
    return all;
}

// "twist" of the pairs of a DNA is that of its steps, not that of a line.
bool isOf(const Row& row, Track::Kind kind)
{
    const bool isOfPairs = kind == Track::Kind::DNA_PAIRS;
    return row.ofLine ? !isOfPairs || row.quantity.name != "twist" : isOfPairs;
}

const Row* findRow(Track::Kind kind, const std::string& name)
{
    const auto row = std::find_if(rows().begin(), rows().end(), [&](const Row& candidate) {
        return candidate.quantity.name == name && isOf(candidate, kind);
    });
    return row == rows().end() ? nullptr : &*row;
}

const Scalar* findGiven(const Track& track, const std::string& name)
{
    for (const Scalar& scalar : givenScalars(track))
        if (scalar.name == name)
            return &scalar;
    return nullptr;
}

// Calls a formula for the line of a track: that of closed DNA, whose last pair is another than its
// first, with the first behind it, for which there is no value then.
template <typename Formula>
Values alongLine(const Track& track, Formula formula)
{
    if (track.points.size() < 2)
        return Values(track.points.size(), 0);
    if (!track.isClosed || !track.dna)
        return formula(Line{track.points, track.rotations, track.isClosed});
    auto rotations = track.rotations;
    rotations.push_back(rotations.front());
    const auto points = curveOf(track);
    Values values = formula(Line{points, rotations, true});
    if (!values.empty()) // it was not stopped
        values.pop_back();
    return values;
}

// Lengths in ångström.
double inUnit(const Quantity& quantity, double value, double angstrom)
{
    return quantity.unit == "Å" ? value / angstrom : value;
}

double lengthOf(const Track& track)
{
    return alongLine(track, [](const Line& line) { return arcLengths(line); }).back();
}

FrameRounding roundingBetween(const std::vector<algebra3d::Vector3<double>>& points,
                              const std::vector<algebra3d::Quaternion<double>>& rotations)
{
    const Line line{points, rotations, false};
    return {roundingOfEdges(line), roundingOfFrames(line)};
}

// Of the bases of pairs those of both strands, which are rounded alike.
template <typename Frames>
FrameRounding roundingBetweenBases(const Frames& frames)
{
    const FrameRounding one = roundingBetween(frames.points1, frames.rotations1),
                        other = roundingBetween(frames.points2, frames.rotations2);
    return {std::max(one.length, other.length), std::max(one.angle, other.angle)};
}

FrameRounding frameRoundingOf(const Row& row, const Track& track)
{
    if (row.quantity.place == ScalarPlace::STEP)
        return roundingBetween(track.points, track.rotations);
    return track.dna->standard ? roundingBetweenBases(*track.dna->standard)
                               : roundingBetweenBases(*track.dna);
}

// Of the frames that a quantity is about: `formula(one, other)` of the bases of each pair, or of
// each pair and the next one. Behind the last pair of an open DNA there is none.
template <typename Formula>
Values ofFrames(const Row& row, const Track& track, Formula formula)
{
    const auto value = [&](const PlacedFrame& one, const PlacedFrame& other) {
        return inUnit(row.quantity, formula(one, other), track.angstrom);
    };
    Values values;
    if (row.quantity.place == ScalarPlace::PAIR) {
        for (const BaseFrames& bases : baseFramesOf(*track.dna))
            values.push_back(value(bases.base1, bases.base2));
        return values;
    }
    const std::vector<PlacedFrame> pairs = pairFrames(*track.dna);
    values.assign(pairs.size(), NONE);
    const std::size_t steps = pairs.size() < 2 ? 0 : pairs.size() - (track.isClosed ? 0 : 1);
    for (std::size_t i = 0; i < steps; ++i)
        values[i] = value(pairs[i], pairs[(i + 1) % pairs.size()]);
    return values;
}

Values roundingOfRow(const Row& row, const Track& track)
{
    if (row.ofLine)
        return alongLine(track, row.rounding);
    const FrameRounding rounding = frameRoundingOf(row, track);
    return ofFrames(row, track, [&](const PlacedFrame& one, const PlacedFrame& other) {
        return row.roundingOfFrames(one, other, rounding);
    });
}

} // namespace

const std::vector<Scalar>& givenScalars(const Track& track)
{
    static const std::vector<Scalar> none;
    if (track.rod)
        return track.rod->scalars;
    if (track.birod && track.kind == Track::Kind::BIROD_AVERAGE)
        return track.birod->scalars;
    if (track.dna && track.kind == Track::Kind::DNA_PAIRS)
        return track.dna->scalars;
    return none;
}

bool isGiven(const Track& track, const std::string& name) { return findGiven(track, name); }

std::string unitOf(const Track& track, const std::string& name)
{
    const Quantity* const quantity =
        isGiven(track, name) ? findComparisonQuantity(name) : findQuantity(track.kind, name);
    return quantity ? quantity->unit : "";
}

bool isSlow(const Track& track, const std::string& name)
{
    const Quantity* const quantity = findQuantity(track.kind, name);
    return quantity && !quantity->isCheap && !isGiven(track, name);
}

double edgePairsOfScalars(const std::vector<Track>& tracks)
{
    double pairs = 0;
    for (const Track& track : tracks)
        for (const Row& row : rows())
            if (isOf(row, track.kind) && isSlow(track, row.quantity.name))
                pairs += edgePairsOf(track);
    return pairs;
}

const std::vector<Quantity>& quantities()
{
    static const std::vector<Quantity> all = [] {
        std::vector<Quantity> found;
        for (const Row& row : rows())
            found.push_back(row.quantity);
        return found;
    }();
    return all;
}

const Quantity* findQuantity(Track::Kind kind, const std::string& name)
{
    const Row* const row = findRow(kind, name);
    return row ? &row->quantity : nullptr;
}

std::vector<std::string> scalarNames(const Track& track)
{
    std::vector<std::string> names;
    for (const Scalar& scalar : givenScalars(track))
        names.push_back(scalar.name);
    for (const Row& row : rows())
        if (isOf(row, track.kind) && !findGiven(track, row.quantity.name))
            names.push_back(row.quantity.name);
    return names;
}

std::optional<std::vector<double>> findScalar(const Track& track, const std::string& name,
                                              const GoOn& goOn)
{
    if (const Scalar* const given = findGiven(track, name))
        return given->values;
    const Row* const row = findRow(track.kind, name);
    if (!row)
        return std::nullopt;
    if (!row->ofLine)
        return ofFrames(*row, track, row->ofFrames);
    Values values = alongLine(track, [&](const Line& line) { return row->ofLine(line, goOn); });
    const bool isStopped = values.size() < track.points.size();
    return isStopped ? std::nullopt : std::optional(std::move(values));
}

std::vector<double> arcLengthsOf(const Track& track)
{
    return alongLine(track, [](const Line& line) { return arcLengths(line); });
}

std::vector<double> roundingOf(const Track& track, const std::string& name)
{
    Values values(track.points.size());
    if (values.empty() || name == "arclength")
        return values;
    if (findComparisonQuantity(name))
        return Values(values.size(),
                      LEAST_ROUNDING * (name == COMPARISON_SCALARS[0] ? lengthOf(track) : 1));
    const Row* const row = findRow(track.kind, name);
    if (!row || findGiven(track, name))
        return values;
    values = roundingOfRow(*row, track);
    double least = LEAST_ROUNDING;
    if (row->ofLine) {
        const double length = lengthOf(track);
        least = length > 0 ? LEAST_ROUNDING / length : 0;
    }
    for (double& value : values)
        value = std::isnan(value) ? least : std::max(value, least);
    return values;
}

std::optional<std::vector<double>> findScalar(const Rod& rod, const std::string& name)
{
    return findScalar(trackOf(rod), name);
}

std::vector<double> roundingOf(const Rod& rod, const std::string& name)
{
    return roundingOf(trackOf(rod), name);
}

const std::vector<std::string>& builtInScalars()
{
    static const std::vector<std::string> names = [] {
        std::vector<std::string> found;
        for (const Row& row : rows())
            if (row.ofLine)
                found.push_back(row.quantity.name);
        return found;
    }();
    return names;
}

} // namespace strandview
