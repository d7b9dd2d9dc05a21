// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoOverlay.h"

#include <functional>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoPath.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <gtest/gtest.h>

#include "support/initialiseSceneOnce.h"

namespace strandview {

namespace {

// A scene that is nothing but an overlay with a camera and a cube.
class SoOverlayTest : public testing::Test
{
protected:
    SoOverlayTest()
    {
        initialiseSceneOnce();
        scene = new SoSeparator;
        scene->ref();
        overlay = new SoOverlay;
        scene->addChild(overlay);
        camera = new SoOrthographicCamera;
        camera->position = SbVec3f(0, 0, 5);
        camera->setName("OverlayCamera");
        overlay->addChild(camera);
        overlay->addChild(new SoCube);
    }
    ~SoOverlayTest() override { scene->unref(); }

    // How many paths are found, in every way of searching.
    int countFound(const std::function<void(SoSearchAction&)>& ask)
    {
        int found = 0;
        for (const auto interest :
             {SoSearchAction::FIRST, SoSearchAction::LAST, SoSearchAction::ALL}) {
            for (const SbBool all : {FALSE, TRUE}) {
                SoSearchAction search;
                ask(search);
                search.setInterest(interest);
                search.setSearchingAll(all);
                search.apply(scene);
                found += interest == SoSearchAction::ALL ? search.getPaths().getLength()
                                                         : search.getPath() != nullptr;
            }
        }
        return found;
    }

    SoSeparator* scene;
    SoOverlay* overlay;
    SoCamera* camera;
};

TEST_F(SoOverlayTest, ItsCameraIsFoundByNoSearch)
{
    EXPECT_EQ(countFound([](auto& s) { s.setType(SoCamera::getClassTypeId()); }), 0);
    EXPECT_EQ(countFound([](auto& s) { s.setType(SoOrthographicCamera::getClassTypeId(), FALSE); }),
              0);
    EXPECT_EQ(countFound([this](auto& s) { s.setNode(camera); }), 0);
    EXPECT_EQ(countFound([](auto& s) { s.setName("OverlayCamera"); }), 0);
}

TEST_F(SoOverlayTest, NothingElseInItIsFound)
{
    EXPECT_EQ(countFound([](auto& s) { s.setType(SoShape::getClassTypeId()); }), 0);
    // The root and the overlay, by each of FIRST, LAST and ALL, twice.
    EXPECT_EQ(countFound([](auto& s) { s.setType(SoNode::getClassTypeId()); }), 2 * (1 + 1 + 2));
}

TEST_F(SoOverlayTest, IsFoundItself)
{
    EXPECT_EQ(countFound([](auto& s) { s.setType(SoOverlay::getClassTypeId()); }), 6);
    EXPECT_EQ(countFound([this](auto& s) { s.setNode(overlay); }), 6);
}

TEST_F(SoOverlayTest, HidesNoCameraOfTheScene)
{
    auto* sceneCamera = new SoPerspectiveCamera;
    scene->addChild(sceneCamera);
    SoSearchAction search;
    search.setType(SoCamera::getClassTypeId());
    search.apply(scene);
    ASSERT_TRUE(search.getPath());
    EXPECT_EQ(search.getPath()->getTail(), sceneCamera);
}

TEST_F(SoOverlayTest, HasNoExtentAndIsNotPicked)
{
    SoGetBoundingBoxAction bounds(SbViewportRegion(100, 100));
    bounds.apply(scene);
    EXPECT_TRUE(bounds.getBoundingBox().isEmpty());

    SoRayPickAction pick(SbViewportRegion(100, 100));
    pick.setRay(SbVec3f(0, 0, 5), SbVec3f(0, 0, -1));
    pick.apply(scene);
    EXPECT_EQ(pick.getPickedPoint(), nullptr);
}

} // namespace

} // namespace strandview
