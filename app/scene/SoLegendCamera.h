// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOLEGENDCAMERA_H
#define STRANDVIEW_APP_SCENE_SOLEGENDCAMERA_H

#include <Inventor/nodes/SoOrthographicCamera.h>
#include <Inventor/nodes/SoSubNode.h>

namespace strandview {

/// A camera for what stands at a view's bottom: the plane z = 0, from y = -1 at the bottom on,
/// at least 2 high and 2 wide, and one of them exactly. Or at its top, for what stands there: up to
/// y = 1.
class SoLegendCamera : public SoOrthographicCamera
{
    SO_NODE_HEADER(SoLegendCamera);

public:
    static void initClass();
    SoLegendCamera();

    void standAtTop(bool atTop);

    SbViewVolume getViewVolume(float useaspectratio = 0.0f) const override;

protected:
    ~SoLegendCamera() override;
    void copyContents(const SoFieldContainer* from, SbBool copyConnections) override;

private:
    bool isAtTop = false;
};

} // namespace strandview

#endif
