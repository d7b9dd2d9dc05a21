// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_RECENTFILES_H
#define STRANDVIEW_APP_WINDOW_RECENTFILES_H

#include <functional>
#include <string>
#include <vector>

#include <QStringList>

class QMenu;

namespace strandview {

/// The files that were opened last, kept in the user's settings: eight, the newest first.

/// Without standard input, "-", which is no file to open again.
QStringList namesOf(const std::vector<std::string>& files);
/// Puts the files at the top.
void rememberFiles(const QStringList& files);
/// Fills the menu with an entry for each of them.
void offerRecentFiles(QMenu& menu, const std::function<void(const QStringList&)>& open);

} // namespace strandview

#endif
