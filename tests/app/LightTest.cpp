// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/Light.h"

#include <gtest/gtest.h>

namespace strandview {

TEST(LightTest, ADirectionAnIntensityOrBothAreALight)
{
    const std::optional<Light> both = parseLight("0.5,-2,1e-20:0.25");
    ASSERT_TRUE(both && both->direction);
    EXPECT_EQ(both->direction->x, 0.5);
    EXPECT_EQ(both->direction->y, -2);
    EXPECT_EQ(both->direction->z, 1e-20);
    EXPECT_EQ(both->intensity, 0.25);
    EXPECT_EQ(parseLight("0,0,-1"), parseLight("0,0,-1:1"));
    EXPECT_EQ(parseLight("0.5"), (Light{{}, 0.5}));
    EXPECT_EQ(parseLight("off"), (Light{{}, 0}));
    EXPECT_FALSE(parseLight("0,0,-1") == parseLight("0,0,-2"));
    EXPECT_FALSE(parseLight("0,0,-1") == parseLight("1"));
}

TEST(LightTest, ALightIsWrittenSoThatItIsReadBackAsTheSame)
{
    for (const char* text : {"0.30000000000000004,-1e-20,5:0.1", "0,0,-1", "0", "1", "0,0,0:0"})
        EXPECT_EQ(formatLight(parseLight(text).value()), text);
}

TEST(LightTest, WhatIsNoLightIsNone)
{
    for (const char* text : {"", "on", "1.5", "-0.1", "nan", "inf", "0,0", "0,0,-1:", "0,0,-1:2",
                             "0,0,-1:x", ":0.5", "0.5:0.5", "0,0,nan", "0,0,1e300", "0,0,-1:1:1"})
        EXPECT_FALSE(parseLight(text)) << text;
}

TEST(LightTest, ShininessIsOfAllLightsOrOfEach)
{
    EXPECT_EQ(parseShininess("12.5"), (Shininess{12.5, 12.5, 12.5}));
    EXPECT_EQ(parseShininess("10,5,0"), (Shininess{10, 5, 0}));
    for (const char* text : {"0", "12.5", "10,5,0", "1,1,0.30000000000000004"})
        EXPECT_EQ(formatShininess(parseShininess(text).value()), text);
    EXPECT_EQ(formatShininess({3, 3, 3}), "3");
    for (const char* text : {"", "-1", "1,2", "1,2,-3", "1,2,3,4", "nan", "1e300", "x"})
        EXPECT_FALSE(parseShininess(text)) << text;
}

} // namespace strandview
