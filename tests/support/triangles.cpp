// SPDX-License-Identifier: GPL-3.0-or-later
#include "triangles.h"

#include <algorithm>

#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoCallbackAction.h>
#include <Inventor/actions/SoGetPrimitiveCountAction.h>
#include <Inventor/nodes/SoShape.h>

namespace {

Corner corner(const SoPrimitiveVertex& vertex)
{
    const SbVec3f& p = vertex.getPoint();
    const SbVec3f& n = vertex.getNormal();
    return {p[0], p[1], p[2], n[0], n[1], n[2], float(vertex.getMaterialIndex())};
}

Triangle triangle(const Corner& a, const Corner& b, const Corner& c)
{
    Triangle result = {a, b, c};
    std::rotate(result.begin(), std::min_element(result.begin(), result.end()), result.end());
    return result;
}

void appendTriangle(void* list, SoCallbackAction*, const SoPrimitiveVertex* a,
                    const SoPrimitiveVertex* b, const SoPrimitiveVertex* c)
{
    static_cast<std::vector<Triangle>*>(list)->push_back(
        triangle(corner(*a), corner(*b), corner(*c)));
}

} // namespace

Corner corner(const algebra3d::Vector3<double>& point, const algebra3d::Vector3<double>& normal,
              int material)
{
    return {float(point.x),  float(point.y),  float(point.z), float(normal.x),
            float(normal.y), float(normal.z), float(material)};
}

std::vector<Triangle> stripTriangles(const std::vector<Corner>& corners)
{
    std::vector<Triangle> result;
    for (std::size_t i = 2; i < corners.size(); ++i) {
        if (i % 2 == 0)
            result.push_back(triangle(corners[i - 2], corners[i - 1], corners[i]));
        else
            result.push_back(triangle(corners[i - 1], corners[i - 2], corners[i]));
    }
    return result;
}

std::vector<Triangle> fanTriangles(const std::vector<Corner>& corners)
{
    std::vector<Triangle> result;
    for (std::size_t i = 2; i < corners.size(); ++i)
        result.push_back(triangle(corners[0], corners[i - 1], corners[i]));
    return result;
}

std::vector<Triangle> generatedTriangles(SoNode* scene)
{
    std::vector<Triangle> list;
    SoCallbackAction action;
    action.addTriangleCallback(SoShape::getClassTypeId(), appendTriangle, &list);
    action.apply(scene);
    return list;
}

int countedTriangles(SoNode* scene)
{
    SoGetPrimitiveCountAction action;
    action.apply(scene);
    return action.getTriangleCount();
}
