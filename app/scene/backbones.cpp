// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/backbones.h"

#include <algorithm>

#include <algebra3d/Matrix3.h>

#include <strandview/model/Extent.h>

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
Vector3<double> placed(const Vector3<double>& atom, const Vector3<double>& point,
                       const Quaternion<double>& rotation, Strand strand, double angstrom)
{
    const Matrix3<double> frame(rotation);
    const double side = strand == Strand::FIRST ? angstrom : -angstrom;
    return point + frame.getColumn(0) * (angstrom * atom.x) + frame.getColumn(1) * (side * atom.y) +
           frame.getColumn(2) * (side * atom.z);
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

std::vector<Vector3<double>> idealBackbone(const Dna& dna, Strand strand, double angstrom)
{
    const bool isFirst = strand == Strand::FIRST;
    const auto& points = isFirst ? dna.points1 : dna.points2;
    const auto& rotations = isFirst ? dna.rotations1 : dna.rotations2;
    const std::size_t n = points.size();
    const auto at = [&](std::size_t base, const Vector3<double>& atom) {
        const std::size_t i = isFirst ? base : n - 1 - base;
        return placed(atom, points[i], rotations[i], strand, angstrom);
    };
    std::vector<Vector3<double>> backbone;
    backbone.reserve(n + 1);
    for (std::size_t base = 0; base < n; ++base)
        backbone.push_back(at(base, OWN_PHOSPHORUS));
    if (n > 0)
        backbone.push_back(dna.isClosed ? backbone.front() : at(n - 1, NEXT_PHOSPHORUS));
    return backbone;
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
