// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_CLIPPING_H
#define STRANDVIEW_APP_SCENE_CLIPPING_H

#include <optional>
#include <string>
#include <utility>

#include <Inventor/SbBox3f.h>
#include <Inventor/SbPlane.h>

#include "request/ClipPlane.h"
#include "request/Options.h"

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

/// A line if the plane that the command line asks for lies beyond all that is in a box of the
/// scene, such as "--clip has no effect: found data from -1 to 1 along its normal", or before all
/// of it; otherwise nothing.
std::string findIdleClip(const Options& options, const SbBox3f& box, const Placement& placement);

} // namespace strandview

#endif
