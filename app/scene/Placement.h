// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_PLACEMENT_H
#define STRANDVIEW_APP_SCENE_PLACEMENT_H

#include <algebra3d/Vector3.h>

namespace strandview {

/// Where data points lie in the scene: (point - origin) * scale.
struct Placement
{
    algebra3d::Vector3<double> origin;
    double scale = 1;

    algebra3d::Vector3<double> toScene(const algebra3d::Vector3<double>& point) const
    {
        return (point - origin) * scale;
    }
    algebra3d::Vector3<double> toData(const algebra3d::Vector3<double>& point) const
    {
        return point * (1 / scale) + origin;
    }
};

} // namespace strandview

#endif
