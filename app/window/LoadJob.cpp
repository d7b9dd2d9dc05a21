// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/LoadJob.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

#include <QCoreApplication>

#include "request/StyleRequest.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"

namespace strandview {

namespace {

// How often the window asks what the thread is at, and how long the making of nodes keeps
// events waiting: too short to be noticed.
const std::chrono::milliseconds INTERVAL(20);

} // namespace

// What both threads use.
struct LoadJob::Shared : Progress
{
    void show(const std::string& newText) override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        text = newText;
    }
    void announce(const std::string& newText) override { show(newText); }
    bool isStopped() const override { return stopRequested; }

    std::atomic<bool> stopRequested{false};
    std::mutex mutex; // of all that follows
    std::condition_variable ended;
    std::string text;
    bool hasEnded = false; // then only the window's thread uses the rest
    SceneMaker make;
    ReadReport report;
    FileStamps stamps;
    std::thread thread;
};

// Processes events while nodes are made.
class LoadJob::NodeProgress : public Progress
{
public:
    explicit NodeProgress(LoadJob& watched) : job(watched) {}

    void show(const std::string& text) override
    {
        if (Clock::now() >= next)
            announce(text);
    }
    void announce(const std::string& text) override
    {
        emit job.progressed(QString::fromStdString(text));
        QCoreApplication::processEvents();
        next = Clock::now() + INTERVAL;
    }
    bool isStopped() const override { return job.shared->stopRequested; }

private:
    using Clock = std::chrono::steady_clock;

    LoadJob& job;
    Clock::time_point next = Clock::now() + INTERVAL;
};

std::vector<std::string> referenceOf(const StyleRequest& request)
{
    return request.compare && *request.compare != "first" ? std::vector{*request.compare}
                                                          : std::vector<std::string>();
}

LoadJob::LoadJob(const std::vector<std::string>& filesToLoad, const Loader& loader,
                 const std::vector<std::string>& others)
    : files(filesToLoad), shared(std::make_unique<Shared>())
{
    connect(&timer, &QTimer::timeout, this, &LoadJob::look);
    timer.start(INTERVAL);
    std::vector<std::string> all = files;
    all.insert(all.end(), others.begin(), others.end());
    shared->thread = std::thread([names = files, all, loader, data = shared.get()] {
        ReadReport report;
        FileStamps stamps = stampsOf(all);
        SceneMaker make = loader(names, report, *data);
        const std::lock_guard<std::mutex> lock(data->mutex);
        data->make = std::move(make);
        data->report = std::move(report);
        data->stamps = std::move(stamps);
        data->hasEnded = true;
        data->ended.notify_all();
    });
}

LoadJob::~LoadJob()
{
    shared->stopRequested = true;
    shared->thread.join();
}

const FileStamps& LoadJob::getStamps() const { return shared->stamps; }

bool LoadJob::waitFor(std::chrono::milliseconds patience)
{
    std::unique_lock<std::mutex> lock(shared->mutex);
    return shared->ended.wait_for(lock, patience, [this] { return shared->hasEnded; });
}

std::string LoadJob::getFailure()
{
    const std::lock_guard<std::mutex> lock(shared->mutex);
    return shared->hasEnded && !shared->make ? shared->report.error : "";
}

void LoadJob::look()
{
    if (waitFor(std::chrono::milliseconds(0))) {
        finish();
    } else if (!abandoned) {
        const std::lock_guard<std::mutex> lock(shared->mutex);
        emit progressed(QString::fromStdString(shared->text));
    }
}

void LoadJob::finish()
{
    if (making)
        return;
    making = true;
    timer.stop();
    DataScene* const scene = makeScene();
    if (abandoned)
        deleteLater();
    else
        emit finished(scene, shared->report);
}

// Null if that fails, or if it is stopped on the way.
DataScene* LoadJob::makeScene()
{
    NodeProgress progress(*this);
    const SceneMaker make = std::exchange(shared->make, nullptr);
    DataScene* const scene = make && !abandoned ? make(shared->report, progress) : nullptr;
    if (!scene || !abandoned)
        return scene;
    scene->ref();
    scene->unref();
    return nullptr;
}

void LoadJob::abandonTo(QObject* parent)
{
    shared->stopRequested = true;
    abandoned = true;
    setParent(parent);
}

} // namespace strandview
