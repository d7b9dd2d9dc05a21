// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/keptPairs.h>

#include <algorithm>
#include <utility>

namespace strandview {

namespace {

const std::size_t LONGEST_SEARCH = 100; // frames

bool haveLetters(const std::vector<Nucleotide>& nucleotides, const std::string& letters)
{
    return std::equal(nucleotides.begin(), nucleotides.end(), letters.begin(), letters.end(),
                      [](const Nucleotide& one, char letter) { return one.base == letter; });
}

} // namespace

// ---- KeptPairs

bool KeptPairs::pair(std::vector<Nucleotide>& nucleotides, const std::function<void()>& find)
{
    areGiven = kept && haveLetters(nucleotides, kept->letters);
    areOther = kept && !areGiven;
    if (!areGiven) {
        find();
        areMissed = areMissed || !(kept || isKeeping);
        return !areOther;
    }
    for (const Helix& helix : kept->helices) {
        for (std::size_t k = 0; k < helix.strand1.size(); ++k) {
            nucleotides[helix.strand1[k]].partner = helix.strand2[k];
            nucleotides[helix.strand2[k]].partner = helix.strand1[k];
        }
    }
    return true;
}

std::vector<Helix> KeptPairs::findHelices(const std::vector<Nucleotide>& nucleotides)
{
    if (areGiven)
        return kept->helices;
    std::vector<Helix> helices = strandview::findHelices(nucleotides);
    if (isKeeping && !kept) {
        kept.emplace();
        for (const Nucleotide& one : nucleotides)
            kept->letters += one.base;
        kept->helices = helices;
    }
    return helices;
}

// ---- PairKeepingSeries

std::string toldPairedAlone(const std::string& fileName, std::size_t frame)
{
    return fileName + ": " + (frame > 0 ? "frame " + std::to_string(frame) + ": " : "") +
           "found other nucleotides than in the first frame: the pairs are those of this frame "
           "alone";
}

PairKeepingSeries::PairKeepingSeries(std::unique_ptr<Series> seriesToLoad,
                                     std::shared_ptr<KeptPairs> pairsOfIt)
    : SeriesAround(std::move(seriesToLoad)), pairs(std::move(pairsOfIt))
{}

LoadedFrame PairKeepingSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    if (pairs->areKnown())
        return series->load(frame, goOn);
    if (frame == 0)
        return loadKeeping(frame, goOn);
    // Only readers that find pairs ask for them: others need not load the first frame.
    if (!pairs->wereMissed()) {
        LoadedFrame loaded = series->load(frame, goOn);
        if (!pairs->wereMissed())
            return loaded;
    }
    if (!hasSearched)
        findPairs(goOn);
    return series->load(frame, goOn);
}

LoadedFrame PairKeepingSeries::loadKeeping(std::size_t frame, const GoOn& goOn)
{
    pairs->setKeeping(true);
    LoadedFrame loaded = series->load(frame, goOn);
    pairs->setKeeping(false);
    return loaded;
}

void PairKeepingSeries::findPairs(const GoOn& goOn)
{
    const std::size_t end = std::min(series->count(), LONGEST_SEARCH);
    for (std::size_t frame = 0; frame < end && !pairs->areKnown(); ++frame)
        loadKeeping(frame, goOn);
    hasSearched = !goOn || goOn(1); // else it was stopped
}

} // namespace strandview
