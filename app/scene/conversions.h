// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_CONVERSIONS_H
#define STRANDVIEW_APP_SCENE_CONVERSIONS_H

#include <Inventor/SbColor.h>
#include <Inventor/SbRotation.h>
#include <Inventor/SbVec3f.h>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include "request/Colour.h"

namespace strandview {

// Plain values in Coin's types and in the library's.

inline SbVec3f toSbVec3f(const algebra3d::Vector3<double>& v)
{
    return SbVec3f(float(v.x), float(v.y), float(v.z));
}

inline SbRotation toSbRotation(const algebra3d::Quaternion<double>& q)
{
    return SbRotation(float(q[0]), float(q[1]), float(q[2]), float(q[3]));
}

inline SbColor toSbColor(const Colour& colour)
{
    return SbColor(colour.red, colour.green, colour.blue);
}

inline algebra3d::Vector3<double> toVector(const Colour& colour)
{
    return {double(colour.red), double(colour.green), double(colour.blue)};
}

} // namespace strandview

#endif
