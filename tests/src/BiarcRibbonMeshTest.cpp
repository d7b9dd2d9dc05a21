// SPDX-License-Identifier: GPL-3.0-or-later
#include <BiarcRibbonMesh.h>

#include <cmath>

#include <gtest/gtest.h>

#include "support/MeshComparison.h"
#include "support/PlainReference.h"
#include "support/RandomRods.h"

using Vector = algebra3d::Vector3<double>;

namespace {

const double WIDTH = 0.5;

void expectNear(const Vector& actual, const Vector& expected, double tolerance = 1e-14)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

void expectEqual(const Vector& actual, const Vector& expected) { expectNear(actual, expected, 0); }

void expectSameMeshes(BiarcRibbonMesh& a, BiarcRibbonMesh& b)
{
    ASSERT_EQ(a.getHeight(), b.getHeight());
    for (int row = 0; row < a.getHeight(); ++row) {
        for (int column = 0; column < 2; ++column) {
            SCOPED_TRACE(testing::Message() << "row " << row << ", column " << column);
            expectEqual(a.getPoints()[row][column], b.getPoints()[row][column]);
            expectEqual(a.getNormals()[row][column], b.getNormals()[row][column]);
        }
    }
    EXPECT_EQ(a.getParamValues(), b.getParamValues());
    EXPECT_EQ(a.getInterpParamValues(), b.getInterpParamValues());
}

double totalLength(const std::vector<Vector>& edge)
{
    const std::vector<plain::Vec> points = plain::toPlain(edge);
    double length = 0;
    for (const plain::Biarc& biarc :
         plain::curveThrough(points, plain::estimatedTangents(points)).biarcs)
        length += biarc.length;
    return length;
}

// A second edge whose points lie about one unit off those of the first.
std::vector<Vector> otherEdge(const RandomRod& rod, double distance, RandomNumbers& random)
{
    std::vector<Vector> edge;
    for (const Vector& point : rod.points)
        edge.push_back(point + distance * random.unitVector());
    return edge;
}

class BiarcRibbonMeshTest : public testing::Test
{
protected:
    std::vector<Vector> edgeA = {{0, 0, 0}, {1, 0, 0}, {2, 1, 0}};
    std::vector<Vector> edgeB = {{0, 0, 1}, {1, 1, 2}, {3, 2, 1}};
};

} // namespace

TEST_F(BiarcRibbonMeshTest, HasOneRowPerSampleAndOneMore)
{
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 5);

    EXPECT_TRUE(ribbon.isValid());
    EXPECT_EQ(ribbon.getHeight(), 11);
    EXPECT_EQ(ribbon.getWidth(), 2);
    EXPECT_EQ(ribbon.getParamValues().size(), 3u);
    EXPECT_EQ(ribbon.getInterpParamValues().size(), 11u);
}

TEST_F(BiarcRibbonMeshTest, ItsTablesAreThoseOfTheSecondEdge)
{
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 5);
    const double lengthA = totalLength(edgeA), lengthB = totalLength(edgeB);
    ASSERT_GT(lengthB - lengthA, 0.5);

    EXPECT_EQ(ribbon.getParamValues().front(), 0);
    EXPECT_NEAR(ribbon.getParamValues().back(), lengthB, 1e-14);
    EXPECT_NEAR(ribbon.getInterpParamValues().back(), lengthB, 1e-14);
}

TEST_F(BiarcRibbonMeshTest, TakesTheAbsoluteInterpolationCount) // unlike the biarc tube
{
    BiarcRibbonMesh three(edgeA, edgeB, WIDTH, 3), minusThree(edgeA, edgeB, WIDTH, -3);
    EXPECT_EQ(minusThree.getHeight(), 7);
    expectSameMeshes(minusThree, three);

    BiarcRibbonMesh minusFour(edgeA, edgeB, WIDTH, -4);
    EXPECT_EQ(minusFour.getHeight(), 9);
}

TEST_F(BiarcRibbonMeshTest, AnInterpolationCountOfZeroCountsAsOne)
{
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 0);

    ASSERT_EQ(ribbon.getHeight(), 3);
    for (int row = 0; row < 3; ++row) {
        SCOPED_TRACE(row);
        expectEqual(ribbon.getPoints()[row][0], edgeA[std::size_t(row)]);
        expectEqual(ribbon.getPoints()[row][1], edgeB[std::size_t(row)]);
    }
    EXPECT_EQ(ribbon.getParamValues(), ribbon.getInterpParamValues());
}

TEST_F(BiarcRibbonMeshTest, FewerThanTwoPointsLeaveItEmpty)
{
    std::vector<Vector> none, one = {{1, 2, 3}};
    BiarcRibbonMesh fromNone(none, none, WIDTH, 5), fromOne(one, edgeB, WIDTH, 5);

    for (BiarcRibbonMesh* ribbon : {&fromNone, &fromOne}) {
        EXPECT_FALSE(ribbon->isValid());
        EXPECT_EQ(ribbon->getHeight(), 0);
        EXPECT_EQ(ribbon->getWidth(), 2);
        EXPECT_EQ(ribbon->getPoints(), nullptr);
        EXPECT_TRUE(ribbon->getParamValues().empty());
        EXPECT_TRUE(ribbon->getInterpParamValues().empty());
    }
}

TEST_F(BiarcRibbonMeshTest, TheFirstEdgeDecidesHowManyPointsCount)
{
    std::vector<Vector> longer = edgeB;
    longer.push_back({9, 9, 9});
    longer.push_back({10, 9, 9});
    BiarcRibbonMesh expected(edgeA, edgeB, WIDTH, 5), ribbon(edgeA, longer, WIDTH, 5);

    expectSameMeshes(ribbon, expected);
}

TEST_F(BiarcRibbonMeshTest, TheWidthIsOnlyStored)
{
    BiarcRibbonMesh expected(edgeA, edgeB, WIDTH, 5);
    EXPECT_EQ(expected.getRibbonWidth(), WIDTH);
    for (const double width : {-2.0, 0.0}) {
        SCOPED_TRACE(width);
        // A ribbon built from directions would be empty.
        BiarcRibbonMesh ribbon(edgeA, edgeB, width, 5);
        EXPECT_EQ(ribbon.getRibbonWidth(), 0);
        EXPECT_TRUE(ribbon.isValid());
        expectSameMeshes(ribbon, expected);
    }
}

TEST_F(BiarcRibbonMeshTest, DoesNotChangeTheEdges)
{
    const std::vector<Vector> a = edgeA, b = edgeB;
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 5);

    ASSERT_EQ(edgeA.size(), 3u);
    ASSERT_EQ(edgeB.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        expectEqual(edgeA[i], a[i]);
        expectEqual(edgeB[i], b[i]);
    }
}

TEST_F(BiarcRibbonMeshTest, HasOneMaterialPerRow)
{
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 5);

    EXPECT_EQ(ribbon.getMaterialIndex(3, 0), 3);
    EXPECT_EQ(ribbon.getMaterialIndex(3, 1), 3);
}

TEST_F(BiarcRibbonMeshTest, NormalsOfAStraightRibbonAreAcrossTheLineAndTheShift)
{
    // Along x, shifted by 2 along y: (0, 2, 0) x (1, 0, 0) points along -z.
    edgeA = {{0, 0, 0}, {1, 0, 0}, {3, 0, 0}};
    edgeB = {{0, 2, 0}, {1, 2, 0}, {3, 2, 0}};
    BiarcRibbonMesh ribbon(edgeA, edgeB, 2, 4);

    ASSERT_EQ(ribbon.getHeight(), 9);
    for (int row = 0; row < 9; ++row) {
        SCOPED_TRACE(row);
        const double x = row <= 4 ? row * 0.25 : 1 + (row - 4) * 0.5;
        expectNear(ribbon.getPoints()[row][0], {x, 0, 0});
        expectNear(ribbon.getPoints()[row][1], {x, 2, 0});
        expectNear(ribbon.getNormals()[row][0], {0, 0, -1});
        expectNear(ribbon.getNormals()[row][1], {0, 0, -1});
        EXPECT_NEAR(ribbon.getInterpParamValues()[std::size_t(row)], x, 1e-14);
    }
}

TEST_F(BiarcRibbonMeshTest, NormalsFollowTheTangentOfTheirOwnEdge)
{
    // One edge along x, the other along y from there on: at row 0 the side is (0, 0, 1).
    edgeA = {{0, 0, 0}, {1, 0, 0}};
    edgeB = {{0, 0, 1}, {0, 1, 1}};
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 1);

    expectNear(ribbon.getNormals()[0][0], {0, 1, 0});
    expectNear(ribbon.getNormals()[0][1], {-1, 0, 0});
    // At row 1 it is (-1, 1, 1): (-1, 1, 1) x (1, 0, 0) and x (0, 1, 0).
    const double r = std::sqrt(0.5);
    expectNear(ribbon.getNormals()[1][0], {0, r, -r});
    expectNear(ribbon.getNormals()[1][1], {-r, 0, -r});
}

TEST_F(BiarcRibbonMeshTest, TheBoxOmitsTheLastRow) // kept on purpose
{
    edgeA = {{0, 0, 0}, {1, 0, 0}, {3, 0, 0}};
    edgeB = {{0, 2, 0}, {1, 2, 0}, {3, 2, 0}};
    BiarcRibbonMesh ribbon(edgeA, edgeB, 2, 4);

    // The last row but one is at 3 - 2 / 4.
    EXPECT_EQ(ribbon.getBBox().getMin(), SbVec3f(0, 0, 0));
    EXPECT_EQ(ribbon.getBBox().getMax(), SbVec3f(2.5f, 2, 0));
    expectNear(ribbon.getPoints()[8][0], {3, 0, 0});
}

TEST_F(BiarcRibbonMeshTest, ComputePointsOnSideFillsOneColumnAndBothTables)
{
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 2);
    BiarcRibbonMesh before(edgeA, edgeB, WIDTH, 2);
    Curve<::Vector3> line; // along z, in steps of 2 and 4
    for (const double z : {0.0, 2.0, 6.0})
        line.append({0, 0, z}, {});
    line.computeTangents();
    line.makeMidpointRule();
    std::vector<Vector> tangents(5);

    ribbon.computePointsOnSide(0, 3, line, tangents);

    const double z[] = {0, 1, 2, 4, 6};
    for (int row = 0; row < 5; ++row) {
        SCOPED_TRACE(row);
        expectNear(ribbon.getPoints()[row][0], {0, 0, z[row]});
        expectEqual(ribbon.getPoints()[row][1], before.getPoints()[row][1]);
        expectNear(tangents[std::size_t(row)], {0, 0, 1});
        EXPECT_NEAR(ribbon.getInterpParamValues()[std::size_t(row)], z[row], 1e-14);
    }
    EXPECT_NEAR(ribbon.getParamValues()[1], 2, 1e-14);
    EXPECT_NEAR(ribbon.getParamValues()[2], 6, 1e-14);
    // Neither the box: it reaches z = 4.
    EXPECT_EQ(ribbon.getBBox().getMax()[2], 4);
}

TEST_F(BiarcRibbonMeshTest, ArcLengthsThatSomebodyHasStayAsTheyAre)
{
    BiarcRibbonMesh ribbon(edgeB, edgeA, WIDTH, 2);
    const std::shared_ptr<const ArcLengths> shared = ribbon.shareArcLengths();
    const ArcLengths before = *shared;
    EXPECT_EQ(&shared->ofRows, &ribbon.getInterpParamValues()) << "the mesh's own";

    BiarcRibbonMesh another(edgeA, edgeB, WIDTH, 2, &ribbon);
    BiarcRibbonMesh fresh(edgeA, edgeB, WIDTH, 2);
    expectSameMeshes(another, fresh);
    EXPECT_EQ(shared->ofPoints, before.ofPoints) << "of a mesh that was replaced";
    EXPECT_EQ(shared->ofRows, before.ofRows);

    const std::shared_ptr<const ArcLengths> ofFresh = fresh.shareArcLengths();
    const ArcLengths beforeOther = *ofFresh;
    Curve<::Vector3> line;
    for (const double z : {0.0, 2.0, 6.0})
        line.append({0, 0, z}, {});
    line.computeTangents();
    line.makeMidpointRule();
    std::vector<Vector> tangents(5);
    fresh.computePointsOnSide(0, 3, line, tangents);
    EXPECT_NE(fresh.getParamValues(), beforeOther.ofPoints);
    EXPECT_EQ(ofFresh->ofPoints, beforeOther.ofPoints) << "of another side";
}

TEST_F(BiarcRibbonMeshTest, CoincidentPointsGiveNonFiniteRowsWithoutAMessage)
{
    edgeA = {{0, 0, 0}, {0, 0, 0}, {1, 0, 0}};
    testing::internal::CaptureStderr();
    BiarcRibbonMesh ribbon(edgeA, edgeB, WIDTH, 5);

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(ribbon.getHeight(), 11);
    EXPECT_TRUE(std::isnan(ribbon.getPoints()[1][0].x));
    // The other edge and its tables are sound.
    EXPECT_NEAR(ribbon.getParamValues().back(), totalLength(edgeB), 1e-14);
    EXPECT_TRUE(std::isfinite(ribbon.getPoints()[1][1].x));
}

// Random rods

class BiarcRibbonMeshOnRandomRods : public testing::TestWithParam<RodKind>
{
protected:
    static double scale()
    {
        switch (GetParam()) {
        case RodKind::LARGE:
            return 1e6;
        case RodKind::SMALL:
            return 1e-3;
        case RodKind::TINY:
            return 1e-7;
        default:
            return 1;
        }
    }
};

TEST_P(BiarcRibbonMeshOnRandomRods, IsThePlainRibbon)
{
    for (unsigned seed = 0; seed < 30; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomNumbers random(seed);
        RandomRod rod = randomRod(GetParam(), random.integer(2, 20), seed);
        std::vector<Vector> other = otherEdge(rod, 0.4 * scale(), random);
        const int count = random.integer(1, 9);
        BiarcRibbonMesh ribbon(rod.points, other, WIDTH, count);
        const plain::Grid expected =
            plain::biarcRibbon(plain::toPlain(rod.points), plain::toPlain(other), count);

        expectSameMesh(ribbon, expected);
        EXPECT_EQ(ribbon.getParamValues(), expected.nodeLengths);
        EXPECT_EQ(ribbon.getInterpParamValues(), expected.rowLengths);
        // Arcs too short for the projection have no tangents.
        if (GetParam() != RodKind::TINY)
            expectFinite(ribbon);
    }
}

class BiarcRibbonMeshWithTangents : public BiarcRibbonMeshOnRandomRods
{
};

TEST_P(BiarcRibbonMeshWithTangents, PassesThroughTheEdgesPointsWithUnitNormalsAcross)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        RandomNumbers random(seed);
        RandomRod rod = randomRod(GetParam(), random.integer(2, 20), seed);
        std::vector<Vector> other = otherEdge(rod, 0.4 * scale(), random);
        const int count = random.integer(1, 9);
        BiarcRibbonMesh ribbon(rod.points, other, WIDTH, count);

        ASSERT_EQ(ribbon.getHeight(), count * (int(rod.points.size()) - 1) + 1);
        for (std::size_t i = 0; i < rod.points.size(); ++i) {
            const int row = int(i) * count;
            expectEqual(ribbon.getPoints()[row][0], rod.points[i]);
            expectEqual(ribbon.getPoints()[row][1], other[i]);
        }
        for (int row = 0; row < ribbon.getHeight(); ++row) {
            const Vector side = (ribbon.getPoints()[row][1] - ribbon.getPoints()[row][0]).getUnit();
            for (int column = 0; column < 2; ++column) {
                const Vector normal = ribbon.getNormals()[row][column];
                EXPECT_NEAR(normal.getNorm(), 1, 1e-14);
                EXPECT_NEAR(normal.dot(side), 0, 1e-12);
            }
        }
        const std::vector<double>& rows = ribbon.getInterpParamValues();
        for (std::size_t row = 1; row < rows.size(); ++row)
            EXPECT_GT(rows[row], rows[row - 1]) << "row " << row;
        EXPECT_EQ(rows.back(), ribbon.getParamValues().back());
    }
}

// Closed curves

namespace {

// A circle of radius 1 in `count` points, whose last point is the first one again.
std::vector<Vector> circle(int count, double z)
{
    std::vector<Vector> points;
    for (int i = 0; i < count; ++i)
        points.emplace_back(std::cos(2 * M_PI * i / count), std::sin(2 * M_PI * i / count), z);
    points.push_back(points.front());
    return points;
}

} // namespace

TEST(BiarcRibbonMesh, BetweenClosedCurvesEndsWithTheRowThatItBeganWith)
{
    std::vector<Vector> one = circle(9, 0), other = circle(9, 0.5);
    const auto ribbon = BiarcRibbonMesh::makeClosed(one, other, 0.5, 4);
    ASSERT_EQ(ribbon->getHeight(), 37);
    for (const int column : {0, 1}) {
        expectEqual(ribbon->getPoints()[36][column], ribbon->getPoints()[0][column]);
        expectEqual(ribbon->getNormals()[36][column], ribbon->getNormals()[0][column]);
    }
}

// As every other row: an open ribbon bends off there, for it begins along its first edge.
TEST(BiarcRibbonMesh, BetweenClosedCurvesIsRoundWhereItMeets)
{
    std::vector<Vector> one = circle(9, 0), other = circle(9, 0.5);
    const auto ribbon = BiarcRibbonMesh::makeClosed(one, other, 0.5, 4);
    BiarcRibbonMesh open(one, other, 0.5, 4);
    for (int row = 0; row < 36; ++row) {
        const Vector& point = ribbon->getPoints()[row][1];
        EXPECT_NEAR(std::hypot(point.x, point.y), 1, 1e-12) << row;
        EXPECT_NEAR(ribbon->getNormals()[row][1].dot({point.x, point.y, 0}), -1, 1e-12) << row;
    }
    EXPECT_GT(std::abs(std::hypot(open.getPoints()[2][1].x, open.getPoints()[2][1].y) - 1), 1e-3);
}

TEST(BiarcRibbonMesh, IsOpenWhereAnEdgeDoesNotEndAsItBegins)
{
    std::vector<Vector> one = circle(9, 0), other = circle(9, 0.5);
    other.back() = Vector(1.1, 0, 0.5);
    const auto asked = BiarcRibbonMesh::makeClosed(one, other, 0.5, 4);
    BiarcRibbonMesh open(one, other, 0.5, 4);
    for (int row = 0; row < open.getHeight(); ++row) {
        for (const int column : {0, 1}) {
            expectEqual(asked->getPoints()[row][column], open.getPoints()[row][column]);
            expectEqual(asked->getNormals()[row][column], open.getNormals()[row][column]);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Kinds, BiarcRibbonMeshOnRandomRods, testing::ValuesIn(allRodKinds()),
                         [](const auto& kind) { return nameOf(kind.param); });
INSTANTIATE_TEST_SUITE_P(Kinds, BiarcRibbonMeshWithTangents,
                         testing::ValuesIn(rodKindsWithTangents()),
                         [](const auto& kind) { return nameOf(kind.param); });
