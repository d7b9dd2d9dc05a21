// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_TEXT_FIELDS_H
#define STRANDVIEW_FORMATS_TEXT_FIELDS_H

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include <strandview/formatsExport.h>

namespace strandview {

/// The text without the blanks and tabs around it.
STRANDVIEW_FORMATS_EXPORT std::string_view trimmed(std::string_view text);

/// A name without a unit: the text before a last part in brackets, "x" for "x [m]" and "x(nm)".
STRANDVIEW_FORMATS_EXPORT std::string_view withoutUnit(std::string_view field);

/// Whether a field of FieldScanner lacks its closing quote.
STRANDVIEW_FORMATS_EXPORT bool hasOpenQuote(std::string_view field);

/// A place in a text that moves on by fields within a line, and by lines. A copy looks ahead.
///
/// Blanks, tabs, a comma or a semicolon separate fields, double quotes protect what is between
/// them, and "#" ends a line's fields. Lines end with LF, CR LF or CR. Fields are views of the
/// text, which must outlive them.
class FieldScanner
{
public:
    /// The line of that number is the text's first.
    explicit FieldScanner(std::string_view wholeText, std::size_t firstLine = 1)
        : text(wholeText), line(firstLine)
    {}

    bool isAtEnd() const { return position == text.size(); }
    std::size_t getLine() const { return line; }
    /// In bytes, from 0.
    std::size_t getPosition() const { return position; }

    /// From now on commas separate nothing.
    void makeCommasText() { separators &= ~COMMA; }
    bool areCommasText() const { return !(separators & COMMA); }
    /// From now on spaces separate nothing, but tabs still do.
    void makeSpacesText() { separators &= ~SPACE; }

    /// Looks once for CR: where there is none, lines are found faster. For whoever goes through all
    /// of the text.
    void lookForReturns() { mayHaveReturns = text.find('\r') != text.npos; }

    /// The next field of the line: empty between two commas, none at the end of the line.
    /// Of a field in double quotes it is the text between them; if it begins with a
    /// quote, the closing one is missing or does not end the field.
    STRANDVIEW_FORMATS_EXPORT std::optional<std::string_view> nextField();

    /// The same where the next field is a plain number (numbers.h); false at any other, and at the
    /// end of the line, which are left to nextField().
    STRANDVIEW_FORMATS_EXPORT bool nextNumber(double& number);

    /// Whether the line begins with a field, without a blank before it. Where it does not, it may
    /// be one all the same.
    bool isAtRow() const { return !isAtEnd() && static_cast<unsigned char>(text[position]) > '%'; }
    /// Whether the last field that was taken is the line's last.
    bool isAtRowEnd() const
    {
        return !afterComma && (isAtEnd() || text[position] == '\n' || text[position] == '\r');
    }

    /// These two are to be asked at the start of a line; a comment, from "#" or "%" on, is not
    /// blank.
    STRANDVIEW_FORMATS_EXPORT bool isLineBlank();
    STRANDVIEW_FORMATS_EXPORT bool isLineComment();

    /// What is left of this line, comments too, without its end.
    STRANDVIEW_FORMATS_EXPORT std::string_view getRestOfLine() const;

    /// Leaves out what is left of this one.
    STRANDVIEW_FORMATS_EXPORT void nextLine();

private:
    /// What a character may do, a bit each; most do nothing.
    enum Kind : unsigned { SPACE = 1, BLANK = 2, COMMA = 4, SEMICOLON = 8, COMMENT = 16, END = 32 };
    struct Kinds;
    static const Kinds KINDS;

    void skip(unsigned kinds);
    void skipTo(unsigned kinds);
    void skipSeparator();
    void skipBlanks() { skip(SPACE | BLANK); }
    std::string_view take();
    std::string_view takeQuoted();
    bool isAt(unsigned kinds) const;
    bool isAtField() const { return !isAtEnd() && !isAt(separators); }
    bool isAtComma() const { return isAt(separators & (COMMA | SEMICOLON)); }
    bool isAtLineEnd() const { return isAtEnd() || isAt(END); }

    std::string_view text;
    unsigned separators = SPACE | BLANK | COMMA | SEMICOLON | COMMENT | END; ///< of fields
    std::size_t position = 0;
    std::size_t line;
    bool afterComma = false; ///< the line owes a field
    bool mayHaveReturns = true;
};

/// By value: the rest of the line that the scanner is in.
STRANDVIEW_FORMATS_EXPORT std::vector<std::string_view> remainingFields(FieldScanner scanner);

} // namespace strandview

#endif
