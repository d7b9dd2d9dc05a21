// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/FileWatcher.h"

#include <chrono>
#include <filesystem>

#include <QElapsedTimer>
#include <QTest>
#include <gmock/gmock.h>

#include "support/TemporaryFolder.h"
#include "windows.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

// Longer than it takes to tell of a change.
const int A_WHILE = 3 * int(FileWatcher::QUIET.count());

class FileWatcherTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    FileWatcherTest()
    {
        QObject::connect(&watcher, &FileWatcher::changed, [this] { ++changes; });
        QObject::connect(&watcher, &FileWatcher::missed,
                         [this](const QString& path) { missed.push_back(path.toStdString()); });
    }

    void watch(const std::string& path) { watcher.watch({path}, stampsOf({path})); }
    [[nodiscard]] bool comesToTell(int count) const
    {
        return QTest::qWaitFor([&] { return changes >= count; }, 30000);
    }

    const TemporaryFolder folder;
    const std::string file = folder.write("rod.txt", "0 0 0\n1 0 0\n");
    int changes = 0;
    std::vector<std::string> missed;
    FileWatcher watcher; // the last: it tells the others
};

TEST_F(FileWatcherTest, TellsOfAFileThatIsWrittenAnewOrReplacedAndOfNothingElse)
{
    watch(file);
    QTest::qWait(A_WHILE);
    folder.write("beside.txt", "1 2 3\n");
    QTest::qWait(A_WHILE);
    EXPECT_EQ(changes, 0);
    folder.write("rod.txt", "0 0 0\n2 0 0\n");
    ASSERT_TRUE(comesToTell(1));
    for (int i = 2; i < 5; ++i) { // each time another file to the system
        std::filesystem::rename(folder.write("new.txt", "0 0 0\n3 0 0\n"), file);
        ASSERT_TRUE(comesToTell(i));
    }
    QTest::qWait(A_WHILE);
    EXPECT_EQ(changes, 4);
}

TEST_F(FileWatcherTest, TellsOfWhatChangedSinceItWasReadAndBeforeItIsWatched)
{
    const FileStamps asRead = stampsOf({file});
    folder.write("rod.txt", "0 0 0\n2 0 0\n3 0 0\n");
    watcher.watch({file}, asRead);
    EXPECT_TRUE(comesToTell(1));
}

TEST_F(FileWatcherTest, ManyQuickChangesAreAFew)
{
    watch(file);
    for (int i = 0; i < 20; ++i) {
        folder.append("rod.txt", "2 0 0\n");
        QTest::qWait(20);
    }
    ASSERT_TRUE(comesToTell(1));
    QTest::qWait(A_WHILE);
    EXPECT_LT(changes, 8);
}

TEST_F(FileWatcherTest, AFileThatIsAlwaysWrittenToIsToldAllTheSame)
{
    watch(file);
    EXPECT_TRUE(QTest::qWaitFor(
        [this] {
            folder.append("rod.txt", "2 0 0\n");
            return changes > 0;
        },
        30000));
}

TEST_F(FileWatcherTest, AFileThatIsGoneIsToldOnceAndWaitedFor)
{
    watch(file);
    std::filesystem::remove(file);
    ASSERT_TRUE(QTest::qWaitFor([this] { return !missed.empty(); }, 30000));
    QTest::qWait(1500); // some looks
    EXPECT_THAT(missed, ElementsAre(file));
    EXPECT_EQ(changes, 0);
    folder.write("rod.txt", "0 0 0\n1 0 0\n");
    EXPECT_TRUE(comesToTell(1));
    std::filesystem::remove(file);
    EXPECT_TRUE(QTest::qWaitFor([this] { return missed.size() == 2; }, 30000));
}

TEST_F(FileWatcherTest, WaitsWhileNothingMayBeRead)
{
    bool mayRead = false;
    watcher.mayRead = [&mayRead] { return mayRead; };
    watch(file);
    folder.append("rod.txt", "2 0 0\n");
    QTest::qWait(2 * A_WHILE);
    EXPECT_EQ(changes, 0);
    mayRead = true;
    EXPECT_TRUE(comesToTell(1));
}

TEST_F(FileWatcherTest, WhatCouldNotBeReadIsTriedAgainAfterPausesThatGrow)
{
    watch(file);
    std::chrono::milliseconds pause = FileWatcher::FIRST_PAUSE;
    for (int i = 1; i < 4; ++i) {
        QElapsedTimer since;
        since.start();
        watcher.retry(stampsOf({file}));
        ASSERT_TRUE(comesToTell(i));
        EXPECT_GE(since.elapsed(), pause.count());
        pause *= 2;
    }
    watcher.watch({file}, stampsOf({file})); // as read at last
    QTest::qWait(2 * A_WHILE);
    EXPECT_EQ(changes, 3);
}

TEST_F(FileWatcherTest, LeavesFilesThatGetLongerToOthersAndTellsOfShorterOnes)
{
    watcher.leaveGrowth(true);
    watch(file);
    for (int i = 0; i < 3; ++i) {
        folder.append("rod.txt", "2 0 0\n");
        QTest::qWait(A_WHILE);
    }
    EXPECT_EQ(changes, 0);
    folder.write("rod.txt", "0 0 0\n1 0 0\n4 0 0\n"); // no shorter than it was at first
    EXPECT_TRUE(comesToTell(1));
}

TEST_F(FileWatcherTest, TellsOfDataInAFolder)
{
    watch(folder.path());
    QTest::qWait(A_WHILE);
    folder.write(".rod.txt.swp", "1");
    QTest::qWait(A_WHILE);
    EXPECT_EQ(changes, 0);
    folder.write("rod2.txt", "0 0 0\n1 0 0\n");
    ASSERT_TRUE(comesToTell(1));
    folder.append("rod2.txt", "2 0 0\n");
    EXPECT_TRUE(comesToTell(2));
}

TEST_F(FileWatcherTest, TellsOfNothingOnceItIsStopped)
{
    watch(file);
    QTest::qWait(A_WHILE);
    watcher.stop();
    EXPECT_FALSE(watcher.isWatching());
    folder.append("rod.txt", "2 0 0\n");
    std::filesystem::remove(file);
    QTest::qWait(1500);
    EXPECT_EQ(changes, 0);
    EXPECT_THAT(missed, IsEmpty());
}

} // namespace

} // namespace strandview
