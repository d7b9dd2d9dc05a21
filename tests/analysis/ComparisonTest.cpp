// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/comparison.h>

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/parallelTransport.h>
#include <strandview/analysis/scalars.h>
#include <strandview/analysis/superpose.h>
#include <strandview/model/MemorySeries.h>

#include "support/RandomRods.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using testing::Each;
using testing::IsEmpty;

Configuration oneRod(unsigned seed)
{
    const RandomRod random = randomRod(RodKind::SMOOTH, 30, seed);
    Rod rod;
    rod.points = random.points;
    rod.rotations = parallelTransport(random.points);
    return {{rod}};
}

std::vector<double> valuesOf(const Configuration& data, const std::string& name)
{
    const auto values = findScalar(tracksOf(data).at(0), name);
    EXPECT_TRUE(values) << name;
    return values.value_or(std::vector<double>());
}

auto near(double value, double tolerance = 1e-9) { return testing::DoubleNear(value, tolerance); }

} // namespace

TEST(Comparison, OfWhatWasOnlyMovedIsZero)
{
    const Configuration reference = oneRod(1);
    Configuration moved = reference;
    move(moved, {{5, -2, 9}, RandomNumbers(2).unitQuaternion()});
    EXPECT_EQ(addComparison(moved, reference), "");
    EXPECT_THAT(valuesOf(moved, "reference_distance"), Each(near(0)));
    EXPECT_THAT(valuesOf(moved, "reference_rotation"), Each(near(0, 1e-5)));
    EXPECT_EQ(valuesOf(moved, "shear1").size(), 30u);
}

TEST(Comparison, TellsHowFarAPointIsAndHowMuchAFrameIsTurned)
{
    const Configuration reference = oneRod(1);
    Configuration changed = reference;
    const double small = 1e-6; // too little to matter to the superposition of the whole
    changed.rods[0].points[7] += Vector(0, 0, small);
    changed.rods[0].rotations[9] =
        changed.rods[0].rotations[9] * algebra3d::about(Vector(1, 2, 3), 0.5);
    addComparison(changed, reference);
    EXPECT_NEAR(valuesOf(changed, "reference_distance")[7], small, 0.1 * small);
    EXPECT_NEAR(valuesOf(changed, "reference_distance")[20], 0, 0.1 * small);
    EXPECT_NEAR(valuesOf(changed, "reference_rotation")[9], 0.5 * 180 / M_PI, 1e-3);
    EXPECT_NEAR(valuesOf(changed, "reference_rotation")[10], 0, 1e-3);
}

TEST(Comparison, OfARodThatIsStretchedTellsItsExtension)
{
    Configuration reference, stretched;
    Rod rod;
    for (int i = 0; i < 5; ++i) {
        rod.points.emplace_back(0, 0, i);
        rod.rotations.emplace_back();
    }
    reference.rods = {rod};
    for (Vector& point : rod.points)
        point = {0.25 * point.z, 0, 1.5 * point.z};
    stretched.rods = {rod};
    addComparison(stretched, reference);
    EXPECT_THAT(valuesOf(stretched, "extension"), Each(near(0.5)));
    EXPECT_THAT(valuesOf(stretched, "shear1"), Each(near(0.25)));
    EXPECT_THAT(valuesOf(stretched, "shear2"), Each(near(0)));
}

TEST(Comparison, OfRodsWithoutFramesIsTheirDistanceAlone)
{
    Configuration reference = oneRod(1), other = oneRod(2);
    other.rods[0].hasFrames = false;
    addComparison(other, reference);
    ASSERT_EQ(other.rods[0].scalars.size(), 1u);
    EXPECT_EQ(other.rods[0].scalars[0].name, "reference_distance");
}

TEST(Comparison, LeavesOutWhatHasNoCounterpartAndSaysSo)
{
    const Configuration reference = oneRod(1);
    Configuration more = oneRod(1);
    more.rods.push_back(more.rods[0]);
    EXPECT_EQ(addComparison(more, reference),
              "rod 2: found nothing of as many points in the reference, not compared");
    EXPECT_FALSE(more.rods[0].scalars.empty());
    EXPECT_THAT(more.rods[1].scalars, IsEmpty());
    Configuration shorter = oneRod(1);
    shorter.rods[0].points.pop_back();
    shorter.rods[0].rotations.pop_back();
    EXPECT_NE(addComparison(shorter, reference), "");
    EXPECT_THAT(shorter.rods[0].scalars, IsEmpty());
}

TEST(Comparison, KeepsWhatAFileBringsUnderTheSameName)
{
    Configuration data = oneRod(1);
    data.rods[0].scalars.push_back({"extension", std::vector<double>(30, 42)});
    addComparison(data, oneRod(1));
    EXPECT_THAT(valuesOf(data, "extension"), Each(42));
}

TEST(Comparison, OfDnaAndBirodsIsThatOfTheirPairsAndAverages)
{
    Configuration data;
    const auto rotations = parallelTransport(oneRod(3).rods[0].points);
    const auto points = oneRod(3).rods[0].points;
    Dna dna;
    dna.bases = std::string(points.size(), 'A');
    dna.pairPoints = dna.points1 = dna.points2 = points;
    dna.pairRotations = dna.rotations1 = dna.rotations2 = rotations;
    data.dnas = {dna};
    Birod birod;
    birod.points = birod.points1 = birod.points2 = points;
    birod.rotations = birod.rotations1 = birod.rotations2 = rotations;
    data.birods = {birod};
    const Configuration reference = data;
    addComparison(data, reference);
    const auto tracks = tracksOf(data);
    EXPECT_THAT(*findScalar(tracks[0], "reference_distance"), Each(near(0)));
    EXPECT_THAT(*findScalar(tracks[0], "extension"), testing::SizeIs(30));
    EXPECT_FALSE(findScalar(tracks[1], "reference_distance")) << "a strand";
    EXPECT_THAT(*findScalar(tracks[3], "reference_rotation"), Each(near(0, 1e-5)));
    EXPECT_FALSE(findScalar(tracks[3], "extension")) << "of pairs";
}

TEST(ComparedSeries, IsComparedWithItsFirstFrameOrAnother)
{
    const auto frames = [] {
        return std::make_unique<MemorySeries>(std::vector<Configuration>{oneRod(1), oneRod(2)});
    };
    ComparedSeries own(frames(), {});
    EXPECT_THAT(valuesOf(*own.load(0).configuration, "reference_distance"), Each(near(0)));
    const auto second = valuesOf(*own.load(1).configuration, "reference_distance");
    EXPECT_GT(second[0], 0.01);
    ComparedSeries other(frames(), oneRod(2));
    EXPECT_THAT(valuesOf(*other.load(1).configuration, "reference_distance"), Each(near(0)));
    ComparedSeries different(frames(), Configuration{{oneRod(4).rods[0], oneRod(4).rods[0]}});
    EXPECT_THAT(different.load(0).notices, IsEmpty()) << "more in the reference is no fault";
}

TEST(ComparedSeries, AllFramesHaveOneReference)
{
    const auto frames = [] {
        return std::make_unique<MemorySeries>(std::vector<Configuration>{oneRod(1), oneRod(2)});
    };
    for (const bool isOwn : {true, false}) {
        ComparedSeries series(frames(), isOwn ? std::nullopt : std::optional(oneRod(3)));
        const auto second = series.load(1).configuration->reference;
        const auto first = series.load(0).configuration->reference;
        ASSERT_TRUE(first);
        EXPECT_EQ(first, second);
        const std::vector<Vector> expected = oneRod(isOwn ? 1 : 3).rods[0].points;
        ASSERT_EQ(first->rods.at(0).points.size(), expected.size());
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ((first->rods[0].points[i] - expected[i]).getNorm(), 0);
    }
}

} // namespace strandview
