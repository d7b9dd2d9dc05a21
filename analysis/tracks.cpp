// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/tracks.h>

#include <algorithm>

#include <strandview/analysis/doubleStrands.h>
#include <strandview/model/points.h>

namespace strandview {

namespace {

std::string partOf(const Track& track)
{
    if (track.strand > 0)
        return ", strand " + std::to_string(track.strand);
    return track.kind == Track::Kind::BIROD_AVERAGE ? ", average" : ", pairs";
}

void addBirod(std::vector<Track>& tracks, const Birod& birod, std::size_t index)
{
    const bool closed =
        isClosed(birod.points) && isClosed(birod.points1) && isClosed(birod.points2);
    const auto add = [&](Track::Kind kind, int strand, const auto& points, const auto& rotations) {
        tracks.push_back(
            {kind, index, strand, points, rotations, closed, 1, nullptr, nullptr, &birod});
    };
    add(Track::Kind::BIROD_AVERAGE, 0, birod.points, birod.rotations);
    add(Track::Kind::BIROD_STRAND, 1, birod.points1, birod.rotations1);
    add(Track::Kind::BIROD_STRAND, 2, birod.points2, birod.rotations2);
}

// By the standard reference frame where there is one.
template <typename Frames>
void addDna(std::vector<Track>& tracks, const Frames& frames, const Dna& dna, std::size_t index,
            double angstrom)
{
    const auto add = [&](Track::Kind kind, int strand, const auto& points, const auto& rotations) {
        tracks.push_back(
            {kind, index, strand, points, rotations, dna.isClosed, angstrom, nullptr, &dna});
    };
    add(Track::Kind::DNA_PAIRS, 0, frames.pairPoints, frames.pairRotations);
    add(Track::Kind::DNA_STRAND, 1, frames.points1, frames.rotations1);
    add(Track::Kind::DNA_STRAND, 2, frames.points2, frames.rotations2);
}

} // namespace

LineId idOf(const Track& track) { return {track.kind, track.datum, track.strand}; }

const Track* findTrack(const std::vector<Track>& tracks, const LineId& id)
{
    const auto found = std::find_if(tracks.begin(), tracks.end(),
                                    [&id](const Track& track) { return idOf(track) == id; });
    return found == tracks.end() ? nullptr : &*found;
}

std::string titleOf(const Track& track)
{
    const std::string number = std::to_string(track.datum + 1);
    const auto named = [](const std::string& name) {
        return name.empty() ? "" : " '" + name + "'";
    };
    if (track.rod)
        return "rod " + number + named(track.rod->name);
    return (track.dna ? "DNA " + number + named(track.dna->name) : "birod " + number) +
           partOf(track);
}

std::string basesOf(const Track& track)
{
    if (!track.dna)
        return "";
    std::string letters = track.dna->bases;
    if (track.strand == 2)
        for (char& letter : letters)
            letter = complementOf(letter);
    return letters;
}

std::vector<algebra3d::Vector3<double>> curveOf(const Track& track)
{
    std::vector<algebra3d::Vector3<double>> curve = track.points;
    if (track.isClosed && !curve.empty()) {
        if (track.dna)
            curve.push_back(curve.front());
        else
            curve.back() = curve.front(); // which it is but for rounding
    }
    return curve;
}

Track trackOf(const Rod& rod, std::size_t index)
{
    return {Track::Kind::ROD, index, 0, rod.points, rod.rotations, rod.isClosed, 1, &rod};
}

std::vector<Track> tracksOf(const Configuration& configuration, double angstrom)
{
    std::vector<Track> tracks;
    for (std::size_t i = 0; i < configuration.rods.size(); ++i)
        tracks.push_back(trackOf(configuration.rods[i], i));
    for (std::size_t i = 0; i < configuration.birods.size(); ++i)
        addBirod(tracks, configuration.birods[i], i);
    for (std::size_t i = 0; i < configuration.dnas.size(); ++i) {
        const Dna& dna = configuration.dnas[i];
        if (dna.standard)
            addDna(tracks, *dna.standard, dna, i, angstrom);
        else
            addDna(tracks, dna, dna, i, angstrom);
    }
    return tracks;
}

} // namespace strandview
