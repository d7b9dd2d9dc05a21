// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/text/fields.h>

#include <algorithm>
#include <cstdint>

#include <strandview/formats/text/characters.h>
#include <strandview/formats/text/numbers.h>

namespace strandview {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\v' || c == '\f'; }
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

std::string_view withoutUnit(std::string_view field)
{
    const char last = field.empty() ? ' ' : field.back();
    if (last != ']' && last != ')')
        return field;
    const std::size_t bracket = field.rfind(last == ']' ? '[' : '(');
    return bracket == std::string_view::npos ? field : trimmed(field.substr(0, bracket));
}

bool hasOpenQuote(std::string_view field) { return !field.empty() && isQuote(field[0]); }

/// Of every character: a look into a table costs less than comparisons.
struct FieldScanner::Kinds
{
    constexpr Kinds()
    {
        set(" ", SPACE);
        set("\t\v\f", BLANK);
        set(",", COMMA);
        set(";", SEMICOLON);
        set("#", COMMENT);
        set("\n\r", END);
    }
    constexpr void set(std::string_view characters, std::uint8_t kind)
    {
        for (const char c : characters)
            at[static_cast<unsigned char>(c)] = kind;
    }
    bool isOne(char c, unsigned kinds) const { return at[static_cast<unsigned char>(c)] & kinds; }

    std::uint8_t at[256] = {};
};
constexpr FieldScanner::Kinds FieldScanner::KINDS;

bool FieldScanner::isAt(unsigned kinds) const
{
    return !isAtEnd() && KINDS.isOne(text[position], kinds);
}

std::optional<std::string_view> FieldScanner::nextField()
{
    skipBlanks();
    if (!isAtField() && !isAtComma() && !afterComma)
        return {};
    const std::string_view field = isAtField() && isQuote(text[position]) ? takeQuoted() : take();
    skipSeparator();
    return field;
}

bool FieldScanner::nextNumber(double& number)
{
    skipBlanks();
    const std::string_view rest(text.data() + position, text.size() - position);
    const std::size_t end = position + takePlainNumber(rest, number);
    if (end == position || (end < text.size() && !KINDS.isOne(text[end], separators)))
        return false;
    position = end;
    if (isAtLineEnd())
        afterComma = false;
    else
        skipSeparator();
    return true;
}

/// Behind a field.
void FieldScanner::skipSeparator()
{
    skipBlanks();
    afterComma = isAtComma();
    if (afterComma)
        ++position;
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
    return text.substr(position, findLineEnd(text, position) - position);
}

void FieldScanner::nextLine()
{
    if (!isAtLineEnd())
        position = mayHaveReturns ? findLineEnd(text, position)
                                  : std::min(text.find('\n', position), text.size());
    if (!isAtEnd() && text[position++] == '\r' && !isAtEnd() && text[position] == '\n')
        ++position;
    afterComma = false;
    ++line;
}

void FieldScanner::skip(unsigned kinds)
{
    std::size_t place = position;
    while (place < text.size() && KINDS.isOne(text[place], kinds))
        ++place;
    position = place;
}

void FieldScanner::skipTo(unsigned kinds)
{
    std::size_t place = position;
    while (place < text.size() && !KINDS.isOne(text[place], kinds))
        ++place;
    position = place;
}

std::string_view FieldScanner::take()
{
    const std::size_t start = position;
    skipTo(separators);
    const std::string_view field = text.substr(start, position - start);
    return separators & SPACE ? field : trimmed(field);
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
