// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DATA_SAMPLES_H
#define STRANDVIEW_DATA_SAMPLES_H

#include <vector>

#include <strandview/model/Configuration.h>

/// The sample configurations: one function each, without arguments, the same result at
/// every call. A rotation is of the sign nearest to the one before.
///
/// Points of rods lie at equal arc lengths, but for those along DNA, which has one per
/// pair; every rotation has the unit tangent as d3. A closed rod repeats its first point
/// as its last, and the frame there is the same.
namespace strandview::samples {

Rod helix();
Rod elastica();
Rod trefoil();
Rod supercoil();
Rod randomRod();
std::vector<Rod> borromeanRings();

/// DNA in Angstrom, strand 1 in the direction of the rows.
Dna straightDna();
Dna bentDna();
/// Closed DNA without a first pair repeated; two rods, its backbones; and a birod.
Configuration minicircle();

/// Markers, frames and arrows.
Configuration glyphs();

} // namespace strandview::samples

#endif
