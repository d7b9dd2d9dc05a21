// SPDX-License-Identifier: GPL-3.0-or-later
// copy() of graphs with nodes of every class.
#include <Inventor/lists/SoPickedPointList.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoShaderParameter.h>

#include <SoGeneralScene.h>
#include <global.h>

#include "support/CoinEnvironment.h"
#include "support/graph.h"
#include "support/renderPicture.h"
#include "support/sampleNodes.h"
#include "support/triangles.h"

namespace {

class GraphCopyTest : public CoinTest
{
protected:
    static void SetUpTestSuite()
    {
        initCoinOnce();
        initStrandviewClasses();
    }
};

template <typename Node>
Node* copyOf(Node* node)
{
    return static_cast<Node*>(node->copy());
}

// Cube after cube in view of a camera that sees the origin.
Picture picture(SoNode* content)
{
    auto* root = new SoSeparator;
    auto* camera = new SoOrthographicCamera;
    camera->position = SbVec3f(0, 0, 10);
    camera->height = 6;
    camera->farDistance = 20;
    root->addChild(camera);
    root->addChild(content);
    const NodeRef<SoSeparator> held(root);
    return renderPicture(root, 60, 60);
}

} // namespace

TEST_F(GraphCopyTest, OfEveryClassShowsTheSameTriangles)
{
    for (SoNode* node : makeOneOfEach()) {
        SCOPED_TRACE(node->getTypeId().getName().getString());
        auto* root = new SoSeparator;
        root->addChild(node);
        const NodeRef<SoSeparator> original(root);
        const NodeRef<SoSeparator> copy(copyOf(root));

        SoNode* copied = copy->getChild(0);
        EXPECT_NE(copied, node);
        EXPECT_EQ(copied->getTypeId(), node->getTypeId());
        const std::vector<Triangle> triangles = generatedTriangles(root);
        EXPECT_GT(triangles.size(), 8u);
        EXPECT_EQ(generatedTriangles(copy), triangles);
        EXPECT_EQ(boxOf(copy), boxOf(root));
    }
}

TEST_F(GraphCopyTest, OfOneNodeInTwoPlacesIsOneNodeInTwoPlaces)
{
    auto* rod = makeBentRod();
    auto* root = new SoSeparator;
    root->addChild(rod);
    root->addChild(rod);
    const NodeRef<SoSeparator> original(root);
    const NodeRef<SoSeparator> copy(copyOf(root));
    EXPECT_EQ(copy->getChild(0), copy->getChild(1));
    EXPECT_NE(copy->getChild(0), rod);
}

TEST_F(GraphCopyTest, OutlivesTheOriginal)
{
    auto* root = new SoSeparator;
    root->ref();
    for (SoNode* node : makeOneOfEach())
        root->addChild(node);
    const std::vector<Triangle> triangles = generatedTriangles(root);
    const NodeRef<SoSeparator> copy(copyOf(root));
    root->unref();
    EXPECT_EQ(generatedTriangles(copy), triangles);
}

TEST_F(GraphCopyTest, OfARodHasItsDataAndParameters)
{
    const NodeRef<SoRod> rod(makeBentRod());
    rod->setTwoSidedRibbon(true);
    rod->showTube(false);
    rod->generate();
    const NodeRef<SoRod> copy(copyOf<SoRod>(rod));

    EXPECT_TRUE(copy->isValid());
    EXPECT_EQ(copy->getPointsNum(), 5);
    EXPECT_EQ(copy->getTubeRadius(), 0.1);
    EXPECT_EQ(copy->getRibbonWidth(), 0.3);
    EXPECT_EQ(copy->getSlices(), 6);
    EXPECT_EQ(copy->getSubsegments(), 3);
    EXPECT_FALSE(copy->isShowingTube());
    EXPECT_TRUE(copy->isShowingRibbon());
    EXPECT_TRUE(copy->isTwoSidedRibbon());
    algebra3d::Vector3<double> point, copied;
    algebra3d::Quaternion<double> rotation, copiedRotation;
    rod->getFrame(point, rotation, 3);
    copy->getFrame(copied, copiedRotation, 3);
    EXPECT_EQ(copied.y, point.y);
    EXPECT_EQ(copiedRotation[0], rotation[0]);
    EXPECT_NE(copy->getTubeMesh(), rod->getTubeMesh());
}

TEST_F(GraphCopyTest, OfARodChangesAlone)
{
    const NodeRef<SoRod> rod(makeBentRod());
    const std::vector<Triangle> triangles = generatedTriangles(rod);
    const NodeRef<SoRod> copy(copyOf<SoRod>(rod));
    const BentCurve longer(0, 9);
    copy->setTubeRadius(0.4);
    ASSERT_TRUE(copy->setData(longer.points, longer.rotations));
    EXPECT_EQ(rod->getPointsNum(), 5);
    EXPECT_EQ(rod->getTubeRadius(), 0.1);
    EXPECT_EQ(generatedTriangles(rod), triangles);
}

TEST_F(GraphCopyTest, OfARodWithoutDataOrMeshesHasNoneEither)
{
    const NodeRef<SoRod> empty(new SoRod(0.1, 0.3, 6, 3, true, true, false));
    const NodeRef<SoRod> emptyCopy(copyOf<SoRod>(empty));
    EXPECT_FALSE(emptyCopy->isValid());
    EXPECT_EQ(emptyCopy->getPointsNum(), 0);

    const NodeRef<SoRod> cleared(makeBentRod());
    cleared->clear();
    const NodeRef<SoRod> clearedCopy(copyOf<SoRod>(cleared));
    EXPECT_TRUE(clearedCopy->isValid());
    EXPECT_EQ(clearedCopy->getTubeMesh(), nullptr);
    clearedCopy->generate();
    EXPECT_NE(clearedCopy->getTubeMesh(), nullptr);
}

TEST_F(GraphCopyTest, OfABirodHasItsDataAndParametersAndChangesAlone)
{
    const NodeRef<SoBirod> birod(makeBentBirod());
    birod->showAvgRibbon(false);
    const std::vector<Triangle> triangles = generatedTriangles(birod);
    const NodeRef<SoBirod> copy(copyOf<SoBirod>(birod));

    EXPECT_TRUE(copy->isValid());
    EXPECT_EQ(copy->getPointsNum(), 5);
    EXPECT_EQ(copy->getStrandXPos(), 0.02);
    EXPECT_EQ(copy->getStrandYPos(), 0.03);
    EXPECT_EQ(copy->getTubesRadius(), 0.05);
    EXPECT_FALSE(copy->isShowingAvgRibbon());
    EXPECT_EQ(generatedTriangles(copy), triangles);
    algebra3d::Vector3<double> p1, p2, c1, c2;
    algebra3d::Quaternion<double> q1, q2;
    birod->getFrames(p1, q1, p2, q2, 2);
    copy->getFrames(c1, q1, c2, q2, 2);
    EXPECT_EQ(c1.x, p1.x);
    EXPECT_EQ(c2.z, p2.z);

    copy->setTubesRadius(0.2);
    copy->generate();
    EXPECT_NE(generatedTriangles(copy), triangles);
    EXPECT_EQ(generatedTriangles(birod), triangles);
}

TEST_F(GraphCopyTest, OfASceneShowsWhatIsAddedToIt)
{
    const NodeRef<SoGeneralScene> scene(new SoGeneralScene);
    scene->addChanging(new SoCube);
    const NodeRef<SoGeneralScene> copy(copyOf<SoGeneralScene>(scene));
    ASSERT_EQ(copy->getNumChildren(), 1);
    EXPECT_NE(copy->getChild(0), scene->getChild(0));

    const auto addEach = [](SoGeneralScene* to) {
        to->addShaded(makeBentRod());
        to->addSolid(new SoCube);
        to->addChanging(new SoCube);
    };
    const std::size_t before = generatedTriangles(scene).size();
    addEach(copy);
    EXPECT_EQ(generatedTriangles(scene).size(), before);
    addEach(scene);
    EXPECT_EQ(generatedTriangles(copy), generatedTriangles(scene));
}

TEST_F(GraphCopyTest, OfASceneHasLightsAndDrawStyleOfItsOwn)
{
    const NodeRef<SoGeneralScene> scene(new SoGeneralScene);
    scene->addChanging(new SoCube);
    scene->toggleDrawStyle(false);
    scene->setShaderPersp(true);
    scene->setColourMapperLimits(2, 5);
    const NodeRef<SoGeneralScene> copy(copyOf<SoGeneralScene>(scene));
    EXPECT_TRUE(copy->isShaderPersp());
    double min = 0, max = 0;
    copy->getColourMapperLimits(min, max);
    EXPECT_EQ(min, 2);
    EXPECT_EQ(max, 5);

    // Both go on from the second step of the cycle, each for itself.
    copy->toggleDrawStyle(false);
    copy->toggleDrawStyle(false);
    copy->setShaderPersp(false);
    copy->setColourMapperLimits(0, 1);
    EXPECT_TRUE(scene->isShaderPersp());
    scene->getColourMapperLimits(min, max);
    EXPECT_EQ(max, 5);

    SoShaderParameterArray3f *directions = nullptr, *copiedDirections = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *copiedIntensities = nullptr;
    SoShaderParameterArray1f *shininess = nullptr, *copiedShininess = nullptr;
    scene->getLightingParameters(directions, intensities, shininess);
    copy->getLightingParameters(copiedDirections, copiedIntensities, copiedShininess);
    EXPECT_NE(copiedIntensities, intensities);
    EXPECT_EQ(copiedIntensities->value[0], 1);
    copiedIntensities->value.set1Value(0, 0);
    EXPECT_EQ(intensities->value[0], 1);

    // Unlit white in the one; lit, but the light is off, in the other.
    const Colour unlit = picture(scene).getColour(30, 30);
    const Colour dark = picture(copy).getColour(30, 30);
    EXPECT_GT(unlit[0], 150);
    EXPECT_LT(dark[0], 60);
    EXPECT_GT(dark[0], 0);
}

TEST_F(GraphCopyTest, OfASceneIsThePictureOfTheOriginal)
{
    const NodeRef<SoGeneralScene> scene(new SoGeneralScene);
    scene->addChanging(makeBentRod());
    scene->addShaded(makeShortDna());
    const NodeRef<SoGeneralScene> copy(copyOf<SoGeneralScene>(scene));
    const Difference difference = compare(picture(scene), picture(copy));
    EXPECT_EQ(difference.pixels, 0) << difference;
    EXPECT_GT(difference.covered, 100);
}
