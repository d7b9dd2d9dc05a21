// SPDX-License-Identifier: GPL-3.0-or-later
#include <BiarcRibbonMesh.h>

#include <algorithm>
#include <cmath>

#include "detail/biarcSampling.h"

using Vector = algebra3d::Vector3<double>;

BiarcRibbonMesh::BiarcRibbonMesh(std::vector<Vector>& edgeA, std::vector<Vector>& edgeB,
                                 double width, int rowsPerBiarc)
    : RibbonMesh(width), interpolationCount(std::max(std::abs(double(rowsPerBiarc)), 1.0))
{
    setWidth(2);
    const std::size_t m = edgeA.size();
    if (m < 2)
        return;

    const int rows = int(interpolationCount) * (int(m) - 1) + 1;
    setHeight(rows);
    paramValues.resize(m);
    interpParamValues.resize(std::size_t(rows));
    std::vector<Vector> tangentsA(static_cast<std::size_t>(rows));
    std::vector<Vector> tangentsB(static_cast<std::size_t>(rows));

    const auto interpolate = [m](Curve<::Vector3>& curve, const std::vector<Vector>& edge) {
        curve.biarcs.reserve(m);
        for (std::size_t i = 0; i < m; ++i)
            curve.append(toBiarc(edge[i]), ::Vector3());
        curve.computeTangents();
        curve.makeMidpointRule();
    };
    interpolate(curveA, edgeA);
    interpolate(curveB, edgeB);

    allocateMemory();
    resetBB();
    computePointsOnSide(0, int(m), curveA, tangentsA);
    computePointsOnSide(1, int(m), curveB, tangentsB);
    for (int row = 0; row < rows; ++row) {
        const Vector side = getPoints()[row][1] - getPoints()[row][0];
        getNormals()[row][0] = side.cross(tangentsA[std::size_t(row)]).getUnit();
        getNormals()[row][1] = side.cross(tangentsB[std::size_t(row)]).getUnit();
    }
}

void BiarcRibbonMesh::computePointsOnSide(int column, int m, Curve<::Vector3>& curve,
                                          std::vector<Vector>& tangents)
{
    if (curve.biarcs.empty())
        return;
    Vector** points = getPoints();
    const int last = sampleCurve(curve, m, int(interpolationCount), paramValues, interpParamValues,
                                 [&](int row, const ::Vector3& point, const ::Vector3& tangent) {
                                     points[row][column] = fromBiarc(point);
                                     updateBB(points[row][column]);
                                     tangents[std::size_t(row)] = fromBiarc(tangent);
                                 });
    // Unlike the tube's last ring, the last row does not extend the box: kept on purpose.
    points[last][column] = fromBiarc(lastNode(curve, m).point);
    tangents[std::size_t(last)] = fromBiarc(lastNode(curve, m).tangent);
}

const std::vector<double>& BiarcRibbonMesh::getParamValues() const { return paramValues; }

const std::vector<double>& BiarcRibbonMesh::getInterpParamValues() const
{
    return interpParamValues;
}
