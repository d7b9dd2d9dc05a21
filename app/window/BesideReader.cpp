// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/BesideReader.h"

#include <algorithm>
#include <atomic>
#include <new>
#include <utility>

#include <QThread>
#include <QThreadPool>
#include <QtConcurrent>

#include "request/limits.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"

namespace strandview {

namespace {

// Of all readers: half of the processors is the window's and a software driver's.
QThreadPool& threads()
{
    static QThreadPool pool;
    pool.setMaxThreadCount(std::max(1, QThread::idealThreadCount() / 2));
    return pool;
}

} // namespace

// One task at a time uses the series.
struct BesideReader::Shared : Progress
{
    explicit Shared(FrameStore::Opener opensSeries) : opener(std::move(opensSeries)) {}

    bool isStopped() const override { return stopped; }
    std::shared_ptr<const Configuration> load(std::size_t frame, std::string& error);
    void work(Result& result);

    std::atomic<bool> stopped{false};

private:
    const FrameStore::Opener opener;
    std::unique_ptr<Series> series;
    std::shared_ptr<const Configuration> loaded; ///< last
    std::size_t loadedFrame = 0;
};

std::shared_ptr<const Configuration> BesideReader::Shared::load(std::size_t frame,
                                                                std::string& error)
{
    ReadReport report;
    if (!series && opener)
        series = opener(report, *this);
    error = report.error;
    if (!series)
        return nullptr;
    const auto goOn = [this](double) { return !isStopped(); };
    bool mayGrow = true;
    while (series->count() <= frame && mayGrow && !isStopped())
        mayGrow = series->lookForMore(goOn);
    const std::size_t nearest = std::min(frame, std::max<std::size_t>(series->count(), 1) - 1);
    if (loaded && nearest == loadedFrame)
        return loaded;
    LoadedFrame read = series->load(nearest, goOn);
    error = read.error;
    if (!read.configuration)
        return nullptr;
    loadedFrame = nearest;
    loaded = std::make_shared<const Configuration>(std::move(*read.configuration));
    return loaded;
}

void BesideReader::Shared::work(Result& result)
{
    Task& task = result.task;
    try {
        if (!task.data)
            task.data = load(task.frame, result.error);
        if (!task.data)
            return;
        result.geometry =
            computeGeometry(*task.data, task.style, task.placement, *this, result.error);
        if (!result.error.empty() || !task.colouring)
            return;
        result.colouring = followColouring(*task.colouring, *task.data, *this);
        if (!isStopped())
            addRowColours(*result.colouring, result.geometry);
    } catch (const std::bad_alloc&) {
        result.error = TOO_LITTLE_MEMORY_FOR_FRAME;
    }
}

BesideReader::BesideReader(std::function<void(Result& result)> onResult)
    : tell(std::move(onResult)), shared(std::make_shared<Shared>(nullptr))
{
    QObject::connect(&work, &QFutureWatcherBase::finished, &work, [this] { end(); });
}

BesideReader::~BesideReader()
{
    shared->stopped = true;
    work.waitForFinished();
}

void BesideReader::setSeries(FrameStore::Opener opener)
{
    shared->stopped = true;
    shared = std::make_shared<Shared>(std::move(opener));
    next.reset();
    isForgotten = isWorking;
}

void BesideReader::ask(Task task)
{
    if (isWorking)
        next = std::move(task);
    else
        begin(std::move(task));
}

void BesideReader::begin(Task task)
{
    isWorking = true;
    isForgotten = false;
    work.setFuture(QtConcurrent::run(&threads(), [task = std::move(task), with = shared]() mutable {
        auto result = std::make_shared<Result>();
        result->task = std::move(task);
        if (!with->isStopped()) // while it waited for a thread
            with->work(*result);
        return result;
    }));
}

void BesideReader::end()
{
    const std::shared_ptr<Result> result = work.result();
    const bool isWanted = !std::exchange(isForgotten, false);
    isWorking = false;
    if (next)
        begin(*std::exchange(next, std::nullopt));
    if (isWanted)
        tell(*result);
}

} // namespace strandview
