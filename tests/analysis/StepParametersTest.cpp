// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/stepParameters.h>

#include <array>
#include <cmath>
#include <random>

#include <gmock/gmock.h>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Quaternion = algebra3d::Quaternion<double>;
using Vector = algebra3d::Vector3<double>;
using Matrix = algebra3d::Matrix3<double>;

constexpr double DEGREES = 180 / M_PI;

std::array<double, 6> numbersOf(const StepParameters& s)
{
    return {s.shift, s.slide, s.rise, s.tilt, s.roll, s.twist};
}
std::array<double, 6> numbersOf(const PairParameters& p)
{
    return {p.shear, p.stretch, p.stagger, p.buckle, p.propeller, p.opening};
}

template <typename Parameters>
void expectNear(const Parameters& found, const Parameters& expected, double tolerance = 1e-11)
{
    const auto a = numbersOf(found), b = numbersOf(expected);
    for (std::size_t i = 0; i < a.size(); ++i)
        EXPECT_NEAR(a[i], b[i], tolerance) << "parameter " << i;
}

void expectNear(const PlacedFrame& found, const PlacedFrame& expected)
{
    EXPECT_NEAR((found.point - expected.point).getNorm(), 0, 1e-12);
    EXPECT_NEAR(std::abs(algebra3d::dot(found.rotation, expected.rotation)), 1, 1e-14);
}

struct Random
{
    std::mt19937 engine{20260101};
    double operator()(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(engine);
    }
    Quaternion rotation()
    {
        const Quaternion q((*this)(-1, 1), (*this)(-1, 1), (*this)(-1, 1), (*this)(-1, 1));
        return algebra3d::scaledToUnit(q);
    }
    PlacedFrame frame() { return {{(*this)(-9, 9), (*this)(-9, 9), (*this)(-9, 9)}, rotation()}; }
    StepParameters step()
    {
        const auto angle = [&] { return (*this)(-60, 60); };
        return {(*this)(-2, 2), (*this)(-2, 2), (*this)(2, 5),
                angle(),        angle(),        (*this)(-179, 179)};
    }
};

PlacedFrame moved(const PlacedFrame& frame, const Vector& by, const Quaternion& turn)
{
    return {algebra3d::rotated(frame.point, turn) + by, turn * frame.rotation};
}

// As the other strand has it.
PlacedFrame fromOtherStrand(const PlacedFrame& frame)
{
    return {frame.point, frame.rotation * Quaternion(1, 0, 0, 0)};
}

// The scheme as it is published, with matrices: z is turned to z half-way about the hinge across
// both from either side, twist is the angle between the y axes that result, and the bend is
// parted by the angle between the hinge and the mean y axis.
StepParameters asPublished(const PlacedFrame& pair, const PlacedFrame& next)
{
    const Matrix first(pair.rotation), second(next.rotation);
    const Vector z1 = first.getColumn(2), z2 = second.getColumn(2);
    const Vector hinge = z1.cross(z2).getUnit();
    const double bend = std::acos(z1.dot(z2));
    const Quaternion half = algebra3d::about(hinge, bend / 2);
    const auto back = algebra3d::conjugate(half);
    const Vector y1 = algebra3d::rotated(first.getColumn(1), half);
    const Vector y2 = algebra3d::rotated(second.getColumn(1), back);
    const Vector z = (z1 + z2).getUnit(), y = (y1 + y2).getUnit(), x = y.cross(z);
    const auto angle = [&](const Vector& from, const Vector& to) {
        return std::atan2(from.cross(to).dot(z), from.dot(to));
    };
    const double phase = angle(hinge, y);
    const Vector way = next.point - pair.point;
    return {way.dot(x),
            way.dot(y),
            way.dot(z),
            bend * std::sin(phase) * DEGREES,
            bend * std::cos(phase) * DEGREES,
            angle(y1, y2) * DEGREES};
}

} // namespace

TEST(StepParameters, OfAStraightHelixAreItsRiseAndTwist)
{
    const PlacedFrame pair{{1, 2, 3}, algebra3d::about(Vector(0, 0, 1), 10 / DEGREES)};
    const PlacedFrame next{{1, 2, 6.38}, algebra3d::about(Vector(0, 0, 1), 45.7 / DEGREES)};
    expectNear(stepParameters(pair, next), {0, 0, 3.38, 0, 0, 35.7});
}

TEST(StepParameters, EachTurnsOrMovesAlongItsOwnAxis)
{
    const PlacedFrame pair{};
    const auto turned = [](const Vector& axis) {
        return PlacedFrame{{}, algebra3d::about(axis, 7 / DEGREES)};
    };
    expectNear(stepParameters(pair, turned({1, 0, 0})), {0, 0, 0, 7, 0, 0});
    expectNear(stepParameters(pair, turned({0, 1, 0})), {0, 0, 0, 0, 7, 0});
    expectNear(stepParameters(pair, turned({0, 0, 1})), {0, 0, 0, 0, 0, 7});
    expectNear(stepParameters(pair, {{0.1, 0.2, 0.3}, {}}), {0.1, 0.2, 0.3, 0, 0, 0});
}

TEST(StepParameters, AreThoseOfThePublishedScheme)
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const PlacedFrame pair = random.frame(), next = nextPair(pair, random.step());
        expectNear(stepParameters(pair, next), asPublished(pair, next), 1e-9);
    }
}

TEST(StepParameters, ComeBackFromThePairThatTheyLeadTo)
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const PlacedFrame pair = random.frame();
        const StepParameters step = random.step();
        const PlacedFrame next = nextPair(pair, step);
        expectNear(stepParameters(pair, next), step);
        expectNear(nextPair(pair, stepParameters(pair, next)), next);
    }
}

TEST(StepParameters, AreThoseOfTheMotionWhereverItBegins)
{
    Random random;
    for (int i = 0; i < 50; ++i) {
        SCOPED_TRACE(i);
        const PlacedFrame pair = random.frame(), next = nextPair(pair, random.step());
        const Vector by(random(-9, 9), random(-9, 9), random(-9, 9));
        const Quaternion turn = random.rotation();
        expectNear(stepParameters(moved(pair, by, turn), moved(next, by, turn)),
                   stepParameters(pair, next));
    }
}

TEST(StepParameters, FromTheOtherStrandShiftAndTiltChangeTheirSigns)
{
    Random random;
    for (int i = 0; i < 50; ++i) {
        SCOPED_TRACE(i);
        const PlacedFrame pair = random.frame();
        const StepParameters s = random.step();
        const PlacedFrame next = nextPair(pair, s);
        expectNear(stepParameters(fromOtherStrand(next), fromOtherStrand(pair)),
                   {-s.shift, s.slide, s.rise, -s.tilt, s.roll, s.twist});
    }
}

TEST(StepParameters, DoNotDependOnTheSignOrSizeOfAQuaternion)
{
    Random random;
    PlacedFrame pair = random.frame();
    const StepParameters step = random.step();
    PlacedFrame next = nextPair(pair, step);
    for (int i = 0; i < 4; ++i) {
        pair.rotation[i] *= 1.5;
        next.rotation[i] *= -0.5;
    }
    expectNear(stepParameters(pair, next), step);
}

TEST(StepParameters, OfTheSmallestBendKeepTheirDigits)
{
    const StepParameters step{0, 0, 3.4, 3e-9, -4e-9, 36};
    const StepParameters found = stepParameters({}, nextPair({}, step));
    EXPECT_NEAR(found.tilt, step.tilt, 1e-13);
    EXPECT_NEAR(found.roll, step.roll, 1e-13);
}

TEST(StepParameters, OfAHalfTurnOfTheAxisAreFinite)
{
    const StepParameters step = stepParameters({}, {{0, 0, 3}, Quaternion(1, 0, 0, 0)});
    EXPECT_NEAR(std::hypot(step.tilt, step.roll), 180, 1e-12);
    EXPECT_TRUE(std::isfinite(step.twist) && std::isfinite(step.rise));
}

TEST(StepParameters, TheFrameHalfWayIsAsFarFromEither)
{
    Random random;
    for (int i = 0; i < 50; ++i) {
        SCOPED_TRACE(i);
        const PlacedFrame pair = random.frame(), next = nextPair(pair, random.step());
        const PlacedFrame middle = midFrame(pair, next);
        expectNear(middle, fromOtherStrand(midFrame(fromOtherStrand(next), fromOtherStrand(pair))));
        const Vector z = Matrix(middle.rotation).getColumn(2);
        EXPECT_NEAR(z.dot(Matrix(pair.rotation).getColumn(2)),
                    z.dot(Matrix(next.rotation).getColumn(2)), 1e-14);
    }
}

TEST(PairParameters, ComeBackFromTheBasesThatTheyPlace)
{
    Random random;
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const PlacedFrame pair = random.frame();
        const auto s = numbersOf(random.step());
        const PairParameters parameters{s[0], s[1], s[2] - 3.5, s[3], s[4], s[5] / 3};
        const BaseFrames bases = baseFrames(pair, parameters);
        expectNear(pairParameters(bases.base1, bases.base2), parameters);
        expectNear(midFrame(bases.base2, bases.base1), pair);
    }
}

TEST(PairParameters, AreOfTheFirstBaseAsSeenFromTheSecond)
{
    const PlacedFrame pair{};
    const BaseFrames bases = baseFrames(pair, {0, 0.4, 0.2, 0, -12, 0});
    expectNear(PlacedFrame{bases.base1.point, {}}, {{0, 0.2, 0.1}, {}});
    expectNear(PlacedFrame{bases.base2.point, {}}, {{0, -0.2, -0.1}, {}});
    expectNear(PlacedFrame{{}, bases.base1.rotation},
               {{}, algebra3d::about(Vector(0, 1, 0), -6 / DEGREES)});
}

TEST(PairParameters, FromTheOtherStrandShearAndBuckleChangeTheirSigns)
{
    Random random;
    for (int i = 0; i < 50; ++i) {
        SCOPED_TRACE(i);
        const PairParameters p{0.3, -0.2, 0.5, random(-30, 30), random(-30, 30), random(-30, 30)};
        const BaseFrames bases = baseFrames(random.frame(), p);
        expectNear(pairParameters(fromOtherStrand(bases.base2), fromOtherStrand(bases.base1)),
                   {-p.shear, p.stretch, p.stagger, -p.buckle, p.propeller, p.opening});
    }
}

} // namespace strandview
