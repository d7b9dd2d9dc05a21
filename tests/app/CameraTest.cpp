// SPDX-License-Identifier: GPL-3.0-or-later
#include "camera/Camera.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTranslation.h>
#include <gmock/gmock.h>
#include <toCoin.h>

#include "support/initialiseSceneOnce.h"

namespace strandview {

namespace {

const std::vector<Side> SIDES{Side::X,       Side::MINUS_X, Side::Y,
                              Side::MINUS_Y, Side::Z,       Side::MINUS_Z};

const std::vector<SbVec2s> SIZES{{400, 300}, {300, 400}, {256, 256}, {900, 30}};

// Where the box's corners are: x and y from 0 to 1 across the view, and their depths.
struct Seen
{
    SbVec3f lowest{INFINITY, INFINITY, INFINITY};
    SbVec3f highest{-INFINITY, -INFINITY, -INFINITY};
};

class CameraTest : public testing::Test
{
protected:
    CameraTest() { initialiseSceneOnce(); }

    ~CameraTest() override
    {
        if (scene)
            scene->unref();
    }

    // A scene that is a box away from the origin.
    void makeScene(const SbVec3f& size)
    {
        if (scene)
            scene->unref();
        scene = new SoSeparator;
        scene->ref();
        auto* place = new SoTranslation;
        place->translation = SbVec3f(3, -1, 2);
        scene->addChild(place);
        auto* cube = new SoCube;
        cube->width = size[0];
        cube->height = size[1];
        cube->depth = size[2];
        scene->addChild(cube);
        for (int i = 0; i < 8; ++i) {
            corners[i] = SbVec3f(3, -1, 2) + 0.5f * SbVec3f(i & 1 ? size[0] : -size[0],
                                                            i & 2 ? size[1] : -size[1],
                                                            i & 4 ? size[2] : -size[2]);
        }
    }

    // As Coin itself projects with the camera.
    Seen look(const SoCamera& camera, const SbVec2s& size) const
    {
        SbViewportRegion region(size);
        const SbViewVolume volume = camera.getViewVolume(region, region);
        Seen seen;
        for (const SbVec3f& corner : corners) {
            SbVec3f at;
            volume.projectToScreen(corner, at);
            SbVec3f direction;
            camera.orientation.getValue().multVec(SbVec3f(0, 0, -1), direction);
            at[2] = direction.dot(corner - camera.position.getValue());
            for (int i = 0; i < 3; ++i) {
                seen.lowest[i] = std::min(seen.lowest[i], at[i]);
                seen.highest[i] = std::max(seen.highest[i], at[i]);
            }
        }
        return seen;
    }

    // What is a part of the shorter side.
    static float ofWidth(float part, const SbVec2s& size)
    {
        return part * float(std::min(size[0], size[1])) / float(size[0]);
    }

    static void expectInView(const Seen& seen, const SoCamera& camera, const FreeEdges& edges,
                             const SbVec2s& size, float slack)
    {
        EXPECT_GE(seen.lowest[0], ofWidth(edges.left, size) - slack);
        EXPECT_LE(seen.highest[0], 1 - ofWidth(edges.right, size) + slack);
        EXPECT_GE(seen.lowest[1], edges.bottom - slack);
        EXPECT_LE(seen.highest[1], 1 - edges.top + slack);
        EXPECT_GE(seen.lowest[2], camera.nearDistance.getValue());
    }

    using Check =
        std::function<void(const CameraRequest&, const SbVec2s& size, const FreeEdges& edges)>;

    // Scenes of boxes of several shapes, each from every side in views of these sizes with more and
    // less room below and above.
    void forEachView(const std::vector<SbVec2s>& sizes, const Check& check)
    {
        for (const SbVec3f& box :
             {SbVec3f(2, 2, 2), {10, 1, 0.1f}, {0.1f, 8, 1}, {1e-3f, 2e-3f, 1e-3f}}) {
            makeScene(box);
            for (const bool perspective : {false, true}) {
                for (const Side side : SIDES) {
                    CameraRequest request;
                    request.side = side;
                    request.perspective = perspective;
                    for (const SbVec2s& size : sizes) {
                        for (const FreeEdges& edges : {FreeEdges(),
                                                       {0.12f, 0},
                                                       {0.5f, 0},
                                                       {0, 0.12f},
                                                       {0.3f, 0.1f},
                                                       {0, 0, 0.25f, 0},
                                                       {0, 0, 0, 0.4f}}) {
                            SCOPED_TRACE(testing::Message()
                                         << (perspective ? "perspective" : "orthographic")
                                         << " side " << int(side) << ", " << size[0] << "x"
                                         << size[1] << ", free " << edges.bottom << " and "
                                         << edges.top << ", " << edges.left << " and "
                                         << edges.right << ", box " << box[0]);
                            check(request, size, edges);
                        }
                    }
                }
            }
        }
    }

    SoSeparator* scene = nullptr;
    SbVec3f corners[8];
};

TEST_F(CameraTest, FitsTheWholeBoxFromEverySideIntoAnyView)
{
    std::vector<SbVec2s> sizes = SIZES;
    sizes.insert(sizes.end(), {{30, 900}, {1000, 1}, {1, 1000}});
    forEachView(sizes, [&](const CameraRequest& request, const SbVec2s& size,
                           const FreeEdges& edges) {
        SoCamera* camera = makeCamera(request, scene, SbViewportRegion(size), edges);
        camera->ref();
        const Seen seen = look(*camera, size);
        expectInView(seen, *camera, edges, size, 2e-4f);
        EXPECT_LE(seen.highest[2], camera->farDistance.getValue());
        // Sideways in the middle; and it fills the view in one direction.
        const float left = ofWidth(edges.left, size);
        const float right = ofWidth(edges.right, size);
        const bool isInMiddle = !request.isPerspective() || left == right;
        EXPECT_NEAR(seen.lowest[0] + seen.highest[0], 1 + left - right, isInMiddle ? 1e-3 : 0.3);
        const float width = (seen.highest[0] - seen.lowest[0]) / (1 - left - right);
        const float height = (seen.highest[1] - seen.lowest[1]) / (1 - edges.both());
        EXPECT_GT(std::max(width, height), request.isPerspective() ? 0.6f : 0.94f);
        camera->unref();
    });
}

TEST_F(CameraTest, WithRoomToTurnTheWholeBoxIsInViewAllTheWayRound)
{
    forEachView(SIZES, [&](CameraRequest request, const SbVec2s& size, const FreeEdges& edges) {
        const SbBox3f filled(corners[0], corners[7]);
        const SbViewportRegion region(size);
        const CameraNumbers fitted = numbersFor(request, filled, region, edges);
        const SbVec3f axis = axisToTurn(request, fitted);
        const CameraNumbers start = withRoomToTurn(fitted, filled, axis, region, edges);
        EXPECT_LT(start.focalDistance, 40 * fitted.focalDistance);
        for (int i = 0; i < 24; ++i) {
            request.numbers = turnedAround(start, filled.getCenter(), axis, 2 * M_PI * i / 24);
            SoCamera* camera = makeCamera(request, scene, region, edges);
            camera->ref();
            expectInView(look(*camera, size), *camera, edges, size, 1e-3f);
            camera->unref();
        }
    });
}

TEST_F(CameraTest, ACameraThatHasRoomToTurnStaysWhereItIs)
{
    makeScene(SbVec3f(1, 8, 1));
    const SbBox3f filled(corners[0], corners[7]);
    const SbViewportRegion region(400, 300);
    for (const bool perspective : {false, true}) {
        CameraRequest request;
        request.perspective = perspective;
        const CameraNumbers fitted = numbersFor(request, filled, region, 0.1f);
        EXPECT_EQ(withRoomToTurn(fitted, filled, axisToTurn(request, fitted), region, 0.1f),
                  fitted);
    }
}

TEST_F(CameraTest, TurningGoesToTheRightAtOneDistanceAndComesBack)
{
    const SbBox3f box(2, -2, 1, 4, 0, 3);
    const SbViewportRegion region(400, 300);
    const std::vector<std::pair<Side, Side>> quarters{{Side::X, Side::Y},
                                                      {Side::Y, Side::MINUS_X},
                                                      {Side::MINUS_X, Side::MINUS_Y},
                                                      {Side::MINUS_Y, Side::X}};
    const auto expectSame = [](const CameraNumbers& a, const CameraNumbers& b) {
        double dot = 0;
        for (std::size_t i = 0; i < 4; ++i)
            dot += double(a.orientation[i]) * double(b.orientation[i]);
        EXPECT_NEAR(std::abs(dot), 1, 1e-6);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(a.position[i], b.position[i], 1e-5);
        EXPECT_NEAR(a.size, b.size, 1e-5);
        EXPECT_NEAR(a.focalDistance, b.focalDistance, 1e-5);
    };
    for (const auto& [side, right] : quarters) {
        CameraRequest from, to;
        from.side = side;
        to.side = right;
        const CameraNumbers start = numbersFor(from, box, region, 0);
        const SbVec3f axis = axisToTurn(from, start);
        expectSame(turnedAround(start, box.getCenter(), axis, M_PI / 2),
                   numbersFor(to, box, region, 0));
        expectSame(turnedAround(start, box.getCenter(), axis, 2 * M_PI), start);
    }
}

TEST_F(CameraTest, AFittedOrthographicBoxLeavesTheMarginOnly)
{
    makeScene(SbVec3f(4, 3, 2));
    SoCamera* camera = makeCamera({}, scene, SbViewportRegion(400, 300), 0);
    camera->ref();
    const Seen seen = look(*camera, SbVec2s(400, 300));
    EXPECT_NEAR(seen.highest[0] - seen.lowest[0], 1 / 1.05, 1e-4);
    EXPECT_NEAR(seen.highest[1] - seen.lowest[1], 1 / 1.05, 1e-4);
    camera->unref();
}

TEST_F(CameraTest, AMarginIsAPartOfTheShorterSideAtTheBordersThatAreReached)
{
    forEachView(SIZES, [&](CameraRequest request, const SbVec2s& size, const FreeEdges& edges) {
        for (const double margin : {0.0, 0.05, 0.2}) {
            request.margin = margin;
            SoCamera* camera = makeCamera(request, scene, SbViewportRegion(size), edges);
            camera->ref();
            const Seen seen = look(*camera, size);
            const float pixels = float(margin) * float(std::min(size[0], size[1]));
            const float left = (seen.lowest[0] - ofWidth(edges.left, size)) * float(size[0]);
            const float right = (1 - ofWidth(edges.right, size) - seen.highest[0]) * float(size[0]);
            const float below = (seen.lowest[1] - edges.bottom) * float(size[1]);
            const float above = (1 - edges.top - seen.highest[1]) * float(size[1]);
            const float slack = 1e-3f * float(std::max(size[0], size[1]));
            EXPECT_NEAR(std::min({left, right, below, above}), pixels, slack);
            if (!request.perspective || edges.left == edges.right) {
                EXPECT_NEAR(left, right, slack);
            }
            camera->unref();
        }
    });
}

TEST_F(CameraTest, ZoomMultipliesWhatIsSeenAboutWhereItsMiddleIs)
{
    forEachView(SIZES, [&](CameraRequest request, const SbVec2s& size, const FreeEdges& edges) {
        SbViewportRegion region(size); // which Coin's view volumes may change
        const SbVec3f middle(3, -1, 2);
        const auto placesOf = [&](double zoom) {
            request.zoom = zoom;
            SoCamera* camera = makeCamera(request, scene, region, edges);
            camera->ref();
            const SbViewVolume volume = camera->getViewVolume(region, region);
            std::vector<SbVec3f> places(9);
            for (std::size_t i = 0; i < 9; ++i)
                volume.projectToScreen(i < 8 ? corners[i] : middle, places[i]);
            camera->unref();
            return places;
        };
        const auto once = placesOf(1), thrice = placesOf(3);
        // Where it leaves something free a perspective camera moves there a little.
        const bool isExact[] = {!request.perspective || edges.left == edges.right,
                                !request.perspective || edges.bottom == edges.top};
        for (std::size_t i = 0; i < 8; ++i)
            for (const int axis : {0, 1})
                if (isExact[axis]) {
                    EXPECT_NEAR(thrice[i][axis] - thrice[8][axis],
                                3 * (once[i][axis] - once[8][axis]), 2e-3);
                }
        if (!request.perspective) {
            EXPECT_NEAR(thrice[8][1], once[8][1], 1e-3) << "between what is left free";
        }
    });
}

TEST_F(CameraTest, TheCentreIsInTheMiddleAndEverythingInFrontOfTheCamera)
{
    forEachView(SIZES, [&](CameraRequest request, const SbVec2s& size, const FreeEdges& edges) {
        SbViewportRegion region(size); // which Coin's view volumes may change
        for (const auto& centre : {CameraRequest::Vector(3, -1, 2), {3.4, -1, 2}, {-20, 5, 30}})
            for (const double zoom : {1.0, 4.0}) {
                request.centre = centre;
                request.zoom = zoom;
                SoCamera* camera = makeCamera(request, scene, region, edges);
                camera->ref();
                SbVec3f place;
                camera->getViewVolume(region, region).projectToScreen(toSbVec3f(centre), place);
                EXPECT_NEAR(place[0], 0.5, 1e-3);
                EXPECT_NEAR(place[1], 0.5, 1e-3);
                EXPECT_GE(look(*camera, size).lowest[2], camera->nearDistance.getValue());
                camera->unref();
            }
    });
}

TEST_F(CameraTest, TheCentreAloneMovesThePictureAndChangesNoSize)
{
    makeScene(SbVec3f(2, 2, 2));
    const SbBox3f box(corners[0], corners[7]);
    for (const bool perspective : {false, true}) {
        CameraRequest request;
        request.perspective = perspective;
        const CameraNumbers fitted = numbersFor(request, box, SbViewportRegion(400, 300), 0);
        request.centre = CameraRequest::Vector(3, -0.5, 2);
        const CameraNumbers moved = numbersFor(request, box, SbViewportRegion(400, 300), 0);
        EXPECT_EQ(moved.size, fitted.size);
        EXPECT_EQ(moved.focalDistance, fitted.focalDistance);
        EXPECT_NEAR(moved.position[1] - fitted.position[1], 0.5, 1e-5);
    }
}

TEST_F(CameraTest, WithAnglesItTurnsAboutWhatIsUpAtOneElevation)
{
    forEachView(SIZES, [&](CameraRequest request, const SbVec2s& size, const FreeEdges& edges) {
        const SbBox3f filled(corners[0], corners[7]);
        const SbViewportRegion region(size);
        request.elevation = 40;
        request.margin = 0.1;
        const CameraNumbers fitted = numbersFor(request, filled, region, edges);
        const SbVec3f axis = axisToTurn(request, fitted);
        EXPECT_EQ(axis, axesOf(*request.side).up);
        const CameraNumbers start =
            withRoomToTurn(fitted, filled, axis, region, edges, request.margin);
        for (int i = 0; i < 12; ++i) {
            CameraRequest turned;
            turned.numbers = turnedAround(start, filled.getCenter(), axis, 2 * M_PI * i / 12);
            SoCamera* camera = makeCamera(turned, scene, region, edges);
            camera->ref();
            expectInView(look(*camera, size), *camera, edges, size, 1e-3f);
            SbVec3f direction;
            camera->orientation.getValue().multVec(SbVec3f(0, 0, -1), direction);
            EXPECT_NEAR(direction.dot(axis), -std::sin(40 * M_PI / 180), 1e-5);
            camera->unref();
        }
    });
}

TEST_F(CameraTest, StandardViewsLookAtTheSideTheyAreNamedAfter)
{
    makeScene(SbVec3f(1, 2, 3));
    const std::vector<SbVec3f> towards{{1, 0, 0},  {-1, 0, 0}, {0, 1, 0},
                                       {0, -1, 0}, {0, 0, 1},  {0, 0, -1}};
    for (std::size_t i = 0; i < SIDES.size(); ++i) {
        SCOPED_TRACE(i);
        for (const bool perspective : {false, true}) {
            CameraRequest request;
            request.side = SIDES[i];
            request.perspective = perspective;
            SoCamera* camera = makeCamera(request, scene, SbViewportRegion(400, 300), 0);
            camera->ref();
            EXPECT_EQ(camera->isOfType(SoPerspectiveCamera::getClassTypeId()), bool(perspective));
            // The camera stands on that side.
            EXPECT_GT((camera->position.getValue() - SbVec3f(3, -1, 2)).dot(towards[i]), 0);
            const ViewAxes axes = axesOf(SIDES[i]);
            EXPECT_EQ(axes.direction, -towards[i]);
            SbVec3f direction, up;
            camera->orientation.getValue().multVec(SbVec3f(0, 0, -1), direction);
            camera->orientation.getValue().multVec(SbVec3f(0, 1, 0), up);
            EXPECT_NEAR(direction.dot(axes.direction), 1, 1e-6);
            EXPECT_NEAR(up.dot(axes.up), 1, 1e-6);
            EXPECT_NEAR(axes.up.dot(axes.direction), 0, 0);
            camera->unref();
        }
    }
}

TEST_F(CameraTest, FittingDoesNotTurnTheCamera)
{
    makeScene(SbVec3f(1, 2, 3));
    auto* camera = new SoPerspectiveCamera;
    camera->ref();
    camera->orientation = SbRotation(SbVec3f(1, 2, 3), 0.7f);
    const SbRotation before = camera->orientation.getValue();
    fitScene(*camera, scene, SbViewportRegion(400, 300), 0.2f);
    EXPECT_EQ(camera->orientation.getValue(), before);
    const Seen seen = look(*camera, SbVec2s(400, 300));
    EXPECT_GE(seen.lowest[0], 0);
    EXPECT_LE(seen.highest[0], 1);
    EXPECT_GE(seen.lowest[1], 0.2f);
    EXPECT_LE(seen.highest[1], 1);
    camera->unref();
}

TEST_F(CameraTest, AnEmptySceneLeavesTheCameraWhereItIs)
{
    auto* empty = new SoSeparator;
    empty->ref();
    for (SoCamera* camera : {static_cast<SoCamera*>(new SoPerspectiveCamera),
                             static_cast<SoCamera*>(new SoOrthographicCamera)}) {
        camera->ref();
        const CameraNumbers before = numbersOf(*camera);
        fitScene(*camera, empty, SbViewportRegion(400, 300), 0);
        EXPECT_TRUE(numbersOf(*camera) == before);
        EXPECT_TRUE(std::isfinite(camera->nearDistance.getValue()));
        EXPECT_TRUE(std::isfinite(camera->farDistance.getValue()));
        camera->unref();
    }
    empty->unref();
}

TEST_F(CameraTest, PlacingByNumbersGivesThemBackBitForBit)
{
    makeScene(SbVec3f(1, 2, 3));
    std::mt19937 random(7);
    std::normal_distribution<float> normal;
    for (int i = 0; i < 1000; ++i) {
        // A camera as rotations leave it.
        const SbRotation turned = SbRotation(SbVec3f(normal(random), normal(random), 1), 0.3f) *
                                  SbRotation(SbVec3f(1, normal(random), 0), normal(random));
        CameraRequest request;
        request.numbers = CameraNumbers{i % 2 == 1,
                                        {normal(random), normal(random), normal(random)},
                                        {turned[0], turned[1], turned[2], turned[3]},
                                        1 + std::abs(normal(random)),
                                        1.5f};
        SoCamera* camera = makeCamera(request, scene, SbViewportRegion(400, 300), 0.3f);
        camera->ref();
        ASSERT_TRUE(numbersOf(*camera) == *request.numbers)
            << i << ": " << formatCamera(*request.numbers) << " became "
            << formatCamera(numbersOf(*camera));
        camera->unref();
    }
}

TEST_F(CameraTest, AnyNumbersGiveFiniteClippingPlanesInOrder)
{
    makeScene(SbVec3f(1, 2, 3));
    for (const char* text :
         {"perspective,3,-1,2,0,0,0,1,0.001,0.8",    // within the box
          "perspective,3,-1,-50,0,0,0,1,10,0.8",     // behind the box
          "perspective,0,0,1e30,0,0,0,1,1e30,0.001", // far away
          "perspective,0,0,0,0,0,0,1,1e-30,3.14", "orthographic,3,-1,2,0,0,0,1,1,5",
          "orthographic,0,0,-1e30,0,0,0,1,1e30,1e-30",
          "orthographic,1e38,1e38,1e38,0.5,0.5,0.5,0.5,1e38,1e38"}) {
        SCOPED_TRACE(text);
        CameraRequest request;
        request.numbers = parseCamera(text);
        ASSERT_TRUE(request.numbers);
        SoCamera* camera = makeCamera(request, scene, SbViewportRegion(400, 300), 0);
        camera->ref();
        const float near = camera->nearDistance.getValue();
        const float far = camera->farDistance.getValue();
        EXPECT_TRUE(std::isfinite(near)) << near;
        EXPECT_TRUE(std::isfinite(far)) << far;
        EXPECT_LT(near, far);
        if (request.isPerspective()) {
            EXPECT_GT(near, 0);
        }
        camera->unref();
    }
}

TEST_F(CameraTest, CloseToThingsTheNearPlaneIsATwentyThousandthOfTheFarOnesDistance)
{
    // Depth has 24 bits: the far half of the scene has at least 400 steps of it then.
    makeScene(SbVec3f(10, 10, 10));
    for (const char* const text : {"perspective,3,-1,2,0,0,0,1,1,0.8",     // in the middle
                                   "perspective,3,-1,7,0,0,0,1,1,0.8",     // on a face
                                   "perspective,3,-1,7.05,0,0,0,1,1,0.8"}) // just before it
    {
        SCOPED_TRACE(text);
        CameraRequest request;
        request.numbers = parseCamera(text);
        ASSERT_TRUE(request.numbers);
        SoCamera* camera = makeCamera(request, scene, SbViewportRegion(400, 300), 0);
        camera->ref();
        EXPECT_NEAR(camera->farDistance.getValue() / camera->nearDistance.getValue(), 20000, 1);
        camera->unref();
    }
    // Farther away it is before all there is, by a hundredth of its depth.
    CameraRequest request;
    request.numbers = parseCamera("perspective,3,-1,8,0,0,0,1,1,0.8");
    SoCamera* camera = makeCamera(request, scene, SbViewportRegion(400, 300), 0);
    camera->ref();
    EXPECT_NEAR(camera->nearDistance.getValue(), 0.9f, 1e-5);
    EXPECT_NEAR(camera->farDistance.getValue(), 11.1f, 1e-5);
    camera->unref();
}

} // namespace

} // namespace strandview
