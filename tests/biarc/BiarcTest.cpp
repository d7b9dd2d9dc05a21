// SPDX-License-Identifier: GPL-3.0-or-later
#include <biarc/Biarc.h>
#include <biarc/Curve.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "support/PlainReference.h"
#include "support/RandomRods.h"

namespace {

const double PI = 3.14159265358979323846;
const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

const char* const POINT_OUT_OF_BOUNDS = "Biarc::pointOnBiarc(float) : value out of bounds\n";
const char* const POINT_INVALID = "Biarc::pointOnBiarc(float) : Not a valid biarc\n";
const char* const TANGENT_OUT_OF_BOUNDS = "Biarc::tangentOnBiarc(float) : val out of bounds\n";
const char* const TANGENT_INVALID = "Biarc::tangentOnBiarc(float) : Not a valid biarc\n";

void expectEqual(const Vector3& actual, const Vector3& expected)
{
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(actual[k], expected[k]) << "component " << k;
}

// Equal doubles, or neither of them a number.
void expectSame(const Vector3& actual, const Vector3& expected)
{
    for (int k = 0; k < 3; ++k) {
        if (std::isnan(actual[k]) && std::isnan(expected[k]))
            continue;
        EXPECT_EQ(actual[k], expected[k]) << "component " << k;
    }
}

void expectSame(const Vector3& actual, const plain::Vec& expected)
{
    expectSame(actual, Vector3(expected.x, expected.y, expected.z));
}

bool isFinite(const Vector3& v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]);
}

void expectNear(const Vector3& actual, const Vector3& expected, double tolerance = 1e-14)
{
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(actual[k], expected[k], tolerance) << "component " << k;
}

// A matched curve of two nodes; its first biarc is the one of interest.
std::unique_ptr<Curve<Vector3>> twoNodes(const Vector3& p0, const Vector3& t0, const Vector3& p1,
                                         const Vector3& t1)
{
    auto curve = std::make_unique<Curve<Vector3>>();
    curve->append(p0, t0);
    curve->append(p1, t1);
    curve->makeMidpointRule();
    return curve;
}

// A quarter of the unit circle around (0, 1, 0).
std::unique_ptr<Curve<Vector3>> quadrant()
{
    return twoNodes({0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0});
}

// Its point at an angle from p0.
Vector3 onQuadrant(double angle) { return {std::sin(angle), 1 - std::cos(angle), 0}; }

// A straight biarc from the origin to (3, 0, 4).
std::unique_ptr<Curve<Vector3>> straightLine()
{
    return twoNodes({0, 0, 0}, {3, 0, 4}, {3, 0, 4}, {3, 0, 4});
}

// A first arc straight along x to (1, 0, 0), a second one a quarter of the unit circle
// around (1, 1, 0) to (2, 1, 0).
std::unique_ptr<Curve<Vector3>> straightThenCurved()
{
    auto curve = std::make_unique<Curve<Vector3>>();
    curve->append({0, 0, 0}, {1, 0, 0});
    curve->append({2, 1, 0}, {0, 1, 0});
    curve->biarcs[0].matchPoint = Vector3(1, 0, 0);
    curve->biarcs[0].setMidTangent({1, 0, 0});
    return curve;
}

// What a call writes to standard error, and what it returns.
template <typename Call>
std::pair<std::string, Vector3> callWithErrors(Call call)
{
    testing::internal::CaptureStderr();
    const Vector3 result = call();
    return {testing::internal::GetCapturedStderr(), result};
}

// One or more complaints that there is no curve, and nothing else.
void expectCurveProblems(const std::string& output)
{
    const std::string line = "C problem\n";
    ASSERT_NE(output, "");
    for (std::size_t at = 0; at < output.size(); at += line.size())
        EXPECT_EQ(output.substr(at, line.size()), line);
}

plain::Biarc toPlain(const Biarc<Vector3>& b, const Biarc<Vector3>& next)
{
    using plain::toPlain;
    return plain::biarcThrough(toPlain(b.point), toPlain(b.tangent), toPlain(b.matchPoint),
                               toPlain(b.matchTangent), toPlain(next.point), toPlain(next.tangent));
}

// A biarc's arc lengths at which something changes, and some between and beyond.
std::vector<double> interestingLengths(const Biarc<Vector3>& b)
{
    std::vector<double> lengths = {0,
                                   -1,
                                   -b.length / 7,
                                   b.length,
                                   b.length0,
                                   b.length0 / 2,
                                   b.length0 + b.length1 / 2,
                                   std::nextafter(0.0, 1.0),
                                   std::nextafter(b.length, 0.0),
                                   std::nextafter(b.length0, 0.0),
                                   std::nextafter(b.length0, b.length),
                                   std::nextafter(b.length0 / 2, b.length)};
    for (int k = 0; k <= 16; ++k)
        lengths.push_back(k * (b.length / 17));
    return lengths;
}

std::unique_ptr<Curve<Vector3>> randomCurve(RodKind kind, unsigned seed)
{
    auto curve = std::make_unique<Curve<Vector3>>();
    for (const auto& point : randomRod(kind, 12, seed).points)
        curve->append({point.x, point.y, point.z}, Vector3());
    curve->computeTangents();
    curve->makeMidpointRule();
    return curve;
}

} // namespace

// Construction

TEST(Biarc, StartsInvalidAndWithoutACurve)
{
    const Biarc<Vector3> biarc({1, 2, 3}, {0, 3, 4});

    EXPECT_EQ(biarc.biarcFlag, 0);
    EXPECT_EQ(biarc.id, -1);
    EXPECT_EQ(biarc.curve, nullptr);
    expectEqual(biarc.point, Vector3(1, 2, 3));
    expectEqual(biarc.tangent, Vector3(0, 3.0 / 5, 4.0 / 5));
    expectEqual(biarc.matchPoint, Vector3(0, 0, 0));
    expectEqual(biarc.matchTangent, Vector3(0, 0, 0));
    expectEqual(biarc.bezier0, Vector3(0, 0, 0));
    expectEqual(biarc.bezier1, Vector3(0, 0, 0));
}

TEST(Biarc, CopiesAllFields)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& original = curve->biarcs[0];
    const Biarc<Vector3> copy(original);

    EXPECT_EQ(copy.biarcFlag, 1);
    EXPECT_EQ(copy.id, 0);
    EXPECT_EQ(copy.curve, curve.get());
    expectEqual(copy.point, original.point);
    expectEqual(copy.tangent, original.tangent);
    expectEqual(copy.matchPoint, original.matchPoint);
    expectEqual(copy.matchTangent, original.matchTangent);
    expectEqual(copy.bezier0, original.bezier0);
    expectEqual(copy.bezier1, original.bezier1);
    EXPECT_EQ(copy.radius0, original.radius0);
    EXPECT_EQ(copy.radius1, original.radius1);
    EXPECT_EQ(copy.length0, original.length0);
    EXPECT_EQ(copy.length1, original.length1);
    EXPECT_EQ(copy.length, original.length);
    expectEqual(copy.pointOnBiarc(0.7), original.pointOnBiarc(0.7));
}

// A quarter of a circle

TEST(Biarc, MatchesAQuadrantInItsMiddle)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    const double r = std::sqrt(0.5);
    expectNear(biarc.matchPoint, {r, 1 - r, 0});
    expectNear(biarc.matchTangent, {r, r, 0});
    EXPECT_EQ(biarc.biarcFlag, 1);
}

TEST(Biarc, HasTheRadiusAndTheLengthsOfAQuadrant)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    EXPECT_NEAR(biarc.radius0, 1, 1e-14);
    EXPECT_NEAR(biarc.radius1, 1, 1e-14);
    EXPECT_NEAR(biarc.length0, PI / 4, 1e-14);
    EXPECT_NEAR(biarc.length1, PI / 4, 1e-14);
    EXPECT_NEAR(biarc.length0 + biarc.length1, PI / 2, 1e-14);
    EXPECT_EQ(biarc.length, biarc.length0 + biarc.length1);
}

TEST(Biarc, ControlPointsAreWhereTheTangentLinesMeet)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    const double half = std::tan(PI / 8);
    expectNear(biarc.bezier0, {half, 0, 0});
    expectNear(biarc.bezier1, {1, 1 - half, 0});
}

TEST(Biarc, SamplesLieOnTheCircleNearButNotAtTheirArcLength)
{
    // The chord fraction of the circle's point is used as the Bezier parameter, so only
    // the ends and the middle of each arc come out at their arc length.
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    for (const double part : {0.25, 0.75, 1.25, 1.75}) {
        SCOPED_TRACE(part);
        const Vector3 point = biarc.pointOnBiarc(part * biarc.length0);
        EXPECT_NEAR((point - Vector3(0, 1, 0)).norm(), 1, 1e-14);
        const double distance = (point - onQuadrant(part * PI / 4)).norm();
        EXPECT_GT(distance, 0.004);
        EXPECT_LT(distance, 0.008);
    }
    for (const double part : {0.0, 0.5, 1.0, 1.5, 2.0})
        expectNear(biarc.pointOnBiarc(part * biarc.length0), onQuadrant(part * PI / 4));
}

TEST(Biarc, ASampleIsTheConicAtTheChordFraction)
{
    // At a quarter of the first arc: the angle from p0 is 11.25 degrees, so the model
    // circle's point is 2 sin(5.625) away and 16.875 degrees off the chord, whose length
    // is 2 sin(22.5). The conic's weight is cos(22.5); its control points are p0, a point
    // on the x axis and m.
    const double degree = PI / 180;
    const double fraction =
        std::sin(5.625 * degree) * std::cos(16.875 * degree) / std::sin(22.5 * degree);
    const double w = std::cos(22.5 * degree);
    const double outer = (1 - fraction) * (1 - fraction), inner = fraction * fraction,
                 middle = 2 * w * fraction * (1 - fraction);
    const double r = std::sqrt(0.5);
    const double x = middle * std::tan(22.5 * degree) + inner * r;
    const double y = inner * (1 - r);

    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];
    const double sum = outer + middle + inner;
    expectNear(biarc.pointOnBiarc(biarc.length0 / 4), {x / sum, y / sum, 0});
}

TEST(Biarc, TangentsAreThoseOfTheCircleAtThePoint)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    for (int k = 0; k <= 40; ++k) {
        SCOPED_TRACE(k);
        const double s = biarc.length * k / 40;
        const Vector3 fromCentre = biarc.pointOnBiarc(s) - Vector3(0, 1, 0);
        // A quarter turn counter-clockwise from the radius.
        expectNear(biarc.tangentOnBiarc(s), {-fromCentre[1], fromCentre[0], 0}, 1e-13);
    }
}

TEST(Biarc, StoredPointsAndTangentsComeBackExactly)
{
    const auto curve = twoNodes({0.1, 0.2, 0.3}, {1, 0.3, -0.2}, {1.3, 1.1, -0.4}, {0.1, 1, 0.7});
    const Biarc<Vector3>& biarc = curve->biarcs[0];
    ASSERT_GT(biarc.radius0, 0);
    ASSERT_GT(biarc.radius1, 0);

    expectEqual(biarc.pointOnBiarc(0), biarc.point);
    expectEqual(biarc.pointOnBiarc(biarc.length0), biarc.matchPoint);
    expectEqual(biarc.tangentOnBiarc(0), biarc.tangent);
    expectEqual(biarc.tangentOnBiarc(biarc.length0), biarc.matchTangent);
    expectEqual(biarc.tangentOnBiarc(biarc.length), curve->biarcs[1].tangent);
    expectEqual(biarc.pointOnArc0(0), biarc.point);
    expectEqual(biarc.pointOnArc0(biarc.length0), biarc.matchPoint);
    expectEqual(biarc.pointOnArc1(0), biarc.matchPoint);
    expectEqual(biarc.pointOnArc1(biarc.length1), curve->biarcs[1].point);
}

TEST(Biarc, ReturnsAStoredMatchingTangentAsItIs)
{
    // Even one that is not a unit vector.
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    biarc.matchTangent = Vector3(2, 3, 4);

    expectEqual(biarc.tangentOnBiarc(biarc.length0), Vector3(2, 3, 4));
}

// Straight arcs

TEST(Biarc, TangentsAlongTheChordMakeItStraight)
{
    const auto curve = straightLine();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    EXPECT_EQ(biarc.radius0, -1);
    EXPECT_EQ(biarc.radius1, -1);
    EXPECT_NEAR(biarc.length, 5, 1e-15);
    for (const double s : {0.0, 1.0, 2.5, 4.0}) {
        SCOPED_TRACE(s);
        expectNear(biarc.pointOnBiarc(s), {0.6 * s, 0, 0.8 * s});
        expectNear(biarc.tangentOnBiarc(s), {0.6, 0, 0.8});
    }
}

TEST(Biarc, OneStraightArcMakesTheWholeBiarcASegment)
{
    const auto curve = straightThenCurved();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    EXPECT_EQ(biarc.radius0, -1);
    EXPECT_NEAR(biarc.radius1, 1, 1e-14);
    EXPECT_EQ(biarc.length0, 1);
    EXPECT_NEAR(biarc.length1, PI / 2, 1e-14);
    for (const double part : {0.0, 0.25, 0.5, 1.0}) {
        SCOPED_TRACE(part);
        const double s = part * biarc.length;
        expectNear(biarc.pointOnBiarc(s), {2 * part, part, 0});
        // The tangents (1, 0, 0) and (0, 1, 0) are mixed and normalised.
        const double norm = std::sqrt((1 - part) * (1 - part) + part * part);
        expectNear(biarc.tangentOnBiarc(s), {(1 - part) / norm, part / norm, 0});
    }
    // Not the matching point: (1, 0, 0) is off the segment.
    EXPECT_GT((biarc.pointOnBiarc(biarc.length0) - biarc.matchPoint).norm(), 0.3);
}

TEST(Biarc, ARadiusThatIsNotANumberGivesPointsOfASegmentButNotItsTangents)
{
    // Points ask for two radii that are not negative, tangents for one that is.
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    biarc.radius0 = NOT_A_NUMBER;

    for (const double part : {0.25, 0.5, 0.75}) {
        SCOPED_TRACE(part);
        expectNear(biarc.pointOnBiarc(part * biarc.length), {part, part, 0});
    }
    // The matching tangent mirrored in the chord from (1/5, 1/5) to the matching point.
    const Vector3 chord = biarc.matchPoint - Vector3(0.2, 0.2, 0);
    expectNear(biarc.tangentOnBiarc(0.2 * biarc.length), biarc.matchTangent.reflect(chord));
}

TEST(Biarc, RadiusIsThatOfTheCircleThroughBothPoints)
{
    const Biarc<Vector3> biarc({0, 0, 0}, {1, 0, 0});

    // Half a circle of radius 3, a quarter of one of radius 2, and three quarters of it.
    EXPECT_NEAR(biarc._radius({0, 0, 0}, {0, 6, 0}, {1, 0, 0}), 3, 1e-14);
    EXPECT_NEAR(biarc._radius({0, 0, 0}, {2, 2, 0}, {1, 0, 0}), 2, 1e-14);
    EXPECT_NEAR(biarc._radius({0, 0, 0}, {-2, 2, 0}, {1, 0, 0}), 2, 1e-14);
    // Backwards along the tangent it is straight too.
    EXPECT_EQ(biarc._radius({0, 0, 0}, {-2, 0, 0}, {1, 0, 0}), -1);
}

TEST(Biarc, AnArcIsStraightBelowASineSquaredOfOneTenMillionth)
{
    const Biarc<Vector3> biarc({0, 0, 0}, {1, 0, 0});
    const auto radiusAtSineSquared = [&](double sine2) {
        return biarc._radius({0, 0, 0}, {std::sqrt(1 - sine2), std::sqrt(sine2), 0}, {1, 0, 0});
    };

    EXPECT_EQ(radiusAtSineSquared(0.99e-7), -1);
    // Half the chord over the sine, which is known to 1e-16 / 1e-7.
    EXPECT_NEAR(radiusAtSineSquared(1.01e-7), 0.5 / std::sqrt(1.01e-7), 1e-5);
}

TEST(Biarc, AngleIsTheCentralAngle)
{
    const Biarc<Vector3> biarc({0, 0, 0}, {1, 0, 0});

    EXPECT_NEAR(biarc._angle({0, 0, 0}, {0, 6, 0}, {1, 0, 0}), PI, 1e-14);
    EXPECT_NEAR(biarc._angle({0, 0, 0}, {2, 2, 0}, {1, 0, 0}), PI / 2, 1e-14);
    EXPECT_NEAR(biarc._angle({1, 1, 1}, {-1, 3, 1}, {1, 0, 0}), 3 * PI / 2, 1e-14);
}

TEST(Biarc, ArcLengthsAreComputedFromTheRadiusAnewNotFromTheCache)
{
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    biarc.radius0 = biarc.radius1 = -1;

    EXPECT_NEAR(biarc._arclength0(), PI / 4, 1e-14);
    EXPECT_NEAR(biarc._arclength1(), PI / 4, 1e-14);
}

TEST(Biarc, ArcLengthOfAStraightArcIsTheDistance)
{
    const auto curve = straightThenCurved();

    EXPECT_EQ(curve->biarcs[0]._arclength0(), 1);
    EXPECT_NEAR(curve->biarcs[0]._arclength1(), PI / 2, 1e-14);
}

TEST(Biarc, CacheFollowsTheNextNode)
{
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    // From m along tm, (1, 1) / sqrt 2, straight on by 2.
    curve->biarcs[1].point = biarc.matchPoint + 2.0 * biarc.matchTangent;
    EXPECT_NEAR(biarc.length1, PI / 4, 1e-14);

    biarc.cache();

    EXPECT_NEAR(biarc.radius0, 1, 1e-14);
    EXPECT_EQ(biarc.radius1, -1);
    EXPECT_NEAR(biarc.length1, 2, 1e-14);
    EXPECT_NEAR(biarc.length, PI / 4 + 2, 1e-14);
}

// The rational Bezier curve

TEST(Biarc, TheRationalBezierCurveIsACircularArc)
{
    const Biarc<Vector3> biarc({0, 0, 0}, {1, 0, 0});
    const Vector3 b0(1, 0, 0), b1(1, 1, 0), b2(0, 1, 0);

    expectEqual(biarc.a(b0, b1, b2, 0), b0);
    expectEqual(biarc.a(b0, b1, b2, 1), b2);
    expectNear(biarc.a(b0, b1, b2, 0.5), {std::sqrt(0.5), std::sqrt(0.5), 0});
    for (int k = 1; k < 10; ++k)
        EXPECT_NEAR(biarc.a(b0, b1, b2, k / 10.0).norm(), 1, 1e-14) << k;
}

TEST(Biarc, A1RunsAlongTheSecondArc)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    expectNear(biarc.a1(0), biarc.matchPoint);
    expectNear(biarc.a1(0.5), onQuadrant(3 * PI / 8));
    expectNear(biarc.a1(1), {1, 1, 0});
}

TEST(Biarc, A1RefusesParametersOutsideZeroToOne)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    for (const double tau : {-0.001, 1.001, NOT_A_NUMBER}) {
        SCOPED_TRACE(tau);
        const auto [errors, point] = callWithErrors([&] { return biarc.a1(tau); });
        EXPECT_EQ(errors, "Biarc::a1(float) : tau value problem\n");
        expectEqual(point, Vector3(0, 0, 0));
    }
}

TEST(Biarc, A1OfAnInvalidBiarcSaysSo)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& last = curve->biarcs[1];

    for (const double tau : {0.5, 2.0}) {
        SCOPED_TRACE(tau);
        const auto [errors, point] = callWithErrors([&] { return last.a1(tau); });
        EXPECT_EQ(errors, "Biarc::a1(float) : not a valid biarc\n");
        expectEqual(point, Vector3(0, 0, 0));
    }
}

// Bad calls

TEST(Biarc, PointsBeyondTheEndAreRefused)
{
    for (const auto& curve : {quadrant(), straightLine()}) {
        const Biarc<Vector3>& biarc = curve->biarcs[0];
        const double beyond = biarc.length + 0.001;
        const auto [errors, point] = callWithErrors([&] { return biarc.pointOnBiarc(beyond); });
        EXPECT_EQ(errors, POINT_OUT_OF_BOUNDS);
        expectEqual(point, Vector3(0, 0, 0));
    }
}

TEST(Biarc, TangentsBeyondTheEndAreRefusedWithAMessageOfTheirOwn)
{
    for (const auto& curve : {quadrant(), straightLine()}) {
        const Biarc<Vector3>& biarc = curve->biarcs[0];
        const double beyond = std::nextafter(biarc.length, 10);
        const auto [errors, tangent] = callWithErrors([&] { return biarc.tangentOnBiarc(beyond); });
        EXPECT_EQ(errors, TANGENT_OUT_OF_BOUNDS);
        expectEqual(tangent, Vector3(0, 0, 0));
    }
}

TEST(Biarc, TheEndItselfIsInside)
{
    for (const auto& curve : {quadrant(), straightLine()}) {
        const Biarc<Vector3>& biarc = curve->biarcs[0];
        const auto [errors, point] =
            callWithErrors([&] { return biarc.pointOnBiarc(biarc.length); });
        EXPECT_EQ(errors, "");
        expectNear(point, curve->biarcs[1].point, 1e-15);
    }
}

TEST(Biarc, NegativeLengthsAreNotRefused)
{
    // On an arc the chord fraction is clamped to the start; a segment is extended.
    const auto curved = quadrant();
    const auto [curvedErrors, curvedPoint] =
        callWithErrors([&] { return curved->biarcs[0].pointOnBiarc(-1); });
    EXPECT_EQ(curvedErrors, "");
    expectEqual(curvedPoint, Vector3(0, 0, 0));

    const auto straight = straightLine();
    const auto [straightErrors, straightPoint] =
        callWithErrors([&] { return straight->biarcs[0].pointOnBiarc(-1); });
    EXPECT_EQ(straightErrors, "");
    expectNear(straightPoint, {-0.6, 0, -0.8});

    const auto [tangentErrors, tangent] =
        callWithErrors([&] { return curved->biarcs[0].tangentOnBiarc(-1); });
    EXPECT_EQ(tangentErrors, "");
    expectNear(tangent, {1, 0, 0});
}

TEST(Biarc, TheLastBiarcOfAnOpenCurveIsNotValid)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& last = curve->biarcs[1];

    const auto [pointErrors, point] = callWithErrors([&] { return last.pointOnBiarc(0); });
    EXPECT_EQ(pointErrors, POINT_INVALID);
    expectEqual(point, Vector3(0, 0, 0));
    const auto [tangentErrors, tangent] = callWithErrors([&] { return last.tangentOnBiarc(0); });
    EXPECT_EQ(tangentErrors, TANGENT_INVALID);
    expectEqual(tangent, Vector3(0, 0, 0));
}

TEST(Biarc, OutOfBoundsIsSaidBeforeNotValid)
{
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    biarc.biarcFlag = 0;

    EXPECT_EQ(callWithErrors([&] { return biarc.pointOnBiarc(2); }).first, POINT_OUT_OF_BOUNDS);
    EXPECT_EQ(callWithErrors([&] { return biarc.pointOnBiarc(1); }).first, POINT_INVALID);
    EXPECT_EQ(callWithErrors([&] { return biarc.tangentOnBiarc(2); }).first, TANGENT_OUT_OF_BOUNDS);
    EXPECT_EQ(callWithErrors([&] { return biarc.tangentOnBiarc(1); }).first, TANGENT_INVALID);
}

TEST(Biarc, TheFirstArcOfAnInvalidBiarcIsNotEvaluated)
{
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    biarc.biarcFlag = 0;

    const auto [errors, point] = callWithErrors([&] { return biarc.pointOnArc0(0.1); });
    EXPECT_EQ(errors, "Biarc::a0(float) : not a valid biarc\n");
    expectEqual(point, Vector3(0, 0, 0));
    // Its ends are known all the same.
    const auto [endErrors, end] = callWithErrors([&] { return biarc.pointOnArc0(0); });
    EXPECT_EQ(endErrors, "");
    expectEqual(end, biarc.point);
}

TEST(Biarc, TheSecondArcOfAnInvalidBiarcIsNotEvaluated)
{
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    biarc.biarcFlag = 0;

    const auto [errors, point] = callWithErrors([&] { return biarc.pointOnArc1(0.1); });
    EXPECT_EQ(errors, "Biarc::a1(float) : not a valid biarc\n");
    expectEqual(point, Vector3(0, 0, 0));
}

TEST(Biarc, ArcsClampLengthsBeyondTheirEnds)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    const auto [errors, point] = callWithErrors([&] { return biarc.pointOnArc0(-0.1); });
    EXPECT_EQ(errors, "");
    expectEqual(point, biarc.point);
    // Beyond m by an eighth of the circle: farther along the chord than m.
    expectNear(biarc.pointOnArc0(PI / 2), biarc.matchPoint);
    expectNear(biarc.pointOnArc1(PI / 2), {1, 1, 0});
}

TEST(Biarc, PointsNotOneTenMillionthAlongTheChordAreTheArcsStart)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];
    // Near the start the projection is s times the cosine of 22.5 degrees.
    const double cosine = std::cos(PI / 8);

    expectEqual(biarc.pointOnBiarc(0.99e-7 / cosine), Vector3(0, 0, 0));
    EXPECT_GT(biarc.pointOnBiarc(1.01e-7 / cosine)[0], 0.9e-7);
    expectEqual(biarc.pointOnArc1(0.99e-7 / cosine), biarc.matchPoint);
}

TEST(Biarc, AnArcTooShortForTheProjectionHasNoTangentNearItsEnd) // kept on purpose
{
    // All of its points but the end are its start, and there is no chord to mirror in.
    const auto curve = twoNodes({0, 0, 0}, {1, 0, 0}, {1e-7, 1e-7, 0}, {0, 1, 0});
    const Biarc<Vector3>& biarc = curve->biarcs[0];
    ASSERT_NEAR(biarc.length0, 1e-7 * PI / 4, 1e-14);

    const double s = 0.75 * biarc.length0;
    expectEqual(biarc.pointOnBiarc(s), Vector3(0, 0, 0));
    const auto [errors, tangent] = callWithErrors([&] { return biarc.tangentOnBiarc(s); });
    EXPECT_EQ(errors, "");
    EXPECT_FALSE(isFinite(tangent));
    expectNear(biarc.tangentOnBiarc(biarc.length0 / 4), {1, 0, 0});
}

TEST(Biarc, MidPointAndMidTangentOfAnInvalidBiarcAreItsNode)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& last = curve->biarcs[1];

    const auto [pointErrors, point] = callWithErrors([&] { return last.getMidPoint(); });
    EXPECT_EQ(pointErrors, "Biarc::getMidPoint() : Not a valid biarc.\n");
    expectEqual(point, Vector3(1, 1, 0));
    const auto [tangentErrors, tangent] = callWithErrors([&] { return last.getMidTangent(); });
    EXPECT_EQ(tangentErrors, "Biarc::getMidTangent() : Not a valid biarc.\n");
    expectEqual(tangent, Vector3(0, 1, 0));
}

TEST(Biarc, MidPointAndMidTangentOfAValidBiarcAreTheMatchingOnes)
{
    const auto curve = quadrant();
    const Biarc<Vector3>& biarc = curve->biarcs[0];

    testing::internal::CaptureStderr();
    expectEqual(biarc.getMidPoint(), biarc.matchPoint);
    expectEqual(biarc.getMidTangent(), biarc.matchTangent);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Biarc, WithoutACurveTheMissingNextNodeIsReportedOnStandardOutput)
{
    Biarc<Vector3> biarc({0, 0, 0}, {1, 0, 0});
    biarc.matchPoint = Vector3(1, 1, 0);

    testing::internal::CaptureStdout();
    biarc.next();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "C problem\n");

    testing::internal::CaptureStdout();
    biarc.setMidTangent({0, 1, 0});
    expectCurveProblems(testing::internal::GetCapturedStdout());
    EXPECT_EQ(biarc.biarcFlag, 1);
    expectEqual(biarc.matchTangent, Vector3(0, 1, 0));
    // The first arc needs no next node: a quarter of the unit circle.
    expectNear(biarc.bezier0, {1, 0, 0});
    EXPECT_NEAR(biarc.radius0, 1, 1e-14);
    EXPECT_NEAR(biarc.length0, PI / 2, 1e-14);

    testing::internal::CaptureStdout();
    biarc.cache();
    expectCurveProblems(testing::internal::GetCapturedStdout());
    testing::internal::CaptureStdout();
    biarc._arclength1();
    expectCurveProblems(testing::internal::GetCapturedStdout());
    testing::internal::CaptureStdout();
    biarc.pointOnArc1(0.1);
    expectCurveProblems(testing::internal::GetCapturedStdout());
}

TEST(Biarc, TheFirstArcNeedsNoCurve)
{
    Biarc<Vector3> biarc({0, 0, 0}, {1, 0, 0});
    biarc.matchPoint = Vector3(1, 1, 0);
    testing::internal::CaptureStdout();
    biarc.setMidTangent({0, 1, 0});
    testing::internal::GetCapturedStdout();

    testing::internal::CaptureStdout();
    const Vector3 middle = biarc.pointOnArc0(biarc.length0 / 2);
    const double length = biarc._arclength0();
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    expectNear(middle, onQuadrant(PI / 4));
    EXPECT_NEAR(length, PI / 2, 1e-14);
}

TEST(Biarc, SetMidTangentStoresTheTangentAsItIs)
{
    const auto curve = quadrant();
    Biarc<Vector3>& biarc = curve->biarcs[0];
    biarc.biarcFlag = 0;
    biarc.setMidTangent({2, 2, 0});

    EXPECT_EQ(biarc.biarcFlag, 1);
    expectEqual(biarc.matchTangent, Vector3(2, 2, 0));
}

TEST(Biarc, TheNextBiarcOfTheLastIsTheFirstIfTheCurveIsClosed)
{
    Curve<Vector3> curve;
    for (int i = 0; i < 3; ++i)
        curve.append({double(i), 0, 0}, {1, 0, 0});

    EXPECT_EQ(&curve.biarcs[0].next(), &curve.biarcs[1]);
    EXPECT_EQ(&curve.biarcs[2].next(), &curve.biarcs[2]); // there is none
    curve.closed = 1;
    EXPECT_EQ(&curve.biarcs[1].next(), &curve.biarcs[2]);
    EXPECT_EQ(&curve.biarcs[2].next(), &curve.biarcs[0]);
}

// Random rods

class BiarcOnRandomRods : public testing::TestWithParam<RodKind>
{
};

TEST_P(BiarcOnRandomRods, EvaluatesToThePlainFormulas)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        const auto curve = randomCurve(GetParam(), seed);
        for (std::size_t i = 0; i + 1 < curve->biarcs.size(); ++i) {
            const Biarc<Vector3>& biarc = curve->biarcs[i];
            const plain::Biarc expected = toPlain(biarc, curve->biarcs[i + 1]);
            for (const double s : interestingLengths(biarc)) {
                SCOPED_TRACE(testing::Message()
                             << "seed " << seed << ", biarc " << i << ", s = " << s);
                expectSame(biarc.pointOnBiarc(s), plain::pointOnBiarc(expected, s));
                expectSame(biarc.tangentOnBiarc(s), plain::tangentOnBiarc(expected, s));
                expectSame(biarc.pointOnArc0(s), plain::pointOnArc0(expected, s));
                expectSame(biarc.pointOnArc1(s), plain::pointOnArc1(expected, s));
                // Arcs too short for the projection have no tangents.
                if (s >= 0 && GetParam() != RodKind::TINY) {
                    EXPECT_TRUE(isFinite(biarc.pointOnBiarc(s)));
                    EXPECT_TRUE(isFinite(biarc.tangentOnBiarc(s)));
                }
            }
            for (const double tau : {0.0, 0.3, 0.5, 1.0}) {
                expectSame(biarc.a1(tau),
                           plain::conic(expected.m, expected.bezier1, expected.pN, tau));
            }
        }
    }
}

TEST_P(BiarcOnRandomRods, SamplerGivesTheSamePointsTangentsAndMessages)
{
    for (unsigned seed = 0; seed < 2; ++seed) {
        const auto curve = randomCurve(GetParam(), seed);
        for (const Biarc<Vector3>& biarc : curve->biarcs) { // the last one is invalid
            const BiarcSampler<Vector3> sampler(biarc);
            std::vector<double> lengths = interestingLengths(biarc);
            lengths.insert(lengths.end(), {biarc.length + 1e-3, 1e9, NOT_A_NUMBER});
            for (const double s : lengths) {
                SCOPED_TRACE(testing::Message()
                             << "seed " << seed << ", biarc " << biarc.id << ", s = " << s);
                const auto point = callWithErrors([&] { return biarc.pointOnBiarc(s); });
                const auto tangent = callWithErrors([&] { return biarc.tangentOnBiarc(s); });
                const auto sampledPoint = callWithErrors([&] { return sampler.pointAt(s); });
                const auto sampledTangent = callWithErrors([&] { return sampler.tangentAt(s); });
                Vector3 bothPoint(9, 9, 9), bothTangent(9, 9, 9);
                const auto both = callWithErrors([&] {
                    sampler.sampleAt(s, bothPoint, bothTangent);
                    return bothPoint;
                });

                EXPECT_EQ(sampledPoint.first, point.first);
                EXPECT_EQ(sampledTangent.first, tangent.first);
                EXPECT_EQ(both.first, point.first + tangent.first);
                expectSame(sampledPoint.second, point.second);
                expectSame(sampledTangent.second, tangent.second);
                expectSame(bothPoint, point.second);
                expectSame(bothTangent, tangent.second);
            }
        }
    }
}

TEST_P(BiarcOnRandomRods, SamplesOfAnArcLieOnItsCircleAndAreTangentToIt)
{
    const auto centreOf = [](const Vector3& from, const Vector3& to, const Vector3& tangent,
                             double radius) {
        Vector3 inward = (to - from) - (to - from).dot(tangent) * tangent;
        inward.normalize();
        return from + radius * inward;
    };

    int samples = 0;
    for (unsigned seed = 0; seed < 10; ++seed) {
        const auto curve = randomCurve(GetParam(), seed);
        for (std::size_t i = 0; i + 1 < curve->biarcs.size(); ++i) {
            const Biarc<Vector3>& biarc = curve->biarcs[i];
            if (biarc.radius0 < 0 || biarc.radius1 < 0)
                continue;
            const Vector3& end = curve->biarcs[i + 1].point;
            const Vector3 centre0 =
                centreOf(biarc.point, biarc.matchPoint, biarc.tangent, biarc.radius0);
            const Vector3 centre1 =
                centreOf(biarc.matchPoint, end, biarc.matchTangent, biarc.radius1);
            // The sine of a nearly straight arc, at least 3e-4, is known to 1e-16 / 3e-4,
            // and rounded coordinates are off by 1e-16 of their size.
            const double rounded = 1e-13 * end.norm() / (end - biarc.point).norm();
            for (int k = 1; k < 20; ++k) {
                SCOPED_TRACE(testing::Message() << "seed " << seed << ", biarc " << i << ", " << k);
                const double s = biarc.length * k / 20;
                const bool first = s <= biarc.length0;
                const double radius = first ? biarc.radius0 : biarc.radius1;
                const Vector3 fromCentre = biarc.pointOnBiarc(s) - (first ? centre0 : centre1);
                const Vector3 tangent = biarc.tangentOnBiarc(s);
                EXPECT_NEAR(fromCentre.norm() / radius, 1, 1e-9 + rounded);
                ++samples;
                if (GetParam() == RodKind::TINY && !isFinite(tangent))
                    continue; // too short for the projection
                EXPECT_NEAR(fromCentre.dot(tangent) / radius, 0, 1e-9 + rounded);
                EXPECT_NEAR(tangent.norm(), 1, 1e-14);
            }
        }
    }
    EXPECT_GT(samples, 0);
}

TEST_P(BiarcOnRandomRods, BothArcsAreNoShorterThanTheirChordsAndTheLengthIsTheirSum)
{
    for (unsigned seed = 0; seed < 10; ++seed) {
        const auto curve = randomCurve(GetParam(), seed);
        for (std::size_t i = 0; i + 1 < curve->biarcs.size(); ++i) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", biarc " << i);
            const Biarc<Vector3>& biarc = curve->biarcs[i];
            const double chord0 = (biarc.matchPoint - biarc.point).norm();
            const double chord1 = (curve->biarcs[i + 1].point - biarc.matchPoint).norm();
            EXPECT_GE(biarc.length0, chord0 * (1 - 1e-8));
            EXPECT_GE(biarc.length1, chord1 * (1 - 1e-8));
            EXPECT_EQ(biarc.length, biarc.length0 + biarc.length1);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, BiarcOnRandomRods, testing::ValuesIn(allRodKinds()),
                         [](const auto& kind) { return nameOf(kind.param); });

TEST(RandomRods, NearlyCollinearOnesHaveStraightAndCurvedArcs)
{
    int straight = 0, curved = 0;
    for (unsigned seed = 0; seed < 20; ++seed) {
        const auto curve = randomCurve(RodKind::NEAR_COLLINEAR, seed);
        for (std::size_t i = 0; i + 1 < curve->biarcs.size(); ++i)
            ++(curve->biarcs[i].radius0 < 0 ? straight : curved);
    }
    EXPECT_GT(straight, 20);
    EXPECT_GT(curved, 20);
}
