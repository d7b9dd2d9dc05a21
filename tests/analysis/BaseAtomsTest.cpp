// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/baseAtoms.h>

#include <cmath>
#include <string>

#include <gmock/gmock.h>

#include <strandview/analysis/fitFrame.h>
#include <strandview/model/Dna.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using testing::ElementsAre;

std::vector<std::string> namesOf(const std::vector<BaseAtom>& atoms)
{
    std::vector<std::string> names;
    for (const BaseAtom& atom : atoms)
        names.emplace_back(atom.name);
    return names;
}

Vector placeOf(const std::vector<BaseAtom>& atoms, std::string_view name)
{
    for (const BaseAtom& atom : atoms)
        if (atom.name == name)
            return atom.place;
    ADD_FAILURE() << "no " << name;
    return {};
}

double bond(const std::vector<BaseAtom>& atoms, const char* a, const char* b)
{
    return (placeOf(atoms, a) - placeOf(atoms, b)).getNorm();
}

} // namespace

TEST(BaseAtoms, DrawnOnesAreThoseOfTheBaseWithoutTheSugar)
{
    EXPECT_THAT(namesOf(drawnAtoms('A')),
                ElementsAre("N9", "C4", "C8", "N1", "C2", "N3", "C5", "C6", "N7", "N6"));
    EXPECT_THAT(namesOf(drawnAtoms('T')),
                ElementsAre("N1", "C2", "C6", "N3", "C4", "C5", "O2", "O4", "C7"));
    EXPECT_THAT(namesOf(drawnAtoms('G')),
                ElementsAre("N9", "C4", "C8", "N1", "C2", "N3", "C5", "C6", "N7", "N2", "O6"));
    EXPECT_THAT(namesOf(drawnAtoms('C')),
                ElementsAre("N1", "C2", "C6", "N3", "C4", "C5", "O2", "N4"));
}

TEST(BaseAtoms, StandardOnesAreThoseOfTheRings)
{
    for (const char purine : {'A', 'G'})
        EXPECT_THAT(namesOf(standardRingAtoms(purine)),
                    ElementsAre("N9", "C8", "N7", "C5", "C6", "N1", "C2", "N3", "C4"));
    for (const char pyrimidine : {'C', 'T'})
        EXPECT_THAT(namesOf(standardRingAtoms(pyrimidine)),
                    ElementsAre("N1", "C2", "N3", "C4", "C5", "C6"));
}

TEST(BaseAtoms, OtherLettersHaveNone)
{
    for (const char letter : {'N', 'U', 'a', '\0'}) {
        EXPECT_TRUE(drawnAtoms(letter).empty());
        EXPECT_TRUE(standardRingAtoms(letter).empty());
    }
}

TEST(BaseAtoms, RingsAreClosedByBonds)
{
    for (const char base : BASE_LETTERS) {
        SCOPED_TRACE(base);
        const std::vector<BaseAtom>& ring = standardRingAtoms(base);
        std::vector<std::pair<const char*, const char*>> bonds{
            {"N1", "C2"}, {"C2", "N3"}, {"N3", "C4"}, {"C4", "C5"}, {"C5", "C6"}, {"C6", "N1"}};
        if (ring.size() == 9)
            bonds.insert(bonds.end(), {{"C5", "N7"}, {"N7", "C8"}, {"C8", "N9"}, {"N9", "C4"}});
        for (const auto& [a, b] : bonds) {
            EXPECT_GT(bond(ring, a, b), 1.28) << a << " " << b;
            EXPECT_LT(bond(ring, a, b), 1.46) << a << " " << b;
        }
    }
}

// The two sets are of one molecule in two frames: they lie on one another within the precision of
// both, and their frames are near but not one.
TEST(BaseAtoms, BothSetsAreOfTheSameRings)
{
    for (const char base : BASE_LETTERS) {
        SCOPED_TRACE(base);
        std::vector<Vector> standard, drawn;
        for (const BaseAtom& atom : standardRingAtoms(base)) {
            standard.push_back(atom.place);
            drawn.push_back(placeOf(drawnAtoms(base), atom.name));
        }
        const FittedFrame fit = fitFrame(standard, drawn);
        EXPECT_LT(fit.rms, 0.03);
        EXPECT_LT(fit.point.getNorm(), 0.2);
        EXPECT_LT(std::abs(fit.rotation[0]) + std::abs(fit.rotation[1]), 1e-2);
    }
}

} // namespace strandview
