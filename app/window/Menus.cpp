// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/Menus.h"

#include <utility>

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <QStyle>
#include <QToolBar>

#include "window/textColouredIcon.h"

namespace strandview {

namespace {

QIcon iconOf(const Action& action, const QMenu& menu)
{
    static const std::map<Command, QStyle::StandardPixmap> icons{
        {Command::OPEN, QStyle::SP_DialogOpenButton},
        {Command::SAVE_PICTURE, QStyle::SP_DialogSaveButton},
        {Command::PLAY, QStyle::SP_MediaPlay},
        {Command::FIRST_FRAME, QStyle::SP_MediaSkipBackward},
        {Command::FRAME_BACK, QStyle::SP_MediaSeekBackward},
        {Command::FRAME_FORWARD, QStyle::SP_MediaSeekForward},
        {Command::LAST_FRAME, QStyle::SP_MediaSkipForward}};
    const auto* command = std::get_if<Command>(&action.deed);
    const auto icon = command ? icons.find(*command) : icons.end();
    if (icon == icons.end())
        return {};
    const QIcon ofStyle = menu.style()->standardIcon(icon->second);
    const bool hasColours = icon->first == Command::OPEN ||
                            icon->first == Command::SAVE_PICTURE; // the others are black
    return hasColours ? ofStyle : textColouredIcon(ofStyle);
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
        const bool opensSubmenu = action.submenu && submenus.count(action.submenu) == 0;
        if (action.submenu && !opensSubmenu)
            place = submenus[action.submenu];
        if (action.traits & AFTER_A_LINE)
            place->addSeparator();
        if (opensSubmenu)
            place = submenus[action.submenu] = menu->addMenu(action.submenu);
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
    if (action.traits & NEEDS_SERIES)
        seriesActions.push_back(made);
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

void Menus::followSeries(bool hasFrames)
{
    for (QAction* action : seriesActions)
        action->setEnabled(hasFrames);
}

} // namespace strandview
