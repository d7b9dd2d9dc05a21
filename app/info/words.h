// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_INFO_WORDS_H
#define STRANDVIEW_APP_INFO_WORDS_H

#include <string>
#include <vector>

#include "info/Findings.h"

namespace strandview {

/// For people, with at most so many digits that count: "12.5", "1.5e-07".
std::string shortNumber(double number, int digits = 6);

/// Those of the findings, then what was left out, if that is not empty.
std::vector<std::string> noticesOf(const Findings& findings, const std::string& leftOut);

} // namespace strandview

#endif
