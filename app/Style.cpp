// SPDX-License-Identifier: GPL-3.0-or-later
#include "Style.h"

#include <algorithm>
#include <cmath>

#include "Extent.h"

namespace {

const Colour RIBBON_COLOUR{0.93f, 0.60f, 0.10f};

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
    style.background = options.background;
    return style;
}
