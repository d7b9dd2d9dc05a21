// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/backbones.h"

#include <algorithm>
#include <cmath>

#include <algebra3d/Matrix3.h>
#include <gtest/gtest.h>

#include "support/RandomRods.h"

namespace strandview {

using algebra3d::Matrix3;
using algebra3d::Quaternion;
using algebra3d::Vector3;

namespace {

using Points = std::vector<Vector3<double>>;

// B-DNA about z: flat pairs, a rise of 3.38 and a right-handed twist of 36 degrees.
Dna straightDna(int pairs)
{
    Dna dna;
    for (int i = 0; i < pairs; ++i) {
        const double half = i * M_PI / 10;
        dna.bases += "ACGT"[i % 4];
        dna.pairPoints.emplace_back(0, 0, 3.38 * i);
        dna.pairRotations.emplace_back(0, 0, std::sin(half), std::cos(half));
    }
    dna.points1 = dna.points2 = dna.pairPoints;
    dna.rotations1 = dna.rotations2 = dna.pairRotations;
    return dna;
}

double distance(const Vector3<double>& a, const Vector3<double>& b) { return (a - b).getNorm(); }

TEST(IdealBackbone, RunsFrom5To3AlongThePairsInStrand1AndAgainstThemInStrand2)
{
    const Dna dna = straightDna(12);
    const Points first = idealBackbone(dna, Strand::FIRST, 1);
    const Points second = idealBackbone(dna, Strand::SECOND, 1);
    ASSERT_EQ(first.size(), 13u);
    ASSERT_EQ(second.size(), 13u);
    EXPECT_NEAR(distance(first[0], {-0.14, 9.37, -2.00}), 0, 1e-12);
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_NEAR(first[i].z, 3.38 * double(i) - 2, 1e-9) << i;
        EXPECT_NEAR(second[i].z, 3.38 * double(11 - i) + 2, 1e-9) << i;
        EXPECT_NEAR(std::hypot(first[i].x, first[i].y), 9.371, 1e-3) << "its cylinder";
        EXPECT_NEAR(std::hypot(second[i].x, second[i].y), 9.371, 1e-3);
    }
    EXPECT_NEAR(first[12].z, 3.38 * 11 + 1.98, 1e-9);
    EXPECT_NEAR(second[12].z, -1.98, 1e-9);
}

// Of B-DNA the groove between phosphorus atoms is 11 to 12 wide across the minor and 17 and more
// across the major one (W. Saenger, Principles of nucleic acid structure, 1984, chapter 11).
TEST(IdealBackbone, HasANarrowMinorAndAWideMajorGroove)
{
    const Dna dna = straightDna(40);
    const Points first = idealBackbone(dna, Strand::FIRST, 1);
    const Points second = idealBackbone(dna, Strand::SECOND, 1);
    // From the atom of pair 20, along the helix: across the minor groove with pairs before and
    // behind, in the sense in which the strands' atoms come nearest.
    double up = INFINITY, down = INFINITY;
    for (const Vector3<double>& other : second) {
        double& side = other.z > first[20].z ? up : down;
        side = std::min(side, distance(first[20], other));
    }
    const double minor = std::min(up, down), major = std::max(up, down);
    EXPECT_GT(minor, 10.5);
    EXPECT_LT(minor, 13);
    EXPECT_GT(major, 16.5);
    EXPECT_LT(major, 20);
}

TEST(IdealBackbone, OfAClosedDnaEndsWhereItBegins)
{
    Dna dna = straightDna(5);
    dna.isClosed = true;
    for (const Strand strand : {Strand::FIRST, Strand::SECOND}) {
        const Points points = idealBackbone(dna, strand, 1);
        ASSERT_EQ(points.size(), 6u);
        EXPECT_EQ(distance(points.front(), points.back()), 0);
    }
}

TEST(IdealBackbone, IsLargerWhereAnAngstromIs)
{
    Dna large = straightDna(6);
    for (auto* points : {&large.points1, &large.points2}) {
        for (Vector3<double>& point : *points)
            point = point * 0.1;
    }
    const Points tenth = idealBackbone(large, Strand::SECOND, 0.1);
    const Points one = idealBackbone(straightDna(6), Strand::SECOND, 1);
    for (std::size_t i = 0; i < one.size(); ++i)
        EXPECT_NEAR(distance(tenth[i], one[i] * 0.1), 0, 1e-12);
}

// Turned and moved with its DNA; and with the strands exchanged, which turns every frame by half
// a turn about d1, each is the other.
TEST(IdealBackbone, GoesWithItsDnaAndItsStrand)
{
    RandomNumbers random(5);
    const Dna dna = straightDna(9);
    const Quaternion<double> turn = random.unitQuaternion();
    const Matrix3<double> rotation(turn);
    const auto turned = [&rotation](const Vector3<double>& v) {
        return rotation.getColumn(0) * v.x + rotation.getColumn(1) * v.y +
               rotation.getColumn(2) * v.z;
    };
    Dna moved = dna, exchanged = dna;
    for (std::size_t i = 0; i < 9; ++i) {
        moved.points1[i] = turned(dna.points1[i]) + Vector3<double>(1, 2, 3);
        const Matrix3<double> frame(dna.rotations1[i]);
        moved.rotations1[i] =
            Matrix3<double>(turned(frame.getColumn(0)), turned(frame.getColumn(1)),
                            turned(frame.getColumn(2)))
                .getQuaternion();
        const Matrix3<double> other(dna.rotations2[8 - i]);
        exchanged.points1[i] = dna.points2[8 - i];
        exchanged.rotations1[i] = Matrix3<double>(other.getColumn(0), other.getColumn(1) * -1.0,
                                                  other.getColumn(2) * -1.0)
                                      .getQuaternion();
    }
    const Points first = idealBackbone(dna, Strand::FIRST, 1);
    const Points ofMoved = idealBackbone(moved, Strand::FIRST, 1);
    const Points second = idealBackbone(dna, Strand::SECOND, 1);
    const Points ofExchanged = idealBackbone(exchanged, Strand::FIRST, 1);
    for (std::size_t i = 0; i < first.size(); ++i) {
        EXPECT_NEAR(distance(ofMoved[i], turned(first[i]) + Vector3<double>(1, 2, 3)), 0, 1e-9);
        EXPECT_NEAR(distance(ofExchanged[i], second[i]), 0, 1e-9);
    }
}

TEST(Molecules, HaveAColourEachAndOthersThoseBehindThem)
{
    Configuration data;
    data.rods.resize(2);
    data.rods[0].molecule = 3;
    data.rods[0].isBackbone = true;
    data.rods[1].isBackbone = true;
    data.dnas.resize(1);
    data.dnas[0].molecule = 4;
    const Molecules molecules(data);
    EXPECT_TRUE(molecules.hasBackbone(3));
    EXPECT_FALSE(molecules.hasBackbone(4));
    EXPECT_FALSE(molecules.hasBackbone(0)) << "a backbone of no molecule is nobody's";
    EXPECT_EQ(molecules.colourOf(1, 7), 0u);
    EXPECT_EQ(molecules.colourOf(4, 0), 3u);
    EXPECT_EQ(molecules.colourOf(0, 0), 4u);
    EXPECT_EQ(molecules.colourOf(0, 2), 6u);
}

TEST(CountSegments, CountsIdealBackbonesWhereTheyAreDrawn)
{
    Configuration data;
    data.dnas = {straightDna(10)};
    data.dnas[0].molecule = 1;
    DnaLook look;
    EXPECT_EQ(countSegments(data, look), 20);
    look.backbone = false;
    EXPECT_EQ(countSegments(data, look), 0);
    look.backbone = true;
    Rod rod;
    rod.points = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}};
    rod.molecule = 1;
    rod.isBackbone = true;
    data.rods = {rod};
    EXPECT_EQ(countSegments(data, look), 2);
}

} // namespace

} // namespace strandview
