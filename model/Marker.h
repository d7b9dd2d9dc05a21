// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_MARKER_H
#define STRANDVIEW_MODEL_MARKER_H

#include <optional>
#include <string>

#include <algebra3d/Vector3.h>

namespace strandview {

/// A glyph at a place.
struct Marker
{
    enum class Shape { SPHERE, CUBE, CROSS };

    std::string origin; ///< "glyphs.json: markers[0]"
    algebra3d::Vector3<double> point;
    Shape shape = Shape::SPHERE;
    std::optional<double> size; ///< diameter or edge, above 0
    /// As the file has it: whoever draws it asks parseColour(), and tells a text that is
    /// no colour as "origin.colour: found ..., expected ...".
    std::optional<std::string> colour;
    double transparency = 0; ///< from 0 to 1
    long long id = 0;        ///< if the file has none, the index among its markers
};

} // namespace strandview

#endif
