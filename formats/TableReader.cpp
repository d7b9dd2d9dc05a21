// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/TableReader.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <limits>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

#include <algebra3d/largePages.h>

#include <strandview/formats/Collector.h>
#include <strandview/formats/IndexedSeries.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/Pieces.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/directors.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>
#include <strandview/formats/timeColumns.h>
#include <strandview/formats/wideRows.h>

namespace strandview {

namespace {

using Names = std::vector<std::string>;

/// The columns that place a point with its frame, by a quaternion or by directors. The
/// first ones are in the order of a table without a header.
const Names ROD_NAMES = {"x",   "y",   "z",   "qx",  "qy",  "qz",  "qw",  "d1x",
                         "d1y", "d1z", "d2x", "d2y", "d2z", "d3x", "d3y", "d3z"};
constexpr std::size_t FRAME_WIDTH = 16; ///< of all names
constexpr std::size_t PLAIN_WIDTH = 7;  ///< of those without a header
constexpr std::size_t FIRST_OF_QUATERNION = 3;
constexpr std::size_t FIRST_OF_DIRECTORS = 7;
constexpr std::size_t NO_COLUMN = static_cast<std::size_t>(-1);

/// What the frames of a row of DNA belong to.
constexpr std::array<const char*, 3> DNA_OWNERS = {"the pair", "strand 1", "strand 2"};
/// The base comes first. One frame is that of the pair and of both bases.
constexpr std::size_t DNA_WIDTH = 1 + DNA_OWNERS.size() * PLAIN_WIDTH;
constexpr std::size_t FLAT_DNA_WIDTH = 1 + PLAIN_WIDTH;
constexpr char EXPECTED_OF_DNA[] = "(a base, and x y z qx qy qz qw of the pair)";
constexpr char EXPECTED_OF_BASES[] =
    "(a base, and x y z qx qy qz qw of the pair, of strand 1 and of strand 2)";

/// The columns that place a base pair: as of a rod, then with 1, then with 2 behind.
Names makeDnaNames()
{
    Names names = ROD_NAMES;
    for (const char* strand : {"1", "2"})
        for (const std::string& name : ROD_NAMES)
            names.push_back(name + strand);
    return names;
}
const Names DNA_NAMES = makeDnaNames();

bool hasComma(std::string_view field) { return field.find(',') != std::string_view::npos; }

/// Whether commas can only be decimal ones: no field has any other.
bool areCommasDecimal(const std::vector<std::string_view>& fields)
{
    return fields.size() > 1 && std::all_of(fields.begin(), fields.end(), [](auto field) {
               return !hasComma(field) || isNumber(field);
           });
}

constexpr char EXPECTED_CLOSING_QUOTE[] = "a closing quote at the end of the field";
constexpr char DECIMAL_POINT_HINT[] = ", with a decimal point";

/// What should stand there instead of a field that is no finite number.
std::string expectedInstead(std::string_view field, std::errc status)
{
    if (hasOpenQuote(field))
        return EXPECTED_CLOSING_QUOTE;
    if (status == std::errc::result_out_of_range)
        return "a number within the range of double precision";
    return std::string(EXPECTED_NUMBER) + (hasComma(field) ? DECIMAL_POINT_HINT : "");
}

std::string foundField(std::string_view field)
{
    return field.empty() ? "found an empty field" : "found " + inQuotes(field);
}

std::size_t indexOfName(std::string_view name, const Names& names)
{
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? NO_COLUMN : found - names.begin();
}

/// A column's name: a known one in lower case and without a unit, any other as it is.
std::string nameOfColumn(std::string_view field, const Names& known)
{
    std::string lower = inSmallLetters(withoutUnit(field));
    return indexOfName(lower, known) == NO_COLUMN ? std::string(field) : lower;
}

bool isNameOf(std::string_view field, const Names& known)
{
    return indexOfName(nameOfColumn(field, known), known) != NO_COLUMN;
}

std::string nameByNumber(std::size_t column) { return "column" + std::to_string(column + 1); }

/// The first may have no name: that of an index often has none.
Names namesOfColumns(const std::vector<std::string_view>& fields, const Names& known)
{
    Names names;
    for (const std::string_view field : fields)
        names.push_back(nameOfColumn(field, known));
    if (names[0].empty())
        names[0] = nameByNumber(0);
    return names;
}

Names namesWithoutHeader(std::size_t count)
{
    Names names(ROD_NAMES.begin(), ROD_NAMES.begin() + std::min(count, PLAIN_WIDTH));
    while (names.size() < count)
        names.push_back(nameByNumber(names.size()));
    return names;
}

bool haveNamesOfPoints(const std::vector<std::string_view>& fields)
{
    return std::all_of(ROD_NAMES.begin(), ROD_NAMES.begin() + 3, [&](const std::string& name) {
        return std::any_of(fields.begin(), fields.end(),
                           [&](auto field) { return nameOfColumn(field, ROD_NAMES) == name; });
    });
}

bool isBase(std::string_view field) { return field.size() == 1 && parseBase(field[0]); }

/// The columns of DNA below a header: with one frame a row, or with three.
Names namesOfDna(std::size_t count)
{
    Names names = {"base"};
    for (std::size_t frame = 0; names.size() < count; ++frame) {
        const auto first = DNA_NAMES.begin() + std::ptrdiff_t(frame * FRAME_WIDTH);
        names.insert(names.end(), first, first + PLAIN_WIDTH);
    }
    return names;
}

bool nameStrands(const std::vector<std::string_view>& fields)
{
    return std::any_of(fields.begin(), fields.end(), [](auto field) {
        return isNameOf(field, DNA_NAMES) && !isNameOf(field, ROD_NAMES);
    });
}

/// A base of any alphabet, or none.
bool isLetter(std::string_view field)
{
    return field.empty() ||
           (field.size() == 1 && std::isalpha(static_cast<unsigned char>(field[0])));
}

/// The fields below the line that the scanner is in, and below comments.
std::vector<std::string_view> fieldsBelow(FieldScanner scanner)
{
    do
        scanner.nextLine();
    while (!scanner.isAtEnd() && (scanner.isLineBlank() || scanner.isLineComment()));
    return remainingFields(scanner);
}

/// The fields of the line the scanner is in if it is a header: where commas, semicolons
/// or tabs separate x y z, spaces are part of the names.
std::vector<std::string_view> headerFields(FieldScanner scanner)
{
    FieldScanner withSpaces = scanner;
    withSpaces.makeSpacesText();
    std::vector<std::string_view> fields = remainingFields(withSpaces);
    std::string ignored;
    return haveNamesOfPoints(fields) || wideColumnsOf(fields, ignored) ? fields
                                                                       : remainingFields(scanner);
}

/// A row that is all names: none of its fields is a number.
bool isHeader(const std::vector<std::string_view>& fields)
{
    return std::none_of(fields.begin(), fields.end(), isNumber);
}

/// What the columns of the file are, fixed by its header or its first row.
struct Columns
{
    std::size_t line = 0; ///< where they were fixed; 0 before that
    bool endWithComma = false;
    bool areOfDna = false;
    Names names;
    std::vector<std::size_t> geometry; ///< the column of each of knownNames(), or NO_COLUMN
    std::vector<std::size_t> others;   ///< the scalars; of DNA the base
    std::size_t letters = NO_COLUMN;   ///< the base, which is no number
    bool areNamed = false;             ///< by a header
    enum Rotation { NONE, QUATERNION, DIRECTORS };
    std::vector<Rotation> rotations; ///< what tells that of each frame

    const Names& knownNames() const { return areOfDna ? DNA_NAMES : ROD_NAMES; }
    bool have(std::size_t name) const { return geometry[name] != NO_COLUMN; }
    /// Any of them: a header that was accepted has all.
    bool nameQuaternion(std::size_t frame) const
    {
        const std::size_t first = frame * FRAME_WIDTH + FIRST_OF_QUATERNION;
        return have(first) || have(first + 1) || have(first + 2) || have(first + 3);
    }
    static std::array<std::size_t, 3> namesOfDirector(std::size_t frame, std::size_t director)
    {
        const std::size_t first = frame * FRAME_WIDTH + FIRST_OF_DIRECTORS + 3 * director;
        return {first, first + 1, first + 2};
    }
    bool haveDirector(std::size_t frame, std::size_t director) const
    {
        const std::array<std::size_t, 3> of = namesOfDirector(frame, director);
        return have(of[0]) || have(of[1]) || have(of[2]);
    }
    bool isOfGeometry(std::size_t column) const
    {
        return std::find(geometry.begin(), geometry.end(), column) != geometry.end();
    }
    bool haveDirectors(std::size_t frame) const
    {
        return haveDirector(frame, 0) || haveDirector(frame, 1) || haveDirector(frame, 2);
    }
    /// Of DNA: of the bases, too, or of the pairs alone.
    bool haveBases() const { return have(FRAME_WIDTH); }
};

/// How the rows of a table are to be read, whichever frame they are in.
struct Layout
{
    Columns columns; ///< without names where they are wide
    bool areCommasText = false;
    std::optional<WideColumns> wide = {};
};

/// The column that may tell frames apart: of the name that goes first.
std::size_t timeColumnOf(const Columns& columns)
{
    std::size_t found = NO_COLUMN;
    TimeName best = TimeName::NONE;
    for (const std::size_t column : columns.others) {
        const TimeName name = timeNameOf(columns.names[column]);
        if (name < best) {
            best = name;
            found = column;
        }
    }
    return found;
}

/// A field without a number, as it stands there.
struct MissingField
{
    std::size_t column;
    std::string_view text;
};

class TableReader
{
public:
    /// Of a table, or of a part of it that begins with the line of that number.
    TableReader(std::string_view text, const std::string& tableName, const ReadOptions& readOptions,
                ReadReport& readReport, std::size_t firstLine = 1)
        : scanner(text, firstLine),
          fileName(tableName),
          options(readOptions),
          report(readReport),
          milestones(readOptions, text.size()),
          collector(readOptions)
    {}

    /// By the first line, which is neither blank nor a comment, and those below it.
    std::optional<Layout> readLayout()
    {
        return takeFirstLine() ? std::optional<Layout>({columns, scanner.areCommasText(), wide})
                               : std::nullopt;
    }

    /// All of it, of which the layout is known.
    std::optional<Configuration> read(const Layout& layout)
    {
        columns = layout.columns;
        wide = layout.wide;
        row.resize(wide ? wide->count : columns.names.size());
        if (layout.areCommasText)
            scanner.makeCommasText();
        scanner.lookForReturns();
        return read();
    }

private:
    std::optional<Configuration> read()
    {
        for (; !scanner.isAtEnd(); scanner.nextLine())
            if (!(milestones.pass(scanner.getPosition()) || fail(READING_STOPPED)) || !readLine())
                return {};
        if (!finishBlock())
            return {};
        noteWhatIsLeftOut();
        return collector.finish(fileName, "rod or DNA", report);
    }

    void noteWhatIsLeftOut()
    {
        const auto note = [this](const std::string& text) {
            report.notices.push_back(fileName + ": " + text);
        };
        if (singlePairs > 0)
            note(counted(singlePairs, "row") + " of a base alone left out: a rod has two points");
        if (areLettersLeftOut)
            note(nameText(columns.letters) + ": letters left out: rods have none");
        if (!alwaysAbsent.empty())
            note(andMore(nameText(alwaysAbsent.front()), alwaysAbsent.size()) +
                 " left out: empty in all rows");
        if (unknowns > 0)
            note(counted(unknowns, "empty field") + " between others taken as not known, the " +
                 "first in line " + std::to_string(firstUnknown.line) + ", " +
                 nameText(firstUnknown.column));
    }

    bool readLine()
    {
        if (!scanner.isAtRow()) { // or behind blanks
            if (scanner.isLineBlank())
                return finishBlock();
            if (scanner.isLineComment())
                return true;
        }
        if (isInBlock())
            return readRow();
        return isHeaderAgain() || readRow();
    }

    /// It fixes the columns.
    bool takeFirstLine()
    {
        FieldScanner line = scanner;
        line.makeCommasText();
        line.makeSpacesText();
        if (areCommasDecimal(remainingFields(line)))
            scanner.makeCommasText();

        std::vector<std::string_view> fields = headerFields(scanner);
        columns.endWithComma = fields.size() > 1 && fields.back().empty();
        if (columns.endWithComma)
            fields.pop_back();
        std::string fault;
        if (isHeader(fields) && (wide = wideColumnsOf(fields, fault)))
            return takeWideColumns() && (fault.empty() || fail(fault));
        if (options.frameRows == 1)
            return takeWideColumnCount(fields.size(), isHeader(fields));
        columns.areNamed = isHeader(fields);
        if (columns.areNamed)
            return takeHeader(fields);
        columns.areOfDna = isBase(fields[0]);
        return takeColumnCount(fields.size());
    }

    /// Above any rod or DNA.
    bool isHeaderAgain() const
    {
        if (isNumber(*FieldScanner(scanner).nextField())) // most often
            return false;
        std::vector<std::string_view> fields = headerFields(scanner);
        if (columns.endWithComma && fields.size() > 1 && fields.back().empty())
            fields.pop_back();
        if (wide) // whose columns are the same if there are as many
            return isHeader(fields) && fields.size() == wide->count;
        return isHeader(fields) && namesOfColumns(fields, columns.knownNames()) == columns.names;
    }

    bool takeWideColumns()
    {
        columns.line = scanner.getLine();
        row.resize(wide->count);
        return true;
    }

    bool takeWideColumnCount(std::size_t count, bool areNames)
    {
        const std::string expected =
            ", expected x y z of each of two points or more, or a time and these";
        if (areNames)
            return fail("found a header without x1 y1 z1 x2 y2 z2" + expected);
        wide = wideColumnsOf(count);
        return wide ? takeWideColumns() : fail("found " + counted(count, "column") + expected);
    }

    bool takeColumnCount(std::size_t count)
    {
        if (columns.areOfDna)
            return takeDnaColumnCount(count);
        if (count == 1 && isAtomList())
            return fail("found an atom list, expected rows of numbers");
        if (count != 3 && count < PLAIN_WIDTH)
            return fail("found " + counted(count, "column") +
                        ", expected 3 (x y z), or 7 or more (x y z qx qy qz qw and scalars)" +
                        hintFor(scanner));
        setColumns(namesWithoutHeader(count));
        return true;
    }

    bool takeDnaColumnCount(std::size_t count)
    {
        if (count != FLAT_DNA_WIDTH && count != DNA_WIDTH)
            return fail("found " + counted(count, "column") + ", expected " +
                        std::to_string(FLAT_DNA_WIDTH) + " " + EXPECTED_OF_DNA + " or " +
                        std::to_string(DNA_WIDTH) + " " + EXPECTED_OF_BASES + hintFor(scanner));
        setColumns(namesOfDna(count));
        return true;
    }

    /// Whether the number in this line could be that of the atoms from the line after
    /// the next on, each with its name first.
    bool isAtomList() const
    {
        FieldScanner atom = scanner;
        atom.nextLine();
        atom.nextLine();
        const auto name = atom.nextField();
        return name && !name->empty() && !isNumber(*name);
    }

    /// For a line with too many columns.
    static std::string hintFor(FieldScanner line)
    {
        line.makeCommasText();
        const std::vector<std::string_view> words = remainingFields(line);
        const bool haveCommas = std::any_of(words.begin(), words.end(), hasComma);
        return haveCommas && areCommasDecimal(words) ? DECIMAL_POINT_HINT : "";
    }

    bool takeHeader(const std::vector<std::string_view>& fields)
    {
        for (std::size_t c = 0; c < fields.size(); ++c)
            if (hasOpenQuote(fields[c]))
                return fail(columnText(c) + ": " + foundField(fields[c]) + ", expected " +
                            EXPECTED_CLOSING_QUOTE);
        columns.areOfDna = isDnaHeader(fields);
        if (std::none_of(fields.begin(), fields.end(),
                         [&](auto field) { return isNameOf(field, columns.knownNames()); }))
            return fail("column 1: " + foundField(fields[0]) +
                        ", expected a number, or a header that names x y z, and qx qy qz qw if "
                        "there are quaternions");
        Names names = namesOfColumns(fields, columns.knownNames());
        std::unordered_set<std::string> seen;
        for (std::size_t c = 0; c < fields.size(); ++c) {
            if (names[c].empty())
                return fail(columnText(c) + ": found an empty field, expected a column's name");
            if (!seen.insert(names[c]).second)
                return fail(columnText(c) + ": found " + inQuotes(fields[c]) +
                            " again, expected each name once");
        }
        setColumns(std::move(names));
        if (!columns.areOfDna)
            leaveOutLetters();
        return columns.areOfDna ? checkDnaHeader() : checkRodHeader();
    }

    /// A rod's column named base that begins with a letter, or with nothing, holds no numbers.
    void leaveOutLetters()
    {
        const auto isBases = [this](std::size_t column) {
            return inSmallLetters(columns.names[column]) == "base";
        };
        const auto named = std::find_if(columns.others.begin(), columns.others.end(), isBases);
        if (named == columns.others.end())
            return;
        const std::vector<std::string_view> below = fieldsBelow(scanner);
        if (*named == 0 || *named >= below.size() || !isLetter(below[*named]))
            return; // the first is that of DNA
        columns.letters = *named;
        columns.others.erase(named);
    }

    /// That names a base first, and then a strand's place, or stands above a letter. A rod
    /// may have a scalar named base.
    bool isDnaHeader(const std::vector<std::string_view>& fields) const
    {
        if (inSmallLetters(fields[0]) != "base")
            return false;
        const std::vector<std::string_view> below = fieldsBelow(scanner);
        return nameStrands(fields) || (!below.empty() && !below[0].empty() && !isNumber(below[0]));
    }

    bool checkRodHeader()
    {
        return requireNames(1, "x y z and all or none of qx qy qz qw") && checkDirectors(0);
    }

    bool checkDnaHeader()
    {
        const std::size_t frames = nameBases() ? DNA_OWNERS.size() : 1;
        const std::string expected = std::string("base, x y z qx qy qz qw") +
                                     (frames > 1 ? ", and these with 1 and with 2 behind" : "");
        for (const std::size_t other : columns.others) {
            if (other == 0 || other == timeColumnOf(columns))
                continue;
            return fail(columnText(other) + ": found " + inQuotes(columns.names[other]) +
                        ", expected only " + expected);
        }
        if (!requireNames(frames, expected))
            return false;
        for (std::size_t frame = 0; frame < frames; ++frame)
            if (!checkDirectors(frame))
                return false;
        return true;
    }

    /// Whether a header of DNA names anything of a strand.
    bool nameBases() const
    {
        return std::any_of(columns.geometry.begin() + FRAME_WIDTH, columns.geometry.end(),
                           [](std::size_t column) { return column != NO_COLUMN; });
    }

    /// Of the points and quaternions of so many frames; those of a rod may be missing
    /// altogether, and all may have directors instead.
    bool requireNames(std::size_t frames, const std::string& expected)
    {
        std::string missing;
        for (std::size_t frame = 0; frame < frames; ++frame) {
            const bool mayLackQuaternion = !columns.areOfDna || columns.haveDirectors(frame);
            const bool needsQuaternion = !mayLackQuaternion || columns.nameQuaternion(frame);
            const std::size_t count = needsQuaternion ? PLAIN_WIDTH : FIRST_OF_QUATERNION;
            for (std::size_t name = frame * FRAME_WIDTH; name < frame * FRAME_WIDTH + count; ++name)
                if (!columns.have(name))
                    missing += " " + columns.knownNames()[name];
        }
        return missing.empty() ||
               fail("found a header without" + missing + ", expected " + expected);
    }

    /// Those that are there must be whole, and at least two.
    bool checkDirectors(std::size_t frame)
    {
        if (!columns.haveDirectors(frame))
            return true;
        std::string missing;
        std::size_t count = 0;
        for (std::size_t director = 0; director < 3; ++director) {
            if (!columns.haveDirector(frame, director))
                continue;
            ++count;
            for (std::size_t name : columns.namesOfDirector(frame, director))
                if (!columns.have(name))
                    missing += " " + columns.knownNames()[name];
        }
        constexpr char expected[] = ", expected two or three of d1x d1y d1z, d2x d2y d2z, d3x d3y "
                                    "d3z";
        if (!missing.empty())
            return fail("found a header without" + missing + expected);
        return count > 1 || fail("found a header with one director" + ofOwner(frame) + expected);
    }

    void setColumns(Names names)
    {
        columns.line = scanner.getLine();
        columns.names = std::move(names);
        columns.letters = columns.areOfDna ? 0 : NO_COLUMN;
        columns.geometry.assign(columns.knownNames().size(), NO_COLUMN);
        for (std::size_t c = 0; c < columns.names.size(); ++c) {
            const std::size_t index = indexOfName(columns.names[c], columns.knownNames());
            if (index != NO_COLUMN)
                columns.geometry[index] = c;
        }
        for (std::size_t frame = 0; frame * FRAME_WIDTH < columns.geometry.size(); ++frame) {
            if (columns.nameQuaternion(frame))
                leaveOutDirectors(frame);
            columns.rotations.push_back(columns.nameQuaternion(frame)  ? Columns::QUATERNION
                                        : columns.haveDirectors(frame) ? Columns::DIRECTORS
                                                                       : Columns::NONE);
        }
        for (std::size_t c = 0; c < columns.names.size(); ++c)
            if (!columns.isOfGeometry(c))
                columns.others.push_back(c);
        row.resize(columns.names.size());
    }

    /// Beside a quaternion they are as any other columns.
    void leaveOutDirectors(std::size_t frame)
    {
        const auto first = columns.geometry.begin() + std::ptrdiff_t(frame * FRAME_WIDTH);
        std::fill(first + FIRST_OF_DIRECTORS, first + FRAME_WIDTH, NO_COLUMN);
    }

    bool readRow()
    {
        if (!missing.empty())
            return failMissing();
        const FieldScanner start = scanner;
        std::size_t count = 0;
        bool endsWithComma = false;
        for (;; ++count) {
            while (count < row.size() && takesNumbers(count) && scanner.nextNumber(row[count]))
                ++count; // most often, up to the last one
            const auto field = scanner.isAtRowEnd() ? std::nullopt : scanner.nextField();
            if (!field)
                break;
            if (count < row.size()) {
                if (!readField(*field, count))
                    return false;
            } else { // to say how many there are
                endsWithComma = field->empty();
            }
        }
        if (columns.endWithComma && endsWithComma)
            --count;
        else if (columns.endWithComma && count == row.size())
            return fail("found no separator at the end of the row, expected one as in line " +
                        std::to_string(columns.line));
        if (count != row.size())
            return fail("found " + counted(count, "column") + ", expected " +
                        std::to_string(row.size()) + " as in line " + std::to_string(columns.line) +
                        hintFor(start));
        return addRow();
    }

    bool takesNumbers(std::size_t column) const
    {
        return column != columns.letters && (absent.empty() || !isAbsent(column));
    }

    bool readField(std::string_view field, std::size_t column)
    {
        if (column == columns.letters)
            return columns.areOfDna ? readBase(field) : readLetter(field);
        if (!absent.empty() && isAbsent(column))
            return field.empty() || failAbsent(column);
        if (wide && !wide->isUsed(column))
            return true;
        const std::errc status = parseNumber(field, row[column]);
        if (status == std::errc() && std::isfinite(row[column]) &&
            (scanner.areCommasText() || !hasComma(field)))
            return true;
        const bool isNoNumber = status == std::errc() && std::isnan(row[column]);
        if ((field.empty() || isNoNumber) && !wide && mayBeMissing(column)) {
            row[column] = std::numeric_limits<double>::quiet_NaN();
            missing.push_back({column, field});
            missingLine = scanner.getLine();
            return true;
        }
        return fail(nameText(column) + ": " + foundField(field) + ", expected " +
                    expectedInstead(field, status));
    }

    bool readBase(std::string_view field)
    {
        if (!isBase(field))
            return fail(nameText(0) + ": " + foundField(field) + ", expected " +
                        (hasOpenQuote(field) ? EXPECTED_CLOSING_QUOTE : EXPECTED_BASE));
        base = *parseBase(field[0]);
        return true;
    }

    /// It is left out.
    bool readLetter(std::string_view field)
    {
        hasLetters = hasLetters || !field.empty();
        return isLetter(field) || fail(nameText(columns.letters) + ": " + foundField(field) +
                                       ", expected a letter, or nothing");
    }

    bool addRow()
    {
        if (wide)
            return addWideRow();
        if (!isInBlock() && !(openBlock(), takeAbsent()))
            return false;
        if (columns.areOfDna) {
            dna.bases += base;
            const std::size_t first = columns.haveBases() ? 1 : 0, second = 2 * first;
            return addFrame(0, dna.pairPoints, dna.pairRotations) &&
                   addFrame(first, dna.points1, dna.rotations1) &&
                   addFrame(second, dna.points2, dna.rotations2);
        }
        countUnknowns();
        if (!isRotationMissing())
            keepUnknownScalars();
        if (!missing.empty() && !isRowOfElements())
            return failMissing();
        algebra3d::reserveNext(rod.lines);
        rod.lines.push_back(scanner.getLine());
        for (std::size_t i = 0; i < columns.others.size(); ++i)
            if (!isMissing(columns.others[i]) && !isAbsent(columns.others[i]))
                rod.scalars[i].values.push_back(row[columns.others[i]]);
        return addFrame(0, rod.points, rod.rotations);
    }

    /// It is a rod.
    bool addWideRow()
    {
        openBlock();
        algebra3d::reserveMany(rod.points, wide->points);
        for (std::size_t i = 0; i < wide->points; ++i) {
            const std::size_t x = wide->first + 3 * i;
            for (std::size_t column = x; column < x + 3; ++column)
                if (!isCoordinate(row[column]))
                    return failCoordinate(column);
            rod.points.emplace_back(row[x], row[x + 1], row[x + 2]);
        }
        rod.lines.assign(wide->points, scanner.getLine());
        return finishBlock();
    }

    bool failCoordinate(std::size_t column)
    {
        return fail(nameText(column) + ": found " + formatted(row[column]) + ", expected " +
                    EXPECTED_COORDINATE);
    }

    /// One of the points that the row places, with its rotation unless that is missing.
    bool addFrame(std::size_t frame, std::vector<algebra3d::Vector3<double>>& points,
                  std::vector<algebra3d::Quaternion<double>>& rotations)
    {
        const std::size_t* at = &columns.geometry[frame * FRAME_WIDTH];
        for (std::size_t i = 0; i < 3; ++i)
            if (!isCoordinate(row[at[i]]))
                return failCoordinate(at[i]);
        algebra3d::reserveNext(points);
        points.emplace_back(row[at[0]], row[at[1]], row[at[2]]);
        if (areFramesAbsent || isRotationMissing())
            return true;
        if (columns.rotations[frame] != Columns::QUATERNION)
            return columns.rotations[frame] == Columns::NONE ||
                   addRotationOfDirectors(frame, rotations);
        algebra3d::reserveNext(rotations);
        rotations.emplace_back(row[at[3]], row[at[4]], row[at[5]], row[at[6]]);
        const std::string fault = checkRotation(rotations.back(), options);
        return fault.empty() || fail("columns qx qy qz qw" + ofOwner(frame) + ": " + fault);
    }

    bool addRotationOfDirectors(std::size_t frame,
                                std::vector<algebra3d::Quaternion<double>>& rotations)
    {
        Directors directors;
        for (std::size_t i = 0; i < directors.size(); ++i) {
            if (!columns.haveDirector(frame, i))
                continue;
            const auto [x, y, z] = columns.namesOfDirector(frame, i);
            directors[i].emplace(row[columns.geometry[x]], row[columns.geometry[y]],
                                 row[columns.geometry[z]]);
        }
        const std::string fault = findRotation(directors, options, rotations.emplace_back());
        return fault.empty() || fail("directors" + ofOwner(frame) + ": " + fault);
    }

    /// Whatever belongs to elements is missing in the last row of a rod.
    bool mayBeMissing(std::size_t column) const
    {
        const auto coordinates = columns.geometry.begin();
        return !columns.areOfDna && std::find(coordinates, coordinates + FIRST_OF_QUATERNION,
                                              column) == coordinates + FIRST_OF_QUATERNION;
    }
    /// They are in the order of their columns.
    bool isMissing(std::size_t column) const
    {
        const auto found = std::lower_bound(
            missing.begin(), missing.end(), column,
            [](const MissingField& field, std::size_t wanted) { return field.column < wanted; });
        return found != missing.end() && found->column == column;
    }
    /// A scalar that is no number, beside a frame or where there are none, is not missing:
    /// it is the point's, and unknown. So is an empty one where rows are bases, which have no
    /// elements: behind the last pair there is no step.
    void keepUnknownScalars()
    {
        const bool areBases = columns.letters != NO_COLUMN;
        const auto isUnknown = [=](const MissingField& field) {
            return !field.text.empty() || (areBases && !columns.isOfGeometry(field.column));
        };
        missing.erase(std::remove_if(missing.begin(), missing.end(), isUnknown), missing.end());
    }
    /// In the last row of a rod they are expected: those of the row before are counted in the next.
    void countUnknowns()
    {
        unknowns += std::exchange(unknownsOfRow, 0);
        if (missing.empty() || columns.letters == NO_COLUMN) // most often
            return;
        for (const MissingField& field : missing) {
            if (!field.text.empty() || columns.isOfGeometry(field.column))
                continue;
            if (unknowns + unknownsOfRow++ == 0)
                firstUnknown = {scanner.getLine(), field.column};
        }
    }
    bool isRotationMissing() const
    {
        return !missing.empty() && // most often
               std::any_of(missing.begin(), missing.end(), [this](const MissingField& field) {
                   return columns.isOfGeometry(field.column);
               });
    }
    /// Whether a rotation is missing as a whole, or not at all.
    bool isRowOfElements() const
    {
        const std::size_t ofRotation =
            std::size_t(std::count_if(missing.begin(), missing.end(), [this](const auto& field) {
                return columns.isOfGeometry(field.column);
            }));
        const auto without =
            std::count(columns.geometry.begin(), columns.geometry.end(), NO_COLUMN);
        return ofRotation == 0 ||
               ofRotation == columns.geometry.size() - std::size_t(without) - FIRST_OF_QUATERNION;
    }
    /// What is empty in the first row of a rod is absent: it has none, in any row. Names of columns
    /// say what that is; and a time is that of all rows.
    bool takeAbsent()
    {
        if (missing.empty()) // most often
            return true;
        const std::size_t time = timeColumnOf(columns);
        const bool mayLack = columns.areNamed &&
                             std::none_of(missing.begin(), missing.end(), [=](const auto& field) {
                                 return field.column == time && field.text.empty();
                             });
        if (!mayLack)
            return true;
        for (const MissingField& field : missing)
            if (field.text.empty())
                absent.push_back(field.column);
        missing.erase(std::remove_if(missing.begin(), missing.end(),
                                     [](const auto& field) { return field.text.empty(); }),
                      missing.end());
        const auto ofFrames =
            std::find_if(absent.begin(), absent.end(),
                         [this](std::size_t column) { return columns.isOfGeometry(column); });
        areFramesAbsent = ofFrames != absent.end();
        return !areFramesAbsent || areAllOfFramesAbsent() || failAbsent(*ofFrames);
    }
    /// They are in the order of their columns.
    bool isAbsent(std::size_t column) const
    {
        return std::binary_search(absent.begin(), absent.end(), column);
    }
    bool areAllOfFramesAbsent() const
    {
        return std::all_of(
            columns.geometry.begin() + FIRST_OF_QUATERNION, columns.geometry.end(),
            [this](std::size_t column) { return column == NO_COLUMN || isAbsent(column); });
    }
    bool failAbsent(std::size_t column)
    {
        return failInLine(firstLine, nameText(column) + ": " + foundField("") + ", expected " +
                                         EXPECTED_NUMBER + ", or nothing in all rows of the rod");
    }

    bool failMissing()
    {
        const MissingField& first = missing.front();
        return failInLine(missingLine, nameText(first.column) + ": " + foundField(first.text) +
                                           ", expected " + EXPECTED_NUMBER +
                                           "; a rod's last row may lack what is of elements");
    }

    /// Rows between blank lines.
    bool isInBlock() const { return !rod.points.empty() || !dna.bases.empty(); }

    void openBlock()
    {
        firstLine = scanner.getLine();
        const std::string line = fileName + ":" + std::to_string(firstLine) + ": ";
        const std::string number = std::to_string(++blocks);
        if (columns.areOfDna) {
            dna.origin = line + "DNA " + number;
            return;
        }
        rod.origin = line + "rod " + number;
        for (const std::size_t c : columns.others)
            rod.scalars.push_back({columns.names[c], {}});
    }

    bool finishBlock()
    {
        if (!isInBlock())
            return true;
        missing.clear();
        unknownsOfRow = 0;
        if (!columns.areOfDna)
            keepAlwaysAbsent();
        leaveOutAbsent();
        areLettersLeftOut = areLettersLeftOut || hasLetters;
        if (std::exchange(hasLetters, false) && rod.points.size() == 1) {
            rod = Rod();
            ++singlePairs;
            return true;
        }
        const std::string fault = columns.areOfDna ? collector.add(std::exchange(dna, Dna()))
                                                   : collector.add(std::exchange(rod, Rod()));
        return fault.empty() || failInLine(firstLine, fault);
    }

    /// What all rods lack, so far.
    void keepAlwaysAbsent()
    {
        if (blocks == 1)
            alwaysAbsent = absent;
        const auto isThere = [this](std::size_t column) { return !isAbsent(column); };
        alwaysAbsent.erase(std::remove_if(alwaysAbsent.begin(), alwaysAbsent.end(), isThere),
                           alwaysAbsent.end());
    }

    void leaveOutAbsent()
    {
        if (absent.empty())
            return;
        std::vector<Scalar>& all = rod.scalars;
        all.erase(std::remove_if(all.begin(), all.end(),
                                 [](const Scalar& scalar) { return scalar.values.empty(); }),
                  all.end());
        absent.clear();
        areFramesAbsent = false;
    }

    std::string columnText(std::size_t column) const
    {
        return "column " + std::to_string(column + 1);
    }
    std::string nameText(std::size_t column) const
    {
        if (wide)
            return columnText(column) + " (" + nameOf(column, *wide) + ")";
        const std::size_t index = indexOfName(columns.names[column], columns.knownNames());
        const std::string name = columns.areOfDna && index != NO_COLUMN
                                     ? ROD_NAMES[index % FRAME_WIDTH] + ofOwner(index / FRAME_WIDTH)
                                     : shortened(columns.names[column]);
        return columnText(column) + " (" + name + ")";
    }
    std::string ofOwner(std::size_t frame) const
    {
        return columns.areOfDna ? std::string(" of ") + DNA_OWNERS[frame] : "";
    }

    /// Always false.
    bool fail(const std::string& text) { return failInLine(scanner.getLine(), text); }
    bool failInLine(std::size_t line, const std::string& text)
    {
        report.error = fileName + ":" + std::to_string(line) + ": " + text;
        return false;
    }

    FieldScanner scanner;
    const std::string& fileName;
    const ReadOptions& options;
    ReadReport& report;
    Milestones milestones;
    Columns columns;
    std::optional<WideColumns> wide;   ///< instead of them
    std::vector<double> row;           ///< the numbers of one row, by column
    std::vector<MissingField> missing; ///< of the last row that was read
    std::size_t missingLine = 0;
    std::vector<std::size_t> absent;       ///< columns that are empty in this rod
    bool areFramesAbsent = false;          ///< those of frames
    std::vector<std::size_t> alwaysAbsent; ///< in all rods
    bool hasLetters = false;               ///< this rod, which is a line of bases
    bool areLettersLeftOut = false;
    std::size_t singlePairs = 0;
    struct Place
    {
        std::size_t line = 0, column = 0;
    };
    std::size_t unknowns = 0;      ///< empty scalars among rows of bases
    std::size_t unknownsOfRow = 0; ///< the last one, not among them yet
    Place firstUnknown;
    char base = 0; ///< of the row
    Rod rod;       ///< being read, or
    Dna dna;       ///< this; without points between blocks
    std::size_t firstLine = 0;
    std::size_t blocks = 0;
    Collector collector;
};

/// A place in a table, at the beginning of a line.
struct FrameStart
{
    std::uint64_t offset; ///< in bytes
    std::size_t line;     ///< counted from 1
};

/// As far as lines are known to end: with CR alone only if another character follows.
std::string_view wholeLines(std::string_view piece)
{
    const std::size_t last =
        piece.empty() || piece.back() != '\r' ? piece.size() : piece.size() - 1;
    return piece.substr(0, piece.substr(0, last).find_last_of("\r\n") + 1); // 0 if there is none
}

/// In bytes: more columns than any table has. Whoever looks for its end longer, in a file that has
/// none, takes all memory.
constexpr std::size_t LONGEST_ROW = std::size_t(1) << 25;

/// Finds the frames of a table, line by line.
class TableIndex : public TextIndex
{
public:
    explicit TableIndex(const std::string& tableName) : fileName(tableName) {}

    bool lookOn(Source& source, const ReadOptions& options, ReadReport& report) override
    {
        isAtEnd = (end > 0 || skipMark(source, options, report)) && look(source, options, report);
        if (isAtEnd && starts.empty())
            return TableReader("", fileName, options, report).read({}).has_value();
        chooseFrames(options.growing);
        return isAtEnd;
    }

    std::size_t count() const override { return frames().size(); }

    std::optional<double> time(std::size_t frame) const override
    {
        const bool isKnown =
            (areTimed() || rowsOfFrame > 0) && !areTimesNumbers && frame < times.size();
        return isKnown && std::isfinite(times[frame]) ? std::optional(times[frame]) : std::nullopt;
    }

    FrameRead read(std::size_t frame, Source& source, const ReadOptions& options,
                   ReadReport& report) const override
    {
        const FrameStart& start = frames()[frame];
        const bool isLast = frame + 1 == count();
        if (isLast && !isEnded(options.growing)) {
            report.error = fileName + ":" + std::to_string(line) + ": " + missingEnd();
            return {{}, true};
        }
        const std::uint64_t next = isLast ? end : frames()[frame + 1].offset;
        const auto text = readBetween(source, start.offset, next, options, report);
        if (!text)
            return {};
        auto read = TableReader(*text, fileName, options, report, start.line).read(layout);
        const bool isCut = !read && isLast && !options.growing;
        return {std::move(read), isCut};
    }

private:
    using Starts = std::deque<FrameStart>; ///< no vector, which needs thrice its size when it grows

    const Starts& frames() const { return areTimed() ? timed : starts; }
    bool areTimed() const { return isChosen ? isTimed : timed.size() > 1; }

    /// Of the last frame.
    bool isEnded(bool isGrowing) const
    {
        if (rowsOfFrame > 0)
            return rowsLeft == 0;
        return isGap || blankLines > 1 || (isAtEnd && !isGrowing);
    }
    std::string missingEnd() const
    {
        if (rowsOfFrame == 0)
            return "found no end of the frame, expected two blank lines or another frame";
        return "found " + counted(rowsOfFrame - rowsLeft, "row") + " in the frame, expected " +
               std::to_string(rowsOfFrame);
    }

    /// Whether a column tells frames apart stays as it is from the second frame on; where a table
    /// is growing, from the first one.
    void chooseFrames(bool isGrowing)
    {
        const bool isFirstTimed = isGrowing && timed.size() == 1 && rowsOfTime > 1;
        if (isChosen || (count() < 2 && !isFirstTimed))
            return;
        isTimed = areTimed() || isFirstTimed;
        isChosen = true;
        if (isTimed)
            leaveOutTime();
        else
            timeColumn = NO_COLUMN;
    }

    bool skipMark(Source& source, const ReadOptions& options, ReadReport& report)
    {
        const std::optional<std::string_view> mark = source.readBeginning(3, options, report);
        if (mark && isUtf16(*mark))
            report.error = fileName + ": " + FOUND_UTF16;
        else if (mark)
            end = mark->size() - withoutByteOrderMark(*mark).size();
        return mark && !isUtf16(*mark);
    }

    /// What is no file is read at once, unless its first frame is to be shown at once.
    bool look(Source& source, const ReadOptions& options, ReadReport& report)
    {
        if (source.getSize() || options.atOnce)
            return lookAtPieces(source, options, report);
        const std::optional<std::string_view> all = source.readAll(options, report);
        return all && add(all->substr(std::min(std::size_t(end), all->size())), options, report);
    }

    bool lookAtPieces(Source& source, const ReadOptions& options, ReadReport& report)
    {
        if (pieceSize == 0)
            pieceSize = options.growing
                            ? Pieces::SIZE
                            : std::min<std::uint64_t>(Pieces::SIZE,
                                                      source.getSize().value_or(Pieces::SIZE) + 1);
        Pieces pieces(source, options, report);
        while (pieceSize <= LONGEST_ROW) {
            const std::optional<std::string_view> piece = pieces.read(end, pieceSize);
            if (!piece)
                return false;
            const bool isLast = piece->size() < pieceSize;
            const std::string_view lines = isLast && !options.growing ? *piece : wholeLines(*piece);
            if (!add(lines, options, report))
                return false;
            if (isLast)
                return true;
            pieceSize = lines.empty() ? 2 * pieceSize : pieceSize;
        }
        report.error = fileName + ": found a line of more than 32 MiB, expected a table";
        return false;
    }

    /// The lines that come next, whole ones; whether they can be those of a table.
    bool add(std::string_view lines, const ReadOptions& options, ReadReport& report)
    {
        FieldScanner scanner(lines, line);
        scanner.lookForReturns();
        if (layout.areCommasText)
            scanner.makeCommasText();
        for (; !scanner.isAtEnd(); scanner.nextLine()) {
            const std::size_t start = scanner.getPosition();
            const bool isRow = scanner.isAtRow(); // most often
            if (!isRow && scanner.isLineBlank()) {
                ++blankLines;
                continue;
            }
            isGap = isGap || blankLines > 1;
            blankLines = 0;
            if (!isRow && scanner.isLineComment())
                continue;
            if (layout.columns.line == 0 &&
                !takeLayout(lines.substr(start), options, report, scanner))
                return false;
            addRow(scanner, {end + start, scanner.getLine()});
        }
        end += lines.size();
        const bool isWithinLine = !lines.empty() && lines.back() != '\n' && lines.back() != '\r';
        line = scanner.getLine() - isWithinLine;
        return true;
    }

    /// Of the first line, from which on all others are read by it.
    bool takeLayout(std::string_view text, const ReadOptions& options, ReadReport& report,
                    FieldScanner& scanner)
    {
        std::optional<Layout> found =
            TableReader(text, fileName, options, report, scanner.getLine()).readLayout();
        if (!found)
            return false;
        layout = std::move(*found);
        timeColumn = timeColumnOf(layout.columns);
        areTimesNumbers = timeColumn != NO_COLUMN &&
                          timeNameOf(layout.columns.names[timeColumn]) == TimeName::FRAME;
        if (layout.wide || options.frameRows > 0)
            countRows(options.frameRows);
        if (layout.wide && options.frameRows > 1)
            report.notices.push_back(
                fileName + ": --frame-rows has no effect: found rows that are whole frames");
        if (layout.areCommasText)
            scanner.makeCommasText();
        return true;
    }

    /// Their number tells frames apart, and nothing else.
    void countRows(std::size_t inFrame)
    {
        rowsOfFrame = layout.wide ? 1 : inFrame;
        isChosen = true;
        if (layout.wide && layout.wide->time) {
            timeColumn = *layout.wide->time;
            areTimesNumbers = layout.wide->isTimeNumber;
        } else if (timeColumn != NO_COLUMN) {
            leaveOutTime();
        }
    }
    void leaveOutTime()
    {
        std::vector<std::size_t>& others = layout.columns.others;
        others.erase(std::find(others.begin(), others.end(), timeColumn));
    }

    void addCountedRow(const FieldScanner& row, const FrameStart& start)
    {
        if (isHeaderLine(row))
            return;
        if (rowsLeft == 0) {
            starts.push_back(start);
            rowsLeft = rowsOfFrame;
            if (timeColumn != NO_COLUMN)
                times.push_back(timeIn(row).value_or(std::numeric_limits<double>::quiet_NaN()));
        }
        --rowsLeft;
    }
    /// Whether the line has no number.
    static bool isHeaderLine(FieldScanner row)
    {
        const FieldScanner whole = row;
        double number = 0;
        return !row.nextNumber(number) && isHeader(remainingFields(whole));
    }

    void addRow(const FieldScanner& row, const FrameStart& start)
    {
        if (rowsOfFrame > 0)
            return addCountedRow(row, start);
        if (isGap || starts.empty())
            starts.push_back(start);
        isTimedGap = isTimedGap || isGap;
        isGap = false;
        if (timeColumn == NO_COLUMN)
            return;
        const std::optional<double> time = timeIn(row);
        if (!time) // a header, or left out as what is of elements
            return;
        if (timed.empty() || isTimedGap || *time != times.back())
            startTime(*time, start);
        isTimedGap = false;
        ++rowsOfTime;
    }

    /// Times of which one has a single row are no frames, but for the last: that may be cut short.
    void startTime(double time, const FrameStart& start)
    {
        if (!timed.empty() && rowsOfTime < 2 && !isChosen) {
            timeColumn = NO_COLUMN;
            timed.clear();
            return;
        }
        timed.push_back(start);
        times.push_back(time);
        rowsOfTime = 0;
    }

    std::optional<double> timeIn(FieldScanner row) const
    {
        std::optional<std::string_view> field = row.nextField();
        for (std::size_t column = 0; field && column < timeColumn; ++column)
            field = row.nextField();
        double time = 0;
        const bool isTime =
            field && parseNumber(*field, time) == std::errc() && std::isfinite(time);
        return isTime ? std::optional(time) : std::nullopt;
    }

    const std::string& fileName;
    Layout layout;
    std::size_t pieceSize = 0; ///< larger than any line so far
    std::uint64_t end = 0;     ///< of the lines that were looked at
    std::size_t line = 1;      ///< the next one
    bool isAtEnd = false;
    Starts starts;              ///< of frames between blank lines
    std::size_t blankLines = 0; ///< without anything between them
    bool isGap = false;         ///< since the last row

    std::size_t timeColumn = NO_COLUMN;
    bool areTimesNumbers = false; ///< of frames
    Starts timed;                 ///< frames by the time, too
    std::deque<double> times;
    bool isTimedGap = false; ///< since the last row with a time
    std::size_t rowsOfTime = 0;
    bool isChosen = false, isTimed = false; ///< which of both

    std::size_t rowsOfFrame = 0, rowsLeft = 0; ///< where they are counted
};

} // namespace

std::optional<Configuration> readTable(Source& source, const ReadOptions& options,
                                       ReadReport& report)
{
    TableIndex index(source.getName());
    return IndexedSeries::readFirst(source, index, options, report);
}

std::unique_ptr<Series> openTable(std::unique_ptr<Source> source, const ReadOptions& options,
                                  ReadReport& report)
{
    auto index = std::make_unique<TableIndex>(source->getName());
    return IndexedSeries::inMemoryIfAlone(
        IndexedSeries::open(std::move(source), std::move(index), options, report), options, report);
}

} // namespace strandview
