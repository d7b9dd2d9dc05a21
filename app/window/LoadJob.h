// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_LOADJOB_H
#define STRANDVIEW_APP_WINDOW_LOADJOB_H

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QObject>
#include <QTimer>

#include <strandview/formats/ReadReport.h>

#include "scene/SceneLoader.h"
#include "window/FileStamps.h"

namespace strandview {

class DataScene;
struct StyleRequest;

/// What a loader reads beside the files that it shows.
std::vector<std::string> referenceOf(const StyleRequest& request);

/// Loads the scene of some files while a window goes on answering.
///
/// What needs no node runs in a thread of its own. Coin is used in one thread alone, so the
/// nodes are made in that of the window, after it; between one and the next, events are
/// processed.
class LoadJob : public QObject
{
    Q_OBJECT

public:
    /// As prepareScene(), called in the other thread.
    using Loader = std::function<SceneMaker(const std::vector<std::string>& files,
                                            ReadReport& report, Progress& progress)>;

    /// What is loaded sooner is shown without a word about loading it.
    static constexpr std::chrono::milliseconds PATIENCE{200};

    /// Begins at once. finished() comes when events are processed, not before. The loader may read
    /// other files, too.
    LoadJob(const std::vector<std::string>& files, const Loader& loader,
            const std::vector<std::string>& others = {});
    /// Stops it, and waits for the thread.
    ~LoadJob() override;

    const std::vector<std::string>& getFiles() const { return files; }
    /// Of all of them, just before they were read; once the thread has ended.
    const FileStamps& getStamps() const;

    /// Waits for the thread, without processing events, but not longer than that; says
    /// whether it has ended, so that finish() can be called.
    bool waitFor(std::chrono::milliseconds patience);
    /// Why the thread has ended without anything to make nodes of; nothing if it has not.
    std::string getFailure();
    /// Makes the nodes, for which the thread must have ended, and emits finished().
    void finish();

    /// Gives the job up: finished() will not come any more. The thread, which is not waited
    /// for, ends when it notices; then the job deletes itself, at the latest with that parent.
    void abandonTo(QObject* parent);

signals:
    /// What the work is at has changed.
    void progressed(const QString& text);
    /// The scene, whose reference count is zero; or null, with report.error.
    void finished(DataScene* scene, const ReadReport& report);

private:
    struct Shared;
    class NodeProgress;

    void look();
    DataScene* makeScene();

    const std::vector<std::string> files;
    const std::unique_ptr<Shared> shared; // with the thread
    QTimer timer;
    bool making = false; // nodes, or done
    bool abandoned = false;
};

} // namespace strandview

#endif
