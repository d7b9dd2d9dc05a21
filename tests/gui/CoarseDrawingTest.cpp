// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/CoarseDrawing.h"

#include <QTest>
#include <gtest/gtest.h>

#include <SoMeshShape.h>
#include <SoQtGeneralViewer.h>

#include "DataWindowTest.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "support/graph.h"

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

TEST_F(CoarseDrawingTest, LastsWhileItPlays)
{
    drawing.setPlaying(true);
    drawing.noteChange();
    QTest::qWait(500);
    EXPECT_TRUE(isCoarse);
    drawing.setPlaying(false);
    EXPECT_FALSE(isCoarse);
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
    bool isShapeCoarse() const
    {
        const auto shapes = allOf<SoMeshShape>(scene->getShown(0).at(0).group);
        EXPECT_FALSE(shapes.empty());
        return !shapes.empty() && shapes[0]->isDrawnCoarsely();
    }
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
                EXPECT_TRUE(isShapeCoarse());
            });
        SCOPED_TRACE(name);
        window->setStyle(style);
        EXPECT_TRUE(comesTo([&isShown] { return isShown; }));
        EXPECT_TRUE(window->isRestyling());
        EXPECT_TRUE(comesTo([this] { return !window->isRestyling(); }));
        EXPECT_FALSE(isViewerCoarse());
        EXPECT_FALSE(isShapeCoarse());
        QObject::disconnect(watch);
    }
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
