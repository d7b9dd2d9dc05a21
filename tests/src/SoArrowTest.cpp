// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoArrow.h>

#include <array>

#include <cmath>
#include <limits>

#include <Inventor/nodes/SoCone.h>
#include <Inventor/nodes/SoCylinder.h>
#include <Inventor/nodes/SoRotation.h>
#include <Inventor/nodes/SoTranslation.h>

#include "support/FlatPictureTest.h"
#include "support/RandomRods.h"
#include "support/nodeFacts.h"
#include "support/nodeGraph.h"

using Vector = algebra3d::Vector3<double>;

namespace {

const double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// Where the turned y axis points.
SbVec3f directionOf(SoNode* arrow)
{
    SbVec3f direction;
    childOf<SoRotation>(arrow, 1)->rotation.getValue().multVec(SbVec3f(0, 1, 0), direction);
    return direction;
}

void expectHead(SoNode* part, float radius, float height, float y)
{
    EXPECT_EQ(outline(part), "Separator(Translation Cone)");
    EXPECT_EQ(childOf<SoTranslation>(part, 0)->translation.getValue(), SbVec3f(0, y, 0));
    EXPECT_EQ(childOf<SoCone>(part, 1)->bottomRadius.getValue(), radius);
    EXPECT_EQ(childOf<SoCone>(part, 1)->height.getValue(), height);
}

void expectShaft(SoNode* part, float radius, float height, float y)
{
    EXPECT_EQ(outline(part), "Separator(Translation Cylinder)");
    EXPECT_EQ(childOf<SoTranslation>(part, 0)->translation.getValue(), SbVec3f(0, y, 0));
    EXPECT_EQ(childOf<SoCylinder>(part, 1)->radius.getValue(), radius);
    EXPECT_EQ(childOf<SoCylinder>(part, 1)->height.getValue(), height);
}

} // namespace

using SoArrowTest = CoinTest;

TEST_F(SoArrowTest, IsASeparatorWithoutFieldsOfItsOwn)
{
    NodeRef<SoArrow> arrow(new SoArrow({0, 0, 0}, {0, 1, 0}, 0.1, 0.2, 0.3));
    EXPECT_EQ(arrow->getTypeId(), SoArrow::getClassTypeId());
    expectSeparatorClass(arrow, "SoArrow");
}

TEST_F(SoArrowTest, CreatedByNameIsAUnitCylinderAlongY)
{
    NodeRef<SoNode> made(static_cast<SoNode*>(SoArrow::getClassTypeId().createInstance()));
    ASSERT_EQ(outline(made), "SoArrow(Translation Rotation Separator(Translation Cylinder))");
    EXPECT_EQ(childOf<SoTranslation>(made, 0)->translation.getValue(), SbVec3f(0, 0.5f, 0));
    expectNear(directionOf(made), SbVec3f(0, 1, 0));
    expectShaft(childOf<SoSeparator>(made, 2), 0.1f, 1, 0);
}

TEST_F(SoArrowTest, HeadAndShaftShareTheLength)
{
    NodeRef<SoArrow> arrow(new SoArrow({0, 0, 0}, {0, 0, 2}, 0.1, 0.2, 0.5));
    ASSERT_EQ(outline(arrow), "SoArrow(Translation Rotation Separator(Translation Cone) "
                              "Separator(Translation Cylinder))");
    EXPECT_EQ(childOf<SoTranslation>(arrow, 0)->translation.getValue(), SbVec3f(0, 0, 1));
    expectNear(directionOf(arrow), SbVec3f(0, 0, 1));
    expectHead(childOf<SoSeparator>(arrow, 2), 0.2f, 0.5f, 0.75f);
    expectShaft(childOf<SoSeparator>(arrow, 3), 0.1f, 1.5f, -0.25f);
}

TEST_F(SoArrowTest, HeadThatIsTooLongTakesTheWholeArrow)
{
    for (double headLength : {1.0, 3.0}) {
        SCOPED_TRACE(headLength);
        NodeRef<SoArrow> arrow(new SoArrow({0, 0, 0}, {0, 1, 0}, 0.1, 0.2, headLength));
        ASSERT_EQ(outline(arrow), "SoArrow(Translation Rotation Separator(Translation Cone))");
        expectHead(childOf<SoSeparator>(arrow, 2), 0.2f, 1, 0);
    }
}

TEST_F(SoArrowTest, WithoutAHeadItIsACylinderOfTheWholeLength)
{
    NodeRef<SoArrow> bar(new SoArrow({1, 1, 1}, {1, 4, 5}, 0.2, 0, 0));
    ASSERT_EQ(outline(bar), "SoArrow(Translation Rotation Separator(Translation Cylinder))");
    EXPECT_EQ(childOf<SoTranslation>(bar, 0)->translation.getValue(), SbVec3f(1, 2.5f, 3));
    expectShaft(childOf<SoSeparator>(bar, 2), 0.2f, 5, 0);
}

TEST_F(SoArrowTest, HeadWithoutARadiusStillShortensTheShaft)
{
    for (double headRadius : {0.0, -1.0}) {
        NodeRef<SoArrow> arrow(new SoArrow({0, 0, 0}, {0, 2, 0}, 0.1, headRadius, 0.5));
        ASSERT_EQ(outline(arrow), "SoArrow(Translation Rotation Separator(Translation Cylinder))");
        expectShaft(childOf<SoSeparator>(arrow, 2), 0.1f, 1.5f, -0.25f);
    }
}

TEST_F(SoArrowTest, WithoutALengthItHasNeitherHeadNorShaft)
{
    for (double headLength : {0.0, 0.5}) {
        NodeRef<SoArrow> arrow(new SoArrow({1, 2, 3}, {1, 2, 3}, 0.1, 0.2, headLength));
        ASSERT_EQ(outline(arrow), "SoArrow(Translation Rotation)");
        EXPECT_EQ(childOf<SoTranslation>(arrow, 0)->translation.getValue(), SbVec3f(1, 2, 3));
        const SbRotation rotation = childOf<SoRotation>(arrow, 1)->rotation.getValue();
        for (int k = 0; k < 4; ++k)
            EXPECT_TRUE(std::isfinite(rotation.getValue()[k]));
        EXPECT_TRUE(boxOf(arrow).isEmpty());
    }
}

TEST_F(SoArrowTest, NumbersThatAreNoneDrawNothing)
{
    for (const Vector& to : {Vector(NOT_A_NUMBER, 0, 0), Vector(0, 0, NOT_A_NUMBER)}) {
        NodeRef<SoArrow> arrow(new SoArrow({0, 0, 0}, to, 0.1, 0.2, 0.5));
        EXPECT_EQ(outline(arrow), "SoArrow(Translation Rotation)");
        EXPECT_TRUE(boxOf(arrow).isEmpty());
    }
}

TEST_F(SoArrowTest, PointsFromOneEndToTheOther)
{
    RandomNumbers random(7);
    for (int i = 0; i < 50; ++i) {
        SCOPED_TRACE(i);
        // The first ones along the axes, both ways.
        const Vector along[] = {{0, 1, 0},  {0, -1, 0}, {1, 0, 0},
                                {-1, 0, 0}, {0, 0, 1},  {0, 0, -1}};
        const Vector unit = i < 6 ? along[i] : random.unitVector();
        const Vector from(random.uniform(-2, 2), random.uniform(-2, 2), random.uniform(-2, 2));
        const double length = random.uniform(0.5, 3);
        NodeRef<SoArrow> arrow(new SoArrow(from, from + length * unit, 0.1, 0.2, 0.4));
        expectNear(directionOf(arrow), SbVec3f(float(unit.x), float(unit.y), float(unit.z)));
        expectShaft(childOf<SoSeparator>(arrow, 3), 0.1f, float(length - 0.4), -0.2f);
        expectHead(childOf<SoSeparator>(arrow, 2), 0.2f, 0.4f, float((length - 0.4) / 2));
    }
}

TEST_F(SoArrowTest, FillsTheSpaceBetweenItsEnds)
{
    // The head's base, radius 0.2, is the widest.
    NodeRef<SoArrow> arrow(new SoArrow({-1, 2, 3}, {1, 2, 3}, 0.1, 0.2, 0.5));
    expectNear(boxOf(arrow).getMin(), SbVec3f(-1, 1.8f, 2.8f));
    expectNear(boxOf(arrow).getMax(), SbVec3f(1, 2.2f, 3.2f));
}

TEST_F(SoArrowTest, LeavesWhatFollowsWhereItWas)
{
    NodeRef<SoSeparator> scene(new SoSeparator);
    scene->addChild(new SoArrow({5, 5, 5}, {5, 6, 5}, 0.1, 0, 0));
    const SbBox3f arrow = boxOf(scene);
    scene->addChild(new SoArrow({5, 5, 5}, {5, 6, 5}, 0.1, 0, 0));
    EXPECT_EQ(boxOf(scene), arrow);
}

TEST_F(SoArrowTest, SetAnewIsTheArrowOfTheSameValuesAndTheSameNode)
{
    // One after the other: with both parts, all head, all shaft, nothing.
    NodeRef<SoArrow> arrow(new SoArrow({0, 0, 0}, {1, 0, 0}, 0.1, 0.2, 0.4));
    const std::array<double, 3> forms[] = {
        {0.1, 0.2, 0.4}, {0.1, 0.2, 9}, {0.1, 0, 0}, {0.3, 0.5, 1}};
    for (const auto& [shaft, head, length] : forms) {
        for (const Vector& to : {Vector(1, 2, 3), Vector(0, -4, 0), Vector(1, 0, 0)}) {
            const auto before = arrow->getNodeId();
            arrow->setArrow({1, 0, 0}, to, shaft, head, length);
            EXPECT_NE(arrow->getNodeId(), before);
            NodeRef<SoArrow> anew(new SoArrow({1, 0, 0}, to, shaft, head, length));
            EXPECT_EQ(outline(arrow), outline(anew));
            EXPECT_EQ(boxOf(arrow), boxOf(anew));
        }
    }
}

using ArrowPicture = FlatPictureTest;

TEST_F(ArrowPicture, HeadIsBroadAtItsBaseAndSharpAtTheEnd)
{
    // From x = -0.8 to 0.8; the head is the last 0.4, its base of radius 0.3 at x = 0.4.
    scene->addChild(new SoArrow({-0.8, 0, 0}, {0.8, 0, 0}, 0.1, 0.3, 0.4));
    for (const SbVec3f& side : {SbVec3f(0, 0, 1), SbVec3f(0, 1, 0), SbVec3f(0, -1, 0)}) {
        SCOPED_TRACE(testing::Message() << side[0] << " " << side[1] << " " << side[2]);
        // x to the right on every side.
        lookFrom(side, side.cross(SbVec3f(1, 0, 0)));
        const Picture picture = render();
        EXPECT_EQ(picture.getColour(12, 50), RED);
        EXPECT_EQ(picture.getColour(7, 50), BLACK);
        EXPECT_EQ(picture.getColour(88, 50), RED);
        EXPECT_EQ(picture.getColour(92, 50), BLACK);
        EXPECT_EQ(picture.getColour(40, 53), RED);
        EXPECT_EQ(picture.getColour(40, 57), BLACK); // beside the shaft
        EXPECT_EQ(picture.getColour(72, 62), RED);   // the head's base
        EXPECT_EQ(picture.getColour(85, 62), BLACK); // beside its tip
        EXPECT_EQ(picture.getColour(68, 62), BLACK); // behind the base
    }
}
