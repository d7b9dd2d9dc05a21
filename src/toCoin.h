// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TOCOIN_H
#define STRANDVIEW_TOCOIN_H

#include <Inventor/SbColor.h>
#include <Inventor/SbRotation.h>
#include <Inventor/SbVec3f.h>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

// Values in the precision of Coin.

inline SbVec3f toSbVec3f(const algebra3d::Vector3<double>& vector)
{
    return SbVec3f(float(vector.x), float(vector.y), float(vector.z));
}

/// Both count the scalar last; Coin normalises.
inline SbRotation toSbRotation(const algebra3d::Quaternion<double>& q)
{
    return SbRotation(float(q[0]), float(q[1]), float(q[2]), float(q[3]));
}

/// Red, green, blue.
inline SbColor toSbColor(const algebra3d::Vector3<double>& rgb)
{
    return SbColor(float(rgb.x), float(rgb.y), float(rgb.z));
}

#endif
