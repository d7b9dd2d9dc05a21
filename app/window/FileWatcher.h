// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_FILEWATCHER_H
#define STRANDVIEW_APP_WINDOW_FILEWATCHER_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include <QElapsedTimer>
#include <QFileSystemWatcher>
#include <QFutureWatcher>
#include <QObject>
#include <QTimer>

#include "window/FileStamps.h"

namespace strandview {

/// Tells when files should be read again: once they were written to, in place or as new files of
/// the same names, and a moment has passed without more of it.
///
/// The system tells of changes; and because not every file system does, the files are looked at
/// each second, too, in a thread of their own. In the thread of the window.
class FileWatcher : public QObject
{
    Q_OBJECT

public:
    /// Files that stay the same so long are whole.
    static constexpr std::chrono::milliseconds QUIET{200};
    /// Files that are always written to are read all the same.
    static constexpr std::chrono::milliseconds LONGEST_WAIT{2000};
    /// Until what could not be read is tried again: the first time, and at most. Each pause is
    /// twice the one before.
    static constexpr std::chrono::milliseconds FIRST_PAUSE{500}, LONGEST_PAUSE{60000};

    explicit FileWatcher(QObject* parent = nullptr);
    /// Waits for the look that is being taken.
    ~FileWatcher() override;

    /// Asked before changed() is emitted, if it is set; while it says no, that waits.
    std::function<bool()> mayRead;

    /// Watches files, and the files of series in folders, which had these stamps when they were
    /// read.
    void watch(const std::vector<std::string>& watchedPaths, const FileStamps& asRead);
    /// The same files could not be read when they had these stamps: changed() will come again, also
    /// if nothing changes.
    void retry(const FileStamps& asTried);
    void stop();
    bool isWatching() const { return !paths.empty(); }

    /// Files that get longer are no change, because somebody else follows them.
    void leaveGrowth(bool leaves) { leavesGrowth = leaves; }

signals:
    /// They should be read now.
    void changed();
    /// A file is waited for, told once each time that it is gone.
    void missed(const QString& path);

private:
    void look();
    void compare(const FileStamps& now);
    bool hasChanged(const FileStamps& now) const;
    void ask(const FileStamps& now);
    void lookWithin(std::chrono::milliseconds time);
    void hearOfChanges();

    std::vector<std::string> paths; ///< none: nothing is watched
    FileStamps known;               ///< of what was read last
    FileStamps last;                ///< when they were looked at last
    bool leavesGrowth = false;
    bool isMissed = false;                   ///< and that was told
    std::chrono::milliseconds pause{0};      ///< of what could not be read
    QElapsedTimer sinceChange, sinceFailure; ///< valid while there is something to do

    QFileSystemWatcher system;
    QTimer timer; ///< until the next look
    QFutureWatcher<FileStamps> work;
    bool isOutdated = false; ///< the look that is being taken is of other files
};

} // namespace strandview

#endif
