// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoMarker.h>

#include <climits>
#include <cmath>
#include <limits>

#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoCylinder.h>
#include <Inventor/nodes/SoRotation.h>
#include <Inventor/nodes/SoScale.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>

#include <SoArrow.h>

#include "support/FlatPictureTest.h"
#include "support/nodeFacts.h"
#include "support/nodeGraph.h"

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

SoMaterial* materialOf(SoNode* marker) { return childOf<SoMaterial>(marker, 0); }
SoSwitch* switchOf(SoNode* marker) { return childOf<SoSwitch>(marker, 1); }
SoSphere* sphereOf(SoNode* marker) { return childOf<SoSphere>(switchOf(marker), 0); }
SoCube* cubeOf(SoNode* marker) { return childOf<SoCube>(switchOf(marker), 1); }
SoSeparator* crossOf(SoNode* marker) { return childOf<SoSeparator>(switchOf(marker), 2); }
SoScale* scaleOf(SoNode* marker) { return childOf<SoScale>(crossOf(marker), 0); }

void expectSize(SoNode* marker, float size)
{
    EXPECT_EQ(sphereOf(marker)->radius.getValue(), 0.5f * size);
    EXPECT_EQ(cubeOf(marker)->width.getValue(), size);
    EXPECT_EQ(cubeOf(marker)->height.getValue(), size);
    EXPECT_EQ(cubeOf(marker)->depth.getValue(), size);
    EXPECT_EQ(scaleOf(marker)->scaleFactor.getValue(), SbVec3f(size, size, size));
    EXPECT_EQ(static_cast<SoMarker*>(marker)->getSize(), double(size));
}

void expectColour(SoNode* marker, const SbColor& colour)
{
    for (SoMFColor* field :
         {&materialOf(marker)->ambientColor, &materialOf(marker)->diffuseColor}) {
        ASSERT_EQ(field->getNum(), 1);
        EXPECT_EQ((*field)[0], colour);
    }
    double r, g, b;
    static_cast<SoMarker*>(marker)->getColour(r, g, b);
    EXPECT_EQ(r, double(colour[0]));
    EXPECT_EQ(g, double(colour[1]));
    EXPECT_EQ(b, double(colour[2]));
}

} // namespace

class SoMarkerTest : public CoinTest
{
protected:
    NodeRef<SoMarker> marker{new SoMarker(7, {0.1, 0.2, 0.3}, 2, 0.25, SoMarker::CUBE)};
};

TEST_F(SoMarkerTest, IsASeparatorWithoutFieldsOfItsOwn)
{
    EXPECT_EQ(marker->getTypeId(), SoMarker::getClassTypeId());
    expectSeparatorClass(marker, "SoMarker");
}

TEST_F(SoMarkerTest, HasThreeShapesOfWhichOneIsShown)
{
    static_assert(SoMarker::NUM_SHAPES == 3 && SoMarker::SPHERE == 0 && SoMarker::CUBE == 1 &&
                  SoMarker::CROSS == 2);
    const std::string bar = "SoArrow(Translation Rotation Separator(Translation Cylinder))";
    EXPECT_EQ(outline(marker), "SoMarker(Material Switch(Sphere Cube Separator(Scale " + bar + " " +
                                   bar + " " + bar + ")))");
    EXPECT_EQ(switchOf(marker)->whichChild.getValue(), 1);
    EXPECT_EQ(marker->getShape(), SoMarker::CUBE);
    EXPECT_EQ(marker->getId(), 7);
    expectSize(marker, 2);
    expectColour(marker, SbColor(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(materialOf(marker)->specularColor[0], SbColor(1, 1, 1));
    EXPECT_EQ(materialOf(marker)->emissiveColor[0], SbColor(0, 0, 0));
    EXPECT_EQ(materialOf(marker)->transparency[0], 0.25f);
}

TEST_F(SoMarkerTest, CreatedByNameIsAWhiteTransparentSphere)
{
    NodeRef<SoMarker> made(static_cast<SoMarker*>(SoMarker::getClassTypeId().createInstance()));
    EXPECT_EQ(outline(made), outline(marker));
    EXPECT_EQ(made->getId(), -1);
    expectColour(made, SbColor(1, 1, 1));
    expectSize(made, 1);
    EXPECT_EQ(made->getTransparency(), 1);
    EXPECT_EQ(made->getShape(), SoMarker::SPHERE);
}

TEST_F(SoMarkerTest, CrossIsMadeOfBarsAlongZYAndX)
{
    const SbVec3f directions[] = {{0, 0, 1}, {0, 1, 0}, {1, 0, 0}};
    for (int i = 0; i < 3; ++i) {
        SCOPED_TRACE(i);
        auto* bar = childOf<SoArrow>(crossOf(marker), 1 + i);
        EXPECT_EQ(childOf<SoTranslation>(bar, 0)->translation.getValue(), SbVec3f(0, 0, 0));
        SbVec3f direction;
        childOf<SoRotation>(bar, 1)->rotation.getValue().multVec(SbVec3f(0, 1, 0), direction);
        expectNear(direction, directions[i]);
        auto* shaft = childOf<SoSeparator>(bar, 2);
        EXPECT_EQ(childOf<SoTranslation>(shaft, 0)->translation.getValue(), SbVec3f(0, 0, 0));
        EXPECT_EQ(childOf<SoCylinder>(shaft, 1)->radius.getValue(), 0.2f);
        EXPECT_EQ(childOf<SoCylinder>(shaft, 1)->height.getValue(), 1.6f);
    }
}

TEST_F(SoMarkerTest, IdIsAnyNumber)
{
    for (long long id : {0LL, -5LL, 1LL << 40, LLONG_MAX, LLONG_MIN}) {
        marker->setId(id);
        EXPECT_EQ(marker->getId(), id);
    }
}

TEST_F(SoMarkerTest, ShapesThatDoNotExistAreIgnored)
{
    for (SoMarker::Shape shape : {SoMarker::SPHERE, SoMarker::CROSS, SoMarker::CUBE}) {
        marker->setShape(shape);
        EXPECT_EQ(marker->getShape(), shape);
        for (int none : {3, 4, -1, 1000, -1000}) {
            marker->setShape(SoMarker::Shape(none));
            EXPECT_EQ(marker->getShape(), shape);
            EXPECT_EQ(switchOf(marker)->whichChild.getValue(), shape);
        }
    }
}

TEST_F(SoMarkerTest, MarkerMadeWithoutAShapeShowsNone)
{
    for (int none : {3, 5, -1}) {
        NodeRef<SoMarker> empty(new SoMarker(1, {1, 1, 1}, 1, 0, SoMarker::Shape(none)));
        EXPECT_EQ(switchOf(empty)->whichChild.getValue(), SO_SWITCH_NONE);
        EXPECT_EQ(int(empty->getShape()), -1);
        EXPECT_TRUE(boxOf(empty).isEmpty());
        empty->setShape(SoMarker::CROSS);
        EXPECT_EQ(empty->getShape(), SoMarker::CROSS);
    }
}

TEST_F(SoMarkerTest, SizeIsPositive)
{
    const struct
    {
        double asked;
        float set;
    } cases[] = {{3, 3}, {-2, 2}, {0, 1}, {-0.0, 1}, {0.125, 0.125f}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.asked);
        marker->setSize(c.asked);
        expectSize(marker, c.set);
        NodeRef<SoMarker> made(new SoMarker(1, {1, 1, 1}, c.asked, 0, SoMarker::CUBE));
        expectSize(made, c.set);
    }
}

TEST_F(SoMarkerTest, ShapesHaveTheirSize)
{
    const struct
    {
        SoMarker::Shape shape;
        float half;
    } cases[] = {{SoMarker::SPHERE, 1}, {SoMarker::CUBE, 1}, {SoMarker::CROSS, 1.6f}};
    for (const auto& c : cases) {
        marker->setShape(c.shape);
        expectNear(boxOf(marker).getMin(), SbVec3f(-c.half, -c.half, -c.half));
        expectNear(boxOf(marker).getMax(), SbVec3f(c.half, c.half, c.half));
    }
}

TEST_F(SoMarkerTest, TransparencyOutsideOfZeroToOneIsIgnored)
{
    for (double transparency : {0.5, 0.0, 1.0, 0.75}) {
        marker->setTransparency(transparency);
        EXPECT_EQ(marker->getTransparency(), transparency);
        for (double bad : {1.5, 1.0000001, -0.0000001, -1.0, NOT_A_NUMBER}) {
            marker->setTransparency(bad);
            EXPECT_EQ(marker->getTransparency(), transparency);
            EXPECT_EQ(materialOf(marker)->transparency.getNum(), 1);
        }
    }
}

TEST_F(SoMarkerTest, TransparencyOfANewMarkerIsStoredAsItIs)
{
    for (double transparency : {1.5, -0.5}) {
        NodeRef<SoMarker> made(new SoMarker(1, {1, 1, 1}, 1, transparency, SoMarker::CUBE));
        EXPECT_EQ(made->getTransparency(), transparency);
    }
}

TEST_F(SoMarkerTest, ColourIsThatOfAmbientAndDiffuseLight)
{
    marker->setColour(0.2, 0.4, 0.6);
    expectColour(marker, SbColor(0.2f, 0.4f, 0.6f));
    EXPECT_EQ(materialOf(marker)->specularColor[0], SbColor(1, 1, 1));
    EXPECT_EQ(marker->getTransparency(), 0.25);
}

TEST_F(SoMarkerTest, HoldsItsShapesAndTheGraphHoldsTheRest)
{
    EXPECT_EQ(materialOf(marker)->getRefCount(), 1);
    EXPECT_EQ(switchOf(marker)->getRefCount(), 1);
    NodeRef<SoSphere> sphere(sphereOf(marker));
    NodeRef<SoCube> cube(cubeOf(marker));
    NodeRef<SoSeparator> cross(crossOf(marker));
    NodeRef<SoScale> scale(scaleOf(marker));
    for (SoNode* node : {(SoNode*)sphere, (SoNode*)cube, (SoNode*)cross, (SoNode*)scale})
        EXPECT_EQ(node->getRefCount(), 3); // the graph, the marker, this test

    // They can be taken out of the switch and still be set.
    switchOf(marker)->removeAllChildren();
    marker->setSize(5);
    EXPECT_EQ(sphere->radius.getValue(), 2.5f);
    EXPECT_EQ(scale->scaleFactor.getValue(), SbVec3f(5, 5, 5));
}

TEST_F(SoMarkerTest, ReleasesItsShapesWithItself)
{
    auto* gone = new SoMarker(1, {1, 1, 1}, 1, 0, SoMarker::CUBE);
    gone->ref();
    NodeRef<SoSphere> sphere(sphereOf(gone));
    NodeRef<SoCube> cube(cubeOf(gone));
    NodeRef<SoSeparator> cross(crossOf(gone));
    NodeRef<SoScale> scale(scaleOf(gone));
    gone->unref();
    EXPECT_EQ(sphere->getRefCount(), 1);
    EXPECT_EQ(cube->getRefCount(), 1);
    EXPECT_EQ(cross->getRefCount(), 1);
    EXPECT_EQ(scale->getRefCount(), 2); // in the cross still
}

TEST_F(SoMarkerTest, CopyIsAMarkerOfItsOwn)
{
    NodeRef<SoMarker> copy(static_cast<SoMarker*>(marker->copy()));
    EXPECT_EQ(outline(copy), outline(marker));
    EXPECT_EQ(copy->getId(), 7);
    expectSize(copy, 2);
    expectColour(copy, SbColor(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(copy->getShape(), SoMarker::CUBE);
    EXPECT_EQ(sphereOf(copy)->getRefCount(), 2);
    EXPECT_EQ(scaleOf(copy)->getRefCount(), 2);

    copy->setSize(4);
    copy->setColour(1, 0, 0);
    copy->setTransparency(0.5);
    copy->setShape(SoMarker::CROSS);
    expectSize(copy, 4);
    expectColour(copy, SbColor(1, 0, 0));
    expectSize(marker, 2);
    expectColour(marker, SbColor(0.1f, 0.2f, 0.3f));
    EXPECT_EQ(marker->getTransparency(), 0.25);
    EXPECT_EQ(marker->getShape(), SoMarker::CUBE);
}

TEST_F(SoMarkerTest, WrappedItStandsBehindAPlaceAndAScale)
{
    NodeRef<SoScale> scale(new SoScale);
    SoSeparator* made = SoMarker::wrap(marker, scale, {1, 2, 3});
    EXPECT_EQ(made->getRefCount(), 0);
    NodeRef<SoSeparator> placed(made);
    EXPECT_EQ(placed->getTypeId(), SoSeparator::getClassTypeId());
    ASSERT_EQ(placed->getNumChildren(), 3);
    EXPECT_EQ(childOf<SoTranslation>(placed, 0)->translation.getValue(), SbVec3f(1, 2, 3));
    EXPECT_EQ(placed->getChild(1), static_cast<SoNode*>(scale));
    EXPECT_EQ(placed->getChild(2), static_cast<SoNode*>(marker));
}

TEST_F(SoMarkerTest, OneScaleIsThatOfAllMarkersThatShareIt)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    auto* scale = new SoScale;
    scene->addChild(SoMarker::wrap(marker, scale, {10, 0, 0}));
    scene->addChild(
        SoMarker::wrap(new SoMarker(8, {1, 1, 1}, 4, 0, SoMarker::SPHERE), scale, {-10, 0, 0}));
    expectNear(boxOf(scene).getMax(), SbVec3f(11, 2, 2));
    expectNear(boxOf(scene).getMin(), SbVec3f(-12, -2, -2));
    scale->scaleFactor = SbVec3f(0.5f, 0.5f, 0.5f);
    expectNear(boxOf(scene).getMax(), SbVec3f(10.5f, 1, 1));
    expectNear(boxOf(scene).getMin(), SbVec3f(-11, -1, -1));
}

TEST_F(SoMarkerTest, PickedMarkersAreToldApartByTheirIds)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    auto* scale = new SoScale;
    for (int i = 0; i < SoMarker::NUM_SHAPES; ++i)
        scene->addChild(SoMarker::wrap(new SoMarker(100 + i, {1, 1, 1}, 1, 0, SoMarker::Shape(i)),
                                       scale, {3.0 * i, 0, 0}));
    for (int i = 0; i < SoMarker::NUM_SHAPES; ++i) {
        SoRayPickAction action(viewport);
        action.setRay(SbVec3f(3.0f * i + 0.05f, 0.05f, 5), SbVec3f(0, 0, -1));
        action.apply(scene);
        const SoPickedPoint* picked = action.getPickedPoint();
        ASSERT_NE(picked, nullptr);
        const SoPath* path = picked->getPath();
        const int index = path->findNode(childOf<SoMarker>(scene->getChild(i), 2));
        ASSERT_GE(index, 0);
        EXPECT_EQ(static_cast<SoMarker*>(path->getNode(index))->getId(), 100 + i);
    }
}

TEST_F(SoMarkerTest, NumbersThatAreNoneDoNotHarmIt)
{
    marker->setSize(NOT_A_NUMBER);
    marker->setColour(NOT_A_NUMBER, 0, 0);
    for (int i = 0; i < SoMarker::NUM_SHAPES; ++i) {
        marker->setShape(SoMarker::Shape(i));
        EXPECT_TRUE(renderPicture(marker, 20, 20).isRendered());
    }
    marker->setSize(3);
    expectSize(marker, 3);
}

// 1 wide, which is 50 pixels, in red.
class MarkerPicture : public FlatPictureTest
{
protected:
    SoMarker* marker = new SoMarker(1, {1, 0, 0}, 1, 0, SoMarker::SPHERE);

    void SetUp() override
    {
        FlatPictureTest::SetUp();
        material->diffuseColor = SbColor(0, 1, 0); // not the marker's
        scene->addChild(marker);
    }
};

TEST_F(MarkerPicture, SphereIsADiscOnEverySide)
{
    for (const SbVec3f& side : {SbVec3f(0, 0, 1), SbVec3f(-1, 0, 0), SbVec3f(0.6f, 0.8f, 0)}) {
        lookFrom(side, SbVec3f(0, 0.1f, 1));
        const Picture picture = render();
        EXPECT_LT(picture.count(RED), M_PI * 25.5 * 25.5);
        EXPECT_GT(picture.count(RED), M_PI * 24 * 24); // a polyhedron
        EXPECT_EQ(picture.count(RED), picture.countOther(BLACK));
    }
}

TEST_F(MarkerPicture, CubeIsASquareAlongItsAxesAndWiderAcross)
{
    marker->setShape(SoMarker::CUBE);
    expectArea(render().count(RED), 50, 50);
    lookFrom(SbVec3f(1, 0, 0), SbVec3f(0, 0, 1));
    expectArea(render().count(RED), 50, 50);
    lookFrom(SbVec3f(std::sqrt(0.5f), 0, std::sqrt(0.5f)), SbVec3f(0, 1, 0));
    expectArea(render().count(RED), 50 * std::sqrt(2), 50);
}

TEST_F(MarkerPicture, CrossIsTwoBarsAlongEachAxis)
{
    marker->setShape(SoMarker::CROSS);
    for (const SbVec3f& side : {SbVec3f(0, 0, 1), SbVec3f(-1, 0, 0), SbVec3f(0, -1, 0)}) {
        lookFrom(side, SbVec3f(side[2], side[0], side[1]));
        const Picture picture = render();
        // Bars of 80 by 20 pixels, and the third one's end between them.
        for (int k : {12, 30, 70, 87}) {
            EXPECT_EQ(picture.getColour(k, 50), RED);
            EXPECT_EQ(picture.getColour(50, k), RED);
        }
        EXPECT_EQ(picture.getColour(50, 50), RED);
        EXPECT_EQ(picture.getColour(30, 58), RED);
        EXPECT_EQ(picture.getColour(30, 62), BLACK);
        EXPECT_EQ(picture.getColour(92, 50), BLACK);
        EXPECT_EQ(picture.getColour(50, 7), BLACK);
        EXPECT_NEAR(picture.count(RED), 2 * 80 * 20 - 20 * 20, 150);
    }
}

TEST_F(MarkerPicture, SettersActAtTheNextRender)
{
    marker->setShape(SoMarker::CUBE);
    marker->setSize(0.5);
    expectArea(render().count(RED), 25, 25);
    marker->setColour(0, 1, 0);
    expectArea(render().count(GREEN), 25, 25);
    marker->setSize(1.2);
    expectArea(render().count(GREEN), 60, 60);
}
