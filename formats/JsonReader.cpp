// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/JsonReader.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <unordered_set>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include <algebra3d/largePages.h>

#include <strandview/formats/Collector.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/PlainJson.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/directors.h>
#include <strandview/formats/text/wording.h>
#include <strandview/model/MemorySeries.h>

namespace strandview {

namespace {

/// Everything that the format has a place for.
enum class Place {
    FILE,
    VERSION,
    LISTS, ///< of what is shown: those of a file, or of each frame of a series
    SERIES,
    STEP, ///< a frame of a series
    TIME,
    RODS,
    ROD,
    BIRODS,
    BIROD,
    DNAS,
    DNA,
    SEQUENCE,
    STRAND,
    MARKERS,
    MARKER,
    SHAPE,
    TRANSPARENCY,
    ID,
    FRAMES,
    FRAME,
    ARROWS,
    ARROW,
    BASES,
    BASE,
    LETTER,
    LENGTH,
    COLOUR,
    NAME,
    CLOSED,
    BACKBONE,
    MOLECULE,
    FRAMES_OF_ROD,
    POINTS,
    POINT,
    QUATERNIONS,
    QUATERNION,
    DIRECTORS_OF_ALL,
    DIRECTORS,
    DIRECTOR,
    SCALARS,
    VALUES,
    NUMBER
};

enum class Kind { OBJECT, ARRAY, NUMBER, TEXT, BOOLEAN };

/// What a place holds.
struct Rule
{
    Kind kind;
    Place element; ///< of every element; unused but for arrays and the free keys of scalars
    const char* expected;
};

constexpr char EXPECTED_LETTER[] = "A, C, G, T or N"; // model/Dna.h

constexpr Rule RULES[] = {
    /* file */ {
        Kind::OBJECT, Place::FILE,
        "an object with strandview and rods, birods, dna, markers, frames, arrows, bases or "
        "series"},
    /* version */ {Kind::NUMBER, Place::VERSION, "1"},
    /* lists */ {Kind::OBJECT, Place::LISTS, "an object of lists"},
    /* series */ {Kind::ARRAY, Place::STEP, "an array of frames"},
    /* step */
    {Kind::OBJECT, Place::STEP,
     "an object with rods, birods, dna, markers, frames, arrows or bases"},
    /* time */ {Kind::NUMBER, Place::TIME, EXPECTED_NUMBER},
    /* rods */ {Kind::ARRAY, Place::ROD, "an array of rods"},
    /* rod */ {Kind::OBJECT, Place::ROD, "an object with points"},
    /* birods */ {Kind::ARRAY, Place::BIROD, "an array of birods"},
    /* birod */ {Kind::OBJECT, Place::BIROD, "an object with average, strand1 and strand2"},
    /* dnas */ {Kind::ARRAY, Place::DNA, "an array of DNA"},
    /* dna */ {Kind::OBJECT, Place::DNA, "an object with sequence, pairs, strand1 and strand2"},
    /* sequence */ {Kind::TEXT, Place::SEQUENCE, "a string of A, C, G, T and N, or null"},
    /* strand */ {Kind::OBJECT, Place::STRAND, "an object with points and quaternions"},
    /* markers */ {Kind::ARRAY, Place::MARKER, "an array of markers"},
    /* marker */ {Kind::OBJECT, Place::MARKER, "an object with point"},
    /* shape */ {Kind::TEXT, Place::SHAPE, "sphere, cube or cross"},
    /* transparency */ {Kind::NUMBER, Place::TRANSPARENCY, "a number from 0 to 1"},
    /* id */ {Kind::NUMBER, Place::ID, "a whole number from -2^63 to 2^63 - 1"},
    /* frames */ {Kind::ARRAY, Place::FRAME, "an array of frames"},
    /* frame */ {Kind::OBJECT, Place::FRAME, "an object with point and quaternion"},
    /* arrows */ {Kind::ARRAY, Place::ARROW, "an array of arrows"},
    /* arrow */ {Kind::OBJECT, Place::ARROW, "an object with from and to"},
    /* bases */ {Kind::ARRAY, Place::BASE, "an array of bases"},
    /* base */ {Kind::OBJECT, Place::BASE, "an object with base, point and quaternion"},
    /* letter */ {Kind::TEXT, Place::LETTER, EXPECTED_LETTER},
    /* length */ {Kind::NUMBER, Place::LENGTH, "a number above 0 and up to 1e18"},
    /* colour */ {Kind::TEXT, Place::COLOUR, "a colour: #rrggbb or an SVG name"},
    /* name */ {Kind::TEXT, Place::NAME, "a string"},
    /* closed */ {Kind::BOOLEAN, Place::CLOSED, "true or false"},
    /* backbone */ {Kind::BOOLEAN, Place::BACKBONE, "true or false"},
    /* molecule */ {Kind::NUMBER, Place::MOLECULE, "a whole number from 1 to 9007199254740992"},
    /* framesOfRod */ {Kind::TEXT, Place::FRAMES_OF_ROD, "given or made"},
    /* points */ {Kind::ARRAY, Place::POINT, "an array of points"},
    /* point */ {Kind::ARRAY, Place::NUMBER, "an array of 3 numbers"},
    /* quaternions */ {Kind::ARRAY, Place::QUATERNION, "an array of quaternions"},
    /* quaternion */ {Kind::ARRAY, Place::NUMBER, "an array of 4 numbers"},
    /* directorsOfAll */ {Kind::ARRAY, Place::DIRECTORS, "an array of directors"},
    /* directors */ {Kind::ARRAY, Place::DIRECTOR, "an array of d1, d2 and d3"},
    /* director */ {Kind::ARRAY, Place::NUMBER, "an array of 3 numbers"},
    /* scalars */ {Kind::OBJECT, Place::VALUES, "an object of arrays of numbers"},
    /* values */ {Kind::ARRAY, Place::NUMBER, "an array of numbers"},
    /* number */ {Kind::NUMBER, Place::NUMBER, EXPECTED_NUMBER},
};

const Rule& ruleOf(Place place) { return RULES[static_cast<std::size_t>(place)]; }

enum class Need { REQUIRED, OPTIONAL };

/// A key with a meaning of its own; those of scalars are free.
struct Member
{
    Place owner;
    const char* key;
    Place place;
    Need need;
};

constexpr Member MEMBERS[] = {
    {Place::FILE, "strandview", Place::VERSION, Need::REQUIRED},
    {Place::FILE, "series", Place::SERIES, Need::OPTIONAL},
    {Place::STEP, "time", Place::TIME, Need::OPTIONAL},
    {Place::LISTS, "rods", Place::RODS, Need::OPTIONAL},
    {Place::LISTS, "birods", Place::BIRODS, Need::OPTIONAL},
    {Place::LISTS, "dna", Place::DNAS, Need::OPTIONAL},
    {Place::LISTS, "markers", Place::MARKERS, Need::OPTIONAL},
    {Place::LISTS, "frames", Place::FRAMES, Need::OPTIONAL},
    {Place::LISTS, "arrows", Place::ARROWS, Need::OPTIONAL},
    {Place::LISTS, "bases", Place::BASES, Need::OPTIONAL},
    {Place::ROD, "points", Place::POINTS, Need::REQUIRED},
    {Place::ROD, "quaternions", Place::QUATERNIONS, Need::OPTIONAL},
    {Place::ROD, "directors", Place::DIRECTORS_OF_ALL, Need::OPTIONAL},
    {Place::ROD, "scalars", Place::SCALARS, Need::OPTIONAL},
    {Place::ROD, "closed", Place::CLOSED, Need::OPTIONAL},
    {Place::ROD, "name", Place::NAME, Need::OPTIONAL},
    {Place::ROD, "colour", Place::COLOUR, Need::OPTIONAL},
    {Place::ROD, "radius", Place::LENGTH, Need::OPTIONAL},
    {Place::ROD, "backbone", Place::BACKBONE, Need::OPTIONAL},
    {Place::ROD, "molecule", Place::MOLECULE, Need::OPTIONAL},
    {Place::ROD, "frames", Place::FRAMES_OF_ROD, Need::OPTIONAL},
    {Place::BIROD, "average", Place::STRAND, Need::REQUIRED},
    {Place::BIROD, "strand1", Place::STRAND, Need::REQUIRED},
    {Place::BIROD, "strand2", Place::STRAND, Need::REQUIRED},
    {Place::DNA, "sequence", Place::SEQUENCE, Need::REQUIRED},
    {Place::DNA, "pairs", Place::STRAND, Need::REQUIRED},
    {Place::DNA, "strand1", Place::STRAND, Need::OPTIONAL},
    {Place::DNA, "strand2", Place::STRAND, Need::OPTIONAL},
    {Place::DNA, "closed", Place::CLOSED, Need::OPTIONAL},
    {Place::DNA, "name", Place::NAME, Need::OPTIONAL},
    {Place::DNA, "molecule", Place::MOLECULE, Need::OPTIONAL},
    {Place::STRAND, "points", Place::POINTS, Need::REQUIRED},
    {Place::STRAND, "quaternions", Place::QUATERNIONS, Need::OPTIONAL},
    {Place::STRAND, "directors", Place::DIRECTORS_OF_ALL, Need::OPTIONAL},
    {Place::MARKER, "point", Place::POINT, Need::REQUIRED},
    {Place::MARKER, "shape", Place::SHAPE, Need::OPTIONAL},
    {Place::MARKER, "size", Place::LENGTH, Need::OPTIONAL},
    {Place::MARKER, "colour", Place::COLOUR, Need::OPTIONAL},
    {Place::MARKER, "transparency", Place::TRANSPARENCY, Need::OPTIONAL},
    {Place::MARKER, "id", Place::ID, Need::OPTIONAL},
    {Place::FRAME, "point", Place::POINT, Need::REQUIRED},
    {Place::FRAME, "quaternion", Place::QUATERNION, Need::OPTIONAL},
    {Place::FRAME, "directors", Place::DIRECTORS, Need::OPTIONAL},
    {Place::FRAME, "size", Place::LENGTH, Need::OPTIONAL},
    {Place::ARROW, "from", Place::POINT, Need::REQUIRED},
    {Place::ARROW, "to", Place::POINT, Need::REQUIRED},
    {Place::ARROW, "radius", Place::LENGTH, Need::OPTIONAL},
    {Place::ARROW, "colour", Place::COLOUR, Need::OPTIONAL},
    {Place::BASE, "base", Place::LETTER, Need::REQUIRED},
    {Place::BASE, "point", Place::POINT, Need::REQUIRED},
    {Place::BASE, "quaternion", Place::QUATERNION, Need::OPTIONAL},
    {Place::BASE, "directors", Place::DIRECTORS, Need::OPTIONAL},
    {Place::BASE, "molecule", Place::MOLECULE, Need::OPTIONAL},
};

bool isOf(const Member& member, Place owner)
{
    return member.owner == owner ||
           (member.owner == Place::LISTS && (owner == Place::FILE || owner == Place::STEP));
}

const Member* findMember(Place owner, const std::string& key)
{
    for (const Member& member : MEMBERS)
        if (isOf(member, owner) && member.key == key)
            return &member;
    return nullptr;
}

std::string keysOf(Place owner)
{
    std::string keys;
    for (const Member& member : MEMBERS)
        if (isOf(member, owner))
            keys += (keys.empty() ? "" : ", ") + std::string(member.key);
    return keys;
}

constexpr std::pair<const char*, Marker::Shape> SHAPES[] = {{"sphere", Marker::Shape::SPHERE},
                                                            {"cube", Marker::Shape::CUBE},
                                                            {"cross", Marker::Shape::CROSS}};

/// Far more than there are, and exact in the double precision that other programs read.
constexpr std::int64_t LARGEST_MOLECULE = std::int64_t(1) << 53;

std::optional<char> parseLetter(char letter)
{
    return letter == 'N' || letter == 'n' ? UNKNOWN_BASE : parseBase(letter);
}

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;

/// Points with their frames, whatever they belong to.
struct Strand
{
    std::vector<Vector> points;
    std::vector<Quaternion> rotations;
};

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
        {"expected ']'", "',' or ']'"},
        {"expected '}'", "',' or '}'"},
        {"expected ':'", "':'"},
        {"expected string literal", "a key in double quotes"},
        {"or a literal", "a value"},
        {"contains the expected JSON", "a value"},
        {"expected end of input", "the end of the file"}};
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

/// "line:column" of a byte of a text that begins at a place; the column counts characters, not
/// bytes.
std::string placeInText(std::string_view text, std::size_t byte, const JsonPlace& begin)
{
    const std::string_view before = text.substr(0, byte);
    const std::size_t lineStart = before.rfind('\n') + 1; // 0 without a line end
    const auto lines = std::size_t(std::count(before.begin(), before.end(), '\n'));
    const auto characters =
        std::size_t(std::count_if(before.begin() + std::ptrdiff_t(lineStart), before.end(),
                                  [](unsigned char c) { return (c & 0xC0) != 0x80; }));
    return std::to_string(begin.line + lines) + ":" +
           std::to_string(characters + (lines == 0 ? begin.column : 1));
}

/// What of a file is read.
enum class Part {
    ALL_FRAMES,
    FIRST_FRAME, ///< where the others are checked
    ONE_FRAME,   ///< of a series, whose text is all there is
    OUTLINE      ///< of a file with a series, in which one frame without anything stands for all
};

/// A text as a part of its file.
struct PartOfFile
{
    Part part = Part::ALL_FRAMES;
    std::size_t frame = 0;            ///< of a series, the one or the last one
    std::optional<bool> isTimed = {}; ///< of the first frame, if that is known
    std::size_t seam = 0;             ///< from this byte on
    JsonPlace place = {};             ///< the text stands here
};

/// A place in the text that the parser moves on, and everybody sees.
class Cursor
{
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    Cursor(const char* start, const char*& shownPlace) : place(start), shown(&shownPlace) {}

    const char& operator*() const { return *place; }
    Cursor& operator++()
    {
        *shown = ++place;
        return *this;
    }
    bool operator==(const Cursor& other) const { return place == other.place; }
    bool operator!=(const Cursor& other) const { return place != other.place; }

private:
    const char* place;
    const char** shown;
};

/// Is told every event of the parser, in the order of the text, and keeps no more of
/// it than the rod, the DNA or the like being read. Each event answers whether to go on.
class JsonReader final : public nlohmann::json_sax<nlohmann::json>
{
public:
    JsonReader(std::string_view partText, const PartOfFile& partOfFile, const std::string& jsonName,
               const ReadOptions& readOptions, ReadReport& readReport)
        : text(partText),
          whole(partOfFile),
          fileName(jsonName),
          options(readOptions),
          report(readReport),
          milestones(readOptions, partText.size()),
          place(partText.data()),
          areTimed(partOfFile.isTimed),
          collector(readOptions)
    {
        if (whole.part != Part::ONE_FRAME)
            return;
        levels.push_back({Place::FILE, 0, "series", {}});
        levels.push_back({Place::SERIES, whole.frame, {}, {}});
    }

    /// What was read of the frames: all of them or the first, which is that of a file without a
    /// series.
    std::vector<Configuration> frames;
    std::vector<double> times; ///< of as many frames as the file has, or none

    bool isAnyShown = false; ///< by a frame
    std::string noneShown;   ///< what is said of the first one that shows nothing
    bool isCut = false;      ///< the text ends where more has to come

    enum class Parser {
        PLAIN,  ///< fast
        WORDED, ///< knows what is wrong with a text
    };
    enum class End { DONE, FAILED, REFUSED };

    /// Whether all of it is as it should be; or else that the plain parser cannot read it.
    End read(Parser parser)
    {
        // To the parser this character is the end of the text.
        const std::size_t nul = text.find('\0');
        if (nul != std::string_view::npos) {
            failInText(nul, "found a character of code 0, expected valid JSON in UTF-8");
            return End::FAILED;
        }
        const char* const end = text.data() + text.size();
        if (parser == Parser::PLAIN) {
            PlainJson plain(place, end, *this);
            if (!plain.parse())
                return plain.isStopped() ? End::FAILED : End::REFUSED;
        } else if (!nlohmann::json::sax_parse(Cursor(place, place), Cursor(end, place), this)) {
            return End::FAILED;
        }
        const bool isPart = whole.part == Part::ONE_FRAME || whole.part == Part::OUTLINE;
        return isPart || finishFile() ? End::DONE : End::FAILED;
    }

    /// Among a scalar's values it stands for one that is no number, and of a sequence for bases
    /// that are not known.
    bool null() override
    {
        if (nextPlace() == Place::SEQUENCE) {
            isSequenceNull = true;
            return goOn();
        }
        if (levels.empty() || levels.back().place != Place::VALUES)
            return failExpected("null");
        return addNumber(levels.back(), std::numeric_limits<double>::quiet_NaN()) && goOn();
    }
    bool boolean(bool value) override
    {
        const Place place = nextPlace();
        if (ruleOf(place).kind != Kind::BOOLEAN)
            return failExpected(value ? "true" : "false");
        bool& flag = place == Place::BACKBONE            ? rod.isBackbone
                     : levels.back().place == Place::ROD ? rod.isClosed
                                                         : dna.isClosed;
        flag = value;
        return goOn();
    }
    bool string(std::string& value) override
    {
        const Place place = nextPlace();
        if (ruleOf(place).kind != Kind::TEXT)
            return failExpected("the string " + inQuotes(value));
        return takeText(place, value) && goOn();
    }
    static bool decode(std::string_view quoted, std::string& value)
    {
        const auto parsed = nlohmann::json::parse(quoted, nullptr, false);
        if (parsed.is_string())
            value = parsed.get<std::string>();
        return parsed.is_string();
    }
    bool binary(binary_t&) override { return failExpected("binary data"); }
    bool number_integer(std::int64_t value) override { return wholeNumber(value); }
    bool number_unsigned(std::uint64_t value) override
    {
        constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
        return value <= largest ? wholeNumber(static_cast<std::int64_t>(value))
                                : number(static_cast<double>(value));
    }
    bool number_float(double value, const std::string&) override { return number(value); }

    bool start_object(std::size_t) override { return enter(Kind::OBJECT, "an object"); }
    bool start_array(std::size_t) override { return enter(Kind::ARRAY, "an array"); }

    bool key(std::string& value) override
    {
        Level& level = levels.back();
        const bool isOfOurs = level.place != Place::SCALARS;
        level.key = isOfOurs && value == "color" ? "colour" : value;
        if (isOfOurs && !findMember(level.place, level.key))
            return fail("found an unknown key, expected one of " + keysOf(level.place));
        if (!level.keys.insert(level.key).second)
            return fail("found a second time, expected each key once");
        if (isOfOurs && level.keys.count("directors") &&
            (level.keys.count("quaternions") || level.keys.count("quaternion")))
            return fail("found quaternions and directors, expected one of both");
        if (level.place == Place::FILE && !requireEither(level))
            return false;
        if (!isOfOurs)
            rod.scalars.push_back({value, {}});
        return true;
    }

    bool end_object() override
    {
        const Level level = leave();
        for (const Member& member : MEMBERS)
            if (isOf(member, level.place) && member.need == Need::REQUIRED &&
                !level.keys.count(member.key))
                return fail("found no key " + std::string(member.key) + ", expected one");
        return finish(level) && goOn();
    }

    bool end_array() override
    {
        const Level level = leave();
        if (level.place == Place::POINT)
            return requireCount(level, 3) && addPoint() && goOn();
        if (level.place == Place::DIRECTOR)
            return requireCount(level, 3) && addDirector() && goOn();
        if (level.place == Place::DIRECTORS)
            return requireCount(level, 3, "director") && addRotationOfDirectors() && goOn();
        if (level.place == Place::QUATERNION)
            return requireCount(level, 4) && addRotation() && goOn();
        if (level.place == Place::SERIES && level.index == 0)
            return fail("found 0 frames, expected at least 1");
        return goOn();
    }

    /// The position is behind the character at which the parser stopped.
    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::json::exception& error) override
    {
        const bool isTooLarge = dynamic_cast<const nlohmann::json::out_of_range*>(&error);
        const std::string expected =
            ", expected " + (isTooLarge ? EXPECTED_NUMBER : expectedByParser(error.what()));
        isCut = position > text.size();
        if (isCut)
            return failInText(text.size(), "found the end of the file" + expected);
        const std::string_view word = wordAround(text, position - 1);
        return failInText(word.data() - text.data(), "found " + inQuotes(word) + expected);
    }

private:
    /// Of the value that comes next.
    Place nextPlace() const
    {
        if (levels.empty())
            return Place::FILE;
        const Level& level = levels.back();
        const Rule& rule = ruleOf(level.place);
        const Member* member =
            rule.kind == Kind::OBJECT ? findMember(level.place, level.key) : nullptr;
        return member ? member->place : rule.element;
    }

    bool enter(Kind kind, const char* found)
    {
        const Place place = nextPlace();
        if (ruleOf(place).kind != kind)
            return failExpected(found);
        const bool isOutlined = place == Place::SERIES && whole.part == Part::OUTLINE;
        levels.push_back({place, isOutlined ? whole.frame : 0, {}, {}});
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
        return milestones.pass(std::size_t(place - text.data())) || failAt("", READING_STOPPED);
    }

    bool wholeNumber(std::int64_t value)
    {
        const Place place = nextPlace();
        if (place == Place::MOLECULE && value >= 1 && value <= LARGEST_MOLECULE)
            currentMolecule() = static_cast<std::size_t>(value);
        else if (place == Place::ID)
            marker.id = value;
        else
            return number(static_cast<double>(value));
        return goOn();
    }

    bool number(double value)
    {
        const Place place = nextPlace();
        if (!mayStandAt(place, value))
            return failExpected(formatted(value));
        if (place == Place::NUMBER && !addNumber(levels.back(), value))
            return false;
        if (place == Place::TRANSPARENCY)
            marker.transparency = value;
        if (place == Place::LENGTH)
            currentLength() = value;
        if (place == Place::TIME)
            time = value;
        return goOn();
    }

    static bool mayStandAt(Place place, double value)
    {
        switch (place) {
        case Place::VERSION:
            return value == 1;
        case Place::TRANSPARENCY:
            return value >= 0 && value <= 1;
        case Place::LENGTH:
            return value > 0 && isCoordinate(value);
        case Place::TIME:
            return true; // the parser takes no number that is not finite
        default:
            return place == Place::NUMBER;
        }
    }

    /// The number is the current element of a point, a quaternion, a director or a scalar's
    /// values.
    bool addNumber(const Level& level, double value)
    {
        if (level.place == Place::VALUES)
            rod.scalars.back().values.push_back(value);
        else if (level.place == Place::POINT && !isCoordinate(value))
            return fail("found " + formatted(value) + ", expected " + EXPECTED_COORDINATE);
        else if (level.index < components.size())
            components[level.index] = value;
        return true;
    }

    bool takeText(Place place, std::string& value)
    {
        if (place == Place::SEQUENCE)
            return takeSequence(value);
        if (place == Place::SHAPE)
            return takeShape(value);
        if (place == Place::LETTER)
            return takeLetter(value);
        if (place == Place::FRAMES_OF_ROD)
            return takeFramesOfRod(value);
        if (place == Place::NAME)
            (levels.back().place == Place::ROD ? rod.name : dna.name) = std::move(value);
        else
            currentColour() = std::move(value);
        return true;
    }

    bool takeSequence(const std::string& value)
    {
        for (std::size_t i = 0; i < value.size(); ++i) {
            const std::optional<char> base = parseLetter(value[i]);
            if (!base)
                return failAt(path() + "[" + std::to_string(i) + "]",
                              "found " +
                                  inQuotes(firstCharacter(std::string_view(value).substr(i))) +
                                  ", expected " + EXPECTED_LETTER);
            dna.bases += *base;
        }
        return true;
    }

    bool takeShape(const std::string& value)
    {
        for (const auto& [name, shape] : SHAPES)
            if (value == name) {
                marker.shape = shape;
                return true;
            }
        return failExpected("the string " + inQuotes(value));
    }

    bool takeLetter(const std::string& value)
    {
        const std::optional<char> letter = value.size() == 1 ? parseLetter(value[0]) : std::nullopt;
        if (!letter)
            return failExpected("the string " + inQuotes(value));
        loneBase.base = *letter;
        return true;
    }

    bool takeFramesOfRod(const std::string& value)
    {
        rod.hasFrames = value == "given";
        return rod.hasFrames || value == "made" || failExpected("the string " + inQuotes(value));
    }

    /// Where a value belongs that stands in several objects.
    Vector& currentPoint()
    {
        const Level& level = levels.back();
        if (level.place == Place::POINTS) {
            algebra3d::reserveNext(strand.points);
            return strand.points.emplace_back();
        }
        if (level.place == Place::ARROW)
            return level.key == "from" ? arrow.from : arrow.to;
        return level.place == Place::MARKER ? marker.point
               : level.place == Place::BASE ? loneBase.point
                                            : frame.point;
    }
    Quaternion& currentRotation()
    {
        const Place owner = levels.back().place;
        if (owner == Place::FRAME || owner == Place::BASE)
            return owner == Place::FRAME ? frame.rotation : loneBase.rotation;
        algebra3d::reserveNext(strand.rotations);
        return strand.rotations.emplace_back();
    }
    std::optional<double>& currentLength()
    {
        const Place owner = levels.back().place;
        return owner == Place::MARKER  ? marker.size
               : owner == Place::FRAME ? frame.size
               : owner == Place::ROD   ? rod.radius
                                       : arrow.radius;
    }
    std::optional<std::string>& currentColour()
    {
        const Place owner = levels.back().place;
        return owner == Place::MARKER ? marker.colour
               : owner == Place::ROD  ? rod.colour
                                      : arrow.colour;
    }
    std::size_t& currentMolecule()
    {
        const Place owner = levels.back().place;
        return owner == Place::ROD   ? rod.molecule
               : owner == Place::DNA ? dna.molecule
                                     : loneBase.molecule;
    }

    bool addPoint()
    {
        currentPoint() = Vector(components[0], components[1], components[2]);
        return true;
    }

    bool addRotation()
    {
        Quaternion& rotation = currentRotation();
        rotation = Quaternion(components[0], components[1], components[2], components[3]);
        const std::string fault = checkRotation(rotation, options);
        return fault.empty() || fail(fault);
    }

    bool addDirector()
    {
        const std::size_t index = levels.back().index;
        if (index < directors.size())
            directors[index] = Vector(components[0], components[1], components[2]);
        return true;
    }

    bool addRotationOfDirectors()
    {
        const std::string fault = findRotation(directors, options, currentRotation());
        return fault.empty() || fail(fault);
    }

    /// An object is complete.
    bool finish(const Level& level)
    {
        switch (level.place) {
        case Place::ROD:
            return finishRod(level);
        case Place::STRAND:
            return finishStrand(level);
        case Place::BIROD:
            return finishBirod();
        case Place::DNA:
            return finishDna(level);
        case Place::MARKER:
            if (!level.keys.count("id"))
                marker.id = static_cast<long long>(levels.back().index);
            return finishGlyph(marker);
        case Place::FRAME:
            return requireRotations(level, "quaternion") && finishGlyph(frame);
        case Place::ARROW:
            return finishGlyph(arrow);
        case Place::BASE:
            return requireRotations(level, "quaternion") && finishGlyph(loneBase);
        case Place::STEP:
            return finishStep(level);
        default:
            return true;
        }
    }

    /// A series stands in the place of lists.
    bool requireEither(const Level& level)
    {
        const bool isSeries = level.key == "series";
        for (const Member& member : MEMBERS)
            if (member.owner == Place::LISTS && level.keys.count("series") &&
                level.keys.count(member.key))
                return fail("found beside " + std::string(isSeries ? member.key : "series") +
                            ", expected either series or lists");
        return true;
    }

    bool finishFile()
    {
        if (report.frames == 0 && !finishFrame(""))
            return false;
        report.error = isAnyShown ? "" : noneShown;
        return isAnyShown;
    }

    bool finishStep(const Level& level)
    {
        if (whole.part == Part::OUTLINE)
            return true;
        const bool hasTime = level.keys.count("time");
        if (areTimed.value_or(hasTime) != hasTime)
            return fail(std::string("found ") + (hasTime ? "a" : "no") + " key time, expected " +
                        (hasTime ? "none" : "one") + " as in series[0]");
        areTimed = hasTime;
        if (hasTime)
            times.push_back(time);
        return finishFrame(path() + ": ");
    }

    /// `owner` stands before what its error says. Of a series the first one that is read alone has
    /// something to show, else any of them.
    bool finishFrame(const std::string& owner)
    {
        ReadReport ofFrame;
        std::optional<Configuration> frame =
            std::exchange(collector, Collector(options))
                .finish(fileName, "rod, birod, DNA, marker, frame, arrow or base", ofFrame);
        if (!frame && noneShown.empty())
            noneShown = ofFrame.error.insert(fileName.size() + 2, owner);
        isAnyShown = isAnyShown || frame;
        const bool keepsFirst = whole.part == Part::FIRST_FRAME;
        if (report.frames++ > 0 && keepsFirst)
            return true;
        if (!frame && (owner.empty() || keepsFirst)) {
            report.error = noneShown;
            return false;
        }
        frames.push_back(frame ? std::move(*frame) : Configuration());
        addNew(ofFrame.notices);
        return true;
    }

    /// Most frames have the same to tell.
    void addNew(std::vector<std::string>& notices)
    {
        for (std::string& notice : notices)
            if (told.insert(notice).second)
                report.notices.push_back(std::move(notice));
    }

    bool finishRod(const Level& level)
    {
        const std::size_t count = strand.points.size();
        if (level.keys.count("frames") && rod.hasFrames && strand.rotations.empty())
            return failAt(path() + ".frames", "found 'given' without quaternions or directors, "
                                              "expected one of both");
        for (const char* key : {"quaternions", "directors"})
            if (level.keys.count(key) &&
                !requirePerPointOrElement("." + std::string(key), strand.rotations.size(), count))
                return false;
        for (const Scalar& scalar : rod.scalars)
            if (!requirePerPointOrElement(".scalars" + memberText(scalar.name),
                                          scalar.values.size(), count))
                return false;
        rod.origin = fileName + ": " + path();
        moveStrand(strand, rod.points, rod.rotations);
        return acceptedAt(".points", collector.add(std::exchange(rod, Rod())));
    }

    bool finishStrand(const Level& level)
    {
        if (!requireRotations(level, "quaternions"))
            return false;
        const std::string member = level.keys.count("directors") ? ".directors" : ".quaternions";
        const std::size_t count = strand.points.size();
        const bool fits = levels.back().place == Place::BIROD
                              ? requirePerPointOrElement(member, strand.rotations.size(), count)
                              : requireOneEach(member, strand.rotations.size(), count, "point");
        if (!fits)
            return false;
        const std::string& key = levels.back().key;
        strands[key == "strand1" ? 1 : key == "strand2" ? 2 : 0] = std::exchange(strand, Strand());
        return true;
    }

    /// The key, or directors instead.
    bool requireRotations(const Level& level, const std::string& key)
    {
        return level.keys.count(key) || level.keys.count("directors") ||
               fail("found no key " + key + " or directors, expected one");
    }

    bool finishBirod()
    {
        if (!requireStrandsOf(strands[0].points.size(), "average", "point of the average"))
            return false;
        Birod birod;
        birod.origin = fileName + ": " + path();
        moveStrand(strands[0], birod.points, birod.rotations);
        moveStrand(strands[1], birod.points1, birod.rotations1);
        moveStrand(strands[2], birod.points2, birod.rotations2);
        return acceptedAt("", collector.add(std::move(birod)));
    }

    bool finishDna(const Level& level)
    {
        for (const char* missing : {"strand1", "strand2"})
            if (level.keys.count("strand1") + level.keys.count("strand2") == 1 &&
                !level.keys.count(missing))
                return fail("found no key " + std::string(missing) + ", expected one");
        if (!level.keys.count("strand1"))
            strands[1] = strands[2] = strands[0]; // one frame of the pair and of its bases
        if (isSequenceNull)
            dna.bases.assign(strands[0].points.size(), UNKNOWN_BASE);
        isSequenceNull = false;
        if (!requireStrandsOf(dna.bases.size(), "pairs", "base"))
            return false;
        dna.origin = fileName + ": " + path();
        moveStrand(strands[0], dna.pairPoints, dna.pairRotations);
        moveStrand(strands[1], dna.points1, dna.rotations1);
        moveStrand(strands[2], dna.points2, dna.rotations2);
        return acceptedAt(".sequence", collector.add(std::exchange(dna, Dna())));
    }

    bool requireStrandsOf(std::size_t count, const std::string& first, const char* each)
    {
        const std::string keys[] = {first, "strand1", "strand2"};
        for (std::size_t i = 0; i < strands.size(); ++i)
            if (!requireOneEach("." + keys[i] + ".points", strands[i].points.size(), count, each))
                return false;
        return true;
    }

    static void moveStrand(Strand& from, std::vector<Vector>& points,
                           std::vector<Quaternion>& rotations)
    {
        points = std::move(from.points);
        rotations = std::move(from.rotations);
        from = Strand();
    }

    template <typename Glyph>
    bool finishGlyph(Glyph& glyph)
    {
        glyph.origin = fileName + ": " + path();
        collector.add(std::exchange(glyph, Glyph()));
        return true;
    }

    bool acceptedAt(const std::string& member, const std::string& fault)
    {
        return fault.empty() || failAt(path() + member, fault);
    }

    bool requireOneEach(const std::string& member, std::size_t count, std::size_t expected,
                        const char* each)
    {
        return count == expected ||
               failAt(path() + member, "found " + std::to_string(count) + ", expected " +
                                           std::to_string(expected) + ", one for each " + each);
    }

    /// Of elements there is one less, and one at least.
    bool requirePerPointOrElement(const std::string& member, std::size_t count, std::size_t points)
    {
        if (count == points || (count > 0 && count + 1 == points))
            return true;
        const std::string elements =
            points > 1 ? ", or " + std::to_string(points - 1) + ", one for each element" : "";
        return failAt(path() + member, "found " + std::to_string(count) + ", expected " +
                                           std::to_string(points) + ", one for each point" +
                                           elements);
    }

    bool requireCount(const Level& level, std::size_t count, const char* noun = "number")
    {
        return level.index == count ||
               fail("found " + counted(level.index, noun) + ", expected " + std::to_string(count));
    }

    /// Of the current value, as "rods[0].points[2]"; empty for the whole text.
    std::string path() const
    {
        std::string result;
        for (const Level& level : levels)
            result += ruleOf(level.place).kind == Kind::ARRAY
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
        const bool isBefore = byte < whole.seam;
        const std::size_t begin = isBefore ? 0 : whole.seam;
        const std::string where =
            placeInText(text.substr(begin), byte - begin, isBefore ? JsonPlace() : whole.place);
        report.error = fileName + ":" + where + ": " + what;
        return false;
    }

    std::string_view text;
    const PartOfFile whole;
    const std::string& fileName;
    const ReadOptions& options;
    ReadReport& report;
    Milestones milestones;
    std::unordered_set<std::string> told; ///< notices
    const char* place;                    ///< in the text, that the parser has come to
    std::vector<Level> levels;            ///< from the outermost in
    std::array<double, 4> components;     ///< of the point or quaternion being read
    Directors directors;                  ///< being read, all three
    Strand strand;                        ///< being read, and so are these
    std::array<Strand, 3> strands;        ///< average or pairs, strand 1, strand 2
    Rod rod;                              ///< without its points and rotations
    Dna dna;                              ///< without those either
    Marker marker;
    Frame frame;
    Arrow arrow;
    LoneBase loneBase;
    double time = 0;
    bool isSequenceNull = false;
    std::optional<bool> areTimed; ///< the frames so far
    Collector collector;          ///< of the frame being read
};

/// The reader that has all that could be read; report.error unless that is all there is.
std::unique_ptr<JsonReader> readPart(std::string_view text, const PartOfFile& part,
                                     const std::string& fileName, const ReadOptions& options,
                                     ReadReport& report, bool& isDone)
{
    report.frames = 0;
    const ReadReport before = report;
    auto reader = std::make_unique<JsonReader>(text, part, fileName, options, report);
    JsonReader::End end = reader->read(JsonReader::Parser::PLAIN);
    if (end == JsonReader::End::REFUSED) {
        report = before;
        reader = std::make_unique<JsonReader>(text, part, fileName, options, report);
        end = reader->read(JsonReader::Parser::WORDED);
    }
    isDone = end == JsonReader::End::DONE;
    return reader;
}

/// Null and report.error if anything is wrong.
std::unique_ptr<JsonReader> read(std::string_view text, Part part, const std::string& fileName,
                                 const ReadOptions& options, ReadReport& report)
{
    bool isDone = false;
    PartOfFile all;
    all.part = part;
    auto reader = readPart(text, all, fileName, options, report, isDone);
    return isDone ? std::move(reader) : nullptr;
}

} // namespace

std::optional<Configuration> readJson(std::string_view text, const std::string& fileName,
                                      const ReadOptions& options, ReadReport& report)
{
    const auto reader = read(text, Part::FIRST_FRAME, fileName, options, report);
    return reader ? std::optional(std::move(reader->frames.front())) : std::nullopt;
}

std::unique_ptr<Series> openJson(std::string_view text, const std::string& fileName,
                                 const ReadOptions& options, ReadReport& report)
{
    const auto reader = read(text, Part::ALL_FRAMES, fileName, options, report);
    if (!reader)
        return nullptr;
    return std::make_unique<MemorySeries>(std::move(reader->frames), std::move(reader->times));
}

FrameRead readJsonFrame(const JsonFrame& frame, const std::string& fileName,
                        const ReadOptions& options, ReadReport& report)
{
    bool isDone = false;
    ReadReport ofFrame;
    const PartOfFile part{Part::ONE_FRAME, frame.index, frame.isTimed, 0, frame.place};
    const auto reader = readPart(frame.text, part, fileName, options, ofFrame, isDone);
    report.error = isDone && !reader->isAnyShown ? reader->noneShown : ofFrame.error;
    if (!isDone)
        return {{}, reader->isCut};
    report.notices.insert(report.notices.end(), ofFrame.notices.begin(), ofFrame.notices.end());
    if (!reader->isAnyShown)
        return {{}, false, true};
    return {std::move(reader->frames.front())};
}

JsonOutline checkJsonOutline(const JsonSeriesText& around, const std::string& fileName,
                             ReadReport& report)
{
    std::string text = around.before + "{}" + (around.isFrameNext ? "," : "");
    PartOfFile outline{Part::OUTLINE, around.frames - 1, {}, text.size(), around.place};
    text += around.behind;
    ReadReport ofOutline;
    const ReadOptions options;
    JsonReader reader(text, outline, fileName, options, ofOutline);
    const bool isDone = reader.read(JsonReader::Parser::WORDED) == JsonReader::End::DONE;
    report.error = isDone ? "" : ofOutline.error;
    return isDone ? JsonOutline::WHOLE : reader.isCut ? JsonOutline::CUT : JsonOutline::WRONG;
}

} // namespace strandview
