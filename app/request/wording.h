// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_WORDING_H
#define STRANDVIEW_APP_REQUEST_WORDING_H

#include <string>

namespace strandview {

/// "found 'nine', expected a number", of any text.
std::string found(const std::string& text, const std::string& expected);

/// The text without the blanks, tabs and ends of lines around it.
std::string stripped(const std::string& text);

} // namespace strandview

#endif
