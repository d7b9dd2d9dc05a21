// SPDX-License-Identifier: GPL-3.0-or-later
#include "playing/FrameStore.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include <gmock/gmock.h>

#include "scene/Progress.h"
#include "support/initialiseSceneOnce.h"
#include "support/straightRod.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// What a test and the thread of a store share about a series.
struct Watch
{
    void note(std::size_t frame)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        loaded.push_back(frame);
    }
    std::vector<std::size_t> getLoaded()
    {
        const std::lock_guard<std::mutex> lock(mutex);
        return loaded;
    }

    std::size_t frames = 10;
    int points = 5;
    std::size_t broken = 1000;         ///< a frame that cannot be loaded
    std::atomic<std::size_t> known{0}; ///< frames that are there; 0: all, from the beginning
    std::mutex mutex;
    std::vector<std::size_t> loaded;
};

// Straight rods, which grow with their frames; found one by one if the watch says so.
class WatchedSeries : public Series
{
public:
    explicit WatchedSeries(Watch& shared)
        : watch(shared), counted(shared.known > 0 ? 1 : shared.frames)
    {}
    std::size_t count() const override { return counted; }
    std::optional<double> time(std::size_t frame) const override { return 0.5 * double(frame); }

private:
    bool findMore(const GoOn& goOn, std::vector<std::string>& notices) override
    {
        while (counted < watch.known) {
            ++counted;
            if (goOn && !goOn(0))
                break;
        }
        if (watch.known > 0 && counted == watch.frames)
            notices.emplace_back("run.txt: the last one is left out");
        return watch.known > 0 && counted < watch.frames;
    }
    LoadedFrame loadFrame(std::size_t frame, const GoOn& /*goOn*/) override
    {
        watch.note(frame);
        if (frame == watch.broken)
            return {std::nullopt, {}, "run.txt:7: found 'x', expected a number"};
        LoadedFrame loaded{straightRod(1 + double(frame), watch.points)};
        if (frame > 0)
            loaded.notices.push_back("run.txt: frame " + std::to_string(frame) + " is straight");
        return loaded;
    }

    Watch& watch;
    std::size_t counted;
};

class FrameStoreTest : public testing::Test
{
protected:
    FrameStoreTest() { initialiseSceneOnce(); }

    FrameStore::Plan plan() const
    {
        FrameStore::Plan made;
        made.style.radius = 0.1;
        made.style.slices = 4;
        made.style.subsegments = 1;
        made.options.series.cacheMegabytes = 1;
        return made;
    }
    void open()
    {
        store = std::make_unique<FrameStore>(
            [this](ReadReport&, Progress&) { return std::make_unique<WatchedSeries>(watch); },
            plan(), [this] { ++news; });
    }

    static bool comesTo(const std::function<bool()>& holds)
    {
        for (int i = 0; i < 20000; ++i) {
            if (holds())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }
    FrameToPlay wait()
    {
        std::optional<FrameToPlay> frame;
        EXPECT_TRUE(comesTo([&] { return (frame = store->take()).has_value(); }));
        return frame ? std::move(*frame) : FrameToPlay();
    }
    FrameToPlay get(std::size_t frame, const std::vector<std::size_t>& ahead = {})
    {
        store->want(frame, ahead);
        FrameToPlay got = wait();
        EXPECT_EQ(got.frame, frame);
        return got;
    }

    Watch watch;
    std::atomic<int> news{0};
    std::unique_ptr<FrameStore> store;
};

} // namespace

TEST_F(FrameStoreTest, GivesAFrameWithItsTimeAndGeometry)
{
    open();
    const FrameToPlay frame = get(3);
    ASSERT_TRUE(frame.data);
    EXPECT_EQ(frame.data->rods.front().points.back().x, 4);
    EXPECT_EQ(frame.time, 1.5);
    EXPECT_THAT(frame.geometry.rods, SizeIs(1));
    EXPECT_TRUE(frame.geometry.rods.front().meshes.tube);
    EXPECT_EQ(frame.error, "");
    EXPECT_THAT(frame.notices, ElementsAre("run.txt: frame 3 is straight"));
    EXPECT_THAT(get(3).notices, ElementsAre("run.txt: frame 3 is straight")) << "kept with it";
    EXPECT_FALSE(store->take()) << "once";
    EXPECT_EQ(store->getState().count, 10u);
    EXPECT_GE(news, 2);
}

TEST_F(FrameStoreTest, GivesItsColoursOnTheScaleOfAllOrOnItsOwn)
{
    for (const bool isOwn : {false, true}) {
        FrameStore::Plan coloured = plan();
        coloured.options.colourBy = "arclength";
        coloured.options.ownRange = isOwn;
        coloured.colouring.emplace();
        coloured.colouring->name = "arclength";
        coloured.colouring->max = 20;
        store = std::make_unique<FrameStore>(
            [this](ReadReport&, Progress&) { return std::make_unique<WatchedSeries>(watch); },
            coloured, [this] { ++news; });
        const FrameToPlay frame = get(3); // of length 8
        ASSERT_TRUE(frame.colouring);
        EXPECT_NEAR(frame.colouring->max, isOwn ? 8 : 20, 1e-12);
        EXPECT_NEAR(frame.colouring->ofRod(0).back(), isOwn ? 1 : 0.4, 1e-12);
        EXPECT_GT(frame.geometry.rods.front().colours.count, 0);
    }
    open();
    EXPECT_FALSE(get(3).colouring) << "of a plan without colours";
}

TEST_F(FrameStoreTest, TellsWhatCannotBeReadAndGoesOn)
{
    watch.broken = 4;
    open();
    const FrameToPlay broken = get(4);
    EXPECT_FALSE(broken.data);
    EXPECT_EQ(broken.error, "run.txt:7: found 'x', expected a number");
    EXPECT_THAT(get(12).error, HasSubstr("found frame 12, expected 0 to 9"));
    EXPECT_TRUE(get(5).data);
}

TEST_F(FrameStoreTest, ASeriesThatCannotBeOpenedIsTold)
{
    store = std::make_unique<FrameStore>(
        [](ReadReport& report, Progress&) -> std::unique_ptr<Series> {
            report.error = "run.txt: no such file";
            return nullptr;
        },
        plan(), [this] { ++news; });
    ASSERT_TRUE(comesTo([this] { return news > 0; }));
    EXPECT_EQ(store->getState().error, "run.txt: no such file");
    EXPECT_EQ(store->getState().count, 0u);
    EXPECT_FALSE(store->getState().mayGrow);
}

TEST_F(FrameStoreTest, AFileThatIsFollowedIsOpenedWhenItsFirstFrameIsWhole)
{
    std::atomic<int> tries{0};
    FrameStore::Plan following = plan();
    following.options.series.follow = true;
    store = std::make_unique<FrameStore>(
        [&](ReadReport& report, Progress&) -> std::unique_ptr<Series> {
            if (++tries > 2)
                return std::make_unique<WatchedSeries>(watch);
            report.error = "run.txt: found no whole frame";
            return nullptr;
        },
        following, [this] { ++news; });
    EXPECT_TRUE(get(3).data);
    EXPECT_EQ(store->getState().error, "");
    EXPECT_EQ(tries, 3);
}

TEST_F(FrameStoreTest, GoesAtOnceWhileItWaitsForAFirstFrame)
{
    FrameStore::Plan following = plan();
    following.options.series.follow = true;
    store = std::make_unique<FrameStore>(
        [](ReadReport&, Progress&) { return std::unique_ptr<Series>(); }, following,
        [this] { ++news; });
    ASSERT_TRUE(comesTo([this] { return news > 0; }));
    EXPECT_FALSE(store->getState().isOpened);
    store.reset();
}

// Memory

TEST_F(FrameStoreTest, AFrameThatIsKeptIsLoadedOnce)
{
    open();
    ASSERT_TRUE(comesTo([this] { return store->getState().stage != nullptr; }));
    const std::size_t before = watch.getLoaded().size();
    for (int round = 0; round < 3; ++round) {
        for (std::size_t frame = 0; frame < 10; ++frame)
            get(frame);
    }
    EXPECT_EQ(watch.getLoaded().size(), before + 10);
}

TEST_F(FrameStoreTest, FramesAheadAreLoadedInTheirOrderBeforeTheyAreWanted)
{
    watch.frames = 200;
    open();
    ASSERT_TRUE(comesTo([this] { return store->getState().stage != nullptr; }));
    const std::size_t before = watch.getLoaded().size();
    get(5, {6, 8, 4});
    ASSERT_TRUE(comesTo([&] { return watch.getLoaded().size() == before + 4; }));
    const std::vector<std::size_t> all = watch.getLoaded();
    EXPECT_THAT(std::vector<std::size_t>(all.end() - 4, all.end()), ElementsAre(5, 6, 8, 4));
    get(8);
    EXPECT_EQ(watch.getLoaded().size(), before + 4);
}

TEST_F(FrameStoreTest, MemoryIsBoundedWhateverIsWanted)
{
    watch.points = 3000;
    watch.frames = 50;
    const std::size_t bytes = 1 << 20, most = bytes / memoryOf(straightRod(1, 3000));
    open();
    std::vector<std::size_t> ahead;
    for (std::size_t frame = 1; frame < 50; ++frame)
        ahead.push_back(frame);
    get(0, ahead);
    ASSERT_TRUE(comesTo([this] { return store->getState().stage != nullptr; }));
    EXPECT_LE(store->countBytes(), bytes);
    EXPECT_EQ(store->countLoads(), most) << "no more than there is room for";
    for (std::size_t frame = 0; frame < 50; frame += 7) {
        get(frame);
        EXPECT_LE(store->countBytes(), bytes);
    }
}

TEST_F(FrameStoreTest, AFrameLargerThanTheMemoryIsGivenAllTheSame)
{
    watch.points = 30'000;
    open();
    EXPECT_TRUE(get(1, {2, 3}).data);
    EXPECT_TRUE(get(2).data);
    EXPECT_GT(store->countBytes(), std::size_t(1) << 20);
}

// Series that grow

TEST_F(FrameStoreTest, FramesAreGivenWhileOthersAreStillCounted)
{
    watch.frames = 1000;
    watch.known = 3; // the rest is not written yet
    open();
    ASSERT_TRUE(comesTo([this] { return store->getState().count == 3; }));
    EXPECT_TRUE(store->getState().mayGrow);
    EXPECT_TRUE(get(2).data);
    EXPECT_THAT(get(3).error, HasSubstr("expected 0 to 2"));
    watch.known = 5;
    ASSERT_TRUE(comesTo([this] { return store->getState().count == 5; }));
    watch.known = 1000;
    ASSERT_TRUE(comesTo([this] { return store->getState().count == 1000; }));
    EXPECT_TRUE(comesTo([this] { return !store->getState().mayGrow; }));
}

TEST_F(FrameStoreTest, WhatIsFoundAtTheEndOfASeriesIsTold)
{
    watch.frames = 5;
    watch.known = 3;
    open();
    ASSERT_TRUE(comesTo([this] { return store->getState().count == 3; }));
    EXPECT_THAT(store->getState().notices, IsEmpty());
    watch.known = 5;
    ASSERT_TRUE(comesTo([this] { return !store->getState().mayGrow; }));
    EXPECT_THAT(store->getState().notices, ElementsAre("run.txt: the last one is left out"));
}

TEST_F(FrameStoreTest, AFrameThatWasNotThereIsReadWhenItIs)
{
    watch.frames = 1000;
    watch.known = 3;
    open();
    ASSERT_TRUE(comesTo([this] { return store->getState().count == 3; }));
    EXPECT_FALSE(get(3).data);
    watch.known = 4;
    ASSERT_TRUE(comesTo([this] { return store->getState().count == 4; }));
    EXPECT_TRUE(get(3).data);
}

// The stage

TEST_F(FrameStoreTest, TheStageHasRoomForAllFrames)
{
    open();
    ASSERT_TRUE(comesTo([this] { return store->getState().stage != nullptr; }));
    EXPECT_NEAR(store->getState().stage->room.getMax()[0], 10, 1e-4);
}

TEST_F(FrameStoreTest, GoesAtOnceWhateverIsBeingDone)
{
    watch.frames = 1'000'000;
    watch.known = watch.frames;
    watch.points = 20'000;
    for (int i = 0; i < 20; ++i) { // sooner and later: while it opens, counts, loads, computes
        open();
        store->want(0, {1, 2, 3});
        std::this_thread::sleep_for(std::chrono::milliseconds(i));
        store.reset();
    }
}

} // namespace strandview
