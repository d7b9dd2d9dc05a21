// SPDX-License-Identifier: GPL-3.0-or-later
#include <TubeMesh.h>

#include <algorithm>
#include <cmath>

#include <GL/gl.h>
#include <Inventor/SoPrimitiveVertex.h>

#include <SoMeshShape.h>
#include <algebra3d/Matrix3.h>

#include "detail/GLVertexState.h"

using algebra3d::Matrix3;
using algebra3d::Quaternion;
using algebra3d::Vector3;

namespace {

const double TWO_PI = 6.283185307179586;
const double SMALLEST_RADIUS = 0.0001;
const double SMALLEST_BUILT_RADIUS = 0.01;

} // namespace

TubeMesh::TubeMesh(double tubeRadius, int ringSlices, bool lowerTakesLast, bool upperTakesFirst)
    : Mesh(false, true),
      radius(std::max(std::abs(tubeRadius), SMALLEST_RADIUS)),
      slices(std::max(ringSlices, 3)),
      lowerCapTakesLast(lowerTakesLast),
      upperCapTakesFirst(upperTakesFirst)
{}

TubeMesh::TubeMesh(const std::vector<Vector3<double>>& points,
                   const std::vector<Quaternion<double>>& rotations, double tubeRadius,
                   int ringSlices, bool lowerTakesLast, bool upperTakesFirst)
    : TubeMesh(std::max(std::abs(tubeRadius), SMALLEST_BUILT_RADIUS), ringSlices, lowerTakesLast,
               upperTakesFirst)
{
    if (points.size() < 2 || rotations.size() < 2)
        return;

    const std::size_t rings = std::min(points.size(), rotations.size());
    setWidth(slices + 1);
    setHeight(int(rings));
    allocateMemory();
    resetBB();
    for (std::size_t i = 0; i < rings; ++i) {
        Vector3<double> tangent;
        if (i > 0)
            tangent += (points[i] - points[i - 1]).getUnit();
        if (i + 1 < points.size())
            tangent += (points[i + 1] - points[i]).getUnit();
        tangent.normalize();

        const Vector3<double> d2 = Matrix3<double>(rotations[i]).getColumn(1);
        const Vector3<double> across = tangent.cross(d2).getUnit();
        fillRing(int(i), points[i], across.cross(tangent), across);
    }
}

int TubeMesh::getMaterialIndex(int row, int /*column*/) const { return row; }

bool TubeMesh::isValid()
{
    const Mesh& mesh = *this;
    return getHeight() >= 2 && getWidth() >= 4 && mesh.isValid();
}

void TubeMesh::render(SoGLRenderAction* action, int materialOffset)
{
    Mesh::render(action, materialOffset);
    if (!isValid())
        return;

    SoMaterialBundle bundle(action);
    const GLVertexState state(action, bundle, materialOffset);

    const int last = getHeight() - 1;
    const bool perVertex = !state.materialOverall;
    bundle.send(materialOffset + (perVertex && lowerCapTakesLast ? last : 0), TRUE);
    renderCap(0, state.texture, state.sendNormal, bundle);
    bundle.send(materialOffset + (perVertex && !upperCapTakesFirst ? last : 0), TRUE);
    renderCap(last, state.texture, state.sendNormal, bundle);
}

void TubeMesh::renderCap(int row, bool texture, bool sendNormal, SoMaterialBundle& bundle)
{
    const Vector3<double> normal = row == 0 ? getLowerCapNormal() : getUpperCapNormal();
    // Divided by width and height, not by one less as on the body: kept on purpose.
    const double t = double(row) / getHeight();
    glBegin(GL_TRIANGLE_FAN);
    for (int k = getWidth() - 2; k >= 0; --k) {
        addGLVertex(texture, double(k) / getWidth(), t, true, bundle, 0, sendNormal,
                    getPoints()[row][k], normal);
    }
    glEnd();
}

void TubeMesh::generate(SoMeshShape* shape, SoAction* action)
{
    if (!isValid())
        return;
    Mesh::generate(shape, action);
    generateCap(0, shape, action);
    generateCap(getHeight() - 1, shape, action);
}

void TubeMesh::generateCap(int row, SoMeshShape* shape, SoAction* action)
{
    SoPrimitiveVertex vertex;
    vertex.setNormal(toSbVec3f(row == 0 ? getLowerCapNormal() : getUpperCapNormal()));
    vertex.setMaterialIndex(row);
    shape->beginShape(action, SoShape::TRIANGLE_FAN, nullptr);
    for (int k = getWidth() - 2; k >= 0; --k) {
        vertex.setPoint(toSbVec3f(getPoints()[row][k]));
        shape->shapeVertex(&vertex);
    }
    shape->endShape();
}

int TubeMesh::getPrimitiveCount() { return Mesh::getPrimitiveCount() + 2 * getWidth() - 4; }

Vector3<double> TubeMesh::getUpperCapNormal()
{
    return isValid() ? capNormal(getHeight() - 1) : Vector3<double>();
}

Vector3<double> TubeMesh::getLowerCapNormal()
{
    return isValid() ? capNormal(0) : Vector3<double>();
}

Vector3<double> TubeMesh::capNormal(int row)
{
    const Vector3<double>* ring = getPoints()[row];
    return (ring[2] - ring[0]).cross(ring[1] - ring[0]).getUnit();
}

void TubeMesh::generate3DCircle(Vector3<double> u, Vector3<double> v, Vector3<double>* out)
{
    const std::size_t n = std::size_t(getWidth()) - 1;
    if (cosines.size() != n) {
        cosines.resize(n);
        sines.resize(n);
        const double step = TWO_PI / double(n);
        double angle = 0;
        for (std::size_t k = 0; k < n; ++k, angle += step) {
            cosines[k] = std::cos(angle);
            sines[k] = std::sin(angle);
        }
    }
    for (std::size_t k = 0; k < n; ++k)
        out[k] = cosines[k] * u + sines[k] * v;
}

void TubeMesh::fillRing(int row, const Vector3<double>& centre, const Vector3<double>& u,
                        const Vector3<double>& v)
{
    Vector3<double>* points = getPoints()[row];
    Vector3<double>* normals = getNormals()[row];
    generate3DCircle(u, v, normals);
    for (int k = 0; k < slices; ++k) {
        points[k] = centre + radius * normals[k];
        updateBB(points[k]);
    }
    // The closing column repeats the first: it cannot extend the box.
    points[slices] = points[0];
    normals[slices] = normals[0];
}
