// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/ClipHandles.h"

#include <algorithm>
#include <cmath>

#include <Inventor/SbRotation.h>
#include <Inventor/draggers/SoRotateSphericalDragger.h>
#include <Inventor/draggers/SoTranslate1Dragger.h>
#include <Inventor/events/SoLocation2Event.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoCone.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoCylinder.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoPickStyle.h>
#include <Inventor/nodes/SoRotation.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSphere.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/nodes/SoTranslation.h>

#include <toCoin.h>

namespace strandview {

using Vector = algebra3d::Vector3<double>;

namespace {

const SbVec3f ALONG(1, 0, 0); // the normal, among the handles

// Of the diagonal of the data's box.
const float ARROW = 0.25f, FRAME = 0.24f;
// Of the arrow's length.
const float BALL = 0.22f, SHAFT = 0.05f, HEAD = 0.15f, HEAD_LENGTH = 0.35f;
// Nothing of the scene is as near to the eye: handles are in front of it.
const float NEAREST_DEPTHS = 1e-3f;

const SbColor FRAME_COLOUR(0.9f, 0.45f, 0.1f);
const SbColor HANDLE_COLOUR(0.9f, 0.6f, 0.2f), HELD_COLOUR(1, 0.9f, 0.2f);
const float FRAME_WIDTH = 2; // pixels

// A square across the normal, past which the handles behind it are taken.
SoNode* makeFrame()
{
    auto* frame = new SoSeparator;
    auto* noHandle = new SoPickStyle;
    noHandle->style = SoPickStyle::UNPICKABLE;
    frame->addChild(noHandle);
    auto* unlit = new SoLightModel;
    unlit->model = SoLightModel::BASE_COLOR;
    auto* colour = new SoBaseColor;
    colour->rgb = FRAME_COLOUR;
    auto* style = new SoDrawStyle;
    style->lineWidth = FRAME_WIDTH;
    auto* corners = new SoCoordinate3;
    const float a = FRAME / ARROW;
    const SbVec3f square[] = {{0, a, a}, {0, -a, a}, {0, -a, -a}, {0, a, -a}, {0, a, a}};
    corners->point.setValues(0, 5, square);
    auto* lines = new SoLineSet;
    lines->numVertices = 5;
    for (SoNode* node : std::initializer_list<SoNode*>{unlit, colour, style, corners, lines})
        frame->addChild(node);
    return frame;
}

SoSeparator* makePart(const SbColor& colour)
{
    auto* part = new SoSeparator;
    auto* material = new SoMaterial;
    material->diffuseColor = colour;
    material->ambientColor = colour;
    part->addChild(material);
    return part;
}

SoNode* makeBall(const SbColor& colour)
{
    SoSeparator* const ball = makePart(colour);
    auto* sphere = new SoSphere;
    sphere->radius = BALL;
    ball->addChild(sphere);
    return ball;
}

// Along x, with a head at either end.
SoNode* makeArrow(const SbColor& colour)
{
    SoSeparator* const arrow = makePart(colour);
    for (const float way : {1.0f, -1.0f}) {
        auto* half = new SoSeparator;
        auto* turn = new SoRotation;
        turn->rotation = SbRotation(SbVec3f(0, 1, 0), SbVec3f(way, 0, 0));
        auto* toShaft = new SoTranslation;
        toShaft->translation = SbVec3f(0, (1 - HEAD_LENGTH) / 2, 0);
        auto* shaft = new SoCylinder;
        shaft->radius = SHAFT;
        shaft->height = 1 - HEAD_LENGTH;
        auto* toHead = new SoTranslation;
        toHead->translation = SbVec3f(0, 0.5f, 0);
        auto* head = new SoCone;
        head->bottomRadius = HEAD;
        head->height = HEAD_LENGTH;
        for (SoNode* node : std::initializer_list<SoNode*>{turn, toShaft, shaft, toHead, head})
            half->addChild(node);
        arrow->addChild(half);
    }
    return arrow;
}

// From two sides, so that no view is dark.
void addLights(SoGroup& group)
{
    for (const float way : {1.0f, -1.0f}) {
        auto* light = new SoDirectionalLight;
        light->direction = SbVec3f(-0.4f, -0.5f, -0.75f) * way;
        group.addChild(light);
    }
}

double rounded(double number, double step) { return std::round(number / step) * step; }

Vector toVector(const SbVec3f& v) { return {double(v[0]), double(v[1]), double(v[2])}; }

} // namespace

ClipHandles::ClipHandles()
    : visibility(new SoSwitch),
      handles(new SoSeparator),
      middle(new SoTransform),
      size(new SoTransform),
      turner(new SoRotateSphericalDragger),
      mover(new SoTranslate1Dragger),
      eventGraph(new SoSeparator),
      events(SbViewportRegion(1, 1))
{
    visibility->ref();
    eventGraph->ref();
    // Clicks on them mean no place of the data.
    auto* noPlace = new SoPickStyle;
    noPlace->style = SoPickStyle::UNPICKABLE;
    noPlace->setOverride(TRUE);
    auto* seen = new SoSeparator;
    seen->addChild(noPlace);
    seen->addChild(handles);
    visibility->addChild(seen);

    handles->renderCaching = SoSeparator::OFF;
    addLights(*handles);
    handles->addChild(middle);
    handles->addChild(size);
    auto* before = new SoDepthBuffer;
    before->range = SbVec2f(0, NEAREST_DEPTHS);
    auto* ball = new SoSeparator;
    ball->addChild(before);
    for (const char* unused : {"feedback", "feedbackActive"}) {
        turner->setPart(unused, new SoSeparator);
        mover->setPart(unused, new SoSeparator);
    }
    turner->setPart("rotator", makeBall(HANDLE_COLOUR));
    turner->setPart("rotatorActive", makeBall(HELD_COLOUR));
    mover->setPart("translator", makeArrow(HANDLE_COLOUR));
    mover->setPart("translatorActive", makeArrow(HELD_COLOUR));
    addDragger(*turner, *ball);
    handles->addChild(ball);
    auto* turned = new SoRotation;
    turned->rotation.connectFrom(&turner->rotation);
    handles->addChild(turned);
    auto* arrow = new SoSeparator;
    arrow->addChild(before);
    addDragger(*mover, *arrow);
    handles->addChild(arrow);
    auto* moved = new SoTranslation;
    moved->translation.connectFrom(&mover->translation);
    handles->addChild(moved);
    handles->addChild(makeFrame());
    eventGraph->addChild(handles);
    hide();
}

ClipHandles::~ClipHandles()
{
    visibility->unref();
    eventGraph->unref();
}

void ClipHandles::addDragger(SoDragger& dragger, SoGroup& parent)
{
    dragger.addStartCallback(begin, this);
    dragger.addMotionCallback(move, this);
    dragger.addFinishCallback(end, this);
    parent.addChild(&dragger);
}

SoNode* ClipHandles::getNode() const { return visibility; }

void ClipHandles::show(const ClipPlane& plane, const Placement& placementOfData,
                       const SbBox3f& boxOfData)
{
    shown = plane;
    placement = placementOfData;
    box = boxOfData;
    if (!isDragged)
        place();
    visibility->whichChild = 0;
}

void ClipHandles::hide()
{
    visibility->whichChild = SO_SWITCH_NONE;
    if (isDragged) // the end of that would not come any more
        events.releaseGrabber();
    isDragged = false;
}

bool ClipHandles::isShown() const { return visibility->whichChild.getValue() == 0; }

// At the point of the plane that is nearest to the middle of the data.
void ClipHandles::place()
{
    const Vector normal = shown.unitNormal(), centre = toVector(box.getCenter());
    const double distance = (*shown.distance - normal.dot(placement.origin)) * placement.scale;
    middle->translation = toSbVec3f(centre + normal * (distance - normal.dot(centre)));
    middle->rotation = SbRotation(ALONG, toSbVec3f(normal));
    const float unit = ARROW * (box.getMax() - box.getMin()).length();
    size->scaleFactor = SbVec3f(unit, unit, unit);
    turner->rotation = SbRotation::identity();
    mover->translation = SbVec3f(0, 0, 0);
}

ClipPlane ClipHandles::plane() const
{
    SbVec3f along;
    (turner->rotation.getValue() * middle->rotation.getValue()).multVec(ALONG, along);
    const double unit = double(size->scaleFactor.getValue()[0]);
    ClipPlane now;
    now.normal = Vector(rounded(double(along[0]), 1e-3), rounded(double(along[1]), 1e-3),
                        rounded(double(along[2]), 1e-3));
    const Vector normal = now.unitNormal();
    const Vector point =
        toVector(middle->translation.getValue() + unit * mover->translation.getValue()[0] * along);
    const double step = std::pow(10.0, std::floor(std::log10(unit / placement.scale / 500)));
    now.distance = rounded(normal.dot(placement.toData(point)), step);
    return now;
}

bool ClipHandles::take(const SoEvent& event, const SbViewportRegion& region, SoCamera& camera)
{
    if (!isShown() || !(event.isOfType(SoMouseButtonEvent::getClassTypeId()) ||
                        event.isOfType(SoLocation2Event::getClassTypeId())))
        return false;
    if (eventGraph->getNumChildren() == 1)
        eventGraph->insertChild(&camera, 0);
    else if (eventGraph->getChild(0) != &camera) // not while they are dragged, along a path
        eventGraph->replaceChild(0, &camera);
    events.setViewportRegion(region);
    events.setEvent(&event);
    events.apply(eventGraph);
    return events.isHandled() || events.getGrabber();
}

void ClipHandles::move(void* handles, SoDragger* /*dragger*/)
{
    auto* self = static_cast<ClipHandles*>(handles);
    if (self->isDragged && self->onMoved)
        self->onMoved(self->plane());
}

void ClipHandles::begin(void* handles, SoDragger* /*dragger*/)
{
    static_cast<ClipHandles*>(handles)->isDragged = true;
}

void ClipHandles::end(void* handles, SoDragger* /*dragger*/)
{
    auto* self = static_cast<ClipHandles*>(handles);
    self->isDragged = false;
    self->place();
}

} // namespace strandview
