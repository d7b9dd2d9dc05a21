// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/doubleStrands.h>

#include <algorithm>
#include <utility>

#include <algebra3d/largePages.h>
#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Nucleotides = std::vector<Nucleotide>;
using Points = std::vector<algebra3d::Vector3<double>>;
using Rotations = std::vector<algebra3d::Quaternion<double>>;

void append(const BaseFrame& frame, Points& points, Rotations& rotations)
{
    points.push_back(frame.point);
    rotations.push_back(rotations.empty() ? frame.rotation
                                          : nearer(frame.rotation, rotations.back()));
}

/// Into a Dna or its StandardFrames, which call them alike.
template <typename Frames>
void appendPair(const BaseFrame& strand1, const BaseFrame& strand2, Frames& frames)
{
    BaseFrame turned = turnedOver(strand2);
    turned.rotation = nearer(turned.rotation, strand1.rotation);
    append(strand1, frames.points1, frames.rotations1);
    append(turned, frames.points2, frames.rotations2);
    BaseFrame pair = pairFrame(strand1, strand2);
    pair.rotation = nearer(pair.rotation, strand1.rotation);
    append(pair, frames.pairPoints, frames.pairRotations);
}

template <typename Frames>
void reserve(std::size_t pairs, Frames& frames)
{
    for (Points* points : {&frames.pairPoints, &frames.points1, &frames.points2})
        algebra3d::reserveMany(*points, pairs);
    for (Rotations* rotations : {&frames.pairRotations, &frames.rotations1, &frames.rotations2})
        algebra3d::reserveMany(*rotations, pairs);
}

constexpr std::size_t MOST_NAMES = 3;

/// The strands' names in the order in which they come, each once: "B,C", or "B,C,D,..." of more.
std::string namesOf(const std::vector<std::size_t>& side, const Nucleotides& nucleotides,
                    const NucleotideNames& names)
{
    std::vector<std::size_t> strands;
    for (const std::size_t i : side)
        if (strands.size() <= MOST_NAMES &&
            std::find(strands.begin(), strands.end(), nucleotides[i].strand) == strands.end())
            strands.push_back(nucleotides[i].strand);
    std::string text;
    for (std::size_t i = 0; i < strands.size(); ++i)
        text += (i > 0 ? "," : "") + (i < MOST_NAMES ? names.nameOf(strands[i]) : "...");
    return text;
}

Dna makeDna(const Helix& helix, const Nucleotides& nucleotides, const NucleotideNames& names,
            const std::vector<StandardBase>& standard)
{
    Dna dna;
    dna.name = namesOf(helix.strand1, nucleotides, names) + "-" +
               namesOf(helix.strand2, nucleotides, names);
    dna.origin = names.file + ": DNA " + dna.name;
    dna.isClosed = helix.isClosed;
    reserve(helix.strand1.size(), dna);
    if (!standard.empty())
        reserve(helix.strand1.size(), dna.standard.emplace());
    for (std::size_t k = 0; k < helix.strand1.size(); ++k) {
        const std::size_t i = helix.strand1[k], j = helix.strand2[k];
        const Nucleotide &a = nucleotides[i], &b = nucleotides[j];
        dna.bases += a.base == UNKNOWN_BASE ? complementOf(b.base) : a.base;
        appendPair(a.frame, b.frame, dna);
        if (!dna.standard)
            continue;
        appendPair(standard[i].frame, standard[j].frame, *dna.standard);
        dna.standard->rms = std::max({dna.standard->rms, standard[i].rms, standard[j].rms});
    }
    return dna;
}

} // namespace

char complementOf(char base)
{
    const std::size_t index = BASE_LETTERS.find(base);
    return index == std::string_view::npos ? UNKNOWN_BASE
                                           : BASE_LETTERS[BASE_LETTERS.size() - 1 - index];
}

DoubleStrands makeDoubleStrands(const Nucleotides& nucleotides, const NucleotideNames& names,
                                const std::vector<StandardBase>& standard)
{
    return makeDoubleStrands(nucleotides, names, standard, findHelices(nucleotides));
}

DoubleStrands makeDoubleStrands(const Nucleotides& nucleotides, const NucleotideNames& names,
                                const std::vector<StandardBase>& standard,
                                std::vector<Helix> helices)
{
    DoubleStrands all;
    all.molecules = findMolecules(nucleotides, names.strands);
    all.dnas.reserve(helices.size());
    for (Helix& some : helices) {
        const Helix helix = std::exchange(some, {}); // which takes no memory any more then
        all.dnas.push_back(makeDna(helix, nucleotides, names, standard));
        all.dnas.back().molecule = all.molecules[nucleotides[helix.strand1.front()].strand];
    }
    all.loneBases.reserve(
        std::size_t(std::count_if(nucleotides.begin(), nucleotides.end(),
                                  [](const auto& one) { return one.partner == NO_NUCLEOTIDE; })));
    for (std::size_t i = 0; i < nucleotides.size(); ++i) {
        const Nucleotide& one = nucleotides[i];
        if (one.partner != NO_NUCLEOTIDE)
            continue;
        const std::string place = names.placeOf ? ": " + names.placeOf(i) : "";
        all.loneBases.push_back({names.file + place, one.base, one.frame.point, one.frame.rotation,
                                 all.molecules[one.strand]});
    }
    return all;
}

} // namespace strandview
