// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/StepParameterReader.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include <algebra3d/largePages.h>

#include <strandview/analysis/stepParameters.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/RowScanner.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/closedDna.h>
#include <strandview/formats/pairLetters.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

constexpr std::size_t PARAMETERS = 12;
constexpr double LARGEST_ANGLE = 360; ///< in degrees
constexpr char EXPECTED_ORDER[] =
    "Shear Stretch Stagger Buckle Prop-Tw Opening Shift Slide Rise Tilt Roll Twist";
/// By what the columns begin, in small letters; of a pair's propeller there are many names.
constexpr std::array<std::string_view, PARAMETERS> NAMES = {"shear", "stretch", "stagger", "buckle",
                                                            "prop",  "opening", "shift",   "slide",
                                                            "rise",  "tilt",    "roll",    "twist"};
/// Those of the helical flavour, in place of a step's.
constexpr std::array<std::string_view, 7> HELICAL_NAMES = {"x-disp", "y-disp", "h-ris",  "incl",
                                                           "tip",    "h-twis", "helical"};

bool beginsWith(std::string_view text, std::string_view beginning)
{
    return text.substr(0, beginning.size()) == beginning;
}

std::vector<std::string> wordsOf(std::string_view line)
{
    const std::string small = inSmallLetters(line);
    std::vector<std::string> words;
    for (std::size_t end = 0, begin = 0; begin != std::string::npos; begin = end) {
        begin = small.find_first_not_of(" \t#*,", end);
        end = std::min(small.find_first_of(" \t#*,", std::min(begin, small.size())), small.size());
        if (begin == std::string::npos)
            break;
        words.push_back(small.substr(begin, end - begin));
    }
    return words;
}

/// The first of them that is a name of the helical flavour; empty if none is.
std::string helicalName(const std::vector<std::string>& words)
{
    for (const std::string& word : words)
        for (const std::string_view name : HELICAL_NAMES)
            if (beginsWith(word, name))
                return word;
    return {};
}

/// Whether they have those of the columns, in their order.
bool haveNames(const std::vector<std::string>& words)
{
    return std::search(words.begin(), words.end(), NAMES.begin(), NAMES.end(),
                       [](const std::string& word, std::string_view name) {
                           return beginsWith(word, name);
                       }) != words.end();
}

class StepParameterReader
{
public:
    StepParameterReader(std::string_view wholeText, const std::string& name,
                        const ReadOptions& options, ReadReport& readReport)
        : text(wholeText),
          fileName(name),
          report(readReport),
          rows(text, fileName, report),
          milestones(options, text.size())
    {}

    std::optional<Configuration> read()
    {
        if (!readHeader() || !readPairs())
            return {};
        letters.tell(fileName, report);
        return finishPairs(std::move(dna), fileName, report);
    }

private:
    /// The count, the flag and, if it is there, the line of names.
    bool readHeader()
    {
        if (!rows.nextRow("the number of base pairs") ||
            !rows.takeCount(count, "the number of base pairs"))
            return false;
        std::size_t flag = 0;
        if (!rows.nextRow("a flag") || !rows.takeCount(flag, "a flag, 0 for step parameters"))
            return false;
        const std::string line(rows.getRestOfLine());
        if (flag != 0 || !helicalName(wordsOf(line)).empty())
            return rows.fail("found " + inQuotes(trimmed(std::to_string(flag) + " " + line)) +
                             ", expected 0 and step parameters, not helical ones");
        return true;
    }

    /// A comment that names the columns; any other says nothing.
    bool checkNames()
    {
        const std::vector<std::string> words = wordsOf(rows.getRestOfLine());
        const std::string helical = helicalName(words);
        if (!helical.empty())
            return rows.fail("found the helical parameter " + inQuotes(helical) +
                             ", expected step parameters: " + EXPECTED_ORDER);
        const bool namesColumns = std::find(words.begin(), words.end(), "shift") != words.end() ||
                                  std::find(words.begin(), words.end(), "shear") != words.end();
        return !namesColumns || haveNames(words) ||
               rows.fail("found the columns " + inQuotes(rows.getRestOfLine()) + ", expected " +
                         EXPECTED_ORDER);
    }

    bool readPairs()
    {
        const std::size_t possible = std::min(count, countLines(text));
        algebra3d::reserveMany(dna.bases, possible);
        for (auto* points : {&dna.pairPoints, &dna.points1, &dna.points2})
            algebra3d::reserveMany(*points, possible);
        for (auto* rotations : {&dna.pairRotations, &dna.rotations1, &dna.rotations2})
            algebra3d::reserveMany(*rotations, possible);
        while (rows.nextLine()) {
            if (!milestones.pass(rows.getPosition())) {
                report.error = fileName + ": " + READING_STOPPED;
                return false;
            }
            RowScanner ahead = rows;
            const std::optional<std::string_view> first = ahead.nextField();
            const bool isPair = first && !isHeader(*first);
            if (isPair ? !readPair() : dna.bases.empty() && !checkNames())
                return false;
        }
        return dna.bases.size() == count ||
               rows.fail("found the end of the file after " + counted(dna.bases.size(), "pair") +
                         ", expected " + std::to_string(count));
    }

    /// Whether a line without a comment mark has the names.
    bool isHeader(std::string_view field) const
    {
        return dna.bases.empty() && beginsWith(inSmallLetters(field), NAMES.front());
    }

    bool readPair()
    {
        if (dna.bases.size() == count)
            return rows.fail("found one more row, expected " + counted(count, "pair"));
        const std::string_view field = rows.nextField().value_or("");
        const std::optional<PairLetters> pair = parsePairLetters(field);
        if (!pair)
            return rows.failInColumn("found " + inQuotes(field) + ", expected a pair as A-T");
        std::array<double, PARAMETERS> numbers;
        if (!rows.takeNumbers(numbers.data(), numbers.size()))
            return false;
        for (const std::size_t i : {3, 4, 5, 9, 10, 11})
            if (std::abs(numbers[i]) > LARGEST_ANGLE)
                return rows.fail("found an angle of " + formatted(numbers[i]) +
                                 " degrees, expected at most 360");
        if (const auto more = rows.nextField())
            return rows.failInColumn("found " + inQuotes(*more) + ", expected the end of the line");
        if (dna.bases.empty())
            dna.origin = rows.place() + "DNA 1";
        return placePair(numbers, letters.take(*pair));
    }

    bool placePair(const std::array<double, PARAMETERS>& n, char base)
    {
        if (!dna.bases.empty())
            pair = nextPair(pair, {n[6], n[7], n[8], n[9], n[10], n[11]});
        const BaseFrames bases = baseFrames(pair, {n[0], n[1], n[2], n[3], n[4], n[5]});
        for (const PlacedFrame& frame : {pair, bases.base1, bases.base2})
            for (int i = 0; i < 3; ++i)
                if (!isCoordinate(frame.point[i]))
                    return rows.fail("found a pair that comes to " + formatted(frame.point[i]) +
                                     ", expected " + EXPECTED_COORDINATE);
        dna.bases += base;
        dna.pairPoints.push_back(pair.point);
        dna.pairRotations.push_back(pair.rotation);
        dna.points1.push_back(bases.base1.point);
        dna.rotations1.push_back(bases.base1.rotation);
        dna.points2.push_back(bases.base2.point);
        dna.rotations2.push_back(bases.base2.rotation);
        return true;
    }

    std::string_view text;
    const std::string& fileName;
    ReadReport& report;
    RowScanner rows;
    Milestones milestones;
    std::size_t count = 0; ///< of pairs, as the first line says
    PlacedFrame pair;      ///< the one read last
    Dna dna;
    LetterCounts letters;
};

} // namespace

std::optional<Configuration> readStepParameters(std::string_view text, const std::string& fileName,
                                                const ReadOptions& options, ReadReport& report)
{
    return StepParameterReader(text, fileName, options, report).read();
}

Likeness likenessToStepParameters(std::string_view beginning)
{
    if (isUtf16(beginning) || isBinary(beginning))
        return Likeness::NONE;
    ReadReport ignored;
    const std::string name;
    RowScanner rows(withoutByteOrderMark(beginning), name, ignored);
    std::size_t number = 0;
    if (!rows.nextRow() || !rows.takeCount(number, "") || rows.nextField() || !rows.nextRow() ||
        !rows.takeCount(number, "") || rows.nextField())
        return Likeness::NONE;
    const std::vector<std::string> told = wordsOf(rows.getRestOfLine());
    const bool tellsParameters = std::find(told.begin(), told.end(), "parameters") != told.end();
    const bool namesColumns = rows.nextLine() && haveNames(wordsOf(rows.getRestOfLine()));
    return tellsParameters || namesColumns ? Likeness::CERTAIN : Likeness::NONE;
}

} // namespace strandview
