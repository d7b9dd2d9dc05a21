// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/parameterRounding.h>

#include <algorithm>
#include <cmath>

namespace strandview {

namespace {

const double PI = std::acos(-1.0);
const double DEGREES = 180 / PI;

double distanceOf(const PlacedFrame& one, const PlacedFrame& other)
{
    return (other.point - one.point).getNorm();
}

// A length that is turned by a rounded angle.
double turned(double length, double angle) { return length == 0 ? 0 : length * angle; }

} // namespace

StepParameters roundingOfStep(const PlacedFrame& pair, const PlacedFrame& next,
                              const FrameRounding& rounding)
{
    const StepParameters step = stepParameters(pair, next);
    const double bend = std::hypot(step.tilt, step.roll) / DEGREES;
    // The more the step is bent, the less is known of the twist, and of the frame half-way.
    const double cosine = std::cos(bend / 2);
    const double length =
        rounding.length + turned(distanceOf(pair, next), rounding.angle / (cosine * cosine));
    const double ofBend = 2 * rounding.angle * DEGREES;
    return {length, length, length, ofBend, ofBend, ofBend / cosine};
}

PairParameters roundingOfPair(const PlacedFrame& base1, const PlacedFrame& base2,
                              const FrameRounding& rounding)
{
    const StepParameters step = roundingOfStep(base2, base1, rounding);
    return {step.shift, step.slide, step.rise, step.tilt, step.roll, step.twist};
}

HelicalParameters roundingOfScrew(const PlacedFrame& pair, const PlacedFrame& next,
                                  const FrameRounding& rounding)
{
    const HelicalParameters screw = helicalParameters(pair, next);
    const double way = distanceOf(pair, next), angle = rounding.angle;
    const double ofTwist = 2 * angle * DEGREES;
    if (screw.twist == 0)
        return {rounding.length, rounding.length, rounding.length + turned(way, angle),
                ofTwist,         ofTwist,         ofTwist};
    // The smaller the turn, the less is known of its axis, and of where that is.
    const double chord = 2 * std::abs(std::sin(screw.twist / DEGREES / 2));
    const double ofAxis = angle / chord;
    const double fromAxis = std::hypot(screw.xDisplacement, screw.yDisplacement);
    const double displacement = ofAxis >= 1 ? INFINITY
                                            : (rounding.length + turned(way, 2 * ofAxis)) / chord +
                                                  turned(fromAxis, 3 * ofAxis + angle);
    const double inclination = std::min(3 * (ofAxis + angle), PI) * DEGREES;
    return {displacement, displacement, rounding.length + turned(way, std::min(ofAxis, 2.0)),
            inclination,  inclination,  ofTwist};
}

} // namespace strandview
