// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_DIRECTORS_H
#define STRANDVIEW_FORMATS_DIRECTORS_H

#include <array>
#include <optional>
#include <string>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// d1, d2 and d3 of a material frame, of which one may be missing: it follows from the
/// others.
using Directors = std::array<std::optional<algebra3d::Vector3<double>>, 3>;

/// Finds the rotation whose matrix has the directors, of finite components, as columns.
/// They must be right-handed, of norm 1, and the products of two of them 0,
/// within algebra3d::ROTATION_TOLERANCE; with options.normalise any length and any angle do that
/// leave them right-handed. What is left of the rules is made right: d3 keeps its direction, d2 is
/// made perpendicular to it (d1 where d2 is missing), and the third follows.
/// "found ..., expected ..." if they are no frame, else nothing.
STRANDVIEW_FORMATS_EXPORT std::string findRotation(const Directors& directors,
                                                   const ReadOptions& options,
                                                   algebra3d::Quaternion<double>& rotation);

} // namespace strandview

#endif
