// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOLEGENDCAMERA_H
#define STRANDVIEW_APP_SCENE_SOLEGENDCAMERA_H

#include <Inventor/SbVec2f.h>
#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSubNode.h>

#include "request/LegendLook.h"

namespace strandview {

/// A camera for what stands at a border of a view: the plane z = 0, at least 2 high and 2 wide, and
/// one of them exactly. What stands at the bottom has y from -1 on there, and x = 0 in the middle;
/// at the top y goes up to 1, at the left x begins at -1, and at the right it goes up to 1, each
/// with 0 in the middle of the border.
class SoLegendCamera : public SoOrthographicCamera
{
    SO_NODE_HEADER(SoLegendCamera);

public:
    static void initClass();
    SoLegendCamera();

    void standAt(LegendPlace at);
    /// How many times as long as 2 the border is in the view that was last asked for, from 1 on.
    float getStretch() const { return stretch; }

    /// How wide and high the view is that was last asked for.
    SbVec2f getExtent() const { return extent; }

    /// The view that was there before this camera, when it was last drawn or traversed.
    const SbViewVolume& getViewBefore() const { return before; }

    void doAction(SoAction* action) override;
    void GLRender(SoGLRenderAction* action) override;
    void callback(SoCallbackAction* action) override;
    SbViewVolume getViewVolume(float useaspectratio = 0.0f) const override;

protected:
    ~SoLegendCamera() override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

private:
    LegendPlace place = LegendPlace::BOTTOM;
    mutable float stretch = 1;
    mutable SbVec2f extent{2, 2};
    SbViewVolume before;
};

} // namespace strandview

#endif
