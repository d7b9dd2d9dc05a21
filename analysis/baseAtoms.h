// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_BASEATOMS_H
#define STRANDVIEW_ANALYSIS_BASEATOMS_H

#include <string>
#include <string_view>
#include <vector>

#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

/// An atom of a base, in the base's frame, in ångström.
struct BaseAtom
{
    std::string_view name; ///< as in the Protein Data Bank
    algebra3d::Vector3<double> place;
};

/// The atoms that are drawn of one of BASE_LETTERS, those of its rings and those on them: the
/// tables of src/idealbases.h without the sugar's. Empty for any other letter.
STRANDVIEW_ANALYSIS_EXPORT const std::vector<BaseAtom>& drawnAtoms(char base);

/// The ring atoms of one of BASE_LETTERS, 9 or 6, in the standard reference frame of bases
/// (W. K. Olson et al., A standard reference frame for the description of nucleic acid base-pair
/// geometry, J. Mol. Biol. 313, 2001, 229, table 1). Empty for any other letter.
STRANDVIEW_ANALYSIS_EXPORT const std::vector<BaseAtom>& standardRingAtoms(char base);

} // namespace strandview

#endif
