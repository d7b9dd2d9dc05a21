// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_EXTENT_H
#define STRANDVIEW_APP_EXTENT_H

#include "CameraRequest.h"
#include "Configuration.h"

/// How much room a configuration takes, in the data's unit.
struct Extent
{
    algebra3d::Vector3<double> centre; ///< of the box around all points
    algebra3d::Vector3<double> sides;  ///< of that box
    double length = 0;                 ///< of all rods and strands together
    long long segments = 0;            ///< of all rods and strands together
};

Extent measure(const Configuration& configuration);

/// The side that most is seen from: one looks along the direction, of x, y and z, in which
/// the box is shortest. Of those that are as short but for rounding it is z rather than x,
/// and x rather than y.
Side thinnestSide(const Extent& extent);

#endif
