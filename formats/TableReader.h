// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TABLEREADER_H
#define STRANDVIEW_FORMATS_TABLEREADER_H

#include <memory>
#include <optional>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>
#include <strandview/model/Series.h>

namespace strandview {

class Source;

/// Reads a table of rods or of DNA: a row per point or per base pair, a blank line between
/// rods, two or more between the frames of a series, of which it is the first; report.frames has
/// their number.
///
/// The columns of rods are x y z, or x y z qx qy qz qw and then any number of scalars, named
/// "column8" and so on; or in any order what a header names, where x y z must be
/// there, all or none of qx qy qz qw, or in their place d1x d1y d1z and so on of two
/// directors or of all three (upper or lower case), and other names are scalars; without any, the
/// first is "column1". Of x y z qx qy qz qw a unit in brackets behind the name is left out. A
/// header is a first row without any number. It counts for the whole file and may come again before
/// any rod.
///
/// In the last row of a rod the fields of a frame, and of any scalar, may be empty, or no
/// number ("nan") for a frame and for the scalars beside it: then they belong to the
/// elements between the points, and every other row has those of the element that begins
/// there. The points get theirs by the rules of elements.h.
///
/// A scalar whose fields are empty in all rows of a rod, from the first one on, is none of that
/// rod, and so are the frames if all of their fields are; one that all rods lack is told in a
/// notice. A column named base (in any case) that begins with one letter, or nothing, has at most a
/// letter in every row and is left out, with a notice: so are rods with letters and a single row
/// then. An empty scalar above the last row of a rod is not known there, with a notice, too.
///
/// A table is one of DNA if its first field is a letter A, C, G or T, small or capital: that
/// is strand 1's base, and x y z qx qy qz qw of the pair follow, which are also those of both
/// bases unless they are followed by those of strand 1 and of strand 2. A header is "base",
/// then in any order the names of those: x to qw, or with directors, and the same with 1
/// and with 2 behind.
///
/// A column named t, time or frame (the latter two in any case, all with or without a unit in
/// brackets) tells frames apart, too: rows of one time are one frame, and the column is no scalar,
/// nor out of place in a table of DNA. It is a scalar as any other where it never changes, or has
/// a value that stands in one row alone: one that is a parameter along the rod. Of these columns it
/// is the first named here; those of t and time are the times of the series.
///
/// A row holds a whole frame, of one rod, where a header names x1 y1 z1 x2 y2 z2 and so on
/// (wideRows.h), and where ReadOptions::frameRows is 1: then it is 3 numbers for each point, or a
/// time and these. Any other number asked for there tells frames apart alone, and the column that
/// could is the time of their first rows; below such a header it has no effect, with a notice.
///
/// A last frame of several that cannot be read, as it is cut short, is left out with a notice.
///
/// Blanks, tabs, a comma or a semicolon separate columns; nothing between two commas
/// is an error, but one more comma or semicolon at the end of every line is left out.
/// Between the names of a header spaces separate nothing if the others do, and double
/// quotes protect all that is between them. "#" starts a comment, and so does "%" at the
/// start of a line; a line of a comment only is not blank. Lines end with LF, CR LF or
/// CR.
///
/// Numbers have a decimal point in every locale; or a decimal comma, if semicolons or
/// tabs separate the first line and it has no other commas. An exponent may be written
/// with D, as Fortran does. A number too small for double precision is 0. A rod's origin
/// is "fileName:line: rod 1", with the line of its first point, and that of DNA "DNA 1".
///
/// The text is UTF-8, with or without a byte order mark. Of a source that is a file no more is in
/// memory than a few pieces and the text of one frame.
///
/// Nothing and report.error if that fails, as "fileName:line: column 3 (z): found ...,
/// expected ...", lines and columns counted from 1.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
readTable(Source& source, const ReadOptions& options, ReadReport& report);

/// All frames, each read from its place in the source when it is loaded. Of the frames but the last
/// one nothing is checked before; what is wrong with the only one is as above.
///
/// Opened at once, and where it is growing, a table's second frame decides for all whether a column
/// tells frames apart. Of one that is growing a frame is whole with two blank lines behind it, a
/// row of another time, or as many rows as were asked for; a column that could tell frames apart
/// does.
STRANDVIEW_FORMATS_EXPORT std::unique_ptr<Series>
openTable(std::unique_ptr<Source> source, const ReadOptions& options, ReadReport& report);

} // namespace strandview

#endif
