// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Placement.h"

#include <gtest/gtest.h>

#include <strandview/model/Extent.h>

namespace strandview {

namespace {

void expectSame(const algebra3d::Vector3<double>& actual,
                const algebra3d::Vector3<double>& expected)
{
    for (int axis = 0; axis < 3; ++axis)
        EXPECT_EQ(actual[axis], expected[axis]) << axis;
}

// Ten segments of length 1 in a box of diagonal 5, whose centre is so far from the origin.
Extent makeExtent(double distance)
{
    Extent extent;
    extent.centre = {0, 0.6 * distance, 0.8 * distance};
    extent.sides = {3, 4, 0};
    extent.length = 10;
    extent.segments = 10;
    return extent;
}

TEST(Placement, MovesDataToTheOriginThatAreMoreThanAHundredDiagonalsAway)
{
    const Placement near = choosePlacement(makeExtent(499.9), 0.1);
    expectSame(near.origin, {0, 0, 0});
    const Placement far = choosePlacement(makeExtent(500.1), 0.1);
    expectSame(far.origin, makeExtent(500.1).centre);
    EXPECT_EQ(far.scale, 1);
}

TEST(Placement, ASinglePointAnywhereIsMovedToTheOrigin)
{
    Extent extent;
    extent.centre = {1e-3, 0, 0};
    expectSame(choosePlacement(extent, 1).origin, extent.centre);
    EXPECT_EQ(choosePlacement(extent, 1).scale, 1);
}

TEST(Placement, EnlargesThinTubesByAPowerOfTen)
{
    EXPECT_EQ(choosePlacement(makeExtent(0), 1.001e-3).scale, 1);
    EXPECT_EQ(choosePlacement(makeExtent(0), 0.999e-3).scale, 10);
    EXPECT_EQ(choosePlacement(makeExtent(0), 0.999e-4).scale, 100);
}

TEST(Placement, EnlargesShortSegmentsByAPowerOfTen)
{
    Extent extent = makeExtent(0);
    extent.length = 0.1001;
    EXPECT_EQ(choosePlacement(extent, 1).scale, 1);
    extent.length = 0.0999;
    EXPECT_EQ(choosePlacement(extent, 1).scale, 10);
}

TEST(Placement, WhatIsPlacedInTheSceneComesBack)
{
    const Placement placement{{1, 2, 3}, 10};
    expectSame(placement.toScene(algebra3d::Vector3<double>(2, 2, 3)), {10, 0, 0});
    expectSame(placement.toData({10, 0, 0}), {2, 2, 3});
    const std::vector<algebra3d::Vector3<double>> points{{1, 2, 3}, {1, 3, 3}};
    ASSERT_EQ(placement.toScene(points).size(), 2u);
    expectSame(placement.toScene(points)[0], {0, 0, 0});
    expectSame(placement.toScene(points)[1], {0, 10, 0});
}

} // namespace

} // namespace strandview
