// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_MODEL_DNA_H
#define STRANDVIEW_MODEL_DNA_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/model/Scalar.h>

namespace strandview {

/// Those of a strand's bases.
constexpr std::string_view BASE_LETTERS = "ACGT";
/// For a base of which the letter is not known.
constexpr char UNKNOWN_BASE = 'N';

/// Frames of a double strand's pairs and bases by the standard reference frame of bases (Olson et
/// al., J. Mol. Biol. 313, 2001, 229): those that published numbers are made of. In the senses of
/// Dna, so that a flat pair has one frame.
struct StandardFrames
{
    std::vector<algebra3d::Vector3<double>> pairPoints;
    std::vector<algebra3d::Quaternion<double>> pairRotations;
    std::vector<algebra3d::Vector3<double>> points1;
    std::vector<algebra3d::Quaternion<double>> rotations1;
    std::vector<algebra3d::Vector3<double>> points2;
    std::vector<algebra3d::Quaternion<double>> rotations2;
    double rms = 0; ///< of the base whose atoms fit worst, in ångström
};

/// A double strand: seven sequences of one length, at least 1. A strand's frames are
/// those of its bases; a base lies along d2 in strand 1 and along -d2 in strand 2, so
/// in a flat pair all three frames are one.
struct Dna
{
    std::string origin; ///< "dna.txt:2: DNA 1", "dna.json: dna[0]"
    std::string
        bases; ///< of strand 1, of BASE_LETTERS or UNKNOWN_BASE; strand 2 has the complements
    std::vector<algebra3d::Vector3<double>> pairPoints;
    std::vector<algebra3d::Quaternion<double>> pairRotations;
    std::vector<algebra3d::Vector3<double>> points1;
    std::vector<algebra3d::Quaternion<double>> rotations1;
    std::vector<algebra3d::Vector3<double>> points2;
    std::vector<algebra3d::Quaternion<double>> rotations2;

    std::string name = {};    ///< that the file gives it; may be empty
    bool isClosed = false;    ///< then the first pair follows the last one, which is another
    std::size_t molecule = 0; ///< as that of a Rod
    /// Where the frames above are made for atoms of the library to lie on those of a structure;
    /// otherwise those are the ones for numbers, too.
    std::optional<StandardFrames> standard = {};
    std::vector<Scalar> scalars = {}; ///< a value per pair each; no file has any
};

} // namespace strandview

#endif
