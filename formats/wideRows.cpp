// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/wideRows.h>

#include <algorithm>
#include <charconv>
#include <system_error>

#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/wording.h>
#include <strandview/formats/timeColumns.h>

namespace strandview {

namespace {

constexpr std::string_view AXES = "xyz";

/// "y_12" is the second of the point 12.
struct Coordinate
{
    std::size_t axis = 0;
    std::optional<std::uint32_t> number; ///< of a point; "y" has none
};

std::optional<Coordinate> coordinateIn(std::string_view field)
{
    field = withoutUnit(field);
    const std::string letter = inSmallLetters(field.substr(0, 1));
    const std::size_t axis = letter.empty() ? AXES.npos : AXES.find(letter);
    if (axis == AXES.npos)
        return {};
    if (field.size() == 1)
        return Coordinate{axis, {}};
    field.remove_prefix(field[1] == '_' ? 2 : 1);
    std::uint32_t number = 0;
    const char* const end = field.data() + field.size();
    const auto [stop, status] = std::from_chars(field.data(), end, number);
    const bool isNumber = status == std::errc() && stop == end;
    return isNumber ? std::optional(Coordinate{axis, number}) : std::nullopt;
}

/// How many points there are from a column on, each with the next number.
std::size_t countPoints(const std::vector<std::string_view>& header, std::size_t first)
{
    std::size_t count = 0;
    const auto begun = coordinateIn(header[first]);
    for (std::size_t column = first; begun && begun->number && column < header.size(); ++column) {
        const auto found = coordinateIn(header[column]);
        const std::size_t done = column - first;
        if (!found || found->axis != done % 3 || !found->number ||
            *found->number != std::uint64_t(*begun->number) + done / 3)
            break;
        count = (done + 1) / 3;
    }
    return count;
}

void findTime(const std::vector<std::string_view>& header, WideColumns& columns)
{
    TimeName best = TimeName::NONE;
    for (std::size_t column = 0; column < header.size(); ++column) {
        const TimeName name = timeNameOf(header[column]);
        if (columns.hasCoordinate(column) || name >= best)
            continue;
        best = name;
        columns.time = column;
    }
    columns.isTimeNumber = best == TimeName::FRAME;
}

} // namespace

std::optional<WideColumns> wideColumnsOf(const std::vector<std::string_view>& header,
                                         std::string& fault)
{
    WideColumns columns;
    columns.count = header.size();
    for (std::size_t column = 0; columns.points < 2 && column < header.size(); ++column) {
        columns.first = column;
        columns.points = countPoints(header, column);
    }
    if (columns.points < 2)
        return {};
    columns.firstNumber = *coordinateIn(header[columns.first])->number;
    for (std::size_t column = 0; column < header.size(); ++column) {
        const auto other =
            columns.hasCoordinate(column) ? std::nullopt : coordinateIn(header[column]);
        if (other && !other->number)
            return {};
        if (other && fault.empty())
            fault = "column " + std::to_string(column + 1) + ": found " + inQuotes(header[column]) +
                    ", expected x y z of each point, one point after the other";
    }
    findTime(header, columns);
    return columns;
}

std::optional<WideColumns> wideColumnsOf(std::size_t count)
{
    constexpr std::size_t fewest = 6; // of two points
    WideColumns columns;
    columns.count = count;
    columns.first = count % 3;
    columns.points = count / 3;
    if (columns.first > 1 || count < fewest)
        return {};
    if (columns.first == 1)
        columns.time = 0;
    return columns;
}

std::string nameOf(std::size_t column, const WideColumns& columns)
{
    if (!columns.hasCoordinate(column))
        return columns.isTimeNumber ? "frame" : "t";
    const std::size_t place = column - columns.first;
    return AXES[place % 3] + std::to_string(columns.firstNumber + place / 3);
}

} // namespace strandview
