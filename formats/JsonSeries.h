// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_JSONSERIES_H
#define STRANDVIEW_FORMATS_JSONSERIES_H

#include <memory>
#include <optional>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

// JSON as JsonReader.h has it, from a source. Where the file begins with its series, with the
// version at most in front of it, the frames are found by one pass and read when they are loaded
// (JsonIndex.h, IndexedSeries.h), so that what is wrong in one is told then. Any other file is read
// as a whole.

/// The configuration, or of a series the first frame; the others are counted, unless
/// ReadOptions::atOnce, and not read.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readJson(Source& source, const ReadOptions& options, ReadReport& report);

/// All frames: one of a file without a series.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openJson(std::unique_ptr<Source> source, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
