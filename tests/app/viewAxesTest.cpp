// SPDX-License-Identifier: GPL-3.0-or-later
#include "camera/viewAxes.h"

#include <array>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

namespace strandview {

namespace {

using Vector = CameraRequest::Vector;
using Matrix = std::array<std::array<double, 3>, 3>;

// About an axis of length 1, against the clock for who sees it come: O. Rodrigues' formula.
Matrix rotationAbout(const Vector& axis, double degrees)
{
    const double angle = degrees * M_PI / 180, c = std::cos(angle), s = std::sin(angle);
    const double a[3] = {axis.x, axis.y, axis.z};
    const Matrix across = {{{0, -a[2], a[1]}, {a[2], 0, -a[0]}, {-a[1], a[0], 0}}};
    Matrix matrix = {};
    for (int i = 0; i < 3; ++i)
        for (int k = 0; k < 3; ++k)
            matrix[i][k] = (i == k ? c : 0) + s * across[i][k] + (1 - c) * a[i] * a[k];
    return matrix;
}

Vector times(const Matrix& m, const Vector& v)
{
    return {m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z,
            m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
            m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z};
}

Vector toVector(const SbVec3f& v) { return {double(v[0]), double(v[1]), double(v[2])}; }

void expectSame(const ViewAxes& found, const ViewAxes& expected)
{
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(found.direction[i], expected.direction[i]);
        EXPECT_EQ(found.up[i], expected.up[i]);
        EXPECT_FALSE(std::signbit(found.direction[i]) && found.direction[i] == 0);
    }
}

CameraRequest withAngles(double azimuth, double elevation)
{
    CameraRequest request;
    request.azimuth = azimuth;
    request.elevation = elevation;
    return request;
}

} // namespace

TEST(ViewAxes, WithoutAnythingAskedForOneLooksFromZ)
{
    expectSame(axesOf(CameraRequest()), axesOf(Side::Z));
}

TEST(ViewAxes, QuartersAreTheSidesToTheLastBit)
{
    const Side sides[] = {Side::MINUS_Y, Side::X, Side::Y, Side::MINUS_X};
    for (int quarter = -8; quarter < 8; ++quarter) {
        SCOPED_TRACE(quarter);
        expectSame(axesOf(withAngles(90 * quarter, 0)), axesOf(sides[quarter & 3]));
    }
    CameraRequest above = withAngles(0, 90), below = withAngles(0, -90);
    expectSame(axesOf(above), axesOf(Side::Z));
    EXPECT_EQ(axesOf(below).direction, SbVec3f(0, 0, 1));
    EXPECT_EQ(axesOf(below).up, SbVec3f(0, -1, 0));
    for (const NamedSide& named : SIDES) { // a side is where its own angles begin
        CameraRequest request = withAngles(0, 0);
        request.side = named.side;
        expectSame(axesOf(request), axesOf(named.side));
    }
}

TEST(ViewAxes, FromTheFrontXIsToTheRightOrYWhereXIsUp)
{
    for (const auto& [up, right] :
         std::vector<std::pair<Vector, Vector>>{{{0, 0, 1}, {1, 0, 0}},
                                                {{0, 1, 0}, {1, 0, 0}},
                                                {{0, -2, 0}, {1, 0, 0}},
                                                {{0, 3, 4}, {1, 0, 0}},
                                                {{1, 0, 0}, {0, 1, 0}},
                                                {{-1, 0, 0}, {0, 1, 0}}}) {
        CameraRequest request = withAngles(0, 0);
        request.up = up;
        const ViewAxes axes = axesOf(request);
        const Vector found = toVector(axes.direction).cross(toVector(axes.up));
        EXPECT_NEAR((found - right).getNorm(), 0, 1e-7);
        EXPECT_NEAR((toVector(axes.up) - up.getUnit()).getNorm(), 0, 1e-7);
    }
}

TEST(ViewAxes, UpAloneTurnsThePictureAndNotTheCamera)
{
    CameraRequest request;
    request.side = Side::X;
    request.up = Vector(5, 1, 1); // most of it towards the viewer
    const ViewAxes axes = axesOf(request);
    EXPECT_EQ(axes.direction, SbVec3f(-1, 0, 0));
    EXPECT_NEAR((toVector(axes.up) - Vector(0, 1, 1).getUnit()).getNorm(), 0, 1e-7);
}

// The camera's place turned about what is up, and then over its own right.
TEST(ViewAxes, AnyAnglesAreThoseOfTheMatrices)
{
    std::mt19937 random(5);
    std::normal_distribution<double> normal;
    std::uniform_real_distribution<double> angle(-720, 720), elevation(-90, 90);
    for (int i = 0; i < 2000; ++i) {
        CameraRequest request = withAngles(angle(random), elevation(random));
        request.up = Vector(normal(random), normal(random), normal(random));
        const Vector up = request.up->getUnit();
        Vector start; // in the horizon
        if (i % 2 == 0) {
            request.side = SIDES[random() % SIDES.size()].side;
            const Vector towards = towardsViewer(*request.side);
            start = (towards - up * towards.dot(up)).getUnit();
        } else {
            start = Vector(1, 0, 0).cross(up).getUnit();
        }
        const Vector level = times(rotationAbout(up, *request.azimuth), start);
        const Vector right = up.cross(level);
        const Matrix raised = rotationAbout(right, -*request.elevation);
        const ViewAxes axes = axesOf(request);
        EXPECT_NEAR((toVector(axes.direction) + times(raised, level)).getNorm(), 0, 3e-7);
        EXPECT_NEAR((toVector(axes.up) - times(raised, up)).getNorm(), 0, 3e-7);
    }
}

TEST(ViewAxes, TheElevationOfASideThatIsNotInTheHorizonStays)
{
    CameraRequest request;
    request.side = Side::X;
    request.up = Vector(1, 0, 1); // the side of x is 45 degrees above its horizon
    request.azimuth = 0;
    EXPECT_NEAR((toVector(axesOf(request).direction) - Vector(-1, 0, 0)).getNorm(), 0, 1e-7);
    request.azimuth = 180;
    EXPECT_NEAR((toVector(axesOf(request).direction) - Vector(0, 0, -1)).getNorm(), 0, 1e-7);
    request.elevation = 0;
    EXPECT_NEAR(toVector(axesOf(request).direction).dot(request.up->getUnit()), 0, 1e-7);
}

} // namespace strandview
