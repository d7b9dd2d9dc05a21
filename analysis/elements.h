// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_ELEMENTS_H
#define STRANDVIEW_ANALYSIS_ELEMENTS_H

#include <vector>

#include <algebra3d/Quaternion.h>

#include <strandview/analysisExport.h>

namespace strandview {

// What belongs to the elements of a discrete rod, each between two points, made to belong
// to the points. There is at least one element, and one point more than elements. In a
// closed rod the first point is the last one again.

/// Inside the mean of the two elements at a point, at an end the element's own value;
/// where a closed rod's ends meet the mean of the last and the first.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> valuesAtPoints(const std::vector<double>& elements,
                                                              bool isClosed);

/// Inside the rotation half-way between the two elements at a point, and so where a
/// closed rod's ends meet. At an end the frame turns on from the element's by half of
/// what it turns between the end's element and the next, so that even bending and twist
/// stay even up to the end; a single element gives its own to both. Quaternions
/// that are rotations (algebra3d::isRotation()).
STRANDVIEW_ANALYSIS_EXPORT std::vector<algebra3d::Quaternion<double>>
rotationsAtPoints(const std::vector<algebra3d::Quaternion<double>>& elements, bool isClosed);

} // namespace strandview

#endif
