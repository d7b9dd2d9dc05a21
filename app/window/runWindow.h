// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_RUNWINDOW_H
#define STRANDVIEW_APP_WINDOW_RUNWINDOW_H

#include <string>

#include "window/MainWindow.h"

namespace strandview {

struct Options;
struct ReadReport;

/// Prepares Qt, Coin and SoQt for windows; before any node is made.
void initialiseWindows(const char* programName);

/// Loads the options' files, if there are any, and shows them until the user closes the window.
/// What is there soon is shown at once, and what is refused soon never opens a window; a later
/// refusal closes it: both give report.error. Notices go to standard error. Returns one line that
/// says what failed of the window itself, or nothing. Series are played if there is an opener for
/// them.
std::string runWindow(const Options& options, const MainWindow::Loader& loader, ReadReport& report,
                      const MainWindow::SeriesOpener& opener = nullptr,
                      const MainWindow::SessionReader& reader = nullptr);

} // namespace strandview

#endif
