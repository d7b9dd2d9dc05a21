// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_SUPPORT_KNOTS_H
#define STRANDVIEW_TESTS_SUPPORT_KNOTS_H

#include <cmath>
#include <vector>

#include <algebra3d/Vector3.h>

namespace strandview {

/// So many points at equal steps of a parameter from 0 to 2 pi, and the first once more.
template <typename Place>
std::vector<algebra3d::Vector3<double>> ringOf(int size, Place place)
{
    std::vector<algebra3d::Vector3<double>> points;
    for (int i = 0; i <= size; ++i)
        points.push_back(place(2 * std::acos(-1.0) * (i % size) / size));
    return points;
}

inline std::vector<algebra3d::Vector3<double>> trefoil(int size)
{
    return ringOf(size, [](double t) {
        return algebra3d::Vector3<double>(std::sin(t) + 2 * std::sin(2 * t),
                                          std::cos(t) - 2 * std::cos(2 * t), -std::sin(3 * t));
    });
}

/// Around the axis of a torus of radii 2 and 1 so many times, and around its tube.
inline std::vector<algebra3d::Vector3<double>> torusKnot(int aroundAxis, int aroundTube, int size)
{
    return ringOf(size, [=](double t) {
        const double r = 2 + std::cos(aroundTube * t);
        return algebra3d::Vector3<double>(r * std::cos(aroundAxis * t),
                                          r * std::sin(aroundAxis * t), std::sin(aroundTube * t));
    });
}

/// The normals of the torus at its points.
inline std::vector<algebra3d::Vector3<double>> torusNormals(int aroundAxis, int aroundTube,
                                                            int size)
{
    return ringOf(size, [=](double t) {
        const double out = std::cos(aroundTube * t);
        return algebra3d::Vector3<double>(out * std::cos(aroundAxis * t),
                                          out * std::sin(aroundAxis * t), std::sin(aroundTube * t));
    });
}

} // namespace strandview

#endif
