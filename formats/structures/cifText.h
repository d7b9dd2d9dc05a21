// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_CIFTEXT_H
#define STRANDVIEW_FORMATS_STRUCTURES_CIFTEXT_H

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include <strandview/formatsExport.h>

namespace strandview {

// What the tables of mmCIF are made of: words, and columns that tell of atoms.

/// What a column of a table is to who reads atoms.
enum class CifColumn {
    // Of an atom
    CHAIN,
    LABEL_CHAIN,
    NUMBER,
    LABEL_NUMBER,
    INSERTION,
    RESIDUE,
    LABEL_RESIDUE,
    ATOM,
    LABEL_ATOM,
    CONFORMER,
    X,
    Y,
    Z,
    OCCUPANCY,
    MODEL,
    // Of a kind of residue, and from which it is made
    COMPONENT,
    PARENT,
    NONE
};

constexpr bool isOfAtom(CifColumn column) { return column < CifColumn::COMPONENT; }

/// By its tag, in letters of any size.
STRANDVIEW_FORMATS_EXPORT CifColumn cifColumnOf(std::string_view tag);

/// The tag, without its category, of a column that a table of atoms lacks; null if there is none.
STRANDVIEW_FORMATS_EXPORT const char* missingCifColumn(const std::vector<CifColumn>& columns);

/// What a word of a table stands for: without its quotation marks; nothing of "." and "?", which
/// stand for nothing.
inline std::string_view cifValueOf(std::string_view word)
{
    if (word.size() == 1 && (word[0] == '.' || word[0] == '?'))
        return {};
    const bool isQuoted =
        word.size() >= 2 && (word[0] == '"' || word[0] == '\'') && word.back() == word[0];
    return isQuoted ? word.substr(1, word.size() - 2) : word;
}

/// What a word is by its form, as gemmi's parser has it.
enum class CifKind {
    VALUE,
    TEXT, ///< the ";" at the beginning of a line, from which on lines are a value, up to another
          ///< ";"
    TAG,
    LOOP,
    STOP,
    DATA,   ///< the heading of a data block
    GLOBAL, ///< another one
    SAVE,   ///< the heading of a save frame
    SAVED,  ///< the end of one
    COMMENT,
    WRONG, ///< what may stand nowhere
    END    ///< of the line
};

struct CifWord
{
    CifKind kind;
    std::string_view text;
};

/// What a character is to who looks for the end of a word.
enum class CifCharacter : unsigned char {
    OTHER,
    BLANK,
    PLAIN,  ///< of a value, wherever it is
    PRINTED ///< what begins other words than values
};

constexpr std::array<CifCharacter, 256> makeCifCharacters()
{
    std::array<CifCharacter, 256> characters = {};
    for (unsigned char c = '!'; c <= '~'; ++c)
        characters[c] = CifCharacter::PLAIN;
    for (const char c : std::string_view("\"#$';[_{"))
        characters[static_cast<unsigned char>(c)] = CifCharacter::PRINTED;
    for (const char c : std::string_view(" \t\r\n"))
        characters[static_cast<unsigned char>(c)] = CifCharacter::BLANK;
    return characters;
}

inline constexpr std::array<CifCharacter, 256> CIF_CHARACTERS = makeCifCharacters();

inline CifCharacter cifCharacterOf(char c) { return CIF_CHARACTERS[static_cast<unsigned char>(c)]; }

/// Behind all characters of a kind.
inline std::size_t skipCif(std::string_view line, std::size_t place, CifCharacter kind)
{
    while (place < line.size() && cifCharacterOf(line[place]) == kind)
        ++place;
    return place;
}

/// How long a value is that begins at a place, is nothing but plain characters, or in quotation
/// marks without one of them between them, on one line, and has a blank or the text's end behind
/// it. 0 of anything else.
inline std::size_t sizeOfPlainCifValue(std::string_view text, std::size_t begin)
{
    const char first = begin < text.size() ? text[begin] : '\0';
    std::size_t end = begin;
    if (first == '"' || first == '\'') {
        ++end;
        while (end < text.size() && text[end] != first && text[end] != '\n')
            ++end;
        if (end == text.size() || text[end] != first)
            return 0;
        ++end;
    } else {
        end = skipCif(text, begin, CifCharacter::PLAIN);
    }
    const bool isWhole = end == text.size() || cifCharacterOf(text[end]) == CifCharacter::BLANK;
    return isWhole ? end - begin : 0;
}

/// The value of a line from a place on, which moves behind it, if that is plain; else nothing, and
/// the place stays.
inline std::string_view nextPlainCifValue(std::string_view line, std::size_t& place)
{
    const std::size_t begin = skipCif(line, place, CifCharacter::BLANK);
    const std::size_t size = sizeOfPlainCifValue(line, begin);
    if (size == 0)
        return {};
    place = begin + size;
    return line.substr(begin, size);
}

/// The word of a line from a place on, which moves behind it. The line has no LF.
STRANDVIEW_FORMATS_EXPORT CifWord nextCifWord(std::string_view line, std::size_t& place);

/// A line that is values alone, as nearly all lines of a table are.
struct CifRow
{
    std::size_t count;     ///< of its words
    std::string_view word; ///< one that was asked for, counted from 0; empty if there is none
};

/// Nothing if it may be anything else, or is longer than 256 characters. It looks at eight
/// characters at a time, which takes half of the time of word by word.
STRANDVIEW_FORMATS_EXPORT std::optional<CifRow> plainCifRow(std::string_view line,
                                                            std::size_t wanted);

} // namespace strandview

#endif
