// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_SERIESFILES_H
#define STRANDVIEW_FORMATS_SERIESFILES_H

#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// The files of a series of which each is a frame, in the natural order of their names: "run9"
/// before "run10". A folder stands for the files in it, hidden ones left out, that have an ending
/// of some format. None, and one line in report.error, if a folder cannot be read or there is no
/// file. May be called from any thread.
STRANDVIEW_FORMATS_EXPORT std::vector<std::string>
seriesFiles(const std::vector<std::string>& paths, ReadReport& report);

} // namespace strandview

#endif
