// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoMeshShape.h>

#include <Inventor/SbBox3f.h>
#include <Inventor/actions/SoGetBoundingBoxAction.h>

namespace {

int livingAllRows = 0;

} // namespace

SO_NODE_ABSTRACT_SOURCE(SoMeshShape);

void SoMeshShape::initClass() { SO_NODE_INIT_ABSTRACT_CLASS(SoMeshShape, SoShape, "SoShape"); }

SoMeshShape::SoMeshShape() { SO_NODE_CONSTRUCTOR(SoMeshShape); }

SoMeshShape::~SoMeshShape() = default;

void SoMeshShape::beginShape(SoAction* action, SoShape::TriangleShape shapeType, SoDetail* detail)
{
    SoShape::beginShape(action, shapeType, detail);
}

void SoMeshShape::shapeVertex(const SoPrimitiveVertex* vertex) { SoShape::shapeVertex(vertex); }

void SoMeshShape::endShape() { SoShape::endShape(); }

void SoMeshShape::drawCoarsely(bool nearRowsLeftOut)
{
    if (coarse == nearRowsLeftOut)
        return;
    coarse = nearRowsLeftOut;
    meshesId = getIdOfMeshes();
    coarseId = getNextNodeId(); // before whoever is told at once changes it again
    touch();
    if (getNodeId() < coarseId) // told nobody
        coarseId = 0;
}

SbUniqueId SoMeshShape::getIdOfMeshes() const
{
    return getNodeId() == coarseId ? meshesId : getNodeId();
}

bool SoMeshShape::isDrawnCoarsely() const { return coarse; }

bool SoMeshShape::leavesOutRows() const { return coarse && livingAllRows == 0; }

SoMeshShape::AllRows::AllRows() { ++livingAllRows; }

SoMeshShape::AllRows::~AllRows() { --livingAllRows; }

void SoMeshShape::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoShape::copyContents(from, copyConnections);
    coarse = static_cast<const SoMeshShape*>(from)->coarse;
}

void SoMeshShape::getBoundingBox(SoGetBoundingBoxAction* action)
{
    if (!action)
        return;
    SbBox3f box;
    SbVec3f centre;
    computeBBox(action, box, centre);
    if (box.getMin()[0] > box.getMax()[0])
        return;
    action->extendBy(box);
    action->setCenter(centre, TRUE);
}
