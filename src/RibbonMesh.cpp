// SPDX-License-Identifier: GPL-3.0-or-later
#include <RibbonMesh.h>

#include <algorithm>

using algebra3d::Vector3;

RibbonMesh::RibbonMesh(double width) : Mesh(false, false), ribbonWidth(std::max(width, 0.0)) {}

RibbonMesh::RibbonMesh(std::vector<Vector3<double>> points, std::vector<Vector3<double>> directions,
                       double width)
    : RibbonMesh(width)
{
    if (!(ribbonWidth > 0) || points.size() < 2 || directions.size() < 2)
        return;
    const std::size_t rows = std::min(points.size(), directions.size());
    setWidth(2);
    setHeight(int(rows));
    allocateMemory();
    resetBB();
    for (std::size_t i = 0; i < rows; ++i) {
        Vector3<double>* row = getPoints()[i];
        row[0] = points[i];
        updateBB(row[0]);
        row[1] = points[i] + ribbonWidth * directions[i].getUnit();
        updateBB(row[1]);
    }
    computeNormals();
}

int RibbonMesh::getMaterialIndex(int row, int /*column*/) const { return row; }

bool RibbonMesh::isValid()
{
    const Mesh& mesh = *this;
    return getHeight() >= 2 && getWidth() == 2 && mesh.isValid();
}
