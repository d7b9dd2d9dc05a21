// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_OVERLAY_H
#define STRANDVIEW_APP_SCENE_OVERLAY_H

#include <vector>

#include <Inventor/SbVec3f.h>

#include "request/Colour.h"

class SoSeparator;

namespace strandview {

/// Something flat to be drawn over a scene, in a view of its own (SoLegendCamera): unlit, and
/// before all else. Its reference count is zero.
SoSeparator* makeOverlay();

/// Adds quadrilaterals, four corners each, in the colour that was set last.
void addShapes(SoSeparator& overlay, const std::vector<SbVec3f>& corners);

/// Black or white, as is read on the background.
Colour inkOn(const Colour& background);

} // namespace strandview

#endif
