// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoRod.h>

#include <algorithm>
#include <utility>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetPrimitiveCountAction.h>
#include <Inventor/elements/SoMaterialBindingElement.h>

#include <algebra3d/rotations.h>
#include <global.h>

#include "detail/WrittenShape.h"
#include "detail/rodData.h"
#include "detail/runBoth.h"
#include "drawing/MeshDrawing.h"

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

// A rod needs its constructor's arguments, so it has no factory: hence Coin's
// "abstract" macros for a class that is not abstract.
SO_NODE_ABSTRACT_SOURCE(SoRod);

namespace {

bool areCorrect(const std::vector<Vector>& points, const std::vector<Rotation>& rotations)
{
    return points.size() >= 2 && rotations.size() == points.size() &&
           isDataCorrect(points, rotations, algebra3d::ROTATION_TOLERANCE);
}

} // namespace

void SoRod::initClass() { SO_NODE_INIT_ABSTRACT_CLASS(SoRod, SoMeshShape, "SoMeshShape"); }

SoRod::SoRod(double radius, double width, int ringSlices, int rowsPerSegment, bool tubeShown,
             bool ribbonShown, bool ribbonTwoSided)
    : tubeRadius(radius),
      ribbonWidth(width),
      slices(ringSlices),
      subsegments(rowsPerSegment),
      drawing(std::make_unique<MeshDrawing>()),
      written(std::make_unique<WrittenShape>()),
      showingTube(tubeShown),
      showingRibbon(ribbonShown),
      twoSidedRibbon(ribbonTwoSided),
      valid(false)
{
    SO_NODE_CONSTRUCTOR(SoRod);
}

SoRod::~SoRod() = default;

bool SoRod::setData(const std::vector<Vector>& newPoints, const std::vector<Rotation>& newRotations)
{
    points = newPoints;
    rotations = newRotations;
    valid = isDataCorrect();
    generate();
    return valid;
}

SoRod::Meshes SoRod::makeMeshes(const std::vector<Vector>& points,
                                const std::vector<Rotation>& rotations, double tubeRadius,
                                double ribbonWidth, int slices, int subsegments,
                                bool twoSidedRibbon, bool closed)
{
    Meshes meshes;
    if (!areCorrect(points, rotations))
        return meshes;
    // The ribbon first, while there is no tube yet: it has two curves, the tube one.
    runBoth(
        points.size() >= MANY_POINTS && points.size() <= TOO_MANY_POINTS,
        [&] {
            meshes.ribbon = makeRibbon(points, rotations, ribbonWidth, subsegments, twoSidedRibbon,
                                       closed, nullptr);
            meshes.ribbon->forgetCurves();
        },
        [&] {
            meshes.tube =
                makeFramedTube(points, rotations, tubeRadius, slices, subsegments, closed, nullptr);
            meshes.tube->forgetCurve();
        });
    return meshes;
}

bool SoRod::setData(std::vector<Vector> newPoints, std::vector<Rotation> newRotations,
                    Meshes meshes)
{
    points = std::move(newPoints);
    rotations = std::move(newRotations);
    valid = isDataCorrect();
    tubeMesh = valid ? std::move(meshes.tube) : nullptr;
    ribbonMesh = valid ? std::move(meshes.ribbon) : nullptr;
    touch();
    return valid;
}

bool SoRod::isDataCorrect()
{
    if (areCorrect(points, rotations))
        return true;
    points.clear();
    rotations.clear();
    return false;
}

bool SoRod::isValid() const { return valid; }

int SoRod::getPointsNum() const { return int(points.size()); }

void SoRod::getFrame(Vector& point, Rotation& rotation, int index) const
{
    if (!valid)
        return;
    const std::size_t i = clampIndex(index, points.size());
    point = points[i];
    rotation = rotations[i];
}

void SoRod::generate()
{
    if (valid) {
        buildMeshes();
    } else {
        tubeMesh.reset();
        ribbonMesh.reset();
    }
    // Only now: whoever is told at once finds the new meshes.
    touch();
}

// The new meshes take over the memory of the old ones, which go after that.
void SoRod::buildMeshes()
{
    runBoth(
        points.size() >= MANY_POINTS,
        [this] {
            tubeMesh = makeFramedTube(points, rotations, tubeRadius, slices, subsegments, closed,
                                      tubeMesh.get());
        },
        [this] {
            ribbonMesh = makeRibbon(points, rotations, ribbonWidth, subsegments, twoSidedRibbon,
                                    closed, ribbonMesh.get());
        });
}

void SoRod::clear()
{
    tubeMesh.reset();
    ribbonMesh.reset();
    touch();
}

BiarcTubeMesh* SoRod::getTubeMesh() const { return tubeMesh.get(); }

BiarcRibbonMesh* SoRod::getRibbonMesh() const { return ribbonMesh.get(); }

void SoRod::generateRibbonData(const std::vector<Vector>& centreline,
                               const std::vector<Rotation>& frames, double width,
                               std::vector<Vector>& edgeA, std::vector<Vector>& edgeB)
{
    fillRibbonEdges(centreline, frames, width, twoSidedRibbon, edgeA, edgeB);
}

bool SoRod::hasMeshes() const { return valid && tubeMesh && ribbonMesh; }

// There is no factory to ask.
SoNode* SoRod::addToCopyDict() const
{
    if (SoFieldContainer* const copy = checkCopy(this))
        return static_cast<SoNode*>(copy);
    auto* const copy = new SoRod(tubeRadius, ribbonWidth, slices, subsegments, showingTube,
                                 showingRibbon, twoSidedRibbon);
    addCopy(this, copy);
    return copy;
}

void SoRod::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoMeshShape::copyContents(from, copyConnections);
    const auto* original = static_cast<const SoRod*>(from);
    points = original->points;
    rotations = original->rotations;
    valid = original->valid;
    closed = original->closed;
    if (original->hasMeshes())
        generate();
}

void SoRod::write(SoWriteAction* action) { written->write(*this, action); }

void SoRod::addWriteReference(SoOutput* output, SbBool isFromField)
{
    written->addReference(*this, output, isFromField);
}

void SoRod::GLRender(SoGLRenderAction* action)
{
    if (!shouldGLRender(action) || !hasMeshes())
        return;
    const bool overall =
        SoMaterialBindingElement::get(action->getState()) == SoMaterialBindingElement::OVERALL;
    std::vector<MeshDrawing::Part> parts;
    if (showingTube)
        parts.push_back({*tubeMesh, 0});
    if (showingRibbon)
        parts.push_back({*ribbonMesh, overall ? 1 : tubeMesh->getHeight()});
    drawing->draw(getIdOfMeshes(), action, parts, leavesOutRows());
}

void SoRod::generatePrimitives(SoAction* action)
{
    if (!hasMeshes())
        return;
    if (showingTube)
        tubeMesh->generate(this, action);
    if (showingRibbon)
        ribbonMesh->generate(this, action);
}

void SoRod::computeBBox(SoAction* /*action*/, SbBox3f& box, SbVec3f& centre)
{
    box.makeEmpty();
    if (hasMeshes()) {
        box.extendBy(tubeMesh->getBBox());
        box.extendBy(ribbonMesh->getBBox());
    }
    centre = (box.getMin() + box.getMax()) * 0.5f;
}

void SoRod::getPrimitiveCount(SoGetPrimitiveCountAction* action)
{
    if (!shouldPrimitiveCount(action) || !hasMeshes())
        return;
    action->addNumTriangles(tubeMesh->getPrimitiveCount() + ribbonMesh->getPrimitiveCount());
}

double SoRod::getTubeRadius() const { return tubeRadius; }

void SoRod::setTubeRadius(double radius) { tubeRadius = radius; }

double SoRod::getRibbonWidth() const { return ribbonWidth; }

void SoRod::setRibbonWidth(double width) { ribbonWidth = width; }

int SoRod::getSlices() const { return slices; }

void SoRod::setSlices(int count) { slices = count; }

int SoRod::getSubsegments() const { return subsegments; }

void SoRod::setSubsegments(int count) { subsegments = std::max(count, 1); }

bool SoRod::isShowingTube() const { return showingTube; }

void SoRod::showTube(bool show)
{
    showingTube = show;
    touch();
}

bool SoRod::isShowingRibbon() const { return showingRibbon; }

void SoRod::showRibbon(bool show)
{
    showingRibbon = show;
    touch();
}

bool SoRod::isTwoSidedRibbon() const { return twoSidedRibbon; }

void SoRod::setTwoSidedRibbon(bool twoSided) { twoSidedRibbon = twoSided; }

bool SoRod::isClosed() const { return closed; }

void SoRod::setClosed(bool isClosed) { closed = isClosed; }
