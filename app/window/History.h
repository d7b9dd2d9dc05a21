// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_HISTORY_H
#define STRANDVIEW_APP_WINDOW_HISTORY_H

#include <chrono>
#include <functional>
#include <memory>

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QUndoStack>

#include "window/WindowState.h"

namespace strandview {

/// What a window's user has changed, step by step, to take back and do again. It compares the
/// window's state with the one that it knew before, so that whatever changes it need only say that
/// it may have. Of the window's thread.
class History : public QObject
{
    Q_OBJECT

public:
    /// Changes of the same that follow each other so soon are one step: a camera that turns, a
    /// slider that is dragged.
    static constexpr std::chrono::milliseconds TOGETHER{1000};

    using Tell = std::function<WindowState()>;
    using Show = std::function<void(const WindowState& state)>;

    History(Tell tellState, Show showState);

    /// The user may have changed something: a step, if so.
    void note();
    /// The same a moment later, for what changes in several steps that are nothing by themselves.
    void noteSoon();
    /// A change that was noted was refused later: as if it had never been.
    void refuse();
    /// Forgets all: other files are shown, or none yet.
    void begin();

    /// While it lives, what changes is not the user's doing: no step.
    class Pause
    {
    public:
        explicit Pause(History& its);
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        History& history;
    };

    QUndoStack steps;

private:
    class Kept;
    class Step;

    void show(const WindowState& from, const WindowState& to);

    Tell tell;
    Show showAll;
    WindowState known;                            ///< at last
    std::shared_ptr<const ThingLooks> lastThings; ///< that were kept
    bool isRewriting = false;                     ///< of steps, none of which are joined
    bool hasBegun = false;
    int pauses = 0;
    QTimer soon;
    QElapsedTimer clock;
};

} // namespace strandview

#endif
