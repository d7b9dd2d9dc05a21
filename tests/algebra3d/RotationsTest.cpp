// SPDX-License-Identifier: GPL-3.0-or-later
#include <algebra3d/rotations.h>

#include <random>

#include <algebra3d/Matrix3.h>
#include <gtest/gtest.h>

using Quaternion = algebra3d::Quaternion<double>;
using Matrix = algebra3d::Matrix3<double>;
using Vector = algebra3d::Vector3<double>;
using algebra3d::about;
using algebra3d::between;
using algebra3d::slerp;

namespace {

Vector byMatrix(const Vector& v, const Quaternion& q)
{
    const Matrix m(q);
    return v.x * m.getColumn(0) + v.y * m.getColumn(1) + v.z * m.getColumn(2);
}

void expectNear(const Vector& actual, const Vector& expected, double tolerance = 1e-14)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

// As rotations: q and -q are one.
void expectSameRotation(const Quaternion& actual, const Quaternion& expected)
{
    EXPECT_NEAR(std::abs(algebra3d::dot(actual, expected)), 1, 1e-14);
    EXPECT_NEAR(actual.getNorm(), 1, 1e-14);
}

class RandomRotations
{
public:
    Vector direction()
    {
        Vector v(normal(engine), normal(engine), normal(engine));
        return v.getUnit();
    }
    Quaternion rotation() { return about(direction(), 6.28 * normal(engine)); }
    double number() { return normal(engine); }

private:
    std::mt19937 engine{7};
    std::normal_distribution<double> normal;
};

} // namespace

TEST(Rotations, AboutZByAQuarterTakesXToY)
{
    const Quaternion q = about(Vector(0, 0, 5), M_PI / 2);
    expectNear(byMatrix(Vector(1, 0, 0), q), Vector(0, 1, 0));
    expectNear(byMatrix(Vector(0, 1, 0), q), Vector(-1, 0, 0));
    EXPECT_DOUBLE_EQ(q[2], std::sqrt(0.5));
    EXPECT_DOUBLE_EQ(q[3], std::sqrt(0.5));
}

TEST(Rotations, AreQuaternionsOfNorm1Within001)
{
    for (const double norm : {1.0, 0.9901, 1.0099})
        EXPECT_TRUE(algebra3d::isRotation(Quaternion(0.6 * norm, 0, -0.8 * norm, 0))) << norm;
    for (const double norm : {0.0, 0.9899, 1.0101, HUGE_VAL, std::nan("")})
        EXPECT_FALSE(algebra3d::isRotation(Quaternion(0, norm, 0, 0))) << norm;
}

TEST(Rotations, ScaledToUnitKeepsTheDirectionOfAnyQuaternion)
{
    // The largest and the smallest numbers have squares that over- and underflow.
    for (const double factor : {1.0, 2.0, 1e-3, 1e300, 5e-324 / 0.1, 1e-300}) {
        SCOPED_TRACE(factor);
        const Quaternion q = algebra3d::scaledToUnit(
            Quaternion(0.1 * factor, -0.5 * factor, 0.7 * factor, -0.5 * factor));
        const Quaternion original(0.1 * factor, -0.5 * factor, 0.7 * factor, -0.5 * factor);
        EXPECT_NEAR(q.getNorm(), 1, 1e-15);
        // Of the components as they are, rounded: denormal ones have few digits.
        for (int i = 0; i < 4; ++i)
            EXPECT_NEAR(q[i] / q[2], original[i] / original[2], 1e-15) << i;
        EXPECT_GT(q[2], 0) << "the sign stays";
    }
}

TEST(Rotations, ScaledToUnitOfAUnitQuaternionIsItself)
{
    const Quaternion q = algebra3d::scaledToUnit(Quaternion(0, 0, 0, -3));
    EXPECT_EQ(q[3], -1);
    EXPECT_EQ(q[0] + q[1] + q[2], 0);
}

TEST(Rotations, RotatedIsByTheMatrixOfTheQuaternion)
{
    RandomRotations random;
    for (int i = 0; i < 100; ++i) {
        const Quaternion q = random.rotation();
        const Vector v = random.direction() * 3;
        expectNear(algebra3d::rotated(v, q), byMatrix(v, q));
    }
}

TEST(Rotations, AboutTheZeroVectorIsTheIdentity)
{
    expectSameRotation(about(Vector(), 2.0), Quaternion());
}

TEST(Rotations, ProductOfTheUnitsIsHamiltons)
{
    const Quaternion i(1, 0, 0, 0), j(0, 1, 0, 0), k(0, 0, 1, 0);
    const auto expectIs = [](const Quaternion& actual, const Quaternion& expected) {
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(actual[c], expected[c]);
    };
    expectIs(i * j, k);
    expectIs(j * k, i);
    expectIs(k * i, j);
    expectIs(j * i, Quaternion(0, 0, -1, 0));
    expectIs(i * i, Quaternion(0, 0, 0, -1));
}

TEST(Rotations, ProductTurnsByTheSecondFirst)
{
    RandomRotations random;
    for (int i = 0; i < 100; ++i) {
        const Quaternion a = random.rotation(), b = random.rotation();
        const Vector v = random.direction();
        expectNear(byMatrix(v, a * b), byMatrix(byMatrix(v, b), a));
    }
}

TEST(Rotations, ConjugateTurnsBack)
{
    RandomRotations random;
    for (int i = 0; i < 100; ++i) {
        const Quaternion q = random.rotation();
        expectSameRotation(q * algebra3d::conjugate(q), Quaternion());
    }
}

TEST(Rotations, BetweenTakesOneDirectionToTheOtherAboutTheirNormal)
{
    RandomRotations random;
    for (int i = 0; i < 100; ++i) {
        const Vector a = random.direction() * 3, b = random.direction() * 0.2;
        const Quaternion q = between(a, b);
        expectNear(byMatrix(a.getUnit(), q), b.getUnit());
        expectNear(byMatrix(a.cross(b), q), a.cross(b)); // the smallest such rotation
        EXPECT_GE(q[3], 0);
    }
}

TEST(Rotations, BetweenOppositeDirectionsIsAHalfTurn)
{
    for (const Vector& a : {Vector(1, 0, 0), Vector(0, 2, 0), Vector(0, 0, -1), Vector(1, 1, 1)}) {
        const Quaternion q = between(a, a * -1);
        expectNear(byMatrix(a.getUnit(), q), a.getUnit() * -1);
        EXPECT_NEAR(q[3], 0, 1e-15);
    }
}

TEST(Rotations, BetweenKeepsSmallAngles)
{
    const double angle = 1e-9;
    const Quaternion q = between(Vector(1, 0, 0), Vector(std::cos(angle), std::sin(angle), 0));
    EXPECT_NEAR(q[2] / (angle / 2), 1, 1e-12);
}

TEST(Rotations, BetweenWithTheZeroVectorIsTheIdentity)
{
    expectSameRotation(between(Vector(), Vector(1, 0, 0)), Quaternion());
    expectSameRotation(between(Vector(0, 1, 0), Vector()), Quaternion());
    expectSameRotation(between(Vector(), Vector()), Quaternion());
}

TEST(Rotations, SlerpTurnsAtConstantVelocityByTheShorterWay)
{
    RandomRotations random;
    for (int i = 0; i < 100; ++i) {
        const Quaternion a = random.rotation();
        const Vector axis = random.direction();
        const double angle = std::fmod(std::abs(random.number()), 3.1);
        const Quaternion b = a * about(axis, angle);
        for (const double t : {-0.5, 0.0, 0.25, 0.5, 1.0, 1.5}) {
            const Quaternion expected = a * about(axis, t * angle);
            expectSameRotation(slerp(a, b, t), expected);
            expectSameRotation(slerp(a, Quaternion(-b[0], -b[1], -b[2], -b[3]), t), expected);
        }
    }
}

TEST(Rotations, SlerpBetweenNearRotationsKeepsTheirDistance)
{
    const Quaternion a = about(Vector(0, 0, 1), 1.0), b = about(Vector(0, 0, 1), 1.0 + 1e-8);
    const Quaternion half = algebra3d::conjugate(a) * slerp(a, b, 0.5);
    EXPECT_NEAR(half[2] / 0.25e-8, 1, 1e-6);
}

TEST(Rotations, NearerIsOnTheSameSide)
{
    const Quaternion a(0, 0, 0.6, 0.8), b(0, 0, -0.6, -0.8);
    EXPECT_EQ(algebra3d::nearer(b, a)[3], 0.8);
    EXPECT_EQ(algebra3d::nearer(a, a)[3], 0.8);
}
