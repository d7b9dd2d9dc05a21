// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_ARROW_H
#define STRANDVIEW_MODEL_ARROW_H

#include <optional>
#include <string>

#include <algebra3d/Vector3.h>

namespace strandview {

/// An arrow between two points, which may be one.
struct Arrow
{
    std::string origin; ///< "glyphs.json: arrows[0]"
    algebra3d::Vector3<double> from;
    algebra3d::Vector3<double> to;
    std::optional<double> radius;      ///< of the shaft, above 0
    std::optional<std::string> colour; ///< as of a Marker
};

} // namespace strandview

#endif
