// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SCROLLPAST_H
#define STRANDVIEW_APP_WINDOW_SCROLLPAST_H

class QWidget;

namespace strandview {

/// Lets the wheel scroll what a control stands in: it turns lists, numbers and sliders of the
/// control, or the control itself, only while those have the keyboard, which it does not give them.
/// Of those that are there when this is called.
void scrollPast(QWidget& control);

} // namespace strandview

#endif
