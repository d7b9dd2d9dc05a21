// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ViewCaption.h"

#include <utility>

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QToolButton>

#include "window/textColouredIcon.h"

namespace strandview {

ViewCaption::ViewCaption(QWidget* parent) : QWidget(parent), label(new QLabel(this))
{
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    label->setAlignment(Qt::AlignCenter);
    label->setTextFormat(Qt::PlainText);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // names are long
    layout->addWidget(label, 1);
    setMinimumHeight(fontMetrics().height() + 6); // with a button or without
}

void ViewCaption::setText(const std::string& next)
{
    if (next == text)
        return;
    text = next;
    label->setToolTip(QString::fromStdString(text));
    if (closeButton)
        closeButton->setAccessibleName("Close the view of " + QString::fromStdString(text));
    showWhatFits();
}

void ViewCaption::setActive(bool active)
{
    QFont letters = label->font();
    if (letters.bold() == active)
        return;
    letters.setBold(active);
    label->setFont(letters);
    showWhatFits();
}

void ViewCaption::addCloseButton(std::function<void()> close)
{
    closeButton = new QToolButton(this);
    closeButton->setObjectName("closeView");
    closeButton->setAutoRaise(true);
    closeButton->setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
    closeButton->setIcon(textColouredIcon(style()->standardIcon(QStyle::SP_TitleBarCloseButton)));
    const int side = fontMetrics().height();
    closeButton->setIconSize({side * 2 / 3, side * 2 / 3});
    closeButton->setToolTip("Closes this view");
    layout()->addWidget(closeButton);
    connect(closeButton, &QToolButton::clicked, this, [act = std::move(close)] { act(); });
}

void ViewCaption::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    showWhatFits();
}

void ViewCaption::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        showWhatFits();
}

void ViewCaption::showWhatFits()
{
    const int room = width() - (closeButton ? closeButton->sizeHint().width() : 0);
    label->setText(
        label->fontMetrics().elidedText(QString::fromStdString(text), Qt::ElideMiddle, room));
}

} // namespace strandview
