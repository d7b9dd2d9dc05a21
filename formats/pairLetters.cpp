// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/pairLetters.h>

#include <strandview/analysis/doubleStrands.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/text/wording.h>
#include <strandview/model/Dna.h>

namespace strandview {

namespace {

bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }
bool isUracil(char letter) { return letter == 'U' || letter == 'u'; }

std::optional<char> baseOf(char letter) { return isUracil(letter) ? 'T' : parseBase(letter); }

} // namespace

std::optional<PairLetters> parsePairLetters(std::string_view field)
{
    if (field.size() != 3 || !isLetter(field[0]) || isLetter(field[1]) || !isLetter(field[2]))
        return {};
    return PairLetters{field[0], field[2]};
}

char LetterCounts::take(char letter)
{
    uracils += isUracil(letter);
    const std::optional<char> base = baseOf(letter);
    unknown += !base;
    return base.value_or(UNKNOWN_BASE);
}

char LetterCounts::take(const PairLetters& pair)
{
    const std::optional<char> base1 = baseOf(pair.strand1), base2 = baseOf(pair.strand2);
    mismatches += base1 && base2 && *base2 != complementOf(*base1);
    return take(pair.strand1);
}

void LetterCounts::tell(const std::string& fileName, ReadReport& report) const
{
    const auto notice = [&](std::size_t count, const char* noun, const char* what) {
        if (count > 0)
            report.notices.push_back(fileName + ": " + counted(count, noun) + " " + what);
    };
    notice(uracils, "base", "U, shown as T");
    notice(unknown, "base", "of other letters than A, C, G, T and U: not known");
    notice(mismatches, "pair",
           "of letters that are no complements: strand 2 is shown with the complement");
}

} // namespace strandview
