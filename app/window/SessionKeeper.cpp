// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SessionKeeper.h"

#include <QtConcurrent>

#include "session/fingerprint.h"
#include "session/sessionFile.h"

namespace strandview {

SessionKeeper::SessionKeeper(QObject* parent) : QObject(parent)
{
    connect(&saving, &QFutureWatcherBase::finished, this,
            [this] { emit saved(beingSaved, saving.result()); });
    connect(&finding, &QFutureWatcherBase::finished, this, [this] {
        const std::vector<std::string> files = finding.result();
        if (!files.empty())
            emit foundChanged(files);
    });
}

SessionKeeper::~SessionKeeper()
{
    isStopped = true;
    saving.waitForFinished();
    finding.waitForFinished();
}

void SessionKeeper::save(const Session& session)
{
    if (isSaving())
        return;
    beingSaved = session;
    saving.setFuture(QtConcurrent::run(
        [this, session] { return saveSession(session, [this] { return !isStopped; }); }));
}

void SessionKeeper::findChanged(const Session& session)
{
    finding.setFuture(QtConcurrent::run([this, files = session.files] {
        return strandview::findChanged(files, [this] { return !isStopped; });
    }));
}

} // namespace strandview
