// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/builders/DatumBuilder.h"

#include <Inventor/SbViewportRegion.h>
#include <Inventor/nodes/SoSeparator.h>

#include <strandview/formats/text/wording.h>

namespace strandview {

using algebra3d::Vector3;

namespace {

const Colour GLYPH_COLOUR{0.80f, 0.20f, 0.15f};

} // namespace

DatumBuilder::DatumBuilder(const FrameToShow& frameToShow) : frame(frameToShow) {}

std::string DatumBuilder::check(std::size_t /*index*/) const { return ""; }

ShownDatum DatumBuilder::build(std::size_t index)
{
    ShownDatum shown = makeNodes(index);
    shown.kind = getKind();
    shown.name = getName(index);
    shown.group->ref(); // an action leaves no node without a reference
    shown.box = findBox(index, shown);
    shown.group->unrefNoDelete();
    return shown;
}

void DatumBuilder::update(std::size_t index, ShownDatum& shown)
{
    updateNodes(index, shown);
    shown.name = getName(index);
    shown.box = findBox(index, shown);
}

void DatumBuilder::recolour(std::size_t /*index*/, ShownDatum& /*shown*/) {}

SbBox3f DatumBuilder::findBox(std::size_t /*index*/, const ShownDatum& shown)
{
    if (!bounds)
        bounds.emplace(SbViewportRegion(1, 1));
    bounds->apply(shown.group);
    return bounds->getBoundingBox();
}

SbBox3f boxAround(const Vector3<double>& point, double reach)
{
    const Vector3<double> margin(reach, reach, reach);
    return SbBox3f(toSbVec3f(point - margin), toSbVec3f(point + margin));
}

Colour glyphColour(const std::optional<std::string>& text)
{
    return text ? parseColour(*text).value_or(GLYPH_COLOUR) : GLYPH_COLOUR;
}

std::string checkColour(const std::optional<std::string>& text, const std::string& origin)
{
    if (!text || parseColour(*text))
        return "";
    return origin + ".colour: found " + inQuotes(*text) +
           ", expected #rrggbb or an SVG colour name";
}

} // namespace strandview
