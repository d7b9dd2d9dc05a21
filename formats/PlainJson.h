// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_PLAINJSON_H
#define STRANDVIEW_FORMATS_PLAINJSON_H

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include <strandview/formats/text/numbers.h>

namespace strandview {

/// Tells a handler what a text in JSON holds, several times as fast as a parser that also has words
/// for what is wrong: what this one refuses is for such a one to read again from the beginning. It
/// refuses all that is no JSON, and whole numbers that are no doubles.
///
/// The handler has the operations of nlohmann::json_sax, each of which answers whether to go on,
/// and decode(), which makes a text of a string in quotes that has escapes or more than ASCII, if
/// it is one. It bounds how deep arrays and objects go: the parser calls itself for what is in
/// them.
template <typename Handler>
class PlainJson
{
public:
    /// The place moves from the text's beginning to where the parser is.
    PlainJson(const char*& movingPlace, const char* textEnd, Handler& itsHandler)
        : place(movingPlace), end(textEnd), handler(itsHandler)
    {}

    /// Whether there is one value, of which the handler took all.
    bool parse()
    {
        if (!takeValue())
            return false;
        skipBlanks();
        return place == end;
    }
    /// Whether the handler did not want to go on.
    bool isStopped() const { return stopped; }

private:
    bool tell(bool goesOn)
    {
        stopped = !goesOn;
        return goesOn;
    }

    void skipBlanks()
    {
        while (place < end && (*place == ' ' || *place == '\n' || *place == '\r' || *place == '\t'))
            ++place;
    }

    bool take(char c)
    {
        skipBlanks();
        const bool isThere = place < end && *place == c;
        place += isThere;
        return isThere;
    }

    bool takeWord(std::string_view word)
    {
        const bool isThere =
            std::string_view(place, std::size_t(end - place)).substr(0, word.size()) == word;
        place += isThere ? word.size() : 0;
        return isThere;
    }

    bool takeValue()
    {
        skipBlanks();
        switch (place < end ? *place : '\0') {
        case '{':
            return takeObject();
        case '[':
            return takeArray();
        case '"': {
            std::string text;
            return takeString(text) && tell(handler.string(text));
        }
        case 't':
            return takeWord("true") && tell(handler.boolean(true));
        case 'f':
            return takeWord("false") && tell(handler.boolean(false));
        case 'n':
            return takeWord("null") && tell(handler.null());
        default:
            return takeNumber();
        }
    }

    bool takeObject()
    {
        ++place;
        if (!tell(handler.start_object(UNKNOWN_SIZE)))
            return false;
        if (!take('}')) {
            std::string key;
            do {
                skipBlanks();
                if (!takeString(key) || !tell(handler.key(key)) || !take(':') || !takeValue())
                    return false;
            } while (take(','));
            if (!take('}'))
                return false;
        }
        return tell(handler.end_object());
    }

    bool takeArray()
    {
        ++place;
        if (!tell(handler.start_array(UNKNOWN_SIZE)))
            return false;
        if (!take(']')) {
            do {
                if (!takeValue())
                    return false;
            } while (take(','));
            if (!take(']'))
                return false;
        }
        return tell(handler.end_array());
    }

    /// What has any but plain characters is left to the handler.
    bool takeString(std::string& text)
    {
        if (place == end || *place != '"')
            return false;
        const char* const begin = place++;
        bool isPlain = true;
        for (; place < end && *place != '"'; ++place) {
            isPlain = isPlain && *place >= ' ' && *place < '\x7f' && *place != '\\';
            if (*place == '\\' && ++place == end)
                return false;
        }
        if (place++ == end)
            return false;
        if (isPlain) {
            text.assign(begin + 1, place - 1);
            return true;
        }
        return handler.decode(std::string_view(begin, std::size_t(place - begin)), text);
    }

    bool takeNumber()
    {
        double number = 0;
        const char* const begin = place;
        const char* const first = begin + (begin < end && *begin == '-');
        if (first == end || !isDigit(*first) ||
            (*first == '0' && first + 1 < end && isDigit(first[1])))
            return false;
        const std::size_t size =
            takePlainNumber(std::string_view(begin, std::size_t(end - begin)), number);
        place = begin + size;
        if (size == 0 || (place < end && (*place == 'e' || *place == 'E')))
            return takeLongNumber(begin, first);
        if (!std::memchr(begin, '.', size))
            return tell(handler.number_integer(std::int64_t(number)));
        return isDigit(place[-1]) && tell(handler.number_float(number, std::string()));
    }

    /// With an exponent, or of many digits.
    bool takeLongNumber(const char* begin, const char* first)
    {
        place = first;
        skipDigits();
        const char* const afterWhole = place;
        if (place < end && *place == '.' && (++place, !skipDigits()))
            return false;
        if (place < end && (*place == 'e' || *place == 'E')) {
            ++place;
            if (place < end && (*place == '+' || *place == '-'))
                ++place;
            if (!skipDigits())
                return false;
        }
        double number = 0;
        const auto [stop, status] = std::from_chars(begin, place, number);
        return place != afterWhole && status == std::errc() && stop == place &&
               tell(handler.number_float(number, std::string()));
    }

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }

    bool skipDigits()
    {
        const char* const begin = place;
        while (place < end && isDigit(*place))
            ++place;
        return place > begin;
    }

    static constexpr std::size_t UNKNOWN_SIZE = static_cast<std::size_t>(-1);

    const char*& place;
    const char* const end;
    Handler& handler;
    bool stopped = false;
};

} // namespace strandview

#endif
