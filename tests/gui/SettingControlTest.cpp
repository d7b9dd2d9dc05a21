// SPDX-License-Identifier: GPL-3.0-or-later
// What a control takes of what its user types, tries and passes by.
#include "window/SettingControl.h"

#include <set>
#include <string>
#include <vector>

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <gmock/gmock.h>

#include <strandview/formats/text/wording.h>

#include "DataWindowTest.h"
#include "User.h"
#include "request/settings.h"
#include "scene/DataScene.h"
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

    // Instead of what stands in a field, which keeps the keyboard.
    void type(const char* field, const std::vector<std::string>& keys) const
    {
        typeInto(*find<QLineEdit>(field), keys);
    }
    void typeAll(const char* field, const std::vector<std::string>& keys, const char* text) const
    {
        ASSERT_NO_FATAL_FAILURE(type(field, keys));
        ASSERT_TRUE(comesTo([&] { return textOf(field) == text; })) << textOf(field);
    }
    std::string textOf(const char* field) const
    {
        return find<QLineEdit>(field)->text().toStdString();
    }
    // Gives the keyboard to the view.
    void leave() const
    {
        click(*view());
        ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    }
    bool comesToRest() const
    {
        return comesTo([this] { return !window->isRestyling(); }) && comesToBePainted();
    }
    std::string faultOf(const char* panel) const
    {
        const auto* const line = find<QWidget>(panel)->findChild<QLabel*>("settingFault");
        return line->isVisible() ? line->text().toStdString() : "";
    }
    static QPoint middleOf(const QWidget& widget)
    {
        return widget.mapToGlobal(widget.rect().center());
    }
    static void turnWheel(const QWidget& widget, bool isUp)
    {
        const QPoint place = middleOf(widget) * widget.devicePixelRatioF();
        turnRealWheel(place.x(), place.y(), isUp);
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

// Typing

TEST_F(SettingControlTest, ACommaMayBeTheLastThingThatIsTyped)
{
    ASSERT_NO_FATAL_FAILURE(openLook());
    ASSERT_NO_FATAL_FAILURE(typeAll("radiusField", {"1", "5", "Left", "comma"}, "1.5"));
    pressRealKey("Return");
    EXPECT_TRUE(comesTo([&] { return window->getStyle().radius == 1.5; }));
    QApplication::clipboard()->setText("0,25");
    ASSERT_NO_FATAL_FAILURE(typeAll("radiusField", {"Control+v"}, "0.25"));
    pressRealKey("Tab");
    EXPECT_TRUE(comesTo([&] { return window->getStyle().radius == 0.25; }));
}

TEST_F(SettingControlTest, WhatIsTypedGoesWithWhatTheCrossTakesBack)
{
    options.radius = 0.2;
    ASSERT_NO_FATAL_FAILURE(openLook());
    ASSERT_NO_FATAL_FAILURE(typeAll("radiusField", {"0", "period", "3"}, "0.3"));
    click(*find<QToolButton>("radiusReset"));
    ASSERT_TRUE(comesTo([&] { return !window->getStyle().radius; }) && comesToRest());
    EXPECT_EQ(textOf("radiusField"),
              QString::number(scene->getStyle().radius, 'g', 4).toStdString());
    ASSERT_NO_FATAL_FAILURE(leave());
    EXPECT_EQ(window->getStyle().radius, std::nullopt);
    EXPECT_FALSE(window->isRestyling());
}

TEST_F(SettingControlTest, ADistanceThatIsTypedGoesWithTheCutInOneStep)
{
    options.clip = parseClipPlane("x:0.25");
    ASSERT_NO_FATAL_FAILURE(openLook());
    ASSERT_NO_FATAL_FAILURE(typeAll("clipField", {"1"}, "1"));
    click(*find<QToolButton>("clipReset"));
    ASSERT_TRUE(comesTo([&] { return undo()->isEnabled(); }));
    EXPECT_EQ(written("clip"), "");
    ASSERT_NO_FATAL_FAILURE(leave());
    EXPECT_EQ(written("clip"), "");
    pressRealKey("Control+z");
    EXPECT_TRUE(comesTo([&] { return !undo()->isEnabled(); }));
    EXPECT_EQ(written("clip"), "x:0.25");
}

TEST_F(SettingControlTest, ATitleThatIsTypedGoesWithItsScalar)
{
    options.colourBy = "curvature";
    ASSERT_NO_FATAL_FAILURE(openPanel("c", "colour-by"));
    ASSERT_NO_FATAL_FAILURE(typeAll("legend-title", {"k"}, "k"));
    click(*find<QToolButton>("colour-byReset"));
    ASSERT_TRUE(comesTo([&] { return !window->getStyle().colourBy; }) && comesToRest());
    EXPECT_EQ(written("legend-title"), "");
    EXPECT_EQ(faultOf("colourPanel"), "");
}

TEST_F(SettingControlTest, WhatIsBeingTypedOutlastsAStyleThatComes)
{
    options.colourBy = "curvature";
    ASSERT_NO_FATAL_FAILURE(openLook());
    const auto changeStyle = [this](double radius) {
        StyleRequest next = window->getStyle();
        next.radius = radius;
        window->setStyle(next);
        ASSERT_TRUE(comesToRest());
    };
    auto* const slices = find<QSpinBox>("slices");
    auto* const ofSlices = slices->findChild<QLineEdit*>();
    slices->setFocus();
    ASSERT_TRUE(comesTo([&] { return slices->hasFocus(); }));
    pressRealKey("Control+a");
    pressRealKey("7");
    ASSERT_TRUE(comesTo([&] { return ofSlices->text() == "7"; }));
    changeStyle(0.1);
    EXPECT_EQ(ofSlices->text(), "7");
    pressRealKey("Return");
    EXPECT_TRUE(comesTo([&] { return written("slices") == "7"; }));
    StyleRequest other = window->getStyle();
    other.slices = 9;
    window->setStyle(other);
    EXPECT_EQ(slices->value(), 9) << "once it is taken";

    ASSERT_NO_FATAL_FAILURE(leave());
    pressRealKey("c");
    auto* const map = find<QComboBox>("coloursList");
    ASSERT_TRUE(comesTo([&] { return map->isVisible(); }));
    map->lineEdit()->setObjectName("mapField");
    ASSERT_NO_FATAL_FAILURE(typeAll("mapField", {"r", "e", "d", "comma", "b"}, "red,b"));
    changeStyle(0.2);
    EXPECT_EQ(textOf("mapField"), "red,b");
    for (const char* const key : {"l", "u", "e", "Return"})
        pressRealKey(key);
    EXPECT_TRUE(comesTo([&] { return written("colours") == "red,blue"; }));
}

TEST_F(SettingControlTest, ACountGoesOnFromWhatIsAskedForBeforeThatIsShown)
{
    ASSERT_NO_FATAL_FAILURE(openLook());
    auto* const slices = find<QSpinBox>("slices");
    const int before = slices->value();
    for (int i = 0; i < 3; ++i)
        slices->stepUp();
    EXPECT_TRUE(window->isRestyling());
    EXPECT_EQ(slices->value(), before + 3);
    EXPECT_EQ(written("slices"), std::to_string(before + 3));
}

TEST_F(SettingControlTest, ARangeMovesPastItselfOneEndAfterTheOther)
{
    options.colourBy = "arclength";
    options.rangeMin = 0;
    options.rangeMax = 1;
    ASSERT_NO_FATAL_FAILURE(openPanel("c", "colour-by"));
    ASSERT_NO_FATAL_FAILURE(typeAll("rangeMin", {"5"}, "5"));
    pressRealKey("Tab");
    ASSERT_TRUE(comesTo([&] { return find<QLineEdit>("rangeMax")->hasFocus(); }));
    EXPECT_EQ(textOf("rangeMin"), "5");
    EXPECT_EQ(faultOf("colourPanel"), "");
    ASSERT_NO_FATAL_FAILURE(typeAll("rangeMax", {"1", "0"}, "10"));
    pressRealKey("Tab");
    EXPECT_TRUE(comesTo([&] { return written("range") == "5:10"; }));
    EXPECT_EQ(faultOf("colourPanel"), "");
}

TEST_F(SettingControlTest, AnEndOfARangeThatStaysBeyondTheOtherIsToldOnceBothAreLeft)
{
    options.colourBy = "arclength";
    options.rangeMin = 0;
    options.rangeMax = 1;
    ASSERT_NO_FATAL_FAILURE(openPanel("c", "colour-by"));
    const auto typeLeast = [this] {
        ASSERT_NO_FATAL_FAILURE(typeAll("rangeMin", {"5"}, "5"));
        pressRealKey("Tab");
        ASSERT_TRUE(comesTo([&] { return find<QLineEdit>("rangeMax")->hasFocus(); }));
    };
    ASSERT_NO_FATAL_FAILURE(typeLeast());
    ASSERT_NO_FATAL_FAILURE(leave());
    EXPECT_TRUE(comesTo([&] { return faultOf("colourPanel").find("'5:1'") != std::string::npos; }))
        << faultOf("colourPanel");
    EXPECT_EQ(textOf("rangeMin"), "0");
    EXPECT_EQ(written("range"), "0:1");

    ASSERT_NO_FATAL_FAILURE(typeAll("rangeMax", {"2"}, "2"));
    pressRealKey("Return");
    ASSERT_TRUE(comesTo([&] { return written("range") == "0:2"; }));
    ASSERT_NO_FATAL_FAILURE(typeLeast());
    pressRealKey("Escape");
    ASSERT_TRUE(comesTo([&] { return view()->hasFocus(); }));
    EXPECT_EQ(faultOf("colourPanel"), "");
    EXPECT_EQ(textOf("rangeMin"), "0");
    EXPECT_EQ(written("range"), "0:2");
}

TEST_F(SettingControlTest, WhatIsRefusedOfChosenThingsIsPutBack)
{
    options.radius = 0.1;
    ASSERT_NO_FATAL_FAILURE(openLookOfChosen());
    ASSERT_NO_FATAL_FAILURE(typeAll("radiusField", {"x"}, "x"));
    pressRealKey("Return");
    EXPECT_TRUE(comesTo([&] { return !faultOf("lookPanel").empty(); }));
    EXPECT_EQ(textOf("radiusField"), "0.1");
    EXPECT_EQ(written("thing"), "");
}

TEST_F(SettingControlTest, ASliderOfAPlaneTellsPlacesApartFarFromTheOrigin)
{
    options.clip = parseClipPlane("x");
    ASSERT_NO_FATAL_FAILURE(openText("1000000.5 0 0\n1000001.5 1 0\n1000002.5 0 0\n", "far.txt"));
    ASSERT_TRUE(comesToBePainted());
    pressRealKey("o");
    auto* const slider = find<QSlider>("clipSlider");
    ASSERT_TRUE(comesTo([&] { return slider->isVisible(); }));
    EXPECT_EQ(textOf("clipField"), "1000001.5");
    slider->setFocus();
    ASSERT_TRUE(comesTo([&] { return slider->hasFocus(); }));
    std::set<double> distances;
    for (int i = 0; i < 5; ++i) {
        const int before = slider->value();
        pressRealKey("Right");
        ASSERT_TRUE(comesTo([&] { return slider->value() == before + 1; })) << i;
        distances.insert(window->getStyle().clip->distance.value());
    }
    EXPECT_EQ(distances.size(), 5u);
    EXPECT_GT(*distances.begin(), 1000001.5);
    EXPECT_LT(*distances.rbegin(), 1000001.6);
    for (const double distance : distances)
        EXPECT_LE(formatted(distance).size(), std::string("1000001.523").size()) << distance;
}

// The wheel

TEST_F(SettingControlTest, TheWheelScrollsPastControlsThatDoNotHaveTheKeyboard)
{
    ASSERT_NO_FATAL_FAILURE(openLook());
    const StyleRequest before = window->getStyle();
    QScrollBar* const bar =
        find<QWidget>("lookPanel")->findChild<QScrollArea*>()->verticalScrollBar();
    ASSERT_GT(bar->maximum(), 100);
    for (const char* const name : {"radiusSlider", "slices", "shading", "transparencySlider"}) {
        SCOPED_TRACE(name);
        auto* const control = find<QWidget>(name);
        bar->setValue(0);
        ASSERT_TRUE(comesToBePainted());
        ASSERT_FALSE(control->visibleRegion().isEmpty());
        turnWheel(*control, false);
        EXPECT_TRUE(comesTo([&] { return bar->value() > 0; }));
        EXPECT_TRUE(window->getStyle() == before);
        EXPECT_FALSE(control->hasFocus());
    }
    auto* const slices = find<QSpinBox>("slices");
    slices->setFocus();
    ASSERT_TRUE(comesTo([&] { return slices->hasFocus(); }));
    ASSERT_TRUE(comesToBePainted());
    const int count = slices->value();
    turnWheel(*slices, true);
    EXPECT_TRUE(comesTo([&] { return slices->value() == count + 1; }));
}

TEST_F(SettingControlTest, NothingIsReadForAComparisonUntilOneIsChosenInTheOpenList)
{
    ASSERT_NO_FATAL_FAILURE(openPanel("c", "compare"));
    auto* const list = find<QComboBox>("compare");
    list->setFocus();
    ASSERT_TRUE(comesTo([&] { return list->hasFocus(); }));
    turnWheel(*list, false);
    QTest::qWait(100);
    EXPECT_EQ(list->currentText(), "nothing");
    for (const char* const key : {"Down", "a"}) {
        SCOPED_TRACE(key);
        pressRealKey(key);
        ASSERT_TRUE(comesTo([&] { return list->view()->isVisible(); }));
        EXPECT_EQ(list->currentText(), "nothing");
        EXPECT_EQ(window->getStyle(), StyleRequest());
        pressRealKey("Escape");
        ASSERT_TRUE(comesTo([&] { return !list->view()->isVisible(); }));
        QTest::qWait(100); // until the key is that of the window again
    }
    pressRealKey("Down");
    ASSERT_TRUE(comesTo([&] { return list->view()->isVisible(); }));
    QTest::qWait(100);
    pressRealKey("Down");
    pressRealKey("Return");
    EXPECT_TRUE(comesTo([&] { return window->getStyle().compare == std::string("first"); }));
}

TEST_F(SettingControlTest, AFileToCompareWithIsLookedForWhereTheDataAre)
{
    ASSERT_NO_FATAL_FAILURE(openPanel("c", "compare"));
    auto* const list = find<QComboBox>("compare");
    std::string place;
    const auto dialog = [] {
        return qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
    };
    const User user({{[&] { return dialog() && dialog()->isActiveWindow(); },
                      [&] {
                          place = dialog()->directory().absolutePath().toStdString();
                          pressRealKey("Escape");
                      }}});
    list->setFocus();
    ASSERT_TRUE(comesTo([&] { return list->hasFocus(); }));
    pressRealKey("space");
    ASSERT_TRUE(comesTo([&] { return list->view()->isVisible(); }));
    QTest::qWait(100);
    pressRealKey("End");
    pressRealKey("Return");
    ASSERT_TRUE(comesTo([&] { return user.isDone() && !dialog(); }));
    EXPECT_EQ(place, folder.path());
    EXPECT_EQ(list->currentText(), "nothing");
}

} // namespace strandview
