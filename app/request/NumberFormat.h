// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_NUMBERFORMAT_H
#define STRANDVIEW_APP_REQUEST_NUMBERFORMAT_H

#include <optional>
#include <string>

namespace strandview {

/// How the numbers of a scale are written: as suits them, or each for itself in a fixed way.
struct NumberFormat
{
    enum Notation : char {
        AUTO = 0,
        DECIMALS = 'f',   ///< so many digits behind the point: "1500.00"
        SCIENTIFIC = 'e', ///< so many behind the point of a power of ten: "1.50e+03"
        SHORTER = 'g'     ///< so many that count, whichever of both is shorter: "1.5e+03"
    };
    static constexpr int MOST_DIGITS = 15;

    Notation notation = AUTO;
    int digits = 0; ///< from 0 to MOST_DIGITS

    bool isAuto() const { return notation == AUTO; }
    /// The number in a notation of its own, in every locale with a point, and with a minus sign,
    /// "−", before it if it is negative when it is rounded. Not for AUTO.
    std::string write(double value) const;
    /// The number that is written.
    double rounded(double value) const;
};

/// Of "auto", ".2f", ".3e" or ".3g"; nothing of anything else.
std::optional<NumberFormat> parseNumberFormat(const std::string& text);

/// The text that is parsed as the format.
std::string formatOf(const NumberFormat& format);

} // namespace strandview

#endif
