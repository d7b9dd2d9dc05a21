// SPDX-License-Identifier: GPL-3.0-or-later
#include "playing/FrameStore.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <new>
#include <thread>
#include <utility>

#include "request/limits.h"
#include "scene/Progress.h"
#include "scene/SceneBuilder.h"

namespace strandview {

namespace {

using Clock = std::chrono::steady_clock;

// How often is told how many frames there are, and looked whether a file has grown.
const std::chrono::milliseconds COUNT_INTERVAL(100), GROWTH_INTERVAL(200);

// Frames in bounded memory.
class Cache
{
public:
    struct Entry
    {
        std::shared_ptr<const Configuration> data;
        std::string error;
        std::vector<std::string> notices;
        std::size_t bytes = 0;
        std::uint64_t used = 0;
    };

    explicit Cache(std::size_t mostBytes) : most(mostBytes) {}

    const Entry* find(std::size_t frame)
    {
        const auto entry = entries.find(frame);
        if (entry == entries.end())
            return nullptr;
        entry->second.used = ++uses;
        return &entry->second;
    }
    bool has(std::size_t frame) const { return entries.count(frame) > 0; }
    std::size_t getBytes() const { return bytes; }

    // Drops frames that nobody wants until there is room for one more as large as the last.
    bool makeRoom(const std::vector<std::size_t>& wanted) { return makeRoom(lastBytes, wanted); }

    // The wanted frames are told from the first on.
    void add(std::size_t frame, LoadedFrame loaded, const std::vector<std::size_t>& wanted)
    {
        Entry entry;
        entry.error = std::move(loaded.error);
        entry.notices = std::move(loaded.notices);
        if (loaded.configuration)
            entry.data = std::make_shared<const Configuration>(std::move(*loaded.configuration));
        entry.bytes = sizeof entry + (entry.data ? memoryOf(*entry.data) : 0);
        entry.used = ++uses;
        lastBytes = entry.bytes;
        makeRoom(entry.bytes, wanted);
        for (auto last = wanted.rbegin(); last != wanted.rend() && isTooMuch(entry.bytes); ++last)
            drop(*last);
        bytes += entry.bytes;
        entries[frame] = std::move(entry);
    }

private:
    bool isTooMuch(std::size_t more) const { return bytes > 0 && bytes + more > most; }

    bool makeRoom(std::size_t more, const std::vector<std::size_t>& wanted)
    {
        while (isTooMuch(more)) {
            auto oldest = entries.end();
            for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
                const bool isWanted =
                    std::find(wanted.begin(), wanted.end(), entry->first) != wanted.end();
                if (!isWanted &&
                    (oldest == entries.end() || entry->second.used < oldest->second.used))
                    oldest = entry;
            }
            if (oldest == entries.end())
                return false;
            drop(oldest->first);
        }
        return true;
    }
    void drop(std::size_t frame)
    {
        const auto entry = entries.find(frame);
        if (entry == entries.end())
            return;
        bytes -= entry->second.bytes;
        entries.erase(entry);
    }

    const std::size_t most;
    std::map<std::size_t, Entry> entries;
    std::size_t bytes = 0, lastBytes = 0;
    std::uint64_t uses = 0;
};

} // namespace

// The thread, and what it shares with the one that asks.
class FrameStore::Reader : public Progress
{
public:
    Reader(Opener seriesOpener, Plan framePlan, std::function<void()> newsHandler)
        : opener(std::move(seriesOpener)),
          plan(std::move(framePlan)),
          onNews(std::move(newsHandler)),
          cache(std::size_t(plan.options.series.cacheMegabytes) << 20),
          thread([this] { run(); })
    {}
    ~Reader() override
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            stopRequested = true;
        }
        changed.notify_all();
        thread.join();
    }

    State getState() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return state;
    }
    void want(std::size_t frame, std::vector<std::size_t> framesAhead)
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            wanted = frame;
            ahead = std::move(framesAhead);
            hasNewWishes = true;
        }
        changed.notify_all();
    }
    void follow(Plan next, std::size_t number, StageChange change)
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            const bool isStageAwaited = nextPlan && nextPlan->change == NEW_STAGE;
            nextPlan = {std::move(next), number, isStageAwaited ? NEW_STAGE : change};
            hasNewWishes = true;
        }
        changed.notify_all();
    }
    std::optional<FrameToPlay> take()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return std::exchange(ready, std::nullopt);
    }
    std::size_t countLoads() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return loads;
    }
    std::size_t countBytes() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return bytes;
    }

    // Progress, of what the thread does
    bool isStopped() const override
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return stopRequested;
    }

private:
    using Lock = std::unique_lock<std::mutex>;

    void run()
    {
        const bool isOpen = openAtLast();
        while (isOpen && !isStopped()) {
            try {
                work();
            } catch (const std::bad_alloc&) {
                giveUpStage(TOO_LITTLE_MEMORY_FOR_FRAME); // which alone takes more than a frame
            }
        }
    }

    // What is asked for first; but a frame that is always late must not keep the others uncounted.
    void work()
    {
        adoptPlan();
        const int mostServed = 8;
        if (served < mostServed && serve())
            ++served;
        else if (std::exchange(served, 0) < mostServed && readAhead())
            return;
        else if (!count() && !lookAtStage() && !hasWork())
            wait();
    }

    void adoptPlan()
    {
        std::optional<NextPlan> next;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            next = std::exchange(nextPlan, std::nullopt);
            if (!next)
                return;
            hasNewWishes = wanted.has_value();
        }
        plan = std::move(next->plan);
        planNumber = next->number;
        prepared.reset();
        maker.reset(); // it has the options
        stageReport = {};
        if (next->change == NEW_STAGE)
            isStageMade = false;
    }

    // Whether it is open.
    bool open()
    {
        ReadReport report;
        try {
            series = opener(report, *this);
        } catch (const std::bad_alloc&) {
            report.error = TOO_LITTLE_MEMORY_FOR_FRAME;
        }
        {
            const std::lock_guard<std::mutex> lock(mutex);
            state.isOpened = series || !plan.options.series.follow;
            state.count = series ? series->count() : 0;
            state.mayGrow = series != nullptr;
            state.error = report.error;
            state.notices = report.notices;
        }
        onNews();
        return series != nullptr;
    }

    // The first frame of a file that grows may not be whole yet.
    bool openAtLast()
    {
        while (!open()) {
            Lock lock(mutex);
            if (!plan.options.series.follow ||
                changed.wait_for(lock, GROWTH_INTERVAL, [this] { return stopRequested; }))
                return false;
        }
        return true;
    }

    // The frame that is asked for; false if none is.
    bool serve()
    {
        std::optional<std::size_t> frame;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            frame = std::exchange(wanted, std::nullopt);
            hasNewWishes = false;
            if (!frame)
                return false;
            current = *frame;
            wishes = std::move(ahead);
        }
        if (!prepared || prepared->frame != *frame)
            prepared = prepare(*frame);
        {
            const std::lock_guard<std::mutex> lock(mutex);
            ready = std::exchange(prepared, std::nullopt);
        }
        onNews();
        return true;
    }

    // The next of the frames ahead that is not there; false if there is none, or no room.
    bool readAhead()
    {
        if (!wishes.empty() && !prepared && wishes.front() < series->count()) {
            prepared = prepare(wishes.front());
            return true;
        }
        const auto missing = std::find_if(wishes.begin(), wishes.end(), [this](std::size_t frame) {
            return !cache.has(frame) && frame < series->count();
        });
        if (missing == wishes.end() || !cache.makeRoom(allWanted()))
            return false;
        load(*missing);
        return true;
    }

    std::vector<std::size_t> allWanted() const
    {
        std::vector<std::size_t> all{current};
        all.insert(all.end(), wishes.begin(), wishes.end());
        return all;
    }

    void load(std::size_t frame)
    {
        LoadedFrame loaded;
        try {
            loaded = series->load(frame, [this](double) { return !isStopped(); });
        } catch (const std::bad_alloc&) {
            loaded.error = TOO_LITTLE_MEMORY_FOR_FRAME;
        }
        cache.add(frame, std::move(loaded), allWanted());
        const std::lock_guard<std::mutex> lock(mutex);
        ++loads;
        bytes = cache.getBytes();
    }

    std::optional<Colouring> colouringOf(const Configuration& data)
    {
        if (!plan.colouring)
            return {};
        ReadReport untold; // what it says of the data was said of the first frame
        if (plan.options.ownRange) {
            if (auto own = makeColouring(plan.options, data, untold, nullptr, *this))
                return own;
        }
        return followColouring(*plan.colouring, data, *this);
    }

    // Without a node, which are for the other thread.
    FrameToPlay prepare(std::size_t frame)
    {
        if (frame >= series->count()) // not kept: it may be there later
            return {frame, {}, nullptr, {}, {}, series->load(frame).error, {}, planNumber};
        if (!cache.has(frame))
            load(frame);
        const Cache::Entry& entry = *cache.find(frame);
        FrameToPlay play;
        play.frame = frame;
        play.plan = planNumber;
        play.time = series->time(frame);
        play.data = entry.data;
        play.error = entry.error;
        play.notices = entry.notices;
        if (!play.data)
            return play;
        try {
            play.geometry =
                computeGeometry(*play.data, plan.style, plan.placement, *this, play.error);
            play.colouring = colouringOf(*play.data);
            if (play.colouring && play.error.empty() && !isStopped())
                addRowColours(*play.colouring, play.geometry);
        } catch (const std::bad_alloc&) {
            play.error = TOO_LITTLE_MEMORY_FOR_FRAME;
        }
        if (!play.error.empty())
            play.data = nullptr;
        return play;
    }

    // Looks for more frames until something is asked for; false if there is nothing to look at.
    bool count()
    {
        if (!mayGrow)
            return false;
        const std::size_t before = series->count();
        const Clock::time_point end = Clock::now() + COUNT_INTERVAL;
        bool isInterrupted = false;
        std::vector<std::string> notices;
        const auto goOn = [&](double) {
            isInterrupted = isInterrupted || hasWork() || Clock::now() >= end;
            return !isInterrupted;
        };
        mayGrow = series->lookForMore(goOn, &notices);
        hasCountedAll = !mayGrow || !isInterrupted;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            state.count = series->count();
            state.mayGrow = mayGrow;
            state.notices.insert(state.notices.end(), notices.begin(), notices.end());
        }
        if (series->count() != before || !mayGrow || !notices.empty())
            onNews();
        // A file that is being written: later.
        return !(mayGrow && hasCountedAll);
    }

    // A frame more for the stage, of all that have been counted; false if it is made.
    bool lookAtStage()
    {
        if (!hasCountedAll || isStageMade)
            return false;
        if (!maker) {
            maker = std::make_unique<StageMaker>(*series, plan.options, stageReport, *this);
            if (!maker->begin())
                giveUpStage(stageReport.error);
            return true;
        }
        if (maker->lookAtNext())
            return true;
        isStageMade = true;
        std::optional<Stage> stage = maker->finish();
        maker.reset();
        if (!stage) {
            giveUpStage(stageReport.error);
            return true;
        }
        {
            const std::lock_guard<std::mutex> lock(mutex);
            state.stage = std::make_shared<const Stage>(std::move(*stage));
            for (const std::string& notice : stageReport.notices)
                state.notices.push_back(notice);
        }
        onNews();
        return true;
    }

    // What is shown goes on without one.
    void giveUpStage(const std::string& reason)
    {
        isStageMade = true;
        maker.reset();
        {
            const std::lock_guard<std::mutex> lock(mutex);
            state.notices.push_back("no room is kept for all frames: " + reason);
        }
        onNews();
    }

    bool hasWork() const
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return stopRequested || hasNewWishes;
    }
    void wait()
    {
        Lock lock(mutex);
        const auto isAwaited = [this] { return stopRequested || hasNewWishes; };
        if (mayGrow)
            changed.wait_for(lock, GROWTH_INTERVAL, isAwaited);
        else
            changed.wait(lock, isAwaited);
    }

    // Of the thread alone
    const Opener opener;
    Plan plan;
    std::size_t planNumber = 0;
    const std::function<void()> onNews;
    std::unique_ptr<Series> series;
    Cache cache;
    std::size_t current = 0;
    std::vector<std::size_t> wishes;
    std::optional<FrameToPlay> prepared; ///< the next one ahead
    bool mayGrow = true, hasCountedAll = false, isStageMade = false;
    int served = 0; ///< frames, since something else was done
    std::unique_ptr<StageMaker> maker;
    ReadReport stageReport;

    // Of both
    mutable std::mutex mutex; ///< of all that follows
    std::condition_variable changed;
    bool stopRequested = false, hasNewWishes = false;
    std::optional<std::size_t> wanted;
    std::vector<std::size_t> ahead;
    struct NextPlan
    {
        Plan plan;
        std::size_t number;
        StageChange change;
    };
    std::optional<NextPlan> nextPlan;
    std::optional<FrameToPlay> ready;
    State state;
    std::size_t loads = 0, bytes = 0;

    std::thread thread; ///< the last, so that all is there when it begins
};

FrameStore::FrameStore(Opener opener, Plan plan, std::function<void()> onNews)
    : reader(std::make_unique<Reader>(std::move(opener), std::move(plan), std::move(onNews)))
{}

FrameStore::~FrameStore() = default;

FrameStore::State FrameStore::getState() const { return reader->getState(); }

void FrameStore::want(std::size_t frame, std::vector<std::size_t> ahead)
{
    reader->want(frame, std::move(ahead));
}

void FrameStore::follow(Plan plan, std::size_t number, StageChange change)
{
    reader->follow(std::move(plan), number, change);
}

std::optional<FrameToPlay> FrameStore::take() { return reader->take(); }

std::size_t FrameStore::countLoads() const { return reader->countLoads(); }

std::size_t FrameStore::countBytes() const { return reader->countBytes(); }

} // namespace strandview
