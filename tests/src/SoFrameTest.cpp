// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoFrame.h>

#include <limits>

#include <Inventor/nodes/SoCone.h>
#include <Inventor/nodes/SoCylinder.h>
#include <Inventor/nodes/SoRotation.h>
#include <Inventor/nodes/SoTranslation.h>

#include "support/FlatPictureTest.h"
#include "support/nodeFacts.h"
#include "support/nodeGraph.h"

namespace {

// The order of the axes in the graph is y, z, x.
enum Axis { Y, Z, X };

SoMaterial* materialOf(SoNode* frame, Axis axis)
{
    return childOf<SoMaterial>(childOf<SoSeparator>(frame, axis), 0);
}

void expectColours(SoNode* frame, Axis axis, const SbColor& colour)
{
    SoMaterial* material = materialOf(frame, axis);
    for (SoMFColor* field : {&material->ambientColor, &material->diffuseColor}) {
        ASSERT_EQ(field->getNum(), 1);
        EXPECT_EQ((*field)[0], colour);
    }
    EXPECT_EQ(material->specularColor[0], SbColor(1, 1, 1));
    EXPECT_EQ(material->transparency[0], 0);
}

void expectTransparency(SoNode* frame, float transparency)
{
    for (Axis axis : {Y, Z, X}) {
        ASSERT_EQ(materialOf(frame, axis)->transparency.getNum(), 1);
        EXPECT_EQ(materialOf(frame, axis)->transparency[0], transparency) << axis;
    }
}

const char* const ARROW = "Separator(Separator(Translation Cylinder) Separator(Translation Cone))";

} // namespace

class SoFrameTest : public CoinTest
{
protected:
    NodeRef<SoFrame> frame{new SoFrame({0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}, {0.7, 0.8, 0.9})};
};

TEST_F(SoFrameTest, IsASeparatorWithoutFieldsOfItsOwn)
{
    EXPECT_EQ(frame->getTypeId(), SoFrame::getClassTypeId());
    expectSeparatorClass(frame, "SoFrame");
}

TEST_F(SoFrameTest, AxesStandInTheOrderYZX)
{
    const std::string arrow = ARROW;
    EXPECT_EQ(outline(frame), "SoFrame(Separator(Material " + arrow +
                                  ") Separator(Material Rotation " + arrow +
                                  ") Separator(Material Rotation " + arrow + "))");
    expectColours(frame, Y, SbColor(0.4f, 0.5f, 0.6f));
    expectColours(frame, Z, SbColor(0.7f, 0.8f, 0.9f));
    expectColours(frame, X, SbColor(0.1f, 0.2f, 0.3f));
}

TEST_F(SoFrameTest, CreatedByNameIsRedGreenAndBlue)
{
    NodeRef<SoNode> made(static_cast<SoNode*>(SoFrame::getClassTypeId().createInstance()));
    EXPECT_EQ(outline(made), outline(frame));
    expectColours(made, X, SbColor(1, 0, 0));
    expectColours(made, Y, SbColor(0, 1, 0));
    expectColours(made, Z, SbColor(0, 0, 1));
}

TEST_F(SoFrameTest, AxesShareOneUnitArrow)
{
    auto* arrow = childOf<SoSeparator>(childOf<SoSeparator>(frame, Y), 1);
    EXPECT_EQ(childOf<SoSeparator>(childOf<SoSeparator>(frame, Z), 2), arrow);
    EXPECT_EQ(childOf<SoSeparator>(childOf<SoSeparator>(frame, X), 2), arrow);

    auto* shaft = childOf<SoSeparator>(arrow, 0);
    EXPECT_EQ(childOf<SoTranslation>(shaft, 0)->translation.getValue(), SbVec3f(0, 0.375f, 0));
    EXPECT_EQ(childOf<SoCylinder>(shaft, 1)->radius.getValue(), 0.05f);
    EXPECT_EQ(childOf<SoCylinder>(shaft, 1)->height.getValue(), 0.75f);
    auto* head = childOf<SoSeparator>(arrow, 1);
    EXPECT_EQ(childOf<SoTranslation>(head, 0)->translation.getValue(), SbVec3f(0, 0.875f, 0));
    EXPECT_EQ(childOf<SoCone>(head, 1)->bottomRadius.getValue(), 0.1f);
    EXPECT_EQ(childOf<SoCone>(head, 1)->height.getValue(), 0.25f);
}

TEST_F(SoFrameTest, RotationsTurnYOntoTheOtherAxes)
{
    const auto turned = [this](Axis axis) {
        SbVec3f direction;
        childOf<SoRotation>(childOf<SoSeparator>(frame, axis), 1)
            ->rotation.getValue()
            .multVec(SbVec3f(0, 1, 0), direction);
        return direction;
    };
    expectNear(turned(Z), SbVec3f(0, 0, 1));
    expectNear(turned(X), SbVec3f(1, 0, 0));
}

TEST_F(SoFrameTest, TransparencyIsThatOfAllAxesAndClamped)
{
    const struct
    {
        double asked;
        float set;
    } cases[] = {{0.25, 0.25f},
                 {2, 1},
                 {-1, 0},
                 {1, 1},
                 {0, 0},
                 {std::numeric_limits<double>::infinity(), 1},
                 {std::numeric_limits<double>::quiet_NaN(), 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.asked);
        frame->setTransparency(0.5);
        expectTransparency(frame, 0.5f);
        frame->setTransparency(c.asked);
        expectTransparency(frame, c.set);
    }
}

TEST_F(SoFrameTest, ReachesFromTheOriginToOneAlongEachAxis)
{
    // The heads' radius of 0.1 is hidden behind the ends; the shafts are 0.05 thick.
    expectNear(boxOf(frame).getMax(), SbVec3f(1, 1, 1));
    expectNear(boxOf(frame).getMin(), SbVec3f(-0.1f, -0.1f, -0.1f));
}

TEST_F(SoFrameTest, CopyIsAFrameOfItsOwn)
{
    frame->setTransparency(0.25);
    NodeRef<SoFrame> copy(static_cast<SoFrame*>(frame->copy()));
    EXPECT_EQ(outline(copy), outline(frame));
    expectTransparency(copy, 0.25f);
    copy->setTransparency(0.75);
    expectTransparency(copy, 0.75f);
    expectTransparency(frame, 0.25f);
}

using FramePicture = FlatPictureTest;

TEST_F(FramePicture, ShowsTheTwoAxesAcrossTheViewAndTheHeadOfTheOneAlongIt)
{
    scene->addChild(new SoFrame({1, 0, 0}, {0, 1, 0}, {0, 0, 1}));
    const Colour blue = {0, 0, 255};
    camera->height = 4; // 25 pixels to a unit
    const struct
    {
        SbVec3f side, up;
        Colour right, above, middle;
    } views[] = {{{0, 0, 1}, {0, 1, 0}, RED, GREEN, blue},
                 {{1, 0, 0}, {0, 0, 1}, GREEN, blue, RED},
                 {{0, 1, 0}, {1, 0, 0}, blue, RED, GREEN}};
    for (const auto& view : views) {
        SCOPED_TRACE(testing::Message() << view.side[0] << view.side[1] << view.side[2]);
        lookFrom(view.side, view.up);
        const Picture picture = render();
        EXPECT_EQ(picture.getColour(65, 50), view.right);
        EXPECT_EQ(picture.getColour(70, 51), view.right);
        EXPECT_EQ(picture.getColour(76, 50), BLACK);
        EXPECT_EQ(picture.getColour(35, 50), BLACK);
        EXPECT_EQ(picture.getColour(50, 65), view.above);
        EXPECT_EQ(picture.getColour(50, 76), BLACK);
        EXPECT_EQ(picture.getColour(50, 35), BLACK);
        EXPECT_EQ(picture.getColour(50, 50), view.middle);
        EXPECT_EQ(picture.getColour(49, 49), view.middle);
    }
}
