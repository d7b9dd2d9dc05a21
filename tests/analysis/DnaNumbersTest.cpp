// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/dnaNumbers.h>

#include <cmath>

#include <gmock/gmock.h>

namespace strandview {

namespace {

// A double strand of flat pairs by its steps, the first pair at the origin.
Dna made(const std::vector<StepParameters>& steps)
{
    Dna dna;
    PlacedFrame pair;
    const auto add = [&] {
        dna.bases += 'A';
        for (auto* points : {&dna.pairPoints, &dna.points1, &dna.points2})
            points->push_back(pair.point);
        for (auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
            rotations->push_back(pair.rotation);
    };
    add();
    for (const StepParameters& step : steps) {
        pair = nextPair(pair, step);
        add();
    }
    return dna;
}

// In a plane, with a roll of 36 degrees at each of ten pairs: a regular decagon of side 3.4.
Dna decagon()
{
    Dna dna = made(std::vector<StepParameters>(9, {0, 0, 3.4, 0, 36, 0}));
    dna.isClosed = true;
    return dna;
}

} // namespace

TEST(DnaNumbers, OfAStraightHelix)
{
    const DnaNumbers numbers = numbersOf(made({{0, 0, 3, 0, 0, 34}, {0, 0, 4, 0, 0, 37}}));
    EXPECT_NEAR(numbers.length, 7, 1e-14);
    EXPECT_NEAR(numbers.endToEnd, 7, 1e-14);
    EXPECT_NEAR(*numbers.totalTwist, 71, 1e-12);
    EXPECT_NEAR(*numbers.meanTwist, 35.5, 1e-12);
    EXPECT_NEAR(*numbers.meanRise, 3.5, 1e-14);
}

TEST(DnaNumbers, AClosedOneHasAStepFromItsLastPairToItsFirst)
{
    const std::vector<StepParameters> steps = stepsOf(decagon());
    ASSERT_EQ(steps.size(), 10u);
    EXPECT_NEAR(steps.back().roll, 36, 1e-12);
    EXPECT_NEAR(steps.back().rise, 3.4, 1e-12);
    const DnaNumbers numbers = numbersOf(decagon());
    EXPECT_NEAR(numbers.length, 34, 1e-12);
    EXPECT_EQ(numbers.endToEnd, 0);
    EXPECT_NEAR(*numbers.meanRise, 3.4, 1e-12);
}

TEST(DnaNumbers, OfOnePairThereIsNoMean)
{
    for (const bool isClosed : {false, true}) {
        Dna dna = made({});
        dna.isClosed = isClosed;
        EXPECT_TRUE(stepsOf(dna).empty());
        const DnaNumbers numbers = numbersOf(dna);
        EXPECT_EQ(numbers.length, 0);
        EXPECT_EQ(numbers.endToEnd, 0);
        EXPECT_FALSE(numbers.meanTwist || numbers.totalTwist || numbers.meanRise);
    }
}

TEST(DnaNumbers, AreThoseOfTheStandardFramesWhereThereAreSome)
{
    Dna dna = made({{0, 0, 3, 0, 0, 34}});
    const Dna other = made({{0, 0, 4, 0, 0, 30}});
    dna.standard =
        StandardFrames{other.pairPoints, other.pairRotations, other.points1, other.rotations1,
                       other.points2,    other.rotations2,    0.01};
    EXPECT_NEAR(*numbersOf(dna).meanTwist, 30, 1e-12);
    EXPECT_NEAR(numbersOf(dna).length, 4, 1e-14);
    EXPECT_NEAR(stepsOf(dna).front().rise, 4, 1e-14);
}

TEST(DnaNumbers, OfPairsAreThoseOfTheirBases)
{
    Dna dna = made({{0, 0, 3, 0, 0, 34}});
    const PairParameters expected{0.1, 0.2, 0.3, 4, -12, 2};
    const BaseFrames bases = baseFrames({dna.pairPoints[1], dna.pairRotations[1]}, expected);
    dna.points1[1] = bases.base1.point;
    dna.rotations1[1] = bases.base1.rotation;
    dna.points2[1] = bases.base2.point;
    dna.rotations2[1] = bases.base2.rotation;
    const std::vector<PairParameters> pairs = pairsOf(dna);
    ASSERT_EQ(pairs.size(), 2u);
    EXPECT_NEAR(pairs[0].propeller, 0, 1e-12);
    EXPECT_NEAR(pairs[1].shear, 0.1, 1e-12);
    EXPECT_NEAR(pairs[1].propeller, -12, 1e-12);
    EXPECT_NEAR(pairs[1].opening, 2, 1e-12);
}

} // namespace strandview
