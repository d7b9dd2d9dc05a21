// SPDX-License-Identifier: GPL-3.0-or-later
#include <RibbonMesh.h>

#include <cmath>

#include "support/CoinEnvironment.h"
#include "support/MeshShape.h"
#include "support/drawing.h"
#include "support/triangles.h"

using Vector = algebra3d::Vector3<double>;

namespace {

void expectVector(const Vector& actual, const Vector& expected)
{
    // A few operations in double on numbers up to 10.
    EXPECT_NEAR(actual.x, expected.x, 1e-14);
    EXPECT_NEAR(actual.y, expected.y, 1e-14);
    EXPECT_NEAR(actual.z, expected.z, 1e-14);
}

// Along +z in steps of 1, with directions (0, 2, 0).
RibbonMesh straightRibbon(int rows, double width)
{
    std::vector<Vector> points;
    for (int i = 0; i < rows; ++i)
        points.push_back({0, 0, double(i)});
    return RibbonMesh(points, std::vector<Vector>(points.size(), {0, 2, 0}), width);
}

class OwnRibbon : public RibbonMesh
{
public:
    OwnRibbon(int rows, int columns) : RibbonMesh(1)
    {
        setWidth(columns);
        setHeight(rows);
        allocateMemory();
    }
};

} // namespace

TEST(RibbonMesh, NegativeWidthIsStoredAsZero)
{
    EXPECT_EQ(RibbonMesh(-2.0).getRibbonWidth(), 0);
    EXPECT_EQ(RibbonMesh(0.75).getRibbonWidth(), 0.75);
    EXPECT_EQ(straightRibbon(3, -2).getRibbonWidth(), 0);
}

TEST(RibbonMesh, WithoutRowsIsInvalid)
{
    RibbonMesh ribbon(1);
    EXPECT_EQ(ribbon.getHeight(), 0);
    EXPECT_EQ(ribbon.getWidth(), 2);
    EXPECT_FALSE(ribbon.isValid());
}

TEST(RibbonMesh, FarEdgeIsOneWidthAwayAlongTheUnitDirection)
{
    // Along +z, then across +y: the face normal is y x z = +x.
    RibbonMesh ribbon = straightRibbon(3, 0.5);
    ASSERT_TRUE(ribbon.isValid());
    ASSERT_EQ(ribbon.getHeight(), 3);
    ASSERT_EQ(ribbon.getWidth(), 2);
    for (int row = 0; row < 3; ++row) {
        SCOPED_TRACE(row);
        expectVector(ribbon.getPoints()[row][0], {0, 0, double(row)});
        expectVector(ribbon.getPoints()[row][1], {0, 0.5, double(row)});
        expectVector(ribbon.getNormals()[row][0], {1, 0, 0});
        expectVector(ribbon.getNormals()[row][1], {1, 0, 0});
    }
}

TEST(RibbonMesh, BoxHoldsBothEdges)
{
    const SbBox3f box = straightRibbon(3, 0.5).getBBox();
    EXPECT_EQ(box.getMin(), SbVec3f(0, 0, 0));
    EXPECT_EQ(box.getMax(), SbVec3f(0, 0.5f, 2));

    RibbonMesh negative({{-3, -3, -3}, {-2, -3, -2}}, {{0, 1, 0}, {0, 1, 0}}, 0.5);
    EXPECT_EQ(negative.getBBox().getMin(), SbVec3f(-3, -3, -3));
    EXPECT_EQ(negative.getBBox().getMax(), SbVec3f(-2, -2.5f, -2));
}

TEST(RibbonMesh, WithoutWidthIsEmpty)
{
    for (double width : {0.0, -1.0}) {
        SCOPED_TRACE(width);
        RibbonMesh ribbon = straightRibbon(5, width);
        EXPECT_EQ(ribbon.getHeight(), 0);
        EXPECT_FALSE(ribbon.isValid());
        EXPECT_EQ(ribbon.getPoints(), nullptr);
    }
}

TEST(RibbonMesh, TheShorterSequenceDecides)
{
    const Vector p(0, 0, 0), q(0, 0, 1), r(0, 0, 2), up(0, 1, 0);
    EXPECT_EQ(RibbonMesh({p, q, r}, {up, up}, 1).getHeight(), 2);
    EXPECT_EQ(RibbonMesh({p, q}, {up, up, up}, 1).getHeight(), 2);
}

TEST(RibbonMesh, FewerThanTwoOfEitherLeaveItEmpty)
{
    const Vector p(0, 0, 0), q(0, 0, 1), up(0, 1, 0);
    const struct
    {
        std::vector<Vector> points, directions;
    } cases[] = {{{}, {}}, {{p}, {up, up}}, {{p, q}, {up}}, {{p, q}, {}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.points.size() << ", " << c.directions.size());
        RibbonMesh ribbon(c.points, c.directions, 1);
        EXPECT_EQ(ribbon.getHeight(), 0);
        EXPECT_FALSE(ribbon.isValid());
    }
}

TEST(RibbonMesh, ZeroDirectionGivesARowOfNoWidth)
{
    RibbonMesh ribbon({{1, 2, 3}, {1, 2, 4}}, {{0, 0, 0}, {0, 3, 0}}, 0.5);
    ASSERT_EQ(ribbon.getHeight(), 2);
    expectVector(ribbon.getPoints()[0][1], {1, 2, 3});
    expectVector(ribbon.getPoints()[1][1], {1, 2.5, 4});
}

TEST(RibbonMesh, MaterialIndexIsTheRow)
{
    RibbonMesh ribbon = straightRibbon(5, 1);
    EXPECT_EQ(ribbon.getMaterialIndex(3, 1), 3);
    EXPECT_EQ(ribbon.getMaterialIndex(3, 0), 3);
}

TEST(RibbonMesh, IsValidFromTwoRowsOfExactlyTwoColumns)
{
    EXPECT_TRUE(OwnRibbon(2, 2).isValid());
    EXPECT_FALSE(OwnRibbon(1, 2).isValid());
    EXPECT_FALSE(OwnRibbon(2, 3).isValid());
    // The const one is that of every mesh.
    const OwnRibbon oneRow(1, 2), wide(2, 3);
    EXPECT_TRUE(oneRow.isValid());
    EXPECT_TRUE(wide.isValid());
}

class RibbonMeshShapes : public CoinTest
{
};

TEST_F(RibbonMeshShapes, GeneratesTwoTrianglesPerStep)
{
    RibbonMesh ribbon = straightRibbon(4, 0.5);
    NodeRef<MeshShape> shape(new MeshShape(&ribbon));
    EXPECT_EQ(ribbon.getPrimitiveCount(), 6);
    EXPECT_EQ(countedTriangles(shape), 6);

    // The strip of a step runs (next, 0), (this, 0), (next, 1), (this, 1).
    std::vector<Triangle> expected;
    const Vector normal(1, 0, 0);
    for (int row = 0; row < 3; ++row) {
        const double z = row;
        const auto triangles = stripTriangles(
            {corner({0, 0, z + 1}, normal, row + 1), corner({0, 0, z}, normal, row),
             corner({0, 0.5, z + 1}, normal, row + 1), corner({0, 0.5, z}, normal, row)});
        expected.insert(expected.end(), triangles.begin(), triangles.end());
    }
    EXPECT_EQ(generatedTriangles(shape), expected);
}

class RibbonMeshDrawing : public CoinTest, public testing::WithParamInterface<DrawingState>
{
};

TEST_P(RibbonMeshDrawing, SendsExactlyTheBand)
{
    RibbonMesh ribbon({{0, 0, 0}, {0.1, 0, 1}, {0.3, 0.1, 2}}, {{1, 0, 0}, {1, 1, 0}, {0, 1, 0.2}},
                      0.3);
    for (int offset : {0, 1, 5}) {
        SCOPED_TRACE(offset);
        NodeRef<MeshShape> shape(new MeshShape(&ribbon, offset));
        ExpectedDrawing expected(GetParam());
        expected.drawBody(ribbon, offset);
        EXPECT_TRUE(sameCalls(recordDrawing(shape, GetParam()), expected.getCalls()));
    }
}

INSTANTIATE_TEST_SUITE_P(AllStates, RibbonMeshDrawing, testing::ValuesIn(allDrawingStates()),
                         testing::PrintToStringParamName());
