// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/DataChecks.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "readers/wording.h"

namespace {

constexpr double largestCoordinate = 1e18;
constexpr double normTolerance = 0.01;
constexpr double smallestEdgeOfMean = 1e-5;

bool isZero(const algebra3d::Quaternion<double>& q)
{
    return q[0] == 0 && q[1] == 0 && q[2] == 0 && q[3] == 0;
}

} // namespace

bool isCoordinate(double number) { return std::abs(number) <= largestCoordinate; }

bool areCoincident(const algebra3d::Vector3<double>& a, const algebra3d::Vector3<double>& b)
{
    const algebra3d::Vector3<double> distance = b - a;
    return distance.dot(distance) < std::numeric_limits<double>::min();
}

double smallestEdge(const std::vector<algebra3d::Vector3<double>>& points)
{
    double sum = 0;
    std::size_t count = 0;
    for (std::size_t i = 1; i < points.size(); ++i)
        if (!areCoincident(points[i - 1], points[i])) {
            sum += (points[i] - points[i - 1]).getNorm();
            ++count;
        }
    return count == 0 ? 0 : smallestEdgeOfMean * (sum / double(count));
}

bool isClosed(const std::vector<algebra3d::Vector3<double>>& points)
{
    return areCoincident(points.front(), points.back()) ||
           (points.back() - points.front()).getNorm() < smallestEdge(points);
}

// Divides by the largest component first: no square over- or underflows.
algebra3d::Quaternion<double> scaledToUnit(algebra3d::Quaternion<double> q)
{
    double largest = 0;
    for (int i = 0; i < 4; ++i)
        largest = std::max(largest, std::abs(q[i]));
    for (int i = 0; i < 4; ++i)
        q[i] /= largest;
    const double norm = q.getNorm();
    for (int i = 0; i < 4; ++i)
        q[i] /= norm;
    return q;
}

std::string checkRotation(algebra3d::Quaternion<double>& rotation, const ReadOptions& options)
{
    if (options.normalise) {
        if (isZero(rotation))
            return "found the zero quaternion, expected any other";
        rotation = scaledToUnit(rotation);
        return {};
    }
    const double norm = rotation.getNorm();
    if (std::abs(norm - 1) <= normTolerance)
        return {};
    return "found a quaternion of norm " + formatted(norm) +
           ", expected 1 within 0.01 (--normalise accepts others)";
}

std::optional<char> parseBase(char letter)
{
    const char base =
        letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    return base == 'A' || base == 'C' || base == 'G' || base == 'T' ? std::optional(base)
                                                                    : std::nullopt;
}
