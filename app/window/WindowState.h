// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_WINDOWSTATE_H
#define STRANDVIEW_APP_WINDOW_WINDOWSTATE_H

#include <string>
#include <vector>

#include "request/BesideRequest.h"
#include "request/CameraNumbers.h"
#include "request/Measurement.h"
#include "request/NamedView.h"
#include "request/StyleRequest.h"

namespace strandview {

/// What a window's user changes of what it shows, and can take back.
struct WindowState
{
    StyleRequest style;
    bool areColoursShown = true; ///< those of data
    CameraNumbers camera{};
    std::vector<Measurement> measurements = {}; ///< that are kept
    std::vector<NamedView> views = {};
    BesideRequest beside = {};
};

bool operator==(const WindowState& a, const WindowState& b);

/// What is another one, in the words of menus and controls: "radius", "camera". Empty if nothing
/// is.
std::string differenceOf(const WindowState& a, const WindowState& b);

/// A state with what is another one in `to` than in `from` as it is in `to`; the rest stays.
WindowState withChange(WindowState state, const WindowState& from, const WindowState& to);

} // namespace strandview

#endif
