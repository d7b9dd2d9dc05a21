// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TEXT_WORDING_H
#define STRANDVIEW_FORMATS_TEXT_WORDING_H

#include <cstddef>
#include <string>
#include <string_view>

#include <strandview/formatsExport.h>

namespace strandview {

/// The text with its control characters written as \xHH, so that it stays one line.
STRANDVIEW_FORMATS_EXPORT std::string onOneLine(std::string_view text);

/// onOneLine(), and after at most 40 bytes "..." instead of the rest.
STRANDVIEW_FORMATS_EXPORT std::string shortened(std::string_view text);

/// shortened() between single quotation marks.
STRANDVIEW_FORMATS_EXPORT std::string inQuotes(std::string_view text);

/// The first character of a text in UTF-8, which may have several bytes.
STRANDVIEW_FORMATS_EXPORT std::string_view firstCharacter(std::string_view text);

/// The shortest decimal text that reads back as this number, whatever the locale.
STRANDVIEW_FORMATS_EXPORT std::string formatted(double number);

/// "1 point", "2 points".
STRANDVIEW_FORMATS_EXPORT std::string counted(std::size_t count, const std::string& noun);

/// Of so many, at least one: "chain A", "chain A and 2 more".
STRANDVIEW_FORMATS_EXPORT std::string andMore(const std::string& first, std::size_t count);

} // namespace strandview

#endif
