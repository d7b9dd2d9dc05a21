// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_OUTPUT_SAVEDEFAULTS_H
#define STRANDVIEW_APP_OUTPUT_SAVEDEFAULTS_H

#include <string>

#include "request/StyleRequest.h"

namespace strandview {

/// Writes what a request says to the file that each start begins with (usualDefaultsFile()), whole
/// or not at all, and makes its folder. Nothing, or one line that says what failed.
std::string saveDefaults(const StyleRequest& request, const std::string& file);

} // namespace strandview

#endif
