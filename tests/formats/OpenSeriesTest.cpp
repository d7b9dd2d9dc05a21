// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/openSeries.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include <gmock/gmock.h>

#include <strandview/formats/Source.h>
#include <strandview/formats/formats.h>

#include "support/TemporaryFolder.h"
#include "support/structureTexts.h"

namespace strandview {

namespace {

using testing::HasSubstr;

constexpr char rod[] = "0 0 0\n0 0 1\n";

class OpenSeriesTest : public testing::Test
{
protected:
    std::unique_ptr<Series> open(const std::vector<std::string>& paths)
    {
        return openSeries(paths, {}, report);
    }

    const TemporaryFolder folder;
    ReadReport report;
};

// A nucleotide alone, of which the topology tells the letter.
constexpr char lone[] = "t = 0\nb = 9 9 9\nE = 0 0 0\n0 0 0 1 0 0 0 0 1\n";
std::string topologyOf(char letter) { return std::string("1 1 5->3\n") + letter + "\n"; }

char letterOf(const LoadedFrame& loaded)
{
    EXPECT_EQ(loaded.error, "");
    return loaded.configuration ? loaded.configuration->loneBases.at(0).base : ' ';
}

// ---- A format of series: a digit a frame, read where it stands when it is loaded.

class DigitSeries : public Series
{
public:
    explicit DigitSeries(std::unique_ptr<Source> openSource) : source(std::move(openSource)) {}
    std::size_t count() const override { return std::size_t(source->getSize().value_or(0)); }
    std::optional<double> time(std::size_t frame) const override { return 0.5 * double(frame); }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
    {
        ReadReport report;
        const auto digit = source->readAt(frame, 1, {false, goOn}, report);
        if (!digit)
            return {{}, {}, report.error};
        Configuration configuration;
        configuration.markers.resize(1);
        configuration.markers[0].id = std::atoi(digit->c_str());
        return {configuration};
    }

    std::unique_ptr<Source> source;
};

std::unique_ptr<Series> openDigits(std::unique_ptr<Source> source, const ReadOptions&,
                                   ReadReport& report)
{
    if (source->getSize())
        return std::make_unique<DigitSeries>(std::move(source));
    report.error = source->getName() + ": found no digits";
    return nullptr;
}

std::optional<Configuration> readFirstDigit(Source&, const ReadOptions&, ReadReport&) { return {}; }

const Format digits = {"Digits", "digits", {".digits"}, nullptr, readFirstDigit, openDigits};

} // namespace

TEST_F(OpenSeriesTest, AFileOfOneConfigurationIsASeriesOfOneFrame)
{
    const auto series = open({folder.write("a.txt", rod)});
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 1u);
    EXPECT_EQ(series->load(0).configuration->rods.size(), 1u);
    EXPECT_EQ(series->time(0), std::nullopt);
    EXPECT_THAT(report.notices, testing::ElementsAre(HasSubstr("a.txt: 1 rod without frames")));
}

TEST_F(OpenSeriesTest, OfStandardInputIsThereAsOftenAsWanted)
{
    ASSERT_TRUE(std::freopen(folder.write("input", rod).c_str(), "rb", stdin));
    const auto series = open({"-"});
    ASSERT_TRUE(series) << report.error;
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(series->load(0).configuration);
}

TEST_F(OpenSeriesTest, SeveralFilesAreAFrameEach)
{
    const auto series = open({folder.write("a.txt", rod), folder.path("none.txt")});
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 2u);
    EXPECT_TRUE(series->load(0).configuration);
    EXPECT_THAT(series->load(1).error, HasSubstr("No such file"));
}

TEST_F(OpenSeriesTest, OfSeveralFilesEachHasItsOwnTopology)
{
    const auto series = open({folder.write("a.dat", lone), folder.write("a.top", topologyOf('A')),
                              folder.write("b.dat", lone), folder.write("b.top", topologyOf('C'))});
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 2u);
    EXPECT_EQ(letterOf(series->load(0)), 'A');
    EXPECT_EQ(letterOf(series->load(1)), 'C');
}

TEST_F(OpenSeriesTest, ATopologyThatIsNamedGoesBeforeTheOneThatIsFound)
{
    ReadOptions options;
    options.topology = folder.write("named.top", topologyOf('G'));
    folder.write("run.top", topologyOf('T'));
    const std::string run = folder.write("run.dat", lone);
    for (const std::vector<std::string>& files : {std::vector{run}, std::vector{run, run}}) {
        const auto series = openSeries(files, options, report);
        ASSERT_TRUE(series) << report.error;
        EXPECT_EQ(letterOf(series->load(files.size() - 1)), 'G');
    }
}

TEST_F(OpenSeriesTest, RefusesWhatCannotBeReadAtOnce)
{
    EXPECT_FALSE(open({}));
    EXPECT_EQ(report.error, "found no file, expected at least one");
    EXPECT_FALSE(open({folder.path("none.txt")}));
    EXPECT_EQ(report.error,
              folder.path("none.txt") + ": cannot be read: No such file or directory");
    EXPECT_FALSE(open({folder.write("bad.txt", "0 0 0\n0 1\n")}));
    EXPECT_THAT(report.error, HasSubstr("bad.txt:2: found 2 columns"));
    EXPECT_FALSE(open({folder.write("picture", "\x89PNG\r\n\x1a\n")}));
    EXPECT_THAT(report.error, HasSubstr("found binary data, expected " + expectedFormats()));
    EXPECT_TRUE(open({folder.write("good.txt", rod)}));
    EXPECT_EQ(report.error, "") << "of the one before";
}

TEST_F(OpenSeriesTest, OfAFormatOfSeriesReadsEachFrameFromItsSource)
{
    auto source = Source::open(folder.write("a.digits", "3141"), report);
    const auto series = openSeries(std::move(source), digits, {}, report);
    ASSERT_TRUE(series) << report.error;
    ASSERT_EQ(series->count(), 4u);
    EXPECT_EQ(series->load(2).configuration->markers[0].id, 4);
    EXPECT_EQ(series->load(0).configuration->markers[0].id, 3);
    EXPECT_EQ(series->time(3), 1.5);
}

TEST_F(OpenSeriesTest, AFormatOfSeriesCanRefuse)
{
    auto source = Source::open(folder.write("a.digits", ""), report);
    EXPECT_FALSE(openSeries(std::move(source), digits, {}, report));
    EXPECT_THAT(report.error, HasSubstr("a.digits: found no digits"));
}

// ---- Files that are written to

// Of each format that can grow, a file in which all frames are whole.
struct WrittenFile
{
    std::string name, text;
    std::size_t first; ///< bytes up to behind the first frame
    std::size_t frames;
};

class OpenGrowingSeriesTest : public testing::TestWithParam<WrittenFile>
{
};

TEST_P(OpenGrowingSeriesTest, HasWholeFramesAloneWhereverTheFileEnds)
{
    const auto& [name, text, first, frames] = GetParam();
    const TemporaryFolder folder;
    ReadReport report;
    ReadOptions options;
    options.growing = true;
    const std::string data = TEST_FILES;
    options.topology = data + "/duplex5_new.top"; // of oxDNA
    const auto whole = openSeries(Source::open(folder.write("whole-" + name, text), report),
                                  *formatOfContent(text), options, report);
    ASSERT_TRUE(whole) << report.error;
    ASSERT_EQ(whole->count(), frames);
    const auto series = openSeries(Source::open(folder.write(name, text.substr(0, first)), report),
                                   *formatOfContent(text), options, report);
    ASSERT_TRUE(series) << report.error;
    std::size_t seen = 0;
    for (std::size_t size = first; size < text.size(); ++size) {
        folder.append(name, text.substr(size, 1));
        ASSERT_TRUE(series->lookForMore({}));
        for (; seen < series->count(); ++seen) {
            const LoadedFrame frame = series->load(seen), ofWhole = whole->load(seen);
            ASSERT_TRUE(frame.configuration) << frame.error;
            EXPECT_EQ(frame.configuration->rods.size(), ofWhole.configuration->rods.size());
            EXPECT_EQ(frame.configuration->rods[0].points.back().x,
                      ofWhole.configuration->rods[0].points.back().x);
            EXPECT_EQ(series->time(seen), whole->time(seen));
        }
    }
    EXPECT_EQ(seen, frames);
}

TEST(OpenGrowingSeries, WhereLinesAreCountedAFrameIsReadWithItsLast)
{
    const TemporaryFolder folder;
    const std::string xyz = "1\n\nC 0 0 0\n";
    ReadOptions options;
    options.growing = true;
    options.topology = folder.write("run.top", topologyOf('A'));
    const std::string frame = lone, cut = frame.substr(0, frame.find("0 0 0 1"));
    const std::string atoms = "2\n\nC 0 0 0\nC 1 0 0\n", fewer = atoms.substr(0, 11);
    for (const auto& [name, text] : {std::pair("run.oxdna", frame + "\n" + cut + "\n"),
                                     std::pair("run.xyz", atoms + "\n" + fewer)}) {
        ReadReport report;
        ASSERT_TRUE(openSeries({folder.write(name, text)}, options, report)) << report.error;
        EXPECT_THAT(report.notices,
                    testing::ElementsAre(HasSubstr("expected more of the frame; frame 1 is left "
                                                   "out until it is whole")));
    }
}

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<WrittenFile> writtenFiles()
{
    const std::string xyz = "2\n\nC 0 0 0\nC 1.25 0 0\n3\n\nC 0 0 0\nC 0 1 0\nC 1.75 0 0\n";
    const std::string fibres =
        "% frame 0\n% time 0.5\n% fiber f0:1\n 1 0 0 0\n 1 1.25 0 0\n% end\n"
        "% frame 1\n% time 1.5\n% fiber f0:1\n 1 0 0 0\n 1 1.25 0 1\n% end\n";
    const std::string rod = R"("rods": [{"points": [[0, 0, 0], [0, 0, 1.5]]}]})";
    const std::string json = R"({"series": [{"time": 1e0, )" + rod + R"(,
        {"time": -2, )" + rod +
                             R"(], "strandview": 1})";
    const std::string table = "0 0 0\n1.25 0 0\n\n\n\n0 0 0\n0 0 1\n\n1 1 1\n2.5 2 2\n\n\n";
    std::vector<TestAtom> atoms = duplexAtoms("ACG");
    for (TestAtom atom : duplexAtoms("ACG")) {
        atom.model = 2;
        atom.place.z += 1;
        atoms.push_back(atom);
    }
    const std::string pdb = pdbOf(atoms),
                      oxdna = contentOf(std::string(TEST_FILES) + "/duplex5_new.dat");
    return {{"run.xyz", xyz, xyz.find("3\n\n"), 2},
            {"run.txt", fibres, fibres.find("% frame 1"), 2},
            {"run.dat", table, table.find("\n\n\n") + 3, 2},
            {"run.oxdna", oxdna, oxdna.find("t = 1000"), 3},
            {"run.json", json, json.find("{\"time\": -2"), 2},
            {"run.pdb", pdb, pdb.find("MODEL", pdb.find("ENDMDL")), 2}};
}

INSTANTIATE_TEST_SUITE_P(OfEachFormat, OpenGrowingSeriesTest, testing::ValuesIn(writtenFiles()),
                         [](const auto& file) { return file.param.name.substr(4); });

TEST_F(OpenSeriesTest, WhatIsReadAsAWholeDoesNotGrow)
{
    ReadOptions options;
    options.growing = true;
    const auto series = openSeries(
        {folder.write("a.json", R"({"strandview":1,"rods":[{"points":[[0,0,0],[0,0,1]]}]})")},
        options, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_FALSE(series->lookForMore({}));
}

TEST_F(OpenSeriesTest, OpenedAtOnceItIsFoundByItsContentAsEver)
{
    ReadOptions options;
    options.atOnce = true;
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "2\n\nC 0 0 0\nC 0 0 1\n";
    const auto series = openSeries({folder.write("a.xyz", text)}, options, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_LT(series->count(), 100000u);
    EXPECT_FALSE(series->lookForMore({}));
    EXPECT_EQ(series->count(), 100000u);
    EXPECT_TRUE(series->load(99999).configuration);
}

TEST_F(OpenSeriesTest, OpenedAtOnceACutLastFrameIsToldWhenItIsFound)
{
    ReadOptions options;
    options.atOnce = true;
    std::string text;
    for (int i = 0; i < 100000; ++i)
        text += "2\n\nC 0 0 0\nC 0 0 1\n";
    const auto series =
        openSeries({folder.write("a.xyz", text + "2\n\nC 0 0 0\n")}, options, report);
    ASSERT_TRUE(series) << report.error;
    EXPECT_TRUE(report.notices.empty());
    std::vector<std::string> notices;
    EXPECT_FALSE(series->lookForMore({}, &notices));
    EXPECT_THAT(notices,
                testing::ElementsAre(HasSubstr("frame 100000, the last one, is left out")));
}

TEST_F(OpenSeriesTest, RowsAreCountedInTablesAlone)
{
    ReadOptions options;
    options.frameRows = 2;
    const auto table =
        openSeries({folder.write("a.raw", "0 0 0\n0 0 1\n0 0 0\n0 0 2\n")}, options, report);
    ASSERT_TRUE(table) << report.error;
    EXPECT_EQ(table->count(), 2u);
    EXPECT_TRUE(report.notices.empty());
    const auto atoms =
        openSeries({folder.write("a.xyz", "2\n\nC 0 0 0\nC 0 0 1\n")}, options, report);
    ASSERT_TRUE(atoms) << report.error;
    EXPECT_THAT(report.notices,
                testing::ElementsAre(HasSubstr("a.xyz: --frame-rows has no effect: found a list of "
                                               "atoms, expected a table")));
}

} // namespace strandview
