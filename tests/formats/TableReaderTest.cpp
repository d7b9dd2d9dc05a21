// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/TableReader.h>

#include <algorithm>
#include <array>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <locale>
#include <random>
#include <sstream>
#include <utility>

#include <algebra3d/Matrix3.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <strandview/analysis/parallelTransport.h>

#include "support/TemporaryFolder.h"
#include "support/WrittenPipe.h"
#include "support/readText.h"

namespace strandview {

namespace {

using algebra3d::Matrix3;
using algebra3d::Quaternion;
using algebra3d::Vector3;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsNan;
using testing::Not;

constexpr double pi = 3.14159265358979323846;

Reading readText(const std::string& text, const ReadOptions& options = {})
{
    return readWith(readTableText, text, "rod.txt", options);
}

std::vector<Rod> rodsOf(const std::string& text) { return acceptedRods(readText(text)); }

Rod rodOf(const std::string& text, const ReadOptions& options = {})
{
    return onlyRod(readText(text, options));
}

std::vector<std::string> scalarNames(const Rod& rod)
{
    std::vector<std::string> names;
    for (const Scalar& scalar : rod.scalars)
        names.push_back(scalar.name);
    return names;
}

} // namespace

// ---- Columns

TEST(TableReader, SevenColumnsAreAPointAndAQuaternionWithItsScalarLast)
{
    const Rod rod = rodOf("0 1 2 0.6 0 0 0.8\n"
                          "3 4 5 0 0 1 0\n");
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 1, 2}, {3, 4, 5}}));
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0.6, 0, 0, 0.8}, {0, 0, 1, 0}}));
    EXPECT_THAT(rod.scalars, IsEmpty());
}

TEST(TableReader, ColumnsBeyondTheSeventhAreScalarsNamedByTheirNumber)
{
    const Rod rod = rodOf("0 0 0  0 0 0 1  10 -1\n"
                          "0 0 1  0 0 0 1  20 -2\n");
    ASSERT_EQ(rod.scalars.size(), 2U);
    EXPECT_EQ(rod.scalars[0].name, "column8");
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(10, 20));
    EXPECT_EQ(rod.scalars[1].name, "column9");
    EXPECT_THAT(rod.scalars[1].values, ElementsAre(-1, -2));
}

TEST(TableReader, AHeaderNamesTheColumnsInAnyOrder)
{
    const Rod rod = rodOf("twist qw qx qy qz Strain z y x\n"
                          "0.1 0.8 0.6 0 0 7 3 2 1\n"
                          "0.2 1 0 0 0 8 6 5 4\n");
    EXPECT_EQ(numbersOf(rod.points), (Points{{1, 2, 3}, {4, 5, 6}}));
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0.6, 0, 0, 0.8}, {0, 0, 0, 1}}));
    ASSERT_EQ(rod.scalars.size(), 2U);
    EXPECT_EQ(rod.scalars[0].name, "twist");
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(0.1, 0.2));
    EXPECT_EQ(rod.scalars[1].name, "Strain");
    EXPECT_THAT(rod.scalars[1].values, ElementsAre(7, 8));
}

TEST(TableReader, HeaderNamesOfPointsAndQuaternionsMayBeInCapitals)
{
    const Rod rod = rodOf("X,Y,Z,QX,qY,Qz,QW\n0,0,0,0,0,0,1\n0,0,1,0,0,1,0\n");
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0, 0, 1}, {0, 0, 1, 0}}));
    EXPECT_THAT(rod.scalars, IsEmpty());
}

TEST(TableReader, ScalarNamesThatDifferInCapitalsAreTwo)
{
    const Rod rod = rodOf("x y z t T\n0 0 0 1 2\n0 0 1 3 4\n");
    ASSERT_EQ(rod.scalars.size(), 2U);
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 3));
    EXPECT_THAT(rod.scalars[1].values, ElementsAre(2, 4));
}

TEST(TableReader, AHeaderWithoutQuaternionsLeavesTheFramesToTheReader)
{
    const Reading reading = readText("charge x y z\n5 0 0 0\n6 1 0 0\n");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Rod& rod = reading.configuration->rods[0];
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {1, 0, 0}}));
    EXPECT_EQ(rod.rotations.size(), 2U);
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(5, 6));
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.txt: 1 rod without frames: made by parallel transport, for a "
                            "ribbon where one is asked for (--ribbon)"));
}

TEST(TableReader, AColumnOfBasesAmongThoseOfARodIsLeftOut)
{
    const Rod rod = rodOf("x,y,z,base,s\n0,0,0,A,1\n0,0,1,,2\n0,0,2,n,3\n");
    ASSERT_EQ(rod.scalars.size(), 1U);
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 2, 3));
    EXPECT_EQ(rodOf("x,y,z,Base\n0,0,0,1\n0,0,1,2\n").scalars.size(), 1U) << "one of numbers";
}

std::vector<std::string> noticesOf(const std::string& text)
{
    const Reading reading = readText(text);
    EXPECT_TRUE(reading.configuration) << reading.report.error;
    std::vector<std::string> notices;
    for (const std::string& notice : reading.report.notices)
        if (notice.find("parallel transport") == std::string::npos)
            notices.push_back(notice);
    return notices;
}

TEST(TableReader, LettersOfBasesThatAreLeftOutAreTold)
{
    EXPECT_THAT(noticesOf("x,y,z,base,s\n0,0,0,A,1\n0,0,1,,2\n\n0,0,0,A,1\n0,0,1,,2\n"),
                ElementsAre("rod.txt: column 4 (base): letters left out: rods have none"));
    EXPECT_THAT(noticesOf("x,y,z,base\n0,0,0,\n0,0,1,\n"), IsEmpty()) << "there is no letter";
}

TEST(TableReader, WhatAllRodsLackIsTold)
{
    EXPECT_THAT(noticesOf("x,y,z,s,t2,u\n0,0,0,1,,\n0,0,1,2,,\n\n0,0,0,,,\n0,0,1,,,\n"),
                ElementsAre("rod.txt: column 5 (t2) and 1 more left out: empty in all rows"));
    EXPECT_THAT(noticesOf("x,y,z,s,u\n0,0,0,1,\n0,0,1,2,\n\n0,0,0,,3\n0,0,1,,4\n"), IsEmpty());
    EXPECT_THAT(noticesOf("x,y,z,s,u\n0,0,0,,3\n0,0,1,,4\n\n0,0,0,1,\n0,0,1,2,\n"), IsEmpty());
    EXPECT_THAT(noticesOf("x,y,z,qx,qy,qz,qw\n0,0,0,,,,\n0,0,1,,,,\n"),
                ElementsAre("rod.txt: column 4 (qx) and 3 more left out: empty in all rows"));
}

TEST(TableReader, AmongBasesAScalarThatIsEmptyIsNotKnownAndToldButInTheLastRow)
{
    const std::string header = "x,y,z,base,roll\n";
    const std::string letters = "rod.txt: column 4 (base): letters left out: rods have none";
    EXPECT_THAT(noticesOf(header + "0,0,0,A,1\n0,0,1,C,2\n0,0,2,G,\n"), ElementsAre(letters));
    const std::string gaps = "0,0,0,A,1\n0,0,1,C,\n0,0,2,G,\n0,0,3,G,4\n";
    EXPECT_TRUE(std::isnan(rodOf(header + gaps).scalars[0].values[1]));
    EXPECT_THAT(noticesOf(header + gaps + "\n" + gaps),
                ElementsAre(letters, "rod.txt: 4 empty fields between others taken as not known, "
                                     "the first in line 3, column 5 (roll)"));
    EXPECT_THAT(noticesOf(header + "0,0,0,A,1\n0,0,1,C,nan\n0,0,2,G,2\n"), ElementsAre(letters));
}

TEST(TableReader, ARowOfBasesThatIsAloneIsNoRodAndLeftOutWithANotice)
{
    const Reading reading =
        readText("x y z base\n0 0 0 A\n\n0 0 0 C\n0 0 1 G\n\n# strand 2\n0 0 0 T\n");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_EQ(reading.configuration->rods.size(), 1U);
    EXPECT_THAT(
        reading.report.notices,
        testing::Contains("rod.txt: 2 rows of a base alone left out: a rod has two points"));
}

TEST(TableReader, WithoutAHeaderOrOfATimeNoColumnMayBeEmpty)
{
    EXPECT_FALSE(readText("0,0,0,,,,,5\n0,0,1,,,,,6\n").configuration);
    EXPECT_FALSE(readText("t,x,y,z\n,0,0,0\n,0,0,1\n\n1,0,0,2\n1,0,0,3\n").configuration);
}

TEST(TableReader, ABaseInTheFirstColumnIsThatOfDnaAndNeedsALetter)
{
    EXPECT_FALSE(
        readText("base,x,y,z,qx,qy,qz,qw\n,0,0,0,0,0,0,1\nA,0,0,1,0,0,0,1\n").configuration);
}

TEST(TableReader, AColumnThatIsEmptyInAllRowsOfARodIsNoneOfIts)
{
    const Reading reading = readText("x,y,z,qx,qy,qz,qw,a,b\n"
                                     "0,0,0,,,,,,5\n0,0,1,,,,,,6\n0,0,2,,,,,,\n\n"
                                     "0,0,0,0,0,0,1,7,\n0,0,1,0,0,1,0,8,\n");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Rod &first = reading.configuration->rods.at(0),
              &second = reading.configuration->rods.at(1);
    EXPECT_FALSE(first.hasFrames);
    EXPECT_TRUE(second.hasFrames);
    ASSERT_EQ(first.scalars.size(), 1U);
    EXPECT_EQ(first.scalars[0].name, "b");
    EXPECT_THAT(first.scalars[0].values, ElementsAre(5, 5.5, 6)) << "of the elements";
    ASSERT_EQ(second.scalars.size(), 1U);
    EXPECT_EQ(second.scalars[0].name, "a");
    EXPECT_THAT(second.scalars[0].values, ElementsAre(7, 8));
}

// ---- Directors

namespace {

// d1 along y, d2 along z, d3 along x: a third of a turn about (1, 1, 1).
const Rotations thirdOfATurn = {{0.5, 0.5, 0.5, 0.5}, {0.5, 0.5, 0.5, 0.5}};

/// Two points along x, each with the same numbers behind.
std::string alongX(const std::string& names, const std::string& numbers)
{
    return "x y z " + names + "\n0 0 0 " + numbers + "\n1 0 0 " + numbers + "\n";
}

constexpr char allDirectors[] = "d1x d1y d1z d2x d2y d2z d3x d3y d3z";

void expectMatrix(const Quaternion<double>& rotation,
                  const std::array<std::array<double, 3>, 3>& columns, double tolerance)
{
    const Matrix3<double> matrix(rotation);
    for (int column = 0; column < 3; ++column)
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(matrix.getColumn(column)[k], columns[std::size_t(column)][std::size_t(k)],
                        tolerance)
                << column << ", " << k;
}

} // namespace

TEST(TableReader, NineDirectorColumnsAreAFrame)
{
    const Rod rod = rodOf(alongX(allDirectors, "0 1 0 0 0 1 1 0 0"));
    EXPECT_EQ(numbersOf(rod.rotations), thirdOfATurn);
    EXPECT_TRUE(rod.hasFrames);
    EXPECT_THAT(rod.scalars, IsEmpty());
}

TEST(TableReader, TwoDirectorsTellTheThird)
{
    for (const auto& [names, numbers] :
         {std::pair("d1x d1y d1z d2x d2y d2z", "0 1 0 0 0 1"),
          std::pair("d2x d2y d2z d3x d3y d3z", "0 0 1 1 0 0"),
          std::pair("d1x d1y d1z d3x d3y d3z", "0 1 0 1 0 0"),
          std::pair("d3z(1) D3X d3y s d1z d1y d1x", "0 1 0 7 0 1 0")}) {
        // The last has a unit, a capital, another order and a scalar.
        const Rod rod = rodOf(alongX(names, numbers));
        EXPECT_EQ(numbersOf(rod.rotations), thirdOfATurn) << names;
    }
}

TEST(TableReader, DirectorsWithinTheToleranceAreMadeOrthonormalAlongD3)
{
    // d3 5 mrad off x within the plane of x and y, d1 along y, of norm 1.005.
    const double c = std::cos(0.005), s = std::sin(0.005);
    std::ostringstream numbers;
    numbers.precision(17);
    numbers << "0 1.005 0 0 0 0.995 " << c << ' ' << s << " 0";
    const Rod rod = rodOf(alongX(allDirectors, numbers.str()));
    expectMatrix(rod.rotations[1], {{{-s, c, 0}, {0, 0, 1}, {c, s, 0}}}, 1e-15);
}

TEST(TableReader, NormaliseMakesAFrameOfAnyRightHandedDirectors)
{
    ReadOptions options;
    options.normalise = true;
    // d2 and d3 at 45 degrees: d3 stays, d2 turns, whatever their lengths.
    const Rod rod = rodOf(alongX("d2x d2y d2z d3x d3y d3z", "-3e200 0 3e200 1e-200 0 0"), options);
    EXPECT_EQ(numbersOf(rod.rotations), thirdOfATurn);
    const Rod three = rodOf(alongX(allDirectors, "5 1 0 0 0 9 7 0 0"), options);
    EXPECT_EQ(numbersOf(three.rotations), thirdOfATurn);
}

TEST(TableReader, NormaliseStillRefusesWhatIsNoFrame)
{
    ReadOptions options;
    options.normalise = true;
    for (const auto& [numbers, fault] :
         {std::pair("0 1 0 0 0 -1 1 0 0", "found left-handed directors, expected d3 = d1 x d2"),
          std::pair("1 1 0 1 2 0 1 0 0",
                    "found directors in one plane or line, expected d3 = d1 x d2"),
          std::pair("0 1 0 2 0 0 1 0 0",
                    "found directors in one plane or line, expected d3 = d1 x d2"),
          std::pair("0 1 0 0 0 0 1 0 0", "found d2 of norm 0, expected any other")}) {
        const Reading reading = readText(alongX(allDirectors, numbers), options);
        EXPECT_FALSE(reading.configuration) << numbers;
        EXPECT_EQ(reading.report.error, "rod.txt:2: directors: " + std::string(fault));
    }
}

TEST(TableReader, BesideAQuaternionDirectorsAreScalars)
{
    const Rod rod = rodOf(alongX("qx qy qz qw d3x d3y d3z", "0 0 0 1 1 0 0"));
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0, 0, 1}, {0, 0, 0, 1}}));
    EXPECT_THAT(scalarNames(rod), ElementsAre("d3x", "d3y", "d3z"));
}

// ---- Elements

namespace {

/// A rotation by the angle in degrees about z, as four fields.
std::string aboutZ(double degrees)
{
    std::ostringstream fields;
    fields.precision(17);
    fields << "0,0," << std::sin(degrees * pi / 360) << ',' << std::cos(degrees * pi / 360);
    return fields.str();
}

/// The angle of a rotation about z, in degrees.
double angleAboutZ(const Quaternion<double>& q) { return 360 / pi * std::atan2(q[2], q[3]); }

} // namespace

TEST(TableReader, FramesThatAreMissingInTheLastRowAreThoseOfElements)
{
    for (const char* last : {",,,", "nan,NaN,nan,nan", " , ,,"}) {
        const Reading reading =
            readText("x,y,z,qx,qy,qz,qw\n0,0,0," + aboutZ(10) + "\n0,0,1," + aboutZ(30) +
                     "\n0,0,2," + aboutZ(40) + "\n0,0,3," + last + "\n");
        ASSERT_TRUE(reading.configuration) << reading.report.error;
        const Rod& rod = reading.configuration->rods[0];
        ASSERT_EQ(rod.rotations.size(), 4U);
        // Half-way inside; the ends turn on by half of 20 and of 10 degrees.
        const double expected[] = {0, 20, 35, 45};
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_NEAR(angleAboutZ(rod.rotations[i]), expected[i], 1e-12);
        EXPECT_TRUE(rod.hasFrames);
        EXPECT_THAT(reading.report.notices, ElementsAre("rod.txt: 1 rod with frames or scalars of "
                                                        "elements: taken to the points"));
    }
}

TEST(TableReader, HalfWayBetweenOppositeSignsOfAQuaternionIsTheSameRotation)
{
    const Rod rod =
        onlyRod(readText("x,y,z,qx,qy,qz,qw\n0,0,0,0,0,0,1\n0,0,1,0,0,0,-1\n0,0,2,,,,\n"));
    for (const Quaternion<double>& q : rod.rotations)
        EXPECT_EQ(std::abs(q[3]), 1);
}

TEST(TableReader, DirectorsMayBelongToElements)
{
    const Rod rod = onlyRod(readText("x,y,z,d1x,d1y,d1z,d3x,d3y,d3z\n"
                                     "0,0,0,0,1,0,1,0,0\n1,0,0,0,1,0,1,0,0\n2,0,0,,,,,,\n"));
    ASSERT_EQ(rod.rotations.size(), 3U);
    for (const Quaternion<double>& q : rod.rotations)
        for (int k = 0; k < 4; ++k)
            EXPECT_NEAR(q[k], 0.5, 1e-15);
}

TEST(TableReader, AScalarThatIsMissingInTheLastRowBelongsToElements)
{
    const Rod rod = onlyRod(readText("x,y,z,energy,charge\n0,0,0,1,5\n0,0,1,3,6\n0,0,2,8,7\n"
                                     "0,0,3,,8\n"));
    ASSERT_EQ(rod.scalars.size(), 2U);
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 2, 5.5, 8)); // means, and the ends' own
    EXPECT_THAT(rod.scalars[1].values, ElementsAre(5, 6, 7, 8));
}

TEST(TableReader, AScalarThatIsNoNumberIsMissingIfTheFrameIs)
{
    const std::string frame = ",0,0,0,1,";
    const Rod rod = onlyRod(readText("x,y,z,qx,qy,qz,qw,s\n0,0,0" + frame + "1\n0,0,1" + frame +
                                     "3\n0,0,2,nan,nan,nan,nan,nan\n"));
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(1, 2, 3));
}

TEST(TableReader, EveryRodHasElementsOfItsOwn)
{
    const Reading reading = readText("x,y,z,s\n0,0,0,1\n0,0,1,\n\n0,0,0,1\n0,0,1,2\n\n"
                                     "x,y,z,s\n0,0,0,7\n0,0,1,\n");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_THAT(reading.configuration->rods[0].scalars[0].values, ElementsAre(1, 1));
    EXPECT_THAT(reading.configuration->rods[1].scalars[0].values, ElementsAre(1, 2));
    EXPECT_THAT(reading.configuration->rods[2].scalars[0].values, ElementsAre(7, 7));
}

TEST(TableReader, TheEndsOfAClosedRodAreBetweenItsLastElementAndItsFirst)
{
    const Rod rod = onlyRod(readText("x,y,z,qx,qy,qz,qw,s\n"
                                     "0,0,0," +
                                     aboutZ(80) + ",1\n1,0,0," + aboutZ(200) + ",2\n0,1,0," +
                                     aboutZ(320) + ",6\n0,0,0,,,,,\n"));
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(3.5, 1.5, 4, 3.5));
    const double expected[] = {20, 140, -100, 20};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(std::remainder(angleAboutZ(rod.rotations[i]) - expected[i], 360), 0, 1e-12);
}

// ---- Rods

TEST(TableReader, ABlankLineSeparatesRods)
{
    const std::vector<Rod> rods = rodsOf("\n\n0 0 0\n0 0 1\n \t \n5 0 0\n5 0 1\n5 0 2\n\n\n\n");
    ASSERT_EQ(rods.size(), 2U);
    EXPECT_EQ(numbersOf(rods[0].points), (Points{{0, 0, 0}, {0, 0, 1}}));
    EXPECT_EQ(numbersOf(rods[1].points), (Points{{5, 0, 0}, {5, 0, 1}, {5, 0, 2}}));
}

TEST(TableReader, ALineOfACommentOnlySeparatesNothing)
{
    const Rod rod = rodOf("# a rod\n0 0 0\n  # of\n0 0 1 # two\n#edges\n0 0 2#\n");
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}));
}

TEST(TableReader, AHeaderCountsForEveryRodAndMayComeAgain)
{
    const std::vector<Rod> rods = rodsOf("z y x s\n1 2 3 4\n5 6 7 8\n"
                                         "\n1 1 1 1\n2 2 2 2\n"
                                         "\nZ, Y, X, s # again\n9 0 0 1\n8 0 0 2\n");
    ASSERT_EQ(rods.size(), 3U);
    EXPECT_EQ(numbersOf(rods[0].points), (Points{{3, 2, 1}, {7, 6, 5}}));
    EXPECT_EQ(numbersOf(rods[2].points), (Points{{0, 0, 9}, {0, 0, 8}}));
    for (const Rod& rod : rods) {
        ASSERT_EQ(rod.scalars.size(), 1U);
        EXPECT_EQ(rod.scalars[0].name, "s");
        EXPECT_EQ(rod.scalars[0].values.size(), 2U);
    }
}

// ---- Frames of a series

namespace {

class TableSeriesTest : public testing::Test
{
protected:
    void open(const std::string& text)
    {
        report = {};
        series = openTable(Source::ofBytes("run.txt", text), {}, report);
        ASSERT_TRUE(series) << report.error;
    }

    /// Of each frame the numbers of points of its rods, "2 3, 4".
    std::string shape()
    {
        std::string text;
        for (std::size_t i = 0; i < series->count(); ++i) {
            const LoadedFrame frame = series->load(i);
            EXPECT_TRUE(frame.configuration) << frame.error;
            text += i == 0 ? "" : ",";
            for (const Rod& rod : frame.configuration.value_or(Configuration()).rods)
                text += " " + std::to_string(rod.points.size());
        }
        return text;
    }

    std::vector<double> times() const
    {
        std::vector<double> all;
        for (std::size_t i = 0; i < series->count(); ++i)
            if (series->time(i))
                all.push_back(*series->time(i));
        return all;
    }

    ReadReport report;
    std::unique_ptr<Series> series;
};

} // namespace

TEST_F(TableSeriesTest, TwoBlankLinesOrMoreSeparateFrames)
{
    open("0 0 0\n0 0 1\n\n1 0 0\n1 0 1\n1 0 2\n\n \t\n5 0 0\n5 0 1\n\n\n\n\n7 0 0\n7 0 1\n\n\n");
    EXPECT_EQ(shape(), " 2 3, 2, 2");
    EXPECT_THAT(times(), IsEmpty());
    const Configuration last = *series->load(2).configuration;
    EXPECT_EQ(numbersOf(last.rods[0].points), (Points{{7, 0, 0}, {7, 0, 1}}));
    EXPECT_EQ(last.rods[0].origin, "run.txt:15: rod 1");
    EXPECT_THAT(last.rods[0].lines, ElementsAre(15, 16));
}

TEST_F(TableSeriesTest, LinesMayEndInAnyWay)
{
    for (const std::string end : {"\n", "\r\n", "\r"}) {
        SCOPED_TRACE(testing::PrintToString(end));
        const std::string rod = "0 0 0" + end + "0 0 1" + end;
        open(rod + end + rod + end + end + rod);
        EXPECT_EQ(shape(), " 2 2, 2");
        EXPECT_EQ(series->load(1).configuration->rods[0].lines[0], 8U);
    }
}

TEST_F(TableSeriesTest, CommentsSeparateNothingAndABlankLineOnEitherSideIsOne)
{
    open("# run\n0 0 0\n#\n0 0 1\n\n# next rod\n\n1 0 0\n1 0 1\n\n\n# next frame\n2 0 0\n2 0 1\n");
    EXPECT_EQ(shape(), " 2 2, 2");
}

TEST_F(TableSeriesTest, TheHeaderCountsForAllFramesAndMayComeAgain)
{
    open("z y x s\n0 0 9 1\n0 0 8 2\n\n\nz y x s\n1 2 3 4\n5 6 7 8\n\n\n0 0 1 5\n0 0 2 6\n");
    EXPECT_EQ(shape(), " 2, 2, 2");
    const Rod second = series->load(1).configuration->rods[0];
    EXPECT_EQ(numbersOf(second.points), (Points{{3, 2, 1}, {7, 6, 5}}));
    EXPECT_THAT(second.scalars[0].values, ElementsAre(4, 8));
}

TEST_F(TableSeriesTest, ADecimalCommaCountsForAllFrames)
{
    open("x;y;z\n0,5;0;0\n1,5;0;0\n\n\n2,5;0;0\n3,5;0;0\n");
    EXPECT_EQ(numbersOf(series->load(1).configuration->rods[0].points),
              (Points{{2.5, 0, 0}, {3.5, 0, 0}}));
}

TEST_F(TableSeriesTest, RowsOfOneTimeAreAFrameAndTheTimeIsNoScalar)
{
    for (const char* name : {"t", "time", "Time", "TIME", "t[s]", "time(ps)"}) {
        SCOPED_TRACE(name);
        open("x y z " + std::string(name) +
             " s\n0 0 0 0.5 1\n0 0 1 0.5 2\n\n1 0 0 0.5 3\n1 0 1 0.5 4\n"
             "0 0 0 -1e2 5\n0 0 1 -1e2 6\n0 0 2 -1e2 7\n2 0 0 0.5 8\n2 0 1 0.5 9\n");
        EXPECT_EQ(shape(), " 2 2, 3, 2");
        EXPECT_THAT(times(), ElementsAre(0.5, -100, 0.5));
        const Rod rod = series->load(1).configuration->rods[0];
        EXPECT_THAT(scalarNames(rod), ElementsAre("s"));
        EXPECT_THAT(rod.scalars[0].values, ElementsAre(5, 6, 7));
    }
}

TEST_F(TableSeriesTest, AColumnOfFrameNumbersTellsNoTimes)
{
    open("Frame,x,y,z\n0,0,0,0\n0,0,0,1\n1,0,0,0\n1,0,0,2\n");
    EXPECT_EQ(shape(), " 2, 2");
    EXPECT_THAT(times(), IsEmpty());
}

TEST_F(TableSeriesTest, OfSeveralSuchColumnsTheTimeGoesFirst)
{
    open("frame time x y z\n1 0.1 0 0 0\n1 0.1 0 0 1\n2 0.2 0 0 0\n2 0.2 0 0 2\n");
    EXPECT_THAT(times(), ElementsAre(0.1, 0.2));
    EXPECT_THAT(scalarNames(series->load(0).configuration->rods[0]), ElementsAre("frame"));
}

TEST_F(TableSeriesTest, BlankLinesAndTimesSeparateFramesTogether)
{
    open("x y z t\n0 0 0 1\n0 0 1 1\n\n\n0 0 0 1\n0 0 2 1\n0 0 0 2\n0 0 3 2\n");
    EXPECT_EQ(shape(), " 2, 2, 2");
    EXPECT_THAT(times(), ElementsAre(1, 1, 2));
}

TEST_F(TableSeriesTest, AValueOfItsOwnInARowMakesItAScalar)
{
    // A parameter along the rod; a temperature, which is not written small; what never changes.
    for (const char* table :
         {"x y z t\n0 0 0 0\n0 0 1 0.1\n0 0 2 0.2\n",
          "x y z t\n0 0 0 1\n0 0 1 1\n0 0 2 2\n0 0 3 3\n",
          "x y z T\n0 0 0 0\n0 0 1 0\n0 0 2 1\n0 0 3 1\n", "x y z time\n0 0 0 7\n0 0 1 7\n"}) {
        SCOPED_TRACE(table);
        open(table);
        ASSERT_EQ(series->count(), 1U);
        EXPECT_THAT(times(), IsEmpty());
        const Rod rod = series->load(0).configuration->rods[0];
        ASSERT_EQ(rod.scalars.size(), 1U);
        EXPECT_EQ(rod.scalars[0].values.size(), rod.points.size());
    }
}

TEST_F(TableSeriesTest, TimesMayBeLeftOutInARowOfElements)
{
    open("x,y,z,qx,qy,qz,qw,t\n0,0,0,0,0,0,1,0\n0,0,1,0,0,0,1,0\n0,0,2,,,,,\n\n"
         "0,0,0,0,0,0,1,1\n0,0,3,0,0,0,1,1\n0,0,4,,,,,\n");
    EXPECT_EQ(shape(), " 3, 3");
    EXPECT_TRUE(series->load(1).configuration->rods[0].hasFrames);
}

TEST_F(TableSeriesTest, FramesOfDnaMayHaveATime)
{
    open("base x y z qx qy qz qw t\nA 0 0 0 0 0 0 1 0\nC 0 0 3 0 0 0 1 0\n"
         "A 0 0 0 0 0 0 1 0.5\nC 0 0 4 0 0 0 1 0.5\n");
    ASSERT_EQ(series->count(), 2U);
    EXPECT_THAT(times(), ElementsAre(0, 0.5));
    EXPECT_EQ(series->load(1).configuration->dnas[0].pairPoints[1].z, 4);
    open("base x y z qx qy qz qw t\nA 0 0 0 0 0 0 1 0\n");
    EXPECT_EQ(series->load(0).configuration->dnas.size(), 1U);
}

TEST_F(TableSeriesTest, ALastFrameThatIsCutShortIsLeftOutWithANotice)
{
    open("0 0 0\n0 0 1\n\n\n1 0 0\n1 0 1\n\n\n2 0 0\n2 0");
    EXPECT_EQ(shape(), " 2, 2");
    EXPECT_THAT(report.notices,
                ElementsAre("run.txt:10: found 2 columns, expected 3 as in line 1; frame 2, the "
                            "last one, is left out"));
    open("x y z t\n0 0 0 0\n0 0 1 0\n0 0 0 1\n0 0 1 1\n0 0 0 2\n");
    EXPECT_EQ(shape(), " 2, 2");
    EXPECT_THAT(times(), ElementsAre(0, 1));
    EXPECT_THAT(
        report.notices,
        ElementsAre("run.txt:6: found 1 distinct point, expected at least 2 in a rod; frame "
                    "2, the last one, is left out"));
}

TEST_F(TableSeriesTest, AFaultInAFrameIsToldWhenItIsLoadedAndLeavesTheOthers)
{
    open("0 0 0\n0 0 1\n\n\n1 0 0\n1 x 1\n\n\n2 0 0\n2 0 1\n");
    EXPECT_EQ(series->load(1).error,
              "run.txt:6: column 2 (y): found 'x', expected a finite number");
    EXPECT_TRUE(series->load(0).configuration && series->load(2).configuration);
    EXPECT_FALSE(openTable(Source::ofBytes("run.txt", "0 0 0\n0 x 1\n"), {}, report));
    EXPECT_EQ(report.error, "run.txt:2: column 2 (y): found 'x', expected a finite number");
}

TEST_F(TableSeriesTest, TheFirstFrameIsReadWithTheirNumber)
{
    const Reading reading = readText("0 0 0\n0 0 1\n\n\n1 0 0\n1 0 1\n1 0 2\n");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_EQ(reading.configuration->rods.size(), 1U);
    EXPECT_EQ(reading.report.frames, 2U);
    EXPECT_EQ(readText("0 0 0\n0 0 1\n").report.frames, 1U);
}

TEST_F(TableSeriesTest, FramesAreFoundWhereverAPieceOfALongFileEnds)
{
    // Lines of all lengths, beyond the size of a piece; each frame is told by its points.
    const TemporaryFolder folder;
    std::mt19937 random(7);
    std::string text = "x y z s\r\n";
    std::vector<std::string> shapes;
    for (int frame = 0; text.size() < 9'000'000; ++frame) {
        const std::size_t rows = 2 + random() % 3;
        shapes.push_back(std::to_string(rows));
        for (std::size_t i = 0; i < rows; ++i)
            text += "0 0 " + std::to_string(i) + " " + std::to_string(frame) + "#" +
                    std::string(random() % 200000, 'c') + "\r\n";
        text += "\r\n\r\n";
    }
    const auto source = Source::open(folder.write("long.txt", text), report);
    series = openTable(Source::open(folder.path("long.txt"), report), {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), shapes.size());
    ASSERT_GT(series->count(), 20U);
    for (std::size_t i = 0; i < series->count(); ++i) {
        const LoadedFrame frame = series->load(i);
        ASSERT_TRUE(frame.configuration) << frame.error;
        const Rod& rod = frame.configuration->rods[0];
        EXPECT_EQ(std::to_string(rod.points.size()), shapes[i]);
        EXPECT_EQ(rod.scalars[0].values[0], double(i));
    }
}

TEST_F(TableSeriesTest, LoadingCanBeStopped)
{
    open("0 0 0\n0 0 1\n\n\n1 0 0\n1 0 1\n");
    EXPECT_EQ(series->load(1, [](double) { return false; }).error.find("run.txt"), 0U);
    EXPECT_TRUE(series->load(1).configuration);
}

// ---- Rows that are frames, and frames of so many rows

TEST_F(TableSeriesTest, EachWideRowIsAFrame)
{
    open("t,x1,y1,z1,x2,y2,z2,x3,y3,z3\n0,0,0,0,0,0,1,0,0,2\n\n# later\n"
         "0.5,0,0,0,0,0,1,0,3,1\n0.5,0,0,0,0,4,1,0,3,1\n");
    EXPECT_EQ(shape(), " 3, 3, 3");
    EXPECT_THAT(times(), ElementsAre(0, 0.5, 0.5));
    const Rod rod = series->load(1).configuration->rods[0];
    EXPECT_EQ(rod.points[2].y, 3);
    EXPECT_EQ(rod.points[1].z, 1);
    EXPECT_THAT(rod.lines, ElementsAre(5, 5, 5));
    EXPECT_EQ(rod.origin, "run.txt:5: rod 1");
    EXPECT_THAT(rod.scalars, IsEmpty());
    EXPECT_FALSE(rod.hasFrames);
}

TEST_F(TableSeriesTest, OfAWideRowOtherColumnsAreLeftOut)
{
    open("name;Frame;x1;y1;z1;x2;y2;z2;energy;\n\"a b\";1;0;0;0;0;0;1;-;\n"
         "c;2;0,5;0;0;0;0;1;;\nname;Frame;x1;y1;z1;x2;y2;z2;energy;\nd;3;1;0;0;0;0;1;2;\n");
    EXPECT_EQ(shape(), " 2, 2, 2");
    EXPECT_THAT(times(), IsEmpty()) << "numbers of frames";
    EXPECT_EQ(series->load(1).configuration->rods[0].points[0].x, 0.5);
    EXPECT_EQ(series->load(2).configuration->rods[0].points[0].x, 1);
}

TEST_F(TableSeriesTest, FaultsInAWideRowAreToldByTheNameOfTheColumn)
{
    open("t x1 y1 z1 x2 y2 z2\n0 0 0 0 0 0 1\n1 0 0 0 0 no 1\n2 0 0 0 0 0\n"
         "3 0 0 0 0 0 1e19\n4 0 0 0 0 0 nan\n5 1 1 1 1 1 1\n6 0 0 0 0 0 1\n");
    const std::vector<std::string> faults = {
        "",
        "run.txt:3: column 6 (y2): found 'no', expected a finite number",
        "run.txt:4: found 6 columns, expected 7 as in line 1",
        "run.txt:5: column 7 (z2): found 1e+19, expected a coordinate between -1e18 and 1e18",
        "run.txt:6: column 7 (z2): found 'nan', expected a finite number",
        "run.txt:7: found 1 distinct point, expected at least 2 in a rod",
        ""};
    ASSERT_EQ(series->count(), faults.size());
    for (std::size_t i = 0; i < faults.size(); ++i)
        EXPECT_EQ(series->load(i).error, faults[i]);
    EXPECT_EQ(readText("t,x1,y1,z1,x2,y2,z2,x3\n0,0,0,0,0,0,1,0\n").report.error,
              "rod.txt:1: column 8: found 'x3', expected x y z of each point, one point after the "
              "other");
    EXPECT_EQ(readText("t,x1,y1,z1,x2,y2,z2\n").report.error, readText("x,y,z\n").report.error);
}

TEST_F(TableSeriesTest, AWideRowThatIsCutShortIsLeftOut)
{
    open("x1 y1 z1 x2 y2 z2\n0 0 0 0 0 1\n0 0 0 0 0\n");
    EXPECT_EQ(shape(), " 2");
    EXPECT_THAT(report.notices[0], HasSubstr("expected 6 as in line 1; frame 1, the last one"));
}

TEST_F(TableSeriesTest, WideRowsWithoutAHeaderAreAskedFor)
{
    ReadOptions options;
    options.frameRows = 1;
    const auto ask = [&](const std::string& text) {
        report = {};
        series = openTable(Source::ofBytes("run.txt", text), options, report);
    };
    ask("0.25 0 0 0 0 0 1\n0.5 0 0 0 0 0 2\n");
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(shape(), " 2, 2");
    EXPECT_THAT(times(), ElementsAre(0.25, 0.5));
    ask("0 0 0 0 0 1 0 0 2\n0 0 0 0 0 2 0 0 4\n");
    EXPECT_EQ(shape(), " 3, 3");
    EXPECT_THAT(times(), IsEmpty());
    ask("t,x1,y1,z1,x2,y2,z2\n0,0,0,0,0,0,1\n");
    EXPECT_EQ(shape(), " 2");
    EXPECT_THAT(report.notices, Not(Contains(HasSubstr("--frame-rows"))));
    ask("0 0 0 0 0\n");
    EXPECT_EQ(report.error, "run.txt:1: found 5 columns, expected x y z of each of two points or "
                            "more, or a time and these");
    ask("x y z\n0 0 0\n");
    EXPECT_EQ(report.error,
              "run.txt:1: found a header without x1 y1 z1 x2 y2 z2, expected x y z of "
              "each of two points or more, or a time and these");
}

TEST_F(TableSeriesTest, BelowAHeaderOfWideRowsTheirNumberHasNoEffectWhichIsTold)
{
    const std::string text = "t,x1,y1,z1,x2,y2,z2\n0,0,0,0,0,0,1\n1,0,0,0,0,0,1\n";
    const char* const told =
        "run.txt: --frame-rows has no effect: found rows that are whole frames";
    ReadOptions options;
    options.frameRows = 2;
    series = openTable(Source::ofBytes("run.txt", text), options, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(shape(), " 2, 2");
    EXPECT_THAT(report.notices, ElementsAre(told));
    report = {};
    EXPECT_TRUE(readTable(*Source::ofBytes("run.txt", text), options, report)) << report.error;
    EXPECT_THAT(report.notices, Contains(told));
}

TEST_F(TableSeriesTest, SoManyRowsAreAFrameWhereThatIsAsked)
{
    ReadOptions options;
    options.frameRows = 3;
    const auto ask = [&](const std::string& text) {
        report = {};
        series = openTable(Source::ofBytes("run.txt", text), options, report);
        ASSERT_TRUE(series) << report.error;
    };
    ask("0 0 0\n0 0 1\n0 0 2\n1 0 0\n1 0 1\n1 0 2\n");
    EXPECT_EQ(shape(), " 3, 3");
    EXPECT_EQ(series->load(1).configuration->rods[0].points[0].x, 1);
    EXPECT_THAT(report.notices, IsEmpty());
    // Whatever is between them; a blank line still ends a rod.
    ask("x y z s\n0 0 0 5\n\n\n# half\n0 0 1 5\n0 0 2 5\n\nx y z s\n1 0 0 6\n1 0 1 7\n1 0 2 8\n0 0 "
        "0 0");
    ASSERT_EQ(series->count(), 2u);
    EXPECT_THAT(series->load(0).error, HasSubstr("found 1 distinct point"));
    EXPECT_THAT(series->load(1).configuration->rods[0].scalars[0].values, ElementsAre(6, 7, 8));
    EXPECT_THAT(report.notices,
                ElementsAre("run.txt:13: found 1 row in the frame, expected 3; frame 2, the last "
                            "one, is left out"));
    ask("time x y z\n1 0 0 0\n2 0 0 1\n3 0 0 2\n4 0 0 0\n5 0 0 1\n6 0 0 2\n");
    EXPECT_EQ(shape(), " 3, 3");
    EXPECT_THAT(times(), ElementsAre(1, 4)) << "of the first row of each";
    EXPECT_THAT(series->load(0).configuration->rods[0].scalars, IsEmpty());
    ask("A 0 0 0 0 0 0 1\nC 0 0 3 0 0 0 1\nG 0 0 6 0 0 0 1\n");
    EXPECT_EQ(series->load(0).configuration->dnas[0].bases, "ACG");
    EXPECT_FALSE(openTable(Source::ofBytes("run.txt", "0 0 0\n0 0 1\n"), options, report));
    EXPECT_THAT(report.error, HasSubstr("found 2 rows in the frame, expected 3"));
}

// ---- Frames that are found later

namespace {

constexpr char TWO_POINTS[] = "0 0 0\n0 0 1\n\n\n";
constexpr char TWO[] = "0 0 0\n0 0 1\n\n\n1 0 0\n1 0 1\n1 0 2\n";

class GrowingTableTest : public TableSeriesTest
{
protected:
    void follow(const std::string& text)
    {
        ReadOptions options;
        options.growing = true;
        series = openTable(Source::open(folder.write("run.txt", text), report), options, report);
    }
    /// The shape after that was written, too.
    std::string after(const std::string& more)
    {
        folder.append("run.txt", more);
        EXPECT_TRUE(series->lookForMore({}));
        return shape();
    }

    const TemporaryFolder folder;
};

} // namespace

TEST_F(GrowingTableTest, AFrameIsWholeWithTheBlankLinesBehindIt)
{
    follow(TWO);
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(shape(), " 2");
    EXPECT_THAT(report.notices,
                ElementsAre(HasSubstr(
                    "run.txt:8: found no end of the frame, expected two blank lines or another "
                    "frame; frame 1 is left out until it is whole")));
    EXPECT_EQ(after(""), " 2");
    EXPECT_EQ(after("1 0 3\n\n"), " 2");
    EXPECT_EQ(after("\n"), " 2, 4");
    EXPECT_EQ(after("\n# next\n2 0 0\n2 0 1"), " 2, 4");
    EXPECT_EQ(after("0\n\n2 1 0\n2 1 1\n\n"), " 2, 4") << "2 0 10, in its second rod";
    EXPECT_EQ(after("\n3"), " 2, 4, 2 2");
    EXPECT_EQ(series->load(2).configuration->rods[0].points[1].z, 10);
}

// Of which readFile() is the reader: with an end or without.
TEST_F(GrowingTableTest, TheFirstFrameIsReadAloneWithoutAWordOfTheOthers)
{
    ReadOptions options;
    options.atOnce = options.growing = true;
    for (const std::string text : {TWO, "0 0 0\n0 0 1\n\n\n1 0 0\n1 0", "0 0 0\n0 0 1\n"}) {
        const auto source = Source::ofBytes("run.txt", text);
        const auto first = readTable(*source, options, report);
        ASSERT_TRUE(first) << report.error;
        EXPECT_EQ(first->rods.at(0).points.size(), 2u);
        EXPECT_THAT(report.notices, ElementsAre(HasSubstr("1 rod without frames")));
        report = {};
    }
}

TEST_F(GrowingTableTest, AFrameIsWholeWithARowOfAnotherTime)
{
    follow("t x y z\n0 0 0 0\n0 0 0 1\n");
    EXPECT_FALSE(series);
    EXPECT_EQ(report.error.substr(report.error.find("run.txt")),
              "run.txt:4: found no end of the frame, expected two blank lines or another frame");
    report = {};
    follow("t x y z\n0 0 0 0\n0 0 0 1\n0.5 0 0 0\n");
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(shape(), " 2");
    EXPECT_EQ(after("0.5 0 0 1\n0.5 0 0 2\n"), " 2");
    EXPECT_EQ(after("0.75 0 0 0\n"), " 2, 3");
    EXPECT_THAT(times(), ElementsAre(0, 0.5));
    EXPECT_EQ(after("0.75 0 0 1\n\n\n"), " 2, 3, 2");
    EXPECT_THAT(times(), ElementsAre(0, 0.5, 0.75));
    EXPECT_THAT(series->load(0).configuration->rods[0].scalars, IsEmpty());
}

TEST_F(GrowingTableTest, ATimeIsNoScalarFromTheFirstFrameOn)
{
    follow("t x y z\n0 0 0 0\n0 0 0 1\n\n\n");
    ASSERT_TRUE(series) << report.error;
    EXPECT_THAT(times(), ElementsAre(0));
    EXPECT_THAT(series->load(0).configuration->rods[0].scalars, IsEmpty());
    EXPECT_EQ(after("1 0 0 0\n1 0 0 1\n2"), " 2");
    EXPECT_EQ(after(" 0 0 0\n"), " 2, 2");
}

TEST_F(GrowingTableTest, AFaultInAFrameThatIsWholeLeavesTheOthers)
{
    follow("0 0 0\n0 0 1\n\n\n");
    folder.append("run.txt", "1 0 0\n1 x 1\n\n\n2 0 0\n2 0 1\n2 0 2\n\n\n");
    EXPECT_TRUE(series->lookForMore({}));
    ASSERT_EQ(series->count(), 3u);
    EXPECT_THAT(series->load(1).error, HasSubstr("run.txt:6: column 2 (y): found 'x'"));
    EXPECT_EQ(series->load(2).configuration->rods[0].points.size(), 3u);
}

TEST_F(GrowingTableTest, ARowThatIsAFrameIsWholeWithItsEnd)
{
    follow("t,x1,y1,z1,x2,y2,z2\n0,0,0,0,0,0,1\n");
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(shape(), " 2");
    EXPECT_EQ(after("1,0,0,0,0,0,1"), " 2");
    EXPECT_EQ(after("0\n2,"), " 2, 2");
    EXPECT_EQ(series->load(1).configuration->rods[0].points[1].z, 10);
}

TEST_F(GrowingTableTest, SoManyRowsAreWholeWithTheLast)
{
    ReadOptions options;
    options.growing = true;
    options.frameRows = 2;
    series = openTable(Source::open(folder.write("run.txt", "0 0 0\n0 0 1\n0 0"), report), options,
                       report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(after(" 2\n0 0 3"), " 2");
    EXPECT_EQ(after("\n"), " 2, 2");
}

TEST_F(TableSeriesTest, AtOnceFindsTheSameFrames)
{
    const TemporaryFolder folder;
    std::string text = "t x y z\n";
    while (text.size() < 5'000'000) {
        const std::string time = std::to_string(text.size());
        for (const char* row : {" 0 0 0\n", " 0 0 1\n", " 0 1 1\n"})
            text += time + row;
    }
    folder.write("run.txt", text + "1 2");
    const auto opened = [&](bool atOnce) {
        ReadOptions options;
        options.atOnce = atOnce;
        return openTable(Source::open(folder.path("run.txt"), report), options, report);
    };
    const auto whole = opened(false), later = opened(true);
    ASSERT_TRUE(whole && later);
    EXPECT_FALSE(whole->lookForMore({}));
    EXPECT_LT(later->count(), whole->count() / 4);
    EXPECT_EQ(later->load(0).configuration->rods[0].points.size(), 3u);
    // Stopped before each piece but the first.
    bool mayBeMore = true;
    for (int rounds = 0; mayBeMore; ++rounds) {
        ASSERT_LT(rounds, 10);
        int asked = 0;
        mayBeMore = later->lookForMore([&](double) { return ++asked <= 2; });
    }
    ASSERT_EQ(later->count(), whole->count());
    for (const std::size_t frame : {std::size_t(1), whole->count() / 2, whole->count() - 1}) {
        EXPECT_EQ(later->time(frame), whole->time(frame));
        const LoadedFrame one = whole->load(frame), other = later->load(frame);
        EXPECT_EQ(one.configuration->rods[0].lines, other.configuration->rods[0].lines);
        EXPECT_EQ(other.configuration->rods[0].scalars.size(), 0u);
    }
    EXPECT_FALSE(later->lookForMore({}));
}

TEST_F(TableSeriesTest, AtOnceReadsAPipeAsFarAsItIsLookedAt)
{
    std::string beginning;
    std::size_t frames = 0;
    for (; beginning.size() < 1'500'000; ++frames)
        beginning += TWO_POINTS;
    const TemporaryFolder folder;
    WrittenPipe pipe(folder.path("pipe"), beginning, TWO_POINTS);
    ReadOptions options;
    options.atOnce = true;
    series = openTable(Source::open(folder.path("pipe"), report), options, report);
    pipe.letGo();
    ASSERT_TRUE(series) << report.error;
    EXPECT_GE(series->count(), 1u);
    EXPECT_LT(series->count(), frames);
    EXPECT_FALSE(series->lookForMore({}));
    EXPECT_EQ(series->count(), frames + 1);
    EXPECT_EQ(series->load(frames).configuration->rods[0].points.size(), 2u);
}

TEST_F(TableSeriesTest, AtOnceWhatFitsIntoAPieceIsKnown)
{
    ReadOptions options;
    options.atOnce = true;
    series = openTable(Source::ofBytes("run.txt", TWO), options, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(shape(), " 2, 3");
    EXPECT_FALSE(series->lookForMore({}));
}

// ---- More rods

TEST(TableReader, CountsTheRodsWithoutQuaternionsInOneNotice)
{
    const Reading reading = readText("0 0 0\n0 0 1\n\n1 0 0\n1 0 1\n");
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.txt: 2 rods without frames: made by parallel transport, for a "
                            "ribbon where one is asked for (--ribbon)"));
}

TEST(TableReader, ARodKnowsTheLineOfItsFirstPoint)
{
    const std::vector<Rod> rods = rodsOf("x y z\n# first\n0 0 0\n0 0 1\n\nx y z\n1 0 0\n1 0 1\n");
    ASSERT_EQ(rods.size(), 2U);
    EXPECT_EQ(rods[0].origin, "rod.txt:3: rod 1");
    EXPECT_EQ(rods[1].origin, "rod.txt:7: rod 2");
}

// ---- Headers of other programs

TEST(TableReader, QuotesProtectBlanksAndSeparatorsInNames)
{
    const Rod rod = rodOf("\"x\" \"y\" \"z\" \"a, b # c\"\n0 0 0 1\n0 0 1 2\n");
    EXPECT_THAT(scalarNames(rod), ElementsAre("a, b # c"));
}

TEST(TableReader, BetweenCommasSemicolonsOrTabsANameMayHaveBlanks)
{
    for (const std::string separator : {",", ";", "\t", " , "}) {
        SCOPED_TRACE(separator);
        const auto joined = [&](const std::string& first) {
            return first + separator + "x" + separator + "y" + separator + "z";
        };
        const std::vector<Rod> rods = rodsOf(joined("bond angle") + " # mm\n7 0 0 0\n8 0 0 1\n\n" +
                                             joined("bond angle") + "\n7 0 1 0\n8 0 1 1\n");
        ASSERT_EQ(rods.size(), 2U);
        EXPECT_THAT(scalarNames(rods[1]), ElementsAre("bond angle"));
        EXPECT_EQ(numbersOf(rods[1].points), (Points{{0, 1, 0}, {0, 1, 1}}));
    }
}

TEST(TableReader, UnitsBehindTheNamesOfPointsAreLeftOut)
{
    const Rod rod = rodOf("X [m],y (nm),z[1e-9 m],bend [1/m]\n1,2,3,4\n5,6,7,8\n");
    EXPECT_EQ(numbersOf(rod.points), (Points{{1, 2, 3}, {5, 6, 7}}));
    EXPECT_THAT(scalarNames(rod), ElementsAre("bend [1/m]"));
}

TEST(TableReader, AFirstColumnWithoutANameIsNamedByItsNumber)
{
    for (const char* name : {"", "\"\""}) {
        const Rod rod = rodOf(std::string(name) + ",x,y,z\n0,1,2,3\n1,4,5,6\n");
        EXPECT_EQ(numbersOf(rod.points), (Points{{1, 2, 3}, {4, 5, 6}}));
        EXPECT_THAT(scalarNames(rod), ElementsAre("column1"));
    }
}

TEST(TableReader, ASeparatorAtTheEndOfEveryLineIsLeftOut)
{
    for (const char* text : {"x,y,z,\n0,0,0,\n0,0,1, # c\n\nx,y,z,\n1,0,0,\n1,0,1,\n",
                             "0;0;0;\n0;0;1;\n\n1;0;0;\n1;0;1;\n",
                             "x\ty\tz\t\n0\t0\t0\t\n0\t0\t1\t\n\n1\t0\t0\t\n1\t0\t1\n"}) {
        const std::vector<Rod> rods = rodsOf(text);
        ASSERT_EQ(rods.size(), 2U) << text;
        EXPECT_EQ(numbersOf(rods[1].points), (Points{{1, 0, 0}, {1, 0, 1}}));
        EXPECT_THAT(rods[1].scalars, IsEmpty());
    }
}

// ---- How it is written

class TableSpelling : public testing::TestWithParam<std::string>
{
};

TEST_P(TableSpelling, ReadsAsTheSameTwoPoints)
{
    EXPECT_EQ(numbersOf(rodOf(GetParam()).points), (Points{{1, -2.5, 0.001}, {0.5, 1e10, 1.5}}));
}

INSTANTIATE_TEST_SUITE_P(
    Accepted, TableSpelling,
    testing::Values("1 -2.5 0.001\n0.5 1e10 1.5\n",                   // blanks
                    "1\t-2.5\t0.001\n0.5\t1e10\t1.5\n",               // tabs
                    "1,-2.5,0.001\n0.5,1e10,1.5\n",                   // commas
                    "1;-2.5;0.001\n0.5;1e10;1.5\n",                   // semicolons
                    "  1, -2.5 ,\t0.001 \n 0.5 ; 1e10,1.5\n",         // mixed
                    "1 -2.5 0.001\r\n0.5 1e10 1.5\r\n",               // CR LF
                    "1 -2.5 0.001\r0.5 1e10 1.5\r",                   // CR
                    "1 -2.5 0.001\n0.5 1e10 1.5",                     // no line end at the end
                    "1 -2.5 0.001#a,b\n0.5 1e10 1.5 # c",             // comments behind numbers
                    "+1 -2.5 1e-3\n.5 1E+10 +1.5\n",                  // signs and exponents
                    "1. -2.50 1D-3\n0.5d0 1d+10 1.5D0\n",             // Fortran
                    "x y z\n1 -2.5 0.001\n0.5 1e10 1.5\n",            // header
                    "% x y z\n1 -2.5 0.001\n %\n0.5 1e10 1.5\n",      // Matlab
                    "\"1\",\"-2.5\",\" 0.001 \"\n0.5,1e10,\"1.5\"\n", // quotes
                    "1;-2,5;0,001\n0,5;1e10;1,5\n",                   // decimal commas
                    "x;y;z\n1;-2,5;1,0e-3\n0,5;1,0D10;1,5\n",
                    "x\ty\tz\n1\t-2,5\t0,001\n0,5\t1e10\t1,5\n",
                    "\"x\";\"y\";\"z\"\n\"1\";\"-2,5\";\"0,001\"\n0,5;1e10;1,5\n",
                    "x, y z\n1 -2.5 0.001\n0.5 1e10 1.5\n", // a header with other separators
                    "# x y z\nx,y,z\r\n1,-2.5,0.001\r\n0.5,1e10,1.5\r\n"));

TEST(TableReader, ADecimalPointIsAPointInEveryLocale)
{
    class CommaForPoint : public std::numpunct<char>
    {
        char do_decimal_point() const override { return ','; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new CommaForPoint));
    // The C library has its own locale; not every machine has one with a comma.
    const std::string beforeInC = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "de_DE", "fr_FR.UTF-8", "nl_NL.UTF-8"})
        if (std::setlocale(LC_ALL, name))
            break;
    const Reading reading = readText("1.5 2.25 3\n4 5 6.125\n");
    const Reading refused = readText("1 2 3 0 0 0 1.5\n");
    std::setlocale(LC_ALL, beforeInC.c_str());
    std::locale::global(before);

    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_EQ(numbersOf(reading.configuration->rods[0].points),
              (Points{{1.5, 2.25, 3}, {4, 5, 6.125}}));
    EXPECT_THAT(refused.report.error, testing::HasSubstr("norm 1.5,"));
}

// ---- Quaternions

TEST(TableReader, KeepsAQuaternionWithinTheToleranceAsItIs)
{
    const Rod rod = rodOf("0 0 0 0 0 0 1.005\n0 0 1 0 0.995 0 0\n");
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0, 0, 1.005}, {0, 0.995, 0, 0}}));
}

TEST(TableReader, ScalesQuaternionsToUnitLengthWhenAskedTo)
{
    ReadOptions options;
    options.normalise = true;
    // Also where the squares of the components over- or underflow.
    const Rod rod = rodOf("0 0 0 0 3 0 4\n"
                          "0 0 1 2e200 0 0 0\n"
                          "0 0 2 0 0 -5e-324 0\n"
                          "0 0 3 0 0 0 1.005\n",
                          options);
    EXPECT_EQ(numbersOf(rod.rotations),
              (Rotations{{0, 0.6, 0, 0.8}, {1, 0, 0, 0}, {0, 0, -1, 0}, {0, 0, 0, 1}}));
}

TEST(TableReader, RefusesTheZeroQuaternionEvenWhenAskedToScale)
{
    ReadOptions options;
    options.normalise = true;
    const Reading reading = readText("0 0 0 0 0 0 1\n0 0 1 0 0 0 0\n", options);
    EXPECT_FALSE(reading.configuration);
    EXPECT_EQ(reading.report.error, "rod.txt:2: columns qx qy qz qw: found the zero quaternion, "
                                    "expected any other");
}

TEST(TableReader, TellsOfQuaternionsWhoseD3DoesNotFollowThePoints)
{
    // d3 is z. The first rod leaves it by 45 degrees, the second by 90; the third has
    // the identity with its scalar first, which turns z over.
    const Reading reading = readText("0 0 0 0 0 0 1\n1 0 1 0 0 0 1\n\n"
                                     "0 0 0 0 0 0 1\n1 0 0 0 0 0 1\n\n"
                                     "0 0 0 1 0 0 0\n0 0 1 1 0 0 0\n");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.txt: 2 rods whose d3 does not follow the points: is d3 the "
                            "tangent (quaternions: scalar last; directors: d1, d2, d3)?"));
}

// ---- Coincident points

TEST(TableReader, LeavesOutPointsAtThePlaceOfTheOneBefore)
{
    const Reading reading = readText("x y z qx qy qz qw s\n"
                                     "0 0 0 0 0 0 1 10\n"
                                     "0 0 0 1 0 0 0 11\n"
                                     "0 0 0 0 1 0 0 12\n"
                                     "0 0 1 1 0 0 0 13\n"
                                     "0 0 0 0 0 0 1 14\n"
                                     "0 0 0 0 0 0 1 15\n");
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Rod& rod = reading.configuration->rods[0];
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {0, 0, 1}, {0, 0, 0}}));
    EXPECT_EQ(numbersOf(rod.rotations), (Rotations{{0, 0, 0, 1}, {1, 0, 0, 0}, {0, 0, 0, 1}}));
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(10, 13, 14));
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.txt: 3 points left out, at the same place as the point before"));
}

TEST(TableReader, CountsTheLeftOutPointsOfAllRodsTogether)
{
    const Reading reading = readText("0 0 0 0 0 0 1\n0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n\n"
                                     "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n0 0 1 0 0 0 1\n");
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.txt: 2 points left out, at the same place as the point before"));
}

TEST(TableReader, PointsAreOneIfTheSquareOfTheirDistanceVanishes)
{
    // The squares are 1e-320, no normal number, and 1e-306.
    EXPECT_EQ(rodOf("0 0 0\n1e-160 0 0\n1e-153 0 0\n").points.size(), 2U);
    EXPECT_EQ(rodOf("0 0 0\n1e-153 0 0\n2e-153 0 0\n").points.size(), 3U);
}

TEST(TableReader, PointsAreOneBelowAHundredThousandthOfTheMeanDistance)
{
    // The distances 3, d and 3 have the mean 2 + d / 3.
    EXPECT_EQ(rodOf("0 0 0\n3 0 0\n3.0000199 0 0\n6 0 0\n").points.size(), 3U);
    EXPECT_EQ(rodOf("0 0 0\n3 0 0\n3.0000201 0 0\n6 0 0\n").points.size(), 4U);
    // Distances of 0 do not count for the mean.
    EXPECT_EQ(rodOf("0 0 0\n3 0 0\n3 0 0\n3 0 0\n3.0000199 0 0\n6 0 0\n").points.size(), 3U);

    const Reading reading = readText("0 0 0\n0.4 0.1 0\n0.8 0.3 0.1\n"
                                     "0.80000000000000016 0.3 0.1\n1.2 0.7 0.2\n");
    EXPECT_EQ(numbersOf(onlyRod(reading).points),
              (Points{{0, 0, 0}, {0.4, 0.1, 0}, {0.8, 0.3, 0.1}, {1.2, 0.7, 0.2}}));
    EXPECT_THAT(
        reading.report.notices,
        testing::Contains("rod.txt: 1 point left out, at the same place as the point before"));
}

TEST(TableReader, AScalarMayBeNotANumberAndPointsMayNot)
{
    const Rod rod = rodOf("x y z s\n0 0 0 nan\n0 0 1 1\n0 0 2 NaN\n");
    ASSERT_EQ(rod.scalars.size(), 1U);
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(IsNan(), 1, IsNan()));
}

TEST(TableReader, AScalarThatIsNoNumberBesideAFrameIsUnknownInTheLastRowToo)
{
    const Rod rod = rodOf("x y z qx qy qz qw s\n0 0 0 0 0 0 1 3\n0 0 1 0 0 0 1 nan\n");
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(3, IsNan()));
}

TEST(TableReader, ANumberBelowDoubleIsZeroOrTheNearest)
{
    const Rod rod = rodOf("x y z s\n0 1e-400 0 4e-320\n0 -1D-999 1 -1e-99999\n");
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {0, 0, 1}}));
    EXPECT_THAT(rod.scalars[0].values, ElementsAre(4e-320, 0));
}

TEST(TableReader, TheDistanceCountsFromTheLastPointThatWasKept)
{
    // Steps of 1e-154, too short each: the first two are left out, and twice 1e-154
    // has the square 4e-308.
    const Rod rod = rodOf("0 0 0\n1e-154 0 0\n2e-154 0 0\n3e-154 0 0\n4e-154 0 0\n");
    EXPECT_EQ(numbersOf(rod.points), (Points{{0, 0, 0}, {2e-154, 0, 0}, {4e-154, 0, 0}}));
}

TEST(TableReader, TakesCoordinatesUpToTheLargest)
{
    const Rod rod = rodOf("-1e18 0 0\n1e18 0 0\n");
    EXPECT_EQ(numbersOf(rod.points), (Points{{-1e18, 0, 0}, {1e18, 0, 0}}));
    const float across = static_cast<float>(rod.points[1].x) - static_cast<float>(rod.points[0].x);
    EXPECT_TRUE(std::isfinite(3 * across * across));
}

// ---- DNA

namespace {

/// The frames of a pair and its bases: quaternions of the norms 1, 1 and 1.
const std::string dnaNumbers = "1 2 3 0 0 0 1  4 5 6 1 0 0 0  7 8 9 0.6 0 0 0.8";
const std::string dnaHeader =
    "base x y z qx qy qz qw x1 y1 z1 qx1 qy1 qz1 qw1 x2 y2 z2 qx2 qy2 qz2 qw2\n";

Dna onlyDna(const std::string& text)
{
    const Reading reading = readText(text);
    EXPECT_EQ(reading.report.error, "");
    EXPECT_THAT(reading.report.notices, IsEmpty());
    if (!reading.configuration || reading.configuration->dnas.size() != 1) {
        ADD_FAILURE() << "not one DNA";
        return {};
    }
    EXPECT_THAT(reading.configuration->rods, IsEmpty());
    return reading.configuration->dnas[0];
}

void expectDnaNumbers(const Dna& dna, const std::string& bases)
{
    const std::size_t count = bases.size();
    EXPECT_EQ(dna.bases, bases);
    EXPECT_EQ(numbersOf(dna.pairPoints), Points(count, {1, 2, 3}));
    EXPECT_EQ(numbersOf(dna.pairRotations), Rotations(count, {0, 0, 0, 1}));
    EXPECT_EQ(numbersOf(dna.points1), Points(count, {4, 5, 6}));
    EXPECT_EQ(numbersOf(dna.rotations1), Rotations(count, {1, 0, 0, 0}));
    EXPECT_EQ(numbersOf(dna.points2), Points(count, {7, 8, 9}));
    EXPECT_EQ(numbersOf(dna.rotations2), Rotations(count, {0.6, 0, 0, 0.8}));
}

/// dnaNumbers with other text at a column, counted from 1 as in messages.
std::string dnaRow(const std::string& base, std::size_t column = 0, const std::string& text = "")
{
    std::vector<std::string> fields = {base};
    std::istringstream numbers(dnaNumbers);
    for (std::string field; numbers >> field;)
        fields.push_back(field);
    if (column > 0)
        fields[column - 1] = text;
    std::string row;
    for (const std::string& field : fields)
        row += (row.empty() ? "" : " ") + field;
    return row + "\n";
}

} // namespace

TEST(TableReader, ALetterAndTwentyOneNumbersAreABasePairAndItsBases)
{
    expectDnaNumbers(onlyDna("A " + dnaNumbers + "\n"), "A");
    expectDnaNumbers(onlyDna(dnaRow("A") + dnaRow("c") + dnaRow("G") + dnaRow("t")), "ACGT");
}

TEST(TableReader, AHeaderOfDnaNamesTheNumbersInAnyOrder)
{
    expectDnaNumbers(onlyDna(dnaHeader + dnaRow("T")), "T");
    expectDnaNumbers(onlyDna("base Z2 y2 x2 qw2 qz2 qy2 qx2 x y z QX qy qz qw "
                             "x1 y1 z1 qx1 qy1 qz1 qw1\n"
                             "g 9 8 7 0.8 0 0 0.6 1 2 3 0 0 0 1 4 5 6 1 0 0 0\n"),
                     "G");
}

TEST(TableReader, AHeaderOfDnaMayHaveUnitsAndCapitalsAndSeparators)
{
    expectDnaNumbers(onlyDna("\"Base\";X [A];y (A);z[A];qx;qy;qz;qw;x1 [A];y1;z1;qx1;qy1;qz1;qw1;"
                             "x2;y2;z2;qx2;qy2;qz2;qw2;\n"
                             "\"A\";1;2;3;0;0;0;1;4;5;6;1;0;0;0;7;8;9;0,6;0;0;0,8;\n"),
                     "A");
}

TEST(TableReader, DnaIsWrittenAsRodsAre)
{
    std::string commas = dnaRow("C"), tabs = commas, decimalCommas = commas;
    std::replace(commas.begin(), commas.end(), ' ', ',');
    std::replace(tabs.begin(), tabs.end(), ' ', '\t');
    std::replace(decimalCommas.begin(), decimalCommas.end(), ' ', ';');
    std::replace(decimalCommas.begin(), decimalCommas.end(), '.', ',');
    for (const std::string& text :
         {commas, tabs, decimalCommas, "\r\n # DNA\r\n" + commas, "% DNA\n" + tabs + "# end\n",
          "  C  " + dnaNumbers + " # first", dnaHeader + commas})
        expectDnaNumbers(onlyDna(text), "C");
}

TEST(TableReader, ALetterAndSevenNumbersAreABasePairWithOneFrameForBothBases)
{
    const std::string rows = "C 1 2 3 0.6 0 0 0.8\n# turned\ng 1 -1 4 0 0 1 0\n";
    for (const std::string& text : {rows, "base x y z qx qy qz qw\n" + rows,
                                    "# bases\nBase, X, y, z [A], qx, qy, qz, qw\n" + rows}) {
        const Dna dna = onlyDna(text);
        EXPECT_EQ(dna.bases, "CG");
        for (const auto* points : {&dna.pairPoints, &dna.points1, &dna.points2})
            EXPECT_EQ(numbersOf(*points), (Points{{1, 2, 3}, {1, -1, 4}})) << text;
        for (const auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
            EXPECT_EQ(numbersOf(*rotations), (Rotations{{0.6, 0, 0, 0.8}, {0, 0, 1, 0}})) << text;
    }
}

TEST(TableReader, ABasePairMayHaveDirectors)
{
    // d1 along y, d2 along z, d3 along x: a third of a turn about (1, 1, 1).
    const Dna flat = onlyDna("base x y z d1x d1y d1z d3x d3y d3z\nA 1 2 3 0 1 0 1 0 0\n");
    EXPECT_EQ(numbersOf(flat.rotations2), (Rotations{{0.5, 0.5, 0.5, 0.5}}));
    const Dna bent = onlyDna("base x y z qx qy qz qw x1 y1 z1 d1x1 d1y1 d1z1 d3x1 d3y1 d3z1 "
                             "x2 y2 z2 qx2 qy2 qz2 qw2\n"
                             "A 1 2 3 0 0 0 1  4 5 6 0 1 0 1 0 0  7 8 9 0 0 1 0\n");
    EXPECT_EQ(numbersOf(bent.pairRotations), (Rotations{{0, 0, 0, 1}}));
    EXPECT_EQ(numbersOf(bent.rotations1), (Rotations{{0.5, 0.5, 0.5, 0.5}}));
    EXPECT_EQ(numbersOf(bent.rotations2), (Rotations{{0, 0, 1, 0}}));
}

TEST(TableReader, ABlankLineStartsTheNextDna)
{
    const Reading reading =
        readText("# two\n" + dnaHeader + dnaRow("A") + "# still the first\n" + dnaRow("C") + "\n" +
                 dnaRow("G") + "\n" + dnaHeader + dnaRow("T") + dnaRow("T") + dnaRow("T"));
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const std::vector<Dna>& dnas = reading.configuration->dnas;
    ASSERT_EQ(dnas.size(), 3U);
    EXPECT_EQ(dnas[0].origin, "rod.txt:3: DNA 1");
    expectDnaNumbers(dnas[0], "AC");
    EXPECT_EQ(dnas[1].origin, "rod.txt:7: DNA 2");
    expectDnaNumbers(dnas[1], "G");
    EXPECT_EQ(dnas[2].origin, "rod.txt:10: DNA 3");
    expectDnaNumbers(dnas[2], "TTT");
}

TEST(TableReader, ScalesTheQuaternionsOfDnaWhenAskedTo)
{
    ReadOptions options;
    options.normalise = true;
    const Reading reading = readText("A 1 2 3 0 0 0 5  4 5 6 -2 0 0 0  7 8 9 3 0 0 4\n", options);
    ASSERT_TRUE(reading.configuration) << reading.report.error;
    const Dna& dna = reading.configuration->dnas[0];
    EXPECT_EQ(numbersOf(dna.pairRotations), (Rotations{{0, 0, 0, 1}}));
    EXPECT_EQ(numbersOf(dna.rotations1), (Rotations{{-1, 0, 0, 0}}));
    EXPECT_EQ(numbersOf(dna.rotations2), (Rotations{{0.6, 0, 0, 0.8}}));
}

TEST(TableReader, TellsOfDnaWhoseD3DoesNotFollowThePairs)
{
    // The identity with its scalar first turns z over.
    const std::string bases = " 0 0 0 0 0 0 1 0 0 0 0 0 0 1\n";
    const Reading reading = readText("A 0 0 0 1 0 0 0" + bases + "A 0 0 1 1 0 0 0" + bases);
    EXPECT_THAT(reading.report.notices,
                ElementsAre("rod.txt: 1 DNA whose d3 does not follow the pairs: is d3 the "
                            "tangent (quaternions: scalar last; directors: d1, d2, d3)?"));
}

TEST(TableReader, AScalarNamedAsABaseIsAScalarOfARod)
{
    const Rod rod = rodOf("base x y z t a\n1 0 0 0 2 3\n4 0 0 1 5 6\n");
    EXPECT_THAT(scalarNames(rod), ElementsAre("base", "t", "a"));
    EXPECT_THAT(scalarNames(rodOf("A x y z X1\n1 0 0 0 2\n4 0 0 1 5\n")), ElementsAre("A", "X1"));
}

TEST(TableReader, ReadsRandomDnaBackBitForBit)
{
    for (unsigned seed = 0; seed < 500; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto number = [&] { return random() * 0x1p-32 + random() * 0x1p-64 - 0.5; };
        const bool haveHeader = random() % 2 == 0;
        const char* separator = std::array{" ", "\t", ", ", ";"}[random() % 4];
        std::string text = haveHeader ? dnaHeader : "";
        std::vector<Dna> expected(1 + random() % 3);
        for (Dna& dna : expected) {
            for (std::size_t i = 0, count = 1 + random() % 8; i < count; ++i) {
                const std::size_t base = random() % 4;
                dna.bases += "ACGT"[base];
                text += (random() % 2 == 0 ? "ACGT" : "acgt")[base];
                for (const auto& [points, rotations] :
                     {std::pair(&dna.pairPoints, &dna.pairRotations),
                      std::pair(&dna.points1, &dna.rotations1),
                      std::pair(&dna.points2, &dna.rotations2)}) {
                    points->emplace_back(1e3 * number(), number(), number());
                    const Quaternion<double> q(number(), number(), number(), number());
                    const double n = q.getNorm();
                    rotations->emplace_back(q[0] / n, q[1] / n, q[2] / n, q[3] / n);
                    for (int k = 0; k < 7; ++k) {
                        char digits[32];
                        std::snprintf(digits, sizeof digits, "%.17g",
                                      k < 3 ? points->back()[k] : rotations->back()[k - 3]);
                        text += separator + std::string(digits);
                    }
                }
                text += random() % 4 == 0 ? " # pair\n" : "\n";
            }
            text += "\n";
        }
        const Reading reading = readText(text);
        ASSERT_TRUE(reading.configuration) << reading.report.error << "\n" << text;
        ASSERT_EQ(reading.configuration->dnas.size(), expected.size()) << text;
        for (std::size_t i = 0; i < expected.size(); ++i)
            expectSameDna(reading.configuration->dnas[i], expected[i]);
        ASSERT_FALSE(HasFailure()) << text;
    }
}

// ---- What is refused

struct BadTable
{
    const char* name;
    std::string text;
    std::string error; ///< behind the file's name
};

class TableReaderRefuses : public testing::TestWithParam<BadTable>
{
};

TEST(TableReader, AFileWhoseLineDoesNotEndIsNotReadToItsEnd)
{
    const TemporaryFolder folder;
    const std::string path = folder.write("zeros.txt", "");
    std::filesystem::resize_file(path, std::uintmax_t(1) << 38); // without a byte on the disk
    ReadReport report;
    const auto source = Source::open(path, report);
    EXPECT_FALSE(readTable(*source, {}, report));
    EXPECT_EQ(report.error, path + ": found a line of more than 32 MiB, expected a table");
}

TEST_P(TableReaderRefuses, WithOneLineThatSaysWhereAndWhat)
{
    const Reading reading = readText(GetParam().text);
    EXPECT_FALSE(reading.configuration);
    EXPECT_EQ(reading.report.error, "rod.txt:" + GetParam().error);
    EXPECT_THAT(reading.report.notices, IsEmpty());
}

namespace {

const std::string expectedDirectors =
    ", expected two or three of d1x d1y d1z, d2x d2y d2z, d3x d3y d3z";
const std::string expectedOfElements =
    "expected a finite number; a rod's last row may lack what is of elements";
const std::string expectedOfRod = "expected a finite number, or nothing in all rows of the rod";

} // namespace

INSTANTIATE_TEST_SUITE_P(
    BadTables, TableReaderRefuses,
    testing::Values(
        BadTable{"AWord", "0 0 0\n1 2 abc\n",
                 "2: column 3 (z): found 'abc', expected a finite number"},
        BadTable{"ANumberWithATail", "0 0 0\n1 2x 3\n",
                 "2: column 2 (y): found '2x', expected a finite number"},
        BadTable{"TwoSigns", "0 0 0\n+-1 2 3\n",
                 "2: column 1 (x): found '+-1', expected a finite number"},
        BadTable{"ALoneSign", "0 0 0\n+ 2 3\n",
                 "2: column 1 (x): found '+', expected a finite number"},
        BadTable{"TwoExponents", "0 0 0\n1D2D3 2 3\n",
                 "2: column 1 (x): found '1D2D3', expected a finite number"},
        BadTable{"AHexadecimalNumber", "0 0 0\n0x10 2 3\n",
                 "2: column 1 (x): found '0x10', expected a finite number"},
        BadTable{"NaN", "0 0 0\n0 nan 0\n",
                 "2: column 2 (y): found 'nan', expected a finite number"},
        BadTable{"NaNInTheFirstRow", "NaN 0 0\n0 0 1\n",
                 "1: column 1 (x): found 'NaN', expected a finite number"},
        BadTable{"Infinity", "0 0 0 0 0 0 1\n0 0 1 0 -inf 0 1\n",
                 "2: column 5 (qy): found '-inf', expected a finite number"},
        BadTable{"ANumberBeyondDouble", "0 0 0\n0 0 1e999\n",
                 "2: column 3 (z): found '1e999', expected a number within the range of double "
                 "precision"},
        BadTable{"AnInfiniteScalar", "x y z s\n0 0 0 1\n0 0 1 inf\n",
                 "3: column 4 (s): found 'inf', expected a finite number"},
        BadTable{"ACoordinateBeyondFloat", "0 0 0\n0 -2e18 0\n",
                 "2: column 2 (y): found -2e+18, expected a coordinate between -1e18 and 1e18"},
        BadTable{"AnEmptyField", "0,0,0\n1,,3\n",
                 "2: column 2 (y): found an empty field, expected a finite number"},
        BadTable{"AnEmptyFieldOfBlanks", "0,0,0\n1; \t;3\n",
                 "2: column 2 (y): found an empty field, expected a finite number"},
        BadTable{"AnEmptyFirstField", "0,0,0\n,2,3\n",
                 "2: column 1 (x): found an empty field, expected a finite number"},
        BadTable{"AnEmptyLastField", "0,0,0\n1,2, # 3\n",
                 "2: column 3 (z): found an empty field, expected a finite number"},
        BadTable{"ACommaTooMany", "0,0,0\n1,2,3,\n", "2: found 4 columns, expected 3 as in line 1"},
        BadTable{"OneColumn", "331\n0 0 0\n",
                 "1: found 1 column, expected 3 (x y z), or 7 or more (x y z qx qy qz qw and "
                 "scalars)"},
        BadTable{"FourColumns", "0 0 0 1\n",
                 "1: found 4 columns, expected 3 (x y z), or 7 or more (x y z qx qy qz qw and "
                 "scalars)"},
        BadTable{"DecimalCommasBetweenBlanks", "# cm\n1,5 2,5 3\n",
                 "2: found 5 columns, expected 3 (x y z), or 7 or more (x y z qx qy qz qw and "
                 "scalars), with a decimal point"},
        BadTable{"DecimalCommasBetweenBlanksBelowAHeader", "x y z\n1,5 2,5 3\n",
                 "2: found 5 columns, expected 3 as in line 1, with a decimal point"},
        BadTable{"ADecimalCommaInQuotes", "\"1,5\",2,3\n",
                 "1: column 1 (x): found '1,5', expected a finite number, with a decimal point"},
        BadTable{"TwoCommasInANumber", "x;y;z\n1,234,5;2;3\n",
                 "2: column 1 (x): found '1,234,5', expected a finite number, with a decimal "
                 "point"},
        BadTable{"AnOpenQuote", "0,0,0\n0,\"1,2\n3,4,5\n",
                 "2: column 2 (y): found '\"1,2', expected a closing quote at the end of the "
                 "field"},
        BadTable{"AnOpenQuoteInTheHeader", "\"x\",\"y,z\n0,0,0\n",
                 "1: column 2: found '\"y,z', expected a closing quote at the end of the field"},
        BadTable{
            "AQuoteInsideAField", "\"0\"1 0 0\n",
            "1: column 1 (x): found '\"0\"1', expected a closing quote at the end of the field"},
        BadTable{"ARowWithoutTheSeparatorAtItsEnd", "x,y,z,\n0,0,0,\n0,0,1\n",
                 "3: found no separator at the end of the row, expected one as in line 1"},
        BadTable{"ARowTooLongBeforeTheSeparatorAtItsEnd", "x,y,z,\n0,0,0,5,\n",
                 "2: found 4 columns, expected 3 as in line 1"},
        BadTable{"ARowTooLongInsteadOfTheSeparatorAtItsEnd", "x,y,z,\n0,0,0,5\n",
                 "2: found 4 columns, expected 3 as in line 1"},
        BadTable{"QuotesAloneBelowABlankLineBesideASeparatorAtItsEnd",
                 "x,y,z,\n0,0,0,\n0,0,1,\n\n\"\"\n",
                 "5: column 1 (x): found an empty field, expected a finite number"},
        BadTable{"AnAtomList", "2\nwater\nO 0 0 0\nH 0 0 1\n",
                 "1: found an atom list, expected rows of numbers"},
        BadTable{"ACommentSignOfMatlabBehindNumbers", "0 0 0 % a\n",
                 "1: found 5 columns, expected 3 (x y z), or 7 or more (x y z qx qy qz qw and "
                 "scalars)"},
        BadTable{"AHeaderOfOtherNames", "Var1,Var2,Var3\n0,0,0\n",
                 "1: column 1: found 'Var1', expected a number, or a header that names x y z, and "
                 "qx qy qz qw if there are quaternions"},
        BadTable{"AShorterRow", "# rod\n0 0 0\n0 0 1\n\n1 1 1\n0 1\n",
                 "6: found 2 columns, expected 3 as in line 2"},
        BadTable{"ALongerRow", "x y z s\n0 0 0 1\n0 0 1 1 1\n",
                 "3: found 5 columns, expected 4 as in line 1"},
        BadTable{"AHeaderWithoutZ", "x y s\n0 0 0\n",
                 "1: found a header without z, expected x y z and all or none of qx qy qz qw"},
        BadTable{"AHeaderWithoutAllOfTheQuaternion", "x y z qx qz\n0 0 0 0 0\n",
                 "1: found a header without qy qw, expected x y z and all or none of qx qy qz qw"},
        BadTable{"AHeaderWithANameTwice", "x y z Y\n0 0 0 0\n",
                 "1: column 4: found 'Y' again, expected each name once"},
        BadTable{"AHeaderWithAScalarTwice", "x y z s s\n0 0 0 0 0\n",
                 "1: column 5: found 's' again, expected each name once"},
        BadTable{"AHeaderWithAnEmptyField", "x,y,,z\n0,0,0,0\n",
                 "1: column 3: found an empty field, expected a column's name"},
        BadTable{"Prose", "Dear reader,\n0 0 0\n",
                 "1: column 1: found 'Dear', expected a number, or a header that names x y z, and "
                 "qx qy qz qw if there are quaternions"},
        BadTable{"AnotherHeader", "x y z\n0 0 0\n0 0 1\n\nz y x\n0 0 0\n",
                 "5: column 1 (x): found 'z', expected a finite number"},
        BadTable{"AHeaderInsideARod", "x y z\n0 0 0\nx y z\n0 0 1\n",
                 "3: column 1 (x): found 'x', expected a finite number"},
        BadTable{"AQuaternionTooLong", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1.5\n",
                 "2: columns qx qy qz qw: found a quaternion of norm 1.5, expected 1 within 0.01 "
                 "(--normalise accepts others)"},
        BadTable{"TheZeroQuaternion", "0 0 0 0 0 0 0\n0 0 1 0 0 0 1\n",
                 "1: columns qx qy qz qw: found a quaternion of norm 0, expected 1 within 0.01 "
                 "(--normalise accepts others)"},
        BadTable{"OneDirector", "x y z d3x d3y d3z\n",
                 "1: found a header with one director" + expectedDirectors},
        BadTable{"ADirectorWithoutItsZ", "x y z d1x d1y d2x d2y d2z\n",
                 "1: found a header without d1z" + expectedDirectors},
        BadTable{"ADirectorTooLong", alongX(allDirectors, "0 1.02 0 0 0 1 1 0 0"),
                 "2: directors: found d1 of norm 1.02, expected 1 within 0.01 (--normalise accepts "
                 "others)"},
        BadTable{"DirectorsAtAnAngle", alongX("d2x d2y d2z d3x d3y d3z", "0.6 0 0.8 1 0 0"),
                 "2: directors: found d2 times d3 = 0.6, expected 0 within 0.01 (--normalise "
                 "accepts others)"},
        BadTable{"LeftHandedDirectors", alongX(allDirectors, "0 1 0 0 0 -1 1 0 0"),
                 "2: directors: found left-handed directors, expected d3 = d1 x d2"},
        BadTable{"AMissingQuaternionInTheMiddle",
                 "x,y,z,qx,qy,qz,qw\n0,0,0,0,0,0,1\n0,0,1,,,,\n0,0,2,0,0,0,1\n",
                 "3: column 4 (qx): found an empty field, " + expectedOfElements},
        BadTable{"HalfAQuaternion", "x,y,z,qx,qy,qz,qw\n0,0,0,0,0,0,1\n0,0,1,0,0,,\n",
                 "3: column 6 (qz): found an empty field, " + expectedOfElements},
        BadTable{"AScalarThatBeginsLater", "x,y,z,s\n0,0,0,\n0,0,1,4\n",
                 "2: column 4 (s): found an empty field, " + expectedOfRod},
        BadTable{"AQuaternionThatBeginsLater", "x,y,z,qx,qy,qz,qw\n0,0,0,,,,\n0,0,1,0,0,0,1\n",
                 "2: column 4 (qx): found an empty field, " + expectedOfRod},
        BadTable{"HalfAQuaternionFromTheFirstRowOn",
                 "x,y,z,qx,qy,qz,qw\n0,0,0,0,0,,1\n0,0,1,0,0,,1\n",
                 "2: column 6 (qz): found an empty field, " + expectedOfRod},
        BadTable{"AWordAmongBases", "x,y,z,base\n0,0,0,A\n0,0,1,AT\n",
                 "3: column 4 (base): found 'AT', expected a letter, or nothing"},
        BadTable{"AMissingScalarInTheMiddle", "x,y,z,s\n0,0,0,1\n0,0,1,\n0,0,2,5\n",
                 "3: column 4 (s): found an empty field, " + expectedOfElements},
        BadTable{"ALastRowCutShort", "0 0 0 0 0 0 1\n0 0 1 0 0 0 1\n0 0 2\n",
                 "3: found 3 columns, expected 7 as in line 1"},
        BadTable{"ARodOfOnePoint", "0 0 0\n0 0 1\n\n# lonely\n5 5 5\n\n0 0 0\n0 0 1\n",
                 "5: found 1 distinct point, expected at least 2 in a rod"},
        BadTable{"ARodOfOnePointThreeTimes", "1 1 1\n1 1 1\n1 1 1\n",
                 "1: found 1 distinct point, expected at least 2 in a rod"},
        BadTable{"AnEmptyFile", "", " found nothing to show, expected at least one rod or DNA"},
        BadTable{"BlankLines", " \n\n\t\n",
                 " found nothing to show, expected at least one rod or DNA"},
        BadTable{"Comments", "# x y z\n# 0 0 0\n",
                 " found nothing to show, expected at least one rod or DNA"},
        BadTable{"AHeaderOnly", "x y z\n",
                 " found nothing to show, expected at least one rod or DNA"},
        BadTable{"ALineAfterCarriageReturns", "0 0 0\r0 0 1\r\n0 0 b\r",
                 "3: column 3 (z): found 'b', expected a finite number"},
        BadTable{"ControlCharacters", std::string("0 0 0\n0 \x1b[1m\0\x7f 0\n", 17),
                 "2: column 2 (y): found '\\x1b[1m\\x00\\x7f', expected a finite number"},
        BadTable{"ALongWord", "0 0 0\n0 0 " + std::string(1000000, 'a') + "\n",
                 "2: column 3 (z): found '" + std::string(40, 'a') +
                     "...', expected a finite number"},
        BadTable{"ALongWordCutBeforeACharacterOfTwoBytes",
                 "0 0 0\n0 0 " + std::string(39, 'a') + "\xc3\xa9\xc3\xa9\n",
                 "2: column 3 (z): found '" + std::string(39, 'a') +
                     "...', expected a finite number"}),
    [](const auto& test) { return test.param.name; });

namespace {

const std::string expectedOfDna =
    "8 (a base, and x y z qx qy qz qw of the pair) or 22 (a base, and x y z qx qy qz qw of the "
    "pair, of strand 1 and of strand 2)";
const std::string expectedDnaNames = "base, x y z qx qy qz qw, and these with 1 and with 2 behind";

} // namespace

INSTANTIATE_TEST_SUITE_P(
    BadDna, TableReaderRefuses,
    testing::Values(
        BadTable{"AWordForANumberOfThePair", dnaRow("A", 3, "b"),
                 "1: column 3 (y of the pair): found 'b', expected a finite number"},
        BadTable{"AnInfinityOfStrand1", dnaRow("A") + dnaRow("A", 15, "inf"),
                 "2: column 15 (qw of strand 1): found 'inf', expected a finite number"},
        BadTable{"NaNOfStrand2BelowAHeaderInAnotherOrder",
                 "base Z2 y2 x2 qw2 qz2 qy2 qx2 x y z qx qy qz qw x1 y1 z1 qx1 qy1 qz1 qw1\n" +
                     dnaRow("A", 2, "nan"),
                 "2: column 2 (z of strand 2): found 'nan', expected a finite number"},
        BadTable{"AnEmptyField", "A,1,,3,0,0,0,1,4,5,6,1,0,0,0,7,8,9,0.6,0,0,0.8\n",
                 "1: column 3 (y of the pair): found an empty field, expected a finite number"},
        BadTable{"AnotherLetter", dnaRow("A") + dnaRow("N"),
                 "2: column 1 (base): found 'N', expected A, C, G or T"},
        BadTable{"AnotherLetterInTheFirstRow", dnaRow("U"),
                 "1: column 1 (x): found 'U', expected a finite number"},
        BadTable{"AnotherLetterBelowAHeader", dnaHeader + dnaRow("U"),
                 "2: column 1 (base): found 'U', expected A, C, G or T"},
        BadTable{"TwoLetters", dnaRow("A") + dnaRow("AT"),
                 "2: column 1 (base): found 'AT', expected A, C, G or T"},
        BadTable{"NoLetter", "A," + dnaNumbers + "\n," + dnaNumbers + "\n",
                 "2: column 1 (base): found an empty field, expected A, C, G or T"},
        BadTable{"ANumberForTheBase", dnaRow("A") + dnaRow("1"),
                 "2: column 1 (base): found '1', expected A, C, G or T"},
        BadTable{
            "AnOpenQuoteAtTheBase", dnaRow("A") + dnaRow("\"A"),
            "2: column 1 (base): found '\"A 1 2 3 0 0 0 1 4 5 6 1 0 0 0 7 8 9 0.6...', expected a "
            "closing quote at the end of the field"},
        BadTable{"ARowOfARod", dnaRow("A") + "0 0 0\n",
                 "2: column 1 (base): found '0', expected A, C, G or T"},
        BadTable{"ARowOfDnaAmongRods", "0 0 0\n0 0 1\n\n" + dnaRow("A"),
                 "4: column 1 (x): found 'A', expected a finite number"},
        BadTable{"AnAtomByItsName", "C 0 0 0\nC 0 0 1\n",
                 "1: found 4 columns, expected " + expectedOfDna},
        BadTable{"OneNumberMore", "t " + dnaNumbers + " 5\n",
                 "1: found 23 columns, expected " + expectedOfDna},
        BadTable{"DecimalCommasBetweenBlanks", "A 1,5 2,5 3\n",
                 "1: found 6 columns, expected " + expectedOfDna + ", with a decimal point"},
        BadTable{"AShorterRow", dnaRow("A") + "A 1 2 3\n",
                 "2: found 4 columns, expected 22 as in line 1"},
        BadTable{"ALongerRow", dnaHeader + "A " + dnaNumbers + " 5\n",
                 "2: found 23 columns, expected 22 as in line 1"},
        BadTable{"ALetterAlone", "A\n",
                 "1: column 1: found 'A', expected a number, or a header that names x y z, and "
                 "qx qy qz qw if there are quaternions"},
        BadTable{"ACoordinateBeyondFloat", dnaRow("A", 18, "-2e18"),
                 "1: column 18 (z of strand 2): found -2e+18, expected a coordinate between -1e18 "
                 "and 1e18"},
        BadTable{"AQuaternionOfThePairTooLong", dnaRow("A", 8, "1.5"),
                 "1: columns qx qy qz qw of the pair: found a quaternion of norm 1.5, expected 1 "
                 "within 0.01 (--normalise accepts others)"},
        BadTable{"AQuaternionOfStrand1TooShort", dnaRow("A") + dnaRow("A", 12, "0.5"),
                 "2: columns qx qy qz qw of strand 1: found a quaternion of norm 0.5, expected 1 "
                 "within 0.01 (--normalise accepts others)"},
        BadTable{"TheZeroQuaternionOfStrand2", "A 1 2 3 0 0 0 1  4 5 6 1 0 0 0  7 8 9 0 0 0 0\n",
                 "1: columns qx qy qz qw of strand 2: found a quaternion of norm 0, expected 1 "
                 "within 0.01 (--normalise accepts others)"},
        BadTable{"AHeaderWithoutAllNames",
                 "base x y z qx qy qz qw x1 y1 z1 qx1 qy1 qw1 x2 y2 qx2 qy2 qz2 qw2\n",
                 "1: found a header without qz1 z2, expected " + expectedDnaNames},
        BadTable{"AHeaderWithAScalar", "base x y z charge x1\n",
                 "1: column 5: found 'charge', expected only " + expectedDnaNames},
        BadTable{"AHeaderWithANameTwice", "base x y z x1 x2 X1\n",
                 "1: column 7: found 'X1' again, expected each name once"},
        BadTable{"AHeaderOfOneFrameWithAScalar", "base x y z qx qy qz qw charge\nA 1\n",
                 "1: column 9: found 'charge', expected only base, x y z qx qy qz qw"},
        BadTable{"AHeaderOfOneFrameWithoutAllNames", "base x y z qx qy qz\nA 1\n",
                 "1: found a header without qw, expected base, x y z qx qy qz qw"},
        BadTable{"AnotherLetterBelowAHeaderOfOneFrame", "base x y z qx qy qz qw\nU 1 2 3 0 0 0 1\n",
                 "2: column 1 (base): found 'U', expected A, C, G or T"},
        BadTable{"AFieldMissingOfDna", "A,0,0,0,0,0,0,1\nA,0,0,0,,,,\n",
                 "2: column 5 (qx of the pair): found an empty field, expected a finite number"},
        BadTable{"AHeaderOnlyOfDna", dnaHeader,
                 " found nothing to show, expected at least one rod or DNA"},
        BadTable{"AHeaderInsideDna", dnaHeader + dnaRow("A") + dnaHeader,
                 "3: column 1 (base): found 'base', expected A, C, G or T"}),
    [](const auto& test) { return test.param.name; });

// ---- Any table

namespace {

/// Tables as they could come from anywhere, with the rods that are in them.
class RandomTable
{
public:
    explicit RandomTable(unsigned seed) : random(seed) {}

    std::string write()
    {
        const bool haveHeader = below(2) == 0;
        haveRotations = below(3) > 0;
        scalarCount = haveHeader || haveRotations ? below(4) : 0;
        makeRods(1 + below(4));
        order.clear();
        for (std::size_t i = 0; i < (haveRotations ? 7U : 3U) + scalarCount; ++i)
            order.push_back(i);
        if (haveHeader)
            std::shuffle(order.begin(), order.end(), random);

        const std::vector<std::string> choices[] = {
            {" ", "  "}, {"\t", " \t", "\t "}, {",", ", ", " ,", "\t,"}, {";", " ; ", ";\t"}};
        separators = choices[below(4)];
        std::string text = below(3) == 0 ? "\n# by chance\n" : "";
        if (haveHeader)
            writeHeader(text);
        for (const Rod& rod : rods) {
            for (std::size_t i = 0; i < rod.points.size(); ++i)
                writeRow(text, rod, i);
            text += pick({" \n", " \n", "\r\n", "\t\r", "\t\n# next\n"});
        }
        return text;
    }

    std::vector<Rod> rods;
    bool haveRotations = false;

private:
    std::size_t below(std::size_t limit) { return random() % limit; }
    std::string pick(const std::vector<std::string>& texts) { return texts[below(texts.size())]; }

    /// Points of one scale: those too near to each other would be one.
    double coordinate(int scale)
    {
        return std::ldexp(random() * 0x1p-32 + random() * 0x1p-64 - 0.5, scale);
    }

    /// Of either sign, over many orders of magnitude.
    double number()
    {
        const double mantissa = (random() + random() * 0x1p-32) * 0x1p-32 + 0.5;
        return std::ldexp(below(2) == 0 ? mantissa : -mantissa, static_cast<int>(below(100)) - 50);
    }

    Quaternion<double> rotation()
    {
        Quaternion<double> q;
        for (int i = 0; i < 4; ++i)
            q[i] = random() * 0x1p-31 - 1;
        const double norm = q.getNorm();
        for (int i = 0; i < 4; ++i)
            q[i] /= norm;
        return q;
    }

    void makeRods(std::size_t count)
    {
        rods.assign(count, Rod());
        for (Rod& rod : rods) {
            rod.scalars.assign(scalarCount, Scalar());
            const int scale = static_cast<int>(below(100)) - 50;
            const std::size_t length = 2 + below(10);
            for (std::size_t i = 0; i < length; ++i) {
                rod.points.emplace_back(coordinate(scale), coordinate(scale), coordinate(scale));
                if (haveRotations)
                    rod.rotations.push_back(rotation());
                for (Scalar& scalar : rod.scalars)
                    scalar.values.push_back(number());
            }
        }
    }

    double valueOf(const Rod& rod, std::size_t i, int column) const
    {
        if (column < 3)
            return rod.points[i][column];
        if (haveRotations && column < 7)
            return rod.rotations[i][column - 3];
        return rod.scalars[column - (haveRotations ? 7 : 3)].values[i];
    }

    void writeHeader(std::string& text)
    {
        const char* names[] = {"x", "Y", "z", "qx", "qy", "Qz", "qw"};
        for (std::size_t i = 0; i < order.size(); ++i) {
            const bool isScalar = order[i] >= (haveRotations ? 7U : 3U);
            text += (i == 0 ? "" : separator()) +
                    (isScalar ? "s" + std::to_string(order[i]) : names[order[i]]);
        }
        text += lineEnd();
    }

    void writeRow(std::string& text, const Rod& rod, std::size_t i)
    {
        text += pick({"", "", " ", "\t"});
        for (std::size_t c = 0; c < order.size(); ++c) {
            char digits[32];
            std::snprintf(digits, sizeof digits, "%.17g",
                          valueOf(rod, i, static_cast<int>(order[c])));
            text += (c == 0 ? "" : separator()) + digits;
        }
        text += lineEnd();
    }

    /// The same throughout a table, but for blanks around it.
    std::string separator() { return pick(separators); }
    std::string lineEnd() { return pick({"\n", " \n", "\r\n", "\r", " # 1 2 3\n", "\n# 4,5\n"}); }

    std::mt19937 random;
    std::size_t scalarCount = 0;
    std::vector<std::string> separators;
    std::vector<std::size_t> order; ///< what stands in each column
};

} // namespace

TEST(TableReader, ReadsRandomTablesBackBitForBit)
{
    for (unsigned seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE(seed);
        RandomTable table(seed);
        const std::string text = table.write();
        const Reading reading = readText(text);
        ASSERT_TRUE(reading.configuration) << reading.report.error << "\n" << text;

        const std::vector<Rod>& rods = reading.configuration->rods;
        ASSERT_EQ(rods.size(), table.rods.size()) << text;
        for (std::size_t r = 0; r < rods.size(); ++r) {
            EXPECT_EQ(numbersOf(rods[r].points), numbersOf(table.rods[r].points));
            if (table.haveRotations) {
                EXPECT_EQ(numbersOf(rods[r].rotations), numbersOf(table.rods[r].rotations));
            }
            ASSERT_EQ(rods[r].scalars.size(), table.rods[r].scalars.size());
            // A header may have put the scalars into another order.
            std::vector<std::vector<double>> found, expected;
            for (const Scalar& scalar : rods[r].scalars)
                found.push_back(scalar.values);
            for (const Scalar& scalar : table.rods[r].scalars)
                expected.push_back(scalar.values);
            EXPECT_THAT(found, testing::UnorderedElementsAreArray(expected));
        }
        ASSERT_FALSE(HasFailure()) << text;
    }
}

// ---- Frames by parallel transport

namespace {

void expectFrameIsRightHanded(const Quaternion<double>& rotation)
{
    EXPECT_NEAR(rotation.getNorm(), 1, 1e-14);
    const Matrix3<double> frame(rotation);
    const Vector3<double> d3 = frame.getColumn(0).cross(frame.getColumn(1));
    EXPECT_NEAR((d3 - frame.getColumn(2)).getNorm(), 0, 1e-14);
}

void expectNear(const Vector3<double>& found, const Vector3<double>& expected, double tolerance)
{
    EXPECT_LE((found - expected).getNorm(), tolerance)
        << found.x << " " << found.y << " " << found.z << " is not " << expected.x << " "
        << expected.y << " " << expected.z;
}

} // namespace

TEST(ParallelTransport, D3IsTheCentralDifferenceAndAtTheEndsTheEdge)
{
    const std::vector<Vector3<double>> points = {{0, 0, 0}, {1, 0, 0}, {1, 2, 0}, {1, 2, 3}};
    const auto rotations = parallelTransport(points);
    ASSERT_EQ(rotations.size(), 4U);
    const Vector3<double> tangents[] = {{1, 0, 0},
                                        {1 / std::sqrt(5.), 2 / std::sqrt(5.), 0},
                                        {0, 2 / std::sqrt(13.), 3 / std::sqrt(13.)},
                                        {0, 0, 1}};
    for (std::size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        expectFrameIsRightHanded(rotations[i]);
        expectNear(Matrix3<double>(rotations[i]).getColumn(2), tangents[i], 1e-15);
    }
}

TEST(ParallelTransport, AStraightRodHasOneFrame)
{
    for (const Vector3<double>& direction :
         {Vector3<double>(1, 0, 0), Vector3<double>(0, -1, 0), Vector3<double>(0, 0, 1),
          Vector3<double>(0, 0, -1), Vector3<double>(0.6, 0, 0.8),
          Vector3<double>(0, -0.28, 0.96)}) {
        std::vector<Vector3<double>> points;
        for (int i = 0; i < 10; ++i)
            points.push_back(direction * (1. * i * i));
        for (const Quaternion<double>& rotation : parallelTransport(points)) {
            expectFrameIsRightHanded(rotation);
            expectNear(Matrix3<double>(rotation).getColumn(2), direction, 1e-15);
            expectNear(Matrix3<double>(rotation).getColumn(1),
                       Matrix3<double>(parallelTransport(points)[0]).getColumn(1), 1e-15);
        }
    }
}

TEST(ParallelTransport, TheFirstD2IsAcrossZAndAlongZItIsY)
{
    const auto along = [](const Vector3<double>& direction) {
        return Matrix3<double>(parallelTransport({{0, 0, 0}, direction})[0]).getColumn(1);
    };
    expectNear(along({3, 0, 0}), {0, 1, 0}, 1e-15);
    expectNear(along({0, 4, 3}), {-1, 0, 0}, 1e-15);
    expectNear(along({0, 0, 2}), {0, 1, 0}, 1e-15);
    expectNear(along({0, 0, -2}), {0, 1, 0}, 1e-15);
    expectNear(along({0, 0.28, 0.96}), {0, 0.96, -0.28}, 1e-15);
}

TEST(ParallelTransport, InAPlaneOfConstantZEveryD2LiesInIt)
{
    std::vector<Vector3<double>> points;
    for (int i = 0; i <= 300; ++i) {
        const double t = 0.05 * i;
        points.emplace_back(t * std::cos(t * t / 20), std::sin(3 * t), 7);
    }
    for (const Quaternion<double>& rotation : parallelTransport(points)) {
        expectFrameIsRightHanded(rotation);
        const Vector3<double> d3 = Matrix3<double>(rotation).getColumn(2);
        expectNear(Matrix3<double>(rotation).getColumn(1), {-d3.y, d3.x, 0}, 1e-12);
    }
}

TEST(ParallelTransport, TheEndsOfAClosedRodHaveOneTangent)
{
    // A square: the neighbours of its corner are the second point and the last but one.
    const std::vector<Vector3<double>> square = {
        {0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 0}};
    const Vector3<double> diagonal(std::sqrt(0.5), -std::sqrt(0.5), 0);
    for (const double gap : {0., 0.9e-5, 1.1e-5}) {
        SCOPED_TRACE(gap);
        std::vector<Vector3<double>> points = square;
        points.back().x = gap;
        const auto rotations = parallelTransport(points);
        const bool isClosed = gap < 1e-5; // of the mean edge, 1
        expectNear(Matrix3<double>(rotations[0]).getColumn(2),
                   isClosed ? diagonal : Vector3<double>(1, 0, 0), 1e-15);
        expectNear(Matrix3<double>(rotations[4]).getColumn(2),
                   isClosed ? diagonal : Vector3<double>(0, -1, 0), gap == 0 ? 1e-15 : 2e-5);
    }
}

TEST(ParallelTransport, AClosedRodOfThreePointsKeepsTheTangentsOfItsEdges)
{
    const auto rotations = parallelTransport({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}});
    expectNear(Matrix3<double>(rotations[0]).getColumn(2), {1, 0, 0}, 1e-15);
    expectNear(Matrix3<double>(rotations[2]).getColumn(2), {-1, 0, 0}, 1e-15);
}

TEST(ParallelTransport, AlongAHelixTheFrenetNormalTurnsAgainstD2ByTheTotalTorsion)
{
    // Radius 2 and pitch 2 pi, three turns. The torsion is 1 / (2 * 2 + 1), the length
    // of t radians sqrt(5) t: from t to t' the Frenet frame turns by (t' - t) / sqrt(5)
    // about the tangent, the transported frame does not.
    const int steps = 3000;
    const double h = 6 * pi / steps;
    std::vector<Vector3<double>> points;
    for (int i = 0; i <= steps; ++i)
        points.emplace_back(2 * std::cos(i * h), 2 * std::sin(i * h), i * h);
    const auto rotations = parallelTransport(points);

    const auto angleOfNormal = [&](int i) {
        const Vector3<double> normal(-std::cos(i * h), -std::sin(i * h), 0);
        const Matrix3<double> frame(rotations[i]);
        return std::atan2(normal.dot(frame.getColumn(1)), normal.dot(frame.getColumn(0)));
    };
    // The ends have one-sided tangents, which are not those of the helix.
    double turned = 0;
    for (int i = 1; i + 2 < steps; ++i)
        turned += std::remainder(angleOfNormal(i + 1) - angleOfNormal(i), 2 * pi);
    // Both the tangents and the transport are of second order in the step.
    const double expected = (steps - 3) * h / std::sqrt(5.);
    EXPECT_NEAR(turned, expected, h * h * expected);
}

TEST(ParallelTransport, ACentrelineThatTurnsBackOnItselfStillHasFrames)
{
    // The neighbours of point 1 are one point, those of point 4 give the tangent of
    // point 3 reversed.
    const std::vector<Vector3<double>> points = {{0, 0, 0}, {1, 0, 0},   {0, 0, 0}, {0, 1, 0},
                                                 {0, 2, 0}, {0, 1.5, 0}, {0, -1, 0}};
    const auto rotations = parallelTransport(points);
    for (const Quaternion<double>& rotation : rotations)
        expectFrameIsRightHanded(rotation);
    expectNear(Matrix3<double>(rotations[1]).getColumn(2), {-1, 0, 0}, 1e-15);
}

TEST(ParallelTransport, AnEdgeAcrossTwoEqualTangentsMirrorsD2) // kept on purpose
{
    // The second reflection is between two equal tangents; its plane would be chance.
    std::mt19937 random(3);
    for (int i = 0; i < 100; ++i) {
        const auto direction = [&] {
            return Vector3<double>(random() * 0x1p-31 - 1, random() * 0x1p-31 - 1,
                                   random() * 0x1p-31 - 1)
                .getUnit();
        };
        const Vector3<double> edge = direction();
        const Vector3<double> tangent = edge.cross(direction()).getUnit();
        const auto rotations = parallelTransport({edge - tangent, {0, 0, 0}, edge, tangent});
        const Vector3<double> d2 = Matrix3<double>(rotations[1]).getColumn(1);
        expectFrameIsRightHanded(rotations[2]);
        expectNear(Matrix3<double>(rotations[2]).getColumn(2), tangent, 1e-14);
        expectNear(Matrix3<double>(rotations[2]).getColumn(1), d2 - edge * (2 * edge.dot(d2)),
                   1e-14);
    }
}

TEST(ParallelTransport, NeitherTheSmallestNorTheLargestStepsSpoilTheFrames)
{
    for (const double scale : {2e-154, 1e-100, 1e17}) {
        SCOPED_TRACE(scale);
        std::vector<Vector3<double>> points;
        for (int i = 0; i < 20; ++i)
            points.push_back(Vector3<double>(std::cos(i), std::sin(i), 0.3 * i) * scale);
        for (const Quaternion<double>& rotation : parallelTransport(points))
            expectFrameIsRightHanded(rotation);
    }
}

} // namespace strandview
