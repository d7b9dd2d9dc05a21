// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/recentFiles.h"

#include <QAction>
#include <QFileInfo>
#include <QMenu>
#include <QSettings>

namespace strandview {

namespace {

const int RECENT_FILE_COUNT = 8;
const char* const RECENT_FILES = "recentFiles";

} // namespace

QStringList namesOf(const std::vector<std::string>& files)
{
    QStringList names;
    for (const std::string& file : files) {
        if (file != "-")
            names.append(QString::fromStdString(file));
    }
    return names;
}

void rememberFiles(const QStringList& files)
{
    QSettings settings;
    QStringList recent = settings.value(RECENT_FILES).toStringList();
    for (const QString& file : files) {
        const QString path = QFileInfo(file).absoluteFilePath();
        if (!QFileInfo(path).isFile()) // a pipe cannot be opened again
            continue;
        recent.removeAll(path);
        recent.prepend(path);
    }
    settings.setValue(RECENT_FILES, QStringList(recent.mid(0, RECENT_FILE_COUNT)));
}

void offerRecentFiles(QMenu& menu, const std::function<void(const QStringList&)>& open)
{
    menu.clear();
    for (const QString& file : QSettings().value(RECENT_FILES).toStringList()) {
        // A single & would underline the letter after it.
        menu.addAction(QString(file).replace('&', "&&"), &menu, [open, file] { open({file}); });
    }
    if (menu.isEmpty())
        menu.addAction("None yet")->setEnabled(false);
}

} // namespace strandview
