// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/TileRenderer.h"

#include <Inventor/SoFullPath.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoCullElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/nodes/SoCamera.h>

#include "request/conversions.h"

namespace strandview {

namespace {

// Along one axis: from the whole picture's normalised coordinates, -1 to 1, to a tile's.
void setAxis(SbMatrix& toTile, int axis, int whole, int first, int tile)
{
    toTile[axis][axis] = float(double(whole) / tile);
    toTile[3][axis] = float((whole - 2.0 * first - tile) / tile);
}

} // namespace

TileRenderer::TileRenderer(SoNode* shownGraph, const SbViewportRegion& shape, int samplesAcross,
                           int samplesUp, const SbVec2s& tile)
    : graph(shownGraph),
      region(shape),
      width(samplesAcross),
      height(samplesUp),
      narrowing(tile[0] != width || tile[1] != height),
      renderer(SbViewportRegion(tile))
{
    renderer.setComponents(SoOffscreenRenderer::RGB);
    renderer.getGLRenderAction()->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    if (narrowing)
        renderer.getGLRenderAction()->setAbortCallback(beforeNode, this);
}

bool TileRenderer::render(int samplesLeft, int samplesBelow, const Colour& background)
{
    left = samplesLeft;
    below = samplesBelow;
    lastCamera = nullptr;
    renderer.setBackgroundColor(toSbColor(background));
    asked = !narrowing;
    return renderer.render(graph) && asked;
}

const unsigned char* TileRenderer::getSamples() const { return renderer.getBuffer(); }

// Coin asks before each node whether to go on. What a camera sets is changed before the node
// after it: Coin renders its own tiles so.
SoGLRenderAction::AbortCode TileRenderer::beforeNode(void* renderer)
{
    auto* self = static_cast<TileRenderer*>(renderer);
    self->asked = true;
    if (self->lastCamera)
        self->narrow(*self->lastCamera);
    const SoPath* path = self->renderer.getGLRenderAction()->getCurPath();
    SoNode* next = static_cast<const SoFullPath*>(path)->getTail();
    self->lastCamera =
        next->isOfType(SoCamera::getClassTypeId()) ? static_cast<SoCamera*>(next) : nullptr;
    return SoGLRenderAction::CONTINUE;
}

void TileRenderer::narrow(SoCamera& camera) const
{
    const SbVec2s tile = renderer.getViewportRegion().getWindowSize();
    SbMatrix toTile = SbMatrix::identity();
    setAxis(toTile, 0, width, left, tile[0]);
    setAxis(toTile, 1, height, below, tile[1]);
    const auto part = [](int first, int whole) { return float(first) / float(whole); };

    SbViewportRegion used = region; // Coin takes the shape from here
    const SbViewVolume whole = camera.getViewVolume(region, used);
    SbMatrix viewing, projection;
    whole.getMatrices(viewing, projection);
    projection.multRight(toTile);
    SoState* state = renderer.getGLRenderAction()->getState();
    const SbViewVolume narrowed =
        whole.narrow(part(left, width), part(below, height), part(left + tile[0], width),
                     part(below + tile[1], height));
    SoViewVolumeElement::set(state, &camera, narrowed);
    SoCullElement::setViewVolume(state,
                                 narrowed); // before, it was that of a view of the tile's shape
    SoViewingMatrixElement::set(state, &camera, viewing);
    SoProjectionMatrixElement::set(state, &camera, projection);
    // What is recorded of this tile would be wrong in the next.
    SoCacheElement::invalidate(state);
}

} // namespace strandview
