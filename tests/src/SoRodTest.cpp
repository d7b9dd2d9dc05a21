// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoRod.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <thread>
#include <utility>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoGetPrimitiveCountAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <algebra3d/Matrix3.h>

#include "support/AllocationCount.h"
#include "support/CoinEnvironment.h"
#include "support/FlatPictureTest.h"
#include "support/drawing.h"
#include "support/nodeFacts.h"
#include "support/triangles.h"

using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;
using Vectors = std::vector<Vector>;
using Quaternions = std::vector<Quaternion>;

namespace {

const double R = std::sqrt(0.5);
const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
const Quaternion IDENTITY; // d1 = +x, d2 = +y, d3 = +z

// Along +z, with the identity at each point: the ribbon lies along +y.
const Vectors straightPoints = {{0, 0, 0}, {0, 0, 1}, {0, 0, 2}};
const Quaternions straightRotations(3, IDENTITY);

// A rod that lets a test ask what only Coin asks.
class OpenRod : public SoRod
{
public:
    OpenRod() : SoRod(0.1, 0.5, 4, 2, true, true, false) {}
    using SoRod::computeBBox;
};

void expectSameMeshes(Mesh& a, Mesh& b)
{
    ASSERT_EQ(a.getHeight(), b.getHeight());
    ASSERT_EQ(a.getWidth(), b.getWidth());
    for (int row = 0; row < a.getHeight(); ++row) {
        for (int column = 0; column < a.getWidth(); ++column) {
            for (int k = 0; k < 3; ++k) {
                EXPECT_EQ(a.getPoints()[row][column][k], b.getPoints()[row][column][k]);
                EXPECT_EQ(a.getNormals()[row][column][k], b.getNormals()[row][column][k]);
            }
        }
    }
}

} // namespace

class SoRodTest : public CoinTest
{
protected:
    // 3 points, 2 subsegments: 5 rings of 4 slices and 5 ribbon rows.
    NodeRef<OpenRod> rod{new OpenRod};

    void SetUp() override { ASSERT_TRUE(rod->setData(straightPoints, straightRotations)); }
};

// Registration and construction

TEST_F(SoRodTest, IsAMeshShapeThatCannotBeCreatedByName)
{
    const SoType type = SoRod::getClassTypeId();
    EXPECT_EQ(type, SoType::fromName("SoRod"));
    EXPECT_EQ(type.getName(), SbName("SoRod"));
    EXPECT_EQ(type.getParent(), SoMeshShape::getClassTypeId());
    EXPECT_FALSE(type.canCreateInstance());
    EXPECT_EQ(type.createInstance(), nullptr);
    EXPECT_EQ(rod->getTypeId(), type);
}

TEST_F(SoRodTest, HasNoFields)
{
    SoFieldList fields;
    EXPECT_EQ(rod->getFields(fields), 0);
    EXPECT_FALSE(rod->getIsBuiltIn());
}

TEST_F(SoRodTest, ConstructorStoresValuesAsTheyAre)
{
    NodeRef<SoRod> fresh(new SoRod(-0.25, -3, 1, 0, true, false, true));
    EXPECT_EQ(fresh->getTubeRadius(), -0.25);
    EXPECT_EQ(fresh->getRibbonWidth(), -3);
    EXPECT_EQ(fresh->getSlices(), 1);
    EXPECT_EQ(fresh->getSubsegments(), 0);
    EXPECT_TRUE(fresh->isShowingTube());
    EXPECT_FALSE(fresh->isShowingRibbon());
    EXPECT_TRUE(fresh->isTwoSidedRibbon());
    EXPECT_FALSE(fresh->isValid());
    EXPECT_EQ(fresh->getPointsNum(), 0);
    EXPECT_EQ(fresh->getTubeMesh(), nullptr);
    EXPECT_EQ(fresh->getRibbonMesh(), nullptr);
}

TEST_F(SoRodTest, SettersStoreValuesAsTheyAreExceptSubsegments)
{
    rod->setTubeRadius(-0.3);
    EXPECT_EQ(rod->getTubeRadius(), -0.3);
    rod->setRibbonWidth(-0.7);
    EXPECT_EQ(rod->getRibbonWidth(), -0.7);
    rod->setSlices(-2);
    EXPECT_EQ(rod->getSlices(), -2);
    rod->showTube(false);
    EXPECT_FALSE(rod->isShowingTube());
    EXPECT_TRUE(rod->isShowingRibbon());
    rod->showRibbon(false);
    EXPECT_FALSE(rod->isShowingRibbon());
    rod->setTwoSidedRibbon(true);
    EXPECT_TRUE(rod->isTwoSidedRibbon());

    rod->setSubsegments(9);
    EXPECT_EQ(rod->getSubsegments(), 9);
    for (int count : {0, -4, 1}) {
        rod->setSubsegments(9);
        rod->setSubsegments(count);
        EXPECT_EQ(rod->getSubsegments(), 1);
    }
}

// Data

TEST_F(SoRodTest, TakesCorrectData)
{
    EXPECT_TRUE(rod->isValid());
    EXPECT_TRUE(rod->isDataCorrect());
    EXPECT_EQ(rod->getPointsNum(), 3);
    ASSERT_NE(rod->getTubeMesh(), nullptr);
    ASSERT_NE(rod->getRibbonMesh(), nullptr);
    EXPECT_TRUE(rod->getTubeMesh()->isValid());
    EXPECT_TRUE(rod->getRibbonMesh()->isValid());
}

TEST_F(SoRodTest, TakesOrientationsThatAreUnitWithinOneHundredth)
{
    for (double norm : {1.005, 0.995}) {
        SCOPED_TRACE(norm);
        EXPECT_TRUE(rod->setData(straightPoints, {IDENTITY, {0, 0, 0, norm}, IDENTITY}));
        EXPECT_TRUE(rod->isValid());
    }
}

TEST_F(SoRodTest, DoesNotExamineThePoints)
{
    EXPECT_TRUE(rod->setData({{0, 0, 0}, {0, NOT_A_NUMBER, 1}, {0, 0, 2}}, straightRotations));
    EXPECT_TRUE(rod->isValid());
    EXPECT_EQ(rod->getPointsNum(), 3);
}

struct RefusedData
{
    const char* name;
    Vectors points;
    Quaternions rotations;
};

void PrintTo(const RefusedData& data, std::ostream* stream) { *stream << data.name; }

class SoRodRefusing : public SoRodTest, public testing::WithParamInterface<RefusedData>
{
};

TEST_P(SoRodRefusing, EmptiesItAndLeavesNothingToShow)
{
    EXPECT_FALSE(rod->setData(GetParam().points, GetParam().rotations));
    EXPECT_FALSE(rod->isValid());
    EXPECT_EQ(rod->getPointsNum(), 0);
    EXPECT_EQ(rod->getTubeMesh(), nullptr);
    EXPECT_EQ(rod->getRibbonMesh(), nullptr);
    expectNothingShown(rod);
}

INSTANTIATE_TEST_SUITE_P(
    Data, SoRodRefusing,
    testing::Values(
        RefusedData{"NoPoints", {}, {}},                                        //
        RefusedData{"OnePoint", {{0, 0, 0}}, {IDENTITY}},                       //
        RefusedData{"OnePointTwoRotations", {{0, 0, 0}}, {IDENTITY, IDENTITY}}, //
        RefusedData{"MorePoints", straightPoints, {IDENTITY, IDENTITY}},
        RefusedData{"MoreRotations", straightPoints, Quaternions(4, IDENTITY)},
        RefusedData{"NormTooLarge", straightPoints, {IDENTITY, {0, 0, 0, 1.02}, IDENTITY}},
        RefusedData{"NormJustTooLarge", straightPoints, {{0, 0, 0, 1.011}, IDENTITY, IDENTITY}},
        RefusedData{"NormTooSmall", straightPoints, {IDENTITY, IDENTITY, {0, 0, 0, 0.98}}},
        RefusedData{"ZeroRotation", straightPoints, {{0, 0, 0, 0}, IDENTITY, IDENTITY}},
        RefusedData{
            "NotANumberFirst", straightPoints, {{NOT_A_NUMBER, 0, 0, 1}, IDENTITY, IDENTITY}},
        RefusedData{
            "NotANumberLast", straightPoints, {IDENTITY, IDENTITY, {0, 0, 0, NOT_A_NUMBER}}}),
    [](const auto& test) { return test.param.name; });

TEST_F(SoRodTest, CheckingRefusedDataAgainDoesNotChangeTheAnswer)
{
    EXPECT_FALSE(rod->setData({}, {}));
    EXPECT_FALSE(rod->isDataCorrect());
    EXPECT_FALSE(rod->isValid());
}

TEST_F(SoRodTest, CheckingDoesNotMakeItValidByItself)
{
    NodeRef<OpenRod> fresh(new OpenRod);
    EXPECT_FALSE(fresh->isDataCorrect()); // no points
    EXPECT_FALSE(fresh->isValid());
    fresh->generate();
    EXPECT_EQ(fresh->getTubeMesh(), nullptr);
}

TEST_F(SoRodTest, TakesCorrectDataAfterRefusedData)
{
    EXPECT_FALSE(rod->setData({{0, 0, 0}}, {IDENTITY}));
    EXPECT_TRUE(rod->setData({{0, 0, 0}, {0, 0, 1}}, {IDENTITY, IDENTITY}));
    EXPECT_EQ(rod->getPointsNum(), 2);
    EXPECT_EQ(rod->getTubeMesh()->getHeight(), 3);
}

TEST_F(SoRodTest, FrameIndexIsClamped)
{
    const Quaternions rotations = {{R, 0, 0, R}, {0, R, 0, R}, {0, 0, R, R}};
    ASSERT_TRUE(rod->setData(straightPoints, rotations));
    const struct
    {
        int index, entry;
    } cases[] = {{-3, 0}, {-1, 0}, {0, 0}, {1, 1}, {2, 2}, {3, 2}, {1000, 2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        Vector point(7, 7, 7);
        Quaternion rotation(7, 7, 7, 7);
        rod->getFrame(point, rotation, c.index);
        expectSameVector(point, straightPoints[c.entry]);
        for (int k = 0; k < 4; ++k)
            EXPECT_EQ(rotation[k], rotations[c.entry][k]);
    }
}

TEST_F(SoRodTest, InvalidRodHasNoFrames)
{
    NodeRef<OpenRod> fresh(new OpenRod);
    Vector point(7, 8, 9);
    Quaternion rotation(1, 2, 3, 4);
    for (int index : {-1, 0, 5}) {
        fresh->getFrame(point, rotation, index);
        expectSameVector(point, {7, 8, 9});
        EXPECT_EQ(rotation[0], 1);
        EXPECT_EQ(rotation[3], 4);
    }
}

// Meshes

TEST_F(SoRodTest, MeshesHaveOneRowPerSubsegmentAndTheEnd)
{
    const struct
    {
        int subsegments, height;
    } cases[] = {{1, 3}, {2, 5}, {7, 15}};
    for (const auto& c : cases) {
        rod->setSubsegments(c.subsegments);
        rod->generate();
        EXPECT_EQ(rod->getTubeMesh()->getHeight(), c.height);
        EXPECT_EQ(rod->getRibbonMesh()->getHeight(), c.height);
    }
    rod->setSlices(9);
    rod->generate();
    EXPECT_EQ(rod->getTubeMesh()->getWidth(), 10);
}

TEST_F(SoRodTest, NoSubsegmentsFromTheConstructorStillGiveOneRowPerPoint)
{
    NodeRef<SoRod> fresh(new SoRod(0.1, 0.5, 4, 0, true, true, false));
    ASSERT_TRUE(fresh->setData(straightPoints, straightRotations));
    EXPECT_EQ(fresh->getSubsegments(), 0);
    EXPECT_EQ(fresh->getTubeMesh()->getHeight(), 3);
    EXPECT_EQ(fresh->getRibbonMesh()->getHeight(), 3);
}

TEST_F(SoRodTest, BothMeshesAreBuiltWhateverTheShowFlagsSay)
{
    NodeRef<SoRod> hidden(new SoRod(0.1, 0.5, 4, 2, false, false, false));
    ASSERT_TRUE(hidden->setData(straightPoints, straightRotations));
    EXPECT_EQ(hidden->getTubeMesh()->getHeight(), 5);
    EXPECT_EQ(hidden->getRibbonMesh()->getHeight(), 5);
}

TEST_F(SoRodTest, ParametersTakeEffectAtTheNextGenerate)
{
    const BiarcTubeMesh* tube = rod->getTubeMesh();
    const BiarcRibbonMesh* ribbon = rod->getRibbonMesh();
    rod->setTubeRadius(0.25);
    rod->setRibbonWidth(1.5);
    rod->setSlices(8);
    rod->setSubsegments(3);
    rod->setTwoSidedRibbon(true);
    EXPECT_EQ(rod->getTubeMesh(), tube);
    EXPECT_EQ(rod->getRibbonMesh(), ribbon);
    EXPECT_EQ(tube->getHeight(), 5);
    expectNear(boxOf(rod).getMax(), SbVec3f(0.1f, 0.5f, 2));

    rod->generate();
    EXPECT_EQ(rod->getTubeMesh()->getHeight(), 7);
    EXPECT_EQ(rod->getTubeMesh()->getWidth(), 9);
    expectNear(boxOf(rod).getMin(), SbVec3f(-0.25f, -0.75f, 0));
    expectNear(boxOf(rod).getMax(), SbVec3f(0.25f, 0.75f, 2));
}

TEST_F(SoRodTest, GeneratingAgainKeepsTheMemoryOfTheMeshes)
{
    const std::size_t size = 200;
    Vectors points;
    for (std::size_t i = 0; i < size; ++i)
        points.emplace_back(0.1 * std::sin(double(i)), 0.1 * std::cos(double(i)), double(i));
    ASSERT_TRUE(rod->setData(points, Quaternions(size, IDENTITY)));

    const AllocationCount count;
    rod->setTubeRadius(0.2);
    rod->generate();
    // The largest blocks that are made are the ribbon's edges.
    EXPECT_EQ(count.largest(), size * sizeof(Vector));
    EXPECT_EQ(rod->getTubeMesh()->getRadius(), 0.2);
    EXPECT_EQ(rod->getTubeMesh()->getHeight(), 2 * 199 + 1);
}

TEST_F(SoRodTest, TakesMeshesThatWereMadeInAnotherThread)
{
    // A bent rod, so that no number is trivial.
    const Vectors points = {{0, 0, 0}, {0, 0.2, 1}, {0.3, 0.1, 2.2}, {0.5, 0.9, 3}};
    const Quaternions rotations(4, IDENTITY);
    NodeRef<OpenRod> generated{new OpenRod};
    ASSERT_TRUE(generated->setData(points, rotations));

    SoRod::Meshes meshes;
    std::thread([&] {
        meshes = SoRod::makeMeshes(points, rotations, 0.1, 0.5, 4, 2, false);
    }).join();
    const auto oldId = rod->getNodeId();
    ASSERT_TRUE(rod->setData(points, rotations, std::move(meshes)));

    EXPECT_NE(rod->getNodeId(), oldId);
    EXPECT_EQ(rod->getPointsNum(), 4);
    expectSameMeshes(*rod->getTubeMesh(), *generated->getTubeMesh());
    expectSameMeshes(*rod->getRibbonMesh(), *generated->getRibbonMesh());
    EXPECT_EQ(rod->getTubeMesh()->getParamValues(), generated->getTubeMesh()->getParamValues());
    EXPECT_EQ(rod->getRibbonMesh()->getInterpParamValues(),
              generated->getRibbonMesh()->getInterpParamValues());

    rod->generate(); // from the data that it was given
    expectSameMeshes(*rod->getTubeMesh(), *generated->getTubeMesh());
    expectSameMeshes(*rod->getRibbonMesh(), *generated->getRibbonMesh());
}

TEST_F(SoRodTest, MeshesThatWereMadeHoldNoMemoryForTheirCurves)
{
    Vectors points;
    for (int i = 0; i < 1000; ++i)
        points.emplace_back(std::cos(0.1 * i), std::sin(0.1 * i), 0.1 * i);
    const std::size_t curve = points.size() * sizeof(Biarc<::Vector3>);
    SoRod::Meshes meshes =
        SoRod::makeMeshes(points, Quaternions(points.size()), 0.1, 0.5, 4, 1, false);

    // What the curves need now is fresh memory, where a mesh that keeps them needs none.
    BiarcTubeMesh tube(points, 0.1, 4, 1, false, false);
    const AllocationCount kept;
    tube.computeCurve(points);
    EXPECT_LT(kept.largest(), curve);
    const AllocationCount ofTube;
    meshes.tube->computeCurve(points);
    EXPECT_GE(ofTube.largest(), curve);
    const AllocationCount ofRibbon;
    const BiarcRibbonMesh again(points, points, 0.5, 1, meshes.ribbon.get());
    EXPECT_GE(ofRibbon.largest(), curve);
}

TEST_F(SoRodTest, MakesNoMeshesOfIncorrectData)
{
    for (const auto& [points, rotations] :
         {std::pair(Vectors{{0, 0, 0}}, Quaternions(1)), std::pair(straightPoints, Quaternions(2)),
          std::pair(straightPoints, Quaternions(3, Quaternion(0, 0, 0, 2)))}) {
        SoRod::Meshes meshes = SoRod::makeMeshes(points, rotations, 0.1, 0.5, 4, 2, false);
        EXPECT_FALSE(meshes.tube);
        EXPECT_FALSE(meshes.ribbon);
        EXPECT_FALSE(rod->setData(points, rotations, std::move(meshes)));
        EXPECT_FALSE(rod->isValid());
        EXPECT_EQ(rod->getTubeMesh(), nullptr);
    }
}

TEST_F(SoRodTest, TubeFollowsThePointsFromTheFirstD3ToTheLast)
{
    // A quarter circle of radius 1 about the origin, from (1, 0, 0) to (0, 1, 0); the
    // end frames' d3 are its tangents +y and -x, which no two points alone would give:
    // the curve through the ends is the circle itself, its middle ring at 45 degrees.
    const Quaternion d3AlongY(-R, 0, 0, R);   // about x: +z to +y
    const Quaternion d3AgainstX(0, -R, 0, R); // about y: +z to -x
    NodeRef<SoRod> arc(new SoRod(0.1, 0.5, 8, 2, true, true, false));
    ASSERT_TRUE(arc->setData({{1, 0, 0}, {0, 1, 0}}, {d3AlongY, d3AgainstX}));
    ASSERT_EQ(arc->getTubeMesh()->getHeight(), 3);
    Vector centre;
    for (int k = 0; k < 8; ++k)
        centre += arc->getTubeMesh()->getPoints()[1][k] * 0.125;
    EXPECT_NEAR(centre.x, R, 1e-9);
    EXPECT_NEAR(centre.y, R, 1e-9);
    EXPECT_NEAR(centre.z, 0, 1e-9);
}

TEST_F(SoRodTest, RibbonDataOfAOneSidedRibbonStartAtThePoints)
{
    // d2 of the identity is +y; of a quarter turn about z it is -x; about x it is +z.
    const Vectors points = {{1, 2, 3}, {4, 5, 6}, {7, 8, 9}};
    const Quaternions rotations = {IDENTITY, {0, 0, R, R}, {R, 0, 0, R}};
    Vectors edgeA(3), edgeB(3);
    rod->generateRibbonData(points, rotations, 0.5, edgeA, edgeB);
    const Vector ends[] = {{1, 2.5, 3}, {3.5, 5, 6}, {7, 8, 9.5}};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        expectSameVector(edgeA[i], points[i]);
        for (int axis = 0; axis < 3; ++axis)
            EXPECT_NEAR(edgeB[i][axis], ends[i][axis], 1e-15);
        // Exactly the plain formula.
        const Vector d2 = algebra3d::Matrix3<double>(rotations[i]).getColumn(1);
        expectSameVector(edgeB[i], points[i] + d2 * 0.5);
    }
}

TEST_F(SoRodTest, RibbonDataOfATwoSidedRibbonLieHalfAWidthToEitherSide)
{
    rod->setTwoSidedRibbon(true);
    const Vectors points = {{1, 2, 3}, {4, 5, 6}};
    const Quaternions rotations = {IDENTITY, {0, 0, R, R}};
    Vectors edgeA(2), edgeB(2);
    rod->generateRibbonData(points, rotations, 0.5, edgeA, edgeB);
    const Vector starts[] = {{1, 1.75, 3}, {4.25, 5, 6}};
    const Vector ends[] = {{1, 2.25, 3}, {3.75, 5, 6}};
    for (int i = 0; i < 2; ++i) {
        SCOPED_TRACE(i);
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_NEAR(edgeA[i][axis], starts[i][axis], 1e-15);
            EXPECT_NEAR(edgeB[i][axis], ends[i][axis], 1e-15);
        }
        const Vector d2 = algebra3d::Matrix3<double>(rotations[i]).getColumn(1);
        expectSameVector(edgeA[i], points[i] - d2 * 0.25);
        expectSameVector(edgeB[i], points[i] + d2 * 0.25);
    }
}

TEST_F(SoRodTest, RibbonDataAreAsLongAsTheFirstEdge)
{
    Vectors edgeA(1), edgeB(3, {7, 7, 7});
    rod->generateRibbonData(straightPoints, straightRotations, 0.5, edgeA, edgeB);
    ASSERT_EQ(edgeA.size(), 1u);
    expectSameVector(edgeB[0], {0, 0.5, 0});
    expectSameVector(edgeB[1], {7, 7, 7});
    expectSameVector(edgeB[2], {7, 7, 7});
}

TEST_F(SoRodTest, RibbonMeshLiesBetweenTheEdges)
{
    for (bool twoSided : {false, true}) {
        SCOPED_TRACE(twoSided);
        rod->setTwoSidedRibbon(twoSided);
        rod->generate();
        for (int row = 0; row < 5; ++row) {
            const Vector* points = rod->getRibbonMesh()->getPoints()[row];
            EXPECT_NEAR(points[0].y, twoSided ? -0.25 : 0, 1e-12);
            EXPECT_NEAR(points[1].y, twoSided ? 0.25 : 0.5, 1e-12);
            EXPECT_NEAR(points[0].z, 0.5 * row, 1e-12);
        }
    }
}

TEST_F(SoRodTest, ClearDeletesTheMeshesAndKeepsTheData)
{
    rod->clear();
    EXPECT_EQ(rod->getTubeMesh(), nullptr);
    EXPECT_EQ(rod->getRibbonMesh(), nullptr);
    EXPECT_TRUE(rod->isValid());
    EXPECT_EQ(rod->getPointsNum(), 3);
    expectNothingShown(rod);
    rod->clear();

    Vector point;
    Quaternion rotation;
    rod->getFrame(point, rotation, 2);
    expectSameVector(point, {0, 0, 2});

    rod->generate();
    EXPECT_EQ(rod->getTubeMesh()->getHeight(), 5);
    EXPECT_EQ(generatedTriangles(rod).size(), 44u);
}

TEST_F(SoRodTest, WithoutDataThereIsNothing)
{
    NodeRef<OpenRod> fresh(new OpenRod);
    EXPECT_TRUE(generatedTriangles(fresh).empty());
    EXPECT_EQ(countedTriangles(fresh), 0);
    EXPECT_TRUE(boxOf(fresh).isEmpty());
    EXPECT_TRUE(sameCalls(recordDrawing(fresh, {}), {}));
}

// Bounds and counts

TEST_F(SoRodTest, BoxIsThatOfTubeAndRibbon)
{
    // Radius 0.1 about the z axis, 4 slices on the axes; the ribbon reaches y = 0.5.
    SoGetBoundingBoxAction action(viewport);
    action.apply(rod);
    expectNear(action.getBoundingBox().getMin(), SbVec3f(-0.1f, -0.1f, 0));
    expectNear(action.getBoundingBox().getMax(), SbVec3f(0.1f, 0.5f, 2));
    ASSERT_TRUE(action.isCenterSet());
    expectNear(action.getCenter(), SbVec3f(0, 0.2f, 1));

    SbBox3f both = rod->getTubeMesh()->getBBox();
    both.extendBy(rod->getRibbonMesh()->getBBox());
    EXPECT_EQ(action.getBoundingBox(), both);
}

TEST_F(SoRodTest, ShowFlagsChangeNeitherBoxNorCount)
{
    const SbBox3f box = boxOf(rod);
    for (bool tube : {false, true}) {
        for (bool ribbon : {false, true}) {
            rod->showTube(tube);
            rod->showRibbon(ribbon);
            EXPECT_EQ(boxOf(rod), box);
            EXPECT_EQ(countedTriangles(rod), 46);
        }
    }
}

TEST_F(SoRodTest, EmptyBoxHasACentreOfItsOwn)
{
    NodeRef<OpenRod> fresh(new OpenRod);
    SbBox3f box(1, 2, 3, 4, 5, 6);
    SbVec3f centre(7, 8, 9);
    fresh->computeBBox(nullptr, box, centre);
    EXPECT_TRUE(box.isEmpty());
    // The midpoint of FLT_MAX and -FLT_MAX.
    EXPECT_EQ(centre, SbVec3f(0, 0, 0));
}

TEST_F(SoRodTest, ComputedBoxForgetsWhatWasThere)
{
    SbBox3f box(-50, -50, -50, 50, 50, 50);
    SbVec3f centre;
    rod->computeBBox(nullptr, box, centre);
    expectNear(box.getMax(), SbVec3f(0.1f, 0.5f, 2));
}

TEST_F(SoRodTest, CountsOneTriangleMorePerCapThanItGenerates) // kept on purpose
{
    // 5 rings of 4 slices: body 4 * 8, caps 2 * 2, but 2 * 3 counted; ribbon 4 * 2.
    EXPECT_EQ(generatedTriangles(rod).size(), 44u);
    EXPECT_EQ(countedTriangles(rod), 46);
}

namespace {

// A square ring about z; frames whose d3 is along it and whose d2 is z.
Vectors ringPoints() { return {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {1, 0, 0}}; }
Quaternions ringRotations()
{
    Quaternions rotations;
    for (int i = 0; i <= 4; ++i) {
        const double angle = M_PI / 2 * (i % 4);
        const Vector outwards(std::cos(angle), std::sin(angle), 0);
        const Vector along(-outwards.y, outwards.x, 0), up(0, 0, 1);
        rotations.push_back(algebra3d::Matrix3<double>(up.cross(along), up, along).getQuaternion());
    }
    return rotations;
}

// Whether first and last row are one, bit for bit.
bool meets(Mesh& mesh)
{
    const int last = mesh.getHeight() - 1;
    for (int column = 0; column < mesh.getWidth(); ++column) {
        for (int k = 0; k < 3; ++k) {
            if (mesh.getPoints()[0][column][k] != mesh.getPoints()[last][column][k] ||
                mesh.getNormals()[0][column][k] != mesh.getNormals()[last][column][k])
                return false;
        }
    }
    return true;
}

} // namespace

TEST_F(SoRodTest, ThatIsClosedMeetsItself)
{
    ASSERT_TRUE(rod->setData(ringPoints(), ringRotations()));
    EXPECT_FALSE(rod->isClosed());
    EXPECT_FALSE(meets(*rod->getTubeMesh()));
    EXPECT_EQ(int(generatedTriangles(rod).size()), 8 * 8 + 2 * 2 + 8 * 2);
    rod->setClosed(true);
    EXPECT_FALSE(rod->getTubeMesh()->isMeetingItself()) << "not before generate()";
    rod->generate();
    EXPECT_TRUE(rod->getTubeMesh()->isMeetingItself());
    EXPECT_TRUE(meets(*rod->getTubeMesh()));
    EXPECT_TRUE(meets(*rod->getRibbonMesh()));
    EXPECT_EQ(int(generatedTriangles(rod).size()), 8 * 8 + 8 * 2) << "without caps";
    EXPECT_EQ(countedTriangles(rod), 8 * 8 + 8 * 2);
}

TEST_F(SoRodTest, ThatIsClosedHasAnOpenRibbonWhereTheFramesDoNotClose)
{
    Quaternions rotations = ringRotations();
    Quaternion& last = rotations.back();
    rod->setClosed(true);
    last = Quaternion(-last[0], -last[1], -last[2], -last[3]);
    ASSERT_TRUE(rod->setData(ringPoints(), rotations));
    EXPECT_TRUE(meets(*rod->getRibbonMesh())) << "the same frame";
    last = IDENTITY;
    ASSERT_TRUE(rod->setData(ringPoints(), rotations));
    EXPECT_TRUE(meets(*rod->getTubeMesh()));
    EXPECT_FALSE(meets(*rod->getRibbonMesh()));
}

TEST_F(SoRodTest, ThatIsClosedIsOpenWithoutTheFirstPointAgain)
{
    NodeRef<OpenRod> open{new OpenRod};
    ASSERT_TRUE(open->setData(straightPoints, straightRotations));
    rod->setClosed(true);
    rod->generate();
    expectSameMeshes(*rod->getTubeMesh(), *open->getTubeMesh());
    expectSameMeshes(*rod->getRibbonMesh(), *open->getRibbonMesh());
}

TEST_F(SoRodTest, ThatIsClosedIsCopiedAndBuiltElsewhereAsSuch)
{
    rod->setClosed(true);
    ASSERT_TRUE(rod->setData(ringPoints(), ringRotations()));
    NodeRef<SoRod> copy(static_cast<SoRod*>(rod->copy()));
    EXPECT_TRUE(copy->isClosed());
    expectSameMeshes(*copy->getTubeMesh(), *rod->getTubeMesh());
    const SoRod::Meshes meshes =
        SoRod::makeMeshes(ringPoints(), ringRotations(), 0.1, 0.5, 4, 2, false, true);
    expectSameMeshes(*meshes.tube, *rod->getTubeMesh());
    expectSameMeshes(*meshes.ribbon, *rod->getRibbonMesh());
}

TEST_F(SoRodTest, BoxInASeparatorFollowsTheData)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    scene->boundingBoxCaching = SoSeparator::ON;
    scene->addChild(rod);
    for (int i = 0; i < 3; ++i) // often enough for Coin to cache it
        expectNear(boxOf(scene).getMax(), SbVec3f(0.1f, 0.5f, 2));
    ASSERT_TRUE(rod->setData({{0, 0, 0}, {0, 0, 9}}, {IDENTITY, IDENTITY}));
    expectNear(boxOf(scene).getMax(), SbVec3f(0.1f, 0.5f, 9));

    rod->setRibbonWidth(3);
    rod->generate();
    expectNear(boxOf(scene).getMax(), SbVec3f(0.1f, 3, 9));
    rod->clear();
    EXPECT_TRUE(boxOf(scene).isEmpty());
}

namespace {

void storeBox(void* box, SoSensor* sensor)
{
    *static_cast<SbBox3f*>(box) = boxOf(static_cast<SoNodeSensor*>(sensor)->getAttachedNode());
}

} // namespace

TEST_F(SoRodTest, WhoeverIsNotifiedAtOnceFindsTheNewMeshes)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    scene->boundingBoxCaching = SoSeparator::ON;
    scene->addChild(rod);
    SbBox3f box;
    SoNodeSensor sensor(storeBox, &box);
    sensor.setPriority(0); // not delayed
    sensor.attach(scene);
    ASSERT_TRUE(rod->setData({{0, 0, 0}, {0, 0, 9}}, {IDENTITY, IDENTITY}));
    expectNear(box.getMax(), SbVec3f(0.1f, 0.5f, 9));
    expectNear(boxOf(scene).getMax(), SbVec3f(0.1f, 0.5f, 9));
}

TEST_F(SoRodTest, PointsThatCoincideLeaveItDrawableAndUnharmed)
{
    for (const Vectors& points : {Vectors(3, {1, 2, 3}), Vectors(3, {NOT_A_NUMBER, 0, 0}),
                                  Vectors{{0, 0, 0}, {0, 0, 1}, {0, 0, 1}}}) {
        ASSERT_TRUE(rod->setData(points, straightRotations));
        EXPECT_EQ(rod->getTubeMesh()->getHeight(), 5);
        EXPECT_EQ(countedTriangles(rod), 46);
        EXPECT_TRUE(containsStrips(recordDrawing(rod, {})));
    }
    // A point that is not a number extends no box.
    ASSERT_TRUE(rod->setData(Vectors(3, {1, 2, 3}), straightRotations));
    EXPECT_TRUE(boxOf(rod).isEmpty());
    // Still good for correct data.
    ASSERT_TRUE(rod->setData(straightPoints, straightRotations));
    expectNear(boxOf(rod).getMax(), SbVec3f(0.1f, 0.5f, 2));
}

// Primitives

TEST_F(SoRodTest, GeneratesTheTubeThenTheRibbonIfShown)
{
    const auto everything = generatedTriangles(rod);
    rod->showRibbon(false);
    const auto tube = generatedTriangles(rod);
    rod->showRibbon(true);
    rod->showTube(false);
    const auto ribbon = generatedTriangles(rod);
    rod->showRibbon(false);
    EXPECT_TRUE(generatedTriangles(rod).empty());

    EXPECT_EQ(tube.size(), 36u);
    EXPECT_EQ(ribbon.size(), 8u);
    auto both = tube;
    both.insert(both.end(), ribbon.begin(), ribbon.end());
    EXPECT_EQ(everything, both);
}

TEST_F(SoRodTest, GeneratedTrianglesCarryTheMeshesPointsNormalsAndRows)
{
    rod->showTube(false); // the ribbon's material indices start at 0 again
    RibbonMesh& ribbon = *rod->getRibbonMesh();
    std::vector<Triangle> expected;
    for (int row = 0; row < 4; ++row) {
        std::vector<Corner> strip;
        for (int column = 0; column < 2; ++column)
            for (int r : {row + 1, row})
                strip.push_back(
                    corner(ribbon.getPoints()[r][column], ribbon.getNormals()[r][column], r));
        const auto triangles = stripTriangles(strip);
        expected.insert(expected.end(), triangles.begin(), triangles.end());
    }
    EXPECT_EQ(generatedTriangles(rod), expected);
}

TEST_F(SoRodTest, RayHitsTheTube)
{
    rod->setSlices(64);
    rod->generate();
    SoRayPickAction action(viewport);
    action.setRay(SbVec3f(5, 0, 0.7f), SbVec3f(-1, 0, 0));
    action.apply(rod);
    const SoPickedPoint* picked = action.getPickedPoint();
    ASSERT_NE(picked, nullptr);
    EXPECT_EQ(picked->getPath()->getTail(), static_cast<SoNode*>(rod));
    // Between the circles that the polygon of 64 sides lies between.
    EXPECT_LE(picked->getPoint()[0], 0.1f + 1e-6f);
    EXPECT_GE(picked->getPoint()[0], 0.1f * std::cos(M_PI / 64) - 1e-6f);
    EXPECT_NEAR(picked->getPoint()[1], 0, 1e-6f);
    EXPECT_NEAR(picked->getPoint()[2], 0.7f, 1e-6f);
    EXPECT_NEAR(picked->getNormal()[0], 1, 0.01f); // the polygon turns by 0.1 a side
}

TEST_F(SoRodTest, RayHitsTheCaps)
{
    for (float end : {0.0f, 2.0f}) {
        SoRayPickAction action(viewport);
        action.setRay(SbVec3f(0.02f, 0.01f, end ? 5 : -5), SbVec3f(0, 0, end ? -1 : 1));
        action.apply(rod);
        const SoPickedPoint* picked = action.getPickedPoint();
        ASSERT_NE(picked, nullptr) << end;
        EXPECT_NEAR(picked->getPoint()[2], end, 1e-6f);
    }
}

TEST_F(SoRodTest, RayHitsWhatIsShownOnly)
{
    const auto picks = [this](float y) {
        SoRayPickAction action(viewport);
        action.setRay(SbVec3f(5, y, 0.7f), SbVec3f(-1, 0, 0));
        action.apply(rod);
        return action.getPickedPoint() != nullptr;
    };
    EXPECT_TRUE(picks(-0.05f)); // the tube alone
    EXPECT_TRUE(picks(0.3f));   // the ribbon alone
    EXPECT_FALSE(picks(0.6f));
    rod->showTube(false);
    EXPECT_FALSE(picks(-0.05f));
    EXPECT_TRUE(picks(0.3f));
    rod->showTube(true);
    rod->showRibbon(false);
    EXPECT_TRUE(picks(-0.05f));
    EXPECT_FALSE(picks(0.3f));
}

// What reaches OpenGL

class SoRodDrawing : public CoinTest, public testing::WithParamInterface<DrawingState>
{
};

TEST_P(SoRodDrawing, SendsTheTubeAndThenTheRibbonWithItsOffset)
{
    NodeRef<SoRod> rod(new SoRod(0.1, 0.5, 4, 2, true, true, false));
    const Quaternion turned(0, 0, std::sin(0.2), std::cos(0.2));
    ASSERT_TRUE(rod->setData({{0, 0, 0}, {0.1, 0, 1}, {0.3, 0.2, 2}}, {IDENTITY, turned, turned}));
    // The ribbon is material 1 under an overall binding and follows the tube's 5 rows
    // under every other, also where the tube is hidden.
    const int offset = GetParam().binding == SoMaterialBinding::OVERALL ? 1 : 5;
    for (bool tube : {false, true}) {
        for (bool ribbon : {false, true}) {
            SCOPED_TRACE(testing::Message() << "tube " << tube << ", ribbon " << ribbon);
            rod->showTube(tube);
            rod->showRibbon(ribbon);
            ExpectedDrawing expected(GetParam());
            expected.startBundle();
            if (tube) {
                expected.drawBody(*rod->getTubeMesh(), 0);
                expected.drawCaps(*rod->getTubeMesh(), 0, false, false);
            }
            if (ribbon)
                expected.drawBody(*rod->getRibbonMesh(), offset);
            EXPECT_TRUE(sameCalls(recordDrawing(rod, GetParam()), expected.getCalls()));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllStates, SoRodDrawing, testing::ValuesIn(allDrawingStates()),
                         testing::PrintToStringParamName());

TEST_F(SoRodTest, DrawsNothingWhereShapesAreInvisible)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    auto* style = new SoDrawStyle;
    scene->addChild(style);
    scene->addChild(rod);
    EXPECT_TRUE(containsStrips(recordDrawing(scene, {})));
    style->style = SoDrawStyle::INVISIBLE;
    EXPECT_TRUE(sameCalls(recordDrawing(scene, {}), {}));
}

// Pictures

namespace {

class RodPicture : public FlatPictureTest
{
protected:
    SoMaterialBinding* binding = new SoMaterialBinding;
    SoSeparator* cached = new SoSeparator;
    // 1.6 long along x, radius 0.2, the ribbon 0.5 wide along +y.
    SoRod* rod = new SoRod(0.2, 0.5, 64, 1, true, true, false);

    const Quaternion d3AlongX{0, R, 0, R}; // d2 stays +y

    void SetUp() override
    {
        FlatPictureTest::SetUp();
        scene->addChild(binding);
        scene->addChild(cached);
        cached->addChild(rod);
        ASSERT_TRUE(rod->setData({{-0.8, 0, 0}, {0.8, 0, 0}}, {d3AlongX, d3AlongX}));
    }
};

} // namespace

TEST_F(RodPicture, OverallBindingShowsTubeAndRibbonInTheTwoColours)
{
    const Picture picture = render();
    ASSERT_TRUE(picture.isRendered());
    EXPECT_EQ(picture.getColour(50, 50), RED);
    EXPECT_EQ(picture.getColour(50, 42), RED);
    EXPECT_EQ(picture.getColour(50, 65), GREEN);
    EXPECT_EQ(picture.getColour(50, 73), GREEN);
    EXPECT_EQ(picture.getColour(50, 78), BLACK);
    EXPECT_EQ(picture.getColour(50, 36), BLACK);
    EXPECT_EQ(picture.getColour(5, 50), BLACK);
    expectArea(picture.count(RED), 80, 20);
    expectArea(picture.count(GREEN), 80, 15); // the rest is behind the tube
}

TEST_F(RodPicture, RibbonTakesTheOnlyMaterial)
{
    material->diffuseColor.setValue(0, 1, 0);
    const Picture picture = render();
    EXPECT_EQ(picture.getColour(50, 50), GREEN);
    EXPECT_EQ(picture.getColour(50, 70), GREEN);
    expectArea(picture.count(GREEN), 80, 35);
    EXPECT_EQ(picture.count(GREEN), picture.countOther(BLACK));
}

TEST_F(RodPicture, HiddenTubeShowsTheWholeRibbon)
{
    rod->showTube(false);
    const Picture picture = render();
    EXPECT_EQ(picture.count(RED), 0);
    expectArea(picture.count(GREEN), 80, 25);
}

TEST_F(RodPicture, HiddenRibbonShowsTheTubeAlone)
{
    rod->showRibbon(false);
    const Picture picture = render();
    EXPECT_EQ(picture.count(GREEN), 0);
    expectArea(picture.count(RED), 80, 20);
}

TEST_F(RodPicture, NothingIsCoveredWithBothHidden)
{
    rod->showTube(false);
    rod->showRibbon(false);
    const Picture picture = render();
    ASSERT_TRUE(picture.isRendered());
    EXPECT_EQ(picture.countOther(BLACK), 0);
}

TEST_F(RodPicture, InvalidRodCoversNothing)
{
    ASSERT_GT(render().countOther(BLACK), 1000);
    ASSERT_FALSE(rod->setData({{0, 0, 0}}, {Quaternion()}));
    const Picture picture = render();
    ASSERT_TRUE(picture.isRendered());
    EXPECT_EQ(picture.countOther(BLACK), 0);
}

TEST_F(RodPicture, ClearedRodCoversNothing)
{
    ASSERT_GT(render().countOther(BLACK), 1000);
    rod->clear();
    const Picture picture = render();
    ASSERT_TRUE(picture.isRendered());
    EXPECT_EQ(picture.countOther(BLACK), 0);
}

TEST_F(RodPicture, PerVertexColoursFollowTheRowsFromTubeToRibbon)
{
    // 3 points, 1 subsegment: the tube has materials 0 to 2, the ribbon 3 to 5.
    ASSERT_TRUE(
        rod->setData({{-0.8, 0, 0}, {0, 0, 0}, {0.8, 0, 0}}, {d3AlongX, d3AlongX, d3AlongX}));
    binding->value = SoMaterialBinding::PER_VERTEX;
    const float colours[6][3] = {{1, 0, 0}, {1, 0, 0}, {0, 0, 1}, {0, 1, 0}, {0, 1, 0}, {1, 1, 0}};
    material->diffuseColor.setValues(0, 6, colours);
    const Picture picture = render();
    EXPECT_EQ(picture.getColour(30, 50), RED);   // between rows 0 and 1
    EXPECT_EQ(picture.getColour(30, 68), GREEN); // between rows 3 and 4
    // Half-way from red to blue, and from green to yellow.
    const Colour tube = picture.getColour(70, 50), ribbon = picture.getColour(70, 68);
    EXPECT_NEAR(tube[0], 127, 5);
    EXPECT_NEAR(tube[2], 127, 5);
    EXPECT_NEAR(ribbon[0], 127, 5);
    EXPECT_EQ(ribbon[1], 255);
}

TEST_F(RodPicture, BothCapsAreClosed)
{
    // Along the rod's axis its wall covers nothing. Each half is seen alone, the other
    // one is cut off: a disc of 64 sides and radius 0.5, 25 pixels.
    rod->setTubeRadius(0.5);
    rod->showRibbon(false);
    rod->generate();
    camera->farDistance = 5;
    for (int side : {-1, 1}) {
        SCOPED_TRACE(side);
        camera->position = SbVec3f(5.0f * side, 0, 0);
        camera->orientation = SbRotation(SbVec3f(0, 0, 1), SbVec3f(float(side), 0, 0));
        const Picture picture = render();
        EXPECT_GT(picture.count(RED), M_PI * 24 * 24);
        EXPECT_LT(picture.count(RED), M_PI * 26 * 26);
        EXPECT_EQ(picture.getColour(50, 50), RED);
        EXPECT_EQ(picture.getColour(66, 34), RED); // 23 pixels from the centre
        EXPECT_EQ(picture.getColour(70, 30), BLACK);
    }
}

TEST_F(RodPicture, ShowFlagsActAtTheNextRenderOfACachedScene)
{
    cached->renderCaching = SoSeparator::ON;
    for (int i = 0; i < 3; ++i) // often enough for Coin to cache it
        expectArea(render().count(RED), 80, 20);
    rod->showTube(false);
    EXPECT_EQ(render().count(RED), 0);
    rod->showRibbon(false);
    EXPECT_EQ(render().countOther(BLACK), 0);
    rod->showTube(true);
    expectArea(render().count(RED), 80, 20);
    rod->setTubeRadius(0.4);
    rod->generate();
    expectArea(render().count(RED), 80, 40);
    rod->clear();
    EXPECT_EQ(render().countOther(BLACK), 0);
    ASSERT_TRUE(rod->setData({{-0.4, 0, 0}, {0.4, 0, 0}}, {d3AlongX, d3AlongX}));
    expectArea(render().count(RED), 40, 40);
}
