// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_LEGENDLOOK_H
#define STRANDVIEW_APP_REQUEST_LEGENDLOOK_H

#include <optional>
#include <string>

#include "request/NumberFormat.h"

namespace strandview {

enum class LegendPlace { BOTTOM, TOP, LEFT, RIGHT, OFF };

/// What the legend of a scalar says besides its colours, and where it stands.
struct LegendLook
{
    LegendPlace place = LegendPlace::BOTTOM;
    std::optional<std::string> title; ///< instead of the scalar's name
    std::optional<std::string> unit;  ///< instead of what is known; empty for none
    NumberFormat format;              ///< of the numbers at its ticks
};

} // namespace strandview

#endif
