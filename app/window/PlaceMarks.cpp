// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/PlaceMarks.h"

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoPointSet.h>
#include <Inventor/nodes/SoSwitch.h>

#include "scene/SoLabels.h"
#include "scene/SoOverlay.h"
#include "scene/overlay.h"

namespace strandview {

namespace {

// In the desktop's pixels.
const float DOT = 8, LINE = 2;
const float RIM = 2; // on either side

const SbColor RIM_COLOUR(0, 0, 0);

SoMaterialBinding* makeBinding(SoMaterialBinding::Binding value)
{
    auto* binding = new SoMaterialBinding;
    binding->value = value;
    return binding;
}

} // namespace

const SbColor PlaceMarks::YELLOW(1, 0.85f, 0.1f);
const SbColor PlaceMarks::BLUE(0.45f, 0.85f, 1);

PlaceMarks::PlaceMarks()
    : overlay(new SoOverlay),
      visibility(new SoSwitch),
      points(new SoCoordinate3),
      colours(new SoBaseColor),
      rim(new SoDrawStyle),
      core(new SoDrawStyle),
      lineSet(new SoLineSet),
      dots(new SoPointSet),
      dotColours(new SoBaseColor),
      labels(new SoLabels)
{
    overlay->ref();
    overlay->renderCaching = SoSeparator::OFF; // where labels are depends on the camera
    overlay->addChild(visibility);
    auto* depth = new SoDepthBuffer;
    depth->test = FALSE;
    depth->write = FALSE;
    auto* lightModel = new SoLightModel;
    lightModel->model = SoLightModel::BASE_COLOR;
    auto* rimColour = new SoBaseColor;
    rimColour->rgb = RIM_COLOUR;
    for (SoNode* node : std::initializer_list<SoNode*>{
             depth, lightModel, points, rimColour, rim, lineSet, dots,
             makeBinding(SoMaterialBinding::PER_FACE), colours, core, lineSet,
             makeBinding(SoMaterialBinding::PER_VERTEX), dotColours, dots, labels})
        visibility->addChild(node);
    setScale(1);
    setLines({});
}

PlaceMarks::~PlaceMarks() { overlay->unref(); }

SoNode* PlaceMarks::getNode() const { return overlay; }

void PlaceMarks::setLines(const std::vector<Line>& lines)
{
    std::vector<SbVec3f> places;
    std::vector<SbColor> ofLines, ofDots;
    std::vector<int32_t> counts;
    std::vector<SoLabels::Label> texts;
    const auto add = [&](const Line& line) {
        places.insert(places.end(), line.places.begin(), line.places.end());
        ofDots.insert(ofDots.end(), line.places.size(), line.colour);
        texts.push_back({line.places, line.text, line.colour});
    };
    for (const Line& line : lines) {
        if (line.places.size() < 2)
            continue;
        add(line);
        ofLines.push_back(line.colour);
        counts.push_back(int32_t(line.places.size()));
    }
    for (const Line& line : lines) {
        if (line.places.size() == 1) // no line to draw
            add(line);
    }
    visibility->whichChild = places.empty() ? SO_SWITCH_NONE : SO_SWITCH_ALL;
    setPoints(*points, places);
    const auto set = [](auto& field, const auto& values) {
        field.setNum(int(values.size()));
        field.setValues(0, int(values.size()), values.data());
    };
    set(lineSet->numVertices, counts);
    set(colours->rgb, ofLines);
    set(dotColours->rgb, ofDots);
    dots->numPoints = int(places.size());
    labels->setLabels(texts);
}

int PlaceMarks::countPlaces() const { return points->point.getNum(); }

std::vector<std::string> PlaceMarks::getTexts() const
{
    std::vector<std::string> texts;
    for (const SoLabels::Label& label : labels->getLabels()) {
        if (!label.text.empty())
            texts.push_back(label.text);
    }
    return texts;
}

void PlaceMarks::setScale(float scale)
{
    core->pointSize = DOT * scale;
    core->lineWidth = LINE * scale;
    rim->pointSize = (DOT + 2 * RIM) * scale;
    rim->lineWidth = (LINE + 2 * RIM) * scale;
    labels->setScale(scale);
}

} // namespace strandview
