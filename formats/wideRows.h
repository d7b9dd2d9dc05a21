// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_WIDEROWS_H
#define STRANDVIEW_FORMATS_WIDEROWS_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <strandview/formatsExport.h>

namespace strandview {

/// The columns of a table whose rows are whole frames: x, y and z of a point, then of the next one,
/// and so on, with other columns before and behind them.
struct WideColumns
{
    std::size_t count = 0;           ///< of all columns
    std::size_t first = 0;           ///< the column of the first point's x
    std::size_t points = 0;          ///< at least 2
    std::size_t firstNumber = 1;     ///< of the first point, as the header has it
    std::optional<std::size_t> time; ///< the column that tells it
    bool isTimeNumber = false;       ///< of frames, which is no time

    bool hasCoordinate(std::size_t column) const
    {
        return column >= first && column < first + 3 * points;
    }
    /// Whether its numbers count.
    bool isUsed(std::size_t column) const { return hasCoordinate(column) || column == time; }
};

/// Of a header that names x1 y1 z1 and x2 y2 z2, or any other numbers that follow each other, in
/// small letters or capitals, with "_" before the number or without, and with units; nothing of any
/// other, and of one that names x, y or z, too. In a header like that anything else that is named
/// as a coordinate is a `fault`: "column 8 (x3): found ..., expected ...".
STRANDVIEW_FORMATS_EXPORT std::optional<WideColumns>
wideColumnsOf(const std::vector<std::string_view>& header, std::string& fault);

/// Of so many columns without a header: 3 for each point, or a time before them; nothing if they
/// are neither.
STRANDVIEW_FORMATS_EXPORT std::optional<WideColumns> wideColumnsOf(std::size_t count);

/// As the header has it, or would: "x1", "t".
STRANDVIEW_FORMATS_EXPORT std::string nameOf(std::size_t column, const WideColumns& columns);

} // namespace strandview

#endif
