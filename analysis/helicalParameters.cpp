// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/helicalParameters.h>

#include <cmath>

#include <algebra3d/Matrix3.h>
#include <algebra3d/rotations.h>

namespace strandview {

namespace {

using Vector = algebra3d::Vector3<double>;

const double DEGREES = 180 / std::acos(-1.0);

struct Axes
{
    Vector x, y, z;
};

Axes axesOf(const PlacedFrame& frame)
{
    const algebra3d::Matrix3<double> matrix(algebra3d::scaledToUnit(frame.rotation));
    return {matrix.getColumn(0), matrix.getColumn(1), matrix.getColumn(2)};
}

// From one direction to another, both across an axis, positive for a right-handed turn about it.
double angleAbout(const Vector& axis, const Vector& from, const Vector& to)
{
    return std::atan2(from.cross(to).dot(axis), from.dot(to));
}

// A frame whose z was turned to the axis, the smallest way, and how far, about which direction.
struct Upright
{
    Vector x, y;
    Vector hinge; ///< of the turn from the axis to z; 0 if there is none
    double angle;
};

Upright upright(const Axes& axes, const Vector& axis)
{
    const auto turn = algebra3d::between(axes.z, axis);
    const Vector hinge = axis.cross(axes.z);
    return {algebra3d::rotated(axes.x, turn), algebra3d::rotated(axes.y, turn), hinge.getUnit(),
            std::atan2(hinge.getNorm(), axis.dot(axes.z))};
}

// From the axis to a pair, across it: the pair goes `way` across the axis as it is turned by
// `twist`.
Vector displacementOf(const Vector& way, const Vector& axis, double twist)
{
    const double half = twist / 2;
    return axis.cross(way) * (-0.5 / std::tan(half)) - way * 0.5;
}

} // namespace

HelicalParameters helicalParameters(const PlacedFrame& pair, const PlacedFrame& next)
{
    const Axes first = axesOf(pair), second = axesOf(next);
    const Vector way = next.point - pair.point;
    const Vector across = (second.x - first.x).cross(second.y - first.y);
    HelicalParameters found;
    if (across.getNorm() < 1e-14) {
        found.rise = way.dot(first.z);
        return found;
    }
    const Vector axis = across.getUnit();
    const Upright from = upright(first, axis), to = upright(second, axis);
    const double twist = angleAbout(axis, from.x, to.x);
    found.twist = twist * DEGREES;
    found.rise = way.dot(axis);
    const Vector fromAxis = displacementOf(way - found.rise * axis, axis, twist);
    found.xDisplacement = fromAxis.dot(from.x);
    found.yDisplacement = fromAxis.dot(from.y);
    found.inclination = from.angle * from.hinge.dot(from.x) * DEGREES;
    found.tip = from.angle * from.hinge.dot(from.y) * DEGREES;
    return found;
}

} // namespace strandview
