// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_CHECKDISPLAY_H
#define STRANDVIEW_APP_WINDOW_CHECKDISPLAY_H

#include <string>

namespace strandview {

/// Empty if there is a display to open a window with OpenGL on, otherwise one line that
/// says what is missing. Qt would end the program.
std::string checkDisplay();

/// Has Qt open windows on the X display, whatever QT_QPA_PLATFORM says: Coin speaks X11
/// and GLX alone. A line to tell if that is not what the user asked for; empty for the
/// platforms of Wayland, where windows of X are to be seen, too.
std::string chooseX11();

} // namespace strandview

#endif
