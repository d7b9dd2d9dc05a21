// SPDX-License-Identifier: GPL-3.0-or-later
#include "info/words.h"

#include <cstdio>

namespace strandview {

std::string shortNumber(double number, int digits)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.*g", digits, number);
    return text;
}

std::vector<std::string> noticesOf(const Findings& findings, const std::string& leftOut)
{
    std::vector<std::string> notices = findings.notices;
    if (!leftOut.empty())
        notices.push_back(leftOut);
    return notices;
}

} // namespace strandview
