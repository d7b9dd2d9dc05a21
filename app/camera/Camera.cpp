// SPDX-License-Identifier: GPL-3.0-or-later
#include "camera/Camera.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <toCoin.h>

namespace strandview {

namespace {

const float MARGIN = 1.05f;
// Of perspective cameras, Coin's own.
const float USUAL_ANGLE = float(M_PI / 4);

bool isPerspective(const SoCamera& camera)
{
    return camera.isOfType(SoPerspectiveCamera::getClassTypeId());
}

// A view's height in units of its shorter side, which is what a camera's fields tell.
float heightInShorterSides(const SbViewportRegion& region)
{
    return std::max(1.0f, 1 / region.getViewportAspectRatio());
}

// The tangents of half the angle that a perspective camera's view takes upwards.
float tangentUpwards(const SoPerspectiveCamera& camera, const SbViewportRegion& region)
{
    return std::tan(camera.heightAngle.getValue() / 2) * heightInShorterSides(region);
}

SbBox3f boxOf(SoNode* scene, const SbViewportRegion& region)
{
    SoGetBoundingBoxAction bounds(region);
    bounds.apply(scene);
    return bounds.getBoundingBox();
}

// The box's corners from a point, along the camera's own axes: to the right, up, and
// against the viewing direction.
std::array<SbVec3f, 8> cornersFrom(const SbVec3f& from, const SbBox3f& box,
                                   const SbRotation& orientation)
{
    const SbRotation toCamera = orientation.inverse();
    std::array<SbVec3f, 8> corners;
    for (int i = 0; i < 8; ++i) {
        const SbVec3f corner(box.getMin()[0] + (i & 1 ? box.getSize()[0] : 0),
                             box.getMin()[1] + (i & 2 ? box.getSize()[1] : 0),
                             box.getMin()[2] + (i & 4 ? box.getSize()[2] : 0));
        toCamera.multVec(corner - from, corners[i]);
    }
    return corners;
}

std::array<SbVec3f, 8> cornersFrom(const SbVec3f& from, const SbBox3f& box, const SoCamera& camera)
{
    return cornersFrom(from, box, camera.orientation.getValue());
}

SbVec3f turned(const SbVec3f& v, const SbRotation& rotation)
{
    SbVec3f result;
    rotation.multVec(v, result);
    return result;
}

// What a camera has in its own axes, in those of the scene.
SbVec3f fromCamera(const SoCamera& camera, const SbVec3f& v)
{
    return turned(v, camera.orientation.getValue());
}

// Around the box, but in front of a perspective camera; depth has 24 bits.
void setClipping(SoCamera& camera, const SbBox3f& box)
{
    float nearest = INFINITY, farthest = -INFINITY;
    for (const SbVec3f& corner : cornersFrom(camera.position.getValue(), box, camera)) {
        nearest = std::min(nearest, -corner[2]);
        farthest = std::max(farthest, -corner[2]);
    }
    // From afar, more than the rounding of the distance.
    const float slack = std::max(0.01f * (farthest - nearest),
                                 1e-6f * std::max(std::abs(nearest), std::abs(farthest)));
    nearest -= slack;
    farthest += slack;
    if (isPerspective(camera)) {
        farthest = std::max(farthest, camera.focalDistance.getValue());
        nearest = std::max(nearest, farthest / 20000);
    }
    camera.nearDistance = nearest;
    camera.farDistance = farthest;
}

// What of a view there is for what it shows.
struct Room
{
    Room(const SbViewportRegion& region, const FreeEdges& edges, std::optional<double> margin)
        : height(1 - edges.both())
    {
        const float ofWidth = std::min(1.0f, 1 / region.getViewportAspectRatio());
        left = edges.left * ofWidth;
        right = edges.right * ofWidth;
        width -= left + right;
        if (!margin)
            return;
        times = 1;
        besides = float(*margin) * ofWidth;
        below = float(*margin) * std::min(1.0f, region.getViewportAspectRatio());
        width -= 2 * besides;
        height -= 2 * below;
    }

    float times = MARGIN;    // as large as what is shown
    float width = 1, height; // parts of the view's
    float below = 0;         // free there and above, a part of its height
    float besides = 0;       // and to the left and right, of its width
    float left, right;       // what is left free there besides

    // How far the middle of the room lies to the right of that of the view, of its width.
    float shift() const { return (left - right) / 2; }
};

// What of a request is no direction.
struct Framing
{
    explicit Framing(const CameraRequest& request)
        : zoom(float(request.zoom)), margin(request.margin)
    {
        if (request.centre)
            centre = toSbVec3f(*request.centre);
    }
    explicit Framing(std::optional<double> freeMargin = {}) : margin(freeMargin) {}

    float zoom = 1;
    std::optional<SbVec3f> centre;
    std::optional<double> margin;
};

// How far what is nearest to the camera is in front of a point.
float frontFrom(const SbVec3f& point, const SbBox3f& box, const SoCamera& camera)
{
    float front = 0;
    for (const SbVec3f& corner : cornersFrom(point, box, camera))
        front = std::max(front, corner[2]);
    return front;
}

void fitOrthographic(SoOrthographicCamera& camera, const SbBox3f& box,
                     const SbViewportRegion& region, const FreeEdges& edges, const Framing& framing)
{
    const Room room(region, edges, framing.margin);
    float halfWidth = 0, halfHeight = 0;
    for (const SbVec3f& corner : cornersFrom(box.getCenter(), box, camera)) {
        halfWidth = std::max(halfWidth, corner[0]);
        halfHeight = std::max(halfHeight, corner[1]);
    }
    const float height =
        2 *
        std::max(room.times * halfHeight / room.height,
                 room.times * halfWidth / room.width / region.getViewportAspectRatio()) /
        framing.zoom;
    float distance = box.getSize().length() / 2;
    SbVec3f middle(-room.shift() * height * region.getViewportAspectRatio(),
                   -edges.shift() * height, 0);
    if (framing.centre) {
        distance = std::max(distance, MARGIN * frontFrom(*framing.centre, box, camera));
        middle = SbVec3f(0, 0, 0);
    }
    camera.height = height / heightInShorterSides(region);
    camera.focalDistance = distance;
    camera.position = framing.centre.value_or(box.getCenter()) +
                      fromCamera(camera, middle + SbVec3f(0, 0, distance));
}

// One direction of a view from a distance of 1: half of its extent, the parts of that which are
// left free at its lower end and at its upper one and, besides, at both, and what there is then.
struct Opening
{
    float half, low, high, besides, room;
};

// How far away a camera is that is moved for what it leaves free, and sees a corner just at one of
// both borders: `across` and `towards` it from the middle, where all of it is as far in front.
float distanceToBorders(float across, float towards, float front, const Opening& opening)
{
    const float notMoved = (opening.low - opening.high) * opening.half * front;
    const float toHigh = opening.half * (1 - 2 * opening.besides - 2 * opening.high);
    const float toLow = opening.half * (1 - 2 * opening.besides - 2 * opening.low);
    return std::max(across - notMoved + toHigh * towards, -across + notMoved + toLow * towards) /
           (opening.half * opening.room);
}

// A corner is seen if it is within the view's slopes at its own depth.
void fitPerspective(SoPerspectiveCamera& camera, const SbBox3f& box, const SbViewportRegion& region,
                    const FreeEdges& edges, const Framing& framing)
{
    camera.heightAngle = USUAL_ANGLE;
    const Room room(region, edges, framing.margin);
    const float up = tangentUpwards(camera, region);
    const float aside = up * region.getViewportAspectRatio();
    const std::array<SbVec3f, 8> corners = cornersFrom(box.getCenter(), box, camera);
    float front = 0, distance = 0;
    for (const SbVec3f& corner : corners)
        front = std::max(front, corner[2]);
    const Opening upwards{up, edges.bottom, edges.top, room.below, room.height};
    const Opening sideways{aside, room.left, room.right, room.besides, room.width};
    const bool isMovedAside = room.left != room.right;
    for (const SbVec3f& corner : corners)
        distance = std::max(
            {distance,
             isMovedAside ? distanceToBorders(room.times * corner[0], corner[2], front, sideways)
                          : corner[2] + room.times * std::abs(corner[0]) / (aside * room.width),
             framing.margin ? distanceToBorders(corner[1], corner[2], front, upwards)
                            : corner[2] + MARGIN * std::abs(corner[1]) / (up * room.height)});
    SbVec3f middle(-2 * room.shift() * aside * (distance - front) / framing.zoom,
                   -2 * edges.shift() * up * (distance - front) / framing.zoom, 0);
    float narrower = framing.zoom;
    if (framing.centre) { // in front of everything
        const float nearest = MARGIN * frontFrom(*framing.centre, box, camera);
        narrower *= std::max(1.0f, nearest / distance);
        distance = std::max(distance, nearest);
        middle = SbVec3f(0, 0, 0);
    }
    if (narrower != 1)
        camera.heightAngle = 2 * std::atan(std::tan(USUAL_ANGLE / 2) / narrower);
    camera.focalDistance = distance;
    camera.position = framing.centre.value_or(box.getCenter()) +
                      fromCamera(camera, middle + SbVec3f(0, 0, distance));
}

// Bit for bit, so that a camera that is told and set again stays: the constructor of four
// numbers would normalise, which changes the last bit of what was normalised before.
SbRotation rotationOf(const std::array<float, 4>& quaternion)
{
    SbRotation rotation;
    std::copy(quaternion.begin(), quaternion.end(), const_cast<float*>(rotation.getValue()));
    return rotation;
}

// The cylinder about an axis, in a camera's own axes, that a box turns in.
struct Cylinder
{
    Cylinder(const SbBox3f& box, const SbRotation& orientation, const SbVec3f& turnAxis)
        : axis(turned(turnAxis, orientation.inverse()))
    {
        for (const SbVec3f& corner : cornersFrom(box.getCenter(), box, orientation)) {
            radius = std::max(radius, (corner - corner.dot(axis) * axis).length());
            halfHeight = std::max(halfHeight, corner.dot(axis));
        }
    }
    // Along a normal, from its middle.
    float reachAlong(const SbVec3f& normal) const
    {
        const float along = normal.dot(axis);
        return radius * (normal - along * axis).length() + halfHeight * std::abs(along);
    }

    SbVec3f axis;
    float radius = 0, halfHeight = 0;
};

// As fitScene(), for a scene that fills the box.
void fitBox(SoCamera& camera, const SbBox3f& box, const SbViewportRegion& region,
            const FreeEdges& edges, const Framing& framing)
{
    if (isPerspective(camera))
        fitPerspective(static_cast<SoPerspectiveCamera&>(camera), box, region, edges, framing);
    else
        fitOrthographic(static_cast<SoOrthographicCamera&>(camera), box, region, edges, framing);
    setClipping(camera, box);
}

// Towards what was asked for, from nowhere.
void turn(SoCamera& camera, const CameraRequest& request)
{
    const ViewAxes axes = axesOf(request);
    camera.position = SbVec3f(0, 0, 0); // so that nothing is rounded by where it was
    camera.pointAt(axes.direction, axes.up);
}

SoCamera* newCamera(const CameraRequest& request)
{
    if (request.isPerspective())
        return new SoPerspectiveCamera;
    return new SoOrthographicCamera;
}

void setNumbers(SoCamera& camera, const CameraNumbers& numbers)
{
    camera.position = SbVec3f(numbers.position.data());
    camera.orientation = rotationOf(numbers.orientation);
    camera.focalDistance = numbers.focalDistance;
    if (numbers.perspective)
        static_cast<SoPerspectiveCamera&>(camera).heightAngle = numbers.size;
    else
        static_cast<SoOrthographicCamera&>(camera).height = numbers.size;
}

} // namespace

SoCamera* makeCamera(const CameraRequest& request, SoNode* scene, const SbViewportRegion& region,
                     const FreeEdges& edges)
{
    SoCamera* camera = newCamera(request);
    placeCamera(*camera, request, scene, region, edges);
    return camera;
}

void placeCamera(SoCamera& camera, const CameraRequest& request, SoNode* scene,
                 const SbViewportRegion& region, const FreeEdges& edges)
{
    if (request.numbers) {
        setNumbers(camera, *request.numbers);
        setClipping(camera, boxOf(scene, region));
        return;
    }
    turn(camera, request);
    const SbBox3f box = boxOf(scene, region);
    if (!box.isEmpty())
        fitBox(camera, box, region, edges, Framing(request));
}

void fitScene(SoCamera& camera, SoNode* scene, const SbViewportRegion& region,
              const FreeEdges& edges, std::optional<double> margin)
{
    const SbBox3f box = boxOf(scene, region);
    if (!box.isEmpty())
        fitBox(camera, box, region, edges, Framing(margin));
}

void fitBox(SoCamera& camera, const SbBox3f& box, SoNode* scene, const SbViewportRegion& region,
            const FreeEdges& edges)
{
    fitBox(camera, box, region, edges, Framing());
    setClipping(camera, boxOf(scene, region));
}

void keepInFront(SoCamera& camera, SoNode* scene, const SbViewportRegion& region)
{
    const SbBox3f box = boxOf(scene, region);
    if (!isPerspective(camera) || box.isEmpty())
        return;
    const float distance = camera.focalDistance.getValue();
    const SbVec3f focalPoint =
        camera.position.getValue() + fromCamera(camera, SbVec3f(0, 0, -distance));
    float front = 0;
    for (const SbVec3f& corner : cornersFrom(focalPoint, box, camera))
        front = std::max(front, MARGIN * corner[2]);
    if (front <= distance)
        return;
    auto& perspective = static_cast<SoPerspectiveCamera&>(camera);
    const float halfHeight = distance * std::tan(perspective.heightAngle.getValue() / 2);
    perspective.heightAngle = 2 * std::atan(halfHeight / front);
    perspective.focalDistance = front;
    perspective.position = focalPoint + fromCamera(camera, SbVec3f(0, 0, front));
}

CameraNumbers numbersOf(const SoCamera& camera)
{
    CameraNumbers numbers;
    numbers.perspective = isPerspective(camera);
    const SbVec3f position = camera.position.getValue();
    std::copy_n(position.getValue(), 3, numbers.position.begin());
    std::copy_n(camera.orientation.getValue().getValue(), 4, numbers.orientation.begin());
    numbers.focalDistance = camera.focalDistance.getValue();
    numbers.size = numbers.perspective
                       ? static_cast<const SoPerspectiveCamera&>(camera).heightAngle.getValue()
                       : static_cast<const SoOrthographicCamera&>(camera).height.getValue();
    return numbers;
}

algebra3d::Vector3<double> towardsViewer(const CameraNumbers& camera)
{
    const SbVec3f back = turned(SbVec3f(0, 0, 1), rotationOf(camera.orientation));
    return {double(back[0]), double(back[1]), double(back[2])};
}

CameraNumbers numbersFor(const CameraRequest& request, const SbBox3f& box,
                         const SbViewportRegion& region, const FreeEdges& edges)
{
    if (request.numbers)
        return *request.numbers;
    SoCamera* camera = newCamera(request);
    camera->ref();
    turn(*camera, request);
    fitBox(*camera, box, region, edges, Framing(request));
    const CameraNumbers numbers = numbersOf(*camera);
    camera->unref();
    return numbers;
}

SbVec3f axisToTurn(const CameraRequest& request, const CameraNumbers& camera)
{
    if (!request.numbers && (request.up || request.hasAngles()))
        return toSbVec3f(upOf(request));
    return turned(SbVec3f(0, 1, 0), rotationOf(camera.orientation));
}

CameraNumbers turnedAround(const CameraNumbers& camera, const SbVec3f& middle, const SbVec3f& axis,
                           double angle)
{
    const SbRotation orientation = rotationOf(camera.orientation);
    const SbRotation turn(axis, float(angle));
    const SbVec3f place = middle + turned(SbVec3f(camera.position.data()) - middle, turn);
    const SbRotation next = orientation * turn; // in this order
    CameraNumbers numbers = camera;
    std::copy_n(place.getValue(), 3, numbers.position.begin());
    std::copy_n(next.getValue(), 4, numbers.orientation.begin());
    return numbers;
}

CameraNumbers withRoomToTurn(const CameraNumbers& camera, const SbBox3f& box, const SbVec3f& axis,
                             const SbViewportRegion& region, const FreeEdges& edges,
                             std::optional<double> margin)
{
    const Room room(region, edges, margin);
    const SbRotation orientation = rotationOf(camera.orientation);
    const SbVec3f place(camera.position.data()), back = place - box.getCenter();
    const SbVec3f middle = turned(-back, orientation.inverse());
    const Cylinder cylinder(box, orientation, axis);
    const float up = heightInShorterSides(region) *
                     (camera.perspective ? std::tan(camera.size / 2) : camera.size / 2);
    const float aside = up * region.getViewportAspectRatio();
    // The view's sides: where they face, and how far out they are or how much they open.
    const std::pair<SbVec3f, float> sides[] = {
        {{-1, 0, 0}, aside * (1 - 2 * room.right - 2 * room.besides)},
        {{1, 0, 0}, aside * (1 - 2 * room.left - 2 * room.besides)},
        {{0, -1, 0}, up * (1 - 2 * edges.top - 2 * room.below)},
        {{0, 1, 0}, up * (1 - 2 * edges.bottom - 2 * room.below)}};
    float times = 1; // as far away
    for (const auto& [inwards, opening] : sides) {
        const SbVec3f normal = inwards - SbVec3f(0, 0, camera.perspective ? opening : 0);
        const float distance = normal.dot(middle) + (camera.perspective ? 0 : opening);
        const float reach = cylinder.reachAlong(normal);
        if (distance > 0 && reach > distance)
            times = std::max(times, room.times * reach / distance);
    }
    if (times == 1)
        return camera;
    CameraNumbers numbers = camera;
    const SbVec3f farther = box.getCenter() + times * back;
    std::copy_n(farther.getValue(), 3, numbers.position.begin());
    numbers.focalDistance *= times;
    if (!camera.perspective)
        numbers.size *= times;
    return numbers;
}

} // namespace strandview
