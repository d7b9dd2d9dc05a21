// SPDX-License-Identifier: GPL-3.0-or-later
// The list of what is shown as the user of a window sees it: with the X server's keys and mouse.
#include "window/ThingsPanel.h"

#include <algorithm>
#include <functional>
#include <memory>

#include <QApplication>
#include <QColorDialog>
#include <QGLWidget>
#include <QImage>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <gmock/gmock.h>

#include "programWindows.h"
#include "scene/DataScene.h"
#include "scene/SceneLoader.h"
#include "scene/readFiles.h"
#include "support/TemporaryFolder.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "window/MainWindow.h"
#include "window/Player.h"
#include "window/StatusText.h"
#include "window/ThingsModel.h"

namespace strandview {

namespace {

// Two rods along x, red and blue, `apart` from each other.
std::string twoRods(double apart)
{
    const std::string y = std::to_string(apart);
    return R"({"strandview": 1, "rods": [{"points": [[0, 0, 0], [1, 0, 0], [2, 0, 0]], "colour": "#ff0000"},
                        {"points": [[0, )" +
           y + R"(, 0], [1, )" + y + R"(, 0], [2, )" + y + R"(, 0]], "colour": "#0000ff"}]})";
}

bool isRed(const QColor& c) { return c.red() > 100 && c.green() < 60 && c.blue() < 60; }
bool isBlue(const QColor& c) { return c.blue() > 100 && c.green() < 60 && c.red() < 60; }
bool isGreen(const QColor& c) { return c.green() > 100 && c.blue() < 60 && c.red() < 60; }

class ThingsPanelTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initialiseProgramOnce("ThingsPanelTest"); }

    ThingsPanelTest()
    {
        QSettings().clear();
        options.windowSize = {900, 520};
        options.radius = 0.2;
        options.showRibbon = false;
        options.camera.side = Side::Z;
    }

    void open(const std::string& text)
    {
        file = folder.write("rods.json", text);
        window = std::make_unique<MainWindow>(
            options,
            [this](const std::vector<std::string>& files, const Options& /*asked*/,
                   ReadReport& report, Progress& progress) {
                return prepareScene(files, options, report, progress, Opening::AT_ONCE);
            },
            [this](const std::vector<std::string>& files, const Options& /*asked*/,
                   ReadReport& report, Progress& progress) {
                return moveFrames(
                    openFiles(files, options, report, progress, Opening::AT_ONCE).series, options);
            });
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        window->openFiles({QString::fromStdString(file)});
        ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
        pressRealKey("t");
        ASSERT_TRUE(comesTo([this] { return list()->isVisible(); }));
        ASSERT_TRUE(comesTo([this] { return has(isRed) && has(isBlue); }));
    }

    QTreeView* list() const { return window->findChild<QTreeView*>("thingsList"); }
    std::string name(int row) const
    {
        return list()->model()->index(row, ThingsModel::NAME).data().toString().toStdString();
    }
    QPoint onScreen(int row, int column) const
    {
        const QRect cell = list()->visualRect(list()->model()->index(row, column));
        return list()->viewport()->mapToGlobal(cell.center());
    }
    void clickTick(int row) const
    {
        const QRect cell = list()->visualRect(list()->model()->index(row, ThingsModel::NAME));
        const QPoint place =
            list()->viewport()->mapToGlobal(QPoint(cell.left() + 10, cell.center().y()));
        clickRealButton(place.x(), place.y());
    }
    void doubleClick(int row, int column) const
    {
        const QPoint place = onScreen(row, column);
        doubleClickRealButton(place.x(), place.y());
    }
    void press(const char* button) const
    {
        const auto* found = window->findChild<QPushButton*>(button);
        const QPoint place = found->mapToGlobal(found->rect().center());
        clickRealButton(place.x(), place.y());
    }

    // Whether the view shows such a colour.
    bool has(bool (*holds)(const QColor&)) const
    {
        const QWidget& view = *window->findChild<QGLWidget*>();
        const QImage shown = view.screen()->grabWindow(view.winId()).toImage();
        int pixels = 0;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width() - 100; ++x) // beside the axes
                pixels += holds(shown.pixelColor(x, y));
        return pixels > 100;
    }
    bool comesToHave(bool red, bool blue) const
    {
        return comesTo([=] { return has(isRed) == red && has(isBlue) == blue; });
    }

    const TemporaryFolder folder;
    std::string file;
    Options options;
    std::unique_ptr<MainWindow> window;
};

} // namespace

TEST_F(ThingsPanelTest, HasARowForEachThingByItsName)
{
    open(twoRods(1));
    EXPECT_EQ(list()->model()->rowCount(), 2);
    EXPECT_EQ(name(0), file + ": rods[0]");
    EXPECT_EQ(name(1), file + ": rods[1]");
    pressRealKey("t");
    EXPECT_TRUE(comesTo([this] { return !list()->isVisible(); }));
}

TEST_F(ThingsPanelTest, ATickHidesAThingAndShowsItAgain)
{
    open(twoRods(1));
    clickTick(0);
    EXPECT_TRUE(comesToHave(false, true));
    clickTick(0);
    EXPECT_TRUE(comesToHave(true, true));
    press("hideAllButton");
    EXPECT_TRUE(comesToHave(false, false));
    press("showAllButton");
    EXPECT_TRUE(comesToHave(true, true));
}

TEST_F(ThingsPanelTest, WhatIsHiddenStaysSoWhenTheFilesAreReadAgain)
{
    open(twoRods(1));
    clickTick(1);
    ASSERT_TRUE(comesToHave(true, false));
    folder.write("rods.json", twoRods(0.8));
    pressRealKey("F5");
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }));
    QTest::qWait(300);
    EXPECT_TRUE(comesToHave(true, false));
    clickTick(1);
    EXPECT_TRUE(comesToHave(true, true));
}

TEST_F(ThingsPanelTest, ADoubleClickEditsANameByWhichPicksAreToldThen)
{
    open(twoRods(1));
    doubleClick(0, ThingsModel::NAME);
    ASSERT_TRUE(comesTo([this] { return qApp->focusWidget()->inherits("QLineEdit"); }));
    pressRealKey("Control+a");
    for (const char* key : {"a", "r", "m", "Return"})
        pressRealKey(key);
    EXPECT_TRUE(comesTo([this] { return name(0) == "arm"; }));
    EXPECT_TRUE(list()->isVisible()) << "letters are no keys of the window there";
}

TEST_F(ThingsPanelTest, ADoubleClickOnAColourChoosesAnother)
{
    open(twoRods(1));
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [] {
        if (auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget())) {
            dialog->setCurrentColor(QColor(0, 255, 0));
            dialog->accept();
        }
    });
    answer.start(50);
    doubleClick(0, ThingsModel::COLOUR);
    EXPECT_TRUE(comesTo([this] { return has(isGreen) && !has(isRed) && has(isBlue); }));
}

TEST_F(ThingsPanelTest, AThingIsBroughtIntoTheMiddleWithoutTurningTheView)
{
    open(twoRods(4));
    const CameraNumbers before = window->getCameraNumbers();
    const QPoint place = onScreen(1, ThingsModel::NAME);
    clickRealButton(place.x(), place.y());
    press("centreButton");
    ASSERT_TRUE(comesTo([&] { return window->getCameraNumbers().size < before.size; }));
    const CameraNumbers after = window->getCameraNumbers();
    EXPECT_EQ(after.orientation, before.orientation);
    EXPECT_NEAR(double(after.position[0]), 1, 0.05);
    EXPECT_NEAR(double(after.position[1]), 4, 0.3) << "its box has its hidden ribbon";
}

} // namespace strandview
