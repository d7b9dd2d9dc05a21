// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_STEPPARAMETERS_H
#define STRANDVIEW_ANALYSIS_STEPPARAMETERS_H

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

// The parameters of base-pair steps and of base pairs by the scheme of M. A. El Hassan and
// C. R. Calladine (The assessment of the geometry of dinucleotide steps in double-helical DNA; a
// new local calculation scheme, J. Mol. Biol. 251, 1995, 648), under the names of the Cambridge
// convention (R. E. Dickerson et al., EMBO J. 8, 1989, 1). The axes x, y, z are the d1, d2, d3 of
// a frame; the bend between two frames turns z to z about the hinge across both, and the rest is
// the twist about z. Published numbers are those of the standard reference frame
// (model/Dna.h: StandardFrames).
//
// Plain functions for any thread. Rotations are unit quaternions; a multiple gives the same.

/// Where a base or a base pair is, and how it is turned.
struct PlacedFrame
{
    algebra3d::Vector3<double> point;
    algebra3d::Quaternion<double> rotation;
};

/// From a pair to the next one of strand 1, in the frame half-way: lengths in the unit of the
/// points, angles in degrees. Read from the other strand, as which a pair's frame is turned half
/// about x, shift and tilt change their signs.
struct StepParameters
{
    double shift = 0; ///< along x, to the major groove
    double slide = 0; ///< along y, to strand 1
    double rise = 0;  ///< along z
    double tilt = 0;  ///< about x
    double roll = 0;  ///< about y
    double twist = 0; ///< about z, above -180 up to 180
};

/// From the base of strand 2 to that of strand 1, both in the sense of the pair (model/Dna.h), as
/// those of a step. Read from the other strand, shear and buckle change their signs.
struct PairParameters
{
    double shear = 0;     ///< along x
    double stretch = 0;   ///< along y
    double stagger = 0;   ///< along z
    double buckle = 0;    ///< about x
    double propeller = 0; ///< about y
    double opening = 0;   ///< about z
};

/// The frames of a pair's bases, both in the sense of the pair.
struct BaseFrames
{
    PlacedFrame base1;
    PlacedFrame base2;
};

/// Where the z axes are opposite, tilt and roll are one half turn of some direction.
STRANDVIEW_ANALYSIS_EXPORT StepParameters stepParameters(const PlacedFrame& pair,
                                                         const PlacedFrame& next);

/// The frame half-way, in which the parameters of a step are measured: of two bases (the second
/// strand's first) it is that of their pair.
STRANDVIEW_ANALYSIS_EXPORT PlacedFrame midFrame(const PlacedFrame& pair, const PlacedFrame& next);

/// The other way: half of the bend comes before the frame half-way, and half of it behind. A
/// bend (the root of the squares of tilt and roll) and a twist below 180 come back from
/// stepParameters(). The rotation is a unit quaternion if that of the pair is.
STRANDVIEW_ANALYSIS_EXPORT PlacedFrame nextPair(const PlacedFrame& pair,
                                                const StepParameters& step);

STRANDVIEW_ANALYSIS_EXPORT PairParameters pairParameters(const PlacedFrame& base1,
                                                         const PlacedFrame& base2);

/// The other way, around the frame half-way.
STRANDVIEW_ANALYSIS_EXPORT BaseFrames baseFrames(const PlacedFrame& pair,
                                                 const PairParameters& parameters);

} // namespace strandview

#endif
