// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_DIGEST_H
#define STRANDVIEW_APP_SCENE_DIGEST_H

#include <string>

#include <strandview/model/Configuration.h>

namespace strandview {

/// 64 hexadecimal digits that tell data from others: SHA-256 of what --export would write of them.
std::string digestOf(const Configuration& configuration);

/// The same of a text.
std::string digestOf(const std::string& text);

} // namespace strandview

#endif
