// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/PictureName.h"

#include <algorithm>
#include <cctype>

namespace strandview {

namespace {

// How long the place for a number is that begins here, "%d" or "%0Nd"; 0 if none does.
std::size_t lengthOfNumber(const std::string& text, std::size_t place)
{
    const std::size_t most = 19; // digits
    std::size_t end = place + 1;
    if (text.compare(place, 2, "%0") == 0) {
        for (++end; end < text.size() && std::isdigit(static_cast<unsigned char>(text[end]));
             ++end) {
        }
        if (end == place + 2 || end > place + 4 || std::stoul(text.substr(place + 2)) > most)
            return 0;
    }
    return end < text.size() && text[end] == 'd' ? end + 1 - place : 0;
}

std::string withoutEscapes(std::string text)
{
    for (std::size_t at = 0; (at = text.find("%%", at)) != text.npos; ++at)
        text.erase(at, 1);
    return text;
}

} // namespace

PictureName::PictureName(const std::string& nameOrPattern) : text(nameOrPattern)
{
    std::size_t place = 0, length = 0;
    for (std::size_t at = text.find('%'); at != text.npos; at = text.find('%', at)) {
        const std::size_t found = lengthOfNumber(text, at);
        if (found > 0 && numbers++ == 0) {
            place = at;
            length = found;
        }
        const std::size_t escaped = text.compare(at, 2, "%%") == 0 ? 2 : 1;
        at += std::max(found, escaped);
    }
    if (numbers != 1)
        return;
    if (length > 2)
        digits = std::max(1UL, std::stoul(text.substr(place + 2)));
    after = withoutEscapes(text.substr(place + length));
    text = withoutEscapes(text.substr(0, place));
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
