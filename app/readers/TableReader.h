// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_READERS_TABLEREADER_H
#define STRANDVIEW_APP_READERS_TABLEREADER_H

#include <optional>
#include <string>
#include <string_view>

#include "Configuration.h"
#include "readers/ReadReport.h"

/// Reads a table of rods: a row per point, blank lines between rods.
///
/// The columns are x y z, or x y z qx qy qz qw and then any number of scalars, named
/// "column8" and so on; or in any order what a header names, where x y z must be
/// there, all or none of qx qy qz qw (upper or lower case), and other names are
/// scalars. A header is a first row without any number. It counts for the whole file
/// and may come again before any rod.
///
/// Blanks, tabs, a comma or a semicolon separate columns; nothing between two commas
/// is an error. "#" starts a comment; a line of a comment only is not blank. Lines end
/// with LF, CR LF or CR. Numbers have a decimal point in every locale, and an exponent
/// may be written with D, as Fortran does.
///
/// Nothing and report.error if that fails, as "fileName:line: column 3 (z): found ...,
/// expected ...", lines and columns counted from 1.
std::optional<Configuration> readTable(std::string_view text, const std::string& fileName,
                                       const ReadOptions& options, ReadReport& report);

#endif
