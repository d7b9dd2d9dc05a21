// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/PictureRequest.h"

#include <algorithm>
#include <cmath>

#include <strandview/formats/text/wording.h>

namespace strandview {

bool isPictureSize(double width, double height)
{
    return std::min(width, height) >= 1 && std::max(width, height) <= LARGEST_PICTURE_SIDE &&
           width * height <= LARGEST_PIXEL_COUNT;
}

std::string wordsOfPictureSize()
{
    return "sides from 1 to " + std::to_string(LARGEST_PICTURE_SIDE) + " and at most " +
           std::to_string(LARGEST_PIXEL_COUNT) + " pixels in all";
}

double pixelsOf(double millimetres, int dpi) { return std::round(millimetres / 25.4 * dpi); }

std::string textOf(const PaperSize& paper)
{
    return formatted(paper.width) + "x" + formatted(paper.height) + "mm";
}

} // namespace strandview
