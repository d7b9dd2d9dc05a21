// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_ROWSCANNER_H
#define STRANDVIEW_FORMATS_ROWSCANNER_H

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <algebra3d/Vector3.h>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// The rows of a text one after another: lines that have a field. What is wrong in one becomes
/// report.error, "name:line: column 3: found ..., expected ...", and false.
///
/// The text, the name and the report must outlive it.
class STRANDVIEW_FORMATS_EXPORT RowScanner
{
public:
    /// Of a text that begins with a line of this number.
    RowScanner(std::string_view wholeText, const std::string& sourceName, ReadReport& readReport,
               std::size_t firstLine = 1);

    /// Goes to the next row, the first one at first; false at the end. Blank lines and comments
    /// are left out.
    bool nextRow();
    /// The same, and fails at the end: "found the end of the file, expected ...".
    bool nextRow(const std::string& expected);

    /// Goes to the next line, whatever it holds, the first one at first; false at the end.
    bool nextLine();

    std::optional<std::string_view> nextField();
    /// Finite numbers in the next fields of the row.
    bool takeNumbers(double* numbers, std::size_t count);
    /// A whole number from 0 on in the next field.
    bool takeCount(std::size_t& count, const std::string& expected);
    /// Three coordinates.
    bool takePoint(algebra3d::Vector3<double>& point);
    /// What is left of the line, with its comment.
    std::string_view getRestOfLine() const { return scanner.getRestOfLine(); }

    /// Counted from the first one.
    std::size_t getLine() const { return before + scanner.getLine(); }
    /// In bytes, from 0.
    std::size_t getPosition() const { return scanner.getPosition(); }
    /// "name:line: "
    std::string place() const;
    /// Always false.
    bool fail(const std::string& text);
    /// About the field that came last.
    bool failInColumn(const std::string& text);

private:
    FieldScanner scanner;
    const std::string& name;
    ReadReport& report;
    const std::size_t before; ///< lines before the text
    std::size_t column = 0;   ///< of the field that came last, from 1
    bool hasBegun = false;
};

/// How many rows a text can have at most: its lines.
STRANDVIEW_FORMATS_EXPORT std::size_t countLines(std::string_view text);

} // namespace strandview

#endif
