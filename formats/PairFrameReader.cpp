// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/PairFrameReader.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <system_error>
#include <utility>

#include <algebra3d/largePages.h>

#include <strandview/formats/Collector.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/RowScanner.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/closedDna.h>
#include <strandview/formats/directors.h>
#include <strandview/formats/pairLetters.h>
#include <strandview/formats/text/characters.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Rows = std::array<Vector, 4>; ///< the origin and the axes

constexpr CharacterSet OPENING("{[("), CLOSING("}])"), BETWEEN(", \t\r\n"), NUMBER("+-.0123456789"),
    IN_NUMBER("+-.0123456789eEdD*^"), BEHIND_NUMBER("{}[]() ,\t\r\n");
constexpr char EXPECTED_PAIRS[] = "the number of base pairs";

/// The double strand of pairs one after another.
class PairCollector
{
public:
    PairCollector(const std::string& name, const ReadOptions& readOptions, ReadReport& readReport)
        : fileName(name), options(readOptions), report(readReport)
    {}

    void reserve(std::size_t count)
    {
        algebra3d::reserveMany(dna.bases, count);
        algebra3d::reserveMany(dna.pairPoints, count);
        algebra3d::reserveMany(dna.pairRotations, count);
    }
    std::size_t count() const { return dna.bases.size(); }

    /// "found ..., expected ..." if the axes are no frame, else nothing.
    std::string add(const Rows& rows, char base, std::size_t line)
    {
        if (dna.bases.empty())
            dna.origin = fileName + ":" + std::to_string(line) + ": DNA 1";
        dna.bases += base;
        dna.pairPoints.push_back(rows[0]);
        return findRotation({rows[1], rows[2], rows[3]}, options, dna.pairRotations.emplace_back());
    }

    std::optional<Configuration> finish()
    {
        dna.points1 = dna.points2 = dna.pairPoints;
        dna.rotations1 = dna.rotations2 = dna.pairRotations;
        return finishPairs(std::move(dna), fileName, report);
    }

private:
    const std::string& fileName;
    const ReadOptions& options;
    ReadReport& report;
    Dna dna;
};

/// The first letters of a pair among the words of a line, with its comment.
std::optional<PairLetters> lettersIn(std::string_view line)
{
    constexpr std::string_view blanks = " \t#,;";
    for (std::size_t begin = 0; begin < line.size();) {
        const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
        if (const auto letters = parsePairLetters(line.substr(begin, end - begin)))
            return letters;
        begin = end + 1;
    }
    return {};
}

std::optional<Configuration> readWithNames(std::string_view text, const std::string& fileName,
                                           const ReadOptions& options, ReadReport& report)
{
    constexpr std::array<const char*, 4> names = {"an origin", "an x axis", "a y axis", "a z axis"};
    RowScanner scanner(text, fileName, report);
    Milestones milestones(options, text.size());
    std::size_t count = 0;
    if (!scanner.nextRow(EXPECTED_PAIRS) || !scanner.takeCount(count, EXPECTED_PAIRS))
        return {};
    PairCollector pairs(fileName, options, report);
    pairs.reserve(std::min(count, countLines(text) / (names.size() + 1)));
    LetterCounts counts;
    while (scanner.nextRow()) {
        if (!milestones.pass(scanner.getPosition())) {
            report.error = fileName + ": " + READING_STOPPED;
            return {};
        }
        const std::size_t line = scanner.getLine();
        const std::optional<PairLetters> letters = lettersIn(scanner.getRestOfLine());
        Rows rows;
        for (std::size_t i = 0; i < rows.size(); ++i)
            if (!scanner.nextRow(names[i]) || !scanner.takePoint(rows[i]))
                return {};
        const std::string fault =
            pairs.add(rows, letters ? counts.take(*letters) : UNKNOWN_BASE, line);
        if (!fault.empty()) {
            scanner.fail("axes: " + fault);
            return {};
        }
    }
    if (pairs.count() != count) {
        scanner.fail("found the end of the file after " + counted(pairs.count(), "pair") +
                     ", expected " + std::to_string(count));
        return {};
    }
    counts.tell(fileName, report);
    return pairs.finish();
}

/// Numbers in brackets, of which the innermost ones have three each, four of those a pair.
class BracketReader
{
public:
    BracketReader(std::string_view wholeText, const std::string& name,
                  const ReadOptions& readOptions, ReadReport& readReport)
        : text(wholeText),
          fileName(name),
          report(readReport),
          milestones(readOptions, wholeText.size()),
          pairs(name, readOptions, readReport)
    {}

    std::optional<Configuration> read()
    {
        const auto ends =
            std::count_if(text.begin(), text.end(), [](char c) { return CLOSING.has(c); });
        pairs.reserve(std::size_t(ends) / 4);
        while (position < text.size()) {
            if (!milestones.pass(position)) {
                report.error = fileName + ": " + READING_STOPPED;
                return {};
            }
            if (!take(text[position]))
                return {};
        }
        if (depth > 0 || group > 0 || filled > 0) {
            fail("found the end of the file within a pair, expected " +
                 std::string(depth > 0 ? "closing brackets" : "four rows of three numbers"));
            return {};
        }
        return pairs.finish();
    }

private:
    bool take(char c)
    {
        if (!OPENING.has(c) && !CLOSING.has(c) && !BETWEEN.has(c))
            return takeNumber();
        line += c == '\n';
        ++position;
        if (OPENING.has(c)) {
            ++depth;
            return filled == 0 || fail("found an opening bracket after a number, expected 3 "
                                       "numbers");
        }
        return !CLOSING.has(c) || close();
    }

    bool close()
    {
        if (depth-- == 0)
            return fail("found a closing bracket, expected an opening one before it");
        if (filled == 0)
            return true;
        if (filled < 3)
            return fail("found " + counted(filled, "number") + " in brackets, expected 3");
        filled = 0;
        group = (group + 1) % rows.size();
        if (group > 0)
            return true;
        const std::string fault = pairs.add(rows, UNKNOWN_BASE, line);
        return fault.empty() || fail("axes: " + fault);
    }

    bool takeNumber()
    {
        const std::size_t end = BEHIND_NUMBER.findIn(text, position);
        const std::string_view written = text.substr(position, end - position);
        position = end;
        double number = 0;
        if (parseWithPower(written, number) != std::errc() || !std::isfinite(number))
            return fail("found " + inQuotes(written) + ", expected " + EXPECTED_NUMBER);
        if (filled == 3)
            return fail("found a fourth number in brackets, expected 3");
        if (!isCoordinate(number))
            return fail("found " + inQuotes(written) + ", expected " + EXPECTED_COORDINATE);
        rows[group][int(filled++)] = number;
        return true;
    }

    /// Of "1.5*^-3", too, as some programs write powers of ten.
    static std::errc parseWithPower(std::string_view written, double& number)
    {
        const std::size_t power = written.find('*');
        if (power == std::string_view::npos || written.substr(power, 2) != "*^")
            return parseNumber(written, number);
        std::string field(written);
        return parseNumber(field.replace(power, 2, "e"), number);
    }

    /// Always false.
    bool fail(const std::string& what)
    {
        report.error = fileName + ":" + std::to_string(line) + ": " + what;
        return false;
    }

    std::string_view text;
    const std::string& fileName;
    ReadReport& report;
    Milestones milestones;
    PairCollector pairs;
    Rows rows;
    std::size_t group = 0;  ///< of three numbers, of the pair being read
    std::size_t filled = 0; ///< numbers of that
    std::size_t depth = 0;
    std::size_t position = 0;
    std::size_t line = 1;
};

/// The characters that tell its form: brackets and, for each number, a "0".
std::string outlineOf(std::string_view text)
{
    constexpr std::size_t longest = 32;
    std::string outline;
    bool isInNumber = false;
    for (const char c : text) {
        if (OPENING.has(c) || CLOSING.has(c))
            outline += OPENING.has(c) ? '{' : '}';
        else if (NUMBER.has(c) && !isInNumber)
            outline += '0';
        else if (!BETWEEN.has(c) && !isInNumber)
            outline += c;
        isInNumber = IN_NUMBER.has(c);
        if (outline.size() > longest)
            break;
    }
    return outline;
}

bool isInBrackets(std::string_view text)
{
    const std::size_t first = text.find_first_not_of(" \t\r\n");
    return first != std::string_view::npos && OPENING.has(text[first]);
}

} // namespace

std::optional<Configuration> readPairFrames(std::string_view text, const std::string& fileName,
                                            const ReadOptions& options, ReadReport& report)
{
    return isInBrackets(text) ? BracketReader(text, fileName, options, report).read()
                              : readWithNames(text, fileName, options, report);
}

Likeness likenessToPairFrames(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return Likeness::NONE;
    const std::string_view text = withoutByteOrderMark(beginning);
    if (isInBrackets(text)) {
        const std::size_t found = outlineOf(text).find("{{000}{{000}{000}{000}}}");
        return found <= 1 ? Likeness::CERTAIN : Likeness::NONE;
    }
    ReadReport ignored;
    const std::string name;
    RowScanner rows(text, name, ignored);
    std::size_t count = 0;
    if (!rows.nextRow() || !rows.takeCount(count, "") || !rows.nextRow())
        return Likeness::NONE;
    const bool hasDots = rows.getRestOfLine().find("...") != std::string_view::npos;
    const bool hasLetters = lettersIn(rows.getRestOfLine()).has_value();
    Vector point;
    const bool hasOrigin = rows.nextRow() && rows.takePoint(point);
    return hasOrigin && (hasDots || hasLetters) ? Likeness::CERTAIN : Likeness::NONE;
}

} // namespace strandview
