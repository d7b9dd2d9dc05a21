// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_STRAIGHTROD_H
#define STRANDVIEW_TESTS_STRAIGHTROD_H

#include <cmath>

#include <strandview/model/Configuration.h>

namespace strandview {

/// A straight rod along x from -reach to reach, with d3 along it.
inline Configuration straightRod(double reach, int points = 5)
{
    Configuration configuration;
    Rod rod;
    for (int i = 0; i < points; ++i) {
        rod.points.emplace_back(reach * (2.0 * i / (points - 1) - 1), 0, 0);
        rod.rotations.emplace_back(0, std::sqrt(0.5), 0, std::sqrt(0.5));
    }
    rod.origin = "rod.txt:1: rod 1";
    configuration.rods.push_back(rod);
    return configuration;
}

} // namespace strandview

#endif
