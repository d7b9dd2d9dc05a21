// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"

#include <cstdlib>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/Qt/viewers/SoQtExaminerViewer.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QGLFormat>
#include <QWidget>

#include "SceneBuilder.h"

// Last: its macros are many.
#include <X11/Xlib.h>

std::string checkDisplay()
{
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        const char* name = std::getenv("DISPLAY");
        return std::string("no window can be opened: found ") +
               (name && *name ? "no X server at DISPLAY=" + std::string(name)
                              : "that DISPLAY is not set") +
               ", expected an X display; --render OUT.png needs none";
    }
    XCloseDisplay(display);
    return "";
}

void initialiseWindows(const char* programName)
{
    // Coin calls X11 itself and crashes under Qt's Wayland plugin.
    setenv("QT_QPA_PLATFORM", "xcb", 0);
    QGLFormat format = QGLFormat::defaultFormat();
    format.setSampleBuffers(true);
    QGLFormat::setDefaultFormat(format);
    SoQt::init(programName, programName);
}

void showWindow(SoSeparator* scene, const std::string& title, const Colour& background)
{
    QWidget* window = SoQt::getTopLevelWidget();
    SoQt::setWidgetSize(window, SbVec2s(1000, 750));
    SoQtExaminerViewer viewer(window);
    viewer.setCameraType(SoOrthographicCamera::getClassTypeId());
    viewer.setBackgroundColor(SbColor(background.red, background.green, background.blue));
    viewer.setSceneGraph(scene);
    viewer.getHeadlight()->direction = getLightDirection();
    viewer.setTitle(title.c_str());
    viewer.viewAll();
    viewer.show();
    SoQt::show(window);
    SoQt::mainLoop();
}
