// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/PairFrameReader.h>

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/Matrix3.h>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/formats/readFile.h>

#include "support/FilesOfOthers.h"

namespace strandview {

namespace {

using testing::HasSubstr;
using testing::IsEmpty;

const std::string PAIR = "{{0,0,0},{{1,0,0},{0,1,0},{0,0,1}}}";

struct Read
{
    std::optional<Configuration> configuration;
    ReadReport report;
};

Read read(const std::string& text, const ReadOptions& options = {})
{
    Read result;
    result.configuration = readPairFrames(text, "here", options, result.report);
    return result;
}

Dna onlyDnaOf(const std::string& path, ReadReport& report)
{
    auto configuration = readFile(path, {}, report);
    EXPECT_TRUE(configuration) << report.error;
    EXPECT_TRUE(configuration && configuration->dnas.size() == 1);
    return configuration && !configuration->dnas.empty() ? configuration->dnas[0] : Dna();
}

} // namespace

TEST(PairFrameReader, ReadsPairsWithTheirLettersOriginsAndAxes)
{
    ReadReport report;
    const Dna dna = onlyDnaOf(std::string(TEST_FILES) + "/frames3.dat", report);
    EXPECT_THAT(report.notices, IsEmpty());
    EXPECT_EQ(dna.bases, "CGA");
    EXPECT_EQ(dna.pairPoints[2].z, 9.7);
    EXPECT_THAT(dna.origin, HasSubstr("frames3.dat:2: DNA 1"));
    // Rows are axes: each turns on by the angle of 3, 4 and 5.
    const std::vector<StepParameters> steps = stepsOf(dna);
    EXPECT_NEAR(steps[0].twist, std::atan2(3, 4) * 180 / M_PI, 1e-12);
    EXPECT_NEAR(steps[1].rise, 3.3, 1e-12);
    EXPECT_NEAR(algebra3d::Matrix3<double>(dna.rotations2[1]).getColumn(0).y, 0.6, 1e-15);
}

TEST(PairFrameReader, ReadsListsInBrackets)
{
    ReadReport report;
    const Dna dna = onlyDnaOf(std::string(TEST_FILES) + "/square4.bplist", report);
    EXPECT_TRUE(dna.isClosed);
    EXPECT_EQ(dna.bases, "NNNN");
    // A quarter turn about y with each of four pairs.
    for (const StepParameters& step : stepsOf(dna))
        EXPECT_NEAR(step.roll, 90, 1e-12);
}

TEST(PairFrameReader, TakesBracketsOfAnyKindAndNumbersAsTheyAreWrittenThere)
{
    for (const std::string& text :
         {"[[1.5*^1, 0, 0], [[1, 0, 0], [0, 1, 0], [0, 0, 1]]]\n" + PAIR,
          "{" + PAIR + ",\r\n" + PAIR + "}\n", "((0 0 0) ((1 0 0)\n(0 1 0) (0 0 1)))" + PAIR}) {
        const Read found = read(text);
        ASSERT_TRUE(found.configuration) << found.report.error;
        EXPECT_EQ(found.configuration->dnas[0].bases, "NN");
        const double x = found.configuration->dnas[0].pairPoints[0].x;
        EXPECT_TRUE(x == 0 || x == 15) << x;
    }
}

TEST(PairFrameReader, AxesOfAnyLengthAreTakenWhereThatIsAskedFor)
{
    const std::string text = "{{0,0,0},{{2,0,0},{0,2,0},{0,0,2}}}";
    EXPECT_THAT(read(text).report.error, HasSubstr("here:1: axes: found"));
    ReadOptions options;
    options.normalise = true;
    EXPECT_TRUE(read(text, options).configuration);
}

struct PairFrameFault
{
    std::string name, text, error;
};
void PrintTo(const PairFrameFault& fault, std::ostream* stream) { *stream << fault.name; }

class PairFrameFaults : public testing::TestWithParam<PairFrameFault>
{
};

TEST_P(PairFrameFaults, AreOneLine)
{
    const Read found = read(GetParam().text);
    EXPECT_FALSE(found.configuration);
    EXPECT_EQ(found.report.error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    PairFrameReader, PairFrameFaults,
    testing::Values(
        PairFrameFault{"Nothing", "",
                       "here:1: found the end of the file, expected the number of base pairs"},
        PairFrameFault{"NoPair", "{}", "here: found 0 bases, expected at least 1"},
        PairFrameFault{"CutBrackets", PAIR.substr(0, 20),
                       "here:1: found the end of the file within a pair, expected closing "
                       "brackets"},
        PairFrameFault{"CutPair", "{0,0,0}{1,0,0}",
                       "here:1: found the end of the file within a pair, expected four rows of "
                       "three numbers"},
        PairFrameFault{"TwoNumbers", "{{0,0}", "here:1: found 2 numbers in brackets, expected 3"},
        PairFrameFault{"FourNumbers", "\n{{0,0,0,0}",
                       "here:2: found a fourth number in brackets, expected 3"},
        PairFrameFault{"Closing", "{0,0,0}}",
                       "here:1: found a closing bracket, expected an opening one before it"},
        PairFrameFault{"Opening", "{{0,{0,0}",
                       "here:1: found an opening bracket after a number, expected 3 numbers"},
        PairFrameFault{"NoNumber", "{{0,zero,0}", "here:1: found 'zero', expected a finite number"},
        PairFrameFault{"NotFinite", "{{0,nan,0}", "here:1: found 'nan', expected a finite number"},
        PairFrameFault{"FarAway", "{{0,1e19,0}",
                       "here:1: found '1e19', expected a coordinate between -1e18 and 1e18"},
        PairFrameFault{"CutAxes", "1\n... 1 A-T\n0 0 0\n1 0 0\n0 1 0\n",
                       "here:6: found the end of the file, expected a z axis"},
        PairFrameFault{"FewPairs", "88888888888\n... 1 A-T\n0 0 0\n1 0 0\n0 1 0\n0 0 1\n",
                       "here:7: found the end of the file after 1 pair, expected 88888888888"},
        PairFrameFault{"LeftHanded", "1\n... 1 A-T\n0 0 0\n1 0 0\n0 1 0\n0 0 -1\n",
                       "here:6: axes: found left-handed directors, expected d3 = d1 x d2"}),
    [](const auto& test) { return test.param.name; });

TEST(PairFrameReader, IsToldByTheContent)
{
    EXPECT_EQ(likenessToPairFrames(PAIR), Likeness::CERTAIN);
    EXPECT_EQ(likenessToPairFrames("[" + PAIR + "]"), Likeness::CERTAIN);
    EXPECT_EQ(likenessToPairFrames("2 pairs\n...  1 A-T\n0 0 0 # origin\n"), Likeness::CERTAIN);
    for (const char* other : {"", "5\n", "0 0 0\n0 0 1\n", "3\ncomment\nC 0 0 0\n", "{\"a\": 1}",
                              "{{1,2,3},{1,2,3}}", "3\nA-T\n"})
        EXPECT_EQ(likenessToPairFrames(other), Likeness::NONE) << other;
}

using PairFramesOfOthers = FilesOfOthers;

TEST_F(PairFramesOfOthers, OfAMinicircleCloseIt)
{
    ReadReport report;
    const Dna dna = onlyDnaOf(folder + "minicircle68.bplist", report);
    EXPECT_TRUE(dna.isClosed);
    EXPECT_EQ(dna.bases, std::string(68, 'N'));
    EXPECT_THAT(report.notices, IsEmpty()) << "d3 follows the pairs";
    // The second row of the file's second pair is d2.
    const auto d2 = algebra3d::Matrix3<double>(dna.pairRotations[1]).getColumn(1);
    EXPECT_NEAR(d2.x, -0.5236724157, 1e-9);
    EXPECT_NEAR(d2.y, 0.8491855326, 1e-9);
}

} // namespace strandview
