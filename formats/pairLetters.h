// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_PAIRLETTERS_H
#define STRANDVIEW_FORMATS_PAIRLETTERS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/ReadReport.h>
#include <strandview/formatsExport.h>

namespace strandview {

// Letters of bases as files have them.

/// Of strand 1 and of strand 2, as the file has them.
struct PairLetters
{
    char strand1;
    char strand2;
};

/// Of "A-T", "g+c", "A:U": two letters with one other character between them; nothing for
/// anything else.
STRANDVIEW_FORMATS_EXPORT std::optional<PairLetters> parsePairLetters(std::string_view field);

/// Turns letters into bases and counts what that changed.
class STRANDVIEW_FORMATS_EXPORT LetterCounts
{
public:
    /// Of strand 1; T for U, UNKNOWN_BASE for other letters.
    char take(const PairLetters& pair);
    char take(char letter);

    /// A notice for each kind of change.
    void tell(const std::string& fileName, ReadReport& report) const;

private:
    std::size_t uracils = 0;
    std::size_t unknown = 0;
    std::size_t mismatches = 0;
};

} // namespace strandview

#endif
