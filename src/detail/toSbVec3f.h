// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_DETAIL_TOSBVEC3F_H
#define STRANDVIEW_DETAIL_TOSBVEC3F_H

#include <Inventor/SbVec3f.h>

#include <algebra3d/Vector3.h>

/// The vector in the precision of Coin.
inline SbVec3f toSbVec3f(const algebra3d::Vector3<double>& vector)
{
    return SbVec3f(float(vector.x), float(vector.y), float(vector.z));
}

#endif
