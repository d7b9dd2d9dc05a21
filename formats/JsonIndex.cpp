// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/JsonIndex.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include <strandview/formats/Pieces.h>
#include <strandview/formats/text/characters.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

/// In front of a series there is at most the version.
constexpr std::size_t LONGEST_BEGINNING = 64 * 1024;
/// Behind a series, too.
constexpr std::size_t LONGEST_END = 16 << 20;
/// Of a frame without what is in its lists: their names and the time.
constexpr std::size_t LONGEST_OUTERMOST = 4096;
/// Frames are less than a dozen deep.
constexpr std::size_t DEEPEST = 64;
/// What is read behind a fault, for its words.
constexpr std::size_t BEHIND_FAULT = 4096;

constexpr std::string_view BLANKS = " \t\r\n";
constexpr double NO_TIME = std::numeric_limits<double>::quiet_NaN();

/// What a character is to who looks for the end of a value, outside of strings.
enum class Kind : unsigned char {
    WRONG, ///< in no JSON
    PLAIN, ///< of a number or a word, or between values
    LINE_END,
    QUOTE,
    OPEN,
    CLOSE
};

constexpr std::array<Kind, 256> makeKinds()
{
    std::array<Kind, 256> kinds = {};
    // "/" is in no JSON, but among those that are passed over eight at a time.
    for (const char c : std::string_view("0123456789+-.eEtrufalsn,: \t\r/"))
        kinds[static_cast<unsigned char>(c)] = Kind::PLAIN;
    kinds[static_cast<unsigned char>('\n')] = Kind::LINE_END;
    kinds[static_cast<unsigned char>('"')] = Kind::QUOTE;
    kinds[static_cast<unsigned char>('[')] = kinds[static_cast<unsigned char>('{')] = Kind::OPEN;
    kinds[static_cast<unsigned char>(']')] = kinds[static_cast<unsigned char>('}')] = Kind::CLOSE;
    return kinds;
}

constexpr std::array<Kind, 256> KINDS = makeKinds();

Kind kindOf(char c) { return KINDS[static_cast<unsigned char>(c)]; }

/// How many of the eight characters from a place on, up to the first other one, are digits, blanks
/// and what stands between digits: "," "-" "." and "/".
unsigned countNumbers(const char* place)
{
    const std::uint64_t eight = eightAt(place), low = eight & eightTimes(0x7f);
    const std::uint64_t isFromComma = low + eightTimes(0x80 - ','); // by the highest bit of each
    const std::uint64_t isAboveNine = low + eightTimes(0x7f - '9');
    const std::uint64_t isNoBlank = (low ^ eightTimes(' ')) + eightTimes(0x7f);
    const std::uint64_t others =
        (((~isFromComma | isAboveNine) & isNoBlank) | eight) & eightTimes(0x80);
    return others == 0 ? 8 : unsigned(__builtin_ctzll(others)) / 8;
}

/// Up to what is not plain.
const char* skipPlain(const char* place, const char* end)
{
    while (place < end) {
        const unsigned count = end - place >= 8 ? countNumbers(place) : 0;
        place += count;
        if (count == 8)
            continue;
        if (kindOf(*place) != Kind::PLAIN)
            return place;
        ++place;
    }
    return place;
}

bool isWithinCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

/// Takes what a text begins with, and the blanks behind.
bool take(std::string_view token, std::string_view& text)
{
    if (text.substr(0, token.size()) != token)
        return false;
    text.remove_prefix(token.size());
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    return true;
}

bool takeVersion(std::string_view& text)
{
    if (!take(":", text))
        return false;
    const std::string_view number = text.substr(0, text.find_first_not_of("0123456789+-.eE"));
    double version = 0;
    const bool isVersion = parseNumber(number, version) == std::errc() && version == 1;
    return isVersion && take(number, text) && take(",", text);
}

/// What is in front of the frames, up to "["; nothing of a text that does not begin with a series
/// and its first object.
std::optional<std::string_view> findSeries(std::string_view text)
{
    std::string_view rest = text;
    take("", rest);
    if (!take("{", rest) || (take("\"strandview\"", rest) && !takeVersion(rest)) ||
        !take("\"series\"", rest) || !take(":", rest) || rest.substr(0, 1) != "[")
        return {};
    const std::size_t size = text.size() - rest.size() + 1;
    return take("[", rest) && rest.substr(0, 1) == "{" ? std::optional(text.substr(0, size))
                                                       : std::nullopt;
}

/// Of a frame that others follow.
std::string_view withoutComma(std::string_view text)
{
    const std::size_t last = text.find_last_not_of(BLANKS);
    return text.substr(0, last != text.npos && text[last] == ',' ? last : text.size());
}

} // namespace

// ---- The pass over the text

std::unique_ptr<JsonIndex> JsonIndex::of(Source& source, const ReadOptions& options,
                                         ReadReport& report)
{
    const auto beginning = source.readBeginning(LONGEST_BEGINNING, options, report);
    if (!beginning)
        return nullptr;
    const std::string_view text = withoutByteOrderMark(*beginning);
    const std::optional<std::string_view> before = findSeries(text);
    if (!before)
        return nullptr;
    const std::uint64_t mark = beginning->size() - text.size();
    return std::unique_ptr<JsonIndex>(new JsonIndex(*before, mark));
}

JsonIndex::JsonIndex(std::string_view textBefore, std::uint64_t offset)
    : before(textBefore), scanned(offset + before.size()), lineBegin(offset)
{
    for (std::size_t i = 0; i < before.size(); ++i)
        if (before[i] == '\n')
            endLine(offset + i);
}

bool JsonIndex::lookOn(Source& source, const ReadOptions& options, ReadReport& report)
{
    Pieces pieces(source, options, report);
    for (bool isAtEnd = false; !isAtEnd;) {
        const std::optional<std::string_view> next = pieces.read(scanned, Pieces::SIZE);
        if (!next)
            return false;
        isAtEnd = next->size() < Pieces::SIZE;
        if (!isFaulty)
            scan(*next);
        if (isFaulty && fault.empty() && !findFault(source, options, report))
            return false;
        const bool isBlank = next->find_first_not_of(BLANKS) == std::string_view::npos;
        if (fault.empty() && (isAtEnd || (state == State::BEHIND_SERIES && !isBlank)))
            checkEnd(isAtEnd, source, options, report);
        if (!fault.empty()) {
            report.error = fault;
            return false;
        }
    }
    return true;
}

void JsonIndex::scan(std::string_view next)
{
    piece = next.data();
    const char* place = piece;
    const char* const pieceEnd = piece + next.size();
    while (place < pieceEnd && !isFaulty && state != State::BEHIND_SERIES)
        place =
            state == State::IN_FRAME ? scanFrame(place, pieceEnd) : scanBetween(place, pieceEnd);
    if (state == State::BEHIND_SERIES) {
        behind.append(place, pieceEnd);
        place = pieceEnd;
    }
    scanned = offsetOf(place);
}

/// Up to the next frame, or to what is not as it should be between two of them.
const char* JsonIndex::scanBetween(const char* place, const char* pieceEnd)
{
    for (; place < pieceEnd; ++place) {
        const char c = *place;
        if (c == '\n')
            endLine(offsetOf(place));
        if (BLANKS.find(c) != BLANKS.npos)
            continue;
        if (state == State::BEFORE_FRAME && c == '{') {
            beginFrame(offsetOf(place));
            return place + 1;
        }
        if (state == State::AFTER_FRAME && c == ']') {
            behindPlace = placeOf(offsetOf(place));
            state = State::BEHIND_SERIES;
            return place;
        }
        if (state != State::AFTER_FRAME || c != ',') {
            isFaulty = true;
            return place;
        }
        state = State::BEFORE_FRAME;
    }
    return place;
}

const char* JsonIndex::scanFrame(const char* place, const char* pieceEnd)
{
    while (place < pieceEnd) {
        if (isInString) {
            place = scanString(place, pieceEnd);
            if (isFaulty)
                return place;
            continue;
        }
        if (depth > 1)
            place = skipPlain(place, pieceEnd);
        if (place == pieceEnd)
            return place;
        const char c = *place;
        const bool isOutermost = depth == 1;
        switch (kindOf(c)) {
        case Kind::PLAIN:
            break;
        case Kind::LINE_END:
            endLine(offsetOf(place));
            break;
        case Kind::QUOTE:
            isInString = true;
            break;
        case Kind::OPEN:
            isFaulty = !open(c);
            break;
        case Kind::CLOSE:
            isFaulty = !close(c);
            break;
        case Kind::WRONG:
            isFaulty = true;
            break;
        }
        if (isFaulty)
            return place;
        if (isOutermost && BLANKS.find(c) == BLANKS.npos)
            keep(depth == 2 ? '0' : c); // a list, whatever it holds
        ++place;
        if (depth == 0) {
            endFrame(offsetOf(place));
            return place;
        }
    }
    return place;
}

const char* JsonIndex::scanString(const char* place, const char* pieceEnd)
{
    for (; place < pieceEnd && isInString; ++place) {
        const char c = *place;
        if (static_cast<unsigned char>(c) < ' ') {
            isFaulty = true;
            return place;
        }
        inLine += isWithinCharacter(c);
        isInString = isEscaped || c != '"';
        isEscaped = !isEscaped && c == '\\';
        if (depth == 1)
            keep(c);
    }
    return place;
}

bool JsonIndex::open(char bracket)
{
    if (depth == DEEPEST)
        return false;
    ++depth;
    arrays = arrays << 1 | std::uint64_t(bracket == '[');
    return true;
}

bool JsonIndex::close(char bracket)
{
    const bool isOfArray = (arrays & 1) != 0;
    --depth;
    arrays >>= 1;
    return isOfArray == (bracket == ']');
}

void JsonIndex::beginFrame(std::uint64_t offset)
{
    const JsonPlace place = placeOf(offset);
    places.push_back({offset, place.line, place.column, NO_TIME});
    depth = 0;
    open('{');
    outermost = "{";
    state = State::IN_FRAME;
}

void JsonIndex::endFrame(std::uint64_t offset)
{
    end = offset;
    state = State::AFTER_FRAME;
    constexpr std::string_view key = "\"time\"";
    const bool mayHaveTime =
        outermost.find(key) != outermost.npos || outermost.find('\\') != outermost.npos;
    bool hasTime = false;
    if (outermost.size() < LONGEST_OUTERMOST && mayHaveTime) {
        const auto frame = nlohmann::json::parse(outermost, nullptr, false);
        const auto time = frame.is_object() ? frame.find("time") : frame.end();
        hasTime = time != frame.end();
        if (hasTime && time->is_number())
            places.back().time = time->get<double>();
    }
    if (places.size() == 1 && outermost.size() < LONGEST_OUTERMOST)
        isTimed = hasTime;
}

void JsonIndex::keep(char c)
{
    if (outermost.size() < LONGEST_OUTERMOST)
        outermost += c;
}

void JsonIndex::endLine(std::uint64_t offset)
{
    ++line;
    lineBegin = offset + 1;
    inLine = 0;
}

/// Of a byte in the line that is scanned, up to which it was.
JsonPlace JsonIndex::placeOf(std::uint64_t offset) const
{
    return {line, std::size_t(offset - lineBegin) - inLine + 1};
}

// ---- What is wrong

/// Of what the pass ended at, in the words of who reads all there is; a frame with it is none any
/// more. False and report.error if that cannot be read.
bool JsonIndex::findFault(Source& source, const ReadOptions& options, ReadReport& report)
{
    const std::string& fileName = source.getName();
    const bool isOfFrame = state == State::IN_FRAME;
    const std::uint64_t from = isOfFrame ? places.back().offset : scanned;
    const auto text =
        source.readAt(from, std::size_t(scanned - from) + BEHIND_FAULT, options, report);
    if (!text)
        return false;
    ReadReport read;
    ReadOptions unasked = options;
    unasked.goOn = {};
    if (isOfFrame) {
        const JsonPlace place{places.back().line, places.back().column};
        places.pop_back();
        state = State::BEFORE_FRAME;
        readJsonFrame({*text, place, count(), {}}, fileName, unasked, read);
    } else {
        checkOutline(*text, fileName, read);
        preferFaultOfLast(source, unasked, read.error);
    }
    fault = read.error;
    if (fault.empty())
        fault = fileName + ": found no JSON at byte " + std::to_string(scanned) +
                ", expected a frame of a series";
    return true;
}

JsonOutline JsonIndex::checkOutline(std::string_view text, const std::string& fileName,
                                    ReadReport& report) const
{
    const bool isBehind = state == State::BEHIND_SERIES;
    return checkJsonOutline({before, count(), state == State::BEFORE_FRAME, text,
                             isBehind ? behindPlace : placeOf(scanned)},
                            fileName, report);
}

/// Of what is behind the frames, as far as there is something; a notice tells where it ends too
/// early.
void JsonIndex::checkEnd(bool isAtEnd, Source& source, const ReadOptions& options,
                         ReadReport& report)
{
    if (state == State::IN_FRAME)
        return;
    ReadReport ofEnd;
    const std::string& fileName = source.getName();
    const JsonOutline outline = checkOutline(behind, fileName, ofEnd);
    if (outline == JsonOutline::WRONG) {
        preferFaultOfLast(source, options, ofEnd.error);
        fault = ofEnd.error;
    } else if (behind.size() > LONGEST_END) {
        fault = fileName + ":" + std::to_string(behindPlace.line) + ":" +
                std::to_string(behindPlace.column) +
                ": found more than 16 MiB behind the frames, expected the end of the file";
    } else if (outline == JsonOutline::CUT && isAtEnd && !options.growing) {
        report.notices.push_back(ofEnd.error + "; the frames before it are read");
    }
}

/// What is wrong behind a frame is often what ended it too early: that is told then, and the frame
/// is none, unless it may have been one before.
void JsonIndex::preferFaultOfLast(Source& source, ReadOptions options, std::string& error)
{
    if (options.growing)
        return;
    options.goOn = {};
    ReadReport ofLast;
    const FrameRead last = read(count() - 1, source, options, ofLast);
    if (last.configuration || last.isEmpty)
        return;
    error = ofLast.error;
    end = places.back().offset;
    places.pop_back();
}

// ---- Frames

std::optional<double> JsonIndex::time(std::size_t frame) const
{
    const bool isKnown = frame < count() && isTimed.value_or(false);
    return isKnown && !std::isnan(places[frame].time) ? std::optional(places[frame].time)
                                                      : std::nullopt;
}

FrameRead JsonIndex::read(std::size_t frame, Source& source, const ReadOptions& options,
                          ReadReport& report) const
{
    const Place& place = places[frame];
    const bool isLast = frame + 1 == count();
    const bool isOpen = isLast && state == State::IN_FRAME;
    if (isOpen && options.growing) {
        report.error = source.getName() + ":" + std::to_string(place.line) + ":" +
                       std::to_string(place.column) + ": series[" + std::to_string(frame) +
                       "]: found no end of the frame, expected '}'";
        return {{}, true};
    }
    const std::uint64_t next = isOpen ? scanned : isLast ? end : places[frame + 1].offset;
    const auto text = readBetween(source, place.offset, next, options, report);
    if (!text)
        return {};
    const std::optional<bool> isFirstTimed = frame > 0 ? isTimed : std::nullopt;
    // A comma at the end of what is cut is the frame's own.
    const std::string_view ofFrame = isOpen ? std::string_view(*text) : withoutComma(*text);
    FrameRead read = readJsonFrame({ofFrame, {place.line, place.column}, frame, isFirstTimed},
                                   source.getName(), options, report);
    read.isCut = read.isCut && isOpen;
    return read;
}

} // namespace strandview
