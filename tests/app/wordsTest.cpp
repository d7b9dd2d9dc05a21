// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/words.h"

#include <gmock/gmock.h>

namespace strandview {

TEST(Words, OfANumberHaveTheDigitsThatCount)
{
    EXPECT_EQ(shortNumber(12.5), "12.5");
    EXPECT_EQ(shortNumber(2.0 / 3), "0.666667");
    EXPECT_EQ(shortNumber(2.0 / 3, 4), "0.6667");
    EXPECT_EQ(shortNumber(-1.5e-7), "-1.5e-07");
    EXPECT_EQ(shortNumber(0), "0");
}

TEST(Words, OfWhatWasLeftOutStandBehindTheNotices)
{
    Findings findings;
    findings.notices = {"frames were made"};
    EXPECT_THAT(noticesOf(findings, ""), testing::ElementsAre("frames were made"));
    EXPECT_THAT(noticesOf(findings, "links are left out"),
                testing::ElementsAre("frames were made", "links are left out"));
}

} // namespace strandview
