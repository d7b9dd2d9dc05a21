// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/outlineOf.h"

#include <algorithm>
#include <cmath>

namespace strandview {

namespace {

using Byte = std::uint8_t;

// How far the lines reach from what they are around, in the desktop's pixels.
const double INNER = 1, CORE = 4, OUTER = 5;

// That of the marks of places; a shade at its sides.
const Byte CORE_COLOUR[] = {255, 217, 26}, RIM_COLOUR[] = {0, 0, 0};

// What is not 0, and so much around it as far as there are pixels.
struct Part
{
    int left, bottom, width, height; // 0 if all is 0
};

Part findPart(const CoverMask& mask, int margin)
{
    int left = mask.width, right = -1, bottom = mask.height, top = -1;
    for (int y = 0; y < mask.height; ++y) {
        const Byte* const row = &mask.covers[std::size_t(y) * std::size_t(mask.width)];
        const auto isCovered = [](Byte cover) { return cover != 0; };
        const Byte* const first = std::find_if(row, row + mask.width, isCovered);
        if (first == row + mask.width)
            continue;
        const Byte* last = row + mask.width - 1;
        while (*last == 0)
            --last;
        left = std::min(left, int(first - row));
        right = std::max(right, int(last - row));
        bottom = std::min(bottom, y);
        top = y;
    }
    if (right < 0)
        return {0, 0, 0, 0};
    left = std::max(left - margin, 0);
    bottom = std::max(bottom - margin, 0);
    return {left, bottom, std::min(right + margin, mask.width - 1) - left + 1,
            std::min(top + margin, mask.height - 1) - bottom + 1};
}

CoverMask cut(const CoverMask& mask, const Part& part)
{
    CoverMask piece{part.width, part.height, {}};
    piece.covers.reserve(std::size_t(part.width) * std::size_t(part.height));
    for (int y = 0; y < part.height; ++y) {
        const auto from =
            mask.covers.begin() + std::ptrdiff_t(part.bottom + y) * mask.width + part.left;
        piece.covers.insert(piece.covers.end(), from, from + part.width);
    }
    return piece;
}

// to[i] = max(to[i], from[i + shift]) of a row, as far as there is one.
void takeLarger(Byte* to, const Byte* from, int width, int shift)
{
    const int first = std::max(0, -shift), end = std::min(width, width - shift);
    for (int i = first; i < end; ++i)
        to[i] = std::max(to[i], from[i + shift]);
}

// The largest of all within a distance: of a disc of rows, from the shortest, at its ends, to that
// through its middle.
CoverMask dilated(const CoverMask& mask, double radius)
{
    CoverMask wide = mask; // as far as the row of the disc is long
    CoverMask result = mask;
    const auto row = [](CoverMask& of, int y) {
        return of.covers.data() + std::size_t(y) * std::size_t(of.width);
    };
    int length = 0;
    for (int up = int(radius); up >= 0; --up) {
        const int next = int(std::sqrt(radius * radius - double(up) * up));
        for (; length < next; ++length) {
            for (int y = 0; y < mask.height; ++y) {
                const Byte* const from =
                    mask.covers.data() + std::size_t(y) * std::size_t(mask.width);
                takeLarger(row(wide, y), from, mask.width, length + 1);
                takeLarger(row(wide, y), from, mask.width, -length - 1);
            }
        }
        for (int y = 0; y < mask.height; ++y) {
            if (y + up < mask.height)
                takeLarger(row(result, y), row(wide, y + up), mask.width, 0);
            if (y - up >= 0)
                takeLarger(row(result, y), row(wide, y - up), mask.width, 0);
        }
    }
    return result;
}

// What the lines around it would fill between two parts of it counts as covered, so that they do
// not paint over what is seen there.
CoverMask withoutGaps(const CoverMask& mask, double radius)
{
    const auto invert = [](CoverMask& of) {
        for (Byte& cover : of.covers)
            cover = Byte(255 - cover);
    };
    CoverMask beside = dilated(mask, radius);
    invert(beside);
    beside = dilated(beside, radius);
    invert(beside);
    return beside;
}

} // namespace

OutlinePicture outlineOf(const CoverMask& mask, double scale)
{
    const Part part = findPart(mask, int(std::ceil(2 * OUTER * scale)) + 1);
    OutlinePicture picture{part.left, part.bottom, part.width, part.height, {}};
    if (part.width == 0)
        return picture;
    const CoverMask piece = withoutGaps(cut(mask, part), OUTER * scale);
    const CoverMask inner = dilated(piece, INNER * scale), core = dilated(piece, CORE * scale),
                    outer = dilated(piece, OUTER * scale);
    picture.pixels.resize(4 * piece.covers.size());
    for (std::size_t i = 0; i < piece.covers.size(); ++i) {
        // Of what is drawn here the core's share is that which the inner rim leaves.
        const int bright = core.covers[i] - inner.covers[i];
        const int all = std::max<int>(outer.covers[i], 1);
        for (std::size_t c = 0; c < 3; ++c)
            picture.pixels[4 * i + c] =
                Byte((CORE_COLOUR[c] * bright + RIM_COLOUR[c] * (all - bright)) / all);
        picture.pixels[4 * i + 3] = Byte(outer.covers[i] * (255 - piece.covers[i]) / 255);
    }
    return picture;
}

} // namespace strandview
