// SPDX-License-Identifier: GPL-3.0-or-later
#include "checkDisplay.h"

#include <cstdlib>

#include <X11/Xlib.h>

std::string checkDisplay()
{
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        const char* name = std::getenv("DISPLAY");
        return std::string("no window can be opened: found ") +
               (name && *name ? "no X server at DISPLAY=" + std::string(name)
                              : "that DISPLAY is not set") +
               ", expected an X display; --render OUT.png needs none";
    }
    XCloseDisplay(display);
    return "";
}
