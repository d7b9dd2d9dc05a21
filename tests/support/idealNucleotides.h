// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_IDEALNUCLEOTIDES_H
#define STRANDVIEW_TESTS_IDEALNUCLEOTIDES_H

#include <cstddef>
#include <string>
#include <vector>

#include <algebra3d/rotations.h>

#include <strandview/analysis/doubleStrands.h>
#include <strandview/analysis/helices.h>

#include "support/IdealDna.h"

namespace strandview {

/// A straight duplex without partners, as IdealDna has it: strand 0 along +z with the letters'
/// bases, then strand 1 against it. Pair k is of nucleotides k and 2 n - 1 - k.
inline std::vector<Nucleotide> idealDuplex(const std::string& letters)
{
    const IdealDna ideal(letters);
    const std::size_t n = letters.size();
    std::vector<Nucleotide> all(2 * n);
    for (std::size_t k = 0; k < n; ++k) {
        Nucleotide &a = all[k], &b = all[2 * n - 1 - k];
        a.base = letters[k];
        b.base = complementOf(letters[k]);
        b.strand = 1;
        a.frame = {ideal.points[k], ideal.rotations[k]};
        b.frame = turnedOver(a.frame);
    }
    for (std::size_t i = 0; i < 2 * n; ++i) {
        if (i + 1 < 2 * n && i + 1 != n)
            all[i].next = i + 1;
        if (i > 0 && i != n)
            all[i].previous = i - 1;
    }
    return all;
}

/// Pairs k with 2 n - 1 - k, for all k.
inline std::vector<Nucleotide> paired(std::vector<Nucleotide> duplex)
{
    for (std::size_t i = 0; i < duplex.size(); ++i)
        duplex[i].partner = duplex.size() - 1 - i;
    return duplex;
}

/// Cuts a strand behind a nucleotide; what follows is a strand of that number.
inline void cutBehind(std::size_t i, std::uint32_t strand, std::vector<Nucleotide>& nucleotides)
{
    const std::size_t first = nucleotides[i].next;
    nucleotides[i].next = NO_NUCLEOTIDE;
    nucleotides[first].previous = NO_NUCLEOTIDE;
    for (std::size_t k = first; k != NO_NUCLEOTIDE; k = nucleotides[k].next)
        nucleotides[k].strand = strand;
}

/// All of it turned about the origin, then shifted.
inline void move(std::vector<Nucleotide>& nucleotides, const algebra3d::Quaternion<double>& turn,
                 const algebra3d::Vector3<double>& shift)
{
    for (Nucleotide& one : nucleotides) {
        one.frame.point = rotated(one.frame.point, turn) + shift;
        one.frame.rotation = turn * one.frame.rotation;
    }
}

} // namespace strandview

#endif
