// SPDX-License-Identifier: GPL-3.0-or-later
#include <Mesh.h>

#include <algorithm>
#include <cfloat>
#include <limits>

#include <GL/gl.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>

#include <SoMeshShape.h>

#include "detail/GLVertexState.h"

using algebra3d::Vector3;

void Mesh::Grid::allocate(int height, int width)
{
    rows.clear();
    block.clear();
    block.resize(std::size_t(height) * std::size_t(width));
    rows.resize(std::size_t(height));
    for (std::size_t row = 0; row < rows.size(); ++row)
        rows[row] = &block[row * std::size_t(width)];
}

Mesh::Mesh(bool rowsWrapAround, bool columnsWrapAround)
    : rowsWrap(rowsWrapAround), columnsWrap(columnsWrapAround)
{
    clear();
}

Mesh::~Mesh() = default;

bool Mesh::isValid() const
{
    return height >= 1 && width >= 1 && !points.rows.empty() && !normals.rows.empty();
}

int Mesh::getHeight() const { return height; }

int Mesh::getWidth() const { return width; }

int Mesh::getMaterialIndex(int row, int column) const { return row * height + column; }

SbBox3f Mesh::getBBox() const
{
    return SbBox3f(float(minimum[0]), float(minimum[1]), float(minimum[2]), float(maximum[0]),
                   float(maximum[1]), float(maximum[2]));
}

SbVec3f Mesh::getCentre()
{
    const SbBox3f box = getBBox();
    return (box.getMin() + box.getMax()) * 0.5f;
}

void Mesh::render(SoGLRenderAction* action, int materialOffset)
{
    const Mesh& mesh = *this; // the validity asked for is that of any mesh, not a subclass's
    if (!mesh.isValid())
        return;

    SoMaterialBundle bundle(action);
    const GLVertexState state(action, bundle, materialOffset);

    for (int i = 0; i + 1 < height; ++i) {
        glBegin(GL_TRIANGLE_STRIP);
        for (int j = 0; j < width; ++j) {
            const double s = double(j) / (width - 1);
            for (const int row : {i + 1, i}) {
                addGLVertex(state.texture, s, double(row) / (height - 1), state.materialOverall,
                            bundle, getMaterialIndex(row, j) + materialOffset, state.sendNormal,
                            points.rows[row][j], normals.rows[row][j]);
            }
        }
        glEnd();
    }
}

void Mesh::generate(SoMeshShape* shape, SoAction* action)
{
    const Mesh& mesh = *this;
    if (!mesh.isValid())
        return;

    SoPrimitiveVertex vertex;
    for (int i = 0; i + 1 < height; ++i) {
        shape->beginShape(action, SoShape::TRIANGLE_STRIP, nullptr);
        for (int j = 0; j < width; ++j) {
            for (const int row : {i + 1, i}) {
                vertex.setPoint(toSbVec3f(points.rows[row][j]));
                vertex.setNormal(toSbVec3f(normals.rows[row][j]));
                vertex.setMaterialIndex(getMaterialIndex(row, j));
                shape->shapeVertex(&vertex);
            }
        }
        shape->endShape();
    }
}

int Mesh::getPrimitiveCount() { return (width - 1) * (2 * height - 2); }

void Mesh::computeNormals()
{
    const auto& p = points.rows;
    const auto& n = normals.rows;
    for (int i = 0; i + 1 < height; ++i) {
        for (int j = 0; j + 1 < width; ++j) {
            const Vector3<double> along = p[i + 1][j] - p[i][j];
            const Vector3<double> across = p[i][j + 1] - p[i][j];
            const Vector3<double> normal = across.cross(along).getUnit();
            n[i][j] += normal;
            n[i + 1][j] += normal;
            n[i][j + 1] += normal;
            n[i + 1][j + 1] += normal;
        }
    }
    for (Vector3<double>& normal : normals.block)
        normal.normalize();

    const auto join = [](Vector3<double>& first, Vector3<double>& last) {
        first = (first + last).getUnit();
        last = first;
    };
    if (columnsWrap) {
        for (int i = 0; i < height; ++i)
            join(n[i][0], n[i][width - 1]);
    } else if (rowsWrap && height > 0) {
        for (int j = 0; j < width; ++j)
            join(n[0][j], n[height - 1][j]);
    }
}

Vector3<double>** Mesh::getPoints() { return points.getRows(); }

Vector3<double>** Mesh::getNormals() { return normals.getRows(); }

void Mesh::setWidth(int columns) { width = std::max(columns, 2); }

void Mesh::setHeight(int rows) { height = rows; }

void Mesh::allocateMemory()
{
    if (height < 1)
        return;
    points.allocate(height, width);
    normals.allocate(height, width);
}

void Mesh::clear()
{
    points = Grid();
    normals = Grid();
    height = 0;
    width = 2;
    std::fill_n(minimum, 3, FLT_MAX);
    std::fill_n(maximum, 3, FLT_MIN);
}

void Mesh::resetBB()
{
    std::fill_n(minimum, 3, std::numeric_limits<double>::infinity());
    std::fill_n(maximum, 3, -std::numeric_limits<double>::infinity());
}

void Mesh::addGLVertex(bool texture, double s, double t, bool materialOverall,
                       SoMaterialBundle& bundle, int materialIndex, bool sendNormal,
                       const Vector3<double>& point, const Vector3<double>& normal)
{
    if (texture)
        glTexCoord2f(float(s), float(t));
    if (!materialOverall)
        bundle.send(materialIndex, TRUE);
    if (sendNormal)
        glNormal3f(float(normal.x), float(normal.y), float(normal.z));
    glVertex3f(float(point.x), float(point.y), float(point.z));
}
