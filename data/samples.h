// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DATA_SAMPLES_H
#define STRANDVIEW_DATA_SAMPLES_H

#include <vector>

#include "Configuration.h"

/// The sample configurations: one function per curve, without arguments, the same
/// result at every call. Points lie at equal arc lengths; every rotation has the
/// unit tangent as d3 and is of the sign nearest to the one before. A closed rod
/// repeats its first point as its last, and the frame there is the same.
namespace samples {

Rod helix();
Rod elastica();
Rod trefoil();
Rod supercoil();
Rod randomRod();
std::vector<Rod> borromeanRings();

} // namespace samples

#endif
