// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_DNA_H
#define STRANDVIEW_MODEL_DNA_H

#include <string>
#include <string_view>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

namespace strandview {

/// Those of a strand's bases.
constexpr std::string_view BASE_LETTERS = "ACGT";

/// A double strand: seven sequences of one length, at least 1. A strand's frames are
/// those of its bases; a base lies along d2 in strand 1 and along -d2 in strand 2, so
/// in a flat pair all three frames are one.
struct Dna
{
    std::string origin; ///< "dna.txt:2: DNA 1", "dna.json: dna[0]"
    std::string bases;  ///< of strand 1, of BASE_LETTERS
    std::vector<algebra3d::Vector3<double>> pairPoints;
    std::vector<algebra3d::Quaternion<double>> pairRotations;
    std::vector<algebra3d::Vector3<double>> points1;
    std::vector<algebra3d::Quaternion<double>> rotations1;
    std::vector<algebra3d::Vector3<double>> points2;
    std::vector<algebra3d::Quaternion<double>> rotations2;
};

} // namespace strandview

#endif
