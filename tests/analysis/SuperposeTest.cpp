// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/superpose.h>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/model/MemorySeries.h>

#include "support/RandomConfigurations.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Its first frame cannot be loaded.
class LateSeries : public Series
{
public:
    explicit LateSeries(std::vector<Configuration> all) : frames(std::move(all)) {}
    std::size_t count() const override { return frames.size() + 1; }
    std::optional<double> time(std::size_t frame) const override { return 2.0 * double(frame); }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& /*goOn*/) override
    {
        if (frame == 0)
            return {std::nullopt, {}, "cut"};
        return {frames[frame - 1]};
    }

    std::vector<Configuration> frames;
};

} // namespace

TEST(Superpose, TakesAllOfAMovedConfigurationBack)
{
    Chance chance;
    for (int round = 0; round < 50; ++round) {
        const Configuration reference = chance.everything();
        Configuration moved = reference;
        move(moved, chance.motion());
        EXPECT_GT(largestDistance(moved, reference), 0.1);
        const auto back = findSuperposition(moved, reference);
        ASSERT_TRUE(back);
        EXPECT_LT(back->rms, 1e-12);
        move(moved, *back);
        EXPECT_LT(largestDistance(moved, reference), 1e-12);
    }
}

TEST(Superpose, TheInverseOfAMotionLeadsBack)
{
    Chance chance;
    for (int round = 0; round < 20; ++round) {
        const Configuration before = chance.everything();
        Configuration moved = before;
        const FittedFrame motion = chance.motion();
        move(moved, motion);
        move(moved, inverse(motion));
        EXPECT_LT(largestDistance(moved, before), 1e-12);
    }
}

// Of all motions none leaves less.
TEST(Superpose, LeavesTheLeastSquares)
{
    Chance chance;
    const auto squares = [](const Configuration& one, const Configuration& other) {
        double sum = 0;
        for (std::size_t i = 0; i < one.rods[0].points.size(); ++i) {
            const Point left = one.rods[0].points[i] - other.rods[0].points[i];
            sum += left.dot(left);
        }
        return sum;
    };
    const Configuration reference = rodOf(chance.points(10)), other = rodOf(chance.points(10));
    Configuration best = other;
    const FittedFrame motion = *findSuperposition(other, reference);
    move(best, motion);
    EXPECT_NEAR(squares(best, reference), 10 * motion.rms * motion.rms, 1e-9);
    for (int round = 0; round < 200; ++round) {
        Configuration disturbed = best;
        const Rotation little(0.01 * chance.number(), 0.01 * chance.number(),
                              0.01 * chance.number(), 1);
        move(disturbed, {0.01 * chance.point(), algebra3d::scaledToUnit(little)});
        EXPECT_GE(squares(disturbed, reference), squares(best, reference));
    }
}

TEST(Superpose, OnlyWhatHasAsManyPointsInBothCounts)
{
    Chance chance;
    Configuration reference = rodOf(chance.points(6)), moved = reference;
    move(moved, chance.motion());
    reference.rods.push_back(rodOf(chance.points(3)).rods[0]);
    moved.rods.push_back(rodOf(chance.points(5)).rods[0]);
    moved.rods.push_back(rodOf(chance.points(5)).rods[0]);
    moved.loneBases.emplace_back();
    EXPECT_LT(findSuperposition(moved, reference)->rms, 1e-12);
    EXPECT_FALSE(findSuperposition(rodOf(chance.points(4)), rodOf(chance.points(5))));
    EXPECT_FALSE(findSuperposition({}, {}));
}

TEST(SuperposedSeries, HasEveryFrameOnTheFirst)
{
    Chance chance;
    const Configuration first = chance.everything();
    std::vector<Configuration> frames(4, first);
    for (std::size_t i = 1; i < frames.size(); ++i)
        move(frames[i], chance.motion());
    SuperposedSeries series(
        std::make_unique<MemorySeries>(frames, std::vector<double>{0, 1, 2, 3}));
    EXPECT_EQ(series.count(), 4U);
    EXPECT_EQ(series.time(2), 2);
    for (const std::size_t frame : {3, 0, 1, 2}) { // in any order
        const LoadedFrame loaded = series.load(frame);
        EXPECT_LT(largestDistance(*loaded.configuration, first), 1e-12);
        EXPECT_THAT(loaded.notices, IsEmpty());
    }
}

// Any turn about an oblique straight rod takes it to itself.
TEST(SuperposedSeries, TheFirstFrameStaysAsItIsBitForBit)
{
    Chance chance;
    std::vector<Point> straight;
    for (int i = 0; i < 9; ++i)
        straight.emplace_back(0.3 * i, 0.4 * i, 0.5 * i);
    Configuration ofMarkers;
    ofMarkers.markers.emplace_back();
    for (const Configuration& first : {rodOf(straight), chance.everything(), ofMarkers}) {
        SuperposedSeries series(
            std::make_unique<MemorySeries>(std::vector<Configuration>{first, first}));
        for (int again = 0; again < 2; ++again) {
            const LoadedFrame loaded = series.load(0);
            EXPECT_EQ(largestDistance(*loaded.configuration, first), 0);
            EXPECT_THAT(loaded.notices, IsEmpty());
        }
    }
}

TEST(SuperposedSeries, AClosedRodStaysClosed)
{
    Chance chance;
    std::vector<Point> points = chance.points(9);
    points.back() = points.front();
    Configuration moved = rodOf(points);
    move(moved, chance.motion());
    SuperposedSeries series(
        std::make_unique<MemorySeries>(std::vector<Configuration>{rodOf(points), moved}));
    const std::vector<Point> turned = series.load(1).configuration->rods[0].points;
    EXPECT_EQ((turned.front() - turned.back()).getNorm(), 0);
}

TEST(SuperposedSeries, TheFirstFrameIsTheFirstThatThereIs)
{
    Chance chance;
    const Configuration first = rodOf(chance.points(5));
    Configuration second = first;
    move(second, chance.motion());
    SuperposedSeries series(std::make_unique<LateSeries>(
        std::vector<Configuration>{first, second, rodOf(chance.points(4))}));
    EXPECT_EQ(series.load(0).error, "cut");
    EXPECT_LT(largestDistance(*series.load(2).configuration, first), 1e-12);
    EXPECT_THAT(series.load(3).notices,
                ElementsAre("frame 3: found nothing of as many points as in the first frame, not "
                            "superposed"));
}

// The series around which it is asks nothing.
TEST(SuperposedSeries, CanBeStoppedBetweenItsSteps)
{
    Chance chance;
    const Configuration first = rodOf(chance.points(5));
    std::vector<Configuration> frames(2, first);
    move(frames[1], chance.motion());
    for (int patience = 0;; ++patience) {
        SuperposedSeries series(std::make_unique<LateSeries>(frames));
        int asked = 0;
        const LoadedFrame loaded = series.load(2, [&](double) { return asked++ < patience; });
        if (loaded.configuration) {
            EXPECT_GE(patience, 4) << "before each frame for the first one, and two steps";
            break;
        }
        EXPECT_EQ(loaded.error, "superposing frame 2 was stopped");
        EXPECT_EQ(asked, patience + 1) << "and no more";
        EXPECT_LT(largestDistance(*series.load(2).configuration, first), 1e-12) << patience;
    }
}

namespace {

// Its second frame is found later.
class FoundLater : public MemorySeries
{
public:
    using MemorySeries::MemorySeries;
    std::size_t count() const override { return isFound ? 2 : 1; }

private:
    bool findMore(const GoOn& goOn, std::vector<std::string>& notices) override
    {
        isFound = isFound || goOn(0);
        if (isFound)
            notices.emplace_back("found");
        return !isFound;
    }

    bool isFound = false;
};

} // namespace

TEST(SuperposedSeries, FramesThatAreFoundLaterAreOnTheFirst)
{
    Chance chance;
    const Configuration first = rodOf(chance.points(5));
    Configuration second = first;
    move(second, chance.motion());
    SuperposedSeries series(
        std::make_unique<FoundLater>(std::vector<Configuration>{first, second}));
    EXPECT_TRUE(series.lookForMore([](double) { return false; }));
    EXPECT_EQ(series.count(), 1U);
    std::vector<std::string> notices;
    EXPECT_FALSE(series.lookForMore([](double) { return true; }, &notices));
    EXPECT_THAT(notices, ElementsAre("found"));
    ASSERT_EQ(series.count(), 2U);
    EXPECT_LT(largestDistance(*series.load(1).configuration, first), 1e-12);
}

} // namespace strandview
