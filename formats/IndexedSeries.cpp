// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/IndexedSeries.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <strandview/formats/Milestones.h>
#include <strandview/formats/text/encoding.h>

namespace strandview {

namespace {

constexpr std::size_t PIECE = 1 << 20;
constexpr std::size_t LONGEST_LINE = 4096;

std::string_view withoutCarriageReturn(std::string_view line)
{
    return line.substr(0, line.size() - (!line.empty() && line.back() == '\r'));
}

/// A text in pieces, each of them read once.
class Pieces
{
public:
    Pieces(Source& textSource, const ReadOptions& readOptions, ReadReport& readReport)
        : source(textSource), options(readOptions), report(readReport)
    {
        // What is asked while a piece is read tells no share.
        if (options.goOn)
            options.goOn = [this, &readOptions](double) { return readOptions.goOn(share()); };
    }

    /// Empty at the end; nothing and report.error if it fails.
    std::optional<std::string> next()
    {
        if (options.goOn && !options.goOn(0)) {
            report.error = source.getName() + ": " + READING_STOPPED;
            return {};
        }
        std::optional<std::string> piece = source.readAt(offset, PIECE, options, report);
        if (piece && offset == 0 && isUtf16(*piece)) {
            report.error = source.getName() + ": " + FOUND_UTF16;
            return {};
        }
        offset += piece ? piece->size() : 0;
        return piece;
    }

private:
    double share() const
    {
        const double size = double(source.getSize().value_or(0));
        return size > 0 ? std::min(1.0, double(offset) / size) : 0;
    }

    Source& source;
    ReadOptions options;
    ReadReport& report;
    std::uint64_t offset = 0;
};

} // namespace

const double FrameIndex::NO_TIME = std::numeric_limits<double>::quiet_NaN();

void FrameIndex::setTime(double time)
{
    if (!places.empty())
        places.back().time = time;
}

TextFrames::~TextFrames() = default;

// ---- IndexedText

std::optional<IndexedText> IndexedText::of(Source& source, TextFrames& frames, std::size_t most,
                                           const ReadOptions& options, ReadReport& report)
{
    IndexedText text;
    Pieces pieces(source, options, report);
    std::string begun;           // of a line whose end is in another piece
    std::uint64_t begunSize = 0; // of which it is the beginning
    const auto isDone = [&] { return !text.index.fault.empty() || text.count() >= most; };
    while (!isDone()) {
        const std::optional<std::string> piece = pieces.next();
        if (!piece)
            return {};
        if (piece->empty() && begunSize > 0)
            text.see(withoutCarriageReturn(begun), std::exchange(begunSize, 0), frames);
        if (piece->empty())
            break;
        std::string_view rest = *piece;
        for (std::size_t stop; !isDone() && (stop = rest.find('\n')) != rest.npos;
             rest.remove_prefix(stop + 1)) {
            std::string_view line = rest.substr(0, std::min(stop, LONGEST_LINE - begun.size()));
            if (begunSize > 0)
                line = begun += line;
            text.see(withoutCarriageReturn(line), std::exchange(begunSize, 0) + stop + 1, frames);
            begun.clear();
        }
        begun += rest.substr(0, LONGEST_LINE - begun.size());
        begunSize += rest.size();
    }
    const std::string& fault = text.index.fault;
    if (!fault.empty())
        report.error = source.getName() + ":" + std::to_string(text.index.line - 1) + ": " + fault;
    else if (text.count() == 0)
        report.error = source.getName() + ": found nothing to show, expected at least one frame";
    return report.error.empty() ? std::optional(std::move(text)) : std::nullopt;
}

/// The end is that of what was looked at.
void IndexedText::see(std::string_view line, std::uint64_t bytes, TextFrames& frames)
{
    end += bytes;
    frames.see(index.offset == 0 ? withoutByteOrderMark(line) : line, index);
    index.offset = end;
    ++index.line;
}

std::optional<double> IndexedText::time(std::size_t frame) const
{
    if (frame >= count() || std::isnan(index.places[frame].time))
        return {};
    return index.places[frame].time;
}

FrameRead IndexedText::read(std::size_t frame, Source& source, TextFrames& frames,
                            const ReadOptions& options, ReadReport& report) const
{
    const FrameIndex::Place& place = index.places[frame];
    const std::uint64_t next = frame + 1 < count() ? index.places[frame + 1].offset : end;
    const std::optional<std::string> bytes =
        source.readAt(place.offset, std::size_t(next - place.offset), options, report);
    if (!bytes)
        return {};
    const std::string_view text = place.offset == 0 ? withoutByteOrderMark(*bytes) : *bytes;
    return frames.read({text, std::size_t(place.line)}, source.getName(), options, report);
}

void IndexedText::leaveOutLast()
{
    end = index.places.back().offset;
    index.places.pop_back();
}

// ---- IndexedSeries

IndexedSeries::IndexedSeries(std::unique_ptr<Source> textSource,
                             std::unique_ptr<TextFrames> textFrames, IndexedText indexedText,
                             ReadOptions readOptions)
    : source(std::move(textSource)),
      frames(std::move(textFrames)),
      text(std::move(indexedText)),
      options(std::move(readOptions))
{
    options.goOn = {};
}

std::unique_ptr<Series> IndexedSeries::open(std::unique_ptr<Source> source,
                                            std::unique_ptr<TextFrames> frames,
                                            const ReadOptions& options, ReadReport& report)
{
    constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
    std::optional<IndexedText> text = IndexedText::of(*source, *frames, all, options, report);
    if (!text)
        return nullptr;
    const std::size_t last = text->count() - 1;
    ReadReport reportOfLast;
    FrameRead read = text->read(last, *source, *frames, options, reportOfLast);
    if (!read.configuration && last == 0) {
        report.error = reportOfLast.error;
        return nullptr;
    }
    if (read.isCut) {
        text->leaveOutLast();
        report.notices.push_back(reportOfLast.error + "; frame " + std::to_string(last) +
                                 ", the last one, is left out");
    }
    std::unique_ptr<IndexedSeries> series(
        new IndexedSeries(std::move(source), std::move(frames), std::move(*text), options));
    if (last == 0)
        series->only = {std::move(read.configuration), std::move(reportOfLast.notices), {}};
    return series;
}

std::optional<Configuration> IndexedSeries::readFirst(Source& source, TextFrames& frames,
                                                      const ReadOptions& options,
                                                      ReadReport& report)
{
    // Where the second one begins the first one ends.
    const std::optional<IndexedText> text = IndexedText::of(source, frames, 2, options, report);
    if (!text)
        return {};
    report.frames = text->count() > 1 ? SEVERAL_FRAMES : 1;
    return text->read(0, source, frames, options, report).configuration;
}

LoadedFrame IndexedSeries::loadFrame(std::size_t frame, const GoOn& goOn)
{
    if (only)
        return *std::exchange(only, std::nullopt);
    ReadReport report;
    options.goOn = goOn;
    FrameRead read = text.read(frame, *source, *frames, options, report);
    options.goOn = {};
    return {std::move(read.configuration), std::move(report.notices), std::move(report.error)};
}

} // namespace strandview
