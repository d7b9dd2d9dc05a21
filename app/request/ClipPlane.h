// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_CLIPPLANE_H
#define STRANDVIEW_APP_REQUEST_CLIPPLANE_H

#include <optional>
#include <string>

#include <algebra3d/Vector3.h>

namespace strandview {

/// A plane at which data are cut: what lies on the side that its normal points to is not shown. In
/// the data's coordinates and unit.
struct ClipPlane
{
    algebra3d::Vector3<double> normal{0, 0, 1}; ///< of any length above 0
    /// From the origin to the plane, along the normal; the middle of the data if left open.
    std::optional<double> distance;

    /// Of length 1.
    algebra3d::Vector3<double> unitNormal() const;
};

bool operator==(const ClipPlane& a, const ClipPlane& b);
inline bool operator!=(const ClipPlane& a, const ClipPlane& b) { return !(a == b); }

/// Through the middle of the data, across the side that is nearest to a direction that is not null:
/// what is beyond it, seen from there, stays.
ClipPlane planeFacing(const algebra3d::Vector3<double>& direction);

/// "z:1.5", "-x", "1,0,1:0.2": a side or a normal, and the distance if there is one. Every number
/// in as many digits as give it back.
std::string formatClipPlane(const ClipPlane& plane);

/// The plane of such a text; nothing of any other.
std::optional<ClipPlane> parseClipPlane(const std::string& text);

} // namespace strandview

#endif
