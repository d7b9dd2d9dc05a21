// SPDX-License-Identifier: GPL-3.0-or-later
// Prints what the library, by being there, has told the Coin that will be started.
#include <cstdio>
#include <cstdlib>

#include <OffscreenContext.h>

int main()
{
    OffscreenContext::install(); // or the linker may leave the library out
    const char* name = "COIN_GL_NO_CURRENT_CONTEXT_CHECK";
    const char* value = std::getenv(name);
    std::printf("%s%s%s\n", name, value ? "=" : " is not set", value ? value : "");
}
