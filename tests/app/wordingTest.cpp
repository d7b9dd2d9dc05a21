// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/wording.h"

#include <gtest/gtest.h>

namespace strandview {

TEST(WordingTest, WhatWasFoundAndWhatWasExpectedAreOneLine)
{
    EXPECT_EQ(found("a\nb", "a number"), "found 'a\\x0ab', expected a number");
    EXPECT_EQ(found("", "a number"), "found '', expected a number");
}

TEST(WordingTest, BlanksAndEndsOfLinesAreStrippedFromBothEndsAlone)
{
    EXPECT_EQ(stripped(" \t\r\n a\tb \nc\r\n \t"), "a\tb \nc");
    EXPECT_EQ(stripped("ab"), "ab");
    EXPECT_EQ(stripped(" \n\t "), "");
    EXPECT_EQ(stripped(""), "");
}

} // namespace strandview
