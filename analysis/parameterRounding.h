// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_PARAMETERROUNDING_H
#define STRANDVIEW_ANALYSIS_PARAMETERROUNDING_H

#include <strandview/analysis/helicalParameters.h>
#include <strandview/analysis/stepParameters.h>
#include <strandview/analysisExport.h>

namespace strandview {

// By how much the parameters of steps and pairs may be off because frames are rounded, to double
// precision or to the decimals that they were written with, as the schemes carry that on to first
// order: lengths in the unit of the points, angles in degrees. Infinite where a screw's axis is not
// determined, so that it may be anywhere. Plain functions for any thread.

/// Of frames that are rounded alike.
struct FrameRounding
{
    double length = 0; ///< of the difference of two of their points
    double angle = 0;  ///< of that of two rotations, in radians
};

STRANDVIEW_ANALYSIS_EXPORT StepParameters roundingOfStep(const PlacedFrame& pair,
                                                         const PlacedFrame& next,
                                                         const FrameRounding& rounding);

STRANDVIEW_ANALYSIS_EXPORT PairParameters roundingOfPair(const PlacedFrame& base1,
                                                         const PlacedFrame& base2,
                                                         const FrameRounding& rounding);

/// Frames that helicalParameters() takes as turned alike have the axis that it says.
STRANDVIEW_ANALYSIS_EXPORT HelicalParameters roundingOfScrew(const PlacedFrame& pair,
                                                             const PlacedFrame& next,
                                                             const FrameRounding& rounding);

} // namespace strandview

#endif
