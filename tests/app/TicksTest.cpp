// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Ticks.h"

#include <cmath>
#include <limits>
#include <random>

#include "request/limits.h"
#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::DoubleEq;
using testing::ElementsAre;
using testing::IsEmpty;

const double INFINITE = std::numeric_limits<double>::infinity();

TEST(RoundTicks, AreStepsOfOneTwoOrFive)
{
    EXPECT_THAT(roundTicks(0, 1), ElementsAre(0, DoubleEq(0.2), DoubleEq(0.4), DoubleEq(0.6),
                                              DoubleEq(0.8), DoubleEq(1)));
    EXPECT_THAT(roundTicks(-3, 4), ElementsAre(-3, -2, -1, 0, 1, 2, 3, 4));
    EXPECT_THAT(roundTicks(12, 31), ElementsAre(15, 20, 25, 30));
}

TEST(RoundTicks, LieInsideTheLimitsAndAreThreeToNine)
{
    for (double width = 1e-9; width < 1e9; width *= 1.37) {
        for (const double min : {-width / 3, 0.0, width / 7, 20 * width}) {
            const std::vector<double> ticks = roundTicks(min, min + width);
            SCOPED_TRACE(width);
            EXPECT_GE(ticks.size(), 3u);
            EXPECT_LE(ticks.size(), 9u);
            EXPECT_GE(ticks.front(), min - 1e-8 * width);
            EXPECT_LE(ticks.back(), min + width * (1 + 1e-8));
        }
    }
}

TEST(RoundTicks, ThatAreOffByLessThanABillionthOfAStepAreStillInside)
{
    // Steps of 1.
    EXPECT_EQ(roundTicks(0, 7 - 0.9e-9).back(), 7);
    EXPECT_EQ(roundTicks(0, 7 - 1.1e-9).back(), 6);
    EXPECT_EQ(roundTicks(-7 + 0.9e-9, 0).front(), -7);
    EXPECT_EQ(roundTicks(-7 + 1.1e-9, 0).front(), -6);
    // Far from 0 there is the rounding of the limits, of some units in the last place, 1.2e-7.
    const double far = 1e9;
    EXPECT_EQ(roundTicks(far, far + 7 - 0.9e-6).back(), far + 7);
    EXPECT_EQ(roundTicks(far, far + 7 - 1.2e-6).back(), far + 6);
}

TEST(RoundTicks, AreNoneWhereDoublePrecisionHasNoRoomForThem)
{
    EXPECT_THAT(roundTicks(1, 1), IsEmpty());
    EXPECT_THAT(roundTicks(2, 1), IsEmpty());
    EXPECT_THAT(roundTicks(0.3, std::nextafter(0.3, 1)), IsEmpty());
    EXPECT_THAT(roundTicks(1e17, 1e17 + 16), IsEmpty());
    EXPECT_THAT(roundTicks(0, std::numeric_limits<double>::denorm_min()), IsEmpty());
    EXPECT_THAT(roundTicks(-1.7e308, 1.7e308), IsEmpty());
    EXPECT_THAT(roundTicks(0, INFINITE), IsEmpty());
    EXPECT_THAT(roundTicks(-INFINITE, 0), IsEmpty());
    EXPECT_THAT(roundTicks(std::nan(""), 1), IsEmpty());
    EXPECT_THAT(roundTicks(0, std::nan("")), IsEmpty());
}

TEST(MakeTicks, AZeroAloneHasNeitherPowerNorDecimals)
{
    for (const double width : {4e299, 4e-299, 4.0}) {
        const Ticks ticks = makeTicks(-width, width, 1);
        EXPECT_THAT(ticks.values, ElementsAre(0)) << width;
        EXPECT_THAT(ticks.labels, ElementsAre("0")) << width;
        EXPECT_EQ(ticks.note, "") << width;
    }
}

// Any two doubles: of any magnitude, far apart, near each other, or neighbours.
class AnyRange
{
public:
    std::pair<double, double> next()
    {
        const double a = number();
        switch (engine() % 4) {
        case 0:
            return {a, number()};
        case 1: // apart by some of the last bits
            return {a, a + std::abs(a) * std::pow(2, -int(engine() % 54))};
        case 2:
            return {a, std::nextafter(a, INFINITE)};
        default: // a denormal number
            return {0, std::numeric_limits<double>::denorm_min() * double(1 + engine() % 1000)};
        }
    }

private:
    double number()
    {
        const double exponent = std::uniform_real_distribution<double>(-320, 307)(engine);
        return (engine() % 2 ? 1 : -1) * std::pow(10, exponent);
    }

    std::mt19937 engine{4711};
};

TEST(RoundTicks, OfAnyTwoNumbersAreFewDistinctAndBetweenThem)
{
    AnyRange ranges;
    int numbered = 0;
    for (int i = 0; i < 200000; ++i) {
        const auto [min, max] = ranges.next();
        SCOPED_TRACE(testing::Message() << min << " to " << max);
        const Ticks ticks = makeTicks(min, max, 8);
        ASSERT_EQ(ticks.labels.size(), ticks.values.size());
        if (!isRange(min, max)) {
            ASSERT_THAT(ticks.values, IsEmpty());
            continue;
        }
        ++numbered;
        ASSERT_GE(ticks.values.size(), 3u);
        ASSERT_LE(ticks.values.size(), 9u);
        const double slack = 1e-8 * (max - min) + 4e-15 * std::max(std::abs(min), std::abs(max));
        ASSERT_GE(ticks.values.front(), min - slack);
        ASSERT_LE(ticks.values.back(), max + slack);
        for (std::size_t k = 1; k < ticks.values.size(); ++k) {
            ASSERT_LT(ticks.values[k - 1], ticks.values[k]);
            ASSERT_NE(ticks.labels[k - 1], ticks.labels[k]);
        }
        for (const std::string& label : ticks.labels)
            ASSERT_LE(label.size(), 10u) << label; // a minus sign has three bytes
    }
    EXPECT_GT(numbered, 50000);
}

TEST(TickLabels, HaveTheDigitsOfTheStep)
{
    EXPECT_THAT(makeTicks(0, 1, 8).labels, ElementsAre("0.0", "0.2", "0.4", "0.6", "0.8", "1.0"));
    EXPECT_THAT(makeTicks(-3, 4, 8).labels, ElementsAre("−3", "−2", "−1", "0", "1", "2", "3", "4"));
    EXPECT_THAT(makeTicks(0, 20000, 8).labels, ElementsAre("0", "5000", "10000", "15000", "20000"));
    EXPECT_THAT(makeTicks(-0.02, 0.02, 8).labels,
                ElementsAre("−0.02", "−0.01", "0.00", "0.01", "0.02"));
    EXPECT_EQ(makeTicks(-0.02, 0.02, 8).note, "");
}

TEST(TickLabels, OfLargeAndSmallNumbersShareAPowerOfTen)
{
    const Ticks large = makeTicks(0, 2500000, 8);
    EXPECT_THAT(large.labels, ElementsAre("0.0", "0.5", "1.0", "1.5", "2.0", "2.5"));
    EXPECT_EQ(large.note, "×10⁶");
    const Ticks small = makeTicks(-4e-7, 4e-7, 4);
    EXPECT_THAT(small.labels, ElementsAre("−4", "−2", "0", "2", "4"));
    EXPECT_EQ(small.note, "×10⁻⁷");
    EXPECT_EQ(makeTicks(0, 1e307, 8).note, "×10³⁰⁷");
    EXPECT_EQ(makeTicks(0, 1e-299, 8).note, "×10⁻²⁹⁹");
}

TEST(TickLabels, OfLongNumbersShareAnOffset)
{
    const Ticks whole = makeTicks(123456789, 123456792, 8);
    EXPECT_THAT(whole.labels, ElementsAre("9.0", "9.5", "10.0", "10.5", "11.0", "11.5", "12.0"));
    EXPECT_EQ(whole.note, "+123456780");
    EXPECT_DOUBLE_EQ(whole.values[1], 123456789.5);

    const Ticks fraction = makeTicks(300.0001, 300.0004, 8);
    EXPECT_THAT(fraction.labels, ElementsAre("1.0", "1.5", "2.0", "2.5", "3.0", "3.5", "4.0"));
    EXPECT_EQ(fraction.note, "×10⁻⁴ + 300");

    const Ticks negative = makeTicks(-123456792, -123456789, 4);
    EXPECT_THAT(negative.labels, ElementsAre("−12", "−11", "−10", "−9"));
    EXPECT_EQ(negative.note, "−123456780");

    EXPECT_EQ(makeTicks(6.02214076e23, 6.0221408e23, 4).note, "×10¹⁶ + 6.0221407×10²³");
}

TEST(NumberText, IsShort)
{
    EXPECT_EQ(numberText(0.3, 9), "0.3");
    EXPECT_EQ(numberText(0, 9), "0");
    EXPECT_EQ(numberText(-0.0, 9), "0");
    EXPECT_EQ(numberText(1.0 / 3, 6), "0.333333");
    EXPECT_EQ(numberText(-1.5e-7, 9), "−1.5×10⁻⁷");
    EXPECT_EQ(numberText(123456789, 9), "123456789");
    EXPECT_EQ(numberText(99999.97, 6), "100000");
    EXPECT_EQ(numberText(6.02214076e23, 9), "6.02214076×10²³");
    EXPECT_EQ(numberText(1e300, 9), "1×10³⁰⁰");
}

} // namespace

} // namespace strandview
