// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_CAMERAREQUEST_H
#define STRANDVIEW_APP_REQUEST_CAMERAREQUEST_H

#include <optional>
#include <string>

#include <algebra3d/Vector3.h>

#include "request/CameraNumbers.h"
#include "request/Side.h"

namespace strandview {

/// The camera that the user asked for: its numbers, or else a view.
///
/// A view is that from a side, or from the front, where what is up is up and x goes to the right,
/// or y where x is up: from -y if z is up, from z if y is. From there the camera goes around what
/// is up by the azimuth, anticlockwise as seen from above, to the elevation above the horizon.
struct CameraRequest
{
    using Vector = algebra3d::Vector3<double>;

    std::optional<Side> side; ///< the usual one of the data if left open, see withUsualSide()
    bool perspective = false;
    std::optional<CameraNumbers> numbers;

    std::optional<Vector>
        up; ///< in the picture, of any length but 0; that of the side if left open
    std::optional<double> azimuth;   ///< from the side or the front, in degrees
    std::optional<double> elevation; ///< from -90 to 90 degrees; that of the side if left open
    double zoom = 1;                 ///< how many times as large as what just fits
    /// What is in the middle of the picture: of the data, or in a scene's coordinates where those
    /// are spoken of; what just fits if left open.
    std::optional<Vector> centre;
    /// What is free at each border, as a part of the picture's shorter side; the usual if left
    /// open.
    std::optional<double> margin;

    bool isPerspective() const { return numbers ? numbers->perspective : perspective; }
    /// Whether the camera goes around.
    bool hasAngles() const { return azimuth || elevation; }
    /// Whether it shows something else than all of what is to be seen.
    bool isFramed() const { return zoom != 1 || centre; }
};

constexpr double LARGEST_MARGIN = 0.4;
constexpr double SMALLEST_ZOOM = 1e-3, LARGEST_ZOOM = 1e6;

/// Of length 1, from what is seen to who sees it from that side; and what is up then.
CameraRequest::Vector towardsViewer(Side side);
CameraRequest::Vector usualUp(Side side);

/// Of length 1: what is up, of a request without numbers. Without a side that is z.
CameraRequest::Vector upOf(const CameraRequest& request);

/// Whether a direction is that of the side, or the opposite, where it cannot be up.
bool isAlong(const CameraRequest::Vector& up, Side side);

/// The request with a side for data whose usual one this is. Where angles are asked for without a
/// side, or what is to be up lies along the usual one, it is seen from the front and stays without.
CameraRequest withUsualSide(CameraRequest request, Side usual);

/// "1,0,-2.5": three finite numbers, or nothing.
std::optional<CameraRequest::Vector> parsePoint(const std::string& text);
/// Three numbers that are not all 0, or the name of a side; else nothing.
std::optional<CameraRequest::Vector> parseDirection(const std::string& text);

} // namespace strandview

#endif
