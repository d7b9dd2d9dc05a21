// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoBirod.h>

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

// A birod needs its constructor's arguments, so it has no factory: hence Coin's
// "abstract" macros for a class that is not abstract.
SO_NODE_ABSTRACT_SOURCE(SoBirod);

namespace {

// A strand's centreline, displaced in its own frames.
void displace(const std::vector<Vector>& points, const std::vector<Rotation>& rotations, double x,
              double y, std::vector<Vector>& positions)
{
    positions.resize(points.size());
    for (std::size_t i = 0; i < positions.size(); ++i) {
        const algebra3d::Matrix3<double> frame(rotations[i]);
        positions[i] = points[i] + x * frame.getColumn(0) + y * frame.getColumn(1);
    }
}

using Points = std::vector<Vector>;
using Rotations = std::vector<Rotation>;

bool areCorrect(const Points& avgPoints, const Rotations& avgRotations, const Points& points1,
                const Rotations& rotations1, const Points& points2, const Rotations& rotations2)
{
    const std::size_t count = avgPoints.size();
    const auto isRodCorrect = [count](const Points& points, const Rotations& rotations) {
        return points.size() == count && rotations.size() == count &&
               isDataCorrect(points, rotations, algebra3d::ROTATION_TOLERANCE);
    };
    return count >= 2 && isRodCorrect(avgPoints, avgRotations) &&
           isRodCorrect(points1, rotations1) && isRodCorrect(points2, rotations2);
}

// A displaced strand does not run along d3: its tangents come from the points alone.
std::unique_ptr<BiarcTubeMesh> makeStrandTube(const std::vector<Vector>& positions, double radius,
                                              int slices, int subsegments, BiarcTubeMesh* replaced)
{
    return std::make_unique<BiarcTubeMesh>(positions, radius, slices, subsegments, false, false,
                                           replaced);
}

} // namespace

void SoBirod::initClass() { SO_NODE_INIT_ABSTRACT_CLASS(SoBirod, SoMeshShape, "SoMeshShape"); }

SoBirod::SoBirod(double avgRadius, double strandsRadius, double avgWidth, double strandsWidth,
                 double strandX, double strandY, int ringSlices, int rowsPerSegment,
                 bool avgTubeShown, bool tubesShown, bool avgRibbonShown, bool ribbonsShown,
                 bool ribbonTwoSided)
    : avgTubeRadius(avgRadius),
      tubesRadius(strandsRadius),
      avgRibbonWidth(avgWidth),
      ribbonsWidth(strandsWidth),
      strandXPos(strandX),
      strandYPos(strandY),
      slices(ringSlices),
      subsegments(rowsPerSegment),
      drawing(std::make_unique<MeshDrawing>()),
      written(std::make_unique<WrittenShape>()),
      showingAvgTube(avgTubeShown),
      showingTubes(tubesShown),
      showingAvgRibbon(avgRibbonShown),
      showingRibbons(ribbonsShown),
      twoSidedRibbon(ribbonTwoSided),
      valid(false)
{
    SO_NODE_CONSTRUCTOR(SoBirod);
}

SoBirod::~SoBirod() = default;

bool SoBirod::setData(const std::vector<Vector>& avgPoints,
                      const std::vector<Rotation>& avgRotations, const std::vector<Vector>& points1,
                      const std::vector<Rotation>& rotations1, const std::vector<Vector>& points2,
                      const std::vector<Rotation>& rotations2)
{
    average.points = avgPoints;
    average.rotations = avgRotations;
    strand1.points = points1;
    strand1.rotations = rotations1;
    strand2.points = points2;
    strand2.rotations = rotations2;
    valid = isDataCorrect();
    generate();
    return valid;
}

SoBirod::Meshes SoBirod::makeMeshes(const Data& data, double avgTubeRadius, double tubesRadius,
                                    double avgRibbonWidth, double ribbonsWidth, double strandXPos,
                                    double strandYPos, int slices, int subsegments,
                                    bool twoSidedRibbon)
{
    Meshes meshes;
    if (!areCorrect(data.avgPoints, data.avgRotations, data.points1, data.rotations1, data.points2,
                    data.rotations2))
        return meshes;
    std::vector<Vector> positions1, positions2;
    displace(data.points1, data.rotations1, strandXPos, strandYPos, positions1);
    displace(data.points2, data.rotations2, strandXPos, -strandYPos, positions2);
    const auto ribbon = [&](const std::vector<Vector>& centreline,
                            const std::vector<Rotation>& rotations, double width) {
        auto mesh =
            makeRibbon(centreline, rotations, width, subsegments, twoSidedRibbon, false, nullptr);
        mesh->forgetCurves();
        return mesh;
    };
    runBoth(
        data.avgPoints.size() >= MANY_POINTS && data.avgPoints.size() <= TOO_MANY_POINTS,
        [&] {
            meshes.avgRibbon = ribbon(data.avgPoints, data.avgRotations, avgRibbonWidth);
            meshes.ribbon1 = ribbon(positions1, data.rotations1, ribbonsWidth);
            meshes.ribbon2 = ribbon(positions2, data.rotations2, ribbonsWidth);
        },
        [&] {
            meshes.avgTube = makeFramedTube(data.avgPoints, data.avgRotations, avgTubeRadius,
                                            slices, subsegments, false, nullptr);
            meshes.tube1 = makeStrandTube(positions1, tubesRadius, slices, subsegments, nullptr);
            meshes.tube2 = makeStrandTube(positions2, tubesRadius, slices, subsegments, nullptr);
            for (BiarcTubeMesh* const tube :
                 {meshes.avgTube.get(), meshes.tube1.get(), meshes.tube2.get()})
                tube->forgetCurve();
        });
    return meshes;
}

bool SoBirod::setData(Data data, Meshes meshes)
{
    average.points = std::move(data.avgPoints);
    average.rotations = std::move(data.avgRotations);
    strand1.points = std::move(data.points1);
    strand1.rotations = std::move(data.rotations1);
    strand2.points = std::move(data.points2);
    strand2.rotations = std::move(data.rotations2);
    valid = isDataCorrect();
    if (valid) {
        updateStrandPositions();
        average.tube = std::move(meshes.avgTube);
        average.ribbon = std::move(meshes.avgRibbon);
        strand1.tube = std::move(meshes.tube1);
        strand1.ribbon = std::move(meshes.ribbon1);
        strand2.tube = std::move(meshes.tube2);
        strand2.ribbon = std::move(meshes.ribbon2);
    } else {
        deleteMeshes();
    }
    touch();
    return valid;
}

bool SoBirod::isDataCorrect()
{
    if (areCorrect(average.points, average.rotations, strand1.points, strand1.rotations,
                   strand2.points, strand2.rotations))
        return true;
    for (Rod* rod : {&average, &strand1, &strand2}) {
        rod->points.clear();
        rod->rotations.clear();
        rod->positions.clear();
    }
    return false;
}

bool SoBirod::isValid() const { return valid; }

int SoBirod::getPointsNum() const { return int(average.points.size()); }

void SoBirod::getFrames(Vector& point1, Rotation& rotation1, Vector& point2, Rotation& rotation2,
                        int index) const
{
    if (!valid)
        return;
    const std::size_t i = clampIndex(index, strand1.positions.size());
    point1 = strand1.positions[i];
    rotation1 = strand1.rotations[i];
    point2 = strand2.positions[i];
    rotation2 = strand2.rotations[i];
}

void SoBirod::getAvgFrame(Vector& point, Rotation& rotation, int index) const
{
    if (!valid)
        return;
    const std::size_t i = clampIndex(index, average.points.size());
    point = average.points[i];
    rotation = average.rotations[i];
}

void SoBirod::updateStrandPositions()
{
    displace(strand1.points, strand1.rotations, strandXPos, strandYPos, strand1.positions);
    // Mirrored in its d1.
    displace(strand2.points, strand2.rotations, strandXPos, -strandYPos, strand2.positions);
}

void SoBirod::generate()
{
    if (valid)
        buildMeshes();
    else
        deleteMeshes();
    // Only now: whoever is told at once finds the new meshes.
    touch();
}

void SoBirod::deleteMeshes()
{
    for (Rod* rod : {&average, &strand1, &strand2}) {
        rod->tube.reset();
        rod->ribbon.reset();
    }
}

// The new meshes take over the memory of the old ones, which go after that.
void SoBirod::buildMeshes()
{
    updateStrandPositions();
    const auto buildTubes = [this] {
        average.tube = makeFramedTube(average.points, average.rotations, avgTubeRadius, slices,
                                      subsegments, false, average.tube.get());
        for (Rod* strand : {&strand1, &strand2})
            strand->tube = makeStrandTube(strand->positions, tubesRadius, slices, subsegments,
                                          strand->tube.get());
    };
    const auto buildRibbon = [this](Rod& rod, const std::vector<Vector>& centreline, double width) {
        rod.ribbon = makeRibbon(centreline, rod.rotations, width, subsegments, twoSidedRibbon,
                                false, rod.ribbon.get());
    };
    runBoth(average.points.size() >= MANY_POINTS, buildTubes, [&] {
        buildRibbon(average, average.points, avgRibbonWidth);
        buildRibbon(strand1, strand1.positions, ribbonsWidth);
        buildRibbon(strand2, strand2.positions, ribbonsWidth);
    });
}

void SoBirod::clear()
{
    deleteMeshes();
    touch();
}

BiarcTubeMesh* SoBirod::getAvgTubeMesh() const { return average.tube.get(); }

BiarcTubeMesh* SoBirod::getTube1Mesh() const { return strand1.tube.get(); }

BiarcTubeMesh* SoBirod::getTube2Mesh() const { return strand2.tube.get(); }

BiarcRibbonMesh* SoBirod::getAvgRibbonMesh() const { return average.ribbon.get(); }

BiarcRibbonMesh* SoBirod::getRibbon1Mesh() const { return strand1.ribbon.get(); }

BiarcRibbonMesh* SoBirod::getRibbon2Mesh() const { return strand2.ribbon.get(); }

void SoBirod::generateRibbonData(const std::vector<Vector>& centreline,
                                 const std::vector<Rotation>& frames, double width,
                                 std::vector<Vector>& edgeA, std::vector<Vector>& edgeB)
{
    fillRibbonEdges(centreline, frames, width, twoSidedRibbon, edgeA, edgeB);
}

// The six meshes as one sequence

// The last one built stands for all of them.
bool SoBirod::hasMeshes() const { return valid && strand2.ribbon; }

Mesh& SoBirod::getMesh(Part part) const
{
    switch (part) {
    case AVG_TUBE:
        return *average.tube;
    case AVG_RIBBON:
        return *average.ribbon;
    case TUBE_1:
        return *strand1.tube;
    case RIBBON_1:
        return *strand1.ribbon;
    case TUBE_2:
        return *strand2.tube;
    case RIBBON_2:
        break;
    }
    return *strand2.ribbon;
}

bool SoBirod::isShowing(Part part) const
{
    switch (part) {
    case AVG_TUBE:
        return showingAvgTube;
    case AVG_RIBBON:
        return showingAvgRibbon;
    case TUBE_1:
    case TUBE_2:
        return showingTubes;
    case RIBBON_1:
    case RIBBON_2:
        break;
    }
    return showingRibbons;
}

int SoBirod::getMaterialOffset(Part part, bool overall) const
{
    // On purpose the rows of the one mesh before, not of all before.
    if (overall)
        return part == AVG_TUBE ? 0 : getMesh(Part(part - 1)).getHeight() + part;
    int offset = 0;
    for (int before = AVG_TUBE; before < part; ++before)
        offset += getMesh(Part(before)).getHeight();
    return offset;
}

// There is no factory to ask.
SoNode* SoBirod::addToCopyDict() const
{
    if (SoFieldContainer* const copy = checkCopy(this))
        return static_cast<SoNode*>(copy);
    auto* const copy = new SoBirod(avgTubeRadius, tubesRadius, avgRibbonWidth, ribbonsWidth,
                                   strandXPos, strandYPos, slices, subsegments, showingAvgTube,
                                   showingTubes, showingAvgRibbon, showingRibbons, twoSidedRibbon);
    addCopy(this, copy);
    return copy;
}

void SoBirod::copyContents(const SoFieldContainer* from, SbBool copyConnections)
{
    SoMeshShape::copyContents(from, copyConnections);
    const auto* original = static_cast<const SoBirod*>(from);
    const auto copyData = [](const Rod& rod, Rod& copy) {
        copy.points = rod.points;
        copy.rotations = rod.rotations;
        copy.positions = rod.positions;
    };
    copyData(original->average, average);
    copyData(original->strand1, strand1);
    copyData(original->strand2, strand2);
    valid = original->valid;
    if (original->hasMeshes())
        generate();
}

void SoBirod::write(SoWriteAction* action) { written->write(*this, action); }

void SoBirod::addWriteReference(SoOutput* output, SbBool isFromField)
{
    written->addReference(*this, output, isFromField);
}

void SoBirod::GLRender(SoGLRenderAction* action)
{
    if (!shouldGLRender(action) || !hasMeshes())
        return;
    const bool overall =
        SoMaterialBindingElement::get(action->getState()) == SoMaterialBindingElement::OVERALL;
    std::vector<MeshDrawing::Part> parts;
    for (const Part part : {AVG_TUBE, AVG_RIBBON, TUBE_1, TUBE_2, RIBBON_1, RIBBON_2}) {
        if (isShowing(part))
            parts.push_back({getMesh(part), getMaterialOffset(part, overall)});
    }
    drawing->draw(getIdOfMeshes(), action, parts, leavesOutRows());
}

void SoBirod::generatePrimitives(SoAction* action)
{
    if (!hasMeshes())
        return;
    for (const Part part : {AVG_TUBE, TUBE_1, TUBE_2, AVG_RIBBON, RIBBON_1, RIBBON_2}) {
        if (isShowing(part))
            getMesh(part).generate(this, action);
    }
}

void SoBirod::computeBBox(SoAction* /*action*/, SbBox3f& box, SbVec3f& centre)
{
    box.makeEmpty();
    if (hasMeshes()) {
        for (const Part part : {AVG_TUBE, AVG_RIBBON, TUBE_1, RIBBON_1, TUBE_2, RIBBON_2})
            box.extendBy(getMesh(part).getBBox());
    }
    centre = (box.getMin() + box.getMax()) * 0.5f;
}

void SoBirod::getPrimitiveCount(SoGetPrimitiveCountAction* action)
{
    if (!shouldPrimitiveCount(action) || !hasMeshes())
        return;
    for (const Part part : {AVG_TUBE, AVG_RIBBON, TUBE_1, RIBBON_1, TUBE_2, RIBBON_2}) {
        if (isShowing(part))
            action->addNumTriangles(getMesh(part).getPrimitiveCount());
    }
}

// Parameters

double SoBirod::getAvgTubeRadius() const { return avgTubeRadius; }

void SoBirod::setAvgTubeRadius(double radius) { avgTubeRadius = radius; }

double SoBirod::getTubesRadius() const { return tubesRadius; }

void SoBirod::setTubesRadius(double radius) { tubesRadius = radius; }

double SoBirod::getAvgRibbonWidth() const { return avgRibbonWidth; }

void SoBirod::setAvgRibbonWidth(double width) { avgRibbonWidth = width; }

double SoBirod::getRibbonsWidth() const { return ribbonsWidth; }

void SoBirod::setRibbonsWidth(double width) { ribbonsWidth = width; }

double SoBirod::getStrandXPos() const { return strandXPos; }

void SoBirod::setStrandXPos(double x) { strandXPos = x; }

double SoBirod::getStrandYPos() const { return strandYPos; }

void SoBirod::setStrandYPos(double y) { strandYPos = y; }

int SoBirod::getSlices() const { return slices; }

void SoBirod::setSlices(int count) { slices = count; }

int SoBirod::getSubsegments() const { return subsegments; }

void SoBirod::setSubsegments(int count) { subsegments = std::max(count, 1); }

bool SoBirod::isShowingAvgTube() const { return showingAvgTube; }

void SoBirod::showAvgTube(bool show)
{
    showingAvgTube = show;
    touch();
}

bool SoBirod::isShowingTubes() const { return showingTubes; }

void SoBirod::showTubes(bool show)
{
    showingTubes = show;
    touch();
}

bool SoBirod::isShowingAvgRibbon() const { return showingAvgRibbon; }

void SoBirod::showAvgRibbon(bool show)
{
    showingAvgRibbon = show;
    touch();
}

bool SoBirod::isShowingRibbons() const { return showingRibbons; }

void SoBirod::showRibbons(bool show)
{
    showingRibbons = show;
    touch();
}

bool SoBirod::isTwoSidedRibbon() const { return twoSidedRibbon; }

void SoBirod::setTwoSidedRibbon(bool twoSided) { twoSidedRibbon = twoSided; }
