// SPDX-License-Identifier: GPL-3.0-or-later
// What the user changes in the window can be taken back, and done again.
#include "window/History.h"

#include <QAction>
#include <QCheckBox>
#include <QTest>
#include <QTreeView>
#include <gmock/gmock.h>

#include "DataWindowTest.h"
#include "scene/DataScene.h"
#include "support/realInput.h"

namespace strandview {

namespace {

const char* const RODS = "-1 0 0\n0 0.1 0\n1 0 0\n\n-1 1 0\n0 1.1 0\n1 1 0\n";

class HistoryTest : public DataWindowTest
{
protected:
    void SetUp() override
    {
        ASSERT_NO_FATAL_FAILURE(openText(RODS, "rods.txt"));
        ASSERT_TRUE(comesToBePainted());
    }
    bool isFrom(const CameraNumbers& camera) const { return window->getCameraNumbers() == camera; }
    void undo() const { pressRealKey("Control+z"); }
    void redo() const { pressRealKey("Control+Shift+z"); }
    // Until what follows is a step of its own.
    static void pause() { QTest::qWait(int(History::TOGETHER.count()) + 100); }
    void setRadius(double radius) const
    {
        StyleRequest style = window->getStyle();
        style.radius = radius;
        window->setStyle(style);
    }
};

// Of a state that no window has.
class StepsTest : public testing::Test
{
protected:
    StepsTest() { history.begin(); }
    void compareWith(const std::optional<std::string>& file)
    {
        state.style.compare = file;
        history.note();
    }
    void move()
    {
        state.camera.position[0] += 1;
        history.note();
    }
    void refuseFor(const std::optional<std::string>& file)
    {
        state.style.compare = file;
        history.refuse();
    }

    WindowState state;
    History history{[this] { return state; }, [this](const WindowState& next) { state = next; }};
};

} // namespace

TEST_F(StepsTest, WhatIsRefusedIsTakenOutOfTheStepsThatWereMadeSince)
{
    move();
    compareWith("unreadable");
    move();
    refuseFor(std::nullopt);
    const WindowState last = state;
    ASSERT_EQ(history.steps.count(), 2);
    history.steps.undo();
    EXPECT_EQ(state.style.compare, std::nullopt);
    EXPECT_EQ(state.camera.position[0], last.camera.position[0] - 1);
    history.steps.undo();
    EXPECT_EQ(state.style.compare, std::nullopt);
    EXPECT_EQ(state.camera.position[0], last.camera.position[0] - 2);
    history.steps.redo();
    history.steps.redo();
    EXPECT_TRUE(state == last);
}

TEST_F(StepsTest, WhatIsRefusedAloneIsNoStep)
{
    compareWith("unreadable");
    refuseFor(std::nullopt);
    EXPECT_EQ(history.steps.count(), 0);
    EXPECT_FALSE(history.steps.canUndo());
    EXPECT_FALSE(history.steps.canRedo());
}

TEST_F(StepsTest, WhatWasThereBeforeTheRefusedComesBackStepByStep)
{
    compareWith("readable");
    move();
    compareWith("unreadable");
    move();
    refuseFor("readable");
    EXPECT_EQ(history.steps.count(), 3);
    history.steps.undo();
    history.steps.undo();
    EXPECT_EQ(state.style.compare, "readable");
    history.steps.undo();
    EXPECT_EQ(state.style.compare, std::nullopt);
}

TEST_F(StepsTest, LooksOfManyThingsComeBackOverStepsThatLeaveThem)
{
    state.style.things.ofThings[{ThingKind::ROD, 3}].radius = 0.5;
    history.note();
    move();
    history.steps.undo();
    EXPECT_EQ(state.style.things.of({ThingKind::ROD, 3}).radius, 0.5);
    history.steps.undo();
    EXPECT_EQ(state.style.things.of({ThingKind::ROD, 3}).radius, std::nullopt);
    history.steps.redo();
    EXPECT_EQ(state.style.things.of({ThingKind::ROD, 3}).radius, 0.5);
}

TEST_F(StepsTest, CamerasOfFurtherViewsComeBackEachByItself)
{
    const auto cameraAt = [](float x) {
        return BesideCamera{{false, {x, 0, 0}, {0, 0, 0, 1}, 1, 1}};
    };
    state.beside = {{"same", "same"}, false, {cameraAt(1), cameraAt(2)}};
    history.begin();
    state.beside.cameras[1] = cameraAt(3);
    history.note();
    EXPECT_EQ(history.steps.undoText(), "camera of the third view");
    state.beside.cameras[0] = cameraAt(4);
    history.note();
    EXPECT_EQ(history.steps.undoText(), "camera of the second view");
    {
        const History::Pause pause(history); // as by another size
        state.beside.cameras[1] = cameraAt(5);
    }
    history.steps.undo();
    EXPECT_TRUE(state.beside.cameras[0] == cameraAt(1));
    EXPECT_TRUE(state.beside.cameras[1] == cameraAt(5));
    history.steps.undo();
    EXPECT_TRUE(state.beside.cameras[1] == cameraAt(2));
}

TEST_F(HistoryTest, ThereIsNothingToTakeBackAtFirst)
{
    EXPECT_FALSE(action("&Undo")->isEnabled());
    EXPECT_FALSE(action("&Redo")->isEnabled());
}

TEST_F(HistoryTest, ACameraThatAKeyMovedComesBackExactly)
{
    const CameraNumbers before = window->getCameraNumbers();
    pressRealKey("Control+1");
    ASSERT_TRUE(comesTo([&] { return !isFrom(before) && action("&Undo")->isEnabled(); }));
    const CameraNumbers after = window->getCameraNumbers();
    EXPECT_EQ(undoText(), "&Undo camera");
    undo();
    EXPECT_TRUE(comesTo([&] { return isFrom(before); }));
    redo();
    EXPECT_TRUE(comesTo([&] { return isFrom(after); }));
}

TEST_F(HistoryTest, MovesOfTheCameraWithinASecondAreOneStep)
{
    const CameraNumbers before = window->getCameraNumbers();
    for (int i = 0; i < 4; ++i)
        pressRealKey("d");
    ASSERT_TRUE(comesTo([&] { return action("&Undo")->isEnabled(); }));
    QTest::qWait(200);
    undo();
    EXPECT_TRUE(comesTo([&] { return isFrom(before); }));
    EXPECT_FALSE(action("&Undo")->isEnabled());
}

TEST_F(HistoryTest, MovesWithAPauseBetweenThemAreStepsOfTheirOwn)
{
    pressRealKey("d");
    ASSERT_TRUE(comesTo([&] { return action("&Undo")->isEnabled(); }));
    const CameraNumbers between = window->getCameraNumbers();
    pause();
    pressRealKey("d");
    ASSERT_TRUE(comesTo([&] { return !isFrom(between); }));
    QTest::qWait(100);
    undo();
    EXPECT_TRUE(comesTo([&] { return isFrom(between); }));
    EXPECT_TRUE(action("&Undo")->isEnabled());
}

TEST_F(HistoryTest, AStyleComesBackAndTheViewWithIt)
{
    const QImage before = screen();
    setRadius(0.3);
    ASSERT_TRUE(comesTo([&] { return !window->isRestyling(); }) && comesToBePainted());
    EXPECT_NE(screen(), before);
    EXPECT_EQ(undoText(), "&Undo radius");
    undo();
    ASSERT_TRUE(comesTo([&] { return !window->getStyle().radius && !window->isRestyling(); }));
    ASSERT_TRUE(comesToBePainted());
    EXPECT_EQ(screen(), before);
    redo();
    EXPECT_TRUE(comesTo([&] { return window->getStyle().radius == 0.3; }));
}

TEST_F(HistoryTest, WhatIsDraggedToWhereItWasIsNoStep)
{
    for (const double radius : {0.1, 0.2, 0.3})
        setRadius(radius);
    StyleRequest style = window->getStyle();
    style.radius.reset();
    window->setStyle(style);
    EXPECT_FALSE(action("&Undo")->isEnabled());
}

TEST_F(HistoryTest, AStyleThatIsRefusedIsNoStep)
{
    StyleRequest style = window->getStyle();
    style.colourBy = "nothing";
    window->setStyle(style);
    ASSERT_TRUE(comesTo([&] { return !window->isRestyling(); }));
    EXPECT_FALSE(window->getStyle().colourBy);
    EXPECT_FALSE(action("&Undo")->isEnabled());
}

TEST_F(HistoryTest, AHiddenThingComesBack)
{
    const Thing second{scene->getThings().back()};
    setThings("rod 2: hidden");
    ASSERT_TRUE(scene->getLook(second).isHidden());
    EXPECT_EQ(undoText(), "&Undo things");
    undo();
    EXPECT_TRUE(comesTo([&] { return !scene->getLook(second).isHidden(); }));
    redo();
    EXPECT_TRUE(comesTo([&] { return scene->getLook(second).isHidden(); }));
}

TEST_F(HistoryTest, EachStepTakesBackWhatItChangedAlone)
{
    setRadius(0.2);
    pressRealKey("Control+3");
    ASSERT_TRUE(comesTo([&] { return undoText() == "&Undo camera"; }));
    const CameraNumbers camera = window->getCameraNumbers();
    window->resize(window->width() + 60, window->height()); // fitted anew by the window
    ASSERT_TRUE(comesToBePainted());
    undo(); // the camera
    ASSERT_TRUE(comesTo([&] { return undoText() == "&Undo radius"; }));
    EXPECT_FALSE(isFrom(camera));
    EXPECT_EQ(window->getStyle().radius, 0.2);
    const CameraNumbers before = window->getCameraNumbers();
    undo();
    EXPECT_TRUE(comesTo([&] { return !window->getStyle().radius; }));
    EXPECT_TRUE(isFrom(before));
}

TEST_F(HistoryTest, WhatTheWindowDoesByItselfIsNoStep)
{
    window->resize(window->width() + 80, window->height() + 40);
    ASSERT_TRUE(comesToBePainted());
    QTest::qWait(100);
    EXPECT_FALSE(action("&Undo")->isEnabled());
}

TEST_F(HistoryTest, ReadingAgainKeepsTheStepsAndOtherFilesEndThem)
{
    setRadius(0.2);
    pressRealKey("F5");
    ASSERT_TRUE(comesTo([&] { return !window->isLoading(); }) && comesToBePainted());
    EXPECT_EQ(undoText(), "&Undo radius");
    window->openFiles({QString::fromStdString(folder.write("other.txt", "0 0 0\n1 0 0\n2 1 0\n"))});
    ASSERT_TRUE(comesTo([&] { return !window->isLoading(); }));
    EXPECT_FALSE(action("&Undo")->isEnabled());
}

} // namespace strandview
