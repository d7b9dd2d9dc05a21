// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Colouring.h"

#include <cmath>
#include <random>

#include <Inventor/SbColor.h>
#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/comparison.h>
#include <strandview/analysis/parallelTransport.h>
#include <strandview/analysis/scalars.h>
#include <strandview/analysis/stepParameters.h>
#include <strandview/analysis/superpose.h>

#include "request/conversions.h"
#include "scene/Progress.h"
#include "support/initialiseSceneOnce.h"

namespace strandview {

using algebra3d::Vector3;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const double NONE = std::nan("");

Rod rodThrough(const std::vector<Vector3<double>>& points)
{
    Rod rod;
    rod.origin = "rod.txt:1: rod 1";
    rod.points = points;
    rod.rotations = parallelTransport(points);
    return rod;
}

// Along z, with one scalar k.
Rod straightRod(const std::vector<double>& values)
{
    std::vector<Vector3<double>> points;
    for (std::size_t i = 0; i < values.size(); ++i)
        points.emplace_back(0, 0, i);
    Rod rod = rodThrough(points);
    rod.scalars.push_back({"k", values});
    return rod;
}

// Once around, in a plane tilted about x.
Rod circle(int edges, double radius, double tilt)
{
    std::vector<Vector3<double>> points;
    for (int i = 0; i <= edges; ++i) {
        const double a = 2 * std::acos(-1.0) * i / edges;
        points.emplace_back(radius * std::cos(a), radius * std::cos(tilt) * std::sin(a),
                            radius * std::sin(tilt) * std::sin(a));
    }
    return rodThrough(points);
}

class ColouringTest : public testing::Test
{
protected:
    std::optional<Colouring> make(const std::vector<Rod>& rods, const std::string& name = "k")
    {
        options.colourBy = name;
        report = {};
        return makeColouring(options, {rods}, report);
    }

    Options options;
    ReadReport report;
};

TEST_F(ColouringTest, PlacesTheValuesBetweenTheLeastAndTheGreatestOfAllRods)
{
    const auto made = make({straightRod({1, 2}), straightRod({3, 5})});
    ASSERT_TRUE(made) << report.error;
    EXPECT_EQ(made->min, 1);
    EXPECT_EQ(made->max, 5);
    EXPECT_THAT(made->places, ElementsAre(ElementsAre(0, 0.25), ElementsAre(0.5, 1)));
    EXPECT_EQ(made->constant, "");
    EXPECT_FALSE(made->isBelow || made->isAbove || made->isMissing);
    EXPECT_THAT(report.notices, IsEmpty());
}

TEST_F(ColouringTest, AGivenRangeIsTakenAndKnowsWhatLiesBeyond)
{
    options.rangeMin = 2;
    options.rangeMax = 4;
    const auto made = make({straightRod({1, 2, 4})});
    ASSERT_TRUE(made);
    EXPECT_THAT(made->places, ElementsAre(ElementsAre(-0.5, 0, 1)));
    EXPECT_TRUE(made->isBelow);
    EXPECT_FALSE(made->isAbove);
    EXPECT_TRUE(make({straightRod({2, 3, 5})})->isAbove);
}

// Stops when it was asked so often.
class AskedProgress : public Progress
{
public:
    explicit AskedProgress(std::size_t most) : atMost(most) {}
    bool isStopped() const override { return ++asked > atMost; }

    mutable std::size_t asked = 0;

private:
    std::size_t atMost;
};

TEST_F(ColouringTest, AsksOnItsWayAlongARodWhetherToGoOn)
{
    options.colourBy = "writhe_density";
    const std::size_t edges = 4000;
    const Configuration data{{circle(int(edges), 1, 0)}};
    const AskedProgress patient(1'000'000);
    ASSERT_TRUE(makeColouring(options, data, report, nullptr, patient)) << report.error;
    EXPECT_GT(patient.asked, edges / 20) << "by one of sixteen threads at least";
    const AskedProgress stopped(20);
    EXPECT_FALSE(makeColouring(options, data, report, nullptr, stopped));
    EXPECT_EQ(report.error, "colouring was stopped");
}

// A polygon that winds to the right about x as far as it winds to the left, and on for `more`
// points.
Rod woundBothWays(int more)
{
    const int half = 40;
    std::vector<Vector3<double>> points;
    double turned = 0;
    for (int i = 0; i < 2 * half + more; ++i) {
        points.emplace_back(0.1 * i, std::cos(turned), std::sin(turned));
        turned += i < half ? 0.2 : -0.1;
    }
    return rodThrough(points);
}

Colour colourAt(const Colouring& colouring, double place)
{
    ColourMapper::Colour colour;
    colouring.ramp.getColour(place, colour);
    return {float(colour.x), float(colour.y), float(colour.z)};
}

void expectColours(const Colouring& made, const ColourMap& expected)
{
    const auto expectSame = [&](double place, const Colour& colour) {
        const Colour found = colourAt(made, place);
        EXPECT_NEAR(found.red, colour.red, 1e-6) << place;
        EXPECT_NEAR(found.green, colour.green, 1e-6) << place;
        EXPECT_NEAR(found.blue, colour.blue, 1e-6) << place;
    };
    for (std::size_t i = 0; i < expected.colours.size(); ++i)
        expectSame(double(i) / double(expected.colours.size() - 1), expected.colours[i]);
}

TEST_F(ColouringTest, WhatCanBeNegativeHasADivergingMapAndAllElseASequentialOne)
{
    const Rod rod = woundBothWays(0);
    for (const std::string name : {"torsion", "twist", "kappa1", "writhe_density"}) {
        const auto made = make({rod}, name);
        ASSERT_TRUE(made) << report.error;
        expectColours(*made, *findColourMap("coolwarm"));
    }
    for (const std::string name : {"arclength", "curvature"}) {
        const auto made = make({rod}, name);
        ASSERT_TRUE(made) << report.error;
        expectColours(*made, *findColourMap("viridis"));
    }
    expectColours(*make({straightRod({-1, 1})}), *findColourMap("viridis"));
    options.colours = ColourMap{{{1, 0, 0}, {0, 0, 1}}};
    expectColours(*make({rod}, "torsion"), *options.colours);
}

TEST_F(ColouringTest, AColumnOfTheNameOfWhatCanBeNegativeIsAColumnLikeAnyOther)
{
    Rod rod = straightRod({-1, 3});
    rod.scalars.front().name = "twist";
    const auto made = make({rod}, "twist");
    ASSERT_TRUE(made) << report.error;
    EXPECT_EQ(made->min, -1);
    expectColours(*made, *findColourMap("viridis"));
}

TEST_F(ColouringTest, WhatAComparisonAddsHasItsUnitAndItsSigns)
{
    Rod rod = straightRod({1, 3});
    rod.scalars.front().name = "reference_rotation";
    EXPECT_EQ(make({rod}, "reference_rotation")->unit, "") << "a file's own";
    options.compare = "first";
    EXPECT_EQ(make({rod}, "reference_rotation")->unit, "°");
    expectColours(*make({rod}, "reference_rotation"), *findColourMap("viridis"));
    rod.scalars.front().name = "shear1";
    const auto made = make({rod}, "shear1");
    EXPECT_EQ(made->unit, "");
    EXPECT_EQ(made->min, -3);
    expectColours(*made, *findColourMap("coolwarm"));
}

TEST_F(ColouringTest, ASymmetricRangeReachesAsFarAboveZeroAsBelow)
{
    options.symmetricRange = true;
    for (const std::vector<double>& values :
         {std::vector<double>{-1, 3}, {-3, 1}, {2, 3}, {-3, -2}}) {
        const auto made = make({straightRod(values)});
        ASSERT_TRUE(made) << report.error;
        EXPECT_EQ(made->min, -3);
        EXPECT_EQ(made->max, 3);
    }
}

TEST_F(ColouringTest, TheMiddleOfADivergingMapIsZeroWhereThereIsSomethingOnEitherSideOfIt)
{
    const auto torsion = make({woundBothWays(50)}, "torsion");
    ASSERT_TRUE(torsion) << report.error;
    EXPECT_GT(torsion->max, 0);
    EXPECT_EQ(torsion->min, -torsion->max);

    options.colours = findColourMap("VIK_r");
    const auto made = make({straightRod({-1, 0, 4})});
    ASSERT_TRUE(made);
    EXPECT_EQ(made->min, -4);
    EXPECT_EQ(made->max, 4);
    EXPECT_THAT(made->places, ElementsAre(ElementsAre(0.375, 0.5, 1)));
    EXPECT_EQ(make({straightRod({-9, 0, 4})})->max, 9);

    options.colours = findColourMap("viridis");
    EXPECT_EQ(make({straightRod({-1, 0, 4})})->min, -1) << "it has no middle";
}

TEST_F(ColouringTest, ADivergingMapOfValuesOfOneSignIsAsLongAsTheirRange)
{
    options.colours = findColourMap("vik");
    for (const auto& values : {std::vector<double>{1, 4}, {0, 4}, {-4e-10, 4}, {-4, 0}, {-4, -1}}) {
        const auto made = make({straightRod(values)});
        ASSERT_TRUE(made);
        EXPECT_EQ(made->min, values.front());
        EXPECT_EQ(made->max, values.back());
    }
}

TEST_F(ColouringTest, TheMiddleIsZeroOfWhatIsSignedByItsNatureWhateverItsSigns)
{
    std::vector<Vector3<double>> points; // of a right-handed screw that gets steeper
    for (int i = 0; i < 30; ++i)
        points.emplace_back(0.1 * i + 0.01 * i * i, std::cos(0.2 * i), std::sin(0.2 * i));
    const Rod rod = rodThrough(points);
    const auto torsion = make({rod}, "torsion");
    ASSERT_TRUE(torsion) << report.error;
    EXPECT_EQ(torsion->constant, "");
    EXPECT_EQ(torsion->min, -torsion->max);
    for (const double place : torsion->places[0])
        EXPECT_EQ(place > 0.5, torsion->places[0][0] > 0.5) << "one sign";
    options.colours = findColourMap("viridis");
    const auto plain = make({rod}, "torsion");
    EXPECT_NE(plain->min, -plain->max);
}

TEST_F(ColouringTest, AGivenRangeOfADivergingMapHolds)
{
    options.colours = findColourMap("vik");
    options.rangeMin = -1;
    EXPECT_EQ(make({straightRod({-2, 4})})->max, 4);
    options.rangeMax = 3;
    const auto made = make({straightRod({-2, 4})});
    EXPECT_EQ(made->min, -1);
    EXPECT_EQ(made->max, 3);
}

TEST_F(ColouringTest, TheOtherFramesTellTheSignsToo)
{
    options.colourBy = "k";
    options.colours = findColourMap("vik");
    const ValueSummary others = summarise({{straightRod({-5, -3})}}, "k", 1, {});
    const auto made = makeColouring(options, {{straightRod({1, 2})}}, report, &others);
    ASSERT_TRUE(made) << report.error;
    EXPECT_EQ(made->min, -5);
    EXPECT_EQ(made->max, 5);
}

TEST_F(ColouringTest, ValuesThatDifferByRoundingAloneAreAConstant)
{
    const auto made = make({straightRod({0.3, 0.30000000000000004, 0.3})});
    ASSERT_TRUE(made);
    EXPECT_EQ(made->constant, "0.3");
    EXPECT_THAT(made->places, ElementsAre(ElementsAre(0.5, 0.5, 0.5)));
    EXPECT_THAT(report.notices,
                ElementsAre("--colour-by k: found 0.3 everywhere, shown as one colour"));
    EXPECT_EQ(make({straightRod({-1e17, -1e17 - 16})})->constant, "−1×10¹⁷");
    EXPECT_EQ(make({straightRod({0, 0})})->constant, "0");
    EXPECT_EQ(make({straightRod({1e-310, 3e-310})})->constant, "2×10⁻³¹⁰");
}

TEST_F(ColouringTest, ValuesThatDifferByMoreAreNoConstant)
{
    EXPECT_EQ(make({straightRod({1, 1.00000001})})->constant, "");
    EXPECT_EQ(make({straightRod({0, 1e-200})})->constant, "");
    options.rangeMin = 0;
    EXPECT_EQ(make({straightRod({0.3, 0.3})})->constant, "") << "a range is taken as it is";
    EXPECT_THAT(report.notices, IsEmpty());
}

TEST_F(ColouringTest, ACircleHasOneCurvatureNoTorsionAndNoTwistHoweverItLies)
{
    for (const int edges : {12, 1000, 50000}) {
        for (const double tilt : {0.0, 0.7}) {
            SCOPED_TRACE(testing::Message() << edges << " edges, tilt " << tilt);
            const Rod rod = circle(edges, 2, tilt);
            EXPECT_EQ(make({rod}, "curvature")->constant, "0.5");
            EXPECT_EQ(make({rod}, "torsion")->constant, "0");
            EXPECT_EQ(make({rod}, "twist")->constant, "0");
            EXPECT_THAT(report.notices, SizeIs(1));
        }
    }
}

TEST_F(ColouringTest, AStraightRodHasNoneOfThemWhateverItsDirection)
{
    for (const int count : {2, 3, 4, 1000}) {
        std::vector<Vector3<double>> points;
        for (int i = 0; i < count; ++i)
            points.emplace_back(0.1 * i, 0.3 * i, 0.7 * i);
        for (const char* name : {"curvature", "torsion", "twist"}) {
            SCOPED_TRACE(testing::Message() << name << " of " << count);
            EXPECT_EQ(make({rodThrough(points)}, name)->constant, "0");
        }
    }
}

TEST_F(ColouringTest, CirclesOfTwoSizesHaveTwoCurvatures)
{
    EXPECT_EQ(make({circle(100, 1, 0), circle(100, 1.000001, 0)}, "curvature")->constant, "");
    EXPECT_EQ(make({circle(100, 1, 0), circle(100, 1, 1)}, "curvature")->constant, "1");
}

TEST_F(ColouringTest, TellsHowManyValuesAreNoNumbers)
{
    const auto made = make({straightRod({1, NONE, 3, NONE})});
    ASSERT_TRUE(made);
    EXPECT_TRUE(made->isMissing);
    EXPECT_EQ(made->max, 3);
    EXPECT_TRUE(std::isnan(made->places[0][1]));
    EXPECT_THAT(report.notices,
                ElementsAre("--colour-by k: found 2 values that are no number, shown in grey"));
    EXPECT_FALSE(make({straightRod({NONE, NONE})}));
    EXPECT_EQ(report.error, "--colour-by k: found no value that is a number, expected one");
}

TEST_F(ColouringTest, RodsWithoutTheScalarAreLeftOutAndCounted)
{
    Rod plain = straightRod({1, 2});
    plain.scalars.clear();
    const auto made = make({plain, straightRod({3, 4}), plain});
    ASSERT_TRUE(made) << report.error;
    EXPECT_THAT(made->places, ElementsAre(IsEmpty(), ElementsAre(0, 1), IsEmpty()));
    EXPECT_THAT(
        report.notices,
        ElementsAre("--colour-by k: found 2 rods of 3 without it, shown in their own colours"));

    EXPECT_FALSE(make({plain, straightRod({3, 4})}, "speed"));
    EXPECT_EQ(report.error,
              "rod.txt:1: rod 1: found no scalar 'speed', expected one of k, "
              "arclength, curvature, torsion, twist, kappa1, kappa2, kappa3, writhe_density");
}

TEST_F(ColouringTest, SaysWhichColoursHaveNoEffect)
{
    options.tubeColour = Colour{1, 0, 0};
    make({straightRod({1, 2})});
    EXPECT_THAT(report.notices, ElementsAre("--colour-by k: leaves --tube-colour without effect"));
    options.ribbonColour = Colour{1, 0, 0};
    make({straightRod({1, 2})});
    EXPECT_THAT(report.notices, ElementsAre("--colour-by k: leaves --tube-colour and "
                                            "--ribbon-colour without effect"));
    Rod plain = straightRod({1, 2});
    plain.scalars.clear();
    make({straightRod({1, 2}), plain});
    EXPECT_THAT(report.notices, ElementsAre(HasSubstr("1 rod of 2 without it")))
        << "they have an effect there";
}

// Rows, coloured on a ramp from black to white.

std::vector<float> levelsOf(const std::vector<double>& places, const std::vector<double>& at)
{
    const ColourMapper ramp(0, 1, {ColourMapper::Colour(0, 0, 0), ColourMapper::Colour(1, 1, 1)});
    std::vector<double> arcLengths;
    for (std::size_t i = 0; i < places.size(); ++i)
        arcLengths.push_back(double(i));
    std::vector<SbColor> colours(at.size());
    colourRows(PlaceColours{ramp, {}, {}}, arcLengths, places, at, colours.data());
    std::vector<float> levels;
    for (const SbColor& colour : colours)
        levels.push_back(colour[1]);
    return levels;
}

TEST_F(ColouringTest, OfAnotherFrameHasItsValuesOnTheSameRange)
{
    const auto first = make({straightRod({1, 2, 5})});
    ASSERT_TRUE(first) << report.error;
    const Colouring next = followColouring(
        *first,
        {{straightRod({3, 0}), rodThrough({{0, 0, 0}, {0, 0, 1}}), straightRod({NONE, 9})}});
    EXPECT_EQ(next.name, "k");
    EXPECT_EQ(next.min, 1);
    EXPECT_EQ(next.max, 5);
    ASSERT_THAT(next.places, SizeIs(3));
    EXPECT_THAT(next.places[0], ElementsAre(0.5, -0.25));
    EXPECT_THAT(next.places[1], IsEmpty());
    EXPECT_TRUE(std::isnan(next.places[2][0]));
    EXPECT_EQ(next.places[2][1], 2);
    EXPECT_TRUE(next.isBelow && next.isAbove && next.isMissing);
    // And back, with nothing left of it.
    const Colouring again = followColouring(next, {{straightRod({1, 2, 5})}});
    EXPECT_EQ(again.places, first->places);
    EXPECT_FALSE(again.isBelow || again.isAbove || again.isMissing);
}

TEST_F(ColouringTest, OfAnotherFrameOfAConstantTellsWhatIsNoMoreThatNumber)
{
    const auto first = make({straightRod({2, 2, 2 + 1e-10})});
    ASSERT_TRUE(first) << report.error;
    ASSERT_EQ(first->constant, "2");
    const Colouring next = followColouring(*first, {{straightRod({2, 2 + 1e-9, 3, 1, NONE})}});
    EXPECT_EQ(next.constant, "2");
    ASSERT_THAT(next.places, SizeIs(1));
    EXPECT_EQ(next.places[0][0], 0.5);
    EXPECT_EQ(next.places[0][1], 0.5);
    EXPECT_GT(next.places[0][2], 1);
    EXPECT_LT(next.places[0][3], 0);
    EXPECT_TRUE(std::isnan(next.places[0][4]));
    EXPECT_TRUE(next.isBelow && next.isAbove && next.isMissing);
}

TEST_F(ColouringTest, OfAnotherFrameOfAConstantForgivesTheRoundingOfBoth)
{
    // Of a circle that is written with few decimals the curvature is one number but for rounding.
    const auto first = make({circle(60, 2, 0.3)}, "curvature");
    ASSERT_TRUE(first) << report.error;
    ASSERT_NE(first->constant, "");
    const Colouring turned = followColouring(*first, {{circle(60, 2, 1.1)}});
    EXPECT_THAT(turned.places[0], testing::Each(0.5));
    const Colouring smaller = followColouring(*first, {{circle(60, 1.9, 1.1)}});
    EXPECT_THAT(smaller.places[0], testing::Each(testing::Gt(1)));
}

// Three pairs, the steps of which roll by these angles.
Dna rolled(double first, double second)
{
    Dna dna;
    dna.origin = "dna.par:1: DNA 1";
    PlacedFrame pair;
    for (const double roll : {first, second, 0.0}) {
        dna.bases += 'A';
        for (auto* points : {&dna.pairPoints, &dna.points1, &dna.points2})
            points->push_back(pair.point);
        for (auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
            rotations->push_back(pair.rotation);
        pair = nextPair(pair, {0, 0, 3.4, 0, roll, 34});
    }
    return dna;
}

TEST_F(ColouringTest, OfDnaIsByItsPairsAndTheLastOneHasTheLastStep)
{
    Configuration data;
    data.dnas = {rolled(2, 7), rolled(12, -3)};
    options.colourBy = "roll";
    options.rangeMin = -3;
    options.rangeMax = 12;
    const auto made = makeColouring(options, data, report);
    ASSERT_TRUE(made) << report.error;
    EXPECT_THAT(report.notices, IsEmpty());
    const auto near = [](double value) { return testing::DoubleNear(value, 1e-12); };
    EXPECT_THAT(made->ofDna(0), ElementsAre(near(1 / 3.0), near(2 / 3.0), near(2 / 3.0)));
    EXPECT_THAT(made->ofDna(1), ElementsAre(near(1), near(0), near(0)));
    EXPECT_EQ(followColouring(*made, {{}, {}, {rolled(12, 2)}}).ofDna(0).size(), 3u);
}

TEST_F(ColouringTest, OfDnaHasTheUnitAndTheSignOfWhatItIsThere)
{
    const auto ofDna = [this](const std::string& name) {
        Configuration data;
        data.rods = {woundBothWays(0)};
        data.dnas = {rolled(2, 7), rolled(12, -3)};
        options.colourBy = name;
        const auto made = makeColouring(options, data, report);
        EXPECT_TRUE(made) << report.error;
        return made.value_or(Colouring());
    };
    const Colouring roll = ofDna("roll");
    EXPECT_EQ(roll.unit, "°");
    EXPECT_NEAR(roll.max, 12, 1e-9);
    EXPECT_EQ(roll.min, -roll.max);
    expectColours(roll, *findColourMap("coolwarm"));
    EXPECT_EQ(ofDna("rise").unit, "Å");
    EXPECT_EQ(ofDna("twist").unit, "°") << "no density, as of a rod";
    expectColours(ofDna("twist"), *findColourMap("viridis"));
    EXPECT_EQ(ofDna("torsion").unit, "") << "nobody knows in which unit the points are";
}

TEST_F(ColouringTest, ABackboneHasThatOfItsPairs)
{
    Configuration data;
    data.dnas = {rolled(2, 7)};
    data.dnas[0].molecule = 1;
    Rod backbone = rodThrough({{9, 0, 0.5}, {0, 9, 3}, {0, 9, 9}, {0, 30, 9}});
    backbone.isBackbone = true;
    backbone.molecule = 1;
    Rod other = backbone;
    other.molecule = 2;
    data.rods = {backbone, other};
    const auto near = [](double place) { return testing::DoubleNear(place, 1e-9); };
    options.rangeMin = 2;
    options.rangeMax = 7;
    options.colourBy = "roll";
    const auto made = makeColouring(options, data, report);
    ASSERT_TRUE(made) << report.error;
    EXPECT_THAT(made->ofRod(0),
                ElementsAre(near(0), near(1), near(1), testing::NanSensitiveDoubleEq(NONE)));
    EXPECT_THAT(made->ofRod(1), IsEmpty());
}

TEST_F(ColouringTest, RoundingOfPairsIsThatOfTheirBackboneToo)
{
    Configuration data;
    data.dnas = {rolled(1e-12, -1e-12)};
    data.dnas[0].molecule = 1;
    Rod backbone = rodThrough({{9, 0, 0.5}, {0, 9, 3}, {0, 9, 9}});
    backbone.isBackbone = true;
    backbone.molecule = 1;
    data.rods = {backbone};
    options.colourBy = "roll";
    const auto made = makeColouring(options, data, report);
    ASSERT_TRUE(made) << report.error;
    EXPECT_THAT(report.notices, testing::Contains(HasSubstr("found 0 everywhere")));
    EXPECT_THAT(followColouring(*made, data).ofRod(0), ElementsAre(0.5, 0.5, 0.5));
}

TEST_F(ColouringTest, OfABirodWhoseAverageAloneHasTheScalarIsThatOfAllThree)
{
    Configuration data;
    Birod birod;
    birod.points = {{0, 0, 0}, {0, 0, 1}};
    birod.points1 = birod.points2 = birod.points;
    birod.rotations = birod.rotations1 = birod.rotations2 = parallelTransport(birod.points);
    birod.scalars = {{"reference_distance", {1, 3}}};
    data.birods = {birod};
    options.colourBy = "reference_distance";
    const auto made = makeColouring(options, data, report);
    ASSERT_TRUE(made) << report.error;
    for (std::size_t curve = 0; curve < 3; ++curve)
        EXPECT_THAT(made->ofBirod(0, curve), ElementsAre(0, 1)) << curve;
}

TEST_F(ColouringTest, OfDataThatWereOnlyMovedTheDistanceFromTheReferenceIsNone)
{
    Configuration data;
    data.rods = {rodThrough({{0, 0, 0}, {1, 0, 0}, {1, 2, 0}, {4, 2, 5}})};
    const Configuration reference = data;
    move(data, {{5, 6, 7}, algebra3d::about(algebra3d::Vector3<double>(1, 2, 3), 0.7)});
    EXPECT_EQ(addComparison(data, reference), "");
    options.colourBy = "reference_distance";
    EXPECT_THAT(*findScalar(data.rods[0], "reference_distance"), testing::Contains(testing::Gt(0)))
        << "but for rounding";
    ASSERT_TRUE(makeColouring(options, data, report)) << report.error;
    EXPECT_THAT(report.notices, testing::Contains(HasSubstr("found 0 everywhere")));
}

TEST_F(ColouringTest, DnaWithoutTheScalarIsTold)
{
    Configuration data;
    data.dnas = {rolled(0, 0), rolled(0, 0)};
    data.dnas[1].scalars = {{"reference_distance", {1, 2, 3}}};
    options.colourBy = "reference_distance";
    const auto made = makeColouring(options, data, report);
    ASSERT_TRUE(made) << report.error;
    EXPECT_THAT(made->ofDna(0), IsEmpty());
    EXPECT_THAT(report.notices,
                ElementsAre("--colour-by reference_distance: found 1 double strand of 2 without "
                            "it, shown in its own colours"));
}

TEST_F(ColouringTest, OfABirodIsByItsThreeCurves)
{
    Configuration data;
    data.rods = {straightRod({0, 4})};
    Birod birod;
    birod.origin = "ladder.json: birods[0]";
    for (auto* points : {&birod.points, &birod.points1, &birod.points2})
        for (int i = 0; i < 3; ++i)
            points->emplace_back(0, 0, (points == &birod.points ? 1.0 : 2.0) * i);
    birod.rotations = birod.rotations1 = birod.rotations2 = parallelTransport(birod.points);
    data.birods = {birod};
    options.colourBy = "arclength";
    const auto made = makeColouring(options, data, report);
    ASSERT_TRUE(made) << report.error;
    EXPECT_THAT(made->ofRod(0), ElementsAre(0, 0.25));
    EXPECT_THAT(made->ofBirod(0, 0), ElementsAre(0, 0.25, 0.5));
    EXPECT_THAT(made->ofBirod(0, 2), ElementsAre(0, 0.5, 1));
}

TEST_F(ColouringTest, ByTheTwistOfStepsLeavesOutRodsWhoseTwistIsAnotherNumber)
{
    Configuration data;
    data.rods = {straightRod({0, 4})};
    data.dnas = {rolled(0, 0)};
    options.colourBy = "twist";
    const auto made = makeColouring(options, data, report);
    ASSERT_TRUE(made) << report.error;
    EXPECT_THAT(made->ofRod(0), IsEmpty());
    EXPECT_THAT(made->ofDna(0), SizeIs(3));
    EXPECT_THAT(report.notices, testing::Contains(HasSubstr("found 1 rod of 1 without it")));
    data.dnas.clear();
    EXPECT_THAT(makeColouring(options, data, report)->ofRod(0), SizeIs(2));
}

TEST_F(ColouringTest, OfDnaWithoutTheScalarNamesAllThereAre)
{
    Configuration data;
    data.dnas = {rolled(0, 0)};
    options.colourBy = "speed";
    EXPECT_FALSE(makeColouring(options, data, report));
    EXPECT_THAT(report.error, testing::StartsWith("dna.par:1: DNA 1: found no scalar 'speed', "
                                                  "expected one of arclength, curvature"));
    EXPECT_THAT(report.error, HasSubstr("propeller"));
}

TEST_F(ColouringTest, ColoursOfPlacesAreThoseOfTheRampAndGreyWithoutOne)
{
    initialiseSceneOnce();
    Colouring colouring;
    colouring.ramp = ColourMapper(0, 1);
    colouring.ramp.setColours({{0, 0, 0}, {1, 1, 1}});
    const auto colours = coloursOf(colouring, {0, 0.25, NONE, 1});
    ASSERT_THAT(colours, SizeIs(4));
    EXPECT_NEAR(colours[1].green, 0.25, 1e-6);
    EXPECT_EQ(colours[2].green, NO_VALUE_COLOUR.green);
    EXPECT_EQ(colours[3].red, 1);
}

TEST(ColourRows, GoThroughThePlacesOfThePoints)
{
    EXPECT_THAT(levelsOf({0.25, 0.75}, {0, 0.5, 1}), ElementsAre(0.25f, 0.5f, 0.75f));
    // A natural spline through (0, 0), (1, 1), (2, 0) is 11/16 half-way.
    EXPECT_THAT(levelsOf({0, 1, 0}, {0, 0.5, 1, 1.5, 2}), ElementsAre(0, 0.6875f, 1, 0.6875f, 0));
}

TEST(ColourRows, AreGreyNearerToAPointWithoutAPlace)
{
    const float grey = NO_VALUE_COLOUR.green;
    EXPECT_THAT(levelsOf({1, 1, NONE, 0, 0}, {0, 0.5, 1, 1.25, 1.75, 2, 2.25, 2.75, 3, 3.5, 4}),
                ElementsAre(1, 1, 1, 1, grey, grey, grey, 0, 0, 0, 0));
    EXPECT_THAT(levelsOf({NONE, 1, NONE}, {0, 1, 2}), ElementsAre(grey, 1, grey));
    EXPECT_THAT(levelsOf({NONE, 0, 1, 0}, {0, 1, 1.5, 2, 2.5, 3}),
                ElementsAre(grey, 0, 0.6875f, 1, 0.6875f, 0));
    EXPECT_THAT(levelsOf({0.25, 1, NONE}, {0, 0.25, 1, 2}), ElementsAre(0.25f, 0.4375f, 1, grey));
}

TEST_F(ColouringTest, ValuesBeyondTheRangeAndNoNumbersHaveTheColoursThatAreAskedFor)
{
    options.colours = ColourMap{{{0, 0, 0}, {1, 1, 1}}};
    options.rangeMin = 1;
    options.rangeMax = 3;
    const std::vector<double> values{0, 1, 2, 3, 4, NONE};
    const auto usual = make({straightRod(values)});
    ASSERT_TRUE(usual) << report.error;
    std::vector<float> levels;
    for (const Colour& colour : coloursOf(*usual, usual->ofRod(0)))
        levels.push_back(colour.green);
    EXPECT_THAT(levels, ElementsAre(0, 0, 0.5f, 1, 1, NO_VALUE_COLOUR.green));
    EXPECT_THAT(report.notices, ElementsAre(HasSubstr("no number, shown in grey")));

    report.notices.clear();
    options.belowColour = Colour{1, 0.25f, 0};
    options.aboveColour = Colour{0, 0.75f, 1};
    options.nanColour = Colour{0.5f, 0.125f, 0};
    const auto asked = make({straightRod(values)});
    ASSERT_TRUE(asked) << report.error;
    levels.clear();
    for (const Colour& colour : coloursOf(*asked, asked->ofRod(0)))
        levels.push_back(colour.green);
    EXPECT_THAT(levels, ElementsAre(0.25f, 0, 0.5f, 1, 0.75f, 0.125f));
    EXPECT_THAT(report.notices, ElementsAre(HasSubstr("no number, shown in --nan-colour")));
    const Colouring next = followColouring(*asked, {{straightRod({-5, 9})}});
    EXPECT_EQ(next.at(next.ofRod(0)[0]).green, 0.25f) << "in other frames, too";
    EXPECT_EQ(next.at(next.ofRod(0)[1]).green, 0.75f);
}

// Where it is between the points, straight; of the nearest point where one of both has none.
double plainPlace(const std::vector<double>& arcLengths, const std::vector<double>& places,
                  double at)
{
    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
        const double from = arcLengths[i], to = arcLengths[i + 1];
        if (at < from || at >= to)
            continue;
        if (at == from)
            return places[i];
        if (std::isnan(places[i]) || std::isnan(places[i + 1]))
            return to - at < at - from ? places[i + 1] : places[i];
        return places[i] + (places[i + 1] - places[i]) * (at - from) / (to - from);
    }
    return at < arcLengths.front() ? places.front() : places.back();
}

TEST(ColourRows, HaveOtherColoursWhereStraightLinesBetweenThePlacesAreBeyondTheEnds)
{
    const PlaceColours usual{ColourMapper(0, 1, {{0, 0, 0}, {1, 1, 1}}), {}, {}};
    const Colour below{1, 0, 0}, above{0, 0, 1}, none{0, 1, 0};
    std::mt19937 engine(5);
    std::uniform_real_distribution<double> place(-0.5, 1.5), step(0.1, 2);
    int countBelow = 0, countAbove = 0, countNone = 0, countUsual = 0;
    for (int round = 0; round < 200; ++round) {
        std::vector<double> arcLengths{0}, places, at;
        const std::size_t points = 1 + engine() % 8;
        while (arcLengths.size() < points)
            arcLengths.push_back(arcLengths.back() + step(engine));
        for (std::size_t i = 0; i < points; ++i)
            places.push_back(engine() % 5 == 0 ? NONE : place(engine));
        for (std::size_t i = 0; i < points; ++i)
            for (int part = 0; part < (i + 1 < points ? 7 : 1); ++part)
                at.push_back(arcLengths[i] +
                             (part == 0 ? 0 : part * (arcLengths[i + 1] - arcLengths[i]) / 7));
        PlaceColours asked = usual;
        if (round % 3 != 1)
            asked.below = below;
        if (round % 3 != 2)
            asked.above = above;
        asked.none = none;
        std::vector<SbColor> ofAsked(at.size()), ofUsual(at.size());
        colourRows(asked, arcLengths, places, at, ofAsked.data());
        colourRows(usual, arcLengths, places, at, ofUsual.data());
        for (std::size_t row = 0; row < at.size(); ++row) {
            SCOPED_TRACE(testing::Message() << "round " << round << " row " << row);
            const double there = plainPlace(arcLengths, places, at[row]);
            SbColor expected = ofUsual[row];
            if (std::isnan(there))
                expected = toSbColor(none), ++countNone;
            else if (there < 0 && asked.below)
                expected = toSbColor(below), ++countBelow;
            else if (there > 1 && asked.above)
                expected = toSbColor(above), ++countAbove;
            else
                ++countUsual;
            EXPECT_EQ(ofAsked[row], expected);
        }
    }
    for (const int count : {countBelow, countAbove, countNone, countUsual})
        EXPECT_GT(count, 300);
}

// A natural spline through (0, 0), (1, 1), (2, 1), (3, 0) is above 1 in the middle.
TEST(ColourRows, HaveNoOtherColourBetweenPlacesWithinTheEnds)
{
    const PlaceColours colours{ColourMapper(0, 1, {{0, 0, 0}, {1, 1, 1}}), {}, Colour{1, 0, 0}};
    std::vector<SbColor> rows(5);
    colourRows(colours, {0, 1, 2, 3}, {0, 1, 1, 0}, {0, 1, 1.5, 2, 3}, rows.data());
    EXPECT_EQ(rows[2], SbColor(1, 1, 1));
}

TEST(ColourRows, StayOnTheRampHoweverFarBeyondItThePlacesAre)
{
    EXPECT_THAT(levelsOf({-1e6, -1e6, 1e6}, {0, 1, 2}), ElementsAre(0, 0, 1));
}

} // namespace

} // namespace strandview
