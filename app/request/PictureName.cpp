// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/PictureName.h"

#include <algorithm>
#include <regex>

namespace strandview {

namespace {

std::string withoutEscapes(const std::string& text)
{
    static const std::regex escaped("%%");
    return std::regex_replace(text, escaped, "%");
}

} // namespace

PictureName::PictureName(const std::string& nameOrPattern) : text(nameOrPattern)
{
    static const std::regex pieces("%%|%(?:0(1?[0-9]))?d");
    std::smatch first;
    for (std::sregex_iterator piece(text.begin(), text.end(), pieces), end; piece != end; ++piece) {
        if ((*piece)[0] == "%%")
            continue;
        if (numbers == 0)
            first = *piece;
        ++numbers;
    }
    if (numbers != 1)
        return;
    digits = first[1].matched ? std::max(1UL, std::stoul(first[1])) : 1;
    after = withoutEscapes(nameOrPattern.substr(std::size_t(first.position() + first.length())));
    text = withoutEscapes(nameOrPattern.substr(0, std::size_t(first.position())));
}

std::string PictureName::of(std::size_t frame) const
{
    if (!isPattern())
        return text;
    std::string number = std::to_string(frame);
    number.insert(0, digits - std::min(digits, number.size()), '0');
    return text + number + after;
}

} // namespace strandview
