// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_OVERLAY_H
#define STRANDVIEW_APP_SCENE_OVERLAY_H

#include <vector>

#include <Inventor/SbVec3f.h>

#include "request/Colour.h"

class SoCoordinate3;
class SoFaceSet;
class SoSeparator;

namespace strandview {

class SoLegendCamera;

/// Something flat to be drawn over a scene, in a view of its own (SoLegendCamera): unlit, and
/// before all else. Its reference count is zero.
SoSeparator* makeOverlay();
/// Of such a view, which is one of a legend's own.
SoLegendCamera& cameraOf(SoSeparator& overlay);

/// Quadrilaterals in the colour that was set last, whose nodes stay as they change.
class Quadrilaterals
{
public:
    /// Adds the nodes, which the overlay owns.
    explicit Quadrilaterals(SoSeparator& overlay);
    /// Four corners each.
    void set(const std::vector<SbVec3f>& corners);

private:
    SoCoordinate3* coordinates;
    SoFaceSet* faces;
};

/// All that there is of some coordinates from now on.
void setPoints(SoCoordinate3& coordinates, const std::vector<SbVec3f>& points);

/// Black or white, as is read on the background.
Colour inkOn(const Colour& background);

} // namespace strandview

#endif
