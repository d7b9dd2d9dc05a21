// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/parameterRounding.h>

#include <array>
#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include "support/RandomRods.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

template <typename Parameters>
std::array<double, 6> listOf(const Parameters& all)
{
    const auto& [a, b, c, d, e, f] = all;
    return {a, b, c, d, e, f};
}

struct Step
{
    PlacedFrame pair, next;
};

// A step of which bend and twist are at most so many degrees, somewhere.
Step randomStep(RandomNumbers& random, double bend, double twist)
{
    const PlacedFrame pair{{random.uniform(-9, 9), random.uniform(-9, 9), random.uniform(-9, 9)},
                           algebra3d::about(random.unitVector(), random.uniform(0, 3))};
    const double length = bend / std::sqrt(2);
    return {pair,
            nextPair(pair, {random.uniform(-2, 2), random.uniform(-2, 2), random.uniform(2, 5),
                            random.uniform(-length, length), random.uniform(-length, length),
                            random.uniform(twist / 4, twist)})};
}

// Off by the rounding at most, as two of them are from each other.
PlacedFrame moved(const PlacedFrame& frame, const FrameRounding& rounding, RandomNumbers& random)
{
    return {frame.point + random.unitVector() * (random.uniform(0, 0.5) * rounding.length),
            algebra3d::about(random.unitVector(), random.uniform(0, 0.5) * rounding.angle) *
                frame.rotation};
}

// How much of the bound random changes of frames take, at most.
template <typename Formula, typename Rounding>
double largestShare(const Step& step, const FrameRounding& rounding, RandomNumbers& random,
                    Formula formula, Rounding bound)
{
    const auto exact = listOf(formula(step.pair, step.next));
    const auto most = listOf(bound(step.pair, step.next, rounding));
    double largest = 0;
    for (int trial = 0; trial < 50; ++trial) {
        const auto changed =
            listOf(formula(moved(step.pair, rounding, random), moved(step.next, rounding, random)));
        for (std::size_t i = 0; i < exact.size(); ++i)
            largest = std::max(largest, std::abs(changed[i] - exact[i]) / most[i]);
    }
    return largest;
}

} // namespace

TEST(ParameterRounding, BoundsWhatRoundedFramesChangeOfStepsAndPairsAndNotByMuchMore)
{
    RandomNumbers random(11);
    for (const double size : {1e-9, 1e-6, 1e-4}) {
        SCOPED_TRACE(size);
        const FrameRounding rounding{size, size};
        double steps = 0, pairs = 0;
        for (int i = 0; i < 100; ++i) {
            const Step step = randomStep(random, 90, 150);
            steps = std::max(steps,
                             largestShare(step, rounding, random, stepParameters, roundingOfStep));
            pairs = std::max(pairs,
                             largestShare(step, rounding, random, pairParameters, roundingOfPair));
        }
        EXPECT_LE(steps, 1);
        EXPECT_LE(pairs, 1);
        EXPECT_GE(std::min(steps, pairs), 0.2) << "the bound is of use";
    }
}

TEST(ParameterRounding, BoundsWhatRoundedFramesChangeOfScrewsAndNotByMuchMore)
{
    RandomNumbers random(12);
    const FrameRounding rounding{1e-7, 1e-7};
    for (const double twist : {150.0, 36.0, 4.0}) {
        SCOPED_TRACE(twist);
        double largest = 0;
        for (int i = 0; i < 200; ++i)
            largest = std::max(largest, largestShare(randomStep(random, twist / 3, twist), rounding,
                                                     random, helicalParameters, roundingOfScrew));
        EXPECT_LE(largest, 1);
        EXPECT_GE(largest, 0.1) << "the bound is of use";
    }
}

TEST(ParameterRounding, OfAScrewThatHardlyTurnsIsInfiniteForItsPlaceAlone)
{
    const PlacedFrame pair{{0, 0, 0}, {}};
    const PlacedFrame next{{0, 0, 3.4}, algebra3d::about(Vector(0, 0, 1), 1e-6)};
    const HelicalParameters some = roundingOfScrew(pair, next, {1e-5, 1e-5});
    EXPECT_TRUE(std::isinf(some.xDisplacement) && std::isinf(some.yDisplacement));
    EXPECT_NEAR(some.rise, 2 * 3.4, 1e-3);
    EXPECT_EQ(some.tip, 180);
    const HelicalParameters alike = roundingOfScrew(pair, {next.point, {}}, {1e-5, 1e-5});
    EXPECT_LT(alike.xDisplacement, 1e-4);
    EXPECT_LT(alike.tip, 1e-2);
}

} // namespace strandview
