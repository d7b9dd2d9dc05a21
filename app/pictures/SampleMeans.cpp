// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/SampleMeans.h"

#include <algorithm>

namespace strandview {

namespace {

int ratio(int sum, int count) { return (2 * sum + count) / (2 * count); }

int redOf(std::uint32_t sample) { return int(sample >> 16 & 0xff); }
int greenOf(std::uint32_t sample) { return int(sample >> 8 & 0xff); }
int blueOf(std::uint32_t sample) { return int(sample & 0xff); }

// What a pixel's samples add up to.
struct Sum
{
    int red = 0;
    int green = 0;
    int blue = 0;
    int alpha = 0;
};

// How much of the background shows is found by rendering before black and before white
// (A. R. Smith and J. F. Blinn, Blue screen matting, SIGGRAPH 1996): what covers a sample
// is black's picture, and covers all that white's does not exceed it by. So neither the
// colour of what is shown nor that of the background matters.
void addSeparated(Sum& sum, std::uint32_t black, std::uint32_t white)
{
    const int shining = std::min({redOf(white) - redOf(black), greenOf(white) - greenOf(black),
                                  blueOf(white) - blueOf(black)});
    const int alpha = 255 - std::max(shining, 0);
    sum.red += std::min(redOf(black), alpha);
    sum.green += std::min(greenOf(black), alpha);
    sum.blue += std::min(blueOf(black), alpha);
    sum.alpha += alpha;
}

} // namespace

SampleMeans::SampleMeans(int samplesAcross) : n(samplesAcross)
{
    for (int sum = 0; sum <= 255 * n * n; ++sum)
        means.push_back(static_cast<unsigned char>(ratio(sum, n * n)));
}

void SampleMeans::setOpaque(unsigned char* pixels, int count, const std::uint32_t* samples,
                            int rowLength)
{
    const int columns = n * count;
    redBlue.assign(columns, 0);
    greens.assign(columns, 0);
    for (int row = 0; row < n; ++row, samples += rowLength) {
        for (int i = 0; i < columns; ++i) {
            redBlue[i] += samples[i] & 0xff00ff; // sums of 64 fit in 16 bits
            greens[i] += samples[i] >> 8 & 0xff;
        }
    }
    for (int column = 0; column < columns; pixels += 3) {
        std::uint32_t both = 0, green = 0;
        for (const int end = column + n; column < end; ++column) {
            both += redBlue[column];
            green += greens[column];
        }
        pixels[0] = means[both >> 16];
        pixels[1] = means[green];
        pixels[2] = means[both & 0xffff];
    }
}

void SampleMeans::setTransparent(unsigned char* pixels, int count, const std::uint32_t* black,
                                 const std::uint32_t* white, int rowLength) const
{
    for (int pixel = 0; pixel < count; ++pixel, pixels += 4) {
        Sum sum;
        for (int row = 0; row < n; ++row) {
            for (int i = 0; i < n; ++i) {
                const int at = row * rowLength + n * pixel + i;
                addSeparated(sum, black[at], white[at]);
            }
        }
        const auto part = [&sum](int colour) {
            return sum.alpha > 0 ? static_cast<unsigned char>(ratio(255 * colour, sum.alpha)) : 0;
        };
        pixels[0] = part(sum.red);
        pixels[1] = part(sum.green);
        pixels[2] = part(sum.blue);
        pixels[3] = static_cast<unsigned char>(ratio(sum.alpha, n * n));
    }
}

} // namespace strandview
