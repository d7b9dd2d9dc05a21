// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_MAINWINDOW_H
#define STRANDVIEW_APP_MAINWINDOW_H

#include <string>

#include "Colour.h"

class SoSeparator;

/// Empty if there is a display to open a window on, otherwise one line that says
/// what is missing.
std::string checkDisplay();

/// Prepares Qt, Coin and SoQt for windows; before any node is made.
void initialiseWindows(const char* programName);

/// Shows the scene until the user closes the window.
void showWindow(SoSeparator* scene, const std::string& title, const Colour& background);

#endif
