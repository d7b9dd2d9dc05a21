// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/Measurement.h"

#include <random>

#include <gtest/gtest.h>

namespace strandview {

namespace {

MeasuredPlace place(const std::string& kind, std::size_t number)
{
    MeasuredPlace made;
    made.kind = kind;
    made.number = number;
    return made;
}

std::vector<MeasuredPlace> examples()
{
    MeasuredPlace rod = place("rod", 0), between = place("birod", 1), pair = place("DNA", 0),
                  backbone = place("DNA", 2), arrow = place("arrow", 0), point;
    rod.index = 10;
    between.index = 4.25;
    between.strand = 1;
    pair.index = 11;
    backbone.index = 0;
    backbone.strand = 2;
    backbone.isOnBackbone = true;
    arrow.point = {0.1, 2, -3e-7};
    point.point = {1.0 / 3, 1e300, -0.5};
    return {rod, between, pair, backbone, place("marker", 2), arrow, point};
}

TEST(MeasuredPlace, IsWrittenWithLinesFrom0AndPairsAndThingsFrom1)
{
    const auto all = examples();
    EXPECT_EQ(textOf(all[0]), "rod 1:10");
    EXPECT_EQ(textOf(all[1]), "birod 2 strand 1:4.25");
    EXPECT_EQ(textOf(all[2]), "DNA 1:12");
    EXPECT_EQ(textOf(all[3]), "DNA 3 backbone 2:1");
    EXPECT_EQ(textOf(all[4]), "marker 3");
    EXPECT_EQ(textOf(all[5]), "arrow 1 at 0.1 2 -3e-07");
}

TEST(MeasuredPlace, IsReadAsItWasWritten)
{
    for (const MeasuredPlace& one : examples()) {
        const auto again = parsePlace(textOf(one));
        ASSERT_TRUE(again) << textOf(one);
        EXPECT_TRUE(*again == one) << textOf(one);
    }
    std::mt19937 random(1);
    std::uniform_real_distribution<double> index(0, 1000);
    for (int i = 0; i < 200; ++i) {
        MeasuredPlace one = place("rod", std::size_t(i));
        one.index = index(random);
        EXPECT_TRUE(parsePlace(textOf(one)) == one) << textOf(one);
    }
}

TEST(MeasuredPlace, IsReadInLettersOfAnySizeAndWithBlanks)
{
    EXPECT_TRUE(parsePlace(" dna 1:12") == examples()[2]);
    EXPECT_TRUE(parsePlace("Rod  1:10") == examples()[0]);
}

TEST(MeasuredPlace, OfNoPlaceIsNothing)
{
    for (const char* text : {"",
                             "rod",
                             "rod 0:1",
                             "rod 1",
                             "rod 1:",
                             "rod 1:-1",
                             "rod 1:x",
                             "DNA 1:0",
                             "rod x:1",
                             "worm 1:1",
                             "rod 1 strand 1:2",
                             "DNA 1 strand 3:2",
                             "birod 1 backbone 1:2",
                             "DNA 1 backbone 1:3.5",
                             "marker 1:2",
                             "point",
                             "point at 1 2",
                             "point at 1 2 3 4",
                             "rod 1:1 2",
                             "rod 1:nan",
                             "point:1"})
        EXPECT_FALSE(parsePlace(text)) << text;
}

TEST(Measurement, IsReadAsItWasWritten)
{
    const auto all = examples();
    for (const MeasureKind kind :
         {MeasureKind::DISTANCE, MeasureKind::ARC_LENGTH, MeasureKind::ROTATION, MeasureKind::ANGLE,
          MeasureKind::DIHEDRAL}) {
        Measurement one;
        one.kind = kind;
        one.places.assign(all.begin(), all.begin() + std::ptrdiff_t(placesOf(kind)));
        const auto again = parseMeasurement(textOf(one));
        ASSERT_TRUE(again) << textOf(one);
        EXPECT_TRUE(*again == one) << textOf(one);
        EXPECT_EQ(parseMeasureKind(nameOf(kind)), kind);
    }
}

TEST(Measurement, WithoutAKindIsTheUsualOneOfSoManyPlaces)
{
    EXPECT_EQ(parseMeasurement("rod 1:10,rod 1:40")->kind, MeasureKind::DISTANCE);
    EXPECT_EQ(parseMeasurement("rod 1:1,rod 1:2,rod 1:3")->kind, MeasureKind::ANGLE);
    EXPECT_EQ(parseMeasurement("rod 1:1,rod 1:2,rod 1:3,rod 1:4")->kind, MeasureKind::DIHEDRAL);
    EXPECT_EQ(textOf(*parseMeasurement("rod 1:10,rod 1:40")), "distance rod 1:10,rod 1:40");
}

TEST(Measurement, OfAnotherNumberOfPlacesIsNothing)
{
    for (const char* text :
         {"", "rod 1:1", "rod 1:1,", "angle rod 1:1,rod 1:2", "length rod 1:1,rod 1:2",
          "distance rod 1:1,rod 1:2,rod 1:3", "rod 1:1,rod 1:2,rod 1:3,rod 1:4,rod 1:5"})
        EXPECT_FALSE(parseMeasurement(text)) << text;
}

TEST(Measurement, IsReadWithItsName)
{
    Measurement one = *parseMeasurement("angle rod 1:1,rod 1:2,rod 1:3");
    EXPECT_EQ(namedTextOf(one), textOf(one));
    EXPECT_TRUE(*parseNamedMeasurement(namedTextOf(one)) == one);
    for (const char* name : {"arm", "as is", " as ", "a, \"b\"", "groove of DNA 1:3"}) {
        one.name = name;
        EXPECT_TRUE(parseNamedMeasurement(namedTextOf(one)) == one) << name;
    }
    EXPECT_EQ(namedTextOf(*parseNamedMeasurement("rod 1:1,rod 1:2 as arm")),
              "distance rod 1:1,rod 1:2 as arm");
    for (const char* text : {"rod 1:1,rod 1:2 as ", "rod 1:1 as arm", " as arm"})
        EXPECT_FALSE(parseNamedMeasurement(text)) << text;
}

TEST(Measurement, ThatIsHiddenIsNotAmongThoseThatAreShown)
{
    std::vector<Measurement> all(3, *parseMeasurement("rod 1:1,rod 1:2"));
    all[1].isShown = false;
    all[2].name = "last";
    EXPECT_EQ(shownOf(all), (std::vector<Measurement>{all[0], all[2]}));
}

TEST(Measurement, IsAnotherIfAnythingOfItIs)
{
    const Measurement one = *parseMeasurement("rod 1:1,rod 1:2");
    EXPECT_TRUE(one == one);
    Measurement other = one;
    other.name = "groove";
    EXPECT_TRUE(other != one);
    other = one;
    other.isShown = false;
    EXPECT_TRUE(other != one);
    other = one;
    other.kind = MeasureKind::ARC_LENGTH;
    EXPECT_TRUE(other != one);
    other = one;
    other.places[1].index = 3;
    EXPECT_TRUE(other != one);
}

} // namespace

} // namespace strandview
