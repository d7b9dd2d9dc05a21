// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_CHOOSELOOK_H
#define STRANDVIEW_APP_SCENE_CHOOSELOOK_H

#include <optional>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>

#include "request/Options.h"
#include "scene/Colouring.h"
#include "scene/Style.h"

namespace strandview {

/// What the options and the data say about sizes and colours; notices tell which options have no
/// effect. Nothing, and report.error, if a length does not suit the data.
std::optional<Style> chooseStyle(const Options& options, const Configuration& configuration,
                                 ReadReport& report);

/// The colouring that is asked for, if one is; `ofOthers` as of makeColouring(). False, and
/// report.error, if there is none to be had, which options.colourIfPossible makes a notice.
bool chooseColouring(const Options& options, const Configuration& configuration, ReadReport& report,
                     const ValueSummary* ofOthers, std::optional<Colouring>& colouring,
                     const Progress& progress = Progress());

} // namespace strandview

#endif
