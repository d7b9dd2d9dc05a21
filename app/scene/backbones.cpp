// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/backbones.h"

#include <algorithm>

#include <algebra3d/Matrix3.h>

#include <strandview/model/Extent.h>
#include <strandview/model/points.h>

namespace strandview {

using algebra3d::Matrix3;
using algebra3d::Quaternion;
using algebra3d::Vector3;

namespace {

// In the frame of a base of strand 1, in ångström: its own phosphorus atom, on the 5' side, and
// that of the base that follows. Means of the 22 in the B-DNA dodecamer (H. R. Drew et al.,
// Structure of a B-DNA dodecamer, Proc. Natl Acad. Sci. USA 78, 1981, 2179-2183; entry 1BNA), about
// which they scatter by 0.4 to 0.6 along each axis; the 292 of the nucleosome 1KX5 have means
// within 0.2 of these.
const Vector3<double> OWN_PHOSPHORUS(-0.14, 9.37, -2.00);
const Vector3<double> NEXT_PHOSPHORUS(-5.24, 7.81, 1.98);

// Strand 2 is strand 1 turned by half a turn about d1.
Vector3<double> atBase(const Vector3<double>& atom, const Dna& dna, Strand strand, std::size_t pair,
                       double angstrom)
{
    const bool isFirst = strand == Strand::FIRST;
    const Matrix3<double> frame(isFirst ? dna.rotations1[pair] : dna.rotations2[pair]);
    const double side = isFirst ? angstrom : -angstrom;
    return (isFirst ? dna.points1 : dna.points2)[pair] + frame.getColumn(0) * (angstrom * atom.x) +
           frame.getColumn(1) * (side * atom.y) + frame.getColumn(2) * (side * atom.z);
}

} // namespace

Molecules::Molecules(const Configuration& configuration)
{
    for (const Rod& rod : configuration.rods) {
        largest = std::max(largest, rod.molecule);
        if (rod.isBackbone && rod.molecule > 0)
            withBackbone.insert(rod.molecule);
    }
    for (const Dna& dna : configuration.dnas)
        largest = std::max(largest, dna.molecule);
}

Vector3<double> idealPhosphorus(const Dna& dna, Strand strand, std::size_t pair, double angstrom)
{
    return atBase(OWN_PHOSPHORUS, dna, strand, pair, angstrom);
}

std::vector<Vector3<double>> idealBackbone(const Dna& dna, Strand strand, double angstrom)
{
    const bool isFirst = strand == Strand::FIRST;
    const std::size_t n = isFirst ? dna.points1.size() : dna.points2.size();
    const auto pairOf = [&](std::size_t base) { return isFirst ? base : n - 1 - base; };
    std::vector<Vector3<double>> backbone;
    backbone.reserve(n + 1);
    for (std::size_t base = 0; base < n; ++base)
        backbone.push_back(idealPhosphorus(dna, strand, pairOf(base), angstrom));
    if (n > 0)
        backbone.push_back(dna.isClosed
                               ? backbone.front()
                               : atBase(NEXT_PHOSPHORUS, dna, strand, pairOf(n - 1), angstrom));
    return backbone;
}

std::vector<Vector3<double>> withoutCoincident(const std::vector<Vector3<double>>& points)
{
    const double least = smallestEdge(points);
    std::vector<Vector3<double>> apart;
    for (const Vector3<double>& point : points) {
        if (apart.empty() ||
            !(areCoincident(apart.back(), point) || (apart.back() - point).getNorm() < least))
            apart.push_back(point);
    }
    return apart;
}

long long countSegments(const Configuration& configuration, const DnaLook& look)
{
    long long count = measure(configuration).segments;
    if (!look.backbone)
        return count;
    const Molecules molecules(configuration);
    for (const Dna& dna : configuration.dnas) {
        if (!molecules.hasBackbone(dna.molecule))
            count += 2 * (long long)(dna.bases.size());
    }
    return count;
}

} // namespace strandview
