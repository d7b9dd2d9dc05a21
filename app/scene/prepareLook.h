// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_PREPARELOOK_H
#define STRANDVIEW_APP_SCENE_PREPARELOOK_H

#include <optional>

#include <strandview/formats/ReadReport.h>
#include <strandview/model/Configuration.h>

#include "request/Options.h"
#include "scene/Colouring.h"
#include "scene/SceneGeometry.h"
#include "scene/Style.h"

namespace strandview {

class Progress;

/// What a scene of some data needs besides them but its nodes.
struct PreparedLook
{
    Style style;
    std::optional<Colouring> colouring; ///< of the data
    SceneGeometry geometry;             ///< of colours alone the colours of rows
};

/// Whether what is shown as the one asks has the shapes that the other asks for, in other colours
/// at most.
bool haveSameShapes(const StyleRequest& shown, const StyleRequest& next);

/// What the options and the data say. In any thread, since nothing of Coin or Qt is touched.
/// Nothing, and one line in report.error, if something asked for does not suit the data, they
/// cannot be drawn, or it is stopped.
std::optional<PreparedLook> prepareLook(const Options& options, const Configuration& data,
                                        ReadReport& report, Progress& progress);

/// The same of any frame of a series: what is left open follows from its first frame, and the
/// range of colours from the values of all others, if given, or else from those two frames.
std::optional<PreparedLook> prepareLook(const Options& options, const Configuration& frame,
                                        const Configuration& first, const ValueSummary* ofOthers,
                                        ReadReport& report, Progress& progress);

/// The same for data that are shown with haveSameShapes(), whose rows are told or not: of the
/// geometry their colours alone.
std::optional<PreparedLook> prepareColours(const Options& options, const Configuration& frame,
                                           const Configuration& first, const ValueSummary* ofOthers,
                                           const RowsOfData* shown, ReadReport& report,
                                           Progress& progress);

} // namespace strandview

#endif
