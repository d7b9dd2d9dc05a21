// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Legend.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include <Inventor/nodes/SoBaseColor.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoFaceSet.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoQuadMesh.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSwitch.h>
#include <Inventor/nodes/SoTranslation.h>

#include "request/conversions.h"
#include "scene/Colouring.h"
#include "scene/Lettering.h"
#include "scene/SoLegendCamera.h"
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
const float BAR_MIDDLE = (BAR_TOP + BAR_BOTTOM) / 2;
const float TRIANGLE = 0.04f; // beyond the bar
const float TICK_BOTTOM = -0.89f;
const float NAME = -0.80f;
const float WIDEST = 1.9f; // of all text
const int BAR_CELLS = 256;
const int MOST_STEPS = 8;
const char* const NO_VALUE = "no value";

// How much higher than at the bottom of its view, which is 2 high.
float liftOf(LegendPlace place) { return place == LegendPlace::TOP ? 2 - 2 * LEGEND_HEIGHT : 0; }

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

// Those whose numbers are what is written.
Ticks exactIn(const NumberFormat& format, const Ticks& ticks, double range)
{
    Ticks exact;
    for (const double value : ticks.values) {
        if (std::abs(format.rounded(value) - value) > 1e-6 * range)
            continue;
        exact.values.push_back(value);
        exact.labels.push_back(format.write(value));
    }
    return exact;
}

bool areInView(const std::vector<LegendText>& texts)
{
    return std::all_of(texts.begin(), texts.end(), [](const LegendText& text) {
        return std::abs(text.x) + text.width / 2 <= WIDEST / 2;
    });
}

// Of a format, at least two with room beside each other; nothing if there are none.
std::optional<Ticks> ticksIn(const NumberFormat& format, const Colouring& colouring,
                             const Text& letters)
{
    for (int steps = MOST_STEPS; steps >= 1; --steps) {
        const Ticks ticks = exactIn(format, makeTicks(colouring.min, colouring.max, steps),
                                    colouring.max - colouring.min);
        const std::vector<LegendText> numbers = layOutNumbers(colouring, ticks, letters);
        if (ticks.values.size() >= 2 && areApart(numbers, letters.gap()) && areInView(numbers))
            return ticks;
    }
    return {};
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

// What rounding alone makes of 0 is 0 in every format.
std::string constantIn(const NumberFormat& format, const Colouring& colouring)
{
    const double middle = colouring.constantMin / 2 + colouring.constantMax / 2;
    return format.write(colouring.constant == "0" ? 0 : middle);
}

// The one number of a constant is its own tick.
Ticks tickOfConstant(const Colouring& colouring, const NumberFormat& format, const Text& letters)
{
    const double middle = (colouring.min + colouring.max) / 2;
    if (!format.isAuto()) {
        const Ticks ticks{{middle}, {constantIn(format, colouring)}, ""};
        const std::vector<LegendText> numbers = layOutNumbers(colouring, ticks, letters);
        if (areApart(numbers, letters.gap()) && areInView(numbers))
            return ticks;
    }
    return {{middle}, {colouring.constant}, ""};
}

Ticks ticksOf(const Colouring& colouring, const NumberFormat& format, const Text& letters)
{
    if (!colouring.constant.empty())
        return tickOfConstant(colouring, format, letters);
    if (!format.isAuto()) {
        if (const std::optional<Ticks> ticks = ticksIn(format, colouring, letters))
            return *ticks;
    }
    return chooseTicks(colouring, letters);
}

// "roll (°)" where there is a unit, which stands alone where there is no title. A long title loses
// its end, and keeps the unit, which takes half of the room at most.
std::string title(const Colouring& colouring, const LegendLook& look, float room,
                  const Text& letters)
{
    const std::string name = look.title.value_or(colouring.name);
    const std::string unit = look.unit.value_or(colouring.unit);
    if (unit.empty() || name.empty())
        return letters.elide(name + unit, room);
    const auto inBrackets = [](const std::string& text) { return " (" + text + ")"; };
    const float brackets = letters.make(inBrackets(""), 0, 0).width;
    const std::string behind = inBrackets(letters.elide(unit, room / 2 - brackets));
    return letters.elide(name, room - letters.make(behind, 0, 0).width) + behind;
}

// The name in the middle and what belongs to the numbers at the bar's end, or both in a row
// where they would meet.
std::vector<LegendText> layOutName(const Colouring& colouring, const LegendLook& look,
                                   const std::string& note, const Text& letters)
{
    LegendText behind = letters.make(note, 0, NAME);
    const float apart = note.empty() ? 0 : 2 * letters.gap();
    const float room = WIDEST - behind.width - apart;
    LegendText name = letters.make(title(colouring, look, room, letters), 0, NAME);
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

// At the bottom.
std::vector<LegendText> layOut(const Colouring& colouring, const LegendLook& look,
                               const Ticks& ticks, const Text& letters)
{
    std::vector<LegendText> texts = layOutName(colouring, look, ticks.note, letters);
    const std::vector<LegendText> numbers = layOutNumbers(colouring, ticks, letters);
    texts.insert(texts.end(), numbers.begin(), numbers.end());
    return texts;
}

SbColor colourAt(const Colouring& colouring, double place)
{
    return toSbColor(colouring.at(place));
}

// A shape that is filled with one colour, or not there.
class Face
{
public:
    explicit Face(SoSeparator& legend)
    {
        auto* group = new SoSeparator;
        for (SoNode* const node : {static_cast<SoNode*>(base), static_cast<SoNode*>(coordinates),
                                   static_cast<SoNode*>(face)})
            group->addChild(node);
        choice->addChild(group);
        legend.addChild(choice);
    }
    void show(const SbColor& colour, const std::vector<SbVec3f>& corners)
    {
        base->diffuseColor = colour;
        setPoints(*coordinates, corners);
        face->numVertices = int(corners.size());
        choice->whichChild = 0;
    }
    void hide() { choice->whichChild = SO_SWITCH_NONE; }

private:
    SoSwitch* choice = new SoSwitch;
    SoMaterial* base = new SoMaterial; // not of the text's kind, which is the ink
    SoCoordinate3* coordinates = new SoCoordinate3;
    SoFaceSet* face = new SoFaceSet;
};

// Lines in the colour that was set last.
class Lines
{
public:
    Lines(SoSeparator& legend, float width)
    {
        auto* style = new SoDrawStyle;
        style->lineWidth = width;
        legend.addChild(style);
        legend.addChild(coordinates);
        legend.addChild(lines);
    }
    // Each of so many points.
    void set(const std::vector<SbVec3f>& points, int perLine)
    {
        setPoints(*coordinates, points);
        const std::vector<int32_t> counts(points.size() / std::size_t(perLine), perLine);
        lines->numVertices.setNum(int(counts.size()));
        lines->numVertices.setValues(0, int(counts.size()), counts.data());
    }

private:
    SoCoordinate3* coordinates = new SoCoordinate3;
    SoLineSet* lines = new SoLineSet;
};

// The bar with the ramp.
class Ramp
{
public:
    explicit Ramp(SoSeparator& legend)
    {
        auto* group = new SoSeparator;
        group->addChild(material);
        auto* binding = new SoMaterialBinding;
        binding->value = SoMaterialBinding::PER_VERTEX;
        group->addChild(binding);
        group->addChild(coordinates);
        auto* mesh = new SoQuadMesh;
        mesh->verticesPerRow = BAR_CELLS + 1;
        mesh->verticesPerColumn = 2;
        group->addChild(mesh);
        legend.addChild(group);
    }
    void show(const Colouring& colouring, const Bar& bar)
    {
        std::vector<SbVec3f> corners;
        std::vector<SbColor> colours;
        for (const float y : {BAR_BOTTOM, BAR_TOP}) {
            for (int i = 0; i <= BAR_CELLS; ++i) {
                const double t = double(i) / BAR_CELLS;
                corners.emplace_back(bar.at(t), y, 0.0f);
                colours.push_back(colourAt(colouring, colouring.constant.empty() ? t : 0.5));
            }
        }
        setPoints(*coordinates, corners);
        material->diffuseColor.setNum(int(colours.size()));
        material->diffuseColor.setValues(0, int(colours.size()), colours.data());
    }

private:
    SoMaterial* material = new SoMaterial;
    SoCoordinate3* coordinates = new SoCoordinate3;
};

// Around the bar and its triangles, so that a ramp's end of the background's colour is seen.
std::vector<SbVec3f> layOutFrame(const Colouring& colouring, const Bar& bar)
{
    std::vector<SbVec3f> corners{{bar.left, BAR_TOP, 0}};
    if (colouring.isBelow)
        corners.emplace_back(bar.left - TRIANGLE, BAR_MIDDLE, 0.0f);
    corners.emplace_back(bar.left, BAR_BOTTOM, 0.0f);
    corners.emplace_back(bar.right, BAR_BOTTOM, 0.0f);
    if (colouring.isAbove)
        corners.emplace_back(bar.right + TRIANGLE, BAR_MIDDLE, 0.0f);
    corners.emplace_back(bar.right, BAR_TOP, 0.0f);
    corners.push_back(corners.front());
    return corners;
}

std::vector<SbVec3f> layOutTicks(const Colouring& colouring, const Ticks& ticks, const Bar& bar)
{
    std::vector<SbVec3f> ends;
    for (const double tick : ticks.values) {
        const float x = bar.at(placeOf(colouring, tick));
        ends.emplace_back(x, BAR_BOTTOM, 0.0f);
        ends.emplace_back(x, TICK_BOTTOM, 0.0f);
    }
    return ends;
}

} // namespace

FreeEdges roomOf(LegendPlace place)
{
    switch (place) {
    case LegendPlace::BOTTOM:
        return {LEGEND_HEIGHT, 0};
    case LegendPlace::TOP:
        return {0, LEGEND_HEIGHT};
    case LegendPlace::OFF:
        break;
    }
    return {};
}

std::vector<LegendText> layOutLegend(const Colouring& colouring, float textSize,
                                     const LegendLook& look)
{
    const Text letters(textSize);
    std::vector<LegendText> texts =
        layOut(colouring, look, ticksOf(colouring, look.format, letters), letters);
    for (LegendText& text : texts)
        text.y += liftOf(look.place);
    return texts;
}

// In the order in which they are drawn.
class Legend::Nodes
{
public:
    Nodes(const Colour& background, float textSize, const LegendLook& firstLook) : letters(textSize)
    {
        root->ref();
        setBackground(background);
        setLook(firstLook);
    }
    ~Nodes() { root->unref(); }
    Nodes(const Nodes&) = delete;
    Nodes& operator=(const Nodes&) = delete;

    SoNode* getRoot() const { return root; }
    void tell(const Colouring& colouring)
    {
        const Bar bar(colouring);
        ramp.show(colouring, bar);
        showBesideBar(colouring, bar);
        const std::vector<SbVec3f> corners = layOutFrame(colouring, bar);
        frame.set(corners, int(corners.size()));
        const Ticks found = ticksOf(colouring, look.format, letters);
        ticks.set(layOutTicks(colouring, found, bar), 2);
        std::vector<SbVec3f> ofLetters;
        for (const LegendText& text : layOut(colouring, look, found, letters))
            letters.addCorners(text, ofLetters);
        texts.set(ofLetters);
    }
    void setBackground(const Colour& background) { ink->rgb = toSbColor(inkOn(background)); }
    void setLook(const LegendLook& next)
    {
        look = next;
        cameraOf(*root).standAtTop(look.place == LegendPlace::TOP);
        lift->translation = SbVec3f(0, liftOf(look.place), 0);
    }

private:
    // What the colours of the bar do not show.
    void showBesideBar(const Colouring& colouring, const Bar& bar)
    {
        const auto showTriangle = [&](Face& face, bool isThere, float end, float tip,
                                      double place) {
            if (isThere)
                face.show(colourAt(colouring, place),
                          {{end, BAR_BOTTOM, 0}, {tip, BAR_MIDDLE, 0}, {end, BAR_TOP, 0}});
            else
                face.hide();
        };
        showTriangle(below, colouring.isBelow, bar.left, bar.left - TRIANGLE, -1);
        showTriangle(above, colouring.isAbove, bar.right, bar.right + TRIANGLE, 2);
        std::vector<SbVec3f> patch;
        if (colouring.isMissing) {
            patch = {{PATCH_LEFT, BAR_BOTTOM, 0},
                     {PATCH_RIGHT, BAR_BOTTOM, 0},
                     {PATCH_RIGHT, BAR_TOP, 0},
                     {PATCH_LEFT, BAR_TOP, 0}};
            missing.show(toSbColor(colouring.none), patch);
            patch.push_back(patch.front());
        } else {
            missing.hide();
        }
        patchFrame.set(patch, 5);
    }
    static SoTranslation* addLift(SoSeparator& legend)
    {
        auto* lift = new SoTranslation;
        legend.addChild(lift);
        return lift;
    }
    static SoBaseColor* addInk(SoSeparator& legend)
    {
        auto* ink = new SoBaseColor;
        legend.addChild(ink);
        return ink;
    }

    const Text letters;
    LegendLook look;
    SoSeparator* const root = makeOverlay();
    SoTranslation* const lift = addLift(*root);
    Ramp ramp{*root};
    Face below{*root}, above{*root}, missing{*root};
    SoBaseColor* const ink = addInk(*root); // of all that follows
    Lines frame{*root, 1}, patchFrame{*root, 1}, ticks{*root, 2};
    Quadrilaterals texts{*root};
};

Legend::Legend(const Colour& background, float textSize, const LegendLook& look)
    : nodes(std::make_unique<Nodes>(background, textSize, look))
{}

Legend::~Legend() = default;

SoNode* Legend::getNode() const { return nodes->getRoot(); }

void Legend::tell(const Colouring& colouring) { nodes->tell(colouring); }

void Legend::setLook(const LegendLook& look) { nodes->setLook(look); }

void Legend::setBackground(const Colour& background) { nodes->setBackground(background); }

} // namespace strandview
