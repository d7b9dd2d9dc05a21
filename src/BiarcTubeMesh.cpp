// SPDX-License-Identifier: GPL-3.0-or-later
#include <BiarcTubeMesh.h>

#include <algorithm>
#include <cmath>
#include <typeinfo>

#include <algebra3d/Matrix3.h>

#include "detail/closedCurves.h"
#include "sampling/biarcSampling.h"

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

BiarcTubeMesh::BiarcTubeMesh(double radius, int ringSlices, int ringsPerBiarc,
                             bool lowerCapTakesLast, bool upperCapTakesFirst,
                             BiarcTubeMesh* replaced)
    : TubeMesh(radius, ringSlices, lowerCapTakesLast, upperCapTakesFirst),
      interpolationCount(std::max(ringsPerBiarc, 1))
{
    if (!replaced)
        return;
    takeMemory(*replaced);
    takeNodes(curve, replaced->curve);
    lengths = std::move(replaced->lengths);
}

BiarcTubeMesh::BiarcTubeMesh(const std::vector<Vector>& points, double radius, int ringSlices,
                             int ringsPerBiarc, bool lowerCapTakesLast, bool upperCapTakesFirst,
                             BiarcTubeMesh* replaced)
    : BiarcTubeMesh(radius, ringSlices, ringsPerBiarc, lowerCapTakesLast, upperCapTakesFirst,
                    replaced)
{
    generateMesh(computeCurve(points));
}

BiarcTubeMesh::BiarcTubeMesh(const std::vector<Vector>& points,
                             const std::vector<Rotation>& rotations, double radius, int ringSlices,
                             int ringsPerBiarc, bool lowerCapTakesLast, bool upperCapTakesFirst,
                             BiarcTubeMesh* replaced)
    : BiarcTubeMesh(radius, ringSlices, ringsPerBiarc, lowerCapTakesLast, upperCapTakesFirst,
                    replaced)
{
    generateMesh(computeCurve(points, rotations));
}

BiarcTubeMesh::BiarcTubeMesh(const std::vector<Vector>& points, const Vector& startTangent,
                             const Vector& endTangent, double radius, int ringSlices,
                             int ringsPerBiarc, bool lowerCapTakesLast, bool upperCapTakesFirst,
                             BiarcTubeMesh* replaced)
    : BiarcTubeMesh(radius, ringSlices, ringsPerBiarc, lowerCapTakesLast, upperCapTakesFirst,
                    replaced)
{
    generateMesh(computeCurve(points, startTangent, endTangent));
}

std::unique_ptr<BiarcTubeMesh> BiarcTubeMesh::makeClosed(const std::vector<Vector>& points,
                                                         double radius, int ringSlices,
                                                         int ringsPerBiarc, BiarcTubeMesh* replaced)
{
    if (!isClosedCurve(points))
        return std::make_unique<BiarcTubeMesh>(points, radius, ringSlices, ringsPerBiarc, false,
                                               false, replaced);
    const Vector tangent = tangentAtSeam(points);
    auto mesh = std::make_unique<BiarcTubeMesh>(points, tangent, tangent, radius, ringSlices,
                                                ringsPerBiarc, false, false, replaced);
    std::vector<double> shares = mesh->getInterpParamValues();
    for (double& share : shares)
        share /= mesh->getInterpParamValues().back();
    mesh->meetItself(shares);
    return mesh;
}

BiarcTubeMesh::~BiarcTubeMesh() { tube.clear_tube(); }

int BiarcTubeMesh::computeCurve(const std::vector<Vector>& points)
{
    if (points.size() >= 2) {
        appendWithEstimatedTangents(points);
        makeMidpointRule(curve);
    }
    return int(points.size());
}

int BiarcTubeMesh::computeCurve(const std::vector<Vector>& points,
                                const std::vector<Rotation>& rotations)
{
    const std::size_t n = std::min(points.size(), rotations.size());
    if (n >= 2) {
        setNodes(curve, n, [&](std::size_t i, ::Vector3& point, ::Vector3& tangent) {
            point = toBiarc(points[i]);
            tangent = toBiarc(algebra3d::Matrix3<double>(rotations[i]).getColumn(2));
            tangent.normalize();
        });
        makeMidpointRule(curve);
    }
    return int(n);
}

int BiarcTubeMesh::computeCurve(const std::vector<Vector>& points, const Vector& startTangent,
                                const Vector& endTangent)
{
    if (points.size() >= 2) {
        appendWithEstimatedTangents(points);
        const auto fixLine = [](::Vector3& estimated, const Vector& given) {
            const bool backwards = given.dot(fromBiarc(estimated)) < 0;
            estimated = toBiarc((backwards ? -given : given).getUnit());
        };
        fixLine(curve.biarcs.front().tangent, startTangent);
        fixLine(curve.biarcs.back().tangent, endTangent);
        makeMidpointRule(curve);
    }
    return int(points.size());
}

void BiarcTubeMesh::appendWithEstimatedTangents(const std::vector<Vector>& points)
{
    setNodes(curve, points.size(), [&](std::size_t i, ::Vector3& point, ::Vector3& /*tangent*/) {
        point = toBiarc(points[i]);
    });
    curve.computeTangents();
}

void BiarcTubeMesh::generateMesh(int n)
{
    const bool hasCurve = !curve.biarcs.empty() && curve.biarcs.front().curve == &curve;
    if (!hasCurve && getHeight() == 0) { // what there is was taken over for nothing
        forgetCurve();
        forgetTables();
    }
    if (n < 2 || !hasCurve)
        return;
    const bool isComplete = int(curve.biarcs.size()) >= n;
    if (!isComplete)
        forgetTables(); // the ends of which stay zero
    setWidth(getSlices() + 1);
    setHeight(interpolationCount * (n - 1) + 1);
    ArcLengths& filled = ownLengths(lengths);
    filled.ofPoints.resize(std::size_t(n));
    filled.ofRows.resize(std::size_t(getHeight()));
    // A subclass may have a circle of its own. It is then asked ring by ring.
    const bool ownCircle = typeid(*this) != typeid(BiarcTubeMesh);
    if (ownCircle || !isComplete)
        allocateMemory();
    else
        allocateUnconstructed();
    resetBB();

    // Fixed axes, not any orientation of the rod, start the section frame.
    Vector d1(0, 1, 0);
    Vector d2(0, 0, 1);
    const auto fill = [&](int firstRow, const CurveSamples& samples) {
        if (ownCircle) {
            for (int i = 0; i < samples.size; ++i)
                computeMeshAt(firstRow + i, samples.point(i), samples.tangent(i), d1, d2);
        } else {
            fillerFrom(firstRow).fillCarried(samples, d1, d2);
        }
    };
    const auto normaliseAndFill = [&](int firstRow, CurveSamples& samples) {
        normaliseTangents(samples);
        fill(firstRow, samples);
    };
    const int last = sampleCurve(curve, n, interpolationCount, {filled.ofPoints, filled.ofRows},
                                 normaliseAndFill);
    CurveSamples end;
    end.append(lastNode(curve, n).point, lastNode(curve, n).tangent);
    fill(last, end);
}

void BiarcTubeMesh::computeMeshAt(int row, Vector centre, Vector tangent, Vector& d1, Vector& d2)
{
    carryFrame(tangent, d1, d2);
    fillRing(row, centre, d1, d2);
}

void BiarcTubeMesh::forgetTables() { lengths.reset(); }

// Assigning {} would keep the memory.
void BiarcTubeMesh::forgetCurve() { curve.biarcs = std::vector<Biarc<::Vector3>>(); }

const std::vector<double>& BiarcTubeMesh::getParamValues() const
{
    return lengthsOr(lengths).ofPoints;
}

const std::vector<double>& BiarcTubeMesh::getInterpParamValues() const
{
    return lengthsOr(lengths).ofRows;
}

std::shared_ptr<const ArcLengths> BiarcTubeMesh::shareArcLengths() const { return lengths; }
