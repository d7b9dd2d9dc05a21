// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_WINDOW_AXISCROSS_H
#define STRANDVIEW_APP_WINDOW_AXISCROSS_H

#include <Inventor/SbRotation.h>
#include <Inventor/SbVec2s.h>

#include "request/FreeEdges.h"

class SoBaseColor;
class SoCoordinate3;
class SoDrawStyle;
class SoLineSet;
class SoNode;
class SoOrthographicCamera;
class SoSwitch;

namespace strandview {

class SoOverlay;

/// The directions of x (red), y (green) and z (blue) in the lower right corner of a view.
/// It is always of one size, and readable on white and on black.
///
///     axes.getNode()    is drawn before the scene, which hides it where both meet.
class AxisCross
{
public:
    /// For a view of 1 x 1 pixels along -z, with y up; shown.
    AxisCross();
    ~AxisCross();
    AxisCross(const AxisCross&) = delete;
    AxisCross& operator=(const AxisCross&) = delete;

    SoNode* getNode() const;

    /// The view's size in its pixels, of which `scale` make one of the desktop's.
    void setView(const SbVec2s& size, float scale);
    /// What a legend leaves free: the cross stands above one at the bottom where the view is too
    /// narrow for both, and beside one at the right where it is too low.
    void setLegendRoom(const FreeEdges& room);
    /// That of the scene's camera.
    void setOrientation(const SbRotation& orientation);
    void show(bool shown);
    bool isShown() const;

    /// Half the side, in the desktop's pixels, of the square in the corner that holds it.
    static constexpr float HALF_SIDE = 44;

private:
    void place();

    SbVec2s viewSize{1, 1};
    float viewScale = 1;
    FreeEdges legendRoom;
    SoOverlay* overlay;
    SoSwitch* visibility;
    SoOrthographicCamera* camera;
    SoDrawStyle* style;
    SoBaseColor* colours;
    SoCoordinate3* points;
    SoLineSet* lines;
};

} // namespace strandview

#endif
