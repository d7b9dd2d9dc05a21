// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_COLOUREDPAIRS_H
#define STRANDVIEW_APP_SCENE_BUILDERS_COLOUREDPAIRS_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "request/Colour.h"
#include "request/Options.h"
#include "scene/SoPlacedSolids.h"

class SoDNA;
class SoNode;
class SoPickedPoint;
class SoSeparator;

namespace strandview {

// The boxes and slabs of a DNA with a colour for each pair, which a SoDNA, whose pairs share what
// is placed, has by letter alone: a shape for all pair boxes, one for all that is shown of the
// bases of a strand, 1 or 2; 0 is for the boxes. What is seen through is shown so, too: of shapes
// as many as there are pairs each would be drawn by itself.

/// Of a pair's box, or its base of a strand.
using ColourOfPair = std::function<Colour(std::size_t pair, int strand)>;

/// All three, without pairs. Without a reference.
SoSeparator* makeColouredPairs();
/// One of them, as setColouredPairs() shows it. Without a reference.
SoNode* makePlacedPairs(int strand, const std::string& bases, const DnaLook& look,
                        const SoDNA& pairs, const ColourOfPair& colourOf);

/// Such a shape of bases anywhere, with these letters, upright; which solid is at a place is left
/// open. Without a reference.
SoNode* makePlacedBases(std::vector<SoPlacedSolids::Place> places, const std::string& letters,
                        const DnaLook& look);

/// Whether a look has anything that is coloured so.
bool hasColouredPairs(const DnaLook& look);

/// Shows these pairs, where they are and as large as their boxes are, in this look, with these
/// letters in strand 1.
void setColouredPairs(SoSeparator& coloured, const std::string& bases, const DnaLook& look,
                      const SoDNA& pairs, const ColourOfPair& colourOf);

/// Shows one of the three, as they are at first, or not.
void showColouredPairs(SoSeparator& coloured, int strand, bool shown);

/// That shape, which something else may show, too.
SoNode* colouredShape(const SoSeparator& coloured, int strand);

/// Of a picked point of such a shape; nothing of any other.
std::optional<std::size_t> pickedPair(const SoPickedPoint& picked);

} // namespace strandview

#endif
