// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_TESTS_TRIANGLES_H
#define STRANDVIEW_TESTS_TRIANGLES_H

#include <array>
#include <vector>

#include <algebra3d/Vector3.h>

class SoNode;

/// Point, normal and material index of a corner.
using Corner = std::array<float, 7>;
/// Counter-clockwise; the corner that is smallest in the order of its numbers is the
/// first, so that equal triangles compare equal wherever they start.
using Triangle = std::array<Corner, 3>;

Corner corner(const algebra3d::Vector3<double>& point, const algebra3d::Vector3<double>& normal,
              int material);

/// The triangles of an OpenGL triangle strip: every second one turned round.
std::vector<Triangle> stripTriangles(const std::vector<Corner>& corners);
/// The triangles of an OpenGL triangle fan.
std::vector<Triangle> fanTriangles(const std::vector<Corner>& corners);

/// What Coin is told of a scene's shapes, in that order.
std::vector<Triangle> generatedTriangles(SoNode* scene);
/// What Coin is told their number is.
int countedTriangles(SoNode* scene);

#endif
