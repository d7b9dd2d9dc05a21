// SPDX-License-Identifier: GPL-3.0-or-later
#include <TubeMesh.h>

#include <cmath>

#include <Inventor/actions/SoGLRenderAction.h>
#include <algebra3d/Matrix3.h>

#include "support/CoinEnvironment.h"
#include "support/MeshComparison.h"
#include "support/MeshShape.h"
#include "support/PlainReference.h"
#include "support/drawing.h"
#include "support/triangles.h"

using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

namespace {

const double R = std::sqrt(0.5);
// A frame with d1 = -y, d2 = +x, d3 = +z: a quarter turn from +x to -y about z.
const Quaternion d2AlongX(0, 0, -R, R);

void expectVector(const Vector& actual, const Vector& expected)
{
    // A few operations in double on numbers up to 10.
    EXPECT_NEAR(actual.x, expected.x, 1e-14);
    EXPECT_NEAR(actual.y, expected.y, 1e-14);
    EXPECT_NEAR(actual.z, expected.z, 1e-14);
}

// Along +z in steps of 1, every ring starting at +x.
TubeMesh straightTube(int rings, double radius, int slices)
{
    std::vector<Vector> points;
    for (int i = 0; i < rings; ++i)
        points.push_back({0, 0, double(i)});
    return TubeMesh(points, std::vector<Quaternion>(points.size(), d2AlongX), radius, slices, false,
                    false);
}

// A curved, twisted rod with segments of different lengths.
void bentRod(int count, std::vector<Vector>& points, std::vector<Quaternion>& rotations)
{
    for (int i = 0; i < count; ++i) {
        const double u = 0.37 * i + 0.01 * i * i;
        points.push_back({std::cos(u), 1.3 * std::sin(u), 0.4 * u});
        const Quaternion q(0.3 * std::sin(u), 0.2, 0.5 * std::cos(0.7 * u), 0.8);
        const double norm = q.getNorm();
        rotations.push_back({q[0] / norm, q[1] / norm, q[2] / norm, q[3] / norm});
    }
}

plain::Grid plainTube(const std::vector<Vector>& points, const std::vector<Quaternion>& rotations,
                      double radius, int slices)
{
    std::vector<plain::Vec> d2s;
    for (const Quaternion& rotation : rotations)
        d2s.push_back(plain::toPlain(algebra3d::Matrix3<double>(rotation).getColumn(1)));
    return plain::tube(plain::toPlain(points), d2s, radius, slices);
}

} // namespace

TEST(TubeMesh, WithoutRingsIsEmptyAndInvalid)
{
    TubeMesh tube(0.5, 8, false, false);
    EXPECT_EQ(tube.getHeight(), 0);
    EXPECT_EQ(tube.getWidth(), 2);
    EXPECT_FALSE(tube.isValid());
    EXPECT_FALSE(static_cast<const TubeMesh&>(tube).isValid());
    expectVector(tube.getLowerCapNormal(), {0, 0, 0});
    expectVector(tube.getUpperCapNormal(), {0, 0, 0});
}

TEST(TubeMesh, HasAtLeastThreeSlices)
{
    for (int slices : {2, 0, -4, 3}) {
        SCOPED_TRACE(slices);
        EXPECT_EQ(TubeMesh(1, slices, false, false).getSlices(), 3);
        TubeMesh tube = straightTube(2, 1, slices);
        EXPECT_EQ(tube.getSlices(), 3);
        EXPECT_EQ(tube.getWidth(), 4);
        EXPECT_TRUE(tube.isValid());
    }
}

TEST(TubeMesh, RadiusIsPositiveWithASmallFloor)
{
    EXPECT_EQ(TubeMesh(-0.5, 3, false, false).getRadius(), 0.5);
    EXPECT_EQ(TubeMesh(0, 3, false, false).getRadius(), 0.0001);
    EXPECT_EQ(TubeMesh(-0.00005, 3, false, false).getRadius(), 0.0001);
    EXPECT_EQ(TubeMesh(0.005, 3, false, false).getRadius(), 0.005);
}

TEST(TubeMesh, RadiusHasALargerFloorWhenBuiltFromPoints) // on purpose
{
    const struct
    {
        double given, stored;
    } cases[] = {{-0.5, 0.5}, {0, 0.01}, {0.005, 0.01}, {-0.005, 0.01}, {0.02, 0.02}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.given);
        TubeMesh tube = straightTube(2, c.given, 4);
        EXPECT_EQ(tube.getRadius(), c.stored);
        expectVector(tube.getPoints()[0][0], {c.stored, 0, 0});
    }
}

TEST(TubeMesh, StraightRodStartsEveryRingAtD2AndTurnsCounterClockwise)
{
    TubeMesh tube = straightTube(3, 0.5, 4);
    ASSERT_TRUE(tube.isValid());
    ASSERT_EQ(tube.getHeight(), 3);
    ASSERT_EQ(tube.getWidth(), 5);
    const Vector directions[] = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}};
    for (int row = 0; row < 3; ++row) {
        SCOPED_TRACE(row);
        for (int column = 0; column < 5; ++column) {
            SCOPED_TRACE(column);
            expectVector(tube.getNormals()[row][column], directions[column]);
            expectVector(tube.getPoints()[row][column],
                         directions[column] * 0.5 + Vector(0, 0, row));
        }
    }
}

TEST(TubeMesh, LastColumnRepeatsTheFirstExactly)
{
    std::vector<Vector> points;
    std::vector<Quaternion> rotations;
    bentRod(6, points, rotations);
    TubeMesh tube(points, rotations, 0.1, 7, false, false);
    for (int row = 0; row < 6; ++row) {
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_EQ(tube.getPoints()[row][7][axis], tube.getPoints()[row][0][axis]);
            EXPECT_EQ(tube.getNormals()[row][7][axis], tube.getNormals()[row][0][axis]);
        }
    }
}

TEST(TubeMesh, RingsStandAcrossThePointsWhateverD3Is)
{
    // The points run along +z, the frames' d3 along +y: d1 = +z, d2 = +x, d3 = +y.
    const Quaternion q(-0.5, -0.5, -0.5, 0.5);
    expectVector(algebra3d::Matrix3<double>(q).getColumn(1), {1, 0, 0});
    expectVector(algebra3d::Matrix3<double>(q).getColumn(2), {0, 1, 0});

    TubeMesh tube({{0, 0, 0}, {0, 0, 2}}, {q, q}, 1, 4, false, false);
    for (int row = 0; row < 2; ++row) {
        expectVector(tube.getPoints()[row][0], {1, 0, 2.0 * row});
        expectVector(tube.getPoints()[row][1], {0, 1, 2.0 * row});
    }
}

TEST(TubeMesh, ObliqueD2IsProjectedAcrossTheTangent)
{
    // d2 = (R, 0, R): turned by 45 degrees about y from +x towards +z, after d2AlongX
    // (quaternion product of a turn by -45 degrees about y and d2AlongX).
    const double c = std::cos(M_PI / 8), s = -std::sin(M_PI / 8);
    const Quaternion q(-s * R, s * R, -c * R, c * R);
    expectVector(algebra3d::Matrix3<double>(q).getColumn(1), {R, 0, R});

    TubeMesh tube({{0, 0, 0}, {0, 0, 1}}, {q, q}, 1, 4, false, false);
    expectVector(tube.getNormals()[0][0], {1, 0, 0});
    expectVector(tube.getNormals()[1][1], {0, 1, 0});
}

TEST(TubeMesh, InnerTangentIsTheUnitSumOfUnitDirections)
{
    // A right angle with legs of lengths 1 and 7: the ring at the corner stands across
    // the bisector (0, R, R), whatever the lengths; d2 = +x is across it.
    TubeMesh tube({{0, 0, 0}, {0, 0, 1}, {0, 7, 1}}, {d2AlongX, d2AlongX, d2AlongX}, 1, 4, false,
                  false);
    expectVector(tube.getNormals()[1][0], {1, 0, 0});
    expectVector(tube.getNormals()[1][1], {0, R, -R}); // t x d2
}

TEST(TubeMesh, ThePointBeyondTheLastRingStillBendsIt)
{
    // Three points, two rotations: the second ring's tangent is (0, R, R), not +z.
    TubeMesh tube({{0, 0, 0}, {0, 0, 1}, {0, 7, 1}}, {d2AlongX, d2AlongX}, 1, 4, false, false);
    ASSERT_EQ(tube.getHeight(), 2);
    expectVector(tube.getNormals()[0][1], {0, 1, 0});
    expectVector(tube.getNormals()[1][1], {0, R, -R});
}

TEST(TubeMesh, TheShorterSequenceDecides)
{
    const Quaternion q = d2AlongX;
    EXPECT_EQ(TubeMesh({{0, 0, 0}, {0, 0, 1}}, {q, q, q}, 1, 4, false, false).getHeight(), 2);
    EXPECT_EQ(
        TubeMesh({{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}, {q, q, q}, 1, 4, false, false).getHeight(), 3);
}

TEST(TubeMesh, FewerThanTwoOfEitherLeaveItEmpty)
{
    const Quaternion q = d2AlongX;
    const struct
    {
        std::vector<Vector> points;
        std::vector<Quaternion> rotations;
    } cases[] = {{{}, {}},
                 {{{0, 0, 0}}, {q}},
                 {{{0, 0, 0}}, {q, q, q}},
                 {{{0, 0, 0}, {0, 0, 1}, {0, 0, 2}}, {q}},
                 {{{0, 0, 0}, {0, 0, 1}}, {}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.points.size() << ", " << c.rotations.size());
        TubeMesh tube(c.points, c.rotations, 1, 4, false, false);
        EXPECT_FALSE(tube.isValid());
        EXPECT_EQ(tube.getHeight(), 0);
        EXPECT_EQ(tube.getPoints(), nullptr);
    }
}

TEST(TubeMesh, IsTheTubeOfThePlainFormulas)
{
    for (int slices : {3, 7, 16, 100}) {
        for (int count : {2, 5, 40}) {
            SCOPED_TRACE(testing::Message() << slices << " slices, " << count << " points");
            std::vector<Vector> points;
            std::vector<Quaternion> rotations;
            bentRod(count, points, rotations);
            TubeMesh tube(points, rotations, 0.13, slices, false, false);
            expectSameMesh(tube, plainTube(points, rotations, 0.13, slices));
        }
    }
}

TEST(TubeMesh, IsTheTubeOfThePlainFormulasWithMorePointsThanRotations)
{
    std::vector<Vector> points;
    std::vector<Quaternion> rotations;
    bentRod(9, points, rotations);
    rotations.resize(6);
    TubeMesh tube(points, rotations, 0.13, 11, false, false);
    expectSameMesh(tube, plainTube(points, rotations, 0.13, 11));
}

TEST(TubeMesh, BoxIsThatOfTheRings)
{
    // Radius 0.5 about a line along +z; also where every coordinate is negative.
    for (double shift : {0.0, -10.0}) {
        SCOPED_TRACE(shift);
        const std::vector<Vector> points = {{shift, shift, shift}, {shift, shift, shift + 3}};
        TubeMesh tube(points, {d2AlongX, d2AlongX}, 0.5, 4, false, false);
        const SbBox3f box = tube.getBBox();
        const float at = float(shift);
        for (int axis = 0; axis < 2; ++axis) {
            EXPECT_FLOAT_EQ(box.getMin()[axis], at - 0.5f);
            EXPECT_FLOAT_EQ(box.getMax()[axis], at + 0.5f);
        }
        EXPECT_EQ(box.getMin()[2], at);
        EXPECT_EQ(box.getMax()[2], at + 3);
    }
}

TEST(TubeMesh, CircleAddsItsStepsUpAndWritesOnePointPerSlice)
{
    for (int slices : {3, 10, 97}) {
        SCOPED_TRACE(slices);
        TubeMesh tube = straightTube(2, 1, slices);
        const Vector u(1.5, 0.25, -3), v(0.1, 2, 0.7), untouched(7, 8, 9);
        std::vector<Vector> out(slices + 1, untouched);
        tube.generate3DCircle(u, v, out.data());

        double angle = 0;
        for (int k = 0; k < slices; ++k) {
            for (int axis = 0; axis < 3; ++axis)
                EXPECT_EQ(out[k][axis], std::cos(angle) * u[axis] + std::sin(angle) * v[axis]);
            angle += 6.283185307179586 / slices;
        }
        EXPECT_EQ(out[slices].x, untouched.x);
    }
}

namespace {

// A subclass that fills rings itself, of any width and height.
class OwnTube : public TubeMesh
{
public:
    OwnTube(int rows, int columns) : TubeMesh(1, 8, false, false)
    {
        setWidth(columns);
        setHeight(rows);
        allocateMemory();
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                const double angle = 2 * M_PI * column / (columns - 1);
                getNormals()[row][column] = {std::cos(angle), std::sin(angle), 0};
                getPoints()[row][column] = getNormals()[row][column] + Vector(0, 0, row);
            }
        }
    }
};

} // namespace

TEST(TubeMesh, CircleFollowsTheWidthOfASubclassNotTheSlices)
{
    OwnTube tube(2, 5); // 4 distinct points, though 8 slices
    std::vector<Vector> out(9);
    tube.generate3DCircle({1, 0, 0}, {0, 1, 0}, out.data());
    expectVector(out[1], {0, 1, 0});
    expectVector(out[3], {0, -1, 0});
    EXPECT_EQ(out[4].getNorm(), 0);
}

TEST(TubeMesh, CircleTurnsFurtherAfterTheWidthHasChanged)
{
    OwnTube tube(2, 5);
    std::vector<Vector> out(9);
    tube.generate3DCircle({1, 0, 0}, {0, 1, 0}, out.data());
    tube.clear();
    tube.setWidth(9);
    tube.generate3DCircle({1, 0, 0}, {0, 1, 0}, out.data());
    expectVector(out[1], {R, R, 0});
    expectVector(out[7], {R, -R, 0});
}

TEST(TubeMesh, IsValidFromTwoRingsOfThreeDistinctPoints)
{
    EXPECT_TRUE(OwnTube(2, 4).isValid());
    EXPECT_FALSE(OwnTube(1, 4).isValid());
    EXPECT_FALSE(OwnTube(2, 3).isValid());
    // The const one is that of every mesh.
    const OwnTube oneRing(1, 4), narrow(2, 3);
    EXPECT_TRUE(oneRing.isValid());
    EXPECT_TRUE(narrow.isValid());
}

TEST(TubeMesh, BothCapNormalsPointAgainstTheTangent) // inward at the upper end, on purpose
{
    TubeMesh tube = straightTube(3, 0.5, 6);
    expectVector(tube.getLowerCapNormal(), {0, 0, -1});
    expectVector(tube.getUpperCapNormal(), {0, 0, -1});

    // Rings across +z at the lower end, across +y at the upper one.
    TubeMesh bent({{0, 0, 0}, {0, 0, 1}, {0, 1, 1}}, {d2AlongX, d2AlongX, d2AlongX}, 0.1, 6, false,
                  false);
    expectVector(bent.getLowerCapNormal(), {0, 0, -1});
    expectVector(bent.getUpperCapNormal(), {0, -1, 0});
}

TEST(TubeMesh, CapNormalsOfAnInvalidTubeAreZero)
{
    OwnTube oneRing(1, 4), narrow(2, 3);
    for (OwnTube* tube : {&oneRing, &narrow}) {
        EXPECT_EQ(tube->getLowerCapNormal().getNorm(), 0);
        EXPECT_EQ(tube->getUpperCapNormal().getNorm(), 0);
    }
}

TEST(TubeMesh, MaterialIndexIsTheRow)
{
    TubeMesh tube = straightTube(3, 0.5, 6);
    EXPECT_EQ(tube.getMaterialIndex(0, 4), 0);
    EXPECT_EQ(tube.getMaterialIndex(2, 0), 2);
    EXPECT_EQ(tube.getMaterialIndex(2, 6), 2);
}

class TubeMeshShapes : public CoinTest
{
};

TEST_F(TubeMeshShapes, CountsOneTriangleMorePerCapThanItGenerates) // kept on purpose
{
    // 3 rings of 4 slices: body 2 * 4 * 2, caps 2 * 2, but 2 * 3 counted.
    TubeMesh tube = straightTube(3, 0.5, 4);
    NodeRef<MeshShape> shape(new MeshShape(&tube));
    EXPECT_EQ(generatedTriangles(shape).size(), 20u);
    EXPECT_EQ(tube.getPrimitiveCount(), 22);
    EXPECT_EQ(countedTriangles(shape), 22);
}

TEST_F(TubeMeshShapes, GeneratesTheBodyThenTheLowerThenTheUpperCap)
{
    for (bool flags : {false, true}) { // which matter for rendering only
        SCOPED_TRACE(flags);
        std::vector<Vector> points;
        std::vector<Quaternion> rotations;
        bentRod(3, points, rotations);
        TubeMesh tube(points, rotations, 0.1, 5, flags, flags);

        std::vector<Triangle> expected;
        const auto append = [&expected](const std::vector<Triangle>& triangles) {
            expected.insert(expected.end(), triangles.begin(), triangles.end());
        };
        for (int row = 0; row < 2; ++row) {
            std::vector<Corner> strip;
            for (int column = 0; column < 6; ++column)
                for (int r : {row + 1, row})
                    strip.push_back(
                        corner(tube.getPoints()[r][column], tube.getNormals()[r][column], r));
            append(stripTriangles(strip));
        }
        for (int row : {0, 2}) {
            const Vector* ring = tube.getPoints()[row];
            const Vector normal = (ring[2] - ring[0]).cross(ring[1] - ring[0]).getUnit();
            std::vector<Corner> fan;
            for (int k = 4; k >= 0; --k)
                fan.push_back(corner(ring[k], normal, row));
            append(fanTriangles(fan));
        }

        NodeRef<MeshShape> shape(new MeshShape(&tube, 3));
        EXPECT_EQ(generatedTriangles(shape), expected);
    }
}

TEST_F(TubeMeshShapes, GeneratesNothingWithoutTwoRingsOfThreePoints)
{
    OwnTube valid(2, 4), oneRing(1, 4), narrow(2, 3);
    EXPECT_EQ(generatedTriangles(NodeRef<MeshShape>(new MeshShape(&valid))).size(), 8u);
    for (OwnTube* tube : {&oneRing, &narrow})
        EXPECT_TRUE(generatedTriangles(NodeRef<MeshShape>(new MeshShape(tube))).empty());
}

TEST_F(TubeMeshShapes, DrawsABodyTooNarrowForCapsWithoutThem)
{
    OwnTube narrow(2, 3); // valid for the const isValid() that drawing the body asks
    NodeRef<MeshShape> shape(new MeshShape(&narrow));
    ExpectedDrawing expected({});
    expected.drawBody(narrow, 0);
    EXPECT_TRUE(sameCalls(recordDrawing(shape, {}), expected.getCalls()));
}

TEST_F(TubeMeshShapes, DrawsNothingWithoutRings)
{
    TubeMesh empty(1, 8, true, true);
    NodeRef<MeshShape> shape(new MeshShape(&empty));
    EXPECT_TRUE(sameCalls(recordDrawing(shape, {}), {}));
}

TEST_F(TubeMeshShapes, CapTextureCoordinatesAreDividedByWidthAndHeight) // on purpose
{
    // 3 rings, 4 slices: width 5 and height 3, not 4 and 2, divide.
    TubeMesh tube = straightTube(3, 0.5, 4);
    NodeRef<MeshShape> shape(new MeshShape(&tube));
    std::vector<std::vector<float>> coordinates;
    bool fan = false;
    for (const GLCall& call : recordDrawing(shape, {SoMaterialBinding::OVERALL, true, true})) {
        if (call.name == "glBegin")
            fan = call.arguments[0] == 6; // GL_TRIANGLE_FAN
        if (call.name == "glTexCoord2f" && fan)
            coordinates.push_back(call.arguments);
    }
    const float t = float(2.0 / 3.0);
    EXPECT_EQ(
        coordinates,
        (std::vector<std::vector<float>>{
            {0.6f, 0}, {0.4f, 0}, {0.2f, 0}, {0, 0}, {0.6f, t}, {0.4f, t}, {0.2f, t}, {0, t}}));
}

namespace {

// The materials of the lower and the upper cap, from the colours current at glBegin.
std::vector<int> capMaterials(bool lowerCapTakesLast, bool upperCapTakesFirst,
                              SoMaterialBinding::Binding binding)
{
    // 4 rings and offset 10: first material 10, last 13.
    TubeMesh tube({{0, 0, 0}, {0, 0, 1}, {0, 0, 2}, {0, 0, 3}},
                  std::vector<Quaternion>(4, d2AlongX), 0.5, 4, lowerCapTakesLast,
                  upperCapTakesFirst);
    NodeRef<MeshShape> shape(new MeshShape(&tube, 10));
    std::vector<int> materials;
    int current = -1;
    for (const GLCall& call : recordDrawing(shape, {binding, false, true})) {
        if (call.name == "glColor4ub")
            current = int(call.arguments[0]);
        if (call.name == "glBegin" && call.arguments[0] == 6) // GL_TRIANGLE_FAN
            materials.push_back(current);
    }
    return materials;
}

} // namespace

TEST_F(TubeMeshShapes, CapsTakeTheMaterialOfTheirEndUnlessTheirFlagSaysTheOther)
{
    using Materials = std::vector<int>;
    for (auto binding : {SoMaterialBinding::PER_VERTEX, SoMaterialBinding::PER_VERTEX_INDEXED}) {
        EXPECT_EQ(capMaterials(false, false, binding), (Materials{10, 13}));
        EXPECT_EQ(capMaterials(true, false, binding), (Materials{13, 13}));
        EXPECT_EQ(capMaterials(false, true, binding), (Materials{10, 10}));
        EXPECT_EQ(capMaterials(true, true, binding), (Materials{13, 10}));
    }
}

TEST_F(TubeMeshShapes, CapsTakeTheOffsetWithoutPerVertexBindingWhateverTheirFlags)
{
    for (auto binding : {SoMaterialBinding::OVERALL, SoMaterialBinding::PER_FACE,
                         SoMaterialBinding::PER_PART, SoMaterialBinding::PER_FACE_INDEXED})
        for (bool lower : {false, true})
            for (bool upper : {false, true})
                EXPECT_EQ(capMaterials(lower, upper, binding), (std::vector<int>{10, 10}));
}

class TubeMeshDrawing : public CoinTest, public testing::WithParamInterface<DrawingState>
{
};

TEST_P(TubeMeshDrawing, SendsExactlyTheBodyAndTheCaps)
{
    std::vector<Vector> points;
    std::vector<Quaternion> rotations;
    bentRod(4, points, rotations);
    for (int offset : {0, 5, 198, 1000}) {
        for (int flags = 0; flags < 4; ++flags) {
            SCOPED_TRACE(testing::Message() << "offset " << offset << ", flags " << flags);
            const bool lowerCapTakesLast = flags & 1, upperCapTakesFirst = flags & 2;
            TubeMesh tube(points, rotations, 0.1, 5, lowerCapTakesLast, upperCapTakesFirst);
            NodeRef<MeshShape> shape(new MeshShape(&tube, offset));
            ExpectedDrawing expected(GetParam());
            expected.drawBody(tube, offset);
            expected.drawCaps(tube, offset, lowerCapTakesLast, upperCapTakesFirst);
            EXPECT_TRUE(sameCalls(recordDrawing(shape, GetParam()), expected.getCalls()));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllStates, TubeMeshDrawing, testing::ValuesIn(allDrawingStates()),
                         testing::PrintToStringParamName());
