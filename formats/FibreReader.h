// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_FIBREREADER_H
#define STRANDVIEW_FORMATS_FIBREREADER_H

#include <memory>
#include <optional>
#include <string_view>

#include <strandview/formats/Format.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

// Reports of fibres over time:
//
//     % frame 0
//     % time 0.1
//     % fiber f0:1
//      1  0.0 0.0 0.0
//      1  0.1 0.0 0.0
//     % end
//
// Each fibre is a rod of its name; a row has the fibre's number, which is left out, x y z, and
// whatever else, left out, too. Other lines with "%" say nothing. Frames may have any fibres.

/// Certain by a line of a fibre; also of snapshots of filaments ("FILAMENT 0 0 2"), which are
/// refused: nothing that we know says what the numbers in their lines are.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToFibres(std::string_view beginning);

/// The first frame. Nothing and report.error if that fails, as "fileName:line: ...".
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readFibres(Source& source, const ReadOptions& options, ReadReport& report);

/// As IndexedSeries opens them.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openFibres(std::unique_ptr<Source> source, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
