// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/History.h"

#include <algorithm>
#include <utility>
#include <vector>

#include <QString>

namespace strandview {

namespace {

// More than anybody goes back, some kilobytes each.
const int MOST_STEPS = 1000;

} // namespace

// The looks of single things, of which there may be many, are kept once for all states in a row
// that have the same.
class History::Kept
{
public:
    Kept(WindowState kept, std::shared_ptr<const ThingLooks>& last) : state(std::move(kept))
    {
        if (!last || !(*last == state.style.things))
            last = std::make_shared<const ThingLooks>(std::move(state.style.things));
        things = last;
        state.style.things = {};
    }

    WindowState get() const
    {
        WindowState whole = state;
        whole.style.things = *things;
        return whole;
    }

private:
    WindowState state; // but for these
    std::shared_ptr<const ThingLooks> things;
};

class History::Step : public QUndoCommand
{
public:
    Step(History& its, const WindowState& stateBefore, const WindowState& stateAfter)
        : history(its),
          before(stateBefore, its.lastThings),
          after(stateAfter, its.lastThings),
          what(differenceOf(stateBefore, stateAfter)),
          time(its.clock.elapsed())
    {
        setText(QString::fromStdString(what));
    }

    void undo() override { history.show(after.get(), before.get()); }
    // A stack does what is pushed, which the user has done.
    void redo() override
    {
        if (std::exchange(isDone, true))
            history.show(before.get(), after.get());
    }
    int id() const override { return history.isRewriting ? -1 : 0; }
    // And is none if that is where it began.
    bool mergeWith(const QUndoCommand* command) override
    {
        const auto& next = static_cast<const Step&>(*command);
        if (next.what != what || next.time - time > TOGETHER.count())
            return false;
        time = next.time;
        after = next.after;
        setObsolete(before.get() == after.get());
        return true;
    }

    WindowState getBefore() const { return before.get(); }
    WindowState getAfter() const { return after.get(); }

private:
    History& history;
    Kept before, after;
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
    const WindowState refused = std::exchange(known, tell());
    if (steps.index() < steps.count()) // it was taken back meanwhile
        return;
    const auto without = [&](const WindowState& state) {
        return withChange(state, refused, known);
    };
    // The user may have changed something else since; that stays.
    isRewriting = true;
    std::vector<std::pair<WindowState, WindowState>> since;
    for (bool hadIt = true; hadIt && steps.index() > 0;) {
        auto& last =
            static_cast<Step&>(const_cast<QUndoCommand&>(*steps.command(steps.index() - 1)));
        const WindowState before = last.getBefore();
        since.emplace_back(without(before), without(last.getAfter()));
        hadIt = !(before == since.back().first);
        last.setObsolete(true);
        steps.undo(); // which deletes it, and no more
    }
    std::reverse(since.begin(), since.end());
    for (const auto& [before, after] : since) {
        if (!(before == after))
            steps.push(new Step(*this, before, after));
    }
    isRewriting = false;
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
