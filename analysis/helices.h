// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_HELICES_H
#define STRANDVIEW_ANALYSIS_HELICES_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <strandview/analysis/stepParameters.h>
#include <strandview/analysisExport.h>
#include <strandview/model/Dna.h>

namespace strandview {

// Which nucleotides are double strands.

constexpr std::size_t NO_NUCLEOTIDE = std::numeric_limits<std::size_t>::max();

/// Where a base is, as in a strand 1 (model/Dna.h), in ångström.
using BaseFrame = PlacedFrame;

/// A base on its strand, of 104 bytes. Others are named by their index in the sequence of all.
struct Nucleotide
{
    char base = UNKNOWN_BASE; ///< of BASE_LETTERS, or that
    std::uint32_t strand = 0; ///< counted from 0
    BaseFrame frame;          ///< that is drawn

    std::size_t previous = NO_NUCLEOTIDE; ///< towards the 5' end; its `next` is this one
    std::size_t next = NO_NUCLEOTIDE;     ///< towards the 3' end, or round a circle
    std::size_t partner = NO_NUCLEOTIDE;  ///< another one, whose partner is this one
};

/// Pairs in a row: strand1[k] and strand2[k] are one, and k goes from 5' to 3' in strand 1.
struct Helix
{
    std::vector<std::size_t> strand1;
    std::vector<std::size_t> strand2;
    bool isClosed = false; ///< the first pair follows the last one; of three pairs or more
};

/// The longest runs of pairs that follow one another in both strands, each pair in one of them. A
/// nick ends no run: where one strand goes on, and the other one has an end on either side, pairs
/// that are stacked follow one another. What strands end both has two helices.
///
/// Strand 1 is that whose 5' end in the helix has the lower index; a closed helix begins at its
/// lowest index, which is in strand 1. Helices are in the order of their lowest indices.
STRANDVIEW_ANALYSIS_EXPORT std::vector<Helix>
findHelices(const std::vector<Nucleotide>& nucleotides);

/// Of every strand the number of its molecule, from 1 on, in the order of the strands: strands
/// between which there are pairs are one molecule.
STRANDVIEW_ANALYSIS_EXPORT std::vector<std::size_t>
findMolecules(const std::vector<Nucleotide>& nucleotides, std::size_t strands);

/// The frame of a base of strand 2 in the sense of its pair (model/Dna.h), or back: half a turn
/// about its d1.
STRANDVIEW_ANALYSIS_EXPORT BaseFrame turnedOver(const BaseFrame& base);

/// The frame of a pair by those of its bases, each as in a strand 1: half-way between both, by the
/// scheme that step parameters have (stepParameters.h), at their mean origin.
STRANDVIEW_ANALYSIS_EXPORT BaseFrame pairFrame(const BaseFrame& base1, const BaseFrame& base2);

} // namespace strandview

#endif
