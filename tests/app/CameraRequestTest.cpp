// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/CameraRequest.h"

#include <cmath>

#include <gtest/gtest.h>

namespace strandview {

using Vector = CameraRequest::Vector;

TEST(CameraRequest, APointIsThreeFiniteNumbers)
{
    const auto point = parsePoint("1,-2.5,1e3");
    ASSERT_TRUE(point);
    EXPECT_EQ(point->x, 1);
    EXPECT_EQ(point->y, -2.5);
    EXPECT_EQ(point->z, 1000);
    for (const char* text : {"", "1", "1,2", "1,2,", ",1,2", "1,2,3,4", "1,2,3,", "1;2;3", "1,2,x",
                             "1,2,nan", "1,2,inf", "1, 2,3"})
        EXPECT_FALSE(parsePoint(text)) << text;
}

TEST(CameraRequest, ADirectionIsNamedOrNotZero)
{
    for (const NamedSide& side : SIDES) {
        const auto direction = parseDirection(side.name);
        ASSERT_TRUE(direction) << side.name;
        EXPECT_EQ((*direction - towardsViewer(side.side)).getNorm(), 0);
    }
    const auto direction = parseDirection("0,1e-200,-1e-200");
    ASSERT_TRUE(direction);
    EXPECT_NEAR(direction->getUnit().y, std::sqrt(0.5), 1e-15);
    const auto large = parseDirection("1e300,1e300,0");
    ASSERT_TRUE(large);
    EXPECT_NEAR(large->getUnit().x, std::sqrt(0.5), 1e-15);
    for (const char* text : {"", "w", "xy", "0,0,0", "0,0", "X"})
        EXPECT_FALSE(parseDirection(text)) << text;
}

TEST(CameraRequest, WhatIsLeftOpenIsTheUsualSideUnlessAnglesCountFromTheFront)
{
    CameraRequest request;
    EXPECT_EQ(withUsualSide(request, Side::X).side, Side::X);
    request.up = Vector(0, 0, 2);
    EXPECT_EQ(withUsualSide(request, Side::X).side, Side::X);
    EXPECT_EQ(withUsualSide(request, Side::Z).side, std::nullopt) << "which is along what is up";
    EXPECT_EQ(withUsualSide(request, Side::MINUS_Z).side, std::nullopt);
    request.up.reset();
    request.elevation = 0;
    EXPECT_EQ(withUsualSide(request, Side::X).side, std::nullopt);
    request.side = Side::MINUS_Y;
    EXPECT_EQ(withUsualSide(request, Side::X).side, Side::MINUS_Y) << "it was asked for";
}

TEST(CameraRequest, UpIsWhatWasAskedForOrThatOfTheSideOrZ)
{
    CameraRequest request;
    EXPECT_EQ(upOf(request).z, 1);
    request.side = Side::Z;
    EXPECT_EQ(upOf(request).y, 1);
    request.side = Side::Y;
    EXPECT_EQ(upOf(request).z, 1);
    request.up = Vector(-3, 0, 0);
    EXPECT_EQ(upOf(request).x, -1);
    EXPECT_TRUE(isAlong(*request.up, Side::X));
    EXPECT_TRUE(isAlong(*request.up, Side::MINUS_X));
    EXPECT_FALSE(isAlong({-3, 1e-3, 0}, Side::X));
}

} // namespace strandview
