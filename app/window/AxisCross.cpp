// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/AxisCross.h"

#include <algorithm>
#include <array>
#include <vector>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSwitch.h>

#include "scene/SoOverlay.h"

namespace strandview {

namespace {

// In the desktop's pixels.
const float AXIS_LENGTH = 26;
const float LETTER_DISTANCE = 10; // from an axis's end to the middle of its letter
const float HALF_LETTER = 4;
const float LINE_WIDTH = 2.5f;
// How far a legend, and an upright one, reaches from the middle of a view, in halves of its shorter
// side.
const float LEGEND_REACH = 0.9f;
const float UPRIGHT_REACH = 0.8f;

// An axis seen from its end has its letter beside it.
const float SHORTEST_SEEN = 0.3f;

using Stroke = std::vector<SbVec2f>; // a letter reaches from -1 to 1

struct Axis
{
    SbVec3f direction;
    SbColor colour; // with a contrast of 3 and more to white and to black
    std::vector<Stroke> letter;
};

const std::array<Axis, 3>& axes()
{
    static const std::array<Axis, 3> all{
        Axis{{1, 0, 0}, SbColor(0.86f, 0.16f, 0.16f), {{{-1, -1}, {1, 1}}, {{-1, 1}, {1, -1}}}},
        Axis{{0, 1, 0}, SbColor(0.0f, 0.55f, 0.0f), {{{-1, 1}, {0, 0}, {1, 1}}, {{0, 0}, {0, -1}}}},
        Axis{{0, 0, 1}, SbColor(0.2f, 0.4f, 1.0f), {{{-1, 1}, {1, 1}, {-1, -1}, {1, -1}}}}};
    return all;
}

SbVec2f letterPlace(const SbVec3f& seen)
{
    const SbVec2f flat(seen[0], seen[1]);
    SbVec2f outwards = flat.length() > SHORTEST_SEEN ? flat : SbVec2f(-1, -1);
    outwards.normalize();
    return flat * AXIS_LENGTH + outwards * LETTER_DISTANCE;
}

} // namespace

AxisCross::AxisCross()
    : overlay(new SoOverlay),
      visibility(new SoSwitch),
      camera(new SoOrthographicCamera),
      style(new SoDrawStyle),
      colours(new SoBaseColor),
      points(new SoCoordinate3),
      lines(new SoLineSet)
{
    overlay->ref();
    overlay->addChild(visibility);
    visibility->whichChild = SO_SWITCH_ALL;
    camera->viewportMapping = SoCamera::LEAVE_ALONE;
    camera->position = SbVec3f(0, 0, 1);
    camera->nearDistance = 0.5f;
    camera->farDistance = 1.5f;
    auto* depth = new SoDepthBuffer;
    depth->test = FALSE;
    depth->write = FALSE;
    auto* lightModel = new SoLightModel;
    lightModel->model = SoLightModel::BASE_COLOR;
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_FACE; // a line
    for (SoNode* node : std::initializer_list<SoNode*>{camera, depth, lightModel, binding, style,
                                                       colours, points, lines})
        visibility->addChild(node);
    setView(SbVec2s(1, 1), 1);
    setOrientation(SbRotation::identity());
}

AxisCross::~AxisCross() { overlay->unref(); }

SoNode* AxisCross::getNode() const { return overlay; }

void AxisCross::setView(const SbVec2s& size, float scale)
{
    viewSize = size;
    viewScale = scale;
    place();
    style->lineWidth = LINE_WIDTH * scale;
}

void AxisCross::setLegendRoom(const FreeEdges& room)
{
    if (room == legendRoom) // in each frame: a change would ask for another one
        return;
    legendRoom = room;
    place();
}

void AxisCross::place()
{
    const float width = float(viewSize[0]) / viewScale, height = float(viewSize[1]) / viewScale;
    const float shorter = std::min(width, height);
    const auto isFree = [shorter](float side, float reach) {
        return side / 2 - 2 * HALF_SIDE > reach * shorter / 2;
    };
    const float below = isFree(width, LEGEND_REACH) ? 0 : legendRoom.bottom * height;
    const float beside = isFree(height, UPRIGHT_REACH) ? 0 : legendRoom.right * shorter;
    // The origin is the middle of the cross.
    camera->position = SbVec3f(HALF_SIDE - width / 2 + beside, height / 2 - HALF_SIDE - below, 1);
    camera->height = height;
    camera->aspectRatio = width / height;
}

void AxisCross::setOrientation(const SbRotation& orientation)
{
    std::array<std::pair<SbVec3f, const Axis*>, 3> seen;
    for (std::size_t i = 0; i < 3; ++i) {
        seen[i].second = &axes()[i];
        orientation.inverse().multVec(axes()[i].direction, seen[i].first);
    }
    // The nearest last.
    std::sort(seen.begin(), seen.end(),
              [](const auto& a, const auto& b) { return a.first[2] < b.first[2]; });

    std::vector<SbVec3f> places;
    std::vector<int32_t> counts;
    std::vector<SbColor> lineColours;
    const auto addLine = [&](const Stroke& stroke, const SbVec2f& place, float scale,
                             const SbColor& colour) {
        for (const SbVec2f& point : stroke)
            places.emplace_back(place[0] + scale * point[0], place[1] + scale * point[1], 0.0f);
        counts.push_back(int32_t(stroke.size()));
        lineColours.push_back(colour);
    };
    for (const auto& [direction, axis] : seen) {
        addLine({{0, 0}, {direction[0], direction[1]}}, {0, 0}, AXIS_LENGTH, axis->colour);
        for (const Stroke& stroke : axis->letter)
            addLine(stroke, letterPlace(direction), HALF_LETTER, axis->colour);
    }
    points->point.setValues(0, int(places.size()), places.data());
    lines->numVertices.setValues(0, int(counts.size()), counts.data());
    colours->rgb.setValues(0, int(lineColours.size()), lineColours.data());
}

void AxisCross::show(bool shown)
{
    visibility->whichChild = shown ? SO_SWITCH_ALL : SO_SWITCH_NONE;
}

bool AxisCross::isShown() const { return visibility->whichChild.getValue() == SO_SWITCH_ALL; }

} // namespace strandview
