// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DRAWING_GLVERTEXSTATE_H
#define STRANDVIEW_DRAWING_GLVERTEXSTATE_H

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoGLTextureEnabledElement.h>
#include <Inventor/elements/SoMaterialBindingElement.h>
#include <toCoin.h>

#include "drawing/sendMaterial.h"

/// Whether all vertices of a mesh have one material.
inline bool isMaterialOverall(SoState* state)
{
    const SoMaterialBindingElement::Binding binding = SoMaterialBindingElement::get(state);
    return binding != SoMaterialBindingElement::PER_VERTEX &&
           binding != SoMaterialBindingElement::PER_VERTEX_INDEXED;
}

/// What the traversal state asks a mesh to send with each vertex. Making one begins the
/// drawing: it sends the first material, and with an overall binding that at
/// materialOffset.
struct GLVertexState
{
    GLVertexState(SoGLRenderAction* action, SoMaterialBundle& bundle, int materialOffset)
    {
        bundle.sendFirst();
        sendNormal = !bundle.isColorOnly();
        SoState* state = action->getState();
        texture = SoGLTextureEnabledElement::get(state) != 0;
        materialOverall = isMaterialOverall(state);
        if (materialOverall)
            sendMaterial(bundle, materialOffset);
    }

    bool sendNormal;
    bool texture;
    bool materialOverall;
};

#endif
