// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_DECIMALCOMMA_H
#define STRANDVIEW_APP_WINDOW_DECIMALCOMMA_H

class QAbstractSpinBox;
class QLineEdit;

namespace strandview {

// The library's fields hold numbers with a decimal point, whatever the locale. Who types
// or pastes a comma, as many keypads give one, sees it become a point.

void acceptDecimalComma(QLineEdit& field);
/// Of what is typed.
void acceptDecimalComma(QAbstractSpinBox& field);

} // namespace strandview

#endif
