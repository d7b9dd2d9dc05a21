// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_RENDERING_SERIESPROGRESS_H
#define STRANDVIEW_APP_RENDERING_SERIESPROGRESS_H

#include <chrono>
#include <cstddef>
#include <string>

#include "scene/Progress.h"

namespace strandview {

/// Tells on standard error how many pictures of a series are there, how fast they come and when
/// all will be: on a line of a terminal, or else in a line every five seconds.
class SeriesProgress
{
public:
    using Clock = std::chrono::steady_clock;

    explicit SeriesProgress(std::size_t countOfAll);

    /// One more is there, drawn now or before, or has failed.
    void add(bool isDrawn);
    /// Removes the line of a terminal.
    void hide() { line.hide(); }

    /// "12 of 250 pictures, 1.3 per second, 3 min left", after so many seconds.
    std::string text(double seconds) const;

private:
    TerminalProgress line;
    const bool isTerminal;
    const std::size_t all;
    std::size_t done = 0, drawn = 0;
    const Clock::time_point start = Clock::now();
    Clock::time_point told = start;
};

} // namespace strandview

#endif
