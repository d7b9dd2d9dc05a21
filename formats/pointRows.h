// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_POINTROWS_H
#define STRANDVIEW_FORMATS_POINTROWS_H

#include <cstddef>
#include <string>

#include <algebra3d/Vector3.h>

#include <strandview/formats/text/fields.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// Takes x, y and z from the next three fields of the line; `column` is that of x, from 1.
/// "column 2 (x): found ..., expected ..." if there are none, else nothing.
STRANDVIEW_FORMATS_EXPORT std::string takePoint(FieldScanner& scanner, std::size_t column,
                                                algebra3d::Vector3<double>& point);

/// "run.xyz:7: ", of a text that begins in a line of its file.
STRANDVIEW_FORMATS_EXPORT std::string
placeOf(const std::string& fileName, const FieldScanner& scanner, std::size_t firstLine = 1);

} // namespace strandview

#endif
