// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/History.h"

#include <utility>

#include <QString>

namespace strandview {

namespace {

// More than anybody goes back, some kilobytes each.
const int MOST_STEPS = 1000;

} // namespace

class History::Step : public QUndoCommand
{
public:
    Step(History& its, WindowState stateBefore, WindowState stateAfter)
        : history(its),
          before(std::move(stateBefore)),
          after(std::move(stateAfter)),
          what(differenceOf(before, after)),
          time(its.clock.elapsed())
    {
        setText(QString::fromStdString(what));
    }

    void undo() override
    {
        if (!isObsolete())
            history.show(after, before);
    }
    // A stack does what is pushed, which the user has done.
    void redo() override
    {
        if (std::exchange(isDone, true))
            history.show(before, after);
    }
    int id() const override { return 0; }
    bool mergeWith(const QUndoCommand* command) override
    {
        const auto& next = static_cast<const Step&>(*command);
        if (next.what != what || next.time - time > TOGETHER.count())
            return false;
        time = next.time;
        end(next.after);
        return true;
    }
    // And is none if that is where it began.
    void end(const WindowState& state)
    {
        after = state;
        setObsolete(before == after);
    }

private:
    History& history;
    WindowState before, after;
    std::string what;
    qint64 time;
    bool isDone = false;
};

History::History(Tell tellState, Show showState)
    : tell(std::move(tellState)), showAll(std::move(showState))
{
    steps.setUndoLimit(MOST_STEPS);
    soon.setSingleShot(true);
    connect(&soon, &QTimer::timeout, this, &History::note);
    clock.start();
}

void History::note()
{
    soon.stop();
    if (!hasBegun || pauses > 0)
        return;
    WindowState now = tell();
    if (now == known)
        return;
    steps.push(new Step(*this, known, now));
    known = std::move(now);
}

void History::noteSoon()
{
    if (hasBegun && pauses == 0 && !soon.isActive())
        soon.start(0);
}

void History::refuse()
{
    known = tell();
    if (steps.index() == 0 || steps.index() < steps.count()) // it was taken back meanwhile
        return;
    auto* const last =
        static_cast<Step*>(const_cast<QUndoCommand*>(steps.command(steps.count() - 1)));
    last->end(known);
    if (last->isObsolete())
        steps.undo(); // which deletes it
}

void History::begin()
{
    soon.stop();
    steps.clear();
    known = tell();
    hasBegun = true;
}

void History::show(const WindowState& from, const WindowState& to)
{
    const Pause pause(*this);
    showAll(withChange(tell(), from, to));
}

History::Pause::Pause(History& its) : history(its)
{
    if (history.soon.isActive())
        history.note();
    ++history.pauses;
}

History::Pause::~Pause()
{
    if (--history.pauses == 0 && history.hasBegun)
        history.known = history.tell();
}

} // namespace strandview
