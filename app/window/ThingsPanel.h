// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_THINGSPANEL_H
#define STRANDVIEW_APP_WINDOW_THINGSPANEL_H

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

#include <Inventor/SbBox3f.h>
#include <QWidget>

#include "request/ThingLook.h"
#include "scene/Thing.h"

class QTreeView;

namespace strandview {

class DataScene;
class ThingsModel;

/// The tree of what is shown, with strands: a tick hides and shows each, a double click edits its
/// name or chooses its colour, buttons, keys and a menu do what can be done with all that are
/// chosen.
class ThingsPanel : public QWidget
{
    Q_OBJECT

public:
    using Things = std::set<Thing>;

    explicit ThingsPanel(QWidget* parent);

    /// The scene outlives the panel, or another one is given; null for nothing. What is chosen
    /// stays so in the same files.
    void setScene(DataScene* shown, bool isOfSameFiles);
    /// The scene shows another frame.
    void follow();

    // Each may be empty
    std::function<void(const SbBox3f&)> onCentre; ///< of the box in the scene
    std::function<void()> onChosen;               ///< other things
    /// How things are to look then; who hears of it lets the scene show it, and then the panel.
    std::function<void(const ThingLooks& next)> onLooks;

    /// Those that are there.
    Things chosen() const;
    /// The same with the names that they are known by.
    std::map<ThingId, std::string> namesOfChosen() const;
    /// Instead of what is chosen; nothing of nothing.
    void choose(const std::optional<Thing>& thing);
    /// What was clicked in the view, the most special that is there; nothing where there is
    /// nothing. It is all of its thing that is chosen first, and the part where that thing, or
    /// another part of it, is chosen alone already. `beside` lets others be chosen still, and what
    /// is chosen already no more.
    void pick(const std::optional<Thing>& part, bool beside);

    /// All columns.
    QSize sizeHint() const override { return {280, 320}; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    void buildButtons();
    void addButton(int row, int column, const char* text, const char* name, const char* help,
                   std::function<void()> does);
    void centre(const Things& things);
    void chooseColour(const Things& things);
    void rename(const Thing& thing);
    void toggle(const Thing& thing);
    void offerMenu(const QPoint& place);

    ThingsModel* model;
    QTreeView* list;
};

} // namespace strandview

#endif
