// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_INDEXEDTEXT_H
#define STRANDVIEW_FORMATS_INDEXEDTEXT_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Configuration.h>

namespace strandview {

/// What came of one frame's text; report.error if it is nothing.
struct FrameRead
{
    std::optional<Configuration> configuration;
    bool isCut = false;   ///< the text ends before the frame does
    bool isEmpty = false; ///< it is as it should be, with nothing to show: report.error says what
};

/// Where the frames of a text begin, as far as it was looked at: what IndexedSeries reads by.
class STRANDVIEW_FORMATS_EXPORT TextIndex
{
public:
    virtual ~TextIndex();

    /// Looks on from where it stopped, to the end of the text; of one that is growing to the end of
    /// its last whole line. False and report.error if it was stopped, cannot read the text, refuses
    /// it, or finds no frame. ReadOptions::goOn is asked before anything else.
    virtual bool lookOn(Source& source, const ReadOptions& options, ReadReport& report) = 0;

    /// Those of which the beginning was found.
    virtual std::size_t count() const = 0;
    virtual std::optional<double> time(std::size_t frame) const = 0;

    /// Whether a frame may be empty beside others. One at least has to have something to show.
    virtual bool mayBeEmpty() const { return false; }

    /// The last one as far as the text was looked at; it is cut where that may not be all of it.
    virtual FrameRead read(std::size_t frame, Source& source, const ReadOptions& options,
                           ReadReport& report) const = 0;
};

/// The bytes of a frame from one offset to another; nothing and report.error if they are not
/// there any more.
STRANDVIEW_FORMATS_EXPORT std::optional<std::string>
readBetween(Source& source, std::uint64_t begin, std::uint64_t end, const ReadOptions& options,
            ReadReport& report);

/// Where the frames of a text begin: 24 bytes for each.
class STRANDVIEW_FORMATS_EXPORT FrameIndex
{
public:
    /// A frame begins with the line that is looked at, and is all up to the next one.
    void begin() { places.push_back({offset, line, NO_TIME}); }
    /// Of the frame that began last, if there is one.
    void setTime(double time);
    /// "found ..., expected ...": the file is refused at the line that is looked at.
    void refuse(const std::string& text) { fault = text; }

    std::size_t count() const { return places.size(); }

private:
    friend class IndexedText;
    struct Place
    {
        std::uint64_t offset; ///< in bytes
        std::uint64_t line;   ///< from 1
        double time;
    };
    static const double NO_TIME; ///< not a number

    std::deque<Place> places; ///< no vector, which needs thrice its size when it grows
    std::string fault;
    std::uint64_t offset = 0, line = 1; ///< of the line that is looked at
};

/// One frame as it stands in its file.
struct FrameText
{
    std::string_view text;
    std::size_t line = 1;   ///< of the file, in which it begins
    std::size_t number = 0; ///< of the frame, counted from 0
};

/// How a format of texts has its frames: what IndexedText has to know of it.
class STRANDVIEW_FORMATS_EXPORT TextFrames
{
public:
    virtual ~TextFrames();

    /// Shown every line of a file once, in their order and without their ends, which are LF, CR LF
    /// or CR; of a line longer than 4 KiB the beginning.
    virtual void see(std::string_view line, FrameIndex& index) = 0;

    /// Whether the frame that began last may be whole by the lines that were shown; else, in a text
    /// that is growing, it is cut and not read.
    virtual bool mayBeWhole() const { return true; }

    /// A frame of a text that is growing is whole unless it is said to be cut: its lines are whole.
    virtual FrameRead read(const FrameText& frame, const std::string& fileName,
                           const ReadOptions& options, ReadReport& report) = 0;

    /// As of TextIndex.
    virtual bool mayBeEmpty() const { return false; }

    /// What is said of a text without any frame.
    virtual std::string nothingFound() const
    {
        return "found nothing to show, expected at least one frame";
    }
};

/// A text with the places of its frames, found line by line.
class STRANDVIEW_FORMATS_EXPORT IndexedText : public TextIndex
{
public:
    /// The frames have to outlive it.
    explicit IndexedText(TextFrames& textFrames) : frames(textFrames) {}

    bool lookOn(Source& source, const ReadOptions& options, ReadReport& report) override;
    /// The same, but not beyond the line that begins the last of so many frames.
    bool lookFor(std::size_t most, Source& source, const ReadOptions& options, ReadReport& report);

    std::size_t count() const override { return index.count(); }
    std::optional<double> time(std::size_t frame) const override;
    bool mayBeEmpty() const override { return frames.mayBeEmpty(); }
    FrameRead read(std::size_t frame, Source& source, const ReadOptions& options,
                   ReadReport& report) const override;

private:
    bool isDone(std::size_t most) const { return !index.fault.empty() || count() >= most; }
    void seeLines(std::string_view piece, std::size_t most);
    void see(std::string_view line, std::uint64_t bytes);

    TextFrames& frames;
    FrameIndex index;
    std::uint64_t end = 0;       ///< of the last line that was seen
    std::string begun;           ///< of the next line, whose end was not found yet
    std::uint64_t begunSize = 0; ///< of which it is the beginning
    bool isBehindReturn = false; ///< that line, which may end with it, or with the LF that follows
};

} // namespace strandview

#endif
