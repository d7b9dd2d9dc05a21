// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/checkDisplay.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include <GL/glx.h>
#include <X11/Xlib.h>
#include <fcntl.h>
#include <unistd.h>

namespace strandview {

namespace {

const char* const PLATFORM = "QT_QPA_PLATFORM";

// While it lives, nothing is written to standard error: libraries of X tell there what is
// told here.
class Silence
{
public:
    Silence() : error(dup(STDERR_FILENO))
    {
        const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (error < 0 || nowhere < 0)
            return;
        std::fflush(stderr);
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }
    ~Silence()
    {
        if (error < 0)
            return;
        std::fflush(stderr);
        dup2(error, STDERR_FILENO);
        close(error);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

private:
    int error;
};

std::string refusal(const std::string& found)
{
    return "no window can be opened: found " + found + "; --render OUT.png needs none";
}

} // namespace

std::string checkDisplay()
{
    const Silence silence;
    const char* variable = std::getenv("DISPLAY");
    const std::string name = variable ? variable : "";
    if (name.empty())
        return refusal("that DISPLAY is not set, expected an X display, in a Wayland session that "
                       "of Xwayland");
    const std::unique_ptr<Display, decltype(&XCloseDisplay)> display(XOpenDisplay(nullptr),
                                                                     XCloseDisplay);
    if (!display)
        return refusal("no X server that can be reached at DISPLAY=" + name +
                       ", expected an X display");
    if (!glXQueryExtension(display.get(), nullptr, nullptr))
        return refusal("no OpenGL (GLX) at DISPLAY=" + name + ", expected an X display with it");
    return "";
}

std::string chooseX11()
{
    const char* variable = std::getenv(PLATFORM);
    const std::string asked = variable ? variable : "";
    if (asked.rfind("xcb", 0) == 0)
        return "";
    setenv(PLATFORM, "xcb", 1);
    if (asked.empty() || asked.rfind("wayland", 0) == 0)
        return "";
    return "found " + std::string(PLATFORM) + "=" + asked +
           ", expected xcb: the window opens on the X display";
}

} // namespace strandview
