// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/RodCollector.h"

#include <utility>

#include "readers/RodChecks.h"
#include "readers/parallelTransport.h"
#include "readers/wording.h"

namespace {

/// Moves the points that are kept to the front, with all that belongs to them, and
/// cuts off the rest. How many were left out.
std::size_t mergeCoincidentPoints(Rod& rod)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < rod.points.size(); ++i) {
        if (kept > 0 && areCoincident(rod.points[kept - 1], rod.points[i]))
            continue;
        rod.points[kept] = rod.points[i];
        if (!rod.rotations.empty())
            rod.rotations[kept] = rod.rotations[i];
        for (Scalar& scalar : rod.scalars)
            scalar.values[kept] = scalar.values[i];
        ++kept;
    }
    const std::size_t merged = rod.points.size() - kept;
    rod.points.resize(kept);
    if (!rod.rotations.empty())
        rod.rotations.resize(kept);
    for (Scalar& scalar : rod.scalars)
        scalar.values.resize(kept);
    return merged;
}

} // namespace

std::string RodCollector::add(Rod rod)
{
    mergedPoints += mergeCoincidentPoints(rod);
    if (rod.points.size() < 2)
        return "found " + counted(rod.points.size(), "distinct point") +
               ", expected at least 2 in a rod";
    if (rod.rotations.empty()) {
        rod.rotations = parallelTransport(rod.points);
        ++transportedRods;
    }
    configuration.rods.push_back(std::move(rod));
    return {};
}

std::optional<Configuration> RodCollector::finish(const std::string& fileName, ReadReport& report)
{
    if (configuration.rods.empty()) {
        report.error = fileName + ": found nothing to show, expected at least one rod";
        return {};
    }
    if (transportedRods > 0)
        report.notices.push_back(fileName + ": " + counted(transportedRods, "rod") +
                                 " without quaternions: frames made by parallel transport");
    if (mergedPoints > 0)
        report.notices.push_back(fileName + ": " + counted(mergedPoints, "point") +
                                 " left out, at the same place as the point before");
    return std::move(configuration);
}
