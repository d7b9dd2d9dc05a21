// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/JsonReader.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/readText.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNan;

Reading readText(const std::string& text, const ReadOptions& options = {})
{
    return readWith(readJson, text, "rod.json", options);
}

/// A file of one rod, of which the members are given.
std::string fileOfRod(const std::string& rodMembers)
{
    return R"({"strandview": 1, "rods": [{)" + rodMembers + "}]}";
}

Rod rodOf(const std::string& text, const ReadOptions& options = {})
{
    return onlyRod(readText(text, options));
}

} // namespace

TEST(JsonReader, ReadsPointsQuaternionsAndScalars)
{
    const Reading reading = readText(R"({
        "strandview": 1,
        "rods": [
            {"points": [[0, 1, 2.5], [3e0, -4, 5]],
             "quaternions": [[0.6, 0, 0, 0.8], [0, 0, 1, 0]],
             "scalars": {"twist": [1, 2], "Bend": [0.5, -1e300], "10": [7, 8]}},
            {"points": [[0, 0, 0], [0, 0, 1], [0, 0, 2]],
             "quaternions": [[0, 0, 0, 1], [0, 0, 0, 1], [0, 0, 0, 1]]}
        ]
    })");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_THAT(reading.report.notices, IsEmpty());
    ASSERT_EQ(reading.configuration->rods.size(), 2U);

    const Rod& rod = reading.configuration->rods[0];
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 1, 2.5}, {3, -4, 5}}));
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0.6, 0, 0, 0.8}, {0, 0, 1, 0}}));
    ASSERT_EQ(rod.scalars.size(), 3U);
    EXPECT_EQ(rod.scalars[0].name, "twist"); // the file's order
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 2));
    EXPECT_EQ(rod.scalars[1].name, "Bend");
    EXPECT_THAT(rod.scalars[1].values, ElementsAre(0.5, -1e300));
    EXPECT_EQ(rod.scalars[2].name, "10");
    EXPECT_THAT(rod.scalars[2].values, ElementsAre(7, 8));

    EXPECT_EQ(reading.configuration->rods[1].points.size(), 3U);
    EXPECT_THAT(reading.configuration->rods[1].scalars, IsEmpty());
}

TEST(JsonReader, TheOrderOfTheKeysDoesNotMatter)
{
    const Rod rod = rodOf(R"({"rods": [{"scalars": {"s": [1, 2]},
                                        "quaternions": [[0, 0, 1, 0], [0, 0, 0, 1]],
                                        "points": [[0, 0, 0], [1, 0, 0]]}],
                              "strandview": 1})");
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {1, 0, 0}}));
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0, 1, 0}, {0, 0, 0, 1}}));
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 2));
}

TEST(JsonReader, ARodKnowsItsPlaceInTheFile)
{
    const std::vector<Rod> rods = acceptedRods(readText(R"({"strandview": 1, "rods": [
        {"points": [[0, 0, 0], [0, 0, 1]]}, {"points": [[0, 0, 0], [1, 0, 0]]}]})"));
    ASSERT_EQ(rods.size(), 2U);
    EXPECT_EQ(rods[0].origin, "rod.json: rods[0]");
    EXPECT_EQ(rods[1].origin, "rod.json: rods[1]");
}

TEST(JsonReader, ANumberBelowDoubleIsZero)
{
    const Rod rod = rodOf(fileOfRod(R"("points": [[1e-400, 0, 0], [0, -1e-999, 1]])"));
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {0, 0, 1}}));
}

TEST(JsonReader, WithoutQuaternionsMakesTheFramesAndSaysSo)
{
    const Reading reading = readText(fileOfRod(R"("points": [[0, 0, 0], [0, 0, 1]])"));
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_EQ(reading.configuration->rods[0].rotations.size(), 2U);
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.json: 1 rod without frames: made by parallel transport, for a "
                            "ribbon where one is asked for (--ribbon)"));
}

TEST(JsonReader, LeavesOutPointsAtThePlaceOfTheOneBefore)
{
    const Reading reading = readText(fileOfRod(R"("points": [[0, 0, 0], [0, 0, 0], [0, 0, 1]],
                     "quaternions": [[0, 0, 0, 1], [0, 1, 0, 0], [0, 0, 1, 0]],
                     "scalars": {"s": [1, 2, 3]})"));
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Rod& rod = reading.configuration->rods[0];
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {0, 0, 1}}));
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0, 0, 1}, {0, 0, 1, 0}}));
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 3));
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.json: 1 point left out, at the same place as the point before"));
}

TEST(JsonReader, NullAmongTheValuesOfAScalarIsNotANumber)
{
    const Rod rod = rodOf(R"({"rods": [{"points": [[0, 0, 0], [0, 0, 1], [0, 0, 2]],
                                        "scalars": {"s": [1, null, 3]}}], "strandview": 1})");
    ASSERT_EQ(rod.scalars.size(), 1U);
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, IsNan(), 3));
}

TEST(JsonReader, ScalesQuaternionsToUnitLengthWhenAskedTo)
{
    ReadOptions options;
    options.normalise = true;
    const Rod rod = rodOf(fileOfRod(R"("points": [[0, 0, 0], [0, 0, 1]],
                                       "quaternions": [[0, 3, 0, 4], [-2, 0, 0, 0]])"),
                          options);
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0.6, 0, 0.8}, {-1, 0, 0, 0}}));
}

// ---- More than rods

namespace {

/// A file with one member besides the version.
std::string fileWith(const std::string& member) { return "{\"strandview\": 1, " + member + "}"; }

/// Two points along z and their frames, turned by nothing and by a half turn about z.
const std::string pairAlongZ = R"("points": [[0, 0, 0], [0, 0, 1]],
                                  "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0]])";

Configuration acceptedConfiguration(const std::string& text, const ReadOptions& options = {})
{
    const Reading reading = readText(text, options);
    EXPECT_EQ(reading.report.error, "");
    EXPECT_THAT(reading.report.notices, IsEmpty());
    return reading.configuration.value_or(Configuration());
}

} // namespace

TEST(JsonReader, ReadsBirods)
{
    const Configuration configuration = acceptedConfiguration(fileWith(R"("birods": [
        {"average": {"points": [[0, 0, 0], [0, 0, 1]], "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0]]},
         "strand1": {"points": [[1, 0, 0], [1, 0, 1]], "quaternions": [[1, 0, 0, 0], [0, 1, 0, 0]]},
         "strand2": {"quaternions": [[0.6, 0, 0, 0.8], [0, 0.6, 0.8, 0]],
                     "points": [[2, 0, 0], [2, 0, 1]]}},
        {"strand2": {)" + pairAlongZ + R"(}, "average": {)" + pairAlongZ +
                                                                       R"(},
         "strand1": {)" + pairAlongZ + "}}]"));
    ASSERT_EQ(configuration.birods.size(), 2U);
    const Birod& birod = configuration.birods[0];
    EXPECT_EQ(birod.origin, "rod.json: birods[0]");
    EXPECT_EQ(numbersOf(birod.points), (Points{{0, 0, 0}, {0, 0, 1}}));
    EXPECT_EQ(numbersOf(birod.rotations), (Rotations{{0, 0, 0, 1}, {0, 0, 1, 0}}));
    EXPECT_EQ(numbersOf(birod.points1), (Points{{1, 0, 0}, {1, 0, 1}}));
    EXPECT_EQ(numbersOf(birod.rotations1), (Rotations{{1, 0, 0, 0}, {0, 1, 0, 0}}));
    EXPECT_EQ(numbersOf(birod.points2), (Points{{2, 0, 0}, {2, 0, 1}}));
    EXPECT_EQ(numbersOf(birod.rotations2), (Rotations{{0.6, 0, 0, 0.8}, {0, 0.6, 0.8, 0}}));
    EXPECT_EQ(configuration.birods[1].origin, "rod.json: birods[1]");
}

TEST(JsonReader, ReadsDnaWithItsBasesInCapitals)
{
    const Configuration configuration = acceptedConfiguration(fileWith(R"("dna": [
        {"strand2": {"points": [[2, 0, 0], [2, 0, 1]], "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0]]},
         "pairs": {"points": [[0, 0, 0], [0, 0, 1]], "quaternions": [[0, 0, 0.6, 0.8], [0, 0, 1, 0]]},
         "strand1": {"points": [[1, 0, 0], [1, 0, 1]], "quaternions": [[1, 0, 0, 0], [0, 1, 0, 0]]},
         "sequence": "gT"},
        {"sequence": "A", "pairs": {"points": [[9, 9, 9]], "quaternions": [[0, 0, 0, 1]]},
         "strand1": {"points": [[8, 8, 8]], "quaternions": [[0, 0, 0, 1]]},
         "strand2": {"points": [[7, 7, 7]], "quaternions": [[0, 0, 0, 1]]}}])"));
    ASSERT_EQ(configuration.dnas.size(), 2U);
    const Dna& dna = configuration.dnas[0];
    EXPECT_EQ(dna.origin, "rod.json: dna[0]");
    EXPECT_EQ(dna.bases, "GT");
    EXPECT_EQ(numbersOf(dna.pairPoints), (Points{{0, 0, 0}, {0, 0, 1}}));
    EXPECT_EQ(numbersOf(dna.pairRotations), (Rotations{{0, 0, 0.6, 0.8}, {0, 0, 1, 0}}));
    EXPECT_EQ(numbersOf(dna.points1), (Points{{1, 0, 0}, {1, 0, 1}}));
    EXPECT_EQ(numbersOf(dna.rotations1), (Rotations{{1, 0, 0, 0}, {0, 1, 0, 0}}));
    EXPECT_EQ(numbersOf(dna.points2), (Points{{2, 0, 0}, {2, 0, 1}}));
    EXPECT_EQ(numbersOf(dna.rotations2), (Rotations{{0, 0, 0, 1}, {0, 0, 1, 0}}));
    EXPECT_EQ(configuration.dnas[1].bases, "A");
    EXPECT_EQ(numbersOf(configuration.dnas[1].points2), (Points{{7, 7, 7}}));
}

TEST(JsonReader, ReadsMarkers)
{
    const Configuration configuration = acceptedConfiguration(fileWith(R"("markers": [
        {"point": [1, 2, 3], "shape": "cross", "size": 0.5, "colour": "steelblue",
         "transparency": 0.25, "id": -9223372036854775808},
        {"point": [4, 5, 6]},
        {"id": 9223372036854775807, "transparency": 1, "shape": "cube", "point": [7, 8, 9]},
        {"shape": "sphere", "point": [0, 0, 0], "transparency": 0},
        {"point": [0, 0, 0], "id": 0}])"));
    ASSERT_EQ(configuration.markers.size(), 5U);
    const Marker& full = configuration.markers[0];
    EXPECT_EQ(full.origin, "rod.json: markers[0]");
    EXPECT_EQ(numbersOf({full.point}), (Points{{1, 2, 3}}));
    EXPECT_EQ(full.shape, Marker::Shape::CROSS);
    EXPECT_EQ(full.size, 0.5);
    EXPECT_EQ(full.colour, "steelblue");
    EXPECT_EQ(full.transparency, 0.25);
    EXPECT_EQ(full.id, std::numeric_limits<long long>::min());

    const Marker& bare = configuration.markers[1];
    EXPECT_EQ(bare.origin, "rod.json: markers[1]");
    EXPECT_EQ(numbersOf({bare.point}), (Points{{4, 5, 6}}));
    EXPECT_EQ(bare.shape, Marker::Shape::SPHERE);
    EXPECT_EQ(bare.size, std::nullopt);
    EXPECT_EQ(bare.colour, std::nullopt);
    EXPECT_EQ(bare.transparency, 0);
    EXPECT_EQ(bare.id, 1) << "its index";

    EXPECT_EQ(configuration.markers[2].shape, Marker::Shape::CUBE);
    EXPECT_EQ(configuration.markers[2].id, std::numeric_limits<long long>::max());
    EXPECT_EQ(configuration.markers[3].shape, Marker::Shape::SPHERE);
    EXPECT_EQ(configuration.markers[3].id, 3);
    EXPECT_EQ(configuration.markers[4].id, 0);
}

TEST(JsonReader, LeavesTheColoursAsTheyAre)
{
    // What is a colour is for those who draw to say: the readers know no names.
    const Configuration configuration =
        acceptedConfiguration(fileWith(R"("markers": [{"point": [0, 0, 0], "colour": "#12aBcd"}],
                    "arrows": [{"from": [0, 0, 0], "to": [0, 0, 1], "colour": "no such"}])"));
    ASSERT_EQ(configuration.markers.size(), 1U);
    ASSERT_EQ(configuration.arrows.size(), 1U);
    EXPECT_EQ(configuration.markers[0].colour, "#12aBcd");
    EXPECT_EQ(configuration.arrows[0].colour, "no such");
}

TEST(JsonReader, AColourMayBeSpeltTheAmericanWay)
{
    const Configuration configuration =
        acceptedConfiguration(fileWith(R"("markers": [{"point": [0, 0, 0], "color": "red"}],
                    "arrows": [{"from": [0, 0, 0], "to": [0, 0, 1], "color": "tan"}],
                    "rods": [{"points": [[0, 0, 0], [0, 0, 1]],
                              "quaternions": [[0, 0, 0, 1], [0, 0, 0, 1]],
                              "scalars": {"color": [1, 2]}}])"));
    EXPECT_EQ(configuration.markers[0].colour, "red");
    EXPECT_EQ(configuration.arrows[0].colour, "tan");
    EXPECT_EQ(configuration.rods[0].scalars[0].name, "color");
}

TEST(JsonReader, ReadsFrames)
{
    const Configuration configuration = acceptedConfiguration(fileWith(R"("frames": [
        {"point": [1, 2, 3], "quaternion": [0.6, 0, 0, 0.8], "size": 4},
        {"quaternion": [0, 0, 0, 1], "point": [5, 6, 7]}])"));
    ASSERT_EQ(configuration.frames.size(), 2U);
    EXPECT_EQ(configuration.frames[0].origin, "rod.json: frames[0]");
    EXPECT_EQ(numbersOf({configuration.frames[0].point}), (Points{{1, 2, 3}}));
    EXPECT_EQ(numbersOf({configuration.frames[0].rotation}), (Rotations{{0.6, 0, 0, 0.8}}));
    EXPECT_EQ(configuration.frames[0].size, 4);
    EXPECT_EQ(numbersOf({configuration.frames[1].point}), (Points{{5, 6, 7}}));
    EXPECT_EQ(numbersOf({configuration.frames[1].rotation}), (Rotations{{0, 0, 0, 1}}));
    EXPECT_EQ(configuration.frames[1].size, std::nullopt);
}

TEST(JsonReader, ReadsArrows)
{
    const Configuration configuration = acceptedConfiguration(fileWith(R"("arrows": [
        {"from": [1, 2, 3], "to": [4, 5, 6], "radius": 0.5, "colour": "red"},
        {"to": [0, 0, 0], "from": [0, 0, 0]}])"));
    ASSERT_EQ(configuration.arrows.size(), 2U);
    const Arrow& full = configuration.arrows[0];
    EXPECT_EQ(full.origin, "rod.json: arrows[0]");
    EXPECT_EQ(numbersOf({full.from, full.to}), (Points{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(full.radius, 0.5);
    EXPECT_EQ(full.colour, "red");
    const Arrow& bare = configuration.arrows[1];
    EXPECT_EQ(numbersOf({bare.from, bare.to}), (Points{{0, 0, 0}, {0, 0, 0}}));
    EXPECT_EQ(bare.radius, std::nullopt);
    EXPECT_EQ(bare.colour, std::nullopt);
}

TEST(JsonReader, OneFileMayHoldEverything)
{
    const std::string strands =
        "\"strand1\": {" + pairAlongZ + "}, \"strand2\": {" + pairAlongZ + "}";
    const Configuration configuration =
        acceptedConfiguration(fileWith(R"("arrows": [{"from": [0, 0, 0], "to": [0, 0, 1]}],
                    "frames": [{"point": [0, 0, 0], "quaternion": [0, 0, 0, 1]}],
                    "markers": [{"point": [0, 0, 0]}],
                    "rods": [{)" + pairAlongZ +
                                       R"(}],
                    "dna": [{"sequence": "AC", "pairs": {)" +
                                       pairAlongZ + "}, " + strands + R"(}],
                    "birods": [{"average": {)" +
                                       pairAlongZ + "}, " + strands + "}]"));
    EXPECT_EQ(configuration.rods.size(), 1U);
    EXPECT_EQ(configuration.birods.size(), 1U);
    EXPECT_EQ(configuration.dnas.size(), 1U);
    EXPECT_EQ(configuration.markers.size(), 1U);
    EXPECT_EQ(configuration.frames.size(), 1U);
    EXPECT_EQ(configuration.arrows.size(), 1U);
}

TEST(JsonReader, ScalesTheQuaternionsOfEverythingWhenAskedTo)
{
    ReadOptions options;
    options.normalise = true;
    const std::string two = R"({"points": [[0, 0, 0], [0, 0, 1]],
                                "quaternions": [[0, 0, 0, 2], [0, 0, 3, 4]]})";
    const std::string strands = two + ", \"strand1\": " + two + ", \"strand2\": " + two + "}]";
    const Configuration configuration = acceptedConfiguration(
        fileWith("\"birods\": [{\"average\": " + strands +
                 ", \"dna\": [{\"sequence\": \"CG\", \"pairs\": " + strands +
                 ", \"frames\": [{\"point\": [0, 0, 0], \"quaternion\": [0, 0, 3, 4]}]"),
        options);
    ASSERT_EQ(configuration.birods.size() + configuration.dnas.size() + configuration.frames.size(),
              3U);
    const Rotations unit = {{0, 0, 0, 1}, {0, 0, 0.6, 0.8}};
    const Birod& birod = configuration.birods[0];
    for (const auto& rotations : {birod.rotations, birod.rotations1, birod.rotations2})
        EXPECT_EQ(numbersOf(rotations), unit);
    const Dna& dna = configuration.dnas[0];
    for (const auto& rotations : {dna.pairRotations, dna.rotations1, dna.rotations2})
        EXPECT_EQ(numbersOf(rotations), unit);
    EXPECT_EQ(numbersOf({configuration.frames[0].rotation}), (Rotations{{0, 0, 0.6, 0.8}}));
}

// ---- What programs tell of their data besides

namespace {

// d1 along y, d2 along z, d3 along x: a third of a turn about (1, 1, 1).
const std::string turned = "[[0, 1, 0], [0, 0, 1], [1, 0, 0]]";
const std::array<double, 4> thirdOfATurn = {0.5, 0.5, 0.5, 0.5};

} // namespace

TEST(JsonReader, ReadsWhatARodIsBesidesItsCurve)
{
    const Configuration configuration = acceptedConfiguration(fileWith(R"("rods": [
        {"closed": true, "name": "a \"knot\"", "colour": "red", "radius": 0.25, "backbone": true,
         "molecule": 9007199254740992, "frames": "made",
         "points": [[0, 0, 0], [1, 0, 1], [0, 1, 2], [0, 0, 0]],
         "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0], [1, 0, 0, 0], [0, 0, 0, 1]]},
        {"color": "tan", "closed": false, "backbone": false, "frames": "given", )" +
                                                                       pairAlongZ + "}]"));
    ASSERT_EQ(configuration.rods.size(), 2U);
    const Rod& rod = configuration.rods[0];
    EXPECT_TRUE(rod.isClosed);
    EXPECT_EQ(rod.name, "a \"knot\"");
    EXPECT_EQ(rod.colour, "red");
    EXPECT_EQ(rod.radius, 0.25);
    EXPECT_TRUE(rod.isBackbone);
    EXPECT_EQ(rod.molecule, 9007199254740992U);
    EXPECT_FALSE(rod.hasFrames);
    EXPECT_EQ(numbersOf(rod.rotations),
              (Rotations{{0, 0, 0, 1}, {0, 0, 1, 0}, {1, 0, 0, 0}, {0, 0, 0, 1}}));
    const Rod& other = configuration.rods[1];
    EXPECT_EQ(other.colour, "tan");
    EXPECT_FALSE(other.isClosed || other.isBackbone || other.molecule || other.radius);
    EXPECT_EQ(other.name, "");
    EXPECT_TRUE(other.hasFrames);
}

TEST(JsonReader, FramesThatAreMadeMayBeLeftToTheReader)
{
    const Rod rod =
        onlyRod(readText(fileOfRod(R"("frames": "made", "points": [[0, 0, 0], [0, 0, 1]])")));
    EXPECT_EQ(rod.rotations.size(), 2U);
    EXPECT_FALSE(rod.hasFrames);
}

TEST(JsonReader, ReadsClosedDnaOfUnknownBases)
{
    const std::string curve = R"({"points": [[0, 0, 0], [0, 0, 3]],
                                  "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0]]})";
    const Configuration configuration =
        acceptedConfiguration(fileWith(R"("dna": [{"sequence": null, "pairs": )" + curve +
                                       R"(, "closed": true, "name": "ring", "molecule": 3},
                    {"sequence": "nA", "pairs": )" +
                                       curve + "}]"));
    ASSERT_EQ(configuration.dnas.size(), 2U);
    EXPECT_EQ(configuration.dnas[0].bases, "NN");
    EXPECT_TRUE(configuration.dnas[0].isClosed);
    EXPECT_EQ(configuration.dnas[0].name, "ring");
    EXPECT_EQ(configuration.dnas[0].molecule, 3U);
    EXPECT_EQ(configuration.dnas[1].bases, "NA");
    EXPECT_FALSE(configuration.dnas[1].isClosed);
}

TEST(JsonReader, ReadsBasesInNoPair)
{
    const Configuration configuration = acceptedConfiguration(fileWith(R"("bases": [
        {"base": "g", "point": [1, 2, 3], "quaternion": [0.6, 0, 0, 0.8], "molecule": 2},
        {"directors": )" + turned + R"(, "point": [4, 5, 6], "base": "N"}])"));
    ASSERT_EQ(configuration.loneBases.size(), 2U);
    const LoneBase &first = configuration.loneBases[0], &second = configuration.loneBases[1];
    EXPECT_EQ(first.origin, "rod.json: bases[0]");
    EXPECT_EQ(first.base, 'G');
    EXPECT_EQ(numbersOf({first.point, second.point}), (Points{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(numbersOf({first.rotation, second.rotation}),
              (Rotations{{0.6, 0, 0, 0.8}, thirdOfATurn}));
    EXPECT_EQ(first.molecule, 2U);
    EXPECT_EQ(second.base, UNKNOWN_BASE);
    EXPECT_EQ(second.molecule, 0U);
}

// ---- Series

namespace {

std::string seriesOf(const std::string& frames) { return fileWith("\"series\": [" + frames + "]"); }

/// A frame with so many markers.
std::string frameOfMarkers(const std::string& time, int count)
{
    std::string text = "{" + (time.empty() ? "" : "\"time\": " + time + ", ") + "\"markers\": [";
    for (int i = 0; i < count; ++i)
        text += std::string(i == 0 ? "" : ", ") + "{\"point\": [0, 0, 0]}";
    return text + "]}";
}

std::unique_ptr<Series> opened(const std::string& text)
{
    ReadReport report;
    std::unique_ptr<Series> series = openJson(text, "run.json", {}, report);
    EXPECT_TRUE(series) << report.error;
    return series;
}

} // namespace

TEST(JsonReader, ASeriesHasFramesWithTheirTimes)
{
    const auto series = opened(seriesOf(frameOfMarkers("-0.5", 1) + ", " + frameOfMarkers("2", 3)));
    ASSERT_EQ(series->count(), 2U);
    EXPECT_EQ(series->time(0), -0.5);
    EXPECT_EQ(series->time(1), 2);
    EXPECT_EQ(series->load(0).configuration->markers.size(), 1U);
    const Configuration last = *series->load(1).configuration;
    ASSERT_EQ(last.markers.size(), 3U);
    EXPECT_EQ(last.markers[2].origin, "run.json: series[1].markers[2]");
    EXPECT_EQ(last.markers[2].id, 2);
}

TEST(JsonReader, OfASeriesTheFirstFrameIsRead)
{
    const Reading reading =
        readText(seriesOf(frameOfMarkers("", 4) + ", " + frameOfMarkers("", 1)));
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_EQ(reading.configuration->markers.size(), 4U);
    EXPECT_EQ(reading.report.frames, 2U);
}

TEST(JsonReader, TimesMayBeUnknownAndAFileWithoutASeriesHasOneFrame)
{
    EXPECT_EQ(opened(seriesOf(frameOfMarkers("", 1)))->time(0), std::nullopt);
    const auto only = opened(fileWith("\"markers\": [{\"point\": [0, 0, 0]}]"));
    ASSERT_EQ(only->count(), 1U);
    EXPECT_EQ(only->load(0).configuration->markers.size(), 1U);
    EXPECT_EQ(only->time(0), std::nullopt);
}

TEST(JsonReader, AFrameMayBeEmptyBesideOthers)
{
    const auto series = opened(seriesOf("{}, " + frameOfMarkers("", 2) + ", {\"rods\": []}"));
    ASSERT_EQ(series->count(), 3U);
    EXPECT_TRUE(series->load(0).configuration->markers.empty());
    EXPECT_EQ(series->load(1).configuration->markers.size(), 2U);
    EXPECT_TRUE(series->load(2).configuration->markers.empty());

    ReadReport report;
    EXPECT_FALSE(openJson(seriesOf("{}, {\"rods\": []}"), "run.json", {}, report));
    EXPECT_EQ(report.error,
              "run.json: series[0]: found nothing to show, expected at least one rod, "
              "birod, DNA, marker, frame, arrow or base");
}

TEST(JsonReader, WhatAllFramesHaveToTellIsToldOnce)
{
    ReadReport report;
    const std::string frame = R"({"rods": [{"points": [[0, 0, 0], [0, 0, 1]]}]})";
    const auto series = openJson(seriesOf(frame + ", " + frame), "run.json", {}, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_THAT(report.notices, ElementsAre(testing::HasSubstr("1 rod without frames")));
}

// ---- Directors and elements

TEST(JsonReader, DirectorsStandWhereQuaternionsMay)
{
    const std::string strand =
        R"({"points": [[0, 0, 0], [1, 0, 0]], "directors": [)" + turned + ", " + turned + "]}";
    const Configuration configuration = acceptedConfiguration(
        R"({"strandview": 1, "rods": [)" + strand + R"(], "birods": [{"average": )" + strand +
        R"(, "strand1": {"points": [[0, 1, 0], [1, 1, 0]], "quaternions": [[0, 0, 0, 1],
        [0, 0, 0, 1]]}, "strand2": )" +
        strand + R"(}], "dna": [{"sequence": "AC", "pairs": )" + strand + R"(, "strand1": )" +
        strand + R"(, "strand2": )" + strand +
        R"(}], "frames": [{"point": [0, 0, 0], "directors": )" + turned + "}]}");
    const Rotations both = {thirdOfATurn, thirdOfATurn};
    EXPECT_EQ(numbersOf(configuration.rods[0].rotations), both);
    EXPECT_EQ(numbersOf(configuration.birods[0].rotations), both);
    EXPECT_EQ(numbersOf(configuration.birods[0].rotations1),
              (Rotations{{0, 0, 0, 1}, {0, 0, 0, 1}}));
    EXPECT_EQ(numbersOf(configuration.birods[0].rotations2), both);
    EXPECT_EQ(numbersOf(configuration.dnas[0].pairRotations), both);
    EXPECT_EQ(numbersOf(configuration.dnas[0].rotations1), both);
    EXPECT_EQ(numbersOf({configuration.frames[0].rotation}), Rotations{thirdOfATurn});
}

TEST(JsonReader, NormaliseMakesAFrameOfAnyRightHandedDirectors)
{
    ReadOptions options;
    options.normalise = true;
    const Rod rod = rodOf(fileOfRod(R"("points": [[0, 0, 0], [1, 0, 0]],
        "directors": [[[5, 1, 0], [0, 0, 9], [7, 0, 0]], [[0, 2, 0], [0, 0, 2], [2, 0, 0]]])"),
                          options);
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{thirdOfATurn, thirdOfATurn}));
}

TEST(JsonReader, OneFrameAndOneScalarFewerThanPointsBelongToElements)
{
    const Reading reading =
        readText(fileOfRod(R"("points": [[0, 0, 0], [1, 0, 0], [2, 0, 0]],
        "directors": [)" + turned +
                           ", " + turned + R"(], "scalars": {"energy": [1, 4], "s": [1, 2, 3]})"));
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Rod& rod = reading.configuration->rods[0];
    ASSERT_EQ(rod.rotations.size(), 3U);
    for (const auto& q : rod.rotations)
        for (int k = 0; k < 4; ++k)
            EXPECT_NEAR(q[k], 0.5, 1e-15);
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 2.5, 4));
    EXPECT_THAT(rod.scalars[1].values, ElementsAre(1, 2, 3));
    EXPECT_THAT(
        reading.report.notices,
        ElementsAre("rod.json: 1 rod with frames or scalars of elements: taken to the points"));
}

TEST(JsonReader, TheCurvesOfABirodMayHaveFramesOfElements)
{
    const Reading reading = readText(R"({"strandview": 1, "birods": [{
        "average": {"points": [[0, 0, 0], [0, 0, 1]], "quaternions": [[0, 0, 0, 1]]},
        "strand1": {"points": [[0, 1, 0], [0, 1, 1]], "quaternions": [[0, 0, 1, 0], [0, 0, 0, 1]]},
        "strand2": {"points": [[1, 0, 0], [1, 0, 1]], "quaternions": [[0, 0, 1, 0]]}}]})");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Birod& birod = reading.configuration->birods[0];
    EXPECT_EQ(numbersOf(birod.rotations), (Rotations{{0, 0, 0, 1}, {0, 0, 0, 1}}));
    EXPECT_EQ(numbersOf(birod.rotations1), (Rotations{{0, 0, 1, 0}, {0, 0, 0, 1}}));
    EXPECT_EQ(numbersOf(birod.rotations2), (Rotations{{0, 0, 1, 0}, {0, 0, 1, 0}}));
    EXPECT_THAT(
        reading.report.notices,
        ElementsAre("rod.json: 1 birod with frames or scalars of elements: taken to the points"));
}

TEST(JsonReader, WithoutStrandsThePairsFramesAreThoseOfTheBases)
{
    const Configuration configuration = acceptedConfiguration(R"({"strandview": 1, "dna": [
        {"sequence": "AC", "pairs": {"points": [[0, 0, 0], [0, 0, 3]],
                                     "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0]]}}]})");
    const Dna& dna = configuration.dnas[0];
    for (const auto* points : {&dna.points1, &dna.points2})
        EXPECT_EQ(numbersOf(*points), numbersOf(dna.pairPoints));
    for (const auto* rotations : {&dna.rotations1, &dna.rotations2})
        EXPECT_EQ(numbersOf(*rotations), numbersOf(dna.pairRotations));
}

TEST(JsonReader, LeavesOutOfAllCurvesOfABirodWhereOneHasTwoPointsInOnePlace)
{
    const auto curve = [](const std::string& points) {
        return R"({"points": [)" + points +
               R"(], "quaternions": [[0, 0, 0, 1], [1, 0, 0, 0], [0, 1, 0, 0], [0, 0, 1, 0]]})";
    };
    const Reading reading = readText(fileWith(
        "\"birods\": [{\"average\": " + curve("[0, 0, 0], [0, 0, 1], [0, 0, 2], [0, 0, 3]") +
        ", \"strand1\": " + curve("[1, 0, 0], [1, 0, 0], [1, 0, 2], [1, 0, 3]") +
        ", \"strand2\": " + curve("[2, 0, 0], [2, 0, 1], [2, 0, 2], [2, 0, 2.000001]") + "}]"));
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Birod& birod = reading.configuration->birods[0];
    EXPECT_EQ(numbersOf(birod.points), (Points{{0, 0, 0}, {0, 0, 2}}));
    EXPECT_EQ(numbersOf(birod.points1), (Points{{1, 0, 0}, {1, 0, 2}}));
    EXPECT_EQ(numbersOf(birod.points2), (Points{{2, 0, 0}, {2, 0, 2}}));
    for (const auto& rotations : {birod.rotations, birod.rotations1, birod.rotations2})
        EXPECT_EQ(numbersOf(rotations), (Rotations{{0, 0, 0, 1}, {0, 1, 0, 0}}));
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.json: 2 points left out, at the same place as the point before"));
}

TEST(JsonReader, KeepsEveryPairOfDnaWhereverItIs)
{
    const std::string strand = R"({"points": [[1, 1, 1], [1, 1, 1], [1, 1, 1]],
        "quaternions": [[0, 0, 0, 1], [0, 0, 0, 1], [0, 0, 0, 1]]})";
    const Configuration configuration = acceptedConfiguration(
        fileWith("\"dna\": [{\"sequence\": \"TTT\", \"pairs\": " + strand +
                 ", \"strand1\": " + strand + ", \"strand2\": " + strand + "}]"));
    ASSERT_EQ(configuration.dnas.size(), 1U);
    EXPECT_EQ(configuration.dnas[0].bases, "TTT");
    EXPECT_EQ(configuration.dnas[0].pairPoints.size(), 3U);
}

TEST(JsonReader, TellsOfBirodsAndDnaWhoseD3DoesNotFollowThePoints)
{
    // The points go along z. The scalar is first in the second quaternion of each pair,
    // which turns z over; that of the strands is not looked at.
    const std::string good = R"({"points": [[0, 0, 0], [0, 0, 1]],
                                 "quaternions": [[0, 0, 0, 1], [0, 0, 0, 1]]})";
    const std::string bad = R"({"points": [[0, 0, 0], [0, 0, 1]],
                                "quaternions": [[1, 0, 0, 0], [1, 0, 0, 0]]})";
    const auto withStrands = [](const std::string& first, const std::string& strands) {
        return first + ", \"strand1\": " + strands + ", \"strand2\": " + strands + "}";
    };
    const Reading reading = readText(
        fileWith("\"birods\": [{\"average\": " + withStrands(bad, good) +
                 ", {\"average\": " + withStrands(good, bad) +
                 "], \"dna\": [{\"sequence\": \"AA\", \"pairs\": " + withStrands(bad, good) +
                 ", {\"sequence\": \"AA\", \"pairs\": " + withStrands(bad, bad) +
                 ", {\"sequence\": \"AA\", \"pairs\": " + withStrands(good, bad) + "]"));
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const std::string question =
        ": is d3 the tangent (quaternions: scalar last; directors: d1, d2, d3)?";
    EXPECT_THAT(
        reading.report.notices,
        ElementsAre("rod.json: 1 birod whose d3 does not follow the average's points" + question,
                    "rod.json: 2 DNAs whose d3 does not follow the pairs" + question));
}

// ---- Random files

namespace {

/// Configurations of every kind of things, and their texts.
class RandomFile
{
public:
    explicit RandomFile(unsigned seed) : random(seed)
    {
        const std::size_t birods = below(3), dnas = below(3), markers = below(4), frames = below(4);
        for (std::size_t i = 0; i < birods; ++i)
            addBirod();
        for (std::size_t i = 0; i < dnas; ++i)
            addDna();
        for (std::size_t i = 0; i < markers; ++i)
            addMarker();
        for (std::size_t i = 0; i < frames; ++i)
            addFrame();
        for (std::size_t i = 0, arrows = 1 + below(3); i < arrows; ++i)
            addArrow();
    }

    std::string text() const
    {
        std::string members;
        for (const auto& [name, items] : lists)
            members += (members.empty() ? "" : ", ") + ("\"" + name + "\": [") + items + "]";
        return fileWith(members);
    }

    Configuration expected;

private:
    std::size_t below(std::size_t limit) { return random() % limit; }
    bool byChance() { return below(2) == 0; }
    double number() { return random() * 0x1p-32 + random() * 0x1p-64 - 0.5; }

    static std::string digits(double value)
    {
        char text[32];
        std::snprintf(text, sizeof text, "%.17g", value);
        return text;
    }
    template <typename T>
    static std::string listOf(const T& values, int count)
    {
        std::string list;
        for (int i = 0; i < count; ++i)
            list += (i == 0 ? "[" : ", ") + digits(values[i]);
        return list + "]";
    }

    algebra3d::Vector3<double> point() { return {number(), number(), number()}; }
    algebra3d::Quaternion<double> rotation()
    {
        algebra3d::Quaternion<double> q(number(), number(), number(), number());
        const double norm = q.getNorm();
        return {q[0] / norm, q[1] / norm, q[2] / norm, q[3] / norm};
    }

    template <typename PointList, typename RotationList>
    std::string strand(std::size_t count, PointList& points, RotationList& rotations)
    {
        std::string pointText, rotationText;
        for (std::size_t i = 0; i < count; ++i) {
            points.push_back(point());
            rotations.push_back(rotation());
            pointText += (i == 0 ? "" : ", ") + listOf(points[i], 3);
            rotationText += (i == 0 ? "" : ", ") + listOf(rotations[i], 4);
        }
        return "{\"points\": [" + pointText + "], \"quaternions\": [" + rotationText + "]}";
    }

    /// An object, its members in either order.
    void add(const std::string& list, std::vector<std::string> memberTexts)
    {
        if (byChance())
            std::reverse(memberTexts.begin(), memberTexts.end());
        std::string object;
        for (const std::string& member : memberTexts)
            object += (object.empty() ? "{" : ",\n ") + member;
        lists[list] += (lists[list].empty() ? "" : ", ") + object + "}";
    }

    void addBirod()
    {
        Birod& birod = expected.birods.emplace_back();
        const std::size_t count = 2 + below(5);
        add("birods", {"\"average\": " + strand(count, birod.points, birod.rotations),
                       "\"strand1\": " + strand(count, birod.points1, birod.rotations1),
                       "\"strand2\": " + strand(count, birod.points2, birod.rotations2)});
    }
    void addDna()
    {
        Dna& dna = expected.dnas.emplace_back();
        const std::size_t count = 1 + below(6);
        std::string sequence;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t base = below(4);
            dna.bases += "ACGT"[base];
            sequence += (byChance() ? "ACGT" : "acgt")[base];
        }
        add("dna", {"\"sequence\": \"" + sequence + "\"",
                    "\"pairs\": " + strand(count, dna.pairPoints, dna.pairRotations),
                    "\"strand1\": " + strand(count, dna.points1, dna.rotations1),
                    "\"strand2\": " + strand(count, dna.points2, dna.rotations2)});
    }
    void addMarker()
    {
        Marker& marker = expected.markers.emplace_back();
        marker.point = point();
        marker.id = static_cast<long long>(expected.markers.size()) - 1;
        std::vector<std::string> texts = {"\"point\": " + listOf(marker.point, 3)};
        if (byChance()) {
            const char* names[] = {"sphere", "cube", "cross"};
            const std::size_t shape = below(3);
            marker.shape = static_cast<Marker::Shape>(shape);
            texts.push_back("\"shape\": \"" + std::string(names[shape]) + "\"");
        }
        if (byChance())
            texts.push_back("\"size\": " + digits(*(marker.size = number() + 0.75)));
        if (byChance())
            texts.push_back("\"colour\": \"" +
                            *(marker.colour = "#00ff" + std::to_string(10 + below(90))) + "\"");
        if (byChance())
            texts.push_back("\"transparency\": " + digits(marker.transparency = number() + 0.5));
        if (byChance()) {
            marker.id = static_cast<long long>((std::uint64_t(random()) << 32) | random());
            texts.push_back("\"id\": " + std::to_string(marker.id));
        }
        add("markers", texts);
    }
    void addFrame()
    {
        Frame& frame = expected.frames.emplace_back();
        frame.point = point();
        frame.rotation = rotation();
        std::vector<std::string> texts = {"\"point\": " + listOf(frame.point, 3),
                                          "\"quaternion\": " + listOf(frame.rotation, 4)};
        if (byChance())
            texts.push_back("\"size\": " + digits(*(frame.size = number() + 0.75)));
        add("frames", texts);
    }
    void addArrow()
    {
        Arrow& arrow = expected.arrows.emplace_back();
        arrow.from = point();
        arrow.to = point();
        std::vector<std::string> texts = {"\"from\": " + listOf(arrow.from, 3),
                                          "\"to\": " + listOf(arrow.to, 3)};
        if (byChance())
            texts.push_back("\"radius\": " + digits(*(arrow.radius = number() + 0.75)));
        if (byChance())
            texts.push_back("\"colour\": \"" + *(arrow.colour = "tan") + "\"");
        add("arrows", texts);
    }

    std::mt19937 random;
    std::map<std::string, std::string> lists; ///< the objects of each
};

} // namespace

TEST(JsonReader, ReadsRandomFilesOfEverythingBackBitForBit)
{
    for (unsigned seed = 0; seed < 500; ++seed) {
        SCOPED_TRACE(seed);
        const RandomFile file(seed);
        const Reading reading = readText(file.text());
        ASSERT_TRUE(reading.configuration) << reading.report.error << "\n" << file.text();
        const Configuration &read = *reading.configuration, &expected = file.expected;

        ASSERT_EQ(read.birods.size(), expected.birods.size());
        for (std::size_t i = 0; i < read.birods.size(); ++i) {
            const Birod &a = read.birods[i], &b = expected.birods[i];
            EXPECT_EQ(numbersOf(a.points), numbersOf(b.points));
            EXPECT_EQ(numbersOf(a.rotations), numbersOf(b.rotations));
            EXPECT_EQ(numbersOf(a.points1), numbersOf(b.points1));
            EXPECT_EQ(numbersOf(a.rotations1), numbersOf(b.rotations1));
            EXPECT_EQ(numbersOf(a.points2), numbersOf(b.points2));
            EXPECT_EQ(numbersOf(a.rotations2), numbersOf(b.rotations2));
        }
        ASSERT_EQ(read.dnas.size(), expected.dnas.size());
        for (std::size_t i = 0; i < read.dnas.size(); ++i)
            expectSameDna(read.dnas[i], expected.dnas[i]);
        ASSERT_EQ(read.markers.size(), expected.markers.size());
        for (std::size_t i = 0; i < read.markers.size(); ++i) {
            const Marker &a = read.markers[i], &b = expected.markers[i];
            EXPECT_EQ(numbersOf({a.point}), numbersOf({b.point}));
            EXPECT_EQ(a.shape, b.shape);
            EXPECT_EQ(a.size, b.size);
            EXPECT_EQ(a.colour, b.colour);
            EXPECT_EQ(a.transparency, b.transparency);
            EXPECT_EQ(a.id, b.id);
        }
        ASSERT_EQ(read.frames.size(), expected.frames.size());
        for (std::size_t i = 0; i < read.frames.size(); ++i) {
            const Frame &a = read.frames[i], &b = expected.frames[i];
            EXPECT_EQ(numbersOf({a.point}), numbersOf({b.point}));
            EXPECT_EQ(numbersOf({a.rotation}), numbersOf({b.rotation}));
            EXPECT_EQ(a.size, b.size);
        }
        ASSERT_EQ(read.arrows.size(), expected.arrows.size());
        for (std::size_t i = 0; i < read.arrows.size(); ++i) {
            const Arrow &a = read.arrows[i], &b = expected.arrows[i];
            EXPECT_EQ(numbersOf({a.from, a.to}), numbersOf({b.from, b.to}));
            EXPECT_EQ(a.radius, b.radius);
            EXPECT_EQ(a.colour, b.colour);
        }
        ASSERT_FALSE(HasFailure()) << file.text();
    }
}

TEST(JsonReader, ReadsRandomRodsBackBitForBit)
{
    std::mt19937 random(1);
    for (int file = 0; file < 500; ++file) {
        Points points;
        std::vector<double> values;
        std::string pointText, valueText;
        const int scale = static_cast<int>(random() % 100) - 50;
        for (std::size_t i = 0, length = 2 + random() % 20; i < length; ++i) {
            const auto number = [&] { return random() * 0x1p-32 + random() * 0x1p-64 - 0.5; };
            const auto coordinate = [&] { return std::ldexp(number(), scale); };
            points.push_back({coordinate(), coordinate(), coordinate()});
            values.push_back(std::ldexp(number(), static_cast<int>(random() % 100) - 50));
            char text[128];
            std::snprintf(text, sizeof text, "[%.17g, %.17g,%.17g]", points[i][0], points[i][1],
                          points[i][2]);
            pointText += (i == 0 ? "" : ", ") + std::string(text);
            std::snprintf(text, sizeof text, "%.17g", values[i]);
            valueText += (i == 0 ? "" : ",\n") + std::string(text);
        }
        const Rod rod = rodOf(
            fileOfRod("\"points\": [" + pointText + R"(], "scalars": {"s": [)" + valueText + "]}"));
        ASSERT_EQ(numbersOf(rod.points), points);
        ASSERT_EQ(rod.scalars[0].values, values);
    }
}

// ---- What is refused

struct BadJson
{
    const char* name;
    std::string text;
    std::string error; ///< behind the file's name
};

class JsonReaderRefuses : public testing::TestWithParam<BadJson>
{
};

TEST_P(JsonReaderRefuses, WithOneLineThatSaysWhereAndWhat)
{
    const Reading reading = readText(GetParam().text);
    EXPECT_FALSE(reading.configuration);
    EXPECT_EQ(reading.report.error, "rod.json:" + GetParam().error);
    EXPECT_THAT(reading.report.notices, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    TextsThatAreNoJson, JsonReaderRefuses,
    testing::Values(BadJson{"AnEmptyFile", "", "1:1: found the end of the file, expected a value"},
                    BadJson{"ATextThatEndsEarly", "{\"strandview\": 1,\n \"rods\": [",
                            "2:11: found the end of the file, expected a value"},
                    BadJson{"AMissingComma", fileOfRod("\"points\": [[0, 0 1]]"),
                            "1:46: found '1', expected ',' or ']'"},
                    BadJson{"AMissingCommaBetweenMembers", "{\"strandview\": 1\n\"rods\": []}",
                            "2:1: found '\"rods\"', expected ',' or '}'"},
                    BadJson{"AMissingColon", "{\"strandview\" 1}", "1:15: found '1', expected ':'"},
                    BadJson{"AMissingCommaBehindACharacterOfTwoBytes",
                            fileOfRod("\"scalars\": {\"\xc3\xa9\": [1 2]}"),
                            "1:49: found '2', expected ',' or ']'"},
                    BadJson{"AKeyWithoutQuotes", "{strandview: 1}",
                            "1:2: found 'strandview', expected a key in double quotes"},
                    BadJson{"ATrailingComma", "{\"strandview\": 1,\n}",
                            "2:1: found '}', expected a key in double quotes"},
                    BadJson{"TextBehindTheEnd", "{\"strandview\": 1, \"rods\": []} {}",
                            "1:31: found '{', expected the end of the file"},
                    BadJson{"NaN", fileOfRod("\"points\": [[0, NaN, 1]]"),
                            "1:44: found 'NaN', expected valid JSON in UTF-8"},
                    BadJson{"ANumberBeyondDouble", fileOfRod("\n\"points\": [[0, 0, 1e999]]"),
                            "2:19: found '1e999', expected a finite number"},
                    BadJson{"BrokenUtf8", "{\"\xc3\xa9\xc3(\": 1}",
                            "1:2: found '\"\xc3\xa9\xc3(\"', expected a key in double quotes"},
                    BadJson{"ALineEndInAString", "{\"strand\nview\": 1}",
                            "1:9: found '\\x0a', expected a key in double quotes"},
                    BadJson{"ANulCharacter", std::string("{\"strandview\": 1,\n \0}", 20),
                            "2:2: found a character of code 0, expected valid JSON in UTF-8"}),
    [](const auto& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    JsonThatIsNoConfiguration, JsonReaderRefuses,
    testing::Values(
        BadJson{
            "AnArray", "[1, 2]",
            " found an array, expected an object with strandview and rods, birods, dna, markers, "
            "frames, arrows, bases or series"},
        BadJson{"ANumber", "1.5",
                " found 1.5, expected an object with strandview and rods, birods, dna, "
                "markers, frames, arrows, bases or series"},
        BadJson{"NoVersion", "{\"rods\": []}", " found no key strandview, expected one"},
        BadJson{"AnotherVersion", "{\"strandview\": 2, \"twigs\": []}",
                " strandview: found 2, expected 1"},
        BadJson{"AVersionInQuotes", "{\"strandview\": \"1\"}",
                " strandview: found the string '1', expected 1"},
        BadJson{"AVersionInBrackets", "{\"strandview\": [1]}",
                " strandview: found an array, expected 1"},
        BadJson{"NothingBesideTheVersion", "{\"strandview\": 1}",
                " found nothing to show, expected at least one rod, birod, DNA, marker, frame, "
                "arrow or base"},
        BadJson{"NothingInAnyArray",
                "{\"strandview\": 1, \"rods\": [], \"birods\": [], \"dna\": [], \"markers\": [], "
                "\"frames\": [], \"arrows\": []}",
                " found nothing to show, expected at least one rod, birod, DNA, marker, frame, "
                "arrow or base"},
        BadJson{"AnEmptySeries", "{\"strandview\": 1, \"series\": []}",
                " series: found 0 frames, expected at least 1"},
        BadJson{"ASeriesOfNumbers", "{\"strandview\": 1, \"series\": [3]}",
                " series[0]: found 3, expected an object with rods, birods, dna, markers, frames, "
                "arrows or bases"},
        BadJson{"FramesOfWhichTheFirstIsEmptyReadAlone",
                seriesOf("{\"rods\": []}, " + frameOfMarkers("", 1)),
                " series[0]: found nothing to show, expected at least one rod, birod, DNA, marker, "
                "frame, arrow or base"},
        BadJson{"AFaultInALaterFrame",
                seriesOf(frameOfMarkers("", 1) + ", {\"rods\": [{\"points\": [[0, 0]]}]}"),
                " series[1].rods[0].points[0]: found 2 numbers, expected 3"},
        BadJson{"ALaterFrameWithoutATime",
                seriesOf(frameOfMarkers("1", 1) + ", " + frameOfMarkers("", 1)),
                " series[1]: found no key time, expected one as in series[0]"},
        BadJson{"ALaterFrameWithATime",
                seriesOf(frameOfMarkers("", 1) + ", " + frameOfMarkers("1", 1)),
                " series[1]: found a key time, expected none as in series[0]"},
        BadJson{"ATimeInQuotes", seriesOf(frameOfMarkers("\"1\"", 1)),
                " series[0].time: found the string '1', expected a finite number"},
        BadJson{"ASeriesInASeries", seriesOf("{\"series\": []}"),
                " series[0].series: found an unknown key, expected one of time, rods, birods, dna, "
                "markers, frames, arrows, bases"},
        BadJson{"ATimeOfAFile", fileWith("\"time\": 1"),
                " time: found an unknown key, expected one of strandview, series, rods, birods, "
                "dna, markers, frames, arrows, bases"},
        BadJson{"ListsBesideASeries",
                fileWith("\"series\": [" + frameOfMarkers("", 1) + "], \"rods\": []"),
                " rods: found beside series, expected either series or lists"},
        BadJson{"ASeriesBesideLists", fileWith("\"dna\": [], \"series\": []"),
                " series: found beside dna, expected either series or lists"},
        BadJson{"ClosedAsANumber", fileOfRod("\"closed\": 1"),
                " rods[0].closed: found 1, expected true or false"},
        BadJson{"ABackboneThatIsNull", fileOfRod("\"backbone\": null"),
                " rods[0].backbone: found null, expected true or false"},
        BadJson{"ANameThatIsANumber", fileOfRod("\"name\": 7"),
                " rods[0].name: found 7, expected a string"},
        BadJson{"MoleculeZero", fileOfRod("\"molecule\": 0"),
                " rods[0].molecule: found 0, expected a whole number from 1 to 9007199254740992"},
        BadJson{"MoleculesBeyondTheLast", fileOfRod("\"molecule\": 9007199254740993"),
                " rods[0].molecule: found 9007199254740992, expected a whole number from 1 to "
                "9007199254740992"},
        BadJson{"HalfAMolecule", fileOfRod("\"molecule\": 1.5"),
                " rods[0].molecule: found 1.5, expected a whole number from 1 to 9007199254740992"},
        BadJson{"ARadiusOfZero", fileOfRod("\"radius\": 0"),
                " rods[0].radius: found 0, expected a number above 0 and up to 1e18"},
        BadJson{"OtherFrames", fileOfRod("\"frames\": \"lost\""),
                " rods[0].frames: found the string 'lost', expected given or made"},
        BadJson{"GivenFramesThatAreNot",
                fileOfRod("\"frames\": \"given\", \"points\": [[0, 0, 0], [0, 0, 1]]"),
                " rods[0].frames: found 'given' without quaternions or directors, expected one of "
                "both"},
        BadJson{"ABaseWithoutALetter", fileWith("\"bases\": [{\"point\": [0, 0, 0]}]"),
                " bases[0]: found no key base, expected one"},
        BadJson{"ABaseOfTwoLetters", fileWith("\"bases\": [{\"base\": \"AC\"}]"),
                " bases[0].base: found the string 'AC', expected A, C, G, T or N"},
        BadJson{"ABaseWithoutAFrame",
                fileWith("\"bases\": [{\"base\": \"A\", \"point\": [0, 0, 0]}]"),
                " bases[0]: found no key quaternion or directors, expected one"},
        BadJson{"RodsInAnObject", "{\"strandview\": 1, \"rods\": {}}",
                " rods: found an object, expected an array of rods"},
        BadJson{"ARodThatIsNull", "{\"strandview\": 1, \"rods\": [null]}",
                " rods[0]: found null, expected an object with points"},
        BadJson{"AnUnknownKey", "{\"strandview\": 1, \"rodz\": []}",
                " rodz: found an unknown key, expected one of strandview, series, rods, birods, "
                "dna, markers, frames, arrows, bases"},
        BadJson{"AnUnknownKeyOfARod", fileOfRod("\"pionts\": []"),
                " rods[0].pionts: found an unknown key, expected one of points, quaternions, "
                "directors, scalars, closed, name, colour, radius, backbone, molecule, frames"},
        BadJson{"AnOddUnknownKey", "{\"a.b\\nc\": 1}",
                " ['a.b\\x0ac']: found an unknown key, expected one of strandview, series, rods, "
                "birods, "
                "dna, markers, frames, arrows, bases"},
        BadJson{"AKeyTwice", fileOfRod("\"points\": [], \"points\": []"),
                " rods[0].points: found a second time, expected each key once"},
        BadJson{"TheVersionTwice", "{\"strandview\": 1, \"strandview\": 1}",
                " strandview: found a second time, expected each key once"},
        BadJson{"AScalarTwice", fileOfRod("\"scalars\": {\"s\": [], \"t\": [], \"s\": []}"),
                " rods[0].scalars.s: found a second time, expected each key once"},
        BadJson{"NoPoints", fileOfRod("\"scalars\": {}"),
                " rods[0]: found no key points, expected one"},
        BadJson{"PointsThatAreNumbers", fileOfRod("\"points\": [0, 0, 0]"),
                " rods[0].points[0]: found 0, expected an array of 3 numbers"},
        BadJson{"PointsThatAreTrue", fileOfRod("\"points\": true"),
                " rods[0].points: found true, expected an array of points"},
        BadJson{"APointOfTwoNumbers", fileOfRod("\"points\": [[0, 0, 0], [0, 0]]"),
                " rods[0].points[1]: found 2 numbers, expected 3"},
        BadJson{"APointOfFourNumbers", fileOfRod("\"points\": [[0, 0, 0, 0]]"),
                " rods[0].points[0]: found 4 numbers, expected 3"},
        BadJson{"ACoordinateInQuotes", fileOfRod("\"points\": [[0, 0, 0], [0, 0, 1], [0, \"1\"]]"),
                " rods[0].points[2][1]: found the string '1', expected a finite number"},
        BadJson{"ACoordinateInBrackets", fileOfRod("\"points\": [[[0], 0, 0]]"),
                " rods[0].points[0][0]: found an array, expected a finite number"},
        BadJson{"ACoordinateThatIsNull", fileOfRod("\"points\": [[0, 0, null]]"),
                " rods[0].points[0][2]: found null, expected a finite number"},
        BadJson{"ACoordinateBeyondFloat", fileOfRod("\"points\": [[0, -1e19, 0]]"),
                " rods[0].points[0][1]: found -1e+19, expected a coordinate between -1e18 and "
                "1e18"},
        BadJson{"AnIntegerBeyondFloat", fileOfRod("\"points\": [[18446744073709551615, 0, 0]]"),
                " rods[0].points[0][0]: found 18446744073709551616, expected a coordinate between "
                "-1e18 and 1e18"},
        BadJson{"AQuaternionOfThreeNumbers", fileOfRod("\"quaternions\": [[0, 0, 1]]"),
                " rods[0].quaternions[0]: found 3 numbers, expected 4"},
        BadJson{"AQuaternionTooShort", fileOfRod("\"quaternions\": [[0, 0, 0, 1], [0, 0.5, 0, 0]]"),
                " rods[0].quaternions[1]: found a quaternion of norm 0.5, expected 1 within 0.01 "
                "(--normalise accepts others)"},
        BadJson{"FewerQuaternionsThanPoints",
                fileOfRod("\"points\": [[0, 0, 0], [0, 0, 1], [0, 0, 2]], \"quaternions\": "
                          "[[0, 0, 0, 1]]"),
                " rods[0].quaternions: found 1, expected 3, one for each point, or 2, one for "
                "each element"},
        BadJson{"FewerDirectorsThanElements",
                fileOfRod(R"("points": [[0, 0, 0], [0, 0, 1], [0, 0, 2]],
                             "directors": [[[1, 0, 0], [0, 1, 0], [0, 0, 1]]])"),
                " rods[0].directors: found 1, expected 3, one for each point, or 2, one for "
                "each element"},
        BadJson{"QuaternionsAndDirectors", fileOfRod(R"("quaternions": [], "directors": [])"),
                " rods[0].directors: found quaternions and directors, expected one of both"},
        BadJson{"DirectorsOfTwo", fileOfRod("\"directors\": [[[1, 0, 0], [0, 1, 0]]]"),
                " rods[0].directors[0]: found 2 directors, expected 3"},
        BadJson{"DirectorsOfFour",
                fileOfRod("\"directors\": [[[1,0,0], [0,1,0], [0,0,1], [0,0,1]]]"),
                " rods[0].directors[0]: found 4 directors, expected 3"},
        BadJson{"ADirectorOfTwoNumbers", fileOfRod("\"directors\": [[[1, 0]]]"),
                " rods[0].directors[0][0]: found 2 numbers, expected 3"},
        BadJson{"DirectorsThatAreNumbers", fileOfRod("\"directors\": [1, 0, 0]"),
                " rods[0].directors[0]: found 1, expected an array of d1, d2 and d3"},
        BadJson{"LeftHandedDirectors",
                fileOfRod("\"directors\": [[[1, 0, 0], [0, 1, 0], [0, 0, -1]]]"),
                " rods[0].directors[0]: found left-handed directors, expected d3 = d1 x d2"},
        BadJson{"ADirectorTooShort",
                fileOfRod("\"directors\": [[[1, 0, 0], [0, 0.5, 0], [0, 0, 1]]]"),
                " rods[0].directors[0]: found d2 of norm 0.5, expected 1 within 0.01 "
                "(--normalise accepts others)"},
        BadJson{"QuaternionsWithoutOne",
                fileOfRod("\"points\": [[0, 0, 0], [0, 0, 1]], \"quaternions\": []"),
                " rods[0].quaternions: found 0, expected 2, one for each point, or 1, one for each "
                "element"},
        BadJson{"MoreScalarsThanPoints",
                fileOfRod("\"points\": [[0, 0, 0], [0, 0, 1]], \"scalars\": {\"a b\": [1, 2, 3]}"),
                " rods[0].scalars['a b']: found 3, expected 2, one for each point, or 1, one for "
                "each element"},
        BadJson{"ScalarsInAnArray", fileOfRod("\"scalars\": [1]"),
                " rods[0].scalars: found an array, expected an object of arrays of numbers"},
        BadJson{"AScalarThatIsOneNumber", fileOfRod("\"scalars\": {\"s\": 1}"),
                " rods[0].scalars.s: found 1, expected an array of numbers"},
        BadJson{"AScalarWithAWord", fileOfRod("\"scalars\": {\"s\": [1, false]}"),
                " rods[0].scalars.s[1]: found false, expected a finite number"},
        BadJson{"AScalarNamedPoints", fileOfRod("\"scalars\": {\"points\": [[1]]}"),
                " rods[0].scalars.points[0]: found an array, expected a finite number"},
        BadJson{"ASecondRodOfOnePoint",
                "{\"strandview\": 1, \"rods\": [{\"points\": [[0, 0, 0], [0, 0, 1]]}, {\"points\": "
                "[[1, 1, 1], [1, 1, 1]]}]}",
                " rods[1].points: found 1 distinct point, expected at least 2 in a rod"},
        BadJson{"ARodWithoutAPoint", fileOfRod("\"points\": []"),
                " rods[0].points: found 0 distinct points, expected at least 2 in a rod"}),
    [](const auto& test) { return test.param.name; });

namespace {

/// A file of one birod, of which the texts of its members are given.
std::string fileOfBirod(const std::string& members)
{
    return fileWith("\"birods\": [{" + members + "}]");
}
std::string fileOfDna(const std::string& members)
{
    return fileWith("\"dna\": [{" + members + "}]");
}
std::string fileOfMarker(const std::string& members)
{
    return fileWith("\"markers\": [{" + members + "}]");
}
std::string fileOfFrame(const std::string& members)
{
    return fileWith("\"frames\": [{" + members + "}]");
}
std::string fileOfArrow(const std::string& members)
{
    return fileWith("\"arrows\": [{" + members + "}]");
}

/// A member with two points along z and two frames.
std::string strandNamed(const std::string& key) { return "\"" + key + "\": {" + pairAlongZ + "}"; }

const std::string strands = ", " + strandNamed("strand1") + ", " + strandNamed("strand2");
const std::string threeAlongZ = R"({"points": [[0, 0, 0], [0, 0, 1], [0, 0, 2]],
    "quaternions": [[0, 0, 0, 1], [0, 0, 1, 0], [0, 0, 0, 1]]})";
const std::string someShape = " markers[0].shape: found the string ";
const std::string expectedShape = ", expected sphere, cube or cross";
const std::string expectedId = ", expected a whole number from -2^63 to 2^63 - 1";
const std::string expectedLength = ", expected a number above 0 and up to 1e18";
const std::string expectedNorm = ", expected 1 within 0.01 (--normalise accepts others)";

} // namespace

INSTANTIATE_TEST_SUITE_P(
    JsonOfBirods, JsonReaderRefuses,
    testing::Values(
        BadJson{"BirodsThatAreOne", fileWith("\"birods\": {}"),
                " birods: found an object, expected an array of birods"},
        BadJson{"ABirodThatIsAnArray", fileWith("\"birods\": [[]]"),
                " birods[0]: found an array, expected an object with average, strand1 and strand2"},
        BadJson{"NoAverage", fileOfBirod(strandNamed("strand1")),
                " birods[0]: found no key average, expected one"},
        BadJson{"NoStrand1", fileOfBirod(strandNamed("average")),
                " birods[0]: found no key strand1, expected one"},
        BadJson{"NoStrand2", fileOfBirod(strandNamed("average") + ", " + strandNamed("strand1")),
                " birods[0]: found no key strand2, expected one"},
        BadJson{"AStrandOfNumbers", fileOfBirod("\"average\": [0]"),
                " birods[0].average: found an array, expected an object with points and "
                "quaternions"},
        BadJson{"AnUnknownKeyOfABirod", fileOfBirod("\"points\": []"),
                " birods[0].points: found an unknown key, expected one of average, strand1, "
                "strand2"},
        BadJson{"AnUnknownKeyOfAStrand", fileOfBirod("\"strand2\": {\"scalars\": {}}"),
                " birods[0].strand2.scalars: found an unknown key, expected one of points, "
                "quaternions, directors"},
        BadJson{"AStrandTwice", fileOfBirod(strandNamed("strand1") + ", " + strandNamed("strand1")),
                " birods[0].strand1: found a second time, expected each key once"},
        BadJson{"AStrandWithoutPoints", fileOfBirod("\"strand1\": {\"quaternions\": []}"),
                " birods[0].strand1: found no key points, expected one"},
        BadJson{"AStrandWithoutQuaternions", fileOfBirod("\"strand1\": {\"points\": []}"),
                " birods[0].strand1: found no key quaternions or directors, expected one"},
        BadJson{"AStrandWithFewerQuaternionsThanPoints",
                fileOfBirod("\"strand1\": {\"points\": [[0, 0, 0]], \"quaternions\": []}"),
                " birods[0].strand1.quaternions: found 0, expected 1, one for each point"},
        BadJson{"ACoordinateOfAStrandBeyondFloat",
                fileOfBirod("\"strand2\": {\"points\": [[0, 0, 2e18]]}"),
                " birods[0].strand2.points[0][2]: found 2e+18, expected a coordinate between "
                "-1e18 and 1e18"},
        BadJson{"AQuaternionOfAStrandTooLong",
                fileOfBirod("\"strand2\": {\"quaternions\": [[0, 0, 0, 1], [0, 0, 0, 1.02]]}"),
                " birods[0].strand2.quaternions[1]: found a quaternion of norm 1.02" +
                    expectedNorm},
        BadJson{"AStrand1LongerThanTheAverage",
                fileOfBirod("\"strand1\": " + threeAlongZ + ", " + strandNamed("strand2") + ", " +
                            strandNamed("average")),
                " birods[0].strand1.points: found 3, expected 2, one for each point of the "
                "average"},
        BadJson{"AStrand2ShorterThanTheAverage",
                fileOfBirod("\"average\": " + threeAlongZ + ", \"strand1\": " + threeAlongZ + ", " +
                            strandNamed("strand2")),
                " birods[0].strand2.points: found 2, expected 3, one for each point of the "
                "average"},
        BadJson{"ABirodWithoutPoints", fileOfBirod(R"("average": {"points": [], "quaternions": []},
                               "strand1": {"points": [], "quaternions": []},
                               "strand2": {"points": [], "quaternions": []})"),
                " birods[0]: found 0 points distinct in the average and in both strands, expected "
                "at least 2 in a birod"},
        BadJson{"ABirodWithAStrandInOnePlace",
                fileOfBirod(strandNamed("average") + ", " + strandNamed("strand1") +
                            R"(, "strand2": {"points": [[1, 1, 1], [1, 1, 1]],
                                             "quaternions": [[0, 0, 0, 1], [0, 0, 0, 1]]})"),
                " birods[0]: found 1 point distinct in the average and in both strands, expected "
                "at least 2 in a birod"}),
    [](const auto& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    JsonOfDna, JsonReaderRefuses,
    testing::Values(
        BadJson{"DnaThatIsAString", fileWith("\"dna\": \"ACGT\""),
                " dna: found the string 'ACGT', expected an array of DNA"},
        BadJson{"ADnaThatIsAString", fileWith("\"dna\": [\"ACGT\"]"),
                " dna[0]: found the string 'ACGT', expected an object with sequence, pairs, "
                "strand1 and strand2"},
        BadJson{"NoSequence", fileOfDna(strandNamed("pairs") + strands),
                " dna[0]: found no key sequence, expected one"},
        BadJson{"NoPairs", fileOfDna("\"sequence\": \"AA\"" + strands),
                " dna[0]: found no key pairs, expected one"},
        BadJson{"NoStrand1",
                fileOfDna("\"sequence\": \"AA\", " + strandNamed("pairs") + ", " +
                          strandNamed("strand2")),
                " dna[0]: found no key strand1, expected one"},
        BadJson{"NoStrand2",
                fileOfDna("\"sequence\": \"AA\", " + strandNamed("pairs") + ", " +
                          strandNamed("strand1")),
                " dna[0]: found no key strand2, expected one"},
        BadJson{"AnUnknownKeyOfDna", fileOfDna("\"average\": {}"),
                " dna[0].average: found an unknown key, expected one of sequence, pairs, strand1, "
                "strand2, closed, name, molecule"},
        BadJson{"AnotherLetter", fileOfDna("\"sequence\": \"ACGTacgtNnU\""),
                " dna[0].sequence[10]: found 'U', expected A, C, G, T or N"},
        BadJson{"ABlankBetweenLetters", fileOfDna("\"sequence\": \"A C\""),
                " dna[0].sequence[1]: found ' ', expected A, C, G, T or N"},
        BadJson{"ALetterOfTwoBytes", fileOfDna("\"sequence\": \"G\xc3\x84g\""),
                " dna[0].sequence[1]: found '\xc3\x84', expected A, C, G, T or N"},
        BadJson{"AControlCharacterInTheSequence", fileOfDna("\"sequence\": \"\\u0007\""),
                " dna[0].sequence[0]: found '\\x07', expected A, C, G, T or N"},
        BadJson{"ASequenceThatIsAnArray", fileOfDna("\"sequence\": [\"A\"]"),
                " dna[0].sequence: found an array, expected a string of A, C, G, T and N, or null"},
        BadJson{"ASequenceThatIsANumber", fileOfDna("\"sequence\": 4"),
                " dna[0].sequence: found 4, expected a string of A, C, G, T and N, or null"},
        BadJson{"NoBases", fileOfDna(R"("sequence": "", "pairs": {"points": [], "quaternions": []},
                             "strand1": {"points": [], "quaternions": []},
                             "strand2": {"points": [], "quaternions": []})"),
                " dna[0].sequence: found 0 bases, expected at least 1"},
        BadJson{"FewerPairsThanBases",
                fileOfDna("\"sequence\": \"ACG\", " + strandNamed("pairs") + strands),
                " dna[0].pairs.points: found 2, expected 3, one for each base"},
        BadJson{"FewerBasesOfStrand1",
                fileOfDna("\"sequence\": \"ACG\", \"pairs\": " + threeAlongZ + strands),
                " dna[0].strand1.points: found 2, expected 3, one for each base"},
        BadJson{"MoreBasesOfStrand2",
                fileOfDna("\"strand2\": " + threeAlongZ + ", \"sequence\": \"AC\", " +
                          strandNamed("pairs") + ", " + strandNamed("strand1")),
                " dna[0].strand2.points: found 3, expected 2, one for each base"},
        BadJson{"FewerQuaternionsThanPairs",
                fileOfDna("\"pairs\": {\"points\": [[0, 0, 0]], \"quaternions\": []}"),
                " dna[0].pairs.quaternions: found 0, expected 1, one for each point"},
        BadJson{"FewerPairsThanBasesWithoutStrands",
                fileOfDna("\"sequence\": \"ACG\", " + strandNamed("pairs")),
                " dna[0].pairs.points: found 2, expected 3, one for each base"},
        BadJson{"QuaternionsOfElementsOfDna",
                fileOfDna("\"pairs\": {\"points\": [[0, 0, 0], [0, 0, 1]], \"quaternions\": "
                          "[[0, 0, 0, 1]]}"),
                " dna[0].pairs.quaternions: found 1, expected 2, one for each point"},
        BadJson{"AQuaternionOfAPairTooShort",
                fileOfDna("\"pairs\": {\"quaternions\": [[0, 0, 0, 0.5]]}"),
                " dna[0].pairs.quaternions[0]: found a quaternion of norm 0.5" + expectedNorm}),
    [](const auto& test) { return test.param.name; });

INSTANTIATE_TEST_SUITE_P(
    JsonOfGlyphs, JsonReaderRefuses,
    testing::Values(
        BadJson{"MarkersThatAreOne", fileWith("\"markers\": {}"),
                " markers: found an object, expected an array of markers"},
        BadJson{"AMarkerThatIsAPoint", fileWith("\"markers\": [[0, 0, 0]]"),
                " markers[0]: found an array, expected an object with point"},
        BadJson{"AMarkerWithoutAPoint", fileWith("\"markers\": [{\"point\": [0, 0, 0]}, {}]"),
                " markers[1]: found no key point, expected one"},
        BadJson{"AnUnknownKeyOfAMarker", fileOfMarker("\"hue\": \"red\""),
                " markers[0].hue: found an unknown key, expected one of point, shape, size, "
                "colour, transparency, id"},
        BadJson{"AMarkersPointOfTwoNumbers", fileOfMarker("\"point\": [0, 0]"),
                " markers[0].point: found 2 numbers, expected 3"},
        BadJson{"AMarkersPointBeyondFloat", fileOfMarker("\"point\": [0, 0, 1e19]"),
                " markers[0].point[2]: found 1e+19, expected a coordinate between -1e18 and 1e18"},
        BadJson{"AnotherShape", fileOfMarker("\"shape\": \"star\""),
                someShape + "'star'" + expectedShape},
        BadJson{"AShapeInCapitals", fileOfMarker("\"shape\": \"CUBE\""),
                someShape + "'CUBE'" + expectedShape},
        BadJson{"AShapeThatIsANumber", fileOfMarker("\"shape\": 1"),
                " markers[0].shape: found 1" + expectedShape},
        BadJson{"ASizeOfZero", fileOfMarker("\"size\": 0"),
                " markers[0].size: found 0" + expectedLength},
        BadJson{"ASizeBelowZero", fileOfMarker("\"size\": -1"),
                " markers[0].size: found -1" + expectedLength},
        BadJson{"ASizeBeyondFloat", fileOfMarker("\"size\": 1.1e18"),
                " markers[0].size: found 1.1e+18" + expectedLength},
        BadJson{"ASizeInQuotes", fileOfMarker("\"size\": \"1\""),
                " markers[0].size: found the string '1'" + expectedLength},
        BadJson{"AColourInBothSpellings", fileOfMarker(R"("color": "red", "colour": "red")"),
                " markers[0].colour: found a second time, expected each key once"},
        BadJson{"AColourOfNumbers", fileOfMarker("\"colour\": [1, 0, 0]"),
                " markers[0].colour: found an array, expected a colour: #rrggbb or an SVG name"},
        BadJson{"AColourThatIsANumber", fileOfMarker("\"colour\": 16711680"),
                " markers[0].colour: found 16711680, expected a colour: #rrggbb or an SVG name"},
        BadJson{"ATransparencyInPercent", fileOfMarker("\"transparency\": 50"),
                " markers[0].transparency: found 50, expected a number from 0 to 1"},
        BadJson{"ATransparencyBelowZero", fileOfMarker("\"transparency\": -0.5"),
                " markers[0].transparency: found -0.5, expected a number from 0 to 1"},
        BadJson{"ATransparencyThatIsTrue", fileOfMarker("\"transparency\": true"),
                " markers[0].transparency: found true, expected a number from 0 to 1"},
        BadJson{"AnIdWithAFraction", fileOfMarker("\"id\": 1.5"),
                " markers[0].id: found 1.5" + expectedId},
        BadJson{"AnIdThatIsTooLarge", fileOfMarker("\"id\": 9223372036854775808"),
                " markers[0].id: found 9223372036854775808" + expectedId},
        BadJson{"AnIdInQuotes", fileOfMarker("\"id\": \"7\""),
                " markers[0].id: found the string '7'" + expectedId},
        BadJson{"FramesThatAreOne", fileWith("\"frames\": {}"),
                " frames: found an object, expected an array of frames"},
        BadJson{"AFrameThatIsNull", fileWith("\"frames\": [null]"),
                " frames[0]: found null, expected an object with point and quaternion"},
        BadJson{"AFrameWithoutAPoint", fileOfFrame("\"quaternion\": [0, 0, 0, 1]"),
                " frames[0]: found no key point, expected one"},
        BadJson{"AFrameWithoutAQuaternion", fileOfFrame("\"point\": [0, 0, 0]"),
                " frames[0]: found no key quaternion or directors, expected one"},
        BadJson{"AFramesQuaternionOfThreeNumbers", fileOfFrame("\"quaternion\": [0, 0, 1]"),
                " frames[0].quaternion: found 3 numbers, expected 4"},
        BadJson{"AFramesQuaternionTooLong", fileOfFrame("\"quaternion\": [0, 0, 0, 2]"),
                " frames[0].quaternion: found a quaternion of norm 2" + expectedNorm},
        BadJson{"AFrameOfNoSize", fileOfFrame("\"size\": 0"),
                " frames[0].size: found 0" + expectedLength},
        BadJson{"AnUnknownKeyOfAFrame", fileOfFrame("\"quaternions\": []"),
                " frames[0].quaternions: found an unknown key, expected one of point, quaternion, "
                "directors, size"},
        BadJson{"ArrowsThatAreOne", fileWith("\"arrows\": {}"),
                " arrows: found an object, expected an array of arrows"},
        BadJson{"AnArrowThatIsANumber", fileWith("\"arrows\": [1]"),
                " arrows[0]: found 1, expected an object with from and to"},
        BadJson{"AnArrowFromNowhere", fileOfArrow("\"to\": [0, 0, 0]"),
                " arrows[0]: found no key from, expected one"},
        BadJson{"AnArrowToNowhere", fileOfArrow("\"from\": [0, 0, 0]"),
                " arrows[0]: found no key to, expected one"},
        BadJson{"AnArrowsEndBeyondFloat", fileOfArrow("\"to\": [-1e19, 0, 0]"),
                " arrows[0].to[0]: found -1e+19, expected a coordinate between -1e18 and 1e18"},
        BadJson{"AnArrowOfNoRadius", fileOfArrow("\"radius\": -0.1"),
                " arrows[0].radius: found -0.1" + expectedLength},
        BadJson{"AnArrowsColourThatIsNull", fileOfArrow("\"colour\": null"),
                " arrows[0].colour: found null, expected a colour: #rrggbb or an SVG name"},
        BadJson{"AnUnknownKeyOfAnArrow", fileOfArrow("\"size\": 1"),
                " arrows[0].size: found an unknown key, expected one of from, to, radius, "
                "colour"}),
    [](const auto& test) { return test.param.name; });

TEST(JsonReader, RefusesADeepNestWithoutFollowingIt)
{
    const Reading reading = readText(fileOfRod("\"points\": " + std::string(1000000, '[')));
    EXPECT_FALSE(reading.configuration);
    EXPECT_EQ(reading.report.error,
              "rod.json: rods[0].points[0][0]: found an array, expected a finite number");
}

} // namespace strandview
