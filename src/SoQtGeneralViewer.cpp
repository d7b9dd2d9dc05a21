// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoQtGeneralViewer.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

#include <Inventor/SbLine.h>
#include <Inventor/SbPlane.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/events/SoKeyboardEvent.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QFile>
#include <QGLFormat>
#include <QMessageBox>

#include <LightingDialog.h>
#include <OffscreenContext.h>
#include <ScreenshotDialog.h>
#include <SoGeneralScene.h>
#include <SoMeshShape.h>

#include "detail/ascii.h"
#include "detail/viewKeeping.h"
#include "drawing/OneSample.h"

// SoQt's registration asserts with this line's number, which hosts see: a test keeps it at 35.

SOQT_OBJECT_SOURCE(SoQtGeneralViewer);

namespace {

const int DEFAULT_CAMERA_ROT_STEPS = 12;
const double SMALLEST_ZOOM = 1e-10;
const char* const FPS_VARIABLE = "COIN_SHOW_FPS_COUNTER"; // Coin's

// Where a camera looks, from its fields.
struct View
{
    explicit View(const SoCamera& camera)
        : position(camera.position.getValue()),
          rotation(camera.orientation.getValue()),
          direction(directionOf(rotation)),
          distance(camera.focalDistance.getValue())
    {}

    static SbVec3f directionOf(const SbRotation& rotation)
    {
        SbVec3f direction;
        rotation.multVec(SbVec3f(0, 0, -1), direction);
        return direction;
    }
    SbVec3f getFocalPoint() const { return position + distance * direction; }

    SbVec3f position;
    SbRotation rotation;
    SbVec3f direction;
    float distance;
};

// Calls a chain in the order of its addresses. The next link is looked up by address
// after each call, because a callback may add and remove.
template <typename Callback, typename... Arguments>
void callAll(const std::map<Callback*, void*>& chain, Arguments... arguments)
{
    for (auto link = chain.begin(); link != chain.end();) {
        Callback* callback = link->first;
        callback(link->second, arguments...);
        link = chain.upper_bound(callback);
    }
}

using Viewer = SoQtGeneralViewer;

// The keys of the camera. With several modifiers the first counts, in this order.
struct MovingKey
{
    SoKeyboardEvent::Key key;
    Viewer::CameraStep withAlt, withCtrl, withShift, alone;
};
const MovingKey MOVING_KEYS[] = {
    {SoKeyboardEvent::A, Viewer::ORBIT_HORIZONTALLY_BACK, Viewer::ORBIT_VERTICALLY_BACK,
     Viewer::ROLL_BACK, Viewer::MOVE_LEFT},
    {SoKeyboardEvent::D, Viewer::ORBIT_HORIZONTALLY, Viewer::ORBIT_VERTICALLY, Viewer::ROLL,
     Viewer::MOVE_RIGHT},
    {SoKeyboardEvent::W, Viewer::ZOOM_IN, Viewer::MOVE_UP, Viewer::MOVE_UP, Viewer::MOVE_UP},
    {SoKeyboardEvent::S, Viewer::ZOOM_OUT, Viewer::MOVE_DOWN, Viewer::MOVE_DOWN, Viewer::MOVE_DOWN},
    {SoKeyboardEvent::Q, Viewer::MOVE_FORWARD, Viewer::MOVE_FORWARD, Viewer::MOVE_FORWARD,
     Viewer::MOVE_FORWARD},
    {SoKeyboardEvent::E, Viewer::MOVE_BACKWARD, Viewer::MOVE_BACKWARD, Viewer::MOVE_BACKWARD,
     Viewer::MOVE_BACKWARD}};

// These look at shift alone.
struct LookingKey
{
    SoKeyboardEvent::Key key;
    Viewer::CameraStep withShift, alone;
};
const LookingKey LOOKING_KEYS[] = {{SoKeyboardEvent::X, Viewer::FROM_X_Y_UP, Viewer::FROM_X_Z_UP},
                                   {SoKeyboardEvent::Y, Viewer::FROM_Y_X_UP, Viewer::FROM_Y_Z_UP},
                                   {SoKeyboardEvent::Z, Viewer::FROM_Z_X_UP, Viewer::FROM_Z_Y_UP}};

std::optional<Viewer::CameraStep> stepOf(SoKeyboardEvent::Key key, const SoEvent& event)
{
    for (const MovingKey& moving : MOVING_KEYS) {
        if (moving.key == key)
            return event.wasAltDown()     ? moving.withAlt
                   : event.wasCtrlDown()  ? moving.withCtrl
                   : event.wasShiftDown() ? moving.withShift
                                          : moving.alone;
    }
    for (const LookingKey& looking : LOOKING_KEYS) {
        if (looking.key == key)
            return event.wasShiftDown() ? looking.withShift : looking.alone;
    }
    return std::nullopt;
}

QStringList writableExtensions(SoOffscreenRenderer& renderer)
{
    QStringList extensions("ps");
    for (int type = 0; type < renderer.getNumWriteFiletypes(); ++type) {
        SbPList names;
        SbString fullName, description;
        renderer.getWriteFiletypeInfo(type, names, fullName, description);
        for (int i = 0; i < names.getLength(); ++i)
            extensions.append(QString::fromUtf8(static_cast<const char*>(names[i])));
    }
    extensions.sort();
    extensions.removeDuplicates();
    return extensions;
}

} // namespace

SoQtGeneralViewer::SoQtGeneralViewer(QWidget* parent, const char* name, SbBool embed)
    : SoQtExaminerViewer(parent, name, embed, SoQtFullViewer::BUILD_ALL, SoQtViewer::BROWSER),
      areaFitter(std::make_unique<AreaFitter>()),
      redrawer(std::make_unique<Redrawer>(*this)),
      cameraRotSteps(DEFAULT_CAMERA_ROT_STEPS)
{
    OffscreenContext::install();
    // At once, and without a callback: it is there for the scene's end alone.
    sceneWatcher.setPriority(0);
    sceneWatcher.setDeleteCallback(forgetScene, this);

    base = getBaseWidget();
    getGLWidget()->installEventFilter(areaFitter.get());
    setPopupMenuEnabled(FALSE);
    setDrawStyle(SoQtViewer::INTERACTIVE, SoQtViewer::VIEW_SAME_AS_STILL);
    setFeedbackVisibility(TRUE);
    const SbVec2s size = getGLSize();
    screenshotDialog = new ScreenshotDialog(getParentWidget(), size[0], size[1]);
}

SoQtGeneralViewer::~SoQtGeneralViewer() = default;

// Anti-aliasing

int SoQtGeneralViewer::getDefaultAntialiasingLevel()
{
    return QGLFormat::defaultFormat().samples();
}

void SoQtGeneralViewer::setDefaultAntialiasingLevel(int level)
{
    QGLFormat format;
    format.setSampleBuffers(true);
    format.setSamples(std::clamp(level, 1, 12));
    QGLFormat::setDefaultFormat(format);
}

void SoQtGeneralViewer::drawCoarsely(bool coarse)
{
    if (coarse == isCoarse)
        return;
    isCoarse = coarse;
    scheduleRedraw();
}

bool SoQtGeneralViewer::isDrawnCoarsely() const { return isCoarse; }

bool SoQtGeneralViewer::isDrawnBySoftware() const { return isBySoftware; }

// Scene

SoGeneralScene* SoQtGeneralViewer::getGeneralScene() { return sceneRoot; }

void SoQtGeneralViewer::setSceneGraph(SoNode* root) { SoQtViewer::setSceneGraph(root); }

void SoQtGeneralViewer::setSceneGraph(SoGeneralScene* scene)
{
    if (!scene)
        return;
    recordScene(scene);
    SbVec2f range;
    float granularity = 0;
    getLineWidthLimits(range, granularity);
    scene->setGLLineData(range, granularity);
    setSceneGraph(static_cast<SoNode*>(scene));
    viewAll();
    setCameraType(SoOrthographicCamera::getClassTypeId());
    setupCamera(SbVec3f(0, 0, -1), SbVec3f(0, 1, 0));
}

void SoQtGeneralViewer::recordScene(SoGeneralScene* scene)
{
    sceneRoot = scene;
    sceneWatcher.detach();
    sceneWatcher.attach(scene);
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f* intensities = nullptr;
    SoShaderParameterArray1f* shininess = nullptr;
    scene->getLightingParameters(directions, intensities, shininess);
    delete lightingDialog;
    lightingDialog = new LightingDialog(getParentWidget(), directions, intensities, shininess);
}

// The dialog's arrays go with the scene.
void SoQtGeneralViewer::forgetScene(void* viewer, SoSensor* /*sensor*/)
{
    auto* self = static_cast<SoQtGeneralViewer*>(viewer);
    self->sceneRoot = nullptr;
    delete self->lightingDialog;
}

void SoQtGeneralViewer::update()
{
    if (sceneRoot)
        sceneRoot->update();
}

// Look

void SoQtGeneralViewer::setUpLighting()
{
    if (sceneRoot && lightingDialog)
        lightingDialog->setVisible(true);
}

void SoQtGeneralViewer::cycleShading()
{
    if (sceneRoot)
        sceneRoot->toggleDrawStyle(false);
}

void SoQtGeneralViewer::toggleBoundingBoxes()
{
    if (sceneRoot)
        sceneRoot->toggleDrawStyle(true);
}

bool SoQtGeneralViewer::isShowingBoundingBoxes() const
{
    return sceneRoot && sceneRoot->isShowingBoundingBoxes();
}

void SoQtGeneralViewer::changeLineWidth(int steps)
{
    if (sceneRoot)
        sceneRoot->changeLineWidth(steps);
}

void SoQtGeneralViewer::setWhiteBackground(bool white)
{
    whiteBackground = white;
    setBackgroundColor(white ? SbColor(1, 1, 1) : SbColor(0, 0, 0));
}

void SoQtGeneralViewer::toggleBackground() { setWhiteBackground(!whiteBackground); }

bool SoQtGeneralViewer::isBackgroundWhite() const { return whiteBackground; }

void SoQtGeneralViewer::toggleFramesPerSecond()
{
    if (isShowingFramesPerSecond())
        unsetenv(FPS_VARIABLE);
    else
        setenv(FPS_VARIABLE, "1", 1);
    redraw();
}

bool SoQtGeneralViewer::isShowingFramesPerSecond() { return std::getenv(FPS_VARIABLE); }

// Camera

// SoQt 1.6.3 asks its widget for it, which may have gone with the parent.
SbVec2s SoQtGeneralViewer::getViewSize() const { return base ? getGLSize() : SbVec2s(1, 1); }

void SoQtGeneralViewer::setCameraType(SoType type)
{
    // SoQt takes what is no perspective camera for an orthographic one, unseen.
    if (type.isBad() || (!type.isDerivedFrom(SoPerspectiveCamera::getClassTypeId()) &&
                         !type.isDerivedFrom(SoOrthographicCamera::getClassTypeId())))
        return;
    SoQtViewer::setCameraType(type);
    const SoCamera* camera = getCamera();
    if (sceneRoot && camera)
        sceneRoot->setShaderPersp(camera->isOfType(SoPerspectiveCamera::getClassTypeId()));
}

void SoQtGeneralViewer::moveCamera(const SbVec3f& v)
{
    SoCamera* camera = getCamera();
    if (!camera)
        return;
    const View view(*camera);
    const SbViewVolume volume =
        camera->getViewVolume(float(getViewSize()[0]) / float(getViewSize()[1]));
    const SbPlane focalPlane = volume.getPlane(view.distance);
    SbLine centre, moved;
    volume.projectPointToLine(SbVec2f(0.5f, 0.5f), centre);
    volume.projectPointToLine(SbVec2f(0.5f + v[0], 0.5f + v[1]), moved);
    SbVec3f p0, p1;
    if (!focalPlane.intersect(centre, p0) || !focalPlane.intersect(moved, p1))
        return;
    camera->position = view.position - (p1 - p0) + view.direction * (v[2] * view.distance);
}

void SoQtGeneralViewer::rotateCamera(SbVec3f axis, double angle)
{
    SoCamera* camera = getCamera();
    if (!camera)
        return;
    const View view(*camera);
    const SbRotation turned = SbRotation(axis, float(angle)) * view.rotation;
    camera->orientation = turned;
    camera->position = view.getFocalPoint() - view.distance * View::directionOf(turned);
}

void SoQtGeneralViewer::setupCamera(SbVec3f direction, SbVec3f up)
{
    SoCamera* camera = getCamera();
    if (!camera)
        return;
    direction.normalize();
    up.normalize();
    const View view(*camera);
    const SbVec3f focalPoint = view.getFocalPoint();
    camera->position = focalPoint - view.distance * direction;
    camera->pointAt(focalPoint, up);
}

double SoQtGeneralViewer::getCameraZoom() const
{
    const SoCamera* camera = getCamera();
    if (!camera)
        return 0;
    const double side = std::min(getViewSize()[0], getViewSize()[1]);
    if (camera->isOfType(SoPerspectiveCamera::getClassTypeId())) {
        const auto* perspective = static_cast<const SoPerspectiveCamera*>(camera);
        return (side * 0.5 / perspective->focalDistance.getValue()) /
               std::tan(perspective->heightAngle.getValue() * 0.5);
    }
    if (camera->isOfType(SoOrthographicCamera::getClassTypeId()))
        return side / static_cast<const SoOrthographicCamera*>(camera)->height.getValue();
    return 0;
}

void SoQtGeneralViewer::setCameraZoom(double zoom)
{
    SoCamera* camera = getCamera();
    if (!camera)
        return;
    if (!(zoom > SMALLEST_ZOOM)) // nor what is no number
        zoom = SMALLEST_ZOOM;
    const double side = std::min(getViewSize()[0], getViewSize()[1]);
    if (camera->isOfType(SoPerspectiveCamera::getClassTypeId())) {
        auto* perspective = static_cast<SoPerspectiveCamera*>(camera);
        const View view(*camera);
        const double distance =
            (side * 0.5 / zoom) / std::tan(perspective->heightAngle.getValue() * 0.5);
        camera->position = view.position + view.direction * float(view.distance - distance);
        camera->focalDistance = float(distance);
    } else if (camera->isOfType(SoOrthographicCamera::getClassTypeId())) {
        static_cast<SoOrthographicCamera*>(camera)->height = float(side / zoom);
    }
}

void SoQtGeneralViewer::stepCamera(CameraStep step)
{
    static const SbVec3f moves[] = {{-0.1f, 0, 0}, {0.1f, 0, 0}, {0, 0.1f, 0},
                                    {0, -0.1f, 0}, {0, 0, 0.1f}, {0, 0, -0.1f}};
    static const double zooms[] = {1.25, 0.8};
    static const SbVec3f axes[] = {{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                   {0, -1, 0}, {0, 0, 1},  {0, 0, -1}};
    static const SbVec3f views[][2] = {{{-1, 0, 0}, {0, 0, 1}}, {{0, -1, 0}, {0, 0, 1}},
                                       {{0, 0, -1}, {0, 1, 0}}, {{-1, 0, 0}, {0, 1, 0}},
                                       {{0, -1, 0}, {1, 0, 0}}, {{0, 0, -1}, {1, 0, 0}}};
    if (step < ZOOM_IN)
        moveCamera(moves[step]);
    else if (step < ORBIT_HORIZONTALLY)
        setCameraZoom(getCameraZoom() * zooms[step - ZOOM_IN]);
    else if (step < FROM_X_Z_UP)
        rotateCamera(axes[step - ORBIT_HORIZONTALLY], 2 * M_PI / cameraRotSteps);
    else
        setupCamera(views[step - FROM_X_Z_UP][0], views[step - FROM_X_Z_UP][1]);
}

int SoQtGeneralViewer::getNumCameraRotSteps() { return cameraRotSteps; }

void SoQtGeneralViewer::setNumCameraRotSteps(int n)
{
    cameraRotSteps = n > 0 ? n : DEFAULT_CAMERA_ROT_STEPS;
}

// Callbacks

void SoQtGeneralViewer::addPreEventProcessCB(SoQtGeneralViewerEventCB* cb, void* userData)
{
    preEventCBs.emplace(cb, userData);
}

void SoQtGeneralViewer::removePreEventProcessCB(SoQtGeneralViewerEventCB* cb)
{
    preEventCBs.erase(cb);
}

void SoQtGeneralViewer::addPostEventProcessCB(SoQtGeneralViewerEventCB* cb, void* userData)
{
    postEventCBs.emplace(cb, userData);
}

void SoQtGeneralViewer::removePostEventProcessCB(SoQtGeneralViewerEventCB* cb)
{
    postEventCBs.erase(cb);
}

void SoQtGeneralViewer::addResizeCB(SoQtGeneralViewerResizeCB* cb, void* userData)
{
    resizeCBs.emplace(cb, userData);
}

void SoQtGeneralViewer::removeResizeCB(SoQtGeneralViewerResizeCB* cb) { resizeCBs.erase(cb); }

// Events

void SoQtGeneralViewer::actualRedraw()
{
    const OneSample oneSample(isCoarse);
    SoQtExaminerViewer::actualRedraw();
    isBySoftware = DepthGrid::isSoftware();
}

void SoQtGeneralViewer::sizeChanged(const SbVec2s& size)
{
    SoQtFullViewer::sizeChanged(size);
    // SoQt makes a new area when its format changes.
    if (QWidget* area = getGLWidget())
        area->installEventFilter(areaFitter.get());
    callAll(resizeCBs, this, size);
}

SbBool SoQtGeneralViewer::processSoEvent(const SoEvent* const event)
{
    bool handled = sceneRoot && sceneRoot->processSoEvent(event);
    callAll(preEventCBs, this, event);

    if (SoKeyboardEvent::isKeyPressEvent(event, SoKeyboardEvent::ANY)) {
        const KeyResult result = processKey(*event);
        if (result == HANDLED_AND_DONE)
            return TRUE;
        handled = handled || result == HANDLED;
    } else if (event->isOfType(SoMouseButtonEvent::getClassTypeId())) {
        processMouseButton(static_cast<const SoMouseButtonEvent&>(*event), handled);
        // So that the examiner turns and moves as ever.
        handled = false;
    }
    const SbBool result = handled ? TRUE : SoQtExaminerViewer::processSoEvent(event);
    callAll(postEventCBs, this, event);
    return result;
}

SoQtGeneralViewer::KeyResult SoQtGeneralViewer::processKey(const SoEvent& event)
{
    const SoKeyboardEvent::Key key = static_cast<const SoKeyboardEvent&>(event).getKey();
    if (const std::optional<CameraStep> step = stepOf(key, event)) {
        stepCamera(*step);
        return HANDLED_AND_DONE;
    }
    switch (key) {
    case SoKeyboardEvent::L:
        setUpLighting();
        return HANDLED_AND_DONE;
    case SoKeyboardEvent::B:
        toggleBackground();
        return HANDLED;
    case SoKeyboardEvent::F:
        toggleFramesPerSecond();
        return HANDLED;
    case SoKeyboardEvent::I:
        renderOffscreen();
        return HANDLED;
    case SoKeyboardEvent::RETURN:
        setDecoration(!isDecoration());
        return HANDLED_AND_DONE;
    default:
        return NOT_HANDLED;
    }
}

void SoQtGeneralViewer::processMouseButton(const SoMouseButtonEvent& event, bool handled)
{
    const bool leftReleased =
        SoMouseButtonEvent::isButtonReleaseEvent(&event, SoMouseButtonEvent::BUTTON1);
    const bool rightReleased =
        SoMouseButtonEvent::isButtonReleaseEvent(&event, SoMouseButtonEvent::BUTTON2);
    SoNode* graph = getSceneManager()->getSceneGraph();
    if ((!leftReleased && !rightReleased) || !graph)
        return;
    SoRayPickAction pick(getViewportRegion());
    pick.setPoint(event.getPosition());
    pick.apply(graph);
    const SoPickedPoint* point = pick.getPickedPoint();
    if (!point)
        return;
    const bool picked =
        rightReleased || !isViewing() ? sceneRoot && sceneRoot->processPickEvent(point) : handled;
    SoCamera* camera = getCamera();
    if (!picked && event.wasCtrlDown() && camera) {
        const View view(*camera);
        camera->position = point->getPoint() - view.distance * view.direction;
    }
}

// Screenshots

SoOffscreenRenderer* SoQtGeneralViewer::getOSRenderer()
{
    static SoOffscreenRenderer renderer = [] {
        OffscreenContext::install();
        return SoOffscreenRenderer(SbViewportRegion(640, 480));
    }();
    return &renderer;
}

void SoQtGeneralViewer::renderOffscreen()
{
    if (!screenshotDialog)
        return;
    QString extension = screenshotDialog->getExtension();
    if (extension.isEmpty())
        extension = "png";
    const SbVec2s size = getGLSize();
    screenshotDialog->setGLSize(size[0], size[1]);
    screenshotDialog->setExtensions(writableExtensions(*getOSRenderer()), extension);
    if (!screenshotDialog->exec())
        return;

    if (renderSceneForScreenshot())
        writeScreenshot();
    else
        QMessageBox::critical(getBaseWidget(), "Screenshot failed", "Off-screen rendering failed");
    // It may be gone: the message boxes handle events.
    if (screenshotDialog && screenshotDialog->isIndexUsed())
        screenshotDialog->setIndex(screenshotDialog->getIndex() + 1);
}

bool SoQtGeneralViewer::renderSceneForScreenshot()
{
    SoCamera* camera = getCamera();
    int width = 0, height = 0;
    screenshotDialog->getImageSize(width, height);
    // Coin holds the sides of a view in 16 bits.
    const int largest = std::numeric_limits<short>::max();
    if (!camera || !sceneRoot || width > largest || height > largest)
        return false;

    auto* graph = new SoSeparator;
    graph->ref();
    graph->addChild(camera);
    graph->addChild(sceneRoot);
    SoOffscreenRenderer* renderer = getOSRenderer();
    renderer->setViewportRegion(SbViewportRegion(short(width), short(height)));
    const int mapping = camera->viewportMapping.getValue();
    camera->viewportMapping = SoCamera::ADJUST_CAMERA;
    const SoMeshShape::AllRows allRows;
    const bool rendered = renderer->render(graph);
    graph->unref();
    camera->viewportMapping = mapping;
    return rendered;
}

void SoQtGeneralViewer::writeScreenshot()
{
    const QString path = screenshotDialog->getFinalPath();
    const QString extension = screenshotDialog->getExtension();
    if (QFile::exists(path) &&
        QMessageBox::question(getBaseWidget(), "Confirm overwrite",
                              "Overwrite the existing file<br />" + path,
                              QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes)
        return;

    SoOffscreenRenderer* renderer = getOSRenderer();
    // For the screenshot after this one: this one is rendered already.
    renderer->setBackgroundColor(getBackgroundColor());
    const QByteArray file = toAscii(path);
    const bool written =
        extension == "ps" ? renderer->writeToPostScript(file.constData())
                          : renderer->writeToFile(file.constData(), toAscii(extension).constData());
    if (written)
        QMessageBox::information(getBaseWidget(), "Screenshot", "Output written to <br />" + path);
    else
        QMessageBox::critical(getBaseWidget(), "Screenshot failed",
                              "Could not write to fil e<br />" + path);
}
