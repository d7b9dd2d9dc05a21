// SPDX-License-Identifier: GPL-3.0-or-later
#include <Mesh.h>

#include <cfloat>
#include <cmath>
#include <limits>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/nodes/SoCallback.h>
#include <gmock/gmock.h>

#include "support/CoinEnvironment.h"
#include "support/MeshShape.h"
#include "support/drawing.h"
#include "support/triangles.h"

using Vector = algebra3d::Vector3<double>;

namespace {

// A mesh of a given size whose points lie in a slanted plane until a test moves them.
class GridMesh : public Mesh
{
public:
    GridMesh(int rows, int columns, bool rowsWrap = false, bool columnsWrap = false)
        : Mesh(rowsWrap, columnsWrap)
    {
        setWidth(columns);
        setHeight(rows);
        allocateMemory();
        resetBB();
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                getPoints()[row][column] = {0.1 * column, 0.3 * row, 0.7 * row + 0.2 * column};
                getNormals()[row][column] = {0.1 * row, 0.2 * column, 1};
                updateBB(getPoints()[row][column]);
            }
        }
    }

    using Mesh::setHeight;

    /// The point of row i and column j becomes rows[i] + columns[j], the normals zero.
    void setSums(const std::vector<Vector>& rows, const std::vector<Vector>& columns)
    {
        for (int row = 0; row < getHeight(); ++row) {
            for (int column = 0; column < getWidth(); ++column) {
                getPoints()[row][column] = rows[row] + columns[column];
                getNormals()[row][column] = Vector();
            }
        }
    }
};

void expectVector(const Vector& actual, const Vector& expected)
{
    // Unit vectors by a few operations in double: exact to some 1e-16.
    EXPECT_NEAR(actual.x, expected.x, 1e-15);
    EXPECT_NEAR(actual.y, expected.y, 1e-15);
    EXPECT_NEAR(actual.z, expected.z, 1e-15);
}

void expectBox(const Mesh& mesh, const SbVec3f& minimum, const SbVec3f& maximum)
{
    for (int axis = 0; axis < 3; ++axis) {
        SCOPED_TRACE(axis);
        EXPECT_EQ(mesh.getBBox().getMin()[axis], minimum[axis]);
        EXPECT_EQ(mesh.getBBox().getMax()[axis], maximum[axis]);
    }
}

void expectStateOfANewMesh(Mesh& mesh)
{
    EXPECT_EQ(mesh.getWidth(), 2);
    EXPECT_EQ(mesh.getHeight(), 0);
    EXPECT_FALSE(mesh.isValid());
    // The maximum is the smallest positive float, on purpose.
    expectBox(mesh, SbVec3f(FLT_MAX, FLT_MAX, FLT_MAX), SbVec3f(FLT_MIN, FLT_MIN, FLT_MIN));
}

const double R = std::sqrt(0.5);

} // namespace

TEST(Mesh, NewMeshHasTwoColumnsNoRowsAndIsInvalid)
{
    Mesh mesh(true, false);
    expectStateOfANewMesh(mesh);
    EXPECT_EQ(mesh.getPoints(), nullptr);
    EXPECT_EQ(mesh.getNormals(), nullptr);
}

TEST(Mesh, ClearedMeshIsInTheStateOfANewOne)
{
    GridMesh mesh(4, 5);
    ASSERT_TRUE(mesh.isValid());
    mesh.clear();
    expectStateOfANewMesh(mesh);
    mesh.clear(); // with nothing left to free
    expectStateOfANewMesh(mesh);
}

TEST(Mesh, ClearedMeshCanBeFilledAgain)
{
    GridMesh mesh(4, 5);
    mesh.clear();
    mesh.setWidth(3);
    mesh.setHeight(2);
    mesh.allocateMemory();
    EXPECT_TRUE(mesh.isValid());
    expectVector(mesh.getPoints()[1][2], {0, 0, 0});
}

TEST(Mesh, InitialBoxKeepsItsMaximumWithPointsOfNegativeX)
{
    Mesh mesh(false, false);
    mesh.updateBB({-3, 5, 7});
    mesh.updateBB({-2, 6, 8});
    expectBox(mesh, SbVec3f(-3, 5, 7), SbVec3f(FLT_MIN, 6, 8));
}

TEST(Mesh, ResetBoxIsInfiniteAndEmpty)
{
    const float infinity = std::numeric_limits<float>::infinity();
    Mesh mesh(false, false);
    mesh.resetBB();
    expectBox(mesh, SbVec3f(infinity, infinity, infinity),
              SbVec3f(-infinity, -infinity, -infinity));
}

TEST(Mesh, ResetBoxHoldsExactlyThePointsAddedSince)
{
    Mesh mesh(false, false);
    mesh.updateBB({100, 100, 100});
    mesh.resetBB();
    mesh.updateBB({-3, 5, -7});
    mesh.updateBB({-2, -6, 8});
    expectBox(mesh, SbVec3f(-3, -6, -7), SbVec3f(-2, 5, 8));
}

TEST(Mesh, BoxIsRoundedToFloat)
{
    Mesh mesh(false, false);
    mesh.resetBB();
    mesh.updateBB({0.1, 1.0 / 3.0, -0.7});
    expectBox(mesh, SbVec3f(0.1f, 1.0f / 3.0f, -0.7f), SbVec3f(0.1f, 1.0f / 3.0f, -0.7f));
}

TEST(Mesh, BoxIgnoresNotANumber)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    Mesh mesh(false, false);
    mesh.resetBB();
    mesh.updateBB({1, 2, 3});
    mesh.updateBB({nan, 5, nan});
    expectBox(mesh, SbVec3f(1, 2, 3), SbVec3f(1, 5, 3));
}

TEST(Mesh, CentreIsTheMiddleOfTheBox)
{
    Mesh mesh(false, false);
    mesh.resetBB();
    mesh.updateBB({1, -2, 3});
    mesh.updateBB({2, 6, 4});
    EXPECT_EQ(mesh.getCentre(), SbVec3f(1.5f, 2, 3.5f));
}

TEST(Mesh, WidthIsNeverBelowTwo)
{
    Mesh mesh(false, false);
    mesh.setWidth(7);
    EXPECT_EQ(mesh.getWidth(), 7);
    for (int width : {1, 0, -5, 2}) {
        SCOPED_TRACE(width);
        mesh.setWidth(7);
        mesh.setWidth(width);
        EXPECT_EQ(mesh.getWidth(), 2);
    }
}

TEST(Mesh, AllocatedPointsAndNormalsAreZero)
{
    GridMesh mesh(3, 4);
    mesh.allocateMemory(); // replaces the values of the fixture
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            expectVector(mesh.getPoints()[row][column], {0, 0, 0});
            expectVector(mesh.getNormals()[row][column], {0, 0, 0});
        }
    }
}

TEST(Mesh, RowsLieOneBehindTheOtherInMemory)
{
    GridMesh mesh(5, 7);
    for (int row = 1; row < 5; ++row) {
        EXPECT_EQ(mesh.getPoints()[row], mesh.getPoints()[0] + row * 7);
        EXPECT_EQ(mesh.getNormals()[row], mesh.getNormals()[0] + row * 7);
    }
}

TEST(Mesh, NothingIsAllocatedWithoutRows)
{
    for (int height : {0, -3}) {
        SCOPED_TRACE(height);
        GridMesh mesh(2, 3);
        mesh.clear();
        mesh.setHeight(height);
        EXPECT_EQ(mesh.getHeight(), height); // stored as it is
        mesh.allocateMemory();
        EXPECT_EQ(mesh.getPoints(), nullptr);
        EXPECT_EQ(mesh.getNormals(), nullptr);
        EXPECT_FALSE(mesh.isValid());
    }
}

TEST(Mesh, IsValidWithOneAllocatedRow)
{
    GridMesh mesh(1, 2);
    EXPECT_TRUE(mesh.isValid());
}

TEST(Mesh, IsInvalidWithoutAllocationOrWithoutRows)
{
    GridMesh mesh(3, 3);
    mesh.setHeight(0);
    EXPECT_FALSE(mesh.isValid()) << "no rows";

    mesh.clear();
    mesh.setHeight(3);
    EXPECT_FALSE(mesh.isValid()) << "not allocated";
}

TEST(Mesh, MaterialIndexIsRowTimesHeightPlusColumn) // the height, on purpose
{
    GridMesh mesh(4, 3);
    EXPECT_EQ(mesh.getMaterialIndex(0, 2), 2);
    EXPECT_EQ(mesh.getMaterialIndex(1, 0), 4);
    EXPECT_EQ(mesh.getMaterialIndex(3, 2), 14);
    EXPECT_EQ(mesh.getMaterialIndex(-1, 9), 5); // unchecked
}

TEST(Mesh, CountsTwoTrianglesPerCell)
{
    EXPECT_EQ(GridMesh(2, 2).getPrimitiveCount(), 2);
    EXPECT_EQ(GridMesh(4, 3).getPrimitiveCount(), 12);
    EXPECT_EQ(GridMesh(1, 5).getPrimitiveCount(), 0);
}

TEST(Mesh, NormalOfACellIsAcrossTimesAlong)
{
    // Rows along +x, columns along +y: the normal is y x x = -z.
    GridMesh mesh(2, 2);
    mesh.setSums({{0, 0, 0}, {3, 0, 0}}, {{0, 0, 0}, {0, 0.5, 0}});
    mesh.computeNormals();
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 2; ++column)
            expectVector(mesh.getNormals()[row][column], {0, 0, -1});
}

TEST(Mesh, NormalAtAnEdgeIsTheUnitSumOfUnitCellNormals)
{
    // Rows go along +z, then, ten times as far, along +y; columns along +x. The cell
    // normals are x x z = -y and x x y = +z; the larger cell weighs no more.
    GridMesh mesh(3, 2);
    mesh.setSums({{0, 0, 0}, {0, 0, 1}, {0, 10, 1}}, {{0, 0, 0}, {1, 0, 0}});
    mesh.computeNormals();
    for (int column = 0; column < 2; ++column) {
        expectVector(mesh.getNormals()[0][column], {0, -1, 0});
        expectVector(mesh.getNormals()[1][column], {0, -R, R});
        expectVector(mesh.getNormals()[2][column], {0, 0, 1});
    }
}

TEST(Mesh, ASharedCornerAddsUpItsFourCells)
{
    // Columns turn from +x to +y, rows go along +z, then +x + z: the cells' normals are
    // -y, +x in the first strip, -y and y x (x + z), that is (R, 0, -R), in the second.
    GridMesh mesh(3, 3);
    mesh.setSums({{0, 0, 0}, {0, 0, 1}, {1, 0, 2}}, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    mesh.computeNormals();
    expectVector(mesh.getNormals()[0][0], {0, -1, 0});
    expectVector(mesh.getNormals()[0][2], {1, 0, 0});
    expectVector(mesh.getNormals()[2][2], {R, 0, -R});
    expectVector(mesh.getNormals()[1][2], Vector(1 + R, 0, -R).getUnit());
    expectVector(mesh.getNormals()[1][1], Vector(1 + R, -2, -R).getUnit());
}

TEST(Mesh, NormalsAreAddedToWhatIsThere) // so they must be zero from allocation
{
    GridMesh mesh(2, 2);
    mesh.setSums({{0, 0, 0}, {1, 0, 0}}, {{0, 0, 0}, {0, 1, 0}});
    mesh.getNormals()[0][1] = {1, 0, 0};
    mesh.computeNormals();
    expectVector(mesh.getNormals()[0][1], {R, 0, -R});
    expectVector(mesh.getNormals()[0][0], {0, 0, -1});
}

TEST(Mesh, NormalsOfASingleRowAreOnlyNormalised)
{
    GridMesh mesh(1, 2);
    mesh.getNormals()[0][0] = {0, 0, 5};
    mesh.getNormals()[0][1] = {3, 0, 4};
    mesh.computeNormals();
    expectVector(mesh.getNormals()[0][0], {0, 0, 1});
    expectVector(mesh.getNormals()[0][1], {0.6, 0, 0.8});
}

namespace {

// Bent across: columns along +x, then +y; rows along +z. Normals of the columns
// without closure: -y, (R, -R, 0), +x.
void bendAcross(GridMesh& mesh)
{
    mesh.setSums({{0, 0, 0}, {0, 0, 1}}, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}});
    mesh.computeNormals();
}

// Bent along: rows along +z, then +y; columns along +x. Normals of the rows without
// closure: -y, (0, -R, R), +z.
void bendAlong(GridMesh& mesh)
{
    mesh.setSums({{0, 0, 0}, {0, 0, 1}, {0, 1, 1}}, {{0, 0, 0}, {1, 0, 0}});
    mesh.computeNormals();
}

} // namespace

TEST(Mesh, OpenEdgesKeepTheirNormals)
{
    GridMesh across(2, 3, false, false);
    bendAcross(across);
    GridMesh along(3, 2, false, false);
    bendAlong(along);
    for (int i = 0; i < 2; ++i) {
        expectVector(across.getNormals()[i][0], {0, -1, 0});
        expectVector(across.getNormals()[i][2], {1, 0, 0});
        expectVector(along.getNormals()[0][i], {0, -1, 0});
        expectVector(along.getNormals()[2][i], {0, 0, 1});
    }
}

TEST(Mesh, WrappedColumnsShareTheNormalsOfTheirEdge)
{
    GridMesh mesh(2, 3, false, true);
    bendAcross(mesh);
    for (int row = 0; row < 2; ++row)
        for (int column = 0; column < 3; ++column)
            expectVector(mesh.getNormals()[row][column], {R, -R, 0});
}

TEST(Mesh, WrappedColumnsLeaveTheRowsOpen)
{
    GridMesh mesh(3, 2, false, true);
    bendAlong(mesh);
    for (int column = 0; column < 2; ++column) {
        expectVector(mesh.getNormals()[0][column], {0, -1, 0});
        expectVector(mesh.getNormals()[2][column], {0, 0, 1});
    }
}

TEST(Mesh, WrappedRowsShareTheNormalsOfTheirEdge)
{
    GridMesh mesh(3, 2, true, false);
    bendAlong(mesh);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 2; ++column)
            expectVector(mesh.getNormals()[row][column], {0, -R, R});
}

TEST(Mesh, WrappedRowsLeaveTheColumnsOpen)
{
    GridMesh mesh(2, 3, true, false);
    bendAcross(mesh);
    for (int row = 0; row < 2; ++row) {
        expectVector(mesh.getNormals()[row][0], {0, -1, 0});
        expectVector(mesh.getNormals()[row][2], {1, 0, 0});
    }
}

TEST(Mesh, WithBothWrappedOnlyTheColumnsAreJoined)
{
    GridMesh across(2, 3, true, true);
    bendAcross(across);
    GridMesh along(3, 2, true, true);
    bendAlong(along);
    for (int i = 0; i < 2; ++i) {
        expectVector(across.getNormals()[i][0], {R, -R, 0});
        expectVector(across.getNormals()[i][2], {R, -R, 0});
        expectVector(along.getNormals()[0][i], {0, -1, 0});
        expectVector(along.getNormals()[2][i], {0, 0, 1});
    }
}

class MeshShapes : public CoinTest
{
};

TEST_F(MeshShapes, GeneratesOneStripBetweenEveryTwoRows)
{
    GridMesh mesh(4, 3);
    std::vector<Triangle> expected;
    for (int row = 0; row < 3; ++row) {
        std::vector<Corner> strip;
        for (int column = 0; column < 3; ++column) {
            for (int r : {row + 1, row})
                strip.push_back(corner(mesh.getPoints()[r][column], mesh.getNormals()[r][column],
                                       r * 4 + column));
        }
        const auto triangles = stripTriangles(strip);
        expected.insert(expected.end(), triangles.begin(), triangles.end());
    }

    NodeRef<MeshShape> shape(new MeshShape(&mesh, 5)); // the offset is for rendering only
    EXPECT_EQ(generatedTriangles(shape), expected);
    EXPECT_EQ(countedTriangles(shape), 12);
}

TEST_F(MeshShapes, GeneratesNothingFromAnInvalidMesh)
{
    GridMesh mesh(4, 3);
    NodeRef<MeshShape> shape(new MeshShape(&mesh));
    ASSERT_FALSE(generatedTriangles(shape).empty());
    mesh.clear();
    EXPECT_TRUE(generatedTriangles(shape).empty());
    mesh.setHeight(3); // rows, but none allocated
    EXPECT_TRUE(generatedTriangles(shape).empty());
}

TEST_F(MeshShapes, DrawsNothingOfAnInvalidMesh)
{
    GridMesh mesh(4, 3);
    NodeRef<MeshShape> shape(new MeshShape(&mesh));
    ASSERT_FALSE(recordDrawing(shape, {}).empty());
    mesh.clear();
    EXPECT_TRUE(sameCalls(recordDrawing(shape, {}), {}));
    mesh.setHeight(3);
    EXPECT_TRUE(sameCalls(recordDrawing(shape, {}), {}));
}

namespace {

// As the subclasses do: one more isValid(), without const.
class RefusingMesh : public GridMesh
{
public:
    using GridMesh::GridMesh;
    using Mesh::isValid;
    virtual bool isValid() { return false; }
};

class ConstRefusingMesh : public GridMesh
{
public:
    using GridMesh::GridMesh;
    bool isValid() const override { return false; }
};

} // namespace

TEST_F(MeshShapes, DrawingAndGeneratingAskTheConstIsValid)
{
    RefusingMesh refusing(2, 2);
    NodeRef<MeshShape> shape(new MeshShape(&refusing));
    EXPECT_EQ(generatedTriangles(shape).size(), 2u);
    ExpectedDrawing expected({});
    expected.drawBody(refusing, 0);
    EXPECT_TRUE(sameCalls(recordDrawing(shape, {}), expected.getCalls()));

    ConstRefusingMesh constRefusing(2, 2);
    NodeRef<MeshShape> silent(new MeshShape(&constRefusing));
    EXPECT_TRUE(generatedTriangles(silent).empty());
    EXPECT_TRUE(sameCalls(recordDrawing(silent, {}), {}));
}

TEST_F(MeshShapes, VertexOfRowOneSendsMaterialNineWithOffsetFive)
{
    // Height 4: the vertex (row 1, column 0) comes first, with 1 * 4 + 0 + 5 = 9.
    GridMesh mesh(4, 3);
    NodeRef<MeshShape> shape(new MeshShape(&mesh, 5));
    const RecordedCalls calls = recordDrawing(shape, {SoMaterialBinding::PER_VERTEX, false, false});
    ASSERT_GT(calls.size(), 4u);
    EXPECT_EQ(calls[0], (GLCall{"glColor4ub", {0, 255, 128, 255}})); // material 0, always first
    EXPECT_EQ(calls[1], (GLCall{"glBegin", {5}}));                   // GL_TRIANGLE_STRIP
    EXPECT_EQ(calls[2], (GLCall{"glColor4ub", {9, 246, 128, 255}})); // material 9
    EXPECT_EQ(calls[3], (GLCall{"glVertex3f", {0, 0.3f, 0.7f}}));
    EXPECT_EQ(calls[4], (GLCall{"glColor4ub", {5, 250, 128, 255}})); // material 0 + 5
}

class MeshDrawing : public CoinTest, public testing::WithParamInterface<DrawingState>
{
};

TEST_P(MeshDrawing, SendsExactlyTheStrips)
{
    GridMesh mesh(4, 3);
    for (int offset : {0, 1, 5, 190, 1000, -4}) { // of 200 materials
        SCOPED_TRACE(offset);
        NodeRef<MeshShape> shape(new MeshShape(&mesh, offset));
        ExpectedDrawing expected(GetParam());
        expected.drawBody(mesh, offset);
        EXPECT_TRUE(sameCalls(recordDrawing(shape, GetParam()), expected.getCalls()));
    }
}

TEST_P(MeshDrawing, OfOneRowSendsOnlyTheMaterial)
{
    GridMesh mesh(1, 3);
    NodeRef<MeshShape> shape(new MeshShape(&mesh, 2));
    RecordedCalls expected = {{"glColor4ub", {0, 255, 128, 255}}};
    if (!GetParam().isPerVertex())
        expected.push_back({"glColor4ub", {2, 253, 128, 255}});
    EXPECT_TRUE(sameCalls(recordDrawing(shape, GetParam()), expected));
}

INSTANTIATE_TEST_SUITE_P(AllStates, MeshDrawing, testing::ValuesIn(allDrawingStates()),
                         testing::PrintToStringParamName());

namespace {

// A shape that sends one vertex through addGLVertex, whatever the state.
class VertexShape : public MeshShape
{
public:
    VertexShape(bool useTexture, bool useOverall, bool useNormal)
        : MeshShape(nullptr), texture(useTexture), overall(useOverall), sendNormal(useNormal)
    {}

    void GLRender(SoGLRenderAction* action) override
    {
        SoMaterialBundle bundle(action);
        bundle.sendFirst();
        Mesh mesh(false, false);
        mesh.addGLVertex(texture, 0.25, 0.75, overall, bundle, 7, sendNormal, {1, 2, 3},
                         {0.5, 0.6, 0.7});
    }

private:
    bool texture;
    bool overall;
    bool sendNormal;
};

} // namespace

TEST_F(MeshShapes, AddedVertexSendsWhatItIsAskedFor)
{
    for (bool texture : {false, true}) {
        for (bool overall : {false, true}) {
            for (bool normal : {false, true}) {
                SCOPED_TRACE(testing::Message() << texture << overall << normal);
                RecordedCalls expected = {{"glColor4ub", {0, 255, 128, 255}}};
                if (texture)
                    expected.push_back({"glTexCoord2f", {0.25, 0.75}});
                if (!overall)
                    expected.push_back({"glColor4ub", {7, 248, 128, 255}});
                if (normal)
                    expected.push_back({"glNormal3f", {0.5f, 0.6f, 0.7f}});
                expected.push_back({"glVertex3f", {1, 2, 3}});

                NodeRef<MeshShape> shape(new VertexShape(texture, overall, normal));
                EXPECT_TRUE(sameCalls(recordDrawing(shape, {}), expected));
            }
        }
    }
}
