// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_COLOUR_H
#define STRANDVIEW_APP_REQUEST_COLOUR_H

#include <optional>
#include <string>

namespace strandview {

/// Red, green and blue in [0, 1].
struct Colour
{
    float red, green, blue;
};

inline bool operator==(const Colour& a, const Colour& b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue;
}

/// #rgb, #rrggbb or an SVG name such as "steelblue"; nothing for any other text.
std::optional<Colour> parseColour(const std::string& text);

} // namespace strandview

#endif
