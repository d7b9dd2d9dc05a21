// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_JSONREADER_H
#define STRANDVIEW_FORMATS_JSONREADER_H

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/IndexedText.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

/// Reads JSON, version 1:
///
///     {"strandview": 1,
///      "rods": [{"points": [[x, y, z], ...],
///                "quaternions": [[x, y, z, w], ...],
///                "scalars": {"name": [number, ...], ...},
///                "name": "text", "closed": false, "colour": "red", "radius": number,
///                "frames": "given", "backbone": false, "molecule": number}, ...],
///      "birods": [{"average": STRAND, "strand1": STRAND, "strand2": STRAND}, ...],
///      "dna": [{"sequence": "ACGT...",
///               "pairs": STRAND, "strand1": STRAND, "strand2": STRAND,
///               "name": "text", "closed": false, "molecule": number}, ...],
///      "markers": [{"point": [x, y, z], "shape": "sphere", "size": number,
///                   "colour": "red", "transparency": number, "id": number}, ...],
///      "frames": [{"point": [x, y, z], "quaternion": [x, y, z, w], "size": number}, ...],
///      "arrows": [{"from": [x, y, z], "to": [x, y, z], "radius": number,
///                  "colour": "red"}, ...],
///      "bases": [{"base": "A", "point": [x, y, z], "quaternion": [x, y, z, w],
///                 "molecule": number}, ...]}
///
/// with {"points": [[x, y, z], ...], "quaternions": [[x, y, z, w], ...]} for STRAND. For
/// "quaternions", and for the "quaternion" of a frame or base, there may be "directors":
/// [d1, d2, d3] of three numbers each for every quaternion. Instead of the arrays from "rods" to
/// "bases" there may be a series of frames which have them, all with a time or none:
///
///     {"strandview": 1,
///      "series": [{"time": number, "rods": [...], ...}, ...]}
///
/// What may be missing: any of these arrays, if one of the others has something
/// in it; of a rod all but "points"; of DNA "strand1" and "strand2" together,
/// which are as "pairs" then, and all behind them; of a marker all but "point"; the "size",
/// "radius", "colour" and "molecule" of anything. What is there has one entry per point, or per
/// letter of the sequence, which may be small, or "N" for a base that is not known; a sequence of
/// such bases may be null. Frames and scalars of rods and frames of birods may have one fewer, of
/// the elements between the points (elements.h). The "frames" of a rod whose quaternions are
/// nothing that its file or its maker gave are "made" (Rod::hasFrames). Molecules are whole
/// numbers from 1 to 2^53. A shape is a sphere, cube or cross, and "color" is a colour.
/// Any other key is an error, and so is a key twice in one object. The origin of a rod is
/// "fileName: rods[0]", or "fileName: series[2].rods[0]", and so on.
///
/// Of a series it is the first frame, and report.frames says how many there are; all of them are
/// checked. Nothing and report.error if that fails. Where the text is not JSON the error is
/// "fileName:line:column: found ..., expected ...", with the character, counted from
/// 1, at which reading stopped; else "fileName: rods[0].points[2][1]: found ...,
/// expected ...", with indices counted from 0 as in JSON.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration> readJson(std::string_view text,
                                                                const std::string& fileName,
                                                                const ReadOptions& options,
                                                                ReadReport& report);

/// The same, with every frame: a file without a series has one. What the report says is of all.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series> openJson(std::string_view text,
                                                           const std::string& fileName,
                                                           const ReadOptions& options,
                                                           ReadReport& report);

// ---- Parts of a file with a series, for its index (JsonIndex.h)

/// Of a byte in its file, counted from 1 in lines and in characters.
struct JsonPlace
{
    std::size_t line = 1, column = 1;
};

/// The text of a frame, an object.
struct JsonFrame
{
    std::string_view text;
    JsonPlace place;             ///< of its beginning
    std::size_t index = 0;       ///< in the series
    std::optional<bool> isTimed; ///< the first one, as which it has to be, if that is known
};

/// The frame as openJson() has it. FrameRead::isCut where the text ends before it is whole.
STRANDVIEW_FORMATS_EXPORT FrameRead readJsonFrame(const JsonFrame& frame,
                                                  const std::string& fileName,
                                                  const ReadOptions& options, ReadReport& report);

/// What is around the frames of a series.
struct JsonSeriesText
{
    std::string before;       ///< from the file's beginning to behind the series' "["
    std::size_t frames;       ///< how many, at least 1
    bool isFrameNext = false; ///< behind a comma
    std::string_view behind;
    JsonPlace place; ///< of that
};

enum class JsonOutline {
    WHOLE,
    CUT,  ///< the text ends before the file does
    WRONG ///< there is anything but that
};

/// Whether that is a file, whatever the frames are; else report.error, as of readJson().
STRANDVIEW_FORMATS_EXPORT JsonOutline checkJsonOutline(const JsonSeriesText& around,
                                                       const std::string& fileName,
                                                       ReadReport& report);

} // namespace strandview

#endif
