// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/Collector.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <random>

#include <gmock/gmock.h>

#include "support/readText.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const Quaternion identity(0, 0, 0, 1);
const Quaternion halfTurnAboutX(1, 0, 0, 0);

/// Along z, from 0 on, in steps of these lengths.
std::vector<Vector> alongZ(const std::vector<double>& steps)
{
    std::vector<Vector> points = {Vector(0, 0, 0)};
    for (const double step : steps)
        points.emplace_back(0, 0, points.back().z + step);
    return points;
}

/// Whose frames follow it.
Rod straightRod(const std::vector<double>& steps)
{
    Rod rod;
    rod.points = alongZ(steps);
    rod.rotations.assign(rod.points.size(), identity);
    return rod;
}

Birod straightBirod(const std::array<std::vector<double>, 3>& steps)
{
    Birod birod;
    birod.points = alongZ(steps[0]);
    birod.points1 = alongZ(steps[1]);
    birod.points2 = alongZ(steps[2]);
    birod.rotations.assign(birod.points.size(), identity);
    birod.rotations1 = birod.rotations2 = birod.rotations;
    return birod;
}

struct Collected
{
    std::string fault;
    std::optional<Configuration> configuration;
    ReadReport report;
};

/// What came of one thing.
template <typename Thing>
Collected collect(Thing thing)
{
    Collected result;
    Collector collector;
    result.fault = collector.add(std::move(thing));
    result.configuration = collector.finish("file", "rod", result.report);
    return result;
}

} // namespace

// ---- Points in one place

TEST(Collector, KeepsWhatIsApartAsItIs)
{
    const Collected result = collect(straightRod({1, 2, 1e-4}));
    ASSERT_TRUE(result.configuration);
    const Rod& rod = result.configuration->rods[0];
    EXPECT_EQ(numbersOf(rod.points), Points({{0, 0, 0}, {0, 0, 1}, {0, 0, 3}, {0, 0, 3.0001}}));
    EXPECT_THAT(rod.indices, IsEmpty()) << "nothing is left out";
    EXPECT_TRUE(rod.hasFrames);
    EXPECT_THAT(result.report.notices, IsEmpty());
}

TEST(Collector, LeavesOutAPointInThePlaceOfTheOneBeforeWithAllThatBelongsToIt)
{
    Rod rod = straightRod({1, 0, 0, 1, 1e-6});
    for (std::size_t i = 0; i < 6; ++i) {
        rod.rotations[i] = Quaternion(0, 0, std::sin(0.1 * i), std::cos(0.1 * i));
        rod.lines.push_back(10 + i);
    }
    rod.scalars = {{"a", {0, 1, 2, 3, 4, 5}}, {"b", {10, 11, 12, 13, 14, 15}}};
    const Collected result = collect(rod);
    ASSERT_TRUE(result.configuration) << result.fault;
    const Rod& kept = result.configuration->rods[0];
    EXPECT_THAT(kept.indices, ElementsAre(0, 1, 4));
    EXPECT_THAT(kept.lines, ElementsAre(10, 11, 14));
    EXPECT_EQ(numbersOf(kept.points), Points({{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}));
    EXPECT_THAT(kept.scalars[0].values, ElementsAre(0, 1, 4));
    EXPECT_THAT(kept.scalars[1].values, ElementsAre(10, 11, 14));
    EXPECT_EQ(kept.rotations[2][2], std::sin(0.4));
    EXPECT_THAT(result.report.notices,
                ElementsAre("file: 3 points left out, at the same place as the point before"));
}

TEST(Collector, ComparesWithTheLastPointThatIsKept)
{
    // Eight short steps behind 100 of 1: the mean is 0.93, so points nearer than 9.3e-6 are one.
    std::vector<double> steps(100, 1);
    steps.resize(108, 1.2e-5);
    EXPECT_EQ(collect(straightRod(steps)).configuration->rods[0].points.size(), 109u);
    // Of steps of 4e-6 every third ends more than that behind the point that was kept.
    std::fill(steps.begin() + 100, steps.end(), 4e-6);
    const Collected near = collect(straightRod(steps));
    const std::vector<std::size_t>& indices = near.configuration->rods[0].indices;
    ASSERT_EQ(indices.size(), 103u);
    EXPECT_EQ(indices[100], 100u);
    EXPECT_EQ(indices[101], 103u);
    EXPECT_EQ(indices[102], 106u);
}

/// The same points, however small their differences are beside their distances.
void expectKeptAgain(const Rod& rod)
{
    const Collected again = collect(rod);
    ASSERT_EQ(again.fault, "");
    const Rod& second = again.configuration->rods[0];
    EXPECT_EQ(second.isClosed, rod.isClosed);
    ASSERT_EQ(second.points.size(), rod.points.size());
    for (std::size_t i = 0; i < rod.points.size(); ++i)
        EXPECT_EQ((second.points[i] - rod.points[i]).getNorm(), 0) << i;
}

TEST(Collector, WhatIsKeptIsKeptAgain)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<double> part(-1, 1), power(-6, 0);
    std::size_t rods = 0, merged = 0, closed = 0;
    for (int round = 0; round < 2000; ++round) {
        Rod rod;
        const std::size_t count = 2 + random() % 12;
        rod.points = {Vector(0, 0, 0)};
        while (rod.points.size() < count)
            rod.points.push_back(rod.points.back() + Vector(part(random), part(random), 0) *
                                                         std::pow(10, power(random)));
        if (round % 3 == 0)
            rod.points.back() = rod.points.front() + Vector(1, 0, 0) * std::pow(10, power(random));
        rod.isClosed = round % 2 == 0;
        const Collected first = collect(rod);
        if (!first.fault.empty())
            continue;
        const Rod& kept = first.configuration->rods[0];
        ++rods;
        closed += kept.isClosed;
        merged += kept.points.size() < count;
        SCOPED_TRACE(round);
        expectKeptAgain(kept);
    }
    EXPECT_GT(rods, 1500);
    EXPECT_GT(merged, 100);
    EXPECT_GT(closed, 500);
}

TEST(Collector, WithoutAPointThatIsLeftOutAnotherMayBeTooNear)
{
    // The last two points are 0.1 and 1.3 from the one before; of the mean step 1e-5 is 1, and 1.5
    // without the former.
    const Collected result = collect(straightRod({300000, 0.1, 1.2}));
    EXPECT_EQ(result.configuration->rods[0].points.size(), 2);
    EXPECT_THAT(result.configuration->rods[0].indices, ElementsAre(0, 1));
    EXPECT_THAT(result.report.notices, ElementsAre(HasSubstr("2 points left out")));

    Birod birod = straightBirod({{{300000, 0.1, 1.2}, {1, 1, 1}, {1, 1, 1}}});
    EXPECT_EQ(collect(birod).configuration->birods[0].points.size(), 2);
}

TEST(Collector, RefusesARodWithoutTwoPlaces)
{
    const Collected one = collect(straightRod({0, 0}));
    EXPECT_EQ(one.fault, "found 1 distinct point, expected at least 2 in a rod");
    EXPECT_FALSE(one.configuration) << "nothing was taken";
    EXPECT_EQ(collect(Rod()).fault, "found 0 distinct points, expected at least 2 in a rod");
    EXPECT_EQ(collect(straightRod({1e-160})).fault,
              "found points nearer than 1.5e-154 to one another, expected a unit in which they "
              "are apart");
}

// ---- Closed rods

namespace {

/// Three corners, and a fourth point so far from the first.
Rod triangle(double gap)
{
    Rod rod;
    rod.points = {Vector(0, 0, 0), Vector(1, 0, 0), Vector(0, 1, 0), Vector(0, gap, 0)};
    return rod;
}

Rod saidToBeClosed(Rod rod)
{
    rod.isClosed = true;
    return rod;
}

Collected collectClosing(Rod rod)
{
    ReadOptions options;
    options.close = true;
    Collected result;
    Collector collector(options);
    result.fault = collector.add(std::move(rod));
    result.configuration = collector.finish("file", "rod", result.report);
    return result;
}

void expectSame(const Quaternion& a, const Quaternion& b)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(a[i], b[i]);
}

} // namespace

TEST(Collector, ARodWhoseLastPointIsTheFirstAgainIsClosedExactly)
{
    // The mean edge is about 1, so points nearer than 1e-5 are one.
    for (const double gap : {0.0, 9e-6}) {
        const Collected result = collect(triangle(gap));
        ASSERT_TRUE(result.configuration);
        const Rod& rod = result.configuration->rods[0];
        EXPECT_TRUE(rod.isClosed);
        EXPECT_EQ(numbersOf(rod.points), Points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
        expectSame(rod.rotations.front(), rod.rotations.back());
        EXPECT_THAT(rod.indices, IsEmpty());
        EXPECT_THAT(result.report.notices, ElementsAre(HasSubstr("without frames")));
    }
    EXPECT_FALSE(collect(triangle(2e-5)).configuration->rods[0].isClosed);
}

TEST(Collector, ThereAndBackIsNotClosed)
{
    Rod rod;
    rod.points = {Vector(0, 0, 0), Vector(1, 0, 0), Vector(0, 0, 0)};
    EXPECT_FALSE(collect(rod).configuration->rods[0].isClosed);
    EXPECT_EQ(collect(saidToBeClosed(rod)).fault,
              "found 2 distinct points, expected at least 3 in a closed rod");
}

TEST(Collector, ARodSaidToBeClosedGetsTheFirstPointAgainWithAllThatBelongsToIt)
{
    Rod rod = saidToBeClosed(triangle(0.5));
    for (std::size_t i = 0; i < 4; ++i) {
        rod.rotations.emplace_back(0, 0, std::sin(0.1 * i), std::cos(0.1 * i));
        rod.lines.push_back(10 + i);
    }
    rod.scalars = {{"a", {3, 4, 5, 6}}};
    const Collected result = collect(rod);
    ASSERT_TRUE(result.configuration) << result.fault;
    const Rod& closed = result.configuration->rods[0];
    EXPECT_TRUE(closed.isClosed);
    EXPECT_EQ(numbersOf(closed.points),
              Points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0.5, 0}, {0, 0, 0}}));
    EXPECT_THAT(closed.lines, ElementsAre(10, 11, 12, 13, 10));
    EXPECT_THAT(closed.indices, ElementsAre(0, 1, 2, 3, 0));
    EXPECT_THAT(closed.scalars[0].values, ElementsAre(3, 4, 5, 6, 3));
    ASSERT_EQ(closed.rotations.size(), 5u);
    expectSame(closed.rotations.back(), closed.rotations.front());
    EXPECT_EQ(result.report.notices.size(), 1u) << "about d3: nothing of the closing";
}

TEST(Collector, OneSaidToBeClosedThatRepeatsItsFirstPointIsAsItIs)
{
    const Collected result = collect(saidToBeClosed(triangle(0)));
    EXPECT_EQ(result.configuration->rods[0].points.size(), 4u);
    EXPECT_TRUE(result.configuration->rods[0].isClosed);
}

TEST(Collector, FramesThatAreGivenAndDoNotCloseStayAsTheyAre)
{
    Rod rod = triangle(0);
    for (std::size_t i = 0; i < 4; ++i)
        rod.rotations.emplace_back(0, 0, std::sin(0.1 * i), std::cos(0.1 * i));
    const Collected result = collect(rod);
    EXPECT_TRUE(result.configuration->rods[0].isClosed);
    expectSame(result.configuration->rods[0].rotations.back(), rod.rotations.back());
}

TEST(Collector, ClosesAllWhoseEndsAreApartWhereItIsToldToAndSaysHowMany)
{
    ReadOptions options;
    options.close = true;
    Collector collector(options);
    Rod backbone = triangle(0.5);
    backbone.isBackbone = true;
    for (const Rod& rod : {triangle(0.5), triangle(0), straightRod({1}), backbone, triangle(0.2),
                           saidToBeClosed(triangle(0.3))})
        EXPECT_EQ(collector.add(rod), "");
    ReadReport report;
    const auto read = collector.finish("file", "rod", report);
    ASSERT_TRUE(read);
    std::vector<bool> areClosed;
    std::vector<std::size_t> counts;
    for (const Rod& rod : read->rods) {
        areClosed.push_back(rod.isClosed);
        counts.push_back(rod.points.size());
    }
    EXPECT_THAT(areClosed, ElementsAre(true, true, false, false, true, true));
    EXPECT_THAT(counts, ElementsAre(5, 4, 2, 4, 5, 5));
    EXPECT_EQ(report.notices.at(0), "file: 2 rods closed: the ends were apart");
}

TEST(Collector, SaysWhereThereIsNothingToClose)
{
    EXPECT_EQ(collectClosing(triangle(0)).report.notices.at(0),
              "file: --closed has no effect: found no rod whose ends are apart");
    // Of two places none can be closed, and none gets a point more.
    Rod rod;
    rod.points = {Vector(0, 0, 0), Vector(1, 0, 0), Vector(1, 0, 0)};
    const Collected result = collectClosing(rod);
    EXPECT_EQ(result.configuration->rods[0].points.size(), 2u);
    EXPECT_FALSE(result.configuration->rods[0].isClosed);
    EXPECT_EQ(result.report.notices.at(0),
              "file: --closed has no effect: found no rod whose ends are apart");
}

TEST(Collector, PointsLeftOutDoNotOpenAClosedRod)
{
    Rod rod = triangle(5e-6); // one with the first, and with the next one
    rod.points.emplace_back(0, 0, 0);
    const Collected result = collect(rod);
    const Rod& closed = result.configuration->rods[0];
    EXPECT_TRUE(closed.isClosed);
    EXPECT_EQ(numbersOf(closed.points), Points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
    EXPECT_THAT(closed.indices, ElementsAre(0, 1, 2, 3));
}

// ---- Birods: each of the three curves has a tolerance of its own

/// The three curves of a birod, in an order of their own.
class CollectorOfBirods : public testing::TestWithParam<std::array<int, 3>>
{
};

TEST_P(CollectorOfBirods, JudgesEachCurveByItsOwnDistances)
{
    // The mean edges are 1, about 750 and about 7.5e-4, so points are one that are nearer than
    // 1e-5, 7.5e-3 and 7.5e-9. In the long curve point 3 is 1e-3 behind point 2, which counts
    // there alone; in the short one point 4 is 1e-6 behind point 3, which counts nowhere.
    const std::array<std::vector<double>, 3> curves = {std::vector<double>{1, 1, 1, 1},
                                                       std::vector<double>{1000, 1000, 1e-3, 1000},
                                                       std::vector<double>{1e-3, 1e-3, 1e-3, 1e-6}};
    const std::array<int, 3> order = GetParam();
    const Collected result =
        collect(straightBirod({curves[order[0]], curves[order[1]], curves[order[2]]}));
    ASSERT_TRUE(result.configuration) << result.fault;
    const Birod& birod = result.configuration->birods[0];
    EXPECT_THAT(birod.indices, ElementsAre(0, 1, 2, 4));
    for (const auto* points : {&birod.points, &birod.points1, &birod.points2})
        EXPECT_EQ(points->size(), 4u);
    for (const auto* rotations : {&birod.rotations, &birod.rotations1, &birod.rotations2})
        EXPECT_EQ(rotations->size(), 4u);
    EXPECT_THAT(result.report.notices,
                ElementsAre("file: 1 point left out, at the same place as the point before"));
}

INSTANTIATE_TEST_SUITE_P(InAnyOrder, CollectorOfBirods,
                         testing::Values(std::array{0, 1, 2}, std::array{0, 2, 1},
                                         std::array{1, 0, 2}, std::array{1, 2, 0},
                                         std::array{2, 0, 1}, std::array{2, 1, 0}));

TEST(Collector, LeavesAPointOutOfAllThreeCurvesOfABirod)
{
    const Collected result = collect(straightBirod({{{1, 0, 1}, {2, 2, 2}, {3, 3, 3}}}));
    ASSERT_TRUE(result.configuration) << result.fault;
    const Birod& birod = result.configuration->birods[0];
    EXPECT_EQ(numbersOf(birod.points), Points({{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}));
    EXPECT_EQ(numbersOf(birod.points1), Points({{0, 0, 0}, {0, 0, 2}, {0, 0, 6}}));
    EXPECT_EQ(numbersOf(birod.points2), Points({{0, 0, 0}, {0, 0, 3}, {0, 0, 9}}));
}

TEST(Collector, RefusesABirodWithACurveInOnePlace)
{
    EXPECT_EQ(collect(straightBirod({{{1, 1}, {1, 1}, {0, 0}}})).fault,
              "found 1 point distinct in the average and in both strands, expected at least 2 in a "
              "birod");
}

// ---- Frames

TEST(Collector, MakesFramesWhereThereAreNone)
{
    Rod rod = straightRod({1, 1});
    rod.rotations.clear();
    const Collected result = collect(rod);
    ASSERT_TRUE(result.configuration);
    EXPECT_EQ(result.configuration->rods[0].rotations.size(), 3u);
    EXPECT_FALSE(result.configuration->rods[0].hasFrames);
    EXPECT_THAT(result.report.notices,
                ElementsAre("file: 1 rod without frames: made by parallel transport, for a ribbon "
                            "where one is asked for (--ribbon)"));
}

TEST(Collector, TakesFramesAndScalarsOfElementsToThePointsBeforeAnyIsLeftOut)
{
    Rod rod = straightRod({1, 0, 1});
    rod.rotations.pop_back();
    rod.scalars = {{"ofElements", {1, 3, 5}}, {"ofPoints", {0, 1, 2, 3}}};
    const Collected result = collect(rod);
    ASSERT_TRUE(result.configuration) << result.fault;
    const Rod& kept = result.configuration->rods[0];
    EXPECT_THAT(kept.indices, ElementsAre(0, 1, 3));
    EXPECT_EQ(kept.rotations.size(), 3u);
    EXPECT_THAT(kept.scalars[0].values, ElementsAre(1, 2, 5));
    EXPECT_THAT(kept.scalars[1].values, ElementsAre(0, 1, 3));
    EXPECT_THAT(result.report.notices,
                ElementsAre("file: 1 rod with frames or scalars of elements: taken to the points",
                            "file: 1 point left out, at the same place as the point before"));
}

TEST(Collector, TakesFramesOfElementsOfAnyCurveOfABirodToThePoints)
{
    for (int curve = 0; curve < 3; ++curve) {
        Birod birod = straightBirod({{{1, 1}, {1, 1}, {1, 1}}});
        (curve == 0   ? birod.rotations
         : curve == 1 ? birod.rotations1
                      : birod.rotations2)
            .pop_back();
        const Collected result = collect(birod);
        ASSERT_TRUE(result.configuration) << result.fault;
        for (const auto* rotations : {&result.configuration->birods[0].rotations,
                                      &result.configuration->birods[0].rotations1,
                                      &result.configuration->birods[0].rotations2})
            EXPECT_EQ(rotations->size(), 3u);
        EXPECT_THAT(
            result.report.notices,
            ElementsAre("file: 1 birod with frames or scalars of elements: taken to the points"));
    }
}

TEST(Collector, TellsFramesThatDoNotFollowTheirPoints)
{
    Rod rod = straightRod({1, 1});
    rod.rotations.assign(3, halfTurnAboutX);
    Birod birod = straightBirod({{{1, 1}, {1, 1}, {1, 1}}});
    birod.rotations.assign(3, halfTurnAboutX);
    Dna dna;
    dna.bases = "AC";
    dna.pairPoints = alongZ({1});
    dna.pairRotations.assign(2, halfTurnAboutX);
    const std::string question =
        ": is d3 the tangent (quaternions: scalar last; directors: d1, d2, d3)?";
    EXPECT_THAT(collect(rod).report.notices,
                ElementsAre("file: 1 rod whose d3 does not follow the points" + question));
    EXPECT_THAT(
        collect(birod).report.notices,
        ElementsAre("file: 1 birod whose d3 does not follow the average's points" + question));
    EXPECT_THAT(collect(dna).report.notices,
                ElementsAre("file: 1 DNA whose d3 does not follow the pairs" + question));
}

TEST(Collector, FramesFollowTheirPointsUpTo60DegreesOnAverage)
{
    for (const double degrees : {59.0, 61.0}) {
        Rod rod = straightRod({1, 1});
        const double half = degrees / 360 * std::acos(-1.0);
        rod.rotations.assign(3, Quaternion(std::sin(half), 0, 0, std::cos(half)));
        EXPECT_EQ(collect(rod).report.notices.size(), degrees > 60 ? 1u : 0u) << degrees;
    }
}

// ---- All of it

TEST(Collector, KeepsEachKindInTheOrderInWhichItCame)
{
    Collector collector;
    for (const char* origin : {"one", "two"}) {
        Marker marker;
        marker.origin = origin;
        collector.add(marker);
        Arrow arrow;
        arrow.origin = origin;
        collector.add(arrow);
        Frame frame;
        frame.origin = origin;
        collector.add(frame);
    }
    ReadReport report;
    const auto all = collector.finish("file", "glyph", report);
    ASSERT_TRUE(all);
    EXPECT_EQ(all->markers[0].origin + all->markers[1].origin, "onetwo");
    EXPECT_EQ(all->arrows[0].origin + all->arrows[1].origin, "onetwo");
    EXPECT_EQ(all->frames[0].origin + all->frames[1].origin, "onetwo");
}

TEST(Collector, CountsWhatItDidInAllRods)
{
    Collector collector;
    for (int i = 0; i < 2; ++i) {
        Rod rod = straightRod({1, 0, 1});
        rod.rotations.clear();
        EXPECT_EQ(collector.add(rod), "");
    }
    ReadReport report;
    EXPECT_TRUE(collector.finish("file", "rod", report));
    EXPECT_THAT(report.notices,
                ElementsAre(HasSubstr("2 rods without frames"), HasSubstr("2 points left out")));
}

TEST(Collector, RefusesNothingAndDnaWithoutBases)
{
    ReadReport report;
    EXPECT_FALSE(Collector().finish("file", "rod or DNA", report));
    EXPECT_EQ(report.error, "file: found nothing to show, expected at least one rod or DNA");
    EXPECT_EQ(collect(Dna()).fault, "found 0 bases, expected at least 1");
}

} // namespace strandview
