// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/checks.h>

#include <limits>

#include <gtest/gtest.h>

#include <strandview/model/Dna.h>

namespace strandview {

namespace {

using Quaternion = algebra3d::Quaternion<double>;

std::string faultOf(Quaternion rotation, bool normalise)
{
    ReadOptions options;
    options.normalise = normalise;
    return checkRotation(rotation, options);
}

} // namespace

TEST(Checks, WhatIsExpectedOfABaseNamesAllLetters)
{
    std::string letters;
    for (const char letter : std::string(EXPECTED_BASE))
        if (letter >= 'A' && letter <= 'Z')
            letters += letter;
    EXPECT_EQ(letters, BASE_LETTERS);
}

TEST(Checks, ACoordinateIsAtMost1e18)
{
    for (const double number : {0.0, 1e18, -1e18, 1e-300})
        EXPECT_TRUE(isCoordinate(number)) << number;
    for (const double number : {1.0001e18, -1.0001e18, std::numeric_limits<double>::infinity(),
                                std::numeric_limits<double>::quiet_NaN()})
        EXPECT_FALSE(isCoordinate(number)) << number;
}

TEST(Checks, ARotationHasTheNorm1Within001)
{
    for (const double norm : {1.0, 0.9901, 1.0099})
        EXPECT_EQ(faultOf({0, norm, 0, 0}, false), "") << norm;
    EXPECT_EQ(
        faultOf({0, 0, 0.75, 0}, false),
        "found a quaternion of norm 0.75, expected 1 within 0.01 (--normalise accepts others)");
    for (const double norm : {0.0, 0.9899, 1.0101})
        EXPECT_NE(faultOf({norm, 0, 0, 0}, false), "") << norm;
}

TEST(Checks, ARotationIsLeftAsItIsUnlessItIsToBeNormalised)
{
    Quaternion rotation(0, 0.6, 0, 0.796);
    EXPECT_EQ(checkRotation(rotation, {}), "");
    EXPECT_EQ(rotation[3], 0.796);

    ReadOptions options;
    options.normalise = true;
    for (const double factor : {2.0, 1e300, 1e-300}) {
        rotation = Quaternion(0, 0.6 * factor, 0, -0.8 * factor);
        EXPECT_EQ(checkRotation(rotation, options), "");
        EXPECT_NEAR(rotation[1], 0.6, 1e-15);
        EXPECT_NEAR(rotation[3], -0.8, 1e-15);
    }
    EXPECT_EQ(faultOf({0, 0, 0, 0}, true), "found the zero quaternion, expected any other");
}

TEST(Checks, ABaseIsOneOfFourLettersInEitherCase)
{
    for (const char letter : {'A', 'C', 'G', 'T'}) {
        EXPECT_EQ(parseBase(letter), letter);
        EXPECT_EQ(parseBase(char(letter - 'A' + 'a')), letter);
    }
    for (int code = 0; code < 256; ++code)
        EXPECT_EQ(parseBase(char(code)).has_value(),
                  std::string("ACGTacgt").find(char(code)) != std::string::npos)
            << code;
}

} // namespace strandview
