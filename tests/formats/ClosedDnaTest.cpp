// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/closedDna.h>

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

// Pairs around a square of side 3, turned by a quarter each; the last is the first again but for
// what is added to it.
Dna square(std::size_t pairs, const algebra3d::Vector3<double>& gap, double angle)
{
    Dna dna;
    for (std::size_t i = 0; i < pairs; ++i) {
        const double turn = 2 * M_PI * double(i) / double(pairs - 1);
        const bool isLast = i + 1 == pairs;
        dna.bases += isLast ? 'A' : "ACGT"[i % 4];
        dna.pairPoints.emplace_back(3 * std::sin(turn), 0, 3 * std::cos(turn));
        dna.pairRotations.push_back(
            algebra3d::about({0, 1, 0}, turn + (isLast ? angle * M_PI / 180 : 0)));
    }
    dna.pairPoints.back() += gap;
    dna.points1 = dna.points2 = dna.pairPoints;
    dna.rotations1 = dna.rotations2 = dna.pairRotations;
    return dna;
}

} // namespace

TEST(ClosedDna, APairThatComesBackIsLeftOut)
{
    Dna dna = square(5, {0.3, 0, 0}, 0.9);
    closeWhereRepeated(dna);
    EXPECT_TRUE(dna.isClosed);
    EXPECT_EQ(dna.bases, "ACGT");
    EXPECT_EQ(dna.pairPoints.size(), 4u);
    EXPECT_EQ(dna.rotations2.size(), 4u);
}

TEST(ClosedDna, OneThatOnlyComesNearIsAnother)
{
    Dna apart = square(5, {0.6, 0, 0}, 0), turned = square(5, {}, 1.1), few = square(3, {}, 0);
    Dna otherwise = square(5, {}, 0);
    otherwise.bases.back() = 'T';
    for (Dna* dna : {&apart, &turned, &few, &otherwise}) {
        const std::string bases = dna->bases;
        closeWhereRepeated(*dna);
        EXPECT_FALSE(dna->isClosed);
        EXPECT_EQ(dna->bases, bases);
    }
}

} // namespace strandview
