// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_PICKEDPLACE_H
#define STRANDVIEW_APP_SCENE_PICKEDPLACE_H

#include <cstddef>
#include <optional>
#include <string>

#include <algebra3d/Vector3.h>

#include "request/ThingKind.h"
#include "scene/Told.h"

namespace strandview {

/// What was clicked: of which datum, and where along it. It goes on to mean a place when the data
/// there become others (scene/placeNumbers.h); its name and letters are those of the data that it
/// was told of last (DataScene::renewed).
struct PickedPlace
{
    ThingKind kind = ThingKind::OTHER;
    std::size_t datum = 0; ///< which of its kind, from 0; of lone bases which base
    int strand = 0;        ///< 1 or 2; 0 of a birod's average, and of a pair of DNA
    /// The point, the pair or the base, from 0; of a place between two points the first of them.
    /// Nothing of what has no rows, or if it is not known which.
    std::optional<std::size_t> row;
    double share = 0;          ///< of the way to the next point, from 0 to below 1
    bool isOnBackbone = false; ///< of DNA: where the phosphorus atom of the base would be

    std::string name;                 ///< by which it is told; empty of what is no datum
    algebra3d::Vector3<double> point; ///< of the surface, in the data's coordinates
    char base = 0;    ///< its letter, of a pair that of strand 1; 0 of what has none
    char partner = 0; ///< the other one of a pair; 0 of what has none
    /// Along the centreline that is shown, of a birod its average's, and the length of that.
    std::optional<double> arcLength, length;
};

/// Six digits, with a decimal point in every locale.
std::string readable(double value);
/// "0.1 2 3".
std::string readable(const algebra3d::Vector3<double>& vector);

/// "point 0.1 2 3, arc length 1.5 of 8" of "helix.txt:1: rod 1", in the data's coordinates; "pair
/// 12 AT, strand 2, point 0.1 2 3" of "dna.txt:1: DNA 1".
Told tell(const PickedPlace& place);

} // namespace strandview

#endif
