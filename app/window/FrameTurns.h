// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_FRAMETURNS_H
#define STRANDVIEW_APP_WINDOW_FRAMETURNS_H

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

#include <QTimer>

class SoQtRenderArea;

namespace strandview {

/// Of views that share it, one draws a frame in each turn of the event loop: Coin lets all that
/// changed draw in a row, and the window does not answer meanwhile.
class FrameTurns : public QObject
{
public:
    FrameTurns();

    /// Whether that view draws now. If not, it is asked again in a turn to come, before all that
    /// want one later.
    bool take(SoQtRenderArea& view);
    /// Acts once, when those have drawn that want to in this turn or wait for theirs.
    void whenDrawn(std::function<void()> act);
    /// Before it goes.
    void forget(const SoQtRenderArea& view);

private:
    struct Awaited
    {
        std::optional<std::size_t> turns; ///< left until then; open in the turn that it begins in
        std::function<void()> act;
    };

    void begin();
    void act();

    QTimer end; ///< of this turn, as long as it belongs to one
    SoQtRenderArea* whose = nullptr;
    bool hasDrawn = false;               ///< in this turn
    std::deque<SoQtRenderArea*> waiting; ///< the longest first
    std::vector<Awaited> awaited;
};

} // namespace strandview

#endif
