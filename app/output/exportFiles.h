// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_OUTPUT_EXPORTFILES_H
#define STRANDVIEW_APP_OUTPUT_EXPORTFILES_H

#include <string>

#include <strandview/formats/ReadReport.h>

#include "request/Options.h"

namespace strandview {

/// Empty if data can be written in the format of the name's ending; standard output, "-", gets
/// JSON. Otherwise one line that says which endings there are.
std::string checkExportName(const std::string& name);

/// Reads the files and writes options.exportFile: of a single file all frames, one in memory at a
/// time, else all files in one configuration. The file appears complete or not at all. One line in
/// report.error for what cannot be read; returns one line for what cannot be written, or nothing.
std::string exportFiles(const Options& options, ReadReport& report);

} // namespace strandview

#endif
