// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/WindowViewer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoSceneManager.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/events/SoLocation2Event.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QPushButton>
#include <QWidget>

#include <SoGeneralScene.h>
#include <SoMeshShape.h>

#include "camera/Camera.h"
#include "scene/DataScene.h"
#include "window/CoarseDrawing.h"

namespace strandview {

namespace {

// How far a hand moves the mouse that clicks, in the desktop's pixels. SoQt has a STILL of its own.
const double SHAKE = 4;

// What cameras have that is not of a view alone, as its planes in front and behind are.
const char* const CAMERA_FIELDS[] = {"position", "orientation", "focalDistance", "height",
                                     "heightAngle"};

} // namespace

WindowViewer::WindowViewer(QWidget* parent) : SoQtGeneralViewer(parent)
{
    setFeedbackVisibility(FALSE); // a cross over the scene, with yellow letters
    cameraWatcher.setPriority(0);
    nameButtons();
    cameraTeller.setPriority(0); // or it does not know the field
}

WindowViewer::~WindowViewer()
{
    if (turns)
        turns->forget(*this);
}

// Those beside the wheels, in their order, which have pictures alone.
void WindowViewer::nameButtons()
{
    static const QStringList names{
        "Picking", "Turning", "Home", "Set home", "View all", "Seek", "Perspective or parallel"};
    const QList<QPushButton*> buttons = getBaseWidget()->findChildren<QPushButton*>();
    for (int i = 0; i < std::min(buttons.size(), names.size()); ++i)
        buttons[i]->setAccessibleName(names[i]);
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
    data = dynamic_cast<DataScene*>(root);
    drawAsBefore();
    auto* withAxes = new SoSeparator;
    withAxes->addChild(axes.getNode());
    withAxes->addChild(root);
    withAxes->addChild(keptMarks.getNode());
    withAxes->addChild(marks.getNode());
    withAxes->addChild(hoverMark.getNode());
    withAxes->addChild(clipHandles.getNode());
    SoQtGeneralViewer::setSceneGraph(withAxes);
}

void WindowViewer::setCamera(SoCamera* camera)
{
    SoQtGeneralViewer::setCamera(camera);
    cameraWatcher.detach();
    cameraTeller.detach();
    if (!camera)
        return;
    cameraWatcher.attach(&camera->orientation);
    turnAxes(this, nullptr);
    cameraTeller.attach(camera);
    if (onCamera)
        onCamera();
}

void WindowViewer::followCamera(const WindowViewer& other)
{
    const SoCamera& from = *other.getCamera();
    if (getCamera()->getTypeId() != from.getTypeId())
        setCameraType(from.getTypeId());
    for (const char* const name : CAMERA_FIELDS) {
        const SoField* const field = from.getField(name);
        SoField* const copy = getCamera()->getField(name);
        if (field && copy && !copy->isSame(*field))
            copy->copyFrom(*field);
    }
}

void WindowViewer::place(const CameraRequest& request)
{
    setPerspective(request.isPerspective());
    placeCamera(*getCamera(), request, data, SbViewportRegion(getGLSize()), data->getLegendRoom());
}

void WindowViewer::fit(std::optional<double> margin)
{
    fitScene(*getCamera(), data, SbViewportRegion(getGLSize()), data->getLegendRoom(), margin);
}

void WindowViewer::centre(const SbBox3f& box)
{
    fitBox(*getCamera(), box, data, SbViewportRegion(getGLSize()), data->getLegendRoom());
}

void WindowViewer::setPerspective(bool perspective)
{
    setCameraType(perspective ? SoPerspectiveCamera::getClassTypeId()
                              : SoOrthographicCamera::getClassTypeId());
}

void WindowViewer::drawCoarsely(bool coarse)
{
    SoQtGeneralViewer::drawCoarsely(coarse);
    if (data)
        data->drawCoarsely(coarse || (isDrawnBySoftware() && takesLong(*data)));
}

// Each frame has other planes of clipping.
void WindowViewer::tellCamera(void* viewer, SoSensor* sensor)
{
    const auto& self = *static_cast<WindowViewer*>(viewer);
    const SoCamera* const camera = self.getCamera();
    const SoField* const field = static_cast<SoNodeSensor*>(sensor)->getTriggerField();
    if (!self.onCamera || !camera || field == &camera->nearDistance ||
        field == &camera->farDistance)
        return;
    self.onCamera();
}

void WindowViewer::setViewing(SbBool viewing)
{
    SoQtGeneralViewer::setViewing(viewing);
    if (onMode)
        onMode();
}

SbBool WindowViewer::processSoEvent(const SoEvent* const event)
{
    if (onTab && SO_KEY_PRESS_EVENT(event, TAB)) {
        onTab(!event->wasShiftDown());
        return TRUE;
    }
    if (getCamera() && clipHandles.take(*event, getViewportRegion(), *getCamera()))
        return TRUE;
    hasPicked = false;
    isShiftDown = event->wasShiftDown();
    followButton(event);
    const bool isQuick = isQuickPick(event), picks = isQuick || isPick(event);
    const SbBool handled = SoQtGeneralViewer::processSoEvent(event);
    if (isQuick)
        pickAt(event->getPosition());
    if (onMove && event->isOfType(SoLocation2Event::getClassTypeId()))
        onMove(event->getPosition());
    if (picks && isClick && !hasPicked && onMiss)
        onMiss();
    return handled;
}

void WindowViewer::redraw()
{
    if (!turns || turns->take(*this))
        SoQtGeneralViewer::redraw();
}

void WindowViewer::actualRedraw()
{
    if (getCamera()) {
        // As its scene is drawn.
        std::optional<SoMeshShape::AllRows> rows;
        if (!data || !data->isDrawnCoarsely())
            rows.emplace();
        outline.prepare(*getCamera(), *getGLRenderAction(), getGLWidget()->devicePixelRatioF());
    }
    axes.setLegendRoom(data ? data->getLegendRoom() : FreeEdges());
    const bool wasBySoftware = isDrawnBySoftware();
    SoQtGeneralViewer::actualRedraw();
    if (isDrawnBySoftware() != wasBySoftware)
        drawAsBefore();
    outline.draw();
    const SbVec2s size = getGLSize();
    if (frameWaiter)
        frameWaiter->endFrame(size[0], size[1]);
    if (const auto tell = std::exchange(onDrawn, nullptr))
        tell();
    if (onFrame)
        onFrame();
}

void WindowViewer::sizeChanged(const SbVec2s& size)
{
    SoQtGeneralViewer::sizeChanged(size);
    const auto scale = float(getGLWidget()->devicePixelRatioF());
    axes.setView(getGLSize(), scale);
    marks.setScale(scale);
    keptMarks.setScale(scale);
    hoverMark.setScale(scale);
}

void WindowViewer::turnAxes(void* viewer, SoSensor* /*sensor*/)
{
    auto* self = static_cast<WindowViewer*>(viewer);
    self->axes.setOrientation(self->getCamera()->orientation.getValue());
}

void WindowViewer::followButton(const SoEvent* event)
{
    isClick = false;
    if (!event->isOfType(SoMouseButtonEvent::getClassTypeId()))
        return;
    const SbVec2s place = event->getPosition();
    if (static_cast<const SoMouseButtonEvent*>(event)->getState() == SoButtonEvent::DOWN) {
        pressed = place;
        return;
    }
    const double way = std::hypot(place[0] - pressed[0], place[1] - pressed[1]);
    isClick = way <= SHAKE * getGLWidget()->devicePixelRatioF();
}

bool WindowViewer::isQuickPick(const SoEvent* event) const
{
    return picksWhileTurning && isClick && SO_MOUSE_RELEASE_EVENT(event, BUTTON1) && isViewing() &&
           !event->wasCtrlDown();
}

void WindowViewer::pickAt(const SbVec2s& place)
{
    const std::unique_ptr<SoPickedPoint> point = pickedAt(place);
    if (point && getGeneralScene())
        getGeneralScene()->processPickEvent(point.get());
}

std::unique_ptr<SoPickedPoint> WindowViewer::pickedAt(const SbVec2s& place)
{
    SoRayPickAction pick(getViewportRegion());
    pick.setPoint(place);
    pick.apply(getSceneManager()->getSceneGraph());
    const SoPickedPoint* const point = pick.getPickedPoint();
    return std::unique_ptr<SoPickedPoint>(point ? point->copy() : nullptr);
}

bool WindowViewer::isPick(const SoEvent* event) const
{
    return SO_MOUSE_RELEASE_EVENT(event, BUTTON2) ||
           (SO_MOUSE_RELEASE_EVENT(event, BUTTON1) && !isViewing());
}

} // namespace strandview
