// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_JSONREADER_H
#define STRANDVIEW_FORMATS_JSONREADER_H

#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// Reads JSON, version 1:
///
///     {"strandview": 1,
///      "rods": [{"points": [[x, y, z], ...],
///                "quaternions": [[x, y, z, w], ...],
///                "scalars": {"name": [number, ...], ...}}, ...],
///      "birods": [{"average": STRAND, "strand1": STRAND, "strand2": STRAND}, ...],
///      "dna": [{"sequence": "ACGT...",
///               "pairs": STRAND, "strand1": STRAND, "strand2": STRAND}, ...],
///      "markers": [{"point": [x, y, z], "shape": "sphere", "size": number,
///                   "colour": "red", "transparency": number, "id": number}, ...],
///      "frames": [{"point": [x, y, z], "quaternion": [x, y, z, w], "size": number}, ...],
///      "arrows": [{"from": [x, y, z], "to": [x, y, z], "radius": number,
///                  "colour": "red"}, ...]}
///
/// with {"points": [[x, y, z], ...], "quaternions": [[x, y, z, w], ...]} for STRAND. For
/// "quaternions", and for the "quaternion" of a frame, there may be "directors": [d1, d2, d3]
/// of three numbers each for every quaternion.
///
/// What may be missing: any of the arrays of the file, if one of the others has something
/// in it; of a rod "quaternions" and "scalars"; of DNA "strand1" and "strand2" together,
/// which are as "pairs" then; of a marker all but "point"; the "size", "radius" and "colour"
/// of anything. What is there has one entry per point, or per letter of the sequence, which
/// may be small; frames and scalars of rods and frames of birods may have one fewer, of the
/// elements between the points (elements.h). A shape is a sphere, cube or cross, and
/// "color" is a colour.
/// Any other key is an error, and so is a key twice in one object. The origin of a rod is
/// "fileName: rods[0]", and so on.
///
/// Nothing and report.error if that fails. Where the text is not JSON the error is
/// "fileName:line:column: found ..., expected ...", with the character, counted from
/// 1, at which reading stopped; else "fileName: rods[0].points[2][1]: found ...,
/// expected ...", with indices counted from 0 as in JSON.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration> readJson(std::string_view text,
                                                                const std::string& fileName,
                                                                const ReadOptions& options,
                                                                ReadReport& report);

} // namespace strandview

#endif
