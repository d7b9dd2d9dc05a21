// SPDX-License-Identifier: GPL-3.0-or-later
// The list of what is shown as the user of a window sees it: with the X server's keys and mouse.
#include "window/ThingsPanel.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

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
#include "pureColours.h"
#include "request/settings.h"
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

// And a green one.
std::string threeRods()
{
    return R"("rods": [)" + rodAt(0, "#ff0000") + ", " + rodAt(1, "#0000ff") + ", " +
           rodAt(2, "#00ff00") + "]";
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
        ASSERT_TRUE(comesToRest());
    }
    // A panel slides into its place.
    bool comesToRest() const
    {
        QRect last;
        int same = 0;
        return comesTo([&] {
            const QRect now(list()->mapToGlobal({0, 0}), list()->size());
            same = std::exchange(last, now) == now ? same + 1 : 0;
            return same > 5;
        });
    }
    void openRods(double apart) { openWithList(fileOf(twoRods(apart))); }
    void openSeries(int frames, int framesOfOne = 0)
    {
        openWithList(seriesOf(frames, framesOfOne));
        ASSERT_NE(player(), nullptr);
        ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    }

    QTreeView* list() const { return window->findChild<QTreeView*>("thingsList"); }
    QModelIndex fileRow() const { return list()->model()->index(0, ThingsModel::NAME); }
    // Of a thing of the first file.
    QModelIndex rowOf(int row, int column = ThingsModel::NAME) const
    {
        return list()->model()->index(row, column, fileRow());
    }
    int rowCount() const { return list()->model()->rowCount(fileRow()); }
    std::string name(int row) const { return rowOf(row).data().toString().toStdString(); }
    std::string fullName(int row) const
    {
        return rowOf(row).data(Qt::ToolTipRole).toString().toStdString();
    }
    QPoint placeOf(int row, int column) const
    {
        return list()->visualRect(rowOf(row, column)).center();
    }
    void clickRow(int row) const { click(*list()->viewport(), placeOf(row, ThingsModel::NAME)); }
    void clickRowWith(const char* held, int row) const
    {
        const QPoint place = list()->viewport()->mapToGlobal(placeOf(row, ThingsModel::NAME));
        clickRealButtonWith(held, place.x(), place.y());
    }
    void clickTickOf(const QModelIndex& row) const
    {
        const QRect cell = list()->visualRect(row);
        click(*list()->viewport(), {cell.left() + 10, cell.center().y()});
    }
    void clickTick(int row) const { clickTickOf(rowOf(row)); }
    std::vector<int> chosenRows() const
    {
        std::vector<int> rows;
        for (int row = 0; row < rowCount(); ++row)
            if (list()->selectionModel()->isSelected(rowOf(row)))
                rows.push_back(row);
        return rows;
    }
    bool comesToChoose(const std::vector<int>& rows) const
    {
        return comesTo([&] { return chosenRows() == rows; });
    }
    // With clicks, one after the other.
    void choose(const std::vector<int>& rows) const
    {
        clickRow(rows.front());
        ASSERT_TRUE(comesTo([this] { return list()->hasFocus(); }));
        ASSERT_TRUE(comesToChoose({rows.front()}));
        for (std::size_t i = 1; i < rows.size(); ++i)
            clickRowWith("Control", rows[i]);
        ASSERT_TRUE(comesToChoose(rows));
    }
    void doubleClick(int row, int column) const
    {
        QTest::qWait(QApplication::doubleClickInterval()); // a click before is none of the two
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
    bool comesToHave(bool red, bool blue, bool green) const
    {
        return comesToHave(red, blue) && comesTo([=] { return has(isGreen) == green; });
    }
};

} // namespace

TEST_F(ThingsPanelTest, HasARowForEachFileAndBelowForEachThingInIt)
{
    openRods(1);
    EXPECT_EQ(list()->model()->rowCount(), 1);
    EXPECT_EQ(fileRow().data().toString().toStdString(), file);
    ASSERT_EQ(rowCount(), 2);
    EXPECT_EQ(name(0), "rods[0]");
    EXPECT_EQ(name(1), "rods[1]");
    EXPECT_EQ(fullName(1), file + ": rods[1]");
    EXPECT_FALSE(list()->visualRect(rowOf(1)).isEmpty()) << "unfolded";

    const std::string table = folder.write("rod.txt", "0 0 0\n1 0 0\n1 1 0\n");
    window->openFiles({QString::fromStdString(table), QString::fromStdString(file)});
    ASSERT_TRUE(comesTo([this] { return list()->model()->rowCount() == 2; }));
    EXPECT_EQ(fileRow().data().toString().toStdString(), table);
    EXPECT_EQ(rowCount(), 1);
    EXPECT_EQ(name(0), "rod 1");
    EXPECT_EQ(fullName(0), table + ":1: rod 1");
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
    clickTickOf(fileRow());
    EXPECT_TRUE(comesToHave(false, false));
    clickTick(1);
    EXPECT_TRUE(comesToHave(false, true));
    EXPECT_EQ(fileRow().data(Qt::CheckStateRole), Qt::PartiallyChecked);
    clickTickOf(fileRow());
    EXPECT_TRUE(comesToHave(true, true));
}

TEST_F(ThingsPanelTest, SeveralAreChosenWithCtrlAndShiftAndHiddenAtOnce)
{
    openWithList(fileOf(threeRods()));
    clickRow(0);
    EXPECT_TRUE(comesToChoose({0}));
    clickRowWith("Shift", 2);
    EXPECT_TRUE(comesToChoose({0, 1, 2}));
    clickRowWith("Control", 1);
    ASSERT_TRUE(comesToChoose({0, 2}));
    clickTick(0);
    EXPECT_TRUE(comesToHave(false, true, false));
    EXPECT_EQ(chosenRows(), std::vector<int>({0, 2}));
    clickTick(1); // beside what is chosen
    EXPECT_TRUE(comesToHave(false, false, false));
    clickTick(2);
    EXPECT_TRUE(comesToHave(true, false, true));
}

TEST_F(ThingsPanelTest, WhatIsChangedIsAPartOfTheStyleThatIsAskedFor)
{
    openRods(1);
    const SoNode* const node = scene->getShown(0)[0].node;
    clickTick(0);
    ASSERT_TRUE(comesToHave(false, true));
    EXPECT_EQ(settingOf("thing").write(window->getStyle()), "rod 1: hidden");
    rename(1, "arm");
    EXPECT_TRUE(comesTo([this] {
        return settingOf("thing").write(window->getStyle()) == "rod 1: hidden; rod 2: name=arm";
    }));
    press("hideAllButton");
    ASSERT_TRUE(comesToHave(false, false));
    EXPECT_EQ(settingOf("thing").write(window->getStyle()), "rod 2: name=arm; others: hidden");
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    EXPECT_EQ(scene->getShown(0)[0].node, node) << "no node is new";
}

TEST_F(ThingsPanelTest, AStyleHidesNamesAndColoursThingsAndTakesItBack)
{
    openRods(1);
    setThings("rod 1: hidden; rod 2: colour=#00ff00, name=arm");
    EXPECT_TRUE(comesToHave(false, false, true));
    EXPECT_EQ(name(1), "arm");
    EXPECT_EQ(rowOf(0).data(Qt::CheckStateRole), Qt::Unchecked);
    setThings("");
    EXPECT_TRUE(comesToHave(true, true, false));
    EXPECT_EQ(name(1), "rods[1]");
}

TEST_F(ThingsPanelTest, OtherFilesHaveNothingOfIt)
{
    openRods(1);
    clickTick(0);
    ASSERT_TRUE(comesToHave(false, true));
    window->openFiles({QString::fromStdString(folder.write("other.json", fileOf(twoRods(0.9))))});
    EXPECT_TRUE(comesToHave(true, true));
    EXPECT_EQ(settingOf("thing").write(window->getStyle()), std::nullopt);
}

TEST_F(ThingsPanelTest, WhatIsChosenIsShownAlone)
{
    openWithList(fileOf(threeRods()));
    press("onlyButton");
    QTest::qWait(200);
    EXPECT_TRUE(has(isRed)) << "nothing is chosen";
    choose({0, 2});
    press("onlyButton");
    EXPECT_TRUE(comesToHave(true, false, true));
    choose({1});
    press("onlyButton");
    EXPECT_TRUE(comesToHave(false, true, false));
    press("showAllButton");
    EXPECT_TRUE(comesToHave(true, true, true));
}

TEST_F(ThingsPanelTest, WhatComesInOtherFramesIsHiddenBesideWhatIsShownAlone)
{
    openSeries(1, 1);
    pressRealKey("Control+End");
    ASSERT_TRUE(comesToHave(true, false));
    choose({0});
    press("onlyButton");
    QTest::qWait(100);
    pressRealKey("Control+Home");
    ASSERT_TRUE(comesTo([this] { return rowCount() == 2; }));
    QTest::qWait(200);
    EXPECT_TRUE(comesToHave(true, false));
    EXPECT_EQ(rowOf(1).data(Qt::CheckStateRole), Qt::Unchecked);
    press("showAllButton");
    EXPECT_TRUE(comesToHave(true, true));
}

TEST_F(ThingsPanelTest, WhatIsDeletedFromViewHasNoRowUntilAllIsShown)
{
    openWithList(fileOf(threeRods()));
    choose({0, 1});
    pressRealKey("Delete");
    EXPECT_TRUE(comesToHave(false, false, true));
    ASSERT_EQ(rowCount(), 1);
    EXPECT_EQ(name(0), "rods[2]");
    folder.write("rods.json", fileOf(threeRods() + R"(, "frames": [{"point": [0, 3, 0],
                                                   "quaternion": [0, 0, 0, 1], "size": 0.1}])"));
    pressRealKey("F5");
    ASSERT_TRUE(comesTo([this] { return rowCount() == 2; }));
    EXPECT_EQ(name(1), "frames[0]");
    QTest::qWait(100);
    EXPECT_TRUE(comesToHave(false, false, true));
    clickTick(0);
    EXPECT_TRUE(comesToHave(false, false, false));
    press("showAllButton");
    EXPECT_TRUE(comesToHave(true, true, true));
    EXPECT_EQ(rowCount(), 4);
}

TEST_F(ThingsPanelTest, WhatIsHiddenAndWhatIsChosenStaysSoInOtherFrames)
{
    openSeries(2, 1);
    clickTick(0);
    ASSERT_TRUE(comesToHave(false, true));
    choose({0});
    pressRealKey("Control+End"); // there the other rod is no more
    ASSERT_TRUE(comesTo([this] { return rowCount() == 1; }));
    QTest::qWait(200);
    EXPECT_TRUE(comesToHave(false, false));
    EXPECT_EQ(chosenRows(), std::vector<int>({0}));
    clickTick(0);
    EXPECT_TRUE(comesToHave(true, false));
    pressRealKey("Control+Home");
    ASSERT_TRUE(comesTo([this] { return rowCount() == 2; }));
    EXPECT_TRUE(comesToHave(true, true));
    EXPECT_EQ(chosenRows(), std::vector<int>({0}));
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

// What is chosen in the view

TEST_F(ThingsPanelTest, WhatIsChosenHasAnOutlineInTheViewAndInNoPicture)
{
    openRods(1);
    const auto picture = [this](const char* name) {
        window->savePicture(QString::fromStdString(folder.path(name)));
        return keepIfFailed(QImage(QString::fromStdString(folder.path(name))));
    };
    const QImage before = picture("before.png");
    const int red = countPixels(screen(), isRed);
    EXPECT_EQ(countPixels(screen(), isYellow), 0);
    choose({0});
    const auto comesToBeOutlined = [this](bool outlined) {
        return comesTo([=] { return (countPixels(screen(), isYellow) > 300) == outlined; });
    };
    EXPECT_TRUE(comesToBeOutlined(true));
    EXPECT_NEAR(countPixels(screen(), isRed), red, 0.02 * red);
    ASSERT_FALSE(before.isNull());
    EXPECT_EQ(picture("after.png"), before);

    clickTick(0);
    EXPECT_TRUE(comesToBeOutlined(false));
    clickTick(0);
    EXPECT_TRUE(comesToBeOutlined(true));
    view()->setFocus();
    pressRealKey("t");
    EXPECT_TRUE(comesToBeOutlined(false));
    pressRealKey("t");
    EXPECT_TRUE(comesToBeOutlined(true));
    const CameraNumbers seen = window->getCameraNumbers();
    pressRealKey("plus"); // in another view, too
    pressRealKey("x");
    ASSERT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == seen); }));
    EXPECT_TRUE(comesToBeOutlined(true));
    pressRealKey("Delete");
    EXPECT_EQ(rowCount(), 2) << "the view has the keyboard";
    choose({0});
    pressRealKey("Delete");
    EXPECT_TRUE(comesToBeOutlined(false));
}

TEST_F(ThingsPanelTest, TheOutlineFollowsWhatItIsAroundThroughTheFrames)
{
    openSeries(2, 1);
    choose({1});
    const auto top = [this] { // the first row that has some of it
        const QImage shown = screen();
        for (int y = 0; y < shown.height(); ++y)
            if (countPixels(shown.copy(0, y, shown.width(), 1), isYellow) > 0)
                return y;
        return -1;
    };
    ASSERT_TRUE(comesTo([&] { return top() > 0; }));
    const int first = top();
    player()->goTo(1); // the rod is higher there
    EXPECT_TRUE(comesTo([&] { return top() > 0 && top() < first - 5; })) << top() << " " << first;
    player()->goTo(2); // and no more there
    EXPECT_TRUE(comesTo([&] { return top() == -1; }));
}

TEST_F(ThingsPanelTest, AClickInTheViewChoosesAThingAndWithShiftSeveral)
{
    openRods(1);
    const CameraNumbers before = window->getCameraNumbers();
    click(1, 1);
    ASSERT_TRUE(comesToChoose({1}));
    EXPECT_TRUE(comesTo([this] { return statusText().find("rods[1]") != std::string::npos; }));
    click(1, 0);
    ASSERT_TRUE(comesToChoose({0}));
    shiftClick(1, 1);
    ASSERT_TRUE(comesToChoose({0, 1}));
    shiftClick(1, 0);
    ASSERT_TRUE(comesToChoose({1}));
    shiftClick(1, 0.5); // beside both
    QTest::qWait(100);
    EXPECT_EQ(chosenRows(), std::vector<int>({1}));
    click(1, 0.5);
    EXPECT_TRUE(comesToChoose({}));
    EXPECT_TRUE(window->getCameraNumbers() == before);
}

TEST_F(ThingsPanelTest, AClickInTheViewTurnsItAloneWhileThePanelIsClosed)
{
    openRods(1);
    click(1, 1);
    ASSERT_TRUE(comesToChoose({1}));
    pressRealKey("t");
    ASSERT_TRUE(comesTo([this] { return !list()->isVisible(); }));
    ASSERT_TRUE(comesToBePainted());
    click(1, 0);
    QTest::qWait(200);
    EXPECT_EQ(chosenRows(), std::vector<int>({1}));
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
    EXPECT_EQ(name(0), "series[1].rods[0]");
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
    ASSERT_TRUE(comesTo([this] { return list()->currentIndex() == rowOf(0); }));
    const auto isPureRed = [](const QColor& c) { return c == QColor(255, 0, 0); };
    QTest::qWait(200); // until the choice is drawn
    const QWidget& rows = *list()->viewport();
    const QImage shown = keepIfFailed(rows.screen()->grabWindow(rows.winId()).toImage());
    const QRect cell = list()->visualRect(rowOf(0, ThingsModel::COLOUR));
    EXPECT_GT(countPixels(shown.copy(cell), isPureRed), 200);
}

TEST_F(ThingsPanelTest, TheMenuOfAThingThatIsGoneDoesNothing)
{
    openSeries(2, 1);
    for (const char* text :
         {"Centre the view on it", "Hide", "Rename", "Colour...", "Delete from view"}) {
        QMenu* const menu = menuOf(1);
        ASSERT_NE(menu, nullptr);
        player()->goTo(2);
        ASSERT_TRUE(comesTo([this] { return rowCount() == 1; }));
        const CameraNumbers before = window->getCameraNumbers();
        choose(*menu, text);
        ASSERT_TRUE(comesTo([] { return !QApplication::activePopupWidget(); })) << text;
        QTest::qWait(100);
        EXPECT_EQ(editor(), nullptr);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_TRUE(window->getCameraNumbers() == before);
        player()->goTo(0);
        ASSERT_TRUE(comesTo([this] { return rowCount() == 2; }));
    }
}

TEST_F(ThingsPanelTest, ADoubleClickOnAColourChoosesAnother)
{
    openRods(1);
    QTimer answer;
    bool isAnswered = false;
    QObject::connect(&answer, &QTimer::timeout, [&] {
        if (auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget())) {
            dialog->setCurrentColor(QColor(0, 255, 0));
            dialog->accept();
            isAnswered = true;
        }
    });
    answer.start(50);
    doubleClick(0, ThingsModel::COLOUR);
    ASSERT_TRUE(comesTo([&] { return isAnswered; }));
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

TEST_F(ThingsPanelTest, ViewAllAndTheBeginningShowWhatIsNotHidden)
{
    openRods(4);
    const CameraNumbers before = window->getCameraNumbers();
    clickTick(1);
    ASSERT_TRUE(comesToHave(true, false));
    EXPECT_EQ(window->getCameraNumbers(), before) << "nobody asked";
    view()->setFocus();
    ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    pressRealKey("v");
    ASSERT_TRUE(comesTo([&] { return window->getCameraNumbers().size < before.size; }));
    const CameraNumbers fitted = window->getCameraNumbers();
    EXPECT_NEAR(double(fitted.position[1]), 0, 0.3);
    pressRealKey("d");
    ASSERT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == fitted); }));
    pressRealKey("Home");
    EXPECT_TRUE(comesTo([&] { return window->getCameraNumbers() == fitted; }));
}

} // namespace strandview
