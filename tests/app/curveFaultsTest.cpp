// SPDX-License-Identifier: GPL-3.0-or-later
#include "scene/curveFaults.h"

#include <cmath>

#include <BiarcRibbonMesh.h>
#include <BiarcTubeMesh.h>
#include <algebra3d/Matrix3.h>
#include <gmock/gmock.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Rotation = algebra3d::Quaternion<double>;

const int SUBSEGMENTS = 4;

std::string name(std::size_t point) { return "point " + std::to_string(point); }

std::string faultOfTube(const std::vector<Vector>& points,
                        const std::vector<Rotation>* rotations = nullptr)
{
    const NamedCurve curve{points, rotations, name};
    if (rotations) {
        const auto d3 = [](const Rotation& rotation) {
            return algebra3d::Matrix3<double>(rotation).getColumn(2);
        };
        BiarcTubeMesh tube(points, d3(rotations->front()), d3(rotations->back()), 0.1, 6,
                           SUBSEGMENTS, false, false);
        return findFault(tube, SUBSEGMENTS, curve);
    }
    BiarcTubeMesh tube(points, 0.1, 6, SUBSEGMENTS, false, false);
    return findFault(tube, SUBSEGMENTS, curve);
}

TEST(CurveFaults, NoneIsFoundWhereASmoothCurveGoes)
{
    EXPECT_EQ(faultOfTube({{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {2, 2, 1}}), "");
    EXPECT_EQ(faultOfTube({{0, 0, 0}, {0, 0, 1}}), "");
    EXPECT_EQ(faultOfTube({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}), "") << "a right angle";
}

TEST(CurveFaults, EdgesThatTurnStraightBackAreNamedByTheirPoint)
{
    EXPECT_EQ(faultOfTube({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {1, 0, 0}, {0, 0, 0}}),
              "point 2: found edges that turn straight back, expected another angle between them");
}

TEST(CurveFaults, AFrameAcrossAnEndsEdgeIsNamed)
{
    const std::vector<Rotation> alongZ(2);
    EXPECT_EQ(faultOfTube({{0, 0, 0}, {1, 0, 0}}, &alongZ),
              "point 0: found a frame with d3 across the end's edge, expected d3 along it");
    EXPECT_EQ(faultOfTube({{0, 0, 0}, {0, 0, 1}}, &alongZ), "");
}

// A ribbon from a circle of radius 1 about z inwards, on which all points turn alike.
std::string faultOfRibbon(double width)
{
    std::vector<Vector> centre, edge;
    for (int i = 0; i <= 8; ++i) {
        const Vector outwards(std::cos(0.3 * i), std::sin(0.3 * i), 0);
        centre.push_back(outwards);
        edge.push_back(outwards * (1 - width));
    }
    BiarcRibbonMesh ribbon(centre, edge, width, SUBSEGMENTS);
    EXPECT_EQ(isFinite(ribbon), findFault(ribbon, width, {centre, nullptr, name}).empty());
    return findFault(ribbon, width, {centre, nullptr, name});
}

TEST(CurveFaults, ARibbonWhoseEdgeShrinksToAPointIsToldWithItsWidth)
{
    EXPECT_EQ(faultOfRibbon(0.5), "");
    EXPECT_THAT(faultOfRibbon(1), testing::EndsWith("found a ribbon of width 1 whose edge shrinks "
                                                    "to a point or turns back, expected another "
                                                    "--ribbon-width"));
}

} // namespace

} // namespace strandview
