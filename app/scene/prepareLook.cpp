// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/prepareLook.h"

#include <strandview/model/Extent.h>

#include "scene/Placement.h"
#include "scene/SceneBuilder.h"
#include "scene/chooseLook.h"

namespace strandview {

namespace {

// Of a frame beside the first.
bool chooseColouringOf(const Configuration& frame, const Options& options,
                       const Configuration& first, const ValueSummary* ofOthers, ReadReport& report,
                       const Progress& progress, std::optional<Colouring>& colouring)
{
    if (options.colourBy && options.ownRange)
        return chooseColouring(options, frame, report, nullptr, colouring, progress);
    ValueSummary values;
    if (options.colourBy && !ofOthers)
        values = summarise(frame, *options.colourBy, options.dna.angstrom, progress);
    const bool isChosen =
        chooseColouring(options, first, report, ofOthers ? ofOthers : &values, colouring, progress);
    if (colouring)
        colouring = followColouring(*colouring, frame, progress);
    return isChosen;
}

} // namespace

std::optional<PreparedLook> prepareLook(const Options& options, const Configuration& data,
                                        ReadReport& report, Progress& progress)
{
    const std::optional<Style> style = chooseStyle(options, data, report);
    PreparedLook look;
    if (!style || !chooseColouring(options, data, report, nullptr, look.colouring, progress))
        return {};
    look.style = *style;
    look.geometry = computeGeometry(data, *style, progress, report.error);
    return report.error.empty() ? std::optional(std::move(look)) : std::nullopt;
}

std::optional<PreparedLook> prepareLook(const Options& options, const Configuration& frame,
                                        const Configuration& first, const ValueSummary* ofOthers,
                                        ReadReport& report, Progress& progress)
{
    const std::optional<Style> style = chooseStyle(options, first, report);
    PreparedLook look;
    if (!style ||
        !chooseColouringOf(frame, options, first, ofOthers, report, progress, look.colouring))
        return {};
    look.style = *style;
    look.geometry = computeGeometry(frame, *style, choosePlacement(measure(first), style->radius),
                                    progress, report.error);
    return report.error.empty() ? std::optional(std::move(look)) : std::nullopt;
}

} // namespace strandview
