// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/DataScene.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <cmath>
#include <utility>

#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoGroup.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoSwitch.h>

#include <BiarcTubeMesh.h>
#include <SoDNA.h>
#include <SoMeshShape.h>

#include <strandview/analysis/doubleStrands.h>

#include "request/conversions.h"
#include "request/limits.h"
#include "request/parseNumber.h"
#include "request/thingTexts.h"
#include "scene/Ghost.h"
#include "scene/Legend.h"
#include "scene/ScaleBar.h"
#include "scene/SoSeeThrough.h"
#include "scene/clipping.h"

namespace strandview {

using algebra3d::Vector3;

namespace {

// The points of a regular ring cancel about its centre, the point of the centreline. The
// last of a row is the first once more.
Vector3<double> centreOfRing(const Vector3<double>* ring, int width)
{
    const int slices = width - 1;
    Vector3<double> sum;
    for (int i = 0; i < slices; ++i)
        sum += ring[i];
    return sum * (1.0 / slices);
}

// Whether two frames' legends look alike.
bool areAlike(const Colouring& one, const Colouring& other)
{
    return one.isBelow == other.isBelow && one.isAbove == other.isAbove &&
           one.isMissing == other.isMissing;
}

// The same of frames that may each have a range of their own.
bool areInSameRange(const Colouring& one, const Colouring& other)
{
    return areAlike(one, other) && one.min == other.min && one.max == other.max &&
           one.constant == other.constant;
}

// The row and the share of the way to the next one, by the arc lengths of the rows.
void placeOnLine(const std::vector<double>& rows, double arcLength, double reach,
                 PickedPlace& place)
{
    const auto after = std::upper_bound(rows.begin() + 1, rows.end() - 1, arcLength);
    const double before = *(after - 1), share = (arcLength - before) / (*after - before);
    const bool isAtNext = share >= 1 || (share > 0.5 && *after - arcLength <= reach);
    place.row = std::size_t(after - rows.begin()) - (isAtNext ? 0 : 1);
    place.share = isAtNext || arcLength - before <= reach ? 0 : std::max(share, 0.0);
}

// By the name that its user gave it, or else its own: of several in one datum each has one. And
// with the letters there.
void tellOf(const ShownDatum& datum, const ThingLook& look, PickedPlace& place)
{
    const bool isPart = !datum.parts.empty();
    if (isPart && place.datum >= datum.parts.size())
        return;
    place.name = look.name.value_or(isPart ? datum.parts[place.datum] : datum.name);
    if (look.name && isPart)
        place.name += ", base " + std::to_string(place.datum + 1);
    const std::optional<std::size_t> letter = isPart ? place.datum : place.row;
    if (!letter || *letter >= datum.bases.size())
        return;
    place.base = datum.bases[*letter];
    place.partner = isPart ? char(0) : complementOf(place.base);
}

// Of all shapes that are below, but for the pairs of a DNA, which come into being when they are
// asked for: where the scene is drawn coarsely.
void leaveOutRows(SoNode& node)
{
    if (auto* const shape = dynamic_cast<SoMeshShape*>(&node)) {
        shape->drawCoarsely(true);
        return;
    }
    const auto* const group = dynamic_cast<const SoGroup*>(&node);
    if (!group || node.isOfType(SoDNA::getClassTypeId()))
        return;
    for (int i = 0; i < group->getNumChildren(); ++i)
        leaveOutRows(*group->getChild(i));
}

void leaveOutRows(const ShownDatum& datum)
{
    if (datum.ofParts) // curves of strands beside its node
        leaveOutRows(*datum.group);
    else if (auto* const shape = dynamic_cast<SoMeshShape*>(datum.node))
        shape->drawCoarsely(true);
}

// In as few digits as mean the same number in single precision.
double shortened(float number)
{
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, number).ptr;
    return parseNumber<double>(std::string(text, end)).value_or(double(number));
}

const std::array<std::optional<Light> DrawingLook::*, 3> LIGHTS = {
    &DrawingLook::light1, &DrawingLook::light2, &DrawingLook::light3};

// In the dialog of lights any number can be typed. What is none counts as 0.

double inReach(float number, double least, double most)
{
    return std::isnan(number) ? least : std::clamp(shortened(number), least, most);
}

double coordinateOf(float number)
{
    return std::isnan(number) ? 0 : inReach(number, -LARGEST_OF_LIGHT, LARGEST_OF_LIGHT);
}

Light lightOf(const SbVec3f& direction, float intensity)
{
    return {Vector3<double>(coordinateOf(direction[0]), coordinateOf(direction[1]),
                            coordinateOf(direction[2])),
            inReach(intensity, 0, 1)};
}

std::unique_ptr<SoMeshShape::AllRows> allRowsUnless(bool coarse)
{
    return coarse ? nullptr : std::make_unique<SoMeshShape::AllRows>();
}

double shininessOf(float number) { return inReach(number, 0, LARGEST_OF_LIGHT); }

} // namespace

DataScene::DataScene(const Placement& placementOfData, const Style& styleOfData)
    : placement(placementOfData), style(styleOfData)
{
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    getLightingParameters(directions, intensities, shininess);
    SoNode* const nodes[] = {directions, intensities, shininess};
    for (int i = 0; i < 3; ++i) {
        lightSensors[i].setFunction(tellLights);
        lightSensors[i].setData(this);
        lightSensors[i].attach(nodes[i]);
    }
    knownLights = getLights();
    cut(style.clip);
    draw(style.drawing);
}

DataScene::~DataScene() = default;

void DataScene::restyle(const Placement& placementOfData, const Style& styleOfData)
{
    placement = placementOfData;
    style = styleOfData;
    ++styles;
    alone.clear();
    setBackground(style.background);
    cut(style.clip);
    draw(style.drawing);
    if (ghost && !isOfOther) {
        ghost->setTransparency(style.ghostTransparency);
        ghost->setLooks(style.things);
    }
}

void DataScene::draw(const DrawingLook& look)
{
    style.drawing = look;
    const auto shading = SoGeneralScene::Shading(look.shading);
    if (shading != getShading())
        setShading(shading);
    if (look.boundingBoxes != isShowingBoundingBoxes())
        showBoundingBoxes(look.boundingBoxes);
    const auto width = float(look.lineWidth);
    if (width != drawnWidth || getLineWidth() != knownWidth)
        setLineWidth(width);
    drawnWidth = width;
    knownWidth = getLineWidth();
    drawLights();
}

DrawingLook DataScene::getDrawing()
{
    DrawingLook look = style.drawing;
    look.shading = strandview::Shading(getShading());
    look.boundingBoxes = isShowingBoundingBoxes();
    if (getLineWidth() != knownWidth)
        look.lineWidth =
            std::clamp(shortened(getLineWidth()), SMALLEST_LINE_WIDTH, LARGEST_LINE_WIDTH);
    const Lights lights = getLights();
    for (std::size_t i = 0; i < LIGHTS.size(); ++i) {
        if (lights.directions[i] != knownLights.directions[i] ||
            lights.intensities[i] != knownLights.intensities[i])
            look.*LIGHTS[i] = lightOf(lights.directions[i], lights.intensities[i]);
    }
    if (lights.shininess != knownLights.shininess)
        look.shininess = {shininessOf(lights.shininess[0]), shininessOf(lights.shininess[1]),
                          shininessOf(lights.shininess[2])};
    return look;
}

DrawingLook DataScene::getShownDrawing() const
{
    DrawingLook look = style.drawing;
    for (std::size_t i = 0; i < LIGHTS.size(); ++i) {
        std::optional<Light>& light = look.*LIGHTS[i];
        if (!light)
            light = Light{LIGHT_DIRS[i], LIGHT_INTENSITY[i]};
        else if (!light->direction)
            light->direction = LIGHT_DIRS[i];
    }
    if (!look.shininess && hasColours() && areColoursShown())
        look.shininess = Shininess{};
    else if (!look.shininess)
        look.shininess = {LIGHT_SHININESS[0], LIGHT_SHININESS[1], LIGHT_SHININESS[2]};
    return look;
}

DataScene::Lights DataScene::getLights()
{
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    getLightingParameters(directions, intensities, shininess);
    Lights lights;
    for (int i = 0; i < int(LIGHTS.size()); ++i) {
        lights.directions[std::size_t(i)] = directions->value[i];
        lights.intensities[std::size_t(i)] = intensities->value[i];
        lights.shininess[std::size_t(i)] = shininess->value[i];
    }
    return lights;
}

// What is as it should be is left alone, so that no frame is drawn for it.
void DataScene::drawLights()
{
    const DrawingLook look = getShownDrawing();
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    getLightingParameters(directions, intensities, shininess);
    const auto set = [](auto& field, int i, const auto& value) {
        if (field[i] != value)
            field.set1Value(i, value);
    };
    for (int i = 0; i < int(LIGHTS.size()); ++i) {
        const Light& light = *(look.*LIGHTS[std::size_t(i)]);
        set(directions->value, i, toSbVec3f(*light.direction));
        set(intensities->value, i, float(light.intensity));
        set(shininess->value, i, float((*look.shininess)[std::size_t(i)]));
    }
    knownLights = getLights();
}

void DataScene::tellLights(void* scene, SoSensor* /*sensor*/)
{
    const auto& self = *static_cast<const DataScene*>(scene);
    if (self.onLights)
        self.onLights();
}

// Where none was asked for, the keys begin with the viewer's.
void DataScene::keepLineWidth()
{
    if (drawnWidth != 1)
        setLineWidth(drawnWidth);
    knownWidth = getLineWidth();
}

void DataScene::cut(const std::optional<ClipPlane>& plane)
{
    style.clip = plane;
    // A plane that comes where all is hidden ends Mesa's software drivers if two views draw it:
    // they have no fragment shader for the first lines that are drawn with it.
    const std::vector<Thing> all = getThings();
    const bool areAllHidden =
        !all.empty() &&
        std::all_of(all.begin(), all.end(), [this](const Thing& thing) { return isHidden(thing); });
    if (plane && !areAllHidden)
        setClipPlane(planeInScene(*plane, placement));
    else
        dropClipPlane();
    for (const Kind& kind : kinds) {
        for (const ShownDatum& datum : kind.data)
            showInside(datum);
    }
}

// Of what is closed only where it is cut open.
void DataScene::showInside(const ShownDatum& datum) const
{
    if (datum.setSolid && !isOfOther)
        datum.setSolid(datum, !style.clip);
}

// A legend's letters have their size from its beginning on.
void DataScene::redress(const Style& next)
{
    const bool hasOtherLetters = next.legendTextSize != style.legendTextSize;
    restyle(placement, next);
    if (!legend)
        return;
    if (hasOtherLetters) {
        legend = std::make_unique<Legend>(style.background, style.legendTextSize, style.legend);
        legendChoice->replaceChild(0, legend->getNode());
    }
    tellColouring();
}

const std::vector<ShownDatum>& DataScene::getShown(std::size_t kind) const
{
    static const std::vector<ShownDatum> none;
    return kind < kinds.size() ? kinds[kind].data : none;
}

void DataScene::drawCoarsely(bool nearRowsLeftOut)
{
    if (coarse == nearRowsLeftOut)
        return;
    coarse = nearRowsLeftOut;
    pictureId = getIdOfPicture();
    touch();
    coarseId = getNodeId();
}

SbUniqueId DataScene::getIdOfPicture() const
{
    return getNodeId() == coarseId ? pictureId : getNodeId();
}

void DataScene::GLRenderBelowPath(SoGLRenderAction* action)
{
    const auto rows = allRowsUnless(coarse);
    SoGeneralScene::GLRenderBelowPath(action);
}

// What is seen through comes this way.
void DataScene::GLRenderInPath(SoGLRenderAction* action)
{
    const auto rows = allRowsUnless(coarse);
    SoGeneralScene::GLRenderInPath(action);
}

void DataScene::add(std::size_t kind, const ShownDatum& datum)
{
    if (!isOfOther)
        leaveOutRows(datum);
    while (kinds.size() <= kind) {
        kinds.push_back({new SoGroup, ThingKind::OTHER, {}});
        addChanging(kinds.back().group);
    }
    kinds[kind].kind = datum.kind;
    things[datum.group] = {kind, kinds[kind].data.size()};
    kinds[kind].data.push_back(datum);
    kinds[kind].group->addChild(datum.group);
    showInside(datum);
    showLook({kind, kinds[kind].data.size() - 1});
    box.reset();
}

void DataScene::change(std::size_t kind, std::size_t index, const ShownDatum& datum)
{
    ShownDatum& known = kinds[kind].data[index];
    assert(datum.node == known.node && datum.group == known.group);
    known = datum;
    showLook({kind, index});
    box.reset();
    alone.clear();
}

void DataScene::keepFirst(std::size_t kind, std::size_t count)
{
    if (getShown(kind).size() <= count)
        return;
    std::vector<ShownDatum>& data = kinds[kind].data;
    for (std::size_t i = data.size(); i > count; --i) {
        things.erase(data[i - 1].group);
        kinds[kind].group->removeChild(int(i) - 1);
    }
    data.resize(count);
    box.reset();
    alone.clear();
}

void DataScene::showGhost(std::vector<SceneGeometry::GhostCurve> curves)
{
    if (!ghost && curves.empty())
        return;
    if (!ghost) {
        placeGhost(std::make_shared<Ghost>());
        ghost->setTransparency(style.ghostTransparency);
        ghost->setLooks(style.things);
    }
    ghost->show(std::move(curves));
    box.reset();
}

void DataScene::placeGhost(std::shared_ptr<Ghost> next)
{
    if (ghost == next)
        return;
    if (!ghostPlace) {
        ghostPlace = new SoGroup;
        addChanging(ghostPlace);
    }
    ghostPlace->removeAllChildren();
    ghost = std::move(next);
    if (ghost)
        ghostPlace->addChild(ghost->getNode());
    box.reset();
}

void DataScene::mirror(const DataScene& other)
{
    isOfOther = true;
    style.things = other.style.things;
    style.transparency = other.style.transparency;
    standardSide = other.standardSide;
    data = other.data;
    shareData(other);
    placeGhost(other.ghost);
    followColouring(other);
    cut(other.style.clip);
    draw(other.style.drawing);
    showLooks();
}

void DataScene::endMirror()
{
    if (!std::exchange(isOfOther, false))
        return;
    for (std::size_t kind = 0; kind < kinds.size(); ++kind)
        keepFirst(kind, 0);
    placeGhost(nullptr);
}

// What is there already stays in its place.
void DataScene::shareData(const DataScene& other)
{
    for (std::size_t kind = 0; kind < std::max(kinds.size(), other.kinds.size()); ++kind) {
        const std::vector<ShownDatum>& theirs = other.getShown(kind);
        const std::vector<ShownDatum>& known = getShown(kind);
        std::size_t same = 0;
        while (same < std::min(known.size(), theirs.size()) &&
               known[same].group == theirs[same].group)
            ++same;
        keepFirst(kind, same);
        for (std::size_t i = 0; i < same; ++i)
            kinds[kind].data[i] = theirs[i];
        for (std::size_t i = same; i < theirs.size(); ++i)
            add(kind, theirs[i]);
    }
    box.reset();
    alone.clear();
}

void DataScene::followColouring(const DataScene& other)
{
    const bool isRestyled = std::exchange(mirroredStyle, styles) != styles;
    if (!other.colouring)
        dropColouring();
    else if (isRestyled || !colouring || !areInSameRange(*colouring, *other.colouring))
        setColouring(*other.colouring);
    showColours(other.coloursShown);
}

std::vector<Thing> DataScene::getThings() const
{
    std::vector<Thing> all;
    for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
        for (std::size_t i = 0; i < kinds[kind].data.size(); ++i)
            all.push_back({kind, i});
    }
    return all;
}

const ShownDatum& DataScene::datumOf(const Thing& thing) const
{
    return kinds[thing.kind].data[thing.index];
}

ThingId DataScene::idOf(const Thing& thing) const
{
    return {thing.kind < kinds.size() ? kinds[thing.kind].kind : ThingKind::OTHER, thing.index,
            thing.part};
}

std::vector<Thing> DataScene::getParts(const Thing& thing) const
{
    std::vector<Thing> parts;
    for (const ThingPart part : partsOf(idOf(thing).kind))
        parts.push_back({thing.kind, thing.index, part});
    return parts;
}

SbBox3f DataScene::boxOf(const Thing& thing) const
{
    const ShownDatum& datum = datumOf(thing);
    if (!datum.ofParts || (thing.part == ThingPart::WHOLE && datum.partLooks.hidden.empty()))
        return datum.box;
    SbBox3f shown;
    for (const Thing& part : getParts(thing)) {
        const bool isMeant = thing.part == ThingPart::WHOLE ? datum.partLooks.isShown(part.part)
                                                            : thing.part == part.part;
        if (isMeant)
            shown.extendBy(datum.ofParts->findBox(datum, part.part));
    }
    return shown.isEmpty() ? datum.box : shown;
}

SoNode* DataScene::nodeOf(const Thing& thing) const
{
    const ShownDatum& datum = datumOf(thing);
    if (thing.part == ThingPart::WHOLE || !datum.ofParts)
        return datum.group;
    std::shared_ptr<SoNode>& known = alone[thing];
    if (!known) {
        SoNode* const made = datum.ofParts->makeAlone(
            datum, thing.part, styleOf(style, idOf(thing.whole())), style.dna);
        made->ref();
        known = {made, [](SoNode* node) { node->unref(); }};
    }
    return known.get();
}

ThingLook DataScene::lookOf(ThingKind kind, std::size_t datum, ThingPart part) const
{
    const ThingId id{kind, kind == ThingKind::LONE_BASES ? 0 : datum, part};
    return part == ThingPart::WHOLE ? getLooks().of(id) : getLooks().withThings(id);
}

ThingLook DataScene::lookAt(const Thing& thing, const PickedPlace& place) const
{
    const ThingId id = idOf(thing);
    return lookOf(id.kind, id.index, partOf(id.kind, place.strand));
}

void DataScene::setLooks(const ThingLooks& looks)
{
    if (style.things == looks)
        return;
    style.things = looks;
    showLooks();
}

void DataScene::setTransparency(double transparency)
{
    if (style.transparency == transparency)
        return;
    style.transparency = transparency;
    showLooks();
}

double DataScene::transparencyOf(const Thing& thing) const
{
    const ThingId id = idOf(thing);
    if (!canHaveOwn("transparency", id))
        return 0;
    const std::optional<double> own = getLooks().of(id).transparency;
    if (own)
        return *own;
    return thing.part == ThingPart::WHOLE ? style.transparency : transparencyOf(thing.whole());
}

void DataScene::showLooks()
{
    for (const Thing& thing : getThings())
        showLook(thing);
    if (style.clip && !getClipPlane())
        cut(style.clip);
    if (ghost && !isOfOther)
        ghost->setLooks(style.things);
    if (onLook)
        onLook();
}

// The nodes of what is hidden stay, behind a switch.
void DataScene::showLook(const Thing& thing)
{
    if (!has(thing))
        return;
    const ThingLook look = getLook(thing);
    const ShownDatum& datum = datumOf(thing);
    const bool isSwitchedOff = isHidden(thing);
    box.reset();
    SoGroup& group = *kinds[thing.kind].group;
    const int index = int(thing.index);
    auto* hiding = dynamic_cast<SoSwitch*>(group.getChild(index));
    if (hiding) {
        hiding->whichChild = isSwitchedOff ? SO_SWITCH_NONE : 0;
    } else if (isSwitchedOff) {
        hiding = new SoSwitch;
        hiding->addChild(group.getChild(index));
        group.replaceChild(index, hiding);
    }
    if (!datum.ofParts)
        seeThrough(transparencyOf(thing), hiding ? *hiding : group, hiding ? 0 : index);
    if (isOfOther)
        return;
    if (datum.setTransparency)
        datum.setTransparency(datum, transparencyOf(thing), style.dna);
    if (look.colour && datum.setColour)
        datum.setColour(datum, toSbColor(*look.colour));
    if (datum.ofParts)
        showParts(thing);
}

// After the colours, of which those that are drawn alone have their own.
void DataScene::showParts(const Thing& thing)
{
    ShownDatum& datum = kinds[thing.kind].data[thing.index];
    PartLooks looks;
    const auto setTransparency = [&](const Thing& part) {
        if (const double transparency = transparencyOf(part); transparency > 0)
            looks.transparencies[part.part] = transparency;
    };
    setTransparency(thing);
    for (const Thing& part : getParts(thing)) {
        setTransparency(part);
        const ThingLook look = getLook(part);
        if (look.isHidden() || look.isDeleted)
            looks.hidden.insert(part.part);
        if (look.colour)
            datum.ofParts->setColour(datum, part.part, toSbColor(*look.colour));
    }
    if (isHidden(thing))
        return;
    if (!looks.areUsual() || !datum.partLooks.areUsual())
        datum.ofParts->show(datum, looks, styleOf(style, idOf(thing)), style.dna);
    datum.partLooks = looks;
    leaveOutRows(datum);
}

bool DataScene::isHidden(const Thing& thing) const { return getLook(thing).isOutOfView(); }

// Nobody knows what of the room other frames' hidden things take: it counts while nothing is.
const SbBox3f& DataScene::getBox() const
{
    if (box)
        return *box;
    box.emplace();
    bool areAllShown = true;
    for (const Thing& thing : getThings()) {
        const bool isWhole = !isHidden(thing) && datumOf(thing).partLooks.hidden.empty();
        areAllShown = areAllShown && isWhole;
        if (!isHidden(thing))
            box->extendBy(boxOf(thing));
    }
    if (ghost)
        box->extendBy(ghost->getBox());
    if (areAllShown)
        box->extendBy(room);
    return *box;
}

void DataScene::setRoom(const SbBox3f& roomOfFrames)
{
    room = roomOfFrames;
    box.reset();
}

void DataScene::getBoundingBox(SoGetBoundingBoxAction* action)
{
    if (getBox().isEmpty()) {
        SoGeneralScene::getBoundingBox(action);
        return;
    }
    action->extendBy(getBox());
    action->setCenter(getBox().getCenter(), TRUE);
}

CameraRequest DataScene::settle(CameraRequest request) const
{
    request = withUsualSide(request, standardSide);
    if (request.centre)
        request.centre = getPlacement().toScene(*request.centre);
    return request;
}

void DataScene::setColouring(const Colouring& next)
{
    colouring = next;
    colouring->places.clear();
    tellColouring();
}

void DataScene::dropColouring()
{
    if (!legend)
        return;
    showColours(false); // gives the highlights back
    removeChild(legendChoice);
    legendChoice = nullptr;
    legend.reset();
    colouring.reset();
    showScaleBar();
}

void DataScene::updateLegend(const Colouring& next)
{
    if (!legend || areAlike(*colouring, next))
        return;
    colouring->isBelow = next.isBelow;
    colouring->isAbove = next.isAbove;
    colouring->isMissing = next.isMissing;
    tellColouring();
}

void DataScene::tellColouring()
{
    const bool isFirst = !legend;
    if (isFirst)
        legend = std::make_unique<Legend>(style.background, style.legendTextSize, style.legend);
    else
        legend->setLook(style.legend);
    legend->tell(*colouring);
    if (!isFirst) {
        showLegend();
        return;
    }
    legendChoice = new SoSwitch;
    legendChoice->addChild(legend->getNode());
    addChild(legendChoice);
    showColours(true);
}

bool DataScene::hasColours() const { return legend != nullptr; }

void DataScene::showColours(bool show)
{
    if (!legend || show == coloursShown)
        return;
    const bool areAsked = getLights().shininess == knownLights.shininess; // not by the user since
    coloursShown = show;
    showLegend();
    for (const Kind& kind : kinds) {
        for (const ShownDatum& datum : kind.data) {
            if (datum.colours && !isOfOther)
                datum.colours->whichChild = show ? 1 : 0;
        }
    }
    if (areAsked)
        drawLights();
}

bool DataScene::areColoursShown() const { return !legend || coloursShown; }

void DataScene::showLegend()
{
    const bool isThere = coloursShown && style.legend.place != LegendPlace::OFF;
    legendChoice->whichChild = isThere ? 0 : SO_SWITCH_NONE;
    showScaleBar();
}

void DataScene::showScaleBar()
{
    if (!scaleBar && !style.scaleBar)
        return;
    if (!scaleBar) {
        scaleBar = std::make_unique<ScaleBar>();
        scaleBarChoice = new SoSwitch;
        scaleBarChoice->addChild(scaleBar->getNode());
        addChild(scaleBarChoice);
    }
    const bool isBesideLegend = legend && coloursShown;
    const ScaleBarLook look{1 / placement.scale, style.scaleUnit, style.legendTextSize,
                            cornerBeside(isBesideLegend ? style.legend.place : LegendPlace::OFF)};
    scaleBar->set(look, style.background);
    scaleBarChoice->whichChild = style.scaleBar ? 0 : SO_SWITCH_NONE;
}

FreeEdges DataScene::getLegendRoom() const
{
    return legend && coloursShown ? roomOf(style.legend.place, style.legendTextSize) : FreeEdges();
}

void DataScene::setBackground(const Colour& background)
{
    style.background = background;
    if (legend)
        legend->setBackground(background);
    showScaleBar();
}

void DataScene::setStamp(SoNode* next) { replaceOver(stamp, next); }

void DataScene::setMeasured(SoNode* next) { replaceOver(measured, next); }

// Of what is drawn over the data.
void DataScene::replaceOver(SoNode*& shown, SoNode* next)
{
    if (shown)
        removeChild(shown);
    shown = next;
    if (shown)
        addChild(shown);
}

PickedPlace DataScene::placeOf(const SoPickedPoint& picked, double reach) const
{
    const SbVec3f scenePoint = picked.getPoint();
    const Vector3<double> inScene(scenePoint[0], scenePoint[1], scenePoint[2]);
    PickedPlace place;
    place.point = placement.toData(inScene);

    const SoPath& path = *picked.getPath();
    for (int i = path.getLength() - 1; i >= 0; --i) {
        const auto known = things.find(path.getNode(i));
        if (known == things.end())
            continue;
        const ShownDatum& datum = datumOf(known->second);
        place.kind = datum.kind;
        place.datum = known->second.index;
        if (datum.placeIn)
            datum.placeIn(datum, picked, i, place);
        tellOf(datum, lookAt(known->second, place), place);
        if (datum.centralTube) {
            BiarcTubeMesh& central = *datum.centralTube(*datum.node);
            const double unit = 1 / placement.scale;
            const double arcLength = nearestOnTube(central, inScene).arcLength;
            place.arcLength = arcLength * unit;
            place.length = central.getParamValues().back() * unit;
            BiarcTubeMesh& tube =
                place.strand > 0 ? *datum.strandTube(*datum.node, place.strand) : central;
            placeOnLine(tube.getParamValues(),
                        place.strand > 0 ? nearestOnTube(tube, inScene).arcLength : arcLength,
                        reach, place);
        }
        break;
    }
    return place;
}

PickedPlace DataScene::renewed(PickedPlace place) const
{
    if (const auto thing = findThing(place))
        tellOf(datumOf(*thing), lookAt(*thing, place), place);
    return place;
}

// All lone bases are one datum.
std::optional<Thing> DataScene::findThing(const PickedPlace& place) const
{
    const std::size_t index = place.kind == ThingKind::LONE_BASES ? 0 : place.datum;
    for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
        const Thing thing{kind, index};
        if (has(thing) && datumOf(thing).kind == place.kind && place.kind != ThingKind::OTHER)
            return thing;
    }
    return std::nullopt;
}

std::optional<Thing> DataScene::findPart(const PickedPlace& place) const
{
    std::optional<Thing> thing = findThing(place);
    if (thing)
        thing->part = partOf(place.kind, place.strand);
    return thing;
}

bool DataScene::processPickEvent(const SoPickedPoint* point)
{
    if (onPick)
        onPick(*point);
    return false;
}

PointOfTube nearestOnTube(BiarcTubeMesh& tube, const Vector3<double>& point)
{
    const std::vector<double>& arcLengths = tube.getInterpParamValues();
    double nearest = INFINITY, arcLength = 0;
    Vector3<double> last = centreOfRing(tube.getPoints()[0], tube.getWidth());
    for (std::size_t row = 1; row < arcLengths.size(); ++row) {
        const Vector3<double> centre = centreOfRing(tube.getPoints()[row], tube.getWidth());
        // The foot of the perpendicular on the chord between two rows.
        const Vector3<double> chord = centre - last;
        const double along =
            std::clamp((point - last).dot(chord) / std::max(chord.dot(chord), 1e-300), 0.0, 1.0);
        const double distance = (point - (last + chord * along)).getNorm();
        if (distance < nearest) {
            nearest = distance;
            arcLength = arcLengths[row - 1] + along * (arcLengths[row] - arcLengths[row - 1]);
        }
        last = centre;
    }
    return {arcLength, nearest};
}

} // namespace strandview
