// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/superpose.h>

#include <algorithm>
#include <utility>
#include <vector>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Point = algebra3d::Vector3<double>;
using Points = std::vector<Point>;
using Rotation = algebra3d::Quaternion<double>;
using Rotations = std::vector<Rotation>;

const std::size_t LONGEST_SEARCH = 100; // frames

// The points that two configurations have in common.
struct Pairs
{
    Points moved, reference;

    void add(const Points& one, const Points& other)
    {
        if (one.size() != other.size())
            return;
        moved.insert(moved.end(), one.begin(), one.end());
        reference.insert(reference.end(), other.begin(), other.end());
    }
};

void addRods(const Configuration& moved, const Configuration& reference, Pairs& pairs)
{
    for (std::size_t i = 0; i < std::min(moved.rods.size(), reference.rods.size()); ++i)
        pairs.add(moved.rods[i].points, reference.rods[i].points);
    for (std::size_t i = 0; i < std::min(moved.birods.size(), reference.birods.size()); ++i) {
        const Birod &one = moved.birods[i], &other = reference.birods[i];
        pairs.add(one.points, other.points);
        pairs.add(one.points1, other.points1);
        pairs.add(one.points2, other.points2);
    }
}

void addDna(const Configuration& moved, const Configuration& reference, Pairs& pairs)
{
    for (std::size_t i = 0; i < std::min(moved.dnas.size(), reference.dnas.size()); ++i) {
        pairs.add(moved.dnas[i].points1, reference.dnas[i].points1);
        pairs.add(moved.dnas[i].points2, reference.dnas[i].points2);
    }
    if (moved.loneBases.size() != reference.loneBases.size())
        return;
    for (std::size_t i = 0; i < moved.loneBases.size(); ++i) {
        pairs.moved.push_back(moved.loneBases[i].point);
        pairs.reference.push_back(reference.loneBases[i].point);
    }
}

// Moves whatever has a place and a direction.
class Mover
{
public:
    explicit Mover(const FittedFrame& motionOfAll) : motion(motionOfAll) {}

    void operator()(Point& point) const
    {
        point = algebra3d::rotated(point, motion.rotation) + motion.point;
    }
    void operator()(Rotation& rotation) const { rotation = motion.rotation * rotation; }
    template <typename Item>
    void operator()(std::vector<Item>& items) const
    {
        for (Item& item : items)
            (*this)(item);
    }
    template <typename... Several>
    void all(Several&... several) const
    {
        ((*this)(several), ...);
    }
    template <typename Frames>
    void ofPairs(Frames& frames) const
    {
        all(frames.pairPoints, frames.pairRotations, frames.points1, frames.rotations1,
            frames.points2, frames.rotations2);
    }

private:
    const FittedFrame& motion;
};

} // namespace

std::optional<FittedFrame> findSuperposition(const Configuration& moved,
                                             const Configuration& reference)
{
    Pairs pairs;
    addRods(moved, reference, pairs);
    addDna(moved, reference, pairs);
    if (pairs.moved.empty())
        return {};
    return fitFrame(pairs.moved, pairs.reference);
}

FittedFrame inverse(const FittedFrame& motion)
{
    FittedFrame back = motion;
    back.rotation = algebra3d::conjugate(motion.rotation);
    back.point = algebra3d::rotated(motion.point, back.rotation) * -1.0;
    return back;
}

void move(Configuration& configuration, const FittedFrame& motion)
{
    const Mover move(motion);
    for (Rod& rod : configuration.rods)
        move.all(rod.points, rod.rotations);
    for (Birod& birod : configuration.birods)
        move.all(birod.points, birod.rotations, birod.points1, birod.rotations1, birod.points2,
                 birod.rotations2);
    for (Dna& dna : configuration.dnas) {
        move.ofPairs(dna);
        if (dna.standard)
            move.ofPairs(*dna.standard);
    }
    for (LoneBase& base : configuration.loneBases)
        move.all(base.point, base.rotation);
    for (Marker& marker : configuration.markers)
        move(marker.point);
    for (Arrow& arrow : configuration.arrows)
        move.all(arrow.from, arrow.to);
    for (Frame& frame : configuration.frames)
        move.all(frame.point, frame.rotation);
}

std::optional<ReferenceFrame> findReference(Series& series, const Series::GoOn& goOn)
{
    const std::size_t end = std::min(series.count(), LONGEST_SEARCH);
    // A frame that was stopped is no reason to take the next one.
    for (std::size_t i = 0; i < end && (!goOn || goOn(0)); ++i)
        if (auto loaded = series.load(i, goOn).configuration)
            return ReferenceFrame{i, std::move(*loaded)};
    return {};
}

SuperposedSeries::SuperposedSeries(std::unique_ptr<Series> seriesToMove)
    : SeriesAround(std::move(seriesToMove))
{}

LoadedFrame SuperposedSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    bool isStopped = false;
    const GoOn ask = [&](double share) {
        isStopped = isStopped || (goOn && !goOn(share));
        return !isStopped;
    };
    const LoadedFrame stopped{
        {}, {}, "superposing frame " + std::to_string(frame) + " was stopped"};
    LoadedFrame loaded = series->load(frame, ask);
    if (!loaded.configuration)
        return loaded;
    if (!reference)
        reference = findReference(*series, ask);
    if (!ask(1))
        return stopped;
    // On itself any turn about a straight rod would be as good as none.
    if (!reference || frame == reference->frame)
        return loaded;
    const std::optional<FittedFrame> motion =
        findSuperposition(*loaded.configuration, reference->configuration);
    if (!ask(1))
        return stopped;
    if (motion)
        move(*loaded.configuration, *motion);
    else
        loaded.notices.push_back("frame " + std::to_string(frame) +
                                 ": found nothing of as many points as in the first frame, not "
                                 "superposed");
    return loaded;
}

} // namespace strandview
