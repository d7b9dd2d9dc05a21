// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_ROD_H
#define STRANDVIEW_MODEL_ROD_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/model/Scalar.h>

namespace strandview {

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
    bool hasFrames = true;                 ///< of its own; else the rotations were made

    std::string name = {};                  ///< that the file gives it; may be empty
    std::optional<std::string> colour = {}; ///< as that of a Marker
    std::optional<double> radius = {};      ///< of its tube, above 0
    /// Then the last point is the first one again, exactly. Its rotation is that of the first one,
    /// or its opposite, unless the frames turn on around a closed centreline.
    bool isClosed = false;
    bool isBackbone = false;  ///< of a strand of DNA, from its 5' end to its 3' end
    std::size_t molecule = 0; ///< what has the same number, above 0, belongs together
};

} // namespace strandview

#endif
