// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/Restyler.h"

#include <atomic>
#include <new>
#include <utility>

#include <QtConcurrent>

#include "request/limits.h"
#include "scene/Progress.h"

namespace strandview {

class Restyler::StopFlag : public Progress
{
public:
    bool isStopped() const override { return stopped; }

    std::atomic<bool> stopped{false};
};

namespace {

std::shared_ptr<Restyler::Result> workAt(Restyler::Task task, Progress& progress)
{
    auto result = std::make_shared<Restyler::Result>();
    try {
        const auto& [options, frame, first, others, ofColours, shown] = task;
        result->look = ofColours ? prepareColours(options, *frame, *first, others.get(), &shown,
                                                  result->report, progress)
                                 : prepareLook(options, *frame, *first, others.get(),
                                               result->report, progress);
    } catch (const std::bad_alloc&) {
        result->report.error = TOO_LITTLE_MEMORY_FOR_DATA;
    }
    result->task = std::move(task);
    return result;
}

} // namespace

Restyler::Restyler(QObject* parent) : QObject(parent), flag(std::make_shared<StopFlag>())
{
    connect(&work, &QFutureWatcherBase::finished, this, &Restyler::end);
}

Restyler::~Restyler()
{
    flag->stopped = true;
    work.waitForFinished();
}

void Restyler::ask(Task task)
{
    if (isWorking)
        next = std::move(task);
    else
        begin(std::move(task));
}

void Restyler::forget()
{
    next.reset();
    isForgotten = isWorking;
    flag->stopped = isForgotten;
}

void Restyler::begin(Task task)
{
    flag->stopped = false;
    isForgotten = false;
    isWorking = true;
    isOfColours = task.ofColours;
    work.setFuture(QtConcurrent::run([task = std::move(task), stop = flag]() mutable {
        return workAt(std::move(task), *stop);
    }));
}

void Restyler::end()
{
    const std::shared_ptr<Result> result = work.result();
    const bool isWanted = !std::exchange(isForgotten, false);
    isWorking = false;
    if (next)
        begin(*std::exchange(next, std::nullopt));
    if (isWanted)
        emit finished(result);
}

} // namespace strandview
