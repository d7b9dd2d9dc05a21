// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/BesideView.h"

#include <algorithm>
#include <utility>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QGLContext>
#include <QGLWidget>
#include <QVBoxLayout>

#include "camera/Camera.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"
#include "window/ViewCaption.h"

namespace strandview {

namespace {

// Whether what one has brought to OpenGL is there for the other.
bool shareBuffers(const WindowViewer& one, const WindowViewer& other)
{
    const auto contextOf = [](const WindowViewer& viewer) {
        const auto* const widget = qobject_cast<const QGLWidget*>(viewer.getGLWidget());
        return widget ? widget->context() : nullptr;
    };
    return QGLContext::areSharing(contextOf(one), contextOf(other));
}

std::shared_ptr<const DataScene> keep(const DataScene& scene)
{
    scene.ref();
    return {&scene, [](const DataScene* kept) { kept->unref(); }};
}

} // namespace

BesideView::BesideView(const SbColor& firstBackground, QWidget* parent)
    : QWidget(parent),
      background(firstBackground),
      caption(new ViewCaption(this)),
      area(new QWidget(this)),
      reader([this](BesideReader::Result& result) { showResult(result); })
{
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    caption->addCloseButton([this] {
        if (onClose)
            onClose();
    });
    column->addWidget(caption);
    column->addWidget(area, 1);
}

BesideView::~BesideView() { abandon(); }

void BesideView::makeViewer(const WindowViewer& first)
{
    viewer = std::make_unique<WindowViewer>(area);
    viewer->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    viewer->setHeadlight(FALSE); // the scene has its lights
    viewer->setDecoration(FALSE);
    viewer->setBackgroundColor(background);
    viewer->setSceneGraph(new SoSeparator);
    viewer->onCamera = [this] {
        tellCaption();
        if (onCamera)
            onCamera();
    };
    viewer->onTab = [this](bool isForward) {
        if (isForward)
            focusNextChild();
        else
            focusPreviousChild();
    };
    viewer->addResizeCB(tellSize, this);
    auto* const layout = new QVBoxLayout(area); // SoQt fills what is there before it is shown
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(viewer->getWidget());
    viewer->show();
    sharesBuffers = shareBuffers(first, *viewer);
    tellCaption();
}

void BesideView::abandon()
{
    reader.setSeries(nullptr);
    awaitedFirst.reset();
    onShown = onResize = onCamera = onClose = nullptr;
    onBegin = nullptr;
    onFailure = nullptr;
    onPick = nullptr;
}

void BesideView::take(Source next)
{
    source = std::move(next);
    isNew = true;
    room.makeEmpty();
    reader.setSeries(source.opener);
    awaitedFirst.reset();
    tellCaption();
}

// Of the same there may be several: it says from where as well, in the menu's words.
void BesideView::tellCaption()
{
    std::string text = source.caption;
    if (scene && source.what == BesideRequest::SAME) {
        const double nearly = 1 - 1e-6; // a camera's numbers are of single precision
        const auto from = seenFrom();
        for (const NamedSide& side : SIDES) {
            if (from.dot(towardsViewer(side.side)) > nearly)
                text += std::string(", from ") + side.name;
        }
    }
    caption->setText(text);
    if (viewer)
        viewer->getGLWidget()->setAccessibleName("View of " + QString::fromStdString(text));
}

std::string BesideView::getCaption() const { return caption->getText(); }

void BesideView::setActive(bool active) { caption->setActive(active); }

void BesideView::show(const DataScene& first, std::size_t frame, Change change)
{
    if ((change == NEXT_FRAME && source.isStill) || (change == NEW_SOURCE && !isNew))
        return;
    isNew = false;
    keepLooks(first);
    hasColours = first.areColoursShown();
    if (change != NEXT_FRAME)
        ++look;
    if (isMirror() && scene) {
        mirror(first);
        return;
    }
    if (isMirror()) { // its camera suits the size that it is given
        awaitedFirst = keep(first);
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (const auto awaited = std::exchange(awaitedFirst, nullptr))
                    mirror(*awaited);
            },
            Qt::QueuedConnection);
        return;
    }
    reader.ask({source.opener ? nullptr : first.getData(), source.isStill ? 0 : frame,
                first.getStyle(), first.getPlacement(), first.getColouring(), look});
}

// Meshes and buffers of much data are there once. It changes in the same turn as the first view
// does: what that has no longer goes.
void BesideView::mirror(const DataScene& first)
{
    if (!scene) {
        auto* const made = new DataScene(first.getPlacement(), first.getStyle());
        made->ref();
        made->mirror(first);
        adopt(*made);
        made->unref();
    } else {
        if (shownLook != look)
            scene->restyle(first.getPlacement(), first.getStyle());
        scene->mirror(first);
    }
    tellShown(look);
}

void BesideView::showResult(BesideReader::Result& result)
{
    const std::string error = result.error.empty() ? hand(result) : result.error;
    if (!error.empty()) {
        if (onFailure)
            onFailure(error);
        return;
    }
    scene->setData(result.task.data);
    showLooks();
    scene->showColours(hasColours);
    tellShown(result.task.look);
}

// Another frame, or look.
void BesideView::tellShown(std::size_t inLook)
{
    if (shownLook != inLook)
        room.makeEmpty();
    room.extendBy(scene->getBox());
    shownLook = inLook;
    viewer->drawAsBefore();
    if (!hasBegun && onBegin)
        onBegin();
    viewer->scheduleRedraw();
    if (onShown)
        onShown();
}

// The nodes; a line if that cannot be.
std::string BesideView::hand(BesideReader::Result& result)
{
    const BesideReader::Task& task = result.task;
    const Colouring* const colouring = result.colouring ? &*result.colouring : nullptr;
    Progress unwatched;
    std::string error;
    if (scene && task.look == shownLook)
        return updateScene(*scene, *task.data, colouring, std::move(result.geometry), unwatched);
    if (scene)
        return restyleScene(*scene, *task.data, task.style, colouring, std::move(result.geometry),
                            unwatched);
    DataScene* const made =
        buildScene(*task.data, task.style, colouring, std::move(result.geometry), unwatched, error);
    if (made)
        adopt(*made);
    return error;
}

void BesideView::adopt(DataScene& made)
{
    scene = &made;
    scene->onPick = [this](const SoPickedPoint& picked) {
        viewer->hasPicked = true;
        if (!viewer->isClick || !onPick)
            return;
        Told told = scene->describe(picked);
        if (!isFile(source.what)) // whose name is told anyway
            told.what = getCaption() + ": " + told.what;
        onPick(told);
    };
    const SbColor shown = viewer->getBackgroundColor();
    scene->setBackground({shown[0], shown[1], shown[2]});
    const auto tell = std::exchange(onCamera, nullptr); // it is put somewhere first
    viewer->SoQtGeneralViewer::setSceneGraph(static_cast<SoGeneralScene*>(scene));
    onCamera = tell;
    scene->keepLineWidth();
}

void BesideView::followLooks(const DataScene& ofFirst)
{
    keepLooks(ofFirst);
    if (!scene)
        return;
    if (!scene->isMirror())
        showLooks();
    else if (isMirror()) // and not what is shown until its own data are there
        scene->mirror(ofFirst);
}

void BesideView::keepLooks(const DataScene& ofFirst)
{
    looks = ofFirst.getLooks();
    transparency = ofFirst.getStyle().transparency;
    clip = ofFirst.getStyle().clip;
    drawing = ofFirst.getStyle().drawing;
}

void BesideView::showLooks()
{
    scene->setLooks(looks);
    scene->setTransparency(transparency);
    scene->cut(clip);
    scene->draw(drawing);
}

void BesideView::showColours(bool ofData)
{
    hasColours = ofData;
    if (scene)
        scene->showColours(ofData);
}

void BesideView::setBackground(const SbColor& next)
{
    background = next;
    if (!viewer || viewer->getBackgroundColor() == next)
        return;
    viewer->setBackgroundColor(next);
    if (scene)
        scene->setBackground({background[0], background[1], background[2]});
}

void BesideView::drawCoarsely(bool coarse)
{
    if (viewer)
        viewer->drawCoarsely(coarse);
}

// Its camera

std::optional<BesideCamera> BesideView::begin()
{
    hasBegun = true;
    return std::exchange(awaited, std::nullopt);
}

void BesideView::beginAnew()
{
    hasBegun = false;
    start.reset();
    awaited.reset();
}

void BesideView::setCamera(const BesideCamera& camera)
{
    if (!hasBegun) {
        awaited = camera;
        return;
    }
    CameraRequest request;
    request.numbers = camera.numbers;
    viewer->place(request);
    fitted.reset();
    if (camera.isFitted)
        fitted = getCameraNumbers();
    if (camera.start)
        start = camera.start;
}

std::optional<BesideCamera> BesideView::getCamera() const
{
    return hasBegun ? BesideCamera{getCameraNumbers(), isFitted(), start} : awaited;
}

void BesideView::place(const CameraRequest& request)
{
    if (!scene)
        return;
    viewer->place(request);
    fitted.reset();
    if (!request.numbers && !request.isFramed())
        fitted = getCameraNumbers();
}

void BesideView::fit()
{
    if (!scene)
        return;
    viewer->fit(margin);
    fitted = getCameraNumbers();
}

void BesideView::setPerspective(bool perspective)
{
    const bool wasFitted = isFitted();
    viewer->setPerspective(perspective);
    if (wasFitted) // what is nearer than the middle grows
        fit();
}

void BesideView::follow(const WindowViewer& other)
{
    fitted.reset();
    viewer->followCamera(other);
}

CameraNumbers BesideView::getCameraNumbers() const { return numbersOf(*viewer->getCamera()); }

CameraRequest::Vector BesideView::seenFrom() const
{
    if (const auto camera = getCamera())
        return towardsViewer(camera->numbers);
    if (!start)
        return {0, 0, 0};
    const SbVec3f direction = axesOf(*start).direction;
    return {-direction[0], -direction[1], -direction[2]};
}

bool BesideView::isFitted() const { return scene && fitted && *fitted == getCameraNumbers(); }

void BesideView::refit()
{
    if (isFitted())
        fit();
}

void BesideView::tellSize(void* view, SoQtGeneralViewer* /*viewer*/, const SbVec2s& /*size*/)
{
    const auto& self = *static_cast<BesideView*>(view);
    if (self.onResize)
        self.onResize();
}

} // namespace strandview
