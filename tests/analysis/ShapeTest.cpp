// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/shape.h>

#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include <strandview/analysis/curveNumbers.h>

#include "support/RandomRods.h"
#include "support/knots.h"

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Points = std::vector<Vector>;

// Every pair of edges, one after the other.
std::optional<double> plainContact(const Points& curve, bool isClosed)
{
    const auto all = curvatures({curve, {}, isClosed});
    const double half = M_PI / *std::max_element(all.begin(), all.end());
    const double length = lengthOf(curve);
    const std::size_t edges = curve.size() - 1;
    std::optional<double> least;
    for (std::size_t i = 0; i < edges; ++i)
        for (std::size_t j = i + 2; j < edges; ++j) {
            if (isClosed && i == 0 && j == edges - 1)
                continue;
            double between = 0;
            for (std::size_t k = i + 1; k < j; ++k)
                between += (curve[k + 1] - curve[k]).getNorm();
            const double ofBoth =
                (curve[i + 1] - curve[i]).getNorm() + (curve[j + 1] - curve[j]).getNorm();
            if (isClosed)
                between = std::min(between, length - between - ofBoth);
            const double distance = distanceOfEdges(curve[i], curve[i + 1], curve[j], curve[j + 1]);
            if (between > half && distance < least.value_or(1e300))
                least = distance;
        }
    return least;
}

} // namespace

TEST(Shape, OfASquare)
{
    const Points open{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}};
    EXPECT_EQ(lengthOf(open), 6);
    EXPECT_EQ(endToEndOf(open), 2);
    EXPECT_DOUBLE_EQ(radiusOfGyrationOf(open), std::sqrt(2));
    Points closed = open;
    closed.push_back(closed.front());
    EXPECT_EQ(lengthOf(closed), 8);
    EXPECT_EQ(endToEndOf(closed), 0);
    EXPECT_DOUBLE_EQ(radiusOfGyrationOf(closed), std::sqrt(2)); // each corner once
}

TEST(Shape, RadiusOfGyrationOfAStraightRodIsItsLengthOverTheRootOfTwelve)
{
    Points points;
    for (int i = 0; i <= 10000; ++i)
        points.emplace_back(1e6, 0, 1e-3 * i); // far away, where squares would lose digits
    EXPECT_NEAR(radiusOfGyrationOf(points), 10 / std::sqrt(12), 1e-3);
    EXPECT_NEAR(radiusOfGyrationOf(points), 10 * std::sqrt(10002.0 / 10000 / 12), 1e-6);
}

TEST(Shape, OfNothingIsZero)
{
    EXPECT_EQ(lengthOf({}), 0);
    EXPECT_EQ(endToEndOf({}), 0);
    EXPECT_EQ(radiusOfGyrationOf({}), 0);
    EXPECT_FALSE(contactOf({}));
}

TEST(DistanceOfEdges, OfThoseThatCrossOrLieBesideOrBehindEachOther)
{
    const Vector a(0, 0, 0), b(2, 0, 0);
    EXPECT_EQ(distanceOfEdges(a, b, {1, -1, 3}, {1, 1, 3}), 3); // inside both
    EXPECT_EQ(distanceOfEdges(a, b, {5, 0, 4}, {6, 0, 9}), 5);  // of two ends
    EXPECT_EQ(distanceOfEdges(a, b, {1, 2, 0}, {1, 9, 0}), 2);  // of an end and an inner point
    EXPECT_EQ(distanceOfEdges(a, b, {1, 1, 0}, {4, 1, 0}), 1);  // parallel
    EXPECT_EQ(distanceOfEdges(a, b, {1, 0, 0}, {4, 0, 0}), 0);  // on one line
    EXPECT_EQ(distanceOfEdges(a, a, {3, 4, 0}, {3, 4, 0}), 5);  // of two points
}

TEST(DistanceOfEdges, IsTheLeastOfManyPairsOfPoints)
{
    RandomNumbers random(8);
    for (int trial = 0; trial < 200; ++trial) {
        const Vector a = random.unitVector() * 2, b = random.unitVector(), c = random.unitVector(),
                     d = random.unitVector() * 3;
        const double found = distanceOfEdges(a, b, c, d);
        double least = 1e300;
        for (int i = 0; i <= 60; ++i)
            for (int j = 0; j <= 60; ++j)
                least = std::min(least,
                                 (a + (b - a) * (i / 60.0) - c - (d - c) * (j / 60.0)).getNorm());
        EXPECT_LE(found, least + 1e-12);
        EXPECT_NEAR(found, least, 0.1);
        EXPECT_NEAR(distanceOfEdges(d, c, b, a), found, 1e-12);
    }
}

TEST(Contact, OfAHairpinIsTheDistanceOfItsLegs)
{
    // Legs of length 10 at a distance of 2, and half a circle between them.
    Points points;
    for (int i = 0; i <= 50; ++i)
        points.emplace_back(0.2 * i, -1, 0);
    for (int i = 1; i < 40; ++i)
        points.emplace_back(10 + std::sin(M_PI * i / 40), -std::cos(M_PI * i / 40), 0);
    for (int i = 50; i >= 0; --i)
        points.emplace_back(0.2 * i, 1, 0);
    const auto contact = contactOf(points);
    ASSERT_TRUE(contact);
    EXPECT_NEAR(contact->distance, 2, 1e-12);
    EXPECT_LT(contact->edge1, contact->edge2);
    EXPECT_NEAR(distanceOfEdges(points[contact->edge1], points[contact->edge1 + 1],
                                points[contact->edge2], points[contact->edge2 + 1]),
                contact->distance, 0);
}

TEST(Contact, OfStraightCurvesAndCirclesIsNone)
{
    Points line;
    for (int i = 0; i < 100; ++i)
        line.emplace_back(i, 0, 0);
    EXPECT_FALSE(contactOf(line));
    EXPECT_FALSE(
        contactOf(ringOf(100, [](double t) { return Vector(std::cos(t), std::sin(t), 0); })));
}

TEST(Contact, OfACircleIsNoneHoweverItsPointsAreRounded)
{
    for (const int size : {1000, 4000}) {
        const auto rounded = [](double value) { return std::round(value * 1e6) / 1e6; };
        EXPECT_FALSE(contactOf(ringOf(size, [&](double t) {
            return Vector(rounded(std::cos(t)), rounded(std::sin(t)), 0);
        }))) << size;
    }
}

// Of which no two edges are that far apart along the curve, or those across alone: to look at all
// pairs would take longer than a test may.
TEST(Contact, OfALongRingIsNotSoughtAmongAllPairs)
{
    const auto ellipse = [](double wide) {
        return ringOf(700000,
                      [wide](double t) { return Vector(wide * std::cos(t), std::sin(t), 0); });
    };
    EXPECT_FALSE(contactOf(ellipse(1)));
    const auto contact = contactOf(ellipse(1.01));
    ASSERT_TRUE(contact);
    EXPECT_NEAR(contact->distance, 2, 1e-3);
}

TEST(Contact, IsThatOfAllPairsOfEdges)
{
    int found = 0;
    for (unsigned seed = 0; seed < 40; ++seed)
        for (const RodKind kind : {RodKind::SMOOTH, RodKind::RANDOM_WALK, RodKind::CLOSED}) {
            const Points points = randomRod(kind, 10 + 9 * int(seed), seed).points;
            const bool isClosed = kind == RodKind::CLOSED;
            const auto contact = contactOf(points);
            const auto expected = plainContact(points, isClosed);
            ASSERT_EQ(contact.has_value(), expected.has_value()) << seed;
            if (contact) {
                EXPECT_NEAR(contact->distance, *expected, 1e-12) << seed;
                ++found;
            }
        }
    EXPECT_GT(found, 60);
}

TEST(Contact, OfATightTorusKnotStaysWhenItIsTurnedOrBegunElsewhere)
{
    const Points knot = torusKnot(2, 3, 300);
    const auto contact = contactOf(knot);
    ASSERT_TRUE(contact);
    Points other;
    for (std::size_t i = 0; i < knot.size(); ++i)
        other.push_back(
            algebra3d::rotated(knot[(i + 77) % 300], algebra3d::about(Vector(1, 1, 1), 1.0)) * 10);
    other.back() = other.front();
    const auto ofOther = contactOf(other);
    ASSERT_TRUE(ofOther);
    EXPECT_NEAR(ofOther->distance, 10 * contact->distance, 1e-11);
}

} // namespace strandview
