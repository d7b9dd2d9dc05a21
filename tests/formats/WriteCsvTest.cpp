// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/writeCsv.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <map>
#include <random>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/scalars.h>
#include <strandview/analysis/tracks.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/TableReader.h>
#include <strandview/model/MemorySeries.h>

#include "support/FilesOfOthers.h"
#include "support/readBack.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

using Values = std::vector<double>;

struct Written
{
    std::string text;
    ReadReport report;
    bool isWhole = false;

    std::string header() const { return text.substr(0, text.find('\n')); }
};

Written written(const Configuration& configuration, const CsvOptions& options = {})
{
    Written csv;
    csv.isWhole = writeCsv(configuration, sinkInto(csv.text), options, csv.report);
    return csv;
}

Written written(Series& series, const CsvOptions& options = {})
{
    Written csv;
    csv.isWhole = writeCsv(series, sinkInto(csv.text), options, {}, csv.report);
    return csv;
}

std::unique_ptr<Series> readBack(const std::string& text)
{
    ReadReport report;
    auto series = openTable(Source::ofBytes("back.csv", text), {}, report);
    EXPECT_TRUE(series) << report.error;
    return series;
}

Configuration onlyFrameOf(const std::string& text)
{
    const auto series = readBack(text);
    EXPECT_TRUE(series && series->count() == 1);
    if (!series)
        return {};
    LoadedFrame loaded = series->load(0);
    EXPECT_EQ(loaded.error, "");
    return loaded.configuration.value_or(Configuration());
}

/// Bits, and one for all that is no number.
std::uint64_t bitsOf(double number)
{
    std::uint64_t bits = 0;
    const double plain = std::isfinite(number) ? number : NAN;
    std::memcpy(&bits, &plain, sizeof bits);
    return bits;
}

template <typename Tuples>
std::vector<std::uint64_t> bitsOf(const Tuples& tuples, int count)
{
    std::vector<std::uint64_t> bits;
    for (const auto& tuple : tuples)
        for (int i = 0; i < count; ++i)
            bits.push_back(bitsOf(tuple[i]));
    return bits;
}

std::vector<std::uint64_t> bitsOf(const Values& values)
{
    std::vector<std::uint64_t> bits;
    for (const double value : values)
        bits.push_back(bitsOf(value));
    return bits;
}

const Scalar* findIn(const Rod& rod, const std::string& name)
{
    for (const Scalar& scalar : rod.scalars)
        if (scalar.name == name)
            return &scalar;
    return nullptr;
}

/// Whether a rod has all that there was of a line, to the last bit.
void expectLine(const Rod& rod, const Track& track)
{
    SCOPED_TRACE(titleOf(track));
    EXPECT_EQ(bitsOf(rod.points, 3), bitsOf(track.points, 3));
    EXPECT_EQ(rod.hasFrames, !track.rod || track.rod->hasFrames);
    EXPECT_EQ(bitsOf(rod.rotations, 4), bitsOf(track.rotations, 4));
    std::set<std::string> names{"index", "arclength"};
    for (const std::string& name : scalarNames(track)) {
        names.insert(name);
        const Scalar* const scalar = findIn(rod, name);
        ASSERT_TRUE(scalar) << name;
        EXPECT_EQ(bitsOf(scalar->values), bitsOf(*findScalar(track, name))) << name;
    }
    for (const Scalar& scalar : rod.scalars)
        EXPECT_EQ(names.count(scalar.name) + (scalar.name == "frame"), 1u) << scalar.name;
}

/// Those of one place are no rod.
std::vector<Track> rodsOf(const Configuration& configuration)
{
    std::vector<Track> tracks;
    for (const Track& track : tracksOf(configuration))
        if (track.points.size() > 1)
            tracks.push_back(track);
    return tracks;
}

void expectLines(const Configuration& back, const Configuration& configuration)
{
    const std::vector<Track> tracks = rodsOf(configuration);
    ASSERT_EQ(back.rods.size(), tracks.size());
    EXPECT_TRUE(back.dnas.empty() && back.birods.empty());
    for (std::size_t i = 0; i < tracks.size(); ++i)
        expectLine(back.rods[i], tracks[i]);
}

Rod helix(int points)
{
    Rod rod;
    for (int i = 0; i < points; ++i) {
        const double turn = 0.3 * i;
        rod.points.push_back({std::cos(turn), std::sin(turn), 0.1 * i});
        rod.rotations.push_back({0, 0, std::sin(turn / 2), std::cos(turn / 2)});
    }
    return rod;
}

Dna dnaOf(const std::string& letters)
{
    const Rod axis = helix(int(letters.size()));
    Dna dna;
    dna.bases = letters;
    dna.pairPoints = dna.points1 = dna.points2 = axis.points;
    dna.pairRotations = dna.rotations1 = dna.rotations2 = axis.rotations;
    for (algebra3d::Vector3<double>& point : dna.points1)
        point.x += 0.5;
    return dna;
}

std::unique_ptr<Series> seriesOf(std::vector<Configuration> frames, Values times)
{
    return std::make_unique<MemorySeries>(std::move(frames), std::move(times));
}

// ---- One rod

TEST(WriteCsv, ARodIsAHeaderItsTitleAndARowForEachPoint)
{
    Rod rod;
    rod.name = "arm";
    rod.points = {{0, 0, 0}, {0, 0, 2}};
    rod.rotations = {{0, 0, 0, 1}, {0, 0, 0, 1}};
    rod.scalars = {{"load", {0.1, NAN}}};
    const Written csv = written({{rod}});
    EXPECT_TRUE(csv.isWhole);
    EXPECT_THAT(csv.report.notices, IsEmpty());
    EXPECT_EQ(csv.text, "index,arclength,x,y,z,qx,qy,qz,qw,load,curvature,torsion,twist,kappa1,"
                        "kappa2,kappa3,writhe_density\n"
                        "# rod 1 'arm'\n"
                        "0,0,0,0,0,0,0,0,1,0.1,0,0,0,0,0,0,0\n"
                        "1,2,0,0,2,0,0,0,1,nan,0,0,0,0,0,0,0\n");
}

TEST(WriteCsv, NumbersAreReadBackToTheLastBit)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> anywhere(-1, 1);
    Rod rod = helix(300);
    for (algebra3d::Vector3<double>& point : rod.points)
        point +=
            algebra3d::Vector3<double>(anywhere(random), anywhere(random), anywhere(random)) * 0.01;
    rod.points[7].x = -0.0;
    rod.points[8].y = 5e-324;
    Values extremes;
    for (int i = 0; i < 300; ++i)
        extremes.push_back(std::ldexp(anywhere(random), int(random() % 2000) - 1000));
    extremes[0] = 1.7976931348623157e308;
    extremes[1] = -0.0;
    extremes[2] = std::numeric_limits<double>::infinity();
    rod.scalars = {{"extremes", extremes}};
    const Configuration data{{rod}};
    expectLines(onlyFrameOf(written(data).text), data);
}

TEST(WriteCsv, ARodWithoutFramesOfItsOwnHasNoneInTheTable)
{
    Rod rod = helix(5);
    rod.hasFrames = false;
    EXPECT_THAT(written({{rod}}).header(), StartsWith("index,arclength,x,y,z,curvature,"));
    const Configuration back = onlyFrameOf(written({{rod, helix(4)}}).text);
    ASSERT_EQ(back.rods.size(), 2u);
    EXPECT_FALSE(back.rods[0].hasFrames);
    EXPECT_TRUE(back.rods[1].hasFrames);
}

TEST(WriteCsv, TheWritheDensityOverArclengthIsTheWrithe)
{
    Rod rod;
    for (int i = 0; i <= 60; ++i) { // a trefoil
        const double t = i == 60 ? 0 : 2 * M_PI * i / 60;
        rod.points.push_back({std::sin(t) + 2 * std::sin(2 * t), std::cos(t) - 2 * std::cos(2 * t),
                              -std::sin(3 * t)});
        rod.rotations.push_back({0, 0, 0, 1});
    }
    rod.isClosed = true;
    const Configuration back = onlyFrameOf(written({{rod}}).text);
    const Values &s = findIn(back.rods.at(0), "arclength")->values,
                 &density = findIn(back.rods.at(0), "writhe_density")->values;
    double sum = 0;
    for (std::size_t i = 1; i < s.size(); ++i)
        sum += (s[i] - s[i - 1]) * (density[i] + density[i - 1]) / 2;
    EXPECT_NEAR(sum, gaussIntegral(rod.points), 1e-12);
    EXPECT_GT(std::abs(sum), 3);
}

TEST(WriteCsv, AnIndexOrArclengthOfTheFileStandsInItsColumn)
{
    Rod rod = helix(3);
    rod.scalars = {{"index", {7, 8, 9}}, {"arclength", {0, 10, 20}}};
    const Written csv = written({{rod}});
    EXPECT_THAT(csv.header(), StartsWith("index,arclength,x,y,z,qx,qy,qz,qw,curvature"));
    const Configuration back = onlyFrameOf(csv.text);
    EXPECT_THAT(findIn(back.rods[0], "index")->values, ElementsAre(7, 8, 9));
    EXPECT_THAT(findIn(back.rods[0], "arclength")->values, ElementsAre(0, 10, 20));
    EXPECT_EQ(written(back).text, csv.text) << "once more is the same";
}

TEST(WriteCsv, AScalarThatWouldBeReadAsSomethingElseHasAnotherNameAndANotice)
{
    const std::map<std::string, std::string> headers{
        {"X", "X_"},       {"qw [1]", "qw [1]_"},
        {"base", "base_"}, {"12", "12_"},
        {"", "_"},         {"nan", "nan_"},
        {"a#b", "a_b"},    {"a\"b", "a_b_"},
        {"a\nb", "a_b__"}, {"bond angle", "bond angle"},
        {"a;b", "a;b"},    {"Index", "Index"}};
    Rod rod = helix(3);
    for (const auto& [name, header] : headers)
        rod.scalars.push_back({name, {1, 2, 3}});
    const Written csv = written({{rod}});
    const Configuration back = onlyFrameOf(csv.text);
    std::set<std::string> found;
    for (const Scalar& scalar : back.rods.at(0).scalars)
        found.insert(scalar.name);
    for (const auto& [name, header] : headers)
        EXPECT_EQ(found.count(header), 1u) << header;
    EXPECT_THAT(csv.report.notices, testing::Contains("CSV: scalar 'X' is written as 'X_'"));
    EXPECT_EQ(csv.report.notices.size(), 9u);
}

TEST(WriteCsv, DirectorsAmongTheScalarsAreTakenForFramesOnlyWhereThereAreNoOthers)
{
    Rod rod = helix(3);
    rod.scalars = {{"d1x", {1, 2, 3}}};
    EXPECT_TRUE(findIn(onlyFrameOf(written({{rod}}).text).rods.at(0), "d1x"));
    rod.hasFrames = false;
    EXPECT_TRUE(findIn(onlyFrameOf(written({{rod}}).text).rods.at(0), "d1x_"));
}

TEST(WriteCsv, ATimeAlongRodsIsAScalarAndOneOfEachRodMakesNoFrames)
{
    Rod first = helix(3), second = helix(3);
    first.scalars = {{"t", {1, 2, 3}}};
    second.scalars = {{"t", {4, 5, 6}}};
    EXPECT_TRUE(findIn(onlyFrameOf(written({{first, second}}).text).rods.at(1), "t"));
    first.scalars = {{"t", {1, 1, 1}}};
    second.scalars = {{"t", {2, 2, 2}}};
    const Configuration back = onlyFrameOf(written({{first, second}}).text);
    ASSERT_EQ(back.rods.size(), 2u);
    EXPECT_THAT(findIn(back.rods[1], "t_")->values, ElementsAre(2, 2, 2));
}

TEST(WriteCsv, ATemperatureOfFramesKeepsItsName)
{
    Rod rod = helix(3);
    rod.scalars = {{"T", {300, 301, 302}}};
    const auto series = seriesOf({{{rod}}, {{rod}}}, {});
    const Written csv = written(*series);
    EXPECT_THAT(csv.header(), HasSubstr(",T,"));
    EXPECT_THAT(csv.report.notices, IsEmpty());
    EXPECT_THAT(findIn(readBack(csv.text)->load(1).configuration->rods[0], "T")->values,
                ElementsAre(300, 301, 302));
}

// ---- Several lines

TEST(WriteCsv, LinesAreRowsBetweenBlankLinesWithTheirTitles)
{
    const Written csv = written({{helix(2), helix(2)}});
    std::istringstream lines(csv.text);
    std::vector<std::string> starts;
    for (std::string line; std::getline(lines, line);)
        starts.push_back(line.substr(0, line.find(',')));
    EXPECT_THAT(starts, ElementsAre("index", "# rod 1", "0", "1", "", "# rod 2", "0", "1"));
}

TEST(WriteCsv, WhatALineDoesNotHaveIsEmptyAndReadBackAsNotThere)
{
    Rod first = helix(3);
    first.scalars = {{"load", {1, 2, 3}}};
    const Configuration data{{first, helix(4)}};
    const Configuration back = onlyFrameOf(written(data).text);
    expectLines(back, data);
    EXPECT_FALSE(findIn(back.rods.at(1), "load"));
}

TEST(WriteCsv, ANumberThatTheFirstPairHasNotIsReadBack)
{
    Dna dna = dnaOf("ACGT");
    dna.scalars = {{"load", {NAN, 1, 2, 3}}};
    const Configuration data{{}, {}, {dna}};
    const Configuration back = onlyFrameOf(written(data).text);
    const Values& load = findIn(back.rods.at(0), "load")->values;
    EXPECT_TRUE(std::isnan(load[0]));
    EXPECT_EQ(load[3], 3);
}

TEST(WriteCsv, OfADnaPairsAndStrandsAreWrittenWithTheirBases)
{
    const Configuration data{{helix(3)}, {}, {dnaOf("ACGT")}};
    const Written csv = written(data);
    EXPECT_THAT(csv.header(), HasSubstr(",qw,base,"));
    EXPECT_THAT(csv.header(), HasSubstr("shear"));
    EXPECT_THAT(csv.text, HasSubstr("\n\n# DNA 1, pairs\n0,0,"));
    EXPECT_THAT(csv.text, HasSubstr("\n\n# DNA 1, strand 2\n0,0,"));
    const Configuration back = onlyFrameOf(csv.text);
    expectLines(back, data);
    EXPECT_FALSE(findIn(back.rods.at(0), "base"));
    const Values& roll = findIn(back.rods.at(1), "roll")->values;
    EXPECT_FALSE(std::isnan(roll[2]));
    EXPECT_TRUE(std::isnan(roll[3])) << "behind the last pair there is no step";
    EXPECT_THAT(csv.text, HasSubstr(",,,,,,,,,,,,\n")) << "the fields of all steps";
    EXPECT_THAT(csv.text, Not(HasSubstr("nan")));

    std::istringstream lines(csv.text);
    std::string letters;
    for (std::string line, title; std::getline(lines, line);) {
        if (line[0] == '#')
            title = line;
        else if (title == "# DNA 1, strand 2" && !line.empty())
            for (const char* letter : {",A,", ",C,", ",G,", ",T,"})
                letters += line.find(letter) == line.npos ? "" : std::string(1, letter[1]);
    }
    EXPECT_EQ(letters, "TGCA");
}

TEST(WriteCsv, LengthsOfDnaAreInAngstromWhateverTheUnitOfItsPoints)
{
    Dna dna = dnaOf("ACGT");
    CsvOptions options;
    options.angstrom = 0.1;
    const Configuration one = onlyFrameOf(written({{}, {}, {dna}}).text),
                        other = onlyFrameOf(written({{}, {}, {dna}}, options).text);
    EXPECT_NEAR(findIn(other.rods.at(0), "rise")->values[0],
                10 * findIn(one.rods.at(0), "rise")->values[0], 1e-12);
    EXPECT_EQ(findIn(other.rods[0], "roll")->values[0], findIn(one.rods[0], "roll")->values[0]);
    EXPECT_EQ(findIn(other.rods[0], "arclength")->values, findIn(one.rods[0], "arclength")->values);
}

TEST(WriteCsv, APairAloneIsWrittenAndLeftOutByTheReader)
{
    const Configuration data{{helix(3)}, {}, {dnaOf("A")}};
    const Written csv = written(data);
    EXPECT_THAT(csv.text, HasSubstr("# DNA 1, pairs\n0,0,1,0,0,"));
    expectLines(onlyFrameOf(csv.text), data);
}

TEST(WriteCsv, GlyphsAreLeftOutWithANoticeAndNothingElseIsRefused)
{
    Configuration data{{helix(3)}};
    data.markers.resize(2);
    data.loneBases.resize(6);
    EXPECT_THAT(
        written(data).report.notices,
        ElementsAre("CSV: 2 markers left out: a table holds rods, birods and DNA",
                    "CSV: 6 bases in no pair left out: a table holds rods, birods and DNA"));
    data.rods.clear();
    const Written nothing = written(data);
    EXPECT_FALSE(nothing.isWhole);
    EXPECT_EQ(nothing.text, "");
    EXPECT_EQ(nothing.report.error, "CSV: found no rod, birod or DNA, expected at least one");
}

TEST(WriteCsv, AboveABoundTheWritheDensityIsLeftOutWithANotice)
{
    CsvOptions options;
    options.mostEdgePairs = 2 * 5 * 5 / 2.0;
    EXPECT_THAT(written({{helix(5), helix(5)}}, options).header(), HasSubstr("writhe_density"));
    const Written more = written({{helix(5), helix(6)}}, options);
    EXPECT_THAT(more.header(), Not(HasSubstr("writhe_density")));
    EXPECT_THAT(more.report.notices,
                ElementsAre("CSV: writhe_density left out: of 11 points it takes long; "
                            "--all-numbers writes it all the same"));
}

TEST(WriteCsv, AWritheDensityThatIsGivenIsWrittenOfAnyNumberOfPoints)
{
    CsvOptions options;
    options.mostEdgePairs = 1;
    Rod rod = helix(3);
    rod.scalars = {{"writhe_density", {7, 8, 9}}};
    const Written given = written({{rod}}, options);
    EXPECT_THAT(given.report.notices, IsEmpty());
    EXPECT_THAT(findIn(onlyFrameOf(given.text).rods.at(0), "writhe_density")->values,
                ElementsAre(7, 8, 9));

    const Written beside = written({{helix(4), rod}}, options);
    EXPECT_THAT(beside.report.notices,
                ElementsAre("CSV: writhe_density left out of what does not bring its own: of 4 "
                            "points it takes long; --all-numbers writes it all the same"));
    const Configuration back = onlyFrameOf(beside.text);
    EXPECT_FALSE(findIn(back.rods.at(0), "writhe_density"));
    EXPECT_THAT(findIn(back.rods.at(1), "writhe_density")->values, ElementsAre(7, 8, 9));
}

TEST(WriteCsv, ASinkThatTakesNoMoreEndsIt)
{
    int pieces = 0;
    ReadReport report;
    EXPECT_FALSE(writeCsv(
        {{helix(5000)}},
        [&pieces](std::string_view piece) {
            EXPECT_LT(piece.size(), 70000u);
            return ++pieces < 3;
        },
        {}, report));
    EXPECT_EQ(pieces, 3);
    EXPECT_EQ(report.error, "");
}

// ---- Series

TEST(WriteCsv, FramesHaveTheirNumberAndTimeAndAreReadBackOneByOne)
{
    const Configuration first{{helix(3), helix(4)}}, second{{helix(5), helix(2)}};
    const auto series = seriesOf({first, second, first}, {0.5, 0.5, 1.25});
    const Written csv = written(*series);
    EXPECT_THAT(csv.header(), StartsWith("frame,time,index,arclength,x,"));
    EXPECT_THAT(csv.text, HasSubstr("\n\n\n# rod 1\n1,0.5,0,0,"));
    const auto back = readBack(csv.text);
    ASSERT_EQ(back->count(), 3u);
    for (std::size_t frame = 0; frame < 3; ++frame) {
        EXPECT_EQ(back->time(frame), series->time(frame));
        expectLines(*back->load(frame).configuration, *series->load(frame).configuration);
    }
}

TEST(WriteCsv, FramesWithoutTimesAreToldByTheirNumber)
{
    const auto series = seriesOf({{{helix(3)}}, {{helix(4)}}}, {});
    const Written csv = written(*series);
    EXPECT_THAT(csv.header(), StartsWith("frame,index,"));
    const auto back = readBack(csv.text);
    ASSERT_EQ(back->count(), 2u);
    EXPECT_EQ(back->time(1), std::nullopt);
    expectLines(*back->load(1).configuration, {{helix(4)}});
}

TEST(WriteCsv, TheColumnsOfASeriesAreThoseOfAllFrames)
{
    Rod later = helix(3);
    later.scalars = {{"load", {1, 2, 3}}, {"time", {1, 2, 3}}};
    const auto series = seriesOf({{{helix(3)}}, {{later}}}, {});
    const Written csv = written(*series);
    EXPECT_THAT(csv.header(), HasSubstr(",load,time_"));
    const auto back = readBack(csv.text);
    EXPECT_FALSE(findIn(back->load(0).configuration->rods[0], "load"));
    EXPECT_THAT(findIn(back->load(1).configuration->rods[0], "load")->values, ElementsAre(1, 2, 3));
}

TEST(WriteCsv, AFrameWithoutRowsIsToldToBeLeftOut)
{
    Configuration glyphs;
    glyphs.markers.resize(1);
    const auto series = seriesOf({{}, {{helix(3)}}, glyphs, {{helix(2)}}}, {});
    const Written csv = written(*series);
    EXPECT_THAT(csv.report.notices,
                testing::Contains("CSV: 2 frames, the first of them frame 0, left out: found no "
                                  "rod, birod or DNA"));
    EXPECT_EQ(readBack(csv.text)->count(), 2u);
    const auto two = seriesOf({{{helix(3)}}, {}}, {});
    EXPECT_THAT(written(*two).report.notices,
                ElementsAre("CSV: frame 1 left out: found no rod, birod or DNA"));
    const auto whole = seriesOf({{{helix(3)}}, {{helix(2)}}}, {});
    EXPECT_THAT(written(*whole).report.notices, IsEmpty());
}

TEST(WriteCsv, ASeriesOfOneFrameIsThatFrame)
{
    const auto series = seriesOf({{{helix(3)}}}, {4});
    EXPECT_EQ(written(*series).text, written({{helix(3)}}).text);
}

TEST(WriteCsv, WhoStopsItIsToldSo)
{
    const auto series = seriesOf({{{helix(3)}}, {{helix(3)}}}, {});
    Values shares;
    ReadReport report;
    EXPECT_FALSE(writeCsv(
        *series, [](std::string_view) { return true; }, {},
        [&shares](double share) {
            shares.push_back(share);
            return share < 0.7;
        },
        report));
    EXPECT_NE(report.error, "");
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_LE(shares.back(), 1);
}

// ---- What is in files

std::set<std::string> filesReadBack(const std::string& folder)
{
    const auto writeAndRead = [](Series& series) -> std::unique_ptr<Series> {
        const Written csv = written(series);
        if (csv.isWhole)
            return readBack(csv.text);
        EXPECT_THAT(csv.report.error, StartsWith("CSV: found no rod"));
        return nullptr;
    };
    return readBackAll(folder, writeAndRead, expectLines);
}

using WriteCsvOfOthers = FilesOfOthers;

TEST(WriteCsv, EverySampleIsReadBackBitForBit)
{
    const std::set<std::string> files = filesReadBack(SAMPLES_FOLDER);
    EXPECT_THAT(files, testing::IsSupersetOf({"dna.txt", "hairpin.dat", "helix.txt",
                                              "minicircle.json", "pulled.xyz", "rods.json"}));
    EXPECT_EQ(files.count("glyphs.json"), 0u);
}

TEST_F(WriteCsvOfOthers, IsReadBackBitForBit)
{
    EXPECT_THAT(filesReadBack(folder), testing::IsSupersetOf({"1bna.pdb", "protein_3kzn_a.xyz"}));
}

} // namespace

} // namespace strandview
