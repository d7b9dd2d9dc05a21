// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TEXT_CHARACTERS_H
#define STRANDVIEW_FORMATS_TEXT_CHARACTERS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace strandview {

/// Characters to look for: as find_first_of() does, which asks about each character of a text by a
/// search of its own, and takes ten times as long.
class CharacterSet
{
public:
    constexpr explicit CharacterSet(std::string_view characters)
    {
        for (const char c : characters)
            isIn[static_cast<unsigned char>(c)] = true;
    }

    constexpr bool has(char c) const { return isIn[static_cast<unsigned char>(c)]; }

    /// Where the first of them is, from a place on; the text's size if there is none.
    std::size_t findIn(std::string_view text, std::size_t from = 0) const
    {
        std::size_t place = from;
        while (place < text.size() && !has(text[place]))
            ++place;
        return place;
    }

private:
    bool isIn[256] = {};
};

/// In each of eight bytes.
constexpr std::uint64_t eightTimes(std::uint64_t byte) { return byte * 0x0101010101010101; }

/// Eight characters, the first of them in the lowest byte.
inline std::uint64_t eightAt(const char* place)
{
    std::uint64_t eight;
    std::memcpy(&eight, place, sizeof eight);
#if __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    eight = __builtin_bswap64(eight);
#endif
    return eight;
}

/// Where the line ends that a place is in, with LF or CR, or else with the text. It looks for one
/// and the other by turns, some hundred characters at a time, which a search does many at once.
inline std::size_t findLineEnd(std::string_view text, std::size_t from)
{
    constexpr std::size_t most = 256;
    for (; from < text.size(); from += most) {
        const std::string_view piece = text.substr(from, most);
        const std::size_t feed = piece.find('\n');
        const std::size_t end = std::min(feed, piece.substr(0, feed).find('\r'));
        if (end != piece.npos)
            return from + end;
    }
    return text.size();
}

/// Whether a CR ends a line, which is one that no LF follows. At the text's end it may be half of
/// an end, and counts for none.
inline bool hasReturnAlone(std::string_view text)
{
    std::size_t at = text.find('\r');
    while (at != text.npos && text.substr(at + 1, 1) == "\n")
        at = text.find('\r', at + 2);
    return at != text.npos && at + 1 < text.size();
}

/// The same text, byte for byte in its place, but with LF for each such CR.
inline std::string withFeedsForReturns(std::string_view text)
{
    std::string same(text);
    for (std::size_t at = same.find('\r'); at != same.npos; at = same.find('\r', at + 1))
        if (at + 1 < same.size() && same[at + 1] != '\n')
            same[at] = '\n';
    return same;
}

} // namespace strandview

#endif
