// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/numbers.h>

#include <charconv>
#include <cstdint>
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

/// 10^0 to 10^22, all of them exact.
constexpr double POWERS[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                             1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr std::uint64_t LARGEST_EXACT = std::uint64_t(1) << 53;
constexpr std::size_t MOST_DIGITS = 19; ///< that 64 bits hold

/// Whether the field is digits with a point at most, of which the quotient of two exact numbers is
/// the nearest double (W. D. Clinger, How to read floating point numbers accurately, Proc. PLDI,
/// 1990, 92-101): most are, and that takes a third of the time.
bool parsePlainNumber(std::string_view field, double& number)
{
    const bool isNegative = !field.empty() && field[0] == '-';
    std::uint64_t digits = 0;
    std::size_t count = 0, point = field.size();
    for (std::size_t i = isNegative; i < field.size(); ++i) {
        const unsigned digit = unsigned(field[i]) - '0';
        if (digit < 10) {
            digits = 10 * digits + digit;
            ++count;
        } else if (field[i] == '.' && point == field.size()) {
            point = i;
        } else {
            return false;
        }
    }
    if (count == 0 || count > MOST_DIGITS || digits > LARGEST_EXACT)
        return false;
    const std::size_t decimals = point == field.size() ? 0 : field.size() - point - 1;
    const double magnitude = double(digits) / POWERS[decimals];
    number = isNegative ? -magnitude : magnitude;
    return true;
}

} // namespace

std::errc parseNumber(std::string_view field, double& number)
{
    if (parsePlainNumber(field, number))
        return {};
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
