// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_WRITESVG_H
#define STRANDVIEW_APP_PICTURES_WRITESVG_H

#include <functional>
#include <string_view>

class QImage;

namespace strandview {

/// Hands an image to `write`, in parts, as SVG in millimetres, which its resolution tells, in
/// whole pixels to the inch. The picture in it is the PNG of writePng(); the texts "Title" and
/// "Command" are title and description, MADE_FROM the metadata of that name. Of equal images the
/// bytes are equal. Throws std::bad_alloc.
void writeSvg(const QImage& image, const std::function<void(std::string_view)>& write);

} // namespace strandview

#endif
