// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_DRAWNEARESTFIRST_H
#define STRANDVIEW_DRAWING_DRAWNEARESTFIRST_H

#include <algorithm>
#include <vector>

#include "drawing/DepthGrid.h"

/// How often the viewport must be covered, if nothing hid anything, for an order to pay.
const double SORTED_LAYERS = 1;

/// Something in view that is drawn on its own.
template <typename What>
struct InView
{
    What what;
    DepthGrid::Disc disc;
    float distance; ///< along the view, by which it is sorted
    double pixels;  ///< about how many it covers
};

/// Draws what is opaque from front to back, so that the shader sees little of what is hidden,
/// and without what the depth buffer hides once it holds some layers.
///
/// drawAll(what) draws it; drawSeen(what) what of it the grid shows, by finish() at the latest, and
/// returns about how many pixels, and what its draws cost in pixels. Things at the same distance
/// keep their order, for the last of coincident faces is seen. `unread` counts the pixels since the
/// grid was read; 0 to begin with.
template <typename What, typename DrawAll, typename DrawSeen, typename Finish>
void drawNearestFirst(std::vector<InView<What>>& things, DepthGrid& grid, double& unread,
                      DrawAll drawAll, DrawSeen drawSeen, Finish finish)
{
    // Reading costs about a layer: as much as what is drawn before the next time, at most.
    const double layersAtFirst = 4;
    std::stable_sort(things.begin(), things.end(),
                     [](const auto& a, const auto& b) { return a.distance < b.distance; });
    for (const InView<What>& thing : things) {
        const double layers = grid.getReads() == 0 ? layersAtFirst : 1;
        if (unread > layers * grid.getViewportArea()) {
            finish();
            grid.read();
            unread = 0;
        }
        if (grid.getReads() == 0) {
            drawAll(thing.what);
            unread += thing.pixels;
        } else if (grid.shows(thing.disc)) {
            unread += drawSeen(thing.what);
        }
    }
    finish();
    grid.leave();
}

/// The pixels of all of them.
template <typename What>
double pixelsOf(const std::vector<InView<What>>& things)
{
    double pixels = 0;
    for (const InView<What>& thing : things)
        pixels += thing.pixels;
    return pixels;
}

#endif
