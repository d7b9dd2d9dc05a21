// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/encoding.h>

#include <gtest/gtest.h>

namespace strandview {

using namespace std::string_literals;

TEST(Encoding, OnlyAByteOrderMarkTellsUtf16)
{
    EXPECT_TRUE(isUtf16("\xFF\xFE"));
    EXPECT_TRUE(isUtf16("\xFE\xFF"
                        "abc"));
    for (const std::string& bytes : {""s, "\xFF"s, "0\0"s, "\xEF\xBB\xBF"s})
        EXPECT_FALSE(isUtf16(bytes));
}

TEST(Encoding, ControlCharactersOtherThanBlanksAreBinary)
{
    EXPECT_TRUE(isBinary("0 0\0"s));
    EXPECT_TRUE(isBinary("\x1b[0m"));
    EXPECT_FALSE(isBinary(" \t\n\v\f\r0\x7f\x80\xff"));
    EXPECT_FALSE(isBinary(""));
}

TEST(Encoding, LooksForBinaryDataInTheFirst4096BytesAlone)
{
    EXPECT_TRUE(isBinary(std::string(4095, ' ') + "\x01"));
    EXPECT_FALSE(isBinary(std::string(4096, ' ') + "\x01"));
}

TEST(Encoding, LeavesOutOneByteOrderMarkOfUtf8)
{
    const std::string mark = "\xEF\xBB\xBF";
    EXPECT_EQ(withoutByteOrderMark(mark + "a"), "a");
    EXPECT_EQ(withoutByteOrderMark(mark + mark), mark);
    EXPECT_EQ(withoutByteOrderMark(mark), "");
    EXPECT_EQ(withoutByteOrderMark("\xEF\xBB"), "\xEF\xBB");
    EXPECT_EQ(withoutByteOrderMark("a" + mark), "a" + mark);
}

TEST(Encoding, OnlyLettersOfAsciiBecomeSmall)
{
    EXPECT_EQ(inSmallLetters("AbZ[@`{\xC3\x84"), "abz[@`{\xC3\x84");
}

} // namespace strandview
