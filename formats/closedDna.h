// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_CLOSEDDNA_H
#define STRANDVIEW_FORMATS_CLOSEDDNA_H

#include <optional>
#include <string>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// Leaves out the last pair where it repeats the first one, which makes the Dna closed: of the
/// same letter, within 0.5 of the unit of length (an ångström) and 1 degree. Numbers rounded to
/// three digits add up to less along a thousand pairs, and no two pairs come so near. At least
/// three others must be left.
STRANDVIEW_FORMATS_EXPORT void closeWhereRepeated(Dna& dna);

/// All that a file of pairs holds, closed where it repeats the first one. Nothing and report.error
/// if a Collector refuses it.
STRANDVIEW_FORMATS_EXPORT std::optional<Configuration>
finishPairs(Dna dna, const std::string& fileName, ReadReport& report);

} // namespace strandview

#endif
