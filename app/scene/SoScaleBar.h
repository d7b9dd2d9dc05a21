// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOSCALEBAR_H
#define STRANDVIEW_APP_SCENE_SOSCALEBAR_H

#include <string>
#include <vector>

#include <Inventor/SbVec3f.h>
#include <Inventor/nodes/SoShape.h>
#include <Inventor/nodes/SoSubNode.h>

#include "scene/Lettering.h"
#include "scene/ScaleBar.h"

namespace strandview {

class SoLegendCamera;

/// A bar that is as long as a round length is in the view before its overlay's camera, with that
/// length above it, in a corner of the overlay's view. In perspective, which has no one scale,
/// there is nothing.
class SoScaleBar : public SoShape
{
    SO_NODE_HEADER(SoScaleBar);

public:
    static void initClass();
    SoScaleBar();
    /// The camera lives as long as this.
    explicit SoScaleBar(const SoLegendCamera& cameraBefore);

    void set(const ScaleBarLook& next);

    void GLRender(SoGLRenderAction* action) override;

protected:
    ~SoScaleBar() override;
    void generatePrimitives(SoAction* action) override;
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& centre) override;

private:
    /// Four each, of the bar and the letters.
    std::vector<SbVec3f> findCorners(SoState* state);

    const SoLegendCamera* camera = nullptr;
    ScaleBarLook look;
    Lettering lettering;
    // Letters that were laid out last.
    std::string text;
    std::vector<SbVec2f> shape;
    float width = 0;
};

} // namespace strandview

#endif
