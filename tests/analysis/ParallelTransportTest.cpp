// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/parallelTransport.h>

#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Matrix = algebra3d::Matrix3<double>;

/// d1, d2 and d3 at each point.
std::vector<Matrix> framesAlong(const std::vector<Vector>& points)
{
    std::vector<Matrix> frames;
    for (const auto& rotation : parallelTransport(points)) {
        EXPECT_NEAR(rotation.getNorm(), 1, 1e-14);
        frames.emplace_back(rotation);
    }
    EXPECT_EQ(frames.size(), points.size());
    return frames;
}

void expectNear(const Vector& actual, const Vector& expected, double tolerance = 1e-12)
{
    EXPECT_NEAR((actual - expected).getNorm(), 0, tolerance)
        << actual.x << " " << actual.y << " " << actual.z;
}

std::vector<Vector> helix(int count, double pitch, double step)
{
    std::vector<Vector> points;
    for (int i = 0; i < count; ++i)
        points.emplace_back(std::cos(i * step), std::sin(i * step), pitch * i * step);
    return points;
}

} // namespace

TEST(ParallelTransport, StraightFramesAreAlike)
{
    for (const Matrix& frame : framesAlong({{0, 0, 0}, {1, 0, 0}, {5, 0, 0}})) {
        expectNear(frame.getColumn(2), {1, 0, 0});
        expectNear(frame.getColumn(1), {0, 1, 0});  // z x d3
        expectNear(frame.getColumn(0), {0, 0, -1}); // d2 x d3
    }
}

TEST(ParallelTransport, TheFirstD2OfARodAlongZIsY)
{
    for (const double sign : {1.0, -1.0})
        expectNear(framesAlong({{0, 0, 0}, {0, 0, sign}})[0].getColumn(1), {0, 1, 0});
    // Up to a z of 0.9 it is z x d3, level.
    const Vector steep = Vector(0.6, 0, 0.8);
    expectNear(framesAlong({{0, 0, 0}, steep})[0].getColumn(1), {0, 1, 0});
    const Vector steeper = Vector(0, 0.28, 0.96);
    expectNear(framesAlong({{0, 0, 0}, steeper})[0].getColumn(1), {0, 0.96, -0.28});
}

TEST(ParallelTransport, TheTangentIsTheDirectionFromThePointBeforeToThePointAfter)
{
    const auto frames = framesAlong({{0, 0, 0}, {1, 0, 0}, {1, 2, 0}});
    expectNear(frames[0].getColumn(2), {1, 0, 0});
    expectNear(frames[1].getColumn(2), Vector(1, 2, 0).getUnit());
    expectNear(frames[2].getColumn(2), {0, 1, 0});
}

TEST(ParallelTransport, InAPlaneOfConstantZEveryD2LiesInIt)
{
    for (const Matrix& frame : framesAlong(helix(50, 0, 0.1)))
        expectNear(frame.getColumn(0), {0, 0, -1});
}

TEST(ParallelTransport, FramesDoNotTurnAboutTheTangent)
{
    // Along a helix of curvature k and torsion t the Frenet frame turns by t per length about the
    // tangent; against it the transported one turns back by as much.
    const double pitch = 0.5, step = 0.1;
    const int count = 51;
    const auto frames = framesAlong(helix(count, pitch, step));
    const auto angleToNormal = [&](int i) {
        const Vector normal(-std::cos(i * step), -std::sin(i * step), 0);
        return std::atan2(frames[i].getColumn(1).dot(normal), frames[i].getColumn(0).dot(normal));
    };
    // torsion = pitch / (1 + pitch^2), and a radian is sqrt(1 + pitch^2) long.
    const double radians = 4;
    const double expected = radians * pitch / std::sqrt(1 + pitch * pitch);
    const double turned = angleToNormal(45) - angleToNormal(5);
    // Of fourth order in the step; one reflection alone would be 1.7e-5 off.
    EXPECT_NEAR(std::remainder(turned - expected, 2 * std::acos(-1.0)), 0, 2e-6);
}

TEST(ParallelTransport, TheEndsOfAClosedRodHaveOneTangent)
{
    const auto closed = framesAlong({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}});
    const Vector across = Vector(1, -1, 0).getUnit(); // from the last but one to the second
    expectNear(closed.front().getColumn(2), across);
    expectNear(closed.back().getColumn(2), across);
}

namespace {

/// A closed curve that bends and twists: around the z axis once, up and down `waves` times.
std::vector<Vector> wavyRing(int count, int waves, double height)
{
    std::vector<Vector> points;
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::acos(-1.0) * i / count;
        points.emplace_back(std::cos(angle), std::sin(angle) * (1 + 0.2 * std::cos(angle)),
                            height * std::sin(waves * angle + 0.3));
    }
    points.push_back(points.front());
    return points;
}

/// By how much d2 turns about d3 from one point to the next, against d2 carried by reflections.
double turnOf(const Matrix& from, const Matrix& to, const Vector& edge)
{
    const auto reflected = [](const Vector& v, const Vector& n) {
        return v - n * (2 * n.dot(v) / n.dot(n));
    };
    const Vector d3 = to.getColumn(2);
    const Vector second = d3 - reflected(from.getColumn(2), edge);
    const Vector carried = reflected(reflected(from.getColumn(1), edge), second);
    return std::atan2(carried.cross(to.getColumn(1)).dot(d3), carried.dot(to.getColumn(1)));
}

} // namespace

TEST(ParallelTransport, NoFrameOfALongRodTurnsAboutTheTangent)
{
    std::mt19937 random(7);
    std::normal_distribution<double> step;
    std::vector<Vector> points = {Vector()};
    while (points.size() < 1000)
        points.push_back(points.back() + Vector(step(random), step(random), step(random)));
    const auto frames = framesAlong(points);
    for (std::size_t i = 1; i + 1 < points.size(); ++i) {
        expectNear(frames[i].getColumn(2), (points[i + 1] - points[i - 1]).getUnit());
        EXPECT_NEAR(turnOf(frames[i - 1], frames[i], points[i] - points[i - 1]), 0, 1e-12) << i;
    }
}

TEST(ParallelTransport, QuaternionsAreOfOneSignAlongTheRod)
{
    const auto rotations = parallelTransport(helix(1000, 0.5, 0.1));
    for (std::size_t i = 1; i < rotations.size(); ++i)
        EXPECT_GT(algebra3d::dot(rotations[i - 1], rotations[i]), 0) << i;
}

TEST(ParallelTransport, FramesAreThoseOfOneUnitOfLengthInAnyOther)
{
    const std::vector<Vector> points = wavyRing(300, 3, 0.7);
    const auto expected = parallelTransport(points, false);
    for (const double unit : {1e-150, 1e-9, 1e17}) {
        std::vector<Vector> scaled;
        for (const Vector& point : points)
            scaled.push_back(point * unit);
        const auto rotations = parallelTransport(scaled, false);
        for (std::size_t i = 0; i < rotations.size(); ++i)
            EXPECT_NEAR(algebra3d::dot(rotations[i], expected[i]), 1, 1e-13) << unit << " " << i;
    }
}

TEST(ParallelTransport, WhereTheRodNearlyTurnsBackD3IsTheTangent)
{
    for (const double aside : {1e-2, 1e-4, 1e-6, 1e-8, 1e-11, 0.0}) {
        std::vector<Vector> points;
        for (int i = 0; i < 200; ++i)
            points.emplace_back(i % 2, aside * (i % 3), aside * (i % 5));
        const auto frames = framesAlong(points);
        for (std::size_t i = 1; i + 1 < points.size(); ++i) {
            const Vector across = points[i + 1] - points[i - 1];
            const Vector tangent = aside > 0 ? across : points[i + 1] - points[i];
            if (tangent.getNorm() > 0)
                expectNear(frames[i].getColumn(2), tangent.getUnit());
        }
    }
}

TEST(ParallelTransport, TheLastFrameOfAClosedRodIsTheFirstToTheLastBit)
{
    for (const int waves : {1, 2, 3, 5}) {
        const auto rotations = parallelTransport(wavyRing(101, waves, 0.7));
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(rotations.back()[i], rotations.front()[i]) << waves;
    }
}

TEST(ParallelTransport, WhatIsMissingToCloseIsSpreadAlongTheLength)
{
    for (const int count : {201, 5001}) {
        std::vector<Vector> points = wavyRing(count, 3, 0.7);
        points.erase(points.begin() + 20, points.begin() + 24); // one edge is five times as long
        const auto frames = framesAlong(points);
        double length = 0, sum = 0;
        for (std::size_t i = 0; i + 1 < points.size(); ++i)
            length += (points[i + 1] - points[i]).getNorm();
        const double perLength =
            turnOf(frames[0], frames[1], points[1] - points[0]) / (points[1] - points[0]).getNorm();
        EXPECT_GT(std::abs(perLength * length), 0.5) << "something is missing";
        EXPECT_LE(std::abs(perLength * length), std::acos(-1.0)) << "the shorter way";
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const Vector edge = points[i + 1] - points[i];
            const double turn = turnOf(frames[i], frames[i + 1], edge);
            EXPECT_NEAR(turn, perLength * edge.getNorm(), 1e-10) << i;
            sum += turn;
        }
        EXPECT_NEAR(sum, perLength * length, 1e-9);
    }
}

TEST(ParallelTransport, AClosedRodInAPlaneStaysAsItWas)
{
    // Nothing is missing: no frame is turned.
    for (const Matrix& frame : framesAlong(wavyRing(60, 2, 0)))
        expectNear(frame.getColumn(0), {0, 0, -1});
}

TEST(ParallelTransport, ARodThereAndBackDoesNotClose)
{
    const auto frames = framesAlong({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}});
    expectNear(frames.front().getColumn(2), {1, 0, 0});
    expectNear(frames.back().getColumn(2), {-1, 0, 0});
}

TEST(ParallelTransport, WhereTheRodTurnsBackTheTangentIsThatOfTheEdgeAfter)
{
    const auto frames = framesAlong({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}, {0, 1, 0}});
    expectNear(frames[1].getColumn(2), {-1, 0, 0});
}

} // namespace strandview
