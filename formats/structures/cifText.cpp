// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/cifText.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <utility>

#include <strandview/formats/text/characters.h>
#include <strandview/formats/text/encoding.h>

namespace strandview {

namespace {

using Character = CifCharacter;

std::size_t skipPrinted(std::string_view line, std::size_t place)
{
    while (place < line.size() && cifCharacterOf(line[place]) >= Character::PLAIN)
        ++place;
    return place;
}

/// Behind the quotation mark that ends what begins with one; npos if there is none. One that a
/// letter follows is a part of the value.
std::size_t findQuoteEnd(std::string_view line, std::size_t begin)
{
    for (std::size_t at = line.find(line[begin], begin + 1); at != line.npos;
         at = line.find(line[begin], at + 1))
        if (at + 1 == line.size() || cifCharacterOf(line[at + 1]) == Character::BLANK ||
            line[at + 1] == '#')
            return at + 1;
    return line.npos;
}

constexpr std::size_t LONGEST_ROW = 256;

/// A bit for each character of a line, some of which are set.
using Bits = std::array<std::uint64_t, LONGEST_ROW / 64>;

/// The highest bits of eight bytes beside each other.
std::uint64_t highestOf(std::uint64_t eight)
{
    return ((eight & eightTimes(0x80)) * 0x0002040810204081) >> 56;
}

/// In the highest bit of each byte below 128: whether it is a character.
std::uint64_t areEach(std::uint64_t eight, char c)
{
    const std::uint64_t low = eight & eightTimes(0x7f);
    return ~((low ^ eightTimes(std::uint64_t(c))) + eightTimes(0x7f));
}

/// Whether one of the bytes may be between " and ', which few rows have; of bytes below 128.
bool hasMarkOrQuote(std::uint64_t eight)
{
    const std::uint64_t low = eight & eightTimes(0x7f);
    const std::uint64_t areFrom = low + eightTimes(0x80 - '"');
    const std::uint64_t areBehind = low + eightTimes(0x80 - '\'' - 1);
    return (areFrom & ~areBehind & eightTimes(0x80)) != 0;
}

/// Where words begin and end, and what is in them that is not plain.
struct RowBits
{
    Bits begins = {}, ends = {}, quotes = {}, marks = {};
};

/// Nothing of a line with characters of reserved words, of texts or of no word.
std::optional<RowBits> bitsOf(std::string_view line)
{
    Bits printed = {};
    RowBits bits;
    std::uint64_t others = 0;
    for (std::size_t i = 0; i < line.size(); i += 8) {
        std::array<char, 8> last = {' ', ' ', ' ', ' ', ' ', ' ', ' ', ' '};
        if (line.size() - i < 8)
            std::memcpy(last.data(), line.data() + i, line.size() - i);
        const std::uint64_t eight = eightAt(line.size() - i < 8 ? last.data() : line.data() + i);
        const std::uint64_t isFromBlank =
            (eight & eightTimes(0x7f)) + eightTimes(0x80 - std::uint64_t(' '));
        others |= eight | ~isFromBlank | areEach(eight, '\x7f') | areEach(eight, '_');
        printed[i / 64] |= highestOf(~areEach(eight, ' ')) << i % 64;
        if (!hasMarkOrQuote(eight))
            continue;
        const std::uint64_t marks =
            areEach(eight, '#') | areEach(eight, '$') | areEach(eight, '\'');
        bits.quotes[i / 64] |= highestOf(areEach(eight, '"')) << i % 64;
        bits.marks[i / 64] |= highestOf(marks) << i % 64;
    }
    if (others & eightTimes(0x80))
        return {};
    for (std::size_t k = 0; k < printed.size(); ++k) {
        const std::uint64_t before = k == 0 ? 0 : printed[k - 1] >> 63;
        const std::uint64_t behind = k + 1 == printed.size() ? 0 : printed[k + 1] << 63;
        bits.begins[k] = printed[k] & ~(printed[k] << 1 | before);
        bits.ends[k] = printed[k] & ~(printed[k] >> 1 | behind);
    }
    return bits;
}

std::string_view wordAt(std::string_view line, std::size_t begin)
{
    return line.substr(begin, line.find(' ', begin) - begin);
}

/// Whether words that begin with a quotation mark end with another one, and have none between.
bool areQuotesClosed(const RowBits& bits, std::string_view line)
{
    for (std::size_t k = 0; k < bits.quotes.size(); ++k) {
        if (bits.quotes[k] & ~(bits.begins[k] | bits.ends[k]))
            return false;
        for (std::uint64_t left = bits.quotes[k] & bits.begins[k]; left; left &= left - 1) {
            const std::string_view word = wordAt(line, 64 * k + std::size_t(__builtin_ctzll(left)));
            if (word.size() < 2 || word.back() != '"')
                return false;
        }
    }
    return true;
}

constexpr std::size_t KEYWORD_OF_TABLE = 5; // letters of loop_ and stop_

bool hasPrefix(std::string_view word, std::string_view small)
{
    return word.size() >= small.size() && inSmallLetters(word.substr(0, small.size())) == small;
}

/// Of a word that has no quotation mark in front.
CifKind kindOfWord(std::string_view word)
{
    constexpr std::string_view beginnings = "dDlLgGsS"; // of reserved words
    if (word[0] == '_')
        return word.size() > 1 ? CifKind::TAG : CifKind::WRONG;
    if (word[0] == '$')
        return CifKind::WRONG;
    if (beginnings.find(word[0]) == beginnings.npos || word.find('_') == word.npos)
        return CifKind::VALUE;
    if (hasPrefix(word, "data_"))
        return CifKind::DATA;
    const std::pair<std::string_view, CifKind> reserved[] = {{"loop_", CifKind::LOOP},
                                                             {"stop_", CifKind::STOP},
                                                             {"global_", CifKind::GLOBAL},
                                                             {"save_", CifKind::SAVED}};
    for (const auto& [text, kind] : reserved)
        if (hasPrefix(word, text))
            return word.size() == text.size() ? kind
                   : kind == CifKind::SAVED   ? CifKind::SAVE
                                              : CifKind::WRONG;
    return CifKind::VALUE;
}

} // namespace

CifColumn cifColumnOf(std::string_view tag)
{
    static const std::map<std::string, CifColumn, std::less<>> columns{
        {"_atom_site.auth_asym_id", CifColumn::CHAIN},
        {"_atom_site.label_asym_id", CifColumn::LABEL_CHAIN},
        {"_atom_site.auth_seq_id", CifColumn::NUMBER},
        {"_atom_site.label_seq_id", CifColumn::LABEL_NUMBER},
        {"_atom_site.pdbx_pdb_ins_code", CifColumn::INSERTION},
        {"_atom_site.auth_comp_id", CifColumn::RESIDUE},
        {"_atom_site.label_comp_id", CifColumn::LABEL_RESIDUE},
        {"_atom_site.auth_atom_id", CifColumn::ATOM},
        {"_atom_site.label_atom_id", CifColumn::LABEL_ATOM},
        {"_atom_site.label_alt_id", CifColumn::CONFORMER},
        {"_atom_site.cartn_x", CifColumn::X},
        {"_atom_site.cartn_y", CifColumn::Y},
        {"_atom_site.cartn_z", CifColumn::Z},
        {"_atom_site.occupancy", CifColumn::OCCUPANCY},
        {"_atom_site.pdbx_pdb_model_num", CifColumn::MODEL},
        {"_chem_comp.id", CifColumn::COMPONENT},
        {"_chem_comp.mon_nstd_parent_comp_id", CifColumn::PARENT},
    };
    const auto found = columns.find(inSmallLetters(tag));
    return found == columns.end() ? CifColumn::NONE : found->second;
}

const char* missingCifColumn(const std::vector<CifColumn>& columns)
{
    const auto has = [&columns](CifColumn wanted) {
        return std::find(columns.begin(), columns.end(), wanted) != columns.end();
    };
    const std::pair<bool, const char*> needed[] = {
        {has(CifColumn::X), "Cartn_x"},
        {has(CifColumn::Y), "Cartn_y"},
        {has(CifColumn::Z), "Cartn_z"},
        {has(CifColumn::ATOM) || has(CifColumn::LABEL_ATOM), "label_atom_id"},
        {has(CifColumn::RESIDUE) || has(CifColumn::LABEL_RESIDUE), "label_comp_id"},
    };
    for (const auto& [isThere, name] : needed)
        if (!isThere)
            return name;
    return nullptr;
}

CifWord nextCifWord(std::string_view line, std::size_t& place)
{
    const std::size_t begin = place = skipCif(line, place, Character::BLANK);
    const auto upTo = [&](CifKind kind, std::size_t end) {
        place = end;
        return CifWord{kind, line.substr(begin, end - begin)};
    };
    if (begin == line.size())
        return upTo(CifKind::END, begin);
    if (line[begin] == '#')
        return upTo(CifKind::COMMENT, line.size());
    if (line[begin] == ';' && begin == 0)
        return upTo(CifKind::TEXT, 1);
    if (line[begin] == '"' || line[begin] == '\'') {
        const std::size_t end = findQuoteEnd(line, begin);
        return end == line.npos ? upTo(CifKind::WRONG, line.size()) : upTo(CifKind::VALUE, end);
    }
    const std::size_t end = skipPrinted(line, begin);
    const std::string_view keyword = line.substr(begin, KEYWORD_OF_TABLE);
    if (end > begin + KEYWORD_OF_TABLE && line[begin + KEYWORD_OF_TABLE] == '#' &&
        (hasPrefix(keyword, "loop_") || hasPrefix(keyword, "stop_"))) // a comment needs no blank
        return upTo(kindOfWord(keyword), begin + KEYWORD_OF_TABLE);
    const bool isWhole =
        end > begin && (end == line.size() || cifCharacterOf(line[end]) == Character::BLANK);
    return isWhole ? upTo(kindOfWord(line.substr(begin, end - begin)), end)
                   : upTo(CifKind::WRONG, std::max(end, begin + 1));
}

std::optional<CifRow> plainCifRow(std::string_view line, std::size_t wanted)
{
    if (!line.empty() && line.back() == '\r')
        line.remove_suffix(1);
    if (line.empty() || line.size() > LONGEST_ROW || line[0] == ';')
        return {};
    const std::optional<RowBits> bits = bitsOf(line);
    if (!bits || !areQuotesClosed(*bits, line))
        return {};
    CifRow row = {0, {}};
    for (std::size_t k = 0; k < bits->begins.size(); ++k) {
        std::uint64_t begins = bits->begins[k];
        if (begins & bits->marks[k])
            return {};
        const auto here = std::size_t(__builtin_popcountll(begins));
        if (wanted >= row.count && wanted < row.count + here) {
            for (std::size_t i = row.count; i < wanted; ++i)
                begins &= begins - 1;
            row.word = wordAt(line, 64 * k + std::size_t(__builtin_ctzll(begins)));
        }
        row.count += here;
    }
    return row;
}

} // namespace strandview
