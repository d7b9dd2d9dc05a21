// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/NumberFormat.h"

#include <charconv>
#include <vector>

#include "request/parseNumber.h"

namespace strandview {

namespace {

const char* const MINUS = "\u2212";

std::chars_format notationOf(const NumberFormat& format)
{
    switch (format.notation) {
    case NumberFormat::DECIMALS:
        return std::chars_format::fixed;
    case NumberFormat::SCIENTIFIC:
        return std::chars_format::scientific;
    default:
        return std::chars_format::general;
    }
}

// Of digits alone, with or without a point and a power of ten.
bool isZero(const std::string& written)
{
    return written.substr(0, written.find('e')).find_first_of("123456789") == std::string::npos;
}

// With a hyphen for a minus.
std::string plain(double value, const NumberFormat& format)
{
    std::vector<char> text(400); // 309 digits before the point at most
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   notationOf(format), format.digits);
    return {text.data(), end.ptr};
}

} // namespace

double NumberFormat::rounded(double value) const
{
    return parseNumber<double>(plain(value, *this)).value_or(value);
}

std::string NumberFormat::write(double value) const
{
    const std::string written = plain(value, *this);
    if (written.empty() || written.front() != '-')
        return written;
    const std::string magnitude = written.substr(1);
    return isZero(magnitude) ? magnitude : MINUS + magnitude;
}

std::optional<NumberFormat> parseNumberFormat(const std::string& text)
{
    if (text == "auto")
        return NumberFormat();
    if (text.size() < 3 || text.size() > 4 || text.front() != '.')
        return {};
    const char letter = text.back();
    const std::string between = text.substr(1, text.size() - 2);
    if ((letter != 'f' && letter != 'e' && letter != 'g') ||
        between.find_first_not_of("0123456789") != std::string::npos)
        return {};
    const std::optional<int> digits = parseNumber<int>(between);
    if (!digits || *digits > NumberFormat::MOST_DIGITS)
        return {};
    return NumberFormat{NumberFormat::Notation(letter), *digits};
}

std::string formatOf(const NumberFormat& format)
{
    if (format.isAuto())
        return "auto";
    return "." + std::to_string(format.digits) + char(format.notation);
}

} // namespace strandview
