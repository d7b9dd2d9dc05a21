// SPDX-License-Identifier: GPL-3.0-or-later
#include <algebra3d/Matrix3.h>

#include <cmath>

#include <gtest/gtest.h>

#include "support/RandomRods.h"

using Matrix = algebra3d::Matrix3<double>;
using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

namespace {

// A few roundings of numbers up to 2.
const double TOLERANCE = 4e-15;

void expectNear(const Vector& actual, const Vector& expected, double tolerance = TOLERANCE)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

void expectColumns(const Matrix& matrix, const Vector& d1, const Vector& d2, const Vector& d3)
{
    expectNear(matrix.getColumn(0), d1);
    expectNear(matrix.getColumn(1), d2);
    expectNear(matrix.getColumn(2), d3);
}

// v + 2w (u x v) + 2 u x (u x v) for the unit quaternion (u, w).
Vector rotated(const Quaternion& q, const Vector& v)
{
    const Vector u(q[0], q[1], q[2]);
    const Vector uv = u.cross(v);
    return v + 2.0 * q[3] * uv + 2.0 * u.cross(uv);
}

} // namespace

TEST(Matrix3, IsZeroOrIdentityFromABool)
{
    expectColumns(Matrix(false), {0, 0, 0}, {0, 0, 0}, {0, 0, 0});
    expectColumns(Matrix(true), {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
}

TEST(Matrix3, CanBeOverwritten)
{
    Matrix matrix(false);
    matrix = Matrix(Quaternion());

    expectColumns(matrix, {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
}

TEST(Matrix3, IsReadAndWrittenByRowAndColumn)
{
    Matrix matrix({1, 2, 3}, {4, 5, 6}, {7, 8, 9});
    const Matrix& constant = matrix;

    EXPECT_EQ(constant(0, 0), 1);
    EXPECT_EQ(constant(2, 0), 3);
    EXPECT_EQ(constant(0, 1), 4);
    EXPECT_EQ(constant(1, 2), 8);
    matrix(0, 2) = 70;
    expectNear(matrix.getColumn(2), {70, 8, 9});
}

TEST(Matrix3, QuarterTurnsTurnTheAxesCounterClockwise)
{
    const double r = std::sqrt(0.5);

    expectColumns(Matrix(Quaternion(r, 0, 0, r)), {1, 0, 0}, {0, 0, 1}, {0, -1, 0});
    expectColumns(Matrix(Quaternion(0, r, 0, r)), {0, 0, -1}, {0, 1, 0}, {1, 0, 0});
    expectColumns(Matrix(Quaternion(0, 0, r, r)), {0, 1, 0}, {-1, 0, 0}, {0, 0, 1});
}

TEST(Matrix3, AThirdOfATurnAboutTheDiagonalPermutesTheAxes)
{
    expectColumns(Matrix(Quaternion(0.5, 0.5, 0.5, 0.5)), {0, 1, 0}, {0, 0, 1}, {1, 0, 0});
}

TEST(Matrix3, ColumnsAreTheRotatedAxes)
{
    RandomNumbers random(1);
    for (int i = 0; i < 1000; ++i) {
        SCOPED_TRACE(i);
        const Quaternion q = random.unitQuaternion();
        expectColumns(Matrix(q), rotated(q, {1, 0, 0}), rotated(q, {0, 1, 0}),
                      rotated(q, {0, 0, 1}));
    }
}

TEST(Matrix3, ColumnsOfAUnitQuaternionAreARightHandedFrame)
{
    RandomNumbers random(2);
    for (int i = 0; i < 1000; ++i) {
        SCOPED_TRACE(i);
        const Matrix frame(random.unitQuaternion());
        const Vector d1 = frame.getColumn(0), d2 = frame.getColumn(1), d3 = frame.getColumn(2);
        EXPECT_NEAR(d1.dot(d1), 1, TOLERANCE);
        EXPECT_NEAR(d2.dot(d2), 1, TOLERANCE);
        EXPECT_NEAR(d1.dot(d2), 0, TOLERANCE);
        expectNear(d1.cross(d2), d3);
    }
}

TEST(Matrix3, MultiplesOfAQuaternionAreTheSameRotation)
{
    RandomNumbers random(3);
    for (const double factor : {-1.0, 1.01, 0.5, -3.0, 1e-100, 1e100}) {
        SCOPED_TRACE(factor);
        const Quaternion q = random.unitQuaternion();
        const Quaternion multiple(factor * q[0], factor * q[1], factor * q[2], factor * q[3]);
        const Matrix expected(q);
        expectColumns(Matrix(multiple), expected.getColumn(0), expected.getColumn(1),
                      expected.getColumn(2));
    }
}

TEST(Matrix3, TheZeroQuaternionGivesTheIdentity)
{
    expectColumns(Matrix(Quaternion(0, 0, 0, 0)), {1, 0, 0}, {0, 1, 0}, {0, 0, 1});
}

TEST(Matrix3, GivesBackTheQuaternionItWasMadeFrom)
{
    RandomNumbers random(4);
    for (int i = 0; i < 1000; ++i) {
        SCOPED_TRACE(i);
        const Quaternion q = random.unitQuaternion();
        const Quaternion back = Matrix(q).getQuaternion();
        // q and -q are the same rotation.
        const double sign =
            q[0] * back[0] + q[1] * back[1] + q[2] * back[2] + q[3] * back[3] < 0 ? -1 : 1;
        for (int k = 0; k < 4; ++k)
            EXPECT_NEAR(sign * back[k], q[k], TOLERANCE) << "component " << k;
    }
}

TEST(Matrix3, GivesTheQuaternionOfHalfTurns)
{
    // There w is 0, and each axis is largest in turn.
    for (int axis = 0; axis < 3; ++axis) {
        SCOPED_TRACE(axis);
        Quaternion q(0, 0, 0, 0);
        q[axis] = 1;
        const Quaternion back = Matrix(q).getQuaternion();
        for (int k = 0; k < 4; ++k)
            EXPECT_NEAR(std::abs(back[k]), k == axis ? 1 : 0, TOLERANCE);
    }
}

TEST(Matrix3, GivesANonNegativeScalarWhereItIsLargest)
{
    const Quaternion back = Matrix(Quaternion(0.1, 0.2, -0.3, -0.9)).getQuaternion();

    const double norm = std::sqrt(0.01 + 0.04 + 0.09 + 0.81);
    EXPECT_NEAR(back[0], -0.1 / norm, TOLERANCE);
    EXPECT_NEAR(back[1], -0.2 / norm, TOLERANCE);
    EXPECT_NEAR(back[2], 0.3 / norm, TOLERANCE);
    EXPECT_NEAR(back[3], 0.9 / norm, TOLERANCE);
}
