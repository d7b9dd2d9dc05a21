// SPDX-License-Identifier: GPL-3.0-or-later
// The look of all things, and of those that are chosen.
#include "window/LookPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "pureColours.h"
#include "request/settings.h"
#include "support/realInput.h"

namespace strandview {

namespace {

// Two rods of one file, side by side, and what a third kind of thing takes.
const char* const DATA = R"({"strandview": 1, "rods": [
    {"points": [[0, 0, 0], [1, 0, 0], [2, 0, 0]], "colour": "#ff0000"},
    {"points": [[0, 1, 0], [1, 1, 0], [2, 1, 0]], "colour": "#0000ff"}],
    "markers": [{"point": [1, 2, 0], "size": 0.1, "id": 1}]})";

class LookPanelTest : public DataWindowTest
{
protected:
    LookPanelTest()
    {
        options.windowSize = {1000, 620};
        options.radius = 0.1;
        options.camera.side = Side::Z;
    }
    void openWithPanels()
    {
        ASSERT_NO_FATAL_FAILURE(openText(DATA, "rods.json"));
        ASSERT_TRUE(comesToBePainted());
        pressRealKey("o");
        ASSERT_TRUE(comesTo([this] { return which()->isVisible(); }));
        pressRealKey("t");
        ASSERT_TRUE(comesTo([this] { return list()->isVisible(); }));
        ASSERT_TRUE(comesToBePainted());
    }
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return window->findChild<Widget*>(name);
    }
    QComboBox* which() const { return find<QComboBox>("lookOf"); }
    QTreeView* list() const { return find<QTreeView>("thingsList"); }
    void chooseThing(int row) const
    {
        const QModelIndex file = list()->model()->index(0, 0);
        list()->setCurrentIndex(list()->model()->index(row, 0, file));
        ASSERT_TRUE(comesTo([this] { return which()->count() == 2; }));
    }
    void lookAtChosen() const
    {
        which()->setFocus();
        ASSERT_TRUE(comesTo([this] { return which()->hasFocus(); }));
        pressRealKey("Down");
        ASSERT_TRUE(comesTo([this] { return which()->currentIndex() == 1; }));
    }
    void typeRadius(const std::vector<std::string>& keys) const
    {
        auto* const field = find<QLineEdit>("radiusField");
        field->setFocus();
        ASSERT_TRUE(comesTo([&] { return field->hasFocus(); }));
        pressRealKey("Control+a");
        for (const std::string& key : keys)
            pressRealKey(key);
        pressRealKey("Return");
        ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }) && comesToBePainted());
    }
    std::string things() const { return settingOf("thing").write(window->getStyle()).value_or(""); }
    std::string radiusShown() const { return find<QLineEdit>("radiusField")->text().toStdString(); }
};

} // namespace

TEST_F(LookPanelTest, WhatIsChosenCanHaveALookOfItsOwnAndLeaveItToThatOfAll)
{
    ASSERT_NO_FATAL_FAILURE(openWithPanels());
    EXPECT_EQ(which()->count(), 1);
    chooseThing(0);
    EXPECT_EQ(which()->itemText(1), "rods[0]");
    const int red = countPixels(screen(), isRed), blue = countPixels(screen(), isBlue);
    lookAtChosen();
    EXPECT_EQ(radiusShown(), "0.1");
    EXPECT_FALSE(find<QToolButton>("radiusReset")->isVisible());
    typeRadius({"0", "period", "2"});
    EXPECT_EQ(things(), "rod 1: radius=0.2");
    EXPECT_EQ(window->getStyle().radius, 0.1);
    EXPECT_NEAR(countPixels(screen(), isRed), 2 * red, 0.3 * red);
    EXPECT_NEAR(countPixels(screen(), isBlue), blue, 0.1 * blue);
    EXPECT_EQ(radiusShown(), "0.2");

    click(*find<QToolButton>("radiusReset"));
    EXPECT_TRUE(comesTo([this] { return things().empty() && radiusShown() == "0.1"; }));
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }) && comesToBePainted());
    EXPECT_NEAR(countPixels(screen(), isRed), red, 0.1 * red);
}

TEST_F(LookPanelTest, ControlsAreOnWhereTheChosenThingsTakeThem)
{
    ASSERT_NO_FATAL_FAILURE(openWithPanels());
    EXPECT_TRUE(find<QWidget>("background")->isEnabled());
    chooseThing(0);
    lookAtChosen();
    EXPECT_FALSE(find<QWidget>("background")->isEnabled());
    EXPECT_TRUE(find<QWidget>("ribbon-width")->isEnabled());
    EXPECT_TRUE(find<QWidget>("tube-colour")->isEnabled());
    chooseThing(2);
    EXPECT_TRUE(comesTo([this] { return !find<QWidget>("ribbon-width")->isEnabled(); }));
    EXPECT_TRUE(find<QWidget>("tube-colour")->isEnabled()) << "of a marker";
    list()->selectionModel()->clearSelection();
    EXPECT_TRUE(comesTo([this] { return which()->count() == 1; }));
    EXPECT_TRUE(find<QWidget>("background")->isEnabled());
}

TEST_F(LookPanelTest, SeveralThatAreChosenAreChangedAtOnceAndTakenBackSo)
{
    ASSERT_NO_FATAL_FAILURE(openWithPanels());
    list()->selectAll();
    ASSERT_TRUE(comesTo([this] { return which()->count() == 2; }));
    lookAtChosen();
    auto* const tube = find<QCheckBox>("tube");
    click(*tube, {8, tube->height() / 2});
    EXPECT_TRUE(comesTo([this] { return things() == "rods 1-2: no tube"; }));
    EXPECT_TRUE(window->getStyle().showTube);
    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([this] { return things().empty(); }));
}

} // namespace strandview
