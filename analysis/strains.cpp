// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/strains.h>

#include <cmath>
#include <cstddef>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;

} // namespace

Vector rotationVector(const Quaternion& from, const Quaternion& to)
{
    const Quaternion q = algebra3d::nearer(algebra3d::conjugate(from) * to, Quaternion());
    const Vector axis(q[0], q[1], q[2]);
    const double sine = axis.getNorm();
    // The angle over its half's sine, which tends to 2.
    return axis * (sine < 1e-12 ? 2 / q[3] : 2 * std::atan2(sine, q[3]) / sine);
}

std::vector<Vector> strainsOfElements(const std::vector<Vector>& points,
                                      const std::vector<Quaternion>& rotations)
{
    std::vector<Vector> strains;
    strains.reserve(points.size());
    for (std::size_t i = 0; i + 1 < points.size(); ++i)
        strains.push_back(rotationVector(rotations[i], rotations[i + 1]) *
                          (1 / (points[i + 1] - points[i]).getNorm()));
    return strains;
}

std::vector<Vector> shearsOfElements(const std::vector<Vector>& points,
                                     const std::vector<Quaternion>& rotations,
                                     const std::vector<double>& referenceLengths)
{
    std::vector<Vector> shears;
    shears.reserve(points.size());
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Quaternion middle = algebra3d::slerp(rotations[i], rotations[i + 1], 0.5);
        const Vector edge =
            algebra3d::rotated(points[i + 1] - points[i], algebra3d::conjugate(middle));
        shears.push_back(edge * (1 / referenceLengths[i]) - Vector(0, 0, 1));
    }
    return shears;
}

} // namespace strandview
