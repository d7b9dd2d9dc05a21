// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/fields.h>

#include <iterator>
#include <optional>
#include <random>
#include <string>

#include <gmock/gmock.h>

#include <strandview/formats/text/numbers.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string_view> fieldsOf(std::string_view line)
{
    return remainingFields(FieldScanner(line));
}

} // namespace

TEST(Fields, AreSeparatedByBlanksACommaOrASemicolon)
{
    EXPECT_THAT(fieldsOf("a b\tc\v\fd"), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(fieldsOf(" a , b;c ;d "), ElementsAre("a", "b", "c", "d"));
    EXPECT_THAT(fieldsOf(""), IsEmpty());
    EXPECT_THAT(fieldsOf(" \t"), IsEmpty());
}

TEST(Fields, AreEmptyBetweenTwoCommasAndBesideTheOutermost)
{
    EXPECT_THAT(fieldsOf("a,,b"), ElementsAre("a", "", "b"));
    EXPECT_THAT(fieldsOf(",a"), ElementsAre("", "a"));
    EXPECT_THAT(fieldsOf("a; "), ElementsAre("a", ""));
    EXPECT_THAT(fieldsOf(","), ElementsAre("", ""));
}

TEST(Fields, EndWithTheLineOrAComment)
{
    EXPECT_THAT(fieldsOf("a b#c d"), ElementsAre("a", "b"));
    EXPECT_THAT(fieldsOf("a b % c"), ElementsAre("a", "b", "%", "c")) << "no comment within";
    for (const char* end : {"\n", "\r", "\r\n"})
        EXPECT_THAT(fieldsOf("a b" + std::string(end) + "c"), ElementsAre("a", "b"));
    EXPECT_THAT(fieldsOf("a,\nb"), ElementsAre("a", ""));
}

TEST(Fields, DoubleQuotesProtectWhatIsBetweenThem)
{
    EXPECT_THAT(fieldsOf("\"a, b;#c\" d"), ElementsAre("a, b;#c", "d"));
    EXPECT_THAT(fieldsOf("\" a \",\"\""), ElementsAre("a", ""));
}

TEST(Fields, OfABrokenQuoteBeginWithIt)
{
    EXPECT_THAT(fieldsOf("\"a b\nc\""), ElementsAre("\"a b"));
    EXPECT_THAT(fieldsOf("\"a\"b c"), ElementsAre("\"a\"b", "c"));
    EXPECT_TRUE(hasOpenQuote("\"a b"));
    EXPECT_FALSE(hasOpenQuote(""));
    EXPECT_FALSE(hasOpenQuote("a\""));
}

TEST(Fields, CommasAndSpacesCanBePartOfThem)
{
    FieldScanner commas("0,5;1,5\t2");
    commas.makeCommasText();
    EXPECT_TRUE(commas.areCommasText());
    EXPECT_THAT(remainingFields(commas), ElementsAre("0,5", "1,5", "2"));

    FieldScanner spaces("bond angle , x [m]\ty");
    spaces.makeSpacesText();
    EXPECT_THAT(remainingFields(spaces), ElementsAre("bond angle", "x [m]", "y"));
}

TEST(Fields, LinesEndWithLfCrLfOrCr)
{
    FieldScanner scanner("a\n\r\nb\rc\n");
    std::string lines;
    for (; !scanner.isAtEnd(); scanner.nextLine())
        lines += std::to_string(scanner.getLine()) +
                 std::string(scanner.isLineBlank() ? "-" : *FieldScanner(scanner).nextField());
    EXPECT_EQ(lines, "1a2-3b4c");
    EXPECT_EQ(scanner.getLine(), 5u);
    EXPECT_EQ(scanner.getPosition(), 8u);
}

TEST(Fields, ANewLineOwesNothingToTheOneBefore)
{
    FieldScanner scanner("a,\nb");
    scanner.nextField();
    scanner.nextLine();
    EXPECT_THAT(remainingFields(scanner), ElementsAre("b"));
}

TEST(Fields, ALineOfACommentIsNotBlank)
{
    for (const char* line : {"#", "  # a", "%", "\t% a"}) {
        EXPECT_TRUE(FieldScanner(line).isLineComment()) << line;
        EXPECT_FALSE(FieldScanner(line).isLineBlank()) << line;
    }
    for (const char* line : {"", " \t\v\f", " \nx"}) {
        EXPECT_TRUE(FieldScanner(line).isLineBlank()) << line;
        EXPECT_FALSE(FieldScanner(line).isLineComment()) << line;
    }
    EXPECT_FALSE(FieldScanner("a # b").isLineComment());
}

TEST(Fields, TrimmingLeavesBlanksWithin)
{
    EXPECT_EQ(trimmed("\t a b \v\f"), "a b");
    EXPECT_EQ(trimmed("  "), "");
    EXPECT_EQ(trimmed("\na"), "\na") << "a line end is no blank";
}

TEST(Fields, NumbersAreTheFieldsThatAreTakenWithoutThem)
{
    const std::string pieces[] = {"1", "-2.5", "0.123456789", "x",  "1e5",     "\"3\"", ",",
                                  ";", " ",    "  ",          "\t", "#",       "%",     ".",
                                  "-", "1,5",  "\n",          "\r", "12345678"};
    std::mt19937 random(5);
    std::size_t numbers = 0;
    for (int i = 0; i < 100000; ++i) {
        std::string text;
        for (std::size_t count = random() % 12; count > 0; --count)
            text += pieces[random() % std::size(pieces)];
        FieldScanner asked(text), plain(text);
        if (random() % 3 == 0) {
            asked.makeCommasText();
            plain.makeCommasText();
        }
        for (std::optional<std::string_view> field; (field = plain.nextField());) {
            double number = 0, expected = 0;
            if (asked.nextNumber(number)) {
                ASSERT_EQ(parseNumber(*field, expected), std::errc()) << text;
                ASSERT_EQ(number, expected) << text;
                ++numbers;
            } else {
                ASSERT_EQ(asked.nextField(), field) << text;
            }
        }
        double none = 0;
        ASSERT_FALSE(asked.nextNumber(none)) << text;
        ASSERT_FALSE(asked.nextField()) << text;
        ASSERT_EQ(asked.getPosition(), plain.getPosition()) << text;
    }
    EXPECT_GT(numbers, 30000u);
}

} // namespace strandview
