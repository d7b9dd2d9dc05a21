// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CONFIGURATION_H
#define STRANDVIEW_APP_CONFIGURATION_H

#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

/// One named number per point of a rod.
struct Scalar
{
    std::string name;
    std::vector<double> values;
};

/// One rod: at least two distinct consecutive points, as many unit quaternions
/// (the material frames), and scalars of the same length, in the file's order.
struct Rod
{
    std::string origin; ///< for messages: "helix.txt:2: rod 1", "helix.json: rods[0]"
    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    std::vector<Scalar> scalars;
};

/// All that a user asked to see, free of any style.
struct Configuration
{
    std::vector<Rod> rods;
};

#endif
