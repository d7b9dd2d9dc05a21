// SPDX-License-Identifier: GPL-3.0-or-later
// The list of what is shown as the user of a window sees it: with the X server's keys and mouse.
#include "window/ThingsPanel.h"

#include <functional>
#include <string>

#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QLineEdit>
#include <QMenu>
#include <QPixmap>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "support/keepPictures.h"
#include "support/realInput.h"
#include "window/PlacePanel.h"
#include "window/Player.h"
#include "window/ThingsModel.h"

namespace strandview {

using testing::HasSubstr;
using testing::Not;

namespace {

std::string rodAt(double y, const char* colour)
{
    const std::string height = std::to_string(y);
    return R"({"points": [[0, )" + height + R"(, 0], [1, )" + height + R"(, 0], [2, )" + height +
           R"(, 0]], "colour": ")" + colour + R"("})";
}

// Two rods along x, one of that colour and a blue one, `apart` from each other.
std::string twoRods(double apart, const char* colour = "#ff0000")
{
    return R"("rods": [)" + rodAt(0, colour) + ", " + rodAt(apart, "#0000ff") + "]";
}

std::string fileOf(const std::string& members) { return R"({"strandview": 1, )" + members + "}"; }

// Of frames that have two rods each, which part; of so many one rod alone from then on.
std::string seriesOf(int frames, int framesOfOne = 0)
{
    std::string text;
    for (int i = 0; i < frames + framesOfOne; ++i) {
        text += text.empty() ? "{" : ",\n{";
        text += (i < frames ? twoRods(1 + 0.5 * i / frames)
                            : R"("rods": [)" + rodAt(0, "#ff0000") + "]") +
                "}";
    }
    return fileOf(R"("series": [)" + text + "]");
}

bool isRed(const QColor& c) { return c.red() > 100 && c.green() < 60 && c.blue() < 60; }
bool isBlue(const QColor& c) { return c.blue() > 100 && c.green() < 60 && c.red() < 60; }
bool isGreen(const QColor& c) { return c.green() > 100 && c.blue() < 60 && c.red() < 60; }

class ThingsPanelTest : public DataWindowTest
{
protected:
    ThingsPanelTest()
    {
        options.windowSize = {900, 520};
        options.radius = 0.2;
        options.showRibbon = false;
        options.camera.side = Side::Z;
    }

    void openWithList(const std::string& text)
    {
        openText(text, "rods.json");
        pressRealKey("t");
        ASSERT_TRUE(comesTo([this] { return list()->isVisible(); }));
        ASSERT_TRUE(comesTo([this] { return has(isRed) && has(isBlue); }));
    }
    void openRods(double apart) { openWithList(fileOf(twoRods(apart))); }
    void openSeries(int frames, int framesOfOne = 0)
    {
        openWithList(seriesOf(frames, framesOfOne));
        ASSERT_NE(player(), nullptr);
        ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    }

    QTreeView* list() const { return window->findChild<QTreeView*>("thingsList"); }
    std::string name(int row) const
    {
        return list()->model()->index(row, ThingsModel::NAME).data().toString().toStdString();
    }
    QPoint placeOf(int row, int column) const
    {
        return list()->visualRect(list()->model()->index(row, column)).center();
    }
    void clickRow(int row) const { click(*list()->viewport(), placeOf(row, ThingsModel::NAME)); }
    void clickTick(int row) const
    {
        const QRect cell = list()->visualRect(list()->model()->index(row, ThingsModel::NAME));
        click(*list()->viewport(), {cell.left() + 10, cell.center().y()});
    }
    void doubleClick(int row, int column) const
    {
        const QPoint place = list()->viewport()->mapToGlobal(placeOf(row, column));
        doubleClickRealButton(place.x(), place.y());
    }
    void press(const char* button) const { click(*window->findChild<QPushButton*>(button)); }
    // Types over a name.
    void rename(int row, const std::string& letters) const
    {
        doubleClick(row, ThingsModel::NAME);
        ASSERT_TRUE(comesTo([this] { return editor() && editor()->hasFocus(); }));
        for (const char letter : letters)
            pressRealKey(std::string(1, letter));
        pressRealKey("Return");
    }
    QLineEdit* editor() const { return list()->viewport()->findChild<QLineEdit*>(); }
    // The open menu of a row.
    QMenu* menuOf(int row) const
    {
        const QPoint place = list()->viewport()->mapToGlobal(placeOf(row, ThingsModel::NAME));
        clickRealRightButton(place.x(), place.y());
        const auto menu = [] { return qobject_cast<QMenu*>(QApplication::activePopupWidget()); };
        return comesTo([&] { return menu() != nullptr; }) ? menu() : nullptr;
    }
    // By a click.
    static void choose(QMenu& menu, const QString& text)
    {
        for (QAction* action : menu.actions()) {
            if (action->text() == text)
                click(menu, menu.actionGeometry(action).center());
        }
    }

    // Whether the view shows such a colour.
    bool has(bool (*holds)(const QColor&)) const
    {
        const QImage shown = screen();
        return countPixels(
                   shown.copy(0, 0, shown.width() - 100, shown.height()), // without the axes
                   holds) > 100;
    }
    bool comesToHave(bool red, bool blue) const
    {
        return comesTo([=] { return has(isRed) == red && has(isBlue) == blue; });
    }
};

} // namespace

TEST_F(ThingsPanelTest, HasARowForEachThingByItsName)
{
    openRods(1);
    EXPECT_EQ(list()->model()->rowCount(), 2);
    EXPECT_EQ(name(0), file + ": rods[0]");
    EXPECT_EQ(name(1), file + ": rods[1]");
    pressRealKey("t");
    EXPECT_TRUE(comesTo([this] { return !list()->isVisible(); }));
}

TEST_F(ThingsPanelTest, ATickHidesAThingAndShowsItAgain)
{
    openRods(1);
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
    openRods(1);
    clickTick(1);
    ASSERT_TRUE(comesToHave(true, false));
    folder.write("rods.json", fileOf(twoRods(0.8, "#00ff00")));
    pressRealKey("F5");
    ASSERT_TRUE(comesTo([this] { return has(isGreen) && !has(isRed); }));
    EXPECT_FALSE(has(isBlue));
    clickTick(1);
    EXPECT_TRUE(comesTo([this] { return has(isGreen) && has(isBlue); }));
}

TEST_F(ThingsPanelTest, ADoubleClickEditsANameByWhichPicksAreToldThen)
{
    openRods(1);
    rename(0, "arm");
    EXPECT_TRUE(comesTo([this] { return name(0) == "arm"; }));
    EXPECT_TRUE(list()->isVisible()) << "letters are no keys of the window there";
    const QPoint place = onScreen(1, 0);
    clickRealRightButton(place.x(), place.y());
    EXPECT_TRUE(comesTo([this] { return statusText().find(" – arm") != std::string::npos; }));
}

TEST_F(ThingsPanelTest, ANameIsTypedWhileFramesArePlayed)
{
    openSeries(2000);
    pressRealKey("k");
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() > 0; }));
    doubleClick(0, ThingsModel::NAME);
    ASSERT_TRUE(comesTo([this] { return editor() && editor()->hasFocus(); }));
    const QPointer<QLineEdit> edited = editor();
    for (const char* key : {"a", "r", "m"}) {
        const std::size_t before = player()->getFrame();
        ASSERT_TRUE(comesTo([&] { return player()->getFrame() > before + 1; }));
        pressRealKey(key);
    }
    ASSERT_TRUE(comesTo([&] { return !edited || edited->text() == "arm"; }));
    const std::size_t before = player()->getFrame();
    ASSERT_TRUE(comesTo([&] { return player()->getFrame() > before + 1; }));
    ASSERT_TRUE(edited);
    pressRealKey("Return");
    EXPECT_TRUE(comesTo([this] { return name(0) == "arm"; }));
}

TEST_F(ThingsPanelTest, AWindowIsGoneWhileANameIsTyped)
{
    openRods(1);
    doubleClick(0, ThingsModel::NAME);
    ASSERT_TRUE(comesTo([this] { return editor() && editor()->hasFocus(); }));
    pressRealKey("a");
    ASSERT_TRUE(comesTo([this] { return editor()->text() == "a"; }));
    const QPointer<QLineEdit> edited = editor();
    window.reset();
    EXPECT_FALSE(edited);
}

TEST_F(ThingsPanelTest, AnEditorThatIsLeftAsItWasGivesNoName)
{
    openSeries(2);
    doubleClick(0, ThingsModel::NAME);
    ASSERT_TRUE(comesTo([this] { return editor() && editor()->hasFocus(); }));
    player()->goTo(1);
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 1; }));
    pressRealKey("Return");
    ASSERT_TRUE(comesTo([this] { return !editor(); }));
    EXPECT_EQ(name(0), file + ": series[1].rods[0]");
}

TEST_F(ThingsPanelTest, ThePanelOfNumbersTellsTheNameOfTheFrameThatIsShown)
{
    openSeries(2);
    pressRealKey("n");
    auto* const numbers = window->findChild<PlacePanel*>();
    ASSERT_TRUE(comesTo([&] { return numbers->isVisible(); }));
    ASSERT_TRUE(comesToBePainted());
    const auto comesToTell = [&](const std::string& text) {
        return comesTo([&] { return numbers->getText().contains(QString::fromStdString(text)); });
    };
    click(1, 0);
    EXPECT_TRUE(comesToTell("from\t" + file + ": series[0].rods[0]\n"));
    pressRealKey("Control+End");
    EXPECT_TRUE(comesToTell("from\t" + file + ": series[1].rods[0]\n"));
    rename(0, "arm");
    EXPECT_TRUE(comesToTell("from\tarm\n"));
    pressRealKey("Control+Home");
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 0; }));
    EXPECT_TRUE(comesToTell("from\tarm\n"));
}

TEST_F(ThingsPanelTest, TheColourOfWhatIsChosenIsSeen)
{
    openRods(1);
    clickRow(0);
    ASSERT_TRUE(comesTo([this] { return list()->currentIndex().row() == 0; }));
    const auto isPureRed = [](const QColor& c) { return c == QColor(255, 0, 0); };
    QTest::qWait(200); // until the choice is drawn
    const QWidget& rows = *list()->viewport();
    const QImage shown = keepIfFailed(rows.screen()->grabWindow(rows.winId()).toImage());
    const QRect cell = list()->visualRect(list()->model()->index(0, ThingsModel::COLOUR));
    EXPECT_GT(countPixels(shown.copy(cell), isPureRed), 200);
}

TEST_F(ThingsPanelTest, TheMenuOfAThingThatIsGoneDoesNothing)
{
    openSeries(2, 1);
    for (const char* text : {"Centre the view on it", "Rename", "Colour..."}) {
        QMenu* const menu = menuOf(1);
        ASSERT_NE(menu, nullptr);
        player()->goTo(2);
        ASSERT_TRUE(comesTo([this] { return list()->model()->rowCount() == 1; }));
        const CameraNumbers before = window->getCameraNumbers();
        choose(*menu, text);
        ASSERT_TRUE(comesTo([] { return !QApplication::activePopupWidget(); })) << text;
        QTest::qWait(100);
        EXPECT_EQ(editor(), nullptr);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_TRUE(window->getCameraNumbers() == before);
        player()->goTo(0);
        ASSERT_TRUE(comesTo([this] { return list()->model()->rowCount() == 2; }));
    }
}

TEST_F(ThingsPanelTest, ADoubleClickOnAColourChoosesAnother)
{
    openRods(1);
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
    openRods(4);
    const CameraNumbers before = window->getCameraNumbers();
    clickRow(1);
    press("centreButton");
    ASSERT_TRUE(comesTo([&] { return window->getCameraNumbers().size < before.size; }));
    const CameraNumbers after = window->getCameraNumbers();
    EXPECT_EQ(after.orientation, before.orientation);
    EXPECT_NEAR(double(after.position[0]), 1, 0.05);
    EXPECT_NEAR(double(after.position[1]), 4, 0.3) << "its box has its hidden ribbon";
}

} // namespace strandview
