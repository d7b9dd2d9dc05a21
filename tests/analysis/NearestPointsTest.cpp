// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/nearestPoints.h>

#include <limits>

#include <gmock/gmock.h>

#include "support/RandomRods.h"

namespace strandview {

namespace {

using Points = std::vector<algebra3d::Vector3<double>>;

double leastDistance(const algebra3d::Vector3<double>& place, const Points& points)
{
    double least = std::numeric_limits<double>::infinity();
    for (const auto& point : points)
        least = std::min(least, (point - place).getNorm());
    return least;
}

} // namespace

TEST(NearestPoints, AreThoseOfAll)
{
    RandomNumbers random(5);
    int found = 0, none = 0;
    for (int size = 1; size <= 200; size += 7) {
        Points points, places;
        for (int i = 0; i < size; ++i)
            points.push_back(random.unitVector() * (size % 3 == 0 ? 1 : 0.1 * i));
        for (int i = 0; i < 20; ++i)
            places.push_back(random.unitVector() * (0.3 * i));
        const auto nearest = nearestPoints(places, points, 0.5);
        ASSERT_EQ(nearest.size(), places.size());
        for (std::size_t i = 0; i < places.size(); ++i) {
            const double least = leastDistance(places[i], points);
            ASSERT_EQ(nearest[i].has_value(), least < 0.5) << size;
            if (nearest[i]) {
                EXPECT_EQ((points[*nearest[i]] - places[i]).getNorm(), least);
                ++found;
            } else {
                ++none;
            }
        }
    }
    EXPECT_GT(found, 100);
    EXPECT_GT(none, 100);
}

TEST(NearestPoints, OfNoPointsAreNone)
{
    EXPECT_THAT(nearestPoints({{0, 0, 0}}, {}, 1), testing::ElementsAre(std::nullopt));
    EXPECT_THAT(nearestPoints({}, {{0, 0, 0}}, 1), testing::IsEmpty());
}

// Every place looked at from every point would take longer than a test may.
TEST(NearestPoints, OfManyPointsAreNotSoughtAmongAll)
{
    const std::size_t size = 1000000;
    Points line, heap(size, {3, 4, 0});
    for (std::size_t i = 0; i < size; ++i)
        line.emplace_back(0.001 * double(i), 0, 0);
    const auto alongLine = nearestPoints(line, line, 20);
    for (std::size_t i = 0; i < size; i += 1000)
        EXPECT_EQ(alongLine[i], i);
    EXPECT_TRUE(nearestPoints(line, heap, 1e9).back());
}

} // namespace strandview
