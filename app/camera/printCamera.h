// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CAMERA_PRINTCAMERA_H
#define STRANDVIEW_APP_CAMERA_PRINTCAMERA_H

#include <string>

#include "request/CameraNumbers.h"

namespace strandview {

/// Prints the camera in a line of its own to standard output. Returns one line that says
/// what failed, or nothing.
std::string printCamera(const CameraNumbers& camera);

} // namespace strandview

#endif
