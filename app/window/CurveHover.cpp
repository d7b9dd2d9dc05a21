// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/CurveHover.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include <Inventor/SbVec3f.h>
#include <Inventor/SoPickedPoint.h>
#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>

#include <strandview/analysis/tracks.h>

#include "plotting/plotFrames.h"
#include "request/conversions.h"
#include "scene/DataScene.h"
#include "scene/placeNumbers.h"
#include "window/WindowViewer.h"

namespace strandview {

namespace {

const int LEAST_PAUSE = 30; // milliseconds
const int SHARE = 10;       // of the time, a tenth

std::optional<Track::Kind> kindOf(ThingKind kind)
{
    switch (kind) {
    case ThingKind::ROD:
        return Track::Kind::ROD;
    case ThingKind::BIROD:
        return Track::Kind::BIROD_AVERAGE;
    case ThingKind::DNA:
        return Track::Kind::DNA_PAIRS;
    default:
        return std::nullopt;
    }
}

// In the data's coordinates.
std::optional<algebra3d::Vector3<double>> pointOf(const Configuration& data,
                                                  const CurvePanel::Place& place)
{
    const std::vector<Track> tracks = tracksOf(data);
    const Track* const track = findTrack(tracks, place.line);
    return track && place.row < track->points.size() ? std::optional(track->points[place.row])
                                                     : std::nullopt;
}

} // namespace

std::optional<CurvePanel::Place> curvePlaceOf(const PickedPlace& picked)
{
    const std::optional<Track::Kind> kind = kindOf(picked.kind);
    if (!kind || !picked.row)
        return std::nullopt;
    return CurvePanel::Place{{*kind, picked.datum, 0}, *picked.row + (picked.share > 0.5 ? 1 : 0)};
}

PickedPlace pickedPlaceOf(const CurvePanel::Place& place, const DataScene& scene)
{
    PickedPlace picked;
    for (const ThingKind kind : {ThingKind::ROD, ThingKind::BIROD, ThingKind::DNA}) {
        if (kindOf(kind) == place.line.kind)
            picked.kind = kind;
    }
    picked.datum = place.line.datum;
    picked.row = place.row;
    const double angstrom = scene.getStyle().dna.angstrom;
    if (const auto at = findPoint(picked, *scene.getData(), angstrom))
        picked.point = at->point;
    return scene.renewed(picked);
}

CurveHover::CurveHover(WindowViewer& windowViewer, CurvePanel& curvePanel)
    : viewer(windowViewer), panel(curvePanel), pause(LEAST_PAUSE)
{
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, [this] { look(); });
    connect(&panel, &CurvePanel::hovered, this,
            [this](const CurvePanel::Place& place) { markInView(place); });
    connect(&panel, &CurvePanel::left, this, [this] { markInView(std::nullopt); });
    viewer.onMove = [this](const SbVec2s& place) { lookSoon(place); };
    watchView();
}

CurveHover::~CurveHover() { viewer.onMove = nullptr; }

void CurveHover::setScene(const DataScene* shown)
{
    scene = shown;
    markInView(std::nullopt);
    mouse.reset();
}

void CurveHover::follow() { markInView(ofCurve); }

void CurveHover::setOn(bool on)
{
    isOn = on;
    if (!on) {
        markInView(std::nullopt);
        panel.mark(std::nullopt);
    }
}

bool CurveHover::eventFilter(QObject* of, QEvent* event)
{
    if (isOn && event->type() == QEvent::Leave) {
        mouse.reset();
        timer.stop();
        panel.mark(std::nullopt);
    }
    return QObject::eventFilter(of, event);
}

// SoQt makes another widget where what is drawn needs another kind of context.
void CurveHover::watchView()
{
    if (watched == viewer.getGLWidget())
        return;
    if (watched)
        watched->removeEventFilter(this);
    watched = viewer.getGLWidget();
    watched->installEventFilter(this);
}

void CurveHover::lookSoon(const SbVec2s& place)
{
    watchView();
    if (!isOn || !scene || QApplication::mouseButtons() != Qt::NoButton)
        return;
    mouse = place;
    if (!timer.isActive())
        timer.start(pause);
}

void CurveHover::look()
{
    if (!mouse || !scene || !isOn)
        return;
    QElapsedTimer clock;
    clock.start();
    const std::unique_ptr<SoPickedPoint> picked = viewer.pickedAt(*mouse);
    panel.mark(picked ? curvePlaceOf(scene->placeOf(*picked)) : std::nullopt);
    pause = std::max(LEAST_PAUSE, SHARE * int(clock.elapsed()));
}

void CurveHover::markInView(const std::optional<CurvePanel::Place>& place)
{
    ofCurve = place;
    const auto point =
        place && scene && scene->getData() ? pointOf(*scene->getData(), *place) : std::nullopt;
    if (!point) {
        viewer.hoverMark.setPlaces({});
        return;
    }
    viewer.hoverMark.setPlaces({toSbVec3f(scene->getPlacement().toScene(*point))});
}

} // namespace strandview
