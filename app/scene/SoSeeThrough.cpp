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

void seeThrough(double transparency, SoGroup& parent, int child)
{
    auto* through = dynamic_cast<SoSeeThrough*>(parent.getChild(child));
    if (through && transparency > 0) {
        through->setTransparency(transparency);
        return;
    }
    if (!through && transparency <= 0)
        return;
    SoNode* const node = childOf(parent, child);
    node->ref(); // while what holds it goes
    if (through) {
        parent.replaceChild(child, node);
    } else {
        through = new SoSeeThrough;
        through->setTransparency(transparency);
        through->addChild(node);
        parent.replaceChild(child, through);
    }
    node->unrefNoDelete();
}

SoNode* childOf(const SoGroup& parent, int child)
{
    SoNode* const node = parent.getChild(child);
    const auto* const through = dynamic_cast<const SoSeeThrough*>(node);
    return through ? through->getChild(1) : node;
}

} // namespace strandview
