// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/closedDna.h>

#include <cmath>
#include <cstddef>
#include <utility>

#include <algebra3d/rotations.h>

#include <strandview/formats/Collector.h>

namespace strandview {

namespace {

constexpr std::size_t FEWEST_ROWS = 4;
constexpr double LARGEST_GAP = 0.5;
constexpr double LARGEST_TURN = M_PI / 180;

} // namespace

void closeWhereRepeated(Dna& dna)
{
    if (dna.bases.size() < FEWEST_ROWS || dna.bases.front() != dna.bases.back())
        return;
    const auto gap = dna.pairPoints.back() - dna.pairPoints.front();
    const double cosine = algebra3d::dot(algebra3d::scaledToUnit(dna.pairRotations.back()),
                                         algebra3d::scaledToUnit(dna.pairRotations.front()));
    if (gap.getNorm() > LARGEST_GAP || std::abs(cosine) < std::cos(LARGEST_TURN / 2))
        return;
    dna.isClosed = true;
    dna.bases.pop_back();
    for (auto* points : {&dna.pairPoints, &dna.points1, &dna.points2})
        points->pop_back();
    for (auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
        rotations->pop_back();
}

std::optional<Configuration> finishPairs(Dna dna, const std::string& fileName, ReadReport& report)
{
    closeWhereRepeated(dna);
    Collector collector;
    const std::string fault = collector.add(std::move(dna));
    if (fault.empty())
        return collector.finish(fileName, "base pair", report);
    report.error = fileName + ": " + fault;
    return {};
}

} // namespace strandview
