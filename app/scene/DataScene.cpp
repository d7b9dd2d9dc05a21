// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/DataScene.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>
#include <Inventor/nodes/SoShaderParameter.h>
#include <Inventor/nodes/SoSwitch.h>

#include <SoBirod.h>
#include <SoDNA.h>
#include <SoRod.h>

#include "scene/Legend.h"

namespace strandview {

using algebra3d::Vector3;

namespace {

// What a person reads: six digits, with a decimal point in every locale.
std::string readable(double value)
{
    char text[32];
    const auto result =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6);
    return std::string(text, result.ptr);
}

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

// The tube whose centreline tells arc lengths; null for what is no rod.
BiarcTubeMesh* centralTube(SoNode& node)
{
    if (node.isOfType(SoRod::getClassTypeId()))
        return static_cast<SoRod&>(node).getTubeMesh();
    if (node.isOfType(SoBirod::getClassTypeId()))
        return static_cast<SoBirod&>(node).getAvgTubeMesh();
    return nullptr;
}

// "pair 12 AT, strand 2, " below a DNA, which is the path's node `index`: child 0 holds
// the boxes of the pairs, child 1 the bases, two for each pair.
std::string placeInDna(const SoPath& path, int index)
{
    SoNode& node = *path.getNode(index);
    if (!node.isOfType(SoDNA::getClassTypeId()) || path.getLength() < index + 3)
        return "";
    const bool isBase = path.getIndex(index + 1) == 1;
    const int place = path.getIndex(index + 2);
    const int pair = isBase ? place / 2 : place;
    const std::string& bases = static_cast<SoDNA&>(node).getSequence();
    const char base = bases[std::size_t(pair)];
    std::string text =
        "pair " + std::to_string(pair + 1) + " " + base + SoNucleobase::getComplement(base) + ", ";
    if (isBase)
        text += "strand " + std::to_string(place % 2 + 1) + ", ";
    return text;
}

} // namespace

DataScene::DataScene(const Placement& placementOfData) : placement(placementOfData) {}

void DataScene::addNamed(SoNode* group, const SoNode* node, const std::string& name)
{
    names[node] = name;
    addChanging(group);
}

void DataScene::extendBox(const SbBox3f& more) { box.extendBy(more); }

void DataScene::getBoundingBox(SoGetBoundingBoxAction* action)
{
    if (box.isEmpty()) {
        SoGeneralScene::getBoundingBox(action);
        return;
    }
    action->extendBy(box);
    action->setCenter(box.getCenter(), TRUE);
}

CameraRequest DataScene::settle(CameraRequest request) const
{
    if (!request.side)
        request.side = standardSide;
    return request;
}

SoNode* DataScene::addColours(SoNode* own, SoNode* ofData)
{
    auto* choice = new SoSwitch;
    choice->addChild(own);
    choice->addChild(ofData);
    choice->whichChild = 1;
    colours.push_back(choice);
    return choice;
}

void DataScene::addLegend(SoNode* node)
{
    legend = new SoSwitch;
    legend->addChild(node);
    addChild(legend);
    showColours(true);
}

bool DataScene::hasColours() const { return legend; }

void DataScene::showColours(bool show)
{
    if (!legend || show == (legend->whichChild.getValue() == 0))
        return;
    legend->whichChild = show ? 0 : SO_SWITCH_NONE;
    for (SoSwitch* choice : colours)
        choice->whichChild = show ? 1 : 0;

    const Shininess none(getShininess().size(), 0.0f);
    areUserHighlights = areUserHighlights || (!show && getShininess() != none);
    if (areUserHighlights)
        return;
    if (show)
        highlights = getShininess();
    setShininess(show ? none : highlights);
}

DataScene::Shininess DataScene::getShininess()
{
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    getLightingParameters(directions, intensities, shininess);
    const float* values = shininess->value.getValues(0);
    return Shininess(values, values + shininess->value.getNum());
}

void DataScene::setShininess(const Shininess& values)
{
    SoShaderParameterArray3f* directions = nullptr;
    SoShaderParameterArray1f *intensities = nullptr, *shininess = nullptr;
    getLightingParameters(directions, intensities, shininess);
    shininess->value.setValues(0, int(values.size()), values.data());
}

float DataScene::getLegendHeight() const
{
    return legend && legend->whichChild.getValue() == 0 ? LEGEND_HEIGHT : 0;
}

void DataScene::setBackground(const Colour& background)
{
    if (legend)
        setLegendBackground(*legend->getChild(0), background);
}

Told DataScene::describe(const SoPickedPoint& picked) const
{
    const SbVec3f scenePoint = picked.getPoint();
    const Vector3<double> inScene(scenePoint[0], scenePoint[1], scenePoint[2]);
    const Vector3<double> point = placement.toData(inScene);
    const std::string where =
        "point " + readable(point.x) + " " + readable(point.y) + " " + readable(point.z);

    const SoPath& path = *picked.getPath();
    for (int i = path.getLength() - 1; i >= 0; --i) {
        const auto known = names.find(path.getNode(i));
        if (known == names.end())
            continue;
        std::string text = placeInDna(path, i) + where;
        if (BiarcTubeMesh* tube = centralTube(*path.getNode(i))) {
            const double unit = 1 / placement.scale;
            text += ", arc length " + readable(nearestArcLength(*tube, inScene) * unit) + " of " +
                    readable(tube->getParamValues().back() * unit);
        }
        return {text, known->second};
    }
    return {where, ""};
}

bool DataScene::processPickEvent(const SoPickedPoint* point)
{
    if (onPick)
        onPick(describe(*point));
    return false;
}

double nearestArcLength(BiarcTubeMesh& tube, const Vector3<double>& point)
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
    return arcLength;
}

} // namespace strandview
