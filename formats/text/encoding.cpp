// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/encoding.h>

#include <algorithm>
#include <cstddef>

namespace strandview {

bool isUtf16(std::string_view bytes)
{
    const std::string_view mark = bytes.substr(0, 2);
    return mark == "\xFF\xFE" || mark == "\xFE\xFF";
}

bool isBinary(std::string_view bytes)
{
    constexpr std::string_view blanks = "\t\n\v\f\r";
    constexpr std::size_t beginning = 4096;
    bytes = bytes.substr(0, beginning);
    return std::any_of(bytes.begin(), bytes.end(), [&](char c) {
        return static_cast<unsigned char>(c) < 0x20 && blanks.find(c) == std::string_view::npos;
    });
}

std::string_view withoutByteOrderMark(std::string_view text)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    return text.substr(text.substr(0, mark.size()) == mark ? mark.size() : 0);
}

std::string inSmallLetters(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

} // namespace strandview
