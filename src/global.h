// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_GLOBAL_H
#define STRANDVIEW_GLOBAL_H

#include <vector>

#include <StrandviewExport.h>
#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

class SoMaterial;

/// Registers every node class of the library that is not registered yet, parents first, in
/// place of their initClass() one by one; after SoDB::init(). The viewer's class too where its
/// parent, SoQt's examiner, is registered: after SoQt::init(). In the thread that uses Coin.
STRANDVIEW_EXPORT void initStrandviewClasses();

/// Whether an orientation is usable: no component is not-a-number, and its norm
/// differs from 1 by at most `tolerance`. The point is not examined.
STRANDVIEW_EXPORT bool isPointRotCorrect(const algebra3d::Vector3<double>& point,
                                         const algebra3d::Quaternion<double>& rot,
                                         double tolerance);

/// isPointRotCorrect for each of the first n pairs, n being the shorter length.
/// Fewer than two pairs count as correct: callers check the number themselves.
STRANDVIEW_EXPORT bool isDataCorrect(const std::vector<algebra3d::Vector3<double>>& points,
                                     const std::vector<algebra3d::Quaternion<double>>& rots,
                                     double tolerance);

/// A new material of one ambient, one diffuse and one specular colour (red, green,
/// blue in [0, 1], passed on unchecked), otherwise Coin's defaults. Its reference
/// count is zero: it belongs to whoever puts it into a scene graph. In the thread that uses Coin;
/// the checks above are for any.
STRANDVIEW_EXPORT SoMaterial* createMaterial(const algebra3d::Vector3<double>& ambient,
                                             const algebra3d::Vector3<double>& diffuse,
                                             const algebra3d::Vector3<double>& specular);

#endif
