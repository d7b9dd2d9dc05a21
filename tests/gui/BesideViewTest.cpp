// SPDX-License-Identifier: GPL-3.0-or-later
// Up to four views of a window as its user sees them: with the X server's keys and mouse.
#include <algorithm>
#include <cmath>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QGLWidget>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <gmock/gmock.h>

#include <strandview/model/Configuration.h>

#include "DataWindowTest.h"
#include "User.h"
#include "camera/Camera.h"
#include "scene/DataScene.h"
#include "support/realInput.h"
#include "window/NamedViews.h"
#include "window/SideBySide.h"
#include "window/ThingsModel.h"
#include "window/ViewCaption.h"

namespace strandview {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

// Seen from any side it is something.
const char* const BENT = "0 0 0\n1 0.5 0.2\n2 0 1\n";
const char* const LARGE_BENT = "0 0 0\n100 50 20\n200 0 100\n";

const BesideRequest THREE_OF_THE_SAME = fourOfTheSame();

// Of an axis in the corner, and of no tube, which is grey or blue.
bool isOfAxes(const QColor& c) { return c.saturation() > 100 && c.red() > c.blue() + 60; }

class BesideViewTest : public DataWindowTest
{
protected:
    BesideViewTest() { options.windowSize = {900, 640}; }

    const SideBySide& beside() const { return window->getSideBySide(); }
    BesideView& further(std::size_t index) const { return *beside().getViews().at(index); }
    int countViews() const { return window->findChildren<QGLWidget*>().size(); }
    // So many further ones show something.
    [[nodiscard]] bool comesToShow(std::size_t count) const
    {
        return comesTo([&] {
            bool areAllShown = beside().getViews().size() == count && !beside().isAtWork() &&
                               countViews() == int(count) + 1;
            for (std::size_t i = 0; i < count; ++i)
                areAllShown = areAllShown && sceneBeside(i);
            return areAllShown;
        });
    }
    static double endOf(const DataScene& of) { return of.getData()->rods.at(0).points.back().x; }
    // The views, the first one too.
    std::vector<QWidget*> viewsOnScreen() const
    {
        std::vector<QWidget*> all{view()};
        for (const BesideView* one : beside().getViews())
            all.push_back(one->getViewer().getGLWidget());
        return all;
    }
    std::vector<CameraNumbers> cameras() const
    {
        std::vector<CameraNumbers> all{window->getCameraNumbers()};
        for (const BesideView* one : beside().getViews())
            all.push_back(one->getCameraNumbers());
        return all;
    }
    bool areCamerasTheSame() const
    {
        const auto all = cameras();
        return std::all_of(all.begin(), all.end(), [&](const auto& one) { return one == all[0]; });
    }
    static QToolButton& closeButton(const BesideView& of)
    {
        return *of.findChild<QToolButton*>("closeView");
    }
    // Each by itself, once its view has the size that it is left with.
    [[nodiscard]] bool comeToBeSeenFrom(const std::vector<CameraNumbers>& all) const
    {
        return comesTo([&] { return cameras() == all; });
    }
    void turnFurther(std::size_t index)
    {
        ASSERT_TRUE(turn(*viewsOnScreen()[index + 1],
                         [this, index] { return further(index).getCameraNumbers(); }));
    }
    void openBent(const BesideRequest& request)
    {
        options.beside = request;
        openText(BENT, "bent.txt");
        ASSERT_TRUE(comesToShow(request.what.size()));
    }
    BesideRequest threeFiles()
    {
        return besideOf({folder.write("a.txt", rodTo(3)), folder.write("b.txt", rodTo(4)),
                         folder.write("c.txt", rodTo(5))});
    }
};

// From where it is seen, "0 -1 0".
std::string directionOf(const CameraNumbers& camera)
{
    const auto from = towardsViewer(camera);
    const auto text = [](double x) { return std::to_string(int(std::lround(x))); };
    return text(from.x) + " " + text(from.y) + " " + text(from.z);
}

} // namespace

TEST_F(BesideViewTest, TheKeyShowsFourViewsAsItIsFromTheFrontTheRightAndAbove)
{
    options.camera.azimuth = 30;
    options.camera.elevation = 20;
    ASSERT_NO_FATAL_FAILURE(openText(BENT, "bent.txt"));
    const QSize whole = view()->size();
    const auto before = towardsViewer(window->getCameraNumbers());
    pressRealKey("Control+F3");
    ASSERT_TRUE(comesToShow(3));
    EXPECT_LT((towardsViewer(window->getCameraNumbers()) - before).getNorm(), 1e-6);
    EXPECT_EQ(directionOf(further(0).getCameraNumbers()), "0 -1 0");
    EXPECT_EQ(directionOf(further(1).getCameraNumbers()), "1 0 0");
    EXPECT_EQ(directionOf(further(2).getCameraNumbers()), "0 0 1");
    EXPECT_THAT(further(0).getCaption(), EndsWith("from -y"));
    EXPECT_THAT(further(1).getCaption(), EndsWith("from x"));
    EXPECT_THAT(further(2).getCaption(), EndsWith("from z"));
    const auto views = viewsOnScreen();
    const auto placeOf = [&](std::size_t i) { return views[i]->mapToGlobal(QPoint(0, 0)); };
    for (const QWidget* one : views) {
        EXPECT_NEAR(one->width(), whole.width() / 2, 8);
        EXPECT_NEAR(one->width(), views[0]->width(), 1);
        EXPECT_NEAR(one->height(), views[0]->height(), 1);
    }
    EXPECT_EQ(placeOf(1).y(), placeOf(0).y());
    EXPECT_EQ(placeOf(2).x(), placeOf(0).x());
    EXPECT_EQ(placeOf(3), QPoint(placeOf(1).x(), placeOf(2).y()));
    ASSERT_TRUE(turn(*views[1], [this] { return further(0).getCameraNumbers(); }));
    EXPECT_THAT(further(0).getCaption(), Not(HasSubstr("from")));
}

TEST_F(BesideViewTest, TheWindowAnswersBetweenTheViewsThatItMakes)
{
    ASSERT_NO_FATAL_FAILURE(openBent({}));
    int count = countViews(), most = 0;
    QTimer answers;
    QObject::connect(&answers, &QTimer::timeout, [&] {
        most = std::max(most, countViews() - count);
        count = countViews();
    });
    answers.start(0);
    window->setBeside(THREE_OF_THE_SAME);
    ASSERT_TRUE(comesToShow(3));
    EXPECT_EQ(most, 1);
}

TEST_F(BesideViewTest, NoTwoViewsBeginFromTheSameSide)
{
    for (const NamedSide& side : SIDES) {
        options.camera = {};
        options.camera.side = side.side;
        ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
        std::set<std::string> directions;
        for (const CameraNumbers& camera : cameras())
            directions.insert(directionOf(camera));
        EXPECT_EQ(directions.size(), 4U) << side.name;
        window.reset();
    }
}

TEST_F(BesideViewTest, OneThatIsMovedMovesAll)
{
    ASSERT_NO_FATAL_FAILURE(openBent(threeFiles()));
    EXPECT_TRUE(areCamerasTheSame());
    for (QWidget* moved : viewsOnScreen()) {
        ASSERT_TRUE(turn(*moved, [this] { return window->getCameraNumbers(); }));
        EXPECT_TRUE(comesTo([this] { return areCamerasTheSame(); }));
        moved->setFocus();
        const CameraNumbers before = window->getCameraNumbers();
        pressRealKey("Alt+d");
        EXPECT_TRUE(comesTo([&] { return !(window->getCameraNumbers() == before); }));
        EXPECT_TRUE(comesTo([this] { return areCamerasTheSame(); }));
    }
}

TEST_F(BesideViewTest, AllAreShownInOneStyle)
{
    ASSERT_NO_FATAL_FAILURE(openBent(threeFiles()));
    StyleRequest next = window->getStyle();
    next.radius = 0.3;
    next.background = Colour{0, 0, 0};
    window->setStyle(next);
    const auto holdsInAll = [this](const std::function<bool(std::size_t)>& holds) {
        return comesTo([&] { return holds(0) && holds(1) && holds(2); });
    };
    EXPECT_TRUE(holdsInAll([this](std::size_t i) {
        return sceneBeside(i)->getStyle().radius == 0.3 &&
               further(i).getViewer().getBackgroundColor() == SbColor(0, 0, 0);
    }));
    setThings("rod 1: hidden");
    EXPECT_TRUE(holdsInAll([this](std::size_t i) {
        return sceneBeside(i)->getLook({0, 0}).isHidden();
    }));
    setThings("");
    next.clip = parseClipPlane("z:0.1");
    window->setStyle(next);
    EXPECT_TRUE(
        holdsInAll([this](std::size_t i) { return sceneBeside(i)->getStyle().clip.has_value(); }));
}

TEST_F(BesideViewTest, TheButtonInACaptionClosesThatViewAndUndoOpensItAgain)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    const auto before = cameras();
    click(closeButton(further(1)));
    ASSERT_TRUE(comesToShow(2));
    EXPECT_EQ(window->getBeside().what.size(), 2U);
    EXPECT_EQ(directionOf(cameras()[1]), directionOf(before[1]));
    EXPECT_EQ(directionOf(cameras()[2]), directionOf(before[3]));
    pressRealKey("Control+z");
    ASSERT_TRUE(comesToShow(3));
    EXPECT_TRUE(window->getBeside() == THREE_OF_THE_SAME);
    EXPECT_EQ(directionOf(cameras()[1]), directionOf(before[1]));
    for (int left = 2; left >= 0; --left) {
        // Where the one before it was
        ASSERT_TRUE(comesTo([this] { return further(0).x() > 0 && further(0).y() == 0; }));
        click(closeButton(further(0)));
        ASSERT_TRUE(comesToShow(std::size_t(left)));
    }
    EXPECT_EQ(countViews(), 1);
}

TEST_F(BesideViewTest, TheKeyTakesAllAwayAndBringsAllBack)
{
    const BesideRequest files = threeFiles();
    ASSERT_NO_FATAL_FAILURE(openBent(files));
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(0));
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(3));
    EXPECT_TRUE(window->getBeside() == files);
    EXPECT_EQ(endOf(*sceneBeside(0)), 3);
    EXPECT_EQ(endOf(*sceneBeside(2)), 5);
}

TEST_F(BesideViewTest, TheKeyBringsThemBackAsTheyWereSeen)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    ASSERT_NO_FATAL_FAILURE(turnFurther(0));
    ASSERT_NO_FATAL_FAILURE(turnFurther(2));
    pressRealKey("p");
    ASSERT_TRUE(comesTo([this] { return further(2).getCameraNumbers().perspective; }));
    const auto before = cameras();
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(0));
    pressRealKey("F3");
    ASSERT_TRUE(comesToShow(3));
    EXPECT_TRUE(comeToBeSeenFrom(before));
    window->resize(window->width() - 400, window->height()); // what was fitted is fitted anew
    EXPECT_TRUE(comesTo([&] { return !(cameras()[2] == before[2]); }));
    EXPECT_TRUE(cameras()[1] == before[1]);
    EXPECT_TRUE(cameras()[3] == before[3]);
}

TEST_F(BesideViewTest, AClosedOneThatUndoOpensAgainIsSeenAsBefore)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same", "same"})));
    ASSERT_NO_FATAL_FAILURE(turnFurther(0));
    QTest::qWait(100); // until that is a step
    const auto before = cameras();
    click(closeButton(further(0))); // the others are higher then
    ASSERT_TRUE(comesToShow(1));
    ASSERT_TRUE(comesTo([&] { return !(cameras()[1] == before[2]); }));
    EXPECT_EQ(undoText(), "&Undo further views");
    pressRealKey("Control+z");
    ASSERT_TRUE(comesToShow(2));
    EXPECT_TRUE(comeToBeSeenFrom(before));
    pressRealKey("Control+Shift+z");
    ASSERT_TRUE(comesToShow(1));
    EXPECT_EQ(directionOf(cameras()[1]), directionOf(before[2]));
}

TEST_F(BesideViewTest, MovesOfTheirCamerasAreStepsThatSayWhichViewItIs)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    EXPECT_FALSE(action("&Undo")->isEnabled());
    const auto before = cameras();
    click(*viewsOnScreen()[2]);
    ASSERT_TRUE(comesTo([this] { return beside().getActive() == &further(1); }));
    for (const char* key : {"Control+2", "Alt+s", "Alt+d"}) {
        const CameraNumbers last = further(1).getCameraNumbers();
        pressRealKey(key);
        ASSERT_TRUE(comesTo([&] { return !(further(1).getCameraNumbers() == last); }));
    }
    ASSERT_TRUE(comesTo([this] { return undoText() == "&Undo camera of the third view"; }));
    const auto after = cameras();
    pressRealKey("Control+z");
    EXPECT_TRUE(comeToBeSeenFrom(before));
    EXPECT_FALSE(action("&Undo")->isEnabled());
    pressRealKey("Control+Shift+z");
    EXPECT_TRUE(comeToBeSeenFrom(after));

    ASSERT_NO_FATAL_FAILURE(turnFurther(0));
    ASSERT_TRUE(comesTo([this] { return undoText() == "&Undo camera of the second view"; }));
    pressRealKey("Control+z");
    EXPECT_TRUE(comeToBeSeenFrom(after));
}

TEST_F(BesideViewTest, WhereEachWasIsTakenBackWithTheirTie)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    ASSERT_NO_FATAL_FAILURE(turnFurther(1));
    QTest::qWait(100); // until that is a step
    const auto before = cameras();
    pressRealKey("Shift+F3");
    ASSERT_TRUE(comesTo([this] { return areCamerasTheSame(); }));
    pressRealKey("Control+z");
    EXPECT_TRUE(comeToBeSeenFrom(before));
    EXPECT_FALSE(window->getBeside().isTied);
}

TEST_F(BesideViewTest, WhatTheWindowFitsIsNoStep)
{
    ASSERT_NO_FATAL_FAILURE(openText(BENT, "bent.txt"));
    pressRealKey("Control+F3");
    ASSERT_TRUE(comesToShow(3));
    const auto before = cameras();
    window->resize(window->width() - 300, window->height());
    ASSERT_TRUE(comesTo([&] { return !(cameras()[3] == before[3]); }));
    EXPECT_EQ(undoText(), "&Undo further views");
    pressRealKey("Control+z");
    EXPECT_TRUE(comesToShow(0));
    EXPECT_FALSE(action("&Undo")->isEnabled());
}

TEST_F(BesideViewTest, OtherFilesAreSeenAsAtFirst)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same", folder.write("a.txt", rodTo(3))})));
    const auto before = cameras();
    ASSERT_NO_FATAL_FAILURE(turnFurther(0));
    ASSERT_NO_FATAL_FAILURE(turnFurther(1));
    pressRealKey("F5");
    const auto turned = cameras();
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }) && comesToShow(2));
    EXPECT_TRUE(cameras() == turned);
    window->openFiles({QString::fromStdString(folder.write("large.txt", LARGE_BENT))});
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }) && comesToShow(2));
    EXPECT_EQ(directionOf(cameras()[1]), directionOf(before[1]));
    EXPECT_NEAR(cameras()[1].size, 100 * before[1].size, before[1].size);
    EXPECT_TRUE(cameras()[2] == cameras()[0]);
}

TEST_F(BesideViewTest, TheMenuAddsViewsUntilThereAreFour)
{
    ASSERT_NO_FATAL_FAILURE(openText(BENT, "bent.txt"));
    const auto openMenu = [this] {
        pressRealKey("Alt+v");
        const bool isOpen = comesTo([] { return QApplication::activePopupWidget() != nullptr; });
        const QWidget* const menu = QApplication::activePopupWidget();
        pressRealKey("w");
        return isOpen && comesTo([&] { return QApplication::activePopupWidget() != menu; });
    };
    for (std::size_t count = 1; count <= 3; ++count) {
        ASSERT_TRUE(openMenu());
        pressRealKey("s");
        ASSERT_TRUE(comesToShow(count));
    }
    EXPECT_TRUE(window->getBeside() == THREE_OF_THE_SAME);
    ASSERT_TRUE(openMenu());
    for (const QAction* entry : qobject_cast<QMenu*>(QApplication::activePopupWidget())->actions())
        EXPECT_FALSE(entry->isEnabled()) << entry->text().toStdString();
    pressRealKey("Escape");
    pressRealKey("Escape");
    EXPECT_TRUE(comesTo([] { return !QApplication::activePopupWidget(); }));
}

TEST_F(BesideViewTest, AnAddedViewLeavesTheOthersAsTheyAre)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same"})));
    ASSERT_TRUE(turn(*viewsOnScreen()[1], [this] { return further(0).getCameraNumbers(); }));
    const CameraNumbers turned = further(0).getCameraNumbers();
    const DataScene* const shown = sceneBeside();
    window->setBeside(withView(window->getBeside(), folder.write("a.txt", rodTo(3))));
    ASSERT_TRUE(comesToShow(2));
    EXPECT_EQ(sceneBeside(0), shown);
    EXPECT_TRUE(further(0).getCameraNumbers() == turned);
    EXPECT_EQ(endOf(*sceneBeside(1)), 3);
}

// By the menu: it has no key.
TEST_F(BesideViewTest, AxesAreInAllViewsOrInNone)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same"})));
    const auto toggle = [this] {
        pressRealKey("Alt+l");
        ASSERT_TRUE(comesTo([] { return QApplication::activePopupWidget() != nullptr; }));
        pressRealKey("x");
        ASSERT_TRUE(comesTo([] { return QApplication::activePopupWidget() == nullptr; }));
    };
    const auto areInAll = [this](bool shown) {
        const auto views = viewsOnScreen();
        return std::all_of(views.begin(), views.end(), [shown](const QWidget* one) {
            const QImage seen = one->screen()->grabWindow(one->winId()).toImage();
            return (countPixels(seen, isOfAxes) > 20) == shown;
        });
    };
    EXPECT_TRUE(comesTo([&] { return areInAll(true); }));
    ASSERT_NO_FATAL_FAILURE(toggle());
    EXPECT_TRUE(comesTo([&] { return areInAll(false); }));
    window->setBeside(THREE_OF_THE_SAME);
    ASSERT_TRUE(comesToShow(3));
    EXPECT_TRUE(comesTo([&] { return areInAll(false); }));
    ASSERT_NO_FATAL_FAILURE(toggle());
    EXPECT_TRUE(comesTo([&] { return areInAll(true); }));
}

TEST_F(BesideViewTest, WhatIsHiddenIsCutOnceItIsShown)
{
    options.beside = besideOf({folder.write("a.txt", rodTo(3))});
    ASSERT_NO_FATAL_FAILURE(openText(BENT, "bent.txt"));
    ASSERT_TRUE(comesToShow(1));
    setThings("rod 1: hidden");
    ASSERT_TRUE(comesToBePainted());
    for (const char* plane : {"z", "z:0.1"}) {
        StyleRequest style = window->getStyle();
        style.clip = parseClipPlane(plane);
        window->setStyle(style);
        ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }) && comesToBePainted());
    }
    EXPECT_EQ(scene->getClipPlane(), nullptr) << "of nothing that is shown";
    setThings("rod 1: shown");
    ASSERT_TRUE(comesToBePainted());
    EXPECT_NE(scene->getClipPlane(), nullptr);
    EXPECT_NE(sceneBeside()->getClipPlane(), nullptr);
}

TEST_F(BesideViewTest, OfSeveralFilesTheOneThatCannotBeReadIsNotShown)
{
    options.beside = besideOf({folder.write("a.txt", rodTo(3)), folder.write("bad.txt", "0 0\n")});
    ASSERT_NO_FATAL_FAILURE(openText(BENT, "bent.txt"));
    ASSERT_TRUE(comesTo([this] { return window->getBeside().what.size() == 1; }));
    ASSERT_TRUE(comesToShow(1));
    EXPECT_EQ(endOf(*sceneBeside()), 3);
    EXPECT_THAT(statusText(), HasSubstr("bad.txt"));
}

TEST_F(BesideViewTest, TheViewThatWasClickedLastIsTheOneThatKeysTurn)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    for (std::size_t i = 0; i < 4; ++i) {
        click(*viewsOnScreen()[i]);
        const auto isActive = [&] {
            return beside().getActive() == (i == 0 ? nullptr : &further(i - 1));
        };
        ASSERT_TRUE(comesTo(isActive));
        const auto before = cameras();
        pressRealKey("Control+2"); // from where none of them is
        EXPECT_TRUE(comesTo([&] { return directionOf(cameras()[i]) == "-1 0 0"; }));
        const CameraNumbers whole = cameras()[i];
        pressRealKey("Alt+s");
        EXPECT_TRUE(comesTo([&] { return !(cameras()[i] == whole); }));
        pressRealKey("v");
        EXPECT_TRUE(comesTo([&] { return cameras()[i].size == whole.size; }));
        for (std::size_t other = 0; other < 4; ++other)
            EXPECT_EQ(cameras()[other] == before[other], other != i) << other << " after " << i;
    }
}

TEST_F(BesideViewTest, HomeIsWhereEachViewBegan)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same", "same"})));
    const auto before = cameras();
    for (std::size_t i = 0; i < 3; ++i) {
        ASSERT_TRUE(turn(*viewsOnScreen()[i], [&] { return cameras()[i]; }));
        const auto turned = cameras();
        pressRealKey("Home");
        EXPECT_TRUE(comesTo([&] { return cameras()[i] == before[i]; })) << i;
        for (std::size_t other = 0; other < 3; ++other)
            EXPECT_TRUE(other == i || cameras()[other] == turned[other]) << other << " of " << i;
    }
}

TEST_F(BesideViewTest, NamedViewsAreOfTheViewThatWasClickedLast)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same", "same"})));
    ASSERT_NO_FATAL_FAILURE(turnFurther(0));
    const auto before = cameras();
    const User user({{[] {
                          QWidget* const dialog = QApplication::activeModalWidget();
                          return dialog && dialog->isActiveWindow();
                      },
                      [] { pressRealKey("Return"); }}});
    pressRealKey("Control+Shift+v");
    ASSERT_TRUE(comesTo([&] { return user.isDone() && !QApplication::activeModalWidget(); }));
    EXPECT_EQ(window->getViews().get(), (NamedViews::Views{{"View 1", before[1]}}));
    click(*viewsOnScreen()[2]);
    ASSERT_TRUE(comesTo([this] { return beside().getActive() == &further(1); }));
    pressRealKey("Alt+1");
    EXPECT_TRUE(comeToBeSeenFrom({before[0], before[1], before[1]}));
    window->resize(window->width() - 400, window->height());
    ASSERT_TRUE(comesToBePainted());
    EXPECT_TRUE(cameras()[2] == before[1]) << "it was not fitted";
}

TEST_F(BesideViewTest, MenusAndTheZoomAreOfTheViewThatWasClickedLast)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same"})));
    auto* const zoom = window->findChild<QLineEdit*>("zoomLineEdit");
    const auto zoomOf = [](SoQtGeneralViewer& viewer) {
        return QString::number(viewer.getCameraZoom(), 'g', 6);
    };
    click(*viewsOnScreen()[1]);
    ASSERT_TRUE(comesTo([this] { return beside().getActive() == &further(0); }));
    const auto before = cameras();
    pressRealKey("Alt+s");
    EXPECT_TRUE(comesTo([&] { return zoom->text() == zoomOf(further(0).getViewer()); }));
    ASSERT_NO_FATAL_FAILURE(typeInto(*zoom, {"5", "0", "Return"}));
    EXPECT_TRUE(comesTo([&] { return zoomOf(further(0).getViewer()) == "50"; }));
    EXPECT_EQ(beside().getActive(), &further(0));
    EXPECT_TRUE(viewsOnScreen()[1]->hasFocus());
    const CameraNumbers zoomed = further(0).getCameraNumbers();
    action("About the viewing axis")->trigger();
    EXPECT_TRUE(comesTo([&] { return !(further(0).getCameraNumbers() == zoomed); }));
    EXPECT_TRUE(cameras()[0] == before[0]);
    click(*viewsOnScreen()[0]);
    EXPECT_TRUE(comesTo([&] { return zoom->text() != "50"; }));
}

TEST_F(BesideViewTest, EscapeGivesTheKeyboardBackToTheViewThatWasClickedLast)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same"})));
    click(*viewsOnScreen()[1]);
    ASSERT_TRUE(comesTo([this] { return beside().getActive() == &further(0); }));
    const bool isTurning = further(0).getViewer().isViewing();
    pressRealKey("Escape"); // which is its own
    ASSERT_TRUE(comesTo([&] { return further(0).getViewer().isViewing() != isTurning; }));
    EXPECT_TRUE(viewsOnScreen()[1]->hasFocus());
    auto* const zoom = window->findChild<QLineEdit*>("zoomLineEdit");
    click(*zoom);
    ASSERT_TRUE(comesTo([&] { return zoom->hasFocus(); }));
    pressRealKey("Escape");
    EXPECT_TRUE(comesTo([this] { return viewsOnScreen()[1]->hasFocus(); }));
    EXPECT_EQ(beside().getActive(), &further(0));
}

TEST_F(BesideViewTest, AThingIsCentredInTheViewThatWasClickedLast)
{
    options.beside = besideOf({"same"});
    ASSERT_NO_FATAL_FAILURE(openText(std::string(BENT) + "\n5 0 0\n6 0.5 0.2\n", "two.txt"));
    ASSERT_TRUE(comesToShow(1));
    click(*viewsOnScreen()[1]);
    ASSERT_TRUE(comesTo([this] { return beside().getActive() == &further(0); }));
    const auto* const list = window->findChild<QTreeView*>("thingsList");
    ASSERT_NE(list, nullptr);
    pressRealKey("t");
    ASSERT_TRUE(comesTo([&] { return list->isVisible(); }));
    ASSERT_TRUE(comesToBePainted());
    const auto before = cameras();
    const QModelIndex ofFile = list->model()->index(0, ThingsModel::NAME);
    const QModelIndex rod = list->model()->index(0, ThingsModel::NAME, ofFile);
    click(*list->viewport(), list->visualRect(rod).center());
    ASSERT_TRUE(comesTo([&] { return list->selectionModel()->isSelected(rod); }));
    click(*window->findChild<QAbstractButton*>("centreButton"));
    EXPECT_TRUE(comesTo([&] { return cameras()[1].size < before[1].size; }));
    EXPECT_TRUE(cameras()[0] == before[0]);
    EXPECT_EQ(directionOf(cameras()[1]), directionOf(before[1]));
}

TEST_F(BesideViewTest, ACopiedCameraIsThatOfTheViewThatWasClickedLast)
{
    ASSERT_NO_FATAL_FAILURE(openBent(besideOf({"same", folder.write("a.txt", rodTo(3))})));
    const char* const names[] = {"first", "second", "third"};
    for (std::size_t i = 0; i < 3; ++i) {
        click(*viewsOnScreen()[i]);
        ASSERT_TRUE(
            comesTo([&] { return beside().getActive() == (i == 0 ? nullptr : &further(i - 1)); }));
        pressRealKey("Control+k");
        const std::string text = "--camera " + formatCamera(cameras()[i]);
        const std::string told = std::string("Copied, of the ") + names[i] + " view: " + text;
        EXPECT_TRUE(comesTo([&] { return statusText() == told; })) << statusText();
        EXPECT_EQ(QApplication::clipboard()->text().toStdString(), text);
    }
}

TEST_F(BesideViewTest, WhatIsFittedStaysSoInAnotherSize)
{
    options.windowSize = {1200, 420};
    options.camera.side = Side::Z;
    options.beside = besideOf({"same"});
    ASSERT_NO_FATAL_FAILURE(openText("0 0 0\n0 0 5\n0 0 9\n", "along.txt"));
    ASSERT_TRUE(comesToShow(1));
    const float before = further(0).getCameraNumbers().size;
    window->resize(500, 420); // from x it is seen along the width
    EXPECT_TRUE(comesTo([&] { return further(0).getCameraNumbers().size > 1.2F * before; }));
    const CameraNumbers fitted = further(0).getCameraNumbers();
    click(*viewsOnScreen()[1]);
    ASSERT_TRUE(comesTo([this] { return beside().getActive() == &further(0); }));
    pressRealKey("v");
    QTest::qWait(200);
    EXPECT_TRUE(further(0).getCameraNumbers() == fitted);
}

TEST_F(BesideViewTest, AClickTellsWhichViewItWasIn)
{
    options.camera.side = Side::Z;
    options.beside = fourOfTheSame();
    ASSERT_NO_FATAL_FAILURE(openText("-1 -1 -1\n0 0 0\n1 1 1\n", "rod.txt"));
    ASSERT_TRUE(comesToShow(3));
    for (std::size_t i = 0; i < 3; ++i) {
        const QWidget& clicked = *viewsOnScreen()[i + 1];
        const QPoint middle = clicked.mapToGlobal(clicked.rect().center());
        clickRealRightButton(middle.x(), middle.y());
        EXPECT_TRUE(comesTo([&] { return statusText().find(further(i).getCaption() + ": ") == 0; }))
            << statusText();
        EXPECT_THAT(statusText(), HasSubstr("rod.txt"));
    }
}

TEST_F(BesideViewTest, CaptionsAreReadInANarrowWindow)
{
    options.windowSize = {200, 200}; // as narrow as it gets
    const std::string name = "a_file_with_a_name_that_is_longer_than_any_view_is_wide.txt";
    options.beside = besideOf({folder.write(name, rodTo(3)), folder.write("b.txt", rodTo(4)),
                               folder.write("c.txt", rodTo(5))});
    ASSERT_NO_FATAL_FAILURE(openText(BENT, "bent.txt"));
    ASSERT_TRUE(comesToShow(3));
    int captions = 0;
    for (const QWidget* widget : window->findChildren<QWidget*>()) {
        const auto* const caption = dynamic_cast<const ViewCaption*>(widget);
        if (!caption)
            continue;
        const auto* const label = caption->findChild<QLabel*>();
        EXPECT_GE(label->text().size(), 8) << caption->getText();
        EXPECT_LE(label->fontMetrics().horizontalAdvance(label->text()), label->width());
        EXPECT_THAT(label->text().toStdString(), EndsWith(".txt"));
        EXPECT_EQ(label->toolTip().toStdString(), caption->getText());
        ++captions;
    }
    EXPECT_EQ(captions, 4);
}

TEST_F(BesideViewTest, EachIsNamedForThoseWhoHearIt)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    std::set<std::string> names;
    for (const BesideView* one : beside().getViews()) {
        const std::string ofView = one->getViewer().getGLWidget()->accessibleName().toStdString();
        const std::string ofButton = closeButton(*one).accessibleName().toStdString();
        EXPECT_THAT(ofView, HasSubstr(one->getCaption()));
        EXPECT_THAT(ofButton, StartsWith("Close"));
        EXPECT_THAT(ofButton, HasSubstr(one->getCaption()));
        names.insert({ofView, ofButton});
    }
    EXPECT_EQ(names.size(), 6U);
}

TEST_F(BesideViewTest, TabLeavesAFurtherViewToo)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    std::set<QWidget*> visited;
    view()->setFocus();
    for (int i = 0; i < 60; ++i) {
        QWidget* const before = QApplication::focusWidget();
        visited.insert(before);
        pressRealKey("Tab");
        ASSERT_TRUE(comesTo([&] { return QApplication::focusWidget() != before; }));
    }
    for (const BesideView* one : beside().getViews()) {
        EXPECT_EQ(visited.count(one->getViewer().getGLWidget()), 1U);
        EXPECT_EQ(visited.count(&closeButton(*one)), 1U);
    }
    EXPECT_EQ(visited.count(view()), 1U);
}

TEST_F(BesideViewTest, TheMouseSharesTheRoomAmongThem)
{
    ASSERT_NO_FATAL_FAILURE(openBent(THREE_OF_THE_SAME));
    const auto views = viewsOnScreen();
    const QSize before = views[0]->size();
    const QPoint edge = views[0]->mapToGlobal(QPoint(views[0]->width() + 2, 50));
    dragRealPointer(edge.x(), edge.y(), edge.x() + 100, edge.y());
    EXPECT_TRUE(comesTo([&] { return std::abs(views[0]->width() - before.width() - 100) < 10; }));
    EXPECT_NEAR(views[2]->width(), views[0]->width(), 1);
    EXPECT_NEAR(views[1]->width(), before.width() - 100, 12);
}

} // namespace strandview
