// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_FITFRAME_H
#define STRANDVIEW_ANALYSIS_FITFRAME_H

#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

/// A frame in which known places come nearest to others.
struct FittedFrame
{
    algebra3d::Vector3<double> point;
    algebra3d::Quaternion<double> rotation; ///< unit
    double rms = 0;                         ///< of the distances that are left
};

/// The rotation and translation that take places, which are given in a frame, nearest to those
/// that were measured, by the sum of the squares of the distances (B. K. P. Horn, Closed-form
/// solution of absolute orientation using unit quaternions, J. Opt. Soc. Am. A 4, 1987, 629).
///
/// Both have one length, at least 1, and coordinates up to 1e18. Fewer than three, or those on a
/// line, leave a turn open: the smallest is taken. May be called from any thread.
STRANDVIEW_ANALYSIS_EXPORT FittedFrame
fitFrame(const std::vector<algebra3d::Vector3<double>>& places,
         const std::vector<algebra3d::Vector3<double>>& measured);

} // namespace strandview

#endif
