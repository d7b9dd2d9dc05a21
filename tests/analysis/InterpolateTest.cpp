// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/interpolate.h>

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/parallelTransport.h>
#include <strandview/analysis/superpose.h>
#include <strandview/model/MemorySeries.h>

#include "support/RandomConfigurations.h"
#include "support/everythingOf.h"

namespace strandview {

namespace {

using testing::ElementsAre;

Configuration between(const Configuration& from, const Configuration& to, double share)
{
    std::string refusal;
    const std::optional<Configuration> middle = interpolate(from, to, share, refusal);
    EXPECT_TRUE(middle) << refusal;
    return middle.value_or(Configuration());
}

std::string refusalOf(const Configuration& from, const Configuration& to)
{
    std::string refusal;
    EXPECT_FALSE(interpolate(from, to, 0.5, refusal));
    return refusal;
}

// In a plane.
Configuration mirrored(Configuration data)
{
    const auto mirror = [](Point& point) { point.z = -point.z; };
    // The mirrored d1 and d2, and the third direction that makes them a frame.
    const auto mirrorFrame = [](Rotation& q) { q = Rotation(-q[0], -q[1], q[2], q[3]); };
    for (Rod& rod : data.rods) {
        std::for_each(rod.points.begin(), rod.points.end(), mirror);
        std::for_each(rod.rotations.begin(), rod.rotations.end(), mirrorFrame);
    }
    for (LoneBase& base : data.loneBases) {
        mirror(base.point);
        mirrorFrame(base.rotation);
    }
    return data;
}

std::vector<Configuration> threeFrames(Chance& chance)
{
    return {chance.everything(), chance.everything(), chance.everything()};
}

std::unique_ptr<Series> seriesOf(std::vector<Configuration> frames, std::vector<double> times = {})
{
    return std::make_unique<MemorySeries>(std::move(frames), std::move(times));
}

// Counts how often frames are loaded. One of them cannot be.
class CountingSeries : public Series
{
public:
    explicit CountingSeries(std::size_t cutFrame = 1000) : cut(cutFrame) {}
    std::size_t count() const override { return 3; }
    std::size_t loads = 0;

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& /*goOn*/) override
    {
        ++loads;
        if (frame == cut)
            return {std::nullopt, {}, "cut"};
        return {rodOf({{0, 0, double(frame)}, {1, 0, 0}})};
    }

    const std::size_t cut;
};

} // namespace

TEST(Interpolate, PointsGoStraight)
{
    const Configuration a = rodOf({{0, 0, 0}, {1, 2, 3}}), b = rodOf({{4, 0, 0}, {1, 6, -1}});
    const std::vector<Point> points = between(a, b, 0.25).rods[0].points;
    EXPECT_EQ((points[0] - Point(1, 0, 0)).getNorm(), 0);
    EXPECT_EQ((points[1] - Point(1, 3, 2)).getNorm(), 0);
}

TEST(Interpolate, HalfWayIsTheHalfRotation)
{
    Chance chance;
    for (int round = 0; round < 100; ++round) {
        Configuration a = rodOf(chance.points(2)), b = a;
        const Point axis = chance.point();
        const double angle = std::fmod(std::abs(chance.number()), 3.1);
        for (Rotation& rotation : a.rods[0].rotations)
            rotation = chance.rotation();
        for (std::size_t i = 0; i < 2; ++i)
            b.rods[0].rotations[i] = a.rods[0].rotations[i] * algebra3d::about(axis, angle);
        const std::vector<Rotation> half = between(a, b, 0.5).rods[0].rotations;
        for (std::size_t i = 0; i < 2; ++i) {
            const Rotation expected = a.rods[0].rotations[i] * algebra3d::about(axis, angle / 2);
            EXPECT_NEAR(std::abs(algebra3d::dot(half[i], expected)), 1, 1e-14);
        }
    }
}

TEST(Interpolate, TheShorterWayIsTakenWhicheverSignAQuaternionHas)
{
    Chance chance;
    const Configuration a = chance.everything(), b = chance.everything();
    Configuration opposite = b;
    for (Rotation& q : opposite.rods[0].rotations)
        q = Rotation(-q[0], -q[1], -q[2], -q[3]);
    EXPECT_LT(largestDistance(between(a, b, 0.3), between(a, opposite, 0.3)), 1e-14);
}

TEST(Interpolate, RotationsStayOfNormOne)
{
    Chance chance;
    for (int round = 0; round < 50; ++round) {
        const Configuration middle =
            between(chance.everything(), chance.everything(), 0.05 + 0.9 * round / 50);
        for (const std::vector<Rotation>* rotations :
             {&middle.rods[0].rotations, &middle.birods[0].rotations1,
              &middle.dnas[0].pairRotations, &middle.dnas[0].standard->rotations2})
            for (const Rotation& rotation : *rotations)
                EXPECT_NEAR(rotation.getNorm(), 1, 1e-15);
        EXPECT_NEAR(middle.loneBases[0].rotation.getNorm(), 1, 1e-15);
        EXPECT_NEAR(middle.frames[0].rotation.getNorm(), 1, 1e-15);
    }
}

TEST(Interpolate, TheEndsAreTheConfigurations)
{
    Chance chance;
    const Configuration a = chance.everything(), b = chance.everything();
    EXPECT_LT(largestDistance(between(a, b, 0), a), 1e-14);
    EXPECT_LT(largestDistance(between(a, b, 1), b), 1e-14);
    EXPECT_GT(largestDistance(between(a, b, 0.5), a), 0.1);
}

TEST(Interpolate, WhatIsTurnedBeforeIsTurnedAfterwards)
{
    Chance chance;
    for (int round = 0; round < 20; ++round) {
        Configuration a = chance.everything(), b = chance.everything();
        const double share = 0.05 * round;
        Configuration middle = between(a, b, share);
        const FittedFrame motion = chance.motion();
        for (Configuration* data : {&a, &b, &middle})
            move(*data, motion);
        EXPECT_LT(largestDistance(between(a, b, share), middle), 1e-13);
    }
}

TEST(Interpolate, WhatIsMirroredBeforeIsMirroredAfterwards)
{
    Chance chance;
    for (int round = 0; round < 20; ++round) {
        const Configuration a = mirrored(chance.everything()), b = mirrored(chance.everything());
        const Configuration one = between(a, b, 0.3);
        const Configuration other = mirrored(between(mirrored(a), mirrored(b), 0.3));
        EXPECT_LT(largestDistance(one, other), 1e-13);
    }
}

TEST(Interpolate, TheWayBackIsTheSame)
{
    Chance chance;
    for (int round = 0; round < 20; ++round) {
        const Configuration a = chance.everything(), b = chance.everything();
        const double share = 0.05 * round;
        EXPECT_LT(largestDistance(between(a, b, share), between(b, a, 1 - share)), 1e-13);
    }
}

TEST(Interpolate, FramesThatWereMadeAreMadeForThePointsBetween)
{
    Chance chance;
    Configuration a = rodOf(chance.points(6)), b = rodOf(chance.points(6));
    for (Configuration* data : {&a, &b})
        data->rods[0].hasFrames = false;
    const Rod middle = between(a, b, 0.5).rods[0];
    const std::vector<Rotation> made = parallelTransport(middle.points);
    EXPECT_FALSE(middle.hasFrames);
    ASSERT_EQ(middle.rotations.size(), made.size());
    for (std::size_t i = 0; i < made.size(); ++i)
        EXPECT_EQ(algebra3d::dot(middle.rotations[i], made[i]), algebra3d::dot(made[i], made[i]));
}

TEST(Interpolate, AClosedRodStaysClosed)
{
    Chance chance;
    Configuration a = rodOf(chance.points(5)), b = rodOf(chance.points(5));
    for (Configuration* data : {&a, &b}) {
        data->rods[0].points.back() = data->rods[0].points.front();
        data->rods[0].isClosed = true;
    }
    const std::vector<Point> points = between(a, b, 0.37).rods[0].points;
    EXPECT_EQ((points.front() - points.back()).getNorm(), 0);
}

TEST(Interpolate, NumbersGoStraightAndScalarsAreThoseThatBothHave)
{
    Configuration a = rodOf({{0, 0, 0}, {1, 0, 0}}), b = a;
    const double unknown = std::numeric_limits<double>::quiet_NaN();
    a.rods[0].radius = 1;
    b.rods[0].radius = 3;
    a.rods[0].scalars = {{"old", {1, 1}}, {"load", {0, 8}}, {"part", {unknown, 2}}};
    b.rods[0].scalars = {{"load", {4, 0}}, {"part", {1, 2}}, {"new", {1, 1}}};
    const Rod rod = between(a, b, 0.25).rods[0];
    EXPECT_EQ(rod.radius, 1.5);
    ASSERT_EQ(rod.scalars.size(), 2U);
    EXPECT_EQ(rod.scalars[0].name, "load");
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 6));
    EXPECT_TRUE(std::isnan(rod.scalars[1].values[0]));
    EXPECT_EQ(rod.scalars[1].values[1], 2);
}

TEST(Interpolate, WhatIsNotAlikeIsRefused)
{
    Chance chance;
    const Configuration all = chance.everything();
    const auto refusalAfter = [&all](const auto& change) {
        Configuration other = all;
        change(other);
        return refusalOf(all, other);
    };
    EXPECT_EQ(refusalAfter([](auto& other) { other.rods[0].points.pop_back(); }),
              "found 6 points in rod 1, expected 7");
    EXPECT_EQ(refusalAfter([](auto& other) { other.rods.clear(); }), "found 0 rods, expected 1");
    EXPECT_EQ(refusalAfter([](auto& other) { other.rods[0].isClosed = true; }),
              "found ends that meet in rod 1, expected an open one");
    EXPECT_EQ(refusalAfter([](auto& other) { other.birods[0].points.pop_back(); }),
              "found 3 points in birod 1, expected 4");
    EXPECT_EQ(refusalAfter([](auto& other) { other.dnas[0].pairPoints.pop_back(); }),
              "found 2 pairs in DNA 1, expected 3");
    EXPECT_EQ(refusalAfter([](auto& other) { other.dnas[0].bases = "ATG"; }),
              "found T as base 2 in DNA 1, expected C");
    EXPECT_EQ(refusalAfter([](auto& other) { other.loneBases.emplace_back(); }),
              "found 2 bases in no pair, expected 1");
    EXPECT_EQ(refusalAfter([](auto& other) { other.loneBases[0].base = 'G'; }),
              "found G as base 1 of those in no pair, expected A");
    EXPECT_EQ(refusalAfter([](auto& other) { other.markers.emplace_back(); }),
              "found 2 markers, expected 1");
    EXPECT_EQ(refusalAfter([](auto& other) { other.arrows.clear(); }),
              "found 0 arrows, expected 1");
    EXPECT_EQ(refusalAfter([](auto& other) { other.frames.clear(); }),
              "found 0 frames, expected 1");
}

// Half-way through half a turn a straight rod would be a point.
TEST(Interpolate, PointsThatMeetOnTheirWayAreRefused)
{
    const Configuration a = rodOf({{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}});
    const Configuration b = rodOf({{1, 0, 0}, {0, 0, 0}, {-1, 0, 0}});
    EXPECT_EQ(refusalOf(a, b),
              "found points 1 and 2 of rod 1 in one place on their way, expected them apart");
    between(a, b, 0.25);
}

TEST(InterpolatedSeries, HasTheFramesOfTheDataAndSoManyBetween)
{
    Chance chance;
    const std::vector<Configuration> three = threeFrames(chance);
    InterpolatedSeries series(seriesOf(three), 3);
    ASSERT_EQ(series.count(), 9U);
    for (const std::size_t frame : {2, 0, 1})
        EXPECT_EQ(everythingOf(*series.load(4 * frame).configuration), everythingOf(three[frame]));
    for (const std::size_t frame : {7, 1, 2, 3, 5, 6, 5}) { // in any order, more than once
        const Configuration expected =
            between(three[frame / 4], three[frame / 4 + 1], double(frame % 4) / 4);
        EXPECT_EQ(everythingOf(*series.load(frame).configuration), everythingOf(expected));
    }
    EXPECT_EQ(series.getRefusal(), "");
    EXPECT_EQ(series.load(9).error, "found frame 9, expected 0 to 8");
}

TEST(InterpolatedSeries, TimesGoStraightWhereBothAreKnown)
{
    Chance chance;
    InterpolatedSeries series(seriesOf(threeFrames(chance), {1, 3, 4}), 3);
    EXPECT_EQ(series.time(0), 1);
    EXPECT_EQ(series.time(1), 1.5);
    EXPECT_EQ(series.time(4), 3);
    EXPECT_EQ(series.time(6), 3.5);
    EXPECT_EQ(series.time(8), 4);
    EXPECT_EQ(series.time(9), std::nullopt);
    InterpolatedSeries timeless(seriesOf(std::vector<Configuration>(2)), 1);
    EXPECT_EQ(timeless.time(1), std::nullopt);
}

TEST(InterpolatedSeries, OfOneFrameOrNoneOrWithoutStepsIsTheSeries)
{
    Chance chance;
    InterpolatedSeries one(seriesOf({chance.everything()}), 5), none(seriesOf({}), 5);
    EXPECT_EQ(one.count(), 1U);
    EXPECT_TRUE(one.load(0).configuration);
    EXPECT_EQ(none.count(), 0U);
    InterpolatedSeries same(seriesOf(threeFrames(chance), {1, 3, 4}), 0);
    EXPECT_EQ(same.count(), 3U);
    EXPECT_EQ(same.time(1), 3);
}

TEST(InterpolatedSeries, AFrameBetweenOthersThatAreNotAlikeFailsAlone)
{
    Chance chance;
    InterpolatedSeries series(
        seriesOf({rodOf(chance.points(3)), rodOf(chance.points(4)), rodOf(chance.points(4))}), 1);
    EXPECT_TRUE(series.load(3).configuration);
    EXPECT_EQ(series.getRefusal(), "");
    const std::string expected = "between frames 0 and 1: found 4 points in rod 1, expected 3";
    EXPECT_EQ(series.load(1).error, expected);
    EXPECT_EQ(series.getRefusal(), expected);
    for (const std::size_t frame : {0, 2, 3, 4})
        EXPECT_TRUE(series.load(frame).configuration) << frame;
}

TEST(InterpolatedSeries, BesideAFrameThatCannotBeLoadedNoneCanBeEither)
{
    InterpolatedSeries series(std::make_unique<CountingSeries>(1), 1);
    EXPECT_TRUE(series.load(0).configuration);
    for (const std::size_t frame : {1, 2, 3})
        EXPECT_EQ(series.load(frame).error, "cut");
    EXPECT_EQ(series.getRefusal(), "");
    EXPECT_TRUE(series.load(4).configuration);
}

// So that a film decodes each once.
TEST(InterpolatedSeries, GoingForwardsEachFrameIsLoadedOnce)
{
    auto counted = std::make_unique<CountingSeries>();
    const CountingSeries& inner = *counted;
    InterpolatedSeries series(std::move(counted), 7);
    for (std::size_t frame = 0; frame < series.count(); ++frame)
        EXPECT_TRUE(series.load(frame).configuration);
    EXPECT_EQ(inner.loads, 3U);
}

} // namespace strandview
