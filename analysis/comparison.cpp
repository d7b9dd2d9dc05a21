// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/comparison.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <algebra3d/rotations.h>

#include <strandview/analysis/curveNumbers.h>
#include <strandview/analysis/strains.h>
#include <strandview/analysis/superpose.h>
#include <strandview/analysis/tracks.h>

namespace strandview {

namespace {

using Values = std::vector<double>;

const double DEGREES = 180 / std::acos(-1.0);

std::vector<Scalar>* scalarsOf(Configuration& configuration, const Track& track)
{
    switch (track.kind) {
    case Track::Kind::ROD:
        return &configuration.rods[track.datum].scalars;
    case Track::Kind::BIROD_AVERAGE:
        return &configuration.birods[track.datum].scalars;
    case Track::Kind::DNA_PAIRS:
        return &configuration.dnas[track.datum].scalars;
    default:
        return nullptr;
    }
}

void add(std::vector<Scalar>& scalars, const char* name, Values values)
{
    const bool isThere = std::any_of(scalars.begin(), scalars.end(),
                                     [name](const Scalar& scalar) { return scalar.name == name; });
    if (!isThere)
        scalars.push_back({name, std::move(values)});
}

Values distances(const Track& track, const Track& reference, const FittedFrame& motion)
{
    Values values;
    for (std::size_t i = 0; i < track.points.size(); ++i) {
        const auto moved = algebra3d::rotated(track.points[i], motion.rotation) + motion.point;
        values.push_back((moved - reference.points[i]).getNorm());
    }
    return values;
}

Values rotations(const Track& track, const Track& reference, const FittedFrame& motion)
{
    Values values;
    for (std::size_t i = 0; i < track.rotations.size(); ++i) {
        const auto turn =
            rotationVector(reference.rotations[i], motion.rotation * track.rotations[i]);
        values.push_back(turn.getNorm() * DEGREES);
    }
    return values;
}

void addShears(std::vector<Scalar>& scalars, const Track& track, const Track& reference)
{
    Values lengths;
    for (std::size_t i = 0; i + 1 < reference.points.size(); ++i)
        lengths.push_back((reference.points[i + 1] - reference.points[i]).getNorm());
    const auto shears = shearsOfElements(track.points, track.rotations, lengths);
    const Line line{track.points, track.rotations, track.isClosed};
    const std::size_t firstShear = 2; // of the names
    for (int component = 0; component < 3; ++component) {
        Values ofElements;
        for (const auto& shear : shears)
            ofElements.push_back(shear[component]);
        add(scalars, COMPARISON_SCALARS[firstShear + std::size_t(component)],
            atPoints(line, ofElements));
    }
}

bool hasFrames(const Track& track) { return !track.rod || track.rod->hasFrames; }

} // namespace

const std::vector<Quantity>& comparisonQuantities()
{
    const auto row = [](std::size_t name, const char* unit, bool isSigned, const char* meaning) {
        return Quantity{COMPARISON_SCALARS[name], ScalarPlace::POINT, unit, isSigned, meaning};
    };
    static const std::vector<Quantity> all = {
        row(0, "length", false, "to the point of the reference, once superposed"),
        row(1, "°", false, "to the frame of the reference, once superposed"),
        row(2, "", true, "shear along d1, by lengths of the reference"),
        row(3, "", true, "shear along d2, by lengths of the reference"),
        row(4, "", true, "stretch along d3, by lengths of the reference")};
    return all;
}

const Quantity* findComparisonQuantity(const std::string& name)
{
    for (const Quantity& quantity : comparisonQuantities())
        if (quantity.name == name)
            return &quantity;
    return nullptr;
}

std::string addComparison(Configuration& configuration, const Configuration& reference)
{
    const std::optional<FittedFrame> motion = findSuperposition(configuration, reference);
    const std::vector<Track> others = tracksOf(reference);
    std::string without;
    for (const Track& track : tracksOf(configuration)) {
        std::vector<Scalar>* const scalars = scalarsOf(configuration, track);
        if (!scalars)
            continue;
        const Track* const other = findTrack(others, idOf(track));
        if (!motion || !other || other->points.size() != track.points.size()) {
            if (without.empty())
                without = titleOf(track) + ": found nothing of as many points in the reference, "
                                           "not compared";
            continue;
        }
        add(*scalars, COMPARISON_SCALARS[0], distances(track, *other, *motion));
        if (!hasFrames(track) || !hasFrames(*other))
            continue;
        add(*scalars, COMPARISON_SCALARS[1], rotations(track, *other, *motion));
        if (!track.dna)
            addShears(*scalars, track, *other);
    }
    return without;
}

ComparedSeries::ComparedSeries(std::unique_ptr<Series> seriesToCompare,
                               std::optional<Configuration> configurationToCompareWith)
    : SeriesAround(std::move(seriesToCompare))
{
    if (configurationToCompareWith)
        reference = std::make_shared<const Configuration>(std::move(*configurationToCompareWith));
}

LoadedFrame ComparedSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    LoadedFrame loaded = series->load(frame, goOn);
    if (!loaded.configuration)
        return loaded;
    if (!reference) {
        auto first = findReference(*series, goOn);
        if (!first)
            return loaded;
        reference = std::make_shared<const Configuration>(std::move(first->configuration));
    }
    const std::string notice = addComparison(*loaded.configuration, *reference);
    loaded.configuration->reference = reference;
    if (!notice.empty())
        loaded.notices.push_back(notice);
    return loaded;
}

} // namespace strandview
