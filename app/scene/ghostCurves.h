// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_GHOSTCURVES_H
#define STRANDVIEW_APP_SCENE_GHOSTCURVES_H

#include <string>
#include <vector>

#include <strandview/model/Configuration.h>

#include "scene/SceneGeometry.h"
#include "scene/Style.h"

namespace strandview {

class Progress;

/// The curves of the reference of some data, superposed onto them: those of its rods, birods and
/// strands, with ideal ones where the file has none, as tubes within those of what they are
/// compared with, so that what is where the data are is hidden by them. The motion is the one back
/// that findSuperposition() takes the data to the reference by.
///
/// None if the data have no reference, the style shows no ghost, or there is nothing to superpose
/// by; and a line in `faults` instead of each through which no tube can be drawn. In any thread,
/// since nothing of Coin is touched. Fewer, if it is stopped.
std::vector<SceneGeometry::GhostCurve> computeGhost(const Configuration& data, const Style& style,
                                                    const Placement& placement,
                                                    const Progress& progress,
                                                    std::vector<std::string>& faults);

} // namespace strandview

#endif
