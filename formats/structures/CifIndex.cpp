// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/structures/CifIndex.h>

#include <algorithm>
#include <limits>

#include <strandview/formats/Pieces.h>
#include <strandview/formats/structures/nucleicAcid.h>
#include <strandview/formats/structures/readAtoms.h>
#include <strandview/formats/text/characters.h>
#include <strandview/formats/text/encoding.h>

namespace strandview {

namespace {

constexpr std::size_t NO_COLUMN = static_cast<std::size_t>(-1);

bool isModelNumber(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

} // namespace

std::optional<Configuration> CifIndex::readFirst(Source& source, const ReadOptions& options,
                                                 ReadReport& report)
{
    CifIndex index;
    if (!index.lookFor(2, source, options, report)) // where the second one begins it ends
        return {};
    report.frames = index.count() > 1 ? SEVERAL_FRAMES : 1;
    return index.read(0, source, options, report).configuration;
}

bool CifIndex::lookOn(Source& source, const ReadOptions& options, ReadReport& report)
{
    return lookFor(std::numeric_limits<std::size_t>::max(), source, options, report);
}

bool CifIndex::lookFor(std::size_t most, Source& source, const ReadOptions& options,
                       ReadReport& report)
{
    Pieces pieces(source, options, report);
    std::size_t size = Pieces::SIZE;
    for (bool isAtEnd = false; !isAtEnd && count() < most;) {
        std::optional<std::string_view> piece = pieces.read(scanned, size);
        if (!piece)
            return false;
        if (state == State::DONE)
            return true;
        isAtEnd = piece->size() < size;
        if (scanned == 0) {
            scanned = piece->size() - withoutByteOrderMark(*piece).size();
            piece = withoutByteOrderMark(*piece);
        }
        std::string withFeeds;
        if (hasReturnAlone(*piece))
            piece = withFeeds = withFeedsForReturns(*piece);
        const bool isAll = state == State::BROKEN || (isAtEnd && !options.growing);
        const std::size_t end = isAll ? piece->size() : piece->rfind('\n') + 1;
        seeLines(piece->substr(0, end), most);
        if (state == State::DONE)
            break;
        if (state == State::BROKEN && count() == 0)
            break;
        size = end == 0 ? 2 * size : Pieces::SIZE; // a line may be longer
    }
    return count() > 0 || refuse(source, options, report);
}

/// Always false. What is wrong the reader of all of it says.
bool CifIndex::refuse(Source& source, const ReadOptions& options, ReadReport& report) const
{
    const auto all = source.readAll(options, report);
    if (!all)
        return false;
    const auto take = [](const StructureModel&) { return true; };
    if (readMmcif(withoutByteOrderMark(*all), source.getName(), options, take, report))
        report.error = source.getName() + ": found no atoms, expected DNA";
    return false;
}

/// The lines come next, the last one of the text perhaps without its end.
void CifIndex::seeLines(std::string_view lines, std::size_t most)
{
    while (!lines.empty() && count() < most) {
        if (state == State::BROKEN) { // all else belongs to the last frame
            scanned += lines.size();
            return;
        }
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        seeLine(lines.substr(0, end));
        if (state == State::DONE)
            return;
        const std::size_t size = std::min(end + 1, lines.size());
        scanned += size;
        lines.remove_prefix(size);
        ++lineNumber;
    }
}

void CifIndex::seeLine(std::string_view line)
{
    std::size_t place = 0;
    hasFaultAtEnd = false;
    if (isRowOfModel(line)) {
        isBehindTable = false;
        areRowsLines = true;
        stray.model.clear();
        return;
    }
    const bool wasAmongAtoms = isAmongAtoms();
    words = 0;
    firstColumn = next;
    if (next == 0 && isAmongAtoms()) {
        aligned.places = places.size();
        if (aligned.model != model)
            aligned.model = model;
        isOdd = false;
    }
    if (isInText)
        seeText(line, place);
    while (!isInText && !hasFaultAtEnd && state != State::BROKEN) {
        if (isAmongAtoms())
            seePlainValues(line, place);
        const CifWord word = nextCifWord(line, place);
        if (word.kind == CifKind::END)
            break;
        const std::size_t begin = std::size_t(word.text.data() - line.data());
        take(word, {scanned + begin, lineNumber, begin + 1});
        if (state == State::DONE) {
            scanned += begin;
            return;
        }
        if (isInText)
            text = line;
    }
    endLine(line, wasAmongAtoms);
}

/// Whether a line is nothing but a row of the last model, as nearly all are.
bool CifIndex::isRowOfModel(std::string_view line) const
{
    if (!isAmongAtoms() || next != 0 || isInText || !model)
        return false;
    const std::optional<CifRow> row = plainCifRow(line, modelColumn);
    return row && row->count == table.tags.size() && cifValueOf(row->word) == *model;
}

/// Goes on in a value of several lines. A word of a table that nobody asks for is as long as it is.
void CifIndex::seeText(std::string_view line, std::size_t& place)
{
    const bool isWanted = state == State::IN_ROWS &&
                          (next == modelColumn || next == componentColumn || next == parentColumn);
    if (isWanted)
        text += '\n';
    if (line.substr(0, 1) != ";") {
        if (isWanted)
            text += line;
        return;
    }
    isInText = false;
    text += ';';
    place = 1;
    const bool isEnded =
        line.size() == 1 || std::string_view(" \t\r#").find(line[1]) != std::string_view::npos;
    takeValue(text, textBegin);
    if (!isEnded)
        takeFault();
}

/// Takes the values that follow as long as they are plain, as nearly all are; place is behind them.
void CifIndex::seePlainValues(std::string_view line, std::size_t& place)
{
    const std::size_t last = table.tags.size() - 1;
    std::string_view word;
    while (!(word = nextPlainCifValue(line, place)).empty()) {
        if (words == 0 || words == modelColumn || next == 0 || next == modelColumn ||
            next == last) {
            const std::size_t begin = std::size_t(word.data() - line.data());
            takeValue(word, {scanned + begin, lineNumber, begin + 1});
        } else {
            ++words;
            ++next;
        }
    }
}

void CifIndex::take(const CifWord& word, const Where& where)
{
    const bool isValue = word.kind == CifKind::VALUE || word.kind == CifKind::TEXT;
    if (word.kind == CifKind::COMMENT) {
        isBehindTable = where.column == 1;
        return;
    }
    if (state == State::BEHIND_TAG && !isValue) { // which has none, if this begins a line
        if (where.column > 1)
            return takeFault();
        state = State::BETWEEN;
    }
    switch (word.kind) {
    case CifKind::VALUE:
        return takeValue(word.text, where);
    case CifKind::TEXT:
        if (state == State::IN_TAGS && !table.tags.empty())
            beginRows();
        isInText = state == State::BEHIND_TAG || state == State::IN_ROWS;
        textBegin = where;
        return isInText ? void() : takeFault();
    case CifKind::TAG:
        return takeTag(word.text);
    default:
        return takeKeyword(word.kind);
    }
}

void CifIndex::takeKeyword(CifKind kind)
{
    const bool isBegun = state == State::BETWEEN || state == State::IN_ROWS ||
                         (state == State::IN_TAGS && !table.tags.empty());
    const bool isInTable = isBegun && state != State::BETWEEN;
    if (!mayEndTable())
        return takeFault();
    switch (kind) {
    case CifKind::LOOP:
        return isBegun ? beginLoop() : takeFault();
    case CifKind::STOP:
        if (!isInTable)
            return takeFault();
        break;
    case CifKind::DATA:
    case CifKind::GLOBAL:
        if (isInSaveFrame || !(isBegun || state == State::BEFORE))
            return takeFault();
        if (kind == CifKind::DATA && count() > 0) {
            state = State::DONE;
            return;
        }
        if (kind == CifKind::DATA) {
            modified.clear();
            modifiedAt.clear();
        }
        break;
    case CifKind::SAVE:
    case CifKind::SAVED:
        if (!isBegun || isInSaveFrame != (kind == CifKind::SAVED))
            return takeFault();
        isInSaveFrame = !isInSaveFrame;
        break;
    default:
        return takeFault();
    }
    state = State::BETWEEN;
}

void CifIndex::takeTag(std::string_view tag)
{
    if (state == State::BEFORE || !mayEndTable())
        return takeFault();
    if (state != State::IN_TAGS) {
        state = State::BEHIND_TAG;
        return;
    }
    table.tags.emplace_back(tag);
    table.lineOfTags = lineNumber;
}

/// Rows of atoms go on with the next line; anything else ends what can be looked at.
void CifIndex::takeFault()
{
    hasFaultAtEnd = isOdd = true;
    if (!isAmongAtoms())
        state = State::BROKEN;
}

/// Whether there are whole rows. What the atoms' last one lacks its model tells.
bool CifIndex::mayEndTable() const { return state != State::IN_ROWS || isOfAtoms || next == 0; }

void CifIndex::beginLoop()
{
    state = State::IN_TAGS;
    table = {};
}

void CifIndex::beginRows()
{
    state = State::IN_ROWS;
    next = firstColumn = words = 0;
    modelColumn = componentColumn = parentColumn = NO_COLUMN;
    isOfAtoms = isTableKept = isOdd = areRowsLines = false;
    aligned = {places.size(), model};
    stray = {};
    std::vector<CifColumn> columns;
    for (std::size_t i = 0; i < table.tags.size(); ++i) {
        const CifColumn column = cifColumnOf(table.tags[i]);
        columns.push_back(column);
        isOfAtoms = isOfAtoms || isOfAtom(column);
        if (column == CifColumn::MODEL)
            modelColumn = i;
        else if (column == CifColumn::COMPONENT)
            componentColumn = i;
        else if (column == CifColumn::PARENT)
            parentColumn = i;
    }
    if (isOfAtoms && (isInSaveFrame || missingCifColumn(columns)))
        state = State::BROKEN;
}

void CifIndex::takeValue(std::string_view word, const Where& where)
{
    if (state == State::BEHIND_TAG) {
        state = State::BETWEEN;
        return;
    }
    if (state == State::IN_TAGS && !table.tags.empty())
        beginRows();
    if (state != State::IN_ROWS)
        return state == State::BROKEN ? void() : takeFault();
    isBehindTable = false;
    if (words == 0)
        lineBegin = where;
    if (next == 0) {
        rowBegin = where;
        rowModel.clear();
        component.clear();
        parent.clear();
        if (isOfAtoms && places.empty())
            beginFrame(where);
    }
    if (words == modelColumn)
        lineModel = cifValueOf(word);
    if (next == modelColumn)
        rowModel = cifValueOf(word);
    else if (next == componentColumn)
        component = cifValueOf(word);
    else if (next == parentColumn)
        parent = cifValueOf(word);
    ++words;
    if (++next == table.tags.size())
        endRow();
}

void CifIndex::endRow()
{
    next = 0;
    if (!isOfAtoms) {
        const bool isTold = !component.empty() && !parent.empty();
        if (isTold && modified.emplace(component, parent).second)
            modifiedAt.emplace(component, rowBegin.offset);
        return;
    }
    isOdd = isOdd || !isModelNumber(rowModel);
    const bool isStraysModel = !stray.model.empty() && stray.model == rowModel;
    if (model && *model != rowModel)
        beginFrame(isStraysModel ? stray.begin : rowBegin);
    if (model != rowModel)
        model = rowModel;
}

void CifIndex::beginFrame(const Where& where)
{
    if (!isTableKept)
        tables.push_back(table);
    isTableKept = true;
    places.push_back({where, tables.size() - 1});
}

/// A line that is a row, and was not taken for one, where rows before have no model number, or
/// another one than the lines around: one of them has too few values, or too many.
void CifIndex::endLine(std::string_view line, bool wasAmongAtoms)
{
    if (!wasAmongAtoms || modelColumn == NO_COLUMN || (words == 0 && !hasFaultAtEnd))
        return;
    const bool isWhole = words == table.tags.size();
    if (isAmongAtoms() && firstColumn == 0 && (isWhole || next == 0) && !hasFaultAtEnd) {
        if (isWhole)
            areRowsLines = next == 0;
        stray.model.clear();
        return;
    }
    if (areRowsLines)
        noteStray(line);
    const bool endsWithinRow = !isAmongAtoms() && next != 0;
    if (endsWithinRow && model && !stray.model.empty() && stray.model != *model)
        beginFrame(stray.begin);
    const bool isOther = areRowsLines && model != aligned.model && model != lineModel;
    if (isAmongAtoms() && isWhole && isModelNumber(lineModel) && (isOdd || isOther))
        align();
}

/// A line that is no row where others are. Its model is counted from the nearer one of its ends,
/// since values are missing, or too many, somewhere else more probably.
void CifIndex::noteStray(std::string_view line)
{
    std::vector<std::string_view> all;
    std::size_t place = skipCif(line, 0, CifCharacter::BLANK);
    const std::size_t begin = place;
    while (place < line.size()) {
        const std::size_t end = std::min(line.find_first_of(" \t\r", place), line.size());
        all.push_back(line.substr(place, end - place));
        place = skipCif(line, end, CifCharacter::BLANK);
    }
    const std::size_t columns = table.tags.size(), behind = columns - modelColumn;
    if (columns <= modelColumn) // a keyword ended the table
        return;
    const bool isNearEnd = behind <= columns / 2;
    if (all.size() < (isNearEnd ? behind : modelColumn + 1))
        return;
    const std::string_view found = cifValueOf(all[isNearEnd ? all.size() - behind : modelColumn]);
    if (isModelNumber(found) && found != stray.model)
        stray = {std::string(found), {scanned + begin, lineNumber, begin + 1}};
}

/// The line begins with a row. What was found since one did is of one model, with what is wrong,
/// but for lines that tell the model of this row: they belong to that.
void CifIndex::align()
{
    const std::size_t first = 1; // in which what is wrong is told, too
    while (places.size() > std::max(aligned.places, first))
        places.pop_back();
    model = aligned.model;
    rowBegin = lineBegin;
    rowModel = lineModel;
    endRow();
}

/// As it is for who reads the file from its beginning.
ModifiedResidues CifIndex::modifiedBefore(std::uint64_t offset) const
{
    ModifiedResidues before;
    for (const auto& [residue, at] : modifiedAt)
        if (at < offset)
            before.emplace(residue, modified.at(residue));
    return before;
}

FrameRead CifIndex::read(std::size_t frame, Source& source, const ReadOptions& options,
                         ReadReport& report) const
{
    const auto& [begin, tableOfIt] = places[frame];
    const bool isLast = frame + 1 == count();
    if (isLast && options.growing && isAmongAtoms() && (next != 0 || !isBehindTable)) {
        report.error = source.getName() + ":" + std::to_string(lineNumber) +
                       ": found the end of the file, expected more of the frame";
        return {{}, true};
    }
    const std::uint64_t end = isLast ? scanned : places[frame + 1].begin.offset;
    const auto bytes = readBetween(source, begin.offset, end, options, report);
    if (!bytes)
        return {};
    StructureModel structure;
    const auto take = [&structure](StructureModel read) {
        structure = std::move(read);
        return true;
    };
    const Table& of = tables[tableOfIt];
    const CifPart part{*bytes,  begin.line,    begin.column,
                       of.tags, of.lineOfTags, modifiedBefore(begin.offset)};
    if (!readMmcifPart(part, source.getName(), options, take, report))
        return {{}, isLast && isCut()};
    return makeFrame(std::move(structure), source.getName(), frame, options, report);
}

} // namespace strandview
