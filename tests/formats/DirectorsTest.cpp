// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/formats/directors.h>

#include <gtest/gtest.h>

#include <algebra3d/Matrix3.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;
using Matrix = algebra3d::Matrix3<double>;

const Vector x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);

std::string faultOf(const Directors& directors, bool normalise = false)
{
    ReadOptions options;
    options.normalise = normalise;
    Quaternion ignored;
    return findRotation(directors, options, ignored);
}

void expectFrame(const Directors& directors, const Vector& d1, const Vector& d2, const Vector& d3,
                 bool normalise = false)
{
    ReadOptions options;
    options.normalise = normalise;
    Quaternion rotation;
    ASSERT_EQ(findRotation(directors, options, rotation), "");
    const Matrix matrix(rotation);
    const Vector expected[] = {d1, d2, d3};
    for (int column = 0; column < 3; ++column)
        for (int row = 0; row < 3; ++row)
            EXPECT_NEAR(matrix.getColumn(column)[row], expected[column][row], 1e-15)
                << "d" << column + 1;
}

} // namespace

TEST(Directors, AreTheColumnsOfTheirRotation)
{
    expectFrame({x, y, z}, x, y, z);
    expectFrame({y, z, x}, y, z, x);
}

TEST(Directors, TheThirdFollowsFromAnyTwo)
{
    expectFrame({std::nullopt, z, x}, y, z, x);
    expectFrame({y, std::nullopt, x}, y, z, x);
    expectFrame({y, z, std::nullopt}, y, z, x);
}

TEST(Directors, AreMadeRightAroundD3AndThenD2)
{
    // d2 leans towards d3 by 0.009, and d1 does not matter.
    expectFrame({Vector(1, 0.009, 0), Vector(0, 1, 0.009), z}, x, y, z);
    // Without d2 it is d1 that counts, and without d3 d2 keeps its direction.
    expectFrame({Vector(1, 0, 0.009), std::nullopt, z}, x, y, z);
    expectFrame({Vector(1, 0.009, 0), y, std::nullopt}, x, y, z);
}

TEST(Directors, HaveTheNorm1AndProducts0Within001)
{
    const std::string hint = " (--normalise accepts others)";
    EXPECT_EQ(faultOf({x * 1.0099, y * 0.9901, z}), "");
    EXPECT_EQ(faultOf({x, y * 1.5, z}), "found d2 of norm 1.5, expected 1 within 0.01" + hint);
    EXPECT_EQ(faultOf({Vector(1, 0.0099, 0), y, z}), "");
    EXPECT_EQ(faultOf({x, y, Vector(0.0625, 0, 1)}),
              "found d1 times d3 = 0.0625, expected 0 within 0.01" + hint);
    EXPECT_EQ(faultOf({std::nullopt, y, Vector(0, 0.0625, 1)}),
              "found d2 times d3 = 0.0625, expected 0 within 0.01" + hint);
}

TEST(Directors, OfAnyLengthsAndAnglesWhereTheyAreToBeNormalised)
{
    expectFrame({x * 5, Vector(0, 3, 3), z * 1e-300}, x, y, z, true);
    expectFrame({std::nullopt, Vector(0, 1e300, 1e300), z}, x, y, z, true);
    EXPECT_EQ(faultOf({x, Vector(), z}, true), "found d2 of norm 0, expected any other");
}

TEST(Directors, AreRightHandedAndInNoPlane)
{
    EXPECT_EQ(faultOf({x, z, y}), "found left-handed directors, expected d3 = d1 x d2");
    for (const bool normalise : {false, true})
        EXPECT_EQ(faultOf({x * -1, y, z}, normalise),
                  "found left-handed directors, expected d3 = d1 x d2");
    const std::string flat = "found directors in one plane or line, expected d3 = d1 x d2";
    EXPECT_EQ(faultOf({std::nullopt, z, z}, true), flat);
    EXPECT_EQ(faultOf({x, x, std::nullopt}, true), flat);
    EXPECT_EQ(faultOf({y, y, z}, true), flat);
}

} // namespace strandview
