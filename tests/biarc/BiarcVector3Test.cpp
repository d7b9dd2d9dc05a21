// SPDX-License-Identifier: GPL-3.0-or-later
#include <biarc/Vector3.h>

#include <cmath>

#include <gtest/gtest.h>

namespace {

void expectEqual(const Vector3& actual, const Vector3& expected)
{
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(actual[k], expected[k]) << "component " << k;
}

void expectNear(const Vector3& actual, const Vector3& expected)
{
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(actual[k], expected[k], 1e-14) << "component " << k;
}

} // namespace

TEST(BiarcVector3, IsZeroByDefault) { expectEqual(Vector3(), {0, 0, 0}); }

TEST(BiarcVector3, IsReadAndWrittenByIndex)
{
    Vector3 v(1, 2, 3);
    const Vector3& constant = v;

    EXPECT_EQ(constant[0], 1);
    EXPECT_EQ(constant[1], 2);
    EXPECT_EQ(constant[2], 3);
    v[1] = -7;
    expectEqual(v, {1, -7, 3});
}

TEST(BiarcVector3, CopiesAreIndependent)
{
    Vector3 original(1, 2, 3);
    const Vector3 copy(original);
    original[0] = 100;

    expectEqual(copy, {1, 2, 3});
}

TEST(BiarcVector3, AddsAndSubtractsIntoANewVector)
{
    const Vector3 a(1, 2, 3), b(10, -20, 30);

    expectEqual(a + b, {11, -18, 33});
    expectEqual(a - b, {-9, 22, -27});
    expectEqual(a, {1, 2, 3});
}

TEST(BiarcVector3, AddsAndDividesInPlace)
{
    Vector3 v(1, 2, 3);

    v += Vector3(1, 2, 5);
    expectEqual(v, {2, 4, 8});
    v /= 4;
    expectEqual(v, {0.5, 1, 2});
}

TEST(BiarcVector3, ScalesFromBothSidesAndDivides)
{
    const Vector3 v(1, -2, 3);

    expectEqual(v * 2.0, {2, -4, 6});
    expectEqual(2.0 * v, {2, -4, 6});
    expectEqual(v / 2.0, {0.5, -1, 1.5});
}

TEST(BiarcVector3, HasDotNormAndSquaredNorm)
{
    EXPECT_EQ(Vector3(1, 2, 3).dot(Vector3(10, 200, 3000)), 9410);
    EXPECT_EQ(Vector3(3, 4, 12).norm(), 13);
    EXPECT_EQ(Vector3(3, 4, 12).norm2(), 169);
}

TEST(BiarcVector3, NormalizesInPlace)
{
    Vector3 v(2, -3, 6);
    v.normalize();

    expectEqual(v, {2.0 / 7, -3.0 / 7, 6.0 / 7});
}

TEST(BiarcVector3, ReflectKeepsThePartAlongTheLineAndTurnsThePartAcross)
{
    const Vector3 v(3, 4, 5);

    expectNear(v.reflect({1, 0, 0}), {3, -4, -5});
    expectNear(v.reflect({0, -2, 0}), {-3, 4, -5}); // length and sense of the line are no matter
    expectNear(v.reflect({1, 1, 0}), {4, 3, -5});
    expectNear(v.reflect(v), v);
    expectEqual(v, {3, 4, 5});
}

TEST(BiarcVector3, ReflectingTwiceGivesTheVectorBack)
{
    const Vector3 v(0.3, -1.7, 2.2), line(-4, 0.5, 1);

    expectNear(v.reflect(line).reflect(line), v);
    EXPECT_NEAR(v.reflect(line).norm(), v.norm(), 1e-14);
}
