// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_PRINT_H
#define STRANDVIEW_APP_REQUEST_PRINT_H

#include <string>

namespace strandview {

/// Prints an answer to standard output, as it is. One line that says what failed, or nothing.
std::string print(const std::string& text);

/// Tells the user a line on standard error.
void tell(const std::string& line);

} // namespace strandview

#endif
