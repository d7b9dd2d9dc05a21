// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/TableReader.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <system_error>
#include <unordered_set>
#include <utility>
#include <vector>

#include <strandview/formats/Collector.h>
#include <strandview/formats/Milestones.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/directors.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

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

/// A field without a number, as it stands there.
struct MissingField
{
    std::size_t column;
    std::string_view text;
};

class TableReader
{
public:
    TableReader(std::string_view text, const std::string& tableName, const ReadOptions& readOptions,
                ReadReport& readReport)
        : scanner(text),
          fileName(tableName),
          options(readOptions),
          report(readReport),
          milestones(readOptions, text.size()),
          collector(readOptions)
    {}

    std::optional<Configuration> read()
    {
        for (; !scanner.isAtEnd(); scanner.nextLine())
            if (!(milestones.pass(scanner.getPosition()) || fail(READING_STOPPED)) || !readLine())
                return {};
        if (!finishBlock())
            return {};
        return collector.finish(fileName, "rod or DNA", report);
    }

private:
    bool readLine()
    {
        if (scanner.isLineBlank())
            return finishBlock();
        if (scanner.isLineComment())
            return true;
        if (isInBlock())
            return readRow();
        if (columns.line == 0)
            return takeFirstLine();
        return isHeaderAgain() || readRow();
    }

    /// The first line that is neither blank nor a comment fixes the columns.
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
        return takeColumnCount(fields.size()) && readRow();
    }

    /// Above a later rod or DNA.
    bool isHeaderAgain() const
    {
        if (isNumber(*FieldScanner(scanner).nextField())) // most often
            return false;
        std::vector<std::string_view> fields = headerFields(scanner);
        if (columns.endWithComma && fields.back().empty())
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
        if (columns.others.size() > 1) {
            const std::size_t other = columns.others[1];
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
        for (std::size_t frame = 0; frame * FRAME_WIDTH < columns.geometry.size(); ++frame)
            if (columns.nameQuaternion(frame))
                leaveOutDirectors(frame);
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
        for (; const auto field = scanner.nextField(); ++count) {
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

    bool readField(std::string_view field, std::size_t column)
    {
        if (columns.areOfDna && column == 0)
            return readBase(field);
        const std::errc status = parseNumber(field, row[column]);
        const bool isComma = !scanner.areCommasText() && hasComma(field);
        if (status == std::errc() && !isComma && std::isfinite(row[column]))
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
        points.emplace_back(row[at[0]], row[at[1]], row[at[2]]);
        if (isRotationMissing())
            return true;
        if (columns.haveDirectors(frame))
            return addRotationOfDirectors(frame, rotations);
        if (!columns.nameQuaternion(frame))
            return true;
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
    bool isMissing(std::size_t column) const
    {
        return std::any_of(missing.begin(), missing.end(),
                           [column](const MissingField& field) { return field.column == column; });
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
        return std::any_of(missing.begin(), missing.end(), [this](const MissingField& field) {
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
        return ofRotation == 0 ||
               ofRotation == columns.names.size() - columns.others.size() - FIRST_OF_QUATERNION;
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

} // namespace

std::optional<Configuration> readTable(std::string_view text, const std::string& fileName,
                                       const ReadOptions& options, ReadReport& report)
{
    return TableReader(text, fileName, options, report).read();
}

} // namespace strandview
