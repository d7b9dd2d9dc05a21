// SPDX-License-Identifier: GPL-3.0-or-later
#include "Legend.h"

#include <cmath>

#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoAsciiText.h>
#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFont.h>
#include <Inventor/nodes/SoLightModel.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoQuadMesh.h>
#include <Inventor/nodes/SoTranslation.h>
#include <QString>

#include <ColourMapper.h>

#include "SoOverlay.h"

namespace {

// In the legend's own view: 2 high, and 2 wide or more.
const float HALF_WIDTH = 0.7f;
const float BAR_TOP = -0.82f;
const float BAR_BOTTOM = -0.87f;
const float TICK_BOTTOM = -0.885f;
const float NUMBERS = -0.945f;
const float NAME = -0.80f;
const float TEXT_SIZE = 0.05f;
const int BAR_CELLS = 256;

float place(const ColourMapper& mapper, double value)
{
    return HALF_WIDTH * float(2 * mapper.minMaxToZeroOne(value) - 1);
}

void addBar(SoSeparator* legend, const ColourMapper& mapper)
{
    auto* group = new SoSeparator;
    auto* material = new SoMaterial;
    auto* corners = new SoCoordinate3;
    ColourMapper::Colour colour;
    for (int i = 0; i <= BAR_CELLS; ++i) {
        const double t = double(i) / BAR_CELLS;
        mapper.getColour(mapper.zeroOneToMinMax(t), colour);
        const float x = HALF_WIDTH * float(2 * t - 1);
        for (const int row : {0, 1}) {
            const int index = row * (BAR_CELLS + 1) + i;
            corners->point.set1Value(index, x, row == 0 ? BAR_BOTTOM : BAR_TOP, 0);
            material->diffuseColor.set1Value(index, float(colour.x), float(colour.y),
                                             float(colour.z));
        }
    }
    group->addChild(material);
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX;
    group->addChild(binding);
    group->addChild(corners);
    auto* bar = new SoQuadMesh;
    bar->verticesPerRow = BAR_CELLS + 1;
    bar->verticesPerColumn = 2;
    group->addChild(bar);
    legend->addChild(group);
}

void addText(SoSeparator* legend, const std::string& text, float x, float y)
{
    auto* group = new SoSeparator;
    auto* translation = new SoTranslation;
    translation->translation = SbVec3f(x, y, 0);
    group->addChild(translation);
    auto* line = new SoAsciiText;
    line->string = text.c_str();
    line->justification = SoAsciiText::CENTER;
    group->addChild(line);
    legend->addChild(group);
}

void addTicks(SoSeparator* legend, const ColourMapper& mapper)
{
    const std::vector<double> ticks = roundTicks(mapper.getMin(), mapper.getMax());
    auto* ends = new SoCoordinate3;
    auto* lines = new SoLineSet;
    int count = 0;
    for (const double tick : ticks) {
        const float x = place(mapper, tick);
        ends->point.set1Value(2 * count, x, BAR_BOTTOM, 0);
        ends->point.set1Value(2 * count + 1, x, TICK_BOTTOM, 0);
        lines->numVertices.set1Value(count, 2);
        ++count;
        addText(legend, QString::number(tick, 'g', 6).toStdString(), x, NUMBERS);
    }
    auto* style = new SoDrawStyle;
    style->lineWidth = 2;
    legend->addChild(style);
    legend->addChild(ends);
    legend->addChild(lines);
}

} // namespace

std::vector<double> roundTicks(double min, double max)
{
    const double power = std::pow(10, std::floor(std::log10((max - min) / 4)));
    double step = power;
    for (const double factor : {2.0, 5.0, 10.0}) {
        if ((max - min) / step > 8)
            step = factor * power;
    }
    // What is off by rounding only counts as inside, and as zero.
    const double slack = 1e-9 * step;
    std::vector<double> ticks;
    for (double k = std::ceil((min - slack) / step); k * step <= max + slack; ++k)
        ticks.push_back(k == 0 ? 0 : k * step);
    return ticks;
}

SoNode* makeLegend(const std::string& name, const ColourMapper& mapper, const Colour& background)
{
    auto* legend = new SoOverlay;
    auto* camera = new SoOrthographicCamera;
    camera->position = SbVec3f(0, 0, 1);
    camera->height = 2;
    camera->nearDistance = 0.5f;
    camera->farDistance = 1.5f;
    legend->addChild(camera);
    auto* depth = new SoDepthBuffer;
    depth->test = FALSE;
    depth->write = FALSE;
    legend->addChild(depth);
    auto* lightModel = new SoLightModel;
    lightModel->model = SoLightModel::BASE_COLOR;
    legend->addChild(lightModel);

    addBar(legend, mapper);
    legend->addChild(new SoBaseColor);
    setLegendBackground(*legend, background);
    auto* font = new SoFont;
    font->size = TEXT_SIZE;
    legend->addChild(font);
    addTicks(legend, mapper);
    addText(legend, name, 0, NAME);
    return legend;
}

void setLegendBackground(SoNode& legend, const Colour& background)
{
    const ColourMapper::Colour ink = ColourMapper::getForeground(ColourMapper::Colour(
        double(background.red), double(background.green), double(background.blue)));
    for (int i = 0; i < legend.getChildren()->getLength(); ++i) {
        SoNode* child = (*legend.getChildren())[i];
        if (child->isOfType(SoBaseColor::getClassTypeId()))
            static_cast<SoBaseColor*>(child)->rgb.setValue(float(ink.x), float(ink.y),
                                                           float(ink.z));
    }
}
