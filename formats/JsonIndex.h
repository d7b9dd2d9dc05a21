// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_JSONINDEX_H
#define STRANDVIEW_FORMATS_JSONINDEX_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/IndexedText.h>
#include <strandview/formats/JsonReader.h>
#include <strandview/formatsExport.h>

namespace strandview {

/// Where the frames of a series in JSON are: one pass over the text that follows its strings,
/// arrays and objects, without a look at what they hold but for the times. 32 bytes for each.
///
/// What no text in JSON can have ends the pass where it stands, and is an error with the words and
/// the place of readJson(); so is anything around the frames that it would refuse. What is wrong
/// within a frame is told when that is read. A text that ends between two frames or behind them has
/// those; a notice says where it ends, unless it is growing.
class STRANDVIEW_FORMATS_EXPORT JsonIndex : public TextIndex
{
public:
    /// Null of a text that does not begin with a series, in front of which there is at most the
    /// version, or whose series begins with no object; and with report.error of what cannot be
    /// read.
    static std::unique_ptr<JsonIndex> of(Source& source, const ReadOptions& options,
                                         ReadReport& report);

    bool lookOn(Source& source, const ReadOptions& options, ReadReport& report) override;

    std::size_t count() const override { return places.size(); }
    std::optional<double> time(std::size_t frame) const override;
    bool mayBeEmpty() const override { return true; }
    FrameRead read(std::size_t frame, Source& source, const ReadOptions& options,
                   ReadReport& report) const override;

private:
    struct Place
    {
        std::uint64_t offset;     ///< in bytes
        std::size_t line, column; ///< as in JsonPlace
        double time;              ///< not a number where there is none
    };
    enum class State { BEFORE_FRAME, IN_FRAME, AFTER_FRAME, BEHIND_SERIES };

    JsonIndex(std::string_view textBefore, std::uint64_t offset);

    void scan(std::string_view piece);
    const char* scanFrame(const char* from, const char* end);
    const char* scanString(const char* from, const char* end);
    const char* scanBetween(const char* from, const char* end);
    bool open(char bracket);
    bool close(char bracket);
    void beginFrame(std::uint64_t offset);
    void endFrame(std::uint64_t offset);
    void keep(char c);
    void endLine(std::uint64_t offset);
    std::uint64_t offsetOf(const char* place) const
    {
        return scanned + std::uint64_t(place - piece);
    }
    JsonPlace placeOf(std::uint64_t offset) const;

    bool findFault(Source& source, const ReadOptions& options, ReadReport& report);
    JsonOutline checkOutline(std::string_view text, const std::string& fileName,
                             ReadReport& report) const;
    void checkEnd(bool isAtEnd, Source& source, const ReadOptions& options, ReadReport& report);
    void preferFaultOfLast(Source& source, ReadOptions options, std::string& error);

    std::string before; ///< the series, up to its "["
    std::deque<Place> places;
    std::optional<bool> isTimed; ///< the first frame
    State state = State::BEFORE_FRAME;
    std::uint64_t scanned; ///< bytes
    std::uint64_t end = 0; ///< of the last frame
    std::size_t line = 1;
    std::uint64_t lineBegin;     ///< its offset
    std::size_t inLine = 0;      ///< bytes there that begin no character
    const char* piece = nullptr; ///< that is being scanned

    // In a frame
    std::size_t depth = 0;
    std::uint64_t arrays = 0; ///< a bit for each array or object: the last one is the innermost
    bool isInString = false, isEscaped = false;
    std::string outermost; ///< the frame without what is in its arrays and objects

    std::string behind; ///< the frames, from "]" on
    JsonPlace behindPlace;
    bool isFaulty = false; ///< at the end of what was scanned
    std::string fault;     ///< what is said of it
};

} // namespace strandview

#endif
