// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/characters.h>

#include <string>

#include <gtest/gtest.h>

namespace strandview {

namespace {

TEST(CharacterSet, FindsTheFirstOfItsCharactersFromAPlaceOn)
{
    constexpr CharacterSet set("x\xff");
    EXPECT_EQ(set.findIn("axbx"), 1u);
    EXPECT_EQ(set.findIn("axbx", 2), 3u);
    EXPECT_EQ(set.findIn("ab\xff"), 2u);
    EXPECT_EQ(set.findIn("ab"), 2u);
    EXPECT_EQ(set.findIn(""), 0u);
    EXPECT_TRUE(set.has('x'));
    EXPECT_FALSE(set.has('\0'));
}

TEST(FindLineEnd, IsWhereTheNearerOfBothEndsIs)
{
    EXPECT_EQ(findLineEnd("ab\ncd\r", 0), 2u);
    EXPECT_EQ(findLineEnd("ab\rcd\n", 0), 2u);
    EXPECT_EQ(findLineEnd("ab\rcd\n", 3), 5u);
    EXPECT_EQ(findLineEnd("ab\r\n", 0), 2u);
    EXPECT_EQ(findLineEnd("ab", 0), 2u);
    EXPECT_EQ(findLineEnd("ab", 2), 2u);
    EXPECT_EQ(findLineEnd("", 0), 0u);
}

TEST(FindLineEnd, LooksAsFarAsALineGoes)
{
    for (const std::size_t size : {255, 256, 257, 511, 512, 5000})
        for (const char* end : {"\n", "\r", "\r\n", ""}) {
            SCOPED_TRACE(size);
            EXPECT_EQ(findLineEnd("\n" + std::string(size, 'a') + end + "b\n", 1),
                      *end ? size + 1 : size + 2);
        }
}

} // namespace

TEST(Characters, AReturnWithoutAFeedBehindItIsTurnedIntoOne)
{
    for (const char* text : {"", "a", "a\n", "a\r\nb\r\n", "\r\n", "a\r", "\r"}) {
        EXPECT_FALSE(hasReturnAlone(text)) << text;
        EXPECT_EQ(withFeedsForReturns(text), text);
    }
    for (const auto& [text, expected] : std::vector<std::pair<std::string, std::string>>{
             {"a\rb\r", "a\nb\r"}, {"\r\r\n", "\n\r\n"}, {"a\r\nb\rc", "a\r\nb\nc"}}) {
        EXPECT_TRUE(hasReturnAlone(text));
        EXPECT_EQ(withFeedsForReturns(text), expected);
    }
}

} // namespace strandview
