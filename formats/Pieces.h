// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_PIECES_H
#define STRANDVIEW_FORMATS_PIECES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <algebra3d/largePages.h>

#include <strandview/formats/Milestones.h>
#include <strandview/formats/ReadReport.h>
#include <strandview/formats/Source.h>

namespace strandview {

/// Reads a source piece by piece, and asks ReadOptions::goOn before each, with the share of the
/// source that is before it. What may have to be waited for asks meanwhile, too; a file does not,
/// so that whoever goes on for one piece at a time comes to the end.
class Pieces
{
public:
    /// Of one, in bytes: large beside what reading it costs, and small beside memory.
    static constexpr std::size_t SIZE = 1 << 20;

    Pieces(Source& readSource, const ReadOptions& readOptions, ReadReport& readReport)
        : source(readSource), options(readOptions), report(readReport)
    {}
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

    /// Short at the end of the source alone, and valid until the next one; nothing and report.error
    /// if that fails.
    std::optional<std::string_view> read(std::uint64_t offset, std::size_t size)
    {
        const double whole = double(source.getSize().value_or(0));
        const double share = whole > 0 ? std::min(1.0, double(offset) / whole) : 0;
        if (options.goOn && !options.goOn(share)) {
            report.error = source.getName() + ": " + READING_STOPPED;
            return {};
        }
        algebra3d::reserveMany(room, size);
        room.resize(size);
        const auto got =
            source.readAt(offset, room.data(), size, whole > 0 ? ReadOptions() : options, report);
        return got ? std::optional(std::string_view(room).substr(0, *got)) : std::nullopt;
    }

private:
    Source& source;
    const ReadOptions& options;
    ReadReport& report;
    std::string room;
};

} // namespace strandview

#endif
