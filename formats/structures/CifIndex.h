// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_STRUCTURES_CIFINDEX_H
#define STRANDVIEW_FORMATS_STRUCTURES_CIFINDEX_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <strandview/formats/IndexedText.h>
#include <strandview/formats/structures/cifText.h>
#include <strandview/formats/structures/pdbLines.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// Where the models of mmCIF begin: one pass over its words, up to the end of the data block that
/// has the first atoms. A model begins with a row of atoms of another model number than the row
/// before, wherever on a line that is, and is a frame, as readMmcif() would take it; one without
/// DNA is empty (FrameRead::isEmpty). 32 bytes for each.
///
/// What is wrong in front of the first atom refuses the text, in the words of readMmcif(); what is
/// wrong behind it is told with the frame that it stands in. Where each row has a line, a row of
/// too few or too many values spoils its own model alone: the one whose number the row has, counted
/// from the nearer end of the row; where there is none, that of the row before. Lines end with LF,
/// CR LF or CR.
///
/// The last model is cut where the text ends within a row; of one that is growing, until something
/// follows that is none of its rows, be it the line "#" that programs write behind a table.
class STRANDVIEW_FORMATS_EXPORT CifIndex : public TextIndex
{
public:
    /// The first model alone, without a look at what is behind it; and in report.frames whether
    /// there is more than one.
    static std::optional<Configuration> readFirst(Source& source, const ReadOptions& options,
                                                  ReadReport& report);

    bool lookOn(Source& source, const ReadOptions& options, ReadReport& report) override;

    std::size_t count() const override { return places.size(); }
    std::optional<double> time(std::size_t) const override { return {}; }
    bool mayBeEmpty() const override { return true; }
    FrameRead read(std::size_t frame, Source& source, const ReadOptions& options,
                   ReadReport& report) const override;

private:
    enum class State { BEFORE, BETWEEN, BEHIND_TAG, IN_TAGS, IN_ROWS, DONE, BROKEN };

    /// Where a word stands.
    struct Where
    {
        std::uint64_t offset; ///< in bytes
        std::size_t line, column;
    };
    struct Place
    {
        Where begin;
        std::size_t table; ///< of tables
    };
    struct Table
    {
        std::vector<std::string> tags;
        std::size_t lineOfTags = 0; ///< of the last one
    };
    /// What is known where a line begins with a row.
    struct Aligned
    {
        std::size_t places;
        std::optional<std::string> model;
    };
    /// Lines since then that are no rows, where others are: the first one with the last model.
    struct Stray
    {
        std::string model; ///< its number; empty if none has one
        Where begin;
    };

    bool lookFor(std::size_t most, Source& source, const ReadOptions& options, ReadReport& report);
    bool refuse(Source& source, const ReadOptions& options, ReadReport& report) const;
    void seeLines(std::string_view lines, std::size_t most);
    void seeLine(std::string_view line);
    bool isRowOfModel(std::string_view line) const;
    void seeText(std::string_view line, std::size_t& place);
    void seePlainValues(std::string_view line, std::size_t& place);
    void take(const CifWord& word, const Where& where);
    void takeKeyword(CifKind kind);
    void takeValue(std::string_view word, const Where& where);
    void takeTag(std::string_view tag);
    void takeFault();
    void beginLoop();
    void beginRows();
    bool mayEndTable() const;
    void endRow();
    void endLine(std::string_view line, bool wasAmongAtoms);
    void noteStray(std::string_view line);
    void align();
    void beginFrame(const Where& where);
    bool isAmongAtoms() const { return state == State::IN_ROWS && isOfAtoms; }
    bool isCut() const
    {
        return isInText || (state == State::IN_ROWS && (hasFaultAtEnd || next != 0));
    }
    ModifiedResidues modifiedBefore(std::uint64_t offset) const;

    std::deque<Place> places;
    std::deque<Table> tables; ///< that have frames
    State state = State::BEFORE;
    std::uint64_t scanned = 0; ///< bytes, of whole lines
    std::size_t lineNumber = 1;
    bool isInSaveFrame = false;
    bool hasFaultAtEnd = false; ///< in the last line
    bool isBehindTable = false; ///< there is a comment

    // Of a value that is lines of text
    bool isInText = false;
    std::string text;
    Where textBegin = {};

    // Of a table
    Table table;
    bool isOfAtoms = false, isTableKept = false;
    std::size_t modelColumn = 0, componentColumn = 0, parentColumn = 0;
    std::size_t next = 0; ///< column
    Where rowBegin = {};
    std::string rowModel, component, parent;
    std::optional<std::string> model; ///< of the rows so far

    // Of a line in a table of atoms
    std::size_t words = 0;
    std::size_t firstColumn = 0; ///< of its first word
    Where lineBegin = {};        ///< where that stands
    std::string lineModel;       ///< if the line is a row
    Aligned aligned = {};
    Stray stray = {};
    bool isOdd = false;        ///< whether a row since then has no model number
    bool areRowsLines = false; ///< the last line that began with a row was one

    ModifiedResidues modified;
    std::map<std::string, std::uint64_t> modifiedAt; ///< the offsets of the rows that tell of them
};

} // namespace strandview

#endif
