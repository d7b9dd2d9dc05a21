// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_WRITECSV_H
#define STRANDVIEW_FORMATS_WRITECSV_H

#include <limits>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/TextSink.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

struct CsvOptions
{
    double angstrom = 1; ///< in the unit of the points of DNA
    /// Of more pairs of edges (edgePairsOfScalars()), those of all lines and frames together,
    /// writhe_density is not computed, with a notice: it would take too long. What a line brings
    /// with it under this name is written in any case.
    double mostEdgePairs = std::numeric_limits<double>::infinity();
};

/// Writes a row for each place of each line (tracksOf()) with all that is known there: a table as
/// readTable() reads it back, where every line is a rod.
///
/// The columns, with a header, are index, arclength, x y z, qx qy qz qw and base where any line has
/// them, then all scalars (scalarNames()) of all lines. An index or arclength of a file's own
/// stands in those columns. A line that has no such column has empty fields there, a scalar that is
/// not finite is nan. A blank line and a comment with the title are before the rows of a line, but
/// for the first, whose title is behind the header. Frames of DNA are those for numbers.
///
/// Every double is the shortest text that reads back as it, bit for bit. A scalar whose name would
/// be read as something else, such as "qx", has "_" behind it, with a notice. Glyphs and bases in
/// no pair are left out, with a notice; without any line nothing is written but report.error.
/// Whether the sink took all of it. May be called from any thread.
STRANDVIEW_FORMATS_EXPORT bool writeCsv(const Configuration& configuration, const TextSink& sink,
                                        const CsvOptions& options, ReadReport& report);

/// The same of all frames of a series, with two blank lines between them and the columns frame,
/// counted from 0, and time, if all are known, in front. A frame without any row is not there, with
/// a notice. Each is loaded twice, to know the columns first, and one at a time is in memory. Of a
/// single frame as above. Adds to report.notices what loading has to tell, each line once. If a
/// frame cannot be loaded, or goOn says so, it stops there with report.error; the error stays empty
/// if it was the sink.
STRANDVIEW_FORMATS_EXPORT bool writeCsv(Series& series, const TextSink& sink,
                                        const CsvOptions& options, const Series::GoOn& goOn,
                                        ReadReport& report);

} // namespace strandview

#endif
