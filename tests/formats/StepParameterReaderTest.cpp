// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/StepParameterReader.h>

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/formats/readFile.h>

#include "support/FilesOfOthers.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string NAMES = "# Shear Stretch Stagger Buckle Prop-Tw Opening Shift Slide Rise Tilt "
                          "Roll Twist\n";
const std::string BEGINNING =
    " # base pairs\n0 # ***local base-pair & step parameters***\n" + NAMES;
const std::string FLAT = " 0 0 0 0 0 0 0 0 3.4 0 0 36\n";

struct Read
{
    std::optional<Configuration> configuration;
    ReadReport report;
};

Read read(const std::string& text)
{
    Read result;
    result.configuration = readStepParameters(text, "here.par", {}, result.report);
    return result;
}

Dna onlyDnaOf(const std::string& path, ReadReport& report)
{
    auto configuration = readFile(path, {}, report);
    EXPECT_TRUE(configuration) << report.error;
    EXPECT_TRUE(configuration && configuration->dnas.size() == 1);
    return configuration && !configuration->dnas.empty() ? configuration->dnas[0] : Dna();
}

void expectNear(const StepParameters& found, const StepParameters& expected)
{
    EXPECT_NEAR(found.shift, expected.shift, 1e-12);
    EXPECT_NEAR(found.slide, expected.slide, 1e-12);
    EXPECT_NEAR(found.rise, expected.rise, 1e-12);
    EXPECT_NEAR(found.tilt, expected.tilt, 1e-12);
    EXPECT_NEAR(found.roll, expected.roll, 1e-12);
    EXPECT_NEAR(found.twist, expected.twist, 1e-12);
}

} // namespace

TEST(StepParameterReader, RebuildsADoubleStrandThatHasTheParameters)
{
    ReadReport report;
    const Dna dna = onlyDnaOf(std::string(TEST_FILES) + "/bent5.par", report);
    EXPECT_THAT(report.notices, IsEmpty());
    EXPECT_EQ(dna.bases, "CGAAT");
    EXPECT_FALSE(dna.isClosed);
    EXPECT_THAT(dna.origin, HasSubstr("bent5.par:4: DNA 1"));
    EXPECT_EQ(dna.pairPoints[0].getNorm(), 0) << "whatever the first row says of a step";
    const std::vector<StepParameters> steps = stepsOf(dna);
    ASSERT_EQ(steps.size(), 4u);
    expectNear(steps[0], {0, 0, 3.4, 0, 0, 36});
    expectNear(steps[1], {0.2, -0.3, 3.3, 2, 5, 34});
    expectNear(steps[2], {-0.1, 0.4, 3.2, -1, -4, 37});
    expectNear(steps[3], {0, 0, 3.5, 0, 8, 33});
    const std::vector<PairParameters> pairs = pairsOf(dna);
    EXPECT_NEAR(pairs[0].propeller, -12, 1e-12);
    EXPECT_NEAR(pairs[0].buckle, 4, 1e-12);
    EXPECT_NEAR(pairs[1].opening, 0, 1e-12);
    EXPECT_NEAR(pairs[4].shear, -0.2, 1e-12);
    EXPECT_NEAR(pairs[4].stagger, -0.3, 1e-12);
}

TEST(StepParameterReader, ALastPairThatIsTheFirstAgainClosesTheStrand)
{
    ReadReport report;
    const Dna dna = onlyDnaOf(std::string(TEST_FILES) + "/decagon10.par", report);
    EXPECT_TRUE(dna.isClosed);
    EXPECT_EQ(dna.bases, "ACGTTGCAAG");
    EXPECT_NEAR(numbersOf(dna).length, 34, 1e-11);
}

TEST(StepParameterReader, TheLineOfNamesMayBeMissingAndLinesMayEndInAnyWay)
{
    const Read found =
        read("2\r\n0\r\na-t" + FLAT.substr(0, FLAT.size() - 1) + "\r\n\r\nC+G" + FLAT);
    ASSERT_TRUE(found.configuration) << found.report.error;
    EXPECT_EQ(found.configuration->dnas[0].bases, "AC");
}

TEST(StepParameterReader, OtherLettersAreToldOf)
{
    const Read found =
        read("4" + BEGINNING + "A-U" + FLAT + "U-A" + FLAT + "X-C" + FLAT + "G-T" + FLAT);
    ASSERT_TRUE(found.configuration) << found.report.error;
    EXPECT_EQ(found.configuration->dnas[0].bases, "ATNG");
    EXPECT_THAT(
        found.report.notices,
        ElementsAre("here.par: 1 base U, shown as T",
                    "here.par: 1 base of other letters than A, C, G, T and U: not known",
                    "here.par: 1 pair of letters that are no complements: strand 2 is shown "
                    "with the complement"));
}

TEST(StepParameterReader, HelicalParametersAreRefusedByTheirNames)
{
    EXPECT_EQ(read("1 # base pairs\n0 # ***local base-pair & step parameters***\n# Shear Stretch "
                   "Stagger Buckle Prop-Tw Opening X-disp Y-disp h-Rise Incl. Tip h-Twist\nA-T" +
                   FLAT)
                  .report.error,
              "here.par:3: found the helical parameter 'x-disp', expected step parameters: Shear "
              "Stretch Stagger Buckle Prop-Tw Opening Shift Slide Rise Tilt Roll Twist");
    EXPECT_EQ(read("1 # base pairs\n1 # ***local base-pair & helical parameters***\n").report.error,
              "here.par:2: found '1 # ***local base-pair & helical paramet...', expected 0 and "
              "step parameters, not helical ones");
}

struct Fault
{
    std::string name, text, error;
};
void PrintTo(const Fault& fault, std::ostream* stream) { *stream << fault.name; }

class StepParameterFaults : public testing::TestWithParam<Fault>
{
};

TEST_P(StepParameterFaults, AreOneLine)
{
    const Read found = read(GetParam().text);
    EXPECT_FALSE(found.configuration);
    EXPECT_EQ(found.report.error, GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(
    StepParameterReader, StepParameterFaults,
    testing::Values(
        Fault{"Nothing", "",
              "here.par:1: found the end of the file, expected the number of base "
              "pairs"},
        Fault{"NoCount", "pairs\n",
              "here.par:1: column 1: found 'pairs', expected the number of "
              "base pairs"},
        Fault{"NoFlag", "1\n", "here.par:2: found the end of the file, expected a flag"},
        Fault{"OtherFlag", "1\n7\n",
              "here.par:2: found '7', expected 0 and step parameters, not "
              "helical ones"},
        Fault{"OtherOrder",
              "1" + BEGINNING.substr(0, BEGINNING.find("# Shear")) +
                  "# Shift Slide Rise Tilt Roll Twist\nA-T" + FLAT,
              "here.par:3: found the columns '# Shift Slide Rise Tilt Roll Twist', expected Shear "
              "Stretch Stagger Buckle Prop-Tw Opening Shift Slide Rise Tilt Roll Twist"},
        Fault{"NoLetters", "1" + BEGINNING + FLAT,
              "here.par:4: column 1: found '0', expected a pair as A-T"},
        Fault{"NoNumber", "1" + BEGINNING + "A-T 0 0 x 0 0 0 0 0 3.4 0 0 36\n",
              "here.par:4: column 4: found 'x', expected a finite number"},
        Fault{"NotFinite", "1" + BEGINNING + "A-T 0 0 inf 0 0 0 0 0 3.4 0 0 36\n",
              "here.par:4: column 4: found 'inf', expected a finite number"},
        Fault{"FewNumbers", "1" + BEGINNING + "A-T 0 0 0 0 0 0 0 0 3.4\n",
              "here.par:4: found 10 columns, expected 13"},
        Fault{"ManyNumbers", "1" + BEGINNING + "A-T 0 0 0 0 0 0 0 0 3.4 0 0 36 5\n",
              "here.par:4: column 14: found '5', expected the end of the line"},
        Fault{"FarAway", "2" + BEGINNING + "A-T" + FLAT + "A-T 0 0 0 0 0 0 0 0 1e300 0 0 36\n",
              "here.par:5: found a pair that comes to 1e+300, expected a coordinate between -1e18 "
              "and 1e18"},
        Fault{"LargeAngle", "1" + BEGINNING + "A-T 0 0 0 0 0 0 0 0 0 0 0 -361\n",
              "here.par:4: found an angle of -361 degrees, expected at most 360"},
        Fault{"FewRows", "99999999999" + BEGINNING + "A-T" + FLAT,
              "here.par:5: found the end of the file after 1 pair, expected 99999999999"},
        Fault{"ManyRows", "1" + BEGINNING + "A-T" + FLAT + "A-T" + FLAT,
              "here.par:5: found one more row, expected 1 pair"},
        Fault{"NoRows", "0" + BEGINNING, "here.par: found 0 bases, expected at least 1"}),
    [](const auto& test) { return test.param.name; });

TEST(StepParameterReader, IsToldByTheContent)
{
    EXPECT_EQ(likenessToStepParameters("5 # pairs\n0 # step parameters\n"), Likeness::CERTAIN);
    EXPECT_EQ(likenessToStepParameters("5\n0\n" + NAMES), Likeness::CERTAIN);
    for (const char* other : {"", "5\n", "0 0 0\n0 0 1\n", "5\n0\n1 2 3\n", "{\"a\": 1}"})
        EXPECT_EQ(likenessToStepParameters(other), Likeness::NONE) << other;
}

using StepParametersOfOthers = FilesOfOthers;

TEST_F(StepParametersOfOthers, OfAMinicircleCloseIt)
{
    ReadReport report;
    const Dna dna = onlyDnaOf(folder + "minicircle336.par", report);
    EXPECT_TRUE(dna.isClosed);
    ASSERT_EQ(dna.bases.size(), 336u);
    EXPECT_THAT(report.notices, IsEmpty());
    const DnaNumbers numbers = numbersOf(dna);
    EXPECT_NEAR(*numbers.totalTwist, 11488.4, 0.05);
    EXPECT_NEAR(numbers.length, 1130.9, 0.05);
    EXPECT_EQ(numbers.endToEnd, 0);
    // The closing step, from pair to pair, is that of the row that is left out.
    const StepParameters closing = stepsOf(dna).back();
    EXPECT_NEAR(closing.shift, -0.28524, 0.001);
    EXPECT_NEAR(closing.rise, 3.33317, 0.001);
    EXPECT_NEAR(closing.tilt, -1.98174, 0.001);
    EXPECT_NEAR(closing.twist, 35.79212, 0.001);
}

TEST_F(StepParametersOfOthers, OfANucleosomeHaveItsKnownLengths)
{
    ReadReport report;
    const Dna dna = onlyDnaOf(folder + "nucleosome141.par", report);
    EXPECT_FALSE(dna.isClosed);
    ASSERT_EQ(dna.bases.size(), 141u);
    const DnaNumbers numbers = numbersOf(dna);
    EXPECT_NEAR(numbers.endToEnd, 72.64, 0.005);
    EXPECT_NEAR(numbers.length, 485.85, 0.005);
    EXPECT_NEAR(*numbers.totalTwist, 4853.5, 0.05);
}

} // namespace strandview
