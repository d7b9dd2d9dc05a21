// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_EXTENT_H
#define STRANDVIEW_MODEL_EXTENT_H

#include <cstddef>

#include <algebra3d/Vector3.h>

#include <strandview/model/Configuration.h>
#include <strandview/modelExport.h>

namespace strandview {

/// How much room a configuration takes, in the data's unit.
struct Extent
{
    algebra3d::Vector3<double> centre; ///< of the box around all points
    algebra3d::Vector3<double> sides;  ///< of that box
    double length = 0;                 ///< of all rods and strands together
    long long segments = 0;            ///< of all rods and strands together
    std::size_t points = 0;            ///< of everything
};

STRANDVIEW_MODEL_EXPORT Extent measure(const Configuration& configuration);

/// Of x, y and z, as 0, 1 and 2, the direction in which the box is shortest: most is seen
/// along it. Of those that are as short but for rounding it is z rather than x, and x rather
/// than y.
STRANDVIEW_MODEL_EXPORT int thinnestAxis(const Extent& extent);

} // namespace strandview

#endif
