// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PLOTTING_PLOTFILES_H
#define STRANDVIEW_APP_PLOTTING_PLOTFILES_H

#include <string>

#include <QSize>

#include <strandview/formats/ReadReport.h>

#include "plotting/Plot.h"
#include "request/Options.h"

namespace strandview {

class PlotStack;

/// Empty if plots can be written in the format of the name's ending: .svg, .pdf or .png; otherwise
/// one line that begins with `option` and says which can.
std::string checkPlotName(const std::string& option, const std::string& name);

/// The size of a file with so many panels, unless another is asked for.
QSize plotSize(std::size_t panels);

/// Writes what a stack shows, which has its fonts and lines as wide as in a picture of the standard
/// width, however large the picture is. The file appears complete or not at all. Returns one line
/// that says what failed, or nothing.
std::string writePlot(PlotStack& stack, const std::string& name, const QSize& size);

/// Reads the files and writes options.plot.file: of one frame, or over all frames that are asked
/// for, of which one is in memory at a time. A frame that cannot be read is a gap, and a notice;
/// then `isWhole` is false. One line in report.error for what cannot be read or is not there;
/// returns one line for what cannot be written, or nothing. Needs no display, and no QApplication.
std::string plotFiles(const Options& options, ReadReport& report, bool& isWhole);

} // namespace strandview

#endif
