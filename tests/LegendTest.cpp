// SPDX-License-Identifier: GPL-3.0-or-later
#include "Legend.h"

#include <cmath>

#include <gmock/gmock.h>

namespace {

using testing::DoubleEq;
using testing::ElementsAre;

TEST(RoundTicks, AreStepsOfOneTwoOrFive)
{
    EXPECT_THAT(roundTicks(0, 1), ElementsAre(0, DoubleEq(0.2), DoubleEq(0.4), DoubleEq(0.6),
                                              DoubleEq(0.8), DoubleEq(1)));
    EXPECT_THAT(roundTicks(-3, 4), ElementsAre(-3, -2, -1, 0, 1, 2, 3, 4));
    EXPECT_THAT(roundTicks(12, 31), ElementsAre(15, 20, 25, 30));
}

TEST(RoundTicks, LieInsideTheLimitsAndAreThreeToNine)
{
    for (double width = 1e-9; width < 1e9; width *= 1.37) {
        for (const double min : {-width / 3, 0.0, width / 7, 20 * width}) {
            const std::vector<double> ticks = roundTicks(min, min + width);
            SCOPED_TRACE(width);
            EXPECT_GE(ticks.size(), 3u);
            EXPECT_LE(ticks.size(), 9u);
            EXPECT_GE(ticks.front(), min - 1e-8 * width);
            EXPECT_LE(ticks.back(), min + width * (1 + 1e-8));
        }
    }
}

} // namespace
