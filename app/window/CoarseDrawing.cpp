// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/CoarseDrawing.h"

#include <SoQtGeneralViewer.h>

namespace strandview {

namespace {

// Longer than between two steps of a slider that is dragged, and than most frames take.
const int REST = 300; // milliseconds

} // namespace

CoarseDrawing::CoarseDrawing(SoQtGeneralViewer& viewerThatDraws) : viewer(viewerThatDraws)
{
    rest.setSingleShot(true);
    rest.setInterval(REST);
    connect(&rest, &QTimer::timeout, this, [this] { follow(); });
}

void CoarseDrawing::noteChange()
{
    rest.start();
    follow();
}

void CoarseDrawing::setPlaying(bool on)
{
    isPlaying = on;
    follow();
}

void CoarseDrawing::follow() { viewer.drawCoarsely(isPlaying || rest.isActive()); }

} // namespace strandview
