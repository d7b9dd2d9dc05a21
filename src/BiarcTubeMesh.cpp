// SPDX-License-Identifier: GPL-3.0-or-later
#include <BiarcTubeMesh.h>

#include <algorithm>
#include <cmath>

#include <algebra3d/Matrix3.h>

#include "detail/biarcSampling.h"

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

BiarcTubeMesh::BiarcTubeMesh(const std::vector<Vector>& points, double radius, int ringSlices,
                             int ringsPerBiarc, bool lowerCapTakesLast, bool upperCapTakesFirst)
    : TubeMesh(radius, ringSlices, lowerCapTakesLast, upperCapTakesFirst),
      interpolationCount(std::max(ringsPerBiarc, 1))
{
    generateMesh(computeCurve(points));
}

BiarcTubeMesh::BiarcTubeMesh(const std::vector<Vector>& points,
                             const std::vector<Rotation>& rotations, double radius, int ringSlices,
                             int ringsPerBiarc, bool lowerCapTakesLast, bool upperCapTakesFirst)
    : TubeMesh(radius, ringSlices, lowerCapTakesLast, upperCapTakesFirst),
      interpolationCount(std::max(ringsPerBiarc, 1))
{
    generateMesh(computeCurve(points, rotations));
}

BiarcTubeMesh::BiarcTubeMesh(const std::vector<Vector>& points, const Vector& startTangent,
                             const Vector& endTangent, double radius, int ringSlices,
                             int ringsPerBiarc, bool lowerCapTakesLast, bool upperCapTakesFirst)
    : TubeMesh(radius, ringSlices, lowerCapTakesLast, upperCapTakesFirst),
      interpolationCount(std::max(ringsPerBiarc, 1))
{
    generateMesh(computeCurve(points, startTangent, endTangent));
}

BiarcTubeMesh::~BiarcTubeMesh() { tube.clear_tube(); }

int BiarcTubeMesh::computeCurve(const std::vector<Vector>& points)
{
    if (points.size() >= 2) {
        appendWithEstimatedTangents(points);
        curve.makeMidpointRule();
    }
    return int(points.size());
}

int BiarcTubeMesh::computeCurve(const std::vector<Vector>& points,
                                const std::vector<Rotation>& rotations)
{
    const std::size_t n = std::min(points.size(), rotations.size());
    if (n >= 2) {
        curve.biarcs.clear();
        curve.biarcs.reserve(n);
        for (std::size_t i = 0; i < n; ++i) {
            const Vector d3 = algebra3d::Matrix3<double>(rotations[i]).getColumn(2);
            curve.append(toBiarc(points[i]), toBiarc(d3));
        }
        curve.makeMidpointRule();
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
        curve.makeMidpointRule();
    }
    return int(points.size());
}

void BiarcTubeMesh::appendWithEstimatedTangents(const std::vector<Vector>& points)
{
    curve.biarcs.clear();
    curve.biarcs.reserve(points.size());
    for (const Vector& point : points)
        curve.append(toBiarc(point), ::Vector3());
    curve.computeTangents();
}

void BiarcTubeMesh::generateMesh(int n)
{
    if (n < 2 || curve.biarcs.empty())
        return;
    setWidth(getSlices() + 1);
    setHeight(interpolationCount * (n - 1) + 1);
    paramValues.resize(std::size_t(n));
    interpParamValues.resize(std::size_t(getHeight()));
    allocateMemory();
    resetBB();

    // Fixed axes, not any orientation of the rod, start the section frame.
    Vector d1(0, 1, 0);
    Vector d2(0, 0, 1);
    const int row = sampleCurve(curve, n, interpolationCount, paramValues, interpParamValues,
                                [&](int sampleRow, const ::Vector3& centre, ::Vector3 tangent) {
                                    computeMeshAt(sampleRow, fromBiarc(centre),
                                                  fromBiarc(tangent).getUnit(), d1, d2);
                                });
    const Biarc<::Vector3>& last = lastNode(curve, n);
    computeMeshAt(row, fromBiarc(last.point), fromBiarc(last.tangent), d1, d2);
}

void BiarcTubeMesh::computeMeshAt(int row, Vector centre, Vector tangent, Vector& d1, Vector& d2)
{
    if (std::abs(d1.dot(tangent)) >= 0.5) {
        d1 = d2.cross(tangent).getUnit();
        d2 = tangent.cross(d1);
    } else {
        d2 = tangent.cross(d1).getUnit();
        d1 = d2.cross(tangent);
    }
    fillRing(row, centre, d1, d2);
}

const std::vector<double>& BiarcTubeMesh::getParamValues() const { return paramValues; }

const std::vector<double>& BiarcTubeMesh::getInterpParamValues() const { return interpParamValues; }
