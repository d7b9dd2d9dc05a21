// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/TableReader.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

#include "readers/RodChecks.h"
#include "readers/RodCollector.h"
#include "readers/wording.h"

namespace {

/// The columns that place a point, in the order of a table without a header.
constexpr std::array<std::string_view, 7> geometryNames = {"x", "y", "z", "qx", "qy", "qz", "qw"};
constexpr std::size_t noColumn = static_cast<std::size_t>(-1);

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }
bool isComma(char c) { return c == ',' || c == ';'; }
bool endsLine(char c) { return c == '\n' || c == '\r'; }
bool isPartOfField(char c) { return !isBlank(c) && !isComma(c) && !endsLine(c) && c != '#'; }

/// A place in the text that moves on by fields within a line, and by lines.
/// A copy looks ahead.
class FieldScanner
{
public:
    explicit FieldScanner(std::string_view wholeText) : text(wholeText) {}

    bool isAtEnd() const { return position == text.size(); }
    std::size_t getLine() const { return line; }

    /// The next field of the line: empty between two commas, none at the end of the line.
    std::optional<std::string_view> nextField()
    {
        skipBlanks();
        if (!isAtField() && !isAtComma() && !afterComma)
            return {};
        const std::size_t start = position;
        while (isAtField())
            ++position;
        const std::string_view field = text.substr(start, position - start);
        skipBlanks();
        afterComma = isAtComma();
        if (afterComma)
            ++position;
        return field;
    }

    /// To be asked at the start of a line; a line of a comment only is not blank.
    bool isLineBlank()
    {
        skipBlanks();
        return isAtEnd() || endsLine(text[position]);
    }

    void nextLine()
    {
        while (!isAtEnd() && !endsLine(text[position]))
            ++position;
        if (!isAtEnd() && text[position++] == '\r' && !isAtEnd() && text[position] == '\n')
            ++position;
        afterComma = false;
        ++line;
    }

private:
    void skipBlanks()
    {
        while (!isAtEnd() && isBlank(text[position]))
            ++position;
    }
    bool isAtField() const { return !isAtEnd() && isPartOfField(text[position]); }
    bool isAtComma() const { return !isAtEnd() && isComma(text[position]); }

    std::string_view text;
    std::size_t position = 0;
    std::size_t line = 1;
    bool afterComma = false; ///< the line owes a field
};

/// By value: the rest of the line the scanner is in.
std::vector<std::string_view> remainingFields(FieldScanner scanner)
{
    std::vector<std::string_view> fields;
    while (const auto field = scanner.nextField())
        fields.push_back(*field);
    return fields;
}

/// Reads a whole field as C or Fortran writes numbers: "+1.5", ".5", "1e-3", "1D-3".
/// result_out_of_range if no double can hold it, invalid_argument if it is no number.
std::errc parseNumber(std::string_view field, double& number)
{
    if (field.size() > 1 && field[0] == '+' && field[1] != '-')
        field.remove_prefix(1);
    const char* end = field.data() + field.size();
    const auto [stop, status] = std::from_chars(field.data(), end, number);
    if (stop == end)
        return status;
    if (*stop != 'd' && *stop != 'D')
        return std::errc::invalid_argument;
    std::string withE(field);
    withE[stop - field.data()] = 'e';
    return parseNumber(withE, number);
}

bool isNumber(std::string_view field)
{
    double ignored;
    return parseNumber(field, ignored) != std::errc::invalid_argument;
}

/// Null, or what should stand there instead of this field.
const char* readNumber(std::string_view field, double& number)
{
    const std::errc status = parseNumber(field, number);
    if (status == std::errc::result_out_of_range)
        return "a number within the range of double precision";
    return status == std::errc() && std::isfinite(number) ? nullptr : expectedNumber;
}

std::string foundField(std::string_view field)
{
    return field.empty() ? "found an empty field" : "found " + inQuotes(field);
}

std::size_t indexOfGeometryName(std::string_view name)
{
    const auto found = std::find(geometryNames.begin(), geometryNames.end(), name);
    return found == geometryNames.end() ? noColumn : found - geometryNames.begin();
}

/// A column's name: x y z qx qy qz qw in lower case, any other as it is.
std::string nameOfColumn(std::string_view field)
{
    std::string lower(field);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return indexOfGeometryName(lower) == noColumn ? std::string(field) : lower;
}

bool isGeometryName(std::string_view field)
{
    return indexOfGeometryName(nameOfColumn(field)) != noColumn;
}

std::vector<std::string> namesOfColumns(const std::vector<std::string_view>& fields)
{
    std::vector<std::string> names(fields.size());
    std::transform(fields.begin(), fields.end(), names.begin(), nameOfColumn);
    return names;
}

std::vector<std::string> namesWithoutHeader(std::size_t count)
{
    std::vector<std::string> names(geometryNames.begin(),
                                   geometryNames.begin() + std::min<std::size_t>(count, 7));
    while (names.size() < count)
        names.push_back("column" + std::to_string(names.size() + 1));
    return names;
}

/// A row that is all names: none of its fields is a number.
bool isHeader(const std::vector<std::string_view>& fields)
{
    return std::none_of(fields.begin(), fields.end(), isNumber);
}

/// What the columns of the file are, fixed by its header or its first row.
struct Columns
{
    std::size_t line = 0; ///< where they were fixed; 0 before that
    std::vector<std::string> names;
    std::array<std::size_t, 7> geometry; ///< the column of each of geometryNames, or noColumn
    std::vector<std::size_t> scalars;    ///< the others

    Columns() { geometry.fill(noColumn); }

    bool haveRotations() const { return geometry[3] != noColumn; }
};

class TableReader
{
public:
    TableReader(std::string_view text, const std::string& tableName, const ReadOptions& readOptions,
                ReadReport& readReport)
        : scanner(text), fileName(tableName), options(readOptions), report(readReport)
    {}

    std::optional<Configuration> read()
    {
        for (; !scanner.isAtEnd(); scanner.nextLine())
            if (!readLine())
                return {};
        if (!finishRod())
            return {};
        return collector.finish(fileName, report);
    }

private:
    bool readLine()
    {
        if (scanner.isLineBlank())
            return finishRod();
        if (!rod.points.empty())
            return readRow();
        const std::vector<std::string_view> fields = remainingFields(scanner);
        if (fields.empty()) // a comment only
            return true;
        return startRod(fields);
    }

    /// The first line of a rod, or a header above it.
    bool startRod(const std::vector<std::string_view>& fields)
    {
        if (columns.line == 0)
            return isHeader(fields) ? takeHeader(fields)
                                    : takeColumnCount(fields.size()) && readRow();
        if (isHeader(fields) && namesOfColumns(fields) == columns.names)
            return true;
        return readRow();
    }

    bool takeColumnCount(std::size_t count)
    {
        if (count != 3 && count < geometryNames.size())
            return fail("found " + counted(count, "column") +
                        ", expected 3 (x y z), or 7 or more (x y z qx qy qz qw and scalars)");
        setColumns(namesWithoutHeader(count));
        return true;
    }

    bool takeHeader(const std::vector<std::string_view>& fields)
    {
        if (std::none_of(fields.begin(), fields.end(), isGeometryName))
            return fail("column 1: " + foundField(fields[0]) +
                        ", expected a number, or a header with x y z");
        std::vector<std::string> names;
        std::unordered_set<std::string> seen;
        for (const std::string_view field : fields) {
            const std::string column = columnText(names.size());
            names.push_back(nameOfColumn(field));
            if (field.empty())
                return fail(column + ": found an empty field, expected a column's name");
            if (!seen.insert(names.back()).second)
                return fail(column + ": found " + inQuotes(field) +
                            " again, expected each name once");
        }
        setColumns(std::move(names));
        return checkHeader();
    }

    bool checkHeader()
    {
        const bool anyRotation = std::any_of(columns.geometry.begin() + 3, columns.geometry.end(),
                                             [](std::size_t column) { return column != noColumn; });
        std::string missing;
        for (std::size_t i = 0; i < (anyRotation ? 7 : 3); ++i)
            if (columns.geometry[i] == noColumn)
                missing += " " + std::string(geometryNames[i]);
        if (missing.empty())
            return true;
        return fail("found a header without" + missing +
                    ", expected x y z and all or none of qx qy qz qw");
    }

    void setColumns(std::vector<std::string> names)
    {
        columns.line = scanner.getLine();
        columns.names = std::move(names);
        for (std::size_t c = 0; c < columns.names.size(); ++c) {
            const std::size_t index = indexOfGeometryName(columns.names[c]);
            if (index == noColumn)
                columns.scalars.push_back(c);
            else
                columns.geometry[index] = c;
        }
        row.resize(columns.names.size());
    }

    bool readRow()
    {
        std::size_t count = 0;
        for (; const auto field = scanner.nextField(); ++count) {
            if (count >= row.size())
                continue; // to say how many there are
            if (const char* expected = readNumber(*field, row[count]))
                return fail(nameText(count) + ": " + foundField(*field) + ", expected " + expected);
        }
        if (count == 0) // a comment only
            return true;
        if (count != row.size())
            return fail("found " + counted(count, "column") + ", expected " +
                        std::to_string(row.size()) + " as in line " + std::to_string(columns.line));
        return addPoint();
    }

    /// The row's numbers become the rod's next point.
    bool addPoint()
    {
        const auto& at = columns.geometry;
        for (std::size_t i = 0; i < 3; ++i)
            if (!isCoordinate(row[at[i]]))
                return fail(nameText(at[i]) + ": found " + formatted(row[at[i]]) + ", expected " +
                            expectedCoordinate);
        if (rod.points.empty())
            openRod();
        rod.points.emplace_back(row[at[0]], row[at[1]], row[at[2]]);
        for (std::size_t i = 0; i < columns.scalars.size(); ++i)
            rod.scalars[i].values.push_back(row[columns.scalars[i]]);
        if (!columns.haveRotations())
            return true;
        rod.rotations.emplace_back(row[at[3]], row[at[4]], row[at[5]], row[at[6]]);
        const std::string fault = checkRotation(rod.rotations.back(), options);
        return fault.empty() || fail("columns qx qy qz qw: " + fault);
    }

    void openRod()
    {
        firstLine = scanner.getLine();
        for (const std::size_t c : columns.scalars)
            rod.scalars.push_back({columns.names[c], {}});
    }

    bool finishRod()
    {
        if (rod.points.empty())
            return true;
        const std::string fault = collector.add(std::exchange(rod, Rod()));
        return fault.empty() || failInLine(firstLine, fault);
    }

    std::string columnText(std::size_t column) const
    {
        return "column " + std::to_string(column + 1);
    }
    std::string nameText(std::size_t column) const
    {
        return columnText(column) + " (" + shortened(columns.names[column]) + ")";
    }

    /// Always false.
    bool fail(const std::string& text) { return failInLine(scanner.getLine(), text); }
    bool failInLine(std::size_t line, const std::string& text)
    {
        report.error = fileName + ":" + std::to_string(line) + ": " + text;
        return false;
    }

    FieldScanner scanner;
    const std::string& fileName;
    const ReadOptions& options;
    ReadReport& report;
    Columns columns;
    std::vector<double> row; ///< the numbers of one row, by column
    Rod rod;                 ///< the one being read; without points between rods
    std::size_t firstLine = 0;
    RodCollector collector;
};

} // namespace

std::optional<Configuration> readTable(std::string_view text, const std::string& fileName,
                                       const ReadOptions& options, ReadReport& report)
{
    return TableReader(text, fileName, options, report).read();
}
