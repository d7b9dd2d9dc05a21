// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_KEPTPAIRS_H
#define STRANDVIEW_ANALYSIS_KEPTPAIRS_H

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <strandview/analysis/helices.h>
#include <strandview/analysisExport.h>
#include <strandview/model/SeriesAround.h>

namespace strandview {

/// Which nucleotides are pairs, and which pairs are helices, in all frames of a series: those of
/// one of them, so that what is shown stays the same things while pairs open and close. For one
/// thread at a time.
class STRANDVIEW_ANALYSIS_EXPORT KeptPairs
{
public:
    // ---- For who reads a frame

    /// Gives the nucleotides the partners that are kept. Where none are known, or where there are
    /// other nucleotides than in the frame that has them, by their number and letters, `find` gives
    /// some. False in the latter case.
    bool pair(std::vector<Nucleotide>& nucleotides, const std::function<void()>& find);

    /// Whether that was the case for those that pair() was called for last.
    bool areOthers() const { return areOther; }

    /// The helices of the nucleotides that pair() was called for last.
    std::vector<Helix> findHelices(const std::vector<Nucleotide>& nucleotides);

    // ---- For who has the series

    /// Whether what is found from now on is kept, the first of it.
    void setKeeping(bool keep) { isKeeping = keep; }
    bool areKnown() const { return kept.has_value(); }
    /// Whether pair() was ever called when none were known or kept.
    bool wereMissed() const { return areMissed; }

private:
    struct Kept
    {
        std::string letters; ///< of the nucleotides
        std::vector<Helix> helices;
    };

    std::optional<Kept> kept;
    bool isKeeping = false;
    bool areMissed = false;
    bool areGiven = false; ///< by the last pair()
    bool areOther = false; ///< the last nucleotides, than those whose pairs are kept
};

/// What is told of a frame for whose nucleotides no pairs are kept, "run.pdb: frame 3: found other
/// nucleotides ...". The number is that in its file, counted from 0; the first one has none, for a
/// file may be a frame.
STRANDVIEW_ANALYSIS_EXPORT std::string toldPairedAlone(const std::string& fileName,
                                                       std::size_t frame);

/// A series whose readers keep pairs: those of the first frame that can be loaded, of the first
/// hundred, whichever frame is loaded first.
class STRANDVIEW_ANALYSIS_EXPORT PairKeepingSeries : public SeriesAround
{
public:
    PairKeepingSeries(std::unique_ptr<Series> seriesToLoad, std::shared_ptr<KeptPairs> pairsOfIt);

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;
    LoadedFrame loadKeeping(std::size_t frame, const GoOn& goOn);
    void findPairs(const GoOn& goOn);

    const std::shared_ptr<KeptPairs> pairs;
    bool hasSearched = false; ///< for the first frame that can be loaded
};

} // namespace strandview

#endif
