// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/decimalComma.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>

namespace strandview {

namespace {

// A spin box refuses a comma before anybody hears of it: so its key becomes another.
class CommaKey : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* field, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress || static_cast<QKeyEvent*>(event)->text() != ",")
            return false;
        QKeyEvent point(QEvent::KeyPress, Qt::Key_Period, Qt::NoModifier, ".");
        QApplication::sendEvent(field, &point);
        return true;
    }
};

} // namespace

void acceptDecimalComma(QLineEdit& field)
{
    QObject::connect(&field, &QLineEdit::textEdited, &field, [&field](const QString& text) {
        if (!text.contains(','))
            return;
        const int cursor = field.cursorPosition();
        field.setText(QString(text).replace(',', '.'));
        field.setCursorPosition(cursor);
        field.setModified(true); // by the user, whose text this is
    });
}

void acceptDecimalComma(QAbstractSpinBox& field) { field.installEventFilter(new CommaKey(&field)); }

} // namespace strandview
