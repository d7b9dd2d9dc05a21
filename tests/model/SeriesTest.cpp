// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/MemorySeries.h>
#include <strandview/model/SeriesAround.h>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::IsEmpty;

/// A marker of that id.
Configuration numbered(long long id)
{
    Marker marker;
    marker.id = id;
    Configuration configuration;
    configuration.markers = {marker};
    return configuration;
}

/// Frame i is marked by 10 i; odd frames fail. Counts what it is asked for.
class CountingSeries : public Series
{
public:
    std::size_t count() const override { return 4; }
    int loads = 0;

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
    {
        ++loads;
        if (frame % 2 == 1 || (goOn && !goOn(0.5)))
            return {{}, {}, "no frame " + std::to_string(frame)};
        return {numbered(10 * (long long)(frame)), {"loaded"}};
    }
};

} // namespace

TEST(Series, LoadsAnyFrameAsOftenAsWanted)
{
    CountingSeries series;
    for (const std::size_t frame : {2u, 0u, 2u}) {
        const LoadedFrame loaded = series.load(frame);
        ASSERT_TRUE(loaded.configuration);
        EXPECT_EQ(loaded.configuration->markers[0].id, 10 * (long long)(frame));
        EXPECT_THAT(loaded.notices, testing::ElementsAre("loaded"));
        EXPECT_EQ(loaded.error, "");
    }
    EXPECT_EQ(series.loads, 3) << "nothing is held";
    EXPECT_EQ(series.load(1).error, "no frame 1");
    EXPECT_TRUE(series.load(2).configuration) << "after one that failed";
}

TEST(Series, ThatIsAroundAnotherHasAsManyFramesWithTheirTimesAndFindsMoreWhereThatDoes)
{
    class Growing : public CountingSeries
    {
    public:
        std::size_t count() const override { return known; }
        std::optional<double> time(std::size_t frame) const override { return 0.5 * double(frame); }

    private:
        bool findMore(const GoOn&, std::vector<std::string>& notices) override
        {
            notices.push_back("one more");
            return ++known < 3;
        }
        std::size_t known = 1;
    };
    class Marked : public SeriesAround
    {
    public:
        explicit Marked(std::unique_ptr<Series> inner) : SeriesAround(std::move(inner)) {}

    private:
        LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
        {
            LoadedFrame loaded = series->load(frame, goOn);
            loaded.notices.push_back("marked");
            return loaded;
        }
    };
    Marked marked(std::make_unique<Growing>());
    EXPECT_EQ(marked.count(), 1u);
    std::vector<std::string> notices;
    EXPECT_TRUE(marked.lookForMore({}, &notices));
    EXPECT_FALSE(marked.lookForMore({}, &notices));
    EXPECT_THAT(notices, testing::ElementsAre("one more", "one more"));
    EXPECT_EQ(marked.count(), 3u);
    EXPECT_EQ(marked.time(2), 1);
    EXPECT_THAT(marked.load(2).notices, testing::ElementsAre("loaded", "marked"));
}

TEST(Series, AFrameThatThereIsNotIsAnError)
{
    CountingSeries series;
    const LoadedFrame loaded = series.load(4);
    EXPECT_FALSE(loaded.configuration);
    EXPECT_EQ(loaded.error, "found frame 4, expected 0 to 3");
    EXPECT_EQ(series.loads, 0);
    EXPECT_EQ(MemorySeries({}).load(0).error, "found frame 0, expected none: the series is empty");
}

TEST(Series, PassesOnWhoeverIsToBeAsked)
{
    double asked = -1;
    EXPECT_FALSE(CountingSeries()
                     .load(0,
                           [&](double share) {
                               asked = share;
                               return false;
                           })
                     .configuration);
    EXPECT_EQ(asked, 0.5);
}

TEST(Series, HasNoTimesUnlessItKnowsThem) { EXPECT_EQ(CountingSeries().time(0), std::nullopt); }

TEST(Series, HasNoMoreUnlessItKnowsOfSome) { EXPECT_FALSE(CountingSeries().lookForMore({})); }

TEST(MemorySeries, HasItsConfigurationsWithTheirTimes)
{
    MemorySeries series({numbered(1), numbered(2)}, {0, 2.5});
    ASSERT_EQ(series.count(), 2u);
    EXPECT_EQ(series.time(0), 0);
    EXPECT_EQ(series.time(1), 2.5);
    EXPECT_EQ(series.time(2), std::nullopt);
    for (const std::size_t frame : {1u, 0u, 1u}) {
        const LoadedFrame loaded = series.load(frame);
        ASSERT_TRUE(loaded.configuration) << loaded.error;
        EXPECT_EQ(loaded.configuration->markers[0].id, (long long)(frame) + 1);
        EXPECT_THAT(loaded.notices, IsEmpty());
    }
}

TEST(MemorySeries, WhatIsLoadedIsACopy)
{
    MemorySeries series({numbered(1)});
    series.load(0).configuration->markers.clear();
    EXPECT_EQ(series.load(0).configuration->markers.size(), 1u);
}

TEST(MemorySeries, KnowsNoTimeUnlessThereIsOneForEach)
{
    const std::vector<Configuration> two = {numbered(1), numbered(2)};
    EXPECT_EQ(MemorySeries(two).time(0), std::nullopt);
    EXPECT_EQ(MemorySeries(two, {1}).time(0), std::nullopt);
    EXPECT_EQ(MemorySeries(two, {1, 2, 3}).time(0), std::nullopt);
}

} // namespace strandview
