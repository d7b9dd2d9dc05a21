// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_WRITEJSON_H
#define STRANDVIEW_FORMATS_WRITEJSON_H

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/TextSink.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

/// Writes what readJson() reads back, every double bit for bit: all that a configuration holds but
/// the places of its data in the files that they came from (origin, lines, indices) and
/// Dna::standard, whose numbers are told of the structure itself. A scalar that is not finite is
/// null. Text that is not UTF-8 gets replacement characters. Whether the sink took all of it.
/// May be called from any thread.
STRANDVIEW_FORMATS_EXPORT bool writeJson(const Configuration& configuration, const TextSink& sink);

/// The same of all frames of a series, one of them in memory at a time; of a single frame as above.
/// Times are written if all are known. Adds to report.notices what loading has to tell, each line
/// once. If a frame cannot be loaded, or goOn says so, it stops there with report.error; the error
/// stays empty if it was the sink.
STRANDVIEW_FORMATS_EXPORT bool writeJson(Series& series, const TextSink& sink,
                                         const Series::GoOn& goOn, ReadReport& report);

} // namespace strandview

#endif
