// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DATA_SAMPLES_H
#define STRANDVIEW_DATA_SAMPLES_H

#include <vector>

#include <strandview/analysis/helices.h>
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

/// An arm that uncurls, frame by frame. Its rotations are those of elements, one fewer than points.
std::vector<Rod> arm();
/// The alpha carbons of a helix that is pulled out, frame by frame, in Angstrom; without rotations.
std::vector<Rod> pulledHelix();
/// Fibres that grow, for each frame; without rotations.
std::vector<std::vector<Rod>> aster();

/// DNA in Angstrom, strand 1 in the direction of the rows.
Dna straightDna();
Dna bentDna();
/// Wound as that of a nucleosome, of unknown bases.
Dna superhelix();
/// Closed DNA without a first pair repeated; two rods, its backbones; and a birod.
Configuration minicircle();
/// Twelve pairs, of which strand 1 goes on by two bases in no pair; and a strand that pairs with
/// itself but for a loop. Without partners.
std::vector<Nucleotide> stickyEnd();
std::vector<Nucleotide> hairpin();

/// Markers, frames and arrows.
Configuration glyphs();

} // namespace strandview::samples

#endif
