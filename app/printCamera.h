// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PRINTCAMERA_H
#define STRANDVIEW_APP_PRINTCAMERA_H

#include <string>

#include "CameraNumbers.h"

/// Prints the camera in a line of its own to standard output. Returns one line that says
/// what failed, or nothing.
std::string printCamera(const CameraNumbers& camera);

#endif
