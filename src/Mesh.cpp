// SPDX-License-Identifier: GPL-3.0-or-later
#include <Mesh.h>

#include <algorithm>
#include <cfloat>
#include <limits>
#include <memory>
#include <new>
#include <utility>

#include <GL/gl.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>

#include <SoMeshShape.h>
#include <algebra3d/largePages.h>

#include "drawing/meshVisitors.h"
#include "drawing/sendMaterial.h"
#include "picking/RowBoxes.h"

using algebra3d::Vector3;

namespace {

// That of a cache line.
constexpr std::align_val_t ALIGNMENT{64};
// A block is kept while it is at most this many times as large as is needed.
const std::size_t LARGEST_SLACK = 4;

Vector3<double>* allocateVectors(std::size_t count)
{
    const std::size_t bytes = count * sizeof(Vector3<double>);
    void* const memory = ::operator new(bytes, ALIGNMENT);
    // Touching fresh memory is most of the time to build a first mesh.
    algebra3d::useLargePages(memory, bytes);
    return static_cast<Vector3<double>*>(memory);
}

} // namespace

// Vectors hold nothing that needs to be destroyed.
void Mesh::Free::operator()(Vector3<double>* block) const { ::operator delete(block, ALIGNMENT); }

Mesh::Mesh(bool rowsWrapAround, bool columnsWrapAround)
    : rowsWrap(rowsWrapAround), columnsWrap(columnsWrapAround), capacity(0), pickedNodeId(0)
{
    clear();
}

Mesh::~Mesh() = default;

bool Mesh::isValid() const { return height >= 1 && width >= 1 && !rows.empty(); }

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

// For each visitor of its own: those of this library are compiled into the walk.
template <typename Visitor>
void Mesh::visitStrips(Visitor& visitor, int first, int end)
{
    const auto points = getPoints(), normals = getNormals();
    for (int i = first; i < end; ++i) {
        visitor.begin(MeshVisitor::STRIP, 0);
        for (int j = 0; j < width; ++j) {
            const double s = double(j) / (width - 1);
            for (const int row : {i + 1, i}) {
                visitor.vertex({row, j, points[row][j], normals[row][j], getMaterialIndex(row, j),
                                s, double(row) / (height - 1)});
            }
        }
        visitor.end();
    }
}

void Mesh::render(SoGLRenderAction* action, int materialOffset)
{
    const Mesh& mesh = *this; // the validity asked for is that of any mesh, not a subclass's
    if (!mesh.isValid())
        return;
    ImmediateDrawing drawing(*this, action, materialOffset);
    visitStrips(drawing, 0, height - 1);
}

void Mesh::generate(SoMeshShape* shape, SoAction* action) { generateStrips(shape, action); }

Mesh::LeftOut Mesh::generateStrips(SoMeshShape* shape, SoAction* action)
{
    LeftOut leftOut = {true, true};
    const Mesh& mesh = *this;
    if (!mesh.isValid())
        return leftOut;
    PrimitiveGeneration generation(*shape, action);
    const auto generateRun = [&](int first, int end) {
        leftOut.atFirstRow &= first != 0;
        leftOut.atLastRow &= end != height - 1;
        visitStrips(generation, first, end);
    };
    if (SoRayPickAction* const pick = asRayPick(action))
        boxesFor(*shape).visitHit(*pick, generateRun);
    else
        generateRun(0, height - 1);
    return leftOut;
}

void Mesh::visit(MeshVisitor& visitor)
{
    const Mesh& mesh = *this;
    if (mesh.isValid())
        visitStrips(visitor, 0, height - 1);
    visitCaps(visitor);
}

void Mesh::visitCaps(MeshVisitor& visitor)
{
    if (caps && caps->areThere()) {
        caps->visitCap(0, visitor);
        caps->visitCap(height - 1, visitor);
    }
}

void Mesh::setCaps(MeshCaps* newCaps) { caps = newCaps; }

// Coin gives a node a new id, of all there ever were, whenever it is touched.
const RowBoxes& Mesh::boxesFor(const SoMeshShape& shape)
{
    const std::uint64_t nodeId = shape.getIdOfMeshes();
    if (!pickBoxes || pickedNodeId != nodeId) {
        pickBoxes = std::make_unique<RowBoxes>(rows.data(), height, width, columnsWrap);
        pickedNodeId = nodeId;
    }
    return *pickBoxes;
}

int Mesh::getPrimitiveCount() { return (width - 1) * (2 * height - 2); }

void Mesh::computeNormals()
{
    const auto p = getPoints(), n = getNormals();
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
    for (int i = 0; i < height; ++i) {
        for (int j = 0; j < width; ++j)
            n[i][j].normalize();
    }

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

Vector3<double>** Mesh::getPoints() { return rows.empty() ? nullptr : rows.data(); }

Vector3<double>** Mesh::getNormals()
{
    return rows.empty() ? nullptr : rows.data() + rows.size() / 2;
}

void Mesh::setWidth(int columns)
{
    pickBoxes.reset();
    width = std::max(columns, 2);
}

void Mesh::setHeight(int rowCount)
{
    pickBoxes.reset();
    height = rowCount;
}

void Mesh::allocateMemory()
{
    allocateUnconstructed();
    if (height >= 1)
        std::uninitialized_value_construct_n(block.get(), 2 * size());
}

void Mesh::allocateUnconstructed()
{
    if (height < 1)
        return;
    const std::size_t needed = 2 * size();
    if (capacity < needed || capacity / LARGEST_SLACK > needed) {
        rows.clear();
        block.reset(); // first, so that both are never there at once
        capacity = 0;
        block.reset(allocateVectors(needed));
        capacity = needed;
    }
    pickBoxes.reset();
    if (rows.empty())
        rows = std::move(replacedRows);
    rows.resize(2 * std::size_t(height));
    Vector3<double>* next = block.get();
    for (Vector3<double>*& row : rows) {
        row = next;
        next += width;
    }
}

void Mesh::takeMemory(Mesh& replaced)
{
    block = std::move(replaced.block);
    capacity = std::exchange(replaced.capacity, 0);
    replacedRows = std::move(replaced.rows);
    replaced.clear();
}

void Mesh::clear()
{
    pickBoxes.reset();
    rows = {};
    replacedRows = {};
    block.reset();
    capacity = 0;
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
        sendMaterial(bundle, materialIndex);
    if (sendNormal)
        glNormal3f(float(normal.x), float(normal.y), float(normal.z));
    glVertex3f(float(point.x), float(point.y), float(point.z));
}
