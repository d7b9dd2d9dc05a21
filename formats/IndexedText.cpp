// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/IndexedText.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include <strandview/formats/Pieces.h>
#include <strandview/formats/text/encoding.h>

namespace strandview {

namespace {

constexpr std::size_t LONGEST_LINE = 4096;

/// The line ends of a piece of text, one after the other.
class LineEnds
{
public:
    explicit LineEnds(std::string_view wholePiece) : piece(wholePiece) {}

    /// Where the line ends that begins at a place, and how many bytes that takes; nothing if it
    /// goes on behind the piece, as it may do behind a CR.
    std::optional<std::pair<std::size_t, std::size_t>> find(std::size_t from)
    {
        const std::size_t stop = std::min(feeds.find(piece, from), returns.find(piece, from));
        if (stop == piece.npos || (piece[stop] == '\r' && stop + 1 == piece.size()))
            return {};
        return std::pair(stop, piece.substr(stop, 2) == "\r\n" ? 2 : 1);
    }

private:
    /// Looks for one character, and never twice in the same bytes.
    struct Finder
    {
        std::size_t find(std::string_view text, std::size_t from)
        {
            if (!isKnown || next < from)
                next = text.find(wanted, from);
            isKnown = true;
            return next;
        }
        char wanted;
        bool isKnown = false;
        std::size_t next = 0;
    };

    std::string_view piece;
    Finder feeds{'\n'}, returns{'\r'};
};

} // namespace

TextIndex::~TextIndex() = default;
TextFrames::~TextFrames() = default;

std::optional<std::string> readBetween(Source& source, std::uint64_t begin, std::uint64_t end,
                                       const ReadOptions& options, ReadReport& report)
{
    std::optional<std::string> bytes =
        source.readAt(begin, std::size_t(end - begin), options, report);
    if (!bytes || bytes->size() == end - begin)
        return bytes;
    report.error = source.getName() + ": found its end at byte " +
                   std::to_string(begin + bytes->size()) + ", expected the frame up to byte " +
                   std::to_string(end) + ": it has become shorter";
    return {};
}

const double FrameIndex::NO_TIME = std::numeric_limits<double>::quiet_NaN();

void FrameIndex::setTime(double time)
{
    if (!places.empty())
        places.back().time = time;
}

bool IndexedText::lookOn(Source& source, const ReadOptions& options, ReadReport& report)
{
    return lookFor(std::numeric_limits<std::size_t>::max(), source, options, report);
}

bool IndexedText::lookFor(std::size_t most, Source& source, const ReadOptions& options,
                          ReadReport& report)
{
    Pieces pieces(source, options, report);
    for (bool isAtEnd = false; !isAtEnd && !isDone(most);) {
        const std::uint64_t offset = end + begunSize;
        const std::optional<std::string_view> piece = pieces.read(offset, Pieces::SIZE);
        if (!piece)
            return false;
        if (offset == 0 && isUtf16(*piece)) {
            report.error = source.getName() + ": " + FOUND_UTF16;
            return false;
        }
        seeLines(*piece, most);
        isAtEnd = piece->size() < Pieces::SIZE;
        if (isAtEnd && begunSize > 0 && !options.growing && !isDone(most))
            see(begun, std::exchange(begunSize, 0));
    }
    if (!index.fault.empty())
        report.error = source.getName() + ":" + std::to_string(index.line) + ": " + index.fault;
    else if (count() == 0)
        report.error = source.getName() + ": " + frames.nothingFound();
    return report.error.empty();
}

/// The piece comes next.
void IndexedText::seeLines(std::string_view piece, std::size_t most)
{
    if (piece.empty())
        return;
    if (isBehindReturn) {
        isBehindReturn = false;
        const bool isFeed = piece[0] == '\n';
        see(begun, std::exchange(begunSize, 0) + isFeed);
        begun.clear();
        piece.remove_prefix(isFeed);
    }
    LineEnds ends(piece);
    std::size_t from = 0;
    while (!isDone(most)) {
        const auto found = ends.find(from);
        if (!found)
            break;
        const auto [stop, size] = *found;
        std::string_view line =
            piece.substr(from, std::min(stop - from, LONGEST_LINE - begun.size()));
        if (begunSize > 0)
            line = begun += line;
        see(line, std::exchange(begunSize, 0) + stop + size - from);
        begun.clear();
        from = stop + size;
    }
    if (isDone(most))
        return;
    std::string_view rest = piece.substr(from);
    begunSize += rest.size();
    isBehindReturn = !rest.empty() && rest.back() == '\r';
    rest.remove_suffix(isBehindReturn);
    begun += rest.substr(0, LONGEST_LINE - begun.size());
}

void IndexedText::see(std::string_view line, std::uint64_t bytes)
{
    frames.see(index.offset == 0 ? withoutByteOrderMark(line) : line, index);
    if (!index.fault.empty()) // of which the line is no part of a frame
        return;
    end += bytes;
    index.offset = end;
    ++index.line;
}

std::optional<double> IndexedText::time(std::size_t frame) const
{
    if (frame >= count() || std::isnan(index.places[frame].time))
        return {};
    return index.places[frame].time;
}

FrameRead IndexedText::read(std::size_t frame, Source& source, const ReadOptions& options,
                            ReadReport& report) const
{
    const bool isLast = frame + 1 == count();
    if (isLast && options.growing && !frames.mayBeWhole()) {
        report.error = source.getName() + ":" + std::to_string(index.line) +
                       ": found the end of the file, expected more of the frame";
        return {{}, true};
    }
    const FrameIndex::Place& place = index.places[frame];
    const std::uint64_t next = isLast ? end : index.places[frame + 1].offset;
    const auto bytes = readBetween(source, place.offset, next, options, report);
    if (!bytes)
        return {};
    const std::string_view text = place.offset == 0 ? withoutByteOrderMark(*bytes) : *bytes;
    return frames.read({text, std::size_t(place.line), frame}, source.getName(), options, report);
}

} // namespace strandview
