// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/ribbonTwist.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/gaussIntegral.h>

#include "support/RandomRods.h"
#include "support/knots.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;

double turnsOf(const Points& points, const Points& directions)
{
    const std::vector<double> twists = twistOfEdges(points, directions);
    return std::accumulate(twists.begin(), twists.end(), 0.0) / (2 * M_PI);
}

Points randomDirections(std::size_t count, unsigned seed)
{
    RandomNumbers random(seed);
    Points directions;
    for (std::size_t i = 0; i < count; ++i)
        directions.push_back(random.unitVector());
    directions.back() = directions.front();
    return directions;
}

} // namespace

TEST(RibbonTwist, OfAPlanarRingWithFiveTurnsIsFive)
{
    const int turns = 5;
    const Points ring =
        ringOf(120, [](double t) { return Vector(3 * std::cos(t), 3 * std::sin(t), 0); });
    const Points directions = ringOf(120, [](double t) {
        const double turn = turns * t;
        // Right-handed about the tangent, (-sin t, cos t, 0).
        return Vector(std::sin(turn) * std::cos(t), std::sin(turn) * std::sin(t), std::cos(turn));
    });
    EXPECT_NEAR(turnsOf(ring, directions), turns, 1e-12);
    EXPECT_EQ(gaussIntegral(ring), 0);
}

TEST(RibbonTwist, OfATorusKnotFramedByTheNormalOfTheTorusIsTheKnownOne)
{
    const double twist = turnsOf(torusKnot(2, 3, 400), torusNormals(2, 3, 400));
    EXPECT_NEAR(twist, -2.4821395455, 1e-9);
    EXPECT_NEAR(twist + gaussIntegral(torusKnot(2, 3, 400)), -6, 1e-12);
}

TEST(RibbonTwist, AndWritheAreTheLinkingNumberOfTheTwoEdgesOfTheRibbon)
{
    const Points knot = torusKnot(2, 5, 500), normals = torusNormals(2, 5, 500);
    Points edge;
    for (std::size_t i = 0; i < knot.size(); ++i)
        edge.push_back(knot[i] + normals[i] * 0.01);
    const auto link = linkingNumber(knot, edge);
    ASSERT_TRUE(link);
    EXPECT_EQ(*link, -10);
    EXPECT_NEAR(turnsOf(knot, normals) + gaussIntegral(knot), double(*link), 1e-11);
}

TEST(RibbonTwist, AndWritheAreAWholeNumberToRoundingOfAnyClosedRibbon)
{
    for (unsigned seed = 0; seed < 50; ++seed) {
        const Points ring = randomRod(RodKind::CLOSED, 4 + int(seed), seed).points;
        const double sum = turnsOf(ring, randomDirections(ring.size(), seed)) + gaussIntegral(ring);
        EXPECT_NEAR(sum, std::round(sum), 1e-10) << seed;
    }
}

TEST(RibbonTwist, OfAStraightRibbonIsItsTurn)
{
    Points points, directions;
    for (int i = 0; i <= 40; ++i) {
        points.emplace_back(0, 0, 0.1 * i);
        directions.emplace_back(std::cos(0.3 * i), std::sin(0.3 * i), 0.7); // leans forward
    }
    for (const double twist : twistOfEdges(points, directions))
        EXPECT_NEAR(twist, 0.3, 1e-12);
}

TEST(RibbonTwist, StaysWhenTurnedScaledOrReadBackwardsAndChangesItsSignInAMirror)
{
    RandomNumbers random(3);
    for (unsigned seed = 0; seed < 20; ++seed) {
        Points points = randomRod(RodKind::RANDOM_WALK, 30, seed).points;
        Points directions = randomDirections(points.size(), seed);
        const double turns = turnsOf(points, directions);

        const auto turn = random.unitQuaternion();
        Points turned, turnedDirections, mirrored, mirroredDirections;
        for (std::size_t i = 0; i < points.size(); ++i) {
            turned.push_back(algebra3d::rotated(points[i], turn) * 1e6 + Vector(1, 2, 3));
            turnedDirections.push_back(algebra3d::rotated(directions[i], turn) * 1e-3);
            mirrored.emplace_back(points[i].x, points[i].y, -points[i].z);
            mirroredDirections.emplace_back(directions[i].x, directions[i].y, -directions[i].z);
        }
        EXPECT_NEAR(turnsOf(turned, turnedDirections), turns, 1e-10);
        EXPECT_NEAR(turnsOf(mirrored, mirroredDirections), -turns, 1e-10);
        std::reverse(points.begin(), points.end());
        std::reverse(directions.begin(), directions.end());
        EXPECT_NEAR(turnsOf(points, directions), turns, 1e-10);
    }
}

TEST(RibbonTwist, OfFewerThanTwoPointsIsNone)
{
    EXPECT_TRUE(twistOfEdges({}, {}).empty());
    EXPECT_TRUE(twistOfEdges({{0, 0, 0}}, {{1, 0, 0}}).empty());
}

} // namespace strandview
