// SPDX-License-Identifier: GPL-3.0-or-later
#include "PictureWriter.h"

#include <gtest/gtest.h>

namespace {

TEST(PictureWriter, TakesAsManySamplesAsAreWantedWhereThereIsRoom)
{
    EXPECT_EQ(fittingSamples(3, 1200, 900), 3);
    EXPECT_EQ(fittingSamples(1, 32767, 10), 1);
    EXPECT_EQ(fittingSamples(3, 10922, 100), 3) << "32766 wide";
}

TEST(PictureWriter, TakesFewerSamplesOfAPictureThatIsLarge)
{
    EXPECT_EQ(fittingSamples(3, 10923, 100), 2) << "a side: two screens of 5461 pixels";
    EXPECT_EQ(fittingSamples(3, 100, 32767), 1);
    EXPECT_EQ(fittingSamples(3, 16000, 12000), 1) << "the pixels";
}

TEST(PictureWriter, HasNoSampleOfWhatIsTooLarge)
{
    EXPECT_EQ(fittingSamples(1, 32768, 1), 0);
    EXPECT_EQ(fittingSamples(8, 32767, 32767), 0);
}

} // namespace
