// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_ANALYSIS_STRAINS_H
#define STRANDVIEW_ANALYSIS_STRAINS_H

#include <vector>

#include <algebra3d/Quaternion.h>
#include <algebra3d/Vector3.h>

#include <strandview/analysisExport.h>

namespace strandview {

// The strains of a rod with material frames, one for each element: the edge from a point to the
// next one and the two frames at its ends (S. S. Antman, Nonlinear Problems of Elasticity, 2nd ed.,
// 2005, chapter VIII). Components are along d1, d2, d3. Plain functions for any thread.

/// The rotation vector that takes a unit quaternion to the next one, in radians up to pi: its
/// components along d1, d2, d3 are the same in both frames. A quaternion and its opposite are one
/// rotation; of half a turn one of the two senses is taken.
STRANDVIEW_ANALYSIS_EXPORT algebra3d::Vector3<double>
rotationVector(const algebra3d::Quaternion<double>& from, const algebra3d::Quaternion<double>& to);

/// kappa1, kappa2, kappa3 of each element: the rotation vector between its frames over the distance
/// of its points, in radians a length. kappa1 and kappa2 are the bending about d1 and d2, kappa3 is
/// the twist about d3, positive for a right-handed turn. Frames turned by an angle about d3 turn
/// (kappa1, kappa2) by its opposite.
STRANDVIEW_ANALYSIS_EXPORT std::vector<algebra3d::Vector3<double>>
strainsOfElements(const std::vector<algebra3d::Vector3<double>>& points,
                  const std::vector<algebra3d::Quaternion<double>>& rotations);

/// Shear along d1 and d2, and extension along d3, of each element: its edge, in the frame half-way
/// between those of its ends, over the length that it has in the reference, less d3. Zero of a rod
/// that is as long as there and has d3 along it. As many lengths above 0 as elements.
STRANDVIEW_ANALYSIS_EXPORT std::vector<algebra3d::Vector3<double>>
shearsOfElements(const std::vector<algebra3d::Vector3<double>>& points,
                 const std::vector<algebra3d::Quaternion<double>>& rotations,
                 const std::vector<double>& referenceLengths);

} // namespace strandview

#endif
