// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_OXDNA_TOPOLOGY_H
#define STRANDVIEW_FORMATS_OXDNA_TOPOLOGY_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <strandview/analysis/helices.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// What a nucleotide is wherever it is, as in a Nucleotide (analysis/helices.h).
struct OxdnaNucleotide
{
    char base = UNKNOWN_BASE;
    std::uint32_t strand = 0;
    std::size_t previous = NO_NUCLEOTIDE;
    std::size_t next = NO_NUCLEOTIDE;
};

/// The strands of an oxDNA simulation, of which each configuration has the places.
struct OxdnaTopology
{
    std::string name;                         ///< of its file, for messages
    std::vector<OxdnaNucleotide> nucleotides; ///< in the order of configurations
    /// Two that are complementary have the sum 3: A, C, G and T (or U) are 0, 1, 2 and 3, and any
    /// other number is that of a base that pairs with one number alone. Letters that are none of
    /// these have UNPAIRED_CODE.
    std::vector<std::int32_t> codes;
    std::size_t strands = 0;
};

/// A code with which none has the sum 3.
constexpr std::int32_t UNPAIRED_CODE = INT32_MIN;

/// Reads a topology in either of its two forms. The classic one has a line for each nucleotide, its
/// strand (from 1 on), its base, and its neighbours towards the 3' and the 5' end (from 0 on, or
/// -1), strands from their 3' end on:
///
///     4 2
///     1 A -1 1
///     1 C 0 -1
///     ...
///
/// The new one has a line for each strand from its 5' end on, with "5->3" in the first line:
///
///     4 2 5->3
///     CA circular=false
///     TG circular=false
///
/// Bases are letters, small or capital, or whole numbers (in brackets within a line of the new
/// form), shown as the base of their remainder of 4. Notices tell of numbers, of U, which is shown
/// as T, and of other letters.
///
/// Nothing and report.error if that fails, as "name:line: column 3: found ..., expected ...".
STRANDVIEW_FORMATS_EXPORT std::optional<OxdnaTopology> readOxdnaTopology(std::string_view text,
                                                                         const std::string& name,
                                                                         const ReadOptions& options,
                                                                         ReadReport& report);

/// The number of nucleotides in the first line of one; nothing if the text is none.
STRANDVIEW_FORMATS_EXPORT std::optional<std::size_t>
countInOxdnaTopology(std::string_view beginning);

} // namespace strandview

#endif
