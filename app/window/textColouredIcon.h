// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_TEXTCOLOUREDICON_H
#define STRANDVIEW_APP_WINDOW_TEXTCOLOUREDICON_H

#include <QIcon>

namespace strandview {

/// The shapes of an icon of one colour, in the colour that the texts of buttons have on this
/// desktop, dark or light, also after that has changed.
QIcon textColouredIcon(const QIcon& shapes);

} // namespace strandview

#endif
