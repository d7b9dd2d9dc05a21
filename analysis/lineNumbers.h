// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_LINENUMBERS_H
#define STRANDVIEW_ANALYSIS_LINENUMBERS_H

#include <optional>
#include <string>
#include <vector>

#include <strandview/analysis/tracks.h>
#include <strandview/analysisExport.h>

namespace strandview {

/// A number of the whole of a line: what it is called and what it means.
struct LineQuantity
{
    std::string name;    ///< "endToEnd", "writhe"
    std::string unit;    ///< "°", "Å", "turns", or the unit of the points, "length"; may be empty
    std::string meaning; ///< a line for people
    bool isCheap; ///< time grows little faster than the number of points, not with its square
};

/// All that are computed, in the order in which they are told. Names are unique.
STRANDVIEW_ANALYSIS_EXPORT const std::vector<LineQuantity>& lineQuantities();

/// That of a name, or null.
STRANDVIEW_ANALYSIS_EXPORT const LineQuantity* findLineQuantity(const std::string& name);

/// The numbers of these names, in their order; nothing where a line has none: the writhe of an open
/// one, the twist of a rod without frames, steps of what is no DNA, or a name that is not known.
/// What several names need is computed once. Any thread.
STRANDVIEW_ANALYSIS_EXPORT std::vector<std::optional<double>>
lineNumbersOf(const Track& track, const std::vector<std::string>& names);

} // namespace strandview

#endif
