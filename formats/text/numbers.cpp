// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/numbers.h>

#include <charconv>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string>

#include <strandview/formats/text/characters.h>

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
constexpr std::uint64_t WHOLE_POWERS[] = {1,      10,      100,      1000,     10000,
                                          100000, 1000000, 10000000, 100000000};
constexpr std::uint64_t LARGEST_EXACT = std::uint64_t(1) << 53;
constexpr std::ptrdiff_t MOST_DIGITS = 19; ///< that 64 bits hold

/// What eight digits say, which are numbers from 0 to 9: two, then four, then all side by side.
std::uint64_t valueOf(std::uint64_t digits)
{
    constexpr std::uint64_t pairs = 0x000000FF000000FF;
    constexpr std::uint64_t first = 100 + (std::uint64_t(1000000) << 32);
    constexpr std::uint64_t second = 1 + (std::uint64_t(10000) << 32);
    digits = 10 * digits + (digits >> 8);
    return ((digits & pairs) * first + (digits >> 16 & pairs) * second) >> 32;
}

inline bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Where the digits end; what they say comes behind `number`, whatever is left of more than 64 bits
/// hold.
inline const char* takeDigits(const char* place, const char* end, std::uint64_t& number)
{
    for (; place < end && isDigit(*place); ++place)
        number = 10 * number + (unsigned(*place) - '0');
    return place;
}

/// The same eight at a time, for those behind the point, which are many.
inline const char* takeManyDigits(const char* place, const char* end, std::uint64_t& number)
{
    while (end - place >= 8 && isDigit(*place)) {
        const std::uint64_t digits = eightAt(place) ^ eightTimes('0');
        const std::uint64_t others = (digits | (digits + eightTimes(0x80 - 10))) & eightTimes(0x80);
        const unsigned count = others == 0 ? 8 : unsigned(__builtin_ctzll(others)) / 8;
        // The first ones are those in front, which are zero.
        number = WHOLE_POWERS[count] * number + valueOf(digits << (64 - 8 * count));
        place += count;
        if (count < 8)
            return place;
    }
    return takeDigits(place, end, number);
}

} // namespace

/// Where the quotient of two exact numbers is the nearest double (W. D. Clinger, How to read
/// floating point numbers accurately, Proc. PLDI, 1990, 92-101).
std::size_t takePlainNumber(std::string_view text, double& number)
{
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    const bool isNegative = !text.empty() && *begin == '-';
    std::uint64_t digits = 0;
    const char* place = takeDigits(begin + isNegative, end, digits);
    std::ptrdiff_t count = place - begin - isNegative, decimals = 0;
    if (place < end && *place == '.') {
        const char* const point = place + 1;
        place = takeManyDigits(point, end, digits);
        decimals = place - point;
        count += decimals;
    }
    if (count == 0 || count > MOST_DIGITS || digits > LARGEST_EXACT)
        return 0;
    const double magnitude = double(digits) / POWERS[decimals];
    number = isNegative ? -magnitude : magnitude;
    return std::size_t(place - begin);
}

std::errc parseNumber(std::string_view field, double& number)
{
    if (!field.empty() && takePlainNumber(field, number) == field.size())
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
