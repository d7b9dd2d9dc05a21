// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_IDEALBASES_H
#define STRANDVIEW_IDEALBASES_H

#include <StrandviewExport.h>

/// The ideal geometry of the four nucleobases: planar atom models, each in its base's own
/// reference frame. Lengths are in ångström, the plane is z = 0 to within a few thousandths.
///
/// Every table is indexed by the base, 0 to 3 for A, T, G, C, and then by the atom. Atom 0 is
/// the sugar carbon C1', where the backbone is attached; it is never drawn and never counts
/// towards extents. Cells beyond a base's count are zero.
///
/// The frames are those of a pair: base and complement, the one turned by half a turn about
/// its x axis in the same frame, face each other at hydrogen-bonding distance.
/// Constants, for any thread.
namespace idealbases {

const int MAX_ATOMS = 12;
const int MAX_ORDER = 9;

extern STRANDVIEW_EXPORT const char BASES[5]; ///< "ATGC"

extern STRANDVIEW_EXPORT const int NUM_ATOMS[4];
/// Names as in the Protein Data Bank; the first letter is the element.
extern STRANDVIEW_EXPORT const char ATOMS[4][MAX_ATOMS][4];
extern STRANDVIEW_EXPORT const double COORDS[4][MAX_ATOMS][3]; ///< x, y, z

/// The ring atoms in their order around the outline: of purines that of both fused rings, of
/// pyrimidines the six-membered ring. Atom indices; the last atom is bonded to the first.
extern STRANDVIEW_EXPORT const int NUM_ORDER[4];
extern STRANDVIEW_EXPORT const int ORDER[4][MAX_ORDER];

} // namespace idealbases

#endif
