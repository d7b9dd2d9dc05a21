// SPDX-License-Identifier: GPL-3.0-or-later
// What is computed for four stretches at once is what is computed for one alone, to the last bit.
#include <strandview/analysis/fourStretches.h>

#include <cmath>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;
using Points = std::vector<Vector>;

Vector unit(const Vector& v) { return v * (1 / std::sqrt(v.dot(v))); }

/// The header's formulas, one point after the other.
std::vector<Quaternion> turnedOneByOne(const Points& points, std::size_t first, std::size_t length,
                                       const Quaternion& before)
{
    const auto tangentAt = [&](std::size_t i) { return unit(points[i + 1] - points[i - 1]); };
    Quaternion product;
    std::vector<Quaternion> frames;
    for (std::size_t i = first; i < first + length; ++i) {
        const Vector edge = points[i] - points[i - 1];
        const Vector axis = edge.cross(tangentAt(i) - tangentAt(i - 1));
        const double w = edge.dot(tangentAt(i) + tangentAt(i - 1));
        const double scale = 1 / std::sqrt(axis.dot(axis) + w * w);
        product = Quaternion(scale * axis.x, scale * axis.y, scale * axis.z, scale * w) * product;
        frames.push_back(product * before);
    }
    return frames;
}

/// So many that two lie before four stretches of a length, and one behind them.
Points randomWalk(std::size_t length, double step, unsigned seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<double> component(0, step);
    Points points = {Vector()};
    while (points.size() < 4 * length + 3)
        points.push_back(points.back() +
                         Vector(step + component(random), component(random), component(random)));
    return points;
}

void expectSame(const Quaternion& actual, const Quaternion& expected)
{
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(actual[i], expected[i]);
}

} // namespace

TEST(FourStretches, FramesAreThoseOfOneStretchAlone)
{
    const Quaternion before(0.1, -0.7, 0.5, 0.5);
    for (const std::size_t length : {std::size_t(1), std::size_t(2), std::size_t(7),
                                     FourStretches::LONGEST - 1, FourStretches::LONGEST}) {
        for (const double step : {1e-140, 1e-9, 1.0, 1e17}) {
            const Points points = randomWalk(length, step, unsigned(length));
            FourStretches stretches;
            ASSERT_TRUE(stretches.findTurns(&points[2], length)) << length << " " << step;
            for (std::size_t stretch = 0; stretch < 4; ++stretch) {
                std::vector<Quaternion> frames(length);
                stretches.turn(stretch, before, frames.data());
                const auto expected = turnedOneByOne(points, 2 + stretch * length, length, before);
                for (std::size_t i = 0; i < length; ++i)
                    expectSame(frames[i], expected[i]);
            }
        }
    }
}

TEST(FourStretches, NothingBehindAStretchIsWritten)
{
    const std::size_t length = 5;
    const Points points = randomWalk(length, 1, 3);
    FourStretches stretches;
    ASSERT_TRUE(stretches.findTurns(&points[2], length));
    std::vector<Quaternion> frames(length + 1, Quaternion(77, 77, 77, 77));
    stretches.turn(3, Quaternion(), frames.data());
    expectSame(frames.back(), Quaternion(77, 77, 77, 77));
}

TEST(FourStretches, WhereOneTurnsBackThereAreNone)
{
    const std::size_t length = 6;
    for (std::size_t place = 1; place < 4 * length + 2; ++place) {
        Points points = randomWalk(length, 1, 4);
        points[place + 1] = points[place - 1];
        FourStretches stretches;
        EXPECT_FALSE(stretches.findTurns(&points[2], length)) << place;
    }
}

TEST(FourStretches, WhereTheFrameIsThatOfReflectionsThatAreRoundingThereAreNone)
{
    // To and fro: both tangents are y, and nearly across the edge.
    Points points = randomWalk(4, 1, 5);
    for (int i = 0; i < 4; ++i)
        points[std::size_t(4 + i)] = {double(i % 2), 5e-5 * i, 0};
    FourStretches stretches;
    EXPECT_FALSE(stretches.findTurns(&points[2], 4));
}

TEST(FourStretches, WhereSquaresLoseDigitsThereAreNone)
{
    for (const double step : {1e-150, 1e160}) {
        const Points points = randomWalk(8, step, 6);
        FourStretches stretches;
        EXPECT_FALSE(stretches.findTurns(&points[2], 8)) << step;
    }
}

} // namespace strandview
