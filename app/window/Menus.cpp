// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/Menus.h"

#include <utility>

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QStyle>
#include <QToolBar>

namespace strandview {

namespace {

QIcon iconOf(const Action& action, const QMenu& menu)
{
    if (action.deed == Deed(Command::OPEN))
        return menu.style()->standardIcon(QStyle::SP_DialogOpenButton);
    if (action.deed == Deed(Command::SAVE_PICTURE))
        return menu.style()->standardIcon(QStyle::SP_DialogSaveButton);
    return {};
}

} // namespace

Menus::Menus(QMenuBar& bar, QToolBar& tools, Perform performs) : perform(std::move(performs))
{
    for (const ActionGroup& group : actions())
        addGroup(group, bar, tools);
}

void Menus::addGroup(const ActionGroup& group, QMenuBar& bar, QToolBar& tools)
{
    QMenu* menu = nullptr;
    std::map<std::string, QMenu*> submenus;
    for (const Action& action : group.actions) {
        if (!action.text)
            continue;
        if (!menu)
            menu = bar.addMenu(group.title);
        QMenu* place = menu;
        if (action.submenu) {
            QMenu*& submenu = submenus[action.submenu];
            if (!submenu) {
                if (submenus.size() == 1)
                    menu->addSeparator();
                submenu = menu->addMenu(action.submenu);
            }
            place = submenu;
        }
        if (action.traits & AFTER_A_LINE)
            place->addSeparator();
        QAction* made = makeAction(action, *place);
        if (action.traits & IN_TOOL_BAR)
            tools.addAction(made);
        if (action.traits & BEFORE_TOOL_LINE)
            tools.addSeparator();
    }
}

QAction* Menus::makeAction(const Action& action, QMenu& menu)
{
    const QString keys = action.keys;
    const bool isNamed = action.traits & KEY_OF_VIEWER;
    const QString text = action.text + (isNamed ? '\t' + keys : QString());
    QAction* made =
        action.traits & WITH_SUBMENU ? menu.addMenu(text)->menuAction() : menu.addAction(text);
    made->setIcon(iconOf(action, menu));
    made->setCheckable(action.traits & CHECKABLE);
    if (!isNamed)
        made->setShortcut(QKeySequence(keys));
    if (action.shortText)
        made->setIconText(action.shortText);
    if (action.traits & NEEDS_SCENE)
        sceneActions.push_back(made);
    if (const auto* command = std::get_if<Command>(&action.deed))
        commands[*command] = made;
    if (!(action.traits & WITH_SUBMENU))
        QObject::connect(made, &QAction::triggered,
                         [this, deed = action.deed](bool on) { perform(deed, on); });
    return made;
}

void Menus::followScene(bool hasScene)
{
    for (QAction* action : sceneActions)
        action->setEnabled(hasScene);
}

} // namespace strandview
