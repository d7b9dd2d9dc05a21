// SPDX-License-Identifier: GPL-3.0-or-later
#include <TubeMesh.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <algebra3d/Matrix3.h>

#include "drawing/meshVisitors.h"
#include "sampling/fourAtOnce.h"

using algebra3d::Matrix3;
using algebra3d::Quaternion;
using Vector = algebra3d::Vector3<double>;

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
{
    setCaps(this);
}

TubeMesh::TubeMesh(const std::vector<Vector>& points,
                   const std::vector<Quaternion<double>>& rotations, double tubeRadius,
                   int ringSlices, bool lowerTakesLast, bool upperTakesFirst, TubeMesh* replaced)
    : TubeMesh(std::max(std::abs(tubeRadius), SMALLEST_BUILT_RADIUS), ringSlices, lowerTakesLast,
               upperTakesFirst)
{
    if (replaced)
        takeMemory(*replaced);
    if (points.size() < 2 || rotations.size() < 2)
        return;

    const std::size_t rings = std::min(points.size(), rotations.size());
    setWidth(slices + 1);
    setHeight(int(rings));
    allocateUnconstructed();
    resetBB();
    const int PORTION = 64;
    RingFrame frames[PORTION];
    int filled = 0;
    Vector before; // the unit direction from the point before
    for (std::size_t i = 0; i < rings; ++i) {
        Vector tangent, after;
        if (i > 0)
            tangent += before;
        if (i + 1 < points.size()) {
            after = (points[i + 1] - points[i]).getUnit();
            tangent += after;
        }
        tangent.normalize();
        before = after;

        const Vector d2 = Matrix3<double>(rotations[i]).getColumn(1);
        const Vector across = tangent.cross(d2).getUnit();
        frames[filled++] = {points[i], across.cross(tangent), across};
        if (filled == PORTION || i + 1 == rings) {
            fillerFrom(int(i) + 1 - filled).fill(frames, filled);
            filled = 0;
        }
    }
}

void TubeMesh::takeMemory(TubeMesh& replaced)
{
    Mesh::takeMemory(replaced);
    directions = std::move(replaced.directions);
}

int TubeMesh::getMaterialIndex(int row, int /*column*/) const { return row; }

int TubeMesh::getCapMaterialIndex(int row) const
{
    const bool takesLast = row == 0 ? lowerCapTakesLast : !upperCapTakesFirst;
    return takesLast ? getHeight() - 1 : 0;
}

bool TubeMesh::isValid()
{
    const Mesh& mesh = *this;
    return getHeight() >= 2 && getWidth() >= 4 && mesh.isValid();
}

void TubeMesh::render(SoGLRenderAction* action, int materialOffset)
{
    Mesh::render(action, materialOffset);
    if (!areThere())
        return;
    ImmediateDrawing drawing(*this, action, materialOffset);
    for (const int row : {0, getHeight() - 1})
        visitCap(row, drawing);
}

void TubeMesh::generate(SoMeshShape* shape, SoAction* action)
{
    if (!isValid())
        return;
    const LeftOut leftOut = generateStrips(shape, action);
    if (meetsItself)
        return;
    PrimitiveGeneration generation(*shape, action);
    if (!leftOut.atFirstRow)
        visitCap(0, generation);
    if (!leftOut.atLastRow)
        visitCap(getHeight() - 1, generation);
}

bool TubeMesh::areThere() { return !meetsItself && isValid(); }

void TubeMesh::visitCap(int row, MeshVisitor& visitor)
{
    const Vector normal = row == 0 ? getLowerCapNormal() : getUpperCapNormal();
    const int material = getCapMaterialIndex(row);
    // Divided by width and height, not by one less as on the body: kept on purpose.
    const double t = double(row) / getHeight();
    visitor.begin(MeshVisitor::FAN, material);
    for (int k = getWidth() - 2; k >= 0; --k)
        visitor.vertex({row, k, getPoints()[row][k], normal, material, double(k) / getWidth(), t});
    visitor.end();
}

int TubeMesh::getPrimitiveCount()
{
    return Mesh::getPrimitiveCount() + (meetsItself ? 0 : 2 * getWidth() - 4);
}

Vector TubeMesh::getUpperCapNormal() { return isValid() ? capNormal(getHeight() - 1) : Vector(); }

Vector TubeMesh::getLowerCapNormal() { return isValid() ? capNormal(0) : Vector(); }

Vector TubeMesh::capNormal(int row)
{
    const Vector* ring = getPoints()[row];
    return (ring[2] - ring[0]).cross(ring[1] - ring[0]).getUnit();
}

// The first normal lies along u, the second one a column's angle from there towards v.
TubeMesh::RingFrame TubeMesh::frameOf(int row)
{
    computeDirections(slices);
    const Vector& u = getNormals()[row][0];
    const Vector v = (getNormals()[row][1] - directions[2] * u) * (1 / directions[3]);
    return {getPoints()[row][0] - radius * u, u, v};
}

void TubeMesh::meetItself(const std::vector<double>& shares)
{
    const int last = getHeight() - 1;
    const RingFrame first = frameOf(0);
    const Vector& end = getNormals()[last][0];
    const double angle = std::atan2(end.dot(first.v), end.dot(first.u));
    resetBB();
    for (int row = 0; row <= last; ++row) {
        RingFrame frame = row == last ? first : frameOf(row);
        const double back = row == last ? 0 : -angle * shares[std::size_t(row)];
        const Vector u = std::cos(back) * frame.u + std::sin(back) * frame.v;
        const Vector v = std::cos(back) * frame.v - std::sin(back) * frame.u;
        fillRing(row, frame.centre, u, v);
    }
    meetsItself = true;
}

void TubeMesh::computeDirections(int columns)
{
    const auto n = std::size_t(columns);
    if (directions.size() == 2 * (n + 1))
        return;
    directions.resize(2 * (n + 1));
    const double step = TWO_PI / double(n);
    double angle = 0;
    for (std::size_t k = 0; k < n; ++k, angle += step) {
        directions[2 * k] = std::cos(angle);
        directions[2 * k + 1] = std::sin(angle);
    }
    directions[2 * n] = directions[0];
    directions[2 * n + 1] = directions[1];
}

void TubeMesh::generate3DCircle(Vector u, Vector v, Vector* out)
{
    const int n = getWidth() - 1;
    computeDirections(n);
    for (std::size_t k = 0; k < std::size_t(n); ++k)
        out[k] = directions[2 * k] * u + directions[2 * k + 1] * v;
}

void TubeMesh::fillRing(int row, const Vector& centre, const Vector& u, const Vector& v)
{
    Vector* points = getPoints()[row];
    Vector* normals = getNormals()[row];
    generate3DCircle(u, v, normals);
    for (int k = 0; k < slices; ++k) {
        points[k] = centre + radius * normals[k];
        updateBB(points[k]);
    }
    // The closing column repeats the first: it cannot extend the box.
    points[slices] = points[0];
    normals[slices] = normals[0];
}

RingFiller TubeMesh::fillerFrom(int row)
{
    computeDirections(slices);
    return {directions.data(), slices + 1,   radius,      getPoints()[row],
            getNormals()[row], getMinimum(), getMaximum()};
}
