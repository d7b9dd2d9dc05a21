// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_CLOSEDDNA_H
#define STRANDVIEW_FORMATS_CLOSEDDNA_H

#include <strandview/formatsExport.h>
#include <strandview/model/Dna.h>

namespace strandview {

/// Leaves out the last pair where it repeats the first one, which makes the Dna closed: of the
/// same letter, within 0.5 of the unit of length (an ångström) and 1 degree. Numbers rounded to
/// three digits add up to less along a thousand pairs, and no two pairs come so near. At least
/// three others must be left.
STRANDVIEW_FORMATS_EXPORT void closeWhereRepeated(Dna& dna);

} // namespace strandview

#endif
