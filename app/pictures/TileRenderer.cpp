// SPDX-License-Identifier: GPL-3.0-or-later
#include "pictures/TileRenderer.h"

#include <Inventor/SoFullPath.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoCullElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoViewVolumeElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/system/gl.h>

#include <SoMeshShape.h>

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

TileRenderer::TileRenderer(const SbViewportRegion& shape, int samplesAcross, int samplesUp,
                           const SbVec2s& tile)
    : region(shape),
      width(samplesAcross),
      height(samplesUp),
      narrowing(tile[0] != width || tile[1] != height),
      context(tile[0], tile[1]),
      action(SbViewportRegion(tile))
{
    action.setCacheContext(context.getId());
    action.setRenderingIsRemote(FALSE);
    action.setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    if (narrowing)
        action.setAbortCallback(beforeNode, this);
}

bool TileRenderer::fits(const SbViewportRegion& shape, int samplesAcross, int samplesUp,
                        const SbVec2s& tile) const
{
    return region == shape && width == samplesAcross && height == samplesUp &&
           action.getViewportRegion().getWindowSize() == tile;
}

bool TileRenderer::render(SoNode* graph, int samplesLeft, int samplesBelow,
                          const Colour& background)
{
    if (!context.isValid())
        return false;
    left = samplesLeft;
    below = samplesBelow;
    lastCamera = nullptr;
    const SbColor colour = toSbColor(background);
    glClearColor(colour[0], colour[1], colour[2], 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    const SoMeshShape::AllRows allRows;
    action.apply(graph);
    return true;
}

bool TileRenderer::letOthersDraw(const std::function<void()>& others)
{
    context.letGo();
    others();
    return context.takeBack();
}

// In the order of the picture's own bytes, which costs a fifth of any other.
void TileRenderer::read(int firstRow, int rows, std::uint32_t* samples) const
{
    glReadPixels(0, firstRow, action.getViewportRegion().getWindowSize()[0], rows, GL_BGRA,
                 GL_UNSIGNED_INT_8_8_8_8_REV, samples);
}

// Coin asks before each node whether to go on. What a camera sets is changed before the node
// after it: Coin renders its own tiles so.
SoGLRenderAction::AbortCode TileRenderer::beforeNode(void* renderer)
{
    auto* self = static_cast<TileRenderer*>(renderer);
    if (self->lastCamera)
        self->narrow(*self->lastCamera);
    const SoPath* path = self->action.getCurPath();
    SoNode* next = static_cast<const SoFullPath*>(path)->getTail();
    self->lastCamera =
        next->isOfType(SoCamera::getClassTypeId()) ? static_cast<SoCamera*>(next) : nullptr;
    return SoGLRenderAction::CONTINUE;
}

void TileRenderer::narrow(SoCamera& camera) const
{
    const SbVec2s tile = action.getViewportRegion().getWindowSize();
    SbMatrix toTile = SbMatrix::identity();
    setAxis(toTile, 0, width, left, tile[0]);
    setAxis(toTile, 1, height, below, tile[1]);
    const auto part = [](int first, int whole) { return float(first) / float(whole); };

    SbViewportRegion used = region; // Coin takes the shape from here
    const SbViewVolume whole = camera.getViewVolume(region, used);
    SbMatrix viewing, projection;
    whole.getMatrices(viewing, projection);
    projection.multRight(toTile);
    SoState* state = action.getState();
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
