// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/helices.h>

#include <string>
#include <utility>

#include <gmock/gmock.h>

#include "support/idealNucleotides.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Two strands of n nucleotides that are circles, all paired: far apart in space, which circles
/// without a nick are never asked about.
std::vector<Nucleotide> circles(std::size_t n)
{
    std::vector<Nucleotide> all = paired(idealDuplex(std::string(n, 'A')));
    for (const std::size_t first : {std::size_t(0), n}) {
        all[first].previous = first + n - 1;
        all[first + n - 1].next = first;
    }
    return all;
}

} // namespace

TEST(Helices, ADuplexIsOneFromEndToEnd)
{
    const std::vector<Helix> helices = findHelices(paired(idealDuplex("ACGT")));
    ASSERT_EQ(helices.size(), 1u);
    EXPECT_THAT(helices[0].strand1, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(helices[0].strand2, ElementsAre(7, 6, 5, 4));
    EXPECT_FALSE(helices[0].isClosed);
}

TEST(Helices, NothingWithoutPairs)
{
    EXPECT_THAT(findHelices({}), IsEmpty());
    EXPECT_THAT(findHelices(idealDuplex("ACGT")), IsEmpty());
}

TEST(Helices, ABaseWithoutPartnerEndsOne)
{
    auto all = paired(idealDuplex("ACGTA"));
    all[2].partner = all[7].partner = NO_NUCLEOTIDE;
    const std::vector<Helix> helices = findHelices(all);
    ASSERT_EQ(helices.size(), 2u);
    EXPECT_THAT(helices[0].strand1, ElementsAre(0, 1));
    EXPECT_THAT(helices[1].strand1, ElementsAre(3, 4));
    EXPECT_THAT(helices[1].strand2, ElementsAre(6, 5));
}

TEST(Helices, ABulgeEndsOne)
{
    // Nucleotide 2 bulges out: 1 and 3 pair with 8 and 6, which are neighbours.
    auto all = paired(idealDuplex("ACGTA"));
    all[7].partner = all[2].partner = NO_NUCLEOTIDE;
    all[6].next = 8;
    all[8].previous = 6;
    all[7].previous = all[7].next = NO_NUCLEOTIDE;
    EXPECT_EQ(findHelices(all).size(), 2u);
}

TEST(Helices, TheFirstStrandIsThatWhoseFirstNucleotideComesFirst)
{
    auto all = paired(idealDuplex("ACGT"));
    const std::vector<std::size_t> newPlaces{4, 5, 6, 7, 0, 1, 2, 3};
    std::vector<Nucleotide> exchanged(all.size());
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (std::size_t* index : {&all[i].previous, &all[i].next, &all[i].partner})
            if (*index != NO_NUCLEOTIDE)
                *index = newPlaces[*index];
        exchanged[newPlaces[i]] = all[i];
    }
    const std::vector<Helix> helices = findHelices(exchanged);
    ASSERT_EQ(helices.size(), 1u);
    EXPECT_THAT(helices[0].strand1, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(helices[0].strand2, ElementsAre(7, 6, 5, 4));
}

// The lowest index of this one is at the 3' end of its strand: 3 of 5' 7 3 3'.
TEST(Helices, TheLowestIndexNeedNotBeItsBeginning)
{
    auto all = idealDuplex("AAAA");
    for (Nucleotide& one : all)
        one.previous = one.next = NO_NUCLEOTIDE;
    const auto link = [&](std::size_t i, std::size_t j) {
        all[i].next = j;
        all[j].previous = i;
    };
    const auto pair = [&](std::size_t i, std::size_t j) {
        all[i].partner = j;
        all[j].partner = i;
    };
    link(7, 3);
    link(5, 6);
    pair(3, 5);
    pair(7, 6);
    const std::vector<Helix> helices = findHelices(all);
    ASSERT_EQ(helices.size(), 1u);
    EXPECT_THAT(helices[0].strand1, ElementsAre(5, 6));
    EXPECT_THAT(helices[0].strand2, ElementsAre(3, 7));
}

TEST(Helices, AHairpinEndsAtItsLoop)
{
    // One strand of 8: 0-7, 1-6, 2-5, and 3 next to 4.
    auto all = paired(idealDuplex("ACGT"));
    all[3].next = 4;
    all[4].previous = 3;
    for (Nucleotide& one : all)
        one.strand = 0;
    const std::vector<Helix> helices = findHelices(all);
    ASSERT_EQ(helices.size(), 1u);
    EXPECT_THAT(helices[0].strand1, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(helices[0].strand2, ElementsAre(7, 6, 5, 4));
}

TEST(Helices, ANickInEitherStrandEndsNone)
{
    for (const std::size_t nick : {2, 8}) { // of strand 1, of strand 2
        SCOPED_TRACE(nick);
        auto all = paired(idealDuplex("ACGTAC"));
        cutBehind(nick, 2, all);
        const std::vector<Helix> helices = findHelices(all);
        ASSERT_EQ(helices.size(), 1u);
        EXPECT_THAT(helices[0].strand1, ElementsAre(0, 1, 2, 3, 4, 5));
        EXPECT_THAT(helices[0].strand2, ElementsAre(11, 10, 9, 8, 7, 6));
    }
}

TEST(Helices, ANickWherePairsAreNotStackedEndsOne)
{
    auto all = paired(idealDuplex("ACGTAC"));
    cutBehind(8, 2, all); // behind the partner of nucleotide 3
    for (const std::size_t i : {0, 1, 2, 9, 10, 11})
        all[i].frame.point.x += 10;
    const std::vector<Helix> helices = findHelices(all);
    ASSERT_EQ(helices.size(), 2u);
    EXPECT_THAT(helices[0].strand1, ElementsAre(0, 1, 2));
    EXPECT_THAT(helices[1].strand1, ElementsAre(3, 4, 5));
}

TEST(Helices, ACutOfBothStrandsEndsOne)
{
    auto all = paired(idealDuplex("ACGTAC"));
    cutBehind(2, 2, all);
    cutBehind(8, 3, all);
    EXPECT_EQ(findHelices(all).size(), 2u);
}

// Two strands cross over between two duplexes: nobody has an end there, but no pair follows.
TEST(Helices, AJunctionEndsThem)
{
    auto all = paired(idealDuplex("AAAA")); // 0 1 2 3 | 4 5 6 7
    const auto other = paired(idealDuplex("AAAA"));
    for (Nucleotide one : other) { // 8 9 10 11 | 12 13 14 15
        for (std::size_t* index : {&one.previous, &one.next, &one.partner})
            *index += *index == NO_NUCLEOTIDE ? 0 : 8;
        one.frame.point.x += 25;
        all.push_back(one);
    }
    // Strand 4 5 6 7 goes over to the other duplex in its middle, and the other one to it.
    const auto link = [&](std::size_t i, std::size_t j) {
        all[i].next = j;
        all[j].previous = i;
    };
    link(5, 14);
    link(13, 6);
    const std::vector<Helix> helices = findHelices(all);
    ASSERT_EQ(helices.size(), 4u);
    for (const Helix& helix : helices)
        EXPECT_EQ(helix.strand1.size(), 2u);
}

TEST(Helices, ACircleIsClosedAndBeginsAtItsLowestIndex)
{
    for (const std::size_t n : {3, 12}) {
        const std::vector<Helix> helices = findHelices(circles(n));
        ASSERT_EQ(helices.size(), 1u);
        EXPECT_TRUE(helices[0].isClosed);
        ASSERT_EQ(helices[0].strand1.size(), n);
        for (std::size_t k = 0; k < n; ++k) {
            EXPECT_EQ(helices[0].strand1[k], k);
            EXPECT_EQ(helices[0].strand2[k], 2 * n - 1 - k);
        }
    }
}

TEST(Helices, ACircleOfTwoPairsIsNone)
{
    const std::vector<Helix> helices = findHelices(circles(2));
    ASSERT_EQ(helices.size(), 1u);
    EXPECT_EQ(helices[0].strand1.size(), 2u);
    EXPECT_FALSE(helices[0].isClosed);
}

TEST(Helices, AMeltedPairOpensACircle)
{
    auto all = circles(12);
    all[4].partner = all[19].partner = NO_NUCLEOTIDE;
    const std::vector<Helix> helices = findHelices(all);
    ASSERT_EQ(helices.size(), 1u);
    EXPECT_FALSE(helices[0].isClosed);
    EXPECT_EQ(helices[0].strand1.size(), 11u);
    EXPECT_EQ(helices[0].strand1.front(), 5u);
    EXPECT_EQ(helices[0].strand1.back(), 3u);
}

TEST(Helices, MoleculesAreStrandsWithPairsBetweenThem)
{
    auto all = idealDuplex("AAAA");
    for (std::size_t i = 0; i < 4; ++i)
        all[i].strand = std::uint32_t(i);
    for (std::size_t i = 4; i < 8; ++i)
        all[i].strand = 4;
    all[1].partner = 5;
    all[5].partner = 1;
    all[3].partner = 6;
    all[6].partner = 3;
    EXPECT_THAT(findMolecules(all, 5), ElementsAre(1, 2, 3, 2, 2));
    EXPECT_THAT(findMolecules({}, 2), ElementsAre(1, 2));
}

TEST(Helices, TheFrameOfAFlatPairIsThatOfBothBases)
{
    const auto all = idealDuplex("ACG");
    const BaseFrame middle = pairFrame(all[2].frame, all[3].frame);
    EXPECT_NEAR((middle.point - all[2].frame.point).getNorm(), 0, 1e-15);
    EXPECT_NEAR(std::abs(dot(middle.rotation, all[2].frame.rotation)), 1, 1e-15);
}

TEST(Helices, TheFrameOfAPairIsHalfWayBetweenItsBases)
{
    for (const algebra3d::Vector3<double>& axis :
         {algebra3d::Vector3<double>(0, 0, 1), {1, 0, 0}, {0, 1, 0}}) {
        const BaseFrame a{{1, 2, 3}, about(axis, 0.2)}, b{{3, 2, 1}, about(axis, 0.6)};
        const BaseFrame middle = pairFrame(a, turnedOver(b));
        EXPECT_NEAR((middle.point - algebra3d::Vector3<double>(2, 2, 2)).getNorm(), 0, 1e-15);
        EXPECT_NEAR(std::abs(dot(middle.rotation, about(axis, 0.4))), 1, 1e-15);
    }
}

} // namespace strandview
