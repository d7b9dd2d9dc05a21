// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/chooseLook.h"

#include <string>
#include <utility>

#include "scene/idleOptions.h"

namespace strandview {

std::optional<Style> chooseStyle(const Options& options, const Configuration& configuration,
                                 ReadReport& report)
{
    report.error = checkLengths(options, configuration);
    if (!report.error.empty())
        return {};
    for (const std::string& line : findIdleOptions(options, configuration))
        report.notices.push_back(line);
    return makeStyle(options, configuration);
}

bool chooseColouring(const Options& options, const Configuration& configuration, ReadReport& report,
                     const ValueSummary* ofOthers, std::optional<Colouring>& colouring,
                     const Progress& progress)
{
    if (!options.colourBy)
        return true;
    colouring = makeColouring(options, configuration, report, ofOthers, progress);
    if (!colouring && options.colourIfPossible)
        report.notices.push_back("not coloured: " + std::exchange(report.error, ""));
    return colouring || options.colourIfPossible;
}

} // namespace strandview
