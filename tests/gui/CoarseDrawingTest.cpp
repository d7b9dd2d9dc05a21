// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/CoarseDrawing.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>

#include <QImage>
#include <QTest>
#include <gmock/gmock.h>

#include <SoQtGeneralViewer.h>

#include "DataWindowTest.h"
#include "request/BesideRequest.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "window/SideBySide.h"

using testing::ElementsAre;

namespace strandview {

namespace {

class CoarseDrawingTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initialiseProgramOnce("CoarseDrawingTest"); }

    bool isCoarse = false;
    CoarseDrawing drawing{[this](bool coarse) { isCoarse = coarse; }};
};

TEST_F(CoarseDrawingTest, LastsUntilNothingHasChangedForAMoment)
{
    EXPECT_FALSE(isCoarse);
    for (int step = 0; step < 5; ++step) {
        drawing.noteChange();
        EXPECT_TRUE(isCoarse);
        EXPECT_TRUE(drawing.isChanging());
        QTest::qWait(20);
    }
    EXPECT_TRUE(comesTo([this] { return !drawing.isChanging(); }));
    EXPECT_FALSE(isCoarse);
}

TEST_F(CoarseDrawingTest, LastsWhileAChangeIsAwaitedAndDoesNotBeginWithIt)
{
    drawing.awaitChange();
    EXPECT_FALSE(drawing.isChanging());
    EXPECT_FALSE(isCoarse);
    drawing.noteChange();
    QTest::qWait(200);
    drawing.awaitChange();
    QTest::qWait(200);
    EXPECT_TRUE(isCoarse);
    EXPECT_TRUE(comesTo([this] { return !drawing.isChanging(); }));
    EXPECT_FALSE(isCoarse);
}

TEST_F(CoarseDrawingTest, LastsWhileItPlays)
{
    drawing.setPlaying(true);
    drawing.noteChange();
    QTest::qWait(500);
    EXPECT_TRUE(isCoarse);
    drawing.setPlaying(false);
    EXPECT_FALSE(isCoarse);
}

// Of turns that are nearer to each other than its points are.
std::string coil(int points)
{
    std::string text;
    for (int i = 0; i < points; ++i) {
        const double turn = 0.02 * i;
        text += std::to_string(std::cos(turn)) + " " + std::to_string(std::sin(turn)) + " " +
                std::to_string(0.004 * turn) + "\n";
    }
    return text;
}

class CoarseWindowTest : public DataWindowTest
{
protected:
    struct Opened : MainWindow
    {
        static const SoQtGeneralViewer& viewerOf(const MainWindow& window)
        {
            return *(window.*&Opened::viewer);
        }
    };
    bool isViewerCoarse() const { return Opened::viewerOf(*window).isDrawnCoarsely(); }
};

TEST_F(CoarseWindowTest, AStyleThatIsChangedIsDrawnSoAndThenFinely)
{
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.1 0\n1 0 0\n", "rod.txt"));
    ASSERT_TRUE(comesToBePainted());
    for (const auto& [name, value] : {std::pair("radius", "0.2"), {"tube-colour", "red"}}) {
        StyleRequest style = window->getStyle();
        ASSERT_EQ(settingOf(name).read(value, style), "");
        bool isShown = false;
        const auto watch =
            QObject::connect(window.get(), &MainWindow::styleShown, [this, &isShown] {
                isShown = true;
                EXPECT_TRUE(isViewerCoarse());
                EXPECT_TRUE(scene->isDrawnCoarsely());
            });
        SCOPED_TRACE(name);
        window->setStyle(style);
        EXPECT_TRUE(comesTo([&isShown] { return isShown; }));
        EXPECT_TRUE(window->isRestyling());
        EXPECT_TRUE(comesTo([this] { return !window->isRestyling(); }));
        EXPECT_FALSE(isViewerCoarse());
        EXPECT_FALSE(scene->isDrawnCoarsely());
        QObject::disconnect(watch);
    }
}

TEST_F(CoarseWindowTest, AStyleThatIsAskedForIsDrawnOnceItIsThereAndNotBefore)
{
    ASSERT_NO_FATAL_FAILURE(openText(coil(1500), "coil.txt"));
    ASSERT_TRUE(comesToBePainted());
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    ASSERT_TRUE(comesToBePainted());
    int drawnBefore = 0;
    bool isShown = false;
    QObject::connect(window.get(), &MainWindow::styleShown, [&isShown] { isShown = true; });
    QObject::connect(window.get(), &MainWindow::frameDrawn, [&] { drawnBefore += !isShown; });
    StyleRequest style = window->getStyle();
    style.tubeColour = {1, 0, 0};
    window->setStyle(style);
    ASSERT_TRUE(comesTo([&isShown] { return isShown; }));
    EXPECT_EQ(drawnBefore, 0);
}

TEST_F(CoarseWindowTest, MuchDataBeginSoAndKeepTheirRowsLeftOutWhereSoftwareDraws)
{
    for (const char* const scalar : {"", "arclength"}) {
        if (*scalar)
            options.colourBy = scalar;
        ASSERT_NO_FATAL_FAILURE(openText(coil(20000), "coil.txt"));
        EXPECT_TRUE(takesLong(*scene));
        EXPECT_TRUE(window->isRestyling());
        ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
        EXPECT_FALSE(isViewerCoarse()) << "its edges are smooth";
        EXPECT_EQ(scene->isDrawnCoarsely(), Opened::viewerOf(*window).isDrawnBySoftware());
    }
}

TEST_F(CoarseWindowTest, MuchDataBesideFewAreDrawnAsTheyAskFor)
{
    options.beside = besideOf({folder.write("many.txt", coil(1500))});
    ASSERT_NO_FATAL_FAILURE(openText(coil(20), "few.txt"));
    ASSERT_TRUE(comesTo([this] { return sceneBeside() && window->isRestyling(); }));
    ASSERT_TRUE(takesLong(*sceneBeside()));
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    EXPECT_EQ(sceneBeside()->isDrawnCoarsely(), Opened::viewerOf(*window).isDrawnBySoftware());
    EXPECT_FALSE(scene->isDrawnCoarsely());
}

TEST_F(CoarseWindowTest, FewDataBeginFinely)
{
    ASSERT_NO_FATAL_FAILURE(openText(coil(20), "coil.txt"));
    EXPECT_FALSE(takesLong(*scene));
    EXPECT_FALSE(window->isRestyling());
    EXPECT_FALSE(isViewerCoarse());
    EXPECT_FALSE(scene->isDrawnCoarsely());
}

TEST_F(CoarseWindowTest, FurtherViewsAreDrawnFinelyOneAfterTheOther)
{
    options.beside = fourOfTheSame();
    ASSERT_NO_FATAL_FAILURE(openText(coil(100), "coil.txt"));
    const auto countCoarse = [this] {
        const auto& views = window->getSideBySide().getViews();
        return std::count_if(views.begin(), views.end(), [](const BesideView* view) {
            return view->getViewer().isDrawnCoarsely();
        });
    };
    ASSERT_TRUE(comesTo([this] { return sceneBeside(2) && !window->isRestyling(); }));
    EXPECT_EQ(countCoarse(), 0);
    auto& all =
        *dynamic_cast<SideBySide*>(window->getSideBySide().getViews().front()->parentWidget());
    all.drawCoarsely(true);
    EXPECT_EQ(countCoarse(), 3);
    all.drawCoarsely(false);
    EXPECT_EQ(countCoarse(), 3) << "the first view's frame comes first";
    std::set<long> seen;
    ASSERT_TRUE(comesTo([&] {
        seen.insert(countCoarse());
        return !window->isRestyling();
    }));
    EXPECT_THAT(seen, ElementsAre(0, 1, 2, 3));
}

TEST_F(CoarseWindowTest, PicturesHaveAllRowsAllTheSame)
{
    options.camera.side = Side::Z;
    ASSERT_NO_FATAL_FAILURE(openText(coil(20000), "coil.txt"));
    const auto save = [this](bool coarse) {
        scene->drawCoarsely(coarse);
        const QString name =
            QString::fromStdString(folder.path(coarse ? "coarse.png" : "fine.png"));
        window->savePicture(name);
        return QImage(name);
    };
    const QImage fine = save(false);
    ASSERT_FALSE(fine.isNull());
    EXPECT_TRUE(save(true) == fine);
}

TEST_F(CoarseWindowTest, ABackgroundIsShownAtOnceAndNothingElseIsDoneForIt)
{
    ASSERT_NO_FATAL_FAILURE(openText("-1 0 0\n0 0.1 0\n1 0 0\n", "rod.txt"));
    ASSERT_TRUE(comesToBePainted());
    StyleRequest style = window->getStyle();
    style.background = {0, 0, 1};
    bool isShown = false;
    QObject::connect(window.get(), &MainWindow::styleShown, [&isShown] { isShown = true; });
    window->setStyle(style);
    EXPECT_TRUE(isShown) << "without waiting for another thread";
    ASSERT_TRUE(comesToBePainted());
    EXPECT_EQ(screen().pixelColor(5, 5), QColor(Qt::blue));
    EXPECT_TRUE(window->getStyle() == style);
}

} // namespace

} // namespace strandview
