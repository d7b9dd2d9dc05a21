// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_OUTLINEOF_H
#define STRANDVIEW_APP_WINDOW_OUTLINEOF_H

#include <cstdint>
#include <vector>

namespace strandview {

/// Which share of each pixel something covers, from 0 to 255: row by row, the lowest first.
struct CoverMask
{
    int width = 0, height = 0;
    std::vector<std::uint8_t> covers;
};

/// A part of the same pixels, to be blended over them: red, green, blue and alpha of each.
struct OutlinePicture
{
    int left = 0, bottom = 0;
    int width = 0, height = 0; ///< 0 if there is nothing
    std::vector<std::uint8_t> pixels;
};

/// A bright line around what is covered, between two dark ones, so that it is seen beside any
/// colour: `scale` is the view's pixels in one of the desktop's. Nothing is drawn on what is
/// covered wholly, nor in gaps that it would fill. Any thread.
OutlinePicture outlineOf(const CoverMask& mask, double scale);

} // namespace strandview

#endif
