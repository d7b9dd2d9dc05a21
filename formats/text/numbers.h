// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TEXT_NUMBERS_H
#define STRANDVIEW_FORMATS_TEXT_NUMBERS_H

#include <string_view>
#include <system_error>

#include <strandview/formatsExport.h>

namespace strandview {

/// Reads a whole field as C or Fortran writes numbers, in any locale: "+1.5", ".5", "1e-3",
/// "1D-3", "nan", "inf", or with a comma for the point. What is too small for double precision
/// is 0, or the nearest of the smallest numbers. result_out_of_range if it is too large for a
/// double, invalid_argument if it is no number; what `number` is then means nothing.
STRANDVIEW_FORMATS_EXPORT std::errc parseNumber(std::string_view field, double& number);

/// Whether the field is a number, of any size.
STRANDVIEW_FORMATS_EXPORT bool isNumber(std::string_view field);

} // namespace strandview

#endif
