// SPDX-License-Identifier: GPL-3.0-or-later
#include "detail/WrittenShape.h"

#include <array>
#include <cstdint>
#include <map>
#include <vector>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoOutput.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoWriteAction.h>
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoNormal.h>
#include <Inventor/nodes/SoNormalBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShape.h>

namespace {

// The triangles of a shape, each different pair of point and normal once.
class Triangles
{
public:
    explicit Triangles(SoShape& shape)
    {
        SoCallbackAction traversal;
        traversal.addTriangleCallback(SoShape::getClassTypeId(), add, this);
        traversal.apply(&shape);
    }

    std::vector<SbVec3f> points, normals;
    std::vector<std::int32_t> faces; // three corners and -1

private:
    static void add(void* self, SoCallbackAction* /*traversal*/, const SoPrimitiveVertex* a,
                    const SoPrimitiveVertex* b, const SoPrimitiveVertex* c)
    {
        auto* const triangles = static_cast<Triangles*>(self);
        for (const SoPrimitiveVertex* corner : {a, b, c})
            triangles->faces.push_back(triangles->indexOf(*corner));
        triangles->faces.push_back(-1);
    }

    std::int32_t indexOf(const SoPrimitiveVertex& corner)
    {
        const SbVec3f &point = corner.getPoint(), &normal = corner.getNormal();
        const auto [entry, isNew] = indices.try_emplace(
            {point[0], point[1], point[2], normal[0], normal[1], normal[2]}, points.size());
        if (isNew) {
            points.push_back(point);
            normals.push_back(normal);
        }
        return entry->second;
    }

    std::map<std::array<float, 6>, std::int32_t> indices;
};

SoSeparator* makeStandIn(SoShape& shape)
{
    auto* const separator = new SoSeparator;
    const Triangles triangles(shape);
    if (triangles.faces.empty())
        return separator;

    auto* const points = new SoCoordinate3;
    points->point.setValues(0, int(triangles.points.size()), triangles.points.data());
    auto* const normals = new SoNormal;
    normals->vector.setValues(0, int(triangles.normals.size()), triangles.normals.data());
    auto* const normalBinding = new SoNormalBinding;
    normalBinding->value = SoNormalBinding::PER_VERTEX_INDEXED;
    auto* const materialBinding = new SoMaterialBinding;
    materialBinding->value = SoMaterialBinding::OVERALL;
    auto* const faces = new SoIndexedFaceSet;
    faces->coordIndex.setValues(0, int(triangles.faces.size()), triangles.faces.data());
    for (SoNode* node :
         std::initializer_list<SoNode*>{points, normals, normalBinding, materialBinding, faces})
        separator->addChild(node);
    return separator;
}

} // namespace

WrittenShape::~WrittenShape()
{
    if (standIn)
        standIn->unref();
}

void WrittenShape::follow(SoShape& shape)
{
    if (shapeId == shape.getNodeId())
        return;
    if (standIn)
        standIn->unref();
    shapeId = shape.getNodeId();
    standIn = makeStandIn(shape);
    standIn->ref();
}

void WrittenShape::addReference(SoShape& shape, SoOutput* output, SbBool isFromField)
{
    follow(shape);
    standIn->addWriteReference(output, isFromField);
}

void WrittenShape::write(SoShape& shape, SoWriteAction* action)
{
    SoOutput* const output = action->getOutput();
    if (output->getStage() == SoOutput::COUNT_REFS)
        addReference(shape, output, FALSE);
    else if (standIn)
        standIn->write(action);
}
