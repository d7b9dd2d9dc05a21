// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_DESCRIBEPICTURE_H
#define STRANDVIEW_APP_PICTURES_DESCRIBEPICTURE_H

#include <optional>
#include <string>

namespace strandview {

/// What a picture's file tells of itself, some lines for people: size, resolution, program, camera
/// and the command that makes it. Nothing of a file that is no picture of a format that keeps such
/// texts, PNG and JPEG.
std::optional<std::string> describePicture(const std::string& file);

/// The same as one JSON object; null for what it does not tell.
std::optional<std::string> pictureToJson(const std::string& file);

} // namespace strandview

#endif
