// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TABLEREADER_H
#define STRANDVIEW_FORMATS_TABLEREADER_H

#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// Reads a table of rods or of DNA: a row per point or per base pair, blank lines between
/// rods.
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
/// A table is one of DNA if its first field is a letter A, C, G or T, small or capital: that
/// is strand 1's base, and x y z qx qy qz qw of the pair follow, which are also those of both
/// bases unless they are followed by those of strand 1 and of strand 2. A header is "base",
/// then in any order the names of those: x to qw, or with directors, and the same with 1
/// and with 2 behind.
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
/// Nothing and report.error if that fails, as "fileName:line: column 3 (z): found ...,
/// expected ...", lines and columns counted from 1.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration> readTable(std::string_view text,
                                                                 const std::string& fileName,
                                                                 const ReadOptions& options,
                                                                 ReadReport& report);

} // namespace strandview

#endif
