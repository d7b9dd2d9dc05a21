// SPDX-License-Identifier: GPL-3.0-or-later
#include "window/plotLooks.h"

#include <cstddef>

namespace strandview {

namespace {

ThingKind thingOf(Track::Kind kind)
{
    switch (kind) {
    case Track::Kind::ROD:
        return ThingKind::ROD;
    case Track::Kind::BIROD_AVERAGE:
    case Track::Kind::BIROD_STRAND:
        return ThingKind::BIROD;
    default:
        return ThingKind::DNA;
    }
}

void dropLine(Plot& plot, std::size_t line)
{
    plot.lines.erase(plot.lines.begin() + std::ptrdiff_t(line));
    for (PlotPanel& panel : plot.panels)
        panel.values.erase(panel.values.begin() + std::ptrdiff_t(line));
}

} // namespace

ThingLook lookOf(const LineId& line, const DataScene& scene)
{
    const ThingKind kind = thingOf(line.kind);
    return scene.lookOf(kind, line.datum, partOf(kind, line.strand));
}

void followLooks(Plot& plot, const DataScene& scene)
{
    for (std::size_t i = plot.lines.size(); i-- > 0;) {
        PlotLine& line = plot.lines[i];
        const ThingLook look = lookOf(line.id, scene);
        if (look.isHidden()) {
            dropLine(plot, i);
            continue;
        }
        line.title = look.name.value_or(line.title);
        if (look.colour)
            line.colour = *look.colour;
    }
}

} // namespace strandview
