// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/XyzReader.h>

#include <gmock/gmock.h>

#include <strandview/formats/formats.h>
#include <strandview/formats/readFile.h>

#include "support/TemporaryFolder.h"
#include "support/readText.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

const std::string FIRST = "3\nstep 10\nC 0 0 0\nC 0 0 1.5 0.25\nN -1 2 2e0\n";
const std::string SECOND = "2\n\nC 0 0 0\nC 4 0 0\n";

Reading read(const std::string& text) { return readWith(readXyz, text); }

std::unique_ptr<Series> open(const std::string& text, ReadReport& report)
{
    return openXyz(Source::ofBytes("here", text), {}, report);
}

} // namespace

TEST(XyzReader, AFrameIsARodThroughItsAtoms)
{
    const Rod rod = onlyRod(read(FIRST + SECOND));
    EXPECT_EQ(numbersOf(rod.points), Points({{0, 0, 0}, {0, 0, 1.5}, {-1, 2, 2}}));
    EXPECT_THAT(rod.lines, ElementsAre(3, 4, 5));
    EXPECT_EQ(rod.origin, "here:1: rod 1");
    EXPECT_FALSE(rod.hasFrames);
}

TEST(XyzReader, FramesMayDifferAndAreReadByThemselves)
{
    ReadReport report;
    for (const std::string& text :
         {FIRST + SECOND + FIRST, FIRST + "\n" + SECOND + FIRST + "\n\n"}) {
        const auto series = open(text, report);
        ASSERT_TRUE(series) << report.error;
        ASSERT_EQ(series->count(), 3u);
        EXPECT_EQ(series->load(1).configuration->rods[0].points.size(), 2u);
        EXPECT_EQ(series->load(2).configuration->rods[0].points.size(), 3u);
        EXPECT_EQ(series->load(0).configuration->rods[0].points.size(), 3u);
    }
}

TEST(XyzReader, LinesOfAnyEndAndElementsByNumberAreTaken)
{
    std::string text;
    for (const char c : FIRST + SECOND)
        text += c == '\n' ? std::string("\r\n") : std::string(1, c);
    EXPECT_EQ(onlyRod(read(text)).points.size(), 3u);
    EXPECT_EQ(likenessToXyz("2\n\n6 0 0 0\n6 0 0 1\n"), Likeness::CERTAIN);
    EXPECT_EQ(onlyRod(read("2\n\n6 0 0 0\n6 0 0 1")).points.size(), 2u);
}

TEST(XyzReader, ItsContentIsCertainAndThatOfPlainRowsIsNot)
{
    EXPECT_EQ(likenessToXyz(FIRST), Likeness::CERTAIN);
    for (const char* text : {"", "0 0 0\n0 0 1\n0 0 2\n", "3\n\n0 0 0\n", "3\n\nC 0 0\n",
                             "x\n\nC 0 0 0\n", "3 4\n\nC 0 0 0\n", "3\n\nC a b c\n"})
        EXPECT_EQ(likenessToXyz(text), Likeness::NONE) << text;
    const TemporaryFolder folder;
    ReadReport report;
    EXPECT_TRUE(readFile(folder.write("run.txt", FIRST), {}, report)) << report.error;
    EXPECT_TRUE(readFile(folder.write("run.xyz", "0 0 0\n0 0 1\n"), {}, report)) << report.error;
}

TEST(XyzReader, RefusesBadFramesInOneLineWithItsNumber)
{
    const std::pair<std::string, std::string> faults[] = {
        {"2\n\nC 0 0 0\n", "here:4: found the end of the file after 1 atom, expected 2"},
        {"2\n\nC 0 0 0\nC 0 0\n",
         "here:4: column 4 (z): found the end of the line, expected x y z"},
        {"2\n\nC 0 0 x\nC 0 0 1\n", "here:3: column 4 (z): found 'x', expected a coordinate"},
        {"2\n\nC 0 nan 0\nC 0 0 1\n", "here:3: column 3 (y): found 'nan', expected a coordinate"},
        {"2\n\nC 2e18 0 0\nC 0 0 1\n", "here:3: column 2 (x): found '2e18', expected a coordinate"},
        {"2\n\nC 0 0 0\n\n", "here:4: found an empty line, expected an atom"},
        {"2\n\nC 0 0 0\nC 0 0 0\n", "here:1: found 1 distinct point, expected at least 2"},
        {"1\n\nC 0 0 0\n",
         "here:1: found '1', expected the number of atoms of a frame, at least 2"},
        {"0\n\n", "here:1: found '0', expected the number of atoms"},
        {"x\n", "here:1: found 'x', expected the number of atoms"},
        {"99999999999999999999\n\nC 0 0 0\n", "here:1: found '99999999999999999999', expected"},
        {"1000000000000000000\n\nC 0 0 0\n", "here:4: found the end of the file after 1 atom"},
        {"", "here: found nothing to show"},
    };
    for (const auto& [text, error] : faults) {
        const Reading reading = read(text);
        EXPECT_FALSE(reading.configuration) << text;
        EXPECT_THAT(reading.report.error, StartsWith(error));
        ReadReport report;
        EXPECT_FALSE(open(text, report));
        EXPECT_EQ(report.error, reading.report.error);
    }
}

TEST(XyzReader, WhatFollowsAFrameIsItsNumberAgain)
{
    ReadReport report;
    EXPECT_FALSE(open(FIRST + "C 0 0 0\n", report));
    EXPECT_THAT(report.error, StartsWith("here:6: found 'C 0 0 0', expected the number of atoms"));
}

TEST(XyzReader, ACutLastFrameIsLeftOutWhereverItIsCut)
{
    // Up to the last number, of which nothing tells whether it is whole.
    for (std::size_t kept = 2; kept < SECOND.size() - 3; ++kept) {
        ReadReport report;
        const auto series = open(FIRST + SECOND.substr(0, kept), report);
        ASSERT_TRUE(series) << kept << report.error;
        EXPECT_EQ(series->count(), 1u) << kept;
        ASSERT_EQ(report.notices.size(), 1u) << kept;
        EXPECT_THAT(report.notices[0], HasSubstr("; frame 1, the last one, is left out"));
    }
}

} // namespace strandview
