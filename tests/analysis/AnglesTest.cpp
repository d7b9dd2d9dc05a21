// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/angles.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::array<Vector, 4>;

const double DEGREE = M_PI / 180;

Points randomPoints(std::mt19937& random)
{
    std::normal_distribution<double> component(0, 5);
    Points points;
    for (Vector& point : points)
        point = {component(random), component(random), component(random)};
    return points;
}

// Of the corner at the second, and the dihedral one.
std::array<double, 2> anglesOf(const Points& p)
{
    return {angleAt(p[0], p[1], p[2]), dihedralAngleOf(p[0], p[1], p[2], p[3])};
}

TEST(Angles, OfACornerAreThoseOfTheSchool)
{
    const Vector corner(1, 2, 3);
    const Vector along = corner + Vector(2, 0, 0);
    for (const double degrees : {0.0, 1e-6, 30.0, 60.0, 90.0, 120.0, 179.999, 180.0}) {
        const double angle = degrees * DEGREE;
        const Vector other = corner + 7 * Vector(std::cos(angle), std::sin(angle), 0);
        EXPECT_NEAR(angleAt(along, corner, other), angle, 1e-14) << degrees;
    }
}

TEST(Angles, OfAWayWithoutALengthThereIsNone)
{
    EXPECT_TRUE(std::isnan(angleAt({1, 2, 3}, {1, 2, 3}, {4, 5, 6})));
    EXPECT_TRUE(std::isnan(angleAt({1, 2, 3}, {4, 5, 6}, {4, 5, 6})));
}

// Seen along z from below, towards its end, clockwise is from x to y.
TEST(DihedralAngle, IsPositiveWhereTheFarBondIsTurnedClockwise)
{
    const Vector a(1.5, 0, -0.3), b, c(0, 0, 2);
    for (const double degrees : {-179.0, -120.0, -90.0, -60.0, -1e-6, 0.0, 60.0, 90.0, 180.0}) {
        const double angle = degrees * DEGREE;
        const Vector d = c + Vector(0.8 * std::cos(angle), 0.8 * std::sin(angle), 1);
        EXPECT_NEAR(dihedralAngleOf(a, b, c, d), angle, 1e-14) << degrees;
    }
}

// The staggered forms of butane, its carbon atoms at the corners of cubes: gauche 60, trans 180.
TEST(DihedralAngle, OfADiamondsBondsIsThatOfGaucheAndTrans)
{
    const Vector a(0, 0, 0), b(1, 1, 1), c(2, 2, 0);
    EXPECT_NEAR(std::abs(dihedralAngleOf(a, b, c, {3, 3, 1})), 180 * DEGREE, 1e-14);
    EXPECT_NEAR(std::abs(dihedralAngleOf(a, b, c, {3, 1, -1})), 60 * DEGREE, 1e-14);
    EXPECT_NEAR(dihedralAngleOf(a, b, c, {3, 1, -1}), -dihedralAngleOf(a, b, c, {1, 3, -1}), 1e-14);
}

// A right-handed helix, as of the phosphorus atoms of B-DNA: positive.
TEST(DihedralAngle, AlongARightHandedHelixIsPositive)
{
    const auto at = [](int i) {
        return Vector(9 * std::cos(0.6 * i), 9 * std::sin(0.6 * i), 3.4 * i);
    };
    EXPECT_GT(dihedralAngleOf(at(0), at(1), at(2), at(3)), 0);
    EXPECT_LT(dihedralAngleOf(at(0), at(1), at(2), at(3)), M_PI / 2);
}

TEST(DihedralAngle, OfThreePointsOnALineThereIsNone)
{
    EXPECT_TRUE(std::isnan(dihedralAngleOf({0, 0, 0}, {0.1, 0, 0}, {0.3, 0, 0}, {1, 1, 1})));
    EXPECT_TRUE(std::isnan(dihedralAngleOf({1, 1, 0}, {0, 0, 0}, {1, 2, 3}, {2, 4, 6})));
    EXPECT_TRUE(std::isnan(dihedralAngleOf({1, 1, 0}, {0, 0, 0}, {0, 0, 0}, {2, 4, 6})));
}

TEST(Angles, OfWhatIsTurnedShiftedOrScaledAreTheSame)
{
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        const Points points = randomPoints(random);
        const auto turn = algebra3d::about(randomPoints(random)[0], 0.1 * round);
        const Vector shift = randomPoints(random)[1];
        Points moved = points;
        for (Vector& point : moved)
            point = 2.5 * algebra3d::rotated(point, turn) + shift;
        for (std::size_t i : {0u, 1u})
            EXPECT_NEAR(anglesOf(moved)[i], anglesOf(points)[i], 1e-9) << round;
    }
}

TEST(Angles, AMirrorChangesTheSignOfADihedralOneAlone)
{
    std::mt19937 random(2);
    for (int round = 0; round < 200; ++round) {
        const Points points = randomPoints(random);
        Points mirrored = points;
        for (Vector& point : mirrored)
            point.y = -point.y;
        EXPECT_NEAR(anglesOf(mirrored)[0], anglesOf(points)[0], 1e-12) << round;
        EXPECT_NEAR(anglesOf(mirrored)[1], -anglesOf(points)[1], 1e-12) << round;
    }
}

TEST(Angles, ReadBackwardsAreTheSame)
{
    std::mt19937 random(3);
    for (int round = 0; round < 200; ++round) {
        const Points points = randomPoints(random);
        Points backwards = points;
        std::reverse(backwards.begin(), backwards.end());
        EXPECT_NEAR(anglesOf(backwards)[1], anglesOf(points)[1], 1e-12) << round;
        EXPECT_NEAR(angleAt(points[2], points[1], points[0]), anglesOf(points)[0], 1e-12) << round;
    }
}

} // namespace

} // namespace strandview
