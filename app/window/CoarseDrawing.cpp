// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/CoarseDrawing.h"

#include <utility>

#include "scene/DataScene.h"
#include "scene/SceneBuilder.h"

namespace strandview {

namespace {

// Longer than between two steps of a slider that is dragged, and than most frames take.
const int REST = 300; // milliseconds

// Mesa's software driver draws so many in 0.1 s, on two processors.
const double MANY_VERTICES = 5e4;

} // namespace

bool takesLong(const DataScene& scene)
{
    return scene.getData() && countVertices(*scene.getData(), scene.getStyle()) > MANY_VERTICES;
}

CoarseDrawing::CoarseDrawing(std::function<void(bool coarse)> howToDraw)
    : draw(std::move(howToDraw))
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

void CoarseDrawing::awaitChange()
{
    if (isChanging())
        rest.start();
}

void CoarseDrawing::setPlaying(bool on)
{
    isPlaying = on;
    follow();
}

void CoarseDrawing::follow() { draw(isPlaying || rest.isActive()); }

} // namespace strandview
