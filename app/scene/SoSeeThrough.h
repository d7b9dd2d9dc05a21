// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_SOSEETHROUGH_H
#define STRANDVIEW_APP_SCENE_SOSEETHROUGH_H

#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoSubNode.h>

class SoMaterial;

namespace strandview {

/// What is in it is seen through, whatever its own materials say of that. Of each shape what is
/// turned away is drawn before what is turned towards the eye, so that a tube's near side is before
/// its far side from everywhere; shapes are sorted as the action does it.
class SoSeeThrough : public SoSeparator
{
    SO_NODE_HEADER(SoSeeThrough);

public:
    static void initClass();
    SoSeeThrough();

    /// 0 for opaque, up to 1.
    void setTransparency(double transparency);

    void GLRenderInPath(SoGLRenderAction* action) override;

protected:
    ~SoSeeThrough() override;

private:
    SoMaterial* material; ///< the first child
};

/// Lets a child of a node be seen through, in a SoSeeThrough that takes its place; of 0 as it is.
void seeThrough(double transparency, SoGroup& parent, int child);

/// A child of a node, be it seen through or not.
SoNode* childOf(const SoGroup& parent, int child);

} // namespace strandview

#endif
