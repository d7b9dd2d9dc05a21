// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"

#include <cstdlib>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/Qt/viewers/SoQtExaminerViewer.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QApplication>
#include <QEvent>
#include <QGLFormat>
#include <QTimer>
#include <QWidget>

#include <SoGeneralScene.h>

#include "Camera.h"

namespace {

// The X server shows and resizes windows in its own time, and a frame that comes before
// is cut off or lost; Qt's GL widget does not ask for another. So whenever a window
// appears or changes, there are a few more frames, later and later.
class Redrawer : public QObject
{
public:
    explicit Redrawer(SoQtViewer& watched) : viewer(watched) { qApp->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (object->isWindowType() &&
            (event->type() == QEvent::Expose || event->type() == QEvent::Resize)) {
            for (const int milliseconds : {0, 100, 400, 1600})
                QTimer::singleShot(milliseconds, this, [this] { viewer.scheduleRedraw(); });
        }
        return QObject::eventFilter(object, event);
    }

private:
    SoQtViewer& viewer;
};

} // namespace

void initialiseWindows(const char* programName)
{
    // Coin calls X11 itself and crashes under Qt's Wayland plugin.
    setenv("QT_QPA_PLATFORM", "xcb", 0);
    QGLFormat format = QGLFormat::defaultFormat();
    format.setSampleBuffers(true);
    QGLFormat::setDefaultFormat(format);
    SoQt::init(programName, programName);
}

void showWindow(SoGeneralScene* scene, const std::string& title, const Colour& background,
                float bottom)
{
    QWidget* window = SoQt::getTopLevelWidget();
    SoQt::setWidgetSize(window, SbVec2s(1000, 750));
    SoQtExaminerViewer viewer(window);
    // The viewer takes the first camera that it finds as its own.
    auto* root = new SoSeparator;
    root->addChild(makeCamera(scene, SbViewportRegion(1000, 750), bottom));
    root->addChild(scene);
    viewer.setHeadlight(FALSE); // the scene has its lights
    viewer.setBackgroundColor(SbColor(background.red, background.green, background.blue));
    viewer.setSceneGraph(root);
    viewer.saveHomePosition();
    viewer.setTitle(title.c_str());
    viewer.show();
    const Redrawer redrawer(viewer);
    SoQt::show(window);
    SoQt::mainLoop();
}
