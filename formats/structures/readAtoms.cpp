// SPDX-License-Identifier: GPL-3.0-or-later
// The only source that includes gemmi, which takes long to compile.
#include <strandview/formats/structures/readAtoms.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include <gemmi/cif.hpp>
#include <gemmi/pdb.hpp>
#include <gemmi/resinfo.hpp>

#include <strandview/formats/Milestones.h>
#include <strandview/formats/checks.h>
#include <strandview/formats/structures/cifText.h>
#include <strandview/formats/text/characters.h>
#include <strandview/formats/text/encoding.h>
#include <strandview/formats/text/fields.h>
#include <strandview/formats/text/numbers.h>
#include <strandview/formats/text/wording.h>

namespace strandview {

namespace {

bool isBaseLetter(char c) { return c == 'U' || parseBase(c) == c; }

/// The base of "A", "DA", "RA", "+A", and, at the ends of strands, of "DA5", "DA3" and "DAN", or
/// of "ADE" and the like, none of which the wwPDB has; NUL of other names.
char letterOfPlainName(std::string_view name)
{
    static const std::map<std::string_view, char> longNames{
        {"ADE", 'A'}, {"CYT", 'C'}, {"GUA", 'G'}, {"THY", 'T'}, {"URA", 'U'}};
    const auto found = longNames.find(name);
    if (found != longNames.end())
        return found->second;
    if (name.size() > 1 && (name[0] == 'D' || name[0] == 'R' || name[0] == '+'))
        name.remove_prefix(1);
    if (name.size() == 2 && (name[1] == '5' || name[1] == '3' || name[1] == 'N'))
        name.remove_suffix(1);
    return name.size() == 1 && isBaseLetter(name[0]) ? name[0] : '\0';
}

bool isWaterOfDynamics(std::string_view name)
{
    return name == "WAT" || name == "TIP" || name == "TP3" || name == "SOL" || name == "SPC" ||
           name == "HOH";
}

bool isNumberOfCoordinate(std::string_view field, double& number)
{
    return parseNumber(field, number) == std::errc() && std::isfinite(number) &&
           isCoordinate(number);
}

std::string expectedCoordinate(std::string_view field)
{
    double number = 0;
    const bool isTooLarge = parseNumber(field, number) == std::errc() && std::isfinite(number);
    return "found " + inQuotes(field) + ", expected " +
           (isTooLarge ? EXPECTED_COORDINATE : EXPECTED_NUMBER);
}

// PDB

/// Of "%8.3f" for x, y and z.
constexpr std::size_t FIRST_COORDINATE = 30;
constexpr std::size_t COORDINATE_WIDTH = 8;
constexpr std::size_t SHORTEST_ATOM = FIRST_COORDINATE + 3 * COORDINATE_WIDTH;
/// Behind it are the element and charge, or what old files have there.
constexpr std::size_t LAST_COLUMN = 76;

/// What is wrong with the line of an atom, "column 31 (x): found ..., expected ..."; else nothing.
std::string faultOfAtomLine(std::string_view line)
{
    if (line.size() < SHORTEST_ATOM)
        return "found an atom of " + counted(line.size(), "character") + ", expected at least " +
               std::to_string(SHORTEST_ATOM);
    if (line.substr(0, LAST_COLUMN).find('\0') != std::string_view::npos)
        return "found a character of code 0, expected an atom in ASCII";
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t first = FIRST_COORDINATE + i * COORDINATE_WIDTH;
        const std::string_view field = pdbColumns(line, first, COORDINATE_WIDTH);
        double number = 0;
        if (!isNumberOfCoordinate(field, number))
            return "column " + std::to_string(first + 1) + " (" + "xyz"[i] +
                   "): " + expectedCoordinate(field);
    }
    return {};
}

/// What residues are: by gemmi's table, else by the parents that the file names.
class ResidueTypes
{
public:
    explicit ResidueTypes(ModifiedResidues known = {}) : parents(std::move(known)) {}

    void addModified(std::string_view residue, std::string_view parent)
    {
        if (!residue.empty() && !parent.empty())
            parents.emplace(residue, parent);
    }
    void addModified(std::string_view line) { strandview::addModified(line, parents); }
    void forgetModified() { parents.clear(); }

    ResidueType operator()(const std::string& residue) const
    {
        const auto parent = parents.find(residue);
        ResidueType type = typeOfResidue(residue);
        if (type.kind == ResidueKind::OTHER && parent != parents.end()) {
            type = typeOfResidue(parent->second);
            type.isModified = true;
        }
        return type;
    }

private:
    ModifiedResidues parents;
};

/// Walks over the lines and keeps those of atoms that may be DNA, model by model: few of a file
/// with protein and water.
class PdbScanner
{
public:
    PdbScanner(const PdbPart& part, const std::string& name, const TakeModel& takeModel,
               ReadReport& readReport)
        : fileName(name),
          take(takeModel),
          report(readReport),
          residues([this](const std::string& residue) { return types(residue); }),
          types(part.modified),
          number(part.line - 1)
    {}

    /// Whether to go on.
    bool scan(std::string_view line)
    {
        ++number;
        switch (pdbRecordOf(line)) {
        case PdbRecord::ATOM:
            return scanAtom(line);
        case PdbRecord::MODEL:
        case PdbRecord::END:
            return finishModel();
        case PdbRecord::MODRES:
            types.addModified(line);
            return true;
        case PdbRecord::TER:
            kept += isInModel ? "TER\n" : "";
            return true;
        case PdbRecord::OTHER:
            break;
        }
        return true;
    }

    bool finishModel()
    {
        if (!isInModel)
            return true;
        isInModel = false;
        try {
            addAtoms();
        } catch (const std::exception& problem) {
            report.error = fileName + ": " + onOneLine(problem.what());
            return false;
        }
        kept.clear();
        StructureModel model = residues.take();
        model.hasProtein = model.hasProtein || hasProtein;
        model.hasWater = model.hasWater || hasWater;
        hasProtein = hasWater = false;
        isStopped = !take(std::move(model));
        return !isStopped;
    }

    /// Whether nobody wants more.
    bool wasStopped() const { return isStopped; }

private:
    bool scanAtom(std::string_view line)
    {
        isInModel = true;
        const std::string_view residue = pdbColumns(line, 17, 3);
        const ResidueKind kind = residues.typeOf(residue).kind;
        hasProtein = hasProtein || kind == ResidueKind::AMINO_ACID;
        hasWater = hasWater || kind == ResidueKind::WATER;
        if (kind == ResidueKind::AMINO_ACID || kind == ResidueKind::WATER)
            return true;
        const std::string fault = faultOfAtomLine(line);
        if (!fault.empty()) {
            report.error = fileName + ":" + std::to_string(number) + ": " + fault;
            return false;
        }
        if (kind != ResidueKind::NUCLEOTIDE || keptName(pdbColumns(line, 12, 4))) {
            kept += line.substr(0, LAST_COLUMN);
            kept += '\n';
        }
        return true;
    }

    void addAtoms()
    {
        gemmi::PdbReadOptions options;
        options.split_chain_on_ter = true;
        const gemmi::Structure read =
            gemmi::read_pdb_from_memory(kept.data(), kept.size(), fileName, options);
        for (const gemmi::Model& model : read.models)
            for (std::size_t i = 0; i < model.chains.size(); ++i)
                for (const gemmi::Residue& residue : model.chains[i].residues)
                    addResidue(residue, model.chains[i].name, i);
    }

    void addResidue(const gemmi::Residue& residue, const std::string& chain, std::size_t index)
    {
        const std::string part = std::to_string(index) + "/" + residue.segment;
        const std::string place = residue.seqid.str();
        for (const gemmi::Atom& atom : residue.atoms)
            residues.add({chain,
                          part,
                          place,
                          residue.name,
                          atom.name,
                          atom.altloc,
                          atom.occ,
                          {atom.pos.x, atom.pos.y, atom.pos.z}});
    }

    const std::string& fileName;
    const TakeModel& take;
    ReadReport& report;
    ResidueCollector residues;
    ResidueTypes types;
    std::string kept;   ///< lines of the model
    std::size_t number; ///< of the line
    bool isInModel = false;
    bool hasProtein = false;
    bool hasWater = false;
    bool isStopped = false;
};

// mmCIF

namespace pegtl = tao::pegtl;
namespace rules = gemmi::cif::rules;

/// Thrown out of the parser, whose own errors are exceptions.
struct Fault : std::runtime_error
{
    Fault(std::size_t lineNumber, const std::string& what)
        : std::runtime_error(what), line(lineNumber)
    {}
    std::size_t line;
};
struct Enough
{
};

constexpr double LARGEST_OCCUPANCY = 1e6; // some files have per cent

using Column = CifColumn;

/// Takes the tables of atoms and of components from the parser, a value at a time.
class CifScanner
{
public:
    /// Of one model where the part begins within a table, else of all.
    CifScanner(const CifPart& part, const TakeModel& takeModel, const ReadOptions& options)
        : text(part.text),
          take(takeModel),
          milestones(options, part.text.size()),
          residues([this](const std::string& residue) { return types(residue); }),
          types(part.modified),
          isOneModel(!part.tags.empty())
    {
        for (const std::string& tag : part.tags)
            addTag(tag, part.lineOfTags);
    }

    void beginBlock()
    {
        finishModel();
        if (hasAtoms)
            throw Enough();
        types.forgetModified();
    }

    void beginSaveFrame() { isInSaveFrame = true; }
    void endSaveFrame() { isInSaveFrame = false; }

    void beginLoop()
    {
        columns.clear();
        next = 0;
        isOfAtoms = areColumnsChecked = false;
    }

    void addTag(std::string_view tag, std::size_t line)
    {
        columns.push_back(cifColumnOf(tag));
        isOfAtoms = isOfAtoms || isOfAtom(columns.back());
        beginLine = line;
    }

    void addValue(std::string_view token, std::size_t line)
    {
        if (next == 0)
            beginRow(std::size_t(token.data() - text.data()));
        if (columns[next] != Column::NONE)
            cell(columns[next]) = cifValueOf(token);
        if (++next < columns.size())
            return;
        next = 0;
        if (isOfAtoms)
            addAtom(line);
        else
            types.addModified(cell(Column::COMPONENT), cell(Column::PARENT));
    }

    /// Takes the values that a text begins with, one after another, as long as they are plain and
    /// on one line, and ends with one of them. How many bytes those are.
    std::size_t addPlainValues(std::string_view rest, std::size_t line)
    {
        std::size_t end = 0, place = 0;
        while (const std::size_t size = sizeOfPlainCifValue(rest, place)) {
            addValue(rest.substr(place, size), line);
            end = place += size;
            while (place < rest.size() && rest[place] != '\n' &&
                   cifCharacterOf(rest[place]) == CifCharacter::BLANK)
                ++place;
        }
        return end;
    }

    void endLoop(std::size_t line)
    {
        if (next != 0)
            throw Fault(line, "found a table that ends in a row of " + counted(next, "value") +
                                  ", expected " + std::to_string(columns.size()));
    }

    void finishModel()
    {
        if (std::exchange(isInModel, false) && !take(residues.take()))
            throw Enough();
    }

private:
    void beginRow(std::size_t position)
    {
        if (!milestones.pass(position))
            throw Fault(0, READING_STOPPED);
        row.fill({});
        if (isOfAtoms && !areColumnsChecked)
            checkColumns();
    }

    std::string_view& cell(Column which) { return row[std::size_t(which)]; }
    std::string_view cell(Column which) const { return row[std::size_t(which)]; }

    void checkColumns()
    {
        if (isInSaveFrame)
            throw Fault(beginLine, "found atoms in a save frame, expected them in a data block");
        if (const char* const missing = missingCifColumn(columns))
            throw Fault(beginLine, std::string("found atoms without _atom_site.") + missing +
                                       ", expected a structure with it");
        hasAtoms = areColumnsChecked = true;
    }

    /// The author's value where there is one.
    std::string_view either(Column author, Column label) const
    {
        return cell(author).empty() ? cell(label) : cell(author);
    }

    double coordinate(Column which, std::size_t line) const
    {
        // The digits in brackets behind a number are its uncertainty.
        const std::string_view field = cell(which).substr(0, cell(which).find('('));
        double number = 0;
        if (!isNumberOfCoordinate(field, number))
            throw Fault(line, std::string("Cartn_") + "xyz"[int(which) - int(Column::X)] + ": " +
                                  expectedCoordinate(field));
        return number;
    }

    /// With its first atom.
    void beginModel(std::size_t line)
    {
        const std::string_view ofRow = cell(Column::MODEL);
        if (isInModel && ofRow != model) {
            if (isOneModel)
                throw Fault(line, "found an atom of model " + inQuotes(ofRow) + ", expected " +
                                      inQuotes(model) + " as in the rows before");
            finishModel();
        }
        isInModel = true;
        model = ofRow;
    }

    void addAtom(std::size_t line)
    {
        beginModel(line);
        AtomRow atom;
        atom.chain = either(Column::CHAIN, Column::LABEL_CHAIN);
        atom.part = either(Column::LABEL_CHAIN, Column::CHAIN);
        number = either(Column::NUMBER, Column::LABEL_NUMBER);
        number += cell(Column::INSERTION);
        atom.number = number;
        atom.residue = either(Column::RESIDUE, Column::LABEL_RESIDUE);
        atom.atom = either(Column::ATOM, Column::LABEL_ATOM);
        const std::string_view conformer = cell(Column::CONFORMER);
        atom.conformer = conformer.empty() ? '\0' : conformer[0];
        const bool hasOccupancy =
            parseNumber(cell(Column::OCCUPANCY), atom.occupancy) == std::errc() &&
            atom.occupancy >= 0 && atom.occupancy < LARGEST_OCCUPANCY;
        atom.occupancy = hasOccupancy ? atom.occupancy : 1;
        atom.place = {coordinate(Column::X, line), coordinate(Column::Y, line),
                      coordinate(Column::Z, line)};
        residues.add(atom);
    }

    std::string_view text;
    const TakeModel& take;
    Milestones milestones;
    ResidueCollector residues;
    ResidueTypes types;
    std::vector<Column> columns; ///< of the loop
    std::size_t next = 0;        ///< column
    bool isOfAtoms = false;
    bool areColumnsChecked = false;
    bool isInSaveFrame = false;
    bool hasAtoms = false;
    bool isInModel = false;
    const bool isOneModel;
    std::size_t beginLine = 0;
    std::array<std::string_view, std::size_t(Column::NONE)> row;
    std::string number;
    std::string_view model;
};

template <typename Rule>
struct CifAction : pegtl::nothing<Rule>
{
};

template <typename Input>
std::string_view tokenOf(const Input& in)
{
    return {in.begin(), in.size()};
}

template <>
struct CifAction<rules::datablockname>
{
    template <typename Input>
    static void apply(const Input&, CifScanner& scanner)
    {
        scanner.beginBlock();
    }
};

template <>
struct CifAction<rules::framename>
{
    template <typename Input>
    static void apply(const Input&, CifScanner& scanner)
    {
        scanner.beginSaveFrame();
    }
};

template <>
struct CifAction<rules::endframe>
{
    template <typename Input>
    static void apply(const Input&, CifScanner& scanner)
    {
        scanner.endSaveFrame();
    }
};

template <>
struct CifAction<rules::str_loop>
{
    template <typename Input>
    static void apply(const Input&, CifScanner& scanner)
    {
        scanner.beginLoop();
    }
};

template <>
struct CifAction<rules::loop_tag>
{
    template <typename Input>
    static void apply(const Input& in, CifScanner& scanner)
    {
        scanner.addTag(tokenOf(in), in.iterator().line);
    }
};

template <>
struct CifAction<rules::loop_value>
{
    template <typename Input>
    static void apply(const Input& in, CifScanner& scanner)
    {
        scanner.addValue(tokenOf(in), in.iterator().line);
    }
};

template <>
struct CifAction<rules::loop_end>
{
    template <typename Input>
    static void apply(const Input& in, CifScanner& scanner)
    {
        scanner.endLoop(in.iterator().line);
    }
};

/// gemmi's grammar tries five rules at every value of a table. Most are plain: those are taken at
/// once, by a loop.
template <typename Rule>
struct CifControl : gemmi::cif::Errors<Rule>
{
};

template <>
struct CifControl<rules::loop_value> : gemmi::cif::Errors<rules::loop_value>
{
    template <pegtl::apply_mode A, pegtl::rewind_mode M, template <typename...> class Action,
              template <typename...> class Control, typename Input>
    static bool match(Input& in, CifScanner& scanner)
    {
        const std::size_t size =
            scanner.addPlainValues({in.current(), in.size()}, in.iterator().line);
        in.bump_in_this_line(size);
        return size > 0 ||
               gemmi::cif::Errors<rules::loop_value>::match<A, M, Action, Control>(in, scanner);
    }
};

/// What a text is from a value of a table on: gemmi's rules for the rest of the table, of the data
/// block, and of the file.
using RestOfTable =
    pegtl::seq<pegtl::star<pegtl::seq<rules::loop_value, rules::ws_or_eof, pegtl::discard>>,
               rules::loop_end>;
using RestOfBlock = pegtl::star<pegtl::sor<rules::dataitem, rules::loop, rules::frame>>;
using RestOfFile =
    pegtl::seq<RestOfTable, RestOfBlock, pegtl::star<rules::datablock>, pegtl::must<pegtl::eof>>;

/// Parses the text; what is wrong with it is thrown.
void parse(const CifPart& part, CifScanner& scanner)
{
    const char* const begin = part.text.data();
    pegtl::memory_input<> in(begin, begin + part.text.size(), "", 0, part.line, part.column);
    const bool isWhole = part.tags.empty();
    const bool isParsed = isWhole ? pegtl::parse<rules::file, CifAction, CifControl>(in, scanner)
                                  : pegtl::parse<RestOfFile, CifAction, CifControl>(in, scanner);
    if (!isParsed)
        throw Fault(1, "found an empty text, expected a data block");
    scanner.finishModel();
}

} // namespace

ResidueType typeOfResidue(const std::string& name)
{
    if (const char letter = letterOfPlainName(name))
        return {ResidueKind::NUCLEOTIDE, letter, false};
    const auto isAscii = [](unsigned char c) { return c < 0x80; };
    if (!std::all_of(name.begin(), name.end(), isAscii)) // which gemmi's shifts of it expect
        return {};
    const gemmi::ResidueInfo info = gemmi::find_tabulated_residue(name);
    if (info.is_water() || isWaterOfDynamics(name))
        return {ResidueKind::WATER};
    if (info.is_amino_acid())
        return {ResidueKind::AMINO_ACID};
    if (!info.is_nucleic_acid())
        return {};
    const char code = info.one_letter_code; // small of what is modified
    const char letter = code >= 'a' && code <= 'z' ? char(code - 'a' + 'A') : code;
    return {ResidueKind::NUCLEOTIDE, isBaseLetter(letter) ? letter : '\0', true};
}

bool readPdb(std::string_view text, const std::string& fileName, const ReadOptions& options,
             const TakeModel& take, ReadReport& report)
{
    return readPdbPart({text}, fileName, options, take, report);
}

bool readPdbPart(const PdbPart& part, const std::string& fileName, const ReadOptions& options,
                 const TakeModel& take, ReadReport& report)
{
    const std::string_view text = part.text;
    PdbScanner scanner(part, fileName, take, report);
    Milestones milestones(options, text.size());
    for (std::size_t start = 0; start < text.size();) {
        if (!milestones.pass(start)) {
            report.error = fileName + ": " + READING_STOPPED;
            return false;
        }
        const std::size_t end = findLineEnd(text, start);
        if (!scanner.scan(text.substr(start, end - start)))
            return scanner.wasStopped();
        const bool isCrLf = text.substr(end, 2) == "\r\n";
        start = end + (isCrLf ? 2 : 1);
    }
    return scanner.finishModel() || scanner.wasStopped();
}

bool readMmcif(std::string_view text, const std::string& fileName, const ReadOptions& options,
               const TakeModel& take, ReadReport& report)
{
    return readMmcifPart({text}, fileName, options, take, report);
}

bool readMmcifPart(const CifPart& part, const std::string& fileName, const ReadOptions& options,
                   const TakeModel& take, ReadReport& report)
{
    if (hasReturnAlone(part.text)) {
        CifPart ofFeeds = part;
        const std::string text = withFeedsForReturns(part.text);
        ofFeeds.text = text;
        return readMmcifPart(ofFeeds, fileName, options, take, report);
    }
    CifScanner scanner(part, take, options);
    try {
        parse(part, scanner);
    } catch (const Enough&) {
    } catch (const Fault& fault) {
        const std::string line = fault.line > 0 ? ":" + std::to_string(fault.line) : "";
        report.error = fileName + line + ": " + fault.what();
        return false;
    } catch (const pegtl::parse_error& error) {
        const auto position = error.positions().front();
        report.error = fileName + ":" + std::to_string(position.line) + ":" +
                       std::to_string(position.column) + ": found no mmCIF (" +
                       onOneLine(error.message()) + "), expected tags and values of a data block";
        return false;
    }
    return true;
}

} // namespace strandview
