// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/lineNumbers.h>

#include <set>

#include <gmock/gmock.h>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/analysis/shape.h>
#include <strandview/analysis/topology.h>

#include "support/IdealDna.h"
#include "support/knots.h"

namespace strandview {

namespace {

using testing::DoubleNear;
using testing::ElementsAre;
using testing::Optional;

Rod closedKnot()
{
    Rod rod;
    rod.points = torusKnot(2, 3, 300);
    rod.rotations.assign(rod.points.size(), {0, 0, 0, 1});
    rod.isClosed = true;
    rod.hasFrames = false;
    return rod;
}

Configuration dnaOf(std::size_t pairs)
{
    const IdealDna ideal(irregularSequence(pairs));
    Dna dna;
    dna.bases = ideal.sequence;
    dna.pairPoints = dna.points1 = dna.points2 = ideal.points;
    dna.pairRotations = dna.rotations1 = dna.rotations2 = ideal.rotations;
    Configuration configuration;
    configuration.dnas.push_back(dna);
    return configuration;
}

} // namespace

TEST(LineNumbers, HaveNamesOfTheirOwn)
{
    std::set<std::string> names;
    for (const LineQuantity& quantity : lineQuantities()) {
        EXPECT_TRUE(names.insert(quantity.name).second) << quantity.name;
        ASSERT_NE(findLineQuantity(quantity.name), nullptr);
        EXPECT_EQ(findLineQuantity(quantity.name)->meaning, quantity.meaning);
    }
    EXPECT_EQ(findLineQuantity("curvature"), nullptr);
}

TEST(LineNumbers, OfAClosedCurveAreThoseOfItsShapeAndTopology)
{
    const Rod knot = closedKnot();
    const Track track = trackOf(knot);
    EXPECT_THAT(lineNumbersOf(track, {"writhe", "length", "radiusOfGyration", "contact"}),
                ElementsAre(topologyOf(track).writhe, lengthOf(knot.points),
                            radiusOfGyrationOf(knot.points), contactOf(knot.points)->distance));
}

TEST(LineNumbers, OfWhatALineHasNotAreNothing)
{
    const Rod knot = closedKnot(); // without frames
    EXPECT_THAT(lineNumbersOf(trackOf(knot), {"gaussIntegral", "twist", "meanTwist", "no such"}),
                testing::Each(std::nullopt));
}

TEST(LineNumbers, OfADnaHaveItsStepsAndTheTwistInTurns)
{
    const Configuration data = dnaOf(11);
    const Track pairs = tracksOf(data).front();
    EXPECT_THAT(lineNumbersOf(pairs, {"totalTwist", "meanTwist", "meanRise", "endToEnd", "twist"}),
                ElementsAre(Optional(DoubleNear(360, 1e-9)), Optional(DoubleNear(36, 1e-9)),
                            Optional(DoubleNear(3.4, 1e-9)), Optional(DoubleNear(34, 1e-9)),
                            Optional(DoubleNear(1, 1e-9))));
}

TEST(LineNumbers, OfStepsAreInAngstromWhateverTheUnitOfThePoints)
{
    const Configuration data = dnaOf(5);
    const Track inOther = tracksOf(data, 0.5).front(); // a unit of two ångström
    EXPECT_THAT(lineNumbersOf(inOther, {"meanRise", "length"}),
                ElementsAre(Optional(DoubleNear(6.8, 1e-9)), Optional(DoubleNear(13.6, 1e-9))));
}

} // namespace strandview
