// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/PictureName.h"

#include <gtest/gtest.h>

namespace strandview {

TEST(PictureName, HasTheFramesNumberWhereThePatternSays)
{
    EXPECT_EQ(PictureName("out/f_%05d.png").of(12), "out/f_00012.png");
    EXPECT_EQ(PictureName("%d.png").of(12), "12.png");
    EXPECT_EQ(PictureName("f%02d.png").of(123), "f123.png");
    EXPECT_EQ(PictureName("f%00d.png").of(7), "f7.png");
    EXPECT_EQ(PictureName("%019d").of(1), "0000000000000000001");
}

TEST(PictureName, APerCentSignOfAPatternIsWrittenTwice)
{
    EXPECT_EQ(PictureName("50%%/f%%_%d%%.png").of(3), "50%/f%_3%.png");
    EXPECT_EQ(PictureName("%%d_%d.png").of(3), "%d_3.png");
    EXPECT_EQ(PictureName("%%%d%%%%.png").of(3), "%3%%.png");
}

TEST(PictureName, WithoutANumberIsANameAsItStands)
{
    for (const char* name : {"a.png", "100%.png", "50%%.png", "%s.png", "%5d.png", "%x%%d.png",
                             "%0d.png", "%020d.png", ""}) {
        EXPECT_FALSE(PictureName(name).isPattern()) << name;
        EXPECT_EQ(PictureName(name).of(3), name);
    }
}

TEST(PictureName, ASecondNumberIsNoPattern)
{
    EXPECT_EQ(PictureName("%d_%d.png").countNumbers(), 2U);
    EXPECT_FALSE(PictureName("%d_%d.png").isPattern());
}

} // namespace strandview
