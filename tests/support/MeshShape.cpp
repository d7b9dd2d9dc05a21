// SPDX-License-Identifier: GPL-3.0-or-later
#include "MeshShape.h"

#include <cassert>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetPrimitiveCountAction.h>

#include <Mesh.h>

SO_NODE_ABSTRACT_SOURCE(MeshShape);

void MeshShape::initClass() { SO_NODE_INIT_ABSTRACT_CLASS(MeshShape, SoMeshShape, "SoMeshShape"); }

MeshShape::MeshShape(Mesh* shownMesh, int renderedMaterialOffset)
    : mesh(shownMesh), materialOffset(renderedMaterialOffset)
{
    SO_NODE_CONSTRUCTOR(MeshShape);
}

void MeshShape::GLRender(SoGLRenderAction* action)
{
    if (mesh && shouldGLRender(action))
        mesh->render(action, materialOffset);
}

void MeshShape::getPrimitiveCount(SoGetPrimitiveCountAction* action)
{
    if (mesh && shouldPrimitiveCount(action))
        action->addNumTriangles(mesh->getPrimitiveCount());
}

void MeshShape::generatePrimitives(SoAction* action)
{
    if (mesh)
        mesh->generate(this, action);
}

void MeshShape::computeBBox(SoAction*, SbBox3f& box, SbVec3f& centre)
{
    ++boxComputations;
    box.makeEmpty();
    if (mesh)
        box = mesh->getBBox();
    centre = box.getMax();
}
