// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_HELICALPARAMETERS_H
#define STRANDVIEW_ANALYSIS_HELICALPARAMETERS_H

#include <strandview/analysis/stepParameters.h>
#include <strandview/analysisExport.h>

namespace strandview {

/// A step of base pairs as a screw: the axis about which the one pair is turned and along which it
/// is shifted into the next one. Lengths are in the unit of the points, angles in degrees.
struct HelicalParameters
{
    double xDisplacement = 0; ///< from the axis to the pairs, along x of the frame half-way
    double yDisplacement = 0; ///< along y
    double rise = 0;          ///< along the axis
    double inclination = 0;   ///< of the pairs to the plane across the axis, about x
    double tip = 0;           ///< about y
    double twist = 0;         ///< about the axis, above -180 up to 180
};

/// By the scheme of X.-J. Lu, M. A. El Hassan, C. A. Hunter (Structure and conformation of helical
/// nucleic acids: analysis program, J. Mol. Biol. 273, 1997, 668): the axis is along
/// (x' - x) x (y' - y) of the two frames, in which their inclination and tip are the angle between
/// the axis and z, and its parts about x and y in the frame without them. The axis goes the way of
/// both z. Of frames that are turned alike, which have no axis, the twist is 0, and all is by the
/// first frame. May be called from any thread.
STRANDVIEW_ANALYSIS_EXPORT HelicalParameters helicalParameters(const PlacedFrame& pair,
                                                               const PlacedFrame& next);

} // namespace strandview

#endif
