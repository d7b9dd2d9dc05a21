// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/RodCollector.h"

#include <utility>

#include <algebra3d/Matrix3.h>

#include "readers/RodChecks.h"
#include "readers/parallelTransport.h"
#include "readers/wording.h"

namespace {

using Vector = algebra3d::Vector3<double>;

/// A frame follows its rod if d3 is within 60 degrees of the points' direction, on
/// average. Sheared rods do; quaternions that are meant in another way do not.
constexpr double smallestMeanTangency = 0.5;

/// Moves the points that are kept to the front, with all that belongs to them, and
/// cuts off the rest. How many were left out: never the far end of an edge of mean
/// length or more, so two are kept if any two were distinct.
std::size_t mergeCoincidentPoints(Rod& rod)
{
    const double nearest = smallestEdge(rod.points);
    const auto areOne = [nearest](const Vector& a, const Vector& b) {
        return areCoincident(a, b) || (b - a).getNorm() < nearest;
    };
    std::size_t kept = 0;
    for (std::size_t i = 0; i < rod.points.size(); ++i) {
        if (kept > 0 && areOne(rod.points[kept - 1], rod.points[i]))
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

/// The mean cosine of the angle between d3 and the edge that follows.
double meanTangency(const Rod& rod)
{
    double sum = 0;
    for (std::size_t i = 0; i + 1 < rod.points.size(); ++i) {
        const auto d3 = algebra3d::Matrix3<double>(rod.rotations[i]).getColumn(2);
        sum += d3.dot((rod.points[i + 1] - rod.points[i]).getUnit());
    }
    return sum / double(rod.points.size() - 1);
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
    } else if (meanTangency(rod) < smallestMeanTangency) {
        ++strayingRods;
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
    if (strayingRods > 0)
        report.notices.push_back(fileName + ": " + counted(strayingRods, "rod") +
                                 " whose d3 does not follow the points: is the scalar of the "
                                 "quaternions last, and d3 the tangent?");
    if (mergedPoints > 0)
        report.notices.push_back(fileName + ": " + counted(mergedPoints, "point") +
                                 " left out, at the same place as the point before");
    return std::move(configuration);
}
