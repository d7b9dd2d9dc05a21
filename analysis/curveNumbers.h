// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_CURVENUMBERS_H
#define STRANDVIEW_ANALYSIS_CURVENUMBERS_H

#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysisExport.h>

namespace strandview {

// Numbers along a curve with frames, a value for each of its points. Lengths are in the unit of the
// points, angles in radians. What is a number of an edge, or of the element between two points, is
// brought to the points by the mean of the two that meet there, by their lengths: its integral by
// the trapezoidal rule is the sum over the edges. Ends take the value beside them, but where the
// curve is closed.
//
// Each has a second operation, which tells by how much its values may be off because points and
// frames are rounded, to double precision or to the decimals that they were written with, as the
// formula carries that on; infinite where a torsion is not determined. Plain functions for any
// thread.

/// What they are given; it copies nothing. At least two points, no two consecutive ones coincident
/// (model/points.h), and as many unit quaternions.
struct Line
{
    const std::vector<algebra3d::Vector3<double>>& points;
    const std::vector<algebra3d::Quaternion<double>>& rotations;
    bool isClosed; ///< then the last point is the first one again
};

/// By how much the difference of two of its points may be off because they are rounded.
STRANDVIEW_ANALYSIS_EXPORT double roundingOfEdges(const Line& line);
/// And that of two of its frames, in radians.
STRANDVIEW_ANALYSIS_EXPORT double roundingOfFrames(const Line& line);

/// Of one value for each edge or element the mean at each point, as said above.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> atPoints(const Line& line,
                                                        const std::vector<double>& ofEdges);

/// Along the polygon, from 0.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> arcLengths(const Line& line);

/// 1 / R of the circle through a point and its two neighbours. Zero of fewer than three points.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> curvatures(const Line& line);
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOfCurvatures(const Line& line);

/// By how much the plane of that circle turns about an edge, over its length, positive for a
/// right-handed curve; zero where the line is straight but for rounding.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> torsions(const Line& line);
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOfTorsions(const Line& line);

/// By how much d1 and d2 turn about d3 from one frame to the next, over the distance of their
/// points, positive for a right-handed turn: of the rotation between the two the part about d3, as
/// it is after the smallest rotation from the one d3 to the other was taken away.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> twistDensities(const Line& line);
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOfTwistDensities(const Line& line);

/// kappa1, kappa2 or kappa3 (strains.h), by its index 0, 1 or 2.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> strains(const Line& line, int component);
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOfStrains(const Line& line, int component);

/// Gauss's integral of an edge with all others (gaussIntegral.h), over its length: it integrates to
/// the writhe of a closed curve. Takes time with the square of the number of points: goOn is asked
/// as there, and where it stops it there are no values.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> writheDensities(const Line& line);
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> writheDensities(const Line& line, const GoOn& goOn);
/// Of a curve that does not come nearer to itself than its edges are long.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOfWritheDensities(const Line& line);

} // namespace strandview

#endif
