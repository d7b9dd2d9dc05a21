// SPDX-License-Identifier: GPL-3.0-or-later
#include "Camera.h"

#include <algorithm>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoOrthographicCamera.h>

SoOrthographicCamera* makeCamera(SoNode* scene, const SbViewportRegion& region, float bottom)
{
    const float margin = 1.05f;
    auto* camera = new SoOrthographicCamera;
    camera->ref();
    camera->viewAll(scene, region);

    // viewAll() shows the sphere around the scene, and leaves paper empty; this is the
    // smallest view that shows the box.
    SoGetBoundingBoxAction bounds(region);
    bounds.apply(scene);
    const SbVec3f sides = bounds.getBoundingBox().getSize();
    const float aspect = region.getViewportAspectRatio();
    const float height = std::max(margin * sides[1] / (1 - bottom), margin * sides[0] / aspect);
    // A camera's height is that of its view's shorter side.
    camera->height = aspect >= 1 ? height : height * aspect;
    camera->position = camera->position.getValue() - SbVec3f(0, bottom * height / 2, 0);
    camera->unrefNoDelete();
    return camera;
}
