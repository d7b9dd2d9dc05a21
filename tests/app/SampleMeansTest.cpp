// SPDX-License-Identifier: GPL-3.0-or-later
// Pictures of which nothing but the background is transparent are in PictureWriterTest.cpp.
#include "pictures/SampleMeans.h"

#include <random>

#include <gtest/gtest.h>

namespace strandview {

namespace {

using Samples = std::vector<std::uint32_t>;
using Bytes = std::vector<unsigned char>;

const std::uint32_t WHITE = 0xffffffff, BLACK = 0xff000000, RED = 0xffff0000;

Samples noise(std::size_t count)
{
    std::mt19937 random(1);
    Samples samples(count);
    for (std::uint32_t& sample : samples)
        sample = std::uint32_t(random());
    return samples;
}

Bytes opaque(int n, int count, const Samples& samples, int rowLength)
{
    Bytes pixels(3 * std::size_t(count));
    SampleMeans(n).setOpaque(pixels.data(), count, samples.data(), rowLength);
    return pixels;
}

Bytes transparent(int n, int count, const Samples& black, const Samples& white)
{
    Bytes pixels(4 * std::size_t(count));
    SampleMeans(n).setTransparent(pixels.data(), count, black.data(), white.data(), n * count);
    return pixels;
}

} // namespace

TEST(SampleMeans, OneSampleIsThePixel)
{
    EXPECT_EQ(opaque(1, 2, {0x00010203, 0xfffefdfc}, 2), (Bytes{1, 2, 3, 254, 253, 252}));
}

// Of nine samples 1, 4, 5 and 8 are one level higher: 1/9, 4/9, 5/9 and 8/9 of a level.
TEST(SampleMeans, RoundToTheNearestLevel)
{
    for (const int higher : {1, 4, 5, 8}) {
        Samples samples(9, 0xff646464);
        for (int i = 0; i < higher; ++i)
            samples[i] = 0xff656565;
        const unsigned char expected = higher < 5 ? 100 : 101;
        EXPECT_EQ(opaque(3, 1, samples, 3), Bytes(3, expected)) << higher;
    }
}

TEST(SampleMeans, RoundUpwardsFromTheMiddle)
{
    EXPECT_EQ(opaque(2, 1, {WHITE, WHITE, BLACK, BLACK}, 2), Bytes(3, 128)); // 127.5
}

TEST(SampleMeans, AreThoseOfTheFormulaForEveryNumberOfSamples)
{
    const int count = 5;
    for (int n = 1; n <= 8; ++n) {
        SCOPED_TRACE(n);
        const int rowLength = n * count + 3;
        const Samples samples = noise(std::size_t(n) * rowLength);
        const Bytes pixels = opaque(n, count, samples, rowLength);
        for (int pixel = 0; pixel < count; ++pixel) {
            for (int channel = 0; channel < 3; ++channel) {
                double sum = 0;
                for (int row = 0; row < n; ++row) {
                    for (int i = 0; i < n; ++i)
                        sum += samples[row * rowLength + n * pixel + i] >> (16 - 8 * channel) & 255;
                }
                EXPECT_EQ(pixels[3 * pixel + channel], int(sum / (n * n) + 0.5));
            }
        }
    }
}

TEST(SampleMeans, AllWhiteStaysWhite)
{
    EXPECT_EQ(opaque(8, 1, Samples(64, WHITE), 8), Bytes(3, 255));
}

// Covered: the same before black and white. Not covered: black and white.
TEST(SampleMeans, TransparencyIsThePartThatIsNotCovered)
{
    EXPECT_EQ(transparent(2, 1, {RED, RED, RED, BLACK}, {RED, RED, RED, WHITE}),
              (Bytes{255, 0, 0, 191}));
    EXPECT_EQ(transparent(2, 1, Samples(4, BLACK), Samples(4, WHITE)), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(transparent(2, 1, Samples(4, BLACK), Samples(4, BLACK)), (Bytes{0, 0, 0, 255}));
}

} // namespace strandview
