// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/topology.h>

#include <cmath>
#include <numeric>

#include <algebra3d/rotations.h>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/ribbonTwist.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

// Directions at the two ends of a closed ribbon that differ by less are one, but for rounding.
const double SAME_DIRECTION = 1e-3; // radians
// Of a linking number. It is no whole number where a curve meets itself.
const double ROUNDING = 1e-6;

struct Ribbon
{
    std::vector<Vector> curve;
    std::vector<Vector> directions;
    bool isClosed; // the curve, and the directions, too
};

Vector directionAt(const Track& track, std::size_t point)
{
    if (track.birod && track.kind == Track::Kind::BIROD_AVERAGE) {
        const Vector toStrand = track.birod->points1[point] - track.points[point];
        if (toStrand.dot(toStrand) > 0)
            return toStrand;
    }
    const bool isOfPairs = track.kind == Track::Kind::DNA_PAIRS;
    return algebra3d::rotated(isOfPairs ? Vector(0, 1, 0) : Vector(1, 0, 0),
                              track.rotations[point]);
}

Ribbon ribbonOf(const Track& track)
{
    Ribbon ribbon{curveOf(track), {}, track.isClosed};
    for (std::size_t i = 0; i < track.points.size(); ++i)
        ribbon.directions.push_back(directionAt(track, i));
    const Vector first = ribbon.directions.front();
    if (ribbon.directions.size() < ribbon.curve.size()) {
        ribbon.directions.push_back(first);
    } else if (track.isClosed) {
        Vector& last = ribbon.directions.back();
        ribbon.isClosed = std::atan2(first.cross(last).getNorm(), first.dot(last)) < SAME_DIRECTION;
        if (ribbon.isClosed)
            last = first;
    }
    return ribbon;
}

bool hasRibbon(const Track& track)
{
    return track.points.size() > 1 && (!track.rod || track.rod->hasFrames);
}

double turnsOf(const Ribbon& ribbon)
{
    const std::vector<double> twists = twistOfEdges(ribbon.curve, ribbon.directions);
    return std::accumulate(twists.begin(), twists.end(), 0.0) / (2 * std::acos(-1.0));
}

} // namespace

Topology topologyOf(const Track& track)
{
    Topology found;
    if (track.points.size() < 2)
        return found;
    const double integral = gaussIntegral(curveOf(track));
    (track.isClosed ? found.writhe : found.gaussIntegral) = integral;
    if (!hasRibbon(track))
        return found;
    const Ribbon ribbon = ribbonOf(track);
    found.twist = turnsOf(ribbon);
    const double sum = *found.twist + integral;
    if (ribbon.isClosed && std::abs(sum - std::round(sum)) <= ROUNDING)
        found.linkingNumber = std::llround(sum);
    return found;
}

double edgePairsOf(const Track& track)
{
    const double edges = double(track.points.size());
    return edges * edges / 2;
}

std::optional<double> ribbonTwistOf(const Track& track)
{
    return hasRibbon(track) ? std::optional(turnsOf(ribbonOf(track))) : std::nullopt;
}

} // namespace strandview
