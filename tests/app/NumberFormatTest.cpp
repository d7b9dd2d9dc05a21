// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/NumberFormat.h"

#include <string>

#include <gtest/gtest.h>

namespace strandview {

namespace {

std::string written(double value, const std::string& format)
{
    return parseNumberFormat(format)->write(value);
}

} // namespace

TEST(NumberFormat, WritesDecimalsPowersOfTenAndTheShorterOfBoth)
{
    EXPECT_EQ(written(1234.5, ".2f"), "1234.50");
    EXPECT_EQ(written(0.5, ".0f"), "0");
    EXPECT_EQ(written(1234.5, ".3e"), "1.234e+03");
    EXPECT_EQ(written(1.5e-7, ".1e"), "1.5e-07");
    EXPECT_EQ(written(1234.5, ".3g"), "1.23e+03");
    EXPECT_EQ(written(0.25, ".3g"), "0.25");
    EXPECT_EQ(written(-1e308, ".15f").size(), 309 + 1 + 15 + std::string("\u2212").size());
}

TEST(NumberFormat, HasAMinusSignBeforeWhatIsNegativeOnceItIsRounded)
{
    EXPECT_EQ(written(-1.25, ".2f"), "\u22121.25");
    EXPECT_EQ(written(-0.001, ".2f"), "0.00");
    EXPECT_EQ(written(-0.0, ".1e"), "0.0e+00");
    EXPECT_EQ(written(-2e-9, ".1e"), "\u22122.0e-09");
}

TEST(NumberFormat, TellsTheNumberThatItWrites)
{
    EXPECT_EQ(parseNumberFormat(".1f")->rounded(-0.26), -0.3);
    EXPECT_EQ(parseNumberFormat(".2e")->rounded(123456), 123000);
    EXPECT_EQ(parseNumberFormat(".1f")->rounded(0.5), 0.5);
}

TEST(NumberFormat, IsAPointDigitsAndALetterOrAuto)
{
    for (const char* text : {"auto", ".0f", ".2f", ".15e", ".3g"}) {
        const std::optional<NumberFormat> format = parseNumberFormat(text);
        ASSERT_TRUE(format) << text;
        EXPECT_EQ(formatOf(*format), text);
        EXPECT_EQ(format->isAuto(), std::string(text) == "auto");
    }
    for (const char* text : {"",     ".",     "f",    ".f",   "2f",   ".2",   ".2d",  ".2s",
                             "%.2f", "%n",    ".16f", ".-1f", ".+1f", ". 1f", ".2f ", " .2f",
                             ".2F",  ".999f", ".2ff", "Auto", ".*f",  "5.2f", ".1ef"})
        EXPECT_FALSE(parseNumberFormat(text)) << text;
}

} // namespace strandview
