// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Ticks.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "request/limits.h"

namespace strandview {

namespace {

using Integer = long long;

const std::string MINUS = "\u2212";

// K times ten to the E: what a tick's value is, without rounding.
double valueOf(Integer k, int exponent)
{
    // Read as decimal text it is the nearest double, whatever the exponent.
    return std::strtod((std::to_string(k) + "e" + std::to_string(exponent)).c_str(), nullptr);
}

int countDigits(Integer k) { return int(std::to_string(std::abs(k)).size()); }

Integer powerOfTen(int exponent)
{
    Integer power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

std::string superscript(int number)
{
    static const char* const digits[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    std::string text = number < 0 ? "⁻" : "";
    for (const char digit : std::to_string(std::abs(number)))
        text += digits[digit - '0'];
    return text;
}

std::string timesPowerOfTen(int exponent)
{
    return exponent == 0 ? "" : "×10" + superscript(exponent);
}

// k times ten to the minus `decimals`, without a sign.
std::string withDecimals(Integer k, int decimals)
{
    std::string digits = std::to_string(std::abs(k));
    if (decimals <= 0)
        return digits;
    if (int(digits.size()) <= decimals)
        digits.insert(0, std::size_t(decimals) + 1 - digits.size(), '0');
    return digits.insert(digits.size() - std::size_t(decimals), ".");
}

// A number of its own, without a sign: plain if it is short, otherwise with a power of ten.
std::string aloneWithoutSign(Integer k, int exponent)
{
    const int longest = 10, mostZeros = 3;
    if (k == 0)
        return "0";
    while (k % 10 == 0) {
        k /= 10;
        ++exponent;
    }
    const int top = countDigits(k) - 1 + exponent; // the power of ten of the first digit
    if (top < longest && -mostZeros <= top && -exponent < longest)
        return exponent > 0 ? std::to_string(std::abs(k) * powerOfTen(exponent))
                            : withDecimals(k, -exponent);
    const std::string power = timesPowerOfTen(top);
    return withDecimals(k, countDigits(k) - 1) + power;
}

// Multiples of ten to the `exponent`: first, first + factor, ... last.
struct Multiples
{
    Integer first = 0;
    Integer last = -1;
    Integer factor = 1;
    int exponent = 0;
};

// What is off by rounding, or by a 1e-9th of a step, only counts as inside.
Multiples roundMultiples(double min, double max, int mostSteps)
{
    const double range = max - min;
    Multiples multiples;
    multiples.exponent = int(std::floor(std::log10(range / 4)));
    double step = valueOf(1, multiples.exponent);
    for (const int factor : {2, 5, 10, 20, 50}) {
        if (range / step <= mostSteps * (1 + 1e-9))
            break;
        multiples.factor = factor;
        step = valueOf(factor, multiples.exponent);
    }
    while (multiples.factor % 10 == 0) {
        multiples.factor /= 10;
        ++multiples.exponent;
    }
    const double from = min / step, to = max / step;
    const double slack = 1e-9 + 1e-15 * std::max(std::abs(from), std::abs(to));
    multiples.first = multiples.factor * Integer(std::ceil(from - slack));
    multiples.last = multiples.factor * Integer(std::floor(to + slack));
    return multiples;
}

// The part that all numbers share if they are long: as many leading digits as leave the
// rest short. Numbers of both signs are never long.
Integer commonOffset(const Multiples& multiples)
{
    const int longest = 6;
    const Integer nearest =
        std::abs(multiples.first) < std::abs(multiples.last) ? multiples.first : multiples.last;
    if (countDigits(std::max(std::abs(multiples.first), std::abs(multiples.last))) <= longest)
        return 0;
    const Integer unit = powerOfTen(countDigits(multiples.last - multiples.first));
    return nearest / unit * unit;
}

// The power of ten that all labels are to be multiplied with, so that they are short.
int commonExponent(Integer largest, int exponent)
{
    if (largest == 0)
        return exponent; // so that a label is 0, without more of them or decimals
    const int top = countDigits(largest) - 1 + exponent;
    return top > 4 || top < -2 || exponent < -4 ? top : 0;
}

// Off by at most half a unit of the last of `digits` digits that count.
std::pair<Integer, int> roundedTo(double value, int digits)
{
    char text[48];
    const auto written =
        std::to_chars(text, text + sizeof text, value, std::chars_format::scientific, digits - 1);
    std::string mantissa(text, written.ptr);
    const std::size_t e = mantissa.find('e');
    const int exponent = std::atoi(mantissa.c_str() + e + 1);
    mantissa.resize(e);
    mantissa.erase(std::remove(mantissa.begin(), mantissa.end(), '.'), mantissa.end());
    return {std::atoll(mantissa.c_str()), exponent - (digits - 1)};
}

} // namespace

Ticks makeTicks(double min, double max, int mostSteps)
{
    Ticks ticks;
    if (!isRange(min, max))
        return ticks;
    const Multiples multiples = roundMultiples(min, max, mostSteps);
    const Integer offset = commonOffset(multiples);
    const Integer largest =
        std::max(std::abs(multiples.first - offset), std::abs(multiples.last - offset));
    const int common = commonExponent(largest, multiples.exponent);
    const int zeros = multiples.exponent - common; // behind a label, or decimals if negative
    for (Integer k = multiples.first; k <= multiples.last; k += multiples.factor) {
        ticks.values.push_back(valueOf(k, multiples.exponent));
        const Integer label = (k - offset) * powerOfTen(std::max(zeros, 0));
        ticks.labels.push_back((label < 0 ? MINUS : "") + withDecimals(label, -zeros));
    }
    if (largest != 0)
        ticks.note = timesPowerOfTen(common);
    if (offset != 0) {
        const std::string sign = offset < 0 ? MINUS : "+";
        ticks.note += (ticks.note.empty() ? sign : " " + sign + " ") +
                      aloneWithoutSign(offset, multiples.exponent);
    }
    return ticks;
}

std::vector<double> roundTicks(double min, double max) { return makeTicks(min, max, 8).values; }

std::string numberText(double value, int digits)
{
    if (!std::isfinite(value))
        return "";
    const auto [k, exponent] = roundedTo(value, digits);
    return (k < 0 ? MINUS : "") + aloneWithoutSign(k, exponent);
}

} // namespace strandview
