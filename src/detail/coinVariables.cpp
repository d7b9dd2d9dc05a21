// SPDX-License-Identifier: GPL-3.0-or-later
#include "detail/coinVariables.h"

#include <cstdlib>

#include <Inventor/SoDB.h>

namespace {

// As the library is loaded, for hosts start Coin themselves. What the user has set stays.
const bool PREPARED = [] {
    const bool hasDisplay = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    for (const auto& [name, value] : coinVariables(SoDB::getVersion(), hasDisplay))
        setenv(name, value, 0);
    return true;
}();

} // namespace
