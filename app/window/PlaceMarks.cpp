// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PlaceMarks.h"

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoPointSet.h>
#include <Inventor/nodes/SoSwitch.h>

#include "scene/SoOverlay.h"

namespace strandview {

namespace {

// In the desktop's pixels.
const float DOT = 8, LINE = 2;
const float RIM = 2; // on either side

const SbColor RIM_COLOUR(0, 0, 0);
const SbColor CORE_COLOUR(1, 0.85f, 0.1f);

} // namespace

PlaceMarks::PlaceMarks()
    : overlay(new SoOverlay),
      visibility(new SoSwitch),
      points(new SoCoordinate3),
      rim(new SoDrawStyle),
      core(new SoDrawStyle),
      lines(new SoLineSet),
      dots(new SoPointSet)
{
    overlay->ref();
    overlay->addChild(visibility);
    auto* depth = new SoDepthBuffer;
    depth->test = FALSE;
    depth->write = FALSE;
    auto* lightModel = new SoLightModel;
    lightModel->model = SoLightModel::BASE_COLOR;
    auto* rimColour = new SoBaseColor;
    rimColour->rgb = RIM_COLOUR;
    auto* coreColour = new SoBaseColor;
    coreColour->rgb = CORE_COLOUR;
    for (SoNode* node : std::initializer_list<SoNode*>{depth, lightModel, points, rimColour, rim,
                                                       lines, dots, coreColour, core, lines, dots})
        visibility->addChild(node);
    setScale(1);
    setPlaces({});
}

PlaceMarks::~PlaceMarks() { overlay->unref(); }

SoNode* PlaceMarks::getNode() const { return overlay; }

void PlaceMarks::setPlaces(const std::vector<SbVec3f>& places)
{
    const int count = int(places.size());
    visibility->whichChild = count > 0 ? SO_SWITCH_ALL : SO_SWITCH_NONE;
    points->point.setNum(count);
    points->point.setValues(0, count, places.data());
    lines->numVertices.setNum(count > 1 ? 1 : 0);
    if (count > 1)
        lines->numVertices = count;
    dots->numPoints = count;
}

int PlaceMarks::countPlaces() const { return points->point.getNum(); }

void PlaceMarks::setScale(float scale)
{
    core->pointSize = DOT * scale;
    core->lineWidth = LINE * scale;
    rim->pointSize = (DOT + 2 * RIM) * scale;
    rim->lineWidth = (LINE + 2 * RIM) * scale;
}

} // namespace strandview
