// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_PLACEMENT_H
#define STRANDVIEW_APP_SCENE_PLACEMENT_H

#include <vector>

#include <algebra3d/Vector3.h>

namespace strandview {

struct Extent;

/// Where data points lie in the scene: (point - origin) * scale.
struct Placement
{
    algebra3d::Vector3<double> origin;
    double scale = 1;

    algebra3d::Vector3<double> toScene(const algebra3d::Vector3<double>& point) const
    {
        return (point - origin) * scale;
    }
    std::vector<algebra3d::Vector3<double>>
    toScene(const std::vector<algebra3d::Vector3<double>>& points) const;

    algebra3d::Vector3<double> toData(const algebra3d::Vector3<double>& point) const
    {
        return point * (1 / scale) + origin;
    }
};

/// The data's own coordinates, unless they do not suit the meshes: single precision loses what
/// is small and far from the origin (more than 100 diagonals of the data), and the thinnest tube
/// and the shortest arc that the formulas tell from a point are fixed lengths near 1e-4 and 1e-7.
Placement choosePlacement(const Extent& extent, double radius);

} // namespace strandview

#endif
