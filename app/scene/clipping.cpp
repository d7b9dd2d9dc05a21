// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/clipping.h"

#include <algorithm>
#include <cmath>

#include <strandview/model/Extent.h>

#include <toCoin.h>

#include "scene/DataScene.h"
#include "scene/PickedPlace.h"

namespace strandview {

using Vector = algebra3d::Vector3<double>;

namespace {

// The ends of a box in the data's coordinates.
std::pair<Vector, Vector> inData(const SbBox3f& box, const Placement& placement)
{
    const auto cornerInData = [&placement](const SbVec3f& corner) {
        return placement.toData({double(corner[0]), double(corner[1]), double(corner[2])});
    };
    return {cornerInData(box.getMin()), cornerInData(box.getMax())};
}

} // namespace

ClipPlane settled(ClipPlane plane, const Extent& extent)
{
    if (!plane.distance)
        plane.distance = plane.unitNormal().dot(extent.centre);
    return plane;
}

std::optional<std::pair<Vector, Vector>> boxOfData(const DataScene& scene)
{
    const SbBox3f& box = scene.getBox();
    if (box.isEmpty())
        return {};
    return inData(box, scene.getPlacement());
}

// In doubles: of data far from the origin both distances are much larger than what is left.
SbPlane planeInScene(const ClipPlane& plane, const Placement& placement)
{
    const Vector normal = plane.unitNormal();
    const double distance =
        (plane.distance.value() - normal.dot(placement.origin)) * placement.scale;
    return {-toSbVec3f(normal), float(-distance)};
}

std::string findIdleClip(const Options& options, const SbBox3f& box, const Placement& placement)
{
    const bool isGiven =
        std::find(options.given.begin(), options.given.end(), "--clip") != options.given.end();
    if (!isGiven || !options.clip || !options.clip->distance || box.isEmpty())
        return "";
    const auto [first, last] = inData(box, placement);
    const Vector normal = options.clip->unitNormal();
    const double middle = normal.dot((first + last) * 0.5);
    const Vector half = (last - first) * 0.5;
    const double reach =
        std::abs(normal.x * half.x) + std::abs(normal.y * half.y) + std::abs(normal.z * half.z);
    const std::string found = ": found data from " + readable(middle - reach) + " to " +
                              readable(middle + reach) + " along its normal";
    if (*options.clip->distance > middle + reach)
        return "--clip has no effect" + found;
    return *options.clip->distance < middle - reach ? "--clip leaves nothing to see" + found : "";
}

} // namespace strandview
