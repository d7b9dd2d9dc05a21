// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_PROGRESS_H
#define STRANDVIEW_APP_PROGRESS_H

#include <chrono>
#include <string>

/// One line on standard error that says what long work is at, if that is a terminal.
/// Nothing is left of the line at the end.
class Progress
{
public:
    Progress();
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Replaces the line, at most ten times a second.
    void show(const std::string& text);
    /// Replaces the line at once, before work that tells nothing on its way.
    void announce(const std::string& text);
    /// Removes the line, so that something else can be printed.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    bool terminal;
    bool shown = false;
    Clock::time_point next;
};

#endif
