// SPDX-License-Identifier: GPL-3.0-or-later
// The rows of strands in the tree of what is shown, and the look of those that are chosen there, as
// the user of a window sees them: with the X server's keys and mouse.
#include <optional>
#include <string>
#include <vector>

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSlider>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "pureColours.h"
#include "request/settings.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "window/History.h"
#include "window/ThingsModel.h"
#include "window/ThingsPanel.h"

namespace strandview {

using testing::HasSubstr;

namespace {

// Along x.
std::string curveAt(double y)
{
    const std::string height = std::to_string(y);
    const std::string frame = "[0, 0.7071067811865476, 0, 0.7071067811865476]";
    return R"({"points": [[0, )" + height + ", 0], [1, " + height + ", 0], [2, " + height +
           R"(, 0]], "quaternions": [)" + frame + ", " + frame + ", " + frame + "]}";
}

// Strand 1 above, strand 2 below, and the average between them.
std::string birod()
{
    return R"({"strandview": 1, "birods": [{"average": )" + curveAt(0) + R"(, "strand1": )" +
           curveAt(1) + R"(, "strand2": )" + curveAt(-1) + "}]}";
}

const char* const COLOURS = "birod 1 strand 1: colour=#ff0000; birod 1 strand 2: colour=#0000ff; "
                            "birod 1 average: colour=#00ff00";

const std::size_t BIRODS = 1; // the kind, as they are drawn

enum PartRow { STRAND_1, STRAND_2, AVERAGE, PARTS };

class StrandRowsTest : public DataWindowTest
{
protected:
    StrandRowsTest()
    {
        options.windowSize = {900, 520};
        options.radius = 0.2;
        options.showRibbon = false;
        options.camera.side = Side::Z;
    }

    void openUnfolded()
    {
        ASSERT_NO_FATAL_FAILURE(openText(birod(), "pair.json"));
        setThings(COLOURS);
        pressRealKey("t");
        ASSERT_TRUE(comesTo([this] { return list()->isVisible(); }));
        list()->expand(thing());
        ASSERT_TRUE(comesTo([this] { return shows(true, true, true); }));
        QTest::qWait(500); // until the panel has slid into its place
    }

    QTreeView* list() const { return window->findChild<QTreeView*>("thingsList"); }
    QModelIndex thing(int column = ThingsModel::NAME) const
    {
        return list()->model()->index(0, column, list()->model()->index(0, ThingsModel::NAME));
    }
    QModelIndex row(int part, int column = ThingsModel::NAME) const
    {
        return list()->model()->index(part, column, thing());
    }
    std::string name(const QModelIndex& of) const { return of.data().toString().toStdString(); }
    void clickTick(const QModelIndex& of) const
    {
        const QRect cell = list()->visualRect(of);
        click(*list()->viewport(), {cell.left() + 10, cell.center().y()});
    }
    void clickRow(const QModelIndex& of) const
    {
        click(*list()->viewport(), list()->visualRect(of).center());
        ASSERT_TRUE(comesToChoose(of));
    }
    void press(const char* button) const { click(*window->findChild<QPushButton*>(button)); }
    bool comesToChoose(const QModelIndex& of) const
    {
        return comesTo(
            [&] { return list()->selectionModel()->selectedRows() == QModelIndexList({of}); });
    }
    // Strand 1, strand 2, average.
    bool shows(bool red, bool blue, bool green) const
    {
        const QImage all = screen(), shown = all.copy(0, 0, all.width() - 100, all.height());
        const auto has = [&](bool (*holds)(const QColor&)) {
            return countPixels(shown, holds) > 100;
        };
        return has(isRed) == red && has(isBlue) == blue && has(isGreen) == green;
    }
    bool comesToShow(bool red, bool blue, bool green) const
    {
        return comesTo([=] { return shows(red, blue, green); });
    }
    // Of what is chosen, where its panel shows the control of that name.
    void openLook(const char* control) const
    {
        pressRealKey("Escape"); // to the view
        pressRealKey("o");
        auto* const whose = window->findChild<QComboBox*>("lookOf");
        ASSERT_TRUE(comesTo([&] { return whose->isVisible(); }));
        whose->setFocus();
        ASSERT_TRUE(comesTo([&] { return whose->hasFocus(); }));
        pressRealKey("Down");
        ASSERT_TRUE(comesTo([&] { return whose->currentIndex() == 1; }));
        window->findChild<QWidget*>("lookPanel")
            ->findChild<QScrollArea*>()
            ->ensureWidgetVisible(window->findChild<QWidget*>(control));
        QTest::qWait(500); // until the panel has slid into its place
        ASSERT_TRUE(comesToBePainted());
    }
    QLineEdit* field(const char* name) const { return window->findChild<QLineEdit*>(name); }
    void typeInto(const char* name, const std::vector<std::string>& keys) const
    {
        field(name)->setFocus();
        ASSERT_TRUE(comesTo([&] { return field(name)->hasFocus(); }));
        pressRealKey("Control+a");
        for (const std::string& key : keys)
            pressRealKey(key);
        pressRealKey("Return");
        ASSERT_TRUE(comesToBeRestyled());
    }
    bool comesToBeRestyled() const
    {
        return comesTo([this] { return !window->isRestyling(); }) && comesToBePainted();
    }
    int count(bool (*holds)(const QColor&)) const { return countPixels(screen(), holds); }
    // Until what is changed next is taken back by itself.
    static void waitForNextStep() { QTest::qWait(int(History::TOGETHER.count()) + 100); }
    std::string asked() const { return settingOf("thing").write(window->getStyle()).value_or(""); }
};

} // namespace

TEST_F(StrandRowsTest, ABirodHasARowForEachStrandAndItsAverage)
{
    openUnfolded();
    ASSERT_EQ(list()->model()->rowCount(thing()), PARTS);
    EXPECT_EQ(name(row(STRAND_1)), "strand 1");
    EXPECT_EQ(name(row(STRAND_2)), "strand 2");
    EXPECT_EQ(name(row(AVERAGE)), "average");
    EXPECT_EQ(row(STRAND_2).data(Qt::ToolTipRole).toString().toStdString(),
              file + ": birods[0], strand 2");
    EXPECT_EQ(row(AVERAGE).parent(), thing());
    EXPECT_EQ(list()->model()->rowCount(row(AVERAGE)), 0);
}

TEST_F(StrandRowsTest, ATickHidesAStrandAndThatOfItsBirodAll)
{
    openUnfolded();
    const SoNode* const node = scene->getShown(BIRODS)[0].node;
    clickTick(row(STRAND_1));
    EXPECT_TRUE(comesToShow(false, true, true));
    EXPECT_EQ(thing().data(Qt::CheckStateRole), Qt::PartiallyChecked);
    clickTick(row(AVERAGE));
    EXPECT_TRUE(comesToShow(false, true, false));
    clickTick(row(STRAND_2));
    EXPECT_TRUE(comesToShow(false, false, false));
    EXPECT_EQ(thing().data(Qt::CheckStateRole), Qt::Unchecked);
    clickTick(thing());
    EXPECT_TRUE(comesToShow(true, true, true));
    clickTick(thing());
    EXPECT_TRUE(comesToShow(false, false, false));
    EXPECT_EQ(row(STRAND_1).data(Qt::CheckStateRole), Qt::Unchecked);
    clickTick(row(STRAND_1));
    EXPECT_TRUE(comesToShow(true, false, false)) << "of a hidden birod alone";
    EXPECT_EQ(scene->getShown(BIRODS)[0].node, node) << "nothing was built anew";
}

TEST_F(StrandRowsTest, AStrandIsShownAloneAndCanBeTakenBack)
{
    openUnfolded();
    clickRow(row(STRAND_2));
    waitForNextStep(); // the colours are one before
    press("onlyButton");
    EXPECT_TRUE(comesToShow(false, true, false));
    EXPECT_NE(asked().find("birod 1 strand 2: shown, colour=#0000ff"), std::string::npos);
    pressRealKey("Control+z");
    EXPECT_TRUE(comesToShow(true, true, true));
}

TEST_F(StrandRowsTest, ADeletedStrandHasNoRowUntilAllIsShown)
{
    openUnfolded();
    clickRow(row(STRAND_1));
    press("deleteButton");
    EXPECT_TRUE(comesToShow(false, true, true));
    EXPECT_TRUE(comesTo([this] { return list()->model()->rowCount(thing()) == PARTS - 1; }));
    EXPECT_EQ(name(row(0)), "strand 2");
    press("showAllButton");
    EXPECT_TRUE(comesToShow(true, true, true));
    EXPECT_TRUE(comesTo([this] { return list()->model()->rowCount(thing()) == PARTS; }));
    EXPECT_EQ(name(row(0)), "strand 1");
}

TEST_F(StrandRowsTest, AClickInTheViewGoesFromABirodToItsStrandsAndBack)
{
    openUnfolded();
    click(1, 1);
    EXPECT_TRUE(comesToChoose(thing()));
    click(1, 1);
    EXPECT_TRUE(comesToChoose(row(STRAND_1)));
    click(1, -1);
    EXPECT_TRUE(comesToChoose(row(STRAND_2)));
    click(1, 0);
    EXPECT_TRUE(comesToChoose(row(AVERAGE)));
    click(1, 0);
    EXPECT_TRUE(comesToChoose(thing()));
    click(1, 0.5); // beside all
    EXPECT_TRUE(comesTo([this] { return !list()->selectionModel()->hasSelection(); }));
}

TEST_F(StrandRowsTest, WithShiftAClickChoosesFurtherStrandsOnceOneIsChosen)
{
    openUnfolded();
    clickRow(row(STRAND_1));
    shiftClick(1, -1);
    EXPECT_TRUE(comesTo([this] {
        return list()->selectionModel()->isSelected(row(STRAND_1)) &&
               list()->selectionModel()->isSelected(row(STRAND_2));
    }));
    shiftClick(1, 1);
    EXPECT_TRUE(comesToChoose(row(STRAND_2)));
}

TEST_F(StrandRowsTest, AChosenStrandHasItsOutlineAndItsColourInThePanelOfLooks)
{
    openUnfolded();
    const auto outlined = [this](double y) { // above and below the tube's edge
        const QImage shown = screen();
        const QPoint place = view()->mapFromGlobal(onScreen(1, y));
        int others = 0;
        for (int dy = -6; dy <= 6; ++dy) {
            const QColor c = shown.pixelColor(place + QPoint(0, dy));
            others += !isRed(c) && !isBlue(c) && !isGreen(c) && c != shown.pixelColor(5, 5);
        }
        return others;
    };
    clickRow(row(AVERAGE));
    ASSERT_TRUE(comesToBePainted());
    const int before = outlined(0.8), beforeBelow = outlined(-0.8);
    clickRow(row(STRAND_1));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_TRUE(comesTo([&] { return outlined(0.8) > before; }));
    EXPECT_EQ(outlined(-0.8), beforeBelow);

    pressRealKey("Escape"); // to the view
    pressRealKey("o");
    auto* const whose = window->findChild<QComboBox*>("lookOf");
    ASSERT_TRUE(comesTo([&] { return whose->isVisible(); }));
    EXPECT_EQ(whose->itemText(1).toStdString(), "birods[0], strand 1");
}

TEST_F(StrandRowsTest, AStrandIsCentredAndPicksAreToldByItsName)
{
    openUnfolded();
    clickRow(row(STRAND_2));
    press("centreButton");
    EXPECT_TRUE(comesTo(
        [this] { return std::abs(double(window->getCameraNumbers().position[1]) + 1) < 0.1; }));
    list()->edit(row(STRAND_2));
    const auto editor = [this] { return list()->viewport()->findChild<QLineEdit*>(); };
    ASSERT_TRUE(comesTo([&] { return editor() && editor()->hasFocus(); }));
    for (const char* key : {"a", "r", "m", "Return"})
        pressRealKey(key);
    EXPECT_TRUE(comesTo([this] { return name(row(STRAND_2)) == "arm"; }));
    const QPoint place = onScreen(1, -1);
    clickRealRightButton(place.x(), place.y());
    EXPECT_TRUE(comesTo([this] { return statusText().find(" – arm") != std::string::npos; }));
}

TEST_F(StrandRowsTest, AChosenStrandHasARadiusOfItsOwnInThePanelOfLooks)
{
    openUnfolded();
    clickRow(row(STRAND_1));
    ASSERT_NO_FATAL_FAILURE(openLook("radiusField"));
    const int red = count(isRed), blue = count(isBlue), green = count(isGreen);
    ASSERT_GT(red, 100);
    EXPECT_EQ(field("radiusField")->text(), "0.2");
    ASSERT_NO_FATAL_FAILURE(typeInto("radiusField", {"0", "period", "4"}));
    EXPECT_THAT(asked(), HasSubstr("birod 1 strand 1: colour=#ff0000, radius=0.4"));
    EXPECT_EQ(window->getStyle().radius, 0.2);
    EXPECT_NEAR(count(isRed), 2 * red, 0.3 * red);
    EXPECT_NEAR(count(isBlue), blue, 0.1 * blue);
    EXPECT_NEAR(count(isGreen), green, 0.1 * green);

    waitForNextStep();
    click(*window->findChild<QToolButton*>("radiusReset"));
    EXPECT_TRUE(comesTo([this] { return asked().find("radius") == std::string::npos; }));
    ASSERT_TRUE(comesToBeRestyled());
    EXPECT_NEAR(count(isRed), red, 0.1 * red);
    EXPECT_EQ(field("radiusField")->text(), "0.2");
    waitForNextStep();
    pressRealKey("Escape"); // or the field takes its text back
    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([this] { return field("radiusField")->text() == "0.4"; }));
    ASSERT_TRUE(comesToBeRestyled());
    EXPECT_NEAR(count(isRed), 2 * red, 0.3 * red);
}

TEST_F(StrandRowsTest, AChosenStrandHasATransparencyOfItsOwnInThePanelOfLooks)
{
    openUnfolded();
    clickRow(row(STRAND_1));
    ASSERT_NO_FATAL_FAILURE(openLook("transparencyField"));
    const SoNode* const node = scene->getShown(BIRODS)[0].node;
    const int red = count(isRed), blue = count(isBlue), green = count(isGreen);
    ASSERT_GT(red, 100);
    EXPECT_EQ(field("transparencyField")->text(), "0");
    ASSERT_NO_FATAL_FAILURE(typeInto("transparencyField", {"0", "period", "7"}));
    EXPECT_THAT(asked(), HasSubstr("birod 1 strand 1: colour=#ff0000, transparency=0.7"));
    EXPECT_EQ(window->getStyle().transparency, 0);
    const auto isLight = [](const QColor& c) {
        return c.red() > 200 && c.green() > 60 && c.green() < 230;
    };
    EXPECT_LT(count(isRed), red / 10);
    EXPECT_GT(count(isLight), red / 2) << "the background is white";
    EXPECT_NEAR(count(isBlue), blue, 0.05 * blue);
    EXPECT_NEAR(count(isGreen), green, 0.05 * green);
    EXPECT_EQ(scene->getShown(BIRODS)[0].node, node) << "nothing was built anew";

    waitForNextStep();
    click(*window->findChild<QToolButton*>("transparencyReset"));
    EXPECT_TRUE(comesTo([this] { return asked().find("transparency") == std::string::npos; }));
    ASSERT_TRUE(comesToBeRestyled());
    EXPECT_NEAR(count(isRed), red, 0.05 * red);
    waitForNextStep();
    pressRealKey("Escape"); // or the field takes its text back
    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([this] { return field("transparencyField")->text() == "0.7"; }));
    ASSERT_TRUE(comesToBeRestyled());
    EXPECT_LT(count(isRed), red / 10);
}

TEST_F(StrandRowsTest, TheSliderLetsAnAverageBeSeenThroughInOneStep)
{
    openUnfolded();
    clickRow(row(AVERAGE));
    ASSERT_NO_FATAL_FAILURE(openLook("transparencySlider"));
    const int red = count(isRed), green = count(isGreen);
    const auto* const slider = window->findChild<QSlider*>("transparencySlider");
    const int middle = slider->height() / 2;
    const QPoint from = slider->mapToGlobal({6, middle}),
                 to = slider->mapToGlobal({slider->width() * 3 / 4, middle});
    dragRealPointer(from.x(), from.y(), to.x(), to.y());
    EXPECT_TRUE(comesTo([this] {
        return asked().find("birod 1 average: colour=#00ff00, transparency=0.") !=
               std::string::npos;
    }));
    ASSERT_TRUE(comesToBeRestyled());
    EXPECT_LT(count(isGreen), green / 10);
    EXPECT_NEAR(count(isRed), red, 0.05 * red);
    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([this] { return asked().find("transparency") == std::string::npos; }))
        << "one step";
    ASSERT_TRUE(comesToBeRestyled());
    EXPECT_NEAR(count(isGreen), green, 0.05 * green);
}

} // namespace strandview
