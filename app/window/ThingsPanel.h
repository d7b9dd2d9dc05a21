// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_THINGSPANEL_H
#define STRANDVIEW_APP_WINDOW_THINGSPANEL_H

#include <functional>

#include <Inventor/SbBox3f.h>
#include <QWidget>

class QPushButton;
class QTreeView;

namespace strandview {

class DataScene;
class ThingsModel;

/// The list of what is shown: a tick hides and shows each, a double click edits its name or chooses
/// its colour, buttons and a menu bring it into the middle of the view.
class ThingsPanel : public QWidget
{
    Q_OBJECT

public:
    explicit ThingsPanel(QWidget* parent);

    /// The scene outlives the panel, or another one is given; null for nothing.
    void setScene(DataScene* shown);
    /// The scene shows another frame.
    void follow();

    // Each may be empty
    std::function<void(const SbBox3f&)> onCentre; ///< of the box in the scene
    std::function<void()> onChanged;              ///< the look of something that is shown
    /// All columns.
    QSize sizeHint() const override { return {260, 300}; }

private:
    void addButton(const char* text, const char* name, std::function<void()> does);
    int chosenRow() const;       ///< -1 for none
    bool isThere(int row) const; ///< in the frame that is shown
    void centre(int row);
    void chooseColour(int row);
    void offerMenu(const QPoint& place);

    ThingsModel* model;
    QTreeView* list;
};

} // namespace strandview

#endif
