// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_CLIPPING_H
#define STRANDVIEW_APP_SCENE_CLIPPING_H

#include <optional>
#include <utility>

#include <Inventor/SbPlane.h>

#include "request/ClipPlane.h"

namespace strandview {

class DataScene;
struct Extent;
struct Placement;

/// The plane with a distance: that of the middle of the data, unless it has one.
ClipPlane settled(ClipPlane plane, const Extent& extent);

/// The ends of the box that all data of a scene lie in, in the data's coordinates; nothing of none.
std::optional<std::pair<algebra3d::Vector3<double>, algebra3d::Vector3<double>>>
boxOfData(const DataScene& scene);

/// A plane in the scene, as Coin has it: its normal points to what stays. The plane has a
/// distance.
SbPlane planeInScene(const ClipPlane& plane, const Placement& placement);

} // namespace strandview

#endif
