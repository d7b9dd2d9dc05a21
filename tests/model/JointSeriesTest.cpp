// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/JointSeries.h>

#include <gmock/gmock.h>

#include <strandview/model/MemorySeries.h>

namespace strandview {

namespace {

using testing::ElementsAre;

Configuration withMarker(int id)
{
    Configuration configuration;
    configuration.markers.emplace_back();
    configuration.markers.back().id = id;
    return configuration;
}

// A marker in each of so many frames, numbered from `first` on.
std::unique_ptr<Series> numbered(int first, int count, std::vector<double> times = {})
{
    std::vector<Configuration> frames;
    for (int i = 0; i < count; ++i)
        frames.push_back(withMarker(first + i));
    return std::make_unique<MemorySeries>(std::move(frames), std::move(times));
}

// Its odd frames fail.
class EvenSeries : public Series
{
public:
    std::size_t count() const override { return 4; }

private:
    LoadedFrame loadFrame(std::size_t frame, const GoOn& goOn) override
    {
        shares += goOn ? (goOn(0.5) ? "go " : "stop ") : "";
        if (frame % 2 == 1)
            return {std::nullopt, {"odd"}, "even.txt: cut"};
        return {withMarker(int(frame)), {"even"}};
    }

public:
    std::string shares;
};

template <typename... Parts>
JointSeries joint(Parts... parts)
{
    std::vector<std::unique_ptr<Series>> all;
    (all.push_back(std::move(parts)), ...);
    return JointSeries(std::move(all));
}

std::vector<long long> idsOf(const LoadedFrame& frame)
{
    std::vector<long long> ids;
    for (const Marker& marker : frame.configuration->markers)
        ids.push_back(marker.id);
    return ids;
}

} // namespace

TEST(JointSeries, AFrameHasWhatAllOfThemHave)
{
    JointSeries series = joint(numbered(10, 3), numbered(20, 3));
    ASSERT_EQ(series.count(), 3U);
    EXPECT_THAT(idsOf(series.load(0)), ElementsAre(10, 20));
    EXPECT_THAT(idsOf(series.load(2)), ElementsAre(12, 22));
}

TEST(JointSeries, WhatIsStillIsInEveryFrame)
{
    JointSeries series = joint(numbered(5, 1), numbered(20, 3), numbered(7, 1));
    ASSERT_EQ(series.count(), 3U);
    EXPECT_THAT(idsOf(series.load(2)), ElementsAre(5, 22, 7));
    EXPECT_EQ(joint(numbered(5, 1), numbered(6, 1)).count(), 1U);
}

TEST(JointSeries, TheShortestOfThoseThatMoveCounts)
{
    JointSeries series = joint(numbered(10, 5), numbered(20, 2), numbered(1, 1));
    EXPECT_EQ(series.count(), 2U);
    EXPECT_EQ(series.load(2).error, "found frame 2, expected 0 to 1");
}

TEST(JointSeries, TimesAreThoseOfTheFirstThatKnowsThem)
{
    JointSeries series = joint(numbered(5, 1, {9}), numbered(10, 2), numbered(20, 2, {0.5, 1.5}),
                               numbered(20, 2, {7, 8}));
    EXPECT_EQ(series.time(0), 0.5);
    EXPECT_EQ(series.time(1), 1.5);
    EXPECT_EQ(series.time(2), std::nullopt);
    EXPECT_EQ(joint(numbered(5, 1, {9}), numbered(6, 1)).time(0), 9);
}

TEST(JointSeries, AFrameFailsWithAnyPartOfItAndTheOthersStay)
{
    JointSeries series = joint(numbered(10, 4), std::unique_ptr<Series>(new EvenSeries));
    const LoadedFrame odd = series.load(1);
    EXPECT_FALSE(odd.configuration);
    EXPECT_EQ(odd.error, "even.txt: cut");
    EXPECT_THAT(odd.notices, ElementsAre("odd"));
    const LoadedFrame even = series.load(2);
    EXPECT_THAT(idsOf(even), ElementsAre(12, 2));
    EXPECT_THAT(even.notices, ElementsAre("even"));
}

TEST(JointSeries, TellsTheShareOfAllThatIsDone)
{
    auto part = std::make_unique<EvenSeries>();
    const EvenSeries& watched = *part;
    std::unique_ptr<Series> still = numbered(0, 1);
    JointSeries series = joint(std::move(still), std::unique_ptr<Series>(std::move(part)));
    std::vector<double> shares;
    series.load(0, [&shares](double share) {
        shares.push_back(share);
        return false;
    });
    EXPECT_THAT(shares, ElementsAre(0.75));
    EXPECT_EQ(watched.shares, "stop ");
}

// ---- Series that grow

namespace {

// One more frame whenever it is looked for, up to so many.
class LateSeries : public Series
{
public:
    explicit LateSeries(std::size_t all) : most(all) {}
    std::size_t count() const override { return known; }
    std::optional<double> time(std::size_t frame) const override { return double(frame); }

private:
    bool findMore(const GoOn& goOn, std::vector<std::string>& notices) override
    {
        if (known < most && (!goOn || goOn(0.5)))
            ++known;
        if (known == most)
            notices.emplace_back("all of " + std::to_string(most));
        return known < most;
    }
    LoadedFrame loadFrame(std::size_t frame, const GoOn&) override
    {
        return {withMarker(100 + int(frame))};
    }

    const std::size_t most;
    std::size_t known = 1;
};

} // namespace

TEST(JointSeries, GrowsWithItsPartsUpToTheShortest)
{
    JointSeries series = joint(numbered(10, 3), std::make_unique<LateSeries>(4), numbered(5, 1));
    EXPECT_EQ(series.count(), 1u) << "of one that may have more";
    EXPECT_THAT(idsOf(series.load(0)), ElementsAre(10, 100, 5));
    EXPECT_TRUE(series.lookForMore({}));
    EXPECT_EQ(series.count(), 2u);
    EXPECT_TRUE(series.lookForMore({}));
    EXPECT_FALSE(series.lookForMore({}));
    EXPECT_EQ(series.count(), 3u);
    EXPECT_THAT(idsOf(series.load(2)), ElementsAre(12, 102, 5));
    EXPECT_EQ(series.time(2), 2.0);
}

TEST(JointSeries, APartThatHasNoMoreThanOneIsStillOnceThatIsKnown)
{
    auto late = std::make_unique<LateSeries>(4);
    JointSeries series = joint(numbered(7, 1), std::move(late));
    EXPECT_TRUE(series.lookForMore([](double) { return false; }));
    EXPECT_EQ(series.count(), 1u) << "it was not looked at";
    std::vector<double> shares;
    EXPECT_TRUE(series.lookForMore([&shares](double share) {
        shares.push_back(share);
        return true;
    }));
    EXPECT_THAT(shares, ElementsAre(0.75));
    EXPECT_EQ(series.count(), 2u);
    EXPECT_THAT(idsOf(series.load(1)), ElementsAre(7, 101));
}

TEST(JointSeries, TellsWhatEachPartTellsOfItsFrames)
{
    JointSeries series = joint(std::make_unique<LateSeries>(2), std::make_unique<LateSeries>(3));
    std::vector<std::string> notices;
    EXPECT_TRUE(series.lookForMore({}, &notices));
    EXPECT_THAT(notices, ElementsAre("all of 2"));
    EXPECT_FALSE(series.lookForMore({}, &notices));
    EXPECT_THAT(notices, ElementsAre("all of 2", "all of 3"));
}

TEST(JointSeries, HasNoMoreWhereNoPartHas)
{
    EXPECT_FALSE(joint(numbered(10, 3), numbered(5, 1)).lookForMore({}));
}

} // namespace strandview
