// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/wording.h>

#include <gtest/gtest.h>

namespace strandview {

using namespace std::string_literals;

TEST(Wording, ControlCharactersStayOnOneLine)
{
    EXPECT_EQ(onOneLine("a\nb\x1b\x7f\0c"s), "a\\x0ab\\x1b\\x7f\\x00c");
    EXPECT_EQ(onOneLine("\xc3\xa9 \x80"), "\xc3\xa9 \x80");
    EXPECT_EQ(onOneLine(""), "");
}

TEST(Wording, LongTextsEndAfter40Bytes)
{
    const std::string forty(40, 'x');
    EXPECT_EQ(shortened(forty), forty);
    EXPECT_EQ(shortened(forty + "x"), forty + "...");
    EXPECT_EQ(inQuotes(forty + "x"), "'" + forty + "...'");
    EXPECT_EQ(shortened(std::string(100000, 'x')), forty + "...");
}

TEST(Wording, NoCharacterIsCutInTwo)
{
    const std::string e = "\xc3\xa9";
    EXPECT_EQ(shortened(std::string(39, 'x') + e + e), std::string(39, 'x') + "...");
    EXPECT_EQ(shortened(std::string(38, 'x') + e + e), std::string(38, 'x') + e + "...");
    EXPECT_EQ(firstCharacter(e + "x"), e);
    EXPECT_EQ(firstCharacter("x" + e), "x");
}

TEST(Wording, NumbersAreTheShortestThatReadBackTheSame)
{
    EXPECT_EQ(formatted(0.1), "0.1");
    EXPECT_EQ(formatted(-1e300), "-1e+300");
    EXPECT_EQ(formatted(3), "3");
}

TEST(Wording, ManyHaveAnS)
{
    EXPECT_EQ(counted(0, "point"), "0 points");
    EXPECT_EQ(counted(1, "point"), "1 point");
    EXPECT_EQ(counted(2, "point"), "2 points");
}

TEST(Wording, TheFirstOfSeveralStandsForAll)
{
    EXPECT_EQ(andMore("chain A", 1), "chain A");
    EXPECT_EQ(andMore("chain A", 3), "chain A and 2 more");
}

} // namespace strandview
