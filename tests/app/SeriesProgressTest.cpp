// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendering/SeriesProgress.h"

#include <gtest/gtest.h>

namespace strandview {

TEST(SeriesProgress, TellsRateAndTimeLeftOfWhatIsDrawn)
{
    SeriesProgress progress(250);
    EXPECT_EQ(progress.text(0), "0 of 250 pictures");
    for (int i = 0; i < 12; ++i)
        progress.add(true);
    EXPECT_EQ(progress.text(8), "12 of 250 pictures, 1.5 per second, 3 min left");
    EXPECT_EQ(progress.text(0.5), "12 of 250 pictures, 24 per second, 10 s left");
    EXPECT_EQ(progress.text(1200), "12 of 250 pictures, 0.01 per second, 7 h left");
}

TEST(SeriesProgress, WhatWasThereBeforeTakesNoTime)
{
    SeriesProgress progress(100);
    for (int i = 0; i < 90; ++i)
        progress.add(false);
    EXPECT_EQ(progress.text(3), "90 of 100 pictures");
    progress.add(true);
    EXPECT_EQ(progress.text(2), "91 of 100 pictures, 0.5 per second, 18 s left");
}

} // namespace strandview
