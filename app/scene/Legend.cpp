// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Legend.h"

#include <algorithm>

#include <Inventor/misc/SoChildList.h>
#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFaceSet.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoQuadMesh.h>
#include <Inventor/nodes/SoSeparator.h>

#include "request/conversions.h"
#include "scene/Colouring.h"
#include "scene/Lettering.h"
#include "scene/Ticks.h"
#include "scene/overlay.h"

namespace strandview {

namespace {

// In the legend's own view: 2 high, and 2 wide or more.
const float BAR_LEFT = -0.7f;
const float BAR_RIGHT = 0.7f;
const float BAR_RIGHT_OF_PATCH = 0.55f; // where a patch stands beside the bar
const float CONSTANT_WIDTH = 0.1f;
const float PATCH_LEFT = 0.77f;
const float PATCH_RIGHT = 0.85f;
const float BAR_TOP = -0.82f;
const float BAR_BOTTOM = -0.87f;
const float TRIANGLE = 0.04f; // beyond the bar
const float TICK_BOTTOM = -0.89f;
const float NAME = -0.80f;
const float WIDEST = 1.9f; // of all text
const int BAR_CELLS = 256;
const int MOST_STEPS = 8;
const char* const NO_VALUE = "no value";

// From left to right on the view.
struct Bar
{
    explicit Bar(const Colouring& colouring)
    {
        if (!colouring.constant.empty()) {
            left = -CONSTANT_WIDTH;
            right = CONSTANT_WIDTH;
        } else if (colouring.isMissing) {
            right = BAR_RIGHT_OF_PATCH;
        }
    }
    float at(double place) const { return left + (right - left) * float(place); }
    float middle() const { return (left + right) / 2; }

    float left = BAR_LEFT;
    float right = BAR_RIGHT;
};

// The letters of a legend, in their size.
class Text
{
public:
    explicit Text(float letterSize) : size(letterSize) {}

    LegendText make(const std::string& text, float x, float y) const
    {
        return {text, x, y, size * float(lettering.getWidth(text))};
    }
    std::string elide(const std::string& text, float width) const
    {
        return lettering.elide(text, double(width / size));
    }
    /// The baseline of the numbers: below the ticks by the height of digits and a little.
    float numberLine() const { return TICK_BOTTOM - 0.0235f - 0.73f * size; }
    /// Between two texts.
    float gap() const { return size; }

    void addCorners(const LegendText& text, std::vector<SbVec3f>& corners) const
    {
        for (const SbVec2f& corner : lettering.getShape(text.text))
            corners.emplace_back(text.x - text.width / 2 + size * corner[0],
                                 text.y + size * corner[1], 0.0f);
    }

private:
    Lettering lettering;
    float size;
};

double placeOf(const Colouring& colouring, double value)
{
    return (value - colouring.min) / (colouring.max - colouring.min);
}

bool areApart(const std::vector<LegendText>& texts, float gap)
{
    for (std::size_t i = 1; i < texts.size(); ++i) {
        const float between = (texts[i - 1].width + texts[i].width) / 2 + gap;
        if (texts[i].x - texts[i - 1].x < between)
            return false;
    }
    return true;
}

std::vector<LegendText> layOutNumbers(const Colouring& colouring, const Ticks& ticks,
                                      const Text& letters)
{
    const Bar bar(colouring);
    std::vector<LegendText> numbers;
    for (std::size_t i = 0; i < ticks.values.size(); ++i) {
        numbers.push_back(letters.make(ticks.labels[i], bar.at(placeOf(colouring, ticks.values[i])),
                                       letters.numberLine()));
    }
    if (colouring.isMissing) {
        LegendText label =
            letters.make(NO_VALUE, (PATCH_LEFT + PATCH_RIGHT) / 2, letters.numberLine());
        label.x = std::min(label.x, (WIDEST - label.width) / 2);
        numbers.push_back(label);
    }
    return numbers;
}

// As many as have room beside each other.
Ticks chooseTicks(const Colouring& colouring, const Text& letters)
{
    const int fewestSteps = 2;
    Ticks ticks;
    for (int steps = MOST_STEPS; steps >= fewestSteps; --steps) {
        ticks = makeTicks(colouring.min, colouring.max, steps);
        if (areApart(layOutNumbers(colouring, ticks, letters), letters.gap()))
            break;
    }
    return ticks;
}

// The one number of a constant is its own tick.
Ticks ticksOf(const Colouring& colouring, const Text& letters)
{
    if (colouring.constant.empty())
        return chooseTicks(colouring, letters);
    return {{(colouring.min + colouring.max) / 2}, {colouring.constant}, ""};
}

// The name in the middle and what belongs to the numbers at the bar's end, or both in a row
// where they would meet. A long name loses its end.
std::vector<LegendText> layOutName(const Colouring& colouring, const std::string& note,
                                   const Text& letters)
{
    LegendText behind = letters.make(note, 0, NAME);
    const float apart = note.empty() ? 0 : 2 * letters.gap();
    const float room = WIDEST - behind.width - apart;
    LegendText name = letters.make(letters.elide(colouring.name, room), 0, NAME);
    if (note.empty())
        return {name};
    behind.x = Bar(colouring).right - behind.width / 2;
    if (name.width / 2 + apart > behind.x - behind.width / 2) {
        const float left = -(name.width + apart + behind.width) / 2;
        name.x = left + name.width / 2;
        behind.x = -left - behind.width / 2;
    }
    return {name, behind};
}

std::vector<LegendText> layOut(const Colouring& colouring, const Ticks& ticks, const Text& letters)
{
    std::vector<LegendText> texts = layOutName(colouring, ticks.note, letters);
    const std::vector<LegendText> numbers = layOutNumbers(colouring, ticks, letters);
    texts.insert(texts.end(), numbers.begin(), numbers.end());
    return texts;
}

SbColor colourAt(const ColourMapper& ramp, double place)
{
    ColourMapper::Colour colour;
    ramp.getColour(place, colour);
    return toSbColor(colour);
}

// A filled shape of one colour.
void addFace(SoSeparator* legend, const SbColor& colour, const std::vector<SbVec3f>& corners)
{
    auto* group = new SoSeparator;
    auto* base = new SoMaterial; // not of the text's kind, whose colour changes
    base->diffuseColor = colour;
    group->addChild(base);
    auto* coordinates = new SoCoordinate3;
    coordinates->point.setValues(0, int(corners.size()), corners.data());
    group->addChild(coordinates);
    auto* face = new SoFaceSet;
    face->numVertices = int(corners.size());
    group->addChild(face);
    legend->addChild(group);
}

void addBar(SoSeparator* legend, const Colouring& colouring, const Bar& bar)
{
    auto* group = new SoSeparator;
    auto* material = new SoMaterial;
    auto* corners = new SoCoordinate3;
    for (int i = 0; i <= BAR_CELLS; ++i) {
        const double t = double(i) / BAR_CELLS;
        const SbColor colour = colourAt(colouring.ramp, colouring.constant.empty() ? t : 0.5);
        for (const int row : {0, 1}) {
            const int index = row * (BAR_CELLS + 1) + i;
            corners->point.set1Value(index, bar.at(t), row == 0 ? BAR_BOTTOM : BAR_TOP, 0);
            material->diffuseColor.set1Value(index, colour);
        }
    }
    group->addChild(material);
    auto* binding = new SoMaterialBinding;
    binding->value = SoMaterialBinding::PER_VERTEX;
    group->addChild(binding);
    group->addChild(corners);
    auto* mesh = new SoQuadMesh;
    mesh->verticesPerRow = BAR_CELLS + 1;
    mesh->verticesPerColumn = 2;
    group->addChild(mesh);
    legend->addChild(group);
}

// What the colours of the bar do not show.
void addBesideBar(SoSeparator* legend, const Colouring& colouring, const Bar& bar)
{
    const float middle = (BAR_TOP + BAR_BOTTOM) / 2;
    const auto addTriangle = [&](float end, float tip, double place) {
        addFace(legend, colourAt(colouring.ramp, place),
                {{end, BAR_BOTTOM, 0}, {tip, middle, 0}, {end, BAR_TOP, 0}});
    };
    if (colouring.isBelow)
        addTriangle(bar.left, bar.left - TRIANGLE, 0);
    if (colouring.isAbove)
        addTriangle(bar.right, bar.right + TRIANGLE, 1);
    if (colouring.isMissing) {
        addFace(legend, toSbColor(NO_VALUE_COLOUR),
                {{PATCH_LEFT, BAR_BOTTOM, 0},
                 {PATCH_RIGHT, BAR_BOTTOM, 0},
                 {PATCH_RIGHT, BAR_TOP, 0},
                 {PATCH_LEFT, BAR_TOP, 0}});
    }
}

// Around the bar and its triangles, so that a ramp's end of the background's colour is seen.
void addFrame(SoSeparator* legend, const Colouring& colouring, const Bar& bar)
{
    const float middle = (BAR_TOP + BAR_BOTTOM) / 2;
    std::vector<SbVec3f> corners{{bar.left, BAR_TOP, 0}};
    if (colouring.isBelow)
        corners.emplace_back(bar.left - TRIANGLE, middle, 0.0f);
    corners.emplace_back(bar.left, BAR_BOTTOM, 0.0f);
    corners.emplace_back(bar.right, BAR_BOTTOM, 0.0f);
    if (colouring.isAbove)
        corners.emplace_back(bar.right + TRIANGLE, middle, 0.0f);
    corners.emplace_back(bar.right, BAR_TOP, 0.0f);
    corners.push_back(corners.front());
    auto* style = new SoDrawStyle;
    style->lineWidth = 1;
    legend->addChild(style);
    auto* coordinates = new SoCoordinate3;
    coordinates->point.setValues(0, int(corners.size()), corners.data());
    legend->addChild(coordinates);
    auto* line = new SoLineSet;
    line->numVertices = int(corners.size());
    legend->addChild(line);
}

void addTicks(SoSeparator* legend, const Colouring& colouring, const Ticks& ticks, const Bar& bar)
{
    auto* ends = new SoCoordinate3;
    auto* lines = new SoLineSet;
    int count = 0;
    for (const double tick : ticks.values) {
        const float x = bar.at(placeOf(colouring, tick));
        ends->point.set1Value(2 * count, x, BAR_BOTTOM, 0);
        ends->point.set1Value(2 * count + 1, x, TICK_BOTTOM, 0);
        lines->numVertices.set1Value(count, 2);
        ++count;
    }
    auto* style = new SoDrawStyle;
    style->lineWidth = 2;
    legend->addChild(style);
    legend->addChild(ends);
    legend->addChild(lines);
}

void addTexts(SoSeparator* legend, const std::vector<LegendText>& texts, const Text& letters)
{
    std::vector<SbVec3f> corners;
    for (const LegendText& text : texts)
        letters.addCorners(text, corners);
    addShapes(*legend, corners);
}

} // namespace

std::vector<LegendText> layOutLegend(const Colouring& colouring, float textSize)
{
    const Text letters(textSize);
    return layOut(colouring, ticksOf(colouring, letters), letters);
}

SoNode* makeLegend(const Colouring& colouring, const Colour& background, float textSize)
{
    SoSeparator* legend = makeOverlay();
    const Bar bar(colouring);
    addBar(legend, colouring, bar);
    addBesideBar(legend, colouring, bar);
    legend->addChild(new SoBaseColor);
    setLegendBackground(*legend, background);
    const Text letters(textSize);
    const Ticks ticks = ticksOf(colouring, letters);
    addFrame(legend, colouring, bar);
    addTicks(legend, colouring, ticks, bar);
    addTexts(legend, layOut(colouring, ticks, letters), letters);
    return legend;
}

void setLegendBackground(SoNode& legend, const Colour& background)
{
    const SbColor ink = toSbColor(inkOn(background));
    for (int i = 0; i < legend.getChildren()->getLength(); ++i) {
        SoNode* child = (*legend.getChildren())[i];
        if (child->isOfType(SoBaseColor::getClassTypeId()))
            static_cast<SoBaseColor*>(child)->rgb = ink;
    }
}

} // namespace strandview
