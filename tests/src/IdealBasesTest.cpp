// SPDX-License-Identifier: GPL-3.0-or-later
#include <idealbases.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include <gmock/gmock.h>

using namespace idealbases;
using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

// Sums in the last printed digit of the tables: whole numbers of 1e-6.
const double HALF_A_DIGIT = 0.5e-6;

std::vector<std::string> namesOf(int base)
{
    std::vector<std::string> names;
    for (int atom = 0; atom < NUM_ATOMS[base]; ++atom)
        names.emplace_back(ATOMS[base][atom]);
    return names;
}

double distance(const double* a, const double* b, double mirror = 1)
{
    return std::sqrt(std::pow(a[0] - b[0], 2) + std::pow(a[1] - mirror * b[1], 2) +
                     std::pow(a[2] - b[2], 2));
}

const double* atomNamed(int base, const char* name)
{
    for (int atom = 0; atom < NUM_ATOMS[base]; ++atom) {
        if (std::strcmp(ATOMS[base][atom], name) == 0)
            return COORDS[base][atom];
    }
    ADD_FAILURE() << BASES[base] << " has no " << name;
    return COORDS[base][0];
}

} // namespace

TEST(IdealBases, CountsAndNamesAreThoseOfTheFourBases)
{
    EXPECT_STREQ(BASES, "ATGC");
    EXPECT_THAT(NUM_ATOMS, ElementsAre(11, 10, 12, 9));
    EXPECT_THAT(namesOf(0),
                ElementsAre("C1'", "N9", "C4", "C8", "N1", "C2", "N3", "C5", "C6", "N7", "N6"));
    EXPECT_THAT(namesOf(1),
                ElementsAre("C1'", "N1", "C2", "C6", "N3", "C4", "C5", "O2", "O4", "C7"));
    EXPECT_THAT(namesOf(2), ElementsAre("C1'", "N9", "C4", "C8", "N1", "C2", "N3", "C5", "C6", "N7",
                                        "N2", "O6"));
    EXPECT_THAT(namesOf(3), ElementsAre("C1'", "N1", "C2", "C6", "N3", "C4", "C5", "O2", "N4"));
}

// The rows of the guide's table, each as "A N9 -1.286578 4.522557 0".
TEST(IdealBases, TheTableOfTheGuideIsThatOfTheLibrary)
{
    std::ifstream guide(BASES_GUIDE);
    ASSERT_TRUE(guide);
    std::vector<std::string> rows;
    for (std::string line; std::getline(guide, line);) {
        std::replace(line.begin(), line.end(), '|', ' ');
        std::istringstream fields(line);
        std::string base, atom;
        double x, y, z;
        if (fields >> base >> atom >> x >> y >> z)
            rows.push_back(base + " " + atom + " " + std::to_string(x) + " " + std::to_string(y) +
                           " " + std::to_string(z));
    }
    std::vector<std::string> expected;
    for (int base = 0; base < 4; ++base) {
        for (int i = 0; i < NUM_ATOMS[base]; ++i) {
            const double* place = COORDS[base][i];
            expected.push_back(std::string(1, BASES[base]) + " " + ATOMS[base][i] + " " +
                               std::to_string(place[0]) + " " + std::to_string(place[1]) + " " +
                               std::to_string(place[2]));
        }
    }
    EXPECT_THAT(rows, ElementsAreArray(expected));
}

// Plain sums find a wrong digit, those weighted by the atom's place find exchanged rows.
TEST(IdealBases, SumsOfTheCoordinatesAreThoseOfTheSource)
{
    const double sums[4][3] = {{-7.313942, 30.901927, -0.000891},
                               {-1.795214, 37.435277, 0.006469},
                               {-10.495773, 30.982271, 0.002353},
                               {-4.510240, 32.282268, 0.006524}};
    const double weighted[4][3] = {{-11.625826, 152.824803, -0.002849},
                                   {23.346101, 193.435113, 0.041263},
                                   {-44.008852, 154.636893, 0.015181},
                                   {-3.064376, 142.466718, 0.043285}};
    const double squares[4] = {138.840928498, 182.517113872, 147.999431789, 150.635212726};
    for (int base = 0; base < 4; ++base) {
        SCOPED_TRACE(BASES[base]);
        double square = 0;
        for (int axis = 0; axis < 3; ++axis) {
            double sum = 0, weightedSum = 0;
            for (int atom = 0; atom < NUM_ATOMS[base]; ++atom) {
                const double coordinate = COORDS[base][atom][axis];
                sum += coordinate;
                weightedSum += (atom + 1) * coordinate;
                square += coordinate * coordinate;
            }
            EXPECT_NEAR(sum, sums[base][axis], HALF_A_DIGIT) << "axis " << axis;
            EXPECT_NEAR(weightedSum, weighted[base][axis], HALF_A_DIGIT) << "axis " << axis;
        }
        EXPECT_NEAR(square, squares[base], 1e-9); // the constants have nine places
    }
}

TEST(IdealBases, CellsBeyondTheCountAreZero)
{
    for (int base = 0; base < 4; ++base) {
        for (int atom = NUM_ATOMS[base]; atom < MAX_ATOMS; ++atom) {
            EXPECT_THAT(ATOMS[base][atom], ElementsAre('\0', '\0', '\0', '\0'));
            EXPECT_THAT(COORDS[base][atom], ElementsAre(0, 0, 0));
        }
        for (int i = NUM_ORDER[base]; i < MAX_ORDER; ++i)
            EXPECT_EQ(ORDER[base][i], 0);
    }
}

TEST(IdealBases, ArePlanar)
{
    for (const auto& base : COORDS) {
        for (const auto& atom : base)
            EXPECT_LE(std::abs(atom[2]), 0.002);
    }
}

TEST(IdealBases, RingsAreClosedChainsOfBonds)
{
    EXPECT_THAT(NUM_ORDER, ElementsAre(9, 6, 9, 6));
    for (int base : {0, 2})
        EXPECT_THAT(ORDER[base], ElementsAre(2, 6, 5, 4, 8, 7, 9, 3, 1));
    for (int base : {1, 3})
        EXPECT_THAT(ORDER[base], ElementsAre(1, 2, 4, 5, 6, 3, 0, 0, 0));
    for (int base = 0; base < 4; ++base) {
        for (int i = 0; i < NUM_ORDER[base]; ++i) {
            SCOPED_TRACE(testing::Message() << BASES[base] << ", place " << i);
            const int next = ORDER[base][(i + 1) % NUM_ORDER[base]];
            const double length = distance(COORDS[base][ORDER[base][i]], COORDS[base][next]);
            EXPECT_GT(length, 1.2);
            EXPECT_LT(length, 1.5);
        }
    }
}

// From donor to acceptor; W. Saenger, Principles of Nucleic Acid Structure, 1984: 2.7 to 3.1.
TEST(IdealBases, PairsMeetAtHydrogenBondingDistance)
{
    const struct
    {
        int base, complement;
        const char *atom, *partner;
    } bonds[] = {{0, 1, "N6", "O4"},
                 {0, 1, "N1", "N3"},
                 {2, 3, "O6", "N4"},
                 {2, 3, "N1", "N3"},
                 {2, 3, "N2", "O2"}};
    for (const auto& bond : bonds) {
        const double length =
            distance(atomNamed(bond.base, bond.atom), atomNamed(bond.complement, bond.partner), -1);
        EXPECT_GT(length, 2.7) << bond.atom << " to " << bond.partner;
        EXPECT_LT(length, 3.1) << bond.atom << " to " << bond.partner;
    }
}

TEST(IdealBases, SugarCarbonsOfAllPairsAreEquallyFarApart)
{
    for (const auto& pair : {std::pair{0, 1}, std::pair{2, 3}})
        EXPECT_NEAR(distance(COORDS[pair.first][0], COORDS[pair.second][0], -1), 10.779, 0.001);
}
