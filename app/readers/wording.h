// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_READERS_WORDING_H
#define STRANDVIEW_APP_READERS_WORDING_H

#include <cstddef>
#include <string>
#include <string_view>

/// The text with its control characters written as \xHH, so that it stays one line.
std::string onOneLine(std::string_view text);

/// onOneLine(), and after at most 40 bytes "..." instead of the rest.
std::string shortened(std::string_view text);

/// shortened() between single quotation marks.
std::string inQuotes(std::string_view text);

/// The first character of a text in UTF-8, which may have several bytes.
std::string_view firstCharacter(std::string_view text);

/// The shortest decimal text that reads back as this number, whatever the locale.
std::string formatted(double number);

/// "1 point", "2 points".
std::string counted(std::size_t count, const std::string& noun);

#endif
