// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/oxdna/OxdnaReader.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <sstream>
#include <tuple>

#include <gmock/gmock.h>

#include <strandview/analysis/dnaNumbers.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>
#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

#include "support/FilesOfOthers.h"
#include "support/TemporaryFolder.h"
#include "support/pack.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr double UNIT = 8.518;
const std::string OURS = std::string(TEST_FILES) + "/";

std::string contentOf(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    EXPECT_TRUE(stream) << path;
    return {std::istreambuf_iterator<char>(stream), {}};
}

Configuration mustRead(const std::string& path, ReadReport& report, const ReadOptions& options = {})
{
    auto configuration = readFile(path, options, report);
    EXPECT_TRUE(configuration) << report.error;
    return configuration.value_or(Configuration());
}

Configuration mustRead(const std::string& path)
{
    ReadReport report;
    Configuration configuration = mustRead(path, report);
    for (const std::string& notice : report.notices)
        EXPECT_THAT(notice, HasSubstr("the first of several frames"));
    return configuration;
}

std::size_t pairsIn(const Configuration& configuration)
{
    std::size_t pairs = 0;
    for (const Dna& dna : configuration.dnas)
        pairs += dna.bases.size();
    return pairs;
}

} // namespace

TEST(OxdnaReader, AnIdealDuplexHasItsTwistAndRiseFromBothTopologies)
{
    for (const char* name : {"duplex5_classic.dat", "duplex5_new.dat"}) {
        SCOPED_TRACE(name);
        const Configuration found = mustRead(OURS + name);
        ASSERT_EQ(found.dnas.size(), 1u);
        const Dna& dna = found.dnas[0];
        EXPECT_TRUE(dna.bases == "ACGGT" || dna.bases == "ACCGT") << dna.bases;
        for (const StepParameters& step : stepsOf(dna)) {
            EXPECT_NEAR(step.twist, 36, 1e-8);
            EXPECT_NEAR(step.rise, 3.4, 1e-8);
        }
        for (const PairParameters& pair : pairsOf(dna))
            EXPECT_NEAR(std::abs(pair.stretch) + std::abs(pair.propeller), 0, 1e-6);
        EXPECT_THAT(found.loneBases, IsEmpty());
    }
}

TEST(OxdnaReader, TheNewTopologyReadAsTheClassicOneWouldTurnTheHelixLeftHanded)
{
    // The same order of lines, but from the 3' ends on.
    const TemporaryFolder folder;
    std::ostringstream wrong;
    wrong << "10 2\n";
    const std::string letters = "ACGGTACCGT";
    for (int i = 0; i < 10; ++i)
        wrong << i / 5 + 1 << ' ' << letters[std::size_t(i)] << ' ' << (i % 5 == 0 ? -1 : i - 1)
              << ' ' << (i % 5 == 4 ? -1 : i + 1) << '\n';
    folder.write("wrong.top", wrong.str());
    const std::string path = folder.write("wrong.dat", contentOf(OURS + "duplex5_new.dat"));

    ReadReport report;
    EXPECT_LT(*numbersOf(mustRead(path, report).dnas[0]).meanTwist, 0);
    EXPECT_THAT(report.notices, ElementsAre(HasSubstr("d3 does not follow the pairs"),
                                            HasSubstr("the first of several frames")));
    EXPECT_GT(*numbersOf(mustRead(OURS + "duplex5_new.dat").dnas[0]).meanTwist, 0);
}

TEST(OxdnaReader, EveryStrandHasABackboneFromItsFiveEndOnInAngstrom)
{
    const Configuration found = mustRead(OURS + "duplex5_new.dat");
    ASSERT_EQ(found.rods.size(), 2u);
    for (const Rod& rod : found.rods) {
        EXPECT_TRUE(rod.isBackbone);
        EXPECT_FALSE(rod.hasFrames || rod.isClosed);
        EXPECT_EQ(rod.molecule, found.dnas[0].molecule);
        ASSERT_EQ(rod.points.size(), 5u);
        for (const auto& point : rod.points)
            EXPECT_NEAR(std::hypot(point.x, point.y), UNIT, 1e-8) << "0.6 + 0.4 from the axis";
    }
    EXPECT_EQ(found.rods[1].name, "strand 2");
    EXPECT_LT(found.rods[0].points.front().z, found.rods[0].points.back().z);
    EXPECT_GT(found.rods[1].points.front().z, found.rods[1].points.back().z);
}

TEST(OxdnaReader, CirclesAreClosedAndBasesWithoutAPairAreAlone)
{
    const TemporaryFolder folder;
    folder.write("ring.top", "4 1 5->3\nAAAA circular=true\n");
    const std::string path = folder.write(
        "ring.conf", "t = 0\nb = 9 9 9\nE = 0 0 0\n1 0 0 1 0 0 0 0 1\n0 1 0 0 1 0 0 0 1\n"
                     "-1 0 0 -1 0 0 0 0 1\n0 -1 0 0 -1 0 0 0 1\n");
    const Configuration found = mustRead(path);
    EXPECT_THAT(found.dnas, IsEmpty());
    EXPECT_EQ(found.loneBases.size(), 4u);
    EXPECT_NEAR(found.loneBases[0].point.x, 1.6 * UNIT, 1e-12);
    ASSERT_EQ(found.rods.size(), 1u);
    EXPECT_TRUE(found.rods[0].isClosed);
    ASSERT_EQ(found.rods[0].points.size(), 5u);
    EXPECT_NEAR(found.rods[0].points[1].y, 0.6 * UNIT, 1e-12);
    EXPECT_EQ(found.rods[0].points[0].x, found.rods[0].points[4].x);
}

TEST(OxdnaReader, StrandsOfOneNucleotideHaveNoBackboneAndAreTold)
{
    const TemporaryFolder folder;
    folder.write("run.top", "4 3 5->3\nAA\nA\nA\n");
    const std::string path = folder.write(
        "run.conf", "t = 0\nb = 9 9 9\nE = 0 0 0\n0 0 0 1 0 0 0 0 1\n1 0 0 1 0 0 0 0 1\n"
                    "4 0 0 1 0 0 0 0 1\n6 0 0 1 0 0 0 0 1\n");
    ReadReport report;
    const Configuration found = mustRead(path, report);
    EXPECT_EQ(found.rods.size(), 1u);
    EXPECT_EQ(found.loneBases.size(), 4u);
    EXPECT_THAT(report.notices, ElementsAre(path + ": 2 strands without a backbone, of 1 "
                                                   "nucleotide: strand 2 and 1 more"));
}

TEST(OxdnaReader, BasesOfNumbersPairWhereTheirSumIsThree)
{
    const std::string duplex = contentOf(OURS + "duplex5_new.dat");
    const auto pairsOfTop = [&](const std::string& strand2) {
        const TemporaryFolder folder;
        folder.write("run.top", "10 2 5->3\n(100)CGGT\n" + strand2 + "\n");
        ReadReport report;
        const Configuration found = mustRead(folder.write("run.dat", duplex), report);
        EXPECT_THAT(report.notices, testing::Contains(HasSubstr("given as a number")));
        return pairsIn(found);
    };
    EXPECT_EQ(pairsOfTop("ACCG(-97)"), 5u);
    EXPECT_EQ(pairsOfTop("ACCG(-93)"), 4u) << "100 is an A, but pairs with -97 alone";
    EXPECT_EQ(pairsOfTop("ACCGT"), 4u);
}

TEST(OxdnaReader, ATrajectoryIsASeriesWithItsTimes)
{
    ReadReport report;
    const auto series = openSeries({OURS + "duplex5_new.dat"}, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 3u);
    EXPECT_EQ(series->time(2), 2000);
    const LoadedFrame frame = series->load(2);
    ASSERT_TRUE(frame.configuration) << frame.error;
    EXPECT_EQ(pairsIn(*frame.configuration), 5u);
}

namespace {

// Three configurations of five pairs, of which one may have nucleotide 0 far away.
std::string trajectoryOpenIn(std::size_t configuration)
{
    const std::string whole = contentOf(OURS + "duplex5_new.dat");
    const std::string first = whole.substr(0, whole.find("t = 1000"));
    const std::size_t row = first.find('\n', first.find("E = ")) + 1;
    std::string text;
    for (std::size_t i = 0; i < 3; ++i)
        text += i == configuration ? first.substr(0, row) + "5" + first.substr(row + 1) : first;
    return text;
}

std::vector<std::size_t> pairsInEach(Series& series, const std::vector<std::size_t>& frames)
{
    std::vector<std::size_t> pairs;
    for (const std::size_t frame : frames) {
        const LoadedFrame loaded = series.load(frame);
        EXPECT_TRUE(loaded.configuration) << loaded.error;
        pairs.push_back(loaded.configuration ? pairsIn(*loaded.configuration) : 0);
    }
    return pairs;
}

} // namespace

TEST(OxdnaReader, PairsAreThoseOfTheFirstConfigurationUnlessEachHasItsOwn)
{
    const TemporaryFolder folder;
    folder.write("run.top", contentOf(OURS + "duplex5_new.top"));
    for (const auto& [open, kept, own] :
         {std::tuple(0, ElementsAre(4, 4, 4), ElementsAre(4, 5, 5)),
          std::tuple(1, ElementsAre(5, 5, 5), ElementsAre(5, 4, 5)),
          std::tuple(2, ElementsAre(5, 5, 5), ElementsAre(5, 5, 4))}) {
        SCOPED_TRACE(open);
        const std::string path = folder.write("run.dat", trajectoryOpenIn(std::size_t(open)));
        ReadReport report;
        ReadOptions options;
        EXPECT_THAT(pairsInEach(*openSeries({path}, options, report), {0, 1, 2}), kept);
        for (const std::size_t alone : {2, 1}) {
            const auto series = openSeries({path}, options, report);
            EXPECT_EQ(pairsInEach(*series, {alone}), pairsInEach(*series, {0}));
        }
        options.ownPairs = true;
        EXPECT_THAT(pairsInEach(*openSeries({path}, options, report), {0, 1, 2}), own);
    }
}

TEST(OxdnaReader, PairsOfAFileThatIsFollowedAreThoseOfItsFirstConfiguration)
{
    const TemporaryFolder folder;
    folder.write("run.top", contentOf(OURS + "duplex5_new.top"));
    const std::string open = trajectoryOpenIn(0);
    const std::size_t second = open.find("t = ", 1);
    ReadReport report;
    ReadOptions options;
    options.growing = true;
    const auto series =
        openSeries({folder.write("run.dat", open.substr(0, second))}, options, report);
    ASSERT_TRUE(series) << report.error;
    folder.append("run.dat", open.substr(second));
    EXPECT_TRUE(series->lookForMore({}));
    EXPECT_THAT(pairsInEach(*series, {2, 1, 0}), ElementsAre(4, 4, 4));
}

TEST(OxdnaReader, FilesThatAreFramesHaveThePairsOfTheFirstFile)
{
    const TemporaryFolder folder;
    folder.write("run.top", contentOf(OURS + "duplex5_new.top"));
    const std::string open = trajectoryOpenIn(0);
    const std::size_t second = open.find("t = ", 1);
    const std::string a = folder.write("a.dat", open.substr(second, open.size() - second));
    const std::string b = folder.write("b.dat", open.substr(0, second));
    ReadReport report;
    EXPECT_THAT(pairsInEach(*openSeries({a, b}, {}, report), {1, 0}), ElementsAre(5, 5));
    EXPECT_THAT(pairsInEach(*openSeries({b, a}, {}, report), {1, 0}), ElementsAre(4, 4));
}

TEST(OxdnaReader, APackedTrajectoryIsASeriesToo)
{
    const TemporaryFolder folder;
    folder.write("run.top", contentOf(OURS + "duplex5_new.top"));
    const std::string packed = packedByZstandard(contentOf(OURS + "duplex5_new.dat"));
    ReadReport report;
    const auto series = openSeries({folder.write("run.dat.zst", packed)}, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 3u);
    EXPECT_TRUE(series->load(2).configuration && series->load(0).configuration);
}

TEST(OxdnaReader, ALastConfigurationCutShortIsLeftOutAndAnOnlyOneIsRefused)
{
    const TemporaryFolder folder;
    const std::string whole = contentOf(OURS + "duplex5_new.dat");
    const std::size_t second = whole.find("t = 1000"), third = whole.find("t = 2000");
    folder.write("run.top", contentOf(OURS + "duplex5_new.top"));
    // Cut in each of many places, but for the end of the last line.
    const std::size_t lastAxes = third - 20; // the velocities behind may be missing
    for (std::size_t size = second + 8; size < lastAxes; size += 37) {
        SCOPED_TRACE(size);
        const std::string path = folder.write("run.dat", whole.substr(0, size));
        ReadReport report;
        const auto series = openSeries({path}, {}, report);
        ASSERT_TRUE(series) << report.error;
        EXPECT_EQ(series->count(), 1u);
        EXPECT_THAT(report.notices, ElementsAre(HasSubstr("the last one, is left out")));
    }
    for (const std::size_t size : {std::size_t(3), std::size_t(20), second / 2}) {
        ReadReport report;
        EXPECT_FALSE(openSeries({folder.write("run.dat", whole.substr(0, size))}, {}, report));
        EXPECT_THAT(report.error, HasSubstr("run.dat"));
    }
}

TEST(OxdnaReader, FaultsAreOneLineWithTheirPlace)
{
    const std::string head = "t = 0\nb = 9 9 9\nE = 0 0 0\n", row = "0 0 0 1 0 0 0 0 1\n";
    const std::pair<std::string, std::string> faults[] = {
        {head + row,
         "here.conf:5: found the end of the configuration after 1 nucleotide, expected 2 "
         "as in "},
        {head + row + row + row, "here.conf:6: found one more nucleotide, expected 2 as in "},
        {head + "0 0 x 1 0 0 0 0 1\n" + row,
         "here.conf:4: column 3: found 'x', expected a finite number"},
        {head + "0 0 nan 1 0 0 0 0 1\n" + row,
         "here.conf:4: column 3: found 'nan', expected a finite number"},
        {head + "0 0 0 1 0 0\n" + row, "here.conf:4: found 6 columns, expected 9"},
        {head + "0 0 0 1 0 0 1 0 0\n" + row, "here.conf:4: axes a1 and a3: found "},
        {head + "0 0 5e17 1 0 0 0 0 1\n" + row,
         "here.conf:4: found 5e+17 units of 8.518 ångström, expected a coordinate"},
        {"t = 0\n" + row + row, "here.conf:2: found '0 0 0 1 0 0 0 0 1', expected 'b = ...'"},
        {"x\n" + head + row + row, "here.conf:1: found 'x', expected 't = ...'"},
        {head + row + row + "", ""}};
    const TemporaryFolder folder;
    folder.write("here.top", "2 1 5->3\nAA\n");
    for (const auto& [text, error] : faults) {
        SCOPED_TRACE(text);
        ReadReport report;
        // Axes that are right for one point are wrong for two in one place.
        const auto found = readFile(folder.write("here.conf", text), {}, report);
        EXPECT_FALSE(found);
        EXPECT_THAT(report.error, HasSubstr(error));
        EXPECT_THAT(report.error, testing::Not(HasSubstr("\n")));
    }
}

TEST(OxdnaReader, IsToldByTheContent)
{
    EXPECT_EQ(likenessToOxdna("t = 0\nb = 1 1 1\nE = 0 0 0\n"), Likeness::CERTAIN);
    EXPECT_EQ(likenessToOxdna("\n t=0\nb=1 1 1\nE=0 0 0"), Likeness::CERTAIN);
    EXPECT_EQ(likenessToOxdna("4 2\n1 A -1 1\n"), Likeness::CERTAIN);
    EXPECT_EQ(likenessToOxdna("4 2 5->3\n"), Likeness::CERTAIN);
    for (const char* other :
         {"", "t = 0\n", "t x y z\n0 1 2 3\n", "4 2\n1 2 3\n", "4\ncomment\nA 0 0 0\n"})
        EXPECT_EQ(likenessToOxdna(other), Likeness::NONE) << other;
}

using OxdnaOfOthers = FilesOfOthers;

TEST_F(OxdnaOfOthers, TheDuplexIsOneFromBothTopologies)
{
    const Dna classic = mustRead(folder + "duplex202_classic.dat").dnas.at(0);
    const Dna renewed = mustRead(folder + "duplex202_new.dat").dnas.at(0);
    for (const Dna* dna : {&classic, &renewed}) {
        ASSERT_EQ(dna->bases.size(), 202u);
        EXPECT_NEAR(*numbersOf(*dna).meanTwist, 35.90, 0.005);
        EXPECT_NEAR(*numbersOf(*dna).meanRise, 3.320, 0.0005);
        for (const StepParameters& step : stepsOf(*dna))
            EXPECT_NEAR(step.twist, 35.90, 0.05);
    }
    EXPECT_EQ(classic.bases, renewed.bases);
    EXPECT_EQ(renewed.bases.substr(0, 12), "TCGCGGCCCCAG") << "as the new topology has it";
}

TEST_F(OxdnaOfOthers, AJunctionHasItsPairsBetweenSeveralStrands)
{
    const Configuration found = mustRead(folder + "holliday.dat");
    EXPECT_EQ(pairsIn(found), 44u);
    EXPECT_EQ(found.loneBases.size(), 10u);
    ASSERT_EQ(found.rods.size(), 4u);
    EXPECT_EQ(found.rods[2].points.size(), 32u);
    for (const Rod& rod : found.rods)
        EXPECT_EQ(rod.molecule, 1u);
}

TEST_F(OxdnaOfOthers, AnRnaFindsTheOnlyTopologyThatFitsAndItsUracilsAreToldOf)
{
    ReadReport report;
    const Configuration found = mustRead(folder + "rna_tile_traj.dat", report);
    EXPECT_THAT(report.notices,
                ElementsAre(HasSubstr("rna_tile.top: "), HasSubstr("the first of several frames")));
    EXPECT_THAT(report.notices[0], HasSubstr("U, shown as T"));
    EXPECT_EQ(2 * pairsIn(found) + found.loneBases.size(), 132u);
    ASSERT_EQ(found.rods.size(), 1u);
    for (const char* name : {"rna_tile_traj.dat", "rna_tile_aligned_traj.dat"}) {
        const auto series = openSeries({folder + name}, {}, report);
        ASSERT_TRUE(series) << report.error;
        EXPECT_EQ(series->count(), 10u);
        for (std::size_t frame = 0; frame < 10; ++frame)
            EXPECT_TRUE(series->load(frame).configuration);
    }
}

TEST_F(OxdnaOfOthers, ATrajectoryOfEightPairsHasThemInEveryFrame)
{
    ReadReport report;
    const auto series = openSeries({folder + "dsdna8_traj.dat"}, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 10u);
    for (std::size_t frame = 0; frame < 10; ++frame) {
        SCOPED_TRACE(frame);
        EXPECT_EQ(series->time(frame), 10000.0 * double(frame + 1));
        const LoadedFrame loaded = series->load(frame);
        ASSERT_TRUE(loaded.configuration) << loaded.error;
        EXPECT_EQ(loaded.configuration->dnas.size(), 1u);
        EXPECT_EQ(pairsIn(*loaded.configuration), 8u);
    }
    const Dna dna = series->load(0).configuration->dnas.at(0);
    EXPECT_EQ(dna.bases, "TGCATGCA");
    const DnaNumbers numbers = numbersOf(dna);
    EXPECT_NEAR(numbers.length, 24.349, 0.0005);
    EXPECT_NEAR(*numbers.meanTwist, 37.731, 0.001);
    EXPECT_NEAR(*numbers.meanRise, 3.441, 0.0005);
}

TEST_F(OxdnaOfOthers, AnRnaWhosePairsOpenAndCloseStaysTheSameHelices)
{
    const auto lengthsOf = [this](bool ownPairs) {
        ReadReport report;
        ReadOptions options;
        options.ownPairs = ownPairs;
        const auto series = openSeries({folder + "rna_tile_traj.dat"}, options, report);
        std::vector<std::vector<std::size_t>> lengths(series->count());
        for (std::size_t frame = 0; frame < series->count(); ++frame) {
            const LoadedFrame loaded = series->load(frame);
            for (const Dna& dna : loaded.configuration->dnas)
                lengths[frame].push_back(dna.bases.size());
        }
        return lengths;
    };
    const auto kept = lengthsOf(false), own = lengthsOf(true);
    EXPECT_EQ(kept[0], own[0]);
    EXPECT_EQ(std::count(kept.begin(), kept.end(), kept[0]), 10);
    EXPECT_LT(std::count(own.begin(), own.end(), own[0]), 10);
}

TEST_F(OxdnaOfOthers, ATopologyNamedAloneFindsItsConfiguration)
{
    EXPECT_EQ(pairsIn(mustRead(folder + "holliday.top")), 44u);
    ReadReport report;
    const auto series = openSeries({folder + "dsdna8.top"}, {}, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_EQ(series->count(), 10u);
}

} // namespace strandview
