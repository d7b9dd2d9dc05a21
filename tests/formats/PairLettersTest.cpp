// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/pairLetters.h>

#include <gmock/gmock.h>

namespace strandview {

TEST(PairLetters, AreTwoWithACharacterBetween)
{
    for (const char* field : {"A-T", "A+T", "A:T"}) {
        const auto letters = parsePairLetters(field);
        ASSERT_TRUE(letters) << field;
        EXPECT_EQ(letters->strand1, 'A');
        EXPECT_EQ(letters->strand2, 'T');
    }
    for (const char* field : {"", "A", "AT", "ATA", "A--T", "1-2", "A-"})
        EXPECT_FALSE(parsePairLetters(field)) << field;
}

TEST(PairLetters, OfStrand1AreItsBases)
{
    LetterCounts counts;
    EXPECT_EQ(counts.take(PairLetters{'g', 'C'}), 'G');
    EXPECT_EQ(counts.take('u'), 'T');
    EXPECT_EQ(counts.take('?'), 'N');
    ReadReport report;
    counts.tell("here", report);
    EXPECT_THAT(report.notices,
                testing::ElementsAre("here: 1 base U, shown as T",
                                     "here: 1 base of other letters than A, C, G, T and U: not "
                                     "known"));
}

TEST(PairLetters, WhatIsAsItShouldBeIsNotToldOf)
{
    LetterCounts counts;
    EXPECT_EQ(counts.take(PairLetters{'A', 'U'}), 'A');
    EXPECT_EQ(counts.take(PairLetters{'C', 'x'}), 'C');
    ReadReport report;
    counts.tell("here", report);
    EXPECT_THAT(report.notices, testing::IsEmpty());
}

} // namespace strandview
