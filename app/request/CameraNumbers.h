// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_CAMERANUMBERS_H
#define STRANDVIEW_APP_REQUEST_CAMERANUMBERS_H

#include <array>
#include <optional>
#include <string>

namespace strandview {

/// A camera as numbers that a user can keep and give again. Lengths are those of the
/// scene.
struct CameraNumbers
{
    bool perspective;
    std::array<float, 3> position;
    std::array<float, 4>
        orientation; ///< a unit quaternion, scalar last; the rest pose looks along -z
    float focalDistance;
    float size; ///< of the view's shorter side: a length, or for perspective an angle in radians
};

bool operator==(const CameraNumbers& a, const CameraNumbers& b);

/// "orthographic,x,y,z,qx,qy,qz,qw,focal distance,size" or "perspective,..."; every
/// number in as many digits as give it back.
std::string formatCamera(const CameraNumbers& camera);

/// The camera of such a text, or nothing if it is none; `expected`, if not null, is then told
/// what was. What formatCamera() gave comes back bit for bit; a quaternion that was shortened
/// by hand is normalised.
std::optional<CameraNumbers> parseCamera(const std::string& text, std::string* expected = nullptr);

} // namespace strandview

#endif
