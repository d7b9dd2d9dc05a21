// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_COLOUREDPAIRS_H
#define STRANDVIEW_APP_SCENE_BUILDERS_COLOUREDPAIRS_H

#include <cstddef>
#include <optional>
#include <vector>

#include <strandview/model/Dna.h>

#include "request/Colour.h"
#include "request/Options.h"
#include "scene/Placement.h"

class SoDNA;
class SoPickedPoint;
class SoSeparator;

namespace strandview {

// The boxes and slabs of a DNA with a colour for each pair, which a SoDNA, whose pairs share what
// is placed, has by letter alone: a shape for all pair boxes, one for all that is shown of the
// bases of a strand.

/// Without a reference, and without pairs.
SoSeparator* makeColouredPairs();

/// Whether a look has anything that is coloured so.
bool hasColouredPairs(const DnaLook& look);

/// Shows pairs in these colours, one each, in ångström, as `pairs` shows them in this look: its
/// pair box tells how large boxes are.
void setColouredPairs(SoSeparator& coloured, const Dna& dna, const DnaLook& look,
                      const Placement& inAngstrom, const SoDNA& pairs,
                      const std::vector<Colour>& colours);

/// Shows the bases of strand 1 or 2, as they are at first, or not.
void showColouredBases(SoSeparator& coloured, int strand, bool shown);

/// Which pair is picked, and which strand of it, 1 or 2; 0 of its box.
struct PickedPair
{
    std::size_t pair;
    int strand;
};

/// Of a picked point of the shapes, whose path has `coloured` at the index, of so many pairs.
std::optional<PickedPair> pickedPair(const SoPickedPoint& picked, int index, std::size_t pairs);

} // namespace strandview

#endif
