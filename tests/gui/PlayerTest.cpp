// SPDX-License-Identifier: GPL-3.0-or-later
// Playing as the user of a window sees it: with the X server's keys and mouse.
#include "window/Player.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <set>
#include <utility>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QPointer>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <gmock/gmock.h>

#include <SoRod.h>

#include "DataWindowTest.h"
#include "countColours.h"
#include "scene/DataScene.h"
#include "support/graph.h"
#include "support/realInput.h"
#include "window/PlayBar.h"

namespace strandview {

using algebra3d::Vector3;
using testing::ElementsAre;
using testing::Gt;
using testing::HasSubstr;

namespace {

// A rod that bends more from frame to frame.
std::string frameText(int frame)
{
    std::string text;
    for (int i = 0; i < 5; ++i)
        text += std::to_string(i) + " " + std::to_string(0.02 * frame * i * i) + " 0\n";
    return text;
}

std::string seriesText(int frames)
{
    std::string text;
    for (int frame = 0; frame < frames; ++frame)
        text += (frame == 0 ? "" : "\n\n") + frameText(frame);
    return text;
}

class PlayerTest : public DataWindowTest
{
protected:
    PlayerTest()
    {
        options.windowSize = {700, 520};
        options.series.framesPerSecond = 50;
    }

    // And waits until all that is known of the series is.
    void openSeries(int frames)
    {
        openText(seriesText(frames), "run.txt");
        ASSERT_NE(player(), nullptr);
        ASSERT_TRUE(comesTo([this] { return player()->isStaged(); }));
        ASSERT_TRUE(comesTo([this] { return player()->isUpToDate(); }));
    }

    PlayBar* bar() const { return window->findChild<PlayBar*>(); }
    template <typename Widget>
    Widget* part(const char* name) const
    {
        return bar()->findChild<Widget*>(name);
    }
    std::string label() const { return part<QLabel>("frameLabel")->text().toStdString(); }

    // What the scene shows, by how far the rod's end is bent.
    std::size_t frameOfScene() const
    {
        const SoRod* rod = allOf<SoRod>(scene).front();
        BiarcTubeMesh& tube = *rod->getTubeMesh();
        const Vector3<double>* ring = tube.getPoints()[tube.getHeight() - 1];
        double height = 0;
        for (int i = 0; i + 1 < tube.getWidth(); ++i)
            height += ring[i].y / (tube.getWidth() - 1);
        return std::size_t(std::lround(height / (0.02 * 16)));
    }
    // Nothing that was asked for is missing, and bar and scene show this frame.
    bool isShown(std::size_t frame) const
    {
        return player()->isUpToDate() && player()->getFrame() == frame &&
               part<QSlider>("frameSlider")->value() == int(frame) &&
               label().find("frame " + std::to_string(frame) + " of ") == 0;
    }
    bool comesToShow(std::size_t frame) const
    {
        return comesTo([&] { return isShown(frame); });
    }

    QToolButton* button(int index) const { return bar()->findChildren<QToolButton*>().at(index); }
};

} // namespace

// The bar

TEST_F(PlayerTest, OfStillDataThereIsNoBarAndNothingToPlay)
{
    open(folder.write("still.txt", seriesText(1)));
    EXPECT_EQ(player(), nullptr);
    EXPECT_FALSE(bar()->isVisible());
    pressRealKey("k");
    pressRealKey("period");
    QTest::qWait(100);
    EXPECT_EQ(player(), nullptr);
}

TEST_F(PlayerTest, TheBarTellsFrameNumberAndTime)
{
    open(folder.write("run.json", R"({"strandview": 1, "series": [
        {"time": 0.25, "markers": [{"point": [0, 0, 0]}]},
        {"time": 0.5, "markers": [{"point": [1, 0, 0]}]}]})"));
    ASSERT_NE(player(), nullptr);
    EXPECT_TRUE(bar()->isVisible());
    ASSERT_TRUE(comesTo([this] { return player()->isStaged(); }));
    EXPECT_TRUE(comesTo([this] { return label() == "frame 0 of 2, t = 0.25"; })) << label();
    pressRealKey("period");
    EXPECT_TRUE(comesTo([this] { return label() == "frame 1 of 2, t = 0.5"; })) << label();
}

// Keys

TEST_F(PlayerTest, KeysStepOneFrameOrTenAndGoToTheEnds)
{
    openSeries(30);
    pressRealKey("period");
    EXPECT_TRUE(comesToShow(1));
    EXPECT_EQ(frameOfScene(), 1u);
    pressRealKey("greater");
    EXPECT_TRUE(comesToShow(11));
    pressRealKey("comma");
    EXPECT_TRUE(comesToShow(10));
    pressRealKey("Control+End");
    EXPECT_TRUE(comesToShow(29));
    EXPECT_EQ(frameOfScene(), 29u);
    pressRealKey("period");
    pressRealKey("less");
    EXPECT_TRUE(comesToShow(19));
    pressRealKey("Control+Home");
    EXPECT_TRUE(comesToShow(0));
    EXPECT_EQ(frameOfScene(), 0u);
}

TEST_F(PlayerTest, TheKeyPlaysToTheEndOrStopsWhereItIs)
{
    openSeries(40);
    std::set<std::size_t> seen;
    QObject::connect(player(), &Player::frameShown, [&](std::size_t frame) { seen.insert(frame); });
    pressRealKey("k");
    ASSERT_TRUE(comesTo([this] { return player()->isPlaying(); }));
    ASSERT_TRUE(comesTo([&] { return seen.size() > 2; }));
    pressRealKey("k");
    ASSERT_TRUE(comesTo([this] { return !player()->isPlaying(); }));
    ASSERT_TRUE(comesTo([this] { return player()->isUpToDate(); }));
    const std::size_t stopped = player()->getFrame();
    EXPECT_THAT(stopped, Gt(0u));
    QTest::qWait(200);
    EXPECT_EQ(player()->getFrame(), stopped);

    pressRealKey("k");
    EXPECT_TRUE(comesToShow(39));
    EXPECT_TRUE(comesTo([this] { return !player()->isPlaying(); }));
    EXPECT_EQ(frameOfScene(), 39u);
    pressRealKey("k"); // from the beginning
    EXPECT_TRUE(comesTo([this] { return player()->isPlaying() && player()->getFrame() < 30; }));
}

TEST_F(PlayerTest, TheFrameFollowsTheClockUnlessEveryFrameIsAskedFor)
{
    options.series.framesPerSecond = 1000; // more than any window draws
    openSeries(100);
    std::vector<std::size_t> seen;
    QObject::connect(player(), &Player::frameShown,
                     [&](std::size_t frame) { seen.push_back(frame); });
    pressRealKey("k");
    ASSERT_TRUE(comesToShow(99));
    EXPECT_LT(seen.size(), 50u) << "frames are left out";
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));

    click(*part<QCheckBox>("everyFrameBox"),
          QPoint(8, part<QCheckBox>("everyFrameBox")->height() / 2));
    ASSERT_TRUE(comesTo([this] { return bar()->isEveryFrameShown(); }));
    pressRealKey("Control+Home");
    ASSERT_TRUE(comesToShow(0));
    seen.clear();
    pressRealKey("k");
    ASSERT_TRUE(comesToShow(99));
    ASSERT_EQ(seen.size(), 100u) << "no frame is left out";
    for (std::size_t i = 0; i < seen.size(); ++i)
        ASSERT_EQ(seen[i], i);
}

TEST_F(PlayerTest, BracketsSetTheRangeThatIsPlayed)
{
    openSeries(30);
    pressRealKey("greater");
    ASSERT_TRUE(comesToShow(10));
    pressRealKey("bracketleft");
    ASSERT_TRUE(comesTo([this] { return bar()->getOrder().first == 10; }));
    pressRealKey("period");
    pressRealKey("period");
    ASSERT_TRUE(comesToShow(12));
    pressRealKey("bracketright");
    ASSERT_TRUE(comesTo([this] { return bar()->getOrder().last == 12; }));
    part<QComboBox>("repeatBox")->setCurrentIndex(PlayOrder::LOOP);
    std::set<std::size_t> seen;
    QObject::connect(player(), &Player::frameShown, [&](std::size_t frame) { seen.insert(frame); });
    pressRealKey("k");
    EXPECT_TRUE(comesTo([&] { return seen.size() == 3; }));
    QTest::qWait(200);
    EXPECT_THAT(seen, ElementsAre(10, 11, 12));
    pressRealKey("k");
    ASSERT_TRUE(comesTo([this] { return !player()->isPlaying(); }));
    pressRealKey("Control+End");
    ASSERT_TRUE(comesToShow(12));
    pressRealKey("bracketright"); // again: to the end
    EXPECT_TRUE(comesTo([this] { return bar()->getOrder().last == 29; }));
}

// The mouse

TEST_F(PlayerTest, TheSliderIsDraggedAndClicked)
{
    openSeries(101);
    auto* slider = part<QSlider>("frameSlider");
    click(*slider, {slider->width() / 2, slider->height() / 2});
    EXPECT_TRUE(comesTo([this] { return player()->isUpToDate() && player()->getFrame() > 40; }));
    EXPECT_LT(player()->getFrame(), 60u);
    EXPECT_EQ(frameOfScene(), player()->getFrame());
    const QPoint from = slider->mapToGlobal({slider->width() / 2, slider->height() / 2});
    const QPoint to = slider->mapToGlobal({slider->width() - 1, slider->height() / 2});
    dragRealPointer(from.x(), from.y(), to.x() + 50, to.y());
    EXPECT_TRUE(comesToShow(100));
    EXPECT_EQ(frameOfScene(), 100u);
}

TEST_F(PlayerTest, TheButtonsDoWhatTheKeysDo)
{
    openSeries(20);
    click(*button(4)); // last
    EXPECT_TRUE(comesToShow(19));
    click(*button(1)); // back
    EXPECT_TRUE(comesToShow(18));
    click(*button(0)); // first
    EXPECT_TRUE(comesToShow(0));
    click(*button(3)); // forward
    EXPECT_TRUE(comesToShow(1));
    click(*button(2)); // play
    EXPECT_TRUE(comesTo([this] { return player()->isPlaying(); }));
    EXPECT_TRUE(button(2)->isChecked());
    EXPECT_TRUE(comesToShow(19));
    EXPECT_TRUE(comesTo([this] { return !button(2)->isChecked(); }));
}

TEST_F(PlayerTest, AFrameIsGivenByItsNumberAndTheKeyboardGoesBackToTheView)
{
    openSeries(200);
    auto* field = part<QSpinBox>("frameField");
    click(*field, {8, field->height() / 2});
    ASSERT_TRUE(comesTo([&] { return field->hasFocus(); }));
    field->selectAll();
    for (const char* key : {"1", "5", "0", "Return"})
        pressRealKey(key);
    EXPECT_TRUE(comesToShow(150));
    EXPECT_TRUE(comesTo([&] { return !field->hasFocus(); }));
    pressRealKey("period");
    EXPECT_TRUE(comesToShow(151));
}

TEST_F(PlayerTest, ACommaInTheRateIsNoStepBack)
{
    openSeries(10);
    pressRealKey("period");
    ASSERT_TRUE(comesToShow(1));
    auto* rate = part<QDoubleSpinBox>("rateField");
    click(*rate, {8, rate->height() / 2});
    ASSERT_TRUE(comesTo([&] { return rate->hasFocus(); }));
    rate->selectAll();
    for (const char* key : {"2", "comma", "5", "Return"})
        pressRealKey(key);
    EXPECT_TRUE(comesTo([&] { return bar()->getFramesPerSecond() == 2.5; }));
    EXPECT_TRUE(isShown(1));
}

// A software driver draws edges with one sample while they move.
TEST_F(PlayerTest, EdgesAreSmoothAgainAsSoonAsPlayingStops)
{
    options.series.framesPerSecond = 0.01; // so that the same frame is shown while it plays
    openSeries(2);
    ASSERT_TRUE(comesTo([&] { return countColours(*view()) > 30; }));
    const int smooth = countColours(*view());
    pressRealKey("k");
    EXPECT_TRUE(
        comesTo([&] { return player()->isPlaying() && countColours(*view()) < 0.9 * smooth; }));
    pressRealKey("k");
    EXPECT_TRUE(comesTo([&] { return countColours(*view()) == smooth; }));
}

// What stays, and what is told

TEST_F(PlayerTest, NodesAreUpdatedAndNeverMadeAnew)
{
    for (const bool isColoured : {false, true}) {
        if (isColoured)
            options.colourBy = "curvature";
        options.ownRange = isColoured; // a legend that changes in every frame
        openSeries(30);
        const auto nodes = [&] { return everyNodeOf(scene); };
        const std::vector<const SoNode*> before = nodes();
        ASSERT_THAT(before.size(), Gt(10u));
        pressRealKey("k");
        ASSERT_TRUE(comesToShow(29));
        EXPECT_EQ(nodes(), before);
    }
}

TEST_F(PlayerTest, TheCameraHasRoomForAllFramesAndStaysWhileTheyArePlayed)
{
    openSeries(30);
    const CameraNumbers before = window->getCameraNumbers();
    EXPECT_GT(before.size, 0.02 * 29 * 16) << "the height of the last frame";
    pressRealKey("k");
    ASSERT_TRUE(comesToShow(29));
    EXPECT_TRUE(window->getCameraNumbers() == before);
    pressRealKey("a"); // moved by the user, it stays as well
    ASSERT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == before); }));
    const CameraNumbers moved = window->getCameraNumbers();
    pressRealKey("Control+Home");
    ASSERT_TRUE(comesToShow(0));
    EXPECT_TRUE(window->getCameraNumbers() == moved);
}

TEST_F(PlayerTest, TheColoursHaveTheRangeOfAllFramesOrOfEachItsOwn)
{
    for (const bool isOwn : {false, true}) {
        options.colourBy = "curvature";
        options.ownRange = isOwn;
        openSeries(10);
        pressRealKey("period"); // the first frame is straight
        ASSERT_TRUE(comesToShow(1));
        const double first = scene->getColouring()->max;
        pressRealKey("Control+End");
        ASSERT_TRUE(comesToShow(9));
        const double last = scene->getColouring()->max;
        if (isOwn)
            EXPECT_GT(last, first + 0.01);
        else
            EXPECT_EQ(last, first);
        EXPECT_GT(last, 0.1) << "the curvature of the last frame";
    }
}

TEST_F(PlayerTest, FramesAreSeenFromTheSideThatSuitsAllOfThem)
{
    open(folder.write("run.txt", "0 0 0\n5 0 0\n5 4 0\n\n\n0 0 0\n0 1 9\n5 0 9\n"));
    ASSERT_TRUE(comesTo([this] { return player()->isStaged(); }));
    const CameraNumbers ofWindow = window->getCameraNumbers();
    EXPECT_NE(std::abs(ofWindow.orientation[3]), 1) << "as the first frame alone is seen";
    pressRealKey("Home");
    QTest::qWait(100);
    EXPECT_TRUE(window->getCameraNumbers() == ofWindow);
}

// Any turn about an oblique straight rod superposes it on itself.
TEST_F(PlayerTest, TheFirstOfSuperposedFramesIsInItsPlaceFromTheBeginning)
{
    options.series.align = true;
    options.showRibbon = true;
    std::string straight;
    for (const char* const t : {"0", "1", "2", "3", "4", "5", "6", "7", "8"})
        straight += t + (" " + std::string(t)) + " " + t + "\n";
    open(folder.write("run.txt", straight + "\n\n" + straight));
    ASSERT_NE(player(), nullptr);
    ASSERT_FALSE(player()->isStaged());
    const auto coordinates = [this] {
        BiarcTubeMesh& tube = *allOf<SoRod>(scene).front()->getTubeMesh();
        std::vector<double> all;
        for (int row = 0; row < tube.getHeight(); ++row)
            for (int i = 0; i < tube.getWidth(); ++i)
                for (int axis = 0; axis < 3; ++axis)
                    all.push_back(tube.getPoints()[row][i][axis]);
        return all;
    };
    const std::vector<double> before = coordinates();
    std::vector<std::size_t> seen;
    QObject::connect(player(), &Player::frameShown,
                     [&](std::size_t frame) { seen.push_back(frame); });
    ASSERT_TRUE(comesTo([&] { return player()->isStaged() && !seen.empty(); }));
    EXPECT_THAT(seen, ElementsAre(0)) << "anew";
    EXPECT_EQ(coordinates(), before);
}

TEST_F(PlayerTest, FramesBetweenAreShownWhereTheyAreAskedFor)
{
    options.series.between = 3;
    openSeries(3);
    EXPECT_TRUE(comesTo([this] { return bar()->getCount() == 9; }));
    for (int i = 0; i < 4; ++i) {
        pressRealKey("period");
        ASSERT_TRUE(comesToShow(std::size_t(i) + 1));
    }
    EXPECT_EQ(frameOfScene(), 1u) << "the data's";
}

TEST_F(PlayerTest, AFrameThatCannotBeReadIsToldAndTheOthersArePlayed)
{
    std::string text = seriesText(3);
    text.replace(text.find("\n\n\n") + 3, 1, "x"); // the first number of frame 1
    open(folder.write("broken.txt", text));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return bar()->getCount() == 3; }));
    pressRealKey("period");
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 1; }));
    EXPECT_THAT(statusText(), HasSubstr("frame 1: "));
    EXPECT_THAT(statusText(), HasSubstr("broken.txt:8: "));
    EXPECT_EQ(frameOfScene(), 0u) << "what was shown stays";
    pressRealKey("period");
    ASSERT_TRUE(comesToShow(2));
    EXPECT_EQ(frameOfScene(), 2u);
}

TEST_F(PlayerTest, WhatWasDoneToTheDataOfAFrameIsToldOnce)
{
    const auto twice = [](int frame) { return "0 0 0\n" + frameText(frame); }; // its first point
    open(folder.write("run.txt", frameText(0) + "\n\n" + twice(1) + "\n\n" + frameText(2) + "\n\n" +
                                     twice(3) + "\n\n0 0 0\n" + twice(4)));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    EXPECT_THAT(statusText(), testing::Not(HasSubstr("left out")));
    const auto comesToTell = [this](const std::string& text) {
        return comesTo([&] { return statusText().find(text) == 0; });
    };
    pressRealKey("period");
    EXPECT_TRUE(comesToTell("frame 1: 1 point left out, ")) << statusText();
    EXPECT_THAT(statusText(), testing::EndsWith(" – " + folder.path("run.txt")));
    const std::string told = statusText();
    for (const std::size_t next : {2, 3}) {
        pressRealKey("period");
        ASSERT_TRUE(comesToShow(next));
        EXPECT_EQ(statusText(), told);
    }
    pressRealKey("period");
    EXPECT_TRUE(comesToTell("frame 4: 2 points left out, ")) << statusText();
    const std::string last = statusText();
    pressRealKey("Control+Home");
    ASSERT_TRUE(comesToShow(0));
    pressRealKey("k");
    ASSERT_TRUE(comesToShow(4));
    EXPECT_EQ(statusText(), last);
}

TEST_F(PlayerTest, WhatWasDoneToTheDataOfEachFileOfASeriesIsToldOnce)
{
    options.series.isOfFiles = true;
    for (int i = 0; i < 4; ++i) {
        const std::string text = (i > 0 ? "0 0 0\n" : "") + frameText(i);
        folder.write("run_" + std::to_string(i) + ".txt", text);
    }
    open(folder.path());
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    pressRealKey("period");
    EXPECT_TRUE(comesTo([this] { return statusText().find("frame 1: 1 point left out, ") == 0; }))
        << statusText();
    EXPECT_THAT(statusText(), testing::EndsWith(" – " + folder.path("run_1.txt")));
    const std::string told = statusText();
    for (const std::size_t next : {2, 3}) {
        pressRealKey("period");
        ASSERT_TRUE(comesToShow(next));
        EXPECT_EQ(statusText(), told);
    }
}

TEST_F(PlayerTest, FilesAreReadAgainAtTheFrameThatIsShownOrAtTheirLast)
{
    for (const auto& [frames, shown] : std::vector<std::pair<int, std::size_t>>{{20, 9}, {4, 3}}) {
        openSeries(10);
        pressRealKey("Control+End");
        ASSERT_TRUE(comesToShow(9));
        folder.write("run.txt", seriesText(frames));
        pressRealKey("F5");
        ASSERT_TRUE(
            comesTo([&, count = frames] { return bar()->getCount() == std::size_t(count); }));
        EXPECT_TRUE(comesToShow(shown));
        EXPECT_EQ(frameOfScene(), shown);
    }
}

TEST_F(PlayerTest, FilesThatAreReadAgainKeepTheRangeThatIsPlayed)
{
    openSeries(30);
    bar()->setRange(4, 12);
    const auto comesToRange = [this](std::size_t first, std::size_t last) {
        return comesTo([&] {
            const PlayOrder order = bar()->getOrder();
            return !bar()->mayGrow() && order.first == first && order.last == last;
        });
    };
    for (const auto& [frames, last] :
         std::vector<std::pair<int, std::size_t>>{{20, 12}, {10, 9}, {40, 12}, {4, 3}}) {
        const QPointer<Player> before = player();
        folder.write("run.txt", seriesText(frames));
        pressRealKey("F5");
        ASSERT_TRUE(comesTo([&] { return !before && player(); }));
        EXPECT_TRUE(comesToRange(frames > 4 ? 4 : 0, last)) << frames << " frames";
    }
    window->openFiles({QString::fromStdString(folder.write("other.txt", seriesText(20)))});
    EXPECT_TRUE(comesToRange(0, 19)) << "of other files it is all of them";
}

TEST_F(PlayerTest, StillDataEndThePlaying)
{
    openSeries(2);
    window->openFiles({QString::fromStdString(folder.write("still.txt", seriesText(1)))});
    EXPECT_TRUE(comesTo([this] { return !player(); }));
    EXPECT_FALSE(bar()->isVisible());
}

TEST_F(PlayerTest, AFileThatIsWrittenToIsFollowedToItsLastWholeFrame)
{
    options.series.follow = true;
    // Two points of the first frame are there.
    const std::string file = folder.write("run.txt", frameText(0).substr(0, 26));
    const auto append = [this](const std::string& text) { folder.append("run.txt", text); };
    const auto appendFrames = [&append](int from, int to) {
        for (int frame = from; frame <= to; ++frame)
            append(frameText(frame) + "\n\n");
    };
    open(file);
    ASSERT_NE(player(), nullptr);
    append(frameText(0).substr(26) + "\n\n");
    appendFrames(1, 3);
    append(frameText(4).substr(0, 20));
    EXPECT_TRUE(comesToShow(3));
    append(frameText(4).substr(20) + "\n\n");
    EXPECT_TRUE(comesToShow(4));
    pressRealKey("comma"); // the user looks at another one
    ASSERT_TRUE(comesToShow(3));
    appendFrames(5, 6);
    EXPECT_TRUE(comesTo([this] { return bar()->getCount() == 7; }));
    EXPECT_EQ(player()->getFrame(), 3u);
    pressRealKey("Control+End"); // and at the last one again
    ASSERT_TRUE(comesToShow(6));
    appendFrames(7, 9);
    EXPECT_TRUE(comesToShow(9));
    EXPECT_EQ(frameOfScene(), 9u);
}

TEST_F(PlayerTest, AFollowedTableThatEndsWithinARowIsToldOnce)
{
    options.series.follow = true;
    const std::string text = seriesText(3) + "\n\n" + frameText(3).substr(0, 30);
    for (const std::optional<int> frame : {std::optional<int>(), std::optional<int>(1)}) {
        options.frame = frame;
        open(folder.write("run.txt", text));
        ASSERT_NE(player(), nullptr);
        ASSERT_TRUE(comesTo([this] { return bar()->getCount() == 3; }));
        EXPECT_TRUE(
            comesTo([&] { return statusText().find("until it is whole") != std::string::npos; }));
        const std::string told = statusText();
        EXPECT_THAT(told, HasSubstr("run.txt:24: "));
        EXPECT_EQ(told.find("left out"), told.rfind("left out")) << told;
        folder.append("run.txt", frameText(3).substr(30) + "\n\n");
        EXPECT_TRUE(comesToShow(3));
    }
}

TEST_F(PlayerTest, AWindowIsClosedWhileItPlays)
{
    openSeries(500);
    pressRealKey("k");
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() > 2; }));
    window.reset();
}

// Trajectories that others wrote

class PlayerOfOthers : public PlayerTest, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Trajectories, PlayerOfOthers,
                         testing::Values("rna_tile_traj.dat", "dsdna8_traj.dat",
                                         "rna_tile_aligned_traj.dat", "softarm_br2.npz",
                                         "tweezer10.xyz", "fibers3x3.txt"));

TEST_P(PlayerOfOthers, PlaysThemToTheEnd)
{
    const char* const named = std::getenv("STRANDVIEW_TEST_DATA");
    if (!named)
        GTEST_SKIP() << "skipped: STRANDVIEW_TEST_DATA is not set";
    options.series.framesPerSecond = 200;
    open(std::string(named) + "/" + GetParam());
    ASSERT_NE(player(), nullptr) << statusText();
    ASSERT_TRUE(comesTo([this] { return !player()->getStore().getState().mayGrow; }));
    const std::size_t last = player()->getStore().getState().count - 1;
    ASSERT_THAT(last, Gt(0u));
    std::set<std::size_t> seen;
    QObject::connect(player(), &Player::frameShown, [&](std::size_t frame) { seen.insert(frame); });
    pressRealKey("k");
    EXPECT_TRUE(QTest::qWaitFor([&] { return isShown(last); }, 100000)) << label();
    EXPECT_THAT(statusText(), testing::Not(testing::ContainsRegex("frame [0-9]+: ")));
}

} // namespace strandview
