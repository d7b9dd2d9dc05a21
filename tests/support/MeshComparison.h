// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_MESHCOMPARISON_H
#define STRANDVIEW_TESTS_MESHCOMPARISON_H

#include <cmath>

#include <gtest/gtest.h>

#include <Mesh.h>

#include "support/PlainReference.h"

/// Every double of the points and normals and every float of the box must be the same,
/// or both not-a-number. The first difference is reported.
inline void expectSameMesh(Mesh& mesh, const plain::Grid& expected)
{
    ASSERT_EQ(mesh.getHeight(), int(expected.points.size()));
    ASSERT_EQ(mesh.getWidth(), int(expected.points.front().size()));
    for (int row = 0; row < mesh.getHeight(); ++row) {
        for (int column = 0; column < mesh.getWidth(); ++column) {
            const auto r = std::size_t(row), c = std::size_t(column);
            const plain::Vec point = expected.points[r][c], normal = expected.normals[r][c];
            const double values[6] = {point.x, point.y, point.z, normal.x, normal.y, normal.z};
            for (int k = 0; k < 6; ++k) {
                const double actual = k < 3 ? mesh.getPoints()[row][column][k]
                                            : mesh.getNormals()[row][column][k - 3];
                if (std::isnan(actual) && std::isnan(values[k]))
                    continue;
                ASSERT_EQ(actual, values[k])
                    << (k < 3 ? "point" : "normal") << " component " << k % 3 << " of row " << row
                    << ", column " << column << ", difference " << actual - values[k];
            }
        }
    }
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(mesh.getBBox().getMin()[k], expected.box.minimum[k]) << "axis " << k;
        EXPECT_EQ(mesh.getBBox().getMax()[k], expected.box.maximum[k]) << "axis " << k;
    }
}

inline void expectFinite(Mesh& mesh)
{
    for (int row = 0; row < mesh.getHeight(); ++row) {
        for (int column = 0; column < mesh.getWidth(); ++column) {
            for (int k = 0; k < 3; ++k) {
                ASSERT_TRUE(std::isfinite(mesh.getPoints()[row][column][k]) &&
                            std::isfinite(mesh.getNormals()[row][column][k]))
                    << "row " << row << ", column " << column << ", component " << k;
            }
        }
    }
}

#endif
