// SPDX-License-Identifier: GPL-3.0-or-later
#include <BiarcRibbonMesh.h>

#include <algorithm>
#include <cmath>

#include "detail/closedCurves.h"
#include "sampling/biarcSampling.h"

using Vector = algebra3d::Vector3<double>;

namespace {

// Through the first m points.
void interpolate(Curve<::Vector3>& curve, const std::vector<Vector>& edge, std::size_t m,
                 bool closed)
{
    setNodes(curve, m, [&](std::size_t i, ::Vector3& point, ::Vector3& /*tangent*/) {
        point = toBiarc(edge[i]);
    });
    curve.computeTangents();
    if (closed) {
        curve.biarcs.front().tangent = toBiarc(tangentAtSeam(edge));
        curve.biarcs.back().tangent = curve.biarcs.front().tangent;
    }
    makeMidpointRule(curve);
}

} // namespace

BiarcRibbonMesh::BiarcRibbonMesh(std::vector<Vector>& edgeA, std::vector<Vector>& edgeB,
                                 double width, int rowsPerBiarc, BiarcRibbonMesh* replaced)
    : BiarcRibbonMesh(edgeA, edgeB, width, rowsPerBiarc, false, replaced)
{}

std::unique_ptr<BiarcRibbonMesh> BiarcRibbonMesh::makeClosed(std::vector<Vector>& edgeA,
                                                             std::vector<Vector>& edgeB,
                                                             double width, int rowsPerBiarc,
                                                             BiarcRibbonMesh* replaced)
{
    const bool closed = isClosedCurve(edgeA) && isClosedCurve(edgeB);
    return std::unique_ptr<BiarcRibbonMesh>(
        new BiarcRibbonMesh(edgeA, edgeB, width, rowsPerBiarc, closed, replaced));
}

BiarcRibbonMesh::BiarcRibbonMesh(const std::vector<Vector>& edgeA, const std::vector<Vector>& edgeB,
                                 double width, int rowsPerBiarc, bool closed,
                                 BiarcRibbonMesh* replaced)
    : RibbonMesh(width), interpolationCount(std::max(std::abs(double(rowsPerBiarc)), 1.0))
{
    if (replaced) {
        takeMemory(*replaced);
        takeNodes(curveA, replaced->curveA);
        takeNodes(curveB, replaced->curveB);
        lengths = std::move(replaced->lengths);
    }
    setWidth(2);
    const std::size_t m = edgeA.size();
    if (m < 2) {
        // What is left of a mesh that this one replaces
        forgetCurves();
        lengths.reset();
        return;
    }

    const int rows = int(interpolationCount) * (int(m) - 1) + 1;
    setHeight(rows);
    ArcLengths& filled = ownLengths(lengths);
    filled.ofPoints.resize(m);
    filled.ofRows.resize(std::size_t(rows));

    interpolate(curveA, edgeA, m, closed);
    interpolate(curveB, edgeB, m, closed);

    allocateUnconstructed();
    resetBB();
    fillRows(int(m));
}

void BiarcRibbonMesh::fillRows(int m)
{
    Vector **points = getPoints(), **normals = getNormals();
    const int count = int(interpolationCount);
    const LengthTables tables = {lengths->ofPoints, lengths->ofRows}; // those of curve B stay
    CurveWalk walkA(curveA, m, count, nullptr), walkB(curveB, m, count, &tables);
    CurveSamples edgeA, edgeB;
    while (walkA.next(edgeA) && walkB.next(edgeB)) {
        const int row = walkB.getRow() - edgeB.size;
        fillRibbon(edgeA, edgeB, points[row], normals[row], getMinimum(), getMaximum());
    }
    const int last = walkB.getRow();
    lengths->ofPoints[std::size_t(m - 1)] = lengths->ofRows[std::size_t(last)] = walkB.getLength();

    // Unlike the tube's last ring, the last row does not extend the box: kept on purpose.
    const Biarc<::Vector3>&endA = lastNode(curveA, m), &endB = lastNode(curveB, m);
    edgeA.size = edgeB.size = 0;
    edgeA.append(endA.point, endA.tangent);
    edgeB.append(endB.point, endB.tangent);
    double ignored[] = {0, 0, 0};
    fillRibbon(edgeA, edgeB, points[last], normals[last], ignored, ignored);
}

void BiarcRibbonMesh::computePointsOnSide(int column, int m, Curve<::Vector3>& curve,
                                          std::vector<Vector>& tangents)
{
    if (curve.biarcs.empty())
        return;
    if (lengths && lengths.use_count() > 1)
        lengths = std::make_shared<ArcLengths>(*lengths);
    ArcLengths& filled = ownLengths(lengths);
    Vector** points = getPoints();
    const auto visit = [&](int firstRow, const CurveSamples& samples) {
        for (int i = 0; i < samples.size; ++i) {
            points[firstRow + i][column] = samples.point(i);
            updateBB(samples.point(i));
            tangents[std::size_t(firstRow + i)] = samples.tangent(i);
        }
    };
    const int last =
        sampleCurve(curve, m, int(interpolationCount), {filled.ofPoints, filled.ofRows}, visit);
    points[last][column] = fromBiarc(lastNode(curve, m).point);
    tangents[std::size_t(last)] = fromBiarc(lastNode(curve, m).tangent);
}

void BiarcRibbonMesh::forgetCurves()
{
    // Assigning {} would keep the memory.
    curveA.biarcs = std::vector<Biarc<::Vector3>>();
    curveB.biarcs = std::vector<Biarc<::Vector3>>();
}

const std::vector<double>& BiarcRibbonMesh::getParamValues() const
{
    return lengthsOr(lengths).ofPoints;
}

const std::vector<double>& BiarcRibbonMesh::getInterpParamValues() const
{
    return lengthsOr(lengths).ofRows;
}

std::shared_ptr<const ArcLengths> BiarcRibbonMesh::shareArcLengths() const { return lengths; }
