// SPDX-License-Identifier: GPL-3.0-or-later
// Two views beside each other as the user of a window sees them: with the X server's keys and
// mouse.
#include "window/SideBySide.h"

#include <cmath>
#include <functional>
#include <string>

#include <QAction>
#include <QGLWidget>
#include <QPixmap>
#include <QScreen>
#include <QTest>
#include <gmock/gmock.h>

#include <strandview/model/Configuration.h>

#include "DataWindowTest.h"
#include "camera/Camera.h"
#include "scene/DataScene.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "window/PlayBar.h"
#include "window/Player.h"

namespace strandview {

using testing::HasSubstr;

namespace {

// Of a black tube with its highlight; axes have colours.
bool isGrey(const QColor& c) { return c.saturation() < 40 && c.lightness() < 160; }

class SideBySideTest : public DataWindowTest
{
protected:
    SideBySideTest() { options.windowSize = {900, 520}; }

    const std::vector<BesideView*>& further() const { return window->getSideBySide().getViews(); }
    DataScene* second() const { return sceneBeside(); }
    static double endOf(const DataScene* of)
    {
        return of && of->getData() ? of->getData()->rods.at(0).points.back().x : -1;
    }
    [[nodiscard]] bool comesToShow(double first, double other) const
    {
        return comesTo([&] {
            return !window->isLoading() && endOf(scene) == first && endOf(second()) == other &&
                   !window->getSideBySide().isAtWork();
        });
    }
    QWidget* firstView() const
    {
        return window->getSideBySide().getFirstArea()->findChild<QGLWidget*>();
    }
    QWidget* secondView() const { return further().at(0)->getViewer().getGLWidget(); }
    int countViews() const { return window->findChildren<QGLWidget*>().size(); }
    CameraNumbers secondCamera() const { return further().at(0)->getCameraNumbers(); }
    static QImage screenOf(const QWidget& view)
    {
        return keepIfFailed(view.screen()->grabWindow(view.winId()).toImage());
    }
    // Of ten frames, at the first.
    void openSeries()
    {
        openText(seriesTo(2, 10), "run.txt");
        ASSERT_NE(player(), nullptr);
        ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    }
};

} // namespace

TEST_F(SideBySideTest, TheKeyShowsTheFirstFrameBesideThePresentOneAndTakesItAway)
{
    openSeries();
    EXPECT_EQ(countViews(), 1);
    const int width = firstView()->width();
    player()->goTo(5);
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(7, 2));
    EXPECT_EQ(countViews(), 2);
    EXPECT_LE(firstView()->width(), width / 2);
    EXPECT_NEAR(firstView()->width(), secondView()->width(), 2);
    EXPECT_EQ(firstView()->height(), secondView()->height());
    pressRealKey("period");
    EXPECT_TRUE(comesToShow(8, 2));
    pressRealKey("F3");
    EXPECT_TRUE(comesTo([&] { return countViews() == 1 && firstView()->width() == width; }));
    EXPECT_EQ(second(), nullptr);
}

TEST_F(SideBySideTest, BothAreDrawnInTheSameStyle)
{
    options.tubeColour = Colour{0, 0, 0};
    options.beside = besideOf({"first"});
    openSeries();
    pressRealKey("Control+End");
    ASSERT_TRUE(comesToShow(11, 2));
    ASSERT_TRUE(comesToBePainted());
    const auto pixels = [this] { return countPixels(screenOf(*secondView()), isGrey); };
    ASSERT_TRUE(comesTo([&] { return pixels() > 100; }));
    const int before = pixels();
    StyleRequest thicker = window->getStyle();
    thicker.radius = 2 * scene->getStyle().radius;
    window->setStyle(thicker);
    ASSERT_TRUE(comesTo([&] { return second()->getStyle().radius == *thicker.radius; }));
    EXPECT_TRUE(comesTo([&] { return pixels() > 3 * before / 2; }));
    StyleRequest cut = thicker;
    cut.clip = parseClipPlane("x:-100");
    window->setStyle(cut);
    EXPECT_TRUE(comesTo([&] { return pixels() < before / 10; }));
    window->setStyle(thicker);
    EXPECT_TRUE(comesTo([&] { return pixels() > before; }));
    setThings("rod 1: hidden");
    EXPECT_TRUE(comesTo([&] { return pixels() < before / 10; }));
}

TEST_F(SideBySideTest, TurningOneTurnsTheOther)
{
    options.beside = besideOf({"first"});
    openSeries();
    ASSERT_TRUE(comesToShow(2, 2));
    EXPECT_TRUE(secondCamera() == window->getCameraNumbers());
    for (const QWidget* turned : {secondView(), firstView()}) {
        ASSERT_TRUE(turn(*turned, [this] { return window->getCameraNumbers(); }));
        EXPECT_TRUE(comesTo([&] { return secondCamera() == window->getCameraNumbers(); }));
    }
}

TEST_F(SideBySideTest, KeysTurnBothFromEither)
{
    options.beside = besideOf({"first"});
    openSeries();
    ASSERT_TRUE(comesToShow(2, 2));
    for (QWidget* focus : {secondView(), firstView()}) {
        focus->setFocus();
        for (const char* key : {"Alt+d", "p", "Control+1"}) {
            const CameraNumbers before = window->getCameraNumbers();
            pressRealKey(key);
            EXPECT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == before); })) << key;
            EXPECT_TRUE(comesTo([&] { return secondCamera() == window->getCameraNumbers(); }))
                << key;
        }
    }
}

TEST_F(SideBySideTest, OneCameraSuitsBoth)
{
    options.camera.side = Side::Z;
    options.beside = besideOf({folder.write("long.txt", rodTo(40))});
    openText(rodTo(2), "short.txt");
    ASSERT_TRUE(comesToShow(2, 40));
    const CameraNumbers both = window->getCameraNumbers();
    EXPECT_NEAR(both.position[0], 20, 1);
    pressRealKey("F3");
    ASSERT_TRUE(comesTo([this] { return countViews() == 1; }));
    EXPECT_TRUE(
        comesTo([&] { return std::abs(window->getCameraNumbers().position[0] - 1) < 0.1; }));
}

TEST_F(SideBySideTest, AnotherSeriesFollowsTheFrameAsFarAsItGoes)
{
    options.beside = besideOf({folder.write("other.txt", seriesTo(102, 4))});
    openSeries();
    ASSERT_TRUE(comesToShow(2, 102));
    pressRealKey("period");
    EXPECT_TRUE(comesToShow(3, 103));
    pressRealKey("Control+End");
    EXPECT_TRUE(comesToShow(11, 105));
}

TEST_F(SideBySideTest, WhatIsComparedWithIsShownInTheSameRangeOfColours)
{
    options.compare = folder.write("reference.txt", rodTo(4));
    options.colourBy = "reference_distance";
    openText(rodTo(2), "rod.txt");
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(2, 4));
    ASSERT_TRUE(second()->getColouring());
    EXPECT_EQ(second()->getColouring()->max, scene->getColouring()->max);
    EXPECT_TRUE(second()->areColoursShown());
    window->setColours(false);
    EXPECT_FALSE(second()->areColoursShown());
}

TEST_F(SideBySideTest, StillDataAreSeenFromAnotherSideEachViewByItself)
{
    openText(rodTo(2), "rod.txt");
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(2, 2));
    const CameraNumbers first = window->getCameraNumbers(), other = secondCamera();
    EXPECT_FALSE(first == other);
    ASSERT_TRUE(turn(*secondView(), [this] { return secondCamera(); }));
    EXPECT_TRUE(window->getCameraNumbers() == first);
    const CameraNumbers turned = secondCamera();
    secondView()->setFocus();
    pressRealKey("Alt+d");
    EXPECT_TRUE(comesTo([&] { return !(secondCamera() == turned); }));
    EXPECT_TRUE(window->getCameraNumbers() == first);
    pressRealKey("Shift+F3"); // from one place from now on
    EXPECT_TRUE(comesTo([&] { return secondCamera() == first; }));
    EXPECT_TRUE(window->getBeside().isTied);
}

TEST_F(SideBySideTest, AClickTellsWhatItsOwnViewShows)
{
    options.camera.side = Side::Z;
    options.beside = besideOf({folder.write("reference.txt", rodTo(2))});
    openText("0 0 0\n1 0 0\n2 0 0\n", "rod.txt");
    ASSERT_TRUE(comesToShow(2, 2));
    const auto tellOf = [](const QWidget& view) {
        const QPoint middle = view.mapToGlobal(view.rect().center());
        clickRealRightButton(middle.x(), middle.y());
    };
    tellOf(*secondView());
    EXPECT_TRUE(comesTo([this] { return statusText().find("reference.txt") != std::string::npos; }))
        << statusText();
    tellOf(*firstView());
    EXPECT_TRUE(comesTo([this] { return statusText().find("rod.txt") != std::string::npos; }))
        << statusText();
}

TEST_F(SideBySideTest, AFileThatCannotBeReadIsToldAndNotShown)
{
    options.beside = besideOf({folder.write("bad.txt", "0 0\n")});
    openText(rodTo(2), "rod.txt");
    EXPECT_TRUE(comesTo([this] { return window->getBeside().what.empty(); }));
    EXPECT_EQ(countViews(), 1);
    EXPECT_THAT(statusText(), HasSubstr("bad.txt"));
}

TEST_F(SideBySideTest, AFileThatIsBadForAMomentIsToldAndTheSecondViewStays)
{
    options.beside = besideOf({folder.write("beside.txt", rodTo(3))});
    openText(rodTo(2), "rod.txt");
    ASSERT_TRUE(comesToShow(2, 3));
    folder.write("beside.txt", "0 0\n");
    pressRealKey("F5");
    EXPECT_TRUE(comesTo([this] { return statusText().find("beside.txt") != std::string::npos; }));
    EXPECT_EQ(countViews(), 2);
    folder.write("beside.txt", rodTo(4));
    pressRealKey("F5");
    EXPECT_TRUE(comesToShow(2, 4));
}

// From where all of its frames are seen.
TEST_F(SideBySideTest, TheCameraOfAFittedViewStaysOverTheFramesOfASecondSeries)
{
    options.beside = besideOf({folder.write("beside.txt", seriesTo(6, 4))});
    openSeries();
    ASSERT_TRUE(comesTo([this] { return endOf(second()) == 6; }));
    pressRealKey("Control+End");
    ASSERT_TRUE(comesTo([this] { return endOf(second()) == 9; }));
    const CameraNumbers camera = window->getCameraNumbers();
    pressRealKey("Control+Home");
    ASSERT_TRUE(comesToShow(2, 6));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_TRUE(window->getCameraNumbers() == camera);
}

TEST_F(SideBySideTest, OtherFilesAreShownBesideTheSameOne)
{
    options.beside = besideOf({folder.write("reference.txt", rodTo(4))});
    openText(rodTo(2), "rod.txt");
    ASSERT_TRUE(comesToShow(2, 4));
    window->openFiles({QString::fromStdString(folder.write("other.txt", rodTo(30)))});
    EXPECT_TRUE(comesToShow(30, 4));
    EXPECT_TRUE(secondCamera() == window->getCameraNumbers());
}

TEST_F(SideBySideTest, AWindowIsClosedWithTwoViewsAndWhileOneIsRead)
{
    openSeries();
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(2, 2));
    pressRealKey("k");
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() > 2; }));
    window.reset();
    open(folder.path("run.txt"));
    window->setBeside(besideOf({"first"}));
    window.reset();
}

} // namespace strandview
