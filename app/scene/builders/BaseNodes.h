// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_BUILDERS_BASENODES_H
#define STRANDVIEW_APP_SCENE_BUILDERS_BASENODES_H

#include <cstddef>
#include <optional>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include "request/Colour.h"
#include "request/Options.h"
#include "scene/Placement.h"

class SoNucleobase;
class SoPickedPoint;
class SoSeparator;

namespace strandview {

/// The colour of a base: of A, C, G and T told apart with every kind of colour vision, grey of
/// any other letter.
Colour baseColour(char letter);

/// A base's atoms and box, as far as they are shown in this look; of a letter that is not known a
/// grey box without atoms. Upright in strand 1.
SoNucleobase* makeNucleobase(char letter, const DnaLook& look, bool isUpright);

/// One base and its frame, in the data's coordinates.
struct PlacedBase
{
    char letter;
    algebra3d::Vector3<double> point;
    algebra3d::Quaternion<double> rotation;
    bool isInStrand2; ///< and lies along -d2 of its frame
};

// Thin slabs in the colours of bases, from the backbone to the middle of the pair, all of them in
// one shape. Their edge is dark on the side of the minor groove.

/// Slabs of nothing, without a reference.
SoSeparator* makeSlabs();
/// Lets them show such bases, in the same nodes. An ångström has the length `angstrom` in the
/// data's unit.
void setSlabs(SoSeparator& slabs, const std::vector<PlacedBase>& bases, const Placement& placement,
              double angstrom);
/// The index of the base of which a point was picked on slabs; nothing of other points.
std::optional<std::size_t> pickedSlab(const SoPickedPoint& picked);

} // namespace strandview

#endif
