// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CAMERAREQUEST_H
#define STRANDVIEW_APP_CAMERAREQUEST_H

#include <optional>

#include "CameraNumbers.h"

/// From where the scene is seen.
enum class Side { X, MINUS_X, Y, MINUS_Y, Z, MINUS_Z };

/// The camera that the user asked for: its numbers, or else a standard view.
struct CameraRequest
{
    std::optional<Side> side; ///< the thinnest if left open, see thinnestSide()
    bool perspective = false;
    std::optional<CameraNumbers> numbers;

    bool isPerspective() const { return numbers ? numbers->perspective : perspective; }
};

#endif
