// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TEXT_NUMBERS_H
#define STRANDVIEW_FORMATS_TEXT_NUMBERS_H

#include <cstddef>
#include <string_view>
#include <system_error>

#include <strandview/formatsExport.h>

namespace strandview {

/// Reads a whole field as C or Fortran writes numbers, in any locale: "+1.5", ".5", "1e-3",
/// "1D-3", "nan", "inf", or with a comma for the point. What is too small for double precision
/// is 0, or the nearest of the smallest numbers. result_out_of_range if it is too large for a
/// double, invalid_argument if it is no number; what `number` is then means nothing.
STRANDVIEW_FORMATS_EXPORT std::errc parseNumber(std::string_view field, double& number);

/// Reads what most numbers are, from the beginning of a text on: digits with a point at most, and a
/// minus in front, as far as they go. How many characters that took; 0 where there is none, or
/// where only parseNumber() finds the nearest double.
STRANDVIEW_FORMATS_EXPORT std::size_t takePlainNumber(std::string_view text, double& number);

/// Whether the field is a number, of any size.
STRANDVIEW_FORMATS_EXPORT bool isNumber(std::string_view field);

} // namespace strandview

#endif
