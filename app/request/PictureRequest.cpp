// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/PictureRequest.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <strandview/formats/text/wording.h>

#include "request/parseNumber.h"

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

std::optional<std::pair<int, int>> parsePixels(const std::string& text)
{
    int width = 0, height = 0;
    const char* end = text.data() + text.size();
    const auto w = std::from_chars(text.data(), end, width);
    if (w.ec != std::errc() || w.ptr == end || (*w.ptr != 'x' && *w.ptr != 'X'))
        return std::nullopt;
    const auto h = std::from_chars(w.ptr + 1, end, height);
    if (h.ec != std::errc() || h.ptr != end || width < 1 || height < 1)
        return std::nullopt;
    return std::pair(width, height);
}

std::optional<PaperSize> parsePaperSize(const std::string& text)
{
    const std::string unit = "mm";
    const std::size_t cross = text.find_first_of("xX");
    if (cross == std::string::npos || text.size() < cross + 1 + unit.size() ||
        text.substr(text.size() - unit.size()) != unit)
        return std::nullopt;
    const std::string height = text.substr(cross + 1, text.size() - unit.size() - cross - 1);
    const std::optional<double> w = parseNumber<double>(text.substr(0, cross));
    const std::optional<double> h = parseNumber<double>(height);
    if (!w || !h || !(*w > 0) || !(*h > 0))
        return std::nullopt;
    return PaperSize{*w, *h, text};
}

std::string textOf(const PaperSize& paper)
{
    return formatted(paper.width) + "x" + formatted(paper.height) + "mm";
}

} // namespace strandview
