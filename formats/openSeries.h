// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_OPENSERIES_H
#define STRANDVIEW_FORMATS_OPENSERIES_H

#include <memory>
#include <string>
#include <vector>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Series.h>

namespace strandview {

struct Format;
class Source;

/// Opens files as a series: of one file the frames that it has, of several files one frame
/// each (FileSeries). Their formats are found as by readFile().
///
/// Nucleotides that are pairs in the first frame are so in all of them, unless options.ownPairs
/// (analysis/keptPairs.h).
///
/// The series is the caller's, and keeps what it reads from. Null and report.error if a single
/// file cannot be opened, or if there is none; several are not looked at before they are
/// loaded. The options hold for every frame, but for goOn, which is asked until this returns.
/// May be called from any thread.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openSeries(const std::vector<std::string>& paths, const ReadOptions& options, ReadReport& report);

/// Of one source in a known format. Where the format has no series the configuration is read at
/// once, with what the report then says, and is the only frame.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series> openSeries(std::unique_ptr<Source> source,
                                                             const Format& format,
                                                             const ReadOptions& options,
                                                             ReadReport& report);

} // namespace strandview

#endif
