// SPDX-License-Identifier: GPL-3.0-or-later
// Whole pictures in tiles are in PictureWriterTest.cpp.
#include "pictures/TileRenderer.h"

#include <array>
#include <cstdint>
#include <vector>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTranslation.h>
#include <gtest/gtest.h>

#include "support/initialiseSceneOnce.h"

namespace strandview {

namespace {

const int WIDTH = 60, HEIGHT = 40;
const Colour BLUE{0, 0, 1};

using Sample = std::array<int, 3>;
const Sample IN_RED{255, 0, 0}, IN_BLUE{0, 0, 255};

// A red square from sample 10 to 30 across and 10 to 20 up, seen in parallel, one sample a unit.
class TileRendererTest : public testing::Test
{
protected:
    TileRendererTest()
    {
        initialiseSceneOnce();
        scene = new SoSeparator;
        scene->ref();
        auto* camera = new SoOrthographicCamera;
        camera->position = SbVec3f(WIDTH / 2, HEIGHT / 2, 50);
        camera->height = HEIGHT;
        camera->nearDistance = 1;
        camera->farDistance = 100;
        camera->viewportMapping = SoCamera::LEAVE_ALONE;
        camera->aspectRatio = float(WIDTH) / HEIGHT;
        scene->addChild(camera);
        auto* unlit = new SoLightModel;
        unlit->model = SoLightModel::BASE_COLOR;
        scene->addChild(unlit);
        auto* red = new SoBaseColor;
        red->rgb = SbColor(1, 0, 0);
        scene->addChild(red);
        auto* place = new SoTranslation;
        place->translation = SbVec3f(20, 15, 0);
        scene->addChild(place);
        auto* cube = new SoCube;
        cube->width = 20;
        cube->height = 10;
        scene->addChild(cube);
    }
    ~TileRendererTest() override { scene->unref(); }

    // The samples of a tile, upwards.
    std::vector<Sample> render(int left, int below, const SbVec2s& tile)
    {
        TileRenderer renderer(SbViewportRegion(WIDTH, HEIGHT), WIDTH, HEIGHT, tile);
        EXPECT_TRUE(renderer.render(scene, left, below, BLUE));
        return readTwice(renderer, tile);
    }

    // All rows of a tile, in two calls.
    static std::vector<Sample> readTwice(const TileRenderer& renderer, const SbVec2s& tile)
    {
        const int count = tile[0] * tile[1];
        std::vector<std::uint32_t> all(count);
        const int first = tile[1] / 3;
        renderer.read(0, first, all.data());
        renderer.read(first, tile[1] - first, &all[first * tile[0]]);
        std::vector<Sample> samples;
        for (const std::uint32_t sample : all)
            samples.push_back({int(sample >> 16 & 255), int(sample >> 8 & 255), int(sample & 255)});
        return samples;
    }

    // What a tile is to show.
    static Sample expected(int x, int y)
    {
        return x >= 10 && x < 30 && y >= 10 && y < 20 ? IN_RED : IN_BLUE;
    }

    void expectTile(int left, int below, const SbVec2s& tile)
    {
        const std::vector<Sample> samples = render(left, below, tile);
        for (int y = 0; y < tile[1]; ++y) {
            for (int x = 0; x < tile[0]; ++x)
                ASSERT_EQ(samples[std::size_t(y) * tile[0] + x], expected(left + x, below + y))
                    << left + x << ", " << below + y;
        }
    }

    SoSeparator* scene;
};

TEST_F(TileRendererTest, OneTileOfThePicturesSizeIsThePicture)
{
    expectTile(0, 0, SbVec2s(WIDTH, HEIGHT));
}

TEST_F(TileRendererTest, ATileShowsItsPartOfThePicture)
{
    for (const int left : {0, 15, 40}) {
        for (const int below : {0, 5, 20})
            expectTile(left, below, SbVec2s(20, 10));
    }
}

TEST_F(TileRendererTest, ATileMayReachBeyondThePicture)
{
    expectTile(-5, -7, SbVec2s(20, 20));
    expectTile(WIDTH - 10, HEIGHT - 10, SbVec2s(20, 20));
}

TEST_F(TileRendererTest, NeighboursNeedNoRendererOfTheirOwn)
{
    const SbVec2s tile(20, 20);
    TileRenderer renderer(SbViewportRegion(WIDTH, HEIGHT), WIDTH, HEIGHT, tile);
    int red = 0;
    for (int below = 0; below < HEIGHT; below += tile[1]) {
        for (int left = 0; left < WIDTH; left += tile[0]) {
            ASSERT_TRUE(renderer.render(scene, left, below, BLUE));
            for (const Sample& sample : readTwice(renderer, tile))
                red += sample == IN_RED;
        }
    }
    EXPECT_EQ(red, 20 * 10);
}

} // namespace

} // namespace strandview
