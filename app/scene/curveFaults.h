// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_SCENE_CURVEFAULTS_H
#define STRANDVIEW_APP_SCENE_CURVEFAULTS_H

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

class BiarcRibbonMesh;
class BiarcTubeMesh;

namespace strandview {

/// A curve as it was handed to a mesh, and how to name its points in messages.
struct NamedCurve
{
    const std::vector<algebra3d::Vector3<double>>& points;
    /// Whose first and last d3 are the tangents at the ends; null where those of the edges
    /// are.
    const std::vector<algebra3d::Quaternion<double>>* rotations;
    std::function<std::string(std::size_t point)> nameOfPoint;
};

/// Where neighbouring tangents are opposite, or mirrored in the edge between them, the
/// formulas give numbers that are not finite, and with them the length of the whole
/// curve. One line that says at which point and what was expected, or nothing.
std::string findFault(BiarcTubeMesh& tube, int subsegments, const NamedCurve& curve);

/// The same of a ribbon whose edge turns back or shrinks to a point. The width in the
/// data's unit.
std::string findFault(const BiarcRibbonMesh& ribbon, double width, const NamedCurve& curve);

/// Of a tube, or of its ribbon, null if that is hidden.
std::string findFault(BiarcTubeMesh& tube, const BiarcRibbonMesh* shownRibbon, int subsegments,
                      double width, const NamedCurve& curve);

/// Whether a ribbon can be drawn.
bool isFinite(const BiarcRibbonMesh& ribbon);

} // namespace strandview

#endif
