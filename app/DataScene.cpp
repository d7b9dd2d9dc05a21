// SPDX-License-Identifier: GPL-3.0-or-later
#include "DataScene.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <Inventor/SoPath.h>
#include <Inventor/SoPickedPoint.h>

#include <SoRod.h>

#include "Legend.h"

using algebra3d::Vector3;

namespace {

// What a person reads: six digits.
std::string readable(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
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

} // namespace

DataScene::DataScene(const Placement& placementOfData) : placement(placementOfData) {}

void DataScene::addRod(SoNode* group, const SoRod* rod, const std::string& name)
{
    names[rod] = name;
    addChanging(group);
}

void DataScene::addLegend(SoNode* node)
{
    legend = node;
    addChild(node);
}

float DataScene::getLegendHeight() const { return legend ? LEGEND_HEIGHT : 0; }

void DataScene::setBackground(const Colour& background)
{
    if (legend)
        setLegendBackground(*legend, background);
}

std::string DataScene::describe(const SoPickedPoint& picked) const
{
    const SbVec3f scenePoint = picked.getPoint();
    const Vector3<double> inScene(scenePoint[0], scenePoint[1], scenePoint[2]);
    const Vector3<double> point = placement.toData(inScene);
    std::string text =
        "point " + readable(point.x) + " " + readable(point.y) + " " + readable(point.z);
    const SoNode* node = picked.getPath()->getTail();
    const auto known = names.find(node);
    if (known == names.end())
        return text;
    const auto& rod = static_cast<const SoRod&>(*node);
    const double unit = 1 / placement.scale;
    return known->second + ": " + text + ", arc length " +
           readable(nearestArcLength(rod, inScene) * unit) + " of " +
           readable(rod.getTubeMesh()->getParamValues().back() * unit);
}

bool DataScene::processPickEvent(const SoPickedPoint* point)
{
    if (onPick)
        onPick(describe(*point));
    return false;
}

double nearestArcLength(const SoRod& rod, const Vector3<double>& point)
{
    BiarcTubeMesh& tube = *rod.getTubeMesh();
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
