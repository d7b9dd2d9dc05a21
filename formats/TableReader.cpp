// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/TableReader.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

#include <algebra3d/largePages.h>

#include <strandview/formats/Collector.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/Source.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/directors.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>
#include <strandview/model/MemorySeries.h>

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

/// The text before a last part in brackets: "x" for "x [m]" and "x(nm)".
std::string_view withoutUnit(std::string_view field)
{
    const char last = field.empty() ? ' ' : field.back();
    if (last != ']' && last != ')')
        return field;
    const std::size_t bracket = field.rfind(last == ']' ? '[' : '(');
    return bracket == std::string_view::npos ? field : trimmed(field.substr(0, bracket));
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

/// The first field below the line that the scanner is in, and below comments.
std::string_view firstFieldBelow(FieldScanner scanner)
{
    do
        scanner.nextLine();
    while (!scanner.isAtEnd() && (scanner.isLineBlank() || scanner.isLineComment()));
    return scanner.nextField().value_or("");
}

/// The fields of the line the scanner is in if it is a header: where commas, semicolons
/// or tabs separate x y z, spaces are part of the names.
std::vector<std::string_view> headerFields(FieldScanner scanner)
{
    FieldScanner withSpaces = scanner;
    withSpaces.makeSpacesText();
    std::vector<std::string_view> fields = remainingFields(withSpaces);
    return haveNamesOfPoints(fields) ? fields : remainingFields(scanner);
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
    Columns columns;
    bool areCommasText = false;
};

/// The columns that may tell frames apart: the first of these names that there is. A T is a
/// temperature.
std::size_t timeColumnOf(const Columns& columns)
{
    const auto isNamed = [&columns](std::size_t column, const std::string& name) {
        const std::string_view written = withoutUnit(columns.names[column]);
        return name == "t" ? written == name : inSmallLetters(written) == name;
    };
    for (const char* name : {"t", "time", "frame"})
        for (const std::size_t column : columns.others)
            if (isNamed(column, name))
                return column;
    return NO_COLUMN;
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
        return takeFirstLine() ? std::optional<Layout>({columns, scanner.areCommasText()})
                               : std::nullopt;
    }

    /// All of it, of which the layout is known.
    std::optional<Configuration> read(const Layout& layout)
    {
        columns = layout.columns;
        row.resize(columns.names.size());
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
        return collector.finish(fileName, "rod or DNA", report);
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
        if (isHeader(fields))
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
        return isHeader(fields) && namesOfColumns(fields, columns.knownNames()) == columns.names;
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
        return columns.areOfDna ? checkDnaHeader() : checkRodHeader();
    }

    /// That names a base first, and then a strand's place, or stands above a letter. A rod
    /// may have a scalar named base.
    bool isDnaHeader(const std::vector<std::string_view>& fields) const
    {
        if (inSmallLetters(fields[0]) != "base")
            return false;
        const std::string_view below = firstFieldBelow(scanner);
        return nameStrands(fields) || (!below.empty() && !isNumber(below));
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

    bool takesNumbers(std::size_t column) const { return column > 0 || !columns.areOfDna; }

    bool readField(std::string_view field, std::size_t column)
    {
        if (!takesNumbers(column))
            return readBase(field);
        const std::errc status = parseNumber(field, row[column]);
        if (status == std::errc() && std::isfinite(row[column]) &&
            (scanner.areCommasText() || !hasComma(field)))
            return true;
        const bool isNoNumber = status == std::errc() && std::isnan(row[column]);
        if ((field.empty() || isNoNumber) && mayBeMissing(column)) {
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

    bool addRow()
    {
        if (!isInBlock())
            openBlock();
        if (columns.areOfDna) {
            dna.bases += base;
            const std::size_t first = columns.haveBases() ? 1 : 0, second = 2 * first;
            return addFrame(0, dna.pairPoints, dna.pairRotations) &&
                   addFrame(first, dna.points1, dna.rotations1) &&
                   addFrame(second, dna.points2, dna.rotations2);
        }
        if (!isRotationMissing())
            keepUnknownScalars();
        if (!missing.empty() && !isRowOfElements())
            return failMissing();
        algebra3d::reserveNext(rod.lines);
        rod.lines.push_back(scanner.getLine());
        for (std::size_t i = 0; i < columns.others.size(); ++i)
            if (!isMissing(columns.others[i]))
                rod.scalars[i].values.push_back(row[columns.others[i]]);
        return addFrame(0, rod.points, rod.rotations);
    }

    /// One of the points that the row places, with its rotation unless that is missing.
    bool addFrame(std::size_t frame, std::vector<algebra3d::Vector3<double>>& points,
                  std::vector<algebra3d::Quaternion<double>>& rotations)
    {
        const std::size_t* at = &columns.geometry[frame * FRAME_WIDTH];
        for (std::size_t i = 0; i < 3; ++i)
            if (!isCoordinate(row[at[i]]))
                return fail(nameText(at[i]) + ": found " + formatted(row[at[i]]) + ", expected " +
                            EXPECTED_COORDINATE);
        algebra3d::reserveNext(points);
        points.emplace_back(row[at[0]], row[at[1]], row[at[2]]);
        if (isRotationMissing())
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
    /// it is the point's, and unknown.
    void keepUnknownScalars()
    {
        const auto isUnknown = [](const MissingField& field) { return !field.text.empty(); };
        missing.erase(std::remove_if(missing.begin(), missing.end(), isUnknown), missing.end());
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
        const std::string fault = columns.areOfDna ? collector.add(std::exchange(dna, Dna()))
                                                   : collector.add(std::exchange(rod, Rod()));
        return fault.empty() || failInLine(firstLine, fault);
    }

    std::string columnText(std::size_t column) const
    {
        return "column " + std::to_string(column + 1);
    }
    std::string nameText(std::size_t column) const
    {
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
    std::vector<double> row;           ///< the numbers of one row, by column
    std::vector<MissingField> missing; ///< of the last row that was read
    std::size_t missingLine = 0;
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

/// What is to be known of a table to read any of its frames.
struct TableFrames
{
    Layout layout;
    std::vector<FrameStart> starts;
    std::vector<double> times; ///< as many, or none if they are not known
    std::uint64_t end = 0;
    std::vector<std::string> notices = {};

    std::uint64_t endOf(std::size_t frame) const
    {
        return frame + 1 < starts.size() ? starts[frame + 1].offset : end;
    }
};

/// Finds the frames of a table, line by line.
class FrameFinder
{
public:
    FrameFinder(std::uint64_t firstOffset, const std::string& tableName,
                const ReadOptions& readOptions, ReadReport& readReport)
        : fileName(tableName), options(readOptions), report(readReport)
    {
        frames.end = firstOffset;
    }

    /// The lines that come next, whole ones; whether they can be those of a table.
    bool add(std::string_view lines)
    {
        FieldScanner scanner(lines, line);
        scanner.lookForReturns();
        if (frames.layout.areCommasText)
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
            if (frames.layout.columns.line == 0 && !takeLayout(lines.substr(start), scanner))
                return false;
            addRow(scanner, {frames.end + start, scanner.getLine()});
        }
        frames.end += lines.size();
        line = scanner.getLine();
        return true;
    }

    TableFrames finish()
    {
        if (timed.size() < 2)
            return std::move(frames);
        std::vector<std::size_t>& others = frames.layout.columns.others;
        others.erase(std::find(others.begin(), others.end(), timeColumn));
        frames.starts = std::move(timed);
        if (inSmallLetters(withoutUnit(frames.layout.columns.names[timeColumn])) != "frame")
            frames.times = std::move(times);
        return std::move(frames);
    }

private:
    /// Of the first line, from which on all others are read by it.
    bool takeLayout(std::string_view text, FieldScanner& scanner)
    {
        std::optional<Layout> layout =
            TableReader(text, fileName, options, report, scanner.getLine()).readLayout();
        if (!layout)
            return false;
        frames.layout = std::move(*layout);
        timeColumn = timeColumnOf(frames.layout.columns);
        if (frames.layout.areCommasText)
            scanner.makeCommasText();
        return true;
    }

    void addRow(const FieldScanner& row, const FrameStart& start)
    {
        if (isGap || frames.starts.empty())
            frames.starts.push_back(start);
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
        if (!timed.empty() && rowsOfTime < 2) {
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
    const ReadOptions& options;
    ReadReport& report;
    TableFrames frames; ///< those between blank lines
    std::size_t line = 1;
    std::size_t blankLines = 0; ///< without anything between them
    bool isGap = false;         ///< since the last row

    std::size_t timeColumn = NO_COLUMN;
    std::vector<FrameStart> timed; ///< frames by the time, too
    std::vector<double> times;
    bool isTimedGap = false; ///< since the last row with a time
    std::size_t rowsOfTime = 0;
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
constexpr std::size_t LONGEST_LINE = std::size_t(1) << 25;

/// Reads what is a file piece by piece, anything else at once.
bool findFrames(Source& source, FrameFinder& finder, std::uint64_t offset,
                const ReadOptions& options, ReadReport& report)
{
    if (!source.getSize()) {
        const std::optional<std::string_view> all = source.readAll(options, report);
        return all && finder.add(all->substr(std::min(std::size_t(offset), all->size())));
    }
    std::string room;
    for (std::size_t size = std::min<std::uint64_t>(1 << 22, *source.getSize() + 1);;) {
        algebra3d::reserveMany(room, size);
        room.resize(size);
        const auto got = source.readAt(offset, room.data(), size, options, report);
        if (!got)
            return false;
        const std::string_view piece = std::string_view(room).substr(0, *got);
        const bool isLast = piece.size() < size;
        const std::string_view lines = isLast ? piece : wholeLines(piece);
        if (!finder.add(lines))
            return false;
        if (isLast)
            return true;
        offset += lines.size();
        size = lines.empty() ? 2 * size : size;
        if (size <= LONGEST_LINE)
            continue;
        report.error = source.getName() + ": found a line of more than 32 MiB, expected a table";
        return false;
    }
}

std::optional<Configuration> readFrame(Source& source, const TableFrames& frames, std::size_t frame,
                                       const ReadOptions& options, ReadReport& report)
{
    const FrameStart& start = frames.starts[frame];
    const std::size_t size = std::size_t(frames.endOf(frame) - start.offset);
    const std::optional<std::string> text = source.readAt(start.offset, size, options, report);
    if (!text)
        return {};
    return TableReader(*text, source.getName(), options, report, start.line).read(frames.layout);
}

bool endsWith(const std::string& text, std::string_view end)
{
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

/// The last frame of several may be cut short: then it is none. Whether to go on.
bool checkLastFrame(Source& source, TableFrames& frames, const ReadOptions& options,
                    ReadReport& report)
{
    ReadReport ofFrame;
    if (frames.starts.size() < 2 ||
        readFrame(source, frames, frames.starts.size() - 1, options, ofFrame))
        return true;
    if (endsWith(ofFrame.error, READING_STOPPED)) {
        report.error = ofFrame.error;
        return false;
    }
    frames.notices.push_back(ofFrame.error + ": the last frame is left out");
    frames.end = frames.starts.back().offset;
    frames.starts.pop_back();
    frames.times.resize(std::min(frames.times.size(), frames.starts.size()));
    return true;
}

/// Nothing and report.error if there is no frame.
std::optional<TableFrames> framesOf(Source& source, const ReadOptions& options, ReadReport& report)
{
    const std::optional<std::string_view> mark = source.readBeginning(3, options, report);
    if (!mark)
        return {};
    if (isUtf16(*mark)) {
        report.error = source.getName() + ": " + FOUND_UTF16;
        return {};
    }
    const std::size_t offset = mark->size() - withoutByteOrderMark(*mark).size();
    FrameFinder finder(offset, source.getName(), options, report);
    if (!findFrames(source, finder, offset, options, report))
        return {};
    TableFrames frames = finder.finish();
    if (frames.starts.empty()) {
        TableReader("", source.getName(), options, report).read({});
        return {};
    }
    return checkLastFrame(source, frames, options, report) ? std::optional(std::move(frames))
                                                           : std::nullopt;
}

void tell(const std::vector<std::string>& notices, ReadReport& report)
{
    report.notices.insert(report.notices.end(), notices.begin(), notices.end());
}

class TableSeries : public Series
{
public:
    TableSeries(std::unique_ptr<Source> openSource, TableFrames foundFrames,
                const ReadOptions& readOptions)
        : source(std::move(openSource)), frames(std::move(foundFrames)), options(readOptions)
    {}

    std::size_t count() const override { return frames.starts.size(); }
    std::optional<double> time(std::size_t frame) const override
    {
        return frame < frames.times.size() ? std::optional(frames.times[frame]) : std::nullopt;
    }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
    {
        options.goOn = goOn;
        ReadReport report;
        std::optional<Configuration> read = readFrame(*source, frames, frame, options, report);
        return {std::move(read), std::move(report.notices), std::move(report.error)};
    }

    std::unique_ptr<Source> source;
    TableFrames frames;
    ReadOptions options;
};

} // namespace

std::optional<Configuration> readTable(Source& source, const ReadOptions& options,
                                       ReadReport& report)
{
    const std::optional<TableFrames> frames = framesOf(source, options, report);
    if (!frames)
        return {};
    report.frames = frames->starts.size();
    std::optional<Configuration> first = readFrame(source, *frames, 0, options, report);
    if (first)
        tell(frames->notices, report);
    return first;
}

std::unique_ptr<Series> openTable(std::unique_ptr<Source> source, const ReadOptions& options,
                                  ReadReport& report)
{
    std::optional<TableFrames> frames = framesOf(*source, options, report);
    if (!frames)
        return nullptr;
    std::vector<Configuration> only;
    if (frames->starts.size() == 1) {
        std::optional<Configuration> read = readFrame(*source, *frames, 0, options, report);
        if (!read)
            return nullptr;
        only.push_back(std::move(*read));
    }
    tell(frames->notices, report);
    if (!only.empty())
        return std::make_unique<MemorySeries>(std::move(only));
    return std::make_unique<TableSeries>(std::move(source), std::move(*frames), options);
}

} // namespace strandview
