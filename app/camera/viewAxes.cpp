// SPDX-License-Identifier: GPL-3.0-or-later
#include "camera/viewAxes.h"

#include <cmath>

namespace strandview {

namespace {

using Vector = CameraRequest::Vector;

struct Turn
{
    double sine, cosine;
};

// Exact at multiples of 90 degrees.
Turn turnBy(double degrees)
{
    int quarters = 0;
    const double rest = std::remquo(degrees, 90, &quarters) * (M_PI / 180);
    const double sine = std::sin(rest), cosine = std::cos(rest);
    switch (quarters & 3) {
    case 0:
        return {sine, cosine};
    case 1:
        return {cosine, -sine};
    case 2:
        return {-sine, -cosine};
    default:
        return {-cosine, sine};
    }
}

// Without a zero that has a sign.
SbVec3f toSbVec3f(const Vector& v)
{
    return SbVec3f(float(v.x) + 0.0f, float(v.y) + 0.0f, float(v.z) + 0.0f);
}

// Where the camera is before it goes around: in the horizon, of length 1, and above it.
struct Start
{
    Vector level;
    Turn elevation;
};

Start startOf(const CameraRequest& request, const Vector& up)
{
    if (request.side && !isAlong(up, *request.side)) {
        const Vector towards = towardsViewer(*request.side);
        const double sine = towards.dot(up);
        const Vector level = towards - up * sine;
        return {level.getUnit(), {sine, level.getNorm()}};
    }
    const Vector right = isAlong(up, Side::X) ? Vector(0, 1, 0) : Vector(1, 0, 0);
    return {right.cross(up).getUnit(), {0, 1}};
}

} // namespace

ViewAxes axesOf(Side side)
{
    return {toSbVec3f(towardsViewer(side) * -1), toSbVec3f(usualUp(side))};
}

ViewAxes axesOf(const CameraRequest& request)
{
    if (!request.up && !request.hasAngles())
        return axesOf(request.side.value_or(Side::Z));
    const Vector up = upOf(request);
    const Start start = startOf(request, up);
    const Turn around = turnBy(request.azimuth.value_or(0));
    const Turn above = request.elevation ? turnBy(*request.elevation) : start.elevation;
    const Vector level = start.level * around.cosine + up.cross(start.level) * around.sine;
    const Vector towards = level * above.cosine + up * above.sine;
    return {toSbVec3f(towards * -1), toSbVec3f(up * above.cosine - level * above.sine)};
}

} // namespace strandview
