// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_CAMERAREQUEST_H
#define STRANDVIEW_APP_REQUEST_CAMERAREQUEST_H

#include <optional>

#include "request/CameraNumbers.h"
#include "request/Side.h"

namespace strandview {

/// The camera that the user asked for: its numbers, or else a standard view.
struct CameraRequest
{
    std::optional<Side> side; ///< the thinnest if left open, see thinnestAxis()
    bool perspective = false;
    std::optional<CameraNumbers> numbers;

    bool isPerspective() const { return numbers ? numbers->perspective : perspective; }
};

} // namespace strandview

#endif
