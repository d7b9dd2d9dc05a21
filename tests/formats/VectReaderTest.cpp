// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/VectReader.h>

#include <gmock/gmock.h>

#include "support/readText.h"

namespace strandview {

namespace {

using testing::StartsWith;

Reading read(const std::string& text) { return readWith(readVect, text, "here", {}); }

const std::string TWO = "VECT # a closed one and an open one\n2 5 1\n-3 2 # vertices\n1 0\n"
                        "# Component 0\n0 0 0\n1 0 0\n0 1 0\n# Component 1\n5 5 5 6 6\n6\n"
                        "0.5 1 0 1\n";

} // namespace

TEST(VectReader, PolylinesAreRodsAndANegativeCountClosesThem)
{
    const std::vector<Rod> rods = acceptedRods(read(TWO));
    ASSERT_EQ(rods.size(), 2u);
    EXPECT_EQ(numbersOf(rods[0].points), Points({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
    EXPECT_TRUE(rods[0].isClosed);
    EXPECT_EQ(rods[0].origin, "here:6: rod 1");
    EXPECT_EQ(numbersOf(rods[1].points), Points({{5, 5, 5}, {6, 6, 6}}));
    EXPECT_FALSE(rods[1].isClosed);
    EXPECT_EQ(rods[1].origin, "here:10: rod 2");
}

TEST(VectReader, WordsMayStandInAnyLines)
{
    std::string manyLines = "VECT";
    for (const char c : TWO.substr(TWO.find("\n2 5 1")))
        manyLines += c == ' ' && manyLines.find('#') == manyLines.npos ? '\n' : c;
    EXPECT_EQ(acceptedRods(read(manyLines)).size(), 2u);
    EXPECT_EQ(onlyRod(read("VECT 1 2 0 2 0 0 0 0 1 2 3")).points.size(), 2u);
    EXPECT_EQ(onlyRod(read("\r\nVECT\r\n1 2 0\r\n2\r\n0\r\n0 0 0\r\n1 2 3\r\n")).points.size(), 2u);
}

TEST(VectReader, ItsFirstWordIsCertain)
{
    EXPECT_EQ(likenessToVect("# a comment\n\n VECT 1"), Likeness::CERTAIN);
    for (const char* text : {"", "4VECT", "VECTOR 1", "OFF", "x VECT"})
        EXPECT_EQ(likenessToVect(text), Likeness::NONE) << text;
}

TEST(VectReader, RefusesBadFilesInOneLine)
{
    const std::pair<std::string, std::string> faults[] = {
        {"", "here:1: found another word, expected VECT"},
        {"VECT", "here:1: found the end of the file, expected the number of polylines"},
        {"VECT\nx", "here:2: found 'x', expected the number of polylines"},
        {"VECT 1 -3 0", "here:1: found -3, expected the number of vertices"},
        {"VECT 1 3.5 0", "here:1: found '3.5', expected the number of vertices"},
        {"VECT 1 3 0 2", "here:1: found polylines of 2 vertices, expected 3 of all"},
        {"VECT 2 3 0 2 2", "here:1: found polylines of 4 vertices or more, expected 3 of all"},
        {"VECT 3 0 0 9223372036854775807",
         "here:1: found '9223372036854775807', expected the number"},
        {"VECT 1 1 0 -9223372036854775808", "here:1: found '-9223372036854775808', expected"},
        {"VECT 1152921504606846976 1152921504606846976 0 1 1",
         "here:1: found the end of the file, expected the number of vertices of a polyline"},
        {"VECT 1 2 0 2", "here:1: found the end of the file, expected the number of colours"},
        {"VECT 1 2 0 2 0\n0 0 0\n1 1",
         "here:3: found the end of the file in vertex 2 of 2, expected"},
        {"VECT 1 2 0 2 0\n0 0 0\n1 x 1",
         "here:3: found 'x' in vertex 2 of 2, expected a coordinate"},
        {"VECT 1 2 0 2 0\n0 0 0\n1 inf 1", "here:3: found 'inf' in vertex 2 of 2"},
        {"VECT 1 1000000000000 0 1000000000000 0\n0 0 0\n",
         "here:3: found the end of the file in vertex 2 of 1000000000000"},
        {"VECT 1 2 0 2 0\n0 0 0\n0 0 0", "here:2: found 1 distinct point, expected at least 2"},
        {"VECT 1 2 0 -2 0\n0 0 0\n0 0 1",
         "here:2: found 2 distinct points, expected at least 3 in a closed rod"},
        {"VECT 1 0 0 0 0\n", "here:1: found a polyline of 0 vertices, expected at least 2"},
        {"VECT 0 0 0\n", "here: found nothing to show, expected at least one polyline"},
    };
    for (const auto& [text, error] : faults) {
        const Reading reading = read(text);
        EXPECT_FALSE(reading.configuration) << text;
        EXPECT_THAT(reading.report.error, StartsWith(error));
    }
}

} // namespace strandview
