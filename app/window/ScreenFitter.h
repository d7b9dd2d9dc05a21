// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SCREENFITTER_H
#define STRANDVIEW_APP_WINDOW_SCREENFITTER_H

#include <QObject>

class QWidget;

namespace strandview {

/// Keeps a window that comes up on the screen as a whole, title bar and all, be it small
/// or its pixels large. Afterwards the window is where the user wants it.
class ScreenFitter : public QObject
{
public:
    /// Of a window that is not shown yet; makes it small enough with a frame as is usual.
    explicit ScreenFitter(QWidget& window);

    /// Waits for the window to come up in the frame that it is given.
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    QWidget& window;
};

} // namespace strandview

#endif
