// SPDX-License-Identifier: GPL-3.0-or-later
#include "Style.h"

#include <algorithm>
#include <cmath>
#include <limits>

using algebra3d::Vector3;

namespace {

const Colour RIBBON_COLOUR{0.93f, 0.60f, 0.10f};

// What the automatic sizes depend on.
struct Extent
{
    Vector3<double> sides; // of the box around all points
    double length = 0;     // of all rods together
    int segments = 0;
};

Extent measure(const Configuration& configuration)
{
    const double infinity = std::numeric_limits<double>::infinity();
    Vector3<double> lowest(infinity, infinity, infinity);
    Vector3<double> highest(-infinity, -infinity, -infinity);
    Extent extent;
    for (const Rod& rod : configuration.rods) {
        for (const Vector3<double>& point : rod.points) {
            for (int axis = 0; axis < 3; ++axis) {
                lowest[axis] = std::min(lowest[axis], point[axis]);
                highest[axis] = std::max(highest[axis], point[axis]);
            }
        }
        for (std::size_t i = 1; i < rod.points.size(); ++i)
            extent.length += (rod.points[i] - rod.points[i - 1]).getNorm();
        extent.segments += int(rod.points.size()) - 1;
    }
    extent.sides = highest - lowest;
    return extent;
}

// A rod of length L that fills a volume V evenly has neighbours at about sqrt(V / L).
// Flat sides count as a tenth of the diagonal, so that planar rods have a volume.
double automaticRadius(const Extent& extent)
{
    const double diagonal = extent.sides.getNorm();
    double volume = 1;
    for (int axis = 0; axis < 3; ++axis)
        volume *= std::max(extent.sides[axis], diagonal / 10);
    return std::min(diagonal / 80, std::sqrt(volume / extent.length) / 6);
}

int automaticSubsegments(const Extent& extent)
{
    const int rows = 6000;
    return std::clamp(rows / std::max(extent.segments, 1), 1, 32);
}

int automaticSlices(const Extent& extent, int subsegments)
{
    const int vertices = 400000;
    return std::clamp(vertices / std::max(extent.segments * subsegments, 1), 10, 32);
}

} // namespace

Style makeStyle(const Options& options, const Configuration& configuration)
{
    const Extent extent = measure(configuration);
    Style style;
    style.radius = options.radius ? *options.radius : automaticRadius(extent);
    style.ribbonWidth = options.ribbonWidth.value_or(3 * style.radius);
    style.subsegments = options.subsegments.value_or(automaticSubsegments(extent));
    style.slices = options.slices.value_or(automaticSlices(extent, style.subsegments));
    style.showTube = options.showTube;
    style.showRibbon = options.showRibbon;
    style.twoSidedRibbon = options.twoSidedRibbon;
    style.tubeColour = options.tubeColour;
    style.ribbonColour = options.ribbonColour.value_or(RIBBON_COLOUR);
    return style;
}
