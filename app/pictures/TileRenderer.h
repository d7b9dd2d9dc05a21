// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_TILERENDERER_H
#define STRANDVIEW_APP_PICTURES_TILERENDERER_H

#include <cstdint>
#include <functional>

#include <Inventor/SbVec2s.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <OffscreenContext.h>

#include "request/Colour.h"

class SoCamera;
class SoNode;

namespace strandview {

/// Renders a picture off screen tile by tile: what no memory holds at once, and whose sides
/// may exceed what Coin holds in 16 bits. Every camera of the graph shows its part of what
/// it would show in the whole picture, those of overlays too, so that tiles that lie side
/// by side fit together. Its OpenGL context is current as long as it lives.
class TileRenderer
{
public:
    /// Pictures of the region's shape with `width` x `height` samples, in tiles of one size.
    TileRenderer(const SbViewportRegion& region, int width, int height, const SbVec2s& tile);
    TileRenderer(const TileRenderer&) = delete;
    TileRenderer& operator=(const TileRenderer&) = delete;

    /// Whether it makes these.
    bool fits(const SbViewportRegion& region, int width, int height, const SbVec2s& tile) const;

    /// Renders the tile whose first sample has `left` samples to its left and `below` below
    /// it; both may be outside the picture. False if that failed.
    bool render(SoNode* graph, int left, int below, const Colour& background);

    /// Lets others draw in their contexts, between two tiles. False if it cannot go on.
    bool letOthersDraw(const std::function<void()>& others);

    /// Samples of the tile that was rendered last, 0xAARRGGBB: so many whole rows, upwards. Alpha
    /// says nothing.
    void read(int firstRow, int rows, std::uint32_t* samples) const;

private:
    static SoGLRenderAction::AbortCode beforeNode(void* renderer);
    void narrow(SoCamera& camera) const;

    const SbViewportRegion region;
    const int width;
    const int height;
    const bool narrowing; // the whole picture is no tile
    OffscreenContext context;
    SoGLRenderAction action;

    int left = 0;
    int below = 0;
    SoCamera* lastCamera = nullptr; // traversed, and not yet narrowed
};

} // namespace strandview

#endif
