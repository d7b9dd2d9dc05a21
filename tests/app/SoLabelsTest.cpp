// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoLabels.h"

#include <cmath>

#include <gtest/gtest.h>

namespace strandview {

namespace {

const SbVec2f SIZE(60, 20);
const float GAP = 5;

// Whether a label there covers nothing of the line.
bool isBeside(const SbVec2f& middle, const SbVec2f& from, const SbVec2f& to)
{
    for (float share = 0; share <= 1; share += 0.01f) {
        const SbVec2f point = from + share * (to - from);
        if (std::abs(point[0] - middle[0]) < SIZE[0] / 2 &&
            std::abs(point[1] - middle[1]) < SIZE[1] / 2)
            return false;
    }
    return true;
}

TEST(LabelPlace, IsBesideALineOfAnyDirectionAndNearItsMiddle)
{
    for (int degrees = 0; degrees < 360; degrees += 7) {
        const double angle = degrees * M_PI / 180;
        const SbVec2f from(100, 100),
            to = from + 200 * SbVec2f(float(std::cos(angle)), float(std::sin(angle)));
        const SbVec2f middle = labelPlace({from, to}, SIZE, GAP);
        EXPECT_TRUE(isBeside(middle, from, to)) << degrees;
        EXPECT_LT((middle - (from + to) / 2).length(), 40) << degrees;
    }
}

TEST(LabelPlace, IsAboveALevelLineAndRightOfAnUprightOne)
{
    for (const float direction : {1.0f, -1.0f}) {
        EXPECT_EQ(labelPlace({{0, 0}, {100 * direction, 0}}, SIZE, GAP),
                  SbVec2f(50 * direction, 15));
        EXPECT_EQ(labelPlace({{0, 0}, {0, 100 * direction}}, SIZE, GAP),
                  SbVec2f(35, 50 * direction));
    }
}

TEST(LabelPlace, OfThreePointsIsOutsideOfTheirCorner)
{
    const SbVec2f middle = labelPlace({{100, 0}, {0, 0}, {0, 100}}, SIZE, GAP);
    EXPECT_LT(middle[0], 0);
    EXPECT_LT(middle[1], 0);
}

TEST(LabelPlace, OfFourPointsIsBesideTheLineInTheMiddle)
{
    EXPECT_EQ(labelPlace({{0, -50}, {0, 0}, {100, 0}, {100, -50}}, SIZE, GAP), SbVec2f(50, 15));
}

TEST(LabelPlace, OfPointsThatAreSeenAsOneIsToTheRightAboveIt)
{
    for (const std::size_t count : {1u, 2u, 3u, 4u}) {
        const SbVec2f middle = labelPlace(std::vector<SbVec2f>(count, SbVec2f(10, 10)), SIZE, GAP);
        EXPECT_GT(middle[0], 10 + SIZE[0] / 4) << count;
        EXPECT_GT(middle[1], 10 + SIZE[1] / 4) << count;
    }
}

} // namespace

} // namespace strandview
