// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CAMERA_H
#define STRANDVIEW_APP_CAMERA_H

class SbViewportRegion;
class SoNode;
class SoOrthographicCamera;

/// A camera that shows all of the scene with a small margin, along -z with y up. The
/// part `bottom` of the view's height, from 0 to below 1, is left free below the scene.
/// Its reference count is zero.
SoOrthographicCamera* makeCamera(SoNode* scene, const SbViewportRegion& region, float bottom);

#endif
