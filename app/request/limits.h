// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_LIMITS_H
#define STRANDVIEW_APP_REQUEST_LIMITS_H

#include <algorithm>
#include <cmath>

namespace strandview {

/// Of a picture: Coin holds its sides in 16 bits, and Qt its bytes in 31.
constexpr int LARGEST_PICTURE_SIDE = 32767;
constexpr int LARGEST_PIXEL_COUNT = 700'000'000;

/// Pixels per inch that a picture may have; those of one whose size is in millimetres, and of one
/// whose size is in pixels, unless others are asked for.
constexpr int SMALLEST_DPI = 10, LARGEST_DPI = 10'000;
constexpr int DPI_ON_PAPER = 300, DPI_OF_PIXELS = 100;

/// Of a pixel, in each direction.
constexpr int MOST_SAMPLES = 8;

/// Of lines, in pixels; drivers draw thick ones as thick as they can.
constexpr double SMALLEST_LINE_WIDTH = 0.1, LARGEST_LINE_WIDTH = 20;

/// Of a number of a light's direction, and of its shininess: squares of it are finite in single
/// precision.
constexpr double LARGEST_OF_LIGHT = 1e18;

/// What is said where memory ends, after the name of what is read, shown or written.
constexpr const char* TOO_LITTLE_MEMORY_FOR_DATA =
    "found too little memory for so many points, rows or pixels";
constexpr const char* TOO_LITTLE_MEMORY_FOR_FRAME = "found too little memory for it";

/// Of more pairs of edges than these, all lines of a file together, what grows with their number is
/// not told unless it is asked for: about two seconds.
constexpr double MOST_EDGE_PAIRS = 5e8;

/// The largest magnitude of a limit of a range that can be given ticks.
constexpr double LARGEST_LIMIT = 1e307;

/// Whether double precision tells enough values between two limits apart to number them:
/// max lies above min by at least 1e-300 and a 1e-12th of the larger magnitude, and no
/// magnitude is above LARGEST_LIMIT.
inline bool isRange(double min, double max)
{
    const double magnitude = std::max(std::abs(min), std::abs(max));
    return magnitude <= LARGEST_LIMIT && max - min >= 1e-300 && max - min >= 1e-12 * magnitude;
}

} // namespace strandview

#endif
