// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Stage.h"

#include <gmock/gmock.h>

#include <strandview/model/MemorySeries.h>

#include "request/thingTexts.h"
#include "scene/DataScene.h"
#include "scene/Progress.h"
#include "support/RandomRods.h"
#include "support/initialiseSceneOnce.h"
#include "support/straightRod.h"

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct QuietProgress : Progress
{
    void show(const std::string& /*text*/) override { ++told; }
    bool isStopped() const override { return told >= patience; }
    int told = 0, patience = 1000000;
};

// A straight rod with a scalar `k` that is `value` all along.
Configuration rodWithValue(double reach, double value = 0)
{
    Configuration configuration = straightRod(reach);
    configuration.rods.front().hasFrames = true;
    configuration.rods.front().scalars = {{"k", std::vector<double>(5, value)}};
    return configuration;
}

// Some of its frames cannot be loaded.
class BrokenSeries : public Series
{
public:
    BrokenSeries(std::size_t frames, std::size_t firstWhole) : all(frames), whole(firstWhole) {}
    std::size_t count() const override { return all; }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& /*goOn*/) override
    {
        if (frame < whole)
            return {std::nullopt, {}, "broken " + std::to_string(frame)};
        return {rodWithValue(1 + double(frame))};
    }

    const std::size_t all, whole;
};

// Counts how often it is asked whether to go on, and stops after that.
class Asked : public Progress
{
public:
    explicit Asked(int most) : patience(most) {}
    bool isStopped() const override { return ++count > patience; }

    mutable int count = 0;

private:
    const int patience;
};

class StageTest : public testing::Test
{
protected:
    StageTest() { initialiseSceneOnce(); }

    std::optional<Stage> stageOf(Series& series)
    {
        report = {};
        return makeStage(series, options, report, progress);
    }
    static MemorySeries seriesOf(const std::vector<double>& reaches)
    {
        std::vector<Configuration> frames;
        for (const double reach : reaches)
            frames.push_back(rodWithValue(reach, reach));
        return MemorySeries(std::move(frames));
    }

    Options options;
    ReadReport report;
    QuietProgress progress;
};

} // namespace

TEST_F(StageTest, HasRoomForAllFramesInTheStyleOfTheFirst)
{
    options.radius = 0.1;
    options.showRibbon = false;
    MemorySeries series = seriesOf({1, 5, 2});
    const std::optional<Stage> stage = stageOf(series);
    ASSERT_TRUE(stage);
    EXPECT_NEAR(stage->room.getMin()[0], -5, 1e-6);
    EXPECT_NEAR(stage->room.getMax()[0], 5, 1e-6);
    EXPECT_NEAR(stage->room.getMax()[1], 0.1, 1e-6);
    EXPECT_EQ(stage->side, Side::Z);
    EXPECT_THAT(report.notices, IsEmpty());

    options.radius.reset();
    MemorySeries backwards = seriesOf({5, 1}), first = seriesOf({5});
    EXPECT_EQ(stageOf(backwards)->style.radius, stageOf(first)->style.radius);
}

// What is shown in some frames alone has its room in those.
TEST_F(StageTest, PicturesHaveRoomForWhatIsShown)
{
    Configuration both = rodWithValue(1), first = both;
    both.rods.push_back(rodWithValue(9).rods.front());
    const auto roomWith = [&](const std::string& things) {
        options.things = {};
        EXPECT_EQ(readThings(things, options.things), "");
        options.radius = 0.1;
        MemorySeries series({first, both});
        const std::optional<Stage> stage = stageOf(series);
        EXPECT_NEAR(stage->room.getMax()[0], 9, 1e-6) << "as much as it takes to show all again";
        return stage->shownRoom;
    };
    EXPECT_NEAR(roomWith("").getMax()[0], 9, 1e-6);
    for (const char* things : {"rod 2: hidden", "rod 2: deleted", "others: hidden; rod 1: shown"})
        EXPECT_NEAR(roomWith(things).getMax()[0], 1, 1e-6) << things;
    EXPECT_NEAR(roomWith("rod 1: hidden").getMax()[0], 9, 1e-6);
    EXPECT_NEAR(roomWith("rods 1-2: hidden").getMax()[0], 9, 1e-6) << "of nothing, that of all";
}

TEST_F(StageTest, OfOneFrameLeavesItsRoomToTheScene)
{
    MemorySeries still = seriesOf({3});
    EXPECT_TRUE(stageOf(still)->room.isEmpty());
    EXPECT_TRUE(stageOf(still)->shownRoom.isEmpty());
}

// Along x in the first frame, along z in the second: y is what neither of them needs.
TEST_F(StageTest, IsSeenAlongTheShortestSideOfAllFrames)
{
    Configuration upright = rodWithValue(1);
    for (auto& point : upright.rods[0].points)
        point = {0, 0, point.x};
    MemorySeries series({rodWithValue(1), upright});
    EXPECT_EQ(stageOf(series)->side, Side::Y);
}

TEST_F(StageTest, ColoursHaveTheLimitsOfAllFrames)
{
    options.colourBy = "k";
    MemorySeries series = seriesOf({2, 7, 1});
    const std::optional<Stage> stage = stageOf(series);
    ASSERT_TRUE(stage && stage->colouring);
    EXPECT_EQ(stage->colouring->constant, "");
    EXPECT_EQ(stage->colouring->min, 1);
    EXPECT_EQ(stage->colouring->max, 7);

    MemorySeries constant = seriesOf({2, 2});
    EXPECT_EQ(stageOf(constant)->colouring->constant, "2");
    options.rangeMin = 0;
    options.rangeMax = 3;
    EXPECT_EQ(stageOf(series)->colouring->max, 3);
}

TEST_F(StageTest, OfALongSeriesASampleIsLookedAtAndTold)
{
    EXPECT_THAT(sampleOf(5, 1000), ElementsAre(0, 1, 2, 3, 4));
    EXPECT_EQ(sampleOf(100, 1).size(), 100U);
    const std::vector<std::size_t> sample = sampleOf(100'000, 1000);
    EXPECT_EQ(sample.size(), 100U);
    EXPECT_EQ(sample.front(), 0U);
    EXPECT_EQ(sample.back(), 99'999U);
    EXPECT_TRUE(std::is_sorted(sample.begin(), sample.end(), std::less_equal<>()));
    EXPECT_EQ(sampleOf(1000, 1'000'000).size(), 10U) << "of large frames fewer";
    EXPECT_THAT(sampleOf(1, 0), ElementsAre(0));

    MemorySeries series = seriesOf(std::vector<double>(150, 2));
    stageOf(series);
    EXPECT_THAT(report.notices, ElementsAre("camera and colours have room for 100 of 150 frames, "
                                            "from the first to the last"));
}

TEST_F(StageTest, FramesThatCannotBeLoadedCountForNothing)
{
    BrokenSeries series(5, 2);
    const std::optional<Stage> stage = stageOf(series);
    ASSERT_TRUE(stage);
    EXPECT_NEAR(stage->room.getMax()[0], 5, 0.2);

    BrokenSeries nothing(3, 3);
    EXPECT_FALSE(stageOf(nothing));
    EXPECT_EQ(report.error, "broken 0");
}

// A rod that turns straight back is none that can be drawn.
TEST_F(StageTest, FramesThatCannotBeDrawnCountForNothing)
{
    Configuration back = rodWithValue(50);
    back.rods[0].points[4] = back.rods[0].points[2];
    MemorySeries series({rodWithValue(1), back});
    ASSERT_TRUE(stageOf(series));
    EXPECT_LT(stageOf(series)->room.getMax()[0], 2);

    MemorySeries nothing({back, back});
    EXPECT_FALSE(stageOf(nothing));
    EXPECT_THAT(report.error, HasSubstr("rod.txt:1: rod 1"));
}

TEST_F(StageTest, CanBeStopped)
{
    progress.patience = 3;
    MemorySeries series = seriesOf({1, 2, 3, 4, 5, 6});
    EXPECT_FALSE(stageOf(series));
    EXPECT_EQ(report.error, "looking at the frames was stopped");
}

TEST_F(StageTest, AsksWithinAFrameWhetherToGoOn)
{
    options.colourBy = "k";
    const int rods = 40;
    Configuration many;
    for (int i = 0; i < rods; ++i)
        many.rods.push_back(rodWithValue(1 + i, i).rods.front());
    MemorySeries series({many, many});
    Asked all(1 << 30);
    ASSERT_TRUE(makeStage(series, options, report, all)) << report.error;
    EXPECT_GE(all.count, 5 * rods) << "geometry and reach of both frames, values of the second";
    for (int patience = 1; patience < all.count; patience += 7) {
        Asked some(patience);
        report = {};
        EXPECT_FALSE(makeStage(series, options, report, some));
        EXPECT_NE(report.error, "");
        EXPECT_LT(some.count, patience + 8) << "goes on after it was stopped";
    }
}

TEST_F(StageTest, ANewSceneShowsAFrameAsOneThatHasShownOthers)
{
    options.colourBy = "k";
    MemorySeries series = seriesOf({2, 7, 1});
    const std::optional<Stage> stage = stageOf(series);
    DataScene *fresh = nullptr, *used = nullptr;
    EXPECT_EQ(showOnStage(used, *stage, rodWithValue(7, 7), progress), "");
    const DataScene* const first = used;
    EXPECT_EQ(showOnStage(used, *stage, rodWithValue(1, 1), progress), "");
    EXPECT_EQ(used, first);
    EXPECT_EQ(showOnStage(fresh, *stage, rodWithValue(1, 1), progress), "");
    EXPECT_EQ(fresh->getBox().getMin(), used->getBox().getMin());
    EXPECT_EQ(fresh->getBox().getMax(), used->getBox().getMax());
    EXPECT_EQ(fresh->getColouring()->max, used->getColouring()->max);
    fresh->unref();
    used->unref();
}

} // namespace strandview
