// SPDX-License-Identifier: GPL-3.0-or-later
#include "ViewerWindow.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QGLWidget>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QThread>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoMaterial.h>

#include <ScreenshotDialog.h>

#include "support/keepPictures.h"

SO_NODE_SOURCE(RecordingScene);

void RecordingScene::initClass()
{
    SO_NODE_INIT_CLASS(RecordingScene, SoGeneralScene, "SoGeneralScene");
}

RecordingScene::RecordingScene() { SO_NODE_CONSTRUCTOR(RecordingScene); }
RecordingScene::~RecordingScene() = default;

bool RecordingScene::processSoEvent(const SoEvent* event)
{
    ++events;
    if (log)
        log->emplace_back("scene");
    return SoGeneralScene::processSoEvent(event) || handlesEvents;
}

bool RecordingScene::processPickEvent(const SoPickedPoint* point)
{
    picks.push_back(point->getPoint());
    return handlesPicks;
}

void RecordingScene::update() { ++updates; }

SoKeyboardEvent keyEvent(SoKeyboardEvent::Key key, int modifiers, SoButtonEvent::State state)
{
    SoKeyboardEvent event;
    event.setKey(key);
    event.setState(state);
    event.setAltDown((modifiers & ALT) != 0);
    event.setCtrlDown((modifiers & CTRL) != 0);
    event.setShiftDown((modifiers & SHIFT) != 0);
    return event;
}

SoMouseButtonEvent mouseEvent(SoMouseButtonEvent::Button button, SoButtonEvent::State state,
                              const SbVec2s& position, int modifiers)
{
    SoMouseButtonEvent event;
    event.setButton(button);
    event.setState(state);
    event.setPosition(position);
    event.setAltDown((modifiers & ALT) != 0);
    event.setCtrlDown((modifiers & CTRL) != 0);
    event.setShiftDown((modifiers & SHIFT) != 0);
    return event;
}

bool waitUntil(const std::function<bool()>& condition, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > milliseconds)
            return false;
        QApplication::processEvents();
        QThread::msleep(5);
    }
    return true;
}

// The window

void ViewerWindowTest::SetUpTestSuite()
{
    static int argc = 1;
    static char name[] = "test";
    static char* argv[] = {name, nullptr};
    if (QApplication::instance())
        return;
    SoQt::init(argc, argv, name);
    SoGeneralScene::initClass();
    RecordingScene::initClass();
    SoQtGeneralViewer::initClass();
}

ViewerWindowTest::ViewerWindowTest() = default;

ViewerWindowTest::~ViewerWindowTest()
{
    delete viewer;
    delete window;
    if (scene)
        scene->unref();
}

void ViewerWindowTest::SetUp()
{
    window = new QWidget;
    window->resize(400, 300);
    viewer = new OpenViewer(window);
    viewer->setDecoration(FALSE);
    viewer->setFeedbackVisibility(FALSE);
    viewer->setBackgroundColor(SbColor(0, 0, 0));
    scene = new RecordingScene;
    scene->ref();
    auto* red = new SoMaterial;
    red->diffuseColor = SbColor(1, 0, 0);
    scene->addSolid(red);
    scene->addSolid(new SoCube);
    viewer->setSceneGraph(scene);
    viewer->show();
    SoQt::show(window);
    area = qobject_cast<QGLWidget*>(viewer->getGLWidget());
    ASSERT_TRUE(area);
    resizeArea(400, 300);
    expectOnScreen(getMiddle()[0], getMiddle()[1], Qt::red);
}

bool ViewerWindowTest::press(SoKeyboardEvent::Key key, int modifiers)
{
    const SoKeyboardEvent event = keyEvent(key, modifiers);
    return viewer->processSoEvent(&event);
}

void ViewerWindowTest::resizeArea(int width, int height)
{
    const int ratio = area->devicePixelRatio();
    const QSize expected(width * ratio, height * ratio);
    window->resize(width, height);
    ASSERT_TRUE(waitUntil([&] {
        const SbVec2s size = viewer->getGLSize();
        return area->size() == QSize(width, height) && QSize(size[0], size[1]) == expected &&
               grabArea().size() == expected;
    })) << area->width()
        << " x " << area->height() << ", in OpenGL " << viewer->getGLSize()[0] << " x "
        << viewer->getGLSize()[1];
}

QImage ViewerWindowTest::grabArea() const
{
    return keepIfFailed(QApplication::primaryScreen()->grabWindow(area->winId()).toImage());
}

void ViewerWindowTest::expectOnScreen(int x, int y, const QColor& colour)
{
    QImage image;
    waitUntil([&] {
        // Nothing tells the viewer that its frame came before the X server's window.
        viewer->scheduleRedraw();
        image = grabArea();
        return image.valid(x, y) && image.pixelColor(x, y) == colour;
    });
    ASSERT_TRUE(image.valid(x, y));
    EXPECT_EQ(image.pixelColor(x, y).name().toStdString(), colour.name().toStdString())
        << "at " << x << ", " << y;
}

SbVec2s ViewerWindowTest::getMiddle() const { return viewer->getGLSize() / 2; }

// Modal windows

ModalAnswers::ModalAnswers()
{
    timer.callOnTimeout([this] { answerModalWindow(); });
    timer.start(5);
}

void ModalAnswers::answerModalWindow()
{
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible())
        return;
    if (auto* dialog = qobject_cast<ScreenshotDialog*>(modal)) {
        ++dialogs;
        if (fillIn)
            fillIn(*dialog);
        auto* button = dialog->findChild<QPushButton*>(accepts ? "okButton" : "cancelButton");
        button->click();
    } else if (auto* box = qobject_cast<QMessageBox*>(modal)) {
        boxes.push_back({box->windowTitle(), box->text(), box->icon(), box->standardButtons(),
                         box->defaultButton() != nullptr, box->parentWidget()});
        QAbstractButton* button = box->button(answer);
        if (!button)
            button = box->button(QMessageBox::Ok);
        ASSERT_TRUE(button);
        button->click();
    } else {
        ADD_FAILURE() << "a modal window of the class " << modal->metaObject()->className();
        modal->close();
    }
}
