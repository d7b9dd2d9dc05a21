// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SideBySide.h"

#include <algorithm>
#include <utility>

#include <Inventor/nodes/SoCamera.h>
#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QStyle>
#include <QStyleOption>
#include <QVBoxLayout>

#include "camera/Camera.h"
#include "window/History.h"
#include "window/ViewCaption.h"

namespace strandview {

namespace {

const QSize SMALLEST_VIEW(160, 120);

// So that a frame that is asked for is drawn before the next one is.
const int BETWEEN_FRAMES = 30; // milliseconds

// Of the stretches of two cells beside each other.
const int WHOLE = 1000;

// Between cells: dragged, it says where it is to be.
class Border : public QWidget
{
public:
    Border(Qt::Orientation sharing, std::function<void(const QPoint& place)> drag, QWidget* parent)
        : QWidget(parent), along(sharing), onDrag(std::move(drag))
    {
        const int width = style()->pixelMetric(QStyle::PM_SplitterWidth);
        const bool isUpright = along == Qt::Horizontal;
        setCursor(isUpright ? Qt::SplitHCursor : Qt::SplitVCursor);
        if (isUpright)
            setFixedWidth(width);
        else
            setFixedHeight(width);
    }

protected:
    void mouseMoveEvent(QMouseEvent* event) override
    {
        // Its own place has changed since the pointer moved, if events come late.
        if (event->buttons() & Qt::LeftButton)
            onDrag(parentWidget()->mapFromGlobal(event->globalPos()));
    }
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QStyleOption option;
        option.initFrom(this);
        if (along == Qt::Horizontal)
            option.state |= QStyle::State_Horizontal;
        QPainter painter(this);
        style()->drawControl(QStyle::CE_Splitter, &option, &painter, this);
    }

private:
    Qt::Orientation along;
    std::function<void(const QPoint& place)> onDrag;
};

// Around what is up as in the first view.
CameraRequest fromSide(const CameraRequest& home, double azimuth, double elevation)
{
    CameraRequest request;
    request.up = upOf(home);
    request.azimuth = azimuth;
    request.elevation = elevation;
    request.margin = home.margin;
    return request;
}

} // namespace

SideBySide::SideBySide(QWidget* parent)
    : QWidget(parent),
      grid(new QGridLayout(this)),
      firstColumn(new QWidget(this)),
      turns(std::make_shared<FrameTurns>())
{
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    auto* const column = new QVBoxLayout(firstColumn);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    firstCaption = new ViewCaption(firstColumn);
    column->addWidget(firstCaption);
    firstArea = new QWidget(firstColumn);
    column->addWidget(firstArea, 1);
    firstColumn->setMinimumSize(SMALLEST_VIEW);
    borders = {
        new Border(
            Qt::Horizontal,
            [this](const QPoint& place) { share(double(place.x()) / QWidget::width(), height); },
            this),
        new Border(
            Qt::Vertical,
            [this](const QPoint& place) { share(width, double(place.y()) / QWidget::height()); },
            this)};
    arrange();
    making.setSingleShot(true);
    making.setInterval(0);
    connect(&making, &QTimer::timeout, this, &SideBySide::makeNextViewer);
    refinement.setSingleShot(true);
    refinement.setInterval(BETWEEN_FRAMES);
    connect(&refinement, &QTimer::timeout, this, &SideBySide::refine);
}

void SideBySide::setFirst(WindowViewer& viewer)
{
    first = &viewer;
    viewer.turns = turns;
    viewer.getGLWidget()->installEventFilter(this);
}

void SideBySide::open(const std::string& captionOfFirst, std::vector<BesideView::Source> sources,
                      Files files, const CameraRequest& home)
{
    std::vector<std::string> what;
    for (const BesideView::Source& source : sources)
        what.push_back(source.what);
    const std::vector<BesideView*> kept = viewsOf(what);
    for (BesideView* const view : std::exchange(views, {})) {
        if (std::find(kept.begin(), kept.end(), view) == kept.end())
            drop(*view);
    }
    for (BesideView* const view : kept) {
        if (view)
            views.push_back(view); // from where they look is not free
    }
    if (files == OTHER_FILES) {
        for (BesideView* const view : views)
            view->beginAnew();
    }
    for (std::size_t i = 0; i < sources.size(); ++i) {
        BesideView* view = kept[i];
        if (view && files == SAME_FILES)
            continue;
        if (!view) {
            view = makeView();
            views.insert(views.begin() + std::ptrdiff_t(i), view);
        }
        const bool begins = !kept[i] || files == OTHER_FILES;
        if (begins && what[i] == BesideRequest::SAME)
            view->setStart(freeSide(home));
        view->setMargin(home.margin);
        view->take(std::move(sources[i]));
    }
    firstCaption->setText(captionOfFirst);
    arrange();
    making.start();
}

std::vector<BesideView*> SideBySide::viewsOf(const std::vector<std::string>& what) const
{
    std::vector<BesideView*> rest = views, found;
    for (const std::string& one : what) {
        const auto same = std::find_if(rest.begin(), rest.end(), [&](const BesideView* view) {
            return view->getWhat() == one;
        });
        found.push_back(same == rest.end() ? nullptr : *same);
        if (found.back())
            rest.erase(same);
    }
    return found;
}

BesideView* SideBySide::makeView()
{
    auto* const view = new BesideView(first->getBackgroundColor(), this);
    view->setMinimumSize(SMALLEST_VIEW);
    view->onBegin = [this, view] { begin(*view); };
    view->onResize = [this, view] {
        const History::Pause pause(*history);
        view->refit();
    };
    view->onShown = [this] {
        if (onShown)
            onShown();
    };
    view->onFailure = [this, view](const std::string& error) {
        if (onFailure)
            onFailure(indexOf(*view), error);
    };
    view->onPick = [this](const Told& told) {
        if (onPick)
            onPick(told);
    };
    view->onCamera = [this, view] { follow(*view); };
    view->onClose = [this, view] {
        if (onClose)
            onClose(indexOf(*view));
    };
    return view;
}

// One in each turn of the event loop.
void SideBySide::makeNextViewer()
{
    const auto next = std::find_if(views.begin(), views.end(),
                                   [](const BesideView* view) { return !view->hasViewer(); });
    if (next == views.end())
        return;
    makeViewer(**next);
    making.start();
    if (onViewer)
        onViewer();
}

void SideBySide::makeViewer(BesideView& view)
{
    const QPointer<QWidget> focus = window()->focusWidget(); // a new view takes it
    view.makeViewer(*first);
    view.drawCoarsely(first->isDrawnCoarsely());
    view.getViewer().turns = turns;
    view.getViewer().axes.show(hasAxes);
    view.getViewer().getGLWidget()->installEventFilter(this);
    if (focus && focus->isVisible())
        focus->setFocus();
}

void SideBySide::close(std::size_t index)
{
    drop(*views[index]);
    views.erase(views.begin() + std::ptrdiff_t(index));
    arrange();
}

void SideBySide::close()
{
    while (isOpen())
        close(views.size() - 1);
}

// It may be what asks for it, by its button or its failure.
void SideBySide::drop(BesideView& view)
{
    if (active == &view)
        activate(nullptr);
    const QWidget* const focus = QApplication::focusWidget();
    if (focus && view.isAncestorOf(focus))
        first->getGLWidget()->setFocus();
    if (view.hasViewer())
        view.getViewer().getGLWidget()->removeEventFilter(this);
    view.abandon();
    grid->removeWidget(&view);
    view.hide();
    view.deleteLater();
}

std::size_t SideBySide::indexOf(const BesideView& view) const
{
    return std::size_t(std::find(views.begin(), views.end(), &view) - views.begin());
}

// Cells

void SideBySide::arrange()
{
    const std::size_t count = 1 + views.size();
    for (std::size_t i = 0; i < count; ++i) {
        QWidget* const cell = i == 0 ? firstColumn : views[i - 1];
        grid->removeWidget(cell);
        grid->addWidget(cell, int(i / 2 * 2), int(i % 2 * 2));
        cell->show();
    }
    for (QWidget* const border : borders)
        grid->removeWidget(border);
    if (count > 1)
        grid->addWidget(borders[0], 0, 1, count > 2 ? 3 : 1, 1);
    if (count > 2)
        grid->addWidget(borders[1], 1, 0, 1, 3);
    borders[0]->setVisible(count > 1);
    borders[1]->setVisible(count > 2);
    firstCaption->setVisible(isOpen());
    const bool isOther = std::exchange(arranged, views.size()) != views.size();
    if (isOther)
        width = height = 0.5;
    share(width, height);
}

void SideBySide::share(double ofWidth, double ofHeight)
{
    width = std::clamp(ofWidth, 0.05, 0.95);
    height = std::clamp(ofHeight, 0.05, 0.95);
    const int across = int(WHOLE * width), down = int(WHOLE * height);
    grid->setColumnStretch(0, across);
    grid->setColumnStretch(2, isOpen() ? WHOLE - across : 0);
    grid->setRowStretch(0, down);
    grid->setRowStretch(2, views.size() > 1 ? WHOLE - down : 0);
}

// What they show

void SideBySide::show(const DataScene& ofFirst, std::size_t frame, BesideView::Change change)
{
    for (BesideView* const view : views) {
        if (view->hasViewer())
            view->show(ofFirst, frame, change);
    }
}

bool SideBySide::isAtWork() const
{
    return std::any_of(views.begin(), views.end(),
                       [](const BesideView* view) { return view->isAtWork(); });
}

void SideBySide::followLooks(const DataScene& ofFirst)
{
    for (BesideView* const view : views)
        view->followLooks(ofFirst);
}

void SideBySide::showColours(bool ofData)
{
    for (BesideView* const view : views)
        view->showColours(ofData);
}

void SideBySide::setBackground(const SbColor& background)
{
    for (BesideView* const view : views)
        view->setBackground(background);
}

void SideBySide::drawCoarsely(bool coarse)
{
    refinement.stop();
    for (BesideView* const view : views) {
        if (coarse)
            view->drawCoarsely(true);
        else if (view->isDrawnCoarsely())
            refinement.start(); // after the first view
    }
}

void SideBySide::refine()
{
    const bool isPreparing = isAtWork(); // which needs the processors
    bool isOne = false;
    for (BesideView* const view : views) {
        if (!view->isDrawnCoarsely())
            continue;
        if (isOne || (isPreparing && !view->isMirror())) {
            refinement.start();
        } else {
            view->drawCoarsely(false);
            isOne = true;
        }
    }
}

void SideBySide::showAxes(bool shown)
{
    hasAxes = shown;
    for (const BesideView* const view : views) {
        if (view->hasViewer())
            view->getViewer().axes.show(shown);
    }
}

SbBox3f SideBySide::getRoom() const
{
    SbBox3f room;
    for (const BesideView* const view : views)
        room.extendBy(view->getRoom());
    return room;
}

// Cameras

void SideBySide::setTied(bool tied)
{
    isTied = tied;
    if (tied)
        activate(nullptr);
    followFirst();
}

CameraRequest SideBySide::freeSide(const CameraRequest& home) const
{
    const double nearly = 0.99; // 8 degrees
    std::vector<CameraRequest::Vector> taken{towardsViewer(numbersOf(*first->getCamera()))};
    for (const BesideView* const view : views)
        taken.push_back(view->seenFrom());
    const std::pair<double, double> angles[] = {{0, 0},   {90, 0},  {0, 90}, // front, right, above
                                                {180, 0}, {270, 0}, {0, -90}};
    for (const auto& [azimuth, elevation] : angles) {
        const CameraRequest side = fromSide(home, azimuth, elevation);
        const SbVec3f direction = axesOf(side).direction;
        const CameraRequest::Vector from(-direction[0], -direction[1], -direction[2]);
        const bool isFree = std::none_of(taken.begin(), taken.end(), [&](const auto& other) {
            return other.dot(from) > nearly;
        });
        if (isFree)
            return side;
    }
    return fromSide(home, 0, 0); // of six sides there are two at least
}

void SideBySide::begin(BesideView& view)
{
    const History::Pause pause(*history); // before there is another camera
    const std::optional<BesideCamera> camera = view.begin();
    isFollowing = true; // it does not lead yet
    if (!isTied && camera)
        view.setCamera(*camera);
    else if (!isTied && view.getStart())
        view.place(*view.getStart());
    else if (first->getCamera())
        view.follow(*first);
    isFollowing = false;
}

void SideBySide::setCameras(const std::vector<std::optional<BesideCamera>>& cameras)
{
    for (std::size_t i = 0; i < std::min(views.size(), cameras.size()); ++i) {
        if (cameras[i])
            views[i]->setCamera(*cameras[i]);
    }
}

std::vector<std::optional<BesideCamera>>
SideBySide::getCameras(const std::vector<std::string>& what) const
{
    std::vector<std::optional<BesideCamera>> cameras;
    for (const BesideView* const view : viewsOf(what))
        cameras.push_back(view ? view->getCamera() : std::nullopt);
    return cameras;
}

void SideBySide::followFirst()
{
    if (!isTied || isFollowing || !first->getCamera())
        return;
    isFollowing = true; // what follows does not lead
    for (BesideView* const view : views) {
        if (view->getScene())
            view->follow(*first);
    }
    isFollowing = false;
}

void SideBySide::follow(const BesideView& moved)
{
    if (isFollowing || !moved.getScene() || !moved.getViewer().getCamera())
        return;
    if (isTied) {
        isFollowing = true;
        first->followCamera(moved.getViewer());
        isFollowing = false;
        followFirst();
    }
    if (onCamera)
        onCamera();
}

void SideBySide::activate(BesideView* view)
{
    active = isTied ? nullptr : view;
    const bool areSeveral = isOpen() && !isTied;
    firstCaption->setActive(areSeveral && !active);
    for (BesideView* const one : views)
        one->setActive(one == active);
    if (onActive)
        onActive();
}

bool SideBySide::eventFilter(QObject* object, QEvent* event)
{
    const auto from = std::find_if(views.begin(), views.end(), [object](const BesideView* view) {
        return view->hasViewer() && view->getViewer().getGLWidget() == object;
    });
    BesideView* const view = from == views.end() ? nullptr : *from;
    if (event->type() == QEvent::FocusIn)
        activate(view);
    const bool isKey = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    if (!isKey || !isTied || !view)
        return QWidget::eventFilter(object, event);
    return QCoreApplication::sendEvent(first->getGLWidget(), event);
}

} // namespace strandview
