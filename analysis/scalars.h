// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_SCALARS_H
#define STRANDVIEW_ANALYSIS_SCALARS_H

#include <optional>
#include <string>
#include <vector>

#include <strandview/analysisExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// The scalars that every rod has, computed from its points and frames, one value per
/// point. Ends take the value beside them.
///
/// arclength: along the polygon, from 0. curvature: of the circle through a point and
/// its neighbours. torsion: by how much the plane of that circle turns, per length,
/// positive for a right-handed curve; zero where the rod is straight but for rounding. twist: by
/// how much d1 and d2 turn about d3, per length, positive for a right-handed turn.
STRANDVIEW_ANALYSIS_EXPORT const std::vector<std::string>& builtInScalars();

/// A scalar of the rod by name: one of its file, else a built-in one, else nothing.
STRANDVIEW_ANALYSIS_EXPORT std::optional<std::vector<double>> findScalar(const Rod& rod,
                                                                         const std::string& name);

/// By how much the values of findScalar() may be off because points and frames are rounded, to
/// double precision or to the decimals that they were written with, one number per point: as the
/// formula carries the rounding on, and of curvature, torsion and twist a 1e-9th of 1 / length at
/// least. Infinite where a torsion is not determined; zero of arclength and of the scalars of
/// files.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOf(const Rod& rod, const std::string& name);

} // namespace strandview

#endif
