// SPDX-License-Identifier: GPL-3.0-or-later
#include <strandview/analysis/angles.h>

#include <cmath>
#include <limits>

namespace strandview {

using algebra3d::Vector3;

namespace {

const double NONE = std::numeric_limits<double>::quiet_NaN();

// The sine below which two ways are along one line but for the rounding of their points.
const double ROUNDING = 1e-10;

bool areAlongOneLine(const Vector3<double>& a, const Vector3<double>& b)
{
    return !(a.cross(b).getNorm() > ROUNDING * a.getNorm() * b.getNorm());
}

} // namespace

double angleAt(const Vector3<double>& a, const Vector3<double>& b, const Vector3<double>& c)
{
    const Vector3<double> toA = a - b, toC = c - b;
    if (!(toA.getNorm() > 0 && toC.getNorm() > 0))
        return NONE;
    return std::atan2(toA.cross(toC).getNorm(), toA.dot(toC));
}

double dihedralAngleOf(const Vector3<double>& a, const Vector3<double>& b, const Vector3<double>& c,
                       const Vector3<double>& d)
{
    const Vector3<double> first = b - a, axis = c - b, last = d - c;
    if (areAlongOneLine(first, axis) || areAlongOneLine(axis, last))
        return NONE;
    const Vector3<double> before = first.cross(axis), behind = axis.cross(last);
    return std::atan2(axis.getNorm() * first.dot(behind), before.dot(behind));
}

} // namespace strandview
