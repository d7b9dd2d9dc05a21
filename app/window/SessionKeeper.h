// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_SESSIONKEEPER_H
#define STRANDVIEW_APP_WINDOW_SESSIONKEEPER_H

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <QFutureWatcher>
#include <QObject>

#include "request/Session.h"

namespace strandview {

/// Saves sessions, and finds which files have changed since, in a thread of its own: the content
/// of all files is read for it.
class SessionKeeper : public QObject
{
    Q_OBJECT

public:
    explicit SessionKeeper(QObject* parent = nullptr);
    /// Stops what is at work. What is being saved is waited for.
    ~SessionKeeper() override;

    /// Under session.name. While another one is being saved it waits, the last of several alone.
    void save(const Session& session);
    /// Of the files of this session alone: what was asked for before is not told any more.
    void findChanged(const Session& session);

signals:
    /// One line that says what failed, or nothing.
    void saved(const strandview::Session& session, const std::string& failure);
    /// A line for each file; there is one at least.
    void foundChanged(const std::vector<std::string>& files);

private:
    using Flag = std::shared_ptr<std::atomic<bool>>;

    void begin(const Session& session);

    QFutureWatcher<std::string> saving;
    QFutureWatcher<std::vector<std::string>> finding;
    bool isSaving = false;
    Session beingSaved;
    std::optional<Session> next;
    // Tells a thread to stop, of which one that nobody waits for may still be at work.
    Flag stopsFinding = std::make_shared<std::atomic<bool>>(false);
};

} // namespace strandview

#endif
