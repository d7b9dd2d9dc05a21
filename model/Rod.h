// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_ROD_H
#define STRANDVIEW_MODEL_ROD_H

#include <cstddef>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

namespace strandview {

/// One named number per point of a rod; not-a-number where it is not known.
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
    std::vector<std::size_t> lines = {};   ///< of its points, if the file is a table
    std::vector<std::size_t> indices = {}; ///< of its points in the file, if some were left out
    bool hasFrames = true; ///< of its own; else the rotations were made by parallel transport
};

} // namespace strandview

#endif
