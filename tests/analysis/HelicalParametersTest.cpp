// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/helicalParameters.h>

#include <cmath>

#include <gmock/gmock.h>

#include <algebra3d/rotations.h>

#include "support/RandomRods.h"

namespace strandview {

namespace {

using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;

void expectNear(const HelicalParameters& found, const HelicalParameters& expected)
{
    EXPECT_NEAR(found.xDisplacement, expected.xDisplacement, 1e-9);
    EXPECT_NEAR(found.yDisplacement, expected.yDisplacement, 1e-9);
    EXPECT_NEAR(found.rise, expected.rise, 1e-9);
    EXPECT_NEAR(found.inclination, expected.inclination, 1e-8);
    EXPECT_NEAR(found.tip, expected.tip, 1e-8);
    EXPECT_NEAR(found.twist, expected.twist, 1e-8);
}

// A pair beside an axis along z, and the next one up that screw.
struct Step
{
    PlacedFrame pair, next;
};

Step screw(const HelicalParameters& known)
{
    const double radian = M_PI / 180;
    // Inclination and tip are the parts of one turn.
    const Vector lean(known.inclination * radian, known.tip * radian, 0);
    const PlacedFrame pair{Vector(known.xDisplacement, known.yDisplacement, 0),
                           algebra3d::about(lean, lean.getNorm())};
    const Quaternion turn = algebra3d::about(Vector(0, 0, 1), known.twist * radian);
    return {
        pair,
        {algebra3d::rotated(pair.point, turn) + Vector(0, 0, known.rise), turn * pair.rotation}};
}

PlacedFrame moved(const PlacedFrame& frame, const PlacedFrame& by)
{
    return {algebra3d::rotated(frame.point, by.rotation) + by.point, by.rotation * frame.rotation};
}

} // namespace

TEST(HelicalParameters, AreThoseOfTheScrewThatAStepWasMadeBy)
{
    RandomNumbers random(6);
    for (int i = 0; i < 200; ++i) {
        const HelicalParameters known{random.uniform(-5, 5),   random.uniform(-5, 5),
                                      random.uniform(-4, 4),   random.uniform(-60, 60),
                                      random.uniform(-60, 60), random.uniform(-170, 170)};
        const Step made = screw(known);
        SCOPED_TRACE(i);
        expectNear(helicalParameters(made.pair, made.next), known);
        const PlacedFrame by{random.unitVector() * 9, random.unitQuaternion()};
        expectNear(helicalParameters(moved(made.pair, by), moved(made.next, by)), known);
    }
}

TEST(HelicalParameters, ReadFromTheOtherStrandYAndTipChangeTheirSigns)
{
    const HelicalParameters known{-4.5, 0.3, 2.6, 19, -2, 32.7}; // near those of A-DNA
    const Step made = screw(known);
    const Quaternion over(1, 0, 0, 0); // half a turn about x
    const HelicalParameters other = helicalParameters({made.next.point, made.next.rotation * over},
                                                      {made.pair.point, made.pair.rotation * over});
    expectNear(other, {known.xDisplacement, -known.yDisplacement, known.rise, known.inclination,
                       -known.tip, known.twist});
}

TEST(HelicalParameters, OfAMereShiftAreByTheFrame)
{
    const Quaternion turn = algebra3d::about(Vector(1, 0, 0), 0.5);
    const PlacedFrame pair{Vector(1, 2, 3), turn};
    const PlacedFrame next{pair.point + algebra3d::rotated(Vector(0, 0, 3.4), turn), turn};
    expectNear(helicalParameters(pair, next), {0, 0, 3.4, 0, 0, 0});
}

} // namespace strandview
