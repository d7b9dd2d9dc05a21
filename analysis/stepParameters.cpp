// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/stepParameters.h>

#include <cmath>

#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;
using Quaternion = algebra3d::Quaternion<double>;

constexpr double DEGREES = 180 / M_PI;
const Vector Z_AXIS(0, 0, 1);

// A step is a turn by half of the twist about z, one by the bend about a hinge across z, and the
// other half of the twist: with the hinge (sin p, cos p, 0), the twist w and the bend b its
// quaternion is (sin b/2 sin p, sin b/2 cos p, cos b/2 sin w/2, cos b/2 cos w/2).
struct Turn
{
    Quaternion halfTwist;
    Quaternion halfBend;
};

/// Of the tilt, roll and twist, in degrees.
Turn turnOf(double tilt, double roll, double twist)
{
    const Vector bend(tilt / DEGREES, roll / DEGREES, 0);
    return {algebra3d::about(Z_AXIS, twist / DEGREES / 2),
            algebra3d::about(bend, bend.getNorm() / 2)};
}

/// Tilt, roll and twist, in degrees, from one rotation to the next.
Vector anglesBetween(const Quaternion& from, const Quaternion& to)
{
    const Quaternion unit = scaledToUnit(algebra3d::conjugate(from) * to);
    const Quaternion step = algebra3d::nearer(unit, Quaternion());
    const double sine = std::hypot(step[0], step[1]);
    const double bend = 2 * std::atan2(sine, std::hypot(step[2], step[3])) * DEGREES;
    const double share = sine == 0 ? 0 : bend / sine;
    return {share * step[0], share * step[1], 2 * std::atan2(step[2], step[3]) * DEGREES};
}

} // namespace

PlacedFrame midFrame(const PlacedFrame& pair, const PlacedFrame& next)
{
    const Vector angles = anglesBetween(pair.rotation, next.rotation);
    const Turn turn = turnOf(angles.x, angles.y, angles.z);
    return {pair.point + (next.point - pair.point) * 0.5,
            scaledToUnit(pair.rotation) * turn.halfTwist * turn.halfBend};
}

StepParameters stepParameters(const PlacedFrame& pair, const PlacedFrame& next)
{
    const Vector angles = anglesBetween(pair.rotation, next.rotation);
    const Vector way = algebra3d::rotated(next.point - pair.point,
                                          algebra3d::conjugate(midFrame(pair, next).rotation));
    return {way.x, way.y, way.z, angles.x, angles.y, angles.z};
}

PlacedFrame nextPair(const PlacedFrame& pair, const StepParameters& step)
{
    const Turn turn = turnOf(step.tilt, step.roll, step.twist);
    const Quaternion middle = pair.rotation * turn.halfTwist * turn.halfBend;
    const Vector way(step.shift, step.slide, step.rise);
    return {pair.point + algebra3d::rotated(way, middle),
            scaledToUnit(middle * turn.halfBend * turn.halfTwist)};
}

PairParameters pairParameters(const PlacedFrame& base1, const PlacedFrame& base2)
{
    const StepParameters step = stepParameters(base2, base1);
    return {step.shift, step.slide, step.rise, step.tilt, step.roll, step.twist};
}

BaseFrames baseFrames(const PlacedFrame& pair, const PairParameters& parameters)
{
    const Turn turn = turnOf(parameters.buckle, parameters.propeller, parameters.opening);
    const Quaternion half = turn.halfBend * turn.halfTwist;
    const Vector way = algebra3d::rotated(
        {parameters.shear / 2, parameters.stretch / 2, parameters.stagger / 2}, pair.rotation);
    const Quaternion back = algebra3d::conjugate(turn.halfTwist * turn.halfBend);
    return {{pair.point + way, scaledToUnit(pair.rotation * half)},
            {pair.point - way, scaledToUnit(pair.rotation * back)}};
}

} // namespace strandview
