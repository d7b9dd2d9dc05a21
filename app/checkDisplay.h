// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_CHECKDISPLAY_H
#define STRANDVIEW_APP_CHECKDISPLAY_H

#include <string>

/// Empty if there is a display to open a window on, otherwise one line that says
/// what is missing. Qt would end the program.
std::string checkDisplay();

#endif
