// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_SAMPLEMEANS_H
#define STRANDVIEW_APP_PICTURES_SAMPLEMEANS_H

#include <cstdint>
#include <vector>

namespace strandview {

/// Brings samples together into pixels: each is the mean of a square of samples, rounded to the
/// nearest level, upwards from the middle. A sample is 0xAARRGGBB, of which alpha is not looked at.
class SampleMeans
{
public:
    /// Of n x n samples, 1 to 8.
    explicit SampleMeans(int n);

    /// Of rows of samples, `rowLength` apart, the next pixels of three bytes: red, green, blue.
    void setOpaque(unsigned char* pixels, int count, const std::uint32_t* samples, int rowLength);

    /// The same of what is before black and before white: pixels of four bytes, their colour
    /// apart from their alpha, the last.
    void setTransparent(unsigned char* pixels, int count, const std::uint32_t* black,
                        const std::uint32_t* white, int rowLength) const;

private:
    const int n;
    std::vector<unsigned char> means;           // of a sum
    std::vector<std::uint32_t> redBlue, greens; // sums of columns, two in one number
};

} // namespace strandview

#endif
