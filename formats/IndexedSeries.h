// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_INDEXEDSERIES_H
#define STRANDVIEW_FORMATS_INDEXEDSERIES_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>
#include <strandview/formatsExport.h>
#include <strandview/model/Series.h>

namespace strandview {

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
    std::size_t line = 1; ///< of the file, in which it begins
};

/// What came of one frame's text; report.error if it is nothing.
struct FrameRead
{
    std::optional<Configuration> configuration;
    bool isCut = false; ///< the text ends before the frame does
};

/// How a format of texts has its frames: what IndexedSeries has to know of it.
class STRANDVIEW_FORMATS_EXPORT TextFrames
{
public:
    virtual ~TextFrames();

    /// Shown every line of a file once, in their order and without their ends; of a line longer
    /// than 4 KiB the beginning.
    virtual void see(std::string_view line, FrameIndex& index) = 0;

    virtual FrameRead read(const FrameText& frame, const std::string& fileName,
                           const ReadOptions& options, ReadReport& report) = 0;
};

/// A text with the places of its frames.
class STRANDVIEW_FORMATS_EXPORT IndexedText
{
public:
    /// Looks for so many frames at most. Nothing and report.error if the file cannot be read, is
    /// refused by the format, or has no frame.
    static std::optional<IndexedText> of(Source& source, TextFrames& frames, std::size_t most,
                                         const ReadOptions& options, ReadReport& report);

    std::size_t count() const { return index.count(); }
    std::optional<double> time(std::size_t frame) const;
    FrameRead read(std::size_t frame, Source& source, TextFrames& frames,
                   const ReadOptions& options, ReadReport& report) const;
    void leaveOutLast();

private:
    void see(std::string_view line, std::uint64_t bytes, TextFrames& frames);

    FrameIndex index;
    std::uint64_t end = 0; ///< of the last frame
};

/// The frames of one text, found by one pass over it and read when they are loaded: of a file
/// nothing else is kept.
///
/// A last frame that is cut short is left out, with a notice; an only one is refused.
class STRANDVIEW_FORMATS_EXPORT IndexedSeries : public Series
{
public:
    /// Null and report.error if that fails.
    static std::unique_ptr<Series> open(std::unique_ptr<Source> source,
                                        std::unique_ptr<TextFrames> frames,
                                        const ReadOptions& options, ReadReport& report);

    /// The first frame alone, without a look at the others.
    static std::optional<Configuration> readFirst(Source& source, TextFrames& frames,
                                                  const ReadOptions& options, ReadReport& report);

    std::size_t count() const override { return text.count(); }
    std::optional<double> time(std::size_t frame) const override { return text.time(frame); }

private:
    IndexedSeries(std::unique_ptr<Source> textSource, std::unique_ptr<TextFrames> textFrames,
                  IndexedText indexedText, ReadOptions readOptions);
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override;

    std::unique_ptr<Source> source;
    std::unique_ptr<TextFrames> frames;
    IndexedText text;
    ReadOptions options;
    std::optional<LoadedFrame> only; ///< of a text that has no other, read when it was opened
};

} // namespace strandview

#endif
