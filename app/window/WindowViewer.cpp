// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/WindowViewer.h"

#include <utility>

#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QWidget>

#include <SoGeneralScene.h>

#include "camera/Camera.h"

namespace strandview {

WindowViewer::WindowViewer(QWidget* parent) : SoQtGeneralViewer(parent)
{
    setFeedbackVisibility(FALSE); // a cross over the scene, with yellow letters
    cameraWatcher.setPriority(0);
}

// SoQt takes the camera that it makes for the new home; and near what is long along the
// view a perspective camera that shows as much as a parallel one would be inside it.
void WindowViewer::setCameraType(SoType type)
{
    const CameraRequest kept = home;
    SoQtGeneralViewer::setCameraType(type);
    home = kept;
    if (getCamera() && getGeneralScene())
        keepInFront(*getCamera(), getGeneralScene(), SbViewportRegion(getGLSize()));
}

void WindowViewer::saveHomePosition()
{
    SoQtGeneralViewer::saveHomePosition();
    if (getCamera())
        home.numbers = numbersOf(*getCamera());
}

void WindowViewer::resetToHomePosition()
{
    if (onHome)
        onHome();
}

void WindowViewer::setSceneGraph(SoNode* root)
{
    auto* withAxes = new SoSeparator;
    withAxes->addChild(axes.getNode());
    withAxes->addChild(root);
    SoQtGeneralViewer::setSceneGraph(withAxes);
}

void WindowViewer::setCamera(SoCamera* camera)
{
    SoQtGeneralViewer::setCamera(camera);
    cameraWatcher.detach();
    if (!camera)
        return;
    cameraWatcher.attach(&camera->orientation);
    turnAxes(this, nullptr);
}

void WindowViewer::setViewing(SbBool viewing)
{
    SoQtGeneralViewer::setViewing(viewing);
    if (onMode)
        onMode();
}

SbBool WindowViewer::processSoEvent(const SoEvent* const event)
{
    hasPicked = false;
    const bool picks = isPick(event);
    const SbBool handled = SoQtGeneralViewer::processSoEvent(event);
    if (picks && !hasPicked && onMiss)
        onMiss();
    return handled;
}

void WindowViewer::actualRedraw()
{
    SoQtGeneralViewer::actualRedraw();
    const SbVec2s size = getGLSize();
    if (frameWaiter)
        frameWaiter->endFrame(size[0], size[1]);
    if (const auto tell = std::exchange(onDrawn, nullptr))
        tell();
}

void WindowViewer::sizeChanged(const SbVec2s& size)
{
    SoQtGeneralViewer::sizeChanged(size);
    axes.setView(getGLSize(), float(getGLWidget()->devicePixelRatioF()));
}

void WindowViewer::turnAxes(void* viewer, SoSensor* /*sensor*/)
{
    auto* self = static_cast<WindowViewer*>(viewer);
    self->axes.setOrientation(self->getCamera()->orientation.getValue());
}

bool WindowViewer::isPick(const SoEvent* event) const
{
    return SO_MOUSE_RELEASE_EVENT(event, BUTTON2) ||
           (SO_MOUSE_RELEASE_EVENT(event, BUTTON1) && !isViewing());
}

} // namespace strandview
