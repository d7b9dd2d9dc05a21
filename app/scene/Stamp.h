// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_STAMP_H
#define STRANDVIEW_APP_SCENE_STAMP_H

#include <cstddef>
#include <optional>
#include <string>

#include "request/Colour.h"

class SoNode;

namespace strandview {

enum class StampPlace { UPPER_LEFT, LOWER_LEFT, LOWER_RIGHT };

/// "frame 12, t = 0.48", or "frame 12" where the time is not known.
std::string stampText(std::size_t frame, const std::optional<double>& time);

/// A line of text in a corner of a view whose width is so many times its
/// height, as large as a legend's letters and no wider than the view; black or white, as is read on
/// the background. Its reference count is zero.
SoNode* makeStamp(const std::string& text, const Colour& background, float textSize, float aspect,
                  StampPlace place = StampPlace::UPPER_LEFT);

} // namespace strandview

#endif
