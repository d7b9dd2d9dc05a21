// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/numbers.h>

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace strandview {

namespace {

/// Not-a-number for what is refused.
double numberOf(std::string_view field)
{
    double number = 0;
    return parseNumber(field, number) == std::errc() ? number : std::nan("");
}

std::errc statusOf(std::string_view field)
{
    double ignored = 0;
    return parseNumber(field, ignored);
}

} // namespace

TEST(Numbers, AreWrittenAsInC)
{
    EXPECT_EQ(numberOf("0"), 0);
    EXPECT_EQ(numberOf("-1.5"), -1.5);
    EXPECT_EQ(numberOf("+1.5"), 1.5);
    EXPECT_EQ(numberOf(".5"), 0.5);
    EXPECT_EQ(numberOf("5."), 5);
    EXPECT_EQ(numberOf("1e-3"), 1e-3);
    EXPECT_EQ(numberOf("1E+3"), 1000);
    EXPECT_EQ(numberOf("0.1"), 0.1) << "the nearest double";
    EXPECT_TRUE(std::signbit(numberOf("-0")));
}

TEST(Numbers, MayHaveFortransExponentOrADecimalComma)
{
    EXPECT_EQ(numberOf("1D3"), 1000);
    EXPECT_EQ(numberOf("-1.5d-2"), -0.015);
    EXPECT_EQ(numberOf("0,5"), 0.5);
    EXPECT_EQ(numberOf("1,5e2"), 150);
    EXPECT_EQ(numberOf("1,5D2"), 150);
}

TEST(Numbers, MayBeInfiniteOrUnknown)
{
    EXPECT_EQ(numberOf("-inf"), -std::numeric_limits<double>::infinity());
    for (const char* field : {"nan", "NaN"}) {
        double number = 0;
        EXPECT_EQ(parseNumber(field, number), std::errc()) << field;
        EXPECT_TRUE(std::isnan(number)) << field;
    }
}

TEST(Numbers, AreTheNearestDoublesHoweverManyDigitsTheyHave)
{
    std::mt19937_64 random(1);
    for (int i = 0; i < 200000; ++i) {
        // Up to 19 digits, and 24 with zeros in front, with the point anywhere or nowhere.
        std::string field = std::to_string(random() >> (random() % 64));
        field.insert(0, random() % 6, '0');
        if (random() % 8 > 0)
            field.insert(random() % (field.size() + 1), 1, '.');
        if (random() % 2 > 0)
            field.insert(0, 1, '-');
        const double expected = std::strtod(field.c_str(), nullptr), number = numberOf(field);
        ASSERT_EQ(number, expected) << field;
        ASSERT_EQ(std::signbit(number), std::signbit(expected)) << field;
    }
}

TEST(Numbers, AreExactWhereAProductOfTwoRoundedOnesIsNot)
{
    EXPECT_EQ(numberOf("9007199254740992"), 9007199254740992.0);
    EXPECT_EQ(numberOf("9007199254740993"), 9007199254740992.0);
    EXPECT_EQ(numberOf("9007199254740995"), 9007199254740996.0);
    EXPECT_EQ(numberOf("0.1"), 0.1);
    EXPECT_EQ(numberOf("1.0000000000000000000000"), 1.0);
    EXPECT_TRUE(std::signbit(numberOf("-0.0")));
    EXPECT_TRUE(std::signbit(numberOf("-0")));
}

TEST(Numbers, TooSmallForADoubleAreRoundedAndTooLargeRefused)
{
    EXPECT_EQ(numberOf("1e-400"), 0);
    EXPECT_EQ(numberOf("-1d-400"), 0);
    EXPECT_EQ(numberOf("5e-324"), std::numeric_limits<double>::denorm_min());
    for (const char* field : {"1e400", "-1e400", "1D400", "+1e400"})
        EXPECT_EQ(statusOf(field), std::errc::result_out_of_range) << field;
    EXPECT_TRUE(isNumber("1e400"));
}

TEST(Numbers, AreWholeFields)
{
    for (const char* field : {"", "+", "-", ".", "x", "1x", "1 ", " 1", "1e", "--1", "+-1", "++1",
                              "0x10", "1,2,3", "1,2.5", "1d2d3", "e5", "\xc3\xa9", "1_000"}) {
        EXPECT_EQ(statusOf(field), std::errc::invalid_argument) << field;
        EXPECT_FALSE(isNumber(field)) << field;
    }
}

TEST(Numbers, PlainOnesAreTakenFromTheBeginningOfAText)
{
    const auto taken = [](std::string_view text) {
        double number = std::nan("");
        return std::pair(takePlainNumber(text, number), number);
    };
    EXPECT_EQ(taken("12"), std::pair(std::size_t(2), 12.0));
    EXPECT_EQ(taken("-12.5 7"), std::pair(std::size_t(5), -12.5));
    EXPECT_EQ(taken("123456789.0123,4"), std::pair(std::size_t(14), 123456789.0123));
    EXPECT_EQ(taken(".5;"), std::pair(std::size_t(2), 0.5));
    EXPECT_EQ(taken("5.x"), std::pair(std::size_t(2), 5.0));
    EXPECT_EQ(taken("1e5"), std::pair(std::size_t(1), 1.0));
    EXPECT_EQ(taken("1.2.3"), std::pair(std::size_t(3), 1.2));
    EXPECT_EQ(taken("9007199254740992"), std::pair(std::size_t(16), 9007199254740992.0));
    for (const char* text : {"", "-", ".", "-.", "+1", "x", " 1", "--1", "e5", "9007199254740993",
                             "0.00000000000000000001", "12345678901234567890"})
        EXPECT_EQ(taken(text).first, 0u) << text;
}

TEST(Numbers, PlainOnesAreTheNearestDoublesWhateverStandsBehindThem)
{
    std::mt19937 random(3);
    const auto digits = [&random](std::size_t most) {
        std::string text(random() % (most + 1), '0');
        for (char& c : text)
            c = char('0' + random() % 10);
        return text;
    };
    std::size_t taken = 0;
    for (int i = 0; i < 200000; ++i) {
        const std::string text = (random() % 2 ? "-" : "") + digits(9) +
                                 (random() % 4 ? "." + digits(random() % 4 ? 8 : 18) : "");
        const char behind = char(random() % 256);
        if ((behind >= '0' && behind <= '9') || behind == '.' || behind == '-')
            continue;
        double number = 0;
        const std::size_t size = takePlainNumber(text + behind + digits(9), number);
        if (size == 0)
            continue;
        ASSERT_EQ(size, text.size()) << text;
        ASSERT_EQ(number, std::strtod(text.c_str(), nullptr)) << text;
        ++taken;
    }
    EXPECT_GT(taken, 100000u);
}

TEST(Numbers, AreReadAlikeInEveryLocale)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    for (const char* locale : {"C", "de_DE.UTF-8", "fr_FR.UTF-8"}) {
        if (!std::setlocale(LC_ALL, locale))
            continue;
        EXPECT_EQ(numberOf("1.5"), 1.5) << locale;
        EXPECT_EQ(numberOf("1,5"), 1.5) << locale;
        EXPECT_EQ(numberOf("1.5e-400"), 0) << locale;
    }
    std::setlocale(LC_ALL, before.c_str());
}

} // namespace strandview
