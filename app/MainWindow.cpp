// SPDX-License-Identifier: GPL-3.0-or-later
#include "MainWindow.h"

#include <cstdlib>

#include <Inventor/Qt/SoQt.h>
#include <Inventor/Qt/viewers/SoQtExaminerViewer.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QGLFormat>
#include <QWidget>

#include <SoGeneralScene.h>

#include "Camera.h"

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
    SoQt::show(window);
    SoQt::mainLoop();
}
