// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_SCALARS_H
#define STRANDVIEW_ANALYSIS_SCALARS_H

#include <optional>
#include <string>
#include <vector>

#include <strandview/analysis/gaussIntegral.h>
#include <strandview/analysis/tracks.h>
#include <strandview/analysisExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// What a scalar has a value for.
enum class ScalarPlace {
    POINT, ///< of any line
    PAIR,  ///< of a DNA
    STEP   ///< from a pair to the next one, with the first of them
};

/// A number that is computed for each place of a line: what it is called and what it means.
struct Quantity
{
    std::string name;  ///< "kappa1", "roll"
    ScalarPlace place; ///< of what
    std::string unit; ///< "°", "Å", or by the unit of the points "length", "1/length"; may be empty
    bool isSigned;    ///< either sign is found, and 0 is a middle
    std::string meaning; ///< a line for people
    bool isCheap = true; ///< time grows with the number of points, not with its square
};

/// All that are computed, in the order in which they are told. Names are unique but for "twist",
/// which is a density along a rod and the angle of a step of DNA.
STRANDVIEW_ANALYSIS_EXPORT const std::vector<Quantity>& quantities();

/// That of a name for a line of this kind, or null.
STRANDVIEW_ANALYSIS_EXPORT const Quantity* findQuantity(Track::Kind kind, const std::string& name);

/// The scalars that the data bring with a line, of a file or a comparison: those of a rod, of the
/// average of a birod, of the pairs of a DNA.
STRANDVIEW_ANALYSIS_EXPORT const std::vector<Scalar>& givenScalars(const Track& track);

/// Whether one of them has that name: then it is meant, not a computed one of the same name.
STRANDVIEW_ANALYSIS_EXPORT bool isGiven(const Track& track, const std::string& name);

/// Whether it is computed in time that grows with the square of the number of points.
STRANDVIEW_ANALYSIS_EXPORT bool isSlow(const Track& track, const std::string& name);

/// How many pairs of edges (edgePairsOf()) the slow scalars of lines go through, all together.
STRANDVIEW_ANALYSIS_EXPORT double edgePairsOfScalars(const std::vector<Track>& tracks);

/// The names of all scalars of a line: those of its file first, then those computed.
STRANDVIEW_ANALYSIS_EXPORT std::vector<std::string> scalarNames(const Track& track);

/// The unit of a scalar of a line, as quantities() have it; of one that the data bring only that of
/// a comparison is known: "length" of reference_distance, "°" of reference_rotation. May be empty.
STRANDVIEW_ANALYSIS_EXPORT std::string unitOf(const Track& track, const std::string& name);

/// A scalar of a line by name: one of its file, else a computed one, else nothing. A value for each
/// of its rows; what is not there is not-a-number: the step behind the last pair of an open DNA.
///
/// Along curves, values of edges and elements are brought to the points by the mean of the two that
/// meet there, by their lengths; ends take the one beside them, but where a curve is closed. So the
/// integral by the trapezoidal rule over arclength is the sum over the edges. What formulas are is
/// in curveNumbers.h, stepParameters.h, helicalParameters.h. Any thread. What is slow asks goOn
/// now and then, and is nothing once that says no.
STRANDVIEW_ANALYSIS_EXPORT std::optional<std::vector<double>>
findScalar(const Track& track, const std::string& name, const GoOn& goOn = {});
STRANDVIEW_ANALYSIS_EXPORT std::optional<std::vector<double>> findScalar(const Rod& rod,
                                                                         const std::string& name);

/// Along the polygon, from 0, at each row, whatever the data call arclength.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> arcLengthsOf(const Track& track);

/// By how much the values of findScalar() may be off because points and frames are rounded, to
/// double precision or to the decimals that they were written with, one number per row: as the
/// formula carries the rounding on (curveNumbers.h, parameterRounding.h), and at least a 1e-9th of
/// 1 / length, or of a degree or ångström; of comparisons (comparison.h) a 1e-9th of the length, of
/// a degree or of 1. Infinite where a torsion, or the axis of a screw, is not determined; zero of
/// arclength and of other scalars of files.
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOf(const Track& track,
                                                          const std::string& name);
STRANDVIEW_ANALYSIS_EXPORT std::vector<double> roundingOf(const Rod& rod, const std::string& name);

/// The names of those that every rod has: of quantities().
STRANDVIEW_ANALYSIS_EXPORT const std::vector<std::string>& builtInScalars();

} // namespace strandview

#endif
