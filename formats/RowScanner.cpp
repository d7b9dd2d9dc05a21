// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/RowScanner.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

#include <strandview/formats/checks.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

RowScanner::RowScanner(std::string_view wholeText, const std::string& sourceName,
                       ReadReport& readReport, std::size_t firstLine)
    : scanner(wholeText), name(sourceName), report(readReport), before(firstLine - 1)
{}

bool RowScanner::nextLine()
{
    if (hasBegun && !scanner.isAtEnd())
        scanner.nextLine();
    hasBegun = true;
    column = 0;
    return !scanner.isAtEnd();
}

bool RowScanner::nextRow()
{
    while (nextLine())
        if (!scanner.isLineBlank() && !scanner.isLineComment())
            return true;
    return false;
}

bool RowScanner::nextRow(const std::string& expected)
{
    return nextRow() || fail("found the end of the file, expected " + expected);
}

std::optional<std::string_view> RowScanner::nextField()
{
    ++column;
    return scanner.nextField();
}

bool RowScanner::takeNumbers(double* numbers, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        if (scanner.nextNumber(numbers[i])) {
            ++column;
            continue;
        }
        const std::optional<std::string_view> field = nextField();
        if (!field)
            return fail("found " + counted(column - 1, "column") + ", expected " +
                        std::to_string(column - 1 + count - i));
        if (parseNumber(*field, numbers[i]) != std::errc() || !std::isfinite(numbers[i]))
            return failInColumn("found " + inQuotes(*field) + ", expected " + EXPECTED_NUMBER);
    }
    return true;
}

bool RowScanner::takeCount(std::size_t& count, const std::string& expected)
{
    const std::string_view field = nextField().value_or("");
    const char* const end = field.data() + field.size();
    const auto [stop, status] = std::from_chars(field.data(), end, count);
    return (status == std::errc() && stop == end) ||
           failInColumn("found " + inQuotes(field) + ", expected " + expected);
}

bool RowScanner::takePoint(algebra3d::Vector3<double>& point)
{
    double numbers[3];
    const std::size_t first = column + 1;
    if (!takeNumbers(numbers, 3))
        return false;
    for (std::size_t i = 0; i < 3; ++i) {
        column = first + i;
        if (!isCoordinate(numbers[i]))
            return failInColumn("found " + formatted(numbers[i]) + ", expected " +
                                EXPECTED_COORDINATE);
    }
    point = algebra3d::Vector3<double>(numbers);
    return true;
}

std::string RowScanner::place() const { return name + ":" + std::to_string(getLine()) + ": "; }

bool RowScanner::fail(const std::string& text)
{
    report.error = place() + text;
    return false;
}

bool RowScanner::failInColumn(const std::string& text)
{
    return fail("column " + std::to_string(column) + ": " + text);
}

std::size_t countLines(std::string_view text)
{
    const auto ends = std::count(text.begin(), text.end(), '\n');
    return std::size_t(ends) + std::size_t(std::count(text.begin(), text.end(), '\r')) + 1;
}

} // namespace strandview
