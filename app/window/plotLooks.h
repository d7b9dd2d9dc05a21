// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_PLOTLOOKS_H
#define STRANDVIEW_APP_WINDOW_PLOTLOOKS_H

#include "plotting/Plot.h"
#include "scene/DataScene.h"

namespace strandview {

/// What the user of a scene chose for what a line is of.
ThingLook lookOf(const LineId& line, const DataScene& scene);

/// Gives curves the names and colours that the user chose, and leaves out those of what is hidden.
void followLooks(Plot& plot, const DataScene& scene);

} // namespace strandview

#endif
