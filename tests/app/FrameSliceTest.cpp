// SPDX-License-Identifier: GPL-3.0-or-later
#include "request/FrameSlice.h"

#include <algorithm>
#include <random>

#include <gmock/gmock.h>

namespace strandview {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::size_t> framesOf(const std::string& text, std::size_t count)
{
    return strandview::framesOf(parseFrameSlice(text).value(), count);
}

// What Python's own documentation says of a slice of a list: the items from i on, before j, by k.
std::vector<std::size_t> plainSlice(std::optional<long long> i, std::optional<long long> j,
                                    long long k, long long count)
{
    const auto fromEnd = [count](long long bound) { return bound < 0 ? bound + count : bound; };
    std::vector<std::size_t> items;
    for (long long item = k > 0 ? 0 : count - 1; item >= 0 && item<count; item += k> 0 ? 1 : -1) {
        const long long first = i ? fromEnd(*i) : (k > 0 ? 0 : count - 1);
        const long long begin = k > 0 ? std::max(first, 0LL) : std::min(first, count - 1);
        const bool isIn = k > 0 ? item >= begin && (!j || item < fromEnd(*j))
                                : item <= begin && (!j || item > fromEnd(*j));
        if (isIn && (item - begin) % k == 0)
            items.push_back(std::size_t(item));
    }
    return items;
}

} // namespace

TEST(FrameSlice, IsWhatPythonTakesOfAList)
{
    EXPECT_THAT(framesOf(":", 4), ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(framesOf("1:3", 4), ElementsAre(1, 2));
    EXPECT_THAT(framesOf("2:", 4), ElementsAre(2, 3));
    EXPECT_THAT(framesOf("-3:-1", 5), ElementsAre(2, 3));
    EXPECT_THAT(framesOf("::2", 5), ElementsAre(0, 2, 4));
    EXPECT_THAT(framesOf("::-2", 5), ElementsAre(4, 2, 0));
    EXPECT_THAT(framesOf("3:0:-1", 5), ElementsAre(3, 2, 1));
    EXPECT_THAT(framesOf("1:100:", 3), ElementsAre(1, 2));
    EXPECT_THAT(framesOf("5:2", 9), IsEmpty());
    EXPECT_THAT(framesOf("7:", 3), IsEmpty());
}

TEST(FrameSlice, IsPythonsForAllBoundsAndSteps)
{
    std::mt19937 random(5);
    std::uniform_int_distribution<long long> bound(-12, 12), length(0, 8);
    for (int round = 0; round < 5000; ++round) {
        FrameSlice slice;
        if (bound(random) > -8)
            slice.begin = bound(random);
        if (bound(random) > -8)
            slice.end = bound(random);
        slice.step = bound(random);
        if (slice.step == 0)
            continue;
        const long long count = length(random);
        EXPECT_EQ(strandview::framesOf(slice, std::size_t(count)),
                  plainSlice(slice.begin, slice.end, slice.step, count));
    }
}

TEST(FrameSlice, NoNumberIsTooLarge)
{
    EXPECT_THAT(framesOf("-9223372036854775808:9223372036854775807:9223372036854775807", 3),
                ElementsAre(0));
    EXPECT_THAT(framesOf("9223372036854775807:-9223372036854775808:-9223372036854775808", 3),
                ElementsAre(2));
}

TEST(FrameSlice, OtherTextsAreNone)
{
    for (const char* text : {"", "3", "a:b", "1:2:0", "1:2:3:4", "1.5:2", " 1:2", "1:2 ", "+1:2",
                             "99999999999999999999:"})
        EXPECT_FALSE(parseFrameSlice(text)) << text;
}

TEST(Shard, OfAllTogetherMakeUpTheFramesOnce)
{
    const std::vector<std::size_t> frames = framesOf("::-3", 50);
    for (const std::size_t count : {1, 2, 3, 7, 100}) {
        std::vector<std::size_t> all;
        for (std::size_t i = 0; i < count; ++i) {
            const std::vector<std::size_t> part = strandview::framesOf(Shard{i, count}, frames);
            all.insert(all.end(), part.begin(), part.end());
        }
        EXPECT_THAT(all, testing::UnorderedElementsAreArray(frames));
    }
    EXPECT_THAT(strandview::framesOf(Shard{1, 3}, {10, 11, 12, 13, 14, 15}), ElementsAre(11, 14));
}

TEST(Shard, IsWrittenAsAPartOfAll)
{
    ASSERT_TRUE(parseShard("2/5"));
    EXPECT_EQ(parseShard("2/5")->index, 2U);
    EXPECT_EQ(parseShard("2/5")->count, 5U);
    for (const char* text : {"", "2", "5/5", "-1/5", "0/0", "1/2/3", "a/2", "1/"})
        EXPECT_FALSE(parseShard(text)) << text;
}

} // namespace strandview
