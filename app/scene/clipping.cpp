// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/clipping.h"

#include <strandview/model/Extent.h>

#include <toCoin.h>

#include "scene/DataScene.h"

namespace strandview {

using Vector = algebra3d::Vector3<double>;

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
    const auto inData = [&scene](const SbVec3f& corner) {
        return scene.getPlacement().toData(
            {double(corner[0]), double(corner[1]), double(corner[2])});
    };
    return std::pair(inData(box.getMin()), inData(box.getMax()));
}

// In doubles: of data far from the origin both distances are much larger than what is left.
SbPlane planeInScene(const ClipPlane& plane, const Placement& placement)
{
    const Vector normal = plane.unitNormal();
    const double distance =
        (plane.distance.value() - normal.dot(placement.origin)) * placement.scale;
    return {-toSbVec3f(normal), float(-distance)};
}

} // namespace strandview
