// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_PROGRESS_H
#define STRANDVIEW_APP_SCENE_PROGRESS_H

#include <chrono>
#include <string>

namespace strandview {

/// Where long work says what it is at, and asks whether to go on. This one tells nobody, and nobody
/// stops it.
class Progress
{
public:
    virtual ~Progress() = default;
    Progress() = default;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// What the work is at. Cheap: it may be told every millisecond.
    virtual void show(const std::string& /*text*/) {}
    /// The same, before a part of the work that tells nothing on its way.
    virtual void announce(const std::string& /*text*/) {}
    /// Whether the work is to end, with nothing done. True once, it stays so.
    virtual bool isStopped() const { return false; }
};

/// One line on standard error, if that is a terminal. Nothing is left of the line at the end.
class TerminalProgress : public Progress
{
public:
    TerminalProgress();
    ~TerminalProgress() override;

    /// Replaces the line, at most ten times a second.
    void show(const std::string& text) override;
    /// Replaces the line at once.
    void announce(const std::string& text) override;
    /// Removes the line, so that something else can be printed.
    void hide();

private:
    using Clock = std::chrono::steady_clock;

    bool terminal;
    bool shown = false;
    Clock::time_point next;
};

} // namespace strandview

#endif
