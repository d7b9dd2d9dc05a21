// SPDX-License-Identifier: GPL-3.0-or-later
#include <biarc/Curve.h>

#include <cmath>
#include <type_traits>

#include <gtest/gtest.h>

#include "support/PlainReference.h"
#include "support/RandomRods.h"

static_assert(std::is_base_of<PKFmanip, Curve<Vector3>>::value, "the base of curves");
static_assert(!std::is_copy_constructible<Curve<Vector3>>::value,
              "the biarcs refer back to their curve");

namespace {

const double PI = 3.14159265358979323846;

void expectEqual(const Vector3& actual, const plain::Vec& expected)
{
    EXPECT_EQ(actual[0], expected.x);
    EXPECT_EQ(actual[1], expected.y);
    EXPECT_EQ(actual[2], expected.z);
}

void expectNear(const Vector3& actual, const Vector3& expected, double tolerance = 1e-14)
{
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(actual[k], expected[k], tolerance) << "component " << k;
}

bool isFinite(const Vector3& v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

// Nodes without tangents.
void appendAll(Curve<Vector3>& curve, const std::vector<Vector3>& points)
{
    for (const Vector3& point : points)
        curve.append(point, Vector3());
}

void appendAll(Curve<Vector3>& curve, const std::vector<plain::Vec>& points)
{
    for (const plain::Vec& point : points)
        curve.append(Vector3(point.x, point.y, point.z), Vector3());
}

// A regular polygon on a circle around the origin, counter-clockwise in the xy plane.
std::vector<Vector3> polygon(int corners, double radius)
{
    std::vector<Vector3> points;
    for (int i = 0; i < corners; ++i) {
        const double angle = 2 * PI * i / corners;
        points.emplace_back(radius * std::cos(angle), radius * std::sin(angle), 0);
    }
    return points;
}

void expectSameBiarc(const Biarc<Vector3>& actual, const plain::Biarc& expected)
{
    expectEqual(actual.point, expected.p0);
    expectEqual(actual.tangent, expected.t0);
    expectEqual(actual.matchPoint, expected.m);
    expectEqual(actual.matchTangent, expected.tm);
    expectEqual(actual.bezier0, expected.bezier0);
    expectEqual(actual.bezier1, expected.bezier1);
    EXPECT_EQ(actual.radius0, expected.radius0);
    EXPECT_EQ(actual.radius1, expected.radius1);
    EXPECT_EQ(actual.length0, expected.length0);
    EXPECT_EQ(actual.length1, expected.length1);
    EXPECT_EQ(actual.length, expected.length);
}

} // namespace

TEST(Curve, IsOpenAndEmptyAtFirst)
{
    const Curve<Vector3> curve;

    EXPECT_EQ(curve.closed, 0);
    EXPECT_TRUE(curve.biarcs.empty());
}

TEST(Curve, AppendedNodesKnowTheirPlaceAndTheirCurve)
{
    // More nodes than any first allocation holds.
    Curve<Vector3> curve;
    for (int i = 0; i < 100; ++i)
        curve.append(Vector3(i, 0, 0), Vector3(0, 3, 4));

    ASSERT_EQ(curve.biarcs.size(), 100u);
    for (int i = 0; i < 100; ++i) {
        SCOPED_TRACE(i);
        const Biarc<Vector3>& node = curve.biarcs[std::size_t(i)];
        EXPECT_EQ(node.id, i);
        EXPECT_EQ(node.curve, &curve);
        EXPECT_EQ(node.biarcFlag, 0);
        expectNear(node.point, {double(i), 0, 0});
        expectNear(node.tangent, {0, 0.6, 0.8});
    }
}

TEST(Curve, ComputeTangentsTakesTheUnweightedCentralDifferenceInside)
{
    // The segments have lengths 1 and 7: weighting by length would favour one of them.
    Curve<Vector3> curve;
    appendAll(curve, std::vector<Vector3>{{0, 0, 0}, {1, 0, 0}, {1, 7, 0}, {1, 7, 2}});
    curve.computeTangents();

    const double norm = std::sqrt(50.0), norm2 = std::sqrt(53.0);
    expectNear(curve.biarcs[1].tangent, {1 / norm, 7 / norm, 0});
    expectNear(curve.biarcs[2].tangent, {0, 7 / norm2, 2 / norm2});
}

TEST(Curve, ComputeTangentsOfAnOpenCurveEndsAlongTheEndSegments)
{
    Curve<Vector3> curve;
    appendAll(curve, std::vector<Vector3>{{0, 0, 0}, {0, 3, 4}, {5, 5, 5}, {5, 5, 3}});
    curve.computeTangents();

    expectNear(curve.biarcs[0].tangent, {0, 0.6, 0.8});
    expectNear(curve.biarcs[3].tangent, {0, 0, -1});
}

TEST(Curve, ComputeTangentsOfAClosedCurveWrapsAround)
{
    Curve<Vector3> curve;
    appendAll(curve, std::vector<Vector3>{{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
    curve.closed = 1;
    curve.computeTangents();

    const double r = std::sqrt(0.5);
    expectNear(curve.biarcs[0].tangent, {r, -r, 0});
    expectNear(curve.biarcs[1].tangent, {r, r, 0});
    expectNear(curve.biarcs[2].tangent, {-r, r, 0});
    expectNear(curve.biarcs[3].tangent, {-r, -r, 0});
}

TEST(Curve, ComputeTangentsReplacesGivenTangents)
{
    Curve<Vector3> curve;
    curve.append({0, 0, 0}, {0, 0, 1});
    curve.append({1, 0, 0}, {0, 0, 1});
    curve.computeTangents();

    expectNear(curve.biarcs[0].tangent, {1, 0, 0});
    expectNear(curve.biarcs[1].tangent, {1, 0, 0});
}

TEST(Curve, ComputeTangentsKeepsTheTangentOfASingleNode)
{
    Curve<Vector3> curve;
    curve.computeTangents();
    curve.append({0, 0, 0}, {0, 0, 1});
    curve.computeTangents();

    expectNear(curve.biarcs[0].tangent, {0, 0, 1});
}

TEST(Curve, TheLastNodeOfAnOpenCurveStaysInvalid)
{
    Curve<Vector3> curve;
    appendAll(curve, std::vector<Vector3>{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    curve.computeTangents();
    curve.makeMidpointRule();

    EXPECT_EQ(curve.biarcs[0].biarcFlag, 1);
    EXPECT_EQ(curve.biarcs[1].biarcFlag, 1);
    EXPECT_EQ(curve.biarcs[2].biarcFlag, 0);
    expectNear(curve.biarcs[2].matchPoint, {0, 0, 0});
    expectNear(curve.biarcs[2].matchTangent, {0, 0, 0});
}

TEST(Curve, EveryNodeOfAClosedCurveIsMatched)
{
    Curve<Vector3> curve;
    appendAll(curve, polygon(5, 1));
    curve.closed = 1;
    curve.computeTangents();
    curve.makeMidpointRule();

    for (const Biarc<Vector3>& biarc : curve.biarcs)
        EXPECT_EQ(biarc.biarcFlag, 1) << "biarc " << biarc.id;
    // The last biarc ends in the first node.
    const Biarc<Vector3>& last = curve.biarcs[4];
    expectNear(last.pointOnBiarc(last.length), curve.biarcs[0].point);
    expectNear(last.tangentOnBiarc(last.length), curve.biarcs[0].tangent);
}

TEST(Curve, MatchesNothingWithoutASecondNode)
{
    Curve<Vector3> curve;
    testing::internal::CaptureStdout();
    curve.makeMidpointRule();
    curve.append({0, 0, 0}, {1, 0, 0});
    curve.makeMidpointRule();

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(curve.biarcs[0].biarcFlag, 0);
}

TEST(Curve, AClosedPolygonBecomesItsCircle)
{
    // By symmetry the central differences are the circle's tangents.
    for (const int corners : {4, 5, 12, 100}) {
        SCOPED_TRACE(corners);
        const double radius = 2.5;
        Curve<Vector3> curve;
        appendAll(curve, polygon(corners, radius));
        curve.closed = 1;
        curve.computeTangents();
        curve.makeMidpointRule();

        double length = 0;
        for (const Biarc<Vector3>& biarc : curve.biarcs) {
            EXPECT_NEAR(biarc.matchPoint.norm(), radius, 1e-12);
            EXPECT_NEAR(biarc.radius0, radius, 1e-10);
            EXPECT_NEAR(biarc.radius1, radius, 1e-10);
            EXPECT_NEAR(biarc.length0, biarc.length1, 1e-10);
            for (int k = 0; k <= 10; ++k)
                EXPECT_NEAR(biarc.pointOnBiarc(biarc.length * k / 10).norm(), radius, 1e-12);
            length += biarc.length;
        }
        EXPECT_NEAR(length, 2 * PI * radius, 1e-9);
    }
}

TEST(Curve, CoincidentPointsGiveNonFiniteNumbersWithoutAMessage)
{
    Curve<Vector3> curve;
    appendAll(curve, std::vector<Vector3>{{1, 2, 3}, {1, 2, 3}, {4, 2, 3}});

    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    curve.computeTangents();
    curve.makeMidpointRule();
    const Vector3 point = curve.biarcs[0].pointOnBiarc(0.5);
    const Vector3 tangent = curve.biarcs[0].tangentOnBiarc(0.5);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(isFinite(curve.biarcs[0].matchPoint));
    EXPECT_FALSE(std::isfinite(curve.biarcs[0].length));
    EXPECT_FALSE(isFinite(point));
    EXPECT_FALSE(isFinite(tangent));
    // The segment that does not touch the repeated point's bad tangent is sound.
    EXPECT_TRUE(isFinite(curve.biarcs[1].matchPoint));
    EXPECT_EQ(curve.biarcs[1].length, 3);
}

TEST(Curve, OppositeTangentsAlongTheChordGiveNonFiniteNumbersWithoutAMessage)
{
    // c = -1, a0 = 1, a1 = -1: S = 0 and D = 0.
    Curve<Vector3> curve;
    curve.append({0, 0, 0}, {1, 0, 0});
    curve.append({1, 0, 0}, {-1, 0, 0});

    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    curve.makeMidpointRule();
    const Vector3 point = curve.biarcs[0].pointOnBiarc(0.5);

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(isFinite(curve.biarcs[0].matchPoint));
    EXPECT_FALSE(isFinite(point));
}

TEST(Curve, EqualTangentsAcrossTheChordGiveNonFiniteNumbersWithoutAMessage)
{
    // c = 1, a0 = a1 = 0: S = 0 and D = 0.
    Curve<Vector3> curve;
    curve.append({0, 0, 0}, {0, 0, 1});
    curve.append({1, 0, 0}, {0, 0, 1});

    testing::internal::CaptureStderr();
    curve.makeMidpointRule();
    const Vector3 point = curve.biarcs[0].pointOnBiarc(0.5);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(isFinite(curve.biarcs[0].matchPoint));
    EXPECT_FALSE(isFinite(point));
}

class CurveOnRandomRods : public testing::TestWithParam<RodKind>
{
};

TEST_P(CurveOnRandomRods, HasTheBiarcsOfThePlainFormulas)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        for (const bool closed : {false, true}) {
            // A rod that ends where it began has no chord to wrap around.
            if (closed && GetParam() == RodKind::CLOSED)
                continue;
            SCOPED_TRACE("seed " + std::to_string(seed) + (closed ? ", closed" : ", open"));
            const std::vector<plain::Vec> points =
                plain::toPlain(randomRod(GetParam(), 15, seed).points);
            Curve<Vector3> curve;
            curve.closed = closed;
            appendAll(curve, points);
            curve.computeTangents();
            curve.makeMidpointRule();
            const plain::Curve expected =
                plain::curveThrough(points, plain::estimatedTangents(points, closed), closed);

            ASSERT_EQ(curve.biarcs.size(), points.size());
            for (std::size_t i = 0; i < expected.biarcs.size(); ++i) {
                SCOPED_TRACE(i);
                expectSameBiarc(curve.biarcs[i], expected.biarcs[i]);
            }
        }
    }
}

TEST_P(CurveOnRandomRods, HasTheBiarcsOfThePlainFormulasWithGivenTangents)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        RandomNumbers random(seed);
        const RandomRod rod = randomRod(GetParam(), 15, seed);
        Curve<Vector3> curve;
        std::vector<plain::Vec> tangents;
        for (const auto& point : rod.points) {
            const auto given = random.unitVector() * 3.0;
            curve.append({point.x, point.y, point.z}, {given.x, given.y, given.z});
            tangents.push_back(plain::unit(plain::toPlain(given)));
        }
        curve.makeMidpointRule();
        const plain::Curve expected = plain::curveThrough(plain::toPlain(rod.points), tangents);

        for (std::size_t i = 0; i < expected.biarcs.size(); ++i) {
            SCOPED_TRACE(i);
            expectSameBiarc(curve.biarcs[i], expected.biarcs[i]);
        }
    }
}

TEST_P(CurveOnRandomRods, IsContinuousWithItsTangentAtEveryNodeAndMatchingPoint)
{
    for (unsigned seed = 0; seed < 10; ++seed) {
        SCOPED_TRACE(seed);
        const std::vector<plain::Vec> points =
            plain::toPlain(randomRod(GetParam(), 15, seed).points);
        Curve<Vector3> curve;
        appendAll(curve, points);
        curve.computeTangents();
        curve.makeMidpointRule();

        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            SCOPED_TRACE(i);
            const Biarc<Vector3>& biarc = curve.biarcs[i];
            const Biarc<Vector3>& next = curve.biarcs[i + 1];
            // Coordinates are rounded to 1e-16 of their size; a short chord magnifies that.
            const double tolerance =
                1e-13 + 1e-14 * next.point.norm() / (next.point - biarc.point).norm();

            // Tangents of a circle at the ends of a chord mirror each other in it, so the
            // first arc's end tangent is tm, and the second's, from tm on, must be tN.
            EXPECT_NEAR(biarc.matchTangent.norm(), 1, 1e-14);
            expectNear(biarc.tangent.reflect(biarc.matchPoint - biarc.point), biarc.matchTangent,
                       1e-14);
            expectNear(biarc.matchTangent.reflect(next.point - biarc.matchPoint), next.tangent,
                       tolerance);
            // The end is evaluated, not looked up: length - length0 need not be length1.
            expectNear(biarc.pointOnBiarc(0), biarc.point, 0);
            // An arc too short for the projection then ends in its start.
            if (GetParam() != RodKind::TINY) {
                expectNear(biarc.pointOnBiarc(biarc.length), next.point,
                           1e-14 * (next.point.norm() + biarc.length));
            }
            expectNear(biarc.tangentOnBiarc(biarc.length), next.tangent, 1e-15);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, CurveOnRandomRods, testing::ValuesIn(allRodKinds()),
                         [](const auto& kind) { return nameOf(kind.param); });
