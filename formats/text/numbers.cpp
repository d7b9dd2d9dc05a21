// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/numbers.h>

#include <charconv>
#include <locale>
#include <sstream>
#include <string>

namespace strandview {

namespace {

/// For a number that is too large or too small for double precision: the latter is rounded.
std::errc parseExtremeNumber(const std::string& field, double& number)
{
    std::istringstream stream(field);
    stream.imbue(std::locale::classic());
    return stream >> number ? std::errc() : std::errc::result_out_of_range;
}

} // namespace

std::errc parseNumber(std::string_view field, double& number)
{
    if (field.size() > 1 && field[0] == '+' && field[1] != '-')
        field.remove_prefix(1);
    const char* end = field.data() + field.size();
    const auto [stop, status] = std::from_chars(field.data(), end, number);
    if (stop == end)
        return status == std::errc::result_out_of_range
                   ? parseExtremeNumber(std::string(field), number)
                   : status;
    if (*stop != 'd' && *stop != 'D' && *stop != ',')
        return std::errc::invalid_argument;
    std::string inC(field);
    inC[stop - field.data()] = *stop == ',' ? '.' : 'e';
    return parseNumber(inC, number);
}

bool isNumber(std::string_view field)
{
    double ignored;
    return parseNumber(field, ignored) != std::errc::invalid_argument;
}

} // namespace strandview
