// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_SIDE_H
#define STRANDVIEW_APP_REQUEST_SIDE_H

#include <array>

namespace strandview {

/// From where the scene is seen.
enum class Side { X, MINUS_X, Y, MINUS_Y, Z, MINUS_Z };

struct NamedSide
{
    const char* name;
    Side side;
};

/// All of them by name: "--view x" of the command line, "From x" of the menu.
constexpr std::array<NamedSide, 6> SIDES{{{"x", Side::X},
                                          {"-x", Side::MINUS_X},
                                          {"y", Side::Y},
                                          {"-y", Side::MINUS_Y},
                                          {"z", Side::Z},
                                          {"-z", Side::MINUS_Z}}};

} // namespace strandview

#endif
