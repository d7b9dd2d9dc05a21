// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/FrameTurns.h"

#include <algorithm>
#include <map>
#include <utility>

#include <QElapsedTimer>
#include <QGLWidget>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

#include "DataWindowTest.h"
#include "request/BesideRequest.h"
#include "window/SideBySide.h"

namespace strandview {

namespace {

const int VIEWS = 4;

// Four views, whose frames are counted, by their viewers.
class FrameTurnsTest : public DataWindowTest
{
protected:
    struct Opened : MainWindow
    {
        static SoQtGeneralViewer& viewerOf(const MainWindow& window)
        {
            return *(window.*&Opened::viewer);
        }
    };

    void openFour()
    {
        options.beside = fourOfTheSame();
        ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.1 0\n1 0 0\n", "rod.txt"));
        const SideBySide& beside = window->getSideBySide();
        ASSERT_TRUE(comesTo(
            [&] { return sceneBeside(2) && !beside.isAtWork() && !window->isRestyling(); }));
        viewers = {&Opened::viewerOf(*window)};
        QObject::connect(window.get(), &MainWindow::frameDrawn, [this] { note(viewers[0]); });
        for (const BesideView* const view : beside.getViews()) {
            WindowViewer& viewer = view->getViewer();
            viewers.push_back(&viewer);
            viewer.onFrame = [this, &viewer] { note(&viewer); };
        }
        ASSERT_NO_FATAL_FAILURE(rest());
    }
    // What is drawn after a window has changed is over.
    void rest()
    {
        QElapsedTimer since;
        since.start();
        onFrame = [&since](SoQtGeneralViewer* /*any*/) { since.start(); };
        ASSERT_TRUE(comesTo([&since] { return since.elapsed() > 2000; }));
        onFrame = nullptr;
        frames.clear();
    }
    void note(SoQtGeneralViewer* viewer)
    {
        ++frames[viewer];
        if (onFrame)
            onFrame(viewer);
    }
    void scheduleAll()
    {
        for (SoQtGeneralViewer* const viewer : viewers)
            viewer->scheduleRedraw();
    }
    bool areAllDrawn()
    {
        return std::all_of(viewers.begin(), viewers.end(),
                           [this](SoQtGeneralViewer* viewer) { return frames[viewer] > 0; });
    }

    std::vector<SoQtGeneralViewer*> viewers;
    std::map<SoQtGeneralViewer*, int> frames;
    std::function<void(SoQtGeneralViewer* viewer)> onFrame;
};

} // namespace

TEST_F(FrameTurnsTest, TheWindowAnswersBetweenTheFramesOfItsViews)
{
    ASSERT_NO_FATAL_FAILURE(openFour());
    int sinceAnswer = 0, most = 0;
    onFrame = [&](SoQtGeneralViewer* /*viewer*/) { most = std::max(most, ++sinceAnswer); };
    QTimer answers;
    QObject::connect(&answers, &QTimer::timeout, [&] { sinceAnswer = 0; });
    answers.start(0);
    for (int round = 0; round < 5; ++round) {
        frames.clear();
        scheduleAll();
        ASSERT_TRUE(comesTo([this] { return areAllDrawn(); }));
    }
    EXPECT_EQ(most, 1);
}

TEST_F(FrameTurnsTest, AViewThatChangesAllTheTimeLeavesTheOthersTheirTurns)
{
    ASSERT_NO_FATAL_FAILURE(openFour());
    for (SoQtGeneralViewer* const restless : viewers) {
        onFrame = [restless](SoQtGeneralViewer* viewer) {
            if (viewer == restless)
                viewer->scheduleRedraw();
        };
        frames.clear();
        scheduleAll();
        ASSERT_TRUE(comesTo([this] { return areAllDrawn(); }));
        EXPECT_LE(frames[restless], VIEWS);
    }
}

TEST_F(FrameTurnsTest, EachIsDrawnOnceForOneChange)
{
    ASSERT_NO_FATAL_FAILURE(openFour());
    scheduleAll();
    ASSERT_TRUE(comesTo([this] { return areAllDrawn(); }));
    QTest::qWait(100);
    for (SoQtGeneralViewer* const viewer : viewers)
        EXPECT_EQ(frames[viewer], 1);
}

TEST_F(FrameTurnsTest, WhoWaitsForAllIsToldAfterTheLast)
{
    ASSERT_NO_FATAL_FAILURE(openFour());
    FrameTurns& turns = *window->getSideBySide().getViews()[0]->getViewer().turns;
    bool isAsked = false, isTold = false;
    onFrame = [&](SoQtGeneralViewer* /*viewer*/) {
        if (std::exchange(isAsked, true))
            return;
        turns.whenDrawn([&] {
            isTold = true;
            EXPECT_TRUE(areAllDrawn());
        });
    };
    scheduleAll();
    EXPECT_TRUE(comesTo([&] { return isTold; }));
    isTold = false;
    turns.whenDrawn([&] { isTold = true; });
    EXPECT_TRUE(comesTo([&] { return isTold; }));
}

TEST_F(FrameTurnsTest, AViewThatGoesWhileItWaitsIsForgotten)
{
    ASSERT_NO_FATAL_FAILURE(openFour());
    onFrame = [this](SoQtGeneralViewer* /*viewer*/) {
        onFrame = nullptr;
        QTimer::singleShot(0, window.get(), [this] {
            viewers.resize(1);
            window->setBeside({});
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        });
    };
    scheduleAll();
    ASSERT_TRUE(comesTo([this] { return !window->getSideBySide().isOpen(); }));
    frames.clear();
    scheduleAll();
    EXPECT_TRUE(comesTo([this] { return areAllDrawn(); }));
}

} // namespace strandview
