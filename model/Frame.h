// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_FRAME_H
#define STRANDVIEW_MODEL_FRAME_H

#include <optional>
#include <string>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

namespace strandview {

/// Three arrows along the columns of a rotation's matrix.
struct Frame
{
    std::string origin; ///< "glyphs.json: frames[0]"
    algebra3d::Vector3<double> point;
    algebra3d::Quaternion<double> rotation; ///< algebra3d::isRotation()
    std::optional<double> size;             ///< the arrows' length, above 0
};

} // namespace strandview

#endif
