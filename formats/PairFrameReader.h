// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_PAIRFRAMEREADER_H
#define STRANDVIEW_FORMATS_PAIRFRAMEREADER_H

#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/Format.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// Reads the origins and axes of the base pairs of one double strand, in one of two forms. With a
/// count, names and comments:
///
///     2 base pairs
///     ...     1 C-G   # whatever
///        0.0  0.0  0.0   # origin
///        1.0  0.0  0.0   # x axis
///        0.0  1.0  0.0   # y axis
///        0.0  0.0  1.0   # z axis
///     ...     2 G-C
///     ...
///
/// or as a list in brackets, without letters, a pair after the other, with commas or without:
///
///     {{0, 0, 0}, {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}
///     {{0, 0, 3.38}, {{0.81, 0.59, 0}, {-0.59, 0.81, 0}, {0, 0, 1}}}
///
/// where brackets of any kind are alike, the whole list may be in brackets too, and numbers may be
/// "1.5*^-7". The rows of a matrix are the axes x, y and z, which are d1, d2 and d3 of the pair and
/// of both bases; they are as directors.h has them. A pair without letters has UNKNOWN_BASE; others
/// are as readStepParameters() has them. Where the last pair is the first one again
/// (closedDna.h) the Dna is closed.
///
/// Nothing and report.error if that fails, as "fileName:line: column 3: found ..., expected ...".
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration> readPairFrames(std::string_view text,
                                                                      const std::string& fileName,
                                                                      const ReadOptions& options,
                                                                      ReadReport& report);

/// Certain by the second line of the first form, and by the brackets of the first pair.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToPairFrames(std::string_view beginning);

} // namespace strandview

#endif
