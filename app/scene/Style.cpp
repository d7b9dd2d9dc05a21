// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/Style.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <strandview/formats/text/wording.h>
#include <strandview/model/Extent.h>

#include "request/thingTexts.h"
#include "scene/Legend.h"
#include "scene/backbones.h"
#include "scene/clipping.h"

namespace strandview {

namespace {

const double BACKBONE_RADIUS = 1; // ångström

const double AVERAGE_RADIUS = 0.6; // of that of a birod's strands

const Colour RIBBON_COLOUR{0.93f, 0.60f, 0.10f};

// Of a single point, as good as any.
double diagonal(const Extent& extent)
{
    const double length = extent.sides.getNorm();
    return length > 0 ? length : 1;
}

// A rod of length L that fills a volume V evenly has neighbours at about sqrt(V / L).
// Flat sides count as a fiftieth of the longest one, so that planar rods have a volume.
// What is hardly longer than its box has no neighbours.
double automaticRadius(const Extent& extent)
{
    const double longest = std::max({extent.sides.x, extent.sides.y, extent.sides.z});
    const double thin = diagonal(extent) / 80;
    if (extent.length < 1.5 * extent.sides.getNorm())
        return thin;
    double volume = 1;
    for (int axis = 0; axis < 3; ++axis)
        volume *= std::max(extent.sides[axis], longest / 50);
    return std::min(thin, std::sqrt(volume / extent.length) / 5);
}

// In a small picture larger than elsewhere, as far as there is room. The shorter side is 2.
float automaticTextSize(const Options& options)
{
    const int readable = 11; // pixels
    if (!options.picture)
        return LEGEND_TEXT_SIZE;
    return std::clamp(2 * float(readable) /
                          float(std::min(options.pictureWidth, options.pictureHeight)),
                      LEGEND_TEXT_SIZE, LARGEST_LEGEND_TEXT_SIZE);
}

// DNA's is known.
std::string usualUnit(const Options& options, const Configuration& data)
{
    if (data.dnas.empty() && data.loneBases.empty())
        return "";
    return options.dna.angstrom == 1 ? "Å" : "nm";
}

// The turns of a double strand, ten segments each, are seen as polygons end-on: of its backbones
// three of each segment look round, as long as a tube of 10 slices has no more vertices for that.
int automaticSubsegments(long long segments, bool haveTurns)
{
    const long long rows = 6000, rowsOfTurns = 40000, fewestOfTurns = 3;
    const long long fewest =
        haveTurns ? std::clamp(rowsOfTurns / std::max(segments, 1LL), 1LL, fewestOfTurns) : 1;
    return int(std::clamp(rows / std::max(segments, 1LL), fewest, 32LL));
}

// At least 10, so that a tube looks round; of very many rows, which are no longer than a
// pixel or two when all of them are seen, at least 6.
int automaticSlices(long long segments, int subsegments)
{
    const long long vertices = 400000, mostRoundVertices = 2500000;
    const long long rows = std::max(segments * subsegments, 1LL);
    const long long fewest = std::clamp(mostRoundVertices / rows, 6LL, 10LL);
    return int(std::clamp(vertices / rows, fewest, 32LL));
}

// Of a limit, three digits.
std::string readable(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g", value);
    return text;
}

// Refuses a length that cannot be seen beside the data, or beside which they cannot be seen,
// before the formulas and single precision do so less clearly.
std::string checkLength(const std::string& option, const std::optional<double>& length,
                        const Extent& extent)
{
    const double size = extent.sides.getNorm();
    const double least = 1e-6 * size, most = 1e6 * size;
    if (!length || extent.segments == 0 || (*length >= least && *length <= most))
        return "";
    return option + ": found " + formatted(*length) + ", expected " + readable(least) + " to " +
           readable(most) + ", a millionth to a million times the size of the data";
}

} // namespace

ThingStyle styleOf(const Style& style, const ThingId& thing)
{
    ThingStyle own = style;
    if (thing.part != ThingPart::WHOLE)
        own = styleOf(style, {thing.kind, thing.index});
    if (thing.part == ThingPart::AVERAGE)
        own.radius *= AVERAGE_RADIUS;
    const auto known = style.things.ofThings.find(thing);
    if (known == style.things.ofThings.end())
        return own;
    const ThingLook& look = known->second;
    if (look.radius) {
        own.ribbonWidth *= style.isRibbonWidthAsked ? 1 : *look.radius / own.radius;
        own.radius = own.backboneRadius = *look.radius;
        own.isRadiusAsked = true;
    }
    own.twoSidedRibbon = look.twoSidedRibbon.value_or(own.twoSidedRibbon);
    if (own.twoSidedRibbon != style.twoSidedRibbon && !style.isRibbonWidthAsked)
        own.ribbonWidth *= own.twoSidedRibbon ? 2 : 0.5;
    own.ribbonWidth = look.ribbonWidth.value_or(own.ribbonWidth);
    own.isRibbonWidthAsked = own.isRibbonWidthAsked || look.ribbonWidth;
    own.slices = look.slices.value_or(own.slices);
    own.subsegments = look.subsegments.value_or(own.subsegments);
    own.showTube = look.showTube.value_or(own.showTube);
    own.showBackbones = own.showTube && style.dna.backbone;
    const bool asksForRibbon = look.ribbonWidth || look.ribbonColour || look.twoSidedRibbon;
    own.showRibbon = look.showRibbon.value_or(own.showRibbon);
    own.showMadeFrames = look.showRibbon.value_or(own.showMadeFrames || asksForRibbon);
    own.transparency = look.transparency.value_or(own.transparency);
    own.ribbonColour = look.ribbonColour.value_or(own.ribbonColour);
    return own;
}

bool asksForRibbon(const StyleRequest& request)
{
    return request.showRibbon.value_or(request.ribbonWidth || request.ribbonColour ||
                                       request.twoSidedRibbon);
}

Style makeStyle(const Options& options, const Configuration& configuration)
{
    const Extent extent = measure(configuration);
    const long long segments = countSegments(configuration, options.dna);
    Style style;
    style.radius = options.radius ? *options.radius : automaticRadius(extent);
    style.ribbonWidth =
        options.ribbonWidth.value_or((options.twoSidedRibbon ? 6 : 3) * style.radius);
    style.isRadiusAsked = options.radius.has_value();
    style.isRibbonWidthAsked = options.ribbonWidth.has_value();
    style.backboneRadius = options.radius.value_or(BACKBONE_RADIUS * options.dna.angstrom);
    style.subsegments = options.subsegments.value_or(
        automaticSubsegments(segments, !configuration.dnas.empty() && options.dna.backbone));
    style.slices = options.slices.value_or(automaticSlices(segments, style.subsegments));
    style.showTube = options.showTube;
    style.showBackbones = options.showTube && options.dna.backbone;
    style.showRibbon = options.showRibbon.value_or(true);
    style.showMadeFrames = asksForRibbon(options);
    style.twoSidedRibbon = options.twoSidedRibbon;
    style.tubeColour = options.tubeColour;
    style.transparency = options.transparency;
    style.ribbonColour = options.ribbonColour.value_or(RIBBON_COLOUR);
    style.background = options.background;
    if (options.clip)
        style.clip = settled(*options.clip, extent);
    style.drawing = options.drawing;
    style.showGhost = options.compare && options.showGhost;
    style.ghostTransparency = options.ghostTransparency;
    style.legend = options.legend;
    style.things = options.things;
    style.legendTextSize = automaticTextSize(options);
    style.scaleBar = options.scaleBar;
    style.scaleUnit = options.scaleUnit.value_or(usualUnit(options, configuration));
    style.glyphSize = configuration.rods.empty() ? diagonal(extent) / 30 : 4 * style.radius;
    style.dna = options.dna;
    return style;
}

StyleRequest resolve(StyleRequest request, const ThingStyle& style)
{
    request.showTube = style.showTube;
    request.twoSidedRibbon = style.twoSidedRibbon;
    request.transparency = style.transparency;
    request.radius = style.radius;
    request.ribbonWidth = style.ribbonWidth;
    request.slices = style.slices;
    request.subsegments = style.subsegments;
    request.showRibbon = style.showRibbon;
    request.ribbonColour = style.ribbonColour;
    return request;
}

StyleRequest resolve(StyleRequest request, const Style& style)
{
    request.scaleUnit = style.scaleUnit;
    request.clip = style.clip;
    return resolve(std::move(request), static_cast<const ThingStyle&>(style));
}

std::string checkLengths(const Options& options, const Configuration& configuration)
{
    const Extent extent = measure(configuration);
    std::string fault = checkLength("--radius", options.radius, extent);
    if (fault.empty())
        fault = checkLength("--ribbon-width", options.ribbonWidth, extent);
    for (const auto& [thing, look] : options.things.ofThings) {
        const std::string option = "--thing " + nameOf(thing) + ": ";
        if (fault.empty())
            fault = checkLength(option + "radius", look.radius, extent);
        if (fault.empty())
            fault = checkLength(option + "ribbon-width", look.ribbonWidth, extent);
    }
    return fault;
}

} // namespace strandview
