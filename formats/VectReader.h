// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_VECTREADER_H
#define STRANDVIEW_FORMATS_VECTREADER_H

#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/Format.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// Certain by its first word.
STRANDVIEW_FORMATS_EXPORT Likeness likenessToVect(std::string_view beginning);

/// Reads Geomview's VECT: the word VECT; the numbers of polylines, of all vertices and of all
/// colours; the number of vertices of each polyline, negative if it is closed; the number of
/// colours of each; x y z of the vertices, and colours, which are left out. Lines end anywhere,
/// and "#" begins a comment. Each polyline is a rod.
///
/// Nothing and report.error if that fails, as "fileName:line: found ..., expected ...".
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration> readVect(std::string_view text,
                                                                const std::string& fileName,
                                                                const ReadOptions& options,
                                                                ReadReport& report);

} // namespace strandview

#endif
