// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/outlineOf.h"

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

namespace strandview {

namespace {

CoverMask emptyMask(int width, int height)
{
    return {width, height, std::vector<std::uint8_t>(std::size_t(width) * std::size_t(height))};
}

std::uint8_t& at(CoverMask& mask, int x, int y)
{
    return mask.covers[std::size_t(y) * std::size_t(mask.width) + std::size_t(x)];
}

struct Pixel
{
    int red, green, blue, alpha;
};

// Transparent beside the picture.
Pixel at(const OutlinePicture& picture, int x, int y)
{
    const int column = x - picture.left, row = y - picture.bottom;
    if (column < 0 || row < 0 || column >= picture.width || row >= picture.height)
        return {0, 0, 0, 0};
    const std::uint8_t* const p =
        &picture.pixels[4 * (std::size_t(row) * std::size_t(picture.width) + std::size_t(column))];
    return {p[0], p[1], p[2], p[3]};
}

bool isBright(const Pixel& p) { return p.red > 200 && p.green > 150 && p.blue < 100; }
bool isDark(const Pixel& p) { return p.red + p.green + p.blue < 30; }

// By going over all pixels.
int largestWithin(const CoverMask& mask, int x, int y, double distance)
{
    int largest = 0;
    for (int v = 0; v < mask.height; ++v)
        for (int u = 0; u < mask.width; ++u)
            if (double((u - x) * (u - x) + (v - y) * (v - y)) <= distance * distance)
                largest = std::max<int>(
                    largest,
                    mask.covers[std::size_t(v) * std::size_t(mask.width) + std::size_t(u)]);
    return largest;
}

// The mask with the gaps covered that a disc of that radius does not fit into.
CoverMask closedMask(const CoverMask& mask, double radius)
{
    CoverMask beside = emptyMask(mask.width, mask.height), closed = beside;
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x)
            at(beside, x, y) = std::uint8_t(255 - largestWithin(mask, x, y, radius));
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x)
            at(closed, x, y) = std::uint8_t(255 - largestWithin(beside, x, y, radius));
    return closed;
}

TEST(OutlineOf, NothingIsNothing)
{
    EXPECT_EQ(outlineOf(emptyMask(20, 10), 1).width, 0);
    EXPECT_EQ(outlineOf(emptyMask(0, 0), 1).width, 0);
}

TEST(OutlineOf, AroundAPixelAreADarkABrightAndADarkRing)
{
    CoverMask mask = emptyMask(40, 30);
    at(mask, 15, 12) = 255;
    for (const int scale : {1, 2}) {
        const OutlinePicture outline = outlineOf(mask, scale);
        EXPECT_EQ(at(outline, 15, 12).alpha, 0) << "what is covered is not painted over";
        for (const int side : {-1, 1}) {
            for (int i = 1; i <= 5 * scale; ++i) {
                for (const Pixel& p :
                     {at(outline, 15 + side * i, 12), at(outline, 15, 12 + side * i)}) {
                    EXPECT_EQ(p.alpha, 255) << i;
                    EXPECT_EQ(isDark(p), i <= scale || i > 4 * scale) << i;
                    EXPECT_EQ(isBright(p), i > scale && i <= 4 * scale) << i;
                }
            }
            EXPECT_EQ(at(outline, 15 + side * (5 * scale + 1), 12).alpha, 0);
        }
    }
}

TEST(OutlineOf, FillsNoGapBetweenWhatIsCovered)
{
    CoverMask mask = emptyMask(60, 30);
    for (int x = 10; x < 50; ++x)
        for (const int y : {8, 14, 26}) // with 5 rows and 11 between
            at(mask, x, y) = 255;
    const OutlinePicture outline = outlineOf(mask, 1);
    for (int y = 9; y < 14; ++y)
        EXPECT_EQ(at(outline, 30, y).alpha, 0) << y;
    EXPECT_TRUE(isBright(at(outline, 30, 17)));
    EXPECT_TRUE(isBright(at(outline, 30, 5)));
}

TEST(OutlineOf, IsWhatTheDistancesSayOfAnyMask)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20; ++round) {
        CoverMask mask = emptyMask(int(10 + random() % 30), int(10 + random() % 30));
        for (int i = 0; i < 6; ++i) // often at an edge
            at(mask, int(random() % unsigned(mask.width)), int(random() % unsigned(mask.height))) =
                std::uint8_t(random() % 3 ? 255 : random() % 256);
        const OutlinePicture outline = outlineOf(mask, 1);
        mask = closedMask(mask, 5);
        for (int y = 0; y < mask.height; ++y) {
            for (int x = 0; x < mask.width; ++x) {
                const int outer = largestWithin(mask, x, y, 5), cover = at(mask, x, y);
                const Pixel found = at(outline, x, y);
                ASSERT_EQ(found.alpha, outer * (255 - cover) / 255) << x << " " << y;
                const int bright = largestWithin(mask, x, y, 4) - largestWithin(mask, x, y, 1);
                ASSERT_EQ(found.red, outer > 0 ? 255 * bright / outer : 0) << x << " " << y;
            }
        }
    }
}

} // namespace

} // namespace strandview
