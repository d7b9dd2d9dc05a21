// SPDX-License-Identifier: GPL-3.0-or-later
#include "output/OutputFile.h"

#include <filesystem>
#include <iterator>

#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

class OutputFileTest : public testing::Test
{
protected:
    std::string contentOf(const std::string& name) const
    {
        std::ifstream file(folder.path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    std::size_t countFiles() const
    {
        return std::size_t(std::distance(std::filesystem::directory_iterator(folder.path()), {}));
    }

    const TemporaryFolder folder;
};

} // namespace

TEST_F(OutputFileTest, AppearsWithAllThatWasWrittenOnceItIsFinished)
{
    folder.write("a", "old");
    OutputFile file(folder.path("a"));
    ASSERT_EQ(file.open(), "");
    EXPECT_TRUE(file.write("one "));
    EXPECT_TRUE(file.write(std::string(100000, 'x')));
    EXPECT_TRUE(file.write(""));
    EXPECT_EQ(contentOf("a"), "old");
    EXPECT_EQ(file.finish(), "");
    EXPECT_EQ(contentOf("a"), "one " + std::string(100000, 'x'));
    EXPECT_EQ(countFiles(), 1u);
}

TEST_F(OutputFileTest, LeavesNothingUnlessItIsFinished)
{
    {
        OutputFile file(folder.path("a"));
        ASSERT_EQ(file.open(), "");
        EXPECT_TRUE(file.write("half"));
    }
    EXPECT_EQ(countFiles(), 0u);
}

// So that a program that is killed leaves nothing behind.
TEST_F(OutputFileTest, HasNoNameBeforeItIsFinished)
{
    for (const std::size_t before : {0u, 1u}) {
        EXPECT_EQ(countFiles(), before);
        OutputFile file(folder.path("a"));
        ASSERT_EQ(file.open(), "");
        EXPECT_TRUE(file.write("half"));
        EXPECT_EQ(countFiles(), before);
        EXPECT_TRUE(file.write(" and half"));
        EXPECT_EQ(file.finish(), "");
        EXPECT_EQ(contentOf("a"), "half and half");
        EXPECT_EQ(countFiles(), 1u);
    }
}

TEST_F(OutputFileTest, HasThePermissionsOfWhatItReplacesOrThoseOfAnyNewFile)
{
    const auto permissionsOf = [this](const char* name) {
        return std::filesystem::status(folder.path(name)).permissions();
    };
    const auto write = [this](const char* name) {
        OutputFile file(folder.path(name));
        EXPECT_EQ(file.open(), "");
        file.write("new");
        EXPECT_EQ(file.finish(), "");
    };
    folder.write("plain", "old");
    folder.write("own", "old");
    std::filesystem::permissions(folder.path("own"), std::filesystem::perms(0640));
    write("own");
    EXPECT_EQ(permissionsOf("own"), std::filesystem::perms(0640));
    write("fresh");
    EXPECT_EQ(permissionsOf("fresh"), permissionsOf("plain"));
}

TEST_F(OutputFileTest, ALinkStaysOneAndWhatItLeadsToIsReplaced)
{
    folder.write("target", "old");
    std::filesystem::create_symlink(folder.path("target"), folder.path("link"));
    OutputFile file(folder.path("link"));
    ASSERT_EQ(file.open(), "");
    file.write("new");
    EXPECT_EQ(file.finish(), "");
    EXPECT_TRUE(std::filesystem::is_symlink(folder.path("link")));
    EXPECT_EQ(contentOf("target"), "new");
}

TEST_F(OutputFileTest, TheLastThatIsFinishedStaysOfTwoThatAreWrittenAtATime)
{
    OutputFile first(folder.path("a")), second(folder.path("a"));
    ASSERT_EQ(first.open(), "");
    ASSERT_EQ(second.open(), "");
    first.write("first");
    second.write("second");
    EXPECT_EQ(second.finish(), "");
    EXPECT_EQ(first.finish(), "");
    EXPECT_EQ(contentOf("a"), "first");
    EXPECT_EQ(countFiles(), 1u);
}

TEST_F(OutputFileTest, IsFinishedBesideWhatAKilledProgramLeft)
{
    const std::string left = folder.path("a." + std::to_string(::getpid()) + ".0");
    for (const std::string& name : {folder.path("a"), left})
        std::ofstream(name) << "old";
    OutputFile file(folder.path("a"));
    ASSERT_EQ(file.open(), "");
    file.write("new");
    EXPECT_EQ(file.finish(), "");
    EXPECT_EQ(contentOf("a"), "new");
    EXPECT_EQ(countFiles(), 2u);
}

TEST_F(OutputFileTest, ReplacesFilesAlone)
{
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(checkWritable(folder.path("pipe")),
              folder.path("pipe") +
                  ": found something that is no file, expected a file or nothing there");
    EXPECT_THAT(checkWritable(folder.path("none/a")), StartsWith(folder.path("none/a") + ": "));
    EXPECT_EQ(checkWritable(folder.path("a")), "");
    EXPECT_EQ(checkWritable("-"), "");
    EXPECT_EQ(countFiles(), 1u);
}

TEST_F(OutputFileTest, AReadOnlyFolderIsToldWithItsReason)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root may write anywhere";
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0500));
    EXPECT_THAT(checkWritable(folder.path("a")), HasSubstr("Permission denied"));
    std::filesystem::permissions(folder.path(), std::filesystem::perms(0700));
}

} // namespace strandview
