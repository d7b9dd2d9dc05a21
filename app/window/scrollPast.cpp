// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/scrollPast.h"

#include <QAbstractSlider>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QEvent>

namespace strandview {

namespace {

// What is not taken is offered to the parent, and at last to the area that scrolls.
class WheelPast : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Wheel || static_cast<QWidget*>(watched)->hasFocus())
            return false;
        event->ignore();
        return true;
    }
};

bool takesWheel(const QWidget& widget)
{
    return qobject_cast<const QAbstractSlider*>(&widget) ||
           qobject_cast<const QAbstractSpinBox*>(&widget) ||
           qobject_cast<const QComboBox*>(&widget);
}

} // namespace

void scrollPast(QWidget& control)
{
    QList<QWidget*> parts = control.findChildren<QWidget*>();
    parts.append(&control);
    for (QWidget* part : parts) {
        if (!takesWheel(*part))
            continue;
        part->setFocusPolicy(Qt::StrongFocus);
        part->installEventFilter(new WheelPast(part));
    }
}

} // namespace strandview
