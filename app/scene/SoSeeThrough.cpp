// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/SoSeeThrough.h"

#include <cstdlib>
#include <initializer_list>

#include <GL/gl.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/elements/SoLazyElement.h>
#include <Inventor/misc/SoState.h>
#include <Inventor/nodes/SoMaterial.h>

namespace strandview {

SO_NODE_SOURCE(SoSeeThrough);

void SoSeeThrough::initClass()
{
    SO_NODE_INIT_CLASS(SoSeeThrough, SoSeparator, "SoSeparator");
    // Coin reads it with the first override: or one of transparency would be one of colours, too.
    setenv("COIN_SEPARATE_DIFFUSE_TRANSPARENCY_OVERRIDE", "1", 1);
}

// Nothing but the transparency is imposed on the materials that follow.
SoSeeThrough::SoSeeThrough() : material(new SoMaterial)
{
    SO_NODE_CONSTRUCTOR(SoSeeThrough);
    material->ambientColor.setIgnored(TRUE);
    material->diffuseColor.setIgnored(TRUE);
    material->specularColor.setIgnored(TRUE);
    material->emissiveColor.setIgnored(TRUE);
    material->shininess.setIgnored(TRUE);
    material->setOverride(TRUE);
    addChild(material);
}

SoSeeThrough::~SoSeeThrough() = default;

void SoSeeThrough::setTransparency(double transparency)
{
    if (material->transparency[0] != float(transparency))
        material->transparency = float(transparency);
}

// A path leads here when what was put off until the opaque things were there is drawn. Coin, which
// tells OpenGL of it late, is told whether something is left out, and OpenGL which of the sides.
void SoSeeThrough::GLRenderInPath(SoGLRenderAction* action)
{
    if (!action->isRenderingTranspPaths()) {
        SoSeparator::GLRenderInPath(action);
        return;
    }
    SoState* const state = action->getState();
    for (const GLenum side : {GL_FRONT, GL_BACK}) {
        state->push();
        SoLazyElement::setBackfaceCulling(state, TRUE);
        glCullFace(side);
        SoSeparator::GLRenderInPath(action);
        state->pop();
    }
}

} // namespace strandview
