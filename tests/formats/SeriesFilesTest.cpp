// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/seriesFiles.h>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

} // namespace

TEST(SeriesFiles, AreInTheOrderOfTheirNumbers)
{
    ReadReport report;
    EXPECT_THAT(seriesFiles({"run10.txt", "run9.txt", "run100.txt", "run1.txt"}, report),
                ElementsAre("run1.txt", "run9.txt", "run10.txt", "run100.txt"));
    EXPECT_THAT(seriesFiles({"f_00010.txt", "f_00009.txt"}, report),
                ElementsAre("f_00009.txt", "f_00010.txt"));
    EXPECT_EQ(report.error, "");
}

TEST(SeriesFiles, OfAFolderAreThoseThatAFormatCouldHave)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder.path("more.txt"));
    for (const char* name : {"s2.txt", "s10.json", "s1.txt.gz", ".s3.txt", "picture.png", "log"})
        folder.write(name, "");
    ReadReport report;
    EXPECT_THAT(
        seriesFiles({folder.path()}, report),
        ElementsAre(folder.path("s1.txt.gz"), folder.path("s2.txt"), folder.path("s10.json")));
}

TEST(SeriesFiles, ThereIsOneAtLeast)
{
    const TemporaryFolder folder;
    ReadReport report;
    EXPECT_THAT(seriesFiles({folder.path()}, report), IsEmpty());
    EXPECT_EQ(report.error,
              folder.path() + ": found no file of a known ending, expected one for each frame");
}

// What cannot be opened is told when it is its turn.
TEST(SeriesFiles, NamedOnesAreTakenAsTheyAre)
{
    ReadReport report;
    EXPECT_THAT(seriesFiles({"/nowhere/b", "/nowhere/a.png"}, report),
                ElementsAre("/nowhere/a.png", "/nowhere/b"));
    EXPECT_EQ(report.error, "");
}

} // namespace strandview
