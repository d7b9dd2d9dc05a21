// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/wording.h"

#include <strandview/formats/text/wording.h>

namespace strandview {

std::string found(const std::string& text, const std::string& expected)
{
    return "found " + inQuotes(text) + ", expected " + expected;
}

std::string stripped(const std::string& text)
{
    const char* const around = " \t\r\n";
    const std::size_t first = text.find_first_not_of(around);
    if (first == std::string::npos)
        return "";
    return text.substr(first, text.find_last_not_of(around) + 1 - first);
}

} // namespace strandview
