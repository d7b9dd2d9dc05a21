// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_TEXTBOXES_H
#define STRANDVIEW_APP_WINDOW_TEXTBOXES_H

#include <string>

class QString;
class QWidget;

namespace strandview {

/// Waits until the user has read it. Not even where a file's name or text looks like rich text
/// is it shown as such.
void tellFailure(QWidget* parent, const QString& title, const std::string& failure);

/// Whether the user wants later starts to begin with the look that there is, having read what is
/// kept and in which file.
bool askForDefaults(QWidget* parent, const std::string& file);

/// A box that stays beside the window, as large as its text, or as the screen; then its text
/// can be scrolled.
void showText(QWidget* parent, const QString& title, const QString& text);

/// The help page as rich text.
QString keyPage();

} // namespace strandview

#endif
