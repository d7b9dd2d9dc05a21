// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Legend.h"

#include <algorithm>
#include <array>
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

#include "request/conversions.h"
#include "scene/Colouring.h"
#include "scene/Lettering.h"
#include "scene/SoLegendCamera.h"
#include "scene/SoStretchChoice.h"
#include "scene/Ticks.h"
#include "scene/overlay.h"

namespace strandview {

namespace {

// In the legend's own view, at the bottom: 2 high, and 2 wide or more. Elsewhere all of it is
// moved, or turned, as Stand says.
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
const float SIDE_MARGIN = 0.1f;         // of all text, on both sides together
const float SIDE_MARGIN_UPRIGHT = 0.3f; // where a stamp may be in a corner
const int BAR_CELLS = 256;
const int MOST_STEPS = 8;
const char* const NO_VALUE = "no value";
// How long the title's border may be: of what has no room in the shortest.
const std::array<float, 7> STRETCHES{1, 1.25f, 1.5f, 2, 2.5f, 3, 4};

// Of an upright legend, from the data to the border: a gap, the bar and its ticks, a gap, numbers
// of so many letters' heights, a gap, the title, a gap.
const float BEFORE_BAR = 0.03f;
const float BESIDE_NUMBERS = 0.02f;
const float NUMBER_ROOM = 5;     // letters
const float BEFORE_TITLE = 0.5f; // letters
const float ASCENT = 0.8f;       // letters
const float DESCENT = 0.25f;     // letters
const float AT_BORDER = 0.03f;
const float DIGIT_HEIGHT = 0.73f;

bool isUpright(LegendPlace place)
{
    return place == LegendPlace::LEFT || place == LegendPlace::RIGHT;
}

float widthOfUpright(float textSize)
{
    return BEFORE_BAR + (BAR_TOP - TICK_BOTTOM) + BESIDE_NUMBERS + AT_BORDER +
           (NUMBER_ROOM + BEFORE_TITLE + ASCENT + DESCENT) * textSize;
}

// Where a legend stands: it brings what is laid out at the bottom there.
class Stand
{
public:
    Stand(LegendPlace standPlace, float textSize)
        : place(standPlace), begin(1 - widthOfUpright(textSize) + BEFORE_BAR)
    {}

    bool isUpright() const { return strandview::isUpright(place); }
    SbVec3f at(float along, float y) const
    {
        if (!isUpright())
            return {along, y + (place == LegendPlace::TOP ? 2 - 2 * LEGEND_HEIGHT : 0), 0};
        return {outwards(begin + BAR_TOP - y), along, 0};
    }
    std::vector<SbVec3f> at(std::vector<SbVec3f> points) const
    {
        for (SbVec3f& point : points)
            point = at(point[0], point[1]);
        return points;
    }
    // Of an upright one: x, by how far it is on the right.
    float outwards(float x) const { return place == LegendPlace::LEFT ? -x : x; }
    // Of its numbers, where they begin.
    float numbersBegin() const { return begin + BAR_TOP - TICK_BOTTOM + BESIDE_NUMBERS; }

private:
    LegendPlace place;
    float begin; // of the bar, on the right
};

// Along the legend.
struct Bar
{
    Bar(const Colouring& colouring, bool isUpright)
    {
        if (!colouring.constant.empty()) {
            left = -CONSTANT_WIDTH;
            right = CONSTANT_WIDTH;
        } else if (colouring.isMissing) {
            (isUpright ? left : right) = isUpright ? -BAR_RIGHT_OF_PATCH : BAR_RIGHT_OF_PATCH;
        }
        if (isUpright) { // it is below
            patchLeft = -PATCH_RIGHT;
            patchRight = -PATCH_LEFT;
        }
    }
    float at(double place) const { return left + (right - left) * float(place); }
    float patchMiddle() const { return (patchLeft + patchRight) / 2; }

    float left = BAR_LEFT;
    float right = BAR_RIGHT;
    float patchLeft = PATCH_LEFT;
    float patchRight = PATCH_RIGHT;
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
    float numberLine() const { return TICK_BOTTOM - 0.0235f - DIGIT_HEIGHT * size; }
    /// Between two texts.
    float gap() const { return size; }
    float getSize() const { return size; }

    void addCorners(const LegendText& text, std::vector<SbVec3f>& corners) const
    {
        for (const SbVec2f& corner : lettering.getShape(text.text)) {
            const float along = size * corner[0] - text.width / 2, up = size * corner[1];
            corners.push_back(text.isUpright ? SbVec3f(text.x - up, text.y + along, 0)
                                             : SbVec3f(text.x + along, text.y + up, 0));
        }
    }

private:
    Lettering lettering;
    float size;
};

// What a legend's texts are laid out for.
struct Layout
{
    const Colouring& colouring;
    const LegendLook& look;
    const Text& letters;

    Stand stand{look.place, letters.getSize()};
    Bar bar{colouring, stand.isUpright()};
};

double placeOf(const Colouring& colouring, double value)
{
    return (value - colouring.min) / (colouring.max - colouring.min);
}

bool areApart(const std::vector<LegendText>& texts, const Layout& layout)
{
    const float gap = layout.letters.gap();
    for (std::size_t i = 1; i < texts.size(); ++i) {
        const LegendText &one = texts[i - 1], &next = texts[i];
        if (layout.stand.isUpright() ? std::abs(next.y - one.y) < 1.3f * gap
                                     : next.x - one.x < (one.width + next.width) / 2 + gap)
            return false;
    }
    return true;
}

// Beside a place of an upright bar, or below one of another.
LegendText layOutNumber(const std::string& text, float along, const Layout& layout)
{
    const Text& letters = layout.letters;
    if (!layout.stand.isUpright()) {
        const SbVec3f place = layout.stand.at(along, letters.numberLine());
        return letters.make(text, place[0], place[1]);
    }
    LegendText number = letters.make(text, 0, along - DIGIT_HEIGHT / 2 * letters.getSize());
    number.x = layout.stand.outwards(layout.stand.numbersBegin() + number.width / 2);
    return number;
}

std::vector<LegendText> layOutNumbers(const Ticks& ticks, const Layout& layout)
{
    std::vector<LegendText> numbers;
    for (std::size_t i = 0; i < ticks.values.size(); ++i) {
        const float along = layout.bar.at(placeOf(layout.colouring, ticks.values[i]));
        numbers.push_back(layOutNumber(ticks.labels[i], along, layout));
    }
    if (layout.colouring.isMissing) {
        LegendText label = layOutNumber(NO_VALUE, layout.bar.patchMiddle(), layout);
        if (!layout.stand.isUpright())
            label.x = std::min(label.x, (2 - SIDE_MARGIN - label.width) / 2);
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

bool areInView(const std::vector<LegendText>& texts, const Layout& layout)
{
    return std::all_of(texts.begin(), texts.end(), [&layout](const LegendText& text) {
        return layout.stand.isUpright()
                   ? text.width <= NUMBER_ROOM * layout.letters.getSize()
                   : std::abs(text.x) + text.width / 2 <= (2 - SIDE_MARGIN) / 2;
    });
}

// Of a format, at least two with room beside each other; nothing if there are none.
std::optional<Ticks> ticksIn(const NumberFormat& format, const Layout& layout)
{
    const double min = layout.colouring.min, max = layout.colouring.max;
    for (int steps = MOST_STEPS; steps >= 1; --steps) {
        const Ticks ticks = exactIn(format, makeTicks(min, max, steps), max - min);
        const std::vector<LegendText> numbers = layOutNumbers(ticks, layout);
        if (ticks.values.size() >= 2 && areApart(numbers, layout) && areInView(numbers, layout))
            return ticks;
    }
    return {};
}

// As many as have room beside each other.
Ticks chooseTicks(const Layout& layout)
{
    const int fewestSteps = 2;
    Ticks ticks;
    for (int steps = MOST_STEPS; steps >= fewestSteps; --steps) {
        ticks = makeTicks(layout.colouring.min, layout.colouring.max, steps);
        if (areApart(layOutNumbers(ticks, layout), layout))
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
Ticks tickOfConstant(const Layout& layout)
{
    const double middle = (layout.colouring.min + layout.colouring.max) / 2;
    if (!layout.look.format.isAuto()) {
        const Ticks ticks{{middle}, {constantIn(layout.look.format, layout.colouring)}, ""};
        const std::vector<LegendText> numbers = layOutNumbers(ticks, layout);
        if (areApart(numbers, layout) && areInView(numbers, layout))
            return ticks;
    }
    return {{middle}, {layout.colouring.constant}, ""};
}

Ticks ticksOf(const Layout& layout)
{
    if (!layout.colouring.constant.empty())
        return tickOfConstant(layout);
    if (!layout.look.format.isAuto()) {
        if (const std::optional<Ticks> ticks = ticksIn(layout.look.format, layout))
            return *ticks;
    }
    return chooseTicks(layout);
}

// The numbers where they are drawn: one that has no room beside an upright bar is upright itself.
std::vector<LegendText> placeNumbers(const Ticks& ticks, const Layout& layout)
{
    std::vector<LegendText> numbers = layOutNumbers(ticks, layout);
    const float size = layout.letters.getSize();
    for (LegendText& number : numbers) {
        if (!layout.stand.isUpright() || number.width <= NUMBER_ROOM * size)
            continue;
        number.isUpright = true;
        const float middle = layout.stand.numbersBegin() + DIGIT_HEIGHT / 2 * size;
        number.x = layout.stand.outwards(middle) + DIGIT_HEIGHT / 2 * size;
        number.y += DIGIT_HEIGHT / 2 * size;
    }
    return numbers;
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

// Beside the widest of the numbers that the name, which begins there, is beside.
float baselineOfUprightName(const std::vector<LegendText>& numbers, float nameBegin,
                            const Layout& layout)
{
    const float size = layout.letters.getSize();
    float widest = 0;
    for (const LegendText& number : numbers) {
        if (number.isUpright)
            widest = std::max(widest, DIGIT_HEIGHT * size);
        else if (number.y + size > nameBegin)
            widest = std::max(widest, number.width);
    }
    const float begin = layout.stand.numbersBegin() + widest + BEFORE_TITLE * size;
    // Letters are upwards, to the left.
    return layout.look.place == LegendPlace::RIGHT ? begin + ASCENT * size
                                                   : -begin - DESCENT * size;
}

// The name in the middle and what belongs to the numbers at the bar's end, or both in a row
// where they would meet.
std::vector<LegendText> layOutName(const std::string& note, const std::vector<LegendText>& numbers,
                                   const Layout& layout, float stretch)
{
    const Text& letters = layout.letters;
    const bool isUpright = layout.stand.isUpright();
    LegendText behind = letters.make(note, 0, 0);
    const float apart = note.empty() ? 0 : 2 * letters.gap();
    const float widest = 2 * stretch - (isUpright ? SIDE_MARGIN_UPRIGHT : SIDE_MARGIN);
    const float room = widest - behind.width - apart;
    LegendText name = letters.make(title(layout.colouring, layout.look, room, letters), 0, 0);
    behind.x = layout.bar.right - behind.width / 2;
    if (!note.empty() && name.width / 2 + apart > behind.x - behind.width / 2) {
        const float left = -(name.width + apart + behind.width) / 2;
        name.x = left + name.width / 2;
        behind.x = -left - behind.width / 2;
    }
    std::vector<LegendText> row{name};
    if (!note.empty())
        row.push_back(behind);
    const float baseline =
        isUpright ? baselineOfUprightName(numbers, name.x - name.width / 2, layout) : 0;
    for (LegendText& text : row) {
        const SbVec3f place =
            isUpright ? SbVec3f(baseline, text.x, 0) : layout.stand.at(text.x, NAME);
        text.x = place[0];
        text.y = place[1];
        text.isUpright = isUpright;
    }
    return row;
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
    void show(const Layout& layout)
    {
        const Colouring& colouring = layout.colouring;
        std::vector<SbVec3f> corners;
        std::vector<SbColor> colours;
        for (const float y : {BAR_BOTTOM, BAR_TOP}) {
            for (int i = 0; i <= BAR_CELLS; ++i) {
                const double t = double(i) / BAR_CELLS;
                corners.push_back(layout.stand.at(layout.bar.at(t), y));
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

FreeEdges roomOf(LegendPlace place, float textSize)
{
    const float besides = widthOfUpright(textSize) / 2;
    switch (place) {
    case LegendPlace::BOTTOM:
        return {LEGEND_HEIGHT, 0};
    case LegendPlace::TOP:
        return {0, LEGEND_HEIGHT};
    case LegendPlace::LEFT:
        return {0, 0, besides, 0};
    case LegendPlace::RIGHT:
        return {0, 0, 0, besides};
    case LegendPlace::OFF:
        break;
    }
    return {};
}

std::vector<LegendText> layOutLegend(const Colouring& colouring, float textSize,
                                     const LegendLook& look, float stretch)
{
    const Text letters(textSize);
    const Layout layout{colouring, look, letters};
    const Ticks ticks = ticksOf(layout);
    const std::vector<LegendText> numbers = placeNumbers(ticks, layout);
    std::vector<LegendText> texts = layOutName(ticks.note, numbers, layout, stretch);
    texts.insert(texts.end(), numbers.begin(), numbers.end());
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
        const Layout layout{colouring, look, letters};
        ramp.show(layout);
        showBesideBar(layout);
        const std::vector<SbVec3f> corners = layout.stand.at(layOutFrame(colouring, layout.bar));
        frame.set(corners, int(corners.size()));
        const Ticks found = ticksOf(layout);
        ticks.set(layout.stand.at(layOutTicks(colouring, found, layout.bar)), 2);
        const std::vector<LegendText> ofTicks = placeNumbers(found, layout);
        numbers.set(cornersOf(ofTicks));
        for (std::size_t i = 0; i < names.size(); ++i)
            names[i].set(cornersOf(layOutName(found.note, ofTicks, layout, STRETCHES[i])));
    }
    void setBackground(const Colour& background) { ink->rgb = toSbColor(inkOn(background)); }
    void setLook(const LegendLook& next)
    {
        look = next;
        cameraOf(*root).standAt(look.place);
    }

private:
    std::vector<SbVec3f> cornersOf(const std::vector<LegendText>& texts) const
    {
        std::vector<SbVec3f> corners;
        for (const LegendText& text : texts)
            letters.addCorners(text, corners);
        return corners;
    }
    // What the colours of the bar do not show.
    void showBesideBar(const Layout& layout)
    {
        const Colouring& colouring = layout.colouring;
        const Bar& bar = layout.bar;
        const auto showTriangle = [&](Face& face, bool isThere, float end, float tip,
                                      double place) {
            if (isThere)
                face.show(colourAt(colouring, place),
                          layout.stand.at(
                              {{end, BAR_BOTTOM, 0}, {tip, BAR_MIDDLE, 0}, {end, BAR_TOP, 0}}));
            else
                face.hide();
        };
        showTriangle(below, colouring.isBelow, bar.left, bar.left - TRIANGLE, -1);
        showTriangle(above, colouring.isAbove, bar.right, bar.right + TRIANGLE, 2);
        std::vector<SbVec3f> patch;
        if (colouring.isMissing) {
            patch = layout.stand.at({{bar.patchLeft, BAR_BOTTOM, 0},
                                     {bar.patchRight, BAR_BOTTOM, 0},
                                     {bar.patchRight, BAR_TOP, 0},
                                     {bar.patchLeft, BAR_TOP, 0}});
            missing.show(toSbColor(colouring.none), patch);
            patch.push_back(patch.front());
        } else {
            missing.hide();
        }
        patchFrame.set(patch, 5);
    }
    // Each in a choice, by the length of the border.
    static std::vector<Quadrilaterals> addNames(SoSeparator& legend)
    {
        auto* choice = new SoStretchChoice(cameraOf(legend), {STRETCHES.begin(), STRETCHES.end()});
        legend.addChild(choice);
        std::vector<Quadrilaterals> all;
        for (std::size_t i = 0; i < STRETCHES.size(); ++i) {
            auto* name = new SoSeparator;
            choice->addChild(name);
            all.emplace_back(*name);
        }
        return all;
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
    Ramp ramp{*root};
    Face below{*root}, above{*root}, missing{*root};
    SoBaseColor* const ink = addInk(*root); // of all that follows
    Lines frame{*root, 1}, patchFrame{*root, 1}, ticks{*root, 2};
    Quadrilaterals numbers{*root};
    std::vector<Quadrilaterals> names = addNames(*root);
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
