// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/helices.h>

#include <algorithm>
#include <numeric>
#include <utility>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Nucleotides = std::vector<Nucleotide>;

// Pairs on either side of a nick are stacked as others are: 3.4 Å apart, with a turn. The bounds
// leave room for the slides and bends of molecules that move.
constexpr double SMALLEST_RISE = 1.5;
constexpr double LARGEST_RISE = 5.5;
constexpr double LARGEST_DISTANCE = 7;
constexpr double SMALLEST_COSINE = 0.5; // of the angle between their normals
constexpr std::size_t SMALLEST_CIRCLE = 3;

/// Steps from pair to pair. A pair is named by one of its nucleotides, whose strand the steps
/// follow: towards its 3' end ahead, and back by behind().
class PairSteps
{
public:
    explicit PairSteps(const Nucleotides& nucleotides) : all(nucleotides) {}

    std::size_t partner(std::size_t i) const { return all[i].partner; }

    std::size_t ahead(std::size_t i) const
    {
        const std::size_t j = partner(i), onward = all[i].next, opposite = all[j].previous;
        if (onward == j || opposite == i) // the end of a hairpin
            return NO_NUCLEOTIDE;
        const bool goesOn = onward != NO_NUCLEOTIDE, comesFrom = opposite != NO_NUCLEOTIDE;
        if (goesOn && comesFrom)
            return partner(onward) == opposite ? onward : NO_NUCLEOTIDE;
        const std::size_t next = goesOn ? onward : comesFrom ? partner(opposite) : NO_NUCLEOTIDE;
        if (next == NO_NUCLEOTIDE || partner(next) == NO_NUCLEOTIDE)
            return NO_NUCLEOTIDE;
        const bool isNick =
            goesOn ? all[partner(next)].next == NO_NUCLEOTIDE : all[next].previous == NO_NUCLEOTIDE;
        return isNick && areStacked(i, next) ? next : NO_NUCLEOTIDE;
    }

    std::size_t behind(std::size_t i) const
    {
        const std::size_t back = ahead(partner(i));
        return back == NO_NUCLEOTIDE ? back : partner(back);
    }

private:
    BaseFrame frameOf(std::size_t i) const
    {
        return pairFrame(all[i].frame, all[partner(i)].frame);
    }

    bool areStacked(std::size_t i, std::size_t next) const
    {
        // The same answer from both strands, to the last bit.
        if (partner(next) < i) {
            std::swap(i, next);
            i = partner(i);
            next = partner(next);
        }
        const BaseFrame a = frameOf(i), b = frameOf(next);
        const algebra3d::Vector3<double> axis(0, 0, 1);
        const auto normalA = rotated(axis, a.rotation), normalB = rotated(axis, b.rotation);
        const auto step = b.point - a.point;
        const double rise = step.dot((normalA + normalB).getUnit());
        return normalA.dot(normalB) > SMALLEST_COSINE && rise > SMALLEST_RISE &&
               rise < LARGEST_RISE && step.getNorm() < LARGEST_DISTANCE;
    }

    const Nucleotides& all;
};

/// The helix of a pair whose nucleotide has the lowest index of it.
Helix helixOf(std::size_t lowest, const PairSteps& steps)
{
    std::size_t start = lowest;
    for (std::size_t back = steps.behind(start); back != NO_NUCLEOTIDE;
         back = steps.behind(start)) {
        start = back;
        if (start == lowest)
            break;
    }
    Helix helix;
    std::size_t i = start;
    do {
        helix.strand1.push_back(i);
        helix.strand2.push_back(steps.partner(i));
        i = steps.ahead(i);
    } while (i != NO_NUCLEOTIDE && i != start);
    helix.isClosed = i == start && helix.strand1.size() >= SMALLEST_CIRCLE;
    if (!helix.isClosed && helix.strand2.back() < helix.strand1.front()) {
        std::swap(helix.strand1, helix.strand2);
        std::reverse(helix.strand1.begin(), helix.strand1.end());
        std::reverse(helix.strand2.begin(), helix.strand2.end());
    }
    return helix;
}

std::size_t rootOf(std::vector<std::size_t>& parents, std::size_t i)
{
    while (parents[i] != i)
        i = parents[i] = parents[parents[i]];
    return i;
}

} // namespace

std::vector<Helix> findHelices(const Nucleotides& nucleotides)
{
    const PairSteps steps(nucleotides);
    std::vector<Helix> helices;
    std::vector<bool> isTaken(nucleotides.size());
    for (std::size_t i = 0; i < nucleotides.size(); ++i) {
        if (nucleotides[i].partner == NO_NUCLEOTIDE || isTaken[i])
            continue;
        helices.push_back(helixOf(i, steps));
        for (const auto& strand : {&helices.back().strand1, &helices.back().strand2})
            for (const std::size_t taken : *strand)
                isTaken[taken] = true;
    }
    return helices;
}

std::vector<std::size_t> findMolecules(const Nucleotides& nucleotides, std::size_t strands)
{
    std::vector<std::size_t> parents(strands);
    std::iota(parents.begin(), parents.end(), std::size_t(0));
    for (const Nucleotide& nucleotide : nucleotides) {
        if (nucleotide.partner == NO_NUCLEOTIDE)
            continue;
        const std::size_t a = rootOf(parents, nucleotide.strand);
        const std::size_t b = rootOf(parents, nucleotides[nucleotide.partner].strand);
        parents[std::max(a, b)] = std::min(a, b);
    }
    std::vector<std::size_t> molecules(strands);
    std::size_t count = 0;
    for (std::size_t strand = 0; strand < strands; ++strand) {
        const std::size_t root = rootOf(parents, strand); // the lowest strand of the molecule
        molecules[strand] = root == strand ? ++count : molecules[root];
    }
    return molecules;
}

BaseFrame turnedOver(const BaseFrame& base)
{
    return {base.point, base.rotation * algebra3d::Quaternion<double>(1, 0, 0, 0)};
}

BaseFrame pairFrame(const BaseFrame& base1, const BaseFrame& base2)
{
    return midFrame(turnedOver(base2), base1);
}

} // namespace strandview
