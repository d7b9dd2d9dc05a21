// SPDX-License-Identifier: GPL-3.0-or-later
// Views of the same data beside each other, which draw the same nodes.
#include <algorithm>
#include <string>
#include <vector>

#include <Inventor/nodes/SoSeparator.h>
#include <QGLWidget>
#include <QScreen>
#include <gmock/gmock.h>

#include <SoMeshShape.h>

#include <strandview/model/Configuration.h>

#include "DataWindowTest.h"
#include "pureColours.h"
#include "scene/DataScene.h"
#include "support/RecordingGL.h"
#include "support/drawnCoarsely.h"
#include "support/realInput.h"
#include "window/Player.h"
#include "window/SideBySide.h"

namespace strandview {

using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

std::string frameOf(int points, double height)
{
    std::string text;
    for (int i = 0; i < points; ++i)
        text += std::to_string(i) + " " + std::to_string(height * (i * i % 7)) + " " +
                std::to_string(i * i % 5) + "\n";
    return text;
}

const std::size_t RODS = 0, BIRODS = 1; // kinds, as they are drawn

class MirrorTest : public DataWindowTest
{
protected:
    MirrorTest()
    {
        options.windowSize = {900, 640};
        options.beside = fourOfTheSame();
        options.camera.side = Side::Z;
    }

    BesideView& further(std::size_t index) const
    {
        return *window->getSideBySide().getViews().at(index);
    }
    std::size_t countFurther() const { return window->getSideBySide().getViews().size(); }
    std::vector<DataScene*> scenesBeside() const
    {
        std::vector<DataScene*> scenes;
        for (std::size_t i = 0; i < countFurther(); ++i)
            scenes.push_back(sceneBeside(i));
        return scenes;
    }
    [[nodiscard]] bool comesToShow(std::size_t count) const
    {
        return comesTo([&] {
            const auto scenes = scenesBeside();
            return scenes.size() == count && !window->getSideBySide().isAtWork() &&
                   std::count(scenes.begin(), scenes.end(), nullptr) == 0;
        });
    }
    void openFour(const std::string& text, const std::string& name)
    {
        ASSERT_NO_FATAL_FAILURE(openText(text, name));
        ASSERT_TRUE(comesToShow(3));
    }
    // How many further views draw the first one's nodes, all of them and no others.
    int countMirrors() const
    {
        const auto shapes = allOf<SoMeshShape>(scene);
        EXPECT_FALSE(shapes.empty());
        const auto scenes = scenesBeside();
        return int(std::count_if(scenes.begin(), scenes.end(), [&](DataScene* beside) {
            return allOf<SoMeshShape>(beside) == shapes;
        }));
    }
    std::vector<QWidget*> viewsOnScreen() const
    {
        std::vector<QWidget*> all{view()};
        for (const BesideView* one : window->getSideBySide().getViews())
            all.push_back(one->getViewer().getGLWidget());
        return all;
    }
    // How many views show enough pixels of a colour.
    int countShowing(bool (*holds)(const QColor&)) const
    {
        const auto all = viewsOnScreen();
        return int(std::count_if(all.begin(), all.end(), [&](const QWidget* one) {
            const QImage seen = one->screen()->grabWindow(one->winId()).toImage();
            return countPixels(seen.copy(0, 0, seen.width() - 100, seen.height()), holds) > 50;
        }));
    }
    bool comesToBeShownBy(int views, bool (*holds)(const QColor&)) const
    {
        return comesTo([&] { return countShowing(holds) == views; });
    }
    void openSeries()
    {
        options.tubeColour = Colour{1, 0, 0};
        ASSERT_NO_FATAL_FAILURE(
            openFour(frameOf(9, 1) + "\n\n" + frameOf(9, 2) + "\n\n" + frameOf(9, 3), "run.txt"));
        ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    }
};

// Along x, seen beside that at another height from every side.
std::string curveAt(double y)
{
    const std::string height = std::to_string(y) + ", " + std::to_string(y / 2);
    const std::string frame = "[0, 0.7071067811865476, 0, 0.7071067811865476]";
    return R"({"points": [[0, )" + height + "], [1, " + height + "], [2, " + height +
           R"(]], "quaternions": [)" + frame + ", " + frame + ", " + frame + "]}";
}

} // namespace

TEST_F(MirrorTest, FurtherViewsDrawTheNodesOfTheFirst)
{
    ASSERT_NO_FATAL_FAILURE(openFour(frameOf(9, 1), "rod.txt"));
    EXPECT_EQ(countMirrors(), 3);
    for (const DataScene* beside : scenesBeside()) {
        EXPECT_NE(beside, scene);
        EXPECT_EQ(beside->getData(), scene->getData());
        EXPECT_EQ(beside->getBox(), scene->getBox());
    }
}

TEST_F(MirrorTest, OpeningThemFillsNoBuffersOfTheData)
{
    options.beside = {};
    options.slices = 10;
    options.subsegments = 2;
    ASSERT_NO_FATAL_FAILURE(openText(frameOf(1500, 1), "rod.txt"));
    ASSERT_TRUE(comesToBePainted());
    const auto bytesOf = [](const RecordedCalls& calls) {
        double bytes = 0;
        for (const GLCall& call : calls) {
            if (call.name == "glBufferData" || call.name == "glMapBufferRange")
                bytes += double(call.arguments.at(1));
        }
        return bytes;
    };
    RecordingGL::start();
    for (SoMeshShape* const shape : allOf<SoMeshShape>(scene))
        shape->touch(); // as if it had changed
    ASSERT_TRUE(comesToBePainted());
    ASSERT_GT(bytesOf(RecordingGL::stop()), 1e5);
    RecordingGL::start();
    window->setBeside(fourOfTheSame());
    ASSERT_TRUE(comesToShow(3));
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(comesToBePainted());
    EXPECT_LT(bytesOf(RecordingGL::stop()), 1e4);
}

TEST_F(MirrorTest, TheNextFrameIsThereInAllAtOnce)
{
    ASSERT_NO_FATAL_FAILURE(openSeries());
    for (const std::size_t frame : {2U, 1U}) {
        bool isShown = false;
        const auto watch = QObject::connect(player(), &Player::frameShown, [&](std::size_t shown) {
            isShown = shown == frame;
            EXPECT_EQ(countMirrors(), 3);
            for (const DataScene* beside : scenesBeside()) {
                EXPECT_EQ(beside->getData(), scene->getData());
                EXPECT_EQ(beside->boxOf({RODS, 0}), scene->boxOf({RODS, 0}));
            }
        });
        player()->goTo(frame);
        EXPECT_TRUE(comesTo([&] { return isShown; }));
        QObject::disconnect(watch);
    }
    EXPECT_TRUE(comesToBeShownBy(4, isRed));
}

TEST_F(MirrorTest, AnotherStyleIsThereInAllAtOnceAndLeavesNothingOfTheLast)
{
    ASSERT_NO_FATAL_FAILURE(openSeries());
    const auto groupOf = [](const DataScene& of) { return of.getShown(RODS).at(0).group; };
    SoSeparator* const before = groupOf(*scene);
    before->ref();
    StyleRequest next = window->getStyle();
    next.radius = 0.4;
    const auto watch = QObject::connect(window.get(), &MainWindow::styleShown, [&] {
        EXPECT_NE(groupOf(*scene), before);
        EXPECT_EQ(countMirrors(), 3);
        EXPECT_EQ(before->getRefCount(), 1);
    });
    window->setStyle(next);
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    EXPECT_NE(groupOf(*scene), before);
    for (const DataScene* beside : scenesBeside())
        EXPECT_EQ(beside->getStyle().radius, 0.4);
    QObject::disconnect(watch);
    before->unref();
}

TEST_F(MirrorTest, WhatIsHiddenCutOrColouredIsSoInAll)
{
    options.tubeColour = Colour{0, 0, 1};
    ASSERT_NO_FATAL_FAILURE(openFour("0 0 0\n1 0.5 0.2\n2 0 1\n", "bent.txt"));
    EXPECT_TRUE(comesToBeShownBy(4, isBlue));
    setThings("rod 1: colour=#ff0000");
    EXPECT_TRUE(comesToBeShownBy(4, isRed) && comesToBeShownBy(0, isBlue));
    setThings("rod 1: hidden");
    EXPECT_TRUE(comesToBeShownBy(0, isRed));
    setThings("rod 1: transparency=0.2; rod 1: colour=#ff0000");
    EXPECT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    for (const DataScene* beside : scenesBeside())
        EXPECT_THAT(allOf<SoSeparator>(const_cast<DataScene*>(beside)),
                    SizeIs(allOf<SoSeparator>(scene).size()));
    setThings("");
    EXPECT_TRUE(comesToBeShownBy(4, isBlue));
    StyleRequest cut = window->getStyle();
    cut.clip = parseClipPlane("x:-100");
    window->setStyle(cut);
    EXPECT_TRUE(comesToBeShownBy(0, isBlue));
    cut.clip.reset();
    window->setStyle(cut);
    EXPECT_TRUE(comesToBeShownBy(4, isBlue));
    EXPECT_EQ(countMirrors(), 3);
}

TEST_F(MirrorTest, AStrandThatLooksOtherwiseDoesSoInAll)
{
    options.radius = 0.2;
    options.showRibbon = false;
    ASSERT_NO_FATAL_FAILURE(openFour(R"({"strandview": 1, "birods": [{"average": )" + curveAt(0) +
                                         R"(, "strand1": )" + curveAt(1) + R"(, "strand2": )" +
                                         curveAt(-1) + "}]}",
                                     "pair.json"));
    const char* const colours = "birod 1 strand 1: colour=#ff0000; birod 1 strand 2: "
                                "colour=#0000ff";
    setThings(colours);
    EXPECT_TRUE(comesTo([this] { return countShowing(isRed) > 2 && countShowing(isBlue) > 2; }));
    const int before = countShowing(isBlue);
    setThings(std::string(colours) + "; birod 1 strand 1: hidden");
    EXPECT_TRUE(comesToBeShownBy(0, isRed));
    EXPECT_GE(countShowing(isBlue), before);
    EXPECT_EQ(countMirrors(), 3);
    for (const DataScene* beside : scenesBeside())
        EXPECT_EQ(beside->boxOf({BIRODS, 0}), scene->boxOf({BIRODS, 0}));
    setThings(colours);
    EXPECT_TRUE(comesToBeShownBy(before, isBlue) &&
                comesTo([this] { return countShowing(isRed) > 2; }));
}

TEST_F(MirrorTest, EachCanBeClosedAndTheOthersGoOn)
{
    options.tubeColour = Colour{0, 0, 1};
    ASSERT_NO_FATAL_FAILURE(openFour("0 0 0\n1 0.5 0.2\n2 0 1\n", "bent.txt"));
    for (std::size_t left = 3; left > 0; --left) {
        window->setBeside(withoutView(window->getBeside(), left == 3 ? 1 : 0));
        ASSERT_TRUE(comesToShow(left - 1));
        EXPECT_TRUE(comesToBeShownBy(int(left), isBlue));
        StyleRequest next = window->getStyle();
        next.radius = 0.1 * double(left);
        window->setStyle(next);
        ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
        EXPECT_TRUE(comesToBeShownBy(int(left), isBlue));
        EXPECT_EQ(countMirrors(), int(left) - 1);
    }
}

TEST_F(MirrorTest, OneIsDrawnCoarselyWhileTheOthersAreDrawnFinely)
{
    ASSERT_NO_FATAL_FAILURE(openFour(frameOf(9, 1), "rod.txt"));
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    const DrawnCoarsely watched(scene);
    further(1).drawCoarsely(true);
    const auto drawnBy = [&](WindowViewer& viewer) {
        std::vector<bool> drawn;
        for (const DrawnCoarsely::Drawing& drawing : watched.drawings) {
            if (drawing.action == viewer.getGLRenderAction())
                drawn.push_back(drawing.isCoarse);
        }
        return drawn;
    };
    ASSERT_TRUE(comesTo([&] {
        for (std::size_t i = 0; i < 3; ++i)
            further(i).getViewer().scheduleRedraw();
        return !drawnBy(further(0).getViewer()).empty() &&
               !drawnBy(further(1).getViewer()).empty() && !drawnBy(further(2).getViewer()).empty();
    }));
    EXPECT_THAT(drawnBy(further(0).getViewer()), Each(false));
    EXPECT_THAT(drawnBy(further(1).getViewer()), Each(true));
    EXPECT_THAT(drawnBy(further(2).getViewer()), Each(false));
}

TEST_F(MirrorTest, AClickTellsWhatIsThere)
{
    options.beside = besideOf({"same"});
    options.beside.isTied = true;
    ASSERT_NO_FATAL_FAILURE(openText("0 0 0\n1 0 0\n2 0 0\n", "rod.txt"));
    ASSERT_TRUE(comesToShow(1));
    ASSERT_TRUE(comesToBePainted());
    setThings("rod 1: name=middle");
    const QWidget& second = *viewsOnScreen()[1];
    const QPoint middle = second.mapToGlobal(second.rect().center());
    clickRealRightButton(middle.x(), middle.y());
    EXPECT_TRUE(comesTo([this] { return statusText().find("middle") != std::string::npos; }))
        << statusText();
    EXPECT_THAT(statusText(), HasSubstr("The same"));
}

TEST_F(MirrorTest, LegendsTellTheRangeOfEachFrame)
{
    options.colourBy = "curvature";
    options.ownRange = true;
    ASSERT_NO_FATAL_FAILURE(openSeries());
    const double first = scene->getColouring()->max;
    player()->goTo(2);
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 2; }));
    EXPECT_NE(scene->getColouring()->max, first);
    for (const DataScene* beside : scenesBeside())
        EXPECT_EQ(beside->getColouring()->max, scene->getColouring()->max);
    window->setColours(false);
    EXPECT_FALSE(scene->areColoursShown());
    for (const DataScene* beside : scenesBeside())
        EXPECT_FALSE(beside->areColoursShown());
}

TEST_F(MirrorTest, TheGhostOfTheFirstIsInAll)
{
    options.compare = folder.write("peak.txt", "0 0 0\n1 5 0\n2 0 1\n");
    options.showGhost = true;
    ASSERT_NO_FATAL_FAILURE(openFour("0 0 0\n1 0.5 0.2\n2 0 1\n", "bent.txt"));
    EXPECT_THAT(allOf<SoMeshShape>(scene), SizeIs(2));
    EXPECT_EQ(countMirrors(), 3);
    StyleRequest next = window->getStyle();
    next.showGhost = false;
    window->setStyle(next);
    ASSERT_TRUE(comesTo([this] { return !window->isRestyling(); }));
    EXPECT_THAT(allOf<SoMeshShape>(scene), SizeIs(1));
    EXPECT_EQ(countMirrors(), 3);
    for (const DataScene* beside : scenesBeside())
        EXPECT_EQ(beside->getBox(), scene->getBox());
}

TEST_F(MirrorTest, OtherFilesAreThereInAll)
{
    options.tubeColour = Colour{0, 0, 1};
    ASSERT_NO_FATAL_FAILURE(openFour("0 0 0\n1 0.5 0.2\n2 0 1\n", "bent.txt"));
    SoSeparator* const before = scene->getShown(RODS).at(0).group;
    before->ref();
    DataScene* const sceneBefore = scene;
    sceneBefore->ref();
    window->openFiles({QString::fromStdString(folder.write("large.txt", frameOf(9, 1)))});
    ASSERT_TRUE(comesTo([this] { return !window->isLoading(); }) && comesToShow(3));
    const auto* const data = sceneBeside(0)->getData().get();
    EXPECT_EQ(data->rods.at(0).points.size(), 9U);
    for (DataScene* beside : scenesBeside()) {
        EXPECT_EQ(beside->getData().get(), data);
        EXPECT_EQ(allOf<SoMeshShape>(beside), allOf<SoMeshShape>(sceneBeside(0)));
    }
    EXPECT_NE(sceneBeside(0)->getShown(RODS).at(0).group, before);
    EXPECT_TRUE(comesToBeShownBy(4, isBlue));
    sceneBefore->unref();
    EXPECT_EQ(before->getRefCount(), 1);
    before->unref();
}

// The first frame of data without others is the same, as long as there are no others.
TEST_F(MirrorTest, AFirstFrameIsOfItsOwnOnceThereAreMore)
{
    options.beside = besideOf({"first"});
    const std::string one = frameOf(9, 1), two = one + "\n\n" + frameOf(9, 2);
    ASSERT_NO_FATAL_FAILURE(openText(one, "run.txt"));
    ASSERT_TRUE(comesToShow(1));
    EXPECT_TRUE(sceneBeside()->isMirror());
    const auto readAgain = [this](const std::string& text, bool isMirror) {
        folder.write("run.txt", text);
        pressRealKey("F5");
        return comesTo([&] {
            return !window->isLoading() && (player() == nullptr) == isMirror &&
                   !window->getSideBySide().isAtWork() && sceneBeside()->isMirror() == isMirror;
        });
    };
    ASSERT_TRUE(readAgain(two, false));
    const auto highest = [this] { return sceneBeside()->boxOf({RODS, 0}).getMax()[1]; };
    const float ofFirst = highest();
    ASSERT_TRUE(comesTo([this] { return player()->isStaged() && player()->isUpToDate(); }));
    player()->goTo(1);
    ASSERT_TRUE(comesTo([this] { return player()->getFrame() == 1; }));
    EXPECT_EQ(highest(), ofFirst);
    EXPECT_THAT(allOf<SoMeshShape>(sceneBeside()), SizeIs(1));
    ASSERT_TRUE(readAgain(one, true));
    EXPECT_EQ(highest(), ofFirst);
}

} // namespace strandview
