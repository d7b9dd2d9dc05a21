// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/LoadBar.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace strandview {

LoadBar::LoadBar(QAction* stop, QWidget* parent) : QWidget(parent), label(new QLabel(this))
{
    label->setTextFormat(Qt::PlainText);
    label->setMinimumWidth(1); // so that long texts do not widen the window
    auto* button = new QToolButton(this);
    button->setDefaultAction(stop);
    button->setFocusPolicy(Qt::NoFocus); // the keyboard stays with the view
    // No higher than a line of text: a higher status bar makes the view smaller.
    button->setMaximumHeight(label->fontMetrics().height() + 2);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(label, 1);
    layout->addWidget(button);
    hide();
}

void LoadBar::setText(const QString& text)
{
    label->setText(text);
    label->setToolTip(text);
}

} // namespace strandview
