// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/dnaNumbers.h>

#include <cstddef>

namespace strandview {

namespace {

using Points = std::vector<algebra3d::Vector3<double>>;
using Rotations = std::vector<algebra3d::Quaternion<double>>;

std::vector<PlacedFrame> placed(const Points& points, const Rotations& rotations)
{
    std::vector<PlacedFrame> frames;
    frames.reserve(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        frames.push_back({points[i], rotations[i]});
    return frames;
}

template <typename Frames>
std::vector<BaseFrames> basesOfPairs(const Frames& frames)
{
    std::vector<BaseFrames> pairs;
    pairs.reserve(frames.points1.size());
    for (std::size_t i = 0; i < frames.points1.size(); ++i)
        pairs.push_back(
            {{frames.points1[i], frames.rotations1[i]}, {frames.points2[i], frames.rotations2[i]}});
    return pairs;
}

/// Calls `take(pair, next)` for each step.
template <typename Take>
void forEachStep(const std::vector<PlacedFrame>& pairs, bool isClosed, Take take)
{
    for (std::size_t i = 0; i + 1 < pairs.size(); ++i)
        take(pairs[i], pairs[i + 1]);
    if (isClosed && pairs.size() > 1)
        take(pairs.back(), pairs.front());
}

} // namespace

std::vector<PlacedFrame> pairFrames(const Dna& dna)
{
    return dna.standard ? placed(dna.standard->pairPoints, dna.standard->pairRotations)
                        : placed(dna.pairPoints, dna.pairRotations);
}

std::vector<BaseFrames> baseFramesOf(const Dna& dna)
{
    return dna.standard ? basesOfPairs(*dna.standard) : basesOfPairs(dna);
}

std::vector<PairParameters> pairsOf(const Dna& dna)
{
    std::vector<PairParameters> pairs;
    pairs.reserve(dna.bases.size());
    for (const BaseFrames& bases : baseFramesOf(dna))
        pairs.push_back(pairParameters(bases.base1, bases.base2));
    return pairs;
}

std::vector<StepParameters> stepsOf(const Dna& dna)
{
    std::vector<StepParameters> steps;
    forEachStep(pairFrames(dna), dna.isClosed,
                [&](const PlacedFrame& pair, const PlacedFrame& next) {
                    steps.push_back(stepParameters(pair, next));
                });
    return steps;
}

DnaNumbers numbersOf(const Dna& dna)
{
    const std::vector<PlacedFrame> pairs = pairFrames(dna);
    DnaNumbers numbers;
    double twist = 0, rise = 0;
    std::size_t steps = 0;
    forEachStep(pairs, dna.isClosed, [&](const PlacedFrame& pair, const PlacedFrame& next) {
        const StepParameters step = stepParameters(pair, next);
        numbers.length += (next.point - pair.point).getNorm();
        twist += step.twist;
        rise += step.rise;
        ++steps;
    });
    if (!dna.isClosed && !pairs.empty())
        numbers.endToEnd = (pairs.back().point - pairs.front().point).getNorm();
    if (steps > 0) {
        numbers.totalTwist = twist;
        numbers.meanTwist = twist / double(steps);
        numbers.meanRise = rise / double(steps);
    }
    return numbers;
}

} // namespace strandview
