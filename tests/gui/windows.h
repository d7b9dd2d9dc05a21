// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_WINDOWS_H
#define STRANDVIEW_TESTS_WINDOWS_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <QApplication>
#include <QGridLayout>
#include <QString>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <gtest/gtest.h>

/// Makes the application object, and registers the library's classes, once per program.
void initWindowsOnce();

/// Shows a window and waits until keys reach it.
[[nodiscard]] bool showActive(QWidget& window);

/// Puts the keyboard's focus on a widget of the active window, and says whether it is there.
[[nodiscard]] bool focus(QWidget& widget);

/// Types a text over the one that a field holds.
void typeOver(QWidget& field, const QString& text);

/// A grid place as a layout tells it.
struct Place
{
    int row = -1;
    int column = -1;
    int rows = -1;
    int columns = -1;

    bool operator==(const Place& other) const
    {
        return row == other.row && column == other.column && rows == other.rows &&
               columns == other.columns;
    }
};

std::ostream& operator<<(std::ostream& stream, const Place& place);

Place placeOf(const QGridLayout& grid, QWidget* widget);

/// The children of a shown window that are smaller than they need to be, reach beyond
/// it, or lie over one another.
std::vector<std::string> badlyPlaced(const QWidget& window);

/// Runs `trigger`, which opens a modal Dialog, and `act` while it is open, then rejects
/// it if it is still there. False if none was open.
template <typename Dialog>
[[nodiscard]] bool duringDialog(const std::function<void()>& trigger,
                                const std::function<void(Dialog&)>& act)
{
    bool found = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        timer.stop();
        found = true;
        EXPECT_TRUE(showActive(*dialog));
        act(*dialog);
        if (dialog->isVisible())
            dialog->reject();
    });
    timer.start(20);
    trigger();
    return found;
}

/// A descendant by its object name, there or not.
template <typename Widget>
Widget* child(const QWidget& parent, const char* name)
{
    auto* widget = parent.findChild<Widget*>(name);
    EXPECT_NE(widget, nullptr) << name;
    return widget;
}

// So that failures read as text.
void PrintTo(const QString& text, std::ostream* stream);

#endif
