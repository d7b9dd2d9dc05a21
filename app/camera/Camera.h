// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CAMERA_CAMERA_H
#define STRANDVIEW_APP_CAMERA_CAMERA_H

#include <Inventor/SbBox3f.h>
#include <Inventor/SbVec3f.h>

#include "request/CameraRequest.h"

class SbViewportRegion;
class SoCamera;
class SoNode;

namespace strandview {

/// Along where a standard view looks, and what is up in it.
struct ViewAxes
{
    SbVec3f direction;
    SbVec3f up;
};

ViewAxes axesOf(Side side);

/// A camera as asked for, its reference count zero; see placeCamera().
SoCamera* makeCamera(const CameraRequest& request, SoNode* scene, const SbViewportRegion& region,
                     float bottom);

/// Puts a camera of the right type where it was asked for, wherever it was: by its numbers,
/// or on a side, that of z if left open, from where all of the scene is seen as fitScene()
/// says.
void placeCamera(SoCamera& camera, const CameraRequest& request, SoNode* scene,
                 const SbViewportRegion& region, float bottom);

/// Moves the camera, without turning it, so that the whole scene just fits the view with
/// a small margin; a perspective camera gets its usual angle of 45 degrees. The part `bottom` of
/// the view's height, from 0 to below 1, is left free below the scene. The clipping planes are set
/// around the scene.
void fitScene(SoCamera& camera, SoNode* scene, const SbViewportRegion& region, float bottom);

/// The same for a box in the scene; the clipping planes are set around the whole scene. A flat box
/// or a point is seen, too.
void fitBox(SoCamera& camera, const SbBox3f& box, SoNode* scene, const SbViewportRegion& region,
            float bottom);

/// Moves a perspective camera that is not in front of the whole scene back until it is, and
/// narrows its angle so that at the focal point it shows what it showed. Any other stays.
void keepInFront(SoCamera& camera, SoNode* scene, const SbViewportRegion& region);

CameraNumbers numbersOf(const SoCamera& camera);

/// The numbers of the camera that placeCamera() places for a scene that fills the box; those of the
/// request if it has some. The box is not empty.
CameraNumbers numbersFor(const CameraRequest& request, const SbBox3f& box,
                         const SbViewportRegion& region, float bottom);

/// The camera after so much, in radians, of a circle to the right around the vertical of its view
/// through a point: it keeps its distance from that, and what is up.
CameraNumbers turnedAround(const CameraNumbers& camera, const SbVec3f& middle, double angle);

/// The camera as far back from the middle of the box, at the same angle, as it takes for all of
/// the box to be in view all along the circle around that; itself where it takes nothing. `bottom`
/// is as in fitScene().
CameraNumbers withRoomToTurn(const CameraNumbers& camera, const SbBox3f& box,
                             const SbViewportRegion& region, float bottom);

} // namespace strandview

#endif
