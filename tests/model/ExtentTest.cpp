// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/Extent.h>

#include <cmath>

#include <gtest/gtest.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

Extent boxOf(double x, double y, double z)
{
    Extent extent;
    extent.sides = Vector3<double>(x, y, z);
    return extent;
}

TEST(Extent, IsSeenAlongItsShortestSide)
{
    EXPECT_EQ(thinnestAxis(boxOf(1, 2, 3)), 0);
    EXPECT_EQ(thinnestAxis(boxOf(3, 1, 2)), 1);
    EXPECT_EQ(thinnestAxis(boxOf(2, 3, 1)), 2);
    EXPECT_EQ(thinnestAxis(boxOf(1, 1.01, 1.01)), 0);
    EXPECT_EQ(thinnestAxis(boxOf(1e-300, 2e-300, 3e-300)), 0);
}

TEST(Extent, IsSeenFromZRatherThanXAndFromXRatherThanYWhereSidesAreEqual)
{
    EXPECT_EQ(thinnestAxis(boxOf(0, 0, 0)), 2);
    EXPECT_EQ(thinnestAxis(boxOf(2, 2, 2)), 2);
    EXPECT_EQ(thinnestAxis(boxOf(4, 0, 0)), 2);
    EXPECT_EQ(thinnestAxis(boxOf(0, 4, 0)), 2);
    EXPECT_EQ(thinnestAxis(boxOf(0, 0, 4)), 0);
}

// A ball whose box is a little shorter along x in one file and along z in the next.
TEST(Extent, IsSeenFromTheSameSideWhateverItsPointsWereRoundedTo)
{
    for (const double error : {-1e-7, 0.0, 1e-7}) {
        EXPECT_EQ(thinnestAxis(boxOf(2 + error, 2, 2)), 2) << error;
        EXPECT_EQ(thinnestAxis(boxOf(2, 2 + error, 2)), 2) << error;
        EXPECT_EQ(thinnestAxis(boxOf(0.5, 0.5 + error, 1)), 0) << error;
    }
}

TEST(Extent, IsTheBoxAroundEverythingThatIsShown)
{
    Configuration data;
    Rod rod;
    rod.points = {{0, 0, 0}, {1, 0, 0}};
    data.rods.push_back(rod);
    Arrow arrow;
    arrow.from = Vector3<double>(0, -2, 0);
    arrow.to = Vector3<double>(0, 0, 7);
    data.arrows.push_back(arrow);
    LoneBase base;
    base.point = Vector3<double>(-1, 0, 0);
    data.loneBases.push_back(base);
    const Extent extent = measure(data);
    EXPECT_EQ(extent.sides.x, 2);
    EXPECT_EQ(extent.sides.y, 2);
    EXPECT_EQ(extent.sides.z, 7);
    EXPECT_EQ(thinnestAxis(extent), 0);
    EXPECT_EQ(extent.points, 5u);
}

} // namespace

} // namespace strandview
