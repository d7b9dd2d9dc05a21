// SPDX-License-Identifier: GPL-3.0-or-later
#include <SoBirod.h>

#include <algorithm>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoGetPrimitiveCountAction.h>
#include <Inventor/elements/SoMaterialBindingElement.h>

#include <global.h>

#include "detail/WrittenShape.h"
#include "detail/rodData.h"
#include "drawing/MeshDrawing.h"

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

// A birod needs its constructor's arguments, so it has no factory: hence Coin's
// "abstract" macros for a class that is not abstract.
SO_NODE_ABSTRACT_SOURCE(SoBirod);

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

bool SoBirod::isDataCorrect()
{
    const std::size_t count = average.points.size();
    const auto isRodCorrect = [count](const Rod& rod) {
        return rod.points.size() == count && rod.rotations.size() == count &&
               ::isDataCorrect(rod.points, rod.rotations, ROTATION_TOLERANCE);
    };
    if (count >= 2 && isRodCorrect(average) && isRodCorrect(strand1) && isRodCorrect(strand2))
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
    const auto displace = [](Rod& strand, double x, double y) {
        strand.positions.resize(strand.points.size());
        for (std::size_t i = 0; i < strand.positions.size(); ++i) {
            const algebra3d::Matrix3<double> frame(strand.rotations[i]);
            strand.positions[i] =
                strand.points[i] + x * frame.getColumn(0) + y * frame.getColumn(1);
        }
    };
    displace(strand1, strandXPos, strandYPos);
    displace(strand2, strandXPos, -strandYPos); // mirrored in its d1
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
    average.tube = makeFramedTube(average.points, average.rotations, avgTubeRadius, slices,
                                  subsegments, average.tube.get());
    // A displaced strand does not run along d3: its tangents come from the points alone.
    for (Rod* strand : {&strand1, &strand2})
        strand->tube = std::make_unique<BiarcTubeMesh>(
            strand->positions, tubesRadius, slices, subsegments, false, false, strand->tube.get());

    std::vector<Vector> edgeA(average.points.size());
    std::vector<Vector> edgeB(average.points.size());
    const auto buildRibbon = [&](Rod& rod, const std::vector<Vector>& centreline, double width) {
        generateRibbonData(centreline, rod.rotations, width, edgeA, edgeB);
        rod.ribbon =
            std::make_unique<BiarcRibbonMesh>(edgeA, edgeB, width, subsegments, rod.ribbon.get());
    };
    buildRibbon(average, average.points, avgRibbonWidth);
    buildRibbon(strand1, strand1.positions, ribbonsWidth);
    buildRibbon(strand2, strand2.positions, ribbonsWidth);
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
    drawing->draw(*this, action, parts);
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
