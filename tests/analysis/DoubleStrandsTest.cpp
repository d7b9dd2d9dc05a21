// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/doubleStrands.h>

#include <string>

#include <algebra3d/rotations.h>
#include <gmock/gmock.h>

#include "support/idealNucleotides.h"

namespace strandview {

namespace {

NucleotideNames named(std::vector<std::string> strands)
{
    const std::size_t count = strands.size();
    return {"a.pdb", count, [strands = std::move(strands)](std::size_t i) { return strands[i]; },
            [](std::size_t i) { return "no. " + std::to_string(i); }};
}

} // namespace

TEST(DoubleStrands, AllFramesOfAFlatPairAreOne)
{
    const std::string letters = "ACGTTGCA";
    const DoubleStrands found = makeDoubleStrands(paired(idealDuplex(letters)), named({"A", "B"}));
    ASSERT_EQ(found.dnas.size(), 1u);
    const Dna& dna = found.dnas[0];
    const IdealDna ideal(letters);
    EXPECT_EQ(dna.bases, letters);
    ASSERT_EQ(dna.pairPoints.size(), letters.size());
    for (std::size_t k = 0; k < letters.size(); ++k) {
        for (const auto* points : {&dna.pairPoints, &dna.points1, &dna.points2})
            EXPECT_NEAR(((*points)[k] - ideal.points[k]).getNorm(), 0, 1e-12);
        for (const auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
            EXPECT_NEAR(dot((*rotations)[k], ideal.rotations[k]), 1, 1e-12);
    }
    EXPECT_FALSE(dna.standard);
    EXPECT_TRUE(found.loneBases.empty());
}

TEST(DoubleStrands, NamesAreThoseOfTheStrands)
{
    auto all = paired(idealDuplex("ACGTAC"));
    EXPECT_EQ(makeDoubleStrands(all, named({"A", "B"})).dnas[0].name, "A-B");
    EXPECT_EQ(makeDoubleStrands(all, named({"A", "B"})).dnas[0].origin, "a.pdb: DNA A-B");
    cutBehind(8, 2, all);
    EXPECT_EQ(makeDoubleStrands(all, named({"A", "B", "C"})).dnas[0].name, "A-C,B");
    cutBehind(6, 3, all);
    EXPECT_EQ(makeDoubleStrands(all, named({"A", "B", "C", "D"})).dnas[0].name, "A-C,D,B");
    cutBehind(9, 4, all);
    EXPECT_EQ(makeDoubleStrands(all, named({"A", "B", "C", "D", "E"})).dnas[0].name, "A-E,C,D,...");
}

TEST(DoubleStrands, ABaseInNoPairIsAloneAndOfTheSameMolecule)
{
    auto all = paired(idealDuplex("ACGT"));
    all[0].partner = all[7].partner = NO_NUCLEOTIDE;
    for (const Nucleotide& one : idealDuplex("G"))
        all.push_back(one);
    all[8].strand = all[9].strand = 2;
    const DoubleStrands found = makeDoubleStrands(all, named({"A", "B", "C"}));
    ASSERT_EQ(found.loneBases.size(), 4u);
    EXPECT_EQ(found.loneBases[1].origin, "a.pdb: no. 7");
    EXPECT_EQ(found.loneBases[1].base, 'T');
    EXPECT_NEAR((found.loneBases[1].point - all[7].frame.point).getNorm(), 0, 0);
    EXPECT_NEAR(dot(found.loneBases[1].rotation, all[7].frame.rotation), 1, 1e-15);
    EXPECT_THAT(found.molecules, testing::ElementsAre(1, 1, 2));
    EXPECT_EQ(found.dnas[0].molecule, 1u);
    EXPECT_EQ(found.loneBases[0].molecule, 1u);
    EXPECT_EQ(found.loneBases[3].molecule, 2u);
}

TEST(DoubleStrands, AnUnknownLetterIsToldByThatOfItsPartner)
{
    auto all = paired(idealDuplex("ACG"));
    all[1].base = UNKNOWN_BASE;
    all[2].base = all[3].base = UNKNOWN_BASE;
    all[5].base = UNKNOWN_BASE;
    EXPECT_EQ(makeDoubleStrands(all, named({"A", "B"})).dnas[0].bases, "ACN");
}

TEST(DoubleStrands, StandardFramesAreThoseOfTheNumbers)
{
    auto all = paired(idealDuplex("ACG"));
    std::vector<StandardBase> standard;
    for (std::size_t i = 0; i < all.size(); ++i) {
        standard.push_back({all[i].frame, 0.001 * double(i)});
        standard.back().frame.point.x += 0.5;
    }
    const DoubleStrands found = makeDoubleStrands(all, named({"A", "B"}), standard);
    const Dna& dna = found.dnas[0];
    ASSERT_TRUE(dna.standard);
    EXPECT_DOUBLE_EQ(dna.standard->rms, 0.005);
    ASSERT_EQ(dna.standard->pairPoints.size(), 3u);
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_DOUBLE_EQ(dna.standard->points1[k].x, dna.points1[k].x + 0.5);
        EXPECT_DOUBLE_EQ(dna.standard->points2[k].x, dna.points2[k].x + 0.5);
        EXPECT_DOUBLE_EQ(dna.standard->pairPoints[k].x, dna.pairPoints[k].x + 0.5);
    }
}

TEST(DoubleStrands, QuaternionsInARowAreOfOneSign)
{
    // 21 pairs at 36 degrees turn by two turns, after which a quaternion is its opposite twice.
    auto all = paired(idealDuplex(std::string(21, 'A')));
    for (std::size_t i = 0; i < all.size(); i += 3)
        for (int k = 0; k < 4; ++k)
            all[i].frame.rotation[k] *= -1;
    const DoubleStrands found = makeDoubleStrands(all, named({"A", "B"}));
    const Dna& dna = found.dnas[0];
    for (const auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
        for (std::size_t k = 0; k + 1 < rotations->size(); ++k)
            EXPECT_NEAR(dot((*rotations)[k], (*rotations)[k + 1]), std::cos(M_PI / 10), 1e-12);
}

TEST(DoubleStrands, ComplementsAreThoseOfWatsonAndCrick)
{
    EXPECT_EQ(complementOf('A'), 'T');
    EXPECT_EQ(complementOf('T'), 'A');
    EXPECT_EQ(complementOf('G'), 'C');
    EXPECT_EQ(complementOf('C'), 'G');
    EXPECT_EQ(complementOf('N'), 'N');
    EXPECT_EQ(complementOf('a'), 'N');
}

} // namespace strandview
