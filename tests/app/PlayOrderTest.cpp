// SPDX-License-Identifier: GPL-3.0-or-later
#include "playing/PlayOrder.h"

#include <vector>

#include <gmock/gmock.h>

namespace strandview {

using testing::ElementsAre;
using Place = PlayOrder::Place;

namespace {

// A step at a time, as one would by hand.
Place stepped(const PlayOrder& order, Place place)
{
    const std::size_t every = order.every;
    const bool mayGoUp = place.frame + every <= order.last;
    const bool mayGoDown = place.frame >= order.first + every;
    switch (order.repeat) {
    case PlayOrder::ONCE:
        return mayGoUp ? Place{place.frame + every} : place;
    case PlayOrder::LOOP:
        return {mayGoUp ? place.frame + every : order.first};
    default:
        if (!mayGoUp && !mayGoDown)
            return place;
        if (place.isForward ? !mayGoUp : !mayGoDown)
            place.isForward = !place.isForward;
        return {place.isForward ? place.frame + every : place.frame - every, place.isForward};
    }
}

std::vector<std::size_t> framesFrom(std::size_t frame, const PlayOrder& order, std::size_t count)
{
    std::vector<std::size_t> frames;
    for (std::size_t steps = 0; steps < count; ++steps)
        frames.push_back(order.after({frame}, steps).frame);
    return frames;
}

} // namespace

TEST(PlayOrder, OnceEndsAtTheLastFrame)
{
    const PlayOrder order{0, 3, 1, PlayOrder::ONCE};
    EXPECT_THAT(framesFrom(1, order, 5), ElementsAre(1, 2, 3, 3, 3));
    EXPECT_FALSE(order.after({1}, 1).isAtEnd);
    EXPECT_TRUE(order.after({1}, 2).isAtEnd);
    EXPECT_TRUE(order.after({3}, 0).isAtEnd);
}

TEST(PlayOrder, ALoopGoesOnWithTheFirstFrame)
{
    EXPECT_THAT(framesFrom(1, {0, 3, 1, PlayOrder::LOOP}, 8), ElementsAre(1, 2, 3, 0, 1, 2, 3, 0));
    EXPECT_THAT(framesFrom(3, {2, 7, 2, PlayOrder::LOOP}, 6), ElementsAre(3, 5, 7, 2, 4, 6));
}

TEST(PlayOrder, ToAndFroShowsTheEndsOnce)
{
    EXPECT_THAT(framesFrom(1, {0, 3, 1, PlayOrder::TO_AND_FRO}, 9),
                ElementsAre(1, 2, 3, 2, 1, 0, 1, 2, 3));
    EXPECT_THAT(framesFrom(1, {0, 6, 2, PlayOrder::TO_AND_FRO}, 7),
                ElementsAre(1, 3, 5, 3, 1, 3, 5));
}

TEST(PlayOrder, EveryNthLeavesTheOthersOut)
{
    EXPECT_THAT(framesFrom(0, {0, 10, 4, PlayOrder::ONCE}, 5), ElementsAre(0, 4, 8, 8, 8));
}

TEST(PlayOrder, OneFrameStaysTheOnlyOne)
{
    for (const auto repeat : {PlayOrder::ONCE, PlayOrder::LOOP, PlayOrder::TO_AND_FRO})
        EXPECT_THAT(framesFrom(5, {5, 5, 1, repeat}, 3), ElementsAre(5, 5, 5));
    EXPECT_THAT(framesFrom(1, {0, 2, 9, PlayOrder::TO_AND_FRO}, 3), ElementsAre(1, 1, 1));
}

TEST(PlayOrder, AFrameBesideTheRangeIsAsItsNearestEnd)
{
    const PlayOrder order{2, 5, 1, PlayOrder::ONCE};
    EXPECT_EQ(order.after({9}, 0).frame, 5u);
    EXPECT_EQ(order.after({0}, 1).frame, 3u);
    EXPECT_EQ(order.beside(0, 1), 3u);
    EXPECT_EQ(order.beside(4, 10), 5u);
    EXPECT_EQ(order.beside(4, -10), 2u);
}

TEST(PlayOrder, ManyStepsAtOnceLeadWhereStepAfterStepDoes)
{
    for (const auto repeat : {PlayOrder::ONCE, PlayOrder::LOOP, PlayOrder::TO_AND_FRO}) {
        for (std::size_t last = 0; last < 8; ++last) {
            for (std::size_t every = 1; every < 5; ++every) {
                for (std::size_t from = 1; from <= last + 1; ++from) {
                    for (const bool isForward : {true, false}) {
                        const PlayOrder order{1, last + 1, every, repeat};
                        Place plain{from, isForward};
                        for (std::uint64_t steps = 0; steps < 40; ++steps) {
                            const Place found = order.after({from, isForward}, steps);
                            ASSERT_EQ(found.frame, plain.frame)
                                << repeat << " " << last << " " << every << " " << from << " "
                                << isForward << " " << steps;
                            // Whatever direction it tells leads on as it should.
                            ASSERT_EQ(order.after(found, 1).frame, stepped(order, plain).frame);
                            plain = stepped(order, plain);
                        }
                    }
                }
            }
        }
    }
    EXPECT_EQ(PlayOrder({0, 2, 1, PlayOrder::LOOP}).after({0}, UINT64_MAX).frame, UINT64_MAX % 3);
}

} // namespace strandview
