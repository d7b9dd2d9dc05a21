// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_BASEPAIRS_H
#define STRANDVIEW_ANALYSIS_BASEPAIRS_H

#include <vector>

#include <strandview/analysis/helices.h>
#include <strandview/analysisExport.h>

namespace strandview {

/// Whether two letters are a Watson-Crick pair, or one of them is not known.
STRANDVIEW_ANALYSIS_EXPORT bool areComplementary(char a, char b);

/// How far two bases are from a flat Watson-Crick pair, in ångström: the root of the mean square
/// of how far atoms at 3 Å from a frame's origin, in all directions, would have to go. 0 where the
/// frame of the one, turned over, is that of the other.
STRANDVIEW_ANALYSIS_EXPORT double distanceFromPair(const BaseFrame& a, const BaseFrame& b);

/// Gives the nucleotides their partners: the two of complementary letters that are nearest to a
/// flat pair with one another, below 3 Å, and less than 2 Å from being in one plane. Thermal
/// motion takes a pair 1 to 2 Å away; the next base on the strand is 3.3 Å from it at the least.
STRANDVIEW_ANALYSIS_EXPORT void pairBases(std::vector<Nucleotide>& nucleotides);

} // namespace strandview

#endif
