// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/FrameTurns.h"

#include <algorithm>
#include <utility>

#include <Inventor/Qt/SoQtRenderArea.h>

namespace strandview {

FrameTurns::FrameTurns()
{
    end.setSingleShot(true);
    end.setInterval(0);
    connect(&end, &QTimer::timeout, this, &FrameTurns::begin);
}

// A view that has its turn already may draw again in it, for who wants to see it at once, but not
// while others wait.
bool FrameTurns::take(SoQtRenderArea& view)
{
    const bool mayDraw = !end.isActive() || (whose == &view && (!hasDrawn || waiting.empty()));
    if (!mayDraw) {
        if (std::find(waiting.begin(), waiting.end(), &view) == waiting.end())
            waiting.push_back(&view);
        return false;
    }
    whose = &view;
    hasDrawn = true;
    end.start();
    return true;
}

void FrameTurns::forget(const SoQtRenderArea& view)
{
    waiting.erase(std::remove(waiting.begin(), waiting.end(), &view), waiting.end());
    if (whose == &view)
        whose = nullptr;
}

void FrameTurns::whenDrawn(std::function<void()> act)
{
    if (end.isActive())
        awaited.push_back({std::nullopt, std::move(act)});
    else
        act();
}

// The turn ends after what Coin does in it: that timer was set before.
void FrameTurns::begin()
{
    for (Awaited& one : awaited)
        one.turns = one.turns ? *one.turns - 1 : waiting.size();
    if (!waiting.empty()) {
        whose = waiting.front();
        waiting.pop_front();
        hasDrawn = false;
        whose->scheduleRedraw();
        end.start();
    }
    act();
}

// Without a turn nobody waits any more, but some may have gone meanwhile.
void FrameTurns::act()
{
    std::vector<Awaited> all = std::exchange(awaited, {}), due;
    for (Awaited& one : all)
        (one.turns == 0U || !end.isActive() ? due : awaited).push_back(std::move(one));
    for (const Awaited& one : due)
        one.act();
}

} // namespace strandview
