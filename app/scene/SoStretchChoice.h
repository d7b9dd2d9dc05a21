// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOSTRETCHCHOICE_H
#define STRANDVIEW_APP_SCENE_SOSTRETCHCHOICE_H

#include <vector>

#include <Inventor/nodes/SoGroup.h>
#include <Inventor/nodes/SoSubNode.h>

namespace strandview {

class SoLegendCamera;

/// Of its children the one for the view that is drawn: the last of those whose stretch, all of
/// which ascend, is at most that of the camera before it. The first where there is no camera, as in
/// a copy.
class SoStretchChoice : public SoGroup
{
    SO_NODE_HEADER(SoStretchChoice);

public:
    static void initClass();
    SoStretchChoice();
    /// The camera lives as long as this.
    SoStretchChoice(const SoLegendCamera& cameraBefore, std::vector<float> stretchesOfChildren);

    void doAction(SoAction* action) override;
    void GLRender(SoGLRenderAction* action) override;
    void callback(SoCallbackAction* action) override;

protected:
    ~SoStretchChoice() override;

private:
    const SoLegendCamera* camera = nullptr;
    std::vector<float> stretches;
};

} // namespace strandview

#endif
