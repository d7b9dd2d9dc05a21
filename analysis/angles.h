// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_ANGLES_H
#define STRANDVIEW_ANALYSIS_ANGLES_H

#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

// Angles between points, in radians. Not-a-number where the points determine none. Plain functions
// for any thread.

/// From 0 to pi: between the ways from `b` to `a` and to `c`, which must have a length.
STRANDVIEW_ANALYSIS_EXPORT double angleAt(const algebra3d::Vector3<double>& a,
                                          const algebra3d::Vector3<double>& b,
                                          const algebra3d::Vector3<double>& c);

/// From -pi to pi, by which the plane of a, b, c is turned about the way from b to c to be that of
/// b, c, d: 0 where a and d are on one side (cis), and positive where, seen from b to c, the way
/// from b to a is turned clockwise to come over that from c to d (IUPAC-IUB Commission on
/// Biochemical Nomenclature, Biochemistry 9, 1970, 3471). Read backwards it is the same, a mirror
/// changes its sign. Three of the points that follow each other must not be on one line.
STRANDVIEW_ANALYSIS_EXPORT double dihedralAngleOf(const algebra3d::Vector3<double>& a,
                                                  const algebra3d::Vector3<double>& b,
                                                  const algebra3d::Vector3<double>& c,
                                                  const algebra3d::Vector3<double>& d);

} // namespace strandview

#endif
