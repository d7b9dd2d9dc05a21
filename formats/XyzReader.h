// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_XYZREADER_H
#define STRANDVIEW_FORMATS_XYZREADER_H

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

// The chemists' lists of atoms, one below the other: a line with their number, a comment, and for
// each a line with its name and x y z; what else a line has is left out. A frame is a rod through
// its atoms, in their order.

/// Certain by a number alone in the first line and a name with three numbers in the third.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToXyz(std::string_view beginning);

/// The first frame. Nothing and report.error if that fails, as "fileName:line: ...".
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readXyz(Source& source, const ReadOptions& options, ReadReport& report);

/// As IndexedSeries opens them.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openXyz(std::unique_ptr<Source> source, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
