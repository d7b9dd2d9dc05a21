// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_SCALARAT_H
#define STRANDVIEW_ANALYSIS_SCALARAT_H

#include <cstddef>
#include <optional>
#include <string>

#include <strandview/analysis/tracks.h>
#include <strandview/analysisExport.h>

namespace strandview {

/// The value of findScalar() in one row, for whoever asks for a place of a long line: arclength and
/// writhe_density take the time of one pass over the points, all others that of a few rows. Nothing
/// where findScalar() gives nothing, or there is no such row. Any thread.
///
/// Of more than LINE_AT_ONCE points the torsion is told by a stretch of the line: where it is
/// straight but for rounding, that stretch's decimals say what rounding is.
STRANDVIEW_ANALYSIS_EXPORT std::optional<double> scalarAt(const Track& track,
                                                          const std::string& name, std::size_t row);

constexpr std::size_t LINE_AT_ONCE = 2000;

} // namespace strandview

#endif
