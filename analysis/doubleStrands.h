// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_DOUBLESTRANDS_H
#define STRANDVIEW_ANALYSIS_DOUBLESTRANDS_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <strandview/analysis/helices.h>
#include <strandview/analysisExport.h>
#include <strandview/model/Dna.h>
#include <strandview/model/LoneBase.h>

namespace strandview {

/// What nucleotides are shown as.
struct DoubleStrands
{
    std::vector<Dna> dnas;              ///< one for each helix
    std::vector<LoneBase> loneBases;    ///< the bases in no pair
    std::vector<std::size_t> molecules; ///< of each strand, for its backbone: findMolecules()
};

/// The names of strands, and where nucleotides come from, as messages say it.
struct NucleotideNames
{
    std::string file;                                     ///< "1xyz.pdb"
    std::size_t strands;                                  ///< how many there are
    std::function<std::string(std::size_t)> nameOf;       ///< "A", of a strand
    std::function<std::string(std::size_t)> placeOf = {}; ///< "chain A, residue 7", of a nucleotide
};

/// The frame of a nucleotide that numbers are made of, where it is not the one that is drawn.
struct StandardBase
{
    BaseFrame frame;
    double rms = 0; ///< of the atoms that gave it, in ångström
};

/// Double strands and bases of nucleotides whose partners and frames are known. A DNA is named by
/// the strands that it is of, "A-B", or "A-B,C" where there is a nick, three of a side at most.
/// Quaternions of pairs that follow one another are of one sign. Of frames for numbers there is one
/// for each nucleotide, or none.
STRANDVIEW_ANALYSIS_EXPORT DoubleStrands
makeDoubleStrands(const std::vector<Nucleotide>& nucleotides, const NucleotideNames& names,
                  const std::vector<StandardBase>& standard = {});
/// The same of helices that are known: each pair is in one of them.
STRANDVIEW_ANALYSIS_EXPORT DoubleStrands
makeDoubleStrands(const std::vector<Nucleotide>& nucleotides, const NucleotideNames& names,
                  const std::vector<StandardBase>& standard, std::vector<Helix> helices);

/// The letter that pairs with one of BASE_LETTERS; UNKNOWN_BASE for any other.
STRANDVIEW_ANALYSIS_EXPORT char complementOf(char base);

} // namespace strandview

#endif
