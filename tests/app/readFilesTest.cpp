// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/readFiles.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "scene/Progress.h"
#include "support/StoppingAt.h"
#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const char* const STILL = R"({"strandview": 1, "markers": [{"point": [0, 0, 0], "id": 5}]})";
const char* const SERIES = R"({"strandview": 1, "series": [
    {"markers": [{"point": [0, 0, 0], "id": 10}]}, {"markers": [{"point": [0, 0, 0], "id": 11}]}]})";

class ReadFilesTest : public testing::Test
{
protected:
    std::vector<long long> read(const std::vector<std::string>& files,
                                std::optional<int> frame = {})
    {
        Options options;
        options.frame = frame;
        report = {};
        const auto all = readFiles(files, options, report, progress);
        std::vector<long long> ids;
        if (all)
            for (const Marker& marker : all->markers)
                ids.push_back(marker.id);
        return ids;
    }

    const TemporaryFolder folder;
    const std::string still = folder.write("still.json", STILL);
    const std::string series = folder.write("run.json", SERIES);
    ReadReport report;
    StoppingAt progress;
};

} // namespace

TEST_F(ReadFilesTest, StandardInputAndPipesAreReadButOnceFilesAndFoldersAgain)
{
    EXPECT_EQ(findReadOnce({}), std::nullopt);
    EXPECT_EQ(findReadOnce({still, folder.path(), folder.path("gone.json")}), std::nullopt);
    EXPECT_EQ(findReadOnce({still, "-", series}), "-");
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(findReadOnce({still, pipe, "-"}), pipe);
}

TEST_F(ReadFilesTest, WithoutAFrameTheFirstOfEverySeriesIsReadAndTold)
{
    EXPECT_THAT(read({still, series}), ElementsAre(5, 10));
    EXPECT_THAT(report.notices, ElementsAre(HasSubstr("run.json: the first of 2 frames")));
}

TEST_F(ReadFilesTest, BesideASeriesAFileOfOneConfigurationIsInEveryFrame)
{
    EXPECT_THAT(read({still, series}, 1), ElementsAre(5, 11));
    EXPECT_THAT(read({series, still}, 0), ElementsAre(10, 5));
    EXPECT_THAT(report.notices, IsEmpty());
    EXPECT_EQ(report.error, "");
}

TEST_F(ReadFilesTest, AFrameThatNoFileHasIsToldOrRefused)
{
    EXPECT_THAT(read({still, still}, 1), ElementsAre(5, 5));
    EXPECT_THAT(report.notices, ElementsAre("--frame has no effect: found no series"));
    EXPECT_THAT(read({still}, 1), IsEmpty());
    EXPECT_EQ(report.error, still + ": found frame 1, expected 0 to 0");
    EXPECT_THAT(read({still, series}, 2), IsEmpty());
    EXPECT_EQ(report.error, series + ": found frame 2, expected 0 to 1");
}

TEST_F(ReadFilesTest, ATopologyInAnotherFolderIsThatOfTheSeriesToo)
{
    const std::string nucleotide = "b = 9 9 9\nE = 0 0 0\n0 0 0 1 0 0 0 0 1\n";
    std::filesystem::create_directory(folder.path("elsewhere"));
    const std::vector<std::string> files = {
        folder.write("run.dat", "t = 0\n" + nucleotide + "t = 1\n" + nucleotide),
        folder.write("elsewhere/tile.top", "1 1 5->3\nG\n")};
    folder.write("run.top", "1 1 5->3\nT\n");
    const auto configuration = readFiles(files, {}, report, progress);
    ASSERT_TRUE(configuration) << report.error;
    EXPECT_EQ(configuration->loneBases.at(0).base, 'G');
    for (const Opening opening : {Opening::WHOLE, Opening::AT_ONCE}) {
        const OpenedFiles opened = openFiles(files, {}, report, progress, opening);
        ASSERT_TRUE(opened.series) << report.error;
        ASSERT_EQ(opened.series->count(), 2u);
        EXPECT_EQ(opened.series->load(1).configuration->loneBases.at(0).base, 'G');
    }
}

TEST_F(ReadFilesTest, SaysWhatItIsAtAndCanBeStopped)
{
    read({still, series}, 0);
    EXPECT_THAT(progress.texts, testing::Contains("Reading still.json (1 of 2)"));
    EXPECT_THAT(progress.texts, testing::Contains("Reading run.json (2 of 2)"));
    progress.patience = 0;
    EXPECT_THAT(read({still}), IsEmpty());
    EXPECT_THAT(report.error, HasSubstr("reading was stopped"));
}

} // namespace strandview
