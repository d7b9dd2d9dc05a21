// SPDX-License-Identifier: GPL-3.0-or-later
// What a control takes of what its user types, tries and passes by.
#include "window/SettingControl.h"

#include <string>
#include <vector>

#include <QAction>
#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "User.h"
#include "request/settings.h"
#include "support/realInput.h"
#include "window/History.h"

namespace strandview {

namespace {

const char* const RODS = R"({"strandview": 1, "rods": [
    {"points": [[0, 0, 0], [1, 0, 0], [2, 0, 0]], "colour": "#ff0000"},
    {"points": [[0, 1, 0], [1, 1, 0], [2, 1, 0]], "colour": "#0000ff"}]})";

class SettingControlTest : public DataWindowTest
{
protected:
    static void SetUpTestSuite()
    {
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        DataWindowTest::SetUpTestSuite();
    }

    SettingControlTest()
    {
        options.windowSize = {1000, 620};
        options.camera.side = Side::Z;
    }
    void openPanel(const char* key, const char* control)
    {
        ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.json"));
        ASSERT_TRUE(comesToBePainted());
        pressRealKey(key);
        ASSERT_TRUE(comesTo([&] { return find<QWidget>(control)->isVisible(); }));
        ASSERT_TRUE(comesToBePainted());
    }
    void openLook() { openPanel("o", "radius"); }
    // Of all rods together.
    void openLookOfChosen()
    {
        ASSERT_NO_FATAL_FAILURE(openLook());
        pressRealKey("t");
        ASSERT_TRUE(comesTo([this] { return find<QTreeView>("thingsList")->isVisible(); }));
        find<QTreeView>("thingsList")->selectAll();
        auto* const which = find<QComboBox>("lookOf");
        ASSERT_TRUE(comesTo([&] { return which->count() == 2; }));
        which->setFocus();
        ASSERT_TRUE(comesTo([&] { return which->hasFocus(); }));
        pressRealKey("Down");
        ASSERT_TRUE(comesTo([&] { return which->currentIndex() == 1; }));
    }
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return window->findChild<Widget*>(name);
    }
    std::string written(const char* setting) const
    {
        return settingOf(setting).write(window->getStyle()).value_or("");
    }
    QAction* undo() const
    {
        for (QAction* action : window->findChildren<QAction*>()) {
            if (action->text().startsWith("&Undo"))
                return action;
        }
        return nullptr;
    }

    // A colour that is typed into the dialog, after others a while before, and whether it is taken.
    void tryColours(const char* setting, const std::vector<std::string>& colours,
                    const char* lastKey) const
    {
        std::vector<User::Step> steps;
        QElapsedTimer shown;
        for (const std::string& colour : colours) {
            steps.push_back({isReady, [colour] {
                                 pressRealKey("Control+a");
                                 pressRealKey("numbersign");
                                 for (const char digit : colour)
                                     pressRealKey(std::string(1, digit));
                             }});
            steps.push_back({[colour] {
                                 return isReady() &&
                                        dialog()->currentColor().name().toStdString() ==
                                            "#" + colour;
                             },
                             [&shown] { shown.start(); }});
            steps.push_back(
                {[&shown] { return shown.hasExpired(History::TOGETHER.count() + 100); }, [] {}});
        }
        steps.push_back({isReady, [lastKey] { pressRealKey(lastKey); }});
        const User user(steps);
        auto* const button = find<QPushButton>(setting);
        ASSERT_TRUE(button->isEnabled());
        button->setFocus();
        ASSERT_TRUE(comesTo([&] { return button->hasFocus(); }));
        pressRealKey("space");
        ASSERT_TRUE(comesTo([&] { return user.isDone() && !dialog(); }));
        ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    }

private:
    static QColorDialog* dialog()
    {
        return qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
    }
    static bool isReady() { return dialog() && dialog()->isActiveWindow(); }
};

} // namespace

TEST_F(SettingControlTest, AColourThatIsNotTakenLeavesOpenWhatWasOpen)
{
    ASSERT_NO_FATAL_FAILURE(openLook());
    for (const char* const setting : {"tube-colour", "ribbon-colour"}) {
        SCOPED_TRACE(setting);
        ASSERT_NO_FATAL_FAILURE(tryColours(setting, {}, "Escape"));
        EXPECT_EQ(settingOf(setting).value(window->getStyle()), std::nullopt);
        ASSERT_NO_FATAL_FAILURE(tryColours(setting, {"00ff00"}, "Escape"));
        EXPECT_EQ(settingOf(setting).value(window->getStyle()), std::nullopt);
        EXPECT_FALSE(find<QToolButton>((std::string(setting) + "Reset").c_str())->isVisible());
        EXPECT_FALSE(undo()->isEnabled());
    }
}

TEST_F(SettingControlTest, AColourThatIsNotTakenLeavesChosenThingsTheirOwn)
{
    ASSERT_NO_FATAL_FAILURE(openLookOfChosen());
    setThings("rod 2: colour=#00ff00");
    const std::string before = written("thing");
    ASSERT_NO_FATAL_FAILURE(tryColours("tube-colour", {"ffff00"}, "Escape"));
    EXPECT_EQ(written("thing"), before);
}

TEST_F(SettingControlTest, AColourOfAllThatIsNotTakenForOneIsThatOfAll)
{
    options.tubeColour = parseColour("#00ff00");
    ASSERT_NO_FATAL_FAILURE(openLookOfChosen());
    ASSERT_NO_FATAL_FAILURE(tryColours("tube-colour", {"ffff00"}, "Escape"));
    EXPECT_EQ(written("thing"), "");
    EXPECT_EQ(written("tube-colour"), "#00ff00");
}

TEST_F(SettingControlTest, ColoursThatAreTriedAreOneStepWithTheOneThatIsTaken)
{
    options.tubeColour = parseColour("#0000ff");
    ASSERT_NO_FATAL_FAILURE(openLook());
    ASSERT_NO_FATAL_FAILURE(tryColours("tube-colour", {"ffff00", "00ffff"}, "Escape"));
    EXPECT_FALSE(undo()->isEnabled());
    EXPECT_EQ(written("tube-colour"), "#0000ff");
    ASSERT_NO_FATAL_FAILURE(tryColours("tube-colour", {"ffff00", "00ffff"}, "Return"));
    EXPECT_EQ(written("tube-colour"), "#00ffff");
    EXPECT_EQ(undo()->text(), "&Undo tube colour");
    pressRealKey("Control+z");
    ASSERT_TRUE(comesTo([&] { return written("tube-colour") == "#0000ff"; }));
    EXPECT_FALSE(undo()->isEnabled());
}

} // namespace strandview
