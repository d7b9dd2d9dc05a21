// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_MENUS_H
#define STRANDVIEW_APP_WINDOW_MENUS_H

#include <functional>
#include <map>
#include <vector>

#include "window/actions.h"

class QAction;
class QMenu;
class QMenuBar;
class QToolBar;

namespace strandview {

/// The menus and the tool bar of a window, from the table of actions. Keys work in the window that
/// the menu bar is in. The Qt objects belong to the bars.
class Menus
{
public:
    /// What is done; `on` is the new state of what can be checked.
    using Perform = std::function<void(const Deed&, bool on)>;

    Menus(QMenuBar& bar, QToolBar& tools, Perform performs);

    QAction* operator[](Command command) const { return commands.at(command); }
    /// Enables what needs a scene, or disables it.
    void followScene(bool hasScene);
    /// The same of what needs several frames.
    void followSeries(bool hasFrames);

private:
    void addGroup(const ActionGroup& group, QMenuBar& bar, QToolBar& tools);
    QAction* makeAction(const Action& action, QMenu& menu);

    Perform perform;
    std::map<Command, QAction*> commands;
    std::vector<QAction*> sceneActions, seriesActions;
};

} // namespace strandview

#endif
