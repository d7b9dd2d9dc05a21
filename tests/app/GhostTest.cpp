// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Ghost.h"

#include <memory>
#include <string>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <gtest/gtest.h>

#include "request/thingTexts.h"
#include "scene/DataScene.h"
#include "scene/SceneBuilder.h"
#include "support/StoppingAt.h"
#include "support/initialiseSceneOnce.h"
#include "support/renderPicture.h"

namespace strandview {

namespace {

using Points = std::vector<algebra3d::Vector3<double>>;

Rod rodThrough(const Points& points)
{
    Rod rod;
    rod.points = points;
    rod.rotations.assign(points.size(), algebra3d::Quaternion<double>(-0.5, 0.5, -0.5, 0.5));
    return rod;
}

// Two rods beside each other, straight; compared with those where the first rises to a peak.
Configuration straightBesidePeak(double height)
{
    const Points straight{{-1, 0, 0}, {0, 0, 0}, {1, 0, 0}};
    const Points beside{{-1, -5, 0}, {0, -5, 0}, {1, -5, 0}};
    Configuration data{{rodThrough(straight), rodThrough(beside)}};
    Configuration reference = data;
    reference.rods[0].points[1].y += height;
    data.reference = std::make_shared<const Configuration>(reference);
    return data;
}

class GhostTest : public testing::Test
{
protected:
    GhostTest()
    {
        initialiseSceneOnce();
        options.compare = "reference.json";
        options.showGhost = true;
        options.radius = 0.05;
    }
    ~GhostTest() override
    {
        if (scene)
            scene->unref();
    }

    void build(const Configuration& data)
    {
        StoppingAt never;
        std::string error;
        scene = buildScene(data, makeStyle(options, data), nullptr, never, error);
        ASSERT_NE(scene, nullptr) << error;
        scene->ref();
    }

    bool isPicked(double x, double y) const
    {
        SoRayPickAction pick(SbViewportRegion(100, 100));
        pick.setRay(SbVec3f(float(x), float(y), 50), SbVec3f(0, 0, -1));
        pick.apply(scene);
        return pick.getPickedPoint();
    }
    float top() const { return scene->getBox().getMax()[1]; }

    Options options;
    DataScene* scene = nullptr;
};

} // namespace

TEST_F(GhostTest, IsInTheBoxAndNoThing)
{
    build(straightBesidePeak(3));
    EXPECT_EQ(scene->getThings().size(), 2u);
    EXPECT_GT(top(), 1.5f);
}

TEST_F(GhostTest, NobodyPicksIt)
{
    const Configuration data = straightBesidePeak(3);
    build(data);
    EXPECT_TRUE(isPicked(0.5, 0)) << "the rod";
    const SbVec3f peak = scene->getBox().getMax();
    const double step = 0.01;
    for (double y = 0.1; y < double(peak[1]); y += step)
        EXPECT_FALSE(isPicked(0, y)) << y;
}

TEST_F(GhostTest, GoesWithWhatIsComparedAndComesBackWithIt)
{
    build(straightBesidePeak(3));
    const float with = top();
    ThingLooks looks;
    ASSERT_EQ(readThings("rod 1: hidden", looks), "");
    scene->setLooks(looks);
    EXPECT_LT(top(), -4.0f) << "the other rod and its ghost";
    scene->setLooks({});
    EXPECT_EQ(top(), with);
    ASSERT_EQ(readThings("rod 2: hidden", looks = {}), "");
    scene->setLooks(looks);
    EXPECT_EQ(top(), with) << "of the first rod";
}

TEST_F(GhostTest, FollowsTheFramesAndGoesWhereThereIsNone)
{
    build(straightBesidePeak(3));
    const float high = top();
    StoppingAt never;
    ASSERT_EQ(updateScene(*scene, straightBesidePeak(6), never), "");
    EXPECT_GT(top(), high + 1);
    Configuration alone = straightBesidePeak(3);
    alone.reference.reset();
    ASSERT_EQ(updateScene(*scene, alone, never), "");
    EXPECT_LT(top(), 0.1f);
    ASSERT_EQ(updateScene(*scene, straightBesidePeak(3), never), "");
    EXPECT_EQ(top(), high);
}

TEST_F(GhostTest, NeedsRoomWhetherItIsHiddenOrNot)
{
    const Configuration data = straightBesidePeak(3);
    StoppingAt never;
    std::string error;
    ASSERT_EQ(readThings("rod 1: hidden", options.things), "");
    const Style style = makeStyle(options, data);
    SceneGeometry geometry = computeGeometry(data, style, never, error);
    const Reach reach = findReach(data, style, geometry, never);
    EXPECT_GT(reach.all.getMax()[1], 1.5f);
    EXPECT_LT(reach.shown.getMax()[1], -4.0f);
}

} // namespace strandview
