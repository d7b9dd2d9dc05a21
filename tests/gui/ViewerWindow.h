// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_VIEWERWINDOW_H
#define STRANDVIEW_TESTS_VIEWERWINDOW_H

#include <functional>
#include <string>
#include <vector>

#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <QImage>
#include <QMessageBox>
#include <QTimer>
#include <gtest/gtest.h>

#include <SoGeneralScene.h>
#include <SoQtGeneralViewer.h>

class QGLWidget;
class ScreenshotDialog;

/// A scene that notes what the viewer asks of it, and answers what a test wants.
class RecordingScene : public SoGeneralScene
{
    SO_NODE_HEADER(RecordingScene);

public:
    static void initClass();
    RecordingScene();

    bool processSoEvent(const SoEvent* event) override;
    bool processPickEvent(const SoPickedPoint* point) override;
    void update() override;

    bool handlesEvents = false; ///< besides those that every scene handles
    bool handlesPicks = false;
    int events = 0;
    std::vector<SbVec3f> picks;
    int updates = 0;
    std::vector<std::string>* log = nullptr; ///< gets "scene" for each event

protected:
    ~RecordingScene() override;
};

/// What the library keeps to itself and to subclasses.
class OpenViewer : public SoQtGeneralViewer
{
public:
    using SoQtGeneralViewer::getGLAspectRatio;
    using SoQtGeneralViewer::getGLSize;
    using SoQtGeneralViewer::processSoEvent;
    using SoQtGeneralViewer::sizeChanged;
    using SoQtGeneralViewer::SoQtGeneralViewer;
};

enum Modifier { NONE = 0, ALT = 1, CTRL = 2, SHIFT = 4 };

SoKeyboardEvent keyEvent(SoKeyboardEvent::Key key, int modifiers = NONE,
                         SoButtonEvent::State state = SoButtonEvent::DOWN);
SoMouseButtonEvent mouseEvent(SoMouseButtonEvent::Button button, SoButtonEvent::State state,
                              const SbVec2s& position, int modifiers = NONE);

/// Handles events until a condition holds. Whether it holds in time.
bool waitUntil(const std::function<bool()>& condition, int milliseconds = 10000);

/// A viewer in a window of its own, on the screen, without decoration and axis cross. Its
/// scene is a red cube from (-1, -1, -1) to (1, 1, 1), unlit, before black.
class ViewerWindowTest : public testing::Test
{
protected:
    static void SetUpTestSuite();

    ViewerWindowTest();
    ~ViewerWindowTest() override;

    void SetUp() override;

    /// Gives the viewer a key press. The viewer's answer.
    bool press(SoKeyboardEvent::Key key, int modifiers = NONE);
    /// Asks for a size of the GL area and waits until it is there; in Qt's pixels.
    void resizeArea(int width, int height);
    /// A colour on the screen, waiting for it at most 10 seconds; device pixels of the
    /// GL area, from its upper left corner.
    void expectOnScreen(int x, int y, const QColor& colour);
    /// The GL area as the screen shows it, in device pixels.
    QImage grabArea() const;
    /// The middle of the view in device pixels.
    SbVec2s getMiddle() const;

    QWidget* window = nullptr;
    OpenViewer* viewer = nullptr;
    QGLWidget* area = nullptr;
    RecordingScene* scene = nullptr; ///< referenced
};

/// Answers modal windows while it lives: fills in and accepts the screenshot dialog,
/// notes message boxes and closes them. Any other modal window is a failure.
class ModalAnswers
{
public:
    struct Box
    {
        QString title;
        QString text;
        QMessageBox::Icon icon;
        QMessageBox::StandardButtons buttons;
        bool hasChosenDefault;
        QWidget* parent;
    };

    ModalAnswers();

    std::function<void(ScreenshotDialog&)> fillIn; ///< called once per dialog, before OK
    bool accepts = true;                           ///< otherwise it cancels
    QMessageBox::StandardButton answer = QMessageBox::Yes;

    int dialogs = 0;
    std::vector<Box> boxes;

private:
    void answerModalWindow();

    QTimer timer;
};

#endif
