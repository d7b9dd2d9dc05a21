// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/scalars.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/curveNumbers.h>
#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/helicalParameters.h>
#include <strandview/analysis/topology.h>

namespace strandview {

namespace {

using Values = std::vector<double>;

const double NONE = std::numeric_limits<double>::quiet_NaN();
// What sums of doubles may lose, of a length, a degree or an ångström.
const double LEAST_ROUNDING = 1e-9;

// A quantity and its formula: one of these.
struct Row
{
    Quantity quantity;
    Values (*ofLine)(const Line& line) = nullptr;
    Values (*rounding)(const Line& line) = nullptr; // of that; none is not-a-number
    double (*ofPair)(const PairParameters& pair) = nullptr;
    double (*ofStep)(const PlacedFrame& pair, const PlacedFrame& next) = nullptr;
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

template <double PairParameters::*member>
double ofPair(const PairParameters& pair)
{
    return pair.*member;
}

template <double StepParameters::*member>
double ofStep(const PlacedFrame& pair, const PlacedFrame& next)
{
    return stepParameters(pair, next).*member;
}

template <double HelicalParameters::*member>
double ofScrew(const PlacedFrame& pair, const PlacedFrame& next)
{
    return helicalParameters(pair, next).*member;
}

double bendOf(const PlacedFrame& pair, const PlacedFrame& next)
{
    const StepParameters step = stepParameters(pair, next);
    return std::hypot(step.tilt, step.roll);
}

Row line(const char* name, const char* unit, bool isSigned, Values (*formula)(const Line&),
         Values (*rounding)(const Line&), const char* meaning)
{
    return {{name, ScalarPlace::POINT, unit, isSigned, meaning}, formula, rounding};
}

Row slow(Row row)
{
    row.quantity.isCheap = false;
    return row;
}

Row pair(const char* name, const char* unit, double (*formula)(const PairParameters&),
         const char* meaning)
{
    Row row{{name, ScalarPlace::PAIR, unit, true, meaning}};
    row.ofPair = formula;
    return row;
}

Row step(const char* name, const char* unit, bool isSigned,
         double (*formula)(const PlacedFrame&, const PlacedFrame&), const char* meaning)
{
    Row row{{name, ScalarPlace::STEP, unit, isSigned, meaning}};
    row.ofStep = formula;
    return row;
}

const std::vector<Row>& rows()
{
    using P = PairParameters;
    using S = StepParameters;
    using H = HelicalParameters;
    static const std::vector<Row> all = {
        line("arclength", "length", false, arcLengths, exact, "along the polygon, from 0"),
        line("curvature", "1/length", false, curvatures, roundingOfCurvatures,
             "of the circle through a point and its neighbours"),
        line("torsion", "1/length", true, torsions, roundingOfTorsions,
             "turn of that circle's plane per length"),
        line("twist", "1/length", true, twistDensities, roundingOfTwistDensities,
             "turn of d1 and d2 about d3 per length"),
        line("kappa1", "1/length", true, strain<0>, roundingOfStrain<0>,
             "bending of the material frame about d1"),
        line("kappa2", "1/length", true, strain<1>, roundingOfStrain<1>,
             "bending of the material frame about d2"),
        line("kappa3", "1/length", true, strain<2>, roundingOfStrain<2>,
             "twist of the material frame about d3"),
        slow(line("writhe_density", "1/length", true, writheDensities, nullptr,
                  "Gauss's integral with the rest of the curve per length")),
        pair("shear", "Å", ofPair<&P::shear>, "of the bases, along x of the pair"),
        pair("stretch", "Å", ofPair<&P::stretch>, "of the bases, along y of the pair"),
        pair("stagger", "Å", ofPair<&P::stagger>, "of the bases, along z of the pair"),
        pair("buckle", "°", ofPair<&P::buckle>, "of the bases, about x of the pair"),
        pair("propeller", "°", ofPair<&P::propeller>, "of the bases, about y of the pair"),
        pair("opening", "°", ofPair<&P::opening>, "of the bases, about z of the pair"),
        step("shift", "Å", true, ofStep<&S::shift>, "to the next pair, along x half-way"),
        step("slide", "Å", true, ofStep<&S::slide>, "to the next pair, along y half-way"),
        step("rise", "Å", false, ofStep<&S::rise>, "to the next pair, along z half-way"),
        step("tilt", "°", true, ofStep<&S::tilt>, "to the next pair, about x half-way"),
        step("roll", "°", true, ofStep<&S::roll>, "to the next pair, about y half-way"),
        step("twist", "°", false, ofStep<&S::twist>, "to the next pair, about z half-way"),
        step("bend", "°", false, bendOf, "between z of a pair and of the next one"),
        step("x_displacement", "Å", true, ofScrew<&H::xDisplacement>,
             "from the step's screw axis, along x"),
        step("y_displacement", "Å", true, ofScrew<&H::yDisplacement>,
             "from the step's screw axis, along y"),
        step("helical_rise", "Å", false, ofScrew<&H::rise>, "along the step's screw axis"),
        step("inclination", "°", true, ofScrew<&H::inclination>,
             "of the pair to the step's screw axis, about x"),
        step("tip", "°", true, ofScrew<&H::tip>, "of the pair to the step's screw axis, about y"),
        step("helical_twist", "°", false, ofScrew<&H::twist>, "about the step's screw axis"),
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

Values ofPairs(const Row& row, const Track& track)
{
    Values values;
    for (const PairParameters& parameters : pairsOf(*track.dna))
        values.push_back(inUnit(row.quantity, row.ofPair(parameters), track.angstrom));
    return values;
}

Values ofSteps(const Row& row, const Track& track)
{
    const std::vector<PlacedFrame> pairs = pairFrames(*track.dna);
    Values values(pairs.size(), NONE);
    const std::size_t steps = pairs.size() < 2 ? 0 : pairs.size() - (track.isClosed ? 0 : 1);
    for (std::size_t i = 0; i < steps; ++i)
        values[i] = inUnit(row.quantity, row.ofStep(pairs[i], pairs[(i + 1) % pairs.size()]),
                           track.angstrom);
    return values;
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
    const Quantity* const quantity = findQuantity(track.kind, name);
    return quantity && !isGiven(track, name) ? quantity->unit : "";
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

std::optional<std::vector<double>> findScalar(const Track& track, const std::string& name)
{
    if (const Scalar* const given = findGiven(track, name))
        return given->values;
    const Row* const row = findRow(track.kind, name);
    if (!row)
        return std::nullopt;
    if (row->ofLine)
        return alongLine(track, row->ofLine);
    return row->ofPair ? ofPairs(*row, track) : ofSteps(*row, track);
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
    if (row->rounding)
        values = alongLine(track, row->rounding);
    double least = LEAST_ROUNDING;
    if (row->ofLine) {
        const double length = lengthOf(track);
        least = length > 0 ? LEAST_ROUNDING / length : 0;
    }
    for (double& value : values)
        value = std::max(value, least);
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
