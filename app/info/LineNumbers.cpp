// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/LineNumbers.h"

#include <algorithm>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/shape.h>

namespace strandview {

namespace {

bool isTold(const Track& track)
{
    return track.kind == Track::Kind::ROD || track.kind == Track::Kind::BIROD_AVERAGE ||
           track.kind == Track::Kind::DNA_PAIRS;
}

// Of all lines with themselves, and of closed rods with each other.
double countEdgePairs(const std::vector<Track>& tracks)
{
    double pairs = 0, behind = 0;
    for (const Track& track : tracks) {
        pairs += isTold(track) ? edgePairsOf(track) : 0;
        if (track.rod && track.isClosed) {
            pairs += behind * double(track.points.size());
            behind += double(track.points.size());
        }
    }
    return pairs;
}

LineNumbers numbersOf(const Track& track, bool isAll)
{
    LineNumbers numbers;
    if (isAll)
        numbers.topology = topologyOf(track);
    else
        numbers.topology.twist = ribbonTwistOf(track);
    const auto curve = curveOf(track);
    numbers.radiusOfGyration = radiusOfGyrationOf(curve);
    if (const std::optional<Contact> contact = contactOf(curve))
        numbers.contact = contact->distance;
    return numbers;
}

std::vector<Link> linksOf(const std::vector<Track>& tracks)
{
    std::vector<std::pair<std::size_t, std::vector<algebra3d::Vector3<double>>>> rings;
    for (const Track& track : tracks)
        if (track.rod && track.isClosed)
            rings.emplace_back(track.datum, curveOf(track));
    std::vector<Link> links;
    for (std::size_t i = 0; i < rings.size(); ++i)
        for (std::size_t j = i + 1; j < rings.size(); ++j)
            links.push_back(
                {rings[i].first, rings[j].first, linkingNumber(rings[i].second, rings[j].second)});
    return links;
}

} // namespace

AllNumbers numbersOf(const Configuration& data, double mostEdgePairs)
{
    const std::vector<Track> tracks = tracksOf(data);
    AllNumbers all;
    all.areSlowLeftOut = countEdgePairs(tracks) > mostEdgePairs;
    for (const Track& track : tracks)
        if (isTold(track))
            (track.rod     ? all.rods
             : track.birod ? all.birods
                           : all.dnas)
                .push_back(numbersOf(track, !all.areSlowLeftOut));
    if (!all.areSlowLeftOut)
        all.links = linksOf(tracks);
    return all;
}

} // namespace strandview
