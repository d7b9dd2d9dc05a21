// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_NAMEDVIEWS_H
#define STRANDVIEW_APP_WINDOW_NAMEDVIEWS_H

#include <cstddef>
#include <functional>
#include <vector>

#include <QObject>
#include <QString>

#include "request/NamedView.h"

class QMenu;
class QWidget;

namespace strandview {

/// The views that a window's user keeps by names, in a menu that shows them again: the first nine
/// by Alt and their number, too. No two have the same name.
class NamedViews : public QObject
{
    Q_OBJECT

public:
    using Views = std::vector<NamedView>;

    /// The menu is filled anew whenever a view is kept, named or deleted. Dialogs belong to the
    /// window.
    NamedViews(QMenu& viewsMenu, QWidget* ofWindow);

    std::function<void(const CameraNumbers&)> onShow; ///< a view was chosen; may be empty

    const Views& get() const { return views; }
    /// Instead of those that are kept; is no change of the user's.
    void set(Views kept);

    /// Asks for a name and keeps the camera by it, instead of the view that has that name.
    void askToKeep(const CameraNumbers& camera);
    /// Lets the user rename and delete those that there are.
    void edit();

    // What the user's changes come to

    /// A view of that name is shown from there from now on. An empty name is none.
    void keep(const QString& name, const CameraNumbers& camera);
    /// Whether it could be: not to nothing, nor to a name that another one has.
    bool rename(std::size_t index, const QString& name);
    void remove(std::size_t index);

signals:
    /// The user has kept, renamed or deleted one.
    void changed();
    /// There are others than before, not by the user.
    void replaced();

private:
    void change(Views next);
    void put(Views next);
    void fillMenu();
    Views::iterator find(const std::string& name);

    Views views;
    QMenu& menu;
    QWidget* const window;
};

} // namespace strandview

#endif
