// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/fields.h>

namespace strandview {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }
bool endsLine(char c) { return c == '\n' || c == '\r'; }
bool isQuote(char c) { return c == '"'; }

} // namespace

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

bool hasOpenQuote(std::string_view field) { return !field.empty() && isQuote(field[0]); }

bool FieldScanner::isPartOfField(char c) const
{
    return isBlank(c) ? c == ' ' && spacesAreText : !isComma(c) && !endsLine(c) && c != '#';
}

bool FieldScanner::isAtLineEnd() const { return isAtEnd() || endsLine(text[position]); }

std::optional<std::string_view> FieldScanner::nextField()
{
    skipBlanks();
    if (!isAtField() && !isAtComma() && !afterComma)
        return {};
    const std::string_view field = isAtField() && isQuote(text[position]) ? takeQuoted() : take();
    skipBlanks();
    afterComma = isAtComma();
    if (afterComma)
        ++position;
    return field;
}

bool FieldScanner::isLineBlank()
{
    skipBlanks();
    return isAtLineEnd();
}

bool FieldScanner::isLineComment()
{
    skipBlanks();
    return !isAtEnd() && (text[position] == '#' || text[position] == '%');
}

std::string_view FieldScanner::getRestOfLine() const
{
    return text.substr(position, text.find_first_of("\r\n", position) - position);
}

void FieldScanner::nextLine()
{
    while (!isAtLineEnd())
        ++position;
    if (!isAtEnd() && text[position++] == '\r' && !isAtEnd() && text[position] == '\n')
        ++position;
    afterComma = false;
    ++line;
}

void FieldScanner::skipBlanks()
{
    while (!isAtEnd() && isBlank(text[position]))
        ++position;
}

std::string_view FieldScanner::take()
{
    const std::size_t start = position;
    while (isAtField())
        ++position;
    const std::string_view field = text.substr(start, position - start);
    return spacesAreText ? trimmed(field) : field;
}

std::string_view FieldScanner::takeQuoted()
{
    const std::size_t start = position++;
    while (!isAtLineEnd() && !isQuote(text[position]))
        ++position;
    if (isAtLineEnd())
        return text.substr(start, position - start);
    const std::string_view field = text.substr(start + 1, position++ - start - 1);
    return take().empty() ? trimmed(field) : text.substr(start, position - start);
}

std::vector<std::string_view> remainingFields(FieldScanner scanner)
{
    std::vector<std::string_view> fields;
    while (const auto field = scanner.nextField())
        fields.push_back(*field);
    return fields;
}

} // namespace strandview
