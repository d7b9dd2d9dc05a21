// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_FORMATS_MILESTONES_H
#define STRANDVIEW_FORMATS_MILESTONES_H

#include <cstddef>

#include <strandview/formats/ReadReport.h>

namespace strandview {

/// What the error says when ReadOptions::goOn stopped a reader.
constexpr char READING_STOPPED[] = "reading was stopped";

/// Asks ReadOptions::goOn on a reader's way through a text: every 64 KiB, some
/// milliseconds of work.
class Milestones
{
public:
    Milestones(const ReadOptions& readOptions, std::size_t textSize)
        : options(readOptions), size(textSize)
    {}

    /// Whether to go on from this place in the text.
    bool pass(std::size_t position) { return position < next || ask(position); }

private:
    bool ask(std::size_t position)
    {
        next = position + 64 * 1024;
        return !options.goOn || options.goOn(double(position) / double(size));
    }

    const ReadOptions& options;
    const std::size_t size;
    std::size_t next = 0;
};

} // namespace strandview

#endif
