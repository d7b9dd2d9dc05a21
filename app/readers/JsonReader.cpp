// SPDX-License-Identifier: GPL-3.0-or-later
#include "readers/JsonReader.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <unordered_set>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "readers/RodChecks.h"
#include "readers/RodCollector.h"
#include "readers/wording.h"

namespace {

/// Everything that the format has a place for.
enum class Place {
    file,
    version,
    rods,
    rod,
    points,
    point,
    quaternions,
    quaternion,
    scalars,
    values,
    number
};

enum class Kind { object, array, number };

/// What a place holds.
struct Rule
{
    Kind kind;
    Place element; ///< of every element; unused for numbers and for objects with Members
    const char* expected;
};

constexpr Rule rules[] = {
    /* file */ {Kind::object, Place::file, "an object with strandview and rods"},
    /* version */ {Kind::number, Place::version, "1"},
    /* rods */ {Kind::array, Place::rod, "an array of rods"},
    /* rod */ {Kind::object, Place::rod, "an object with points"},
    /* points */ {Kind::array, Place::point, "an array of points"},
    /* point */ {Kind::array, Place::number, "an array of 3 numbers"},
    /* quaternions */ {Kind::array, Place::quaternion, "an array of quaternions"},
    /* quaternion */ {Kind::array, Place::number, "an array of 4 numbers"},
    /* scalars */ {Kind::object, Place::values, "an object of arrays of numbers"},
    /* values */ {Kind::array, Place::number, "an array of numbers"},
    /* number */ {Kind::number, Place::number, expectedNumber},
};

const Rule& ruleOf(Place place) { return rules[static_cast<std::size_t>(place)]; }

/// A key with a meaning of its own; those of scalars are free.
struct Member
{
    Place owner;
    Place place;
    const char* key;
};

constexpr Member members[] = {
    {Place::file, Place::version, "strandview"}, {Place::file, Place::rods, "rods"},
    {Place::rod, Place::points, "points"},       {Place::rod, Place::quaternions, "quaternions"},
    {Place::rod, Place::scalars, "scalars"},
};

const Member* findMember(Place owner, const std::string& key)
{
    for (const Member& member : members)
        if (member.owner == owner && member.key == key)
            return &member;
    return nullptr;
}

std::string keysOf(Place owner)
{
    std::string keys;
    for (const Member& member : members)
        if (member.owner == owner)
            keys += (keys.empty() ? "" : ", ") + std::string(member.key);
    return keys;
}

/// An object or array that the parser is in, and where in it.
struct Level
{
    Place place;
    std::size_t index = 0;                ///< of the current element, in an array
    std::string key;                      ///< of the current member, in an object
    std::unordered_set<std::string> keys; ///< all so far, in an object
};

/// ".key", or "['odd key']" where a dot could mislead.
std::string memberText(const std::string& key)
{
    const bool isPlain = !key.empty() && std::all_of(key.begin(), key.end(), [](unsigned char c) {
        return c == '_' || (c < 0x80 && std::isalnum(c));
    });
    return isPlain ? "." + shortened(key) : "[" + inQuotes(key) + "]";
}

/// What the parser expected by the end of its message, in our words.
std::string expectedByParser(std::string_view message)
{
    constexpr std::pair<std::string_view, const char*> wordings[] = {
        {"expected ']'", "',' or ']'"}, {"expected '}'", "',' or '}'"},
        {"expected ':'", "':'"},        {"expected string literal", "a key in double quotes"},
        {"or a literal", "a value"},    {"expected end of input", "the end of the file"}};
    for (const auto& [theirs, ours] : wordings)
        if (message.size() >= theirs.size() &&
            message.substr(message.size() - theirs.size()) == theirs)
            return ours;
    return "valid JSON in UTF-8";
}

/// The byte and what belongs to it: up to the next blanks and punctuation of JSON.
std::string_view wordAround(std::string_view text, std::size_t byte)
{
    constexpr std::string_view punctuation = " \t\r\n,:[]{}";
    if (punctuation.find(text[byte]) != std::string_view::npos)
        return text.substr(byte, 1);
    const std::size_t start = text.find_last_of(punctuation, byte) + 1; // 0 if there is none
    return text.substr(start, text.find_first_of(punctuation, byte) - start);
}

/// "line:column" of a byte; the column counts characters, not bytes.
std::string placeInText(std::string_view text, std::size_t byte)
{
    const std::string_view before = text.substr(0, byte);
    const std::size_t lineStart = before.rfind('\n') + 1; // 0 without a line end
    const auto line = std::count(before.begin(), before.end(), '\n') + 1;
    const auto column = std::count_if(before.begin() + lineStart, before.end(),
                                      [](unsigned char c) { return (c & 0xC0) != 0x80; }) +
                        1;
    return std::to_string(line) + ":" + std::to_string(column);
}

/// Is told every event of the parser, in the order of the text, and keeps no more of
/// it than the rod being read. Each event answers whether to go on.
class JsonReader : public nlohmann::json_sax<nlohmann::json>
{
public:
    JsonReader(std::string_view wholeText, const std::string& jsonName,
               const ReadOptions& readOptions, ReadReport& readReport)
        : text(wholeText), fileName(jsonName), options(readOptions), report(readReport)
    {}

    std::optional<Configuration> read()
    {
        // To the parser this character is the end of the text.
        const std::size_t nul = text.find('\0');
        if (nul != std::string_view::npos) {
            failInText(nul, "found a character of code 0, expected valid JSON in UTF-8");
            return {};
        }
        if (!nlohmann::json::sax_parse(text.begin(), text.end(), this))
            return {};
        return collector.finish(fileName, report);
    }

    bool null() override { return failExpected("null"); }
    bool boolean(bool value) override { return failExpected(value ? "true" : "false"); }
    bool string(std::string& value) override
    {
        return failExpected("the string " + inQuotes(value));
    }
    bool binary(binary_t&) override { return failExpected("binary data"); }
    bool number_integer(std::int64_t value) override { return number(static_cast<double>(value)); }
    bool number_unsigned(std::uint64_t value) override
    {
        return number(static_cast<double>(value));
    }
    bool number_float(double value, const std::string&) override { return number(value); }

    bool start_object(std::size_t) override { return enter(Kind::object, "an object"); }
    bool start_array(std::size_t) override { return enter(Kind::array, "an array"); }

    bool key(std::string& value) override
    {
        Level& level = levels.back();
        level.key = value;
        if (level.place != Place::scalars && !findMember(level.place, value))
            return fail("found an unknown key, expected one of " + keysOf(level.place));
        if (!level.keys.insert(value).second)
            return fail("found a second time, expected each key once");
        if (level.place == Place::scalars)
            rod.scalars.push_back({value, {}});
        return true;
    }

    bool end_object() override
    {
        const Level level = leave();
        if (level.place == Place::file)
            return requireKey(level, "strandview") && requireKey(level, "rods") && goOn();
        if (level.place == Place::rod)
            return requireKey(level, "points") && finishRod(level) && goOn();
        return goOn();
    }

    bool end_array() override
    {
        const Level level = leave();
        if (level.place == Place::point)
            return requireCount(level, 3) && addPoint() && goOn();
        if (level.place == Place::quaternion)
            return requireCount(level, 4) && addRotation() && goOn();
        return goOn();
    }

    /// The position is behind the character at which the parser stopped.
    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::json::exception& error) override
    {
        const bool isTooLarge = dynamic_cast<const nlohmann::json::out_of_range*>(&error);
        const std::string expected =
            ", expected " + (isTooLarge ? expectedNumber : expectedByParser(error.what()));
        if (position > text.size())
            return failInText(text.size(), "found the end of the file" + expected);
        const std::string_view word = wordAround(text, position - 1);
        return failInText(word.data() - text.data(), "found " + inQuotes(word) + expected);
    }

private:
    /// Of the value that comes next.
    Place nextPlace() const
    {
        if (levels.empty())
            return Place::file;
        const Level& level = levels.back();
        const Member* member = findMember(level.place, level.key);
        return member ? member->place : ruleOf(level.place).element;
    }

    bool enter(Kind kind, const char* found)
    {
        const Place place = nextPlace();
        if (ruleOf(place).kind != kind)
            return failExpected(found);
        levels.push_back({place, 0, {}, {}});
        return true;
    }

    Level leave()
    {
        Level level = std::move(levels.back());
        levels.pop_back();
        return level;
    }

    /// A value is complete.
    bool goOn()
    {
        if (!levels.empty())
            ++levels.back().index;
        return true;
    }

    bool number(double value)
    {
        const Place place = nextPlace();
        if (ruleOf(place).kind != Kind::number || (place == Place::version && value != 1))
            return failExpected(formatted(value));
        if (place == Place::number && !addNumber(levels.back(), value))
            return false;
        return goOn();
    }

    /// The number is the current element of a point, a quaternion or a scalar's values.
    bool addNumber(const Level& level, double value)
    {
        if (level.place == Place::values)
            rod.scalars.back().values.push_back(value);
        else if (level.place == Place::point && !isCoordinate(value))
            return fail("found " + formatted(value) + ", expected " + expectedCoordinate);
        else if (level.index < components.size())
            components[level.index] = value;
        return true;
    }

    bool addPoint()
    {
        rod.points.emplace_back(components[0], components[1], components[2]);
        return true;
    }

    bool addRotation()
    {
        rod.rotations.emplace_back(components[0], components[1], components[2], components[3]);
        const std::string fault = checkRotation(rod.rotations.back(), options);
        return fault.empty() || fail(fault);
    }

    bool finishRod(const Level& level)
    {
        if (level.keys.count("quaternions") &&
            !requireOnePerPoint(".quaternions", rod.rotations.size()))
            return false;
        for (const Scalar& scalar : rod.scalars)
            if (!requireOnePerPoint(".scalars" + memberText(scalar.name), scalar.values.size()))
                return false;
        rod.origin = fileName + ": " + path();
        const std::string fault = collector.add(std::exchange(rod, Rod()));
        return fault.empty() || failAt(path() + ".points", fault);
    }

    bool requireOnePerPoint(const std::string& member, std::size_t count)
    {
        return count == rod.points.size() ||
               failAt(path() + member, "found " + std::to_string(count) + ", expected " +
                                           std::to_string(rod.points.size()) +
                                           ", one for each point");
    }

    bool requireKey(const Level& level, const char* key)
    {
        return level.keys.count(key) || fail("found no key " + std::string(key) + ", expected one");
    }

    bool requireCount(const Level& level, std::size_t count)
    {
        return level.index == count || fail("found " + counted(level.index, "number") +
                                            ", expected " + std::to_string(count));
    }

    /// Of the current value, as "rods[0].points[2]"; empty for the whole text.
    std::string path() const
    {
        std::string result;
        for (const Level& level : levels)
            result += ruleOf(level.place).kind == Kind::array
                          ? "[" + std::to_string(level.index) + "]"
                          : memberText(level.key);
        return result.substr(!result.empty() && result[0] == '.' ? 1 : 0);
    }

    /// These are always false.
    bool failExpected(const std::string& found)
    {
        return fail("found " + found + ", expected " + ruleOf(nextPlace()).expected);
    }
    bool fail(const std::string& what) { return failAt(path(), what); }
    bool failAt(const std::string& place, const std::string& what)
    {
        report.error = fileName + ": " + (place.empty() ? "" : place + ": ") + what;
        return false;
    }
    bool failInText(std::size_t byte, const std::string& what)
    {
        report.error = fileName + ":" + placeInText(text, byte) + ": " + what;
        return false;
    }

    std::string_view text;
    const std::string& fileName;
    const ReadOptions& options;
    ReadReport& report;
    std::vector<Level> levels;        ///< from the outermost in
    std::array<double, 4> components; ///< of the point or quaternion being read
    Rod rod;                          ///< the one being read
    RodCollector collector;
};

} // namespace

std::optional<Configuration> readJson(std::string_view text, const std::string& fileName,
                                      const ReadOptions& options, ReadReport& report)
{
    return JsonReader(text, fileName, options, report).read();
}
