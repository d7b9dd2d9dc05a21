// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TEXT_ENCODING_H
#define STRANDVIEW_FORMATS_TEXT_ENCODING_H

#include <string>
#include <string_view>

#include <strandview/formatsExport.h>

namespace strandview {

// Which bytes are text, and letters of ASCII in any locale.

constexpr char FOUND_UTF16[] = "found UTF-16 text, expected UTF-8";

/// By its byte order mark.
STRANDVIEW_FORMATS_EXPORT bool isUtf16(std::string_view bytes);

/// Whether it begins with characters that no text has. Every picture, archive or dump
/// of numbers that was tried has some among its first hundred; 4096 are looked at.
STRANDVIEW_FORMATS_EXPORT bool isBinary(std::string_view bytes);

/// Behind the byte order mark of UTF-8, if there is one.
STRANDVIEW_FORMATS_EXPORT std::string_view withoutByteOrderMark(std::string_view text);

/// With a to z for A to Z; all else as it is.
STRANDVIEW_FORMATS_EXPORT std::string inSmallLetters(std::string_view text);

} // namespace strandview

#endif
