// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_IDEALDNA_H
#define STRANDVIEW_TESTS_IDEALDNA_H

#include <cmath>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

/// The frames of a straight, right-handed B-DNA along +z with the pair's origin on the axis:
/// a rise of 3.4 ångström and a turn of 36 degrees per pair (S. Arnott, D. W. L. Hukins,
/// Optimised parameters for A-DNA and B-DNA, Biochem. Biophys. Res. Comm. 47, 1972). The
/// three frames of a pair coincide, as they do in the standard pair geometry.
struct IdealDna
{
    explicit IdealDna(const std::string& letters, double rise = 3.4, double turn = M_PI / 5)
        : sequence(letters)
    {
        points.reserve(letters.size());
        rotations.reserve(letters.size());
        for (std::size_t i = 0; i < letters.size(); ++i) {
            points.emplace_back(0, 0, rise * double(i));
            const double half = turn * double(i) / 2;
            rotations.emplace_back(0, 0, std::sin(half), std::cos(half));
        }
    }

    /// Hands the frames to a SoDNA and returns what it says about them.
    template <typename Dna>
    bool give(Dna& dna) const
    {
        return dna.setData(sequence, points, rotations, points, rotations, points, rotations);
    }

    std::string sequence;
    std::vector<algebra3d::Vector3<double>> points;
    std::vector<algebra3d::Quaternion<double>> rotations;
};

/// The letters A, T, G, C in a fixed irregular order.
inline std::string irregularSequence(std::size_t size)
{
    std::string letters;
    unsigned value = 1;
    for (std::size_t i = 0; i < size; ++i) {
        value = value * 1664525u + 1013904223u;
        letters += "ATGC"[value >> 30];
    }
    return letters;
}

#endif
