// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoQtGeneralViewer.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <set>
#include <sstream>

#include <QGLWidget>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QtTest/QTest>
#include <gmock/gmock.h>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoEventCallback.h>
#include <Inventor/nodes/SoFrustumCamera.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShaderParameter.h>

#include <LightingDialog.h>
#include <ScreenshotDialog.h>

#include "ViewerWindow.h"
#include "countColours.h"

using testing::AllOf;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

using Strings = std::vector<std::string>;

void expectNear(const SbVec3f& actual, const SbVec3f& expected, float tolerance = 1e-5f)
{
    EXPECT_LE((actual - expected).length(), tolerance)
        << actual.toString().getString() << " instead of " << expected.toString().getString();
}

SbVec3f directionOf(const SoCamera& camera)
{
    SbVec3f direction;
    camera.orientation.getValue().multVec(SbVec3f(0, 0, -1), direction);
    return direction;
}

SbVec3f upOf(const SoCamera& camera)
{
    SbVec3f up;
    camera.orientation.getValue().multVec(SbVec3f(0, 1, 0), up);
    return up;
}

// The middle of the lighting and screenshot dialogs that are children of a widget.
template <typename Dialog>
QList<Dialog*> dialogsOf(const QWidget* parent)
{
    return parent->findChildren<Dialog*>(QString(), Qt::FindDirectChildrenOnly);
}

SoDrawStyle* drawStyleOf(const SoGeneralScene& scene)
{
    auto* skeleton = static_cast<SoSeparator*>(scene.getChild(0));
    auto* solidGroup = static_cast<SoSeparator*>(skeleton->getChild(1));
    return static_cast<SoDrawStyle*>(solidGroup->getChild(0));
}

// With four samples per pixel; the others keep as many as they have.
std::unique_ptr<OpenViewer> makeSmoothViewer(QWidget& parent)
{
    const QGLFormat before = QGLFormat::defaultFormat();
    SoQtGeneralViewer::setDefaultAntialiasingLevel(4);
    parent.resize(200, 200);
    auto viewer = std::make_unique<OpenViewer>(&parent);
    QGLFormat::setDefaultFormat(before);
    return viewer;
}

} // namespace

// Registration

namespace {

// Each statement runs in a process of its own that starts afresh, with nothing
// registered: hence the "threadsafe" style, and no fixture with a window.
class ViewerRegistrationDeathTest : public testing::Test
{
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

    static void initSoQt()
    {
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        SoQt::init(argc, argv, name);
    }
};

// What the C library says when the assertion fails, the source named relatively.
auto assertionInViewer(const char* text)
{
    return AllOf(ContainsRegex("(^|[: \n])src/SoQtGeneralViewer\\.cpp:35: "),
                 HasSubstr(std::string("Assertion `") + text + "' failed."));
}

} // namespace

TEST_F(ViewerRegistrationDeathTest, RegisteredTwice)
{
    EXPECT_DEATH(
        {
            initSoQt();
            SoQtGeneralViewer::initClass();
            SoQtGeneralViewer::initClass();
        },
        assertionInViewer("SoQtGeneralViewer::classTypeId == SoType::badType()"));
}

TEST_F(ViewerRegistrationDeathTest, CreatedBeforeItsRegistration)
{
    EXPECT_DEATH(
        {
            initSoQt();
            SoQtGeneralViewer::createInstance();
        },
        assertionInViewer("SoQtGeneralViewer::classTypeId != SoType::badType()"));
}

TEST_F(ViewerRegistrationDeathTest, NotRegisteredByItself)
{
    EXPECT_EXIT(
        {
            initSoQt();
            std::exit(SoQtGeneralViewer::getClassTypeId().isBad() &&
                              SoType::fromName("SoQtGeneralViewer").isBad()
                          ? 0
                          : 1);
        },
        testing::ExitedWithCode(0), "");
}

class SoQtGeneralViewerTest : public ViewerWindowTest
{
};

TEST_F(SoQtGeneralViewerTest, IsRegisteredBelowTheExaminer)
{
    const SoType type = SoQtGeneralViewer::getClassTypeId();
    EXPECT_STREQ(type.getName().getString(), "SoQtGeneralViewer");
    EXPECT_EQ(type.getParent(), SoQtExaminerViewer::getClassTypeId());
    EXPECT_EQ(SoType::fromName("SoQtGeneralViewer"), type);
    EXPECT_EQ(viewer->getTypeId(), type);
    EXPECT_TRUE(viewer->isOfType(SoQtExaminerViewer::getClassTypeId()));
}

TEST_F(SoQtGeneralViewerTest, CreateInstanceMakesAWindowOfItsOwn)
{
    ASSERT_TRUE(SoQtGeneralViewer::getClassTypeId().canCreateInstance());
    auto* made = static_cast<SoQtGeneralViewer*>(SoQtGeneralViewer::createInstance());
    EXPECT_EQ(made->getTypeId(), SoQtGeneralViewer::getClassTypeId());
    EXPECT_FALSE(made->getGeneralScene());
    EXPECT_TRUE(made->getWidget()->isWindow() || made->getParentWidget());
    delete made;
}

// Construction and scene

TEST_F(SoQtGeneralViewerTest, BeginsWithoutASceneAndWithOneScreenshotDialog)
{
    QWidget parent;
    {
        OpenViewer fresh(&parent, "fresh");
        EXPECT_FALSE(fresh.getGeneralScene());
        EXPECT_EQ(fresh.getNumCameraRotSteps(), 12);
        EXPECT_FALSE(fresh.isPopupMenuEnabled());
        EXPECT_TRUE(fresh.isFeedbackVisible());
        EXPECT_TRUE(fresh.isDecoration());
        EXPECT_TRUE(fresh.isViewing());
        EXPECT_EQ(fresh.getDrawStyle(SoQtViewer::INTERACTIVE), SoQtViewer::VIEW_SAME_AS_STILL);
        EXPECT_EQ(fresh.getParentWidget(), &parent);
        EXPECT_THAT(dialogsOf<ScreenshotDialog>(&parent), testing::SizeIs(1));
        EXPECT_THAT(dialogsOf<LightingDialog>(&parent), testing::SizeIs(0));
    }
    // The dialog is the parent's.
    EXPECT_THAT(dialogsOf<ScreenshotDialog>(&parent), testing::SizeIs(1));
}

TEST_F(SoQtGeneralViewerTest, ShowsANewSceneWholeFromTheFront)
{
    EXPECT_EQ(viewer->getGeneralScene(), scene);
    EXPECT_EQ(viewer->getSceneGraph(), scene);
    const SoCamera* camera = viewer->getCamera();
    ASSERT_TRUE(camera);
    EXPECT_EQ(camera->getTypeId(), SoOrthographicCamera::getClassTypeId());
    expectNear(directionOf(*camera), SbVec3f(0, 0, -1));
    expectNear(upOf(*camera), SbVec3f(0, 1, 0));
    expectNear(camera->position.getValue() +
                   camera->focalDistance.getValue() * directionOf(*camera),
               SbVec3f(0, 0, 0));
    // All of the cube is within the view.
    EXPECT_GE(static_cast<const SoOrthographicCamera*>(camera)->height.getValue(), 2);
    EXPECT_FALSE(scene->isShaderPersp());
}

TEST_F(SoQtGeneralViewerTest, TellsTheSceneTheLineWidthsOfOpenGL)
{
    SbVec2f range;
    float granularity = 0;
    viewer->getLineWidthLimits(range, granularity);
    ASSERT_GT(granularity, 0);
    ASSERT_GT(range[1], range[0] + granularity);
    EXPECT_EQ(drawStyleOf(*scene)->lineWidth.getValue(), 0);
    press(SoKeyboardEvent::EQUAL);
    EXPECT_FLOAT_EQ(drawStyleOf(*scene)->lineWidth.getValue(), range[0] + granularity);
}

TEST_F(SoQtGeneralViewerTest, ANullSceneChangesNothing)
{
    SoCamera* camera = viewer->getCamera();
    const QList<LightingDialog*> dialogs = dialogsOf<LightingDialog>(window);
    viewer->setSceneGraph(static_cast<SoGeneralScene*>(nullptr));
    EXPECT_EQ(viewer->getGeneralScene(), scene);
    EXPECT_EQ(viewer->getSceneGraph(), scene);
    EXPECT_EQ(viewer->getCamera(), camera);
    EXPECT_EQ(dialogsOf<LightingDialog>(window), dialogs);
}

TEST_F(SoQtGeneralViewerTest, AnotherSceneReplacesSceneDialogAndCamera)
{
    viewer->setCameraType(SoPerspectiveCamera::getClassTypeId());
    viewer->rotateCamera(SbVec3f(1, 0, 0), 1);
    const QPointer<LightingDialog> former = dialogsOf<LightingDialog>(window).value(0);
    ASSERT_TRUE(former);

    auto* other = new RecordingScene;
    other->ref();
    other->addSolid(new SoCube);
    other->setShaderPersp(true);
    viewer->setSceneGraph(other);
    EXPECT_EQ(viewer->getGeneralScene(), other);
    EXPECT_EQ(viewer->getSceneGraph(), other);
    EXPECT_FALSE(former);
    EXPECT_THAT(dialogsOf<LightingDialog>(window), testing::SizeIs(1));
    EXPECT_THAT(dialogsOf<ScreenshotDialog>(window), testing::SizeIs(1));
    EXPECT_TRUE(viewer->getCamera()->isOfType(SoOrthographicCamera::getClassTypeId()));
    expectNear(directionOf(*viewer->getCamera()), SbVec3f(0, 0, -1));
    EXPECT_FALSE(other->isShaderPersp());
    viewer->update();
    EXPECT_EQ(other->updates, 1);
    EXPECT_EQ(scene->updates, 0);
    viewer->setSceneGraph(scene);
    other->unref();
}

TEST_F(SoQtGeneralViewerTest, TheSameSceneAgainResetsTheCamera)
{
    viewer->setCameraType(SoPerspectiveCamera::getClassTypeId());
    viewer->rotateCamera(SbVec3f(1, 0, 0), 1);
    viewer->setSceneGraph(scene);
    EXPECT_EQ(viewer->getSceneGraph(), scene);
    ASSERT_TRUE(viewer->getCamera());
    EXPECT_TRUE(viewer->getCamera()->isOfType(SoOrthographicCamera::getClassTypeId()));
    expectNear(directionOf(*viewer->getCamera()), SbVec3f(0, 0, -1));
}

TEST_F(SoQtGeneralViewerTest, TheSameSceneAgainIsKeptAliveThoughOnlyTheViewerHoldsIt)
{
    scene->unref();
    viewer->setSceneGraph(scene);
    scene->ref();
    EXPECT_EQ(viewer->getGeneralScene(), scene);
    EXPECT_EQ(viewer->getSceneGraph(), scene);
}

TEST_F(SoQtGeneralViewerTest, AGraphThatIsNoSceneLeavesTheSceneRecorded)
{
    const QList<LightingDialog*> dialogs = dialogsOf<LightingDialog>(window);
    auto* graph = new SoSeparator;
    graph->addChild(new SoCube);
    viewer->setSceneGraph(static_cast<SoNode*>(graph));
    EXPECT_EQ(viewer->getSceneGraph(), graph);
    EXPECT_EQ(viewer->getGeneralScene(), scene);
    EXPECT_EQ(dialogsOf<LightingDialog>(window), dialogs);
    viewer->update();
    EXPECT_EQ(scene->updates, 1);
}

TEST_F(SoQtGeneralViewerTest, AnySceneOverTheNodeOverloadIsJustANode)
{
    auto* other = new RecordingScene;
    viewer->setSceneGraph(static_cast<SoNode*>(other));
    EXPECT_EQ(viewer->getSceneGraph(), other);
    EXPECT_EQ(viewer->getGeneralScene(), scene);
}

TEST_F(SoQtGeneralViewerTest, TheCameraTypeReachesTheShaders)
{
    viewer->setCameraType(SoPerspectiveCamera::getClassTypeId());
    EXPECT_TRUE(viewer->getCamera()->isOfType(SoPerspectiveCamera::getClassTypeId()));
    EXPECT_TRUE(scene->isShaderPersp());
    viewer->toggleCameraType();
    EXPECT_TRUE(viewer->getCamera()->isOfType(SoOrthographicCamera::getClassTypeId()));
    EXPECT_FALSE(scene->isShaderPersp());
    viewer->toggleCameraType();
    EXPECT_TRUE(scene->isShaderPersp());
    // Types of anything else are refused, and nothing changes.
    for (const SoType type : {SoCube::getClassTypeId(), SoCamera::getClassTypeId(),
                              SoFrustumCamera::getClassTypeId(), SoType::badType()})
        viewer->setCameraType(type);
    EXPECT_TRUE(viewer->getCamera()->isOfType(SoPerspectiveCamera::getClassTypeId()));
    EXPECT_TRUE(scene->isShaderPersp());
}

TEST_F(SoQtGeneralViewerTest, UpdateIsTheScenes)
{
    viewer->update();
    viewer->update();
    EXPECT_EQ(scene->updates, 2);
}

TEST_F(SoQtGeneralViewerTest, RotationStepsArePositive)
{
    EXPECT_EQ(viewer->getNumCameraRotSteps(), 12);
    viewer->setNumCameraRotSteps(1);
    EXPECT_EQ(viewer->getNumCameraRotSteps(), 1);
    viewer->setNumCameraRotSteps(0);
    EXPECT_EQ(viewer->getNumCameraRotSteps(), 12);
    viewer->setNumCameraRotSteps(360);
    EXPECT_EQ(viewer->getNumCameraRotSteps(), 360);
    viewer->setNumCameraRotSteps(-3);
    EXPECT_EQ(viewer->getNumCameraRotSteps(), 12);
}

TEST_F(SoQtGeneralViewerTest, TheAntialiasingLevelIsClamped)
{
    const QGLFormat before = QGLFormat::defaultFormat();
    const int levels[][2] = {{-1, 1}, {0, 1}, {1, 1}, {4, 4}, {12, 12}, {13, 12}, {16, 12}};
    for (const auto& [asked, given] : levels) {
        SCOPED_TRACE(asked);
        QGLFormat without;
        without.setSampleBuffers(false);
        without.setDepth(false);
        QGLFormat::setDefaultFormat(without);
        SoQtGeneralViewer::setDefaultAntialiasingLevel(asked);
        EXPECT_EQ(SoQtGeneralViewer::getDefaultAntialiasingLevel(), given);
        EXPECT_EQ(QGLFormat::defaultFormat().samples(), given);
        EXPECT_TRUE(QGLFormat::defaultFormat().sampleBuffers());
    }
    QGLFormat::setDefaultFormat(before);
}

TEST_F(SoQtGeneralViewerTest, TheAntialiasingLevelReachesAViewerThatIsMadeAfterwards)
{
    QWidget parent;
    const std::unique_ptr<OpenViewer> smooth = makeSmoothViewer(parent);
    EXPECT_EQ(smooth->getSampleBuffers(), 4);
    auto* glWidget = qobject_cast<QGLWidget*>(smooth->getGLWidget());
    ASSERT_TRUE(glWidget);
    EXPECT_TRUE(glWidget->format().sampleBuffers());
    EXPECT_EQ(glWidget->format().samples(), 4);
}

TEST_F(SoQtGeneralViewerTest, WhatIsDrawnCoarselyHasOneSampleUntilItIsDrawnFinelyAgain)
{
    QWidget parent;
    const std::unique_ptr<OpenViewer> smooth = makeSmoothViewer(parent);
    smooth->setFeedbackVisibility(FALSE); // the axes have colours of their own
    smooth->setDecoration(FALSE);
    smooth->setSceneGraph(scene);
    smooth->rotateCamera(SbVec3f(0, 0, 1), 0.3); // so that edges go through pixels
    parent.show();
    smooth->show();
    // Between those of the cube and the background.
    const auto coloursAtEdges = [&] { return countColours(*smooth->getGLWidget()) - 2; };
    EXPECT_TRUE(waitUntil([&] { return coloursAtEdges() > 0; }));
    EXPECT_FALSE(smooth->isDrawnCoarsely());
    smooth->drawCoarsely(true);
    EXPECT_TRUE(smooth->isDrawnCoarsely());
    EXPECT_TRUE(waitUntil([&] { return coloursAtEdges() == 0; }));
    smooth->drawCoarsely(false);
    EXPECT_TRUE(waitUntil([&] { return coloursAtEdges() > 0; }));
}

TEST_F(SoQtGeneralViewerTest, TheGLAreaFillsItsFrameAndCountsDevicePixels)
{
    const auto check = [&] {
        EXPECT_EQ(area->geometry(), area->parentWidget()->contentsRect());
        const int ratio = area->devicePixelRatio();
        EXPECT_EQ(viewer->getGLSize(),
                  SbVec2s(short(area->width() * ratio), short(area->height() * ratio)));
        EXPECT_EQ(viewer->getViewportRegion().getViewportSizePixels(), viewer->getGLSize());
        EXPECT_FLOAT_EQ(viewer->getGLAspectRatio(), float(area->width()) / area->height());
        expectOnScreen(getMiddle()[0], getMiddle()[1], Qt::red);
    };
    check();
    for (const bool shown : {true, false}) {
        press(SoKeyboardEvent::RETURN);
        EXPECT_EQ(bool(viewer->isDecoration()), shown);
        check();
    }
    resizeArea(301, 203);
    check();
}

TEST_F(SoQtGeneralViewerTest, TheGLAreaIsFittedAgainWhenItsSizeIsLost)
{
    for (const QSize& size : {QSize(100, 30), QSize(800, 600)}) {
        area->resize(size);
        EXPECT_EQ(area->geometry(), area->parentWidget()->contentsRect());
        EXPECT_EQ(area->size(), QSize(400, 300));
    }
    // An area that replaces it is fitted too.
    viewer->setDoubleBuffer(FALSE);
    viewer->setDoubleBuffer(TRUE);
    area = qobject_cast<QGLWidget*>(viewer->getGLWidget());
    ASSERT_TRUE(area);
    resizeArea(320, 200);
    area->resize(100, 30);
    EXPECT_EQ(area->size(), QSize(320, 200));
}

// Keys

namespace {

std::string text(const SbVec3f& v)
{
    std::ostringstream out;
    out << "(" << v[0] << ", " << v[1] << ", " << v[2] << ")";
    return out.str();
}

// Notes the camera operations instead of doing them.
class NotingViewer : public OpenViewer
{
public:
    using OpenViewer::OpenViewer;

    void moveCamera(const SbVec3f& v) override { calls.push_back("move " + text(v)); }
    void rotateCamera(SbVec3f axis, double angle) override
    {
        std::ostringstream out;
        out << "rotate " << text(axis) << " by " << angle * 180 / M_PI;
        calls.push_back(out.str());
    }
    void setupCamera(SbVec3f direction, SbVec3f up) override
    {
        calls.push_back("along " + text(direction) + " up " + text(up));
    }
    double getCameraZoom() const override { return 100; }
    void setCameraZoom(double zoom) override
    {
        std::ostringstream out;
        out << "zoom " << zoom;
        calls.push_back(out.str());
    }
    void setUpLighting() override { calls.emplace_back("lights"); }

    Strings calls;
};

class ViewerKeysTest : public ViewerWindowTest
{
protected:
    void SetUp() override
    {
        ViewerWindowTest::SetUp();
        delete viewer;
        viewer = noting = new NotingViewer(window);
        viewer->setSceneGraph(scene);
        noting->calls.clear();
        viewer->addPreEventProcessCB(notePre, this);
        viewer->addPostEventProcessCB(notePost, this);
        scene->log = &log;
    }

    static void notePre(void* data, SoQtGeneralViewer*, const SoEvent*)
    {
        static_cast<ViewerKeysTest*>(data)->log.emplace_back("pre");
    }
    static void notePost(void* data, SoQtGeneralViewer*, const SoEvent*)
    {
        static_cast<ViewerKeysTest*>(data)->log.emplace_back("post");
    }
    // With viewing off the base viewer passes events on to the graph, where this sees
    // them.
    void noteBase()
    {
        auto* callback = new SoEventCallback;
        callback->addEventCallback(
            SoEvent::getClassTypeId(),
            [](void* data, SoEventCallback*) {
                static_cast<ViewerKeysTest*>(data)->log.emplace_back("base");
            },
            this);
        scene->addSolid(callback);
        viewer->setViewing(FALSE);
        log.clear();
    }

    bool process(const SoEvent& event) { return viewer->processSoEvent(&event); }

    NotingViewer* noting = nullptr;
    Strings log;
};

struct KeyRow
{
    char key;
    const char* alt;
    const char* ctrl;
    const char* shift;
    const char* none;
};

const KeyRow KEY_TABLE[] = {
    {'a', "rotate (-1, 0, 0) by 30", "rotate (0, -1, 0) by 30", "rotate (0, 0, -1) by 30",
     "move (-0.1, 0, 0)"},
    {'d', "rotate (1, 0, 0) by 30", "rotate (0, 1, 0) by 30", "rotate (0, 0, 1) by 30",
     "move (0.1, 0, 0)"},
    {'w', "zoom 125", "move (0, 0.1, 0)", "move (0, 0.1, 0)", "move (0, 0.1, 0)"},
    {'s', "zoom 80", "move (0, -0.1, 0)", "move (0, -0.1, 0)", "move (0, -0.1, 0)"},
    {'q', "move (0, 0, 0.1)", "move (0, 0, 0.1)", "move (0, 0, 0.1)", "move (0, 0, 0.1)"},
    {'e', "move (0, 0, -0.1)", "move (0, 0, -0.1)", "move (0, 0, -0.1)", "move (0, 0, -0.1)"},
    {'x', "along (-1, 0, 0) up (0, 0, 1)", "along (-1, 0, 0) up (0, 0, 1)",
     "along (-1, 0, 0) up (0, 1, 0)", "along (-1, 0, 0) up (0, 0, 1)"},
    {'y', "along (0, -1, 0) up (0, 0, 1)", "along (0, -1, 0) up (0, 0, 1)",
     "along (0, -1, 0) up (1, 0, 0)", "along (0, -1, 0) up (0, 0, 1)"},
    {'z', "along (0, 0, -1) up (0, 1, 0)", "along (0, 0, -1) up (0, 1, 0)",
     "along (0, 0, -1) up (1, 0, 0)", "along (0, 0, -1) up (0, 1, 0)"},
    {'l', "lights", "lights", "lights", "lights"},
};

// What a row asks for under several modifiers: the first that holds, in the order alt,
// ctrl, shift; x, y and z look at shift alone.
const char* expectedCall(const KeyRow& row, int modifiers)
{
    const bool looksAtShiftAlone = row.key >= 'x';
    if (looksAtShiftAlone)
        return modifiers & SHIFT ? row.shift : row.none;
    if (modifiers & ALT)
        return row.alt;
    if (modifiers & CTRL)
        return row.ctrl;
    return modifiers & SHIFT ? row.shift : row.none;
}

SoKeyboardEvent::Key letter(char key) { return SoKeyboardEvent::Key(key); }

} // namespace

TEST_F(ViewerKeysTest, EachKeyMovesTheCameraUnderEachCombinationOfModifiers)
{
    for (const KeyRow& row : KEY_TABLE) {
        for (int modifiers = 0; modifiers < 8; ++modifiers) {
            SCOPED_TRACE(std::string(1, row.key) + " with " + std::to_string(modifiers));
            noting->calls.clear();
            log.clear();
            EXPECT_TRUE(process(keyEvent(letter(row.key), modifiers)));
            EXPECT_THAT(noting->calls, ElementsAre(expectedCall(row, modifiers)));
            EXPECT_THAT(log, ElementsAre("scene", "pre"));
        }
    }
}

TEST_F(ViewerKeysTest, TheRotationStepIsAFullTurnByTheNumberOfSteps)
{
    viewer->setNumCameraRotSteps(1);
    process(keyEvent(SoKeyboardEvent::A, ALT));
    viewer->setNumCameraRotSteps(72);
    process(keyEvent(SoKeyboardEvent::D, CTRL));
    EXPECT_THAT(noting->calls, ElementsAre("rotate (-1, 0, 0) by 360", "rotate (0, 1, 0) by 5"));
}

TEST_F(ViewerKeysTest, ReleasesAreNotActedOn)
{
    const SbBool decoration = viewer->isDecoration();
    const SbColor background = viewer->getBackgroundColor();
    noteBase();
    for (const char key : std::string("adwsqexyzlbfi")) {
        SCOPED_TRACE(key);
        log.clear();
        process(keyEvent(letter(key), NONE, SoButtonEvent::UP));
        EXPECT_THAT(log, ElementsAre("scene", "pre", "base", "post"));
    }
    process(keyEvent(SoKeyboardEvent::RETURN, NONE, SoButtonEvent::UP));
    EXPECT_THAT(noting->calls, IsEmpty());
    EXPECT_EQ(viewer->isDecoration(), decoration);
    EXPECT_EQ(viewer->getBackgroundColor(), background);
    EXPECT_FALSE(std::getenv("COIN_SHOW_FPS_COUNTER"));
}

TEST_F(ViewerKeysTest, OtherKeysReachTheBaseViewer)
{
    noteBase();
    for (const char key : std::string("cghjkmnoprtuv0123456789,.")) {
        for (int modifiers = 0; modifiers < 8; ++modifiers) {
            SCOPED_TRACE(std::string(1, key) + " with " + std::to_string(modifiers));
            log.clear();
            process(keyEvent(letter(key), modifiers));
            EXPECT_THAT(log, ElementsAre("scene", "pre", "base", "post"));
        }
    }
    EXPECT_THAT(noting->calls, IsEmpty());
}

TEST_F(ViewerKeysTest, TheResultOfOtherKeysIsTheBaseViewers)
{
    noteBase();
    EXPECT_FALSE(process(keyEvent(SoKeyboardEvent::C)));
    viewer->setViewing(TRUE);
    // The examiner's own key out of viewing mode.
    EXPECT_TRUE(process(keyEvent(SoKeyboardEvent::ESCAPE)));
    EXPECT_FALSE(viewer->isViewing());
}

TEST_F(ViewerKeysTest, KeysThatTheSceneHandlesStopBeforeTheBaseViewer)
{
    noteBase();
    for (const SoKeyboardEvent::Key key :
         {SoKeyboardEvent::EQUAL, SoKeyboardEvent::MINUS, SoKeyboardEvent::SPACE}) {
        log.clear();
        EXPECT_TRUE(process(keyEvent(key)));
        EXPECT_THAT(log, ElementsAre("scene", "pre", "post"));
    }
    scene->handlesEvents = true;
    log.clear();
    EXPECT_TRUE(process(keyEvent(SoKeyboardEvent::C)));
    EXPECT_THAT(log, ElementsAre("scene", "pre", "post"));
}

TEST_F(ViewerKeysTest, TheViewersKeysActEvenIfTheSceneHandlesThem)
{
    scene->handlesEvents = true;
    EXPECT_TRUE(process(keyEvent(SoKeyboardEvent::A)));
    EXPECT_THAT(noting->calls, ElementsAre("move (-0.1, 0, 0)"));
    EXPECT_THAT(log, ElementsAre("scene", "pre"));
}

TEST_F(ViewerKeysTest, TheBackgroundTurnsWhiteAndBlack)
{
    noteBase();
    viewer->setBackgroundColor(SbColor(0, 0, 1));
    for (int modifiers = 0; modifiers < 8; ++modifiers) {
        log.clear();
        EXPECT_TRUE(process(keyEvent(SoKeyboardEvent::B, modifiers)));
        EXPECT_EQ(viewer->getBackgroundColor(),
                  modifiers % 2 == 0 ? SbColor(1, 1, 1) : SbColor(0, 0, 0));
        EXPECT_THAT(log, ElementsAre("scene", "pre", "post"));
    }
}

TEST_F(ViewerKeysTest, TheFrameRateIsSwitchedOnAndOff)
{
    const char* variable = "COIN_SHOW_FPS_COUNTER";
    unsetenv(variable);
    noteBase();
    EXPECT_TRUE(process(keyEvent(SoKeyboardEvent::F)));
    EXPECT_STREQ(std::getenv(variable), "1");
    EXPECT_THAT(log, ElementsAre("scene", "pre", "post"));
    EXPECT_TRUE(process(keyEvent(SoKeyboardEvent::F, SHIFT)));
    EXPECT_FALSE(std::getenv(variable));
    // Whatever its value, it counts as set.
    for (const char* value : {"0", "", "2"}) {
        setenv(variable, value, 1);
        process(keyEvent(SoKeyboardEvent::F, ALT));
        EXPECT_FALSE(std::getenv(variable));
    }
}

TEST_F(ViewerKeysTest, ReturnShowsAndHidesTheDecoration)
{
    const bool before = viewer->isDecoration();
    for (int modifiers = 0; modifiers < 8; ++modifiers) {
        log.clear();
        EXPECT_TRUE(process(keyEvent(SoKeyboardEvent::RETURN, modifiers)));
        EXPECT_EQ(bool(viewer->isDecoration()), modifiers % 2 == 0 ? !before : before);
        EXPECT_THAT(log, ElementsAre("scene", "pre"));
    }
}

// Operations

TEST_F(ViewerKeysTest, EachStepOfTheCameraIsThatOfItsKey)
{
    using V = SoQtGeneralViewer;
    struct StepKey
    {
        V::CameraStep step;
        char key;
        int modifier;
    };
    const StepKey stepKeys[] = {{V::MOVE_LEFT, 'a', NONE},
                                {V::MOVE_RIGHT, 'd', NONE},
                                {V::MOVE_UP, 'w', NONE},
                                {V::MOVE_DOWN, 's', NONE},
                                {V::MOVE_FORWARD, 'q', NONE},
                                {V::MOVE_BACKWARD, 'e', NONE},
                                {V::ZOOM_IN, 'w', ALT},
                                {V::ZOOM_OUT, 's', ALT},
                                {V::ORBIT_HORIZONTALLY, 'd', ALT},
                                {V::ORBIT_HORIZONTALLY_BACK, 'a', ALT},
                                {V::ORBIT_VERTICALLY, 'd', CTRL},
                                {V::ORBIT_VERTICALLY_BACK, 'a', CTRL},
                                {V::ROLL, 'd', SHIFT},
                                {V::ROLL_BACK, 'a', SHIFT},
                                {V::FROM_X_Z_UP, 'x', NONE},
                                {V::FROM_Y_Z_UP, 'y', NONE},
                                {V::FROM_Z_Y_UP, 'z', NONE},
                                {V::FROM_X_Y_UP, 'x', SHIFT},
                                {V::FROM_Y_X_UP, 'y', SHIFT},
                                {V::FROM_Z_X_UP, 'z', SHIFT}};
    for (const StepKey& one : stepKeys) {
        SCOPED_TRACE(one.step);
        noting->calls.clear();
        process(keyEvent(letter(one.key), one.modifier));
        viewer->stepCamera(one.step);
        ASSERT_EQ(noting->calls.size(), 2u);
        EXPECT_EQ(noting->calls[0], noting->calls[1]);
    }
}

TEST_F(ViewerKeysTest, StepsTakeTheNumberOfStepsForATurn)
{
    viewer->setNumCameraRotSteps(72);
    viewer->stepCamera(SoQtGeneralViewer::ORBIT_VERTICALLY);
    EXPECT_THAT(noting->calls, ElementsAre("rotate (0, 1, 0) by 5"));
}

TEST_F(ViewerKeysTest, OperationsReachNeitherTheCallbacksNorTheEventsOfTheScene)
{
    viewer->stepCamera(SoQtGeneralViewer::MOVE_LEFT);
    viewer->cycleShading();
    viewer->toggleBoundingBoxes();
    viewer->changeLineWidth(1);
    viewer->toggleBackground();
    viewer->toggleFramesPerSecond();
    viewer->toggleFramesPerSecond();
    EXPECT_THAT(log, IsEmpty());
}

TEST_F(ViewerKeysTest, ShadingAndBoxesAreThoseOfTheSpaceBar)
{
    const auto act = [this](bool byKey, int modifier) {
        if (byKey)
            process(keyEvent(SoKeyboardEvent::SPACE, modifier));
        else if (modifier == SHIFT)
            viewer->toggleBoundingBoxes();
        else
            viewer->cycleShading();
    };
    for (const bool byKey : {true, false}) {
        SCOPED_TRACE(byKey);
        for (const auto shading :
             {SoGeneralScene::PLAIN, SoGeneralScene::WIREFRAME, SoGeneralScene::LIT}) {
            act(byKey, NONE);
            EXPECT_EQ(scene->getShading(), shading);
            EXPECT_EQ(drawStyleOf(*scene)->style.getValue() == SoDrawStyle::LINES,
                      shading == SoGeneralScene::WIREFRAME);
        }
        for (const bool boxes : {true, false}) {
            act(byKey, SHIFT);
            EXPECT_EQ(viewer->isShowingBoundingBoxes(), boxes);
            EXPECT_EQ(scene->isShowingBoundingBoxes(), boxes);
        }
    }
}

TEST_F(ViewerKeysTest, LineWidthsAreThoseOfTheirKeys)
{
    process(keyEvent(SoKeyboardEvent::EQUAL));
    process(keyEvent(SoKeyboardEvent::EQUAL));
    const float thick = drawStyleOf(*scene)->lineWidth.getValue();
    EXPECT_EQ(scene->getLineWidth(), thick);
    process(keyEvent(SoKeyboardEvent::MINUS));
    const float thin = drawStyleOf(*scene)->lineWidth.getValue();
    ASSERT_LT(thin, thick);
    viewer->changeLineWidth(1);
    EXPECT_EQ(drawStyleOf(*scene)->lineWidth.getValue(), thick);
    viewer->changeLineWidth(-1);
    EXPECT_EQ(drawStyleOf(*scene)->lineWidth.getValue(), thin);
    for (const int beyond : {-1000000, 1000000}) {
        viewer->changeLineWidth(beyond);
        EXPECT_EQ(drawStyleOf(*scene)->lineWidth.getValue(), thin);
    }
}

TEST_F(ViewerKeysTest, TheBackgroundIsThatOfItsKeyWhicheverOfThemChangedItLast)
{
    EXPECT_FALSE(viewer->isBackgroundWhite());
    viewer->toggleBackground();
    EXPECT_EQ(viewer->getBackgroundColor(), SbColor(1, 1, 1));
    EXPECT_TRUE(viewer->isBackgroundWhite());
    process(keyEvent(SoKeyboardEvent::B));
    EXPECT_EQ(viewer->getBackgroundColor(), SbColor(0, 0, 0));
    EXPECT_FALSE(viewer->isBackgroundWhite());
    viewer->setWhiteBackground(true);
    viewer->setWhiteBackground(true);
    EXPECT_EQ(viewer->getBackgroundColor(), SbColor(1, 1, 1));
    process(keyEvent(SoKeyboardEvent::B));
    EXPECT_EQ(viewer->getBackgroundColor(), SbColor(0, 0, 0));
}

TEST_F(ViewerKeysTest, FramesPerSecondAreThoseOfTheirKey)
{
    unsetenv("COIN_SHOW_FPS_COUNTER");
    viewer->toggleFramesPerSecond();
    EXPECT_STREQ(std::getenv("COIN_SHOW_FPS_COUNTER"), "1");
    EXPECT_TRUE(SoQtGeneralViewer::isShowingFramesPerSecond());
    process(keyEvent(SoKeyboardEvent::F));
    EXPECT_FALSE(SoQtGeneralViewer::isShowingFramesPerSecond());
    setenv("COIN_SHOW_FPS_COUNTER", "0", 1); // any value counts
    EXPECT_TRUE(SoQtGeneralViewer::isShowingFramesPerSecond());
    viewer->toggleFramesPerSecond();
    EXPECT_FALSE(std::getenv("COIN_SHOW_FPS_COUNTER"));
}

TEST_F(SoQtGeneralViewerTest, OperationsWithoutASceneDoNothing)
{
    QWidget parent;
    OpenViewer fresh(&parent);
    for (int step = 0; step <= SoQtGeneralViewer::FROM_Z_X_UP; ++step)
        fresh.stepCamera(SoQtGeneralViewer::CameraStep(step));
    fresh.cycleShading();
    fresh.toggleBoundingBoxes();
    fresh.changeLineWidth(1);
    fresh.setUpLighting();
    EXPECT_FALSE(fresh.isShowingBoundingBoxes());
    EXPECT_FALSE(fresh.getCamera());
}

TEST_F(SoQtGeneralViewerTest, LShowsTheLightsOfTheSceneAndTheyCanBeChanged)
{
    LightingDialog* dialog = dialogsOf<LightingDialog>(window).value(0);
    ASSERT_TRUE(dialog);
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_TRUE(press(SoKeyboardEvent::L));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_FALSE(dialog->isModal());

    auto* field = dialog->findChild<QLineEdit*>("intensity2LineEdit");
    ASSERT_TRUE(field);
    field->setText("0.25");
    QTest::keyClick(field, Qt::Key_Return);
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
    scene->getLightingParameters(directions, intensities, shininess);
    EXPECT_EQ(intensities->value[1], 0.25f);
}

// Real keys and a real mouse

TEST_F(SoQtGeneralViewerTest, RealKeysOfTheWindowArriveWithTheirModifiers)
{
    const SbVec3f before = viewer->getCamera()->position.getValue();
    QTest::keyClick(area, Qt::Key_Q);
    EXPECT_LT(viewer->getCamera()->position.getValue()[2], before[2]);
    QTest::keyClick(area, Qt::Key_X);
    expectNear(directionOf(*viewer->getCamera()), SbVec3f(-1, 0, 0));
    expectNear(upOf(*viewer->getCamera()), SbVec3f(0, 0, 1));
    QTest::keyClick(area, Qt::Key_X, Qt::ShiftModifier);
    expectNear(directionOf(*viewer->getCamera()), SbVec3f(-1, 0, 0));
    expectNear(upOf(*viewer->getCamera()), SbVec3f(0, 1, 0));
    QTest::keyClick(area, Qt::Key_Z);
    QTest::keyClick(area, Qt::Key_D, Qt::ControlModifier);
    // The camera turned by 30 degrees to the left of its own.
    expectNear(directionOf(*viewer->getCamera()),
               SbVec3f(-std::sin(float(M_PI / 6)), 0, -std::cos(float(M_PI / 6))));
    const double zoom = viewer->getCameraZoom();
    QTest::keyClick(area, Qt::Key_W, Qt::AltModifier);
    EXPECT_NEAR(viewer->getCameraZoom() / zoom, 1.25, 1e-6);
    QTest::keyClick(area, Qt::Key_Equal);
    EXPECT_GT(drawStyleOf(*scene)->lineWidth.getValue(), 0);
    QTest::keyClick(area, Qt::Key_Return);
    EXPECT_TRUE(viewer->isDecoration());
    EXPECT_TRUE(viewer->isViewing());
}

TEST_F(SoQtGeneralViewerTest, TheBackgroundKeyIsSeenOnTheScreen)
{
    expectOnScreen(3, 3, Qt::black);
    QTest::keyClick(area, Qt::Key_B);
    expectOnScreen(3, 3, Qt::white);
    QTest::keyClick(area, Qt::Key_B);
    expectOnScreen(3, 3, Qt::black);
}

TEST_F(SoQtGeneralViewerTest, TheExaminerStillTurnsWithTheMouse)
{
    const SbRotation before = viewer->getCamera()->orientation.getValue();
    QTest::mousePress(area, Qt::LeftButton, Qt::NoModifier, QPoint(200, 150));
    for (int x = 205; x <= 260; x += 5)
        QTest::mouseMove(area, QPoint(x, 150), 5);
    QTest::mouseRelease(area, Qt::LeftButton, Qt::NoModifier, QPoint(260, 150));
    EXPECT_FALSE(viewer->getCamera()->orientation.getValue().equals(before, 1e-3f));
}

TEST_F(SoQtGeneralViewerTest, TheExaminerTurnsEvenIfTheSceneHandlesTheMouse)
{
    scene->handlesEvents = true;
    const SbRotation before = viewer->getCamera()->orientation.getValue();
    QTest::mousePress(area, Qt::LeftButton, Qt::NoModifier, QPoint(200, 150));
    // Moves are no button events, so the scene has to let them through.
    scene->handlesEvents = false;
    for (int x = 205; x <= 260; x += 5)
        QTest::mouseMove(area, QPoint(x, 150), 5);
    QTest::mouseRelease(area, Qt::LeftButton, Qt::NoModifier, QPoint(260, 150));
    EXPECT_FALSE(viewer->getCamera()->orientation.getValue().equals(before, 1e-3f));
}

// Picking

namespace {

class ViewerPickingTest : public ViewerWindowTest
{
protected:
    void SetUp() override
    {
        ViewerWindowTest::SetUp();
        // 1 scene unit is 75 pixels, the camera 5 in front of the origin.
        auto* camera = static_cast<SoOrthographicCamera*>(viewer->getCamera());
        camera->height = 4;
        camera->position = SbVec3f(0, 0, 5);
        camera->focalDistance = 5;
        camera->nearDistance = 1;
        camera->farDistance = 10;
    }

    // A point of the cube's front face at (x, y, 1), in device pixels from the lower
    // left corner.
    SbVec2s pixel(double x, double y) const
    {
        const SbVec2s size = viewer->getGLSize();
        const double unit = size[1] / 4.0;
        return SbVec2s(short(std::lround(size[0] / 2.0 + x * unit)),
                       short(std::lround(size[1] / 2.0 + y * unit)));
    }
    bool release(SoMouseButtonEvent::Button button, const SbVec2s& at, int modifiers = NONE)
    {
        const SoMouseButtonEvent event = mouseEvent(button, SoButtonEvent::UP, at, modifiers);
        return viewer->processSoEvent(&event);
    }
    SbVec3f getPosition() const { return viewer->getCamera()->position.getValue(); }
    // In scene units: half a pixel in both directions, and a bit.
    float tolerance() const { return 0.71f * 4 / viewer->getGLSize()[1]; }
};

const SoMouseButtonEvent::Button LEFT = SoMouseButtonEvent::BUTTON1;
const SoMouseButtonEvent::Button RIGHT = SoMouseButtonEvent::BUTTON2;
const SoMouseButtonEvent::Button MIDDLE = SoMouseButtonEvent::BUTTON3;

} // namespace

TEST_F(ViewerPickingTest, TheRightButtonPicksWhetherViewingOrNot)
{
    for (const SbBool viewing : {TRUE, FALSE}) {
        viewer->setViewing(viewing);
        scene->picks.clear();
        release(RIGHT, pixel(0.5, -0.25));
        ASSERT_EQ(scene->picks.size(), 1U);
        expectNear(scene->picks[0], SbVec3f(0.5f, -0.25f, 1), tolerance());
    }
}

TEST_F(ViewerPickingTest, TheLeftButtonPicksOnlyOutOfViewingMode)
{
    release(LEFT, pixel(0.5, -0.25));
    EXPECT_THAT(scene->picks, IsEmpty());
    viewer->setViewing(FALSE);
    release(LEFT, pixel(-0.5, 0.75));
    ASSERT_EQ(scene->picks.size(), 1U);
    expectNear(scene->picks[0], SbVec3f(-0.5f, 0.75f, 1), tolerance());
}

TEST_F(ViewerPickingTest, PressesOtherButtonsAndMissesDoNotPick)
{
    viewer->setViewing(FALSE);
    for (const SoMouseButtonEvent::Button button : {LEFT, RIGHT}) {
        const SoMouseButtonEvent press = mouseEvent(button, SoButtonEvent::DOWN, pixel(0, 0));
        viewer->processSoEvent(&press);
        release(button, pixel(1.5, 0));
    }
    for (const SoMouseButtonEvent::Button button :
         {MIDDLE, SoMouseButtonEvent::BUTTON4, SoMouseButtonEvent::BUTTON5})
        release(button, pixel(0, 0));
    EXPECT_THAT(scene->picks, IsEmpty());
}

TEST_F(ViewerPickingTest, RealClicksPickWhereTheyPoint)
{
    viewer->setViewing(FALSE);
    // Qt's pixels count from the upper left corner: 400 x 300 for 16/3 x 4 units.
    QTest::mouseClick(area, Qt::LeftButton, Qt::NoModifier, QPoint(200 + 30, 150 - 45));
    ASSERT_EQ(scene->picks.size(), 1U);
    expectNear(scene->picks[0], SbVec3f(0.4f, 0.6f, 1), 1.5f / 75);
    QTest::mouseClick(area, Qt::RightButton, Qt::NoModifier, QPoint(200 - 60, 150 + 15));
    ASSERT_EQ(scene->picks.size(), 2U);
    expectNear(scene->picks[1], SbVec3f(-0.8f, -0.2f, 1), 1.5f / 75);
    QTest::mouseClick(area, Qt::LeftButton, Qt::NoModifier, QPoint(20, 150));
    EXPECT_EQ(scene->picks.size(), 2U);
}

TEST_F(ViewerPickingTest, CtrlPutsTheFocalPointOnThePickedPoint)
{
    viewer->getCamera()->orientation = SbRotation(SbVec3f(0, 0, 1), 0.5f);
    const SbRotation orientation = viewer->getCamera()->orientation.getValue();
    release(LEFT, getMiddle() + SbVec2s(short(20 * area->devicePixelRatio()), 0), CTRL);
    const float moved = 20.0f / 75;
    expectNear(getPosition(), SbVec3f(moved * std::cos(0.5f), moved * std::sin(0.5f), 6), 0.02f);
    EXPECT_EQ(viewer->getCamera()->orientation.getValue(), orientation);
    EXPECT_EQ(viewer->getCamera()->focalDistance.getValue(), 5);
    // That was the viewing mode's way: the scene is not asked.
    EXPECT_THAT(scene->picks, IsEmpty());
}

TEST_F(ViewerPickingTest, TheFocalPointStaysWithoutCtrlAndOverTheBackground)
{
    release(LEFT, pixel(0.5, 0.5));
    release(LEFT, pixel(0.5, 0.5), ALT | SHIFT);
    release(RIGHT, pixel(0.5, 0.5));
    release(LEFT, pixel(1.5, 0), CTRL);
    release(RIGHT, pixel(1.5, 0), CTRL);
    release(MIDDLE, pixel(0.5, 0.5), CTRL);
    EXPECT_EQ(getPosition(), SbVec3f(0, 0, 5));
}

TEST_F(ViewerPickingTest, TheFocalPointStaysIfTheSceneHandledTheEventInViewingMode)
{
    scene->handlesEvents = true;
    release(LEFT, pixel(0.5, 0.5), CTRL);
    EXPECT_EQ(getPosition(), SbVec3f(0, 0, 5));
    scene->handlesEvents = false;
    release(LEFT, pixel(0.5, 0.5), CTRL);
    expectNear(getPosition(), SbVec3f(0.5f, 0.5f, 6), tolerance());
}

TEST_F(ViewerPickingTest, TheFocalPointStaysIfTheSceneHandledThePick)
{
    scene->handlesPicks = true;
    release(RIGHT, pixel(0.5, 0.5), CTRL);
    EXPECT_EQ(getPosition(), SbVec3f(0, 0, 5));
    viewer->setViewing(FALSE);
    release(LEFT, pixel(0.5, 0.5), CTRL);
    EXPECT_EQ(getPosition(), SbVec3f(0, 0, 5));
    EXPECT_EQ(scene->picks.size(), 2U);

    // Here the answer to the pick counts, not the one to the event.
    scene->handlesPicks = false;
    scene->handlesEvents = true;
    release(LEFT, pixel(0.5, 0.5), CTRL);
    expectNear(getPosition(), SbVec3f(0.5f, 0.5f, 6), tolerance());
}

TEST_F(ViewerPickingTest, MouseButtonEventsReachTheBaseViewerThoughTheSceneHandlesThem)
{
    struct Log
    {
        int base = 0;
        int post = 0;
    } log;
    auto* callback = new SoEventCallback;
    callback->addEventCallback(
        SoEvent::getClassTypeId(),
        [](void* data, SoEventCallback*) { ++static_cast<Log*>(data)->base; }, &log);
    scene->addSolid(callback);
    viewer->addPostEventProcessCB(
        [](void* data, SoQtGeneralViewer*, const SoEvent*) { ++static_cast<Log*>(data)->post; },
        &log);
    viewer->setViewing(FALSE);
    scene->handlesEvents = scene->handlesPicks = true;

    const SoMouseButtonEvent press = mouseEvent(LEFT, SoButtonEvent::DOWN, pixel(0, 0));
    // The base viewer's answer: nothing in the graph takes it.
    EXPECT_FALSE(viewer->processSoEvent(&press));
    EXPECT_EQ(log.base, 1);
    EXPECT_EQ(log.post, 1);
    EXPECT_FALSE(release(LEFT, pixel(0, 0)));
    EXPECT_EQ(log.base, 2);
    EXPECT_EQ(log.post, 2);
}

// Callbacks

namespace {

struct Entry
{
    char callback;
    const void* data;
    bool operator==(const Entry& other) const
    {
        return callback == other.callback && data == other.data;
    }
};
std::vector<Entry> entries;
SoQtGeneralViewer* lastViewer = nullptr;
const SoEvent* lastEvent = nullptr;
SbVec2s lastSize;

template <char name>
void noteEvent(void* data, SoQtGeneralViewer* viewer, const SoEvent* event)
{
    entries.push_back({name, data});
    lastViewer = viewer;
    lastEvent = event;
}

template <char name>
void noteSize(void* data, SoQtGeneralViewer* viewer, const SbVec2s& size)
{
    entries.push_back({name, data});
    lastViewer = viewer;
    lastSize = size;
}

SoQtGeneralViewerEventCB* const EVENT_CALLBACKS[] = {noteEvent<'a'>, noteEvent<'b'>, noteEvent<'c'>,
                                                     noteEvent<'d'>};
SoQtGeneralViewerResizeCB* const RESIZE_CALLBACKS[] = {noteSize<'a'>, noteSize<'b'>, noteSize<'c'>,
                                                       noteSize<'d'>};

// The callbacks in ascending order of their addresses, which the linker chooses.
template <typename Callback>
std::vector<Callback*> ascending(Callback* const (&callbacks)[4])
{
    std::vector<Callback*> sorted(callbacks, callbacks + 4);
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    return sorted;
}

std::string names()
{
    std::string result;
    for (const Entry& entry : entries)
        result += entry.callback;
    entries.clear();
    return result;
}

// The names under which these callbacks note themselves.
std::string namesOf(const std::vector<SoQtGeneralViewerEventCB*>& callbacks)
{
    entries.clear();
    for (SoQtGeneralViewerEventCB* callback : callbacks)
        callback(nullptr, nullptr, nullptr);
    return names();
}

class ViewerCallbacksTest : public ViewerWindowTest
{
protected:
    void SetUp() override
    {
        ViewerWindowTest::SetUp();
        entries.clear();
    }
    void send()
    {
        const SoKeyboardEvent event = keyEvent(SoKeyboardEvent::C);
        viewer->processSoEvent(&event);
    }
};

} // namespace

TEST_F(ViewerCallbacksTest, AreCalledInTheOrderOfTheirAddresses)
{
    const auto sorted = ascending(EVENT_CALLBACKS);
    const std::string expected = namesOf(sorted);
    for (auto link = sorted.rbegin(); link != sorted.rend(); ++link)
        viewer->addPreEventProcessCB(*link, this);
    send();
    EXPECT_EQ(names(), expected);
    for (SoQtGeneralViewerEventCB* callback : sorted)
        viewer->removePreEventProcessCB(callback);
    for (auto link = sorted.rbegin(); link != sorted.rend(); ++link)
        viewer->addPostEventProcessCB(*link, this);
    send();
    EXPECT_EQ(names(), expected);
}

TEST_F(ViewerCallbacksTest, AreGivenDataViewerAndEvent)
{
    int data = 0;
    viewer->addPreEventProcessCB(noteEvent<'a'>, &data);
    viewer->addPostEventProcessCB(noteEvent<'b'>, this);
    const SoKeyboardEvent event = keyEvent(SoKeyboardEvent::C);
    viewer->processSoEvent(&event);
    EXPECT_THAT(entries, ElementsAre(Entry{'a', &data}, Entry{'b', this}));
    EXPECT_EQ(lastViewer, viewer);
    EXPECT_EQ(lastEvent, &event);
}

TEST_F(ViewerCallbacksTest, TheFirstUserDataStays)
{
    int first = 0, second = 0;
    for (int* data : {&first, &second}) {
        viewer->addPreEventProcessCB(noteEvent<'a'>, data);
        viewer->addPostEventProcessCB(noteEvent<'b'>, data);
        viewer->addResizeCB(noteSize<'c'>, data);
    }
    send();
    viewer->sizeChanged(viewer->getGLSize());
    EXPECT_THAT(entries, ElementsAre(Entry{'a', &first}, Entry{'b', &first}, Entry{'c', &first}));

    // Once taken away they are gone, and can come back with other data.
    viewer->removePreEventProcessCB(noteEvent<'a'>);
    viewer->removePostEventProcessCB(noteEvent<'b'>);
    viewer->removeResizeCB(noteSize<'c'>);
    entries.clear();
    send();
    viewer->sizeChanged(viewer->getGLSize());
    EXPECT_THAT(entries, IsEmpty());
    viewer->addPreEventProcessCB(noteEvent<'a'>, &second);
    send();
    EXPECT_THAT(entries, ElementsAre(Entry{'a', &second}));
}

TEST_F(ViewerCallbacksTest, TheChainsAreApartAndUnknownFunctionsAreNotMissed)
{
    viewer->addPreEventProcessCB(noteEvent<'a'>, nullptr);
    viewer->removePostEventProcessCB(noteEvent<'a'>);
    viewer->removePreEventProcessCB(noteEvent<'b'>);
    viewer->removeResizeCB(noteSize<'a'>);
    send();
    EXPECT_EQ(names(), "a");
    viewer->addPostEventProcessCB(noteEvent<'a'>, nullptr);
    send();
    EXPECT_EQ(names(), "aa");
}

TEST_F(ViewerCallbacksTest, KeysThatEndWithTheirActionAreNotSeenAfterwards)
{
    viewer->addPreEventProcessCB(noteEvent<'a'>, nullptr);
    viewer->addPostEventProcessCB(noteEvent<'b'>, nullptr);
    SoKeyboardEvent event = keyEvent(SoKeyboardEvent::A);
    viewer->processSoEvent(&event);
    EXPECT_EQ(names(), "a");
    event = keyEvent(SoKeyboardEvent::B);
    viewer->processSoEvent(&event);
    EXPECT_EQ(names(), "ab");
}

namespace {

// The third and the fourth callback in ascending order, for the second to meddle with.
std::vector<SoQtGeneralViewerEventCB*> sortedCallbacks;

template <bool pre>
void removeAllAndAddTheLast(void* data, SoQtGeneralViewer* viewer, const SoEvent* event)
{
    noteEvent<'!'>(data, viewer, event);
    const auto add =
        pre ? &SoQtGeneralViewer::addPreEventProcessCB : &SoQtGeneralViewer::addPostEventProcessCB;
    const auto remove = pre ? &SoQtGeneralViewer::removePreEventProcessCB
                            : &SoQtGeneralViewer::removePostEventProcessCB;
    for (SoQtGeneralViewerEventCB* callback : sortedCallbacks)
        (viewer->*remove)(callback);
    (viewer->*remove)(removeAllAndAddTheLast<pre>);
    (viewer->*add)(sortedCallbacks.back(), data);
    (viewer->*add)(sortedCallbacks.front(), data);
}

void removeAllSizes(void* data, SoQtGeneralViewer* viewer, const SbVec2s& size)
{
    noteSize<'!'>(data, viewer, size);
    for (SoQtGeneralViewerResizeCB* callback : RESIZE_CALLBACKS)
        viewer->removeResizeCB(callback);
    viewer->removeResizeCB(removeAllSizes);
}

} // namespace

TEST_F(ViewerCallbacksTest, MayAddAndRemoveWhileTheChainRuns)
{
    sortedCallbacks = ascending(EVENT_CALLBACKS);
    const std::string sortedNames = namesOf(sortedCallbacks);
    const auto check = [&](SoQtGeneralViewerEventCB* meddler, auto add) {
        std::vector<SoQtGeneralViewerEventCB*> chain = sortedCallbacks;
        chain.push_back(meddler);
        std::sort(chain.begin(), chain.end(), std::less<>());
        const auto place = std::find(chain.begin(), chain.end(), meddler) - chain.begin();
        for (SoQtGeneralViewerEventCB* callback : chain)
            (viewer->*add)(callback, nullptr);
        // Those before it ran; it did; and of those after it only what it put back.
        std::string expected = sortedNames.substr(0, place) + "!";
        if (place < 4)
            expected += sortedNames[3];
        if (place == 0)
            expected.insert(1, 1, sortedNames[0]);
        send();
        EXPECT_EQ(names(), expected);
        send();
        EXPECT_EQ(names(), (std::string{sortedNames[0], sortedNames[3]}));
    };
    check(removeAllAndAddTheLast<true>, &SoQtGeneralViewer::addPreEventProcessCB);
    for (SoQtGeneralViewerEventCB* callback : sortedCallbacks)
        viewer->removePreEventProcessCB(callback);
    check(removeAllAndAddTheLast<false>, &SoQtGeneralViewer::addPostEventProcessCB);
}

TEST_F(ViewerCallbacksTest, AResizeCallbackMayRemoveAll)
{
    for (SoQtGeneralViewerResizeCB* callback : RESIZE_CALLBACKS)
        viewer->addResizeCB(callback, nullptr);
    viewer->addResizeCB(removeAllSizes, nullptr);
    viewer->sizeChanged(viewer->getGLSize());
    EXPECT_EQ(std::count(entries.begin(), entries.end(), Entry{'!', nullptr}), 1);
    EXPECT_EQ(entries.back(), (Entry{'!', nullptr}));
    entries.clear();
    viewer->sizeChanged(viewer->getGLSize());
    EXPECT_THAT(entries, IsEmpty());
}

TEST_F(ViewerCallbacksTest, HearOfANewSizeInTheOrderOfTheirAddresses)
{
    for (SoQtGeneralViewerResizeCB* callback : RESIZE_CALLBACKS)
        viewer->addResizeCB(callback, this);
    resizeArea(360, 240);
    const std::string heard = names();
    ASSERT_GE(heard.size(), 4U);
    const auto sorted = ascending(RESIZE_CALLBACKS);
    for (SoQtGeneralViewerResizeCB* callback : sorted)
        callback(nullptr, nullptr, SbVec2s());
    EXPECT_EQ(heard.substr(heard.size() - 4), names());

    // The size of the whole viewer, in Qt's pixels.
    lastSize = SbVec2s(0, 0);
    resizeArea(320, 200);
    EXPECT_EQ(lastViewer, viewer);
    EXPECT_EQ(lastSize, SbVec2s(320, 200));
}

// What is not there

namespace {

// Every key with every modifier, pressed and released, and every mouse button.
void sendEverything(OpenViewer& viewer)
{
    for (int key = SoKeyboardEvent::SPACE; key < 127; ++key) {
        for (int modifiers = 0; modifiers < 8; ++modifiers) {
            if (key == SoKeyboardEvent::I && modifiers != 0)
                continue; // one screenshot dialog is enough
            const SoKeyboardEvent press = keyEvent(SoKeyboardEvent::Key(key), modifiers);
            viewer.processSoEvent(&press);
            const SoKeyboardEvent release =
                keyEvent(SoKeyboardEvent::Key(key), modifiers, SoButtonEvent::UP);
            viewer.processSoEvent(&release);
        }
    }
    for (const SoKeyboardEvent::Key key :
         {SoKeyboardEvent::RETURN, SoKeyboardEvent::ENTER, SoKeyboardEvent::ESCAPE,
          SoKeyboardEvent::ESCAPE, SoKeyboardEvent::HOME, SoKeyboardEvent::RETURN}) {
        const SoKeyboardEvent press = keyEvent(key);
        viewer.processSoEvent(&press);
    }
    for (int button = SoMouseButtonEvent::ANY; button <= SoMouseButtonEvent::BUTTON5; ++button) {
        for (const SoButtonEvent::State state : {SoButtonEvent::DOWN, SoButtonEvent::UP}) {
            for (int modifiers = 0; modifiers < 8; ++modifiers) {
                const SoMouseButtonEvent event = mouseEvent(SoMouseButtonEvent::Button(button),
                                                            state, SbVec2s(10, 10), modifiers);
                viewer.processSoEvent(&event);
            }
        }
    }
}

void callEverything(OpenViewer& viewer)
{
    viewer.update();
    viewer.setUpLighting();
    viewer.setCameraType(SoPerspectiveCamera::getClassTypeId());
    viewer.setCameraType(SoOrthographicCamera::getClassTypeId());
    viewer.moveCamera(SbVec3f(1, 1, 1));
    viewer.rotateCamera(SbVec3f(0, 1, 0), 1);
    viewer.setupCamera(SbVec3f(0, 1, 0), SbVec3f(1, 0, 0));
    viewer.setCameraZoom(2 * viewer.getCameraZoom());
    viewer.sizeChanged(viewer.getGLSize());
    viewer.setSceneGraph(static_cast<SoGeneralScene*>(nullptr));
}

} // namespace

TEST_F(SoQtGeneralViewerTest, WithoutASceneEverythingIsHarmless)
{
    QWidget parent;
    parent.resize(200, 100);
    OpenViewer empty(&parent);
    ModalAnswers answers;
    answers.accepts = false;
    callEverything(empty);
    sendEverything(empty);
    EXPECT_FALSE(empty.getGeneralScene());
    EXPECT_EQ(empty.getCameraZoom(), 0);
    EXPECT_EQ(answers.dialogs, 1);
    EXPECT_THAT(answers.boxes, IsEmpty());
}

TEST_F(SoQtGeneralViewerTest, WithAGraphButNoSceneEverythingIsHarmless)
{
    QWidget parent;
    parent.resize(200, 100);
    OpenViewer other(&parent);
    other.setSceneGraph(static_cast<SoNode*>(new SoCube));
    ModalAnswers answers;
    answers.accepts = false;
    callEverything(other);
    sendEverything(other);
    EXPECT_FALSE(other.getGeneralScene());
    EXPECT_GT(other.getCameraZoom(), 0);
}

TEST_F(SoQtGeneralViewerTest, ForgetsASceneThatIsDestroyed)
{
    ModalAnswers answers;
    answers.accepts = false;
    viewer->setUpLighting();
    const QPointer<LightingDialog> dialog = dialogsOf<LightingDialog>(window).value(0);
    ASSERT_TRUE(dialog);
    scene->unref();
    scene = nullptr;
    viewer->setSceneGraph(static_cast<SoNode*>(nullptr));
    EXPECT_FALSE(viewer->getGeneralScene());
    EXPECT_FALSE(dialog);
    callEverything(*viewer);
    sendEverything(*viewer);
}

TEST_F(SoQtGeneralViewerTest, WithoutItsDialogsEverythingIsHarmless)
{
    qDeleteAll(dialogsOf<LightingDialog>(window));
    qDeleteAll(dialogsOf<ScreenshotDialog>(window));
    ModalAnswers answers;
    callEverything(*viewer);
    sendEverything(*viewer);
    EXPECT_EQ(answers.dialogs, 0);
    EXPECT_EQ(viewer->getGeneralScene(), scene);
    // A scene brings lights again.
    viewer->setSceneGraph(scene);
    EXPECT_THAT(dialogsOf<LightingDialog>(window), testing::SizeIs(1));
}

TEST_F(SoQtGeneralViewerTest, TheLightingDialogOutlivesViewerAndSceneUnharmed)
{
    const QPointer<LightingDialog> dialog = dialogsOf<LightingDialog>(window).value(0);
    ASSERT_TRUE(dialog);
    delete viewer;
    viewer = nullptr;
    EXPECT_TRUE(dialog);
    scene->unref();
    scene = nullptr;
    if (dialog)
        dialog->updateShaderParameters();
}

TEST_F(SoQtGeneralViewerTest, OutlivesItsParentUnharmed)
{
    ModalAnswers answers;
    delete window;
    window = nullptr;
    viewer->update();
    viewer->setUpLighting();
    viewer->renderOffscreen();
    for (const char key : std::string("adwsqexyzl"))
        press(letter(key));
    EXPECT_EQ(viewer->getGeneralScene(), scene);
    EXPECT_EQ(scene->updates, 1);
    EXPECT_EQ(answers.dialogs, 0);
}

void countFrame(void* count, SoAction* action)
{
    if (action->isOfType(SoGLRenderAction::getClassTypeId()))
        ++*static_cast<int*>(count);
}

TEST_F(SoQtGeneralViewerTest, DrawsMoreFramesWhenItsOwnWindowChangesAndNoOther)
{
    int frames = 0;
    auto* counter = new SoCallback;
    counter->setCallback(countFrame, &frames);
    scene->addChanging(counter);
    resizeArea(300, 250);
    EXPECT_TRUE(waitUntil([&] { return frames >= 4; }));
    QTest::qWait(2000); // none is left

    frames = 0;
    QWidget tip(nullptr, Qt::ToolTip);
    tip.setGeometry(window->frameGeometry().right() + 100, 50, 60, 20);
    tip.show();
    QTest::qWait(2000);
    EXPECT_EQ(frames, 0);
}

TEST_F(SoQtGeneralViewerTest, DrawsNoFrameWhenAnotherViewInItsWindowChanges)
{
    auto* const place = new QWidget(window);
    place->resize(100, 80);
    OpenViewer other(place);
    place->show();
    other.show();
    int frames = 0, others = 0;
    auto* counter = new SoCallback;
    counter->setCallback(countFrame, &frames);
    scene->addChanging(counter);
    auto* otherCounter = new SoCallback;
    otherCounter->setCallback(countFrame, &others);
    other.setSceneGraph(static_cast<SoNode*>(otherCounter));
    ASSERT_TRUE(waitUntil([&] { return frames > 0 && others > 0; }));
    QTest::qWait(2000); // none is left

    frames = others = 0;
    QExposeEvent event(QRect(0, 0, 100, 80));
    QApplication::sendEvent(other.getGLWidget()->windowHandle(), &event);
    QTest::qWait(2000);
    EXPECT_GE(others, 4);
    EXPECT_EQ(frames, 0);
}
