// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/JsonReader.h"

#include <cmath>
#include <cstdio>
#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/readText.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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
    EXPECT_THAT(
        reading.report.notices,
        ElementsAre("rod.json: 1 rod without quaternions: frames made by parallel transport"));
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

TEST(JsonReader, ScalesQuaternionsToUnitLengthWhenAskedTo)
{
    ReadOptions options;
    options.normalise = true;
    const Rod rod = rodOf(fileOfRod(R"("points": [[0, 0, 0], [0, 0, 1]],
                                       "quaternions": [[0, 3, 0, 4], [-2, 0, 0, 0]])"),
                          options);
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0.6, 0, 0.8}, {-1, 0, 0, 0}}));
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
        BadJson{"AnArray", "[1, 2]",
                " found an array, expected an object with strandview and rods"},
        BadJson{"ANumber", "1.5", " found 1.5, expected an object with strandview and rods"},
        BadJson{"NoVersion", "{\"rods\": []}", " found no key strandview, expected one"},
        BadJson{"AnotherVersion", "{\"strandview\": 2, \"twigs\": []}",
                " strandview: found 2, expected 1"},
        BadJson{"AVersionInQuotes", "{\"strandview\": \"1\"}",
                " strandview: found the string '1', expected 1"},
        BadJson{"AVersionInBrackets", "{\"strandview\": [1]}",
                " strandview: found an array, expected 1"},
        BadJson{"NoRods", "{\"strandview\": 1}", " found no key rods, expected one"},
        BadJson{"NoRodInRods", "{\"strandview\": 1, \"rods\": []}",
                " found nothing to show, expected at least one rod"},
        BadJson{"RodsInAnObject", "{\"strandview\": 1, \"rods\": {}}",
                " rods: found an object, expected an array of rods"},
        BadJson{"ARodThatIsNull", "{\"strandview\": 1, \"rods\": [null]}",
                " rods[0]: found null, expected an object with points"},
        BadJson{"AnUnknownKey", "{\"strandview\": 1, \"rodz\": []}",
                " rodz: found an unknown key, expected one of strandview, rods"},
        BadJson{"AnUnknownKeyOfARod", fileOfRod("\"pionts\": []"),
                " rods[0].pionts: found an unknown key, expected one of points, quaternions, "
                "scalars"},
        BadJson{"AnOddUnknownKey", "{\"a.b\\nc\": 1}",
                " ['a.b\\x0ac']: found an unknown key, expected one of strandview, rods"},
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
                fileOfRod("\"points\": [[0, 0, 0], [0, 0, 1]], \"quaternions\": [[0, 0, 0, 1]]"),
                " rods[0].quaternions: found 1, expected 2, one for each point"},
        BadJson{"QuaternionsWithoutOne",
                fileOfRod("\"points\": [[0, 0, 0], [0, 0, 1]], \"quaternions\": []"),
                " rods[0].quaternions: found 0, expected 2, one for each point"},
        BadJson{"MoreScalarsThanPoints",
                fileOfRod("\"points\": [[0, 0, 0], [0, 0, 1]], \"scalars\": {\"a b\": [1, 2, 3]}"),
                " rods[0].scalars['a b']: found 3, expected 2, one for each point"},
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

TEST(JsonReader, RefusesADeepNestWithoutFollowingIt)
{
    const Reading reading = readText(fileOfRod("\"points\": " + std::string(1000000, '[')));
    EXPECT_FALSE(reading.configuration);
    EXPECT_EQ(reading.report.error,
              "rod.json: rods[0].points[0][0]: found an array, expected a finite number");
}
