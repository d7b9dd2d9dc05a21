// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_PICTUREREQUEST_H
#define STRANDVIEW_APP_REQUEST_PICTUREREQUEST_H

#include <optional>
#include <string>
#include <utility>

#include "request/limits.h"

namespace strandview {

/// Of a picture on paper, in millimetres.
struct PaperSize
{
    double width, height;
    std::string text; ///< as it was given
};

/// How large and how fine a picture is, as it can be asked for.
struct PictureRequest
{
    int width = 1200, height = 900;      ///< in pixels
    std::optional<PaperSize> paper = {}; ///< the same on paper, if it was given so
    std::optional<int> dpi = {};         ///< pixels per inch that the file tells
    int samples = 3;                     ///< per pixel, in each direction
    bool transparent = false;            ///< without the background

    /// Pixels per inch, also where none were asked for.
    int resolution() const { return dpi.value_or(paper ? DPI_ON_PAPER : DPI_OF_PIXELS); }
};

/// Whether a picture may have such sides, in pixels.
bool isPictureSize(double width, double height);
/// "sides from 1 to 32767 and at most 700000000 pixels in all".
std::string wordsOfPictureSize();

/// As many pixels as a length has, in whole numbers.
double pixelsOf(double millimetres, int dpi);

/// "85.5x60mm".
std::string textOf(const PaperSize& paper);
/// The size of such a text; nothing of any other.
std::optional<PaperSize> parsePaperSize(const std::string& text);
/// Of a text such as "1200x900"; nothing of any other.
std::optional<std::pair<int, int>> parsePixels(const std::string& text);

} // namespace strandview

#endif
