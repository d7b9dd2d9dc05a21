// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SettingsPanel.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QColorDialog>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "pureColours.h"
#include "request/settings.h"
#include "scene/Colouring.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "window/Player.h"

namespace strandview {

using testing::HasSubstr;
using testing::StartsWith;

namespace {

// A rod along x, of two units, that bends a little.
const char* const ROD = "x y z load\n-1 0 0 3\n-0.5 0.1 0 -1\n0 0.2 0 0\n0.5 0.1 0 1\n1 0 0 2\n";

bool isBlueTube(const QColor& c) { return c.blue() > c.red() + 40; }
bool isInk(const QColor& c) { return c.value() < 60; }

class SettingsPanelTest : public DataWindowTest
{
protected:
    void openWith(const std::string& text, const char* key)
    {
        ASSERT_NO_FATAL_FAILURE(openText(text, "rod.txt"));
        ASSERT_TRUE(comesToBePainted());
        pressRealKey(key);
        const char* const part = std::string(key) == "o" ? "radius" : "colour-by";
        ASSERT_TRUE(comesTo([&] { return find<QWidget>(part)->isVisible(); }));
    }
    template <typename Widget>
    Widget* find(const char* name) const
    {
        return window->findChild<Widget*>(name);
    }
    // Types into a field instead of what stands there. It is clicked first unless it has the
    // keyboard: a second click would be a double one, which may come between the keys.
    void type(const char* field, const std::vector<std::string>& keys) const
    {
        ASSERT_NO_FATAL_FAILURE(typeInto(*find<QLineEdit>(field), keys));
        pressRealKey("Return");
    }
    // Clicks on a list, and goes down to an entry.
    void choose(const char* list, const QString& text) const
    {
        auto* const box = find<QComboBox>(list);
        ASSERT_GE(box->findText(text), 0) << text.toStdString();
        box->setFocus();
        ASSERT_TRUE(comesTo([&] { return box->hasFocus() || box->lineEdit(); }));
        for (int i = 0; i < 200 && box->currentText() != text; ++i) {
            const QString before = box->currentText();
            pressRealKey(box->currentIndex() < box->findText(text) ? "Down" : "Up");
            ASSERT_TRUE(comesTo([&] { return box->currentText() != before; }));
        }
        EXPECT_EQ(box->currentText(), text);
    }
    bool comesToShow() const
    {
        return comesTo([this] { return !window->isRestyling(); }) && comesToBePainted();
    }
    // Nearly black pixels where a legend has its room.
    int inkAtTop() const
    {
        const QImage image = screen();
        return countPixels(image.copy(0, 0, image.width(), image.height() / 8), isInk);
    }
    int inkAtBottom() const
    {
        const QImage image = screen();
        const int rows = image.height() / 8;
        return countPixels(image.copy(0, image.height() - rows, image.width(), rows), isInk);
    }
    double radius() const { return scene->getStyle().radius; }
};

} // namespace

TEST_F(SettingsPanelTest, EverySettingHasAControlThatIsNamedForThoseWhoHearIt)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    for (const Setting& setting : settings()) {
        if (setting.kind == SettingKind::THINGS) // whose panel is the list of them
            continue;
        const auto* const control = find<QWidget>(setting.name);
        ASSERT_NE(control, nullptr) << setting.name;
        EXPECT_EQ(control->accessibleName().toStdString(), setting.label);
        EXPECT_NE(control->toolTip(), "") << setting.name;
    }
}

TEST_F(SettingsPanelTest, ARadiusThatIsTypedIsShownAtOnceAlsoWithAComma)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    const int before = countPixels(screen(), isBlueTube);
    type("radiusField", {"0", "comma", "2"});
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(radius(), 0.2);
    EXPECT_EQ(window->getStyle().radius, 0.2);
    EXPECT_GT(countPixels(screen(), isBlueTube), 2 * before);
    EXPECT_EQ(find<QLineEdit>("radiusField")->text(), "0.2");
}

TEST_F(SettingsPanelTest, ASliderMakesTubesThickerWhileItIsDragged)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    const double before = radius();
    auto* const slider = find<QSlider>("radiusSlider");
    const QPoint middle = slider->mapToGlobal(slider->rect().center());
    dragRealPointer(middle.x(), middle.y(), middle.x() + slider->width() / 4, middle.y());
    ASSERT_TRUE(comesTo([&] { return radius() > 1.5 * before; }));
    ASSERT_TRUE(comesToShow());
    EXPECT_NEAR(find<QLineEdit>("radiusField")->text().toDouble(), radius(), 1e-12);
}

TEST_F(SettingsPanelTest, WhatIsAsUsualFollowsFromTheDataAgain)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    const double usual = radius();
    EXPECT_FALSE(find<QToolButton>("radiusReset")->isVisible());
    type("radiusField", {"0", "period", "3"});
    ASSERT_TRUE(comesToShow());
    ASSERT_EQ(radius(), 0.3);
    click(*find<QToolButton>("radiusReset"));
    ASSERT_TRUE(comesTo([&] { return radius() == usual; }));
    EXPECT_EQ(window->getStyle().radius, std::nullopt);
    EXPECT_FALSE(find<QToolButton>("radiusReset")->isVisible());
}

TEST_F(SettingsPanelTest, WhatCannotBeIsToldAndLeavesAllAsItIs)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    const double before = radius();
    type("radiusField", {"x"});
    const auto* const line = find<SettingsPanel>("lookPanel")->findChild<QLabel*>("settingFault");
    ASSERT_TRUE(comesTo([&] { return line->isVisible(); }));
    EXPECT_EQ(line->text().toStdString(), "Radius: found 'x', expected a length above 0");
    type("radiusField", {"1", "e", "9"});
    ASSERT_TRUE(comesTo([&] { return line->text().contains("1e+09"); }));
    EXPECT_EQ(radius(), before);
    EXPECT_EQ(window->getStyle().radius, std::nullopt);
}

TEST_F(SettingsPanelTest, ATickHidesTubes)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    const int before = countPixels(screen(), isBlueTube);
    ASSERT_GT(before, 1000);
    click(*find<QCheckBox>("tube"), {8, find<QCheckBox>("tube")->height() / 2});
    ASSERT_TRUE(comesTo([this] { return !window->getStyle().showTube; }));
    ASSERT_TRUE(comesToShow());
    EXPECT_LT(countPixels(screen(), isBlueTube), before / 10); // the axes in the corner
}

TEST_F(SettingsPanelTest, AColourIsShownWhileItIsLookedForAndGoesIfItIsNotTaken)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    ASSERT_TRUE(comesToBePainted());
    const int before = countPixels(screen(), isRed); // the axes in the corner
    QTimer::singleShot(0, window.get(), [this, before] {
        auto* const dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        dialog->setCurrentColor(Qt::red);
        EXPECT_TRUE(comesToShow());
        EXPECT_GT(countPixels(screen(), isRed), 10 * before);
        dialog->reject();
    });
    find<QPushButton>("tube-colour")->click();
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(countPixels(screen(), isRed), before);
    EXPECT_FALSE(window->getStyle().tubeColour);
}

TEST_F(SettingsPanelTest, ColoursOfAScalarComeAndGo)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "c"));
    EXPECT_FALSE(find<QComboBox>("rangeList")->isEnabled());
    choose("colour-by", "load");
    ASSERT_TRUE(comesToShow());
    ASSERT_TRUE(scene->hasColours());
    EXPECT_EQ(scene->getColouring()->min, -1);
    EXPECT_EQ(find<QLineEdit>("rangeMax")->text(), "3");
    choose("rangeList", "symmetric about 0");
    ASSERT_TRUE(comesTo([this] { return scene->getColouring()->min == -3; }));
    type("rangeMax", {"7"});
    ASSERT_TRUE(comesTo([this] { return scene->getColouring()->max == 7; }));
    EXPECT_EQ(scene->getColouring()->min, -3);
    choose("colour-by", "none: colours of their own");
    ASSERT_TRUE(comesTo([this] { return !scene->hasColours(); }));
    EXPECT_EQ(window->getStyle(), StyleRequest());
}

TEST_F(SettingsPanelTest, AMapThatNobodyChoseIsToldByItsName)
{
    options.colourBy = "load";
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "c"));
    auto* const list = find<QComboBox>("coloursList");
    EXPECT_EQ(list->currentText(), "viridis");
    choose("colour-by", "torsion");
    EXPECT_TRUE(comesTo([&] { return list->currentText() == "coolwarm"; }));
    EXPECT_EQ(settingOf("colours").write(window->getStyle()), std::nullopt);
}

TEST_F(SettingsPanelTest, AMapIsChosenByItsPictureOrTyped)
{
    options.colourBy = "load";
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "c"));
    choose("coloursList", "magma");
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(settingOf("colours").write(window->getStyle()), "magma");
    click(*find<QCheckBox>("coloursReversed"), {8, 8});
    ASSERT_TRUE(comesTo([this] {
        return settingOf("colours").write(window->getStyle()) == std::string("magma_r");
    }));
    find<QComboBox>("coloursList")->lineEdit()->setObjectName("mapField");
    type("mapField", {"r", "e", "d", "comma", "b", "l", "u", "e"});
    ASSERT_TRUE(comesTo([this] {
        return settingOf("colours").write(window->getStyle()) == std::string("red,blue");
    }));
}

TEST_F(SettingsPanelTest, TitleUnitPlaceAndNumbersOfTheLegendAreSetThere)
{
    options.colourBy = "load";
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "c"));
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(find<QLineEdit>("legend-title")->text(), "load");
    EXPECT_EQ(find<QLineEdit>("legend-unit")->text(), "");
    const int top = inkAtTop(), bottom = inkAtBottom();
    EXPECT_GT(bottom, top + 50);
    const CameraNumbers before = window->getCameraNumbers();

    type("legend-title", {"F", "o", "r", "c", "e"});
    ASSERT_TRUE(comesTo([this] { return scene->getStyle().legend.title == std::string("Force"); }));
    type("legend-unit", {"N"});
    ASSERT_TRUE(comesTo([this] { return scene->getStyle().legend.unit == std::string("N"); }));
    choose("legend", "top");
    ASSERT_TRUE(comesTo([this] { return scene->getLegendRoom().top > 0; }));
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(scene->getLegendRoom().bottom, 0);
    EXPECT_EQ(settingOf("legend-title").write(window->getStyle()), "Force");
    EXPECT_GT(inkAtTop(), top + 50);
    EXPECT_LT(inkAtBottom(), bottom - 50);
    EXPECT_FALSE(window->getCameraNumbers() == before) << "room below is given back";

    find<QComboBox>("legend-format")->lineEdit()->setObjectName("formatField");
    type("formatField", {"period", "2", "d"});
    const auto* const line = find<SettingsPanel>("colourPanel")->findChild<QLabel*>("settingFault");
    ASSERT_TRUE(comesTo([&] { return line->isVisible(); }));
    EXPECT_THAT(line->text().toStdString(), HasSubstr("found '.2d', expected auto or a point"));
    type("formatField", {"period", "2", "f"});
    ASSERT_TRUE(comesTo(
        [this] { return scene->getStyle().legend.format.notation == NumberFormat::DECIMALS; }));

    // What was written about one scalar is not that of another.
    choose("colour-by", "curvature");
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(scene->getStyle().legend.title, std::nullopt);
    EXPECT_EQ(find<QLineEdit>("legend-title")->text(), "curvature");
    EXPECT_EQ(scene->getStyle().legend.place, LegendPlace::TOP);
    choose("legend", "off");
    ASSERT_TRUE(comesTo([this] { return scene->getLegendRoom() == FreeEdges(); }));
    ASSERT_TRUE(comesToShow());
    EXPECT_TRUE(scene->areColoursShown());
    EXPECT_EQ(inkAtTop(), top);
    choose("colour-by", "none: colours of their own");
    ASSERT_TRUE(comesTo([this] { return window->getStyle() == StyleRequest(); }));
    EXPECT_FALSE(find<QLineEdit>("legend-title")->isEnabled());
}

TEST_F(SettingsPanelTest, TheViewersKeyOfTheBackgroundIsASettingToo)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    pressRealKey("b");
    ASSERT_TRUE(comesTo([this] {
        return settingOf("background").write(window->getStyle()) == std::string("#000000");
    }));
    click(*find<QToolButton>("backgroundReset"));
    EXPECT_TRUE(comesTo([this] { return window->getStyle() == StyleRequest(); }));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_EQ(screen().pixelColor(3, 3), QColor(Qt::white));
}

TEST_F(SettingsPanelTest, AStyleStaysForFilesThatAreOpenedLaterAndForTheSameReadAgain)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    type("radiusField", {"0", "period", "2"});
    ASSERT_TRUE(comesToShow());
    DataScene* const before = scene;
    click(*view());
    pressRealKey("F5");
    ASSERT_TRUE(comesTo([&] { return scene != before && !window->isLoading(); }));
    EXPECT_EQ(radius(), 0.2);
}

TEST_F(SettingsPanelTest, AStyleThatIsChosenWhileAFileIsReadIsThatOfTheFile)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    std::string text;
    for (int i = 0; i < 300000; ++i) // takes longer than the window waits
        text += std::to_string(i) + " " + std::to_string(i % 7) + " 0\n";
    DataScene* const before = scene;
    window->openFiles({QString::fromStdString(folder.write("long.txt", text))});
    ASSERT_TRUE(window->isLoading());
    StyleRequest next;
    next.radius = 50;
    window->setStyle(next);
    ASSERT_TRUE(comesTo([this] { return !window->isLoading() && !window->isRestyling(); }));
    ASSERT_NE(scene, before);
    EXPECT_EQ(radius(), 50);
}

TEST_F(SettingsPanelTest, AComparisonThatCannotBeReadIsToldAndGivenUp)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "c"));
    QString told;
    QTimer::singleShot(300, window.get(), [&told] {
        if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            told = box->text();
            box->close();
        }
    });
    StyleRequest next;
    next.compare = folder.path("no-such-file.txt");
    window->setStyle(next);
    ASSERT_TRUE(comesTo([&] { return !told.isEmpty(); }));
    EXPECT_TRUE(told.contains("no-such-file.txt")) << told.toStdString();
    EXPECT_EQ(window->getStyle(), StyleRequest());
    EXPECT_EQ(find<QComboBox>("compare")->currentText(), "nothing");
    DataScene* const before = scene;
    window->readAgain();
    EXPECT_TRUE(comesTo([&] { return scene != before; })) << "as without it";
}

// Frames may come faster than a style is prepared.
TEST_F(SettingsPanelTest, AStyleComesWhileASeriesPlays)
{
    std::string text = "t x y z\n";
    for (int frame = 0; frame < 4; ++frame) {
        for (int i = 0; i < 3000; ++i)
            text += std::to_string(frame) + " " + std::to_string(i) + " " +
                    std::to_string(frame * i % 7) + " 0\n";
    }
    options.series.framesPerSecond = 100;
    options.slices = 8;
    options.subsegments = 2;
    ASSERT_NO_FATAL_FAILURE(openWith(text, "o"));
    ASSERT_TRUE(comesTo([this] { return player() && player()->isStaged(); }));
    auto* const repeat = window->findChild<QComboBox*>("repeatBox");
    ASSERT_NE(repeat, nullptr);
    repeat->setCurrentIndex(1); // again and again
    player()->setPlaying(true);
    StyleRequest next = window->getStyle();
    next.radius = 5;
    window->setStyle(next);
    EXPECT_TRUE(comesTo([this] { return radius() == 5; }));
    EXPECT_TRUE(player()->isPlaying());
    const std::size_t frame = player()->getFrame();
    EXPECT_TRUE(comesTo([&] { return player()->getFrame() != frame; }));
    EXPECT_EQ(radius(), 5);
    player()->setPlaying(false);
}

// What is refused is not what was asked for afterwards.
TEST_F(SettingsPanelTest, AStyleAfterOneThatCannotBeIsShown)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    StyleRequest next;
    next.radius = 1e9;
    window->setStyle(next);
    next.radius = 0.3;
    window->setStyle(next);
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(radius(), 0.3);
    EXPECT_EQ(window->getStyle().radius, 0.3);
    EXPECT_EQ(find<QLineEdit>("radiusField")->text(), "0.3");
}

// All frames have the new style, and the range of colours is that of all of them.
TEST_F(SettingsPanelTest, AStyleIsThatOfAllFramesOfASeries)
{
    std::string text = "t x y z load\n";
    for (int frame = 0; frame < 5; ++frame) {
        for (int i = 0; i < 4; ++i)
            text += std::to_string(frame) + " " + std::to_string(i) + " " +
                    std::to_string(0.1 * frame) + " 0 " + std::to_string(frame + i) + "\n";
    }
    ASSERT_NO_FATAL_FAILURE(openWith(text, "c"));
    ASSERT_NE(player(), nullptr);
    ASSERT_TRUE(comesTo([this] { return player()->isStaged(); }));
    choose("colour-by", "load");
    ASSERT_TRUE(comesTo([this] { return scene->hasColours() && scene->getColouring()->max == 7; }))
        << scene->getColouring()->max;
    EXPECT_EQ(scene->getColouring()->min, 0);
    click(*view()); // a letter in a list chooses there
    pressRealKey("o");
    ASSERT_TRUE(comesTo([this] { return find<QLineEdit>("radiusField")->isVisible(); }));
    type("radiusField", {"0", "period", "1"});
    ASSERT_TRUE(comesToShow());
    click(*view());
    ASSERT_TRUE(comesTo([this] { return view()->hasFocus(); }));
    pressRealKey("period");
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 1; }));
    EXPECT_EQ(radius(), 0.1);
    EXPECT_EQ(scene->getColouring()->max, 7);
}

TEST_F(SettingsPanelTest, AClippingPlaneIsSwitchedTurnedFlippedAndMovedAtOnce)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    const SoNode* const node = scene->getShown(0).at(0).node;
    const std::size_t styles = scene->countStyles();
    const auto shown = [this] {
        EXPECT_TRUE(comesToShow());
        return countPixels(screen(), isBlueTube);
    };
    click(*find<QCheckBox>("clipSwitch"));
    ASSERT_TRUE(comesTo([&] { return window->getStyle().clip.has_value(); }));
    EXPECT_EQ(window->getStyle().clip, parseClipPlane("z")); // which is turned to the viewer
    choose("clipList", "x");
    ASSERT_TRUE(comesTo([&] { return window->getStyle().clip == parseClipPlane("x"); }));
    EXPECT_EQ(scene->getStyle().clip->distance, 0);
    const int half = shown();
    EXPECT_EQ(scene->getShown(0).at(0).node, node);
    EXPECT_EQ(scene->countStyles(), styles) << "no mesh is made anew";

    type("clipField", {"minus", "0", "comma", "5"});
    ASSERT_TRUE(comesTo([&] { return window->getStyle().clip == parseClipPlane("x:-0.5"); }));
    const int quarter = shown();
    click(*find<QPushButton>("clipFlip"));
    ASSERT_TRUE(comesTo([&] { return window->getStyle().clip == parseClipPlane("-x:0.5"); }));
    const int threeQuarters = shown();

    auto* const slider = find<QSlider>("clipSlider");
    const int before = slider->value();
    EXPECT_NEAR(before, slider->maximum() / 2, 5); // half of the way to the end at x = -1
    slider->setFocus();
    pressRealKey("End");
    ASSERT_TRUE(comesTo([&] { return slider->value() == slider->maximum(); }));
    EXPECT_LE(window->getStyle().clip->distance.value(), 1.1);
    EXPECT_GE(window->getStyle().clip->distance.value(), 1);
    const int whole = shown();
    EXPECT_NEAR(half, whole / 2, whole / 40);
    EXPECT_NEAR(quarter, whole / 4, whole / 40);
    EXPECT_NEAR(threeQuarters, whole * 3 / 4, whole / 40);

    click(*find<QCheckBox>("clipSwitch"));
    ASSERT_TRUE(comesTo([&] { return !window->getStyle().clip; }));
    EXPECT_NEAR(shown(), whole, 2);
    EXPECT_EQ(scene->getClipPlane(), nullptr);
    EXPECT_FALSE(find<QSlider>("clipSlider")->isEnabled());
}

TEST_F(SettingsPanelTest, APlaneMayBeAcrossTheViewInDigitsThatOneTypes)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    window->viewFrom(Side::MINUS_Y);
    click(*find<QCheckBox>("clipSwitch"));
    ASSERT_TRUE(comesTo([&] { return window->getStyle().clip == parseClipPlane("-y"); }));
    auto* const list = find<QComboBox>("clipList");
    choose("clipList", "z");
    click(*find<QCheckBox>("clipSwitch")); // off
    ASSERT_TRUE(comesTo([&] { return !window->getStyle().clip; }));
    window->viewFrom(Side::X);
    click(*find<QCheckBox>("clipSwitch")); // on, as it was
    ASSERT_TRUE(comesTo([&] { return window->getStyle().clip == parseClipPlane("z"); }));
    list->setFocus();
    ASSERT_TRUE(comesTo([&] { return list->hasFocus(); }));
    pressRealKey("Down"); // as seen
    ASSERT_TRUE(comesTo([&] { return window->getStyle().clip == parseClipPlane("x"); }));
    EXPECT_EQ(list->currentText(), "x");
}

TEST_F(SettingsPanelTest, AStyleThatComesLaterIsCutAsItWasSinceThen)
{
    ASSERT_NO_FATAL_FAILURE(openWith(ROD, "o"));
    StyleRequest thick = window->getStyle();
    thick.radius = 0.3;
    window->setStyle(thick);
    ASSERT_TRUE(window->isRestyling());
    thick.clip = parseClipPlane("x:0.25");
    window->setStyle(thick);
    ASSERT_TRUE(comesToShow());
    EXPECT_EQ(radius(), 0.3);
    EXPECT_EQ(scene->getStyle().clip, parseClipPlane("x:0.25"));
    EXPECT_EQ(window->getStyle().clip, parseClipPlane("x:0.25"));
    EXPECT_NE(scene->getClipPlane(), nullptr);
}

} // namespace strandview
