// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Stamp.h"

#include <algorithm>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoSeparator.h>
#include <gtest/gtest.h>

#include "support/initialiseSceneOnce.h"

namespace strandview {

namespace {

template <typename Node>
const Node& partOf(SoNode* stamp)
{
    const auto* group = static_cast<SoSeparator*>(stamp);
    for (int i = 0; i < group->getNumChildren(); ++i)
        if (group->getChild(i)->isOfType(Node::getClassTypeId()))
            return *static_cast<const Node*>(group->getChild(i));
    throw std::logic_error("no such part");
}

struct TextReach
{
    float left = 1e9f, right = -1e9f, bottom = 1e9f, top = -1e9f;
};

TextReach reachOf(const std::string& text, float size, float aspect,
                  StampPlace place = StampPlace::UPPER_LEFT)
{
    initialiseSceneOnce();
    SoNode* stamp = makeStamp(text, {1, 1, 1}, size, aspect, place);
    stamp->ref();
    const SoMFVec3f& corners = partOf<SoCoordinate3>(stamp).point;
    TextReach reach;
    for (int i = 0; i < corners.getNum(); ++i) {
        reach.left = std::min(reach.left, corners[i][0]);
        reach.right = std::max(reach.right, corners[i][0]);
        reach.bottom = std::min(reach.bottom, corners[i][1]);
        reach.top = std::max(reach.top, corners[i][1]);
    }
    stamp->unref();
    return reach;
}

} // namespace

TEST(Stamp, TellsFrameAndTimeWhereItIsKnown)
{
    EXPECT_EQ(stampText(12, 0.48), "frame 12, t = 0.48");
    EXPECT_EQ(stampText(0, 1e-12 / 3), "frame 0, t = 3.33333×10⁻¹³");
    EXPECT_EQ(stampText(7, {}), "frame 7");
}

// The view is 2 high from -1 on and wider, or 2 wide and higher.
TEST(Stamp, StandsInTheUpperLeftCornerOfEveryShapeOfView)
{
    for (const float aspect : {0.5f, 1.0f, 1.5f, 4.0f}) {
        const TextReach reach = reachOf("frame 12", 0.1f, aspect);
        const float left = -std::max(1.0f, aspect), top = 2 * std::max(1.0f, 1 / aspect) - 1;
        EXPECT_GT(reach.left, left + 0.04f) << aspect;
        EXPECT_LT(reach.left, left + 0.08f) << aspect;
        EXPECT_LT(reach.top, top - 0.04f) << aspect;
        EXPECT_GT(reach.top, top - 0.08f) << aspect;
        EXPECT_GT(reach.bottom, top - 0.2f) << aspect;
    }
}

TEST(Stamp, StandsInTheLowerLeftCornerWhereItIsAskedTo)
{
    for (const float aspect : {0.5f, 1.0f, 4.0f}) {
        const TextReach reach = reachOf("frames, 12", 0.1f, aspect, StampPlace::LOWER_LEFT);
        const float left = -std::max(1.0f, aspect);
        EXPECT_GT(reach.left, left + 0.04f) << aspect;
        EXPECT_LT(reach.left, left + 0.08f) << aspect;
        EXPECT_GT(reach.bottom, -1 + 0.04f) << aspect << ", with the comma";
        EXPECT_LT(reach.top, -1 + 0.2f) << aspect;
    }
}

TEST(Stamp, StandsInTheLowerRightCornerWhereItIsAskedTo)
{
    for (const float aspect : {0.5f, 1.0f, 4.0f}) {
        const TextReach reach = reachOf("frames, 12", 0.1f, aspect, StampPlace::LOWER_RIGHT);
        const float right = std::max(1.0f, aspect);
        EXPECT_LT(reach.right, right - 0.04f) << aspect;
        EXPECT_GT(reach.right, right - 0.08f) << aspect;
        EXPECT_GT(reach.bottom, -1 + 0.04f) << aspect << ", with the comma";
        EXPECT_LT(reach.top, -1 + 0.2f) << aspect;
    }
}

TEST(Stamp, IsNoWiderThanTheView)
{
    EXPECT_LT(reachOf(std::string(200, 'x'), 0.1f, 1.5f).right, 1.5f);
}

TEST(Stamp, IsReadOnItsBackground)
{
    initialiseSceneOnce();
    const auto inkOn = [](const Colour& background) {
        SoNode* stamp = makeStamp("frame 1", background, 0.05f, 1);
        stamp->ref();
        const SbColor ink = partOf<SoBaseColor>(stamp).rgb[0];
        stamp->unref();
        return ink;
    };
    EXPECT_EQ(inkOn({1, 1, 1}), SbColor(0, 0, 0));
    EXPECT_EQ(inkOn({0, 0, 0.2f}), SbColor(1, 1, 1));
}

} // namespace strandview
