// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoPlacedSolids.h"

#include <algorithm>
#include <random>
#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbMatrix.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/actions/SoGetPrimitiveCountAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/details/SoFaceDetail.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoVertexProperty.h>
#include <OffscreenContext.h>
#include <gmock/gmock.h>

#include "scene/SoSeeThrough.h"
#include "support/initialiseSceneOnce.h"
#include "support/renderPicture.h"

namespace strandview {

namespace {

using Place = SoPlacedSolids::Place;

// A box about the origin, its sides of two brightnesses.
Solid makeBox(const SbVec3f& half)
{
    Solid solid;
    for (int axis = 0; axis < 3; ++axis)
        for (const float side : {-1.0f, 1.0f}) {
            SbVec3f normal(0, 0, 0);
            normal[axis] = side;
            const auto first = std::uint32_t(solid.corners.size());
            for (const auto& [u, v] : {std::pair(-1, -1), {1, -1}, {1, 1}, {-1, 1}}) {
                SbVec3f point;
                point[axis] = side * half[axis];
                point[(axis + 1) % 3] = float(u) * half[(axis + 1) % 3] * side;
                point[(axis + 2) % 3] = float(v) * half[(axis + 2) % 3];
                solid.corners.push_back({point, normal, axis == 0 ? 0.5f : 1.0f});
            }
            for (const std::uint32_t corner : {0, 1, 2, 0, 2, 3})
                solid.triangles.push_back(first + corner);
        }
    return solid;
}

std::vector<Solid> someSolids()
{
    return {makeBox({0.3f, 0.2f, 0.1f}), makeBox({0.1f, 0.1f, 0.4f})};
}

std::vector<Place> somePlaces(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> number(-1, 1);
    std::vector<Place> places;
    for (std::size_t i = 0; i < count; ++i) {
        const SbVec3f point(4 * number(random), 4 * number(random), 4 * number(random));
        const SbRotation rotation(SbVec3f(number(random), number(random), 1), 3 * number(random));
        const Colour colour{(1 + number(random)) / 2, (1 + number(random)) / 2, 0.5f};
        places.push_back({point, rotation, colour, std::uint32_t(random() % 2)});
    }
    return places;
}

// The same faces, written out.
SoIndexedFaceSet* facesOf(const std::vector<Solid>& solids, const std::vector<Place>& places)
{
    std::vector<SbVec3f> points, normals;
    std::vector<std::uint32_t> colours;
    std::vector<std::int32_t> indices;
    for (const Place& place : places) {
        const Solid& solid = solids[place.solid];
        SbMatrix matrix;
        matrix.setTransform(place.point, place.rotation, SbVec3f(1, 1, 1));
        for (std::size_t i = 0; i < solid.triangles.size(); ++i) {
            indices.push_back(std::int32_t(points.size() + solid.triangles[i]));
            if (i % 3 == 2)
                indices.push_back(SO_END_FACE_INDEX);
        }
        for (const Solid::Corner& corner : solid.corners) {
            SbVec3f point, normal;
            matrix.multVecMatrix(corner.point, point);
            matrix.multDirMatrix(corner.normal, normal);
            points.push_back(point);
            normals.push_back(normal);
            const SbColor colour(place.colour.red, place.colour.green, place.colour.blue);
            colours.push_back(SbColor(colour * corner.brightness).getPackedValue());
        }
    }
    auto* vertices = new SoVertexProperty;
    vertices->normalBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    vertices->materialBinding = SoVertexProperty::PER_VERTEX_INDEXED;
    vertices->vertex.setValues(0, int(points.size()), points.data());
    vertices->normal.setValues(0, int(normals.size()), normals.data());
    vertices->orderedRGBA.setValues(0, int(colours.size()), colours.data());
    auto* faces = new SoIndexedFaceSet;
    faces->vertexProperty = vertices;
    faces->coordIndex.setValues(0, int(indices.size()), indices.data());
    return faces;
}

class SoPlacedSolidsTest : public testing::Test
{
protected:
    static void SetUpTestSuite() // the renderer needs it
    {
        initialiseSceneOnce();
        OffscreenContext::install();
    }

    SoPlacedSolidsTest()
    {
        scene = new SoSeparator;
        scene->ref();
        auto* camera = new SoOrthographicCamera;
        camera->position = SbVec3f(0, 0, 20);
        camera->height = 12;
        camera->nearDistance = 10;
        camera->farDistance = 30;
        scene->addChild(camera);
        scene->addChild(new SoDirectionalLight);
        solids = new SoPlacedSolids;
        scene->addChild(solids);
    }
    ~SoPlacedSolidsTest() override { scene->unref(); }

    Picture drawn(SoNode* shape)
    {
        scene->replaceChild(2, shape);
        return renderPicture(renderer, scene);
    }

    SoSeparator* scene;
    SoPlacedSolids* solids;
    SoOffscreenRenderer renderer{SbViewportRegion(200, 200)};
};

} // namespace

TEST_F(SoPlacedSolidsTest, ThePictureIsThatOfTheSameFacesHoweverOftenItIsDrawn)
{
    solids->ref();
    for (const unsigned seed : {1u, 2u}) { // the second in the place of the first
        const auto places = somePlaces(900, seed);
        const Picture expected = drawn(facesOf(someSolids(), places));
        ASSERT_GT(expected.countOther({0, 0, 0}), 4000);
        solids->setPlaces(someSolids(), places);
        for (int time = 0; time < 12; ++time) { // from memory, then from buffers
            const Difference difference = compare(drawn(solids), expected);
            ASSERT_EQ(difference.pixels, 0) << difference << ", time " << time;
        }
    }
    solids->setPlaces({}, {});
    EXPECT_EQ(drawn(solids).countOther({0, 0, 0}), 0);
    solids->unref();
}

TEST_F(SoPlacedSolidsTest, ItsBoxAndItsTrianglesAreThoseOfTheSameFaces)
{
    const auto places = somePlaces(50, 3);
    solids->setPlaces(someSolids(), places);
    SoIndexedFaceSet* const faces = facesOf(someSolids(), places);
    faces->ref();
    SoGetBoundingBoxAction found(renderer.getViewportRegion()),
        expected(renderer.getViewportRegion());
    found.apply(solids);
    expected.apply(faces);
    EXPECT_EQ(found.getBoundingBox().getMin(), expected.getBoundingBox().getMin());
    EXPECT_EQ(found.getBoundingBox().getMax(), expected.getBoundingBox().getMax());
    SoGetPrimitiveCountAction count;
    count.apply(solids);
    EXPECT_EQ(count.getTriangleCount(), 50 * 12);
    faces->unref();
}

TEST_F(SoPlacedSolidsTest, APickedFaceTellsItsPlace)
{
    std::vector<Place> places;
    for (int i = 0; i < 5; ++i)
        places.push_back({SbVec3f(float(i - 2), 0, 0), SbRotation::identity(), {}, 0});
    solids->setPlaces(someSolids(), places);
    for (int i = 0; i < 5; ++i) {
        SoRayPickAction pick(renderer.getViewportRegion());
        pick.setRay(SbVec3f(float(i - 2) + 0.1f, 0.05f, 5), SbVec3f(0, 0, -1));
        pick.apply(scene);
        ASSERT_TRUE(pick.getPickedPoint());
        const SoDetail* const detail = pick.getPickedPoint()->getDetail();
        ASSERT_TRUE(detail && detail->isOfType(SoFaceDetail::getClassTypeId()));
        EXPECT_EQ(static_cast<const SoFaceDetail*>(detail)->getFaceIndex() / 12, i);
    }
}

TEST_F(SoPlacedSolidsTest, ACopyShowsTheSame)
{
    solids->setPlaces(someSolids(), somePlaces(40, 4));
    const Picture expected = drawn(solids);
    auto* copy = static_cast<SoPlacedSolids*>(solids->copy());
    EXPECT_EQ(copy->getPlaces().size(), 40u);
    EXPECT_EQ(compare(drawn(copy), expected).pixels, 0);
}

TEST_F(SoPlacedSolidsTest, AreSeenThroughAsWhatTheyAreInSaysAlsoOnceTheyWereDrawnOften)
{
    solids->setPlaces(someSolids(), somePlaces(20, 3));
    auto* through = new SoSeeThrough;
    through->ref();
    through->addChild(solids);
    const int all = drawn(through).countOther(BLACK);
    EXPECT_GT(all, 300);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(drawn(through).countOther(BLACK), all);
    const Picture opaque = drawn(through);
    through->setTransparency(0.5);
    const Picture half = drawn(through);
    EXPECT_EQ(half.countOther(BLACK), all);
    EXPECT_GT(compare(opaque, half).strong, all / 2);
    through->setTransparency(1);
    EXPECT_EQ(drawn(through).countOther(BLACK), 0);
    through->setTransparency(0);
    EXPECT_EQ(compare(drawn(through), opaque).pixels, 0);
    through->unref();
}

TEST_F(SoPlacedSolidsTest, WhatIsNearerIsBlendedLaterInWhateverOrderPlacesAre)
{
    renderer.getGLRenderAction()->setTransparencyType(SoGLRenderAction::SORTED_OBJECT_BLEND);
    const Place red{{0, 0, 2}, SbRotation::identity(), {1, 0, 0}, 0},
        green{{0, 0, -2}, SbRotation::identity(), {0, 1, 0}, 0};
    auto* through = new SoSeeThrough;
    through->ref();
    through->setTransparency(0.3);
    through->addChild(solids);
    solids->setPlaces(someSolids(), {green, red});
    const Picture farFirst = drawn(through);
    const ::Colour middle = farFirst.getColour(100, 100);
    EXPECT_GT(middle[0], middle[1] + 20);
    EXPECT_GT(middle[1], 20);
    solids->setPlaces(someSolids(), {red, green});
    EXPECT_EQ(compare(drawn(through), farFirst).pixels, 0);

    std::vector<Place> many = somePlaces(200, 5);
    solids->setPlaces(someSolids(), many);
    const Picture all = drawn(through);
    std::reverse(many.begin(), many.end());
    solids->setPlaces(someSolids(), many);
    EXPECT_EQ(compare(drawn(through), all).pixels, 0);
    through->unref();
}

} // namespace strandview
