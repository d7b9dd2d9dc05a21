// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoQtGeneralViewer.h>

#include <cmath>
#include <limits>
#include <random>

#include <gmock/gmock.h>

#include <Inventor/nodes/SoCube.h>
#include <Inventor/nodes/SoFrustumCamera.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <QGLWidget>

#include "ViewerWindow.h"

namespace {

const double HEIGHT_ANGLE = 0.8;

// The fields of a camera in double precision, as an independent reckoning needs them.
struct Camera
{
    explicit Camera(const SoCamera* camera)
        : position(camera->position.getValue()),
          right(axis(camera, SbVec3f(1, 0, 0))),
          up(axis(camera, SbVec3f(0, 1, 0))),
          direction(-axis(camera, SbVec3f(0, 0, 1))),
          distance(camera->focalDistance.getValue())
    {}

    // A column of the rotation matrix of the unit quaternion (x, y, z, w).
    static SbVec3d axis(const SoCamera* camera, const SbVec3f& v)
    {
        const float* q = camera->orientation.getValue().getValue();
        const SbVec3d imaginary(q[0], q[1], q[2]);
        const SbVec3d vector(v[0], v[1], v[2]);
        const SbVec3d t = 2.0 * imaginary.cross(vector);
        return vector + double(q[3]) * t + imaginary.cross(t);
    }
    SbVec3d getFocalPoint() const { return SbVec3d(position) + distance * direction; }

    SbVec3f position;
    SbVec3d right;
    SbVec3d up;
    SbVec3d direction;
    double distance;
};

void expectNear(const SbVec3d& actual, const SbVec3d& expected, double tolerance = 1e-5)
{
    EXPECT_LE((actual - expected).length(), tolerance)
        << actual.toString().getString() << " instead of " << expected.toString().getString();
}
void expectNear(const SbVec3f& actual, const SbVec3d& expected, double tolerance = 1e-5)
{
    expectNear(SbVec3d(actual), expected, tolerance);
}

// Both types of camera, somewhere and turned somehow: the focal distance is 5.
class CameraControlTest : public ViewerWindowTest, public testing::WithParamInterface<bool>
{
protected:
    bool isPerspective() const { return GetParam(); }

    void SetUp() override
    {
        ViewerWindowTest::SetUp();
        if (isPerspective())
            viewer->setCameraType(SoPerspectiveCamera::getClassTypeId());
        camera = viewer->getCamera();
        camera->position = SbVec3f(1, 2, 3);
        camera->orientation = SbRotation(SbVec3f(1, -2, 0.5f), 0.7f);
        camera->focalDistance = 5;
        if (isPerspective())
            static_cast<SoPerspectiveCamera*>(camera)->heightAngle = float(HEIGHT_ANGLE);
        else
            static_cast<SoOrthographicCamera*>(camera)->height = 4;
    }

    // The view's height at the focal plane.
    double viewHeight() const { return isPerspective() ? 2 * 5 * std::tan(HEIGHT_ANGLE / 2) : 4; }
    double smallerSide() const
    {
        const SbVec2s size = viewer->getGLSize();
        return std::min(size[0], size[1]);
    }
    // Moves, and compares with the reckoning: the picture goes by `v`, so the camera
    // goes the other way; and forward.
    void expectMove(const SbVec3f& v)
    {
        const Camera before(camera);
        const SbVec2s size = viewer->getGLSize();
        const double height = viewHeight();
        const double width = height * size[0] / size[1];
        viewer->moveCamera(v);
        const Camera after(camera);
        expectNear(after.position, SbVec3d(before.position) - v[0] * width * before.right -
                                       v[1] * height * before.up +
                                       v[2] * before.distance * before.direction);
        expectNear(after.direction, before.direction, 0);
        EXPECT_EQ(after.distance, before.distance);
    }

    SoCamera* camera = nullptr;
};

std::string cameraName(const testing::TestParamInfo<bool>& info)
{
    return info.param ? "Perspective" : "Orthographic";
}

} // namespace

INSTANTIATE_TEST_SUITE_P(, CameraControlTest, testing::Bool(), cameraName);

// Moving

TEST_P(CameraControlTest, MovesByPartsOfTheViewAndOfTheFocalDistance)
{
    for (const SbVec3f& v :
         {SbVec3f(-0.1f, 0, 0), SbVec3f(0.1f, 0, 0), SbVec3f(0, 0.1f, 0), SbVec3f(0, -0.1f, 0),
          SbVec3f(0, 0, 0.1f), SbVec3f(0, 0, -0.1f), SbVec3f(0.3f, -0.45f, 0.2f)})
        expectMove(v);
}

TEST_P(CameraControlTest, MovesByPartsOfANarrowViewToo)
{
    resizeArea(150, 300);
    expectMove(SbVec3f(0.3f, -0.45f, 0.2f));
}

TEST_P(CameraControlTest, TheSceneMovesWithThePictureOnTheScreen)
{
    // The cube in the middle, 300 pixels for the view's height.
    camera->position = SbVec3f(0, 0, 10);
    camera->orientation = SbRotation::identity();
    camera->focalDistance = 10;
    viewer->setCameraZoom(20 * area->devicePixelRatio());
    const SbVec2s middle = getMiddle();
    expectOnScreen(middle[0], middle[1], Qt::red);
    viewer->moveCamera(SbVec3f(0.25f, 0, 0));
    expectOnScreen(middle[0], middle[1], Qt::black);
    expectOnScreen(middle[0] * 3 / 2, middle[1], Qt::red);
    viewer->moveCamera(SbVec3f(-0.25f, 0.25f, 0));
    // Rows count downwards on the screen.
    expectOnScreen(middle[0], middle[1] / 2, Qt::red);
}

TEST_P(CameraControlTest, ANullMoveLeavesItWhereItIs)
{
    viewer->moveCamera(SbVec3f(0, 0, 0));
    EXPECT_EQ(camera->position.getValue(), SbVec3f(1, 2, 3));
}

TEST_P(CameraControlTest, AMoveOfOneForwardReachesTheFocalPoint)
{
    const SbVec3d focalPoint = Camera(camera).getFocalPoint();
    viewer->moveCamera(SbVec3f(0, 0, 1));
    expectNear(camera->position.getValue(), focalPoint);
    EXPECT_EQ(camera->focalDistance.getValue(), 5);
}

// Turning

TEST_P(CameraControlTest, TurnsInItsOwnFrameAboutTheFocalPoint)
{
    const double angle = M_PI / 6;
    const struct
    {
        SbVec3f axis;
        // Its new axes in the old ones, by hand.
        SbVec3d right, up, back;
    } turns[] = {
        {SbVec3f(1, 0, 0), SbVec3d(1, 0, 0), SbVec3d(0, std::cos(angle), std::sin(angle)),
         SbVec3d(0, -std::sin(angle), std::cos(angle))},
        {SbVec3f(0, 1, 0), SbVec3d(std::cos(angle), 0, -std::sin(angle)), SbVec3d(0, 1, 0),
         SbVec3d(std::sin(angle), 0, std::cos(angle))},
        {SbVec3f(0, 0, 1), SbVec3d(std::cos(angle), std::sin(angle), 0),
         SbVec3d(-std::sin(angle), std::cos(angle), 0), SbVec3d(0, 0, 1)},
    };
    for (const auto& turn : turns) {
        const Camera before(camera);
        viewer->rotateCamera(turn.axis, angle);
        const Camera after(camera);
        const auto toWorld = [&](const SbVec3d& v) {
            return v[0] * before.right + v[1] * before.up - v[2] * before.direction;
        };
        expectNear(after.right, toWorld(turn.right));
        expectNear(after.up, toWorld(turn.up));
        expectNear(after.direction, -toWorld(turn.back));
        expectNear(after.getFocalPoint(), before.getFocalPoint());
        expectNear(after.position, before.getFocalPoint() + 5.0 * toWorld(turn.back));
        EXPECT_EQ(after.distance, 5);
    }
}

TEST_P(CameraControlTest, TwelveTurnsOf30DegreesBringItBack)
{
    const Camera before(camera);
    for (int turn = 1; turn <= 12; ++turn) {
        viewer->rotateCamera(SbVec3f(0.2f, 1, -0.3f), 2 * M_PI / 12);
        const Camera now(camera);
        expectNear(now.getFocalPoint(), before.getFocalPoint(), 1e-5);
        if (turn < 12) {
            EXPECT_GT((SbVec3d(now.position) - SbVec3d(before.position)).length(), 1);
        }
    }
    const Camera after(camera);
    expectNear(after.position, SbVec3d(before.position), 2e-5);
    expectNear(after.direction, before.direction, 2e-6);
    expectNear(after.up, before.up, 2e-6);
}

// Standard views

TEST_P(CameraControlTest, LooksAtTheFocalPointAlongADirection)
{
    const SbVec3d focalPoint = Camera(camera).getFocalPoint();
    viewer->setupCamera(SbVec3f(1, -2, 2), SbVec3f(0, 0, 7));
    const Camera after(camera);
    const SbVec3d direction(1.0 / 3, -2.0 / 3, 2.0 / 3);
    SbVec3d up = SbVec3d(0, 0, 1) - SbVec3d(0, 0, 1).dot(direction) * direction;
    up.normalize();
    expectNear(after.direction, direction);
    expectNear(after.up, up);
    expectNear(after.right, direction.cross(up));
    expectNear(after.getFocalPoint(), focalPoint);
    EXPECT_EQ(after.distance, 5);
}

TEST_P(CameraControlTest, TheLengthsOfDirectionAndUpDoNotMatter)
{
    const Camera before(camera);
    viewer->setupCamera(SbVec3f(0, 0, -1), SbVec3f(0, 1, 0));
    const Camera unit(camera);
    expectNear(unit.direction, SbVec3d(0, 0, -1));
    expectNear(unit.up, SbVec3d(0, 1, 0));
    expectNear(unit.position, before.getFocalPoint() + SbVec3d(0, 0, 5));
    viewer->setupCamera(SbVec3f(0, 0, -5), SbVec3f(0, 2, 0));
    const Camera scaled(camera);
    expectNear(scaled.position, SbVec3d(unit.position), 1e-6);
    expectNear(scaled.direction, unit.direction, 0);
    expectNear(scaled.up, unit.up, 0);
}

// Zoom

TEST_P(CameraControlTest, TheZoomIsPixelsPerSceneUnit)
{
    EXPECT_NEAR(viewer->getCameraZoom(), smallerSide() / viewHeight(), 1e-4);
    // The width is the smaller side now.
    resizeArea(150, 300);
    EXPECT_NEAR(viewer->getCameraZoom(), smallerSide() / viewHeight(), 1e-4);
    EXPECT_EQ(smallerSide(), 150 * area->devicePixelRatio());
}

TEST_P(CameraControlTest, GrowingTheLargerSideDoesNotChangeTheZoom)
{
    resizeArea(300, 200);
    const double wide = viewer->getCameraZoom();
    resizeArea(450, 200);
    EXPECT_EQ(viewer->getCameraZoom(), wide);
    resizeArea(200, 300);
    const double tall = viewer->getCameraZoom();
    EXPECT_EQ(tall, wide);
    resizeArea(200, 400);
    EXPECT_EQ(viewer->getCameraZoom(), tall);
}

TEST_P(CameraControlTest, TheZoomIsThatOfTheScreen)
{
    // The cube's front face is in the focal plane: at zoom 50 it is 100 pixels wide, in
    // a wide view and in a tall one.
    for (const auto& [width, height] : {std::pair(400, 200), std::pair(200, 300)}) {
        resizeArea(width, height);
        camera->position = SbVec3f(0, 0, 6);
        camera->orientation = SbRotation::identity();
        camera->focalDistance = 5;
        viewer->setCameraZoom(50);
        const SbVec2s middle = getMiddle();
        expectOnScreen(middle[0] - 47, middle[1], Qt::red);
        expectOnScreen(middle[0] - 53, middle[1], Qt::black);
        expectOnScreen(middle[0] + 46, middle[1] + 46, Qt::red);
        expectOnScreen(middle[0], middle[1] + 53, Qt::black);
    }
}

TEST_P(CameraControlTest, TheZoomComesBackAndTheFocalPointStays)
{
    for (const double zoom : {0.01, 1.0, 75.0, 333.25, 10000.0}) {
        const Camera before(camera);
        viewer->setCameraZoom(zoom);
        const Camera after(camera);
        EXPECT_NEAR(viewer->getCameraZoom() / zoom, 1, 1e-6);
        // Single precision, at the camera's distance.
        expectNear(after.getFocalPoint(), before.getFocalPoint(),
                   3e-7 * (10 + std::max(before.distance, after.distance)));
    }
}

TEST_P(CameraControlTest, ZoomingMovesAPerspectiveCameraAndScalesAnOrthographicOne)
{
    const Camera before(camera);
    const double zoom = viewer->getCameraZoom();
    viewer->setCameraZoom(zoom * 1.25);
    const Camera after(camera);
    expectNear(after.direction, before.direction, 0);
    if (isPerspective()) {
        EXPECT_NEAR(after.distance, 4, 1e-5);
        expectNear(after.position, SbVec3d(before.position) + before.direction, 1e-5);
        EXPECT_EQ(static_cast<SoPerspectiveCamera*>(camera)->heightAngle.getValue(),
                  float(HEIGHT_ANGLE));
    } else {
        EXPECT_NEAR(static_cast<SoOrthographicCamera*>(camera)->height.getValue(), 3.2, 1e-6);
        EXPECT_EQ(after.position, before.position);
        EXPECT_EQ(after.distance, 5);
    }
}

TEST_P(CameraControlTest, TheZoomIsAtLeastTiny)
{
    for (const double zoom : {0.0, -3.0, 1e-12, -std::numeric_limits<double>::infinity(),
                              std::numeric_limits<double>::quiet_NaN()}) {
        SCOPED_TRACE(zoom);
        camera->position = SbVec3f(0, 0, 5);
        camera->orientation = SbRotation::identity();
        camera->focalDistance = 5;
        viewer->setCameraZoom(zoom);
        EXPECT_NEAR(viewer->getCameraZoom() / 1e-10, 1, 1e-6);
        if (isPerspective()) {
            const double distance =
                smallerSide() * 0.5 / 1e-10 / std::tan(double(float(HEIGHT_ANGLE)) * 0.5);
            EXPECT_NEAR(camera->focalDistance.getValue() / distance, 1, 1e-6);
            EXPECT_NEAR(camera->position.getValue()[2] / distance, 1, 1e-6);
        } else {
            const auto* orthographic = static_cast<SoOrthographicCamera*>(camera);
            EXPECT_NEAR(orthographic->height.getValue() / (smallerSide() / 1e-10), 1, 1e-6);
        }
    }
}

// All together

TEST_P(CameraControlTest, AHundredRandomOperationsKeepTheFocalPointAndTheZoom)
{
    std::mt19937 random(20240607);
    std::uniform_real_distribution<float> component(-1, 1);
    std::uniform_real_distribution<double> angle(-4, 4);
    std::uniform_real_distribution<double> logarithm(std::log(5), std::log(500));
    const SbVec3d focalPoint = Camera(camera).getFocalPoint();
    double zoom = viewer->getCameraZoom();
    for (int i = 0; i < 100; ++i) {
        SCOPED_TRACE(i);
        if (i % 2 == 0) {
            const SbVec3f axis(component(random), component(random), component(random));
            viewer->rotateCamera(axis, angle(random));
        } else {
            zoom = std::exp(logarithm(random));
            viewer->setCameraZoom(zoom);
        }
        const Camera now(camera);
        // Single precision at distances of up to 150, a hundred times.
        expectNear(now.getFocalPoint(), focalPoint, 1e-3);
        EXPECT_NEAR(viewer->getCameraZoom() / zoom, 1, 1e-5);
        EXPECT_NEAR(now.direction.length(), 1, 1e-5);
    }
}

TEST_P(CameraControlTest, BothTypesOfCameraShowTheFocalPlaneAtTheSameZoom)
{
    // SoQt converts one into the other at the focal plane.
    viewer->setCameraZoom(42);
    viewer->toggleCameraType();
    EXPECT_NEAR(viewer->getCameraZoom(), 42, 0.01);
}

TEST_P(CameraControlTest, NonsenseIsHarmless)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float value : {0.0f, 1e30f, infinity, nan}) {
        const SbVec3f v(value, value, value);
        viewer->moveCamera(v);
        viewer->rotateCamera(v, value);
        viewer->setupCamera(v, v);
        viewer->setupCamera(SbVec3f(0, 1, 0), v);
        viewer->setupCamera(SbVec3f(0, 1, 0), SbVec3f(0, -1, 0));
        viewer->setCameraZoom(value);
        viewer->render();
    }
    // Another scene comes with another camera.
    auto* other = new SoGeneralScene;
    other->addSolid(new SoCube);
    viewer->setSceneGraph(other);
    expectOnScreen(getMiddle()[0], getMiddle()[1], QColor(204, 204, 204));
}

using OtherCameraTest = ViewerWindowTest;

TEST_F(OtherCameraTest, ACameraOfAnotherTypeHasNoZoom)
{
    auto* graph = new SoSeparator;
    auto* frustum = new SoFrustumCamera;
    graph->addChild(frustum);
    viewer->setSceneGraph(static_cast<SoNode*>(graph));
    ASSERT_EQ(viewer->getCamera(), frustum);
    frustum->position = SbVec3f(1, 2, 3);
    frustum->focalDistance = 5;
    EXPECT_EQ(viewer->getCameraZoom(), 0);
    viewer->setCameraZoom(10);
    EXPECT_EQ(frustum->position.getValue(), SbVec3f(1, 2, 3));
    EXPECT_EQ(frustum->focalDistance.getValue(), 5);
    viewer->setupCamera(SbVec3f(0, 0, -1), SbVec3f(0, 1, 0));
    expectNear(frustum->position.getValue(), SbVec3d(1, 2, 3));
}
