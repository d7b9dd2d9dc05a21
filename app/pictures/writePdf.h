// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PICTURES_WRITEPDF_H
#define STRANDVIEW_APP_PICTURES_WRITEPDF_H

#include <functional>
#include <string>
#include <string_view>

class QImage;

namespace strandview {

/// Hands an image to `write`, in parts, as a PDF of one page, which it fills and whose size its
/// resolution tells, in whole pixels to the inch: every pixel as it is, of eight bits a channel,
/// and transparent where the image is. The texts "Title", "Software" and "Command" are the page's
/// title, creator and subject; MADE_FROM is kept, too. Of equal images the bytes are equal: there
/// is no date. Throws std::bad_alloc.
void writePdf(const QImage& image, const std::function<void(std::string_view)>& write);

/// Of the document that writePdf() wrote, the text that it keeps by this name, such as MADE_FROM;
/// empty if there is none.
std::string textOfPdf(std::string_view document, const std::string& name);

} // namespace strandview

#endif
