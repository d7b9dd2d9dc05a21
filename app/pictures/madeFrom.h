// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_MADEFROM_H
#define STRANDVIEW_APP_PICTURES_MADEFROM_H

#include <string>

namespace strandview {

/// The text of an image that tells a digest of all that the picture was made from: of letters,
/// digits and hyphens.
constexpr const char* MADE_FROM = "strandview-made-from";

/// That text of a picture's file; empty of none, and of every file that is no PNG, JPEG, PDF or
/// SVG: other formats keep no texts. Of PDF and SVG it is found in those that writePdf() and
/// writeSvg() wrote.
std::string madeFrom(const std::string& file);

} // namespace strandview

#endif
