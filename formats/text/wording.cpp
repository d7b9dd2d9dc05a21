// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/wording.h>

#include <array>
#include <charconv>

namespace strandview {

namespace {

constexpr std::size_t LONGEST_QUOTATION = 40;

/// In UTF-8, whether the byte goes on with the character before it.
bool continuesCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

} // namespace

std::string onOneLine(std::string_view text)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string line;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F)
            line += {'\\', 'x', digits[byte / 16], digits[byte % 16]};
        else
            line += c;
    }
    return line;
}

std::string shortened(std::string_view text)
{
    std::string line = onOneLine(text.substr(0, LONGEST_QUOTATION + 1));
    if (line.size() <= LONGEST_QUOTATION)
        return line;
    std::size_t length = LONGEST_QUOTATION;
    while (length > 0 && continuesCharacter(line[length]))
        --length;
    return line.substr(0, length) + "...";
}

std::string inQuotes(std::string_view text) { return "'" + shortened(text) + "'"; }

std::string_view firstCharacter(std::string_view text)
{
    std::size_t length = 1;
    while (length < text.size() && continuesCharacter(text[length]))
        ++length;
    return text.substr(0, length);
}

std::string formatted(double number)
{
    std::array<char, 32> text; // the longest double takes 24 characters
    const auto result = std::to_chars(text.data(), text.data() + text.size(), number);
    return std::string(text.data(), result.ptr);
}

std::string counted(std::size_t count, const std::string& noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

std::string andMore(const std::string& first, std::size_t count)
{
    return first + (count > 1 ? " and " + std::to_string(count - 1) + " more" : "");
}

} // namespace strandview
