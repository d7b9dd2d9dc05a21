// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_DNANUMBERS_H
#define STRANDVIEW_ANALYSIS_DNANUMBERS_H

#include <optional>
#include <vector>

#include <strandview/analysis/stepParameters.h>
#include <strandview/analysisExport.h>
#include <strandview/model/Dna.h>

namespace strandview {

/// Sums over the steps of a double strand. Lengths are in the unit of its points, angles in
/// degrees.
struct DnaNumbers
{
    double length = 0;   ///< along the pairs' origins, around a closed one
    double endToEnd = 0; ///< from the first pair's origin to the last one's; 0 if closed
    std::optional<double> meanTwist; ///< of StepParameters; nothing without a step
    std::optional<double> totalTwist;
    std::optional<double> meanRise;
};

/// Where its pairs are, by the standard reference frame where there is one (Dna::standard), else by
/// its own frames. One for each letter of Dna::bases.
STRANDVIEW_ANALYSIS_EXPORT std::vector<PlacedFrame> pairFrames(const Dna& dna);

/// Those of the bases of each pair, in the sense of the pair, by the same frames.
STRANDVIEW_ANALYSIS_EXPORT std::vector<BaseFrames> baseFramesOf(const Dna& dna);

/// The parameters of its pairs, by the same frames: one for each.
STRANDVIEW_ANALYSIS_EXPORT std::vector<PairParameters> pairsOf(const Dna& dna);

/// Step i leads from pair i to the next one; that of the last pair of a closed Dna leads to the
/// first one. There are as many as pairs then, else one fewer. A closed Dna of one pair has none.
STRANDVIEW_ANALYSIS_EXPORT std::vector<StepParameters> stepsOf(const Dna& dna);

STRANDVIEW_ANALYSIS_EXPORT DnaNumbers numbersOf(const Dna& dna);

} // namespace strandview

#endif
