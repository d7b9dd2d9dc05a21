// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/gaussIntegral.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <thread>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include "support/RandomRods.h"
#include "support/knots.h"
#include "support/writhe.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;

Points randomRing(int size, unsigned seed) { return randomRod(RodKind::CLOSED, size, seed).points; }

Points mirrored(Points points)
{
    for (Vector& point : points)
        point.x = -point.x;
    return points;
}

Points reversed(Points points)
{
    std::reverse(points.begin(), points.end());
    return points;
}

// The same ring from another of its points on.
Points startedAt(const Points& ring, std::size_t start)
{
    Points points;
    for (std::size_t i = 0; i < ring.size(); ++i)
        points.push_back(ring[(start + i) % (ring.size() - 1)]);
    return points;
}

Points moved(Points points, const algebra3d::Quaternion<double>& rotation, double scale,
             const Vector& shift)
{
    for (Vector& point : points)
        point = algebra3d::rotated(point, rotation) * scale + shift;
    return points;
}

// A circle of radius 1 in a plane, about a centre on x.
Points circle(double centre, bool inPlaneOfXY)
{
    return ringOf(60, [&](double t) {
        return inPlaneOfXY ? Vector(centre + std::cos(t), std::sin(t), 0)
                           : Vector(centre + std::cos(t), 0, std::sin(t));
    });
}

} // namespace

TEST(GaussIntegral, OfATrefoilIsItsPublishedWrithe)
{
    EXPECT_NEAR(gaussIntegral(trefoil(100)), -3.354225047, 1e-9);
    EXPECT_NEAR(gaussIntegral(trefoil(200)), -3.354151006, 1e-9);
    EXPECT_NEAR(gaussIntegral(trefoil(400)), -3.354132419, 1e-9);
}

TEST(GaussIntegral, OfTorusKnotsIsTheirPublishedWrithe)
{
    EXPECT_NEAR(gaussIntegral(torusKnot(2, 3, 400)), -3.517860454, 1e-9);
    EXPECT_NEAR(gaussIntegral(torusKnot(2, 5, 400)), -6.866184315, 1e-9);
}

TEST(GaussIntegral, IsThatOfAnotherMethod)
{
    for (unsigned seed = 0; seed < 30; ++seed) {
        const Points ring = randomRing(5 + int(seed), seed);
        EXPECT_NEAR(gaussIntegral(ring), writheOf(ring), 3e-10) << seed;
        const Points open = randomRod(RodKind::RANDOM_WALK, 3 + int(seed), seed).points;
        EXPECT_NEAR(gaussIntegral(open), writheOf(open), 3e-10) << seed;
    }
}

TEST(GaussIntegral, IsTheSameForThreads)
{
    // Of as many points the other way is slow; of a ring that is cut finer it is the same.
    const Points coarse = randomRing(POINTS_FOR_THREADS / 10, 7);
    Points fine;
    for (std::size_t i = 0; i + 1 < coarse.size(); ++i)
        for (int part = 0; part < 16; ++part)
            fine.push_back(coarse[i] + (coarse[i + 1] - coarse[i]) * (part / 16.0));
    fine.push_back(coarse.front());
    ASSERT_GT(fine.size(), POINTS_FOR_THREADS);
    EXPECT_NEAR(gaussIntegral(fine), gaussIntegral(coarse), 1e-9);
}

TEST(GaussIntegral, OfACurveInAPlaneIsZero)
{
    EXPECT_EQ(gaussIntegral(circle(0, true)), 0);
    EXPECT_EQ(gaussIntegral({{0, 0, 0}, {4, 0, 0}, {4, 1, 0}, {2, -1, 0}}), 0); // crosses itself
    EXPECT_EQ(gaussIntegral({{0, 0, 0}, {4, 0, 0}, {6, 0, 0}, {2, 0, 0}}), 0);  // on a line
}

TEST(GaussIntegral, OfAPlanarRandomCurveIsZeroInAnyPlane)
{
    RandomNumbers random(5);
    for (unsigned seed = 0; seed < 20; ++seed) {
        Points points = randomRod(RodKind::PLANAR, 40, seed).points;
        points.push_back(points.front());
        const auto turned =
            moved(points, random.unitQuaternion(), random.uniform(0.1, 10), {1, 2, 3});
        EXPECT_NEAR(gaussIntegral(turned), 0, 1e-12) << seed;
    }
}

TEST(GaussIntegral, StaysWhereACurveIsMovedTurnedScaledReversedOrBegunElsewhere)
{
    RandomNumbers random(1);
    for (unsigned seed = 0; seed < 20; ++seed) {
        const Points ring = randomRing(30, seed);
        const double writhe = gaussIntegral(ring);
        const auto turn = random.unitQuaternion();
        const Vector shift = random.unitVector();
        EXPECT_NEAR(gaussIntegral(moved(ring, turn, 1, shift)), writhe, 1e-10);
        EXPECT_NEAR(gaussIntegral(moved(ring, turn, 1e-60, {0, 0, 0})), writhe, 1e-10);
        EXPECT_NEAR(gaussIntegral(moved(ring, turn, 1e60, {0, 0, 0})), writhe, 1e-10);
        EXPECT_NEAR(gaussIntegral(reversed(ring)), writhe, 1e-12);
        EXPECT_NEAR(gaussIntegral(startedAt(ring, 11)), writhe, 1e-12);
        EXPECT_NEAR(gaussIntegral(mirrored(ring)), -writhe, 1e-12);
    }
}

TEST(GaussIntegral, OfEdgesSumsToThatOfTheCurve)
{
    const Points ring = randomRing(50, 3);
    const std::vector<double> ofEdges = gaussIntegralOfEdges(ring);
    ASSERT_EQ(ofEdges.size(), ring.size() - 1);
    EXPECT_NEAR(std::accumulate(ofEdges.begin(), ofEdges.end(), 0.0), writheOf(ring), 1e-10);
    // Of an edge alone it is half of what is lost without it.
    Points without = ring;
    without.erase(without.begin()); // now an open curve without the first and ...
    without.pop_back();             // ... the last edge
    const double pair = gaussIntegral({ring[0], ring[1]}, {ring[48], ring[49]});
    EXPECT_NEAR(writheOf(ring) - writheOf(without),
                2 * (ofEdges.front() + ofEdges.back()) - 2 * pair, 1e-9);
}

TEST(GaussIntegral, OfFewPointsIsZero)
{
    EXPECT_TRUE(gaussIntegralOfEdges({}).empty());
    EXPECT_TRUE(gaussIntegralOfEdges({{1, 2, 3}}).empty());
    EXPECT_EQ(gaussIntegral({{0, 0, 0}, {1, 0, 0}}), 0);
    EXPECT_EQ(gaussIntegral({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}), 0);
    EXPECT_EQ(gaussIntegral({}, {{0, 0, 0}, {1, 0, 0}}), 0);
}

TEST(LinkingNumber, OfAHopfLinkIsOneAndItsSignTheHand)
{
    const Points first = circle(0, true), second = circle(1, false);
    EXPECT_EQ(linkingNumber(first, second), -1);
    EXPECT_EQ(linkingNumber(second, first), -1);
    EXPECT_EQ(linkingNumber(reversed(first), second), 1);
    EXPECT_EQ(linkingNumber(reversed(first), reversed(second)), -1);
    EXPECT_EQ(linkingNumber(mirrored(first), mirrored(second)), 1);
}

TEST(LinkingNumber, OfRingsApartIsZero)
{
    EXPECT_EQ(linkingNumber(circle(0, true), circle(5, false)), 0);
    EXPECT_EQ(linkingNumber(circle(0, true), circle(5, true)), 0);
}

TEST(LinkingNumber, CountsTurnsAroundAnAxis)
{
    for (const int turns : {-7, -1, 2, 5}) {
        const Points axis =
            ringOf(200, [](double t) { return Vector(10 * std::cos(t), 10 * std::sin(t), 0); });
        const Points coil = ringOf(700, [&](double t) {
            const double r = 10 + std::cos(turns * t);
            return Vector(r * std::cos(t), r * std::sin(t), -std::sin(turns * t));
        });
        EXPECT_EQ(linkingNumber(axis, coil), turns);
    }
}

TEST(LinkingNumber, IsThatOfOpenOrTouchingCurvesNever)
{
    Points open = circle(0, true);
    open.pop_back();
    EXPECT_FALSE(linkingNumber(open, circle(1, false)));
    EXPECT_FALSE(linkingNumber(circle(1, false), {}));
    // The edge of a triangle goes through that of another.
    const Points triangle{{0, -1, 0}, {0, 1, 0}, {3, 0, 0}, {0, -1, 0}};
    const Points touching{{0, 0, -1}, {0, 0, 1}, {-3, 0.5, 0}, {0, 0, -1}};
    const auto found = linkingNumber(triangle, touching);
    EXPECT_TRUE(!found || *found == 0) << *found;
}

TEST(GaussIntegral, AsksTheThreadThatCallsEdgeByEdgeWhetherToGoOn)
{
    for (const int size : {200, int(POINTS_FOR_THREADS) + 100}) {
        SCOPED_TRACE(size);
        const Points ring = randomRing(size, 5);
        const std::thread::id caller = std::this_thread::get_id();
        std::size_t asked = 0;
        const auto ask = [&](std::size_t most) {
            asked = 0;
            return [&asked, caller, most] {
                EXPECT_EQ(std::this_thread::get_id(), caller);
                return ++asked <= most;
            };
        };
        EXPECT_EQ(gaussIntegralOfEdges(ring, ask(1'000'000)), gaussIntegralOfEdges(ring));
        EXPECT_GE(asked, ring.size() / 16);
        EXPECT_THAT(gaussIntegralOfEdges(ring, ask(3)), testing::IsEmpty());
        EXPECT_LE(asked, 32u) << "each of the parts once more";
    }
}

} // namespace strandview
