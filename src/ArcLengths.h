// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ARCLENGTHS_H
#define STRANDVIEW_ARCLENGTHS_H

#include <vector>

/// Arc lengths along the curve of a mesh, from its first point: one per point, and one per row.
struct ArcLengths
{
    std::vector<double> ofPoints;
    std::vector<double> ofRows;
};

#endif
