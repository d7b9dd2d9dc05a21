// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_COLOURDIALOG_H
#define STRANDVIEW_APP_WINDOW_COLOURDIALOG_H

class QColorDialog;

namespace strandview {

/// Lets a colour be typed as "#rrggbb" as soon as the dialog is there: its field has the keyboard,
/// and what is typed stands instead of what is in it. To be called before it is shown; a dialog of
/// the desktop's own stays as it is.
void letTypeColour(QColorDialog& dialog);

} // namespace strandview

#endif
