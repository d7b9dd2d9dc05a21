// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/colourDialog.h"

#include <QAbstractSpinBox>
#include <QColorDialog>
#include <QLineEdit>

namespace strandview {

void letTypeColour(QColorDialog& dialog)
{
    for (QLineEdit* const field : dialog.findChildren<QLineEdit*>()) {
        if (qobject_cast<QAbstractSpinBox*>(field->parentWidget()))
            continue;
        field->setFocus();
        field->selectAll();
    }
}

} // namespace strandview
