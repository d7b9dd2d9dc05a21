// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/exportFiles.h"

#include <filesystem>
#include <iterator>
#include <set>

#include <unistd.h>

#include <gmock/gmock.h>

#include <strandview/formats/openSeries.h>
#include <strandview/formats/readFile.h>

#include "support/TemporaryFolder.h"
#include "support/everythingOf.h"
#include "support/runProgram.h"

namespace strandview {

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace fs = std::filesystem;

const char* const ROD = "x y z qx qy qz qw k\n0 0 0 0 0 0 1 0.1\n0 0 1 0 0 0 1 0.2\n";

/// Markers of the id of their frame, in three frames.
const char* const SERIES = R"({"strandview": 1, "series": [
    {"time": 0, "markers": [{"point": [0, 0, 0], "id": 10}]},
    {"time": 0.1, "markers": [{"point": [0, 0, 0], "id": 11}]},
    {"time": 0.2, "markers": [{"point": [0, 0, 0], "id": 12}]}]})";

class ExportFilesTest : public testing::Test
{
protected:
    ProgramRun run(std::vector<std::string> arguments, const std::string& input = "") const
    {
        return runProgram(STRANDVIEW_PROGRAM, arguments, input);
    }

    /// Through a shell, which sets up what no argument can.
    ProgramRun runInShell(const std::string& before, const std::string& arguments) const
    {
        const std::string program = std::string("'") + STRANDVIEW_PROGRAM + "' ";
        return runProgram("/bin/sh", {"-c", before + program + arguments});
    }

    /// The frames of what was exported.
    std::unique_ptr<Series> exported(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> all = {"--export", folder.path("out.json")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        result = run(all);
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_EQ(result.output, "");
        ReadReport report;
        auto series = openSeries({folder.path("out.json")}, {}, report);
        EXPECT_TRUE(series) << report.error;
        return series;
    }

    std::set<std::string> files() const
    {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(folder.path()))
            names.insert(entry.path().filename().string());
        return names;
    }

    const TemporaryFolder folder;
    const std::string rod = folder.write("rod.txt", ROD);
    const std::string series = folder.write("run.json", SERIES);
    ProgramRun result;
};

void expectOneLine(const std::string& text)
{
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_THAT(text, StartsWith("strandview: "));
}

std::vector<long long> idsOf(const Configuration& configuration)
{
    std::vector<long long> ids;
    for (const Marker& marker : configuration.markers)
        ids.push_back(marker.id);
    return ids;
}

} // namespace

TEST_F(ExportFilesTest, WhatIsExportedIsWhatWasRead)
{
    const auto back = exported({rod});
    ASSERT_TRUE(back);
    EXPECT_EQ(result.error, "");
    ReadReport report;
    EXPECT_EQ(everythingOf(*back->load(0).configuration), everythingOf(*readFile(rod, {}, report)));
    EXPECT_EQ(back->count(), 1u);
    EXPECT_THAT(files(), testing::ElementsAre("out.json", "rod.txt", "run.json"));
}

TEST_F(ExportFilesTest, OfASeriesAllFramesAreExportedOrTheOneAskedFor)
{
    const auto all = exported({series});
    ASSERT_EQ(all->count(), 3u);
    EXPECT_EQ(all->time(1), 0.1);
    EXPECT_THAT(idsOf(*all->load(2).configuration), testing::ElementsAre(12));
    EXPECT_EQ(result.error, "");

    const auto one = exported({"--frame", "1", series});
    ASSERT_EQ(one->count(), 1u);
    EXPECT_THAT(idsOf(*one->load(0).configuration), testing::ElementsAre(11));
    EXPECT_EQ(result.error, "");
}

TEST_F(ExportFilesTest, SeveralFilesAreOneConfigurationWithAFrameOfEachSeries)
{
    const auto first = exported({rod, series});
    ASSERT_EQ(first->count(), 1u);
    EXPECT_EQ(first->load(0).configuration->rods.size(), 1u);
    EXPECT_THAT(idsOf(*first->load(0).configuration), testing::ElementsAre(10));
    EXPECT_THAT(result.error, HasSubstr("run.json: the first of 3 frames"));

    const Configuration last =
        *exported({"--frame", "2", rod, series, series})->load(0).configuration;
    EXPECT_EQ(last.rods.size(), 1u);
    EXPECT_THAT(idsOf(last), testing::ElementsAre(12, 12));
    EXPECT_EQ(result.error, "");
}

TEST_F(ExportFilesTest, StandardOutputGetsTheSameText)
{
    exported({series});
    std::ifstream file(folder.path("out.json"));
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    EXPECT_EQ(run({"--export", "-", series}).output, text);
    EXPECT_EQ(run({"--export", "-", "-"}, SERIES).output, text);
}

TEST_F(ExportFilesTest, NoticesAreToldAndWhatIsOfPicturesHasNoEffect)
{
    const std::string bare = folder.write("bare.txt", "0 0 0\n0 0 1\n");
    exported({"--radius", "2", "--normalise", bare});
    EXPECT_THAT(result.error, HasSubstr("bare.txt: 1 rod without frames"));
    EXPECT_THAT(result.error,
                EndsWith("strandview: --radius has no effect: --export writes the data alone\n"));
    EXPECT_THAT(result.error, Not(HasSubstr("--normalise has")));
}

TEST_F(ExportFilesTest, WhatSaysHowDataAreReadHasItsEffect)
{
    const std::string rows = folder.write("rows.txt", "0 0 0\n0 0 1\n1 0 0\n1 0 1\n");
    EXPECT_EQ(exported({"--frame-rows", "2", "--closed", "--pairs", "frame", rows})->count(), 2u);
    EXPECT_THAT(result.error, Not(HasSubstr("has no effect: --export")));
}

TEST_F(ExportFilesTest, AFrameBeyondTheLastIsRefusedInOneLineByEveryOutput)
{
    const std::string out = folder.path("out.json");
    for (const std::vector<std::string>& output :
         {std::vector<std::string>{"--export", out}, {"--render", folder.path("out.png")}}) {
        std::vector<std::string> arguments = output;
        arguments.insert(arguments.end(), {"--frame", "3", series});
        result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, "strandview: " + series + ": found frame 3, expected 0 to 2\n");
    }
    EXPECT_EQ(run({"--export", out, "--frame", "1", rod}).error,
              "strandview: " + rod + ": found frame 1, expected 0 to 0\n");
    EXPECT_THAT(files(), testing::ElementsAre("rod.txt", "run.json"));
}

TEST_F(ExportFilesTest, FilesThatAreFramesBecomeOneSeries)
{
    const auto write = [this](const char* name, const char* id) {
        folder.write(name,
                     std::string(R"({"strandview": 1, "markers": [{"point": [0, 0, 0], "id": )") +
                         id + "}]}");
    };
    std::filesystem::create_directory(folder.path("run"));
    write("run/s10.json", "10");
    write("run/s9.json", "9");
    const auto all = exported({"--series", folder.path("run")});
    ASSERT_EQ(all->count(), 2u);
    EXPECT_EQ(all->load(0).configuration->markers[0].id, 9);
    EXPECT_EQ(all->load(1).configuration->markers[0].id, 10);
    EXPECT_EQ(result.error, "");
    EXPECT_EQ(exported({"--series", "--frame", "1", folder.path("run")})->count(), 1u);
}

TEST_F(ExportFilesTest, APictureShowsTheFrameAskedFor)
{
    const auto pictureOf = [&](const std::vector<std::string>& arguments) {
        std::vector<std::string> all = {
            "--render", folder.path("out.png"), "--size", "60x40", "--view", "z"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_EQ(run(all).status, 0);
        std::ifstream file(folder.path("out.png"), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const auto marker = [](const char* colour) {
        return std::string(R"({"markers": [{"point": [0, 0, 0], "colour": ")") + colour + "\"}]}";
    };
    const std::string two =
        folder.write("two.json", R"({"strandview": 1, "series": [)" + marker("red") + ", " +
                                     marker("blue") + "]}");
    const std::string red = pictureOf({two});
    EXPECT_EQ(pictureOf({"--frame", "0", two}), red);
    EXPECT_NE(pictureOf({"--frame", "1", two}), red);
}

TEST_F(ExportFilesTest, ATableHasAllScalarsOfAllFramesOrOfTheOneAskedFor)
{
    const std::string run2 = folder.write("run.txt", "t x y z\n0 0 0 0\n0 0 0 1\n"
                                                     "0.5 0 0 0\n0.5 0 0 2\n");
    const std::string out = folder.path("out.csv");
    const auto framesOf = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"--export", out});
        result = run(arguments);
        EXPECT_EQ(result.status, 0) << result.error;
        ReadReport report;
        auto back = openSeries({out}, {}, report);
        EXPECT_TRUE(back) << report.error;
        return back;
    };
    const auto all = framesOf({run2});
    ASSERT_EQ(all->count(), 2u);
    EXPECT_EQ(all->time(1), 0.5);
    EXPECT_EQ(all->load(1).configuration->rods.at(0).points.back().z, 2);
    const auto one = framesOf({"--frame", "1", run2});
    ASSERT_EQ(one->count(), 1u);
    EXPECT_EQ(one->load(0).configuration->rods.at(0).points.back().z, 2);
    EXPECT_EQ(framesOf({rod, run2})->load(0).configuration->rods.size(), 2u);
}

TEST_F(ExportFilesTest, OfATableTheUnitOfDnaAndAllNumbersHaveAnEffectAndOfJsonNone)
{
    for (const char* name : {"out.csv", "out.json"}) {
        result = run({"--export", folder.path(name), "--all-numbers", "--dna-unit", "nm", rod});
        EXPECT_EQ(result.status, 0);
        const bool isTable = std::string(name) == "out.csv";
        EXPECT_EQ(result.error.find("--all-numbers has no effect") == std::string::npos, isTable);
        EXPECT_EQ(result.error.find("--dna-unit has no effect") == std::string::npos, isTable);
    }
}

TEST_F(ExportFilesTest, WhatIsComparedHasTheScalarsOfThat)
{
    for (const char* name : {"out.csv", "out.json"}) {
        result = run({"--export", folder.path(name), "--compare", rod, rod});
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_THAT(result.error, Not(HasSubstr("has no effect")));
        std::ifstream file(folder.path(name));
        EXPECT_THAT(std::string(std::istreambuf_iterator<char>(file), {}),
                    HasSubstr("reference_distance"));
    }
}

TEST_F(ExportFilesTest, ATableOfGlyphsAloneIsRefusedAndNotThere)
{
    result = run({"--export", folder.path("out.csv"), series});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.error, "strandview: CSV: found no rod, birod or DNA, expected at least one\n");
    EXPECT_THAT(files(), testing::ElementsAre("rod.txt", "run.json"));
}

TEST_F(ExportFilesTest, AnotherEndingIsRefusedWithThoseThatThereAre)
{
    EXPECT_EQ(checkExportName("a.JSON"), "");
    EXPECT_EQ(checkExportName("a.Csv"), "");
    EXPECT_EQ(checkExportName("-"), "");
    for (const char* name : {"out.txt", "out", "json", "out.json/x", ".json"}) {
        result = run({"--export", name, rod});
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.error, std::string("strandview: --export: found '") + name +
                                    "', expected a name that ends in .json or .csv\n");
    }
}

TEST_F(ExportFilesTest, OneOutputAtATimeAndSomethingToExport)
{
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"--export", "a.json", "--render", "a.png", rod},
          {"--export", "a.json"}}) {
        result = run(arguments);
        EXPECT_EQ(result.status, 2);
        expectOneLine(result.error);
    }
}

TEST_F(ExportFilesTest, WhatCannotBeReadLeavesTheOldFileAsItWas)
{
    folder.write("out.json", "old");
    const std::string bad = folder.write("bad.txt", "0 0 0\n0 0\n");
    for (const std::vector<std::string>& inputs :
         {std::vector<std::string>{bad}, {rod, bad}, {folder.path("none.txt")}}) {
        std::vector<std::string> arguments = {"--export", folder.path("out.json")};
        arguments.insert(arguments.end(), inputs.begin(), inputs.end());
        result = run(arguments);
        EXPECT_EQ(result.status, 2);
        expectOneLine(result.error);
        std::ifstream file(folder.path("out.json"));
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "old");
    }
    EXPECT_THAT(files(), testing::ElementsAre("bad.txt", "out.json", "rod.txt", "run.json"));
}

TEST_F(ExportFilesTest, WhatCannotBeWrittenIsToldBeforeAnythingIsRead)
{
    fs::create_directory(folder.path("folder.json"));
    fs::create_symlink("/dev/full", folder.path("device.json"));
    for (const std::string& out : {folder.path("missing/out.json"), folder.path("folder.json"),
                                   folder.path("device.json"), std::string("/proc/out.json")}) {
        result = run({"--export", out, folder.path("no such input.txt")});
        EXPECT_EQ(result.status, 1);
        expectOneLine(result.error);
        EXPECT_THAT(result.error, StartsWith("strandview: " + out + ": "));
    }
}

TEST_F(ExportFilesTest, AFullDiskLeavesNothingAndIsToldWithItsReason)
{
    result = runInShell("", "--export - '" + rod + "' >/dev/full");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "strandview: standard output: No space left on device\n");

    std::string rows;
    for (int i = 0; i < 3000; ++i)
        rows += "0 0 " + std::to_string(i) + " 0 0 0 1\n";
    const std::string out = folder.path("out.json");
    result = runInShell("ulimit -f 1; ",
                        "--export '" + out + "' '" + folder.write("long.txt", rows) + "'");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.error, "strandview: " + out + ": File too large\n");
    EXPECT_THAT(files(), testing::ElementsAre("long.txt", "rod.txt", "run.json"));
}

TEST_F(ExportFilesTest, AFileMayReplaceItself)
{
    ASSERT_EQ(run({"--export", series, series}).status, 0);
    ReadReport report;
    const auto back = openSeries({series}, {}, report);
    ASSERT_TRUE(back) << report.error;
    EXPECT_EQ(back->count(), 3u);
}

} // namespace strandview
