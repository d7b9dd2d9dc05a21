// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BASENODES_H
#define STRANDVIEW_APP_SCENE_BASENODES_H

#include "request/Colour.h"
#include "request/Options.h"

class SoNucleobase;
class SoSeparator;

namespace strandview {

// What bases are drawn as: in ångström, in the base's own frame, upright in strand 1.

/// The colour of a base: of A, C, G and T told apart with every kind of colour vision, grey of
/// any other letter.
Colour baseColour(char letter);

/// A thin slab in the colour of a base, from the backbone to the middle of the pair. Its edge is
/// dark on the side of the minor groove. Without a reference.
SoSeparator* makeSlab(char letter, bool isUpright);

/// The children of a base before its slab: atoms and box.
const int SLAB_OF_BASE = 2;

/// A base's atoms, box and slab, as far as they are shown in this look; of a letter that is not
/// known without atoms. Without a reference.
SoNucleobase* makeNucleobase(char letter, const DnaLook& look, bool isUpright);
/// Lets one of a letter show what it would in another look.
void showBase(SoNucleobase& base, char letter, bool isUpright, const DnaLook& look);

/// Of a look the atoms, if they are shown.
DnaLook atomsAlone(const DnaLook& look);

} // namespace strandview

#endif
