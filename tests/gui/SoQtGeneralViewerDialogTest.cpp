// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoQtGeneralViewerDialog.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QVBoxLayout>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <LightingDialog.h>
#include <ScreenshotDialog.h>
#include <SoGeneralScene.h>
#include <SoQtGeneralViewer.h>
#include <SoRod.h>

#include "windows.h"

namespace {

// A scene with a straight rod of ten points along x.
SoGeneralScene* rodScene()
{
    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
    for (int i = 0; i < 10; ++i) {
        points.emplace_back(i, 0, 0);
        rotations.emplace_back(0, std::sqrt(0.5), 0, std::sqrt(0.5));
    }
    auto* rod = new SoRod(0.3, 1, 8, 2, true, true, false);
    EXPECT_TRUE(rod->setData(points, rotations));
    auto* scene = new SoGeneralScene;
    scene->addShaded(rod);
    return scene;
}

// A host's window: the viewer above, the status bar below.
class Window : public SoQtGeneralViewerDialog
{
public:
    enum Viewer { WITHOUT_VIEWER, WITH_VIEWER };

    explicit Window(Viewer withViewer) : SoQtGeneralViewerDialog(nullptr)
    {
        auto* layout = new QVBoxLayout(this);
        if (withViewer == WITH_VIEWER) {
            auto* area = new QWidget;
            layout->addWidget(area, 1);
            makeViewer(area);
        }
        layout->addWidget(statusBar);
        auto* button = new QPushButton("of the host");
        button->setObjectName("hosts");
        layout->addWidget(button);
        resize(500, 400);
    }

    ~Window() override
    {
        if (!viewer)
            return;
        viewer->removePostEventProcessCB(updateZoom3DEventCB);
        viewer->removeResizeCB(updateZoom3DResizeCB);
        delete viewer;
    }

    void makeViewer(QWidget* area) { viewer = new SoQtGeneralViewer(area); }

    SoQtGeneralViewer& getViewer() { return *viewer; }
    QStatusBar* getStatusBar() { return statusBar; }
    QLineEdit* getField() { return zoomLineEdit; }
    QString shown() const { return zoomLineEdit->text(); }

    // Called instead of closing.
    void done(int result) override
    {
        ++endings;
        SoQtGeneralViewerDialog::done(result);
    }
    int endings = 0;

    void update3DZoom() override
    {
        ++updates;
        SoQtGeneralViewerDialog::update3DZoom();
    }
    int updates = 0;
};

QString number(double zoom) { return QString::number(zoom, 'g', 6); }

class SoQtGeneralViewerDialogTest : public testing::Test
{
protected:
    static void SetUpTestSuite() { initWindowsOnce(); }

    // A window on the screen that shows a rod.
    void show()
    {
        window = std::make_unique<Window>(Window::WITH_VIEWER);
        viewer().setSceneGraph(rodScene());
        window->setupUi();
        showTheWindow();
    }

    void showTheWindow()
    {
        viewer().show();
        window->move(0, 0); // away from the pointer
        ASSERT_TRUE(showActive(*window));
        QTest::qWait(100);
        area = viewer().getGLWidget();
        ASSERT_TRUE(area);
    }

    void TearDown() override { window.reset(); }

    SoQtGeneralViewer& viewer() { return window->getViewer(); }
    QLineEdit* field() { return window->getField(); }
    QString zoom() { return number(viewer().getCameraZoom()); }

    void typeWithReturn(const QString& text)
    {
        ASSERT_TRUE(focus(*field()));
        typeOver(*field(), text);
        QTest::keyClick(field(), Qt::Key_Return);
    }

    std::unique_ptr<Window> window;
    QWidget* area = nullptr; // where OpenGL draws
};

} // namespace

// Its parts

TEST_F(SoQtGeneralViewerDialogTest, MakesTheStatusBarFirstAndTheFieldInSetupUi)
{
    Window bare(Window::WITHOUT_VIEWER);
    ASSERT_TRUE(bare.getStatusBar());
    EXPECT_EQ(bare.getStatusBar()->parentWidget(), &bare);
    EXPECT_EQ(bare.getField(), nullptr);
}

TEST_F(SoQtGeneralViewerDialogTest, ShowsTheZoomAtTheRightEndOfTheStatusBar)
{
    show();
    EXPECT_EQ(field()->objectName(), "zoomLineEdit");
    EXPECT_EQ(field()->maximumWidth(), 80);
    EXPECT_EQ(window->shown(), zoom());
    EXPECT_GT(viewer().getCameraZoom(), 0);

    QWidget* container = field()->parentWidget();
    EXPECT_EQ(container->parentWidget(), window->getStatusBar());
    auto* layout = qobject_cast<QHBoxLayout*>(container->layout());
    ASSERT_TRUE(layout);
    ASSERT_EQ(layout->count(), 2);
    auto* label = qobject_cast<QLabel*>(layout->itemAt(0)->widget());
    ASSERT_TRUE(label);
    EXPECT_EQ(label->text(), "Zoom");
    EXPECT_EQ(layout->itemAt(1)->widget(), field());
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(layout->stretch(i), 0);
        EXPECT_EQ(layout->itemAt(i)->alignment(), Qt::Alignment());
    }
    // A message pushes it away no more than a permanent widget.
    window->getStatusBar()->showMessage("a message");
    EXPECT_TRUE(field()->isVisible());
    const int right = container->mapTo(window.get(), container->rect().bottomRight()).x();
    EXPECT_GT(right, window->width() - 50);
    EXPECT_THAT(badlyPlaced(*container), testing::IsEmpty());
}

TEST_F(SoQtGeneralViewerDialogTest, WithoutAViewerNothingIsMadeAndNothingHappens)
{
    Window bare(Window::WITHOUT_VIEWER);
    const int widgets = bare.findChildren<QWidget*>().size();
    bare.setupUi();
    EXPECT_EQ(bare.findChildren<QWidget*>().size(), widgets);
    EXPECT_EQ(bare.getField(), nullptr);
    bare.update3DZoom();
    bare.setCameraZoom();
    updateZoom3DEventCB(&bare, nullptr, nullptr);
    updateZoom3DResizeCB(&bare, nullptr, SbVec2s());
    EXPECT_EQ(bare.updates, 3);

    // Until there is one.
    QWidget place;
    bare.makeViewer(&place);
    bare.update3DZoom();
    bare.setCameraZoom();
    bare.setupUi();
    ASSERT_TRUE(bare.getField());
    EXPECT_EQ(bare.shown(), "0") << "of no camera";
}

TEST_F(SoQtGeneralViewerDialogTest, AViewerWithoutASceneHasNoZoom)
{
    window = std::make_unique<Window>(Window::WITH_VIEWER);
    window->setupUi();
    showTheWindow();
    EXPECT_EQ(window->shown(), "0");
    typeWithReturn("2.5");
    EXPECT_EQ(window->shown(), "0");
    QTest::keyClick(area, Qt::Key_C);
    QTest::mouseClick(area, Qt::LeftButton);
    EXPECT_EQ(window->shown(), "0");
    viewer().setSceneGraph(rodScene());
    QTest::keyClick(area, Qt::Key_C);
    EXPECT_EQ(window->shown(), zoom());
    EXPECT_GT(viewer().getCameraZoom(), 0);
}

TEST_F(SoQtGeneralViewerDialogTest, SetUpTwiceRegistersOnceAndBuildsASecondField)
{
    show();
    const QLineEdit* first = field();
    window->setupUi();
    EXPECT_NE(field(), first);
    EXPECT_EQ(window->findChildren<QLineEdit*>("zoomLineEdit").size(), 2);

    window->updates = 0;
    QTest::keyPress(area, Qt::Key_C);
    EXPECT_EQ(window->updates, 1);
    viewer().removePostEventProcessCB(updateZoom3DEventCB);
    QTest::keyRelease(area, Qt::Key_C);
    EXPECT_EQ(window->updates, 1);
    typeWithReturn("3");
    EXPECT_EQ(zoom(), "3");
    EXPECT_EQ(window->shown(), "3");
}

TEST_F(SoQtGeneralViewerDialogTest, CallbacksWithoutADialogDoNothing)
{
    updateZoom3DEventCB(nullptr, nullptr, nullptr);
    updateZoom3DResizeCB(nullptr, nullptr, SbVec2s(3, 4));
}

TEST_F(SoQtGeneralViewerDialogTest, BothSlotsAreFoundByName)
{
    show();
    ASSERT_TRUE(focus(*field()));
    field()->setText("4");
    EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "update3DZoom"));
    EXPECT_EQ(window->shown(), zoom());
    field()->setText("4");
    EXPECT_TRUE(QMetaObject::invokeMethod(window.get(), "setCameraZoom"));
    EXPECT_EQ(zoom(), "4");
}

// Typing a zoom

TEST_F(SoQtGeneralViewerDialogTest, ReturnInTheFieldSetsTheZoom)
{
    show();
    typeWithReturn("2.5");
    EXPECT_NEAR(viewer().getCameraZoom(), 2.5, 1e-6);
    EXPECT_EQ(window->shown(), "2.5");
    typeWithReturn("12.3456789");
    EXPECT_EQ(window->shown(), "12.3457");
    EXPECT_NEAR(viewer().getCameraZoom(), 12.3456789, 1e-5);
    ASSERT_TRUE(focus(*field()));
    typeOver(*field(), "7");
    EXPECT_EQ(zoom(), "12.3457") << "not before Return";
    QTest::keyClick(field(), Qt::Key_Enter);
    EXPECT_EQ(zoom(), "7");
}

TEST_F(SoQtGeneralViewerDialogTest, APerspectiveZoomIsSetAndShownAlike)
{
    show();
    viewer().setCameraType(SoPerspectiveCamera::getClassTypeId());
    window->update3DZoom();
    EXPECT_EQ(window->shown(), zoom());
    typeWithReturn("2.5");
    EXPECT_EQ(window->shown(), "2.5");
    typeWithReturn("0");
    EXPECT_EQ(window->shown(), "1e-10");
    typeWithReturn("30");
    EXPECT_EQ(window->shown(), "30");
}

TEST_F(SoQtGeneralViewerDialogTest, WhatIsNoNumberGivesWayToTheZoom)
{
    show();
    typeWithReturn("5");
    const double before = viewer().getCameraZoom();
    for (const char* text : {"abc", "", " ", "2,5", "1e400", "0x10", "5 6"}) {
        typeWithReturn(text);
        EXPECT_EQ(viewer().getCameraZoom(), before) << text;
        EXPECT_EQ(window->shown(), "5") << text;
    }
}

TEST_F(SoQtGeneralViewerDialogTest, TheSmallestZoomIsOneTenBillionth)
{
    show();
    for (const char* text : {"0", "-3", "1e-11", "-inf", "nan"}) {
        typeWithReturn("5");
        typeWithReturn(text);
        EXPECT_EQ(window->shown(), "1e-10") << text;
        EXPECT_EQ(zoom(), "1e-10") << text;
    }
}

TEST_F(SoQtGeneralViewerDialogTest, EvenAnInfiniteZoomIsDrawnAndLeft)
{
    show();
    for (const SoType type :
         {SoOrthographicCamera::getClassTypeId(), SoPerspectiveCamera::getClassTypeId()}) {
        viewer().setCameraType(type);
        for (const char* text : {"inf", "1e300", "1e-10"}) {
            typeWithReturn(text);
            EXPECT_EQ(window->shown(), zoom()) << text;
            viewer().scheduleRedraw();
            QTest::qWait(50);
            QTest::mouseClick(area, Qt::LeftButton);
            typeWithReturn("2.5");
            EXPECT_EQ(window->shown(), "2.5") << text;
        }
    }
}

// Following the camera

TEST_F(SoQtGeneralViewerDialogTest, FollowsEveryEventThatTheViewerProcesses)
{
    show();
    viewer().setCameraZoom(11);
    QTest::keyPress(area, Qt::Key_C);
    EXPECT_EQ(window->shown(), "11");
    viewer().setCameraZoom(12);
    QTest::keyRelease(area, Qt::Key_C);
    EXPECT_EQ(window->shown(), "12");
    viewer().setCameraZoom(13);
    QTest::mousePress(area, Qt::LeftButton);
    EXPECT_EQ(window->shown(), "13");
    viewer().setCameraZoom(14);
    QTest::mouseRelease(area, Qt::LeftButton);
    EXPECT_EQ(window->shown(), "14");
    // Of the scene's keys, too.
    viewer().setCameraZoom(15);
    QTest::keyPress(area, Qt::Key_Equal);
    EXPECT_EQ(window->shown(), "15");
}

TEST_F(SoQtGeneralViewerDialogTest, TheZoomKeysShowWithTheirRelease)
{
    show();
    typeWithReturn("8");
    ASSERT_TRUE(focus(*area));
    QTest::keyPress(area, Qt::Key_W, Qt::AltModifier);
    EXPECT_EQ(zoom(), "10");
    EXPECT_EQ(window->shown(), "8");
    QTest::keyRelease(area, Qt::Key_W, Qt::AltModifier);
    EXPECT_EQ(window->shown(), "10");
    QTest::keyPress(area, Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(zoom(), "8");
    EXPECT_EQ(window->shown(), "10");
    QTest::keyRelease(area, Qt::Key_S, Qt::AltModifier);
    EXPECT_EQ(window->shown(), "8");
}

TEST_F(SoQtGeneralViewerDialogTest, FollowsTheSizeOfTheWindowWithoutAnyEvent)
{
    show();
    typeWithReturn("8");
    static int events;
    events = 0;
    viewer().addPreEventProcessCB([](void*, SoQtGeneralViewer*, const SoEvent*) { ++events; },
                                  nullptr);
    const int side = std::min(area->width(), area->height());
    window->resize(500, 500);
    EXPECT_TRUE(QTest::qWaitFor([&] { return window->shown() != "8"; }));
    EXPECT_EQ(events, 0);
    EXPECT_EQ(window->shown(), zoom());
    const int longer = std::min(area->width(), area->height());
    EXPECT_GT(longer, side);
    EXPECT_NEAR(window->shown().toDouble(), 8. * longer / side, 1e-4);
}

// Keys that a QDialog takes for itself

TEST_F(SoQtGeneralViewerDialogTest, ReturnInTheFieldPressesNoButton)
{
    show();
    std::vector<std::string> clicked;
    const auto buttons = window->findChildren<QAbstractButton*>();
    EXPECT_GT(buttons.size(), 5) << "the viewer's decoration";
    for (QAbstractButton* button : buttons) {
        const std::string name = button->text().toStdString();
        QObject::connect(button, &QAbstractButton::clicked,
                         [&clicked, name] { clicked.push_back("'" + name + "'"); });
    }
    const bool viewing = viewer().isViewing();
    for (const QString text : {"2.5", "abc"}) {
        typeWithReturn(text);
        QTest::keyClick(field(), Qt::Key_Enter);
        EXPECT_THAT(clicked, testing::IsEmpty());
        EXPECT_EQ(viewer().isViewing(), viewing);
        EXPECT_EQ(window->shown(), "2.5");
        EXPECT_TRUE(window->isVisible());
        EXPECT_TRUE(viewer().isDecoration());
        EXPECT_TRUE(field()->hasFocus());
    }
}

TEST_F(SoQtGeneralViewerDialogTest, ReturnInTheViewerOnlySwitchesTheDecoration)
{
    show();
    std::vector<std::string> clicked;
    for (QAbstractButton* button : window->findChildren<QAbstractButton*>())
        QObject::connect(button, &QAbstractButton::clicked,
                         [&clicked] { clicked.emplace_back("a button"); });
    ASSERT_TRUE(focus(*area));
    ASSERT_TRUE(viewer().isDecoration());
    QTest::keyClick(area, Qt::Key_Return);
    EXPECT_FALSE(viewer().isDecoration());
    QTest::keyClick(area, Qt::Key_Return);
    EXPECT_TRUE(viewer().isDecoration());
    EXPECT_THAT(clicked, testing::IsEmpty());
    EXPECT_TRUE(window->isVisible());
}

TEST_F(SoQtGeneralViewerDialogTest, EscapeInTheViewerOnlySwitchesViewing)
{
    show();
    ASSERT_TRUE(focus(*area));
    ASSERT_TRUE(viewer().isViewing());
    QTest::keyClick(area, Qt::Key_Escape);
    EXPECT_FALSE(viewer().isViewing());
    EXPECT_EQ(window->endings, 0);
    EXPECT_TRUE(window->isVisible());
    QTest::keyClick(area, Qt::Key_Escape);
    EXPECT_TRUE(viewer().isViewing());
    EXPECT_EQ(window->endings, 0);
    EXPECT_TRUE(window->isVisible());
}

TEST_F(SoQtGeneralViewerDialogTest, EscapeInTheFieldDoesNotCloseTheViewer)
{
    show();
    ASSERT_TRUE(focus(*field()));
    QTest::keyClick(field(), Qt::Key_Escape);
    EXPECT_EQ(window->endings, 0);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(viewer().isViewing());
}

TEST_F(SoQtGeneralViewerDialogTest, TheDialogsOfItsViewerKeepTheirKeys)
{
    show();
    ASSERT_TRUE(focus(*field()));
    ASSERT_TRUE(focus(*window->findChild<QPushButton*>("hosts")));
    const bool asked = duringDialog<ScreenshotDialog>(
        [&] { QTest::keyClick(area, Qt::Key_I); },
        [](ScreenshotDialog& dialog) {
            EXPECT_TRUE(child<QPushButton>(dialog, "okButton")->isDefault());
            QTest::keyClick(&dialog, Qt::Key_Escape);
            EXPECT_FALSE(dialog.isVisible());
        });
    EXPECT_TRUE(asked);
    EXPECT_TRUE(window->isVisible());

    QTest::keyClick(area, Qt::Key_L);
    auto* lights = window->findChild<LightingDialog*>();
    ASSERT_TRUE(lights && lights->isVisible());
    auto* intensity = child<QLineEdit>(*lights, "intensity1LineEdit");
    typeOver(*intensity, "0.25");
    QTest::keyClick(intensity, Qt::Key_Return);
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
    viewer().getGeneralScene()->getLightingParameters(directions, intensities, shininess);
    EXPECT_EQ(intensities->value[0], 0.25f);
    QTest::keyClick(intensity, Qt::Key_Escape);
    EXPECT_FALSE(lights->isVisible());
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(window->endings, 0);
}

TEST_F(SoQtGeneralViewerDialogTest, TheWindowClosesAsEverOtherwise)
{
    show();
    window->close();
    EXPECT_FALSE(window->isVisible());
}

// For classes derived from it

TEST_F(SoQtGeneralViewerDialogTest, EventsAndReturnReachTheSlotsOfADerivedWindow)
{
    class Derived : public Window
    {
    public:
        Derived() : Window(WITH_VIEWER) {}
        void setCameraZoom() override { ++typed; }
        int typed = 0;
    };
    auto derived = std::make_unique<Derived>();
    Derived& derivedWindow = *derived;
    window = std::move(derived);
    viewer().setSceneGraph(rodScene());
    window->setupUi();
    showTheWindow();
    typeWithReturn("5");
    EXPECT_EQ(derivedWindow.typed, 1);
    const int before = window->updates;
    QTest::keyPress(area, Qt::Key_C);
    EXPECT_EQ(window->updates, before + 1);
}

TEST_F(SoQtGeneralViewerDialogTest, AViewerOutlivesTheWindowOnceTheCallbacksAreRemoved)
{
    QWidget host;
    host.resize(300, 200);
    SoQtGeneralViewer outliving(&host);
    outliving.setSceneGraph(rodScene());
    class Borrower : public SoQtGeneralViewerDialog
    {
    public:
        explicit Borrower(SoQtGeneralViewer* borrowed) : SoQtGeneralViewerDialog(nullptr)
        {
            viewer = borrowed;
            setupUi();
        }
    };
    auto borrower = std::make_unique<Borrower>(&outliving);
    outliving.removePostEventProcessCB(updateZoom3DEventCB);
    outliving.removeResizeCB(updateZoom3DResizeCB);
    borrower.reset();
    outliving.show();
    ASSERT_TRUE(showActive(host));
    QTest::keyClick(outliving.getGLWidget(), Qt::Key_C);
    host.resize(400, 300);
    QTest::qWait(50);
    EXPECT_GT(outliving.getCameraZoom(), 0);
}
