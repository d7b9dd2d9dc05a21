// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/basePairs.h>

#include <cmath>
#include <random>
#include <string>

#include <algebra3d/rotations.h>
#include <gmock/gmock.h>

#include "support/idealNucleotides.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

std::vector<std::size_t> partnersOf(std::vector<Nucleotide> nucleotides)
{
    pairBases(nucleotides);
    std::vector<std::size_t> partners;
    for (const Nucleotide& one : nucleotides)
        partners.push_back(one.partner);
    return partners;
}

/// Two bases of which the second is away from its place in a flat pair.
std::vector<Nucleotide> pairMovedBy(const Vector& shift, const algebra3d::Quaternion<double>& turn)
{
    std::vector<Nucleotide> pair = idealDuplex("A");
    pair[1].frame.point += shift;
    pair[1].frame.rotation = turn * pair[1].frame.rotation;
    return pair;
}

bool isPair(const std::vector<Nucleotide>& two) { return partnersOf(two)[0] == 1; }

} // namespace

TEST(BasePairs, BasesOfADuplexPairWithTheirOpposites)
{
    const std::string letters = irregularSequence(40);
    const auto partners = partnersOf(idealDuplex(letters));
    for (std::size_t i = 0; i < partners.size(); ++i)
        EXPECT_EQ(partners[i], partners.size() - 1 - i);
}

TEST(BasePairs, AreTheSameAfterAnyMotionOfTheWhole)
{
    const std::string letters = irregularSequence(40);
    auto moved = idealDuplex(letters);
    move(moved, scaledToUnit(algebra3d::Quaternion<double>(1, 2, 3, 4)), {1000, -2000, 30});
    EXPECT_EQ(partnersOf(moved), partnersOf(idealDuplex(letters)));
}

TEST(BasePairs, HoldInThermalMotion)
{
    std::mt19937 random(11);
    std::normal_distribution<double> shift(0, 0.3), angle(0, 0.15);
    auto moving = idealDuplex(irregularSequence(100));
    for (Nucleotide& one : moving) {
        one.frame.point += Vector(shift(random), shift(random), shift(random));
        const Vector axis(angle(random), angle(random), angle(random));
        one.frame.rotation = about(axis, axis.getNorm()) * one.frame.rotation;
    }
    const auto partners = partnersOf(moving);
    for (std::size_t i = 0; i < partners.size(); ++i)
        EXPECT_EQ(partners[i], partners.size() - 1 - i);
}

TEST(BasePairs, AMismatchIsNone)
{
    auto all = idealDuplex("ACGTA");
    all[2].base = 'A'; // opposite a C
    const auto partners = partnersOf(all);
    EXPECT_EQ(partners[2], NO_NUCLEOTIDE);
    EXPECT_EQ(partners[7], NO_NUCLEOTIDE);
    EXPECT_EQ(partners[1], 8u);
}

TEST(BasePairs, AnUnknownLetterPairsWithAny)
{
    auto all = idealDuplex("ACGTA");
    all[2].base = UNKNOWN_BASE;
    EXPECT_EQ(partnersOf(all)[2], 7u);
    EXPECT_TRUE(areComplementary('N', 'N'));
    EXPECT_TRUE(areComplementary('G', 'C'));
    EXPECT_FALSE(areComplementary('G', 'T'));
}

TEST(BasePairs, BasesOneAboveTheOtherAreNone)
{
    EXPECT_TRUE(isPair(pairMovedBy({0, 0, 1.5}, {})));
    EXPECT_FALSE(isPair(pairMovedBy({0, 0, 2.1}, {})));
    EXPECT_FALSE(isPair(pairMovedBy({0, 0, 3.4}, {})));
}

TEST(BasePairs, ParallelOrCrossedBasesAreNone)
{
    EXPECT_FALSE(isPair(pairMovedBy({}, about(Vector(1, 0, 0), M_PI))));
    EXPECT_FALSE(isPair(pairMovedBy({}, about(Vector(0, 0, 1), M_PI))));
    EXPECT_FALSE(isPair(pairMovedBy({}, about(Vector(0, 1, 0), M_PI / 2))));
    EXPECT_TRUE(isPair(pairMovedBy({1, 0.5, 0.3}, about(Vector(0, 1, 0), 0.5))));
}

// By its definition, summed over places on a sphere.
TEST(BasePairs, TheDistanceIsThatOfAtomsAroundTheOrigin)
{
    const auto turn = about(Vector(0.3, -1, 0.5), 0.8);
    const Vector shift(0.3, 0.4, -0.2);
    const auto pair = pairMovedBy(shift, turn);
    const BaseFrame &a = pair[0].frame, b = turnedOver(pair[1].frame);
    double squares = 0;
    int count = 0;
    for (const double z : {-1., 1.})
        for (int axis = 0; axis < 3; ++axis) {
            Vector place;
            place[axis] = 3 * z;
            const Vector left =
                (b.point + rotated(place, b.rotation)) - (a.point + rotated(place, a.rotation));
            squares += left.dot(left);
            ++count;
        }
    EXPECT_NEAR(distanceFromPair(pair[0].frame, pair[1].frame), std::sqrt(squares / count), 1e-12);
    EXPECT_NEAR(distanceFromPair(pair[1].frame, pair[0].frame), std::sqrt(squares / count), 1e-12);
}

} // namespace strandview
