// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_MAINWINDOW_H
#define STRANDVIEW_APP_MAINWINDOW_H

#include <string>

#include "Colour.h"

class SoGeneralScene;

/// Prepares Qt, Coin and SoQt for windows; before any node is made.
void initialiseWindows(const char* programName);

/// Shows the scene until the user closes the window. At first the part `bottom` of the
/// view's height is left free below the scene.
void showWindow(SoGeneralScene* scene, const std::string& title, const Colour& background,
                float bottom);

#endif
