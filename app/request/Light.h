// SPDX-License-Identifier: GPL-3.0-or-later
#ifndef STRANDVIEW_APP_REQUEST_LIGHT_H
#define STRANDVIEW_APP_REQUEST_LIGHT_H

#include <array>
#include <optional>
#include <string>

#include <algebra3d/Vector3.h>

namespace strandview {

/// One of the lights that go with the camera.
struct Light
{
    /// From the light to what is shown, of any length: x to the right, y up, z to the viewer. That
    /// which the light has by itself if left open.
    std::optional<algebra3d::Vector3<double>> direction;
    double intensity = 1; ///< from 0, off, to 1
};

bool operator==(const Light& a, const Light& b);

/// "0.2,-0.2,-1:0.5": a direction, an intensity or both; a direction alone is of intensity 1. Every
/// number in as many digits as give it back.
std::string formatLight(const Light& light);

/// The light of such a text, also of "off"; nothing of any other.
std::optional<Light> parseLight(const std::string& text);

/// How small the highlights of each light are: 0 for none.
using Shininess = std::array<double, 3>;

/// "10", or "10,5,0" where they differ.
std::string formatShininess(const Shininess& shininess);
/// That of such a text; nothing of any other.
std::optional<Shininess> parseShininess(const std::string& text);

} // namespace strandview

#endif
