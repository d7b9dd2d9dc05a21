// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/prepareLook.h"

#include <strandview/model/Extent.h>

#include "request/settings.h"
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

bool haveSameShapes(const StyleRequest& shown, const StyleRequest& next)
{
    return differInColoursAlone(shown, next) && asksForRibbon(shown) == asksForRibbon(next);
}

std::optional<PreparedLook> prepareColours(const Options& options, const Configuration& frame,
                                           const Configuration& first, const ValueSummary* ofOthers,
                                           const RowsOfData* shown, ReadReport& report,
                                           Progress& progress)
{
    const std::optional<Style> style = chooseStyle(options, first, report);
    PreparedLook look;
    if (!style)
        return {};
    const bool isChosen =
        &frame == &first
            ? chooseColouring(options, first, report, nullptr, look.colouring, progress)
            : chooseColouringOf(frame, options, first, ofOthers, report, progress, look.colouring);
    if (!isChosen)
        return {};
    look.style = *style;
    if (look.colouring && shown)
        addRowColours(*look.colouring, *shown, look.geometry);
    return look;
}

std::optional<PreparedLook> prepareLook(const Options& options, const Configuration& frame,
                                        const Configuration& first, const ValueSummary* ofOthers,
                                        ReadReport& report, Progress& progress)
{
    std::optional<PreparedLook> look =
        prepareColours(options, frame, first, ofOthers, nullptr, report, progress);
    if (!look)
        return {};
    look->geometry =
        computeGeometry(frame, look->style, choosePlacement(measure(first), look->style.radius),
                        progress, report.error);
    if (!report.error.empty())
        return {};
    for (const std::string& fault : look->geometry.ghostFaults)
        report.notices.push_back(fault);
    if (look->colouring)
        addRowColours(*look->colouring, look->geometry);
    return look;
}

std::optional<PreparedLook> prepareLook(const Options& options, const Configuration& data,
                                        ReadReport& report, Progress& progress)
{
    return prepareLook(options, data, data, nullptr, report, progress);
}

} // namespace strandview
