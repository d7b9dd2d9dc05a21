// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_LOADBAR_H
#define STRANDVIEW_APP_WINDOW_LOADBAR_H

#include <QWidget>

class QAction;
class QLabel;

namespace strandview {

/// The part of the status bar that says what is being loaded and how far it is, with a button
/// that stops it. Hidden at first.
class LoadBar : public QWidget
{
public:
    /// The button does what the action does.
    LoadBar(QAction* stop, QWidget* parent);

    void setText(const QString& text);

private:
    QLabel* label;
};

} // namespace strandview

#endif
