// SPDX-License-Identifier: GPL-3.0-or-later
#include <algebra3d/Vector3.h>

#include <type_traits>

#include <gtest/gtest.h>

using Vector = algebra3d::Vector3<double>;

static_assert(std::is_polymorphic<Vector>::value, "a polymorphic value type");
static_assert(std::is_copy_constructible<Vector>::value && std::is_copy_assignable<Vector>::value,
              "a value type");

namespace {

void expectEqual(const Vector& actual, const Vector& expected)
{
    EXPECT_EQ(actual.x, expected.x);
    EXPECT_EQ(actual.y, expected.y);
    EXPECT_EQ(actual.z, expected.z);
}

} // namespace

TEST(Vector3, IsZeroByDefault)
{
    const Vector v;

    EXPECT_EQ(v.x, 0);
    EXPECT_EQ(v.y, 0);
    EXPECT_EQ(v.z, 0);
}

TEST(Vector3, ZeroesReusedMemory)
{
    // Sums of normals start from default vectors: they must be zero in any memory.
    alignas(Vector) unsigned char memory[sizeof(Vector)];
    for (unsigned char& byte : memory)
        byte = 0x3f;
    Vector* v = new (memory) Vector;

    expectEqual(*v, {0, 0, 0});
    v->~Vector();
}

TEST(Vector3, TakesItsComponentsInOrder)
{
    const double numbers[] = {4, 5, 6, 7};

    expectEqual(Vector(numbers), {4, 5, 6});
    expectEqual(Vector(numbers + 1), {5, 6, 7});
    const Vector v(1, 2, 3);
    EXPECT_EQ(v.x, 1);
    EXPECT_EQ(v.y, 2);
    EXPECT_EQ(v.z, 3);
}

TEST(Vector3, IsReadAndWrittenByIndex)
{
    Vector v(1, 2, 3);
    const Vector& constant = v;

    EXPECT_EQ(constant[0], 1);
    EXPECT_EQ(constant[1], 2);
    EXPECT_EQ(constant[2], 3);
    v[0] = 7;
    v[1] = 8;
    v[2] = 9;
    expectEqual(v, {7, 8, 9});
    v.y = -1;
    EXPECT_EQ(v[1], -1);
}

TEST(Vector3, CopiesAreIndependent)
{
    Vector original(1, 2, 3);
    Vector copy(original);
    Vector assigned;
    assigned = original;
    original.x = 100;

    expectEqual(copy, {1, 2, 3});
    expectEqual(assigned, {1, 2, 3});
}

TEST(Vector3, AddsAndSubtractsByComponent)
{
    const Vector a(1, 2, 3), b(10, -20, 30);

    expectEqual(a + b, {11, -18, 33});
    expectEqual(a - b, {-9, 22, -27});
    expectEqual(-a, {-1, -2, -3});
}

TEST(Vector3, AddsInPlaceAndCanBeChained)
{
    Vector sum;
    (sum += Vector(1, 2, 3)) += Vector(10, 20, 30);

    expectEqual(sum, {11, 22, 33});
}

TEST(Vector3, ScalesFromBothSides)
{
    const Vector v(1, -2, 3);

    expectEqual(v * 0.5, {0.5, -1, 1.5});
    expectEqual(0.5 * v, {0.5, -1, 1.5});
}

TEST(Vector3, HasARightHandedCrossProduct)
{
    const Vector x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);

    expectEqual(x.cross(y), z);
    expectEqual(y.cross(z), x);
    expectEqual(z.cross(x), y);
    expectEqual(y.cross(x), {0, 0, -1});
    // (2, 3, 5) x (7, 11, 13) = (39 - 55, 35 - 26, 22 - 21)
    expectEqual(Vector(2, 3, 5).cross(Vector(7, 11, 13)), {-16, 9, 1});
}

TEST(Vector3, DotIsTheSumOfTheComponentProducts)
{
    EXPECT_EQ(Vector(1, 2, 3).dot(Vector(10, 200, 3000)), 9410);
    EXPECT_EQ(Vector(1, 0, 0).dot(Vector(0, 5, 5)), 0);
}

TEST(Vector3, NormIsTheEuclideanLength)
{
    EXPECT_EQ(Vector(3, 4, 12).getNorm(), 13);
    EXPECT_EQ(Vector(-2, 0, 0).getNorm(), 2);
    EXPECT_EQ(Vector().getNorm(), 0);
}

TEST(Vector3, UnitIsACopyOfLengthOne)
{
    const Vector v(0, -3, 4);

    expectEqual(v.getUnit(), {0, -3.0 / 5, 4.0 / 5});
    expectEqual(v, {0, -3, 4});
}

TEST(Vector3, NormalizesInPlace)
{
    Vector v(2, 3, 6);
    v.normalize();

    expectEqual(v, {2.0 / 7, 3.0 / 7, 6.0 / 7});
}

TEST(Vector3, TheUnitOfZeroIsZero)
{
    Vector v;
    v.normalize();

    expectEqual(v, {0, 0, 0});
    expectEqual(Vector().getUnit(), {0, 0, 0});
}
