// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/scalars.h>

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/Matrix3.h>

#include <strandview/analysis/stepParameters.h>
#include <strandview/analysis/topology.h>

#include "support/RandomRods.h"

namespace strandview {

namespace {

using algebra3d::Matrix3;
using algebra3d::Vector3;

const double RADIUS = 2;
const double PITCH = 0.5; // height per radian
const double TURN = 0.02; // radians between points
const double SPEED = std::sqrt(RADIUS * RADIUS + PITCH * PITCH);

// A helix in its Frenet frame (d1 the normal, d2 the binormal), turned about d3 by
// `twist` per length. Right-handed if `hand` is 1, left-handed if -1.
Rod helix(double twist, double hand)
{
    Rod rod;
    for (int i = 0; i < 200; ++i) {
        const double a = TURN * i;
        const double c = std::cos(a), s = std::sin(a);
        const Vector3<double> d3(-RADIUS * s / SPEED, hand * RADIUS * c / SPEED, PITCH / SPEED);
        const Vector3<double> normal(-c, -hand * s, 0);
        const Vector3<double> binormal = d3.cross(normal);
        const double phi = twist * SPEED * a;
        const Vector3<double> d1 = std::cos(phi) * normal + std::sin(phi) * binormal;
        rod.points.emplace_back(RADIUS * c, hand * RADIUS * s, PITCH * a);
        rod.rotations.push_back(Matrix3<double>(d1, d3.cross(d1), d3).getQuaternion());
    }
    return rod;
}

void expectAllNear(const Rod& rod, const std::string& name, double expected, double tolerance)
{
    SCOPED_TRACE(name);
    const auto values = findScalar(rod, name);
    ASSERT_TRUE(values);
    ASSERT_EQ(values->size(), rod.points.size());
    for (double value : *values)
        EXPECT_NEAR(value, expected, tolerance);
}

TEST(Scalars, OfAHelixAreItsKnownOnes)
{
    for (const double hand : {1.0, -1.0}) {
        SCOPED_TRACE(hand);
        const Rod rod = helix(0, hand);
        const double torsion = hand * PITCH / (SPEED * SPEED);
        expectAllNear(rod, "curvature", RADIUS / (SPEED * SPEED), 1e-4);
        expectAllNear(rod, "torsion", torsion, 1e-4);
        // The Frenet frame turns about the tangent by the torsion.
        expectAllNear(rod, "twist", torsion, 1e-4);
    }
}

// As a file has them that was written with so many decimals.
Rod written(Rod rod, int decimals)
{
    const double scale = std::pow(10, decimals);
    const auto round = [scale](double& number) { number = std::round(number * scale) / scale; };
    for (Vector3<double>& point : rod.points) {
        for (int axis = 0; axis < 3; ++axis)
            round(point[axis]);
    }
    for (auto& rotation : rod.rotations) {
        for (int i = 0; i < 4; ++i)
            round(rotation[i]);
    }
    return rod;
}

TEST(Scalars, OfAHelixVaryWithinTheRoundingOfItsDecimals)
{
    for (const int decimals : {5, 6, 7, 9, 12, 17}) {
        const Rod rod = written(helix(1, 1), decimals);
        for (const char* name : {"curvature", "torsion", "twist"}) {
            SCOPED_TRACE(std::string(name) + " with decimals: " + std::to_string(decimals));
            const auto values = *findScalar(rod, name);
            const auto rounding = roundingOf(rod, name);
            const auto [least, greatest] = std::minmax_element(values.begin(), values.end());
            const double largest = *std::max_element(rounding.begin(), rounding.end());
            EXPECT_LE(*greatest - *least, 2 * largest);
            EXPECT_TRUE(decimals < 9 || largest < 0.01) << largest; // the bound is of use
        }
    }
}

TEST(Scalars, WrithesVaryWithinTheRoundingOfTheirDecimals)
{
    Rod bent; // sharply, at each of its points
    RandomNumbers random(3);
    for (int i = 0; i < 200; ++i)
        bent.points.push_back((i == 0 ? Vector3<double>() : bent.points.back()) +
                              Vector3<double>(1, 0, 0) + random.unitVector());
    bent.rotations.resize(bent.points.size());
    const auto largestShare = [](const Rod& rod, int decimals) {
        const auto exact = *findScalar(rod, "writhe_density");
        const Rod rounded = written(rod, decimals);
        const auto values = *findScalar(rounded, "writhe_density");
        const auto rounding = roundingOf(rounded, "writhe_density");
        double largest = 0;
        for (std::size_t i = 0; i < values.size(); ++i)
            largest = std::max(largest, std::abs(values[i] - exact[i]) / rounding[i]);
        return largest;
    };
    for (const int decimals : {5, 6, 9}) {
        SCOPED_TRACE(decimals);
        EXPECT_LE(largestShare(helix(1, 1), decimals), 1);
        EXPECT_LE(largestShare(bent, decimals), 1);
        EXPECT_GE(largestShare(bent, decimals), 0.01) << "the bound is of use";
    }
}

// Pairs along a helix, whose bases are a little apart.
Dna ladder()
{
    Dna dna;
    PlacedFrame pair{{0, 0, 0}, {}};
    for (int i = 0; i < 20; ++i) {
        const BaseFrames bases = baseFrames(pair, {0.1, -0.2, 0.3, 5, -11, 2});
        dna.bases += "A";
        dna.pairPoints.push_back(pair.point);
        dna.pairRotations.push_back(pair.rotation);
        dna.points1.push_back(bases.base1.point);
        dna.rotations1.push_back(bases.base1.rotation);
        dna.points2.push_back(bases.base2.point);
        dna.rotations2.push_back(bases.base2.rotation);
        pair = nextPair(pair, {0.2, -0.4, 3.3, 1, 4, 35});
    }
    return dna;
}

Dna written(Dna dna, int decimals)
{
    const auto round = [decimals](auto& points, auto& rotations) {
        Rod rod;
        rod.points = points;
        rod.rotations = rotations;
        rod = written(rod, decimals);
        points = rod.points;
        rotations = rod.rotations;
    };
    round(dna.pairPoints, dna.pairRotations);
    round(dna.points1, dna.rotations1);
    round(dna.points2, dna.rotations2);
    return dna;
}

TEST(Scalars, OfPairsAndStepsVaryWithinTheRoundingOfTheirDecimals)
{
    const double angstrom = 0.5; // of the unit of the points
    const Configuration exact{{}, {}, {ladder()}};
    for (const int decimals : {4, 6, 9}) {
        const Configuration data{{}, {}, {written(ladder(), decimals)}};
        const Track track = tracksOf(data, angstrom)[0];
        for (const Quantity& quantity : quantities()) {
            if (quantity.place == ScalarPlace::POINT)
                continue;
            SCOPED_TRACE(quantity.name + " with decimals: " + std::to_string(decimals));
            const auto values = *findScalar(track, quantity.name);
            const auto expected = *findScalar(tracksOf(exact, angstrom)[0], quantity.name);
            const auto rounding = roundingOf(track, quantity.name);
            double largest = 0;
            for (std::size_t i = 0; i + 1 < values.size(); ++i)
                largest = std::max(largest, std::abs(values[i] - expected[i]) / rounding[i]);
            EXPECT_LE(largest, 1);
            EXPECT_GE(largest, 0.003) << "the bound is of use";
        }
    }
}

TEST(Scalars, ThatAreSlowAreNothingOnceTheyAreStopped)
{
    const Rod rod = helix(0, 1);
    const Track track = trackOf(rod);
    const auto never = [] { return false; };
    EXPECT_FALSE(findScalar(track, "writhe_density", never));
    EXPECT_TRUE(findScalar(track, "writhe_density", [] { return true; }));
    EXPECT_TRUE(findScalar(track, "curvature", never)) << "which takes no time";
}

TEST(Scalars, OfALatticeAreNotRounded)
{
    Rod rod;
    for (int i = 0; i < 20; ++i)
        rod.points.emplace_back(1e-9 * ((i + 1) / 2), 1e-9 * (i / 2), 0);
    rod.rotations.resize(rod.points.size());
    for (const double rounding : roundingOf(rod, "curvature"))
        EXPECT_LT(rounding, 1e-3 * findScalar(rod, "curvature")->front());
}

TEST(Scalars, TwistAddsToTheTorsion)
{
    expectAllNear(helix(0.7, 1), "twist", 0.7 + PITCH / (SPEED * SPEED), 1e-4);
    expectAllNear(helix(-3, 1), "twist", -3 + PITCH / (SPEED * SPEED), 1e-4);
}

TEST(Scalars, TwistDoesNotDependOnTheSignOfAQuaternion)
{
    Rod rod = helix(0.7, 1);
    for (int i = 0; i < 4; ++i)
        rod.rotations[100][i] = -rod.rotations[100][i];
    expectAllNear(rod, "twist", 0.7 + PITCH / (SPEED * SPEED), 1e-4);
}

TEST(Scalars, ArcLengthRunsAlongThePolygon)
{
    Rod rod;
    rod.points = {Vector3<double>(0, 0, 0), Vector3<double>(3, 4, 0), Vector3<double>(3, 4, 2)};
    rod.rotations.resize(3);
    EXPECT_THAT(*findScalar(rod, "arclength"), testing::ElementsAre(0, 5, 7));
}

TEST(Scalars, OfAStraightRodAreZeroWhateverItsLength)
{
    for (int size = 2; size < 7; ++size) {
        Rod rod;
        for (int i = 0; i < size; ++i) {
            rod.points.emplace_back(0, 0, i);
            rod.rotations.emplace_back();
        }
        for (const char* name : {"curvature", "torsion", "twist"})
            expectAllNear(rod, name, 0, 0);
    }
}

TEST(Scalars, OfTheFileComeBeforeBuiltInOnes)
{
    Rod rod = helix(0, 1);
    rod.scalars.push_back({"twist", std::vector<double>(rod.points.size(), 42)});
    expectAllNear(rod, "twist", 42, 0);
}

TEST(Scalars, OfTheFileHaveNoUnitAndTakeNoTime)
{
    Rod rod = helix(0, 1);
    const Track track = trackOf(rod);
    EXPECT_EQ(unitOf(track, "writhe_density"), "1/length");
    EXPECT_TRUE(isSlow(track, "writhe_density"));
    EXPECT_EQ(edgePairsOfScalars({track}), edgePairsOf(track));
    rod.scalars = {{"writhe_density", std::vector<double>(rod.points.size(), 42)}};
    EXPECT_TRUE(isGiven(track, "writhe_density"));
    EXPECT_EQ(unitOf(track, "writhe_density"), "");
    EXPECT_FALSE(isSlow(track, "writhe_density"));
    EXPECT_EQ(edgePairsOfScalars({track}), 0);
    EXPECT_FALSE(isGiven(track, "curvature"));
    EXPECT_FALSE(isSlow(track, "curvature"));
}

TEST(Scalars, UnknownNamesGiveNothing)
{
    EXPECT_FALSE(findScalar(helix(0, 1), "temperature"));
    EXPECT_FALSE(findScalar(helix(0, 1), ""));
}

TEST(Scalars, EveryBuiltInNameIsFound)
{
    for (const std::string& name : builtInScalars())
        EXPECT_TRUE(findScalar(helix(0, 1), name)) << name;
}

} // namespace

} // namespace strandview
