// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/ClipPlane.h"

#include <cmath>

#include <gtest/gtest.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

void expectNear(const Vector& a, const Vector& b) { EXPECT_LT((a - b).getNorm(), 1e-15); }

} // namespace

TEST(ClipPlaneTest, ATextIsASideOrANormalAndADistanceOrNone)
{
    const auto side = parseClipPlane("-y");
    ASSERT_TRUE(side);
    expectNear(side->normal, {0, -1, 0});
    EXPECT_EQ(side->distance, std::nullopt);
    const auto slanted = parseClipPlane("1,0,-2.5:0.2");
    ASSERT_TRUE(slanted);
    expectNear(slanted->normal, {1, 0, -2.5});
    EXPECT_EQ(slanted->distance, 0.2);
}

TEST(ClipPlaneTest, AnyOtherTextIsNone)
{
    for (const char* text : {"", "w", "z:", ":1", "z:up", "z:nan", "z:1:2", "1,2", "1,2,3,4",
                             "1,2,:3", "0,0,0:1", "inf,0,0", "Z", "z 1", "1,2,3,"})
        EXPECT_EQ(parseClipPlane(text), std::nullopt) << text;
}

TEST(ClipPlaneTest, APlaneIsWrittenAsItIsReadAndAlongAnAxisAsASide)
{
    for (const char* text : {"x", "-z:0", "1,1,0", "0.1,-3,1e+30:-7.25"})
        EXPECT_EQ(formatClipPlane(parseClipPlane(text).value()), text);
    EXPECT_EQ(formatClipPlane({{0, 0, 1}, 0.1}), "z:0.1");
    EXPECT_EQ(formatClipPlane({{0, 0, 2}, {}}), "0,0,2");
}

TEST(ClipPlaneTest, AUnitNormalHasTheLength1HoweverLongTheNormalIs)
{
    for (const double length : {1e-300, 1.0, 1e300}) {
        const ClipPlane plane{{3 * length, 0, -4 * length}, {}};
        expectNear(plane.unitNormal(), {0.6, 0, -0.8});
    }
}

} // namespace strandview
