// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotting/Plot.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::Le;
using testing::SizeIs;

const double NONE = std::numeric_limits<double>::quiet_NaN();

PlotPanel panelOf(const std::vector<double>& values, double rounding = 0)
{
    return {"k", "", {values}, rounding};
}

std::vector<double> upTo(std::size_t count)
{
    std::vector<double> x(count);
    for (std::size_t i = 0; i < count; ++i)
        x[i] = double(i);
    return x;
}

void expectSpan(const Span& span, double min, double max)
{
    EXPECT_DOUBLE_EQ(span.min, min);
    EXPECT_DOUBLE_EQ(span.max, max);
}

} // namespace

TEST(Plot, NamesAnAxisWithItsUnit)
{
    EXPECT_EQ(axisTitle("curvature", "1/length"), "curvature [1/length]");
    EXPECT_EQ(axisTitle("energy", ""), "energy");
}

TEST(Plot, ReachesFromTheLeastToTheLargestValueThatIsANumber)
{
    expectSpan(ySpan(panelOf({2, NONE, -1, 3})), -1, 3);
    expectSpan(ySpan({"k", "", {{1, 2}, {}, {5}}, 0}), 1, 5);
}

TEST(Plot, OfNoNumberReachesFromZeroToOne)
{
    expectSpan(ySpan(panelOf({NONE, NONE})), 0, 1);
    expectSpan(xSpan({}), 0, 1);
}

TEST(Plot, OfAConstantHasRoomOnBothSides)
{
    expectSpan(ySpan(panelOf({4, 4})), 3.6, 4.4);
    expectSpan(ySpan(panelOf({0, 0})), -1, 1);
}

TEST(Plot, DoesNotShowRoundingAsACurve)
{
    const Span ofZero = ySpan(panelOf({1e-12, -3e-12}, 1e-11));
    EXPECT_NEAR(ofZero.min, -1, 1e-9);
    EXPECT_NEAR(ofZero.max, 1, 1e-9);
    const Span ofOne = ySpan(panelOf({1, 1 + 1e-12}));
    EXPECT_NEAR(ofOne.min, 0.9, 1e-9);
    expectSpan(ySpan(panelOf({1, 1 + 1e-6})), 1, 1 + 1e-6);
}

TEST(PlacesToDraw, AreAllOfAFewAndSomeOfMany)
{
    EXPECT_THAT(placesToDraw(upTo(4), {1, 2, 3, 4}, 10), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(placesToDraw({}, {}, 10), SizeIs(0));
    const std::vector<double> x = upTo(100'000);
    EXPECT_THAT(placesToDraw(x, x, 2000), SizeIs(Le(2 * 2000u)));
}

// What is left out lies between what is drawn beside it.
TEST(PlacesToDraw, KeepTheOutlineOfARandomCurve)
{
    std::mt19937 random(7);
    std::normal_distribution<double> step;
    const std::vector<double> x = upTo(50'000);
    std::vector<double> y(x.size());
    for (std::size_t i = 1; i < y.size(); ++i)
        y[i] = y[i - 1] + step(random);
    const std::vector<std::size_t> places = placesToDraw(x, y, 500);
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end()));
    EXPECT_EQ(places.front(), 0u);
    EXPECT_EQ(places.back(), y.size() - 1);
    const std::size_t stretch = x.size() / 250;
    for (std::size_t begin = 0; begin + stretch <= y.size(); begin += stretch) {
        const auto [least, largest] =
            std::minmax_element(y.begin() + begin, y.begin() + begin + stretch);
        double leastDrawn = 1e300, largestDrawn = -1e300;
        for (const std::size_t place : places) {
            // A stretch of x begins a place earlier or later than one of places.
            if (place + 2 < begin || place > begin + stretch + 1)
                continue;
            leastDrawn = std::min(leastDrawn, y[place]);
            largestDrawn = std::max(largestDrawn, y[place]);
        }
        EXPECT_LE(leastDrawn, *least + 4) << begin;
        EXPECT_GE(largestDrawn, *largest - 4) << begin;
    }
    const auto [least, largest] = std::minmax_element(y.begin(), y.end());
    EXPECT_EQ(std::count(places.begin(), places.end(), std::size_t(least - y.begin())), 1);
    EXPECT_EQ(std::count(places.begin(), places.end(), std::size_t(largest - y.begin())), 1);
}

TEST(PlacesToDraw, KeepASingleGap)
{
    const std::vector<double> x = upTo(10'000);
    std::vector<double> y(x.size(), 1);
    y[4321] = NONE;
    const std::vector<std::size_t> places = placesToDraw(x, y, 100);
    EXPECT_EQ(std::count(places.begin(), places.end(), 4321u), 1);
}

TEST(NearestPlace, IsTheOneWhoseXIsNearest)
{
    const std::vector<double> x{0, 1, 3, 3, 10};
    EXPECT_EQ(nearestPlace(x, -5), 0u);
    EXPECT_EQ(nearestPlace(x, 0.4), 0u);
    EXPECT_EQ(nearestPlace(x, 0.6), 1u);
    EXPECT_EQ(nearestPlace(x, 6), 3u);
    EXPECT_EQ(nearestPlace(x, 99), 4u);
}

} // namespace strandview
