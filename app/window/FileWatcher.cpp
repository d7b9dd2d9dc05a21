// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/FileWatcher.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>
#include <QtConcurrent>

namespace strandview {

namespace {

// Where the system tells nothing, as of disks of other machines.
const std::chrono::milliseconds INTERVAL(1000);

} // namespace

FileWatcher::FileWatcher(QObject* parent) : QObject(parent)
{
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, &FileWatcher::look);
    connect(&work, &QFutureWatcherBase::finished, this, [this] {
        const bool isOfOthers = std::exchange(isOutdated, false);
        if (!isWatching())
            return;
        if (isOfOthers)
            lookWithin(QUIET);
        else
            compare(work.result());
    });
    const auto hear = [this] { lookWithin(QUIET); };
    connect(&system, &QFileSystemWatcher::fileChanged, this, hear);
    connect(&system, &QFileSystemWatcher::directoryChanged, this, hear);
}

FileWatcher::~FileWatcher()
{
    work.disconnect(this);
    work.waitForFinished();
}

void FileWatcher::watch(const std::vector<std::string>& watchedPaths, const FileStamps& asRead)
{
    stop();
    if (watchedPaths.empty())
        return;
    paths = watchedPaths;
    known = last = asRead;
    hearOfChanges();
    lookWithin(QUIET);
}

void FileWatcher::retry(const FileStamps& asTried)
{
    if (!isWatching())
        return;
    known = asTried;
    pause = std::clamp(2 * pause, FIRST_PAUSE, LONGEST_PAUSE);
    sinceFailure.start();
    lookWithin(QUIET);
}

void FileWatcher::stop()
{
    paths.clear();
    timer.stop();
    isOutdated = work.isRunning();
    isMissed = false;
    pause = std::chrono::milliseconds(0);
    sinceChange.invalidate();
    sinceFailure.invalidate();
    for (const QStringList& heard : {system.files(), system.directories()}) {
        if (!heard.isEmpty())
            system.removePaths(heard);
    }
}

// Of a file also its folder: a new one of the same name is another file to the system.
void FileWatcher::hearOfChanges()
{
    QStringList wanted;
    for (const std::string& path : paths) {
        const QFileInfo info(QString::fromStdString(path));
        for (const QString& each : {info.filePath(), info.absolutePath()}) {
            if (QFileInfo::exists(each))
                wanted.append(each);
        }
    }
    for (const QStringList& heard : {system.files(), system.directories()}) {
        for (const QString& path : heard)
            wanted.removeAll(path);
    }
    wanted.removeDuplicates();
    if (!wanted.isEmpty())
        system.addPaths(wanted);
}

void FileWatcher::lookWithin(std::chrono::milliseconds time)
{
    if (isWatching() && !work.isRunning() &&
        (!timer.isActive() || timer.remainingTimeAsDuration() > time))
        timer.start(time);
}

void FileWatcher::look()
{
    if (isWatching() && !work.isRunning())
        work.setFuture(QtConcurrent::run(stampsOf, paths));
}

void FileWatcher::compare(const FileStamps& now)
{
    const bool isQuiet = now == std::exchange(last, now);
    hearOfChanges();
    if (now.missing) {
        if (!std::exchange(isMissed, true))
            emit missed(QString::fromStdString(*now.missing));
        sinceChange.invalidate();
        lookWithin(INTERVAL);
        return;
    }
    isMissed = false;
    if (!hasChanged(now)) {
        if (leavesGrowth)
            known = now;
        sinceChange.invalidate();
        if (sinceFailure.isValid() && sinceFailure.elapsed() >= pause.count())
            ask(now);
        else
            lookWithin(sinceFailure.isValid() ? QUIET : INTERVAL);
        return;
    }
    if (!sinceChange.isValid())
        sinceChange.start();
    if (isQuiet || sinceChange.elapsed() >= std::max(LONGEST_WAIT, pause).count())
        ask(now);
    else
        lookWithin(QUIET);
}

bool FileWatcher::hasChanged(const FileStamps& now) const
{
    return leavesGrowth ? !haveOnlyGrown(known, now) : !(now == known);
}

void FileWatcher::ask(const FileStamps& now)
{
    if (mayRead && !mayRead()) {
        lookWithin(QUIET);
        return;
    }
    known = now;
    sinceChange.invalidate();
    sinceFailure.invalidate();
    lookWithin(INTERVAL);
    emit changed();
}

} // namespace strandview
