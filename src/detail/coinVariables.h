// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_COINVARIABLES_H
#define STRANDVIEW_DETAIL_COINVARIABLES_H

#include <cstdio>
#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

/// The environment variables, with their values, that a version of Coin ("SIM Coin 4.0.3", or
/// the number alone) needs before its start to draw in the library's own off-screen contexts.
/// Measured with Coin 4.0.0, 4.0.3 and 4.0.10; one without a number counts as the oldest.
inline std::vector<std::pair<const char*, const char*>> coinVariables(const char* version,
                                                                      bool hasDisplay)
{
    // Coin asks GLX alone whether there is a context, and 4.0.3 ends the program in any other.
    std::vector<std::pair<const char*, const char*>> variables = {
        {"COIN_GL_NO_CURRENT_CONTEXT_CHECK", "1"}};
    int major = 0, minor = 0, patch = 0;
    std::sscanf(version + std::strcspn(version, "0123456789"), "%d.%d.%d", &major, &minor, &patch);
    // From here on Coin has EGL code of its own: unless told so, a picture after a window crashes.
    if (std::make_tuple(major, minor, patch) >= std::make_tuple(4, 0, 4)) {
        variables.emplace_back("COIN_EGL", "1");
        // Without a display it complains once per context.
        if (!hasDisplay)
            variables.emplace_back("EGL_PLATFORM", "surfaceless");
    }
    return variables;
}

#endif
