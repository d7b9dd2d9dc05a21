// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CAMERA_CAMERA_H
#define STRANDVIEW_APP_CAMERA_CAMERA_H

#include <optional>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbVec3f.h>

#include "camera/viewAxes.h"
#include "request/CameraRequest.h"
#include "request/FreeEdges.h"

class SbViewportRegion;
class SoCamera;
class SoNode;

namespace strandview {

// A request's centre is in the scene's coordinates here.

/// A camera as asked for, its reference count zero; see placeCamera().
SoCamera* makeCamera(const CameraRequest& request, SoNode* scene, const SbViewportRegion& region,
                     const FreeEdges& edges);

/// Puts a camera of the right type where it was asked for, wherever it was: by its numbers, or
/// where axesOf() has it, from where all of the scene is seen as fitScene() says, or of that what
/// zoom and centre leave, at the same distance if that is in front of everything.
void placeCamera(SoCamera& camera, const CameraRequest& request, SoNode* scene,
                 const SbViewportRegion& region, const FreeEdges& edges);

/// Moves the camera, without turning it, so that the whole scene just fits the view with
/// a margin, as CameraRequest has it; usually a view is 1.05 times as wide or high as what it
/// shows. A perspective camera gets its usual angle of 45 degrees. The
/// edges of the view are left free. The clipping planes are set around the
/// scene.
void fitScene(SoCamera& camera, SoNode* scene, const SbViewportRegion& region,
              const FreeEdges& edges, std::optional<double> margin = {});

/// The same for a box in the scene; the clipping planes are set around the whole scene. A flat box
/// or a point is seen, too.
void fitBox(SoCamera& camera, const SbBox3f& box, SoNode* scene, const SbViewportRegion& region,
            const FreeEdges& edges);

/// Moves a perspective camera that is not in front of the whole scene back until it is, and
/// narrows its angle so that at the focal point it shows what it showed. Any other stays.
void keepInFront(SoCamera& camera, SoNode* scene, const SbViewportRegion& region);

CameraNumbers numbersOf(const SoCamera& camera);

/// Of length 1: against the direction in which the camera looks.
algebra3d::Vector3<double> towardsViewer(const CameraNumbers& camera);

/// The numbers of the camera that placeCamera() places for a scene that fills the box; those of the
/// request if it has some. The box is not empty.
CameraNumbers numbersFor(const CameraRequest& request, const SbBox3f& box,
                         const SbViewportRegion& region, const FreeEdges& edges);

/// What a camera that goes round goes around, of length 1: what was asked to be up, or else the
/// vertical of its view.
SbVec3f axisToTurn(const CameraRequest& request, const CameraNumbers& camera);

/// The camera after so much, in radians, of a circle to the right around an axis through a point:
/// it keeps its distance from that, and its elevation above the circle.
CameraNumbers turnedAround(const CameraNumbers& camera, const SbVec3f& middle, const SbVec3f& axis,
                           double angle);

/// The camera as far back from the middle of the box, at the same angle, as it takes for all of
/// the box to be in view all along the circle around that and the axis; itself where it takes
/// nothing. The edges and the margin are as in fitScene().
CameraNumbers withRoomToTurn(const CameraNumbers& camera, const SbBox3f& box, const SbVec3f& axis,
                             const SbViewportRegion& region, const FreeEdges& edges,
                             std::optional<double> margin = {});

} // namespace strandview

#endif
