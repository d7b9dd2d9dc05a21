// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/SessionKeeper.h"

#include <utility>

#include <QtConcurrent>

#include "request/print.h"
#include "session/fingerprint.h"
#include "session/sessionFile.h"

namespace strandview {

SessionKeeper::SessionKeeper(QObject* parent) : QObject(parent)
{
    connect(&saving, &QFutureWatcherBase::finished, this, [this] {
        const Session ended = std::exchange(beingSaved, {});
        const std::string failure = saving.result();
        isSaving = false;
        if (next)
            begin(*std::exchange(next, std::nullopt));
        emit saved(ended, failure);
    });
    connect(&finding, &QFutureWatcherBase::finished, this, [this] {
        const std::vector<std::string> files = finding.result();
        if (!files.empty())
            emit foundChanged(files);
    });
}

SessionKeeper::~SessionKeeper()
{
    *stopsFinding = true;
    saving.waitForFinished(); // who has saved and closes has it saved
    const auto tellFailed = [](const std::string& failure) {
        if (!failure.empty()) // there is no window any more that could
            tell("the session is not saved: " + failure);
    };
    if (isSaving)
        tellFailed(saving.result());
    if (next)
        tellFailed(saveSession(*next, [] { return true; }));
}

void SessionKeeper::save(const Session& session)
{
    if (isSaving)
        next = session;
    else
        begin(session);
}

void SessionKeeper::begin(const Session& session)
{
    isSaving = true;
    beingSaved = session;
    saving.setFuture(
        QtConcurrent::run([session] { return saveSession(session, [] { return true; }); }));
}

void SessionKeeper::findChanged(const Session& session)
{
    *stopsFinding = true;
    stopsFinding = std::make_shared<std::atomic<bool>>(false);
    finding.setFuture(QtConcurrent::run([files = session.files, stop = stopsFinding] {
        return strandview::findChanged(files, [stop] { return !*stop; });
    }));
}

} // namespace strandview
