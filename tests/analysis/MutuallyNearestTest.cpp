// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/mutuallyNearest.h>

#include <algorithm>
#include <limits>
#include <random>

#include <gmock/gmock.h>

#include <strandview/analysis/helices.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using testing::ElementsAre;

constexpr double NEVER = std::numeric_limits<double>::infinity();

std::vector<std::size_t> nearestBy(const std::vector<Vector>& points, double reach)
{
    return mutuallyNearest(points, reach, [&points](std::size_t i, std::size_t j) {
        return (points[j] - points[i]).getNorm();
    });
}

} // namespace

TEST(MutuallyNearest, BothHaveToBeTheNearest)
{
    // 1 is nearest to 0, but nearer to 2.
    EXPECT_THAT(nearestBy({{0, 0, 0}, {1, 0, 0}, {1.5, 0, 0}, {9, 0, 0}}, 2),
                ElementsAre(NO_NUCLEOTIDE, 2, 1, NO_NUCLEOTIDE));
    EXPECT_TRUE(nearestBy({}, 2).empty());
}

TEST(MutuallyNearest, WhatIsOutOfReachIsNotAskedFor)
{
    EXPECT_THAT(nearestBy({{-0.01, 0, 0}, {2, 0, 0}}, 2),
                ElementsAre(NO_NUCLEOTIDE, NO_NUCLEOTIDE));
    EXPECT_THAT(nearestBy({{0, 0, 0}, {2, 0, 0}}, 2), ElementsAre(1, 0));
}

TEST(MutuallyNearest, AnInfiniteDistanceIsNone)
{
    const std::vector<Vector> points{{0, 0, 0}, {0, 0, 0}};
    const auto never = [](std::size_t, std::size_t) { return NEVER; };
    EXPECT_THAT(mutuallyNearest(points, 1, never), ElementsAre(NO_NUCLEOTIDE, NO_NUCLEOTIDE));
}

TEST(MutuallyNearest, OfEqualOnesTheLowerIndexIsTheNearer)
{
    EXPECT_THAT(nearestBy({{1, 0, 0}, {0, 0, 0}, {-1, 0, 0}}, 2), ElementsAre(1, 0, NO_NUCLEOTIDE));
}

TEST(MutuallyNearest, PointsMayBeFarFromTheOrigin)
{
    EXPECT_THAT(nearestBy({{1e18, 0, -1e18}, {1e18, 0, -1e18}}, 2), ElementsAre(1, 0));
}

TEST(MutuallyNearest, InACrowdNobodyIsAskedAndNobodyHasAPartner)
{
    std::vector<Vector> points(1001, {5, 5, 5});
    points.emplace_back(50, 0, 0);
    points.emplace_back(51, 0, 0);
    std::size_t asked = 0;
    const auto partners = mutuallyNearest(points, 2, [&](std::size_t, std::size_t) {
        ++asked;
        return 1.0;
    });
    EXPECT_EQ(asked, 2); // from either end
    EXPECT_EQ(partners[1001], 1002);
    EXPECT_EQ(partners[1002], 1001);
    EXPECT_EQ(std::count(partners.begin(), partners.end(), NO_NUCLEOTIDE), 1001);

    points.erase(points.begin());
    const auto ofFewer = nearestBy(points, 2);
    EXPECT_EQ(ofFewer[0], 1);
    EXPECT_EQ(ofFewer[1], 0);
}

TEST(MutuallyNearest, IsWhatComparingAllWithAllFinds)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<double> place(-5, 5);
    std::vector<Vector> points;
    for (int i = 0; i < 500; ++i)
        points.emplace_back(place(random), place(random), place(random));
    const double reach = 0.9;
    std::vector<std::size_t> nearest(points.size(), NO_NUCLEOTIDE), expected = nearest;
    for (std::size_t i = 0; i < points.size(); ++i) {
        double least = reach;
        for (std::size_t j = 0; j < points.size(); ++j) {
            const double apart = (points[j] - points[i]).getNorm();
            if (j != i && apart <= least) {
                least = apart;
                nearest[i] = j;
            }
        }
    }
    std::size_t count = 0;
    for (std::size_t i = 0; i < points.size(); ++i)
        if (nearest[i] != NO_NUCLEOTIDE && nearest[nearest[i]] == i) {
            expected[i] = nearest[i];
            ++count;
        }
    EXPECT_GT(count, 100u);
    EXPECT_EQ(nearestBy(points, reach), expected);
}

} // namespace strandview
