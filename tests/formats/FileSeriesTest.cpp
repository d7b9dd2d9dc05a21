// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/FileSeries.h>

#include <filesystem>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class FileSeriesTest : public testing::Test
{
protected:
    /// A rod of two points, the second at (0, 0, height).
    FileGroup rodOf(const std::string& name, int height) const
    {
        return {folder.write(name, "0 0 0\n0 0 " + std::to_string(height) + "\n")};
    }

    const TemporaryFolder folder;
};

double heightOf(const LoadedFrame& loaded)
{
    EXPECT_EQ(loaded.error, "");
    return loaded.configuration ? loaded.configuration->rods.at(0).points.at(1).z : -1;
}

} // namespace

TEST_F(FileSeriesTest, HasAFrameForEachFileInTheOrderOfTheList)
{
    FileSeries series({rodOf("b.txt", 5), rodOf("a.txt", 6), rodOf("c", 7)});
    ASSERT_EQ(series.count(), 3u);
    EXPECT_EQ(heightOf(series.load(2)), 7);
    EXPECT_EQ(heightOf(series.load(0)), 5);
    EXPECT_EQ(heightOf(series.load(1)), 6);
    EXPECT_EQ(series.time(0), std::nullopt);
    EXPECT_THAT(series.load(0).notices, ElementsAre(HasSubstr("b.txt: 1 rod without frames")));
}

TEST_F(FileSeriesTest, ReadsAFileWheneverItIsLoadedAndNoSooner)
{
    FileSeries series({{folder.path("late.txt")}, rodOf("there.txt", 1)});
    EXPECT_EQ(series.load(0).error,
              folder.path("late.txt") + ": cannot be read: No such file or directory");
    EXPECT_EQ(heightOf(series.load(1)), 1) << "the others are as they were";
    rodOf("late.txt", 2);
    EXPECT_EQ(heightOf(series.load(0)), 2);
    rodOf("late.txt", 3);
    EXPECT_EQ(heightOf(series.load(0)), 3);
}

TEST_F(FileSeriesTest, NormalisesWhereItIsToldTo)
{
    const std::vector<FileGroup> file = {{folder.write("a.txt", "0 0 0 0 0 0 2\n0 0 1 0 0 0 2\n")}};
    EXPECT_THAT(FileSeries(file).load(0).error, HasSubstr("a quaternion of norm 2"));
    const LoadedFrame loaded = FileSeries(file, {true}).load(0);
    ASSERT_TRUE(loaded.configuration) << loaded.error;
    EXPECT_EQ(loaded.configuration->rods[0].rotations[0][3], 1);
}

TEST_F(FileSeriesTest, AsksWhetherToGoOnWithTheFrameThatIsLoaded)
{
    FileSeries series({rodOf("a.txt", 1)});
    const LoadedFrame loaded = series.load(0, [](double) { return false; });
    EXPECT_FALSE(loaded.configuration);
    EXPECT_EQ(loaded.error, folder.path("a.txt") + ": reading was stopped");
    EXPECT_EQ(heightOf(series.load(0)), 1);
}

} // namespace strandview
