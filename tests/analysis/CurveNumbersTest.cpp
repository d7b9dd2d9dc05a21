// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/curveNumbers.h>

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/parallelTransport.h>
#include <strandview/analysis/strains.h>

#include "support/RandomRods.h"
#include "support/knots.h"

namespace strandview {

namespace {

using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;
using Values = std::vector<double>;

double trapezoidal(const Values& values, const Values& at)
{
    double sum = 0;
    for (std::size_t i = 1; i < values.size(); ++i)
        sum += (values[i] + values[i - 1]) / 2 * (at[i] - at[i - 1]);
    return sum;
}

// Rotations about d3 alone beside parallel transport, of so many turns a length.
std::vector<Quaternion> twisted(const std::vector<Vector>& points, double perLength)
{
    auto rotations = parallelTransport(points);
    double length = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (i > 0)
            length += (points[i] - points[i - 1]).getNorm();
        rotations[i] = rotations[i] * algebra3d::about(Vector(0, 0, 1), perLength * length);
    }
    return rotations;
}

std::vector<Vector> ring(int size)
{
    return ringOf(size, [](double t) { return Vector(2 * std::cos(t), 2 * std::sin(t), 0); });
}

} // namespace

TEST(CurveNumbers, OfARingAreTheSameEverywhereAlsoWhereItIsClosed)
{
    const auto points = ring(50);
    const auto rotations = parallelTransport(points);
    const Line line{points, rotations, true};
    for (const double value : curvatures(line))
        EXPECT_NEAR(value, 0.5, 1e-12);
    for (const double value : torsions(line))
        EXPECT_NEAR(value, 0, 1e-12);
    for (const double value : strains(line, 2))
        EXPECT_NEAR(value, 0, 1e-12);
}

TEST(CurveNumbers, OfAKnotComeBackWhereItIsBegunElsewhere)
{
    const auto knot = torusKnot(2, 3, 90);
    std::vector<Vector> shifted;
    for (std::size_t i = 0; i < knot.size(); ++i)
        shifted.push_back(knot[(i + 31) % 90]);
    const std::vector<Quaternion> none(knot.size());
    const Line line{knot, none, true}, other{shifted, none, true};
    using Numbers = Values (*)(const Line&);
    for (const Numbers numbers : {Numbers(curvatures), Numbers(torsions), Numbers(writheDensities),
                                  Numbers(twistDensities)}) {
        const Values values = numbers(line), ofOther = numbers(other);
        for (std::size_t i = 0; i < knot.size(); ++i)
            EXPECT_NEAR(ofOther[i], values[(i + 31) % 90], 1e-11);
    }
}

TEST(CurveNumbers, IntegrateToTheSumsOverTheEdges)
{
    for (unsigned seed = 0; seed < 10; ++seed)
        for (const RodKind kind : {RodKind::RANDOM_WALK, RodKind::CLOSED}) {
            const RandomRod rod = randomRod(kind, 30, seed);
            const Line line{rod.points, rod.rotations, kind == RodKind::CLOSED};
            const Values at = arcLengths(line);
            EXPECT_NEAR(trapezoidal(writheDensities(line), at), gaussIntegral(rod.points), 1e-11);
            Vector sum;
            for (std::size_t i = 0; i + 1 < rod.points.size(); ++i)
                sum += rotationVector(rod.rotations[i], rod.rotations[i + 1]);
            for (int component = 0; component < 3; ++component)
                EXPECT_NEAR(trapezoidal(strains(line, component), at), sum[component], 1e-11);
        }
}

TEST(CurveNumbers, TwistOfAStraightRodIsItsThirdStrain)
{
    std::vector<Vector> points;
    for (int i = 0; i < 30; ++i)
        points.emplace_back(0, 0, i * i * 0.01 + i);
    const auto rotations = twisted(points, 0.4);
    const Line line{points, rotations, false};
    for (const double value : twistDensities(line))
        EXPECT_NEAR(value, 0.4, 1e-12);
    for (const double value : strains(line, 2))
        EXPECT_NEAR(value, 0.4, 1e-12);
    for (const double value : strains(line, 0))
        EXPECT_NEAR(value, 0, 1e-12);
}

TEST(CurveNumbers, VaryWithinTheirRoundingWhereTheyAreConstant)
{
    // A helix with coordinates of six decimals.
    std::vector<Vector> points;
    for (int i = 0; i < 100; ++i)
        points.emplace_back(std::cos(0.1 * i), std::sin(0.1 * i), 0.05 * i);
    std::vector<Quaternion> rotations;
    const double speed = std::hypot(1, 0.5);
    for (int i = 0; i < 100; ++i)
        rotations.push_back(algebra3d::about(Vector(0, 0, 1), 0.1 * i) *
                            algebra3d::about(Vector(1, 0, 0), -std::atan2(1, 0.5)));
    for (Vector& point : points)
        for (int axis = 0; axis < 3; ++axis)
            point[axis] = std::round(point[axis] * 1e6) / 1e6;
    const Line line{points, rotations, false};
    for (int component = 0; component < 3; ++component) {
        const Values values = strains(line, component);
        const Values rounding = roundingOfStrains(line, component);
        const double expected = (component == 1 ? 1 : component == 2 ? 0.5 : 0) / (speed * speed);
        for (std::size_t i = 0; i < values.size(); ++i) {
            EXPECT_NEAR(values[i], values.front(), 2 * rounding[i]);
            EXPECT_NEAR(std::abs(values[i]), expected, 1e-3);
            EXPECT_LT(rounding[i], 1e-3);
        }
    }
}

} // namespace strandview
