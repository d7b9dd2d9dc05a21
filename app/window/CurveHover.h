// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_CURVEHOVER_H
#define STRANDVIEW_APP_WINDOW_CURVEHOVER_H

#include <optional>

#include <Inventor/SbVec2s.h>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include "scene/PickedPlace.h"
#include "window/CurvePanel.h"

namespace strandview {

class DataScene;
class WindowViewer;

/// Marks what the mouse is over: in the curves of a panel a place of the view, and in the view a
/// place of a curve. Looking for what is below the mouse takes a tenth of the time at most.
class CurveHover : public QObject
{
public:
    /// Both outlive it.
    CurveHover(WindowViewer& windowViewer, CurvePanel& curvePanel);
    ~CurveHover() override;

    /// What is shown; without marks.
    void setScene(const DataScene* shown);
    /// Other data are shown: the place of a curve may be somewhere else.
    void follow();
    /// Whether anything is marked.
    void setOn(bool on);

protected:
    bool eventFilter(QObject* of, QEvent* event) override;

private:
    void watchView();
    void lookSoon(const SbVec2s& place);
    void look();
    void markInView(const std::optional<CurvePanel::Place>& place);

    WindowViewer& viewer;
    CurvePanel& panel;
    const DataScene* scene = nullptr;
    QPointer<QWidget> watched; ///< the view's, which may be replaced
    bool isOn = false;
    std::optional<SbVec2s> mouse; ///< over the view, in its pixels
    std::optional<CurvePanel::Place> ofCurve;
    QTimer timer;
    int pause; ///< milliseconds
};

/// The place of a curve that was picked: of a rod, a birod, or a pair of DNA. Of a place between
/// two points it is the nearer one. Nothing of what has no curve.
std::optional<CurvePanel::Place> curvePlaceOf(const PickedPlace& picked);
/// The point of such a place, of what a scene shows, as if it was clicked there.
PickedPlace pickedPlaceOf(const CurvePanel::Place& place, const DataScene& scene);

} // namespace strandview

#endif
