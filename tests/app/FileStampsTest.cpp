// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/FileStamps.h"

#include <filesystem>

#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"

namespace strandview {

namespace {

using testing::Eq;
using testing::Key;
using testing::Pair;
using testing::UnorderedElementsAre;

TEST(FileStamps, AreTheSameOfFilesThatNobodyTouched)
{
    const TemporaryFolder folder;
    const std::string one = folder.write("one.txt", "1"), two = folder.write("two.txt", "2");
    EXPECT_TRUE(stampsOf({one, two}) == stampsOf({one, two}));
    EXPECT_THAT(stampsOf({one, two}).files, UnorderedElementsAre(Key(one), Key(two)));
    EXPECT_FALSE(stampsOf({one, two}).missing);
}

TEST(FileStamps, ChangeWithWhatIsWrittenAndWithAnotherFileOfTheName)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("one.txt", "1");
    const FileStamps before = stampsOf({file});
    folder.append("one.txt", "2");
    const FileStamps longer = stampsOf({file});
    EXPECT_FALSE(longer == before);
    const auto time = std::filesystem::last_write_time(file);
    const std::string other = folder.write("other.txt", "12"); // as long, of the same time
    std::filesystem::last_write_time(other, time);
    std::filesystem::rename(other, file);
    EXPECT_FALSE(stampsOf({file}) == longer);
}

TEST(FileStamps, TellTheFirstFileThatIsNotThere)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("one.txt", "1");
    const FileStamps stamps = stampsOf({file, folder.path("two.txt"), folder.path("three.txt")});
    EXPECT_THAT(stamps.missing, Eq(folder.path("two.txt")));
    EXPECT_THAT(stamps.files, UnorderedElementsAre(Key(file)));
}

TEST(FileStamps, OfAFolderAreThoseOfItsDataAlone)
{
    const TemporaryFolder folder;
    const std::string one = folder.write("one.txt", "1"), two = folder.write("two.json", "{}");
    folder.write(".one.txt.swp", "1");
    folder.write("notes.log", "1");
    EXPECT_THAT(stampsOf({folder.path()}).files, UnorderedElementsAre(Key(one), Key(two)));
}

TEST(FileStamps, TellWhetherFilesHaveOnlyGrown)
{
    const TemporaryFolder folder;
    const std::string file = folder.write("one.txt", "1234");
    const FileStamps before = stampsOf({file});
    EXPECT_TRUE(haveOnlyGrown(before, before));
    folder.append("one.txt", "5");
    const FileStamps longer = stampsOf({file});
    EXPECT_TRUE(haveOnlyGrown(before, longer));
    EXPECT_FALSE(haveOnlyGrown(longer, before)) << "shorter";
    EXPECT_FALSE(haveOnlyGrown(before, stampsOf({file, folder.write("two.txt", "2")}))) << "more";
    EXPECT_FALSE(haveOnlyGrown(before, stampsOf({file, folder.path("three.txt")}))) << "missing";
    std::filesystem::rename(folder.write("other.txt", "1234567"), file);
    EXPECT_FALSE(haveOnlyGrown(before, stampsOf({file}))) << "another file";
}

TEST(FileStamps, TellWhichFramesAreTheSame)
{
    const TemporaryFolder folder;
    const std::string one = folder.write("1.txt", "1"), two = folder.write("2.txt", "2"),
                      three = folder.write("3.txt", "3");
    const FileStamps before = stampsOf({folder.path()});
    folder.append("2.txt", "2");
    const std::string first = folder.write("0.txt", "0");
    EXPECT_THAT(
        sameFrames({one, two, three}, before, {first, one, two, three}, stampsOf({folder.path()})),
        UnorderedElementsAre(Pair(0, 1), Pair(2, 3)));
    EXPECT_THAT(sameFrames({one, two, three}, before, {three}, before),
                UnorderedElementsAre(Pair(2, 0)));
}

} // namespace

} // namespace strandview
