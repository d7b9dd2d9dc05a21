// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/strains.h>

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>

#include "support/RandomRods.h"

namespace strandview {

namespace {

using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

struct Framed
{
    std::vector<Vector> points;
    std::vector<Quaternion> rotations;
};

// A helix of radius a and pitch 2 pi b, its d1 the normal turned about the tangent by `phase`
// and `twist` per length; a circle if b is 0.
Framed helix(double a, double b, double twist, double phase = 0, int size = 400, double step = 0.01)
{
    Framed rod;
    const double speed = std::hypot(a, b);
    for (int i = 0; i < size; ++i) {
        const double t = step * i, c = std::cos(t), s = std::sin(t);
        const Vector d3 = Vector(-a * s, a * c, b) * (1 / speed);
        const Vector normal(-c, -s, 0), binormal = d3.cross(normal);
        const double phi = phase + twist * speed * t;
        const Vector d1 = normal * std::cos(phi) + binormal * std::sin(phi);
        rod.points.emplace_back(a * c, a * s, b * t);
        rod.rotations.push_back(algebra3d::Matrix3<double>(d1, d3.cross(d1), d3).getQuaternion());
    }
    return rod;
}

std::vector<Vector> strainsOf(const Framed& rod)
{
    return strainsOfElements(rod.points, rod.rotations);
}

} // namespace

TEST(Strains, OfACircleBendByOneOverItsRadius)
{
    // The angle over the chord is that over the arc but for the chord's own shortening.
    const double radius = 2, angle = 0.01;
    const double bend = angle / (2 * radius * std::sin(angle / 2));
    for (const Vector& strain : strainsOf(helix(radius, 0, 0))) {
        EXPECT_NEAR(std::hypot(strain.x, strain.y), bend, 1e-12);
        EXPECT_NEAR(bend, 1 / radius, 1e-5);
        EXPECT_NEAR(strain.x, 0, 1e-12); // d1 is the normal: it bends about d2, the binormal
        EXPECT_NEAR(strain.y, bend, 1e-12);
        EXPECT_NEAR(strain.z, 0, 1e-12);
    }
}

TEST(Strains, OfAHelixAreItsCurvatureAndItsTorsionWithTheTurnOfItsFrame)
{
    const double a = 1.5, b = 0.4, kappa = a / (a * a + b * b), tau = b / (a * a + b * b);
    for (const double twist : {0.0, 0.7, -2.0})
        for (const Vector& strain : strainsOf(helix(a, b, twist, 0, 4000, 0.001))) {
            EXPECT_NEAR(strain.z, tau + twist, 1e-6);
            EXPECT_NEAR(strain.x * strain.x + strain.y * strain.y, kappa * kappa, 1e-6);
        }
}

TEST(Strains, OfFramesThatAreTurnedTurnTheOtherWay)
{
    const double alpha = 0.6;
    const auto plain = strainsOf(helix(1.5, 0.4, 0)), turned = strainsOf(helix(1.5, 0.4, 0, alpha));
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const Vector expected =
            algebra3d::rotated(plain[i], algebra3d::about(Vector(0, 0, 1), -alpha));
        EXPECT_NEAR((turned[i] - expected).getNorm(), 0, 1e-10);
    }
}

TEST(Strains, CountTheTurnsOfAStraightRod)
{
    const int turns = 3, size = 91;
    std::vector<Vector> points;
    std::vector<Quaternion> rotations;
    for (int i = 0; i < size; ++i) {
        points.emplace_back(0, 0, 0.25 * i);
        rotations.push_back(algebra3d::about(Vector(0, 0, 1), 2 * M_PI * turns * i / (size - 1)));
    }
    double turned = 0;
    for (const Vector& strain : strainsOfElements(points, rotations)) {
        turned += strain.z * 0.25 / (2 * M_PI);
        EXPECT_NEAR(std::hypot(strain.x, strain.y), 0, 1e-12);
    }
    EXPECT_NEAR(turned, turns, 1e-12);
}

TEST(Strains, AreOfTheRodNotOfWhereItIs)
{
    RandomNumbers random(2);
    const RandomRod rod = randomRod(RodKind::SMOOTH, 40, 1);
    const auto turn = random.unitQuaternion();
    std::vector<Vector> points;
    std::vector<Quaternion> rotations;
    for (std::size_t i = 0; i < rod.points.size(); ++i) {
        points.push_back(algebra3d::rotated(rod.points[i], turn) * 2 + Vector(9, 8, 7));
        rotations.push_back(turn * rod.rotations[i]);
        if (i % 3 == 0) // the same rotation
            rotations.back() = Quaternion(-rotations.back()[0], -rotations.back()[1],
                                          -rotations.back()[2], -rotations.back()[3]);
    }
    const auto before = strainsOfElements(rod.points, rod.rotations);
    const auto after = strainsOfElements(points, rotations);
    for (std::size_t i = 0; i < before.size(); ++i)
        EXPECT_NEAR((after[i] * 2 - before[i]).getNorm(), 0, 1e-9);
}

TEST(RotationVector, IsTheAxisTimesTheAngle)
{
    RandomNumbers random(4);
    for (int i = 0; i < 100; ++i) {
        const Vector axis = random.unitVector();
        const double angle = random.uniform(0, 3.14);
        const Quaternion from = random.unitQuaternion();
        const Vector found = rotationVector(from, from * algebra3d::about(axis, angle));
        EXPECT_NEAR((found - axis * angle).getNorm(), 0, 1e-12);
    }
    EXPECT_EQ(rotationVector(Quaternion(), Quaternion()).getNorm(), 0);
    const double tiny = 1e-14; // the angle itself, however small
    EXPECT_NEAR(rotationVector(Quaternion(), Quaternion(tiny / 2, 0, 0, 1)).x / tiny, 1, 1e-12);
}

TEST(Shears, AreZeroWhereD3IsAlongTheEdgesAndLengthsAreThoseOfTheReference)
{
    const std::vector<Vector> points{{0, 0, 0}, {0, 0, 2}, {0, 0, 5}};
    for (const Vector& shear : shearsOfElements(points, std::vector<Quaternion>(3), {2, 3}))
        EXPECT_EQ(shear.getNorm(), 0);
}

TEST(Shears, TellExtensionAlongD3AndSlidingAlongD1AndD2)
{
    // Of length 2, stretched to 3 and moved sideways; all of it turned.
    const auto turn = algebra3d::about(Vector(1, 2, 3), 0.8);
    const std::vector<Vector> points{Vector(), algebra3d::rotated(Vector(0.5, -0.25, 3), turn)};
    const Vector shear = shearsOfElements(points, {turn, turn}, {2}).front();
    EXPECT_NEAR(shear.x, 0.25, 1e-14);
    EXPECT_NEAR(shear.y, -0.125, 1e-14);
    EXPECT_NEAR(shear.z, 0.5, 1e-14);
}

TEST(Shears, AreMeasuredInTheFrameHalfWay)
{
    // An arc of the circle whose d3 is its tangent has its chord along the tangent half-way.
    const Framed arc = helix(2, 0, 0, 0, 10, 0.4);
    const std::vector<double> chords(9, 2 * 2 * std::sin(0.2));
    for (const Vector& shear : shearsOfElements(arc.points, arc.rotations, chords))
        EXPECT_NEAR(shear.getNorm(), 0, 1e-13);
}

} // namespace strandview
