// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef BIARC_TUBE_H
#define BIARC_TUBE_H

#include <vector>

#include <biarc/Vector3.h>

/// The points of a tube around a curve; empty until its user fills it.
/// For one thread at a time, whichever.
template <class Vector>
class BIARC_EXPORT Tube
{
public:
    std::vector<Vector> points;

    /// Drops the points and their memory.
    void clear_tube();
};

extern template class Tube<Vector3>;

#endif
