// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_READFILE_H
#define STRANDVIEW_FORMATS_READFILE_H

#include <optional>
#include <string>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

class Source;

/// Reads one file, or standard input for "-", in the format that formatOf() finds: by its content
/// where that is unmistakable, else by its ending (upper or lower case). A byte order mark of
/// UTF-8 is skipped; text with one of UTF-16 is refused.
///
/// Of several frames it is the first, and a notice tells; if it is growing, its series does.
///
/// Adds to report.notices. Nothing and report.error if it fails; if the file cannot be
/// read at all the error gives the system's reason. May be called from any thread.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readFile(const std::string& path, const ReadOptions& options, ReadReport& report);

/// The same of what is open already; bytes have no ending.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readSource(Source& source, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
