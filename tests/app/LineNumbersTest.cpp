// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/LineNumbers.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

#include "support/IdealDna.h"

namespace strandview {

namespace {

const double ALL = std::numeric_limits<double>::infinity();

// A ring of so many points in the plane of x and y, or of x and z; d1 is along -z.
Rod ring(double x, bool isUpright, int points = 40)
{
    Rod rod;
    for (int i = 0; i <= points; ++i) {
        const double turn = i == points ? 0 : 2 * M_PI * i / points;
        const double across = std::sin(turn);
        rod.points.push_back({x + std::cos(turn), isUpright ? 0 : across, isUpright ? across : 0});
        rod.rotations.push_back({0, std::sqrt(0.5), 0, std::sqrt(0.5)});
    }
    rod.isClosed = true;
    return rod;
}

TEST(LineNumbers, TwoRingsThroughEachOtherAreLinkedOnceAndThoseApartAreNot)
{
    const AllNumbers found = numbersOf({{ring(0, false), ring(1, true), ring(5, false)}}, ALL);
    ASSERT_EQ(found.links.size(), 3u);
    EXPECT_EQ(std::abs(found.links[0].number.value()), 1);
    EXPECT_EQ(found.links[1].number, 0);
    EXPECT_EQ(found.links[2].number, 0);
    EXPECT_EQ(found.links[2].first, 1u);
    EXPECT_EQ(found.links[2].second, 2u);
}

TEST(LineNumbers, OpenRodsHaveNoLinksAndKeepTheirPlacesAmongAll)
{
    Rod open = ring(0, false);
    open.points.pop_back();
    open.rotations.pop_back();
    open.isClosed = false;
    const AllNumbers found = numbersOf({{open, ring(0, false), ring(1, true)}}, ALL);
    ASSERT_EQ(found.links.size(), 1u);
    EXPECT_EQ(found.links[0].first, 1u);
    EXPECT_EQ(found.links[0].second, 2u);
    EXPECT_FALSE(found.rods[0].topology.writhe);
    EXPECT_TRUE(found.rods[0].topology.gaussIntegral);
    EXPECT_TRUE(found.rods[1].topology.writhe);
}

TEST(LineNumbers, RingsThatMeetHaveALinkWithoutANumber)
{
    const AllNumbers found = numbersOf({{ring(0, false), ring(2, true)}}, ALL);
    ASSERT_EQ(found.links.size(), 1u);
    EXPECT_EQ(found.links[0].number, std::nullopt);
}

TEST(LineNumbers, AboveTheBoundOfAllPairsTogetherWhatIsSlowIsLeftOutAndNothingElse)
{
    const Configuration data{{ring(0, false), ring(5, false)}};
    const double pairs = 41 * 41 / 2.0 * 2 + 41 * 41;
    EXPECT_FALSE(numbersOf(data, pairs).areSlowLeftOut);
    const AllNumbers found = numbersOf(data, pairs - 1);
    EXPECT_TRUE(found.areSlowLeftOut);
    EXPECT_TRUE(found.links.empty());
    EXPECT_FALSE(found.rods[0].topology.writhe);
    EXPECT_FALSE(found.rods[0].topology.linkingNumber);
    EXPECT_TRUE(found.rods[0].topology.twist);
    EXPECT_NEAR(found.rods[0].radiusOfGyration, 1, 1e-12);
}

TEST(LineNumbers, OneOfEachRodBirodAndDnaAreTold)
{
    const Rod rod = ring(0, false);
    Birod birod;
    birod.points = birod.points1 = birod.points2 = rod.points;
    birod.rotations = birod.rotations1 = birod.rotations2 = rod.rotations;
    for (algebra3d::Vector3<double>& point : birod.points1)
        point.z += 0.1;
    const IdealDna ideal("ACGTACGTAC", 3.4, M_PI / 5);
    Dna dna;
    dna.bases = "ACGTACGTAC";
    dna.pairPoints = dna.points1 = dna.points2 = ideal.points;
    dna.pairRotations = dna.rotations1 = dna.rotations2 = ideal.rotations;
    const AllNumbers found = numbersOf({{rod}, {birod}, {dna}}, ALL);
    ASSERT_EQ(found.rods.size(), 1u);
    ASSERT_EQ(found.birods.size(), 1u);
    ASSERT_EQ(found.dnas.size(), 1u);
    EXPECT_NEAR(found.dnas[0].topology.twist.value(), 0.9, 1e-9) << "nine steps of a tenth";
    EXPECT_FALSE(found.dnas[0].topology.linkingNumber);
    EXPECT_EQ(found.rods[0].topology.linkingNumber, 0);
}

} // namespace

} // namespace strandview
