// SPDX-License-Identifier: GPL-3.0-or-later
#include <algebra3d/Quaternion.h>

#include <cmath>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

using Quaternion = algebra3d::Quaternion<double>;

static_assert(std::is_polymorphic<Quaternion>::value, "a polymorphic value type");
static_assert(std::is_copy_constructible<Quaternion>::value &&
                  std::is_copy_assignable<Quaternion>::value,
              "a value type");

namespace {

void expectEqual(const Quaternion& actual, double x, double y, double z, double w)
{
    EXPECT_EQ(actual[0], x);
    EXPECT_EQ(actual[1], y);
    EXPECT_EQ(actual[2], z);
    EXPECT_EQ(actual[3], w);
}

} // namespace

TEST(Quaternion, IsTheIdentityByDefault) { expectEqual(Quaternion(), 0, 0, 0, 1); }

TEST(Quaternion, StoresTheScalarLast) { expectEqual(Quaternion(1, 2, 3, 4), 1, 2, 3, 4); }

TEST(Quaternion, IsWrittenByIndex)
{
    Quaternion q;
    q[0] = 5;
    q[1] = 6;
    q[2] = 7;
    q[3] = 8;

    expectEqual(q, 5, 6, 7, 8);
}

TEST(Quaternion, CopiesAreIndependent)
{
    Quaternion original(1, 2, 3, 4);
    Quaternion copy(original);
    Quaternion assigned;
    assigned = original;
    original[0] = 100;

    expectEqual(copy, 1, 2, 3, 4);
    expectEqual(assigned, 1, 2, 3, 4);
}

TEST(Quaternion, NormIsTheEuclideanLengthOfAllFourComponents)
{
    EXPECT_EQ(Quaternion(1, 2, 4, 10).getNorm(), 11);
    EXPECT_EQ(Quaternion(0, 0, 0, -3).getNorm(), 3);
    EXPECT_EQ(Quaternion(-3, 0, 0, 0).getNorm(), 3);
    EXPECT_EQ(Quaternion(0, 0, 0, 0).getNorm(), 0);
    EXPECT_EQ(Quaternion().getNorm(), 1);
}

TEST(Quaternion, NormOfANotANumberIsNotANumber)
{
    for (int i = 0; i < 4; ++i) {
        Quaternion q;
        q[i] = std::numeric_limits<double>::quiet_NaN();
        EXPECT_TRUE(std::isnan(q.getNorm())) << "component " << i;
    }
}
