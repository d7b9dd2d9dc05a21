// SPDX-License-Identifier: GPL-3.0-or-later
// A window that reads its files again when they change, as its user sees it.
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <QAction>
#include <QComboBox>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <gmock/gmock.h>

#include <strandview/model/Configuration.h>

#include "DataWindowTest.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "window/MeasurementKeeper.h"
#include "window/PlayBar.h"
#include "window/Player.h"

namespace strandview {

using testing::HasSubstr;

namespace {

class WatchingTest : public DataWindowTest
{
protected:
    WatchingTest()
    {
        options.windowSize = {700, 520};
        options.watch = true;
    }

    double endOfRod() const { return scene->getData()->rods.at(0).points.back().x; }
    [[nodiscard]] bool comesToEnd(double end) const
    {
        return comesTo([&] { return !window->isLoading() && endOfRod() == end; });
    }
    [[nodiscard]] bool comesToTell(const std::string& text) const
    {
        return comesTo([&] { return statusText().find(text) != std::string::npos; });
    }
    QAction* tick() const
    {
        for (QAction* action : window->findChildren<QAction*>()) {
            if (action->text() == "Read again when files change")
                return action;
        }
        return nullptr;
    }
};

} // namespace

TEST_F(WatchingTest, AFileThatIsWrittenAnewOrReplacedIsShownFromWhereItWasSeen)
{
    openText(rodTo(2), "rod.txt");
    const CameraNumbers home = window->getCameraNumbers();
    pressRealKey("Alt+d");
    ASSERT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == home); }));
    const CameraNumbers before = window->getCameraNumbers();
    folder.write("rod.txt", rodTo(3));
    ASSERT_TRUE(comesToEnd(3));
    EXPECT_TRUE(window->getCameraNumbers() == before);
    std::filesystem::rename(folder.write("new.txt", rodTo(4)), file);
    ASSERT_TRUE(comesToEnd(4));
    EXPECT_TRUE(window->getCameraNumbers() == before);
}

TEST_F(WatchingTest, HomeIsTheCameraOfTheBeginning)
{
    options.camera.numbers = parseCamera("orthographic,1,0,5,0,0,0,1,5,8");
    openText(rodTo(2), "rod.txt");
    ASSERT_TRUE(comesToBePainted());
    const CameraNumbers beginning = window->getCameraNumbers();
    ASSERT_FLOAT_EQ(beginning.size, 8);
    folder.write("rod.txt", rodTo(3));
    ASSERT_TRUE(comesToEnd(3));
    pressRealKey("v");
    ASSERT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == beginning); }));
    pressRealKey("Home");
    EXPECT_TRUE(comesTo([&] { return window->getCameraNumbers() == beginning; }));
}

TEST_F(WatchingTest, WhatIsHiddenStaysSo)
{
    openText(rodTo(2), "rod.txt");
    setThings("rod 1: hidden");
    folder.write("rod.txt", rodTo(3));
    ASSERT_TRUE(comesToEnd(3));
    EXPECT_TRUE(scene->getLook({0, 0}).isHidden());
}

TEST_F(WatchingTest, AFileThatIsNotWholeYetIsToldWithoutABoxAndWaitedFor)
{
    openText(rodTo(2), "rod.txt");
    folder.write("rod.txt", "0 0 0\n1 0 0\n5 ");
    ASSERT_TRUE(comesToTell("waiting for rod.txt:3: "));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_EQ(endOfRod(), 2);
    EXPECT_EQ(window->windowTitle().toStdString(), file + " - strandview");
    folder.append("rod.txt", "0 0\n");
    ASSERT_TRUE(comesToEnd(5));
    EXPECT_EQ(statusText().find("waiting"), std::string::npos) << statusText();
}

TEST_F(WatchingTest, AFileThatIsGoneIsToldAndShownWhenItIsBack)
{
    openText(rodTo(2), "rod.txt");
    std::filesystem::remove(file);
    ASSERT_TRUE(comesToTell("waiting for rod.txt: it is gone"));
    EXPECT_EQ(endOfRod(), 2);
    folder.write("rod.txt", rodTo(6));
    EXPECT_TRUE(comesToEnd(6));
}

TEST_F(WatchingTest, ManyQuickChangesAreReadAFewTimes)
{
    openText(rodTo(2), "rod.txt");
    int readings = 0;
    QObject::connect(window.get(), &MainWindow::loadingEnded, [&readings] { ++readings; });
    for (int i = 0; i < 20; ++i) {
        std::filesystem::rename(folder.write("new.txt", rodTo(3 + i)), file);
        QTest::qWait(20);
    }
    ASSERT_TRUE(comesToEnd(22));
    EXPECT_LT(readings, 8);
}

TEST_F(WatchingTest, NothingIsReadWhileADialogIsOpen)
{
    openText(rodTo(2), "rod.txt");
    const QPointer<QMessageBox> box = new QMessageBox(window.get());
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
    ASSERT_TRUE(comesTo([] { return QApplication::activeModalWidget(); }));
    folder.write("rod.txt", rodTo(3));
    QTest::qWait(1500);
    EXPECT_EQ(endOfRod(), 2);
    box->close();
    EXPECT_TRUE(comesToEnd(3));
}

TEST_F(WatchingTest, TheKeyBeginsAndEndsItAndTellsOfWhatChangedBefore)
{
    options.watch = false;
    openText(rodTo(2), "rod.txt");
    ASSERT_NE(tick(), nullptr);
    EXPECT_FALSE(tick()->isChecked());
    folder.write("rod.txt", rodTo(3));
    QTest::qWait(1500);
    EXPECT_EQ(endOfRod(), 2);
    pressRealKey("Shift+F5");
    EXPECT_TRUE(comesToEnd(3));
    EXPECT_TRUE(tick()->isChecked());
    EXPECT_TRUE(window->isWatching());
    pressRealKey("Shift+F5");
    ASSERT_TRUE(comesTo([this] { return !tick()->isChecked(); }));
    folder.write("rod.txt", rodTo(4));
    QTest::qWait(1500);
    EXPECT_EQ(endOfRod(), 3);
}

TEST_F(WatchingTest, FilesThatAreOpenedLaterAreWatchedInsteadOfThoseBefore)
{
    openText(rodTo(2), "rod.txt");
    const std::string other = folder.write("other.txt", rodTo(10));
    window->openFiles({QString::fromStdString(other)});
    ASSERT_TRUE(comesToEnd(10));
    folder.write("rod.txt", rodTo(3));
    QTest::qWait(1500);
    EXPECT_EQ(endOfRod(), 10);
    folder.write("other.txt", rodTo(11));
    EXPECT_TRUE(comesToEnd(11));
}

TEST_F(WatchingTest, TheFileThatAnotherIsComparedWithIsWatchedToo)
{
    options.compare = folder.write("reference.txt", rodTo(2));
    options.colourBy = "reference_distance";
    openText(rodTo(2), "rod.txt");
    EXPECT_EQ(scene->getColouring()->min, 0);
    folder.write("reference.txt", rodTo(4));
    // Superposed, the ends are farthest apart.
    EXPECT_TRUE(comesTo([this] { return std::abs(scene->getColouring()->max - 4 / 3.0) < 1e-6; }));
}

// Series

TEST_F(WatchingTest, ASeriesStaysAtItsFrameAndGoesOnPlaying)
{
    openText(seriesTo(2, 30), "run.txt");
    ASSERT_NE(player(), nullptr);
    player()->goTo(7);
    ASSERT_TRUE(comesToEnd(9));
    QPointer<Player> before = player();
    folder.write("run.txt", seriesTo(102, 30));
    ASSERT_TRUE(comesTo([&] { return !before && player(); }));
    EXPECT_TRUE(comesToEnd(109));
    EXPECT_FALSE(player()->isPlaying());

    PlayBar* bar = window->findChild<PlayBar*>();
    bar->setRange(5, 9);
    bar->findChild<QComboBox*>("repeatBox")->setCurrentIndex(PlayOrder::LOOP);
    pressRealKey("k");
    ASSERT_TRUE(comesTo([&] { return player()->isPlaying(); }));
    before = player();
    folder.write("run.txt", seriesTo(202, 30));
    ASSERT_TRUE(comesTo([&] { return !before && player(); }));
    EXPECT_TRUE(comesTo([&] { return player()->isPlaying() && endOfRod() >= 207; }));
}

TEST_F(WatchingTest, OfFilesInAFolderTheLastOneIsFollowed)
{
    options.series.isOfFiles = true;
    folder.write("run9.txt", rodTo(9));
    folder.write("run10.txt", rodTo(10));
    open(folder.path());
    ASSERT_NE(player(), nullptr);
    folder.write("run11.txt", rodTo(11)); // while the first one is looked at
    PlayBar* bar = window->findChild<PlayBar*>();
    ASSERT_TRUE(comesTo([&] { return bar->getCount() == 3; }));
    EXPECT_TRUE(comesToEnd(9));
    pressRealKey("Control+End");
    ASSERT_TRUE(comesToEnd(11));
    folder.write("run12.txt", rodTo(12));
    EXPECT_TRUE(comesToEnd(12));
    EXPECT_EQ(player()->getFrame(), 3u);
}

TEST_F(WatchingTest, WhatWasMeasuredInFilesOfAFolderIsForgottenOfThoseThatChangedAlone)
{
    options.series.isOfFiles = true;
    options.measurements = {*parseMeasurement("distance rod 1:0,rod 1:2")};
    for (const int end : {6, 7, 8, 9})
        folder.write("run" + std::to_string(end) + ".txt", rodTo(end));
    open(folder.path());
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && view()->hasFocus(); }));
    for (const int end : {7, 8, 9}) {
        pressRealKey("period");
        ASSERT_TRUE(comesToEnd(end));
    }
    folder.write("run7.txt", rodTo(70)); // two at once
    folder.write("run5.txt", rodTo(5));
    PlayBar* bar = window->findChild<PlayBar*>();
    ASSERT_TRUE(comesTo([&] { return bar->getCount() == 5; }));
    ASSERT_TRUE(comesToEnd(9));
    ASSERT_EQ(player()->getFrame(), 4u);
    const std::string table = folder.path() + "/measured.csv";
    ASSERT_EQ(window->getMeasurements().save(table), "");
    std::ifstream stream(table);
    const std::string lines(std::istreambuf_iterator<char>(stream), {});
    EXPECT_THAT(lines, HasSubstr("\n1,6\n3,8\n4,9\n"));
}

TEST_F(WatchingTest, AFileThatIsFollowedIsReadAgainOnlyWhenItIsNoLongerTheSame)
{
    options.series.follow = true;
    openText(seriesTo(2, 3) + "\n\n", "run.txt");
    ASSERT_TRUE(comesToEnd(4));
    const QPointer<Player> before = player();
    folder.append("run.txt", rodTo(5) + "\n\n");
    EXPECT_TRUE(comesToEnd(5));
    QTest::qWait(1500);
    EXPECT_TRUE(before);
    folder.write("run.txt", seriesTo(7, 2) + "\n\n");
    EXPECT_TRUE(comesToEnd(8));
    EXPECT_FALSE(before);
}

} // namespace strandview
