// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/model/points.h>

#include <gtest/gtest.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

std::vector<Vector> alongX(const std::vector<double>& places)
{
    std::vector<Vector> points;
    for (const double x : places)
        points.emplace_back(x, 0, 0);
    return points;
}

} // namespace

TEST(Points, AreCoincidentWhereTheSquareOfTheirDistanceIsNoNormalNumber)
{
    // The smallest normal number is 2.2e-308, the square of 1.49e-154.
    EXPECT_TRUE(areCoincident({1, 2, 3}, {1, 2, 3}));
    EXPECT_TRUE(areCoincident({0, 0, 0}, {0, 1.4e-154, 0}));
    EXPECT_FALSE(areCoincident({0, 0, 0}, {0, 1.5e-154, 0}));
    EXPECT_FALSE(areCoincident({0, 0, 1}, {0, 0, -1}));
    EXPECT_FALSE(areCoincident({1, 0, 0}, {1 + 1e-15, 0, 0}))
        << "small beside the coordinates only";
}

TEST(Points, TheSmallestEdgeIsAHundredThousandthOfTheMeanOne)
{
    EXPECT_DOUBLE_EQ(smallestEdge(alongX({0, 1, 4})), 2e-5);
    EXPECT_DOUBLE_EQ(smallestEdge(alongX({0, 1, 1, 1, -2})), 2e-5)
        << "coincident ones do not count";
    EXPECT_DOUBLE_EQ(smallestEdge({{0, 0, 0}, {3, 4, 0}}), 5e-5);
}

TEST(Points, EveryEdgeIsMeasuredWhereverItIs)
{
    for (std::size_t edges = 2; edges < 30; ++edges) {
        for (std::size_t place = 0; place < edges; ++place) {
            const auto withEdgeOf = [&](double length) {
                std::vector<double> places = {0};
                for (std::size_t i = 0; i < edges; ++i)
                    places.push_back(places.back() + (i == place ? length : 1));
                return measureEdges(alongX(places));
            };
            EXPECT_TRUE(withEdgeOf(1).areLong);
            EXPECT_TRUE(withEdgeOf(1e-4).areLong);
            EXPECT_FALSE(withEdgeOf(1e-6).areLong) << edges << " " << place;
            EXPECT_FALSE(withEdgeOf(0).areLong) << edges << " " << place;
            EXPECT_DOUBLE_EQ(withEdgeOf(0).smallest, 1e-5) << "of the others";
            EXPECT_DOUBLE_EQ(withEdgeOf(3).smallest, 1e-5 * double(edges + 2) / double(edges));
        }
    }
}

TEST(Points, ThereIsNoSmallestEdgeWithoutAnEdge)
{
    EXPECT_EQ(smallestEdge({}), 0);
    EXPECT_EQ(smallestEdge(alongX({5})), 0);
    EXPECT_EQ(smallestEdge(alongX({5, 5, 5})), 0);
}

TEST(Points, AreClosedWhereTheLastIsTheFirstWithinTheSmallestEdge)
{
    const auto triangle = [](double gap) {
        return std::vector<Vector>{{0, 0, 0}, {3, 0, 0}, {0, 4, 0}, {gap, 0, 0}};
    };
    // Edges of 3, 5 and about 4: their mean is 4.
    EXPECT_TRUE(isClosed(triangle(0)));
    EXPECT_TRUE(isClosed(triangle(3.9e-5)));
    EXPECT_FALSE(isClosed(triangle(4.1e-5)));
    EXPECT_FALSE(isClosed(alongX({0, 1})));
    EXPECT_TRUE(isClosed(alongX({2, 2})));
}

} // namespace strandview
