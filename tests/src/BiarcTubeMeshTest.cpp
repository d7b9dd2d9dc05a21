// SPDX-License-Identifier: GPL-3.0-or-later
#include <BiarcTubeMesh.h>

#include <cmath>

#include <gtest/gtest.h>

#include <MeshVisitor.h>
#include <algebra3d/Matrix3.h>

#include "support/MeshComparison.h"
#include "support/PlainReference.h"
#include "support/RandomRods.h"

using Matrix = algebra3d::Matrix3<double>;
using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

namespace {

void expectNear(const Vector& actual, const Vector& expected, double tolerance = 1e-14)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

void expectEqual(const Vector& actual, const Vector& expected) { expectNear(actual, expected, 0); }

void expectSameTables(const BiarcTubeMesh& mesh, const plain::Grid& expected)
{
    EXPECT_EQ(mesh.getParamValues(), expected.nodeLengths);
    EXPECT_EQ(mesh.getInterpParamValues(), expected.rowLengths);
}

void expectSameMeshes(BiarcTubeMesh& a, BiarcTubeMesh& b)
{
    ASSERT_EQ(a.getHeight(), b.getHeight());
    ASSERT_EQ(a.getWidth(), b.getWidth());
    for (int row = 0; row < a.getHeight(); ++row) {
        for (int column = 0; column < a.getWidth(); ++column) {
            SCOPED_TRACE(testing::Message() << "row " << row << ", column " << column);
            expectEqual(a.getPoints()[row][column], b.getPoints()[row][column]);
            expectEqual(a.getNormals()[row][column], b.getNormals()[row][column]);
        }
    }
    EXPECT_EQ(a.getParamValues(), b.getParamValues());
    EXPECT_EQ(a.getInterpParamValues(), b.getInterpParamValues());
}

// The mean of the distinct points of a ring.
Vector centreOf(BiarcTubeMesh& mesh, int row)
{
    Vector sum;
    for (int k = 0; k < mesh.getSlices(); ++k)
        sum += mesh.getPoints()[row][k];
    return sum * (1.0 / mesh.getSlices());
}

// The axis about which a ring of a multiple of 4 slices turns counter-clockwise.
Vector axisOf(BiarcTubeMesh& mesh, int row)
{
    const Vector* normals = mesh.getNormals()[row];
    return normals[0].cross(normals[mesh.getSlices() / 4]);
}

// A line along an axis in uneven steps: 0, 1, 3, 6.
std::vector<Vector> lineAlong(const Vector& axis)
{
    return {0.0 * axis, axis, 3.0 * axis, 6.0 * axis};
}

const std::vector<Vector> BENT = {{0, 0, 0}, {1, 0.5, 0.2}, {2, 0, 0.5}, {2.5, 1, 1}};

BiarcTubeMesh meshWithEndTangents(const std::vector<Vector>& points, const Vector& start,
                                  const Vector& end)
{
    return BiarcTubeMesh(points, start, end, 0.3, 8, 4, false, false);
}

// A trefoil or, if it is flat, an ellipse, whose last point is the first one again.
std::vector<Vector> closedCurve(int count, bool isFlat = false)
{
    std::vector<Vector> points;
    for (int i = 0; i < count; ++i) {
        const double t = 2 * M_PI * i / count;
        points.push_back(isFlat ? Vector(3 * std::cos(t), std::sin(t), 0)
                                : Vector(std::sin(t) + 2 * std::sin(2 * t),
                                         std::cos(t) - 2 * std::cos(2 * t), -std::sin(3 * t)));
    }
    points.push_back(points.front());
    return points;
}

int countFans(Mesh& mesh)
{
    struct Counter : MeshVisitor
    {
        void begin(Kind kind, int) override { fans += kind == FAN; }
        void vertex(const Vertex&) override {}
        void end() override {}
        int fans = 0;
    } counter;
    mesh.visit(counter);
    return counter.fans;
}

// By how much ring `row` is turned about the tangent against the ring before, carried there with
// the least turning: the turn of a rotation between two planes about the line they share.
double turnOfRing(BiarcTubeMesh& mesh, int row)
{
    const Vector before = axisOf(mesh, row - 1).getUnit(), here = axisOf(mesh, row).getUnit();
    const Vector& u = mesh.getNormals()[row - 1][0];
    const Vector carried = u - (before + here) * (here.dot(u) / (1 + before.dot(here)));
    const Vector& turned = mesh.getNormals()[row][0];
    return std::atan2(carried.cross(turned).dot(here), carried.dot(turned));
}

} // namespace

// The grid

TEST(BiarcTubeMesh, HasOneRingPerSampleAndOneMore)
{
    const std::vector<Vector> points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}};
    BiarcTubeMesh mesh(points, 0.1, 8, 4, false, false);

    EXPECT_TRUE(mesh.isValid());
    EXPECT_EQ(mesh.getHeight(), 9);
    EXPECT_EQ(mesh.getWidth(), 9);
    ASSERT_EQ(mesh.getParamValues().size(), 3u);
    ASSERT_EQ(mesh.getInterpParamValues().size(), 9u);
    EXPECT_EQ(mesh.getParamValues().back(), mesh.getInterpParamValues().back());

    Curve<::Vector3> curve;
    for (const Vector& p : points)
        curve.append({p.x, p.y, p.z}, {});
    curve.computeTangents();
    curve.makeMidpointRule();
    EXPECT_NEAR(mesh.getParamValues().back(), curve.biarcs[0].length + curve.biarcs[1].length,
                1e-14);
}

TEST(BiarcTubeMesh, AnInterpolationCountBelowOneCountsAsOne)
{
    for (const int count : {1, 0, -1, -4}) {
        SCOPED_TRACE(count);
        BiarcTubeMesh mesh(BENT, 0.25, 4, count, false, false);

        ASSERT_EQ(mesh.getHeight(), 4);
        for (int row = 0; row < 4; ++row)
            expectNear(centreOf(mesh, row), BENT[std::size_t(row)]);
        EXPECT_EQ(mesh.getParamValues(), mesh.getInterpParamValues());
    }
}

TEST(BiarcTubeMesh, FewerThanThreeSlicesCountAsThree)
{
    for (const int slices : {3, 2, 0, -5}) {
        SCOPED_TRACE(slices);
        BiarcTubeMesh mesh(BENT, 0.25, slices, 2, false, false);
        EXPECT_EQ(mesh.getWidth(), 4);
        EXPECT_EQ(mesh.getHeight(), 7);
    }
}

TEST(BiarcTubeMesh, HasTheSmallFloorOfTheRadius)
{
    // That of the constructor for subclasses, not the hundred times larger one.
    const auto ringRadius = [](double radius) {
        BiarcTubeMesh mesh(lineAlong({1, 0, 0}), radius, 4, 1, false, false);
        return (mesh.getPoints()[0][0] - Vector()).getNorm();
    };

    EXPECT_EQ(ringRadius(0), 0.0001);
    EXPECT_EQ(ringRadius(0.001), 0.001);
    EXPECT_EQ(ringRadius(-0.5), 0.5);
}

TEST(BiarcTubeMesh, FewerThanTwoPointsLeaveItEmpty)
{
    const std::vector<Vector> none, one = {{1, 2, 3}};
    const std::vector<Quaternion> rotations(1);
    const Vector x(1, 0, 0);
    const auto expectEmpty = [](BiarcTubeMesh& mesh) {
        EXPECT_FALSE(mesh.isValid());
        EXPECT_EQ(mesh.getHeight(), 0);
        EXPECT_EQ(mesh.getPoints(), nullptr);
        EXPECT_TRUE(mesh.getParamValues().empty());
        EXPECT_TRUE(mesh.getInterpParamValues().empty());
    };

    for (const std::vector<Vector>& points : {none, one}) {
        SCOPED_TRACE(points.size());
        BiarcTubeMesh estimated(points, 0.1, 8, 4, false, false);
        BiarcTubeMesh rotated(points, rotations, 0.1, 8, 4, false, false);
        BiarcTubeMesh withEnds(points, x, x, 0.1, 8, 4, false, false);
        expectEmpty(estimated);
        expectEmpty(rotated);
        expectEmpty(withEnds);
    }
    BiarcTubeMesh oneRotation(BENT, rotations, 0.1, 8, 4, false, false);
    expectEmpty(oneRotation);
}

TEST(BiarcTubeMesh, CoincidentPointsGiveNonFiniteRingsWithoutAMessage)
{
    testing::internal::CaptureStderr();
    BiarcTubeMesh mesh({{0, 0, 0}, {0, 0, 0}, {1, 0, 0}}, 0.1, 8, 4, false, false);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_TRUE(mesh.isValid());
    EXPECT_EQ(mesh.getHeight(), 9);
    EXPECT_TRUE(std::isnan(mesh.getPoints()[1][0].x));
}

// The section frame

TEST(BiarcTubeMesh, RingsOfALineAreEquallySpacedPerSegment)
{
    // Segments of length 1, 2 and 3, 4 rings each.
    BiarcTubeMesh mesh(lineAlong({1, 0, 0}), 0.5, 4, 4, false, false);

    ASSERT_EQ(mesh.getHeight(), 13);
    for (int row = 0; row < 13; ++row) {
        SCOPED_TRACE(row);
        const double x = row <= 4   ? row * 0.25
                         : row <= 8 ? 1 + (row - 4) * 0.5
                                    : 3 + (row - 8) * 0.75;
        expectNear(centreOf(mesh, row), {x, 0, 0});
        EXPECT_NEAR(mesh.getInterpParamValues()[std::size_t(row)], x, 1e-14);
    }
    EXPECT_NEAR(mesh.getParamValues()[1], 1, 1e-14);
    EXPECT_NEAR(mesh.getParamValues()[2], 3, 1e-14);
    EXPECT_NEAR(mesh.getParamValues()[3], 6, 1e-14);
}

TEST(BiarcTubeMesh, AlongXTheFrameIsThatOfTheFixedAxes)
{
    BiarcTubeMesh mesh(lineAlong({1, 0, 0}), 0.5, 4, 4, false, false);

    for (int row = 0; row < mesh.getHeight(); ++row) {
        SCOPED_TRACE(row);
        expectNear(mesh.getNormals()[row][0], {0, 1, 0});
        expectNear(mesh.getNormals()[row][1], {0, 0, 1});
        expectNear(mesh.getNormals()[row][2], {0, -1, 0});
        expectNear(mesh.getNormals()[row][3], {0, 0, -1});
        expectNear(mesh.getNormals()[row][4], {0, 1, 0});
    }
}

TEST(BiarcTubeMesh, AlongYTheFirstAxisIsReplaced)
{
    // d1 . t = 1, so d1 = (0, 0, 1) x (0, 1, 0) = (-1, 0, 0) and d2 = t x d1 = (0, 0, 1).
    BiarcTubeMesh mesh(lineAlong({0, 1, 0}), 0.5, 4, 4, false, false);

    for (int row = 0; row < mesh.getHeight(); ++row) {
        SCOPED_TRACE(row);
        expectNear(mesh.getNormals()[row][0], {-1, 0, 0});
        expectNear(mesh.getNormals()[row][1], {0, 0, 1});
    }
}

TEST(BiarcTubeMesh, AlongZTheSecondAxisFollows)
{
    // d1 . t = 0: d2 = (0, 0, 1) x (0, 1, 0) = (-1, 0, 0), d1 stays.
    BiarcTubeMesh mesh(lineAlong({0, 0, 1}), 0.5, 4, 1, false, false);

    expectNear(mesh.getNormals()[0][0], {0, 1, 0});
    expectNear(mesh.getNormals()[0][1], {-1, 0, 0});
}

TEST(BiarcTubeMesh, TheFirstAxisIsReplacedFromAHalfOn)
{
    BiarcTubeMesh mesh(BENT, 0.5, 4, 1, false, false);
    const double root = std::sqrt(0.5);

    // d1 . t is exactly 0.5: d1 = unit((0, 0, 1) x t) stays across the z axis.
    for (const double sign : {1.0, -1.0}) {
        SCOPED_TRACE(sign);
        const Vector t(root, sign * 0.5, 0.5);
        Vector d1(0, 1, 0), d2(0, 0, 1);
        mesh.computeMeshAt(1, {7, 8, 9}, t, d1, d2);
        const double norm = std::sqrt(0.75);
        expectNear(d1, {-sign * 0.5 / norm, root / norm, 0});
        expectNear(d2, t.cross(d1));
    }
    // Just below, d2 = unit(t x (0, 1, 0)) stays across the y axis.
    const Vector t(root, std::nextafter(0.5, 0.0), 0.5);
    Vector d1(0, 1, 0), d2(0, 0, 1);
    mesh.computeMeshAt(1, {7, 8, 9}, t, d1, d2);
    const double norm = std::sqrt(0.75);
    expectNear(d2, {-0.5 / norm, 0, root / norm});
    expectNear(d1, d2.cross(t));

    // The ring is written with the new frame.
    expectNear(mesh.getNormals()[1][0], d1);
    expectNear(mesh.getNormals()[1][1], d2);
    expectNear(mesh.getPoints()[1][0], Vector(7, 8, 9) + 0.5 * d1);
    expectEqual(mesh.getPoints()[1][4], mesh.getPoints()[1][0]);
}

TEST(BiarcTubeMesh, InAPlaneTheFrameTurnsAboutTheAxisAcrossIt)
{
    // A zigzag of right angles in the xy plane and back: d2 never leaves the z axis.
    const std::vector<Vector> points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {2, 1, 0},
                                        {2, 2, 0}, {1, 2, 0}, {1, 3, 0}, {0, 3, 0}};
    BiarcTubeMesh mesh(points, 0.1, 4, 5, false, false);

    for (int row = 0; row < mesh.getHeight(); ++row) {
        SCOPED_TRACE(row);
        expectNear(mesh.getNormals()[row][1], {0, 0, 1}, 1e-13);
    }
}

TEST(BiarcTubeMesh, TheBoxHoldsAllRingsTheLastIncluded)
{
    // Along z, so the last ring, and it alone, reaches z = 6.
    BiarcTubeMesh mesh(lineAlong({0, 0, 1}), 0.5, 4, 2, false, false);

    EXPECT_EQ(mesh.getBBox().getMin(), SbVec3f(-0.5f, -0.5f, 0));
    EXPECT_EQ(mesh.getBBox().getMax(), SbVec3f(0.5f, 0.5f, 6));
}

// The three ways to give tangents

TEST(BiarcTubeMesh, EndTangentsAgainstTheOrderOfThePointsAreReversed)
{
    const Vector start(1, 0.2, 0.3), end(0.1, 1, 0.5);
    BiarcTubeMesh along = meshWithEndTangents(BENT, start, end);

    for (const double sign0 : {1.0, -1.0}) {
        for (const double sign1 : {1.0, -1.0}) {
            SCOPED_TRACE(testing::Message() << sign0 << ", " << sign1);
            BiarcTubeMesh mesh = meshWithEndTangents(BENT, sign0 * start, sign1 * end);
            expectSameMeshes(mesh, along);
        }
    }
}

TEST(BiarcTubeMesh, TheLengthOfEndTangentsDoesNotMatter)
{
    const Vector start(1, 0.2, 0.3), end(0.1, 1, 0.5);
    BiarcTubeMesh expected = meshWithEndTangents(BENT, start, end);
    BiarcTubeMesh mesh = meshWithEndTangents(BENT, 0.25 * start, 16.0 * end);

    expectSameMeshes(mesh, expected);
}

TEST(BiarcTubeMesh, EndTangentsChangeOnlyTheEnds)
{
    // Six points: the first and the last ring turn to the given tangents, and the three
    // segments between the second and the fifth point keep their lengths.
    std::vector<Vector> points = BENT;
    points.push_back({3, 1, 2});
    points.push_back({4, 2, 2});
    BiarcTubeMesh plainMesh(points, 0.3, 8, 4, false, false);
    BiarcTubeMesh mesh = meshWithEndTangents(points, {3, 0, 4}, {0, 5, 12});

    expectNear(axisOf(mesh, 0), {0.6, 0, 0.8}, 1e-13);
    expectNear(axisOf(mesh, mesh.getHeight() - 1), {0, 5.0 / 13, 12.0 / 13}, 1e-13);
    const std::vector<double>&changed = mesh.getParamValues(), &kept = plainMesh.getParamValues();
    for (std::size_t i = 1; i < 4; ++i)
        EXPECT_NEAR(changed[i + 1] - changed[i], kept[i + 1] - kept[i], 1e-13) << i;
    EXPECT_GT(std::abs(changed[1] - kept[1]), 1e-3);
}

TEST(BiarcTubeMesh, AnEndTangentAcrossTheEstimateKeepsItsSense)
{
    // The estimate is +x; +y and -y are equally far from it.
    const std::vector<Vector> points = {{0, 0, 0}, {1, 0, 0}};
    BiarcTubeMesh up = meshWithEndTangents(points, {0, 1, 0}, {1, 0, 0});
    BiarcTubeMesh down = meshWithEndTangents(points, {0, -1, 0}, {1, 0, 0});

    expectNear(axisOf(up, 0), {0, 1, 0});
    expectNear(axisOf(down, 0), {0, -1, 0});
}

TEST(BiarcTubeMesh, RotationsGiveTheirThirdColumnAsTangents)
{
    // Thirds of a turn about the diagonal: d3 is +x, and with the other sense +y.
    const std::vector<Vector> points = {{0, 0, 0}, {1, 1, 0}};
    const std::vector<Quaternion> rotations = {Quaternion(0.5, 0.5, 0.5, 0.5),
                                               Quaternion(-0.5, -0.5, -0.5, 0.5)};
    BiarcTubeMesh mesh(points, rotations, 0.1, 8, 4, false, false);

    // A quarter of the unit circle around (0, 1, 0).
    expectNear(axisOf(mesh, 0), {1, 0, 0});
    expectNear(axisOf(mesh, 4), {0, 1, 0});
    EXPECT_NEAR(mesh.getParamValues()[1], std::acos(0.0), 1e-14);
    for (int row = 0; row <= 4; ++row)
        EXPECT_NEAR((centreOf(mesh, row) - Vector(0, 1, 0)).getNorm(), 1, 1e-14) << row;
}

TEST(BiarcTubeMesh, OnlyTheThirdColumnOfARotationMatters)
{
    // The identity and half a turn about z have the same d3 and opposite d1 and d2.
    const std::vector<Quaternion> none(4), half(4, Quaternion(0, 0, 1, 0));
    BiarcTubeMesh a(BENT, none, 0.1, 8, 4, false, false);
    BiarcTubeMesh b(BENT, half, 0.1, 8, 4, false, false);

    expectSameMeshes(a, b);
}

TEST(BiarcTubeMesh, TheShorterOfPointsAndRotationsDecides)
{
    const std::vector<Vector> three(BENT.begin(), BENT.end() - 1);
    const std::vector<Quaternion> rotations(4);
    BiarcTubeMesh expected(three, std::vector<Quaternion>(3), 0.1, 8, 4, false, false);
    BiarcTubeMesh fewerPoints(three, rotations, 0.1, 8, 4, false, false);
    BiarcTubeMesh fewerRotations(BENT, std::vector<Quaternion>(3), 0.1, 8, 4, false, false);

    EXPECT_EQ(expected.getHeight(), 9);
    expectSameMeshes(fewerPoints, expected);
    expectSameMeshes(fewerRotations, expected);
}

// The steps

TEST(BiarcTubeMesh, ComputeCurveReturnsTheNumberOfNodes)
{
    BiarcTubeMesh mesh(BENT, 0.1, 8, 4, false, false);
    const Vector x(1, 0, 0);

    EXPECT_EQ(mesh.computeCurve(std::vector<Vector>()), 0);
    EXPECT_EQ(mesh.computeCurve({Vector()}), 1);
    EXPECT_EQ(mesh.computeCurve(BENT), 4);
    EXPECT_EQ(mesh.computeCurve(BENT, std::vector<Quaternion>(3)), 3);
    EXPECT_EQ(mesh.computeCurve(BENT, std::vector<Quaternion>(1)), 1);
    EXPECT_EQ(mesh.computeCurve(BENT, x, x), 4);
    EXPECT_EQ(mesh.computeCurve({Vector()}, x, x), 1);
}

TEST(BiarcTubeMesh, CanBeFilledAnewFromAnotherCurve)
{
    const std::vector<Vector> three(BENT.begin(), BENT.end() - 1);
    const std::vector<Quaternion> rotations(3);
    const Vector start(1, 0.2, 0.3), end(0.1, 1, 0.5);
    BiarcTubeMesh mesh(lineAlong({0, 1, 0}), 0.3, 8, 4, false, false);

    BiarcTubeMesh estimated(three, 0.3, 8, 4, false, false);
    mesh.generateMesh(mesh.computeCurve(three));
    expectSameMeshes(mesh, estimated);
    EXPECT_EQ(mesh.getBBox().getMin(), estimated.getBBox().getMin());
    EXPECT_EQ(mesh.getBBox().getMax(), estimated.getBBox().getMax());

    BiarcTubeMesh rotated(three, rotations, 0.3, 8, 4, false, false);
    mesh.generateMesh(mesh.computeCurve(three, rotations));
    expectSameMeshes(mesh, rotated);

    BiarcTubeMesh withEnds = meshWithEndTangents(three, start, end);
    mesh.generateMesh(mesh.computeCurve(three, start, end));
    expectSameMeshes(mesh, withEnds);
}

TEST(BiarcTubeMesh, RingsOutliveTheCurve)
{
    const Vector start(1, 0.2, 0.3), end(0.1, 1, 0.5);
    BiarcTubeMesh expected = meshWithEndTangents(BENT, start, end);
    BiarcTubeMesh mesh = meshWithEndTangents(BENT, start, end);
    mesh.forgetCurve();
    expectSameMeshes(mesh, expected);

    mesh.generateMesh(int(BENT.size())); // without a curve, as a mesh that never had one
    expectSameMeshes(mesh, expected);
    mesh.generateMesh(mesh.computeCurve(BENT, start, end));
    expectSameMeshes(mesh, expected);
}

TEST(BiarcTubeMesh, StopsEarlyWhereTheCurveHasFewerNodes)
{
    // Three nodes where five are asked for: rows for five, filled as far as there are
    // biarcs. The last node's biarc is not valid and says so.
    const std::vector<Vector> three(BENT.begin(), BENT.end() - 1);
    BiarcTubeMesh mesh(three, 0.3, 8, 4, false, false);
    BiarcTubeMesh expected(three, 0.3, 8, 4, false, false);

    testing::internal::CaptureStderr();
    mesh.generateMesh(5);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("Not a valid biarc\n"),
              std::string::npos);

    ASSERT_EQ(mesh.getHeight(), 17);
    EXPECT_EQ(mesh.getParamValues().size(), 5u);
    for (int row = 0; row < 8; ++row)
        expectEqual(mesh.getPoints()[row][3], expected.getPoints()[row][3]);
    for (int row = 13; row < 17; ++row)
        expectEqual(mesh.getPoints()[row][3], Vector());
}

TEST(BiarcTubeMesh, CirclesHaveOnePointPerColumnButTheLast)
{
    BiarcTubeMesh mesh(BENT, 0.3, 8, 4, false, false);
    const Vector u(1, 0, 0), v(0, 0, 2), untouched(9, 9, 9);
    std::vector<Vector> circle(9, untouched);

    mesh.generate3DCircle(u, v, circle.data());
    expectNear(circle[1], {std::sqrt(0.5), 0, std::sqrt(2)});
    expectNear(circle[7], {std::sqrt(0.5), 0, -std::sqrt(2)});
    expectEqual(circle[8], untouched);

    mesh.setWidth(5);
    circle.assign(9, untouched);
    mesh.generate3DCircle(u, v, circle.data());
    expectNear(circle[1], {0, 0, 2});
    expectNear(circle[3], {0, 0, -2});
    expectEqual(circle[4], untouched);
}

TEST(BiarcTubeMesh, ASubclassMayHaveACircleOfItsOwn)
{
    class SquareTube : public BiarcTubeMesh
    {
    public:
        using BiarcTubeMesh::BiarcTubeMesh;
        void generate3DCircle(Vector u, Vector v, Vector* out) override
        {
            for (int k = 0; k < 4; ++k)
                out[k] = (k == 0 || k == 3 ? 1.0 : -1.0) * u + (k < 2 ? 1.0 : -1.0) * v;
        }
    };
    SquareTube mesh(lineAlong({1, 0, 0}), 0.5, 4, 2, false, false);
    expectNear(mesh.getNormals()[3][0], {0, 1, 0}); // a constructor knows no subclass

    mesh.generateMesh(4);
    for (int row = 0; row < mesh.getHeight(); ++row) {
        SCOPED_TRACE(row);
        expectNear(mesh.getNormals()[row][0], {0, 1, 1});
        expectNear(mesh.getNormals()[row][1], {0, -1, 1});
        expectNear(mesh.getNormals()[row][4], {0, 1, 1});
    }
    EXPECT_EQ(mesh.getBBox().getMin(), SbVec3f(0, -0.5f, -0.5f));
    EXPECT_EQ(mesh.getBBox().getMax(), SbVec3f(6, 0.5f, 0.5f));
}

TEST(BiarcTubeMesh, TooFewPointsLeaveTheCurveAsItWas)
{
    BiarcTubeMesh mesh(BENT, 0.1, 8, 4, false, false);
    BiarcTubeMesh expected(BENT, 0.1, 8, 4, false, false);

    mesh.generateMesh(mesh.computeCurve({Vector(9, 9, 9)}));
    expectSameMeshes(mesh, expected);
    mesh.generateMesh(4);
    expectSameMeshes(mesh, expected);
}

// Random rods

class BiarcTubeMeshOnRandomRods : public testing::TestWithParam<RodKind>
{
protected:
    // Calls check(rod, random numbers) for a number of rods of the kind.
    template <typename Check>
    void forRods(int count, Check check)
    {
        for (int seed = 0; seed < count; ++seed) {
            SCOPED_TRACE(testing::Message() << "seed " << seed);
            RandomNumbers random(1000u + unsigned(seed));
            const RandomRod rod = randomRod(GetParam(), random.integer(2, 20), unsigned(seed));
            radius = random.uniform(-0.5, 0.5);
            slices = random.integer(1, 17);
            rings = random.integer(-1, 9);
            check(rod, random);
        }
    }

    // As the mesh stores them.
    double storedRadius() const { return std::fmax(std::fabs(radius), 0.0001); }
    int storedSlices() const { return slices < 3 ? 3 : slices; }
    int storedRings() const { return rings < 1 ? 1 : rings; }

    plain::Grid expectedMesh(const RandomRod& rod, const std::vector<plain::Vec>& tangents) const
    {
        return plain::biarcTube(plain::curveThrough(plain::toPlain(rod.points), tangents),
                                storedRadius(), storedSlices(), storedRings());
    }

    void expectSame(BiarcTubeMesh& mesh, const plain::Grid& expected) const
    {
        expectSameMesh(mesh, expected);
        expectSameTables(mesh, expected);
        // Arcs too short for the projection have no tangents.
        if (GetParam() != RodKind::TINY)
            expectFinite(mesh);
    }

    double radius;
    int slices;
    int rings;
};

TEST_P(BiarcTubeMeshOnRandomRods, IsThePlainTubeWithEstimatedTangents)
{
    forRods(30, [this](const RandomRod& rod, RandomNumbers&) {
        BiarcTubeMesh mesh(rod.points, radius, slices, rings, false, true);
        expectSame(mesh, expectedMesh(rod, plain::estimatedTangents(plain::toPlain(rod.points))));
    });
}

TEST_P(BiarcTubeMeshOnRandomRods, IsThePlainTubeWithTheRotationsTangents)
{
    forRods(30, [this](const RandomRod& rod, RandomNumbers&) {
        std::vector<plain::Vec> tangents;
        for (const Quaternion& rotation : rod.rotations)
            tangents.push_back(plain::unit(plain::toPlain(Matrix(rotation).getColumn(2))));
        BiarcTubeMesh mesh(rod.points, rod.rotations, radius, slices, rings, true, false);
        expectSame(mesh, expectedMesh(rod, tangents));
    });
}

TEST_P(BiarcTubeMeshOnRandomRods, IsThePlainTubeWithGivenEndTangents)
{
    forRods(30, [this](const RandomRod& rod, RandomNumbers& random) {
        const Vector start = random.unitVector() * 0.7, end = random.unitVector() * 3.0;
        std::vector<plain::Vec> tangents = plain::estimatedTangents(plain::toPlain(rod.points));
        tangents.front() = plain::alongPointOrder(plain::toPlain(start), tangents.front());
        tangents.back() = plain::alongPointOrder(plain::toPlain(end), tangents.back());
        BiarcTubeMesh mesh(rod.points, start, end, radius, slices, rings, false, false);
        expectSame(mesh, expectedMesh(rod, tangents));
    });
}

TEST_P(BiarcTubeMeshOnRandomRods, IsThePlainTubeWithManyRingsPerBiarc)
{
    // Samples are made in portions: below, at and above their size, and several.
    for (const int count : {1, 4, 31, 63, 64, 65, 127, 128, 129, 300}) {
        SCOPED_TRACE(count);
        forRods(2, [this, count](const RandomRod& rod, RandomNumbers&) {
            rings = count;
            BiarcTubeMesh mesh(rod.points, radius, slices, rings, false, false);
            const auto tangents = plain::estimatedTangents(plain::toPlain(rod.points));
            expectSame(mesh, expectedMesh(rod, tangents));
        });
    }
}

TEST_P(BiarcTubeMeshOnRandomRods, SaysNothing)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    forRods(30, [this](const RandomRod& rod, RandomNumbers&) {
        BiarcTubeMesh mesh(rod.points, radius, slices, rings, false, false);
        BiarcTubeMesh rotated(rod.points, rod.rotations, radius, slices, rings, false, false);
    });

    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

class BiarcTubeMeshWithTangents : public BiarcTubeMeshOnRandomRods
{
};

TEST_P(BiarcTubeMeshWithTangents, RingsAreCirclesAcrossTheTangentAtEverySample)
{
    forRods(20, [this](const RandomRod& rod, RandomNumbers&) {
        slices = 8;
        BiarcTubeMesh mesh(rod.points, radius, slices, rings, false, false);
        const plain::Samples samples =
            plain::sample(plain::curveThrough(plain::toPlain(rod.points),
                                              plain::estimatedTangents(plain::toPlain(rod.points))),
                          storedRings());

        ASSERT_EQ(mesh.getHeight(), storedRings() * (int(rod.points.size()) - 1) + 1);
        for (int row = 0; row < mesh.getHeight(); ++row) {
            SCOPED_TRACE(testing::Message() << "row " << row);
            const plain::Vec c = samples.points[std::size_t(row)];
            const plain::Vec t = samples.tangents[std::size_t(row)];
            const Vector centre(c.x, c.y, c.z), tangent(t.x, t.y, t.z);
            // Coordinates are rounded to 1e-16 of their size.
            const double rounded = 1e-14 + 1e-15 * centre.getNorm();
            for (int k = 0; k <= 8; ++k) {
                const Vector normal = mesh.getNormals()[row][k];
                EXPECT_NEAR((mesh.getPoints()[row][k] - centre).getNorm(), storedRadius(), rounded);
                EXPECT_NEAR(normal.getNorm(), 1, 1e-13);
                EXPECT_NEAR(normal.dot(tangent), 0, 1e-13);
            }
            // d1 and d2 of the carried frame are the normals a quarter turn apart.
            expectNear(axisOf(mesh, row), tangent, 1e-13);
            expectEqual(mesh.getPoints()[row][8], mesh.getPoints()[row][0]);
            expectEqual(mesh.getNormals()[row][8], mesh.getNormals()[row][0]);
        }
    });
}

TEST_P(BiarcTubeMeshWithTangents, RingsAtTheNodesAreAroundTheGivenPoints)
{
    forRods(20, [this](const RandomRod& rod, RandomNumbers&) {
        BiarcTubeMesh mesh(rod.points, radius, slices, rings, false, false);
        ASSERT_EQ(mesh.getHeight(), storedRings() * (int(rod.points.size()) - 1) + 1);
        for (std::size_t i = 0; i < rod.points.size(); ++i) {
            expectNear(centreOf(mesh, int(i) * storedRings()), rod.points[i],
                       1e-14 + 1e-15 * rod.points[i].getNorm());
        }
    });
}

TEST_P(BiarcTubeMeshOnRandomRods, TablesGrowFromZeroToTheWholeLength)
{
    forRods(20, [this](const RandomRod& rod, RandomNumbers&) {
        BiarcTubeMesh mesh(rod.points, radius, slices, rings, false, false);
        const std::vector<double>&nodes = mesh.getParamValues(),
              &rows = mesh.getInterpParamValues();
        ASSERT_EQ(nodes.size(), rod.points.size());
        ASSERT_EQ(rows.size(), std::size_t(mesh.getHeight()));
        EXPECT_EQ(nodes.front(), 0);
        EXPECT_EQ(nodes.back(), rows.back());
        for (std::size_t row = 1; row < rows.size(); ++row)
            EXPECT_GT(rows[row], rows[row - 1]) << "row " << row;
        for (std::size_t i = 0; i < nodes.size(); ++i)
            EXPECT_EQ(nodes[i], rows[i * std::size_t(storedRings())]) << "node " << i;
        // No shorter than the polygon through the points.
        double polygon = 0;
        for (std::size_t i = 1; i < nodes.size(); ++i) {
            polygon += (rod.points[i] - rod.points[i - 1]).getNorm();
            EXPECT_GE(nodes[i], polygon * (1 - 1e-8)) << "node " << i;
        }
    });
}

// Closed curves

TEST(BiarcTubeMesh, OfAClosedCurveEndsWithTheRingThatItBeganWith)
{
    for (const int count : {3, 4, 7, 100}) {
        for (const bool isFlat : {true, false}) {
            const auto mesh = BiarcTubeMesh::makeClosed(closedCurve(count, isFlat), 0.2, 8, 5);
            ASSERT_EQ(mesh->getHeight(), 5 * count + 1);
            const int last = mesh->getHeight() - 1;
            for (int column = 0; column <= 8; ++column) {
                expectEqual(mesh->getPoints()[last][column], mesh->getPoints()[0][column]);
                expectEqual(mesh->getNormals()[last][column], mesh->getNormals()[0][column]);
            }
        }
    }
}

TEST(BiarcTubeMesh, OfAClosedCurveHasNoCaps)
{
    const auto mesh = BiarcTubeMesh::makeClosed(closedCurve(20), 0.2, 8, 5);
    EXPECT_TRUE(mesh->isMeetingItself());
    EXPECT_EQ(countFans(*mesh), 0);
    EXPECT_EQ(mesh->getPrimitiveCount(), mesh->Mesh::getPrimitiveCount());
    BiarcTubeMesh open(closedCurve(20), 0.2, 8, 5, false, false);
    EXPECT_FALSE(open.isMeetingItself());
    EXPECT_EQ(countFans(open), 2);
}

TEST(BiarcTubeMesh, OfAClosedCurveSpreadsTheClosingAngleEvenly)
{
    const std::vector<Vector> points = closedCurve(60);
    const auto mesh = BiarcTubeMesh::makeClosed(points, 0.2, 8, 6);
    const Vector tangent = points[1] - points[59];
    BiarcTubeMesh open(points, tangent, tangent, 0.2, 8, 6, false, false);
    const std::vector<double>& lengths = mesh->getInterpParamValues();
    const auto turned = [&](int row) { return turnOfRing(*mesh, row) - turnOfRing(open, row); };
    const double perLength = turned(1) / lengths[1];
    EXPECT_GT(std::abs(perLength) * lengths.back(), 0.1) << "a curve that closes by itself";
    EXPECT_LE(std::abs(perLength) * lengths.back(), M_PI);
    for (int row = 1; row < mesh->getHeight(); ++row) {
        const double step = lengths[std::size_t(row)] - lengths[std::size_t(row) - 1];
        EXPECT_NEAR(turned(row), perLength * step, 1e-12) << row;
    }
}

TEST(BiarcTubeMesh, OfAClosedCurveIsTheSameWhereverItBegins)
{
    std::vector<Vector> points = closedCurve(30);
    const auto mesh = BiarcTubeMesh::makeClosed(points, 0.2, 8, 4);
    points.erase(points.begin(), points.begin() + 11);
    const std::vector<Vector> whole = closedCurve(30);
    points.insert(points.end(), whole.begin() + 1, whole.begin() + 12);
    const auto shifted = BiarcTubeMesh::makeClosed(points, 0.2, 8, 4);
    for (int row = 0; row < 120; ++row) {
        expectNear(centreOf(*shifted, row), centreOf(*mesh, (row + 44) % 120), 1e-13);
        expectNear(axisOf(*shifted, row), axisOf(*mesh, (row + 44) % 120), 1e-12);
    }
}

TEST(BiarcTubeMesh, OfAClosedCurveHasTheBoxOfItsPoints)
{
    const auto mesh = BiarcTubeMesh::makeClosed(closedCurve(40), 0.3, 12, 3);
    SbBox3f box;
    for (int row = 0; row < mesh->getHeight(); ++row) {
        for (int column = 0; column < 12; ++column) {
            const Vector& point = mesh->getPoints()[row][column];
            box.extendBy(SbVec3f(float(point.x), float(point.y), float(point.z)));
        }
    }
    EXPECT_EQ(mesh->getBBox().getMin(), box.getMin());
    EXPECT_EQ(mesh->getBBox().getMax(), box.getMax());
}

TEST(BiarcTubeMesh, IsOpenWhereTheLastPointIsNotTheFirst)
{
    std::vector<Vector> points = closedCurve(20);
    points.back().z += 1e-9;
    const auto asked = BiarcTubeMesh::makeClosed(points, 0.2, 8, 5);
    BiarcTubeMesh open(points, 0.2, 8, 5, false, false);
    EXPECT_FALSE(asked->isMeetingItself());
    expectSameMeshes(*asked, open);
    const std::vector<Vector> thereAndBack = {{0, 0, 0}, {1, 0, 0}, {0, 0, 0}};
    EXPECT_FALSE(BiarcTubeMesh::makeClosed(thereAndBack, 0.2, 8, 5)->isMeetingItself());
}

TEST(BiarcTubeMesh, ArcLengthsThatSomebodyHasStayAsTheyAre)
{
    const std::vector<Vector> line = lineAlong({0, 1, 0});
    auto mesh = std::make_unique<BiarcTubeMesh>(line, 0.3, 8, 4, false, false);
    const std::shared_ptr<const ArcLengths> shared = mesh->shareArcLengths();
    const ArcLengths before = *shared;
    EXPECT_EQ(&shared->ofPoints, &mesh->getParamValues()) << "the mesh's own";
    EXPECT_EQ(&shared->ofRows, &mesh->getInterpParamValues());

    BiarcTubeMesh another(BENT, 0.3, 8, 4, false, false, mesh.get());
    BiarcTubeMesh fresh(BENT, 0.3, 8, 4, false, false);
    expectSameMeshes(another, fresh);
    EXPECT_NE(another.getParamValues(), before.ofPoints);
    EXPECT_EQ(shared->ofPoints, before.ofPoints) << "in the memory of the mesh that was replaced";

    mesh->generateMesh(mesh->computeCurve(BENT));
    EXPECT_EQ(mesh->getInterpParamValues(), fresh.getInterpParamValues());
    EXPECT_EQ(shared->ofRows, before.ofRows) << "of a mesh that is built anew";
    mesh.reset();
    EXPECT_EQ(shared->ofRows, before.ofRows);
}

TEST(BiarcTubeMesh, TakesOverArcLengthsThatNobodyHas)
{
    BiarcTubeMesh mesh(BENT, 0.3, 8, 4, false, false);
    const double* const memory = mesh.shareArcLengths()->ofRows.data();
    const BiarcTubeMesh another(BENT, 0.2, 8, 4, false, false, &mesh);
    EXPECT_EQ(another.shareArcLengths()->ofRows.data(), memory);
    EXPECT_TRUE(mesh.getParamValues().empty());
    EXPECT_EQ(mesh.shareArcLengths(), nullptr);
}

TEST(BiarcTubeMesh, OfAClosedCurveIsTheSameInTheMemoryOfAnother)
{
    const auto fresh = BiarcTubeMesh::makeClosed(closedCurve(20), 0.2, 8, 5);
    const auto replaced = BiarcTubeMesh::makeClosed(closedCurve(33), 0.3, 9, 2);
    const auto reused = BiarcTubeMesh::makeClosed(closedCurve(20), 0.2, 8, 5, replaced.get());
    expectSameMeshes(*fresh, *reused);
}

INSTANTIATE_TEST_SUITE_P(Kinds, BiarcTubeMeshOnRandomRods, testing::ValuesIn(allRodKinds()),
                         [](const auto& kind) { return nameOf(kind.param); });
INSTANTIATE_TEST_SUITE_P(Kinds, BiarcTubeMeshWithTangents,
                         testing::ValuesIn(rodKindsWithTangents()),
                         [](const auto& kind) { return nameOf(kind.param); });
