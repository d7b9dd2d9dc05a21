// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/fitFrame.h>

#include <cmath>
#include <random>

#include <algebra3d/rotations.h>
#include <gtest/gtest.h>

#include <strandview/analysis/baseAtoms.h>
#include <strandview/model/Dna.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;
using Points = std::vector<Vector>;

Points placesOf(const std::vector<BaseAtom>& atoms)
{
    Points places;
    for (const BaseAtom& atom : atoms)
        places.push_back(atom.place);
    return places;
}

Points moved(const Points& places, const Rotation& turn, const Vector& shift)
{
    Points all;
    for (const Vector& place : places)
        all.push_back(rotated(place, turn) + shift);
    return all;
}

double sumOfSquares(const Points& places, const Points& measured, const Rotation& turn,
                    const Vector& shift)
{
    double sum = 0;
    const Points all = moved(places, turn, shift);
    for (std::size_t i = 0; i < all.size(); ++i)
        sum += (all[i] - measured[i]).dot(all[i] - measured[i]);
    return sum;
}

Rotation randomRotation(std::mt19937& random)
{
    std::normal_distribution<double> normal;
    return algebra3d::scaledToUnit(
        Rotation(normal(random), normal(random), normal(random), normal(random)));
}

} // namespace

TEST(FitFrame, FindsTheMotionOfWhatWasMoved)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> shift(-100, 100);
    for (const char base : BASE_LETTERS) {
        for (int i = 0; i < 50; ++i) {
            const Points places = placesOf(drawnAtoms(base));
            const Rotation turn = randomRotation(random);
            const Vector to(shift(random), shift(random), shift(random));
            const FittedFrame fit = fitFrame(places, moved(places, turn, to));
            EXPECT_NEAR(std::abs(dot(fit.rotation, turn)), 1, 1e-14);
            EXPECT_NEAR((fit.point - to).getNorm(), 0, 1e-12);
            EXPECT_NEAR(fit.rms, 0, 1e-12);
        }
    }
}

TEST(FitFrame, HalfTurnsAndNoTurnAreNothingSpecial)
{
    const Points places = placesOf(standardRingAtoms('G'));
    for (const Rotation& turn :
         {Rotation(), Rotation(1, 0, 0, 0), Rotation(0, 1, 0, 0), Rotation(0, 0, 1, 0)}) {
        const FittedFrame fit = fitFrame(places, moved(places, turn, {1, 2, 3}));
        EXPECT_NEAR(std::abs(dot(fit.rotation, turn)), 1, 1e-14);
    }
}

// A mirror image is none by rotation: what is left is told.
TEST(FitFrame, AnswersARotationForAMirrorImage)
{
    const Points solid{{0, 0, 0}, {1, 0, 0}, {0, 2, 0}, {0, 0, 3}};
    Points mirrored = solid;
    for (Vector& point : mirrored)
        point.z = -point.z;
    const FittedFrame fit = fitFrame(solid, mirrored);
    EXPECT_NEAR(fit.rotation.getNorm(), 1, 1e-14);
    EXPECT_GT(fit.rms, 0.1);
}

TEST(FitFrame, LeavesLessThanAnyFrameNearby)
{
    std::mt19937 random(5);
    std::normal_distribution<double> noise(0, 0.05), small(0, 0.02);
    const Points places = placesOf(drawnAtoms('A'));
    Points measured = moved(places, randomRotation(random), {5, -3, 2});
    for (Vector& point : measured)
        point += Vector(noise(random), noise(random), noise(random));
    const FittedFrame fit = fitFrame(places, measured);
    const double least = sumOfSquares(places, measured, fit.rotation, fit.point);
    EXPECT_NEAR(fit.rms, std::sqrt(least / double(places.size())), 1e-14);
    for (int i = 0; i < 200; ++i) {
        const Vector axis(small(random), small(random), small(random));
        const Vector shift(small(random), small(random), small(random));
        EXPECT_GT(sumOfSquares(places, measured, about(axis, axis.getNorm()) * fit.rotation,
                               fit.point + shift),
                  least);
    }
}

TEST(FitFrame, TurnsWithWhatIsMeasured)
{
    std::mt19937 random(9);
    std::normal_distribution<double> noise(0, 0.05);
    const Points places = placesOf(standardRingAtoms('C'));
    Points measured = places;
    for (Vector& point : measured)
        point += Vector(noise(random), noise(random), noise(random));
    const FittedFrame before = fitFrame(places, measured);
    const Rotation turn = randomRotation(random);
    const FittedFrame after = fitFrame(places, moved(measured, turn, {7, 8, 9}));
    EXPECT_NEAR(std::abs(dot(after.rotation, turn * before.rotation)), 1, 1e-14);
    EXPECT_NEAR((after.point - (rotated(before.point, turn) + Vector(7, 8, 9))).getNorm(), 0,
                1e-12);
    EXPECT_NEAR(after.rms, before.rms, 1e-13);
}

// About the line any turn would do: what is on it is not to spin.
TEST(FitFrame, WhatIsOnALineTurnsNoMoreThanTheLine)
{
    std::mt19937 random(21);
    std::normal_distribution<double> normal;
    for (int i = 0; i < 50; ++i) {
        const Vector from(normal(random), normal(random), normal(random));
        const Vector to(normal(random), normal(random), normal(random));
        Points places, measured;
        for (const double t : {0.0, 0.3, 0.4, 1.0}) {
            places.push_back(t * from);
            measured.push_back(Vector(1, 2, 3) + t * to);
        }
        const double cosine = from.dot(to) / (from.getNorm() * to.getNorm());
        const double least = std::cos(std::acos(cosine) / 2); // half the angle's
        EXPECT_NEAR(std::abs(fitFrame(places, measured).rotation[3]), least, 1e-9);
        EXPECT_NEAR(std::abs(fitFrame(places, places).rotation[3]), 1, 1e-12);
    }
}

TEST(FitFrame, WhatLeavesATurnOpenHasOneToo)
{
    for (const Points& places :
         {Points{{1, 2, 3}}, Points{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}, Points(4, Vector(1, 1, 1))}) {
        const FittedFrame fit = fitFrame(places, moved(places, {}, {1, 1, 1}));
        EXPECT_NEAR(fit.rotation.getNorm(), 1, 1e-14);
        EXPECT_NEAR(fit.rms, 0, 1e-14);
    }
}

TEST(FitFrame, IsFiniteForTheLargestCoordinates)
{
    const Points places = placesOf(standardRingAtoms('T'));
    Points measured;
    for (std::size_t i = 0; i < places.size(); ++i)
        measured.emplace_back(i % 2 ? 1e18 : -1e18, double(i), i % 3 ? 1e18 : 0);
    const FittedFrame fit = fitFrame(places, measured);
    EXPECT_NEAR(fit.rotation.getNorm(), 1, 1e-14);
    EXPECT_TRUE(std::isfinite(fit.rms));
}

} // namespace strandview
