// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_THINGKIND_H
#define STRANDVIEW_APP_REQUEST_THINGKIND_H

#include <vector>

namespace strandview {

/// What a datum that is shown is; lone bases are one together.
enum class ThingKind { OTHER, ROD, BIROD, MARKER, ARROW, DNA, LONE_BASES, FRAME };

/// All of a thing, or which part of it.
enum class ThingPart { WHOLE, STRAND_1, STRAND_2, AVERAGE };

/// The parts that such a thing has, in the order in which they are listed; none of most.
const std::vector<ThingPart>& partsOf(ThingKind kind);

/// The part that a place or a line of strand 1 or 2 is of; strand 0 is a birod's average, and no
/// part of anything else.
ThingPart partOf(ThingKind kind, int strand);

/// "strand 1", "average"; nothing of the whole.
const char* nameOf(ThingPart part);

} // namespace strandview

#endif
