// SPDX-License-Identifier: GPL-3.0-or-later
#include <biarc/Tube.h>

#include <gtest/gtest.h>

TEST(Tube, IsEmptyByDefault)
{
    const Tube<Vector3> tube;

    EXPECT_TRUE(tube.points.empty());
}

TEST(Tube, ClearingDropsThePointsAndTheirMemory)
{
    Tube<Vector3> tube;
    tube.points.assign(1000, Vector3(1, 2, 3));

    tube.clear_tube();

    EXPECT_TRUE(tube.points.empty());
    EXPECT_EQ(tube.points.capacity(), 0u);
}

TEST(Tube, CanBeClearedTwiceAndFilledAgain)
{
    Tube<Vector3> tube;
    tube.clear_tube();
    tube.clear_tube();
    tube.points.emplace_back(1, 2, 3);

    ASSERT_EQ(tube.points.size(), 1u);
    EXPECT_EQ(tube.points[0][2], 3);
}
