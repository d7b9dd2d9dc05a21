// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CAMERA_VIEWAXES_H
#define STRANDVIEW_APP_CAMERA_VIEWAXES_H

#include <Inventor/SbVec3f.h>

#include "request/CameraRequest.h"

namespace strandview {

/// Along where a view looks, and what is up in it, across that.
struct ViewAxes
{
    SbVec3f direction;
    SbVec3f up;
};

ViewAxes axesOf(Side side);

/// Of a request without numbers; from the side of z if it asks for nothing. Angles that are
/// multiples of 90 degrees give the very numbers of a side.
ViewAxes axesOf(const CameraRequest& request);

} // namespace strandview

#endif
