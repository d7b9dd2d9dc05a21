// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoSeeThrough.h"

#include <cmath>
#include <memory>

#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <OffscreenContext.h>
#include <SoRod.h>
#include <gtest/gtest.h>

#include "support/initialiseSceneOnce.h"
#include "support/renderPicture.h"

namespace strandview {

namespace {

using algebra3d::Quaternion;

const int SIZE = 120;

// A straight rod along x at that height, 2 long, 0.5 thick.
SoRod* makeRod(double z)
{
    auto* rod = new SoRod(0.5, 0.6, 24, 4, true, false, false);
    const double s = std::sqrt(0.5);
    rod->setData({{-2, 0, z}, {0, 0, z}, {2, 0, z}},
                 std::vector<Quaternion<double>>(3, Quaternion<double>(0, s, 0, s)));
    return rod;
}

class SoSeeThroughTest : public testing::Test
{
protected:
    SoSeeThroughTest()
    {
        initialiseSceneOnce();
        OffscreenContext::install();
        renderer = std::make_unique<SoOffscreenRenderer>(SbViewportRegion(SIZE, SIZE));
        root = new SoSeparator;
        root->ref();
        camera = new SoOrthographicCamera;
        camera->height = 3;
        root->addChild(camera);
        root->addChild(new SoDirectionalLight);
    }
    ~SoSeeThroughTest() override { root->unref(); }

    // With a material of its own, opaque by itself.
    SoSeparator* addRod(double z, const SbColor& colour, double transparency)
    {
        auto* material = new SoMaterial;
        material->diffuseColor = colour;
        auto* through = new SoSeeThrough;
        through->setTransparency(transparency);
        auto* datum = new SoSeparator;
        datum->addChild(material);
        datum->addChild(makeRod(z));
        through->addChild(datum);
        root->addChild(through);
        return through;
    }
    // Turned about x by that angle, as the action sorts it.
    ::Picture
    render(double angle,
           SoGLRenderAction::TransparencyType type = SoGLRenderAction::SORTED_OBJECT_BLEND)
    {
        const SbRotation turned(SbVec3f(1, 0, 0), float(angle));
        camera->orientation = turned;
        SbVec3f away;
        turned.multVec(SbVec3f(0, 0, 8), away);
        camera->position = away;
        camera->nearDistance = 1;
        camera->farDistance = 20;
        renderer->getGLRenderAction()->setTransparencyType(type);
        return renderPicture(*renderer, root);
    }
    static ::Colour middleOf(const ::Picture& picture)
    {
        return picture.getColour(SIZE / 2, SIZE / 2);
    }

    std::unique_ptr<SoOffscreenRenderer> renderer;
    SoSeparator* root;
    SoOrthographicCamera* camera;
};

} // namespace

TEST_F(SoSeeThroughTest, WhatIsBehindIsSeenFromBothSides)
{
    addRod(-1.5, SbColor(1, 0, 0), 0.5);
    addRod(1.5, SbColor(0, 0, 1), 0.5);
    const ::Colour above = middleOf(render(0)), below = middleOf(render(M_PI));
    EXPECT_GT(above[2], above[0] + 20) << "the blue one is in front";
    EXPECT_GT(above[0], 20);
    EXPECT_GT(below[0], below[2] + 20) << "the red one is in front";
    EXPECT_GT(below[2], 20);
}

TEST_F(SoSeeThroughTest, TheNearSideOfATubeIsBeforeItsFarSideFromEverywhere)
{
    addRod(0, SbColor(0.2f, 0.6f, 0.9f), 0.4);
    for (int step = 0; step < 12; ++step) {
        const double angle = step * M_PI / 6;
        const ::Picture sorted =
            render(angle, SoGLRenderAction::SORTED_OBJECT_SORTED_TRIANGLE_BLEND);
        const Difference difference = compare(render(angle), sorted);
        EXPECT_GT(difference.covered, 2000) << step;
        EXPECT_LT(difference.strong, difference.covered / 50) << step << " " << difference;
    }
}

TEST_F(SoSeeThroughTest, ItsTransparencyIsThatOfWhatIsInIt)
{
    SoSeparator* const rod = addRod(0, SbColor(1, 1, 1), 0);
    const ::Colour opaque = middleOf(render(0));
    static_cast<SoSeeThrough*>(rod)->setTransparency(1);
    EXPECT_EQ(middleOf(render(0)), (::Colour{0, 0, 0}));
    static_cast<SoSeeThrough*>(rod)->setTransparency(0.5);
    const ::Colour half = middleOf(render(0));
    EXPECT_GT(half[0], 40);
    EXPECT_LT(half[0], opaque[0] - 20);
}

} // namespace strandview
