// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoBirod.h>

#include <cmath>
#include <limits>
#include <thread>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/lists/SoFieldList.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/sensors/SoNodeSensor.h>
#include <algebra3d/Matrix3.h>

#include <SoRod.h>

#include "support/FlatPictureTest.h"
#include "support/RandomRods.h"
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

// A birod's six sequences.
struct Data
{
    Vectors avgPoints;
    Quaternions avgRotations;
    Vectors points1;
    Quaternions rotations1;
    Vectors points2;
    Quaternions rotations2;
};

// Along +z with the identity at each point; strand 1 at x = 2, strand 2 at x = -2.
Data straightData(int size = 3)
{
    Data data;
    for (int i = 0; i < size; ++i) {
        data.avgPoints.emplace_back(0, 0, i);
        data.points1.emplace_back(2, 0, i);
        data.points2.emplace_back(-2, 0, i);
    }
    data.avgRotations = data.rotations1 = data.rotations2 =
        Quaternions(std::size_t(size), IDENTITY);
    return data;
}

bool setData(SoBirod* birod, const Data& data)
{
    return birod->setData(data.avgPoints, data.avgRotations, data.points1, data.rotations1,
                          data.points2, data.rotations2);
}

// A birod that lets a test ask what only Coin asks. All four radii and widths differ.
class OpenBirod : public SoBirod
{
public:
    explicit OpenBirod(int rowsPerSegment = 2)
        : SoBirod(0.1, 0.2, 0.5, 0.75, 0.2, 0.1, 4, rowsPerSegment, true, true, true, true, false)
    {}
    using SoBirod::computeBBox;

    // In the order of their materials.
    std::vector<Mesh*> getMeshes() const
    {
        return {getAvgTubeMesh(), getAvgRibbonMesh(), getTube1Mesh(),
                getRibbon1Mesh(), getTube2Mesh(),     getRibbon2Mesh()};
    }
    // Bit 0: average tube, 1: tubes, 2: average ribbon, 3: ribbons.
    void show(int bits)
    {
        showAvgTube(bits & 1);
        showTubes(bits & 2);
        showAvgRibbon(bits & 4);
        showRibbons(bits & 8);
    }
};

void expectSameRotation(const Quaternion& actual, const Quaternion& expected)
{
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(actual[k], expected[k]);
}

// Bit for bit.
void expectSameMeshes(Mesh& actual, Mesh& expected)
{
    ASSERT_EQ(actual.getHeight(), expected.getHeight());
    ASSERT_EQ(actual.getWidth(), expected.getWidth());
    for (int row = 0; row < expected.getHeight(); ++row) {
        for (int column = 0; column < expected.getWidth(); ++column) {
            SCOPED_TRACE(testing::Message() << "row " << row << ", column " << column);
            expectSameVector(actual.getPoints()[row][column], expected.getPoints()[row][column]);
            expectSameVector(actual.getNormals()[row][column], expected.getNormals()[row][column]);
        }
    }
}

} // namespace

class SoBirodTest : public CoinTest
{
protected:
    // 3 points, 2 subsegments: tubes of 5 rings of 4 slices, ribbons of 5 rows.
    NodeRef<OpenBirod> birod{new OpenBirod};

    void SetUp() override { ASSERT_TRUE(setData(birod, straightData())); }

    void expectNoMeshes()
    {
        for (Mesh* mesh : birod->getMeshes())
            EXPECT_EQ(mesh, nullptr);
    }
};

// Registration and construction

TEST_F(SoBirodTest, IsAMeshShapeThatCannotBeCreatedByName)
{
    const SoType type = SoBirod::getClassTypeId();
    EXPECT_EQ(type, SoType::fromName("SoBirod"));
    EXPECT_EQ(type.getName(), SbName("SoBirod"));
    EXPECT_EQ(type.getParent(), SoMeshShape::getClassTypeId());
    EXPECT_EQ(type.createInstance(), nullptr);
    EXPECT_EQ(birod->getTypeId(), type);
    SoFieldList fields;
    EXPECT_EQ(birod->getFields(fields), 0);
}

TEST_F(SoBirodTest, ConstructorStoresValuesAsTheyAre)
{
    NodeRef<SoBirod> fresh(
        new SoBirod(-1, -2, -3, -4, -5, -6, -7, -8, true, false, false, true, true));
    EXPECT_EQ(fresh->getAvgTubeRadius(), -1);
    EXPECT_EQ(fresh->getTubesRadius(), -2);
    EXPECT_EQ(fresh->getAvgRibbonWidth(), -3);
    EXPECT_EQ(fresh->getRibbonsWidth(), -4);
    EXPECT_EQ(fresh->getStrandXPos(), -5);
    EXPECT_EQ(fresh->getStrandYPos(), -6);
    EXPECT_EQ(fresh->getSlices(), -7);
    EXPECT_EQ(fresh->getSubsegments(), -8);
    EXPECT_TRUE(fresh->isShowingAvgTube());
    EXPECT_FALSE(fresh->isShowingTubes());
    EXPECT_FALSE(fresh->isShowingAvgRibbon());
    EXPECT_TRUE(fresh->isShowingRibbons());
    EXPECT_TRUE(fresh->isTwoSidedRibbon());
    EXPECT_FALSE(fresh->isValid());
    EXPECT_EQ(fresh->getPointsNum(), 0);
    EXPECT_EQ(fresh->getAvgTubeMesh(), nullptr);
    EXPECT_EQ(fresh->getRibbon2Mesh(), nullptr);
}

TEST_F(SoBirodTest, SettersStoreValuesAsTheyAreExceptSubsegments)
{
    birod->setAvgTubeRadius(-1);
    birod->setTubesRadius(-2);
    birod->setAvgRibbonWidth(-3);
    birod->setRibbonsWidth(-4);
    birod->setStrandXPos(-5);
    birod->setStrandYPos(-6);
    birod->setSlices(-7);
    birod->setTwoSidedRibbon(true);
    EXPECT_EQ(birod->getAvgTubeRadius(), -1);
    EXPECT_EQ(birod->getTubesRadius(), -2);
    EXPECT_EQ(birod->getAvgRibbonWidth(), -3);
    EXPECT_EQ(birod->getRibbonsWidth(), -4);
    EXPECT_EQ(birod->getStrandXPos(), -5);
    EXPECT_EQ(birod->getStrandYPos(), -6);
    EXPECT_EQ(birod->getSlices(), -7);
    EXPECT_TRUE(birod->isTwoSidedRibbon());

    for (int bits = 0; bits < 16; ++bits) {
        birod->show(bits);
        EXPECT_EQ(birod->isShowingAvgTube(), bool(bits & 1));
        EXPECT_EQ(birod->isShowingTubes(), bool(bits & 2));
        EXPECT_EQ(birod->isShowingAvgRibbon(), bool(bits & 4));
        EXPECT_EQ(birod->isShowingRibbons(), bool(bits & 8));
    }

    birod->setSubsegments(9);
    EXPECT_EQ(birod->getSubsegments(), 9);
    for (int count : {0, -4, 1}) {
        birod->setSubsegments(9);
        birod->setSubsegments(count);
        EXPECT_EQ(birod->getSubsegments(), 1);
    }
}

// Data

TEST_F(SoBirodTest, TakesCorrectData)
{
    EXPECT_TRUE(birod->isValid());
    EXPECT_TRUE(birod->isDataCorrect());
    EXPECT_EQ(birod->getPointsNum(), 3);
    for (Mesh* mesh : birod->getMeshes()) {
        ASSERT_NE(mesh, nullptr);
        EXPECT_TRUE(mesh->isValid());
    }
}

TEST_F(SoBirodTest, TakesOrientationsThatAreUnitWithinOneHundredthAndAnyPoints)
{
    Data data = straightData();
    data.avgRotations[1] = {0, 0, 0, 1.009};
    data.rotations1[0] = {0.991, 0, 0, 0};
    data.rotations2[2] = {0, 1.005, 0, 0};
    EXPECT_TRUE(setData(birod, data));
    data.points2[1].y = NOT_A_NUMBER;
    EXPECT_TRUE(setData(birod, data));
    EXPECT_EQ(birod->getPointsNum(), 3);
}

struct RefusedChange
{
    const char* name;
    void (*change)(Data&);
};

void PrintTo(const RefusedChange& change, std::ostream* stream) { *stream << change.name; }

class SoBirodRefusing : public SoBirodTest, public testing::WithParamInterface<RefusedChange>
{
};

TEST_P(SoBirodRefusing, EmptiesItAndLeavesNothingToShow)
{
    Data data = straightData();
    GetParam().change(data);
    EXPECT_FALSE(setData(birod, data));
    EXPECT_FALSE(birod->isValid());
    EXPECT_EQ(birod->getPointsNum(), 0);
    expectNoMeshes();
    expectNothingShown(birod);
    EXPECT_FALSE(birod->isDataCorrect()); // there is nothing left to be correct
    birod->updateStrandPositions();
    birod->generate();
    expectNoMeshes();
}

INSTANTIATE_TEST_SUITE_P(
    Data, SoBirodRefusing,
    testing::Values(
        RefusedChange{"Nothing", [](Data& data) { data = Data(); }},
        RefusedChange{"OnePoint", [](Data& data) { data = straightData(1); }},
        RefusedChange{"FewerAvgPoints", [](Data& data) { data.avgPoints.pop_back(); }},
        RefusedChange{"MoreAvgPoints", [](Data& data) { data.avgPoints.emplace_back(); }},
        RefusedChange{"FewerAvgRotations", [](Data& data) { data.avgRotations.pop_back(); }},
        RefusedChange{"FewerPoints1", [](Data& data) { data.points1.pop_back(); }},
        RefusedChange{"MorePoints1", [](Data& data) { data.points1.emplace_back(); }},
        RefusedChange{"FewerRotations1", [](Data& data) { data.rotations1.pop_back(); }},
        RefusedChange{"FewerPoints2", [](Data& data) { data.points2.pop_back(); }},
        RefusedChange{"FewerRotations2", [](Data& data) { data.rotations2.pop_back(); }},
        RefusedChange{"MoreRotations2", [](Data& data) { data.rotations2.emplace_back(); }},
        RefusedChange{"AvgNorm",
                      [](Data& data) {
                          data.avgRotations[1] = {0, 0, 0, 1.02};
                      }},
        RefusedChange{"Norm1",
                      [](Data& data) {
                          data.rotations1[0] = {0, 0, 0, 0.98};
                      }},
        RefusedChange{"Norm2",
                      [](Data& data) {
                          data.rotations2[2] = {0, 0, 0, 1.011};
                      }},
        RefusedChange{"AvgNotANumber", [](Data& data) { data.avgRotations[2][0] = NOT_A_NUMBER; }},
        RefusedChange{"NotANumber1", [](Data& data) { data.rotations1[2][3] = NOT_A_NUMBER; }},
        RefusedChange{"NotANumber2", [](Data& data) { data.rotations2[0][1] = NOT_A_NUMBER; }}),
    [](const auto& test) { return test.param.name; });

TEST_F(SoBirodTest, CheckingDoesNotMakeItValidByItself)
{
    NodeRef<OpenBirod> fresh(new OpenBirod);
    EXPECT_FALSE(fresh->isDataCorrect());
    EXPECT_FALSE(fresh->isValid());
    fresh->generate();
    EXPECT_EQ(fresh->getAvgTubeMesh(), nullptr);
}

SoBirod::Data toBirodData(const Data& data)
{
    return {data.avgPoints,  data.avgRotations, data.points1,
            data.rotations1, data.points2,      data.rotations2};
}

TEST_F(SoBirodTest, TakesMeshesThatAnotherThreadMade)
{
    RandomNumbers random(11);
    Data data = straightData(5);
    for (Vectors* points : {&data.avgPoints, &data.points1, &data.points2}) {
        for (Vector& point : *points)
            point += 0.2 * random.unitVector();
    }
    // The radii, widths and places of OpenBirod.
    SoBirod::Meshes meshes;
    std::thread([&] {
        meshes = SoBirod::makeMeshes(toBirodData(data), 0.1, 0.2, 0.5, 0.75, 0.2, 0.1, 4, 2, false);
    }).join();
    NodeRef<OpenBirod> generated(new OpenBirod);
    ASSERT_TRUE(setData(generated, data));
    const auto oldId = birod->getNodeId();
    ASSERT_TRUE(birod->setData(toBirodData(data), std::move(meshes)));
    EXPECT_NE(birod->getNodeId(), oldId);
    EXPECT_EQ(birod->getPointsNum(), 5);
    const std::vector<Mesh*> taken = birod->getMeshes(), expected = generated->getMeshes();
    for (std::size_t i = 0; i < expected.size(); ++i) {
        SCOPED_TRACE(i);
        ASSERT_NE(taken[i], nullptr);
        expectSameMeshes(*taken[i], *expected[i]);
    }
    Vector point1, point2, expected1, expected2;
    Quaternion rotation1, rotation2;
    birod->getFrames(point1, rotation1, point2, rotation2, 3);
    generated->getFrames(expected1, rotation1, expected2, rotation2, 3);
    EXPECT_EQ((point1 - expected1).getNorm(), 0);
    EXPECT_EQ((point2 - expected2).getNorm(), 0);

    birod->generate(); // from the data that it was given
    for (std::size_t i = 0; i < expected.size(); ++i)
        expectSameMeshes(*birod->getMeshes()[i], *expected[i]);
}

TEST_F(SoBirodTest, MakesNoMeshesOfIncorrectData)
{
    Data shorter = straightData(3), turned = straightData(3);
    shorter.points2.pop_back();
    turned.rotations1[1] = Quaternion(0, 0, 0, 2);
    for (const Data& data : {straightData(1), shorter, turned}) {
        SoBirod::Meshes meshes =
            SoBirod::makeMeshes(toBirodData(data), 0.1, 0.2, 0.5, 0.75, 0.2, 0.1, 4, 2, false);
        EXPECT_FALSE(meshes.avgTube || meshes.tube1 || meshes.tube2);
        EXPECT_FALSE(meshes.avgRibbon || meshes.ribbon1 || meshes.ribbon2);
        ASSERT_TRUE(setData(birod, straightData(3)));
        EXPECT_FALSE(birod->setData(toBirodData(data), std::move(meshes)));
        EXPECT_FALSE(birod->isValid());
        EXPECT_EQ(birod->getPointsNum(), 0);
        EXPECT_EQ(birod->getAvgTubeMesh(), nullptr);
    }
}

TEST_F(SoBirodTest, TakesCorrectDataAfterRefusedData)
{
    EXPECT_FALSE(setData(birod, straightData(1)));
    EXPECT_TRUE(setData(birod, straightData(2)));
    EXPECT_EQ(birod->getPointsNum(), 2);
    EXPECT_EQ(birod->getTube2Mesh()->getHeight(), 3);
}

TEST_F(SoBirodTest, StrandsAreDisplacedInTheirFrames)
{
    // x = 0.2 and y = 0.1; strand 2 is mirrored in its d1.
    Vector point1, point2;
    Quaternion rotation1, rotation2;
    birod->getFrames(point1, rotation1, point2, rotation2, 1);
    expectSameVector(point1, {2.2, 0.1, 1});
    expectSameVector(point2, {-1.8, -0.1, 1});

    // A quarter turn about z takes d1 to +y and d2 to -x; about x it takes d2 to +z.
    Data data = straightData();
    data.rotations1[1] = {0, 0, R, R};
    data.rotations2[1] = {R, 0, 0, R};
    ASSERT_TRUE(setData(birod, data));
    birod->getFrames(point1, rotation1, point2, rotation2, 1);
    expectSameRotation(rotation1, data.rotations1[1]);
    expectSameRotation(rotation2, data.rotations2[1]);
    const double expected[6] = {2 - 0.1, 0.2, 1, -2 + 0.2, 0, 1 - 0.1};
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_NEAR(point1[axis], expected[axis], 1e-15);
        EXPECT_NEAR(point2[axis], expected[3 + axis], 1e-15);
    }
}

TEST_F(SoBirodTest, StrandsAreDisplacedByThePlainFormula)
{
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        const RandomRod average = randomRod(RodKind::SMOOTH, 12, seed);
        const RandomRod one = randomRod(RodKind::RANDOM_WALK, 12, seed + 100);
        const RandomRod two = randomRod(RodKind::PLANAR, 12, seed + 200);
        const double x = 0.3 * seed - 1, y = 0.7 - 0.2 * seed;
        birod->setStrandXPos(x);
        birod->setStrandYPos(y);
        ASSERT_TRUE(birod->setData(average.points, average.rotations, one.points, one.rotations,
                                   two.points, two.rotations));
        for (int i = 0; i < 12; ++i) {
            const algebra3d::Matrix3<double> frame1(one.rotations[i]), frame2(two.rotations[i]);
            Vector point1, point2, point;
            Quaternion rotation1, rotation2, rotation;
            birod->getFrames(point1, rotation1, point2, rotation2, i);
            expectSameVector(point1,
                             one.points[i] + x * frame1.getColumn(0) + y * frame1.getColumn(1));
            expectSameVector(point2,
                             two.points[i] + x * frame2.getColumn(0) - y * frame2.getColumn(1));
            expectSameRotation(rotation1, one.rotations[i]);
            expectSameRotation(rotation2, two.rotations[i]);
            birod->getAvgFrame(point, rotation, i);
            expectSameVector(point, average.points[i]);
            expectSameRotation(rotation, average.rotations[i]);
        }
    }
}

TEST_F(SoBirodTest, UpdatingThePositionsLeavesTheMeshes)
{
    Mesh* tube = birod->getTube1Mesh();
    birod->setStrandXPos(1);
    birod->setStrandYPos(0);
    Vector point1, point2;
    Quaternion rotation1, rotation2;
    birod->getFrames(point1, rotation1, point2, rotation2, 0);
    expectSameVector(point1, {2.2, 0.1, 0});
    birod->updateStrandPositions();
    birod->getFrames(point1, rotation1, point2, rotation2, 0);
    expectSameVector(point1, {3, 0, 0});
    expectSameVector(point2, {-1, 0, 0});
    EXPECT_EQ(birod->getTube1Mesh(), tube);
}

TEST_F(SoBirodTest, FrameIndicesAreClamped)
{
    Data data = straightData();
    data.avgRotations = {{R, 0, 0, R}, {0, R, 0, R}, {0, 0, R, R}};
    ASSERT_TRUE(setData(birod, data));
    const struct
    {
        int index, entry;
    } cases[] = {{-3, 0}, {-1, 0}, {0, 0}, {1, 1}, {2, 2}, {3, 2}, {1000, 2}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.index);
        Vector point1, point2, point;
        Quaternion rotation1, rotation2, rotation;
        birod->getFrames(point1, rotation1, point2, rotation2, c.index);
        expectSameVector(point1, {2.2, 0.1, double(c.entry)});
        expectSameVector(point2, {-1.8, -0.1, double(c.entry)});
        birod->getAvgFrame(point, rotation, c.index);
        expectSameVector(point, data.avgPoints[c.entry]);
        expectSameRotation(rotation, data.avgRotations[c.entry]);
    }
}

TEST_F(SoBirodTest, InvalidBirodHasNoFrames)
{
    NodeRef<OpenBirod> fresh(new OpenBirod);
    const Vector sevens(7, 7, 7);
    const Quaternion other(1, 2, 3, 4);
    for (int index : {-1, 0, 5}) {
        Vector point1 = sevens, point2 = sevens, point = sevens;
        Quaternion rotation1 = other, rotation2 = other, rotation = other;
        fresh->getFrames(point1, rotation1, point2, rotation2, index);
        fresh->getAvgFrame(point, rotation, index);
        for (const Vector& unchanged : {point1, point2, point})
            expectSameVector(unchanged, sevens);
        for (const Quaternion& unchanged : {rotation1, rotation2, rotation})
            expectSameRotation(unchanged, other);
    }
}

// Meshes

TEST_F(SoBirodTest, MeshesHaveOneRowPerSubsegmentAndTheEnd)
{
    const struct
    {
        int subsegments, height;
    } cases[] = {{1, 3}, {2, 5}, {7, 15}};
    for (const auto& c : cases) {
        birod->setSubsegments(c.subsegments);
        birod->generate();
        for (Mesh* mesh : birod->getMeshes())
            EXPECT_EQ(mesh->getHeight(), c.height);
    }
    birod->setSlices(9);
    birod->generate();
    for (Mesh* tube : {birod->getAvgTubeMesh(), birod->getTube1Mesh(), birod->getTube2Mesh()})
        EXPECT_EQ(tube->getWidth(), 10);
}

TEST_F(SoBirodTest, AllMeshesAreBuiltWhateverTheShowFlagsSay)
{
    birod->show(0);
    birod->generate();
    for (Mesh* mesh : birod->getMeshes()) {
        ASSERT_NE(mesh, nullptr);
        EXPECT_EQ(mesh->getHeight(), 5);
    }
}

TEST_F(SoBirodTest, MeshesAreThoseOfTheDisplayedData)
{
    for (unsigned seed = 0; seed < 10; ++seed) {
        for (bool twoSided : {false, true}) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << ", two-sided " << twoSided);
            const RandomRod average = randomRod(RodKind::SMOOTH, 9, seed);
            RandomRod one = randomRod(RodKind::RANDOM_WALK, 9, seed + 100);
            RandomRod two = randomRod(RodKind::SMOOTH, 9, seed + 200);
            birod->setTwoSidedRibbon(twoSided);
            ASSERT_TRUE(birod->setData(average.points, average.rotations, one.points, one.rotations,
                                       two.points, two.rotations));
            Quaternion rotation;
            for (int i = 0; i < 9; ++i)
                birod->getFrames(one.points[i], rotation, two.points[i], rotation, i);

            // The average is a rod of its own.
            NodeRef<SoRod> rod(new SoRod(0.1, 0.5, 4, 2, true, true, twoSided));
            ASSERT_TRUE(rod->setData(average.points, average.rotations));
            expectSameMeshes(*birod->getAvgTubeMesh(), *rod->getTubeMesh());
            expectSameMeshes(*birod->getAvgRibbonMesh(), *rod->getRibbonMesh());

            // So are the strands' ribbons; their tubes have estimated end tangents.
            rod->setRibbonWidth(0.75);
            ASSERT_TRUE(rod->setData(one.points, one.rotations));
            expectSameMeshes(*birod->getRibbon1Mesh(), *rod->getRibbonMesh());
            BiarcTubeMesh tube1(one.points, 0.2, 4, 2, false, false);
            expectSameMeshes(*birod->getTube1Mesh(), tube1);
            ASSERT_TRUE(rod->setData(two.points, two.rotations));
            expectSameMeshes(*birod->getRibbon2Mesh(), *rod->getRibbonMesh());
            BiarcTubeMesh tube2(two.points, 0.2, 4, 2, false, false);
            expectSameMeshes(*birod->getTube2Mesh(), tube2);
        }
    }
}

TEST_F(SoBirodTest, RibbonDataLieAlongD2OnOneOrBothSides)
{
    // d2 of the identity is +y; of a quarter turn about z it is -x.
    const Vectors points = {{1, 2, 3}, {4, 5, 6}};
    const Quaternions rotations = {IDENTITY, {0, 0, R, R}};
    Vectors edgeA(2), edgeB(2);
    birod->generateRibbonData(points, rotations, 0.5, edgeA, edgeB);
    expectSameVector(edgeA[0], points[0]);
    expectSameVector(edgeA[1], points[1]);
    expectSameVector(edgeB[0], {1, 2.5, 3});
    EXPECT_NEAR(edgeB[1].x, 3.5, 1e-15);

    birod->setTwoSidedRibbon(true);
    birod->generateRibbonData(points, rotations, 0.5, edgeA, edgeB);
    expectSameVector(edgeA[0], {1, 1.75, 3});
    expectSameVector(edgeB[0], {1, 2.25, 3});
    EXPECT_NEAR(edgeA[1].x, 4.25, 1e-15);
    EXPECT_NEAR(edgeB[1].x, 3.75, 1e-15);
}

TEST_F(SoBirodTest, ParametersTakeEffectAtTheNextGenerate)
{
    const std::vector<Mesh*> before = birod->getMeshes();
    const SbBox3f box = boxOf(birod);
    birod->setTubesRadius(0.5);
    birod->setStrandXPos(1);
    birod->setSlices(8);
    birod->setSubsegments(3);
    EXPECT_EQ(birod->getMeshes(), before);
    EXPECT_EQ(boxOf(birod), box);

    birod->generate();
    EXPECT_EQ(birod->getTube2Mesh()->getHeight(), 7);
    EXPECT_EQ(birod->getTube2Mesh()->getWidth(), 9);
    EXPECT_NEAR(boxOf(birod).getMax()[0], 3.5f, 1e-6f);
    EXPECT_NEAR(boxOf(birod).getMin()[0], -1.5f, 1e-6f);
}

TEST_F(SoBirodTest, ClearDeletesTheMeshesAndKeepsTheData)
{
    birod->clear();
    expectNoMeshes();
    EXPECT_TRUE(birod->isValid());
    EXPECT_EQ(birod->getPointsNum(), 3);
    expectNothingShown(birod);
    birod->clear();

    Vector point1, point2;
    Quaternion rotation1, rotation2;
    birod->getFrames(point1, rotation1, point2, rotation2, 2);
    expectSameVector(point1, {2.2, 0.1, 2});

    birod->generate();
    EXPECT_EQ(generatedTriangles(birod).size(), 132u);
}

// Bounds and counts

TEST_F(SoBirodTest, BoxIsThatOfAllSixMeshes)
{
    // Strand 1 about (2.2, 0.1), strand 2 about (-1.8, -0.1), radius 0.2, ribbons from
    // there 0.75 along +y.
    SoGetBoundingBoxAction action(viewport);
    action.apply(birod);
    expectNear(action.getBoundingBox().getMin(), SbVec3f(-2, -0.3f, 0));
    expectNear(action.getBoundingBox().getMax(), SbVec3f(2.4f, 0.85f, 2));
    ASSERT_TRUE(action.isCenterSet());
    expectNear(action.getCenter(), SbVec3f(0.2f, 0.275f, 1));

    // Each of the six counts: alone it is made to stick out.
    for (int i = 0; i < 6; ++i) {
        SCOPED_TRACE(i);
        NodeRef<OpenBirod> other(new OpenBirod);
        ASSERT_TRUE(setData(other, straightData()));
        other->getMeshes()[std::size_t(i)]->updateBB({0, 7, 0});
        EXPECT_EQ(boxOf(other).getMax()[1], 7);
    }
}

TEST_F(SoBirodTest, ShowFlagsChangeTheCountButNotTheBox)
{
    // A tube of 5 rings of 4 slices counts 4 * 8 and 2 * 3 for the caps, a ribbon 4 * 2.
    const SbBox3f box = boxOf(birod);
    for (int bits = 0; bits < 16; ++bits) {
        SCOPED_TRACE(bits);
        birod->show(bits);
        EXPECT_EQ(boxOf(birod), box);
        const int expected =
            (bits & 1) * 38 + (bits >> 1 & 1) * 76 + (bits >> 2 & 1) * 8 + (bits >> 3 & 1) * 16;
        EXPECT_EQ(countedTriangles(birod), expected);
    }
}

TEST_F(SoBirodTest, EmptyBoxHasACentreOfItsOwn)
{
    NodeRef<OpenBirod> fresh(new OpenBirod);
    SbBox3f box(1, 2, 3, 4, 5, 6);
    SbVec3f centre(7, 8, 9);
    fresh->computeBBox(nullptr, box, centre);
    EXPECT_TRUE(box.isEmpty());
    EXPECT_EQ(centre, SbVec3f(0, 0, 0)); // the midpoint of FLT_MAX and -FLT_MAX
}

TEST_F(SoBirodTest, BoxInASeparatorFollowsTheData)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    scene->boundingBoxCaching = SoSeparator::ON;
    scene->addChild(birod);
    for (int i = 0; i < 3; ++i) // often enough for Coin to cache it
        EXPECT_NEAR(boxOf(scene).getMax()[2], 2, 1e-6f);
    ASSERT_TRUE(setData(birod, straightData(9)));
    EXPECT_NEAR(boxOf(scene).getMax()[2], 8, 1e-6f);
    birod->clear();
    EXPECT_TRUE(boxOf(scene).isEmpty());
}

namespace {

void storeHeight(void* height, SoSensor* sensor)
{
    auto* birod = static_cast<SoBirod*>(static_cast<SoNodeSensor*>(sensor)->getAttachedNode());
    *static_cast<int*>(height) = birod->getRibbon2Mesh() ? birod->getRibbon2Mesh()->getHeight() : 0;
}

} // namespace

TEST_F(SoBirodTest, WhoeverIsNotifiedAtOnceFindsTheNewMeshes)
{
    int height = -1;
    SoNodeSensor sensor(storeHeight, &height);
    sensor.setPriority(0); // not delayed
    sensor.attach(birod);
    ASSERT_TRUE(setData(birod, straightData(9)));
    EXPECT_EQ(height, 17);
    birod->clear();
    EXPECT_EQ(height, 0);
}

TEST_F(SoBirodTest, PointsThatCoincideLeaveItDrawableAndUnharmed)
{
    for (const Vector& point : {Vector(1, 2, 3), Vector(NOT_A_NUMBER, 0, 0)}) {
        Data data = straightData();
        data.avgPoints = data.points1 = data.points2 = Vectors(3, point);
        ASSERT_TRUE(setData(birod, data));
        EXPECT_EQ(birod->getRibbon1Mesh()->getHeight(), 5);
        EXPECT_TRUE(boxOf(birod).isEmpty()); // no point is a number
        EXPECT_TRUE(containsStrips(recordDrawing(birod, {})));
    }
    ASSERT_TRUE(setData(birod, straightData()));
    EXPECT_NEAR(boxOf(birod).getMax()[2], 2, 1e-6f);
}

// Primitives

TEST_F(SoBirodTest, GeneratesTheTubesThenTheRibbonsIfShown)
{
    // Average tube, both tubes, average ribbon, both ribbons, each shown alone.
    std::vector<Triangle> parts[4];
    const std::size_t sizes[4] = {36, 72, 8, 16};
    for (int k = 0; k < 4; ++k) {
        birod->show(1 << k);
        parts[k] = generatedTriangles(birod);
        EXPECT_EQ(parts[k].size(), sizes[k]);
    }
    // Strand 1, at x > 0, comes before strand 2.
    for (int k : {1, 3}) {
        EXPECT_GT(parts[k].front()[0][0], 0);
        EXPECT_LT(parts[k].back()[0][0], 0);
    }
    for (int bits = 0; bits < 16; ++bits) {
        SCOPED_TRACE(bits);
        birod->show(bits);
        std::vector<Triangle> expected;
        for (int k = 0; k < 4; ++k)
            if (bits & 1 << k)
                expected.insert(expected.end(), parts[k].begin(), parts[k].end());
        EXPECT_EQ(generatedTriangles(birod), expected);
    }
}

TEST_F(SoBirodTest, RayHitsWhatIsShownOnly)
{
    const auto picks = [this](float x, float y) {
        SoRayPickAction action(viewport);
        // From beside it, and not what lies behind that.
        action.setRay(SbVec3f(x + 0.3f, y + 0.01f, 0.7f), SbVec3f(-1, -0.01f, 0), 0);
        action.apply(birod);
        const SoPickedPoint* picked = action.getPickedPoint();
        return picked && std::abs(picked->getPoint()[0] - x) < 0.2f;
    };
    const struct
    {
        int bit;
        float x, y; // of a point on that part alone
    } places[] = {{1, 0, -0.05f}, {2, 2.2f, 0},    {2, -1.8f, -0.2f},
                  {4, 0, 0.3f},   {8, 2.2f, 0.6f}, {8, -1.8f, 0.3f}};
    for (const auto& place : places) {
        SCOPED_TRACE(testing::Message() << place.x << ", " << place.y);
        birod->show(15);
        EXPECT_TRUE(picks(place.x, place.y));
        birod->show(15 & ~place.bit);
        EXPECT_FALSE(picks(place.x, place.y));
    }
}

// What reaches OpenGL

namespace {

// Which bit of show() a mesh follows, in the order of materials.
const int SHOW_BITS[6] = {1, 4, 2, 8, 2, 8};

// The calls that draw a birod whose meshes have these material offsets.
RecordedCalls expectedCalls(const OpenBirod* birod, const DrawingState& state, int shown,
                            const int (&offsets)[6])
{
    const std::vector<Mesh*> meshes = birod->getMeshes();
    ExpectedDrawing expected(state);
    expected.startBundle();
    for (int part : {0, 1, 2, 4, 3, 5}) { // tubes before ribbons
        if (!(shown & SHOW_BITS[part]))
            continue;
        Mesh& mesh = *meshes[std::size_t(part)];
        expected.drawBody(mesh, offsets[part]);
        if (auto* tube = dynamic_cast<TubeMesh*>(&mesh))
            expected.drawCaps(*tube, offsets[part], false, false);
    }
    return expected.getCalls();
}

} // namespace

class SoBirodDrawing : public CoinTest, public testing::WithParamInterface<DrawingState>
{
};

TEST_P(SoBirodDrawing, SendsWhatIsShownWithItsOffset)
{
    // -3 subsegments, which only the constructor takes, are 1 row per segment in a tube
    // and 3 in a ribbon: tubes of 3 rows and ribbons of 7 tell the heights apart.
    NodeRef<OpenBirod> birod(new OpenBirod(-3));
    const Quaternion turned(0, 0, std::sin(0.2), std::cos(0.2));
    Data data = straightData();
    data.points1[1] = {2.1, 0.3, 1.2};
    data.rotations1 = data.avgRotations = {IDENTITY, turned, turned};
    ASSERT_TRUE(setData(birod, data));
    for (Mesh* tube : {birod->getAvgTubeMesh(), birod->getTube1Mesh(), birod->getTube2Mesh()})
        ASSERT_EQ(tube->getHeight(), 3);
    for (Mesh* ribbon :
         {birod->getAvgRibbonMesh(), birod->getRibbon1Mesh(), birod->getRibbon2Mesh()})
        ASSERT_EQ(ribbon->getHeight(), 7);

    // Overall: the height of the one mesh before plus the rank.
    const int overall[6] = {0, 3 + 1, 7 + 2, 3 + 3, 7 + 4, 3 + 5};
    const int perRow[6] = {0, 3, 3 + 7, 3 + 7 + 3, 3 + 7 + 3 + 7, 3 + 7 + 3 + 7 + 3};
    const auto& offsets = GetParam().binding == SoMaterialBinding::OVERALL ? overall : perRow;
    for (int shown = 0; shown < 16; ++shown) {
        SCOPED_TRACE(shown);
        birod->show(shown);
        EXPECT_TRUE(sameCalls(recordDrawing(birod, GetParam()),
                              expectedCalls(birod, GetParam(), shown, offsets)));
    }
}

TEST_P(SoBirodDrawing, OffsetsOfTenRowsEach)
{
    NodeRef<OpenBirod> birod(new OpenBirod(3));
    ASSERT_TRUE(setData(birod, straightData(4)));
    const int overall[6] = {0, 11, 12, 13, 14, 15};
    const int perRow[6] = {0, 10, 20, 30, 40, 50};
    const auto& offsets = GetParam().binding == SoMaterialBinding::OVERALL ? overall : perRow;
    EXPECT_TRUE(
        sameCalls(recordDrawing(birod, GetParam()), expectedCalls(birod, GetParam(), 15, offsets)));
}

INSTANTIATE_TEST_SUITE_P(AllStates, SoBirodDrawing, testing::ValuesIn(allDrawingStates()),
                         testing::PrintToStringParamName());

TEST_F(SoBirodTest, DrawsNothingWhereShapesAreInvisible)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    auto* style = new SoDrawStyle;
    scene->addChild(style);
    scene->addChild(birod);
    EXPECT_TRUE(containsStrips(recordDrawing(scene, {})));
    style->style = SoDrawStyle::INVISIBLE;
    EXPECT_TRUE(sameCalls(recordDrawing(scene, {}), {}));
}

// Pictures

namespace {

const Colour BLUE = {0, 0, 255};
const Colour YELLOW = {255, 255, 0};
const Colour CYAN = {0, 255, 255};
const Colour MAGENTA = {255, 0, 255};

// 1.6 long along x: the average on the x axis, strand 1 displaced by 0.5 along +y, strand
// 2 by as much along -y; the ribbons lie along +y. 2 rows to each mesh.
class BirodPicture : public FlatPictureTest
{
protected:
    SoMaterialBinding* binding = new SoMaterialBinding;
    SoSeparator* cached = new SoSeparator;
    SoBirod* birod = new SoBirod(0.1, 0.1, 0.2, 0.25, 0, 0.5, 64, 1, true, true, true, true, false);

    void SetUp() override
    {
        FlatPictureTest::SetUp();
        scene->addChild(binding);
        scene->addChild(cached);
        cached->addChild(birod);
        const Quaternions rotations(2, {0, R, 0, R}); // d3 = +x, d2 = +y
        const Vectors points = {{-0.8, 0, 0}, {0.8, 0, 0}};
        ASSERT_TRUE(birod->setData(points, rotations, points, rotations, points, rotations));

        // The six meshes' overall materials, and white between them.
        material->diffuseColor = SbColor(1, 1, 1);
        const float colours[6][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1},
                                     {1, 1, 0}, {0, 1, 1}, {1, 0, 1}};
        const int places[6] = {0, 3, 4, 5, 6, 7};
        material->diffuseColor.setNum(8);
        for (int k = 1; k < 3; ++k)
            material->diffuseColor.set1Value(k, 1, 1, 1);
        for (int k = 0; k < 6; ++k)
            material->diffuseColor.set1Value(places[k], SbColor(colours[k]));
    }

    // The colours in the middle of each mesh, in the order of their materials.
    std::vector<Colour> coloursOf(const Picture& picture)
    {
        std::vector<Colour> colours;
        for (int y : {50, 57, 75, 84, 25, 34})
            colours.push_back(picture.getColour(40, y));
        return colours;
    }
};

} // namespace

TEST_F(BirodPicture, OverallBindingShowsTheSixMeshesInTheirColours)
{
    const Picture picture = render();
    const std::vector<Colour> expected = {RED, GREEN, BLUE, YELLOW, CYAN, MAGENTA};
    EXPECT_EQ(coloursOf(picture), expected);
    expectArea(picture.count(RED), 80, 10);
    expectArea(picture.count(GREEN), 80, 5); // the rest is behind the tube
    expectArea(picture.count(BLUE), 80, 10);
    expectArea(picture.count(YELLOW), 80, 7.5);
    expectArea(picture.count(CYAN), 80, 10);
    expectArea(picture.count(MAGENTA), 80, 7.5);
}

TEST_F(BirodPicture, StandsTheSameWayUpFromBehind)
{
    lookFrom(SbVec3f(0, 0, -1), SbVec3f(0, 1, 0));
    const std::vector<Colour> expected = {RED, GREEN, BLUE, YELLOW, CYAN, MAGENTA};
    EXPECT_EQ(coloursOf(render()), expected);
}

TEST_F(BirodPicture, FromAboveStrandOneHidesTheRest)
{
    lookFrom(SbVec3f(0, 1, 0), SbVec3f(0, 0, -1));
    const Picture picture = render();
    // Its ribbon, seen from the edge, covers nothing or a line.
    EXPECT_EQ(picture.getColour(40, 53), BLUE);
    EXPECT_EQ(picture.getColour(40, 46), BLUE);
    EXPECT_EQ(picture.count(CYAN), 0);
    EXPECT_EQ(picture.count(RED), 0);
}

TEST_F(BirodPicture, PerVertexColoursFollowTheRowsOfAllMeshes)
{
    binding->value = SoMaterialBinding::PER_VERTEX; // 2 rows each: materials 0 to 11
    const float colours[6][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {0, 1, 1}, {1, 0, 1}};
    for (int k = 0; k < 12; ++k)
        material->diffuseColor.set1Value(k, SbColor(colours[k / 2]));
    const std::vector<Colour> expected = {RED, GREEN, BLUE, YELLOW, CYAN, MAGENTA};
    EXPECT_EQ(coloursOf(render()), expected);
}

TEST_F(BirodPicture, MeshesWithoutAMaterialTakeTheLast)
{
    material->diffuseColor.setValue(1, 0, 0);
    Picture picture = render();
    EXPECT_EQ(coloursOf(picture), std::vector<Colour>(6, RED));
    EXPECT_EQ(picture.count(RED), picture.countOther(BLACK));

    material->diffuseColor.set1Value(1, 0, 1, 0);
    picture = render();
    const std::vector<Colour> expected = {RED, GREEN, GREEN, GREEN, GREEN, GREEN};
    EXPECT_EQ(coloursOf(picture), expected);
}

TEST_F(BirodPicture, ChangesActAtTheNextRenderOfACachedScene)
{
    cached->renderCaching = SoSeparator::ON;
    const auto renderOften = [this] { // often enough for Coin to cache it
        for (int i = 0; i < 3; ++i)
            render();
        return render();
    };
    const auto expectShown = [&](bool shown, const std::vector<Colour>& colours) {
        const Picture first = render();
        for (const Colour& colour : colours)
            EXPECT_EQ(first.count(colour) > 0, shown);
        EXPECT_EQ(renderOften().countOther(BLACK), first.countOther(BLACK));
    };
    for (const bool shown : {true, false, true}) {
        birod->showAvgTube(shown);
        expectShown(shown, {RED});
        birod->showTubes(shown);
        expectShown(shown, {BLUE, CYAN});
        birod->showAvgRibbon(shown);
        expectShown(shown, {GREEN});
        birod->showRibbons(shown);
        expectShown(shown, {YELLOW, MAGENTA});
    }
    birod->setTubesRadius(0.2);
    birod->generate();
    expectArea(renderOften().count(CYAN), 80, 20);
    birod->clear();
    EXPECT_EQ(render().countOther(BLACK), 0);
}
