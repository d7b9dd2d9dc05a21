// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/basePairs.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <algebra3d/largePages.h>
#include <algebra3d/rotations.h>

#include <strandview/analysis/doubleStrands.h>
#include <strandview/analysis/mutuallyNearest.h>

namespace strandview {

namespace {

constexpr double SIZE_OF_BASE = 3;
constexpr double LARGEST_DISTANCE = 3;
constexpr double LARGEST_STAGGER = 2;

/// How far the second origin is above the plane half-way between both bases.
double stagger(const BaseFrame& a, const BaseFrame& b)
{
    const BaseFrame middle = pairFrame(a, b);
    const auto normal = rotated(algebra3d::Vector3<double>(0, 0, 1), middle.rotation);
    return std::abs(normal.dot(b.point - a.point));
}

} // namespace

bool areComplementary(char a, char b)
{
    return a == UNKNOWN_BASE || b == UNKNOWN_BASE || complementOf(a) == b;
}

double distanceFromPair(const BaseFrame& a, const BaseFrame& b)
{
    // Of atoms at r e, with e in all directions and the mean of e e^T a third of the identity, the
    // mean square of how far a rotation by an angle moves them is r^2 4/3 (1 - cos angle); and
    // 1 - cos angle = 2 sin^2(angle / 2), where cos(angle / 2) is the quaternions' product.
    const double cosine = dot(a.rotation, turnedOver(b).rotation);
    const double turned = SIZE_OF_BASE * SIZE_OF_BASE * 8 / 3 * (1 - cosine * cosine);
    const auto moved = b.point - a.point;
    return std::sqrt(moved.dot(moved) + std::fmax(turned, 0));
}

void pairBases(std::vector<Nucleotide>& nucleotides)
{
    std::vector<algebra3d::Vector3<double>> points;
    algebra3d::reserveMany(points, nucleotides.size());
    for (const Nucleotide& nucleotide : nucleotides)
        points.push_back(nucleotide.frame.point);
    const auto distance = [&](std::size_t i, std::size_t j) {
        const Nucleotide &a = nucleotides[std::min(i, j)], &b = nucleotides[std::max(i, j)];
        const double apart = distanceFromPair(a.frame, b.frame);
        const bool isPair = areComplementary(a.base, b.base) && apart < LARGEST_DISTANCE &&
                            stagger(a.frame, b.frame) < LARGEST_STAGGER;
        return isPair ? apart : std::numeric_limits<double>::infinity();
    };
    const std::vector<std::size_t> partners = mutuallyNearest(points, LARGEST_DISTANCE, distance);
    for (std::size_t i = 0; i < nucleotides.size(); ++i)
        nucleotides[i].partner = partners[i];
}

} // namespace strandview
