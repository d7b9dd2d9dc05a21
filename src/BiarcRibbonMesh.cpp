// SPDX-License-Identifier: GPL-3.0-or-later
#include <BiarcRibbonMesh.h>

#include <algorithm>
#include <cmath>
#include <new>

#include "detail/closedCurves.h"
#include "sampling/biarcSampling.h"

using Vector = algebra3d::Vector3<double>;

namespace {

// Through the first m points.
void interpolate(Curve<::Vector3>& curve, const std::vector<Vector>& edge, std::size_t m,
                 bool closed)
{
    curve.biarcs.reserve(m);
    for (std::size_t i = 0; i < m; ++i)
        curve.append(toBiarc(edge[i]), ::Vector3());
    curve.computeTangents();
    if (closed) {
        curve.biarcs.front().tangent = toBiarc(tangentAtSeam(edge));
        curve.biarcs.back().tangent = curve.biarcs.front().tangent;
    }
    curve.makeMidpointRule();
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
        takeCapacity(curveA.biarcs, replaced->curveA.biarcs);
        takeCapacity(curveB.biarcs, replaced->curveB.biarcs);
        takeCapacity(paramValues, replaced->paramValues);
        takeCapacity(interpParamValues, replaced->interpParamValues);
    }
    setWidth(2);
    const std::size_t m = edgeA.size();
    if (m < 2)
        return;

    const int rows = int(interpolationCount) * (int(m) - 1) + 1;
    setHeight(rows);
    paramValues.resize(m);
    interpParamValues.resize(std::size_t(rows));

    interpolate(curveA, edgeA, m, closed);
    interpolate(curveB, edgeB, m, closed);

    allocateUnconstructed();
    resetBB();
    Vector** normals = getNormals();
    for (const int column : {0, 1}) {
        // Each tangent waits in the place of the normal that is made from it.
        samplePointsOnSide(
            column, int(m), column == 0 ? curveA : curveB,
            [&](int row, const Vector& tangent) { new (&normals[row][column]) Vector(tangent); });
    }
    for (int row = 0; row < rows; ++row) {
        const Vector side = getPoints()[row][1] - getPoints()[row][0];
        for (const int column : {0, 1})
            normals[row][column] = side.cross(normals[row][column]).getUnit();
    }
}

void BiarcRibbonMesh::computePointsOnSide(int column, int m, Curve<::Vector3>& curve,
                                          std::vector<Vector>& tangents)
{
    if (!curve.biarcs.empty())
        samplePointsOnSide(column, m, curve, [&](int row, const Vector& tangent) {
            tangents[std::size_t(row)] = tangent;
        });
}

// Constructs the points of a column, and calls setTangent(row, tangent) for each.
template <typename SetTangent>
void BiarcRibbonMesh::samplePointsOnSide(int column, int m, const Curve<::Vector3>& curve,
                                         SetTangent setTangent)
{
    Vector** points = getPoints();
    const auto visit = [&](int firstRow, const CurveSamples& samples) {
        for (int i = 0; i < samples.size; ++i) {
            const auto* const point = new (&points[firstRow + i][column]) Vector(samples.point(i));
            updateBB(*point);
            setTangent(firstRow + i, samples.tangent(i));
        }
    };
    const int last =
        sampleCurve(curve, m, int(interpolationCount), paramValues, interpParamValues, visit);
    // Unlike the tube's last ring, the last row does not extend the box: kept on purpose.
    new (&points[last][column]) Vector(fromBiarc(lastNode(curve, m).point));
    setTangent(last, fromBiarc(lastNode(curve, m).tangent));
}

void BiarcRibbonMesh::forgetCurves()
{
    // Assigning {} would keep the memory.
    curveA.biarcs = std::vector<Biarc<::Vector3>>();
    curveB.biarcs = std::vector<Biarc<::Vector3>>();
}

const std::vector<double>& BiarcRibbonMesh::getParamValues() const { return paramValues; }

const std::vector<double>& BiarcRibbonMesh::getInterpParamValues() const
{
    return interpParamValues;
}
