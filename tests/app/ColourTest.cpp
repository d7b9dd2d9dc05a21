// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/Colour.h"

#include <gtest/gtest.h>

namespace strandview {

namespace {

void expectColour(const std::string& text, int red, int green, int blue)
{
    const std::optional<Colour> colour = parseColour(text);
    ASSERT_TRUE(colour) << text;
    EXPECT_NEAR(colour->red, red / 255.0, 1e-4) << text;
    EXPECT_NEAR(colour->green, green / 255.0, 1e-4) << text;
    EXPECT_NEAR(colour->blue, blue / 255.0, 1e-4) << text;
}

TEST(Colour, IsWrittenInHexadecimalDigitsOrByItsName)
{
    expectColour("#ff8001", 255, 128, 1);
    expectColour("#FF8001", 255, 128, 1);
    expectColour("#f80", 255, 136, 0);
    expectColour("steelblue", 70, 130, 180);
    expectColour("black", 0, 0, 0);
}

TEST(Colour, IsNothingInAnyOtherText)
{
    for (const char* text : {"", "#", "#ff80", "#gg8000", "ff8000", "no such colour", "1,0,0"})
        EXPECT_FALSE(parseColour(text)) << text;
}

TEST(Colour, IsNeverTransparent)
{
    EXPECT_FALSE(parseColour("transparent"));
    EXPECT_FALSE(parseColour("#80ff0000"));
    EXPECT_TRUE(parseColour("#ffff0000")) << "all of it covers";
}

} // namespace

} // namespace strandview
