// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_PARSENUMBER_H
#define STRANDVIEW_APP_REQUEST_PARSENUMBER_H

#include <charconv>
#include <cmath>
#include <optional>
#include <string>

namespace strandview {

/// A finite number with a decimal point, whatever the locale; nothing for any other text.
template <typename Number>
std::optional<Number> parseNumber(const std::string& text)
{
    Number value = 0;
    const char* end = text.data() + text.size();
    const auto parsed = std::from_chars(text.data(), end, value);
    if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(double(value)))
        return std::nullopt;
    return value;
}

} // namespace strandview

#endif
