// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/nucleicAcid.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <tuple>

#include <algebra3d/rotations.h>
#include <gmock/gmock.h>

#include <strandview/formats/structures/readAtoms.h>

#include "support/structureTexts.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct Made
{
    Configuration data;
    bool isMade = false;
    std::vector<std::string> notices;
    std::string error;
};

/// Through mmCIF, which has room for any name.
Made made(const std::vector<TestAtom>& atoms)
{
    StructureModel model;
    ReadReport report;
    const auto take = [&model](StructureModel one) {
        model = std::move(one);
        return true;
    };
    EXPECT_TRUE(readMmcif(cifOf(atoms), "here", {}, take, report)) << report.error;
    auto configuration = makeNucleicAcid(std::move(model), "here", report);
    Made result;
    result.isMade = configuration.has_value();
    if (configuration)
        result.data = std::move(*configuration);
    result.notices = report.notices;
    result.error = report.error;
    return result;
}

bool isOf(const TestAtom& atom, int residue) { return atom.number == residue; }

template <typename Condition>
std::vector<TestAtom> without(std::vector<TestAtom> atoms, Condition condition)
{
    atoms.erase(std::remove_if(atoms.begin(), atoms.end(), condition), atoms.end());
    return atoms;
}

std::vector<TestAtom> renamed(std::vector<TestAtom> atoms, int residue, const std::string& name)
{
    for (TestAtom& atom : atoms)
        atom.residue = isOf(atom, residue) ? name : atom.residue;
    return atoms;
}

const Dna& onlyDna(const Made& one)
{
    static const Dna none;
    EXPECT_EQ(one.data.dnas.size(), 1u) << one.error;
    return one.data.dnas.empty() ? none : one.data.dnas[0];
}

/// Half of the last digit that a file has, from which a frame may be off by some.
const double DIGIT = 0.002;

} // namespace

TEST(NucleicAcid, ADuplexIsADnaWithTwoBackbones)
{
    const std::string letters = "ACGTTG";
    const Made all = made(duplexAtoms(letters));
    const Dna& dna = onlyDna(all);
    EXPECT_EQ(dna.bases, letters);
    EXPECT_EQ(dna.name, "A-B");
    EXPECT_FALSE(dna.isClosed);
    EXPECT_THAT(all.notices, IsEmpty());
    EXPECT_TRUE(all.data.loneBases.empty());
    const IdealDna ideal(letters);
    for (std::size_t k = 0; k < letters.size(); ++k) {
        for (const auto* points : {&dna.pairPoints, &dna.points1, &dna.points2})
            EXPECT_NEAR(((*points)[k] - ideal.points[k]).getNorm(), 0, DIGIT);
        for (const auto* turns : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
            EXPECT_NEAR(std::abs(dot((*turns)[k], ideal.rotations[k])), 1, 1e-6);
    }
    ASSERT_EQ(all.data.rods.size(), 2u);
    for (const Rod& rod : all.data.rods) {
        EXPECT_TRUE(rod.isBackbone);
        EXPECT_FALSE(rod.hasFrames);
        EXPECT_EQ(rod.points.size(), letters.size() - 1);
        EXPECT_EQ(rod.molecule, dna.molecule);
        EXPECT_FALSE(rod.isClosed);
    }
    EXPECT_EQ(all.data.rods[0].name, "A");
    EXPECT_EQ(all.data.rods[1].name, "B");
    EXPECT_LT(all.data.rods[0].points[0].z, all.data.rods[0].points[4].z) << "5' to 3'";
    EXPECT_GT(all.data.rods[1].points[0].z, all.data.rods[1].points[4].z);
}

TEST(NucleicAcid, NumbersHaveFramesOfTheirOwn)
{
    const Made all = made(duplexAtoms("ACGT"));
    const Dna& dna = onlyDna(all);
    ASSERT_TRUE(dna.standard);
    ASSERT_EQ(dna.standard->pairPoints.size(), 4u);
    // The library's rings are those of the standard frame within 0.03 Å, near its frame.
    EXPECT_GT(dna.standard->rms, 0.001);
    EXPECT_LT(dna.standard->rms, 0.03);
    for (std::size_t k = 0; k < 4; ++k) {
        const double apart = (dna.standard->points1[k] - dna.points1[k]).getNorm();
        EXPECT_GT(apart, 0.001);
        EXPECT_LT(apart, 0.15);
    }
}

TEST(NucleicAcid, TurnsWithTheStructure)
{
    const std::string letters = "ACGTTG";
    std::vector<TestAtom> atoms = duplexAtoms(letters);
    const auto turn = algebra3d::scaledToUnit(algebra3d::Quaternion<double>(1, -2, 3, 1));
    const Vector shift(10, 20, -30);
    const Made before = made(atoms);
    for (TestAtom& atom : atoms)
        atom.place = rotated(atom.place, turn) + shift;
    const Made after = made(atoms);
    const Dna &a = onlyDna(before), &b = onlyDna(after);
    ASSERT_EQ(b.bases, letters);
    for (std::size_t k = 0; k < letters.size(); ++k) {
        EXPECT_NEAR((b.pairPoints[k] - (rotated(a.pairPoints[k], turn) + shift)).getNorm(), 0,
                    DIGIT);
        EXPECT_NEAR(std::abs(dot(b.pairRotations[k], turn * a.pairRotations[k])), 1, 1e-6);
    }
    EXPECT_NEAR(a.standard->rms, b.standard->rms, DIGIT);
}

TEST(NucleicAcid, StrandsMayComeInAnyOrder)
{
    std::vector<TestAtom> atoms = duplexAtoms("ACGTTG"), exchanged;
    for (const char* chain : {"B", "A"})
        for (const TestAtom& atom : atoms)
            if (atom.chain == chain)
                exchanged.push_back(atom);
    const Made all = made(exchanged);
    const Dna& dna = onlyDna(all);
    EXPECT_EQ(dna.bases, "CAACGT");
    EXPECT_EQ(dna.name, "B-A");
}

TEST(NucleicAcid, ANickLeavesOneDna)
{
    // Strand 2 is of two chains: residues 7 to 9 and 10 to 12, with no phosphate between.
    std::vector<TestAtom> atoms = duplexAtoms("ACGTTG");
    atoms = without(atoms, [](const TestAtom& atom) {
        return (atom.name == "P" && isOf(atom, 10)) || (atom.name == "O3'" && isOf(atom, 9));
    });
    for (TestAtom& atom : atoms)
        atom.chain = atom.number >= 10 ? "C" : atom.chain;
    const Made all = made(atoms);
    EXPECT_EQ(onlyDna(all).name, "A-C,B");
    EXPECT_EQ(onlyDna(all).bases, "ACGTTG");
    EXPECT_EQ(all.data.rods.size(), 3u);
    for (const Rod& rod : all.data.rods)
        EXPECT_EQ(rod.molecule, onlyDna(all).molecule);
}

TEST(NucleicAcid, ABrokenBondEndsAStrandWithinAChain)
{
    std::vector<TestAtom> atoms = duplexAtoms("ACGTTG");
    for (TestAtom& atom : atoms)
        if (atom.number >= 4 && atom.number <= 6)
            atom.place.x += 40;
    const Made all = made(atoms);
    EXPECT_EQ(onlyDna(all).bases, "ACG");
    EXPECT_EQ(all.data.loneBases.size(), 6u);
    EXPECT_EQ(all.data.rods.size(), 3u);
}

TEST(NucleicAcid, WithoutABondsAtomsNumbersTellNeighbours)
{
    const auto withoutP = [](const TestAtom& atom) { return atom.name == "P" && isOf(atom, 4); };
    std::vector<TestAtom> atoms = without(duplexAtoms("ACGTTG"), withoutP);
    EXPECT_EQ(made(atoms).data.rods.size(), 2u);
    for (TestAtom& atom : atoms)
        if (atom.chain == "A" && atom.number >= 4)
            atom.number += 50;
    EXPECT_EQ(made(atoms).data.rods.size(), 3u);
}

TEST(NucleicAcid, AMismatchIsTwoBasesInNoPair)
{
    // The letters of one pair exchanged for those of another purine and pyrimidine.
    std::vector<TestAtom> atoms = duplexAtoms("ACGTTG");
    const std::vector<TestAtom> other = duplexAtoms("ATGTTG");
    atoms = without(atoms, [](const TestAtom& atom) { return isOf(atom, 2); });
    for (const TestAtom& atom : other)
        if (isOf(atom, 2))
            atoms.insert(std::find_if(atoms.begin(), atoms.end(),
                                      [](const TestAtom& one) { return one.number > 2; }),
                         atom);
    const Made all = made(atoms);
    ASSERT_EQ(all.data.loneBases.size(), 2u);
    EXPECT_EQ(all.data.loneBases[0].base, 'T');
    EXPECT_EQ(all.data.loneBases[1].base, 'G');
    EXPECT_EQ(all.data.loneBases[0].origin, "here: chain A, residue 2");
    ASSERT_EQ(all.data.dnas.size(), 2u);
    EXPECT_EQ(all.data.dnas[0].bases, "A");
    EXPECT_EQ(all.data.dnas[1].bases, "GTTG");
    EXPECT_EQ(all.data.dnas[0].molecule, all.data.dnas[1].molecule);
}

TEST(NucleicAcid, ASingleStrandIsBasesOnABackbone)
{
    const auto ofB = [](const TestAtom& atom) { return atom.chain == "B"; };
    const Made all = made(without(duplexAtoms("ACGTTG"), ofB));
    EXPECT_TRUE(all.data.dnas.empty());
    EXPECT_EQ(all.data.loneBases.size(), 6u);
    EXPECT_EQ(all.data.rods.size(), 1u);
    EXPECT_EQ(all.data.loneBases[3].molecule, all.data.rods[0].molecule);
    const IdealDna ideal("ACGTTG");
    EXPECT_NEAR((all.data.loneBases[3].point - ideal.points[3]).getNorm(), 0, DIGIT);
}

TEST(NucleicAcid, AStrandWithoutABackboneIsTold)
{
    const auto lacks = [](const TestAtom& atom) {
        return atom.name == "P" && atom.chain == "B" && atom.number < 12;
    };
    const Made lacking = made(without(duplexAtoms("ACGTTG"), lacks));
    EXPECT_EQ(lacking.data.rods.size(), 1u);
    EXPECT_EQ(onlyDna(lacking).bases, "ACGTTG");
    EXPECT_THAT(lacking.notices, ElementsAre("here: 1 strand without a backbone, of fewer than 2 "
                                             "phosphorus atoms: chain B from residue 7 on"));
    const auto isSugar = [](const TestAtom& atom) { return atom.name == "O3'"; };
    std::vector<TestAtom> atoms = without(duplexAtoms("ACGTTG"), isSugar);
    for (TestAtom& atom : atoms)
        if (atom.name == "P")
            atom.place = {3, 4, 5};
    const Made together = made(atoms);
    EXPECT_THAT(together.data.rods, IsEmpty());
    EXPECT_THAT(together.notices,
                ElementsAre("here: 2 strands without a backbone, whose phosphorus atoms are in one "
                            "place: chain A from residue 1 on and 1 more"));
}

TEST(NucleicAcid, ModifiedBasesAreShownAsTheirParents)
{
    // Of a name that is known, of one whose atoms tell, and one with a parent by its atoms alone.
    std::vector<TestAtom> atoms = renamed(duplexAtoms("ACGTTG"), 2, "5CM");
    atoms = renamed(renamed(atoms, 3, "XYZ"), 4, "XYT");
    const Made all = made(atoms);
    EXPECT_EQ(onlyDna(all).bases, "ACGTTG");
    EXPECT_THAT(all.notices, ElementsAre("here: modified bases shown as those that they are made "
                                         "from: 5CM as C, XYT as T, XYZ as G"));
}

TEST(NucleicAcid, UIsShownAsT)
{
    std::vector<TestAtom> atoms = renamed(renamed(duplexAtoms("ACGTTG"), 4, "DU"), 5, "U");
    atoms = without(atoms, [](const TestAtom& atom) {
        return atom.name == "C7" && (isOf(atom, 4) || isOf(atom, 5));
    });
    const Made all = made(atoms);
    EXPECT_EQ(onlyDna(all).bases, "ACGTTG");
    EXPECT_THAT(all.notices, ElementsAre("here: 2 U shown as T"));
}

TEST(NucleicAcid, LigandsAreNotBases)
{
    // An adenine nucleotide that is bonded to nothing, of a name that is no nucleotide's.
    std::vector<TestAtom> atoms = duplexAtoms("ACG");
    for (TestAtom atom : duplexAtoms("A"))
        if (atom.chain == "A") {
            atom.residue = "ATP";
            atom.chain = "L";
            atom.place.x += 50;
            atoms.push_back(atom);
        }
    EXPECT_TRUE(made(atoms).data.loneBases.empty());
}

TEST(NucleicAcid, ABaseIsFittedToTheAtomsThatItHas)
{
    const auto isMissing = [](const TestAtom& atom) {
        const bool isRing = atom.name == "N7" || atom.name == "C8" || atom.name == "N9";
        return isOf(atom, 1) && isRing;
    };
    const Made all = made(without(duplexAtoms("ACGT"), isMissing));
    EXPECT_EQ(onlyDna(all).bases, "ACGT");
    EXPECT_THAT(all.notices, IsEmpty());
    const IdealDna ideal("ACGT");
    EXPECT_NEAR((onlyDna(all).points1[0] - ideal.points[0]).getNorm(), 0, 2 * DIGIT);
}

TEST(NucleicAcid, ABaseWithTooFewAtomsIsLeftOut)
{
    const auto isMissing = [](const TestAtom& atom) {
        return (isOf(atom, 2) || isOf(atom, 6)) && atom.name.size() == 2 && atom.name != "N1" &&
               atom.name != "C2" && atom.name != "N3";
    };
    const Made all = made(without(duplexAtoms("ACGTTG"), isMissing));
    EXPECT_THAT(all.notices, ElementsAre("here: 2 bases left out, with fewer than 4 atoms of the "
                                         "ring: chain A, residue 2 and 1 more"));
    ASSERT_EQ(all.data.dnas.size(), 2u);
    EXPECT_EQ(all.data.dnas[1].bases, "GTT");
    EXPECT_EQ(all.data.loneBases.size(), 2u);
    EXPECT_EQ(all.data.rods[0].points.size(), 5u) << "the backbone goes on";
}

TEST(NucleicAcid, ABaseOfAnotherShapeIsLeftOut)
{
    std::vector<TestAtom> atoms = duplexAtoms("ACGT");
    for (TestAtom& atom : atoms)
        if (isOf(atom, 2))
            atom.place = {1, 2, 3};
    const Made all = made(atoms);
    EXPECT_THAT(all.notices, testing::Contains(HasSubstr(
                                 "1 base left out, whose atoms do not have the shape of a base")));
}

TEST(NucleicAcid, OfSeveralPlacesTheMostOccupiedIsShown)
{
    // All atoms of residue 1 twice, the second time 5 Å away.
    const std::vector<TestAtom> plain = duplexAtoms("ACG");
    for (const auto& [first, second, isFirst] :
         {std::tuple(0.4, 0.6, false), std::tuple(0.6, 0.4, true), std::tuple(0.5, 0.5, true)}) {
        std::vector<TestAtom> atoms;
        for (TestAtom atom : plain) {
            const bool isTwice = isOf(atom, 1) && atom.name != "O3'";
            atom.conformer = isTwice ? 'A' : ' ';
            atom.occupancy = isTwice ? first : 1;
            atoms.push_back(atom);
            atom.conformer = 'B';
            atom.occupancy = second;
            atom.place.x += 5;
            if (isTwice)
                atoms.push_back(atom);
        }
        const Made all = made(atoms);
        EXPECT_EQ(all.data.loneBases.size(), isFirst ? 0u : 2u);
        EXPECT_THAT(all.notices, ElementsAre("here: 1 residue in more than one place, shown where "
                                             "the occupancy is highest"));
    }
}

TEST(NucleicAcid, OfTwoResiduesInOnePlaceTheMostOccupiedIsShown)
{
    std::vector<TestAtom> atoms;
    for (TestAtom atom : duplexAtoms("ACG")) {
        if (isOf(atom, 2)) {
            atom.conformer = 'A';
            atom.occupancy = 0.3;
        }
        atoms.push_back(atom);
    }
    for (TestAtom atom : duplexAtoms("ATG")) {
        atom.conformer = 'B';
        atom.occupancy = 0.7;
        if (isOf(atom, 2))
            atoms.insert(std::find_if(atoms.begin(), atoms.end(),
                                      [](const TestAtom& one) { return one.number > 2; }),
                         atom);
    }
    const Made all = made(atoms);
    ASSERT_EQ(all.data.loneBases.size(), 2u);
    EXPECT_EQ(all.data.loneBases[0].base, 'T') << "which does not pair with G";
    EXPECT_EQ(all.data.rods.size(), 2u);
}

TEST(NucleicAcid, ACircleIsClosed)
{
    // The middle third of a straight duplex, bent to a circle: 40 pairs turn round four times.
    const int n = 40;
    const std::string third = irregularSequence(std::size_t(n));
    const double radius = 3.4 * n / (2 * M_PI);
    std::vector<TestAtom> atoms;
    for (TestAtom atom : duplexAtoms(third + third + third)) {
        const bool isFirst = atom.chain == "A";
        const int pair = isFirst ? atom.number - 1 : 6 * n - atom.number;
        if (pair < n || pair >= 2 * n)
            continue;
        // O3' stands in the frame of the next residue, to which it is bonded.
        const int inFrame = atom.name == "O3'" ? (isFirst ? pair + 1 : pair - 1) : pair;
        const auto bend = about(Vector(0, 1, 0), 2 * M_PI * inFrame / n);
        atom.place = rotated(atom.place - Vector(radius, 0, 3.4 * inFrame), bend);
        atoms.push_back(atom);
    }
    const Made circle = made(atoms);
    EXPECT_TRUE(onlyDna(circle).isClosed);
    EXPECT_EQ(onlyDna(circle).bases, third);
    ASSERT_EQ(circle.data.rods.size(), 2u);
    for (const Rod& rod : circle.data.rods) {
        EXPECT_TRUE(rod.isClosed);
        ASSERT_EQ(rod.points.size(), std::size_t(n) + 1);
        EXPECT_EQ((rod.points.front() - rod.points.back()).getNorm(), 0);
    }
    const auto isLastBond = [](const TestAtom& atom) {
        return atom.name == "O3'" && isOf(atom, 2 * n);
    };
    const Made nicked = made(without(atoms, isLastBond));
    EXPECT_TRUE(onlyDna(nicked).isClosed) << "the other strand goes round";
    EXPECT_FALSE(nicked.data.rods[0].isClosed);
    EXPECT_TRUE(nicked.data.rods[1].isClosed);
}

struct Alone
{
    const char* what;
    std::vector<TestAtom> atoms;
    std::string error;
};

class NoNucleicAcid : public testing::TestWithParam<Alone>
{
};

TEST_P(NoNucleicAcid, IsRefusedByWhatWasFound)
{
    const Made all = made(GetParam().atoms);
    EXPECT_FALSE(all.isMade);
    EXPECT_EQ(all.error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    NucleicAcid, NoNucleicAcid,
    testing::Values(Alone{"Protein", {proteinAtom()}, "here: found protein alone, expected DNA"},
                    Alone{"Water", {waterAtom()}, "here: found water alone, expected DNA"},
                    Alone{"ProteinAndWater",
                          {proteinAtom(), waterAtom()},
                          "here: found protein and water, expected DNA"},
                    Alone{"Ligand",
                          {proteinAtom(), waterAtom(), {"C2", "LIG", "L", 1, {}}},
                          "here: found protein, water and other molecules, expected DNA"}),
    [](const testing::TestParamInfo<Alone>& one) { return one.param.what; });

TEST(NucleicAcid, NothingIsRefused)
{
    ReadReport report;
    EXPECT_FALSE(makeNucleicAcid({}, "here", report));
    EXPECT_EQ(report.error, "here: found no atoms, expected DNA");
}

} // namespace strandview
